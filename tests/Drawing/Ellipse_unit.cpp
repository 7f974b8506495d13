// Ellipses by kept shapes and by edges against the polygon corner by corner.
#include <gtest/gtest.h>

#include "Drawing/AngleSteps.h"
#include "Drawing/EllipseOutline.h"
#include "PlainEllipse.h"

namespace {

using namespace DrawingTests;
using Drawing::EllipseKey;

TEST(AngleSteps, AreSumsOfDoubles) {
    Random random(21);
    for (int number = 0; number < 200; ++number) {
        const double radius = static_cast<double>(Pick(random, 1, number % 20 == 0 ? 300000 : 3000));
        const double step =
            number % 7 == 0 ? std::ldexp(1.0, -static_cast<int>(Pick(random, 0, 12))) * 1.5 : std::atan(2 / radius);
        const Drawing::AngleSteps steps(step);
        std::int64_t i = 0;
        for (double angle = step; angle < 2 * 3.141592653589793; angle += step) {
            ++i;
            ASSERT_EQ(steps.At(i), angle) << "case " << number << ", step " << i;
        }
        ASSERT_EQ(steps.Count(), i) << "case " << number;
    }
}

TEST(AngleSteps, HaveTheirEndInClosedFormForTheGreatestRadius) {
    const Drawing::AngleSteps steps(std::atan(2 / 2147483647.0));
    EXPECT_NEAR(static_cast<double>(steps.Count()), 3.141592653589793 * 2147483647.0, 1e5);
    EXPECT_LT(steps.At(steps.Count()), 2 * 3.141592653589793);
    EXPECT_GE(steps.At(steps.Count()) + std::atan(2 / 2147483647.0), 2 * 3.141592653589793);
    for (std::int64_t i = 1; i < steps.Count() - 1; i += 99999989)
        ASSERT_EQ(steps.At(i) + std::atan(2 / 2147483647.0), steps.At(i + 1)) << i;
}

TEST(EllipsePoints, QuickOnesAreThoseOfTheLibraryFunctions) {
    Random random(22);
    for (int number = 0; number < 2000; ++number) {
        const std::int64_t greatest = std::int64_t{1} << Pick(random, 1, 31);
        const auto radius = [&] { return static_cast<std::int32_t>(Pick(random, 0, greatest - 1)); };
        const Drawing::EllipseForm form = Drawing::EllipseFormOf(
            radius(), radius(), number % 2 == 0 ? 0.0 : static_cast<double>(Pick(random, -9, 9)));
        Drawing::CornerAngles angles;
        for (double &angle : angles)
            angle = static_cast<double>(Pick(random, 0, 6283185307)) * 1e-9;
        angles[0] = 1.5707963267948966;
        angles[1] = 3.141592653589793;
        angles[2] = 6.283185307179586;
        Drawing::CornerColumns corners;
        Drawing::CornersAt(form, angles, Drawing::CornerBlock, corners);
        for (std::size_t i = 0; i < Drawing::CornerBlock; ++i) {
            const Drawing::Corner exact = Drawing::CornerAt(form, angles[i]);
            ASSERT_EQ(corners.X[i], exact.X) << "case " << number << ", angle " << angles[i];
            ASSERT_EQ(corners.Y[i], exact.Y) << "case " << number << ", angle " << angles[i];
        }
    }
}

TEST(Ellipse, OutlinesAreLinesFromCornerToCorner) {
    Random random(23);
    for (int number = 0; number < 3000; ++number) {
        RandomCase one(random, number % 8 == 0 ? 90 : 30);
        const EllipseKey key = AnyEllipse(random, number % 4 == 0 ? 40 : 12);
        const Point centre = {Pick(random, -10, 60), Pick(random, -10, 60)};
        const auto thickness = static_cast<std::int32_t>(Pick(random, 1, 6));
        ModelOutline(one, key, centre, thickness);
        std::vector<char> byEdges = one.Actual;
        Drawing::DrawEllipse(one.Canvas(), key, centre, thickness);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
        Drawing::DrawEllipseByEdges(Drawing::CanvasOf(one.Fenced.OnMemory(byEdges), one.Pen), key, centre, thickness);
        ASSERT_EQ(byEdges, one.Expected) << "case " << number << ", by edges";
    }
}

TEST(Ellipse, FilledOnesArePolygons) {
    Random random(24);
    for (int number = 0; number < 3000; ++number) {
        RandomCase one(random, number % 8 == 0 ? 150 : 30);
        const EllipseKey key = AnyEllipse(random, number % 4 == 0 ? 60 : 12);
        const Point centre = {Pick(random, -10, 60), Pick(random, -10, 60)};
        one.Model.Polygon(PlainCorners(key, centre));
        std::vector<char> byEdges = one.Actual;
        Drawing::FillEllipse(one.Canvas(), key, centre);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
        Drawing::FillEllipseByEdges(Drawing::CanvasOf(one.Fenced.OnMemory(byEdges), one.Pen), key, centre);
        ASSERT_EQ(byEdges, one.Expected) << "case " << number << ", by edges";
    }
}

TEST(Ellipse, PartsOfLargeOutlinesThatMissTheImageChangeNothing) {
    Random random(25);
    for (int number = 0; number < 150; ++number) {
        RandomCase one(random, 40);
        const EllipseKey key = AnyEllipse(random, 30000);
        const double angle = static_cast<double>(Pick(random, 0, 6283)) * 1e-3;
        const Drawing::Corner near =
            Drawing::CornerAt(Drawing::EllipseFormOf(key.RadiusA, key.RadiusB, key.RotationRadians), angle);
        const Point centre = {Pick(random, -20, 60) - static_cast<std::int64_t>(near.X),
                              Pick(random, -20, 60) - static_cast<std::int64_t>(near.Y)};
        const auto thickness = static_cast<std::int32_t>(Pick(random, 1, 6));
        if (number % 3 == 0) {
            one.Model.Polygon(PlainCorners(key, centre));
            Drawing::FillEllipseByEdges(one.Canvas(), key, centre);
        } else {
            ModelOutline(one, key, centre, thickness);
            Drawing::DrawEllipseByEdges(one.Canvas(), key, centre, thickness);
        }
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

TEST(Ellipse, OneNegativeRadiusGoesAroundTheOtherWay) {
    Random random(26);
    for (int number = 0; number < 300; ++number) {
        RandomCase one(random, 40);
        EllipseKey key = AnyEllipse(random, 20);
        (number % 2 == 0 ? key.RadiusA : key.RadiusB) *= -1;
        const Point centre = {Pick(random, 0, 40), Pick(random, 0, 40)};
        ModelOutline(one, key, centre, 1 + number % 3);
        Drawing::DrawEllipse(one.Canvas(), key, centre, 1 + number % 3);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

TEST(Ellipse, EndsForTheGreatestRadii) {
    Random random(27);
    for (const std::int32_t thickness : {1, 2, 50})
        for (const Point centre :
             {Point{0, 0}, Point{INT32_MAX, 10}, Point{10, -INT32_MAX}, Point{INT32_MIN, INT32_MIN}}) {
            RandomCase one(random, 40);
            const EllipseKey key = {INT32_MAX, INT32_MAX, 0.25};
            Drawing::DrawEllipse(one.Canvas(), key, centre, thickness);
            Drawing::FillEllipse(one.Canvas(), key, centre);
        }
}

} // namespace

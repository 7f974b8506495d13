// Corners of small ellipses from registers of eight, and what is drawn between them, against corner by corner.
#include <gtest/gtest.h>

#include "Drawing/NearEllipse.h"
#include "Image/KernelLevel.h"
#include "PlainEllipse.h"

namespace {

using namespace DrawingTests;

class NearEllipseAtLevels : public testing::TestWithParam<Image::KernelLevel> {
    Image::ForcedLevel forced_{GetParam()};
};

Drawing::NearCorners CornersOf(const EllipseKey &key) {
    return Drawing::NearCorners(Drawing::EllipseFormOf(key.RadiusA, key.RadiusB, key.RotationRadians));
}

void ExpectDefinedCorners(const EllipseKey &key) {
    const std::vector<Point> expected = PlainCorners(key, {0, 0});
    const Drawing::NearCorners corners = CornersOf(key);
    ASSERT_EQ(corners.Count, static_cast<std::int64_t>(expected.size()));
    for (std::size_t i = 0; i <= expected.size(); ++i) {
        const Point corner = {corners.X[i], corners.Y[i]};
        ASSERT_EQ(corner, expected[i % expected.size()]) << "corner " << i;
        ASSERT_LE(std::max(std::abs(corner.X), std::abs(corner.Y)), corners.Reach);
    }
}

TEST_P(NearEllipseAtLevels, CornersOfCirclesAreAsDefined) {
    for (std::int32_t radius = 0; radius <= 2048; radius += radius < 400 ? 1 : 37) {
        SCOPED_TRACE(radius);
        ExpectDefinedCorners({radius, radius, 0});
    }
    ExpectDefinedCorners({2048, 2048, 0});
    ExpectDefinedCorners({2048, 2048, 0.7});
}

TEST_P(NearEllipseAtLevels, CornersOfEllipsesAreAsDefined) {
    Random random(31);
    for (int number = 0; number < 700; ++number) {
        SCOPED_TRACE(number);
        ExpectDefinedCorners(AnyEllipse(random, std::int64_t{1} << Pick(random, 1, 11)));
    }
}

/// Each radius, since what quarters have in common differs.
TEST_P(NearEllipseAtLevels, FilledCirclesArePolygons) {
    Random random(32);
    for (std::int32_t radius = 0; radius < 120; ++radius) {
        RandomCase one(random, 260);
        const EllipseKey key = {radius + static_cast<std::int32_t>(Pick(random, 0, 1) * Pick(random, 0, 30)), radius,
                                0};
        const Point centre = {Pick(random, 0, one.Width), Pick(random, 0, one.Height)};
        one.Model.Polygon(PlainCorners(key, centre));
        Drawing::FillNearEllipse(one.Canvas(), CornersOf(key), centre);
        ASSERT_EQ(one.Actual, one.Expected) << "radius " << radius;
    }
}

TEST_P(NearEllipseAtLevels, OutlinesInsideTheImageAreLinesAndOthersAreLeft) {
    Random random(33);
    int inside = 0;
    for (int number = 0; number < 1500; ++number) {
        RandomCase one(random, 90);
        const EllipseKey key = AnyEllipse(random, number % 3 == 0 ? 30 : 8);
        const Point centre = {Pick(random, 0, one.Width), Pick(random, 0, one.Height)};
        const bool isDrawn = Drawing::DrawNearOutline(one.Canvas(), CornersOf(key), centre);
        if (isDrawn)
            ModelOutline(one, key, centre, 1);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
        inside += isDrawn ? 1 : 0;
    }
    EXPECT_GT(inside, 300);
}

INSTANTIATE_TEST_SUITE_P(NearEllipse, NearEllipseAtLevels,
                         testing::ValuesIn(Image::AvailableLevels().begin(), Image::AvailableLevels().end()),
                         [](const auto &level) { return std::string(Image::NameOf(level.param)); });

} // namespace

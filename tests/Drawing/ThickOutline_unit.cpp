// Outlines of which most lines are left out against all of their lines.
#include <gtest/gtest.h>

#include "Drawing/EllipseOutline.h"
#include "Image/KernelLevel.h"
#include "PlainEllipse.h"

namespace {

using namespace DrawingTests;

/// A centre with the image near a place of an ellipse's outline, some way in front of it or behind.
Point CentreBeside(Random &random, const EllipseKey &key, double way) {
    const Drawing::EllipseForm form = Drawing::EllipseFormOf(key.RadiusA, key.RadiusB, key.RotationRadians);
    const double angle = static_cast<double>(Pick(random, 0, 6283)) * 1e-3;
    const Drawing::Corner corner = Drawing::CornerAt(form, angle);
    const double direction = angle + (form.IsTurned ? key.RotationRadians : 0.0);
    return {Pick(random, -20, 60) - static_cast<std::int64_t>(corner.X + way * std::cos(direction)),
            Pick(random, -20, 60) - static_cast<std::int64_t>(corner.Y + way * std::sin(direction))};
}

class OutlinesAtLevels : public testing::TestWithParam<Image::KernelLevel> {
    Image::ForcedLevel forced_{GetParam()};
};

TEST_P(OutlinesAtLevels, OfGreatThicknessAreAllTheirLines) {
    Random random(41);
    std::int64_t partly = 0;
    for (int number = 0; number < 500; ++number) {
        RandomCase one(random, 60);
        const EllipseKey key = AnyEllipse(random, std::int64_t{1} << Pick(random, 1, 10));
        const auto thickness = static_cast<std::int32_t>(Pick(random, 48, std::int64_t{1} << Pick(random, 6, 20)));
        const double way = 0.5 * thickness * static_cast<double>(Pick(random, -15, 15)) / 10;
        const Point centre =
            number % 5 == 0 ? Point{Pick(random, -10, 60), Pick(random, -10, 60)} : CentreBeside(random, key, way);
        const std::vector<char> before = one.Actual;
        ModelOutline(one, key, centre, thickness);
        Drawing::DrawEllipse(one.Canvas(), key, centre, thickness);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
        partly += one.Expected != before ? 1 : 0;
    }
    EXPECT_GT(partly, 100);
}

TEST_P(OutlinesAtLevels, WithCornersBeyond32BitsAreAllTheirLines) {
    Random random(42);
    for (int number = 0; number < 300; ++number) {
        RandomCase one(random, 40);
        const EllipseKey key = AnyEllipse(random, 400);
        const auto near = [&](bool isLimit) {
            constexpr std::int64_t limits[] = {INT32_MIN, INT32_MAX};
            return isLimit ? limits[Pick(random, 0, 1)] + Pick(random, -300, 300) : Pick(random, -300, 300);
        };
        const bool isFar = number % 2 == 0;
        const Point centre = {std::clamp<std::int64_t>(near(isFar && number % 3 != 0), INT32_MIN, INT32_MAX),
                              std::clamp<std::int64_t>(near(isFar && number % 3 != 1), INT32_MIN, INT32_MAX)};
        const auto thickness = static_cast<std::int32_t>(
            Pick(random, INT32_MAX - (std::int64_t{1} << Pick(random, 2, 31)) + 1, INT32_MAX));
        if (thickness < 48)
            continue;
        ModelOutline(one, key, centre, thickness);
        Drawing::DrawEllipse(one.Canvas(), key, centre, thickness);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

INSTANTIATE_TEST_SUITE_P(ThickOutline, OutlinesAtLevels,
                         testing::ValuesIn(Image::AvailableLevels().begin(), Image::AvailableLevels().end()),
                         [](const auto &level) { return std::string(Image::NameOf(level.param)); });

/// A walk over all lines of such an outline would take minutes.
TEST(ThickOutline, EndsForTheGreatestRadiiBesideTheImage) {
    Random random(43);
    for (int number = 0; number < 12; ++number) {
        RandomCase one(random, 400);
        const auto radius = static_cast<std::int32_t>(INT32_MAX - Pick(random, 0, 1000000000));
        const auto thickness = static_cast<std::int32_t>(Pick(random, 1000, 2000000000));
        const EllipseKey key = {radius, number % 4 == 0 ? -radius / 3 : radius, number % 2 == 0 ? 0.0 : 0.3};
        Point centre = CentreBeside(random, key, number % 3 == 0 ? 0.5 * thickness : -0.5 * thickness);
        centre.X = std::clamp<std::int64_t>(centre.X, INT32_MIN, INT32_MAX);
        centre.Y = std::clamp<std::int64_t>(centre.Y, INT32_MIN, INT32_MAX);
        Drawing::DrawEllipse(one.Canvas(), key, centre, thickness);
    }
}

TEST(Canvas, KnowsWhetherPixelsShareBytesInPart) {
    Random random(44);
    for (int number = 0; number < 2000; ++number) {
        RandomCase one(random, 8);
        const Drawing::Canvas canvas = one.Canvas();
        const std::intptr_t bytes = one.Fenced.Bytes();
        bool shares = false;
        std::vector<const char *> pixels;
        for (std::int64_t y = 0; y < one.Height; ++y)
            for (std::int64_t x = 0; x < one.Width; ++x)
                pixels.push_back(canvas.Plane.Pixel(x, y));
        for (const char *a : pixels)
            for (const char *b : pixels)
                shares = shares || (a != b && std::abs(a - b) < bytes);
        ASSERT_FALSE(shares && Drawing::HasSeparatePixels(canvas)) << "case " << number;
    }
}

} // namespace

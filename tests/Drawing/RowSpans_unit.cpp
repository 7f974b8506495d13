// Polygons and thick lines edge by edge against the walk over rows.
#include <gtest/gtest.h>

#include "Drawing/RowSpans.h"
#include "Drawing/ThickLine.h"
#include "DrawnPlanes.h"

namespace {

using namespace DrawingTests;

std::vector<Point> AnyPolygon(Random &random, std::int64_t reach) {
    std::vector<Point> corners(static_cast<std::size_t>(Pick(random, 1, 7)));
    for (Point &corner : corners)
        corner = {Pick(random, -reach, reach), Pick(random, -reach, reach)};
    return corners;
}

TEST(RowSpans, FillPolygonsAsRowByRow) {
    Random random(11);
    for (int number = 0; number < 8000; ++number) {
        RandomCase one(random, number % 16 == 0 ? 200 : 20);
        const std::vector<Point> corners = AnyPolygon(random, number % 5 == 0 ? 300 : 30);
        one.Model.Polygon(corners);
        Drawing::FillPolygon(one.Canvas(), corners.data(), corners.size());
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

TEST(RowSpans, FillPolygonsWithCornersNearTheLimits) {
    Random random(12);
    for (int number = 0; number < 4000; ++number) {
        RandomCase one(random, 20);
        std::vector<Point> corners = AnyPolygon(random, std::int64_t{1} << Pick(random, 3, 33));
        corners.push_back({Pick(random, 0, 10), Pick(random, 0, 10)});
        one.Model.Polygon(corners);
        Drawing::FillPolygon(one.Canvas(), corners.data(), corners.size());
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

TEST(RowSpans, TellWhetherTheWholeImageIsCovered) {
    Random random(13);
    int covered = 0;
    for (int number = 0; number < 4000; ++number) {
        RandomCase one(random, 4);
        const std::vector<Point> corners = AnyPolygon(random, 20);
        std::int64_t pixels = 0;
        Drawing::PlainPolygon(
            corners, one.Width, one.Height,
            [&](std::int64_t, std::int64_t left, std::int64_t right) { pixels += right - left + 1; });
        const bool isWhole = Drawing::FillPolygon(one.Canvas(), corners.data(), corners.size());
        ASSERT_EQ(isWhole, pixels == one.Width * one.Height) << "case " << number;
        covered += isWhole ? 1 : 0;
    }
    EXPECT_GT(covered, 10);
}

TEST(ThickLine, FillsItsRectangle) {
    Random random(14);
    for (int number = 0; number < 4000; ++number) {
        RandomCase one(random, 30);
        const Point from = {Pick(random, -20, 40), Pick(random, -20, 40)};
        const Point to = {Pick(random, -20, 40), Pick(random, -20, 40)};
        const auto thickness = static_cast<std::int32_t>(Pick(random, 2, 12));
        const auto corners = Drawing::ThickLineCorners(from, to, thickness);
        one.Model.Polygon({corners.begin(), corners.end()});
        Drawing::DrawThickLine(one.Canvas(), from, to, thickness);
        ASSERT_EQ(one.Actual, one.Expected) << "case " << number;
    }
}

TEST(ThickLine, HasCornersHalfTheThicknessBeyondItsEnds) {
    const auto corners = Drawing::ThickLineCorners({10, 20}, {16, 20}, 3);
    EXPECT_EQ(corners[0], (Point{9, 19}));
    EXPECT_EQ(corners[1], (Point{18, 19}));
    EXPECT_EQ(corners[2], (Point{18, 21}));
    EXPECT_EQ(corners[3], (Point{9, 21}));
}

TEST(ThickLine, WithoutALengthHasItsCornersAtTheLowestInteger) {
    for (const Point &corner : Drawing::ThickLineCorners({3, 3}, {3, 3}, 5))
        EXPECT_EQ(corner, (Point{INT32_MIN, INT32_MIN}));
}

} // namespace

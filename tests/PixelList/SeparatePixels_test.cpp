/* Thinning a list so that its points keep a distance: the first along the projection stays, closeness is a square
 * with its edge, and what was removed removes nothing itself. Set ORV_TEST_CASE to a number to run that random case
 * alone. */
#include "PixelList/NoLists.h"
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

constexpr char NoVector[] = "projection vector missing";
constexpr char NotPositive[] = "separation must be positive";
constexpr char NoDimension[] = "pixel list needs at least dimension 2";

class SeparatePixelsTest : public PixelListTest {
protected:
    /// Thins a list of the points, expects success without a report, and gives what stays.
    static Points Thinned(const Points &points, const Point &vector, double separation) {
        const Handle list = ListOf(static_cast<std::int64_t>(vector.size()), points);
        EXPECT_TRUE(SeparatePixels(list.Get(), vector.data(), separation));
        ExpectNoReport();
        EXPECT_EQ(RefCount(list.Get()), 1u);
        return PointsOf(list.Get());
    }
};

/// The told rounds, one removal after the other, on points whose projections differ.
Points ThinnedByTheRule(Points points, const Point &vector, double separation) {
    std::sort(points.begin(), points.end(), [&](const Point &a, const Point &b) {
        double sum = 0;
        for (std::size_t i = 0; i < vector.size(); ++i)
            sum += (a[i] - b[i]) * vector[i];
        return sum < 0;
    });
    for (std::size_t i = 0; i < points.size(); ++i)
        for (std::size_t j = i + 1; j < points.size();) {
            const bool close = std::abs(points[i][0] - points[j][0]) <= separation &&
                               std::abs(points[i][1] - points[j][1]) <= separation;
            if (close)
                points.erase(points.begin() + static_cast<std::ptrdiff_t>(j));
            else
                ++j;
        }
    return points;
}

TEST_F(SeparatePixelsTest, RemovesAPointExactlyAsFarAwayInXAndInY) {
    EXPECT_EQ(Thinned({{0, 0}, {2, 2}}, {1, 1}, 2), (Points{{0, 0}}));
    EXPECT_EQ(Thinned({{0, 0}, {2, -2}}, {2, 1}, 2), (Points{{0, 0}}));
    EXPECT_EQ(Thinned({{0, 0}, {2.0000001, 2}}, {1, 1}, 2), (Points{{0, 0}, {2.0000001, 2}}));
    EXPECT_EQ(Thinned({{0, 0}, {2, 2.0000001}}, {1, 1}, 2), (Points{{0, 0}, {2, 2.0000001}}));
}

TEST_F(SeparatePixelsTest, KeepsTheFirstAlongTheProjection) {
    const Points points = {{5, 0}, {4, 0}, {6, 0}};
    EXPECT_EQ(Thinned(points, {1, 0}, 3), (Points{{4, 0}}));
    EXPECT_EQ(Thinned(points, {-1, 0}, 3), (Points{{6, 0}}));
}

TEST_F(SeparatePixelsTest, WhatWasRemovedRemovesNothing) {
    EXPECT_EQ(Thinned({{0, 0}, {2, 0}, {4, 0}, {6, 0}, {8, 0}}, {1, 0}, 2), (Points{{0, 0}, {4, 0}, {8, 0}}));
    EXPECT_EQ(Thinned({{0, 0}, {2, 0}, {3, 0}, {6, 0}}, {1, 0}, 2), (Points{{0, 0}, {3, 0}, {6, 0}}));
}

TEST_F(SeparatePixelsTest, IsCloseInBothAxesOnly) {
    EXPECT_EQ(Thinned({{0, 0}, {1, 9}, {9, 1}}, {1, 2}, 2), (Points{{0, 0}, {9, 1}, {1, 9}}));
}

TEST_F(SeparatePixelsTest, LooksBehindNeighboursInTheProjection) {
    // The second along the projection is far away; the third is close to the first.
    EXPECT_EQ(Thinned({{0, 0}, {1, 50}, {2, 0}}, {1, 0}, 3), (Points{{0, 0}, {1, 50}}));
}

TEST_F(SeparatePixelsTest, SortsByAllComponentsAndMeasuresTheFirstTwo) {
    const Points points = {{0, 0, 5, 1}, {1, 0, 4, 2}, {9, 9, 3, 3}};
    EXPECT_EQ(Thinned(points, {0, 0, 1, 0}, 1), (Points{{9, 9, 3, 3}, {1, 0, 4, 2}}));
    EXPECT_EQ(Thinned(points, {0, 0, 0, 1}, 1), (Points{{0, 0, 5, 1}, {9, 9, 3, 3}}));
}

TEST_F(SeparatePixelsTest, EqualPointsBecomeOne) {
    EXPECT_EQ(Thinned(Points(50, Point{3, 4}), {1, 1}, Tiny), (Points{{3, 4}}));
    EXPECT_EQ(Thinned({{3, 4, 1}, {3, 4, 1}, {5, 5, 0}}, {1, 0, 0}, 1e-9), (Points{{3, 4, 1}, {5, 5, 0}}));
}

TEST_F(SeparatePixelsTest, TakesEmptyListsAndSinglePixels) {
    EXPECT_EQ(Thinned({}, {1, 0}, 1), Points{});
    EXPECT_EQ(Thinned({{1, 2}}, {1, 0}, 1), (Points{{1, 2}}));
}

TEST_F(SeparatePixelsTest, AnInfiniteSeparationKeepsOneOfAllFinitePoints) {
    RandomComponents random(2);
    Points points;
    for (int i = 0; i < 50; ++i)
        points.push_back({static_cast<double>(i * 37 % 50), random.Whole()});
    EXPECT_EQ(Thinned(points, {1, 0}, Infinity), (Points{points[0]}));
    EXPECT_EQ(Thinned(points, {1, 0}, Huge), (Points{points[0]}));
}

TEST_F(SeparatePixelsTest, KeepsWhatIsNoNumber) {
    RandomComponents random(3);
    Points points;
    std::size_t odd = 0;
    for (int i = 0; i < 200; ++i) {
        Point point = random.WholePoint(2);
        if (i % 3 == 0) {
            point[static_cast<std::size_t>(random.Pick(0, 1))] = NaN;
            ++odd;
        }
        points.push_back(point);
    }
    // Required: no distance from what is no number is at most the separation.
    const Points kept = Thinned(points, {1, 1}, Infinity);
    std::size_t keptOdd = 0;
    for (const auto &point : kept)
        keptOdd += std::isnan(point[0]) || std::isnan(point[1]) ? 1u : 0u;
    EXPECT_EQ(keptOdd, odd);
    EXPECT_EQ(kept.size(), odd + 1);
}

TEST_F(SeparatePixelsTest, ThinsRandomPointsByTheRule) {
    for (const std::uint32_t number : CaseNumbers(300)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomComponents random(number);
        const auto dimension = static_cast<std::size_t>(random.Pick(2, 5));
        const std::int64_t count = random.Pick(0, 80), spread = random.Pick(2, 40);
        Points points;
        for (std::int64_t i = 0; i < count; ++i) {
            Point point(dimension, 0.0);
            point[0] = static_cast<double>(random.Pick(-spread, spread)) / 2.0;
            point[1] = static_cast<double>(random.Pick(-spread, spread));
            if (dimension > 2)
                point[dimension - 1] = static_cast<double>(i);
            points.push_back(point);
        }
        Point vector(dimension, 0.0);
        // Steps of 500 along the first two axes and less than 500 along the last: no two projections are the same.
        vector[0] = dimension == 2 ? (random.Pick(0, 1) != 0 ? 1000.0 : -1000.0) : 1000.0 * random.Whole();
        vector[1] = 1000.0 * random.Whole();
        vector[dimension - 1] = 1.0;
        std::shuffle(points.begin(), points.end(), random.Engine());
        const double separation = static_cast<double>(random.Pick(1, 20)) / 2.0;
        ASSERT_TRUE(SamePoints(Thinned(points, vector, separation), ThinnedByTheRule(points, vector, separation)));
    }
}

TEST_F(SeparatePixelsTest, ThinsAListOfManyComponents) {
    RandomComponents random(8);
    Points points;
    for (int i = 0; i < 40; ++i) {
        points.push_back(random.WholePoint(256));
        points.back()[255] = static_cast<double>(i * 17 % 40);
    }
    Point vector(256, 0.0);
    vector[255] = -1.0;
    EXPECT_TRUE(SamePoints(Thinned(points, vector, 12), ThinnedByTheRule(points, vector, 12)));
}

TEST_F(SeparatePixelsTest, PointsThatProjectToOnePlaceKeepTheirDistanceToo) {
    for (const std::uint32_t number : CaseNumbers(100)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomComponents random(number);
        Points points;
        for (std::int64_t count = random.Pick(0, 80); count > 0; --count)
            points.push_back(random.WholePoint(2));
        const double separation = static_cast<double>(random.Pick(1, 12));
        const Points kept = Thinned(points, {random.Whole(), 0}, separation);
        const auto close = [&](const Point &a, const Point &b) {
            return std::abs(a[0] - b[0]) <= separation && std::abs(a[1] - b[1]) <= separation;
        };
        for (std::size_t i = 0; i < kept.size(); ++i)
            for (std::size_t j = i + 1; j < kept.size(); ++j)
                ASSERT_FALSE(close(kept[i], kept[j]));
        for (const auto &point : points)
            ASSERT_TRUE(std::any_of(kept.begin(), kept.end(), [&](const Point &other) {
                return close(point, other);
            })) << "a point was removed for nothing";
    }
}

TEST_F(SeparatePixelsTest, ChecksTheVectorThenTheSeparationThenTheList) {
    const double vector[] = {1, 0};
    const Points points = {{3, 0}, {1, 0}, {2, 0}};
    const Handle list = ListOf(2, points);
    std::vector<void *> handles = {list.Get()};
    const auto nones = NoLists();
    for (const auto &none : nones)
        handles.push_back(none.Get());
    for (void *const handle : handles) {
        for (const double separation : {1.0, 0.0, -1.0, NaN}) {
            EXPECT_FALSE(SeparatePixels(handle, nullptr, separation));
            ExpectReports(1, ErrParameter, "SeparatePixels", NoVector);
        }
        for (const double separation : {0.0, -0.0, -1.0, -Tiny, -Infinity, NaN}) {
            EXPECT_FALSE(SeparatePixels(handle, vector, separation));
            ExpectReports(1, ErrParameter, "SeparatePixels", NotPositive);
        }
    }
    for (const auto &none : nones) {
        EXPECT_FALSE(SeparatePixels(none.Get(), vector, 1.0)) << none.Name;
        ExpectReports(2, ErrDimension, "SeparatePixels", NoDimension); // behind the report of PixelListDimension
        none.ExpectLeftAlone();
    }
    EXPECT_TRUE(Holds(list.Get(), points)) << "a refused list is not even sorted";
}

} // namespace

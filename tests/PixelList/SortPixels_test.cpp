/* Sorting a list by value, by position and along a vector: the told order between neighbours, nothing lost whatever
 * the components are, and the order of the checks. Set ORV_TEST_CASE to a number to run that random case alone. */
#include "PixelList/NoLists.h"
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

using SortPixelsByValueTest = PixelListTest;
using SortPixelsByPositionTest = PixelListTest;
using SortPixelsExTest = PixelListTest;
using SortPixelsTest = PixelListTest;

using Before = std::function<bool(const Point &, const Point &)>;

bool HigherValue(const Point &a, const Point &b) {
    return a[2] > b[2];
}
Before AlongDirection(std::int64_t dx, std::int64_t dy) {
    return [=](const Point &a, const Point &b) {
        return (a[0] - b[0]) * static_cast<double>(dx) + (a[1] - b[1]) * static_cast<double>(dy) < 0;
    };
}
Before AlongVector(const Point &vector) {
    return [=](const Point &a, const Point &b) {
        double sum = 0;
        for (std::size_t i = 0; i < vector.size(); ++i)
            sum += (a[i] - b[i]) * vector[i];
        return sum < 0;
    };
}

/// Sorts a list of the points, expects success without a report and that no pixel changed or went, and gives the
/// points in their new order.
template <class Sort>
Points Sorted(const Points &points, std::int64_t dimension, Sort sort) {
    const Handle list = ListOf(dimension, points);
    EXPECT_TRUE(sort(list.Get()));
    ExpectNoReport();
    EXPECT_EQ(RefCount(list.Get()), 1u);
    EXPECT_EQ(PixelListDimension(list.Get()), dimension);
    const Points sorted = PointsOf(list.Get());
    EXPECT_TRUE(SortedBits(sorted) == SortedBits(points)) << "the pixels are not those that were put in";
    return sorted;
}

/// No pixel belongs before its predecessor.
void ExpectOrder(const Points &sorted, const Before &before) {
    for (std::size_t i = 1; i < sorted.size(); ++i)
        ASSERT_FALSE(before(sorted[i], sorted[i - 1]))
            << testing::PrintToString(sorted[i]) << " stands behind " << testing::PrintToString(sorted[i - 1]);
}

TEST_F(SortPixelsByValueTest, PutsTheHighestValueFirst) {
    EXPECT_EQ(Sorted({{9, 9, 1}, {1, 1, 3}, {5, 5, -2}, {0, 7, 2.5}}, 3, SortPixelsByValue),
              (Points{{1, 1, 3}, {0, 7, 2.5}, {9, 9, 1}, {5, 5, -2}}));
    EXPECT_EQ(
        Sorted({{0, 0, Huge, 1}, {0, 0, -Infinity, 2}, {0, 0, Infinity, 3}, {0, 0, 0, 4}}, 4, SortPixelsByValue),
        (Points{{0, 0, Infinity, 3}, {0, 0, Huge, 1}, {0, 0, 0, 4}, {0, 0, -Infinity, 2}}));
}

TEST_F(SortPixelsByPositionTest, PutsWhatLiesFirstAlongTheDirectionFirst) {
    const Points points = {{2, 1, 10}, {-1, 4, 20}, {0, 0, 30}, {1, -3, 40}};
    const auto sorted = [&](std::int64_t dx, std::int64_t dy) {
        return Sorted(points, 3, [=](void *list) { return SortPixelsByPosition(list, dx, dy); });
    };
    EXPECT_EQ(sorted(1, 0), (Points{{-1, 4, 20}, {0, 0, 30}, {1, -3, 40}, {2, 1, 10}}));
    EXPECT_EQ(sorted(-1, 0), (Points{{2, 1, 10}, {1, -3, 40}, {0, 0, 30}, {-1, 4, 20}}));
    EXPECT_EQ(sorted(0, 1), (Points{{1, -3, 40}, {0, 0, 30}, {2, 1, 10}, {-1, 4, 20}}));
    EXPECT_EQ(sorted(10, 1), (Points{{-1, 4, 20}, {0, 0, 30}, {1, -3, 40}, {2, 1, 10}}));
    EXPECT_EQ(sorted(1, 10), (Points{{1, -3, 40}, {0, 0, 30}, {2, 1, 10}, {-1, 4, 20}}));
}

TEST_F(SortPixelsByPositionTest, TakesTheLargestDirections) {
    const Points points = {{2, 1, 0}, {-1, 4, 0}, {0, 0, 0}, {1, -3, 0}};
    for (const std::int64_t dx : {LowestWord, HighestWord, std::int64_t{0}})
        for (const std::int64_t dy : {LowestWord, HighestWord, std::int64_t{0}})
            ExpectOrder(Sorted(points, 3, [=](void *list) { return SortPixelsByPosition(list, dx, dy); }),
                        AlongDirection(dx, dy));
}

TEST_F(SortPixelsExTest, SortsAlongAllComponents) {
    const double onlyThird[] = {0, 0, -1}, sum[] = {1, 1, 1};
    const Points points = {{1, 2, 3}, {9, -4, 5}, {0, 0, 1}};
    EXPECT_EQ(Sorted(points, 3, [&](void *list) { return SortPixelsEx(list, onlyThird); }),
              (Points{{9, -4, 5}, {1, 2, 3}, {0, 0, 1}}));
    EXPECT_EQ(Sorted(points, 3, [&](void *list) { return SortPixelsEx(list, sum); }),
              (Points{{0, 0, 1}, {1, 2, 3}, {9, -4, 5}}));
}

TEST_F(SortPixelsExTest, TakesAListOfTwoDimensionsAndOneOf256) {
    const double flat[] = {0.5, -2};
    EXPECT_EQ(Sorted({{0, 0}, {8, 1}, {0, 1}, {9, 0}}, 2, [&](void *list) { return SortPixelsEx(list, flat); }),
              (Points{{0, 1}, {0, 0}, {8, 1}, {9, 0}}));
    RandomComponents random(3);
    Points points;
    for (int i = 0; i < 60; ++i)
        points.push_back(random.WholePoint(256));
    Point vector(256, 0.0);
    for (double &component : vector)
        component = random.Whole();
    ExpectOrder(Sorted(points, 256, [&](void *list) { return SortPixelsEx(list, vector.data()); }),
                AlongVector(vector));
    Point last(256, 0.0);
    last[255] = 1;
    ExpectOrder(Sorted(points, 256, [&](void *list) { return SortPixelsEx(list, last.data()); }), AlongVector(last));
}

TEST_F(SortPixelsExTest, ReadsExactlyAsManyNumbersAsTheListHasDimensions) {
    for (const std::int64_t dimension : {2, 3, 256})
        for (const auto where : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const FencedBlock block(static_cast<std::size_t>(dimension) * sizeof(double), where);
            RandomComponents random(4);
            const Point vector = random.WholePoint(dimension);
            std::memcpy(block.Data(), vector.data(), vector.size() * sizeof(double));
            Points points;
            for (int i = 0; i < 30; ++i)
                points.push_back(random.WholePoint(dimension));
            ExpectOrder(Sorted(points, dimension,
                               [&](void *list) {
                                   return SortPixelsEx(list, reinterpret_cast<const double *>(block.Data()));
                               }),
                        AlongVector(vector));
            EXPECT_EQ(std::memcmp(block.Data(), vector.data(), vector.size() * sizeof(double)), 0);
        }
}

TEST_F(SortPixelsTest, EmptyListsAndSinglePixelsAreSorted) {
    const double vector[] = {1, 2, 3};
    for (const Points &points : {Points{}, Points{{1, 2, 3}}, Points{{NaN, NaN, NaN}}}) {
        Sorted(points, 3, SortPixelsByValue);
        Sorted(points, 3, [](void *list) { return SortPixelsByPosition(list, 1, 1); });
        Sorted(points, 3, [&](void *list) { return SortPixelsEx(list, vector); });
    }
}

TEST_F(SortPixelsTest, RandomListsComeOutInTheToldOrder) {
    for (const std::uint32_t number : CaseNumbers(150)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomComponents random(number);
        const std::int64_t dimension = random.Pick(3, 6);
        Points points;
        for (std::int64_t count = random.Pick(0, 300); count > 0; --count)
            points.push_back(random.WholePoint(dimension));
        const std::int64_t dx = random.Pick(-50, 50), dy = random.Pick(-50, 50);
        const Point vector = random.WholePoint(dimension);
        ASSERT_NO_FATAL_FAILURE(ExpectOrder(Sorted(points, dimension, SortPixelsByValue), HigherValue));
        ASSERT_NO_FATAL_FAILURE(
            ExpectOrder(Sorted(points, dimension, [=](void *list) { return SortPixelsByPosition(list, dx, dy); }),
                        AlongDirection(dx, dy)));
        ASSERT_NO_FATAL_FAILURE(
            ExpectOrder(Sorted(points, dimension, [&](void *list) { return SortPixelsEx(list, vector.data()); }),
                        AlongVector(vector)));
    }
}

TEST_F(SortPixelsTest, OrderedReversedAndEqualPixelsAreSortedInGoodTime) {
    const double vector[] = {0, 1, 0};
    for (const int form : {0, 1, 2, 3, 4}) {
        Points points;
        for (int i = 0; i < 8000; ++i) {
            const int value = form == 0   ? i
                              : form == 1 ? -i
                              : form == 2 ? 7
                              : form == 3 ? i % 3
                                          : std::min(i, 8000 - i);
            points.push_back({1.0 * value, 2.0 * value, 3.0 * value});
        }
        ExpectOrder(Sorted(points, 3, SortPixelsByValue), HigherValue);
        ExpectOrder(Sorted(points, 3, [](void *list) { return SortPixelsByPosition(list, 2, -1); }),
                    AlongDirection(2, -1));
        ExpectOrder(Sorted(points, 3, [&](void *list) { return SortPixelsEx(list, vector); }),
                    AlongVector({0, 1, 0}));
    }
}

TEST_F(SortPixelsTest, NothingIsLostWhateverTheComponentsAre) {
    for (const std::uint32_t number : CaseNumbers(200)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomComponents random(number);
        const std::int64_t dimension = random.Pick(3, 5);
        const std::int64_t oddShare = random.Pick(1, 10);
        Points points;
        for (std::int64_t count = random.Pick(0, 400); count > 0; --count) {
            Point point = random.WholePoint(dimension);
            for (double &component : point)
                if (random.Pick(0, 10) < oddShare)
                    component = random.Pick(0, 1) != 0 ? NaN : random.Any();
            points.push_back(point);
        }
        const Point vector = random.AnyPoint(dimension);
        Sorted(points, dimension, SortPixelsByValue);
        Sorted(points, dimension, [&](void *list) { return SortPixelsByPosition(list, 3, random.Pick(-9, 9)); });
        Sorted(points, dimension, [&](void *list) { return SortPixelsEx(list, vector.data()); });
        Point none(static_cast<std::size_t>(dimension), NaN);
        Sorted(points, dimension, [&](void *list) { return SortPixelsEx(list, none.data()); });
        if (testing::Test::HasFailure())
            return;
    }
}

TEST_F(SortPixelsTest, LongRunsOfWhatIsNoNumberStayInBounds) {
    for (const int form : {0, 1, 2, 3}) {
        Points points;
        for (int i = 0; i < 5000; ++i) {
            const bool odd =
                form == 0 || (form == 1 && i % 2 == 0) || (form == 2 && i < 2500) || (form == 3 && i > 20);
            points.push_back({odd ? NaN : i, odd ? Infinity : -i, odd ? NaN : 1.0 * (i * 7919 % 5000)});
        }
        Sorted(points, 3, SortPixelsByValue);
        Sorted(points, 3, [](void *list) { return SortPixelsByPosition(list, 1, 1); });
        const double vector[] = {0, Infinity, 1};
        Sorted(points, 3, [&](void *list) { return SortPixelsEx(list, vector); });
    }
}

TEST_F(SortPixelsTest, InfiniteValuesAreOrderedToo) {
    RandomComponents random(12);
    Points points;
    for (int i = 0; i < 500; ++i) {
        const std::int64_t kind = random.Pick(0, 3);
        points.push_back({0, 0, kind == 0 ? Infinity : kind == 1 ? -Infinity : random.Whole()});
    }
    ExpectOrder(Sorted(points, 3, SortPixelsByValue), HigherValue);
}

TEST_F(SortPixelsTest, ASortedListCanBeWorkedOn) {
    const Handle list = ListOf(3, {{1, 0, 5}, {2, 0, 9}, {3, 0, 7}});
    ASSERT_TRUE(SortPixelsByValue(list.Get()));
    const double fresh[] = {4, 4, 4};
    ASSERT_TRUE(ModifyListPixel(list.Get(), 0, fresh));
    ASSERT_TRUE(RemovePixel(list.Get(), 1));
    ASSERT_TRUE(AddPixel(list.Get(), fresh));
    EXPECT_TRUE(Holds(list.Get(), {{4, 4, 4}, {1, 0, 5}, {4, 4, 4}}));
}

TEST_F(SortPixelsTest, AListOfTwoDimensionsIsRefusedByValueAndByPosition) {
    const Points points = {{2, 1}, {1, 2}};
    const Handle list = ListOf(2, points), empty = ListOf(2);
    for (void *const handle : {list.Get(), empty.Get()}) {
        EXPECT_FALSE(SortPixelsByValue(handle));
        ExpectReports(1, ErrDimension, "SortPixelsByValue");
        // Required: component 2 is not looked at, and yet there has to be one.
        EXPECT_FALSE(SortPixelsByPosition(handle, 1, 0));
        ExpectReports(1, ErrDimension, "SortPixelsByPosition");
    }
    EXPECT_TRUE(Holds(list.Get(), points));
}

TEST_F(SortPixelsTest, TheHandleIsLookedAtFirst) {
    const Handle list = ListOf(3, {{3, 0, 1}, {1, 0, 2}});
    EXPECT_FALSE(SortPixelsEx(list.Get(), nullptr));
    ExpectReports(1, ErrParameter, "SortPixelsEx");
    EXPECT_TRUE(Holds(list.Get(), {{3, 0, 1}, {1, 0, 2}}));
    for (const auto &none : NoLists()) {
        EXPECT_FALSE(SortPixelsByValue(none.Get())) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "SortPixelsByValue");
        EXPECT_FALSE(SortPixelsByPosition(none.Get(), 0, 0)) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "SortPixelsByPosition");
        EXPECT_FALSE(SortPixelsEx(none.Get(), nullptr)) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "SortPixelsEx");
        none.ExpectLeftAlone();
    }
}

} // namespace

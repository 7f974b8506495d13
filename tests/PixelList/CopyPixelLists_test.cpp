/* Joining two lists in a new one, and copying a list into another or into a new one. */
#include "PixelList/NoLists.h"
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

using ConcatenatePixelListsTest = PixelListTest;
using CopyPixelListTest = PixelListTest;

Points RandomPoints(std::int64_t dimension, std::size_t count, std::uint32_t seed) {
    RandomComponents random(seed);
    Points points;
    while (points.size() < count)
        points.push_back(random.AnyPoint(dimension));
    return points;
}

/// The first components of each point.
Points Cut(Points points, std::size_t dimension) {
    for (auto &point : points)
        point.resize(dimension);
    return points;
}

TEST_F(ConcatenatePixelListsTest, HasThePixelsOfTheFirstThenOfTheSecond) {
    for (const std::int64_t dimension : {2, 3, 256})
        for (const auto &[inFirst, inSecond] : {std::pair{0u, 0u}, {3u, 0u}, {0u, 2u}, {1u, 1u}, {20u, 31u}}) {
            const Points first = RandomPoints(dimension, inFirst, 1), second = RandomPoints(dimension, inSecond, 2);
            const Handle one = ListOf(dimension, first), other = ListOf(dimension, second);
            const Handle joined(ConcatenatePixelLists(one.Get(), other.Get()));
            ASSERT_TRUE(joined);
            Points expected = first;
            expected.insert(expected.end(), second.begin(), second.end());
            EXPECT_TRUE(Holds(joined.Get(), expected));
            EXPECT_EQ(PixelListDimension(joined.Get()), dimension);
            EXPECT_TRUE(Holds(one.Get(), first));
            EXPECT_TRUE(Holds(other.Get(), second));
            ExpectNoReport();
        }
}

TEST_F(ConcatenatePixelListsTest, OfAListWithItselfHasItTwice) {
    const Handle list = ListOf(2, {{1, 2}, {3, 4}});
    const Handle joined(ConcatenatePixelLists(list.Get(), list.Get()));
    ASSERT_NE(joined.Get(), list.Get());
    EXPECT_TRUE(Holds(joined.Get(), {{1, 2}, {3, 4}, {1, 2}, {3, 4}}));
    EXPECT_TRUE(Holds(list.Get(), {{1, 2}, {3, 4}}));
}

TEST_F(ConcatenatePixelListsTest, IsIndependentOfItsInputs) {
    Handle first = ListOf(2, {{1, 2}}), second = ListOf(2, {{3, 4}});
    const Handle joined(ConcatenatePixelLists(first.Get(), second.Get()));
    const double fresh[] = {8, 9};
    ASSERT_TRUE(ModifyListPixel(first.Get(), 0, fresh));
    first.Reset();
    second.Reset();
    EXPECT_TRUE(Holds(joined.Get(), {{1, 2}, {3, 4}}));
}

TEST_F(ConcatenatePixelListsTest, RefusesUnequalDimensions) {
    const Handle flat = ListOf(2, {{1, 2}}), list = ListOf(3, {{1, 2, 3}}), empty = ListOf(4);
    for (const auto &[first, second] : {std::pair{&flat, &list}, {&list, &flat}, {&list, &empty}, {&empty, &flat}}) {
        EXPECT_EQ(ConcatenatePixelLists(first->Get(), second->Get()), nullptr);
        ExpectReports(1, ErrIndexRange, "ConcatenatePixelLists", DimensionsDiffer);
    }
    EXPECT_TRUE(Holds(flat.Get(), {{1, 2}}));
    EXPECT_TRUE(Holds(list.Get(), {{1, 2, 3}}));
    EXPECT_TRUE(Holds(empty.Get(), {}));
}

TEST_F(ConcatenatePixelListsTest, ReportsWhatIsNoListOnEitherSide) {
    const Handle list = ListOf(2, {{1, 2}});
    for (const auto &none : NoLists()) {
        EXPECT_EQ(ConcatenatePixelLists(none.Get(), list.Get()), nullptr) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "ConcatenatePixelLists");
        EXPECT_EQ(ConcatenatePixelLists(list.Get(), none.Get()), nullptr) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "ConcatenatePixelLists");
        EXPECT_EQ(ConcatenatePixelLists(none.Get(), none.Get()), nullptr) << none.Name;
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, ErrNotAPixelList);
        EXPECT_EQ(report->function, "ConcatenatePixelLists");
        ClearReports();
        none.ExpectLeftAlone();
    }
    EXPECT_TRUE(Holds(list.Get(), {{1, 2}}));
}

TEST_F(CopyPixelListTest, MakesANewListWhereThereIsNone) {
    for (const std::int64_t dimension : {2, 3, 256})
        for (const std::size_t count : {0u, 1u, 25u}) {
            const Points points = RandomPoints(dimension, count, 3);
            const Handle source = ListOf(dimension, points);
            void *made = nullptr;
            ASSERT_TRUE(CopyPixelList(source.Get(), &made));
            const Handle target(made);
            ASSERT_NE(target.Get(), source.Get());
            EXPECT_TRUE(Holds(target.Get(), points));
            EXPECT_EQ(PixelListDimension(target.Get()), dimension);
            EXPECT_TRUE(Holds(source.Get(), points));
            ExpectNoReport();
        }
}

TEST_F(CopyPixelListTest, OverwritesAnyOtherPointerWithoutReleasingIt) {
    const Handle source = ListOf(2, {{1, 2}, {3, 4}});
    for (const auto &none : NoLists()) {
        void *target = none.Get();
        ASSERT_TRUE(CopyPixelList(source.Get(), &target)) << none.Name;
        const Handle made(target);
        ASSERT_NE(target, none.Get());
        EXPECT_TRUE(Holds(made.Get(), {{1, 2}, {3, 4}}));
        none.ExpectLeftAlone();
    }
    ExpectNoReport();
}

TEST_F(CopyPixelListTest, ReplacesThePixelsOfAListOfTheSameDimension) {
    for (const std::size_t before : {0u, 1u, 40u})
        for (const std::size_t count : {0u, 1u, 17u}) {
            const Points points = RandomPoints(3, count, 4);
            const Handle source = ListOf(3, points), target = ListOf(3, RandomPoints(3, before, 5));
            void *pointer = target.Get();
            ASSERT_TRUE(CopyPixelList(source.Get(), &pointer));
            EXPECT_EQ(pointer, target.Get());
            EXPECT_TRUE(Holds(target.Get(), points));
            EXPECT_TRUE(Holds(source.Get(), points));
            ExpectNoReport();
        }
}

TEST_F(CopyPixelListTest, CutsPixelsToATargetOfLowerDimension) {
    const std::pair<std::int64_t, std::int64_t> dimensions[] = {{3, 2}, {256, 255}, {256, 2}, {7, 4}};
    for (const auto &[high, low] : dimensions) {
        const Points points = RandomPoints(high, 12, 6);
        const Handle source = ListOf(high, points), target = ListOf(low, RandomPoints(low, 3, 7));
        void *pointer = target.Get();
        ASSERT_TRUE(CopyPixelList(source.Get(), &pointer));
        EXPECT_EQ(pointer, target.Get());
        EXPECT_TRUE(Holds(target.Get(), Cut(points, static_cast<std::size_t>(low))));
        EXPECT_EQ(PixelListDimension(target.Get()), low);
        EXPECT_TRUE(Holds(source.Get(), points));
        ExpectNoReport();
    }
}

TEST_F(CopyPixelListTest, RefusesATargetOfHigherDimensionAndLeavesItAlone) {
    const std::pair<std::int64_t, std::int64_t> dimensions[] = {{2, 3}, {255, 256}, {2, 256}};
    for (const auto &[low, high] : dimensions)
        for (const std::size_t count : {0u, 4u}) {
            const Points kept = RandomPoints(high, count, 8), points = RandomPoints(low, count, 9);
            const Handle source = ListOf(low, points), target = ListOf(high, kept);
            void *pointer = target.Get();
            EXPECT_FALSE(CopyPixelList(source.Get(), &pointer));
            ExpectReports(1, ErrIndexRange, "CopyPixelList", DimensionsDiffer);
            EXPECT_EQ(pointer, target.Get());
            EXPECT_TRUE(Holds(target.Get(), kept));
            EXPECT_TRUE(Holds(source.Get(), points));
        }
}

TEST_F(CopyPixelListTest, OntoItselfGivesTrueAndChangesNothing) {
    for (const std::size_t count : {0u, 1u, 9u}) {
        const Points points = RandomPoints(3, count, 10);
        const Handle list = ListOf(3, points);
        void *pointer = list.Get();
        EXPECT_TRUE(CopyPixelList(list.Get(), &pointer));
        EXPECT_EQ(pointer, list.Get());
        EXPECT_TRUE(Holds(list.Get(), points));
        ExpectNoReport();
    }
}

TEST_F(CopyPixelListTest, IsIndependentOfItsSource) {
    Handle source = ListOf(2, {{1, 2}});
    Handle target = ListOf(2);
    void *pointer = target.Get();
    ASSERT_TRUE(CopyPixelList(source.Get(), &pointer));
    const double fresh[] = {8, 9};
    ASSERT_TRUE(ModifyListPixel(source.Get(), 0, fresh));
    EXPECT_TRUE(Holds(target.Get(), {{1, 2}}));
    source.Reset();
    EXPECT_TRUE(Holds(target.Get(), {{1, 2}}));
}

TEST_F(CopyPixelListTest, ReportsASourceThatIsNoListAndLeavesTheTargetAlone) {
    const Handle target = ListOf(3, {{1, 2, 3}});
    for (const auto &none : NoLists()) {
        for (void *const held : {target.Get(), static_cast<void *>(nullptr), none.Get()}) {
            void *pointer = held;
            EXPECT_FALSE(CopyPixelList(none.Get(), &pointer)) << none.Name;
            ExpectReports(1, ErrNotAPixelList, "CopyPixelList");
            EXPECT_EQ(pointer, held);
        }
        EXPECT_FALSE(CopyPixelList(none.Get(), nullptr)) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "CopyPixelList");
        none.ExpectLeftAlone();
    }
    EXPECT_TRUE(Holds(target.Get(), {{1, 2, 3}}));
}

TEST_F(CopyPixelListTest, ReportsANullPointerToTheTarget) {
    const Handle source = ListOf(2, {{1, 2}});
    EXPECT_FALSE(CopyPixelList(source.Get(), nullptr));
    ExpectReports(1, ErrParameter, "CopyPixelList");
    EXPECT_TRUE(Holds(source.Get(), {{1, 2}}));
}

} // namespace

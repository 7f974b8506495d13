/* Cutting a list to a number of pixels, and to none. */
#include "PixelList/NoLists.h"
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

using RemoveAllPixelsTest = PixelListTest;
using TruncatePixelListTest = PixelListTest;

constexpr char NotEnoughPixels[] = "Not enough pixels in pixel list";

TEST_F(RemoveAllPixelsTest, EmptiesAList) {
    const Handle list = ListOf(3, {{1, 2, 3}, {4, 5, 6}});
    EXPECT_TRUE(RemoveAllPixels(list.Get()));
    EXPECT_TRUE(Holds(list.Get(), {}));
    EXPECT_EQ(PixelListDimension(list.Get()), 3);
    const double point[] = {7, 8, 9};
    ASSERT_TRUE(AddPixel(list.Get(), point));
    EXPECT_TRUE(Holds(list.Get(), {{7, 8, 9}}));
    ExpectNoReport();
}

TEST_F(RemoveAllPixelsTest, OfAnEmptyListGivesFalseAndReportsNothing) {
    const Handle list = ListOf(2);
    EXPECT_FALSE(RemoveAllPixels(list.Get()));
    ExpectNoReport();
    const double point[] = {1, 2};
    ASSERT_TRUE(AddPixel(list.Get(), point));
    EXPECT_TRUE(RemoveAllPixels(list.Get()));
    EXPECT_FALSE(RemoveAllPixels(list.Get()));
    ExpectNoReport();
    EXPECT_TRUE(Holds(list.Get(), {}));
}

TEST_F(RemoveAllPixelsTest, ReportsWhatIsNoList) {
    for (const auto &none : NoLists()) {
        EXPECT_FALSE(RemoveAllPixels(none.Get())) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "RemoveAllPixels");
        none.ExpectLeftAlone();
    }
}

TEST_F(TruncatePixelListTest, KeepsTheFirstPixels) {
    const Points points = {{0, 1}, {2, 3}, {4, 5}, {6, 7}, {8, 9}};
    for (std::size_t count = 0; count <= points.size(); ++count) {
        const Handle list = ListOf(2, points);
        EXPECT_TRUE(TruncatePixelList(list.Get(), static_cast<std::int64_t>(count)));
        EXPECT_TRUE(Holds(list.Get(), Points(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(count))));
        ExpectNoReport();
    }
}

TEST_F(TruncatePixelListTest, ToNoneGivesTrueForAnEmptyListToo) {
    const Handle list = ListOf(2);
    EXPECT_TRUE(TruncatePixelList(list.Get(), 0));
    EXPECT_TRUE(Holds(list.Get(), {}));
    ExpectNoReport();
}

TEST_F(TruncatePixelListTest, ToMoreThanThereAreGivesTrueAndLeavesTheCodeThree) {
    const Handle list = ListOf(2, {{1, 2}, {3, 4}}), empty = ListOf(2);
    for (const std::int64_t count : {std::int64_t{3}, std::int64_t{4}, HighestWord}) {
        EXPECT_TRUE(TruncatePixelList(list.Get(), count));
        ExpectReports(1, 3, "TruncatePixelList", NotEnoughPixels);
        EXPECT_TRUE(Holds(list.Get(), {{1, 2}, {3, 4}}));
    }
    EXPECT_TRUE(TruncatePixelList(empty.Get(), 1));
    ExpectReports(1, 3, "TruncatePixelList", NotEnoughPixels);
    EXPECT_TRUE(Holds(empty.Get(), {}));
}

TEST_F(TruncatePixelListTest, RefusesANegativeCount) {
    const Handle list = ListOf(2, {{1, 2}, {3, 4}}), empty = ListOf(2);
    for (const std::int64_t count : {std::int64_t{-1}, std::int64_t{-2}, LowestWord})
        for (void *const handle : {list.Get(), empty.Get()}) {
            EXPECT_FALSE(TruncatePixelList(handle, count));
            ExpectReports(1, ErrElementIndex, "TruncatePixelList", NegativeIndex);
        }
    EXPECT_TRUE(Holds(list.Get(), {{1, 2}, {3, 4}}));
}

TEST_F(TruncatePixelListTest, LooksAtTheHandleBeforeTheCount) {
    for (const auto &none : NoLists())
        for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1}, HighestWord}) {
            EXPECT_FALSE(TruncatePixelList(none.Get(), count)) << none.Name;
            ExpectReports(1, ErrNotAPixelList, "TruncatePixelList");
            none.ExpectLeftAlone();
        }
}

TEST_F(TruncatePixelListTest, CutsALongListOfManyComponents) {
    RandomComponents random(5);
    Points points;
    for (int i = 0; i < 300; ++i)
        points.push_back(random.AnyPoint(256));
    const Handle list = ListOf(256, points);
    for (const std::size_t count : {299u, 128u, 127u, 1u}) {
        EXPECT_TRUE(TruncatePixelList(list.Get(), static_cast<std::int64_t>(count)));
        points.resize(count);
        EXPECT_TRUE(Holds(list.Get(), points));
    }
}

} // namespace

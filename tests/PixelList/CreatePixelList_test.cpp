/* Making a list: its dimension, its single reference, and pixels put in as copies of exactly as many components. */
#include "PixelList/NoLists.h"
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

using CreatePixelListTest = PixelListTest;
using AddPixelTest = PixelListTest;

TEST_F(CreatePixelListTest, GivesAnEmptyListWithOneReference) {
    for (const std::int64_t dimension : {2, 3, 4, 255, 256}) {
        const Handle list(CreatePixelList(dimension));
        ASSERT_TRUE(list);
        EXPECT_TRUE(IsPixels(list.Get()));
        EXPECT_EQ(PixelListDimension(list.Get()), dimension);
        EXPECT_EQ(PixelListCount(list.Get()), 0);
        EXPECT_EQ(RefCount(list.Get()), 1u);
        ExpectNoReport();
    }
}

TEST_F(CreatePixelListTest, GivesANewListEachTime) {
    const Handle first = ListOf(3, {{1, 2, 3}});
    const Handle second = ListOf(3);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_TRUE(Holds(first.Get(), {{1, 2, 3}}));
    EXPECT_TRUE(Holds(second.Get(), {}));
}

TEST_F(CreatePixelListTest, RefusesADimensionBelowTwo) {
    for (const std::int64_t dimension : {std::int64_t{1}, std::int64_t{0}, std::int64_t{-1}, LowestWord}) {
        EXPECT_EQ(CreatePixelList(dimension), nullptr) << dimension;
        ExpectReports(1, ErrParameter, "CreatePixelList", "Dimension too low");
    }
}

TEST_F(CreatePixelListTest, RefusesADimensionAbove256) {
    for (const std::int64_t dimension : {std::int64_t{257}, std::int64_t{258}, std::int64_t{1} << 32, HighestWord}) {
        EXPECT_EQ(CreatePixelList(dimension), nullptr) << dimension;
        ExpectReports(1, ErrParameter, "CreatePixelList", "Dimension too high");
    }
}

TEST_F(AddPixelTest, AppendsAtTheEnd) {
    const Handle list = ListOf(2);
    Points expected;
    for (int i = 0; i < 100; ++i) {
        expected.push_back({i + 0.5, -i - 0.25});
        ASSERT_TRUE(AddPixel(list.Get(), expected.back().data()));
        ASSERT_EQ(PixelListCount(list.Get()), i + 1);
    }
    EXPECT_TRUE(Holds(list.Get(), expected));
    ExpectNoReport();
}

TEST_F(AddPixelTest, TakesACopy) {
    const Handle list = ListOf(3);
    Point point = {1, 2, 3};
    ASSERT_TRUE(AddPixel(list.Get(), point.data()));
    point = {7, 8, 9};
    EXPECT_TRUE(Holds(list.Get(), {{1, 2, 3}}));
}

TEST_F(AddPixelTest, TheSamePixelCanStandInAListManyTimes) {
    const Handle list = ListOf(2, {{1, 1}, {1, 1}, {1, 1}});
    EXPECT_TRUE(Holds(list.Get(), {{1, 1}, {1, 1}, {1, 1}}));
}

TEST_F(AddPixelTest, KeepsEveryBitOfAnyNumber) {
    const Points odd = {{NaN, Infinity}, {-Infinity, -0.0}, {0.0, Tiny}, {Huge, -Huge}, {1.0 / 3.0, -Tiny}};
    const Handle list = ListOf(2, odd);
    EXPECT_TRUE(Holds(list.Get(), odd));
    const auto payload = std::bit_cast<double>(std::uint64_t{0xFFF8000000012345u});
    const double components[] = {payload, 0.0};
    double out[2] = {};
    ASSERT_TRUE(AddPixel(list.Get(), components));
    ASSERT_TRUE(ListPixelEx(list.Get(), 5, out));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(out[0]), 0xFFF8000000012345u);
}

TEST_F(AddPixelTest, ReadsExactlyAsManyComponentsAsTheListHasDimensions) {
    for (const std::int64_t dimension : {2, 3, 256}) {
        const std::size_t bytes = static_cast<std::size_t>(dimension) * sizeof(double);
        for (const auto where : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const FencedBlock block(bytes, where);
            const Point point = RandomComponents(static_cast<std::uint32_t>(dimension)).AnyPoint(dimension);
            std::memcpy(block.Data(), point.data(), bytes);
            const Handle list = ListOf(dimension);
            ASSERT_TRUE(AddPixel(list.Get(), reinterpret_cast<const double *>(block.Data())));
            EXPECT_TRUE(Holds(list.Get(), {point}));
        }
    }
}

TEST_F(AddPixelTest, ReportsNullComponents) {
    const Handle list = ListOf(3, {{1, 2, 3}});
    EXPECT_FALSE(AddPixel(list.Get(), nullptr));
    ExpectReports(1, ErrParameter, "AddPixel");
    EXPECT_TRUE(Holds(list.Get(), {{1, 2, 3}}));
}

TEST_F(AddPixelTest, LooksAtTheHandleBeforeTheComponents) {
    for (const auto &none : NoLists()) {
        EXPECT_FALSE(AddPixel(none.Get(), nullptr)) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "AddPixel");
        none.ExpectLeftAlone();
    }
}

TEST_F(AddPixelTest, TakesManyPixels) {
    const Handle list = ListOf(3);
    for (int i = 0; i < 50000; ++i) {
        const double point[] = {1.0 * i, 2.0 * i, 3.0 * i};
        ASSERT_TRUE(AddPixel(list.Get(), point));
    }
    ASSERT_EQ(PixelListCount(list.Get()), 50000);
    for (const std::int64_t i : {0, 1, 4095, 4096, 31337, 49999}) {
        double point[3] = {};
        ASSERT_TRUE(ListPixelEx(list.Get(), i, point));
        const auto number = static_cast<double>(i);
        EXPECT_EQ((Point{point[0], point[1], point[2]}), (Point{number, 2 * number, 3 * number}));
    }
}

} // namespace

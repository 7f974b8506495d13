/* Reading, overwriting and removing single pixels: what comes out, the order of the checks, and the codes that differ
 * between readers and the writer. */
#include "PixelList/NoLists.h"
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

using ListPixelExTest = PixelListTest;
using ListPixelTest = PixelListTest;
using ModifyListPixelTest = PixelListTest;
using RemovePixelTest = PixelListTest;

constexpr double Untouched = -123.5;

TEST_F(ListPixelExTest, GivesAllComponentsOfEachPixel) {
    for (const std::int64_t dimension : {2, 3, 7, 256}) {
        RandomComponents random(static_cast<std::uint32_t>(dimension));
        Points points;
        for (int i = 0; i < 20; ++i)
            points.push_back(random.AnyPoint(dimension));
        const Handle list = ListOf(dimension, points);
        for (std::size_t i = 0; i < points.size(); ++i) {
            Point out(static_cast<std::size_t>(dimension) + 1, Untouched);
            ASSERT_TRUE(ListPixelEx(list.Get(), static_cast<std::int64_t>(i), out.data()));
            EXPECT_EQ(out.back(), Untouched) << "no component behind the last one";
            out.pop_back();
            EXPECT_EQ(BitsOfPoint(out), BitsOfPoint(points[i]));
        }
        EXPECT_EQ(RefCount(list.Get()), 1u);
        ExpectNoReport();
    }
}

TEST_F(ListPixelExTest, WritesExactlyAsManyComponentsAsTheListHasDimensions) {
    for (const std::int64_t dimension : {2, 3, 256})
        for (const auto where : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const std::size_t bytes = static_cast<std::size_t>(dimension) * sizeof(double);
            const FencedBlock block(bytes, where);
            const Point point = RandomComponents(static_cast<std::uint32_t>(dimension)).AnyPoint(dimension);
            const Handle list = ListOf(dimension, {point});
            ASSERT_TRUE(ListPixelEx(list.Get(), 0, reinterpret_cast<double *>(block.Data())));
            EXPECT_EQ(std::memcmp(block.Data(), point.data(), bytes), 0);
        }
}

TEST_F(ListPixelExTest, RefusesAnIndexThatIsNegativeOrTooHigh) {
    const Handle list = ListOf(3, {{1, 2, 3}, {4, 5, 6}});
    double out[3] = {Untouched, Untouched, Untouched};
    for (const std::int64_t index : {std::int64_t{-1}, LowestWord}) {
        EXPECT_FALSE(ListPixelEx(list.Get(), index, out));
        ExpectReports(1, ErrElementIndex, "ListPixelEx", NegativeIndex);
    }
    for (const std::int64_t index : {std::int64_t{2}, std::int64_t{3}, HighestWord}) {
        EXPECT_FALSE(ListPixelEx(list.Get(), index, out));
        ExpectReports(1, ErrElementIndex, "ListPixelEx", IndexTooHigh);
    }
    EXPECT_EQ((Point{out[0], out[1], out[2]}), (Point{Untouched, Untouched, Untouched}));
    EXPECT_EQ(RefCount(list.Get()), 1u);
    EXPECT_FALSE(ListPixelEx(ListOf(2).Get(), 0, out)) << "an empty list has no pixel 0";
    ExpectReports(1, ErrElementIndex, "ListPixelEx", IndexTooHigh);
}

TEST_F(ListPixelExTest, LooksAtTheIndexBeforeTheHandle) {
    for (const auto &none : NoLists()) {
        double out[2] = {Untouched, Untouched};
        EXPECT_FALSE(ListPixelEx(none.Get(), -1, out)) << none.Name;
        ExpectReports(1, ErrElementIndex, "ListPixelEx", NegativeIndex);
        for (const std::int64_t index : {std::int64_t{0}, std::int64_t{1}, HighestWord}) {
            EXPECT_FALSE(ListPixelEx(none.Get(), index, out)) << none.Name;
            // The report of PixelListCount came first; this one lies over it.
            ExpectReports(2, ErrElementIndex, "ListPixelEx", IndexTooHigh);
        }
        EXPECT_EQ((Point{out[0], out[1]}), (Point{Untouched, Untouched}));
        none.ExpectLeftAlone();
    }
}

TEST_F(ListPixelExTest, ReportsANullOutputLast) {
    const Handle list = ListOf(2, {{1, 2}});
    EXPECT_FALSE(ListPixelEx(list.Get(), 0, nullptr));
    ExpectReports(1, ErrParameter, "ListPixelEx");
    EXPECT_FALSE(ListPixelEx(list.Get(), -1, nullptr));
    ExpectReports(1, ErrElementIndex, "ListPixelEx", NegativeIndex);
    EXPECT_FALSE(ListPixelEx(list.Get(), 1, nullptr));
    ExpectReports(1, ErrElementIndex, "ListPixelEx", IndexTooHigh);
    EXPECT_FALSE(ListPixelEx(nullptr, 0, nullptr));
    ExpectReports(2, ErrElementIndex, "ListPixelEx", IndexTooHigh);
    EXPECT_TRUE(Holds(list.Get(), {{1, 2}}));
}

struct Rounded {
    std::int64_t X = -77, Y = -78, Value = -79;
    friend bool operator==(const Rounded &, const Rounded &) = default;
};
void PrintTo(const Rounded &rounded, std::ostream *out) {
    *out << rounded.X << ", " << rounded.Y << ", " << rounded.Value;
}

TEST_F(ListPixelTest, RoundsHalvesUp) {
    const Handle list = ListOf(3, {{2.5, -2.5, 0.5}, {-0.5, 2.4999, -2.5001}, {-0.0, -3.0, 7.0}});
    Rounded out;
    ASSERT_TRUE(ListPixel(list.Get(), 0, &out.X, &out.Y, &out.Value));
    EXPECT_EQ(out, (Rounded{3, -2, 1}));
    ASSERT_TRUE(ListPixel(list.Get(), 1, &out.X, &out.Y, &out.Value));
    EXPECT_EQ(out, (Rounded{0, 2, -3}));
    ASSERT_TRUE(ListPixel(list.Get(), 2, &out.X, &out.Y, &out.Value));
    EXPECT_EQ(out, (Rounded{0, -3, 7}));
    EXPECT_EQ(RefCount(list.Get()), 1u);
    ExpectNoReport();
}

TEST_F(ListPixelTest, AddsTheHalfInDoubles) {
    // Required: the largest number below a half becomes 1, and an odd number of 53 bits the next even one.
    const Handle list = ListOf(3, {{0.49999999999999994, 4503599627370497.0, -4503599627370497.0}});
    Rounded out;
    ASSERT_TRUE(ListPixel(list.Get(), 0, &out.X, &out.Y, &out.Value));
    EXPECT_EQ(out, (Rounded{1, 4503599627370498, -4503599627370497 + 1}));
}

TEST_F(ListPixelTest, GivesTheLowestIntegerForWhatDoesNotFit) {
    const Handle list = ListOf(3, {{NaN, Infinity, -Infinity},
                                   {9223372036854775808.0, 1e300, -1e300},
                                   {-9223372036854775808.0, 9223372036854774784.0, -9223372036854777856.0}});
    Rounded out;
    for (const std::int64_t index : {0, 1}) {
        ASSERT_TRUE(ListPixel(list.Get(), index, &out.X, &out.Y, &out.Value));
        EXPECT_EQ(out, (Rounded{LowestWord, LowestWord, LowestWord}));
    }
    ASSERT_TRUE(ListPixel(list.Get(), 2, &out.X, &out.Y, &out.Value));
    EXPECT_EQ(out, (Rounded{LowestWord, 9223372036854774784, LowestWord}));
    ExpectNoReport();
}

TEST_F(ListPixelTest, GivesTheFirstThreeOfManyComponents) {
    for (const std::int64_t dimension : {4, 256}) {
        Point point(static_cast<std::size_t>(dimension), 99.0);
        point[0] = 1.0, point[1] = 2.0, point[2] = 3.0;
        const Handle list = ListOf(dimension, {Point(point.size(), 5.0), point});
        Rounded out;
        ASSERT_TRUE(ListPixel(list.Get(), 1, &out.X, &out.Y, &out.Value));
        EXPECT_EQ(out, (Rounded{1, 2, 3}));
    }
}

TEST_F(ListPixelTest, RefusesAnIndexBeforeAListOfTwoDimensions) {
    const Handle flat = ListOf(2, {{1, 2}}), list = ListOf(3, {{1, 2, 3}});
    Rounded out;
    const auto read = [&](void *handle, std::int64_t index) {
        return ListPixel(handle, index, &out.X, &out.Y, &out.Value);
    };
    for (void *const handle : {flat.Get(), list.Get()}) {
        EXPECT_FALSE(read(handle, -1));
        ExpectReports(1, ErrElementIndex, "ListPixel", NegativeIndex);
        EXPECT_FALSE(read(handle, LowestWord));
        ExpectReports(1, ErrElementIndex, "ListPixel", NegativeIndex);
        EXPECT_FALSE(read(handle, 1));
        ExpectReports(1, ErrElementIndex, "ListPixel", IndexTooHigh);
        EXPECT_FALSE(read(handle, HighestWord));
        ExpectReports(1, ErrElementIndex, "ListPixel", IndexTooHigh);
    }
    EXPECT_FALSE(read(flat.Get(), 0));
    ExpectReports(1, ErrDimension, "ListPixel");
    EXPECT_EQ(out, Rounded{});
    EXPECT_TRUE(Holds(flat.Get(), {{1, 2}}));
    EXPECT_EQ(RefCount(list.Get()), 1u);
}

TEST_F(ListPixelTest, LooksAtTheIndexBeforeTheHandle) {
    for (const auto &none : NoLists()) {
        Rounded out;
        EXPECT_FALSE(ListPixel(none.Get(), -5, &out.X, &out.Y, &out.Value)) << none.Name;
        ExpectReports(1, ErrElementIndex, "ListPixel", NegativeIndex);
        EXPECT_FALSE(ListPixel(none.Get(), 0, &out.X, &out.Y, &out.Value)) << none.Name;
        ExpectReports(2, ErrElementIndex, "ListPixel", IndexTooHigh);
        EXPECT_EQ(out, Rounded{});
        none.ExpectLeftAlone();
    }
}

TEST_F(ListPixelTest, ReportsANullOutputLast) {
    const Handle flat = ListOf(2, {{1, 2}}), list = ListOf(3, {{1, 2, 3}});
    Rounded out;
    EXPECT_FALSE(ListPixel(list.Get(), 0, nullptr, &out.Y, &out.Value));
    ExpectReports(1, ErrParameter, "ListPixel");
    EXPECT_FALSE(ListPixel(list.Get(), 0, &out.X, nullptr, &out.Value));
    ExpectReports(1, ErrParameter, "ListPixel");
    EXPECT_FALSE(ListPixel(list.Get(), 0, &out.X, &out.Y, nullptr));
    ExpectReports(1, ErrParameter, "ListPixel");
    EXPECT_FALSE(ListPixel(flat.Get(), 0, nullptr, nullptr, nullptr));
    ExpectReports(1, ErrDimension, "ListPixel");
    EXPECT_FALSE(ListPixel(list.Get(), 1, nullptr, nullptr, nullptr));
    ExpectReports(1, ErrElementIndex, "ListPixel", IndexTooHigh);
    EXPECT_EQ(out, Rounded{});
}

TEST_F(ModifyListPixelTest, OverwritesOnePixel) {
    for (const std::int64_t dimension : {2, 3, 256}) {
        RandomComponents random(static_cast<std::uint32_t>(dimension));
        Points points = {random.AnyPoint(dimension), random.AnyPoint(dimension), random.AnyPoint(dimension)};
        const Handle list = ListOf(dimension, points);
        for (const std::int64_t index : {1, 0, 2, 2}) {
            Point fresh = random.AnyPoint(dimension);
            points[static_cast<std::size_t>(index)] = fresh;
            ASSERT_TRUE(ModifyListPixel(list.Get(), index, fresh.data()));
            fresh.assign(fresh.size(), 3.0);
            EXPECT_TRUE(Holds(list.Get(), points));
        }
        ExpectNoReport();
    }
}

TEST_F(ModifyListPixelTest, ReadsExactlyAsManyComponentsAsTheListHasDimensions) {
    for (const std::int64_t dimension : {2, 256})
        for (const auto where : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const std::size_t bytes = static_cast<std::size_t>(dimension) * sizeof(double);
            const FencedBlock block(bytes, where);
            const Point point = RandomComponents(9).AnyPoint(dimension);
            std::memcpy(block.Data(), point.data(), bytes);
            const Handle list = ListOf(dimension, {Point(point.size(), 1.0)});
            ASSERT_TRUE(ModifyListPixel(list.Get(), 0, reinterpret_cast<const double *>(block.Data())));
            EXPECT_TRUE(Holds(list.Get(), {point}));
        }
}

TEST_F(ModifyListPixelTest, ReportsAnIndexThatIsTooHighUnderAnotherCodeThanTheReaders) {
    const Handle list = ListOf(2, {{1, 2}});
    const double fresh[] = {8, 9};
    for (const std::int64_t index : {std::int64_t{1}, std::int64_t{2}, HighestWord}) {
        EXPECT_FALSE(ModifyListPixel(list.Get(), index, fresh));
        ExpectReports(1, ErrIndexRange, "ModifyListPixel", IndexTooHigh);
    }
    for (const std::int64_t index : {std::int64_t{-1}, LowestWord}) {
        EXPECT_FALSE(ModifyListPixel(list.Get(), index, fresh));
        ExpectReports(1, ErrElementIndex, "ModifyListPixel", NegativeIndex);
    }
    EXPECT_TRUE(Holds(list.Get(), {{1, 2}}));
}

TEST_F(ModifyListPixelTest, LooksAtTheComponentsThenAtTheIndexThenAtTheHandle) {
    const Handle list = ListOf(2, {{1, 2}});
    for (const std::int64_t index : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1}, HighestWord})
        for (void *const handle : {list.Get(), static_cast<void *>(nullptr)}) {
            EXPECT_FALSE(ModifyListPixel(handle, index, nullptr));
            ExpectReports(1, ErrDimension, "ModifyListPixel");
        }
    const double fresh[] = {8, 9};
    for (const auto &none : NoLists()) {
        EXPECT_FALSE(ModifyListPixel(none.Get(), -1, fresh)) << none.Name;
        ExpectReports(1, ErrElementIndex, "ModifyListPixel", NegativeIndex);
        EXPECT_FALSE(ModifyListPixel(none.Get(), 0, fresh)) << none.Name;
        ExpectReports(2, ErrIndexRange, "ModifyListPixel", IndexTooHigh);
        none.ExpectLeftAlone();
    }
    EXPECT_TRUE(Holds(list.Get(), {{1, 2}}));
}

TEST_F(RemovePixelTest, ClosesTheGap) {
    const Handle list = ListOf(2, {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}});
    ASSERT_TRUE(RemovePixel(list.Get(), 1));
    EXPECT_TRUE(Holds(list.Get(), {{0, 0}, {2, 2}, {3, 3}, {4, 4}}));
    ASSERT_TRUE(RemovePixel(list.Get(), 0));
    EXPECT_TRUE(Holds(list.Get(), {{2, 2}, {3, 3}, {4, 4}}));
    ASSERT_TRUE(RemovePixel(list.Get(), 2));
    EXPECT_TRUE(Holds(list.Get(), {{2, 2}, {3, 3}}));
    ASSERT_TRUE(RemovePixel(list.Get(), 0));
    ASSERT_TRUE(RemovePixel(list.Get(), 0));
    EXPECT_TRUE(Holds(list.Get(), {}));
    ExpectNoReport();
    const double point[] = {5, 6};
    ASSERT_TRUE(AddPixel(list.Get(), point));
    EXPECT_TRUE(Holds(list.Get(), {{5, 6}}));
}

TEST_F(RemovePixelTest, RefusesAnIndexThatIsNegativeOrTooHigh) {
    const Handle list = ListOf(2, {{1, 2}, {3, 4}}), empty = ListOf(2);
    for (void *const handle : {list.Get(), empty.Get()}) {
        for (const std::int64_t index : {std::int64_t{-1}, LowestWord}) {
            EXPECT_FALSE(RemovePixel(handle, index));
            ExpectReports(1, ErrElementIndex, "RemovePixel", NegativeIndex);
        }
        for (const std::int64_t index : {PixelListCount(handle), std::int64_t{3}, HighestWord}) {
            EXPECT_FALSE(RemovePixel(handle, index));
            ExpectReports(1, ErrElementIndex, "RemovePixel", IndexTooHigh);
        }
    }
    EXPECT_TRUE(Holds(list.Get(), {{1, 2}, {3, 4}}));
}

TEST_F(RemovePixelTest, LooksAtTheHandleBeforeTheIndex) {
    for (const auto &none : NoLists())
        for (const std::int64_t index : {std::int64_t{0}, std::int64_t{-1}, HighestWord}) {
            EXPECT_FALSE(RemovePixel(none.Get(), index)) << none.Name;
            ExpectReports(1, ErrNotAPixelList, "RemovePixel");
            none.ExpectLeftAlone();
        }
}

} // namespace

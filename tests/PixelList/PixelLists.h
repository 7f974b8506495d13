/* Lists as the tests see them: points as vectors, put in and read back through the exported functions, compared bit
 * by bit, and the reports that a call leaves. Handles that are no lists stand in NoLists.h. */
#ifndef ORV_TESTS_PIXEL_LISTS_H
#define ORV_TESTS_PIXEL_LISTS_H

#include "PixelList/Pixel.h"
#include "Support/ImageAccess.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

namespace TestSupport {

using Point = std::vector<double>;
using Points = std::vector<Point>;

inline constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double Infinity = std::numeric_limits<double>::infinity();
inline constexpr double Huge = std::numeric_limits<double>::max();
inline constexpr double Tiny = std::numeric_limits<double>::denorm_min();
inline constexpr std::int64_t LowestWord = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t HighestWord = std::numeric_limits<std::int64_t>::max();

inline constexpr char NegativeIndex[] = "Negative indices are not allowed";
inline constexpr char IndexTooHigh[] = "Index too high or object invalid";
inline constexpr char DimensionsDiffer[] = "Pixel list dimensions do not match";

/// The word of a number; all numbers that are none share one.
inline std::uint64_t BitsOf(double number) {
    return std::bit_cast<std::uint64_t>(std::isnan(number) ? NaN : number);
}
inline std::vector<std::uint64_t> BitsOfPoint(const Point &point) {
    std::vector<std::uint64_t> words;
    for (const double component : point)
        words.push_back(BitsOf(component));
    return words;
}

/// All points of a list. A read that fails fails the test.
inline Points PointsOf(void *list) {
    const auto dimension = static_cast<std::size_t>(PixelListDimension(list));
    Points points(static_cast<std::size_t>(std::max<std::int64_t>(PixelListCount(list), 0)), Point(dimension, -7.25));
    for (std::size_t i = 0; i < points.size(); ++i)
        EXPECT_TRUE(ListPixelEx(list, static_cast<std::int64_t>(i), points[i].data())) << "pixel " << i;
    return points;
}

/// A new list of some points.
inline Handle ListOf(std::int64_t dimension, const Points &points = {}) {
    Handle list(CreatePixelList(dimension));
    EXPECT_TRUE(list) << "dimension " << dimension;
    for (const auto &point : points)
        EXPECT_TRUE(point.size() == static_cast<std::size_t>(dimension) && AddPixel(list.Get(), point.data()));
    return list;
}

/// Whether two series of points are the same bit by bit.
inline testing::AssertionResult SamePoints(const Points &points, const Points &expected) {
    if (points.size() != expected.size())
        return testing::AssertionFailure() << points.size() << " pixels where there should be " << expected.size();
    for (std::size_t i = 0; i < points.size(); ++i)
        if (BitsOfPoint(points[i]) != BitsOfPoint(expected[i]))
            return testing::AssertionFailure() << "pixel " << i << " is " << testing::PrintToString(points[i])
                                               << " and should be " << testing::PrintToString(expected[i]);
    return testing::AssertionSuccess();
}

/// Whether a list has exactly these points, bit by bit, and one reference.
inline testing::AssertionResult Holds(void *list, const Points &expected) {
    if (RefCount(list) != 1)
        return testing::AssertionFailure() << RefCount(list) << " references";
    return SamePoints(PointsOf(list), expected);
}

/// The same points in an order of their own: equal for two series that differ in their order only.
inline std::vector<std::vector<std::uint64_t>> SortedBits(const Points &points) {
    std::vector<std::vector<std::uint64_t>> words;
    for (const auto &point : points)
        words.push_back(BitsOfPoint(point));
    std::sort(words.begin(), words.end());
    return words;
}

/// Expects a number of reports since ClearReports, the last of them with a code, a reporter and a text; no text
/// stands for the composed one. Clears them.
inline void ExpectReports(std::intptr_t count, std::uint32_t code, const std::string &function,
                          const std::string &text = {}) {
    EXPECT_EQ(ReportCount(), count);
    const auto report = TakeReport();
    ClearReports();
    ASSERT_TRUE(report.has_value()) << "no report of " << function;
    EXPECT_EQ(report->code, code);
    EXPECT_EQ(report->function, function);
    EXPECT_EQ(report->text, text.empty() ? ComposedText(code) : text);
}

/// Every test of a pixel list starts and ends without reports.
class PixelListTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }
};

/// Random numbers of all kinds for components: small whole ones, halves, large ones, no numbers and infinite ones.
class RandomComponents {
public:
    explicit RandomComponents(std::uint32_t seed) : random(seed) {}
    std::int64_t Pick(std::int64_t low, std::int64_t high) {
        return low + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(high - low + 1));
    }
    double Whole() { return static_cast<double>(Pick(-40, 40)); }
    double Any() {
        static constexpr double Odd[] = {NaN, Infinity, -Infinity, Huge, -Huge, Tiny, -Tiny, -0.0, 1e300, -9.3e18};
        const std::int64_t kind = Pick(0, 9);
        if (kind == 0)
            return Odd[static_cast<std::size_t>(Pick(0, 9))];
        return kind < 5 ? Whole() : Whole() / 8.0 + 1e-3 * Whole();
    }
    Point AnyPoint(std::int64_t dimension) {
        Point point(static_cast<std::size_t>(dimension));
        for (double &component : point)
            component = Any();
        return point;
    }
    Point WholePoint(std::int64_t dimension) {
        Point point(static_cast<std::size_t>(dimension));
        for (double &component : point)
            component = Whole();
        return point;
    }
    std::mt19937_64 &Engine() { return random; }

private:
    std::mt19937_64 random;
};

/// The numbers of random cases: 1 to count, or the one that ORV_TEST_CASE names.
inline std::vector<std::uint32_t> CaseNumbers(std::uint32_t count) {
    if (const char *const single = std::getenv("ORV_TEST_CASE"))
        return {static_cast<std::uint32_t>(std::stoul(single))};
    std::vector<std::uint32_t> numbers(count);
    for (std::uint32_t i = 0; i < count; ++i)
        numbers[i] = i + 1;
    return numbers;
}

} // namespace TestSupport

#endif

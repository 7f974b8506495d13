#include "TruncateTo.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using orvBase::TruncateTo;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double Huge = 1e300;
constexpr auto Lowest32 = std::numeric_limits<std::int32_t>::min();
constexpr auto Lowest64 = std::numeric_limits<std::int64_t>::min();
constexpr auto TopBit = std::uint64_t{1} << 63;

static_assert(TruncateTo<std::int32_t>(-1.5) == -1, "usable in constant expressions");
static_assert(TruncateTo<std::uint64_t>(9223372036854775808.0) == TopBit);

TEST(TruncateTo, GoesTowardZero) {
    EXPECT_EQ(TruncateTo<std::int32_t>(2.9), 2);
    EXPECT_EQ(TruncateTo<std::int32_t>(-2.9), -2);
    EXPECT_EQ(TruncateTo<std::int32_t>(-0.9), 0);
    EXPECT_EQ(TruncateTo<std::int64_t>(4294967296.75), 4294967296);
    EXPECT_EQ(TruncateTo<std::int64_t>(-4294967296.75), -4294967296);
    EXPECT_EQ(TruncateTo<std::uint64_t>(0.99), 0u);
}

TEST(TruncateTo, KeepsTheWholeRangeOf32Bits) {
    EXPECT_EQ(TruncateTo<std::int32_t>(2147483647.999), 2147483647);
    EXPECT_EQ(TruncateTo<std::int32_t>(-2147483648.0), Lowest32);
    EXPECT_EQ(TruncateTo<std::int32_t>(-2147483648.999), Lowest32);
}

TEST(TruncateTo, GivesTheLowestOf32BitsOutOfRange) {
    for (const double value : {2147483648.0, -2147483649.0, Huge, -Huge, Infinity, -Infinity, NotANumber})
        EXPECT_EQ(TruncateTo<std::int32_t>(value), Lowest32) << value;
}

TEST(TruncateTo, KeepsTheWholeRangeOf64Bits) {
    EXPECT_EQ(TruncateTo<std::int64_t>(9223372036854774784.0), 9223372036854774784);
    EXPECT_EQ(TruncateTo<std::int64_t>(-9223372036854774784.0), -9223372036854774784);
    EXPECT_EQ(TruncateTo<std::int64_t>(-9223372036854775808.0), Lowest64);
}

TEST(TruncateTo, GivesTheLowestOf64BitsOutOfRange) {
    for (const double value : {9223372036854775808.0, -9223372036854777856.0, Huge, -Huge, Infinity, NotANumber})
        EXPECT_EQ(TruncateTo<std::int64_t>(value), Lowest64) << value;
}

TEST(TruncateTo, NarrowsThrough32BitsWithoutSaturation) {
    EXPECT_EQ(TruncateTo<std::uint8_t>(300.7), 44);
    EXPECT_EQ(TruncateTo<std::uint8_t>(-1.0), 255);
    EXPECT_EQ(TruncateTo<std::int8_t>(200.0), -56);
    EXPECT_EQ(TruncateTo<char>(128.0), static_cast<char>(-128));
    EXPECT_EQ(TruncateTo<std::int16_t>(65535.0), -1);
    EXPECT_EQ(TruncateTo<std::uint16_t>(-65537.0), 65535);
    EXPECT_EQ(TruncateTo<std::uint16_t>(65536.0 * 3 + 7), 7);
}

TEST(TruncateTo, NarrowsTheLowestOf32BitsToZero) {
    for (const double value : {4294967297.0, Huge, Infinity, NotANumber}) {
        EXPECT_EQ(TruncateTo<std::uint8_t>(value), 0) << value;
        EXPECT_EQ(TruncateTo<std::int8_t>(value), 0) << value;
        EXPECT_EQ(TruncateTo<std::uint16_t>(value), 0) << value;
        EXPECT_EQ(TruncateTo<std::int16_t>(value), 0) << value;
    }
}

TEST(TruncateTo, NarrowsUnsigned32BitsThrough64) {
    EXPECT_EQ(TruncateTo<std::uint32_t>(4294967295.5), 4294967295u);
    EXPECT_EQ(TruncateTo<std::uint32_t>(4294967297.0), 1u);
    EXPECT_EQ(TruncateTo<std::uint32_t>(-1.0), 4294967295u);
    EXPECT_EQ(TruncateTo<std::uint32_t>(Huge), 0u);
    EXPECT_EQ(TruncateTo<std::uint32_t>(NotANumber), 0u);
}

TEST(TruncateTo, SplitsUnsigned64BitsAtTwoTo63) {
    EXPECT_EQ(TruncateTo<std::uint64_t>(-1.0), ~std::uint64_t{0});
    EXPECT_EQ(TruncateTo<std::uint64_t>(9223372036854774784.0), 9223372036854774784u);
    EXPECT_EQ(TruncateTo<std::uint64_t>(9223372036854775808.0), TopBit);
    EXPECT_EQ(TruncateTo<std::uint64_t>(9223372036854777856.0), TopBit + 2048);
    EXPECT_EQ(TruncateTo<std::uint64_t>(18446744073709549568.0), 18446744073709549568u);
}

TEST(TruncateTo, GivesTheTopBitForUnsigned64BitsOutOfRange) {
    for (const double value : {18446744073709551616.0, Huge, -Huge, Infinity, -Infinity, NotANumber})
        EXPECT_EQ(TruncateTo<std::uint64_t>(value), TopBit) << value;
}

TEST(TruncateTo, AgreesWithAPlainCastInRange) {
    for (double value = -40000.0; value < 40000.0; value += 17.3) {
        EXPECT_EQ(TruncateTo<std::int32_t>(value), static_cast<std::int32_t>(value));
        EXPECT_EQ(TruncateTo<std::int64_t>(value), static_cast<std::int64_t>(value));
    }
}

} // namespace

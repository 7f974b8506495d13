#include "CheckedSize.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using orvBase::CheckedProduct;
using orvBase::CheckedSum;

constexpr auto LargestSize = std::numeric_limits<std::size_t>::max();
constexpr auto Largest = std::numeric_limits<std::int64_t>::max();
constexpr auto Lowest = std::numeric_limits<std::int64_t>::min();

TEST(CheckedProduct, MultipliesAnyNumberOfWords) {
    std::int64_t product = 0;
    ASSERT_TRUE(CheckedProduct(product, std::int64_t{7}));
    EXPECT_EQ(product, 7);
    ASSERT_TRUE(CheckedProduct(product, std::int64_t{-7}, std::int64_t{6}, std::int64_t{5}));
    EXPECT_EQ(product, -210);
    std::size_t size = 0;
    ASSERT_TRUE(CheckedProduct(size, std::size_t{1} << 32, (std::size_t{1} << 32) - 1));
    EXPECT_EQ(size, LargestSize - 0xFFFFFFFFu);
}

TEST(CheckedProduct, ReachesTheLimitsOfTheWord) {
    std::int64_t product = 0;
    ASSERT_TRUE(CheckedProduct(product, Lowest / 2, std::int64_t{2}));
    EXPECT_EQ(product, Lowest);
    ASSERT_TRUE(CheckedProduct(product, Largest, std::int64_t{1}));
    EXPECT_EQ(product, Largest);
}

TEST(CheckedProduct, RefusesAnOverflowAndKeepsTheResult) {
    std::int64_t product = 5;
    EXPECT_FALSE(CheckedProduct(product, Largest, std::int64_t{2}));
    EXPECT_FALSE(CheckedProduct(product, Lowest, std::int64_t{-1}));
    EXPECT_EQ(product, 5);
    std::size_t size = 6;
    EXPECT_FALSE(CheckedProduct(size, std::size_t{1} << 32, std::size_t{1} << 32));
    EXPECT_EQ(size, 6u);
}

TEST(CheckedProduct, RefusesAnOverflowOnTheWay) {
    std::int64_t product = 5;
    EXPECT_FALSE(CheckedProduct(product, Lowest, std::int64_t{-1}, std::int64_t{-1}));
    EXPECT_EQ(product, 5);
}

TEST(CheckedProduct, IsZeroWithAZeroFactorWhereverItStands) {
    std::size_t size = 5;
    ASSERT_TRUE(CheckedProduct(size, LargestSize, LargestSize, std::size_t{0}));
    EXPECT_EQ(size, 0u);
    size = 5;
    ASSERT_TRUE(CheckedProduct(size, std::size_t{0}, LargestSize, LargestSize));
    EXPECT_EQ(size, 0u);
}

TEST(CheckedSum, AddsAnyNumberOfWords) {
    std::int64_t sum = 0;
    ASSERT_TRUE(CheckedSum(sum, std::int64_t{7}));
    EXPECT_EQ(sum, 7);
    ASSERT_TRUE(CheckedSum(sum, Largest, std::int64_t{-7}, Lowest));
    EXPECT_EQ(sum, -8);
    std::size_t size = 0;
    ASSERT_TRUE(CheckedSum(size, LargestSize - 3, std::size_t{1}, std::size_t{2}));
    EXPECT_EQ(size, LargestSize);
}

TEST(CheckedSum, RefusesAnOverflowAndKeepsTheResult) {
    std::int64_t sum = 5;
    EXPECT_FALSE(CheckedSum(sum, Largest, std::int64_t{1}));
    EXPECT_FALSE(CheckedSum(sum, Lowest, std::int64_t{-1}));
    EXPECT_FALSE(CheckedSum(sum, Largest, std::int64_t{1}, std::int64_t{-1})) << "on the way";
    EXPECT_EQ(sum, 5);
    std::size_t size = 6;
    EXPECT_FALSE(CheckedSum(size, LargestSize, std::size_t{1}));
    EXPECT_EQ(size, 6u);
}

TEST(CheckedSum, MayAddToItsOwnOperand) {
    std::size_t size = 40;
    ASSERT_TRUE(CheckedSum(size, size, size));
    EXPECT_EQ(size, 80u);
}

} // namespace

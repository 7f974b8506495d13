// The one limiter.
#include "Scan/Limiter.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using Scan::LimitTo;

TEST(Limiter, GivesTheLimitThatAValueLiesBeyond) {
    EXPECT_EQ(LimitTo(-3, 1, 1000), 1);
    EXPECT_EQ(LimitTo(0, 1, 1000), 1);
    EXPECT_EQ(LimitTo(1001, 1, 1000), 1000);
    EXPECT_EQ(LimitTo(-1.5, -1.0, 1.0), -1.0);
    EXPECT_EQ(LimitTo(std::numeric_limits<double>::infinity(), -1.0, 1.0), 1.0);
    EXPECT_EQ(LimitTo(std::numeric_limits<std::int64_t>::max(), 1, 1000), 1000);
}

TEST(Limiter, KeepsAValueWithinTheLimitsAndOnThem) {
    EXPECT_EQ(LimitTo(1, 1, 1000), 1);
    EXPECT_EQ(LimitTo(500, 1, 1000), 500);
    EXPECT_EQ(LimitTo(1000, 1, 1000), 1000);
    EXPECT_EQ(LimitTo(0.25, -1.0, 1.0), 0.25);
}

TEST(Limiter, TakesEqualLimits) {
    EXPECT_EQ(LimitTo(-7, 4, 4), 4);
    EXPECT_EQ(LimitTo(4, 4, 4), 4);
    EXPECT_EQ(LimitTo(9, 4, 4), 4);
}

TEST(Limiter, KeepsWhatIsNoNumber) {
    EXPECT_TRUE(std::isnan(LimitTo(std::numeric_limits<double>::quiet_NaN(), 0.0, 255.0)));
}

TEST(Limiter, ThrowsForCrossedLimitsWhateverTheValue) {
    for (const int value : {-1, 0, 2, 3, 9})
        try {
            LimitTo(value, 3, 2);
            FAIL() << "crossed limits were taken for " << value;
        } catch (const std::logic_error &error) {
            EXPECT_EQ(std::string(error.what()), "Lower limit higher than upper limit!");
        }
}

} // namespace

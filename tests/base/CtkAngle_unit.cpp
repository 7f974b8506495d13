#include "CtkAngle.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <numbers>

#include "CtkHRESULTException.h"

namespace {

constexpr double Pi = std::numbers::pi;

/// Tables for the length of a test.
class WithTables {
public:
    explicit WithTables(double step) { CtkAngle::SetTableStep(step); }
    ~WithTables() { CtkAngle::SetTableStep(CtkAngle::NoTables); }
};

template <class Body>
void ExpectDivisionByZero(Body &&body) {
    try {
        body();
        ADD_FAILURE() << "nothing thrown";
    } catch (const tkMath::CtkMathException &exception) {
        EXPECT_EQ(static_cast<std::int16_t>(exception.GetNumber()), 5);
    }
}

TEST(CtkAngle, HoldsRadiansInTheInterval) {
    EXPECT_EQ(CtkAngle().GetRadians(), 0.0);
    EXPECT_EQ(CtkAngle(1.25).GetRadians(), 1.25);
    EXPECT_EQ(CtkAngle(-3.0).GetRadians(), -3.0);
    EXPECT_EQ(CtkAngle(4.0).GetRadians(), 4.0 - 2.0 * Pi);
    EXPECT_EQ(CtkAngle(-4.0).GetRadians(), -4.0 + 2.0 * Pi);
}

TEST(CtkAngle, Of3PiHoldsPi) {
    EXPECT_EQ(CtkAngle(3.0 * Pi).GetRadians(), Pi);
    EXPECT_EQ(CtkAngle(Pi).GetRadians(), Pi);
}

TEST(CtkAngle, OfMinusPiHoldsPi) {
    EXPECT_EQ(CtkAngle(-Pi).GetRadians(), Pi);
    EXPECT_EQ(CtkAngle(std::nextafter(-Pi, 0.0)).GetRadians(), std::nextafter(-Pi, 0.0));
}

TEST(CtkAngle, TakesTurnsOffOneByOne) {
    double expected = 1000.0;
    while (expected > Pi)
        expected -= 2.0 * Pi;
    EXPECT_EQ(CtkAngle(1000.0).GetRadians(), expected);
}

TEST(CtkAngle, BringsEvenHugeValuesIntoTheInterval) {
    for (const double radians : {1e7, -1e7, 1e18, -1e300}) {
        const double held = CtkAngle(radians).GetRadians();
        EXPECT_GT(held, -Pi);
        EXPECT_LE(held, Pi);
        EXPECT_NEAR(std::remainder(radians, 2.0 * Pi), held, 1e-9);
    }
}

TEST(CtkAngle, KeepsWhatIsNotFinite) {
    EXPECT_TRUE(std::isnan(CtkAngle(std::numeric_limits<double>::quiet_NaN()).GetRadians()));
    EXPECT_TRUE(std::isinf(CtkAngle(std::numeric_limits<double>::infinity()).GetRadians()));
}

TEST(CtkAngle, ArithmeticStaysInTheInterval) {
    const CtkAngle two(2.0);
    EXPECT_EQ((two + two).GetRadians(), 4.0 - 2.0 * Pi);
    EXPECT_EQ((-two - two).GetRadians(), -4.0 + 2.0 * Pi);
    EXPECT_EQ((two * 2.0).GetRadians(), 4.0 - 2.0 * Pi);
    EXPECT_EQ((two / 0.5).GetRadians(), 4.0 - 2.0 * Pi);
    EXPECT_EQ((-CtkAngle(Pi)).GetRadians(), Pi);
}

TEST(CtkAngle, TheAssigningFormsDoTheSame) {
    CtkAngle angle(2.0);
    angle += CtkAngle(2.0);
    EXPECT_EQ(angle.GetRadians(), 4.0 - 2.0 * Pi);
    angle = CtkAngle(-2.0);
    angle -= CtkAngle(2.0);
    EXPECT_EQ(angle.GetRadians(), -4.0 + 2.0 * Pi);
    angle = CtkAngle(2.0);
    angle *= 2.0;
    EXPECT_EQ(angle.GetRadians(), 4.0 - 2.0 * Pi);
    angle = CtkAngle(2.0);
    angle /= 0.5;
    EXPECT_EQ(angle.GetRadians(), 4.0 - 2.0 * Pi);
}

TEST(CtkAngle, DivisionByZeroThrowsNumber5) {
    CtkAngle angle(1.0);
    ExpectDivisionByZero([&] { static_cast<void>(angle / 0.0); });
    ExpectDivisionByZero([&] { angle /= -0.0; });
    EXPECT_EQ(angle.GetRadians(), 1.0);
}

TEST(CtkAngle, IsEqualBelowTheTolerance) {
    EXPECT_TRUE(CtkAngle(1.0) == CtkAngle(1.0 + 9e-12));
    EXPECT_FALSE(CtkAngle(1.0) == CtkAngle(1.0 + 1.2e-11));
    EXPECT_TRUE(CtkAngle(1.0) != CtkAngle(1.0 + 1.2e-11));
    EXPECT_FALSE(CtkAngle(1.0) != CtkAngle(1.0));
}

TEST(CtkAngle, IsEqualAcrossTheWrap) {
    const CtkAngle below(-Pi + 4e-12);
    const CtkAngle above(Pi - 4e-12);
    EXPECT_LT(below.GetRadians(), 0.0);
    EXPECT_TRUE(below == above);
    EXPECT_TRUE(above == below);
    EXPECT_FALSE(CtkAngle(-Pi + 1e-11) == CtkAngle(Pi - 1e-11));
}

TEST(CtkAngle, ComputesFunctionsDirectlyByDefault) {
    EXPECT_EQ(CtkAngle::GetTableStep(), -1.0);
    const CtkAngle angle(0.7);
    EXPECT_EQ(sin(angle), std::sin(0.7));
    EXPECT_EQ(cos(angle), std::cos(0.7));
    EXPECT_EQ(tan(angle), std::tan(0.7));
    EXPECT_EQ(sinh(angle), std::sinh(0.7));
    EXPECT_EQ(cosh(angle), std::cosh(0.7));
    EXPECT_EQ(tanh(angle), std::tanh(0.7));
}

TEST(CtkAngle, ReadsTheNearestPlaceOfTheTables) {
    const double step = 0.01;
    const WithTables tables(step);
    EXPECT_EQ(CtkAngle::GetTableStep(), step);
    for (const double radians : {-3.1, -1.0, -0.004, 0.0, 0.7, 2.9}) {
        const auto index = static_cast<int>((radians + Pi) / step + 0.5);
        const double place = -Pi + index * step;
        EXPECT_EQ(sin(CtkAngle(radians)), std::sin(place));
        EXPECT_EQ(cos(CtkAngle(radians)), std::cos(place));
        EXPECT_EQ(tan(CtkAngle(radians)), std::tan(place));
    }
    EXPECT_EQ(sinh(CtkAngle(0.7)), std::sinh(0.7)); // never from a table
}

TEST(CtkAngle, ThePlaceBehindTheTablesIsTheFirst) {
    const WithTables tables(Pi / 4.0);
    EXPECT_EQ(cos(CtkAngle(Pi)), std::cos(-Pi));
    EXPECT_EQ(sin(CtkAngle(Pi)), std::sin(-Pi));
    EXPECT_EQ(cos(CtkAngle(Pi - 0.9)), std::cos(-Pi + 7 * (Pi / 4.0)));
}

TEST(CtkAngle, TablesOfOnePlaceServeEveryAngle) {
    const WithTables tables(100.0);
    EXPECT_EQ(cos(CtkAngle(0.0)), std::cos(-Pi));
    EXPECT_EQ(cos(CtkAngle(Pi)), std::cos(-Pi));
}

TEST(CtkAngle, AnAngleThatIsNotFiniteReadsNoTable) {
    const WithTables tables(0.01);
    EXPECT_TRUE(std::isnan(sin(CtkAngle(std::numeric_limits<double>::quiet_NaN()))));
}

TEST(CtkAngle, AStepThatIsNotAFiniteNumberAboveZeroComputes) {
    const WithTables tables(0.01);
    for (const double step :
         {0.0, -5.0, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        CtkAngle::SetTableStep(step);
        EXPECT_EQ(CtkAngle::GetTableStep(), -1.0);
        EXPECT_EQ(sin(CtkAngle(0.7)), std::sin(0.7));
    }
}

TEST(CtkAngle, AStepTooSmallForTablesThrowsAndKeepsTheFormer) {
    const WithTables tables(0.01);
    EXPECT_THROW(CtkAngle::SetTableStep(1e-300), std::bad_alloc);
    EXPECT_EQ(CtkAngle::GetTableStep(), 0.01);
}

} // namespace

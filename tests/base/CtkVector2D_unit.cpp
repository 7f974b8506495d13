#include "CtkVector2D.h"

#include <gtest/gtest.h>

#include "CtkHRESULTException.h"
#include "VirtualSlot.h"

namespace {

using tkMath::CtkMathException;

template <class Body>
void ExpectMathException(std::int16_t number, Body &&body) {
    try {
        body();
        ADD_FAILURE() << "nothing thrown";
    } catch (const CtkMathException &exception) {
        EXPECT_EQ(static_cast<std::int16_t>(exception.GetNumber()), number);
        EXPECT_EQ(exception.GetSubFacility() & 0xFF, 1);
        EXPECT_EQ(exception.GetFacility(), 1);
    }
}

TEST(CtkVector2D, IsAnObjectOfClass13) {
    const CtkVector2D vector;
    EXPECT_EQ(vector.GetClassId(), 13u);
    EXPECT_TRUE(vector.IsMemberOf(13));
    EXPECT_TRUE(vector.IsMemberOf(1));
    EXPECT_EQ(vector.X, 0.0);
    EXPECT_EQ(vector.Y, 0.0);
    const CtkVector2D copy(vector);
    EXPECT_TRUE(copy.IsMemberOf(13));
}

TEST(CtkVector2D, AddsSubtractsAndTurnsAround) {
    const CtkVector2D a(1, 2);
    const CtkVector2D b(10, 20);
    EXPECT_EQ(a + b, CtkVector2D(11, 22));
    EXPECT_EQ(b - a, CtkVector2D(9, 18));
    EXPECT_EQ(-a, CtkVector2D(-1, -2));
    CtkVector2D sum(a);
    sum += b;
    EXPECT_EQ(sum, CtkVector2D(11, 22));
    sum -= a;
    EXPECT_EQ(sum, b);
}

TEST(CtkVector2D, MultipliesAndDivides) {
    const CtkVector2D a(3, -4);
    EXPECT_EQ(a * 2.0, CtkVector2D(6, -8));
    EXPECT_EQ(a / 2.0, CtkVector2D(1.5, -2));
    EXPECT_EQ(a * CtkVector2D(10, 1), 26.0);
    CtkVector2D scaled(a);
    scaled *= 2.0;
    EXPECT_EQ(scaled, CtkVector2D(6, -8));
    scaled /= 4.0;
    EXPECT_EQ(scaled, CtkVector2D(1.5, -2));
}

TEST(CtkVector2D, ComparesBothComponents) {
    EXPECT_TRUE(CtkVector2D(1, 2) == CtkVector2D(1, 2));
    EXPECT_TRUE(CtkVector2D(1, 2) != CtkVector2D(1, 3));
    EXPECT_TRUE(CtkVector2D(1, 2) != CtkVector2D(0, 2));
    EXPECT_FALSE(CtkVector2D(1, 2) != CtkVector2D(1, 2));
}

TEST(CtkVector2D, DivisionByZeroThrowsNumber5) {
    CtkVector2D vector(1, 2);
    ExpectMathException(5, [&] { static_cast<void>(vector / 0.0); });
    ExpectMathException(5, [&] { static_cast<void>(vector / -0.0); });
    ExpectMathException(5, [&] { vector /= 0.0; });
    EXPECT_EQ(vector, CtkVector2D(1, 2));
}

TEST(CtkVector2D, NormalisesToLength1) {
    CtkVector2D vector(3, -4);
    EXPECT_EQ(vector.GetLength(), 5.0);
    vector.Normalize();
    EXPECT_DOUBLE_EQ(vector.X, 0.6);
    EXPECT_DOUBLE_EQ(vector.Y, -0.8);
    CtkVector2D large(3e200, 4e200);
    EXPECT_DOUBLE_EQ(large.GetLength(), 5e200);
}

TEST(CtkVector2D, NormalisingAVectorOfLengthZeroThrowsNumber7) {
    CtkVector2D vector(0.0, -0.0);
    ExpectMathException(7, [&] { vector.Normalize(); });
    EXPECT_EQ(vector, CtkVector2D());
}

TEST(CtkVector2D, HasItsOperatorsBehindTheSixSlots) {
    using Sum = CtkVector2D (CtkVector2D::*)(const CtkVector2D &) const;
    EXPECT_EQ(TestSupport::SlotOf(static_cast<Sum>(&CtkVector2D::operator+)), 6u);
}

} // namespace

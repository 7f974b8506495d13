#include "CtkHRESULT.h"

#include <gtest/gtest.h>

namespace {

std::uint32_t Compose(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility, std::uint32_t severity,
                      bool failure) {
    return static_cast<std::uint32_t>(CtkHRESULT(number, subFacility, facility, severity, failure).GetWord());
}

TEST(CtkHRESULT, PutsEachPartIntoItsBits) {
    EXPECT_EQ(Compose(0x5A5, 0, 0, 0, false), 0x000005A5u);
    EXPECT_EQ(Compose(0, 0xA5, 0, 0, false), 0x000A5000u);
    EXPECT_EQ(Compose(0, 0, 0x15, 0, false), 0x01500000u);
    EXPECT_EQ(Compose(0, 0, 0, 0x2A, false), 0x54000000u);
    EXPECT_EQ(Compose(0, 0, 0, 0, true), 0x80000000u);
    EXPECT_EQ(Compose(2, 5, 1, 0, true), 0x80105002u);
}

TEST(CtkHRESULT, CutsSubFacilityAndFacilityToEightBits) {
    EXPECT_EQ(Compose(0, 0x1FF, 0, 0, false), 0x000FF000u);
    EXPECT_EQ(Compose(0, 0, 0x101, 0, false), 0x00100000u);
    EXPECT_EQ(Compose(0, 0, 0xFF, 0, false), 0x0FF00000u); // reaches into the severity
}

TEST(CtkHRESULT, ANumberWithBit15SetOverwritesAllUpperFields) {
    EXPECT_EQ(Compose(-32768, 1, 1, 1, false), 0xFFFF9000u); // only the low half of the sub-facility shows
    EXPECT_EQ(Compose(-1, 0, 0, 0, false), 0xFFFFFFFFu);
}

TEST(CtkHRESULT, GivesThePartsBack) {
    const CtkHRESULT code(0x123, 0x45, 0x16, 0x2A, true);
    EXPECT_EQ(static_cast<std::uint32_t>(code.GetWord()), 0xD5645123u);
    EXPECT_EQ(static_cast<std::uint32_t>(code.GetNumber()), 0xD5640123u);
    EXPECT_EQ(static_cast<std::int16_t>(code.GetNumber()), 0x123);
    EXPECT_EQ(code.GetSubFacility() & 0xFF, 0x45);
    EXPECT_EQ(static_cast<std::uint32_t>(code.GetSubFacility()), 0xFFFD5645u); // shifted with its sign
    EXPECT_EQ(code.GetFacility(), 0x16);
    EXPECT_EQ(code.GetSeverity(), 0x2A);
}

TEST(CtkHRESULT, TellsFailureSuccessAndPositive) {
    const CtkHRESULT failure(0x80000001u);
    EXPECT_TRUE(failure.IsFailure());
    EXPECT_FALSE(failure.IsSuccess());
    EXPECT_FALSE(failure.IsPositive());
    const CtkHRESULT zero(0u);
    EXPECT_FALSE(zero.IsFailure());
    EXPECT_TRUE(zero.IsSuccess());
    EXPECT_FALSE(zero.IsPositive());
    const CtkHRESULT positive(1u);
    EXPECT_TRUE(positive.IsSuccess());
    EXPECT_TRUE(positive.IsPositive());
}

TEST(ErrorKey, IsNumberSubFacilityAndFacility) {
    EXPECT_EQ(ErrorKey(0xFFFFFFFFu), 0x1FFFFFFu);
    EXPECT_EQ(ErrorKey(0x80101001u), 0x00101001u);
    EXPECT_EQ(MakeErrorKey(1, 1, 1), 0x00101001u);
    EXPECT_EQ(MakeErrorKey(0xFFF, 0xFF, 0x1F), 0x1FFFFFFu);
}

TEST(ErrorKey, NeverHasSeverityOrFailureBit) {
    EXPECT_EQ(MakeErrorKey(-1, 0, 0), 0x1FFFFFFu);
    EXPECT_EQ(MakeErrorKey(0, 0, 0xFF), 0x1F00000u);
}

} // namespace

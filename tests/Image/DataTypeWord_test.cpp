// The functions of the data type word alone: bits, bytes, flags, value range; and the planes of a colour model.
#include "ImageQueries.h"
#include "Support/ImageAccess.h"

#include <limits>

namespace {

using namespace TestSupport;

TEST(BitsPerPixel, IsTheLowByteOfTheWord) {
    EXPECT_EQ(BitsPerPixel(0), 0);
    EXPECT_EQ(BitsPerPixel(0x408), 8);
    EXPECT_EQ(BitsPerPixel(0x2FF), 255);
    EXPECT_EQ(BitsPerPixel(0xFFFFFFFFu), 255);
    EXPECT_EQ(BitsPerPixel(0x100), 0);
}

TEST(BytesPerPixel, RoundsTheBitsUp) {
    for (std::uint32_t bits = 1; bits <= 255; ++bits) {
        EXPECT_EQ(BytesPerPixel(bits), (static_cast<std::intptr_t>(bits) + 7) / 8);
        EXPECT_EQ(BytesPerPixel(bits | 0xF00), BytesPerPixel(bits));
    }
    EXPECT_EQ(BytesPerPixel(0x100), 0);
    EXPECT_EQ(BytesPerPixel(0x7FFFFF40), 8);
}

TEST(BytesPerPixel, IsZeroForAWordBelowOne) {
    for (const TDataType type : {0u, 0x80000000u, 0x80000008u, 0xFFFFFFFFu})
        EXPECT_EQ(BytesPerPixel(type), 0) << type;
}

TEST(IsSignedDatatype, LooksAtBitEight) {
    EXPECT_TRUE(IsSignedDatatype(0x108));
    EXPECT_TRUE(IsSignedDatatype(0xFFFFFFFFu));
    EXPECT_FALSE(IsSignedDatatype(0x6FF));
    EXPECT_FALSE(IsSignedDatatype(0xFFFFFEFFu));
}

TEST(IsFloatDatatype, LooksAtBitNine) {
    EXPECT_TRUE(IsFloatDatatype(0x220));
    EXPECT_TRUE(IsFloatDatatype(0xFFFFFFFFu));
    EXPECT_FALSE(IsFloatDatatype(0x5FF));
    EXPECT_FALSE(IsFloatDatatype(0xFFFFFDFFu));
}

TEST(GetDatatypeMinMaxVal, TellsTheRangeOfIntegersOfOneToThirtyTwoBits) {
    for (std::uint32_t bits = 1; bits <= 32; ++bits) {
        const std::int64_t count = std::int64_t{1} << bits;
        std::int64_t low = 77, high = 77;
        EXPECT_TRUE(GetDatatypeMinMaxVal(bits, &low, &high));
        EXPECT_EQ(low, 0);
        EXPECT_EQ(high, count - 1);
        EXPECT_TRUE(GetDatatypeMinMaxVal(bits | 0x100, &low, &high));
        EXPECT_EQ(low, -(count / 2)) << bits;
        EXPECT_EQ(high, count / 2 - 1) << bits;
    }
}

TEST(GetDatatypeMinMaxVal, TakesNoNoticeOfOtherFlags) {
    std::int64_t low = 77, high = 77;
    EXPECT_TRUE(GetDatatypeMinMaxVal(0xC08, &low, &high));
    EXPECT_EQ(low, 0);
    EXPECT_EQ(high, 255);
    EXPECT_TRUE(GetDatatypeMinMaxVal(0x80000108u, &low, &high));
    EXPECT_EQ(low, -128);
    EXPECT_EQ(high, 127);
}

TEST(GetDatatypeMinMaxVal, RefusesFloatNoBitsAndMoreThanThirtyTwoAndWritesNothing) {
    for (const TDataType type : {0x0u, 0x100u, 0x220u, 0x240u, 0x208u, 0x21u, 0x40u, 0x140u, 0xFFu}) {
        std::int64_t low = 77, high = 78;
        EXPECT_FALSE(GetDatatypeMinMaxVal(type, &low, &high)) << type;
        EXPECT_EQ(low, 77);
        EXPECT_EQ(high, 78);
    }
}

TEST(NumPlanesNeededPerImage, KnowsTheModelsFromMinusTwoToEleven) {
    for (std::int32_t model = -2; model <= 11; ++model)
        EXPECT_EQ(NumPlanesNeededPerImage(model), model >= -1 && model <= 1 ? 1 : 3) << model;
    for (const std::int32_t model :
         {-3, 12, 100, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()})
        EXPECT_EQ(NumPlanesNeededPerImage(model), -1) << model;
}

TEST(DataTypeWord, IsNeverReportedAbout) {
    ClearReports();
    std::int64_t low = 0, high = 0;
    GetDatatypeMinMaxVal(0, &low, &high);
    NumPlanesNeededPerImage(99);
    BytesPerPixel(DataTypeNone);
    ExpectNoReport();
}

} // namespace

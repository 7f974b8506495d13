// Single pixels: GetPixVal with its sign extension, SetPixVal, and PixVal with its codes, texts and guard band.
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

#include <limits>

namespace {

using namespace TestSupport;

constexpr std::intptr_t Highest = std::numeric_limits<std::intptr_t>::max();
constexpr std::intptr_t Lowest = std::numeric_limits<std::intptr_t>::min();

/// One pixel of a type that holds the low bytes of stored, read into a word that was start before.
std::uint64_t ReadPixel(TDataType type, std::uint64_t stored, std::uint64_t start = 0) {
    const auto image = FakeImage::Planar(1, 1, 1, type);
    std::memcpy(image->Pixels.data(), &stored, PixelSize(type));
    EXPECT_TRUE(GetPixVal(image->Handle(), 0, 0, 0, &start));
    EXPECT_EQ(image->Count(), 1);
    return start;
}

TEST(GetPixVal, ReadsUnsignedValuesOfEveryWidthAsTheyAre) {
    constexpr std::uint64_t stored = 0xF1E2D3C4B5A69788u;
    for (std::uint32_t bits = 1; bits <= 64; ++bits) {
        const std::size_t bytes = PixelSize(bits);
        const std::uint64_t mask = bytes == 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * bytes)) - 1;
        EXPECT_EQ(ReadPixel(bits, stored), stored & mask) << bits;
        EXPECT_EQ(ReadPixel(bits | DataTypeFloat, stored), stored & mask) << bits;
    }
}

TEST(GetPixVal, OverwritesOnlyTheBytesOfThePixel) {
    EXPECT_EQ(ReadPixel(0x8, 0x12, 0x1111111111111111u), 0x1111111111111112u);
    EXPECT_EQ(ReadPixel(0x10, 0x2345, 0x1111111111111111u), 0x1111111111112345u);
    EXPECT_EQ(ReadPixel(0x20, 0x23456789, 0x1111111111111111u), 0x1111111123456789u);
    EXPECT_EQ(ReadPixel(0x40, 5, 0x1111111111111111u), 5u);
}

TEST(GetPixVal, ExtendsTheSignOfOneTwoAndThreeBytes) {
    EXPECT_EQ(ReadPixel(0x108, 0x7F), 0x7Fu);
    EXPECT_EQ(ReadPixel(0x108, 0x80), 0xFFFFFFFFFFFFFF80u);
    EXPECT_EQ(ReadPixel(0x108, 0xFF), 0xFFFFFFFFFFFFFFFFu);
    EXPECT_EQ(ReadPixel(0x110, 0x7FFF), 0x7FFFu);
    EXPECT_EQ(ReadPixel(0x110, 0x8001), 0xFFFFFFFFFFFF8001u);
    EXPECT_EQ(ReadPixel(0x118, 0x7FFFFF), 0x7FFFFFu);
    EXPECT_EQ(ReadPixel(0x118, 0x812345), 0xFFFFFFFFFF812345u);
}

TEST(GetPixVal, TestsTheTopBitOfTheStoredBytesAndNotOfTheBits) {
    EXPECT_EQ(ReadPixel(0x105, 0x1F), 0x1Fu);
    EXPECT_EQ(ReadPixel(0x105, 0x90), 0xFFFFFFFFFFFFFF90u);
    EXPECT_EQ(ReadPixel(0x10C, 0x0FFF), 0x0FFFu);
    EXPECT_EQ(ReadPixel(0x10C, 0x8FFF), 0xFFFFFFFFFFFF8FFFu);
}

// A 32-bit shift by 32 is a shift by 0 here, so that the extension covers the value as well.
TEST(GetPixVal, ReadsANegativeThirtyTwoBitValueAsMinusOne) {
    EXPECT_EQ(ReadPixel(0x120, 0x7FFFFFFF), 0x7FFFFFFFu);
    EXPECT_EQ(ReadPixel(0x120, 0x80000000), ~std::uint64_t{0});
    EXPECT_EQ(ReadPixel(0x120, 0xFFFFFFFE), ~std::uint64_t{0});
    EXPECT_EQ(ReadPixel(0x119, 0x80000001), ~std::uint64_t{0}) << "25 bits are stored in four bytes";
    EXPECT_EQ(ReadPixel(0x120, 5, std::uint64_t{1} << 40), ~std::uint64_t{0})
        << "the sign mask is itself extended: old upper bits of the word count as the sign";
}

// Shift counts go modulo 32: five bytes test bit 7 and extend from bit 8, and so on.
TEST(GetPixVal, ExtendsFiveToSevenBytesFromTheirLowerHalf) {
    EXPECT_EQ(ReadPixel(0x128, 0x1234567F), 0x1234567Fu);
    EXPECT_EQ(ReadPixel(0x128, 0x80), 0xFFFFFFFFFFFFFF80u);
    EXPECT_EQ(ReadPixel(0x128, 0x8000000000), 0x8000000000u);
    EXPECT_EQ(ReadPixel(0x130, 0x12340000), 0x12340000u);
    EXPECT_EQ(ReadPixel(0x130, 0x128001), 0xFFFFFFFFFFFF8001u | 0x128001u);
    EXPECT_EQ(ReadPixel(0x138, 0x7FFFFF), 0x7FFFFFu);
    EXPECT_EQ(ReadPixel(0x138, 0x800001), 0xFFFFFFFFFF800001u);
}

TEST(GetPixVal, LeavesEightSignedBytesAlone) {
    EXPECT_EQ(ReadPixel(0x140, 0x8000000000000001u), 0x8000000000000001u);
    EXPECT_EQ(ReadPixel(0x139, 0x8000000000000001u), 0x8000000000000001u);
    EXPECT_EQ(ReadPixel(0x140, 0x80000080u), 0x80000080u);
}

TEST(GetPixVal, WritesEveryByteOfAPixelWiderThanAWord) {
    const auto image = FakeImage::Planar(1, 1, 1, 0x80);
    for (std::size_t byte = 0; byte < 16; ++byte)
        image->Pixels[byte] = static_cast<std::uint8_t>(byte + 1);
    std::uint64_t value[3] = {0, 0, 77};
    EXPECT_TRUE(GetPixVal(image->Handle(), 0, 0, 0, value));
    EXPECT_EQ(std::memcmp(value, image->Pixels.data(), 16), 0);
    EXPECT_EQ(value[2], 77u);
}

/// Plane 0 of the first type, plane 1 of the second with a stored value, read from plane 1.
std::uint64_t ReadSecondPlane(TDataType first, TDataType second, std::uint64_t stored) {
    FakeImage image(1, 1, 16);
    const auto zero = [](std::intptr_t) { return std::intptr_t{0}; };
    image.AddPlane(image.Pixels.data(), first, zero, zero);
    image.AddPlane(image.Pixels.data() + 8, second, zero, zero);
    std::memcpy(image.Pixels.data() + 8, &stored, PixelSize(second));
    std::uint64_t value = 0;
    EXPECT_TRUE(GetPixVal(image.Handle(), 1, 0, 0, &value));
    return value;
}

TEST(GetPixVal, DecidesTheSignByTheTypeOfPlaneZero) {
    EXPECT_EQ(ReadSecondPlane(0x8, 0x108, 0x80), 0x80u) << "plane 0 is unsigned";
    EXPECT_EQ(ReadSecondPlane(0x108, 0x8, 0x80), 0xFFFFFFFFFFFFFF80u) << "plane 0 is signed";
    EXPECT_EQ(ReadSecondPlane(0x108, 0x10, 0x1234), 0x1234u) << "bit 7, of plane 0's one byte, is clear";
    EXPECT_EQ(ReadSecondPlane(0x108, 0x10, 0x1280), 0xFFFFFFFFFFFFFF80u);
    EXPECT_EQ(ReadSecondPlane(0x110, 0x108, 0x80), 0x80u) << "bit 15, of plane 0's two bytes, is clear";
    EXPECT_EQ(ReadSecondPlane(0x140, 0x108, 0x80), 0x80u) << "eight bytes are never extended";
}

TEST(GetPixVal, GivesFalseWithoutAReportOutsideAndLeavesTheValue) {
    Handle generic;
    ASSERT_TRUE(CreateGenericImage(3, 4, 2, false, generic.Out()));
    const auto fake = FakeImage::Planar(4, 2, 3, 8);
    struct {
        std::intptr_t plane, x, y;
    } const outside[] = {{-1, 0, 0},
                         {3, 0, 0},
                         {0, -1, 0},
                         {0, 4, 0},
                         {0, 0, -1},
                         {0, 0, 2},
                         {Lowest, 0, 0},
                         {Highest, 0, 0},
                         {0, Lowest, 0},
                         {0, Highest, 0},
                         {0, 0, Lowest},
                         {0, 0, Highest},
                         {0, std::intptr_t{1} << 32, 0}};
    ClearReports();
    for (void *image : {generic.Get(), fake->Handle()})
        for (const auto &[plane, x, y] : outside) {
            std::uint64_t value = 77;
            EXPECT_FALSE(GetPixVal(image, plane, x, y, &value));
            EXPECT_FALSE(GetPixel(image, plane, x, y, &value));
            EXPECT_EQ(value, 77u);
            EXPECT_FALSE(SetPixVal(image, plane, x, y, &value));
            EXPECT_FALSE(SetPixel(image, plane, x, y, &value));
            EXPECT_EQ(RefCount(image), 1u);
        }
    for (const auto byte : fake->Pixels)
        EXPECT_EQ(byte, 0);
    ExpectNoReport();
}

TEST(GetPixVal, GivesFalseWithoutAReportForWhatIsNoImage) {
    ClearReports();
    std::uint64_t value = 77;
    EXPECT_FALSE(GetPixVal(nullptr, 0, 0, 0, &value));
    EXPECT_FALSE(SetPixVal(nullptr, 0, 0, 0, &value));
    for (const auto &foreign : ForeignHandles()) {
        if (foreign.QueryThrows)
            continue;
        EXPECT_FALSE(GetPixVal(foreign.Get(), 0, 0, 0, &value)) << foreign.Name;
        EXPECT_FALSE(SetPixVal(foreign.Get(), 0, 0, 0, &value)) << foreign.Name;
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(value, 77u);
    ExpectNoReport();
}

TEST(GetPixVal, LetsAnExceptionOfTheQueryThroughAndStaysUsable) {
    std::uint64_t value = 0;
    for (const auto &foreign : ForeignHandles())
        if (foreign.QueryThrows) {
            EXPECT_ANY_THROW(GetPixVal(foreign.Get(), 0, 0, 0, &value));
            EXPECT_ANY_THROW(SetPixVal(foreign.Get(), 0, 0, 0, &value));
        }
    EXPECT_EQ(ReadPixel(0x8, 9), 9u);
}

TEST(GetPixVal, ReadsEveryPixelOfEveryLayout) {
    for (const TDataType type : {0x8u, 0x10u, 0x20u, 0x40u})
        for (const auto &image : MakeLayouts(5, 3, 3, type)) {
            SCOPED_TRACE(image.Name);
            const std::size_t bytes = PixelSize(type);
            for (std::intptr_t plane = 0; plane < 3; ++plane)
                for (std::intptr_t pixel = 0; pixel < 15; ++pixel) {
                    std::uint64_t expected = 0, value = 0, same = 0;
                    std::memcpy(&expected,
                                image.Content[static_cast<std::size_t>(plane)].data() +
                                    static_cast<std::size_t>(pixel) * bytes,
                                bytes);
                    ASSERT_TRUE(GetPixVal(image.Get(), plane, pixel % 5, pixel / 5, &value));
                    ASSERT_TRUE(GetPixel(image.Get(), plane, pixel % 5, pixel / 5, &same));
                    ASSERT_EQ(value, expected);
                    ASSERT_EQ(same, expected);
                }
        }
}

TEST(SetPixVal, StoresTheLowBytesAndTouchesNoNeighbour) {
    for (const TDataType type : {0x8u, 0x108u, 0xCu, 0x18u, 0x120u, 0x220u, 0x28u, 0x240u}) {
        const auto image = FakeImage::Planar(3, 3, 2, type);
        std::fill(image->Pixels.begin(), image->Pixels.end(), std::uint8_t{0xEE});
        auto expected = image->Pixels;
        const std::uint64_t value = 0x8877665544332211u;
        const std::size_t bytes = PixelSize(type);
        EXPECT_TRUE(SetPixVal(image->Handle(), 1, 2, 1, &value));
        std::memcpy(expected.data() + (9 + 5) * bytes, &value, bytes);
        EXPECT_TRUE(SetPixel(image->Handle(), 0, 0, 0, &value));
        std::memcpy(expected.data(), &value, bytes);
        EXPECT_EQ(image->Pixels, expected) << type;
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(SetPixVal, StoresEveryByteOfAPixelWiderThanAWord) {
    const auto image = FakeImage::Planar(1, 1, 1, 0x80);
    const std::uint64_t value[2] = {0x1122334455667788u, 0x99AABBCCDDEEFF00u};
    EXPECT_TRUE(SetPixVal(image->Handle(), 0, 0, 0, value));
    EXPECT_EQ(std::memcmp(image->Pixels.data(), value, 16), 0);
}

TEST(SetPixVal, WritesThroughAView) {
    const auto image = FakeImage::Planar(3, 2, 1, 16);
    Handle view;
    ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), VPATRotation90CounterClockwise, view.Out()));
    const std::uint64_t value = 0x1234;
    EXPECT_TRUE(SetPixVal(view.Get(), 0, 0, 0, &value));
    EXPECT_EQ(image->PixelAddress(0, 2, 0)[0], 0x34);
    EXPECT_EQ(image->PixelAddress(0, 2, 0)[1], 0x12);
}

} // namespace

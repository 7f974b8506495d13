// PixVal: the pixel or a code, the order of its checks, what each reports, and the band of four pixels around.
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "Support/ImageAccess.h"

#include <limits>

namespace {

using namespace TestSupport;

constexpr std::intptr_t Highest = std::numeric_limits<std::intptr_t>::max();
constexpr std::intptr_t Lowest = std::numeric_limits<std::intptr_t>::min();

/// Expects one report with a text that was handed in: without a closing NUL.
void ExpectReportWithText(std::uint32_t code, const std::string &text) {
    EXPECT_EQ(ReportCount(), 1);
    std::uint32_t reported = 0;
    std::uint64_t textSize = 200, nameSize = 200;
    char texts[200] = {}, name[200] = {};
    std::int64_t serial = 0;
    ASSERT_TRUE(GetLastORVError(&reported, &serial, texts, &textSize, name, &nameSize));
    EXPECT_EQ(reported, code);
    EXPECT_EQ(std::string(texts, textSize), text);
    EXPECT_EQ(std::string(name, nameSize), "PixVal");
    ClearReports();
}

TEST(PixVal, ReportsWhatIsNoImage) {
    ClearReports();
    EXPECT_EQ(PixVal(nullptr, 0, 0, 0), 0x80000010);
    ExpectOneReport(0x80000010u, "PixVal");
    for (const auto &foreign : ForeignHandles()) {
        EXPECT_EQ(PixVal(foreign.Get(), 0, 0, 0), 0x80000010) << foreign.Name;
        ExpectOneReport(0x80000010u, "PixVal");
        EXPECT_EQ(foreign.Count(), 1);
    }
}

TEST(PixVal, ReportsAPlaneOutOfRangeWithItsText) {
    const auto image = FakeImage::Planar(3, 2, 2, 8);
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{2}, Lowest, Highest}) {
        ClearReports();
        EXPECT_EQ(PixVal(image->Handle(), plane, 0, 0), 0x80000002);
        ExpectReportWithText(0x80000002u, "Invalid Plane Index");
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(PixVal, ReportsACoordinateBeyondTheBandWithItsText) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    for (const std::intptr_t x : {std::intptr_t{-5}, std::intptr_t{7}, Lowest, Highest, std::intptr_t{1} << 32}) {
        ClearReports();
        EXPECT_EQ(PixVal(image->Handle(), 0, x, 0), 0x80000002);
        ExpectReportWithText(0x80000002u, "Invalid X coordinate");
    }
    for (const std::intptr_t y : {std::intptr_t{-5}, std::intptr_t{6}, Lowest, Highest, std::intptr_t{1} << 32}) {
        ClearReports();
        EXPECT_EQ(PixVal(image->Handle(), 0, 0, y), 0x80000002);
        ExpectReportWithText(0x80000002u, "Invalid Y coordinate");
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(PixVal, ReportsATypeOfMoreThanSixteenBits) {
    for (const TDataType type : {0x11u, 0x20u, 0x220u, 0x140u, 0xFFu}) {
        const auto image = FakeImage::Planar(2, 2, 1, type);
        ClearReports();
        EXPECT_EQ(PixVal(image->Handle(), 0, 0, 0), 0x8000001C) << type;
        ExpectOneReport(0x8000001Cu, "PixVal");
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(PixVal, ChecksPlaneThenXThenYThenType) {
    const auto image = FakeImage::Planar(2, 2, 1, 0x20);
    ClearReports();
    PixVal(image->Handle(), 1, 99, 99);
    ExpectReportWithText(0x80000002u, "Invalid Plane Index");
    PixVal(image->Handle(), 0, 99, 99);
    ExpectReportWithText(0x80000002u, "Invalid X coordinate");
    PixVal(image->Handle(), 0, 0, 99);
    ExpectReportWithText(0x80000002u, "Invalid Y coordinate");
    PixVal(image->Handle(), 0, 0, 0);
    ExpectOneReport(0x8000001Cu, "PixVal");
}

TEST(PixVal, ReadsOneByteUpToEightBitsAndTwoUpToSixteenWithoutSignExtension) {
    for (std::uint32_t bits = 1; bits <= 16; ++bits)
        for (const TDataType flags : {0x0u, 0x100u, 0x400u}) {
            const auto image = FakeImage::Planar(1, 1, 1, bits | flags);
            std::fill(image->Pixels.begin(), image->Pixels.end(), std::uint8_t{0xF7});
            EXPECT_EQ(PixVal(image->Handle(), 0, 0, 0), bits <= 8 ? 0xF7 : 0xF7F7) << (bits | flags);
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(PixVal, GivesTheNearestEdgePixelInABandOfFour) {
    for (const TDataType type : {0x8u, 0x10u})
        for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{5, 3}, {1, 1}, {1, 6}, {6, 1}}) {
            const auto fake = FakeImage::Planar(width, height, 1, type);
            Handle typed, view;
            ASSERT_TRUE(CreateGenericImageDT(1, width, height, type, typed.Out()));
            ASSERT_TRUE(CreateRotatedImageMap(fake->Handle(), VPATRotation180, view.Out()));
            for (void *image : {fake->Handle(), typed.Get(), view.Get()}) {
                ClearReports();
                for (std::intptr_t y = 0; y < height; ++y)
                    for (std::intptr_t x = 0; x < width; ++x) {
                        const auto value = static_cast<std::uint64_t>(y * 40 + x * 3 + 1);
                        ASSERT_TRUE(SetPixVal(image, 0, x, y, &value));
                    }
                for (std::intptr_t y = -4; y <= height + 3; ++y)
                    for (std::intptr_t x = -4; x <= width + 3; ++x)
                        ASSERT_EQ(PixVal(image, 0, x, y), std::clamp<std::intptr_t>(y, 0, height - 1) * 40 +
                                                              std::clamp<std::intptr_t>(x, 0, width - 1) * 3 + 1)
                            << x << ", " << y;
                ExpectNoReport();
            }
        }
}

TEST(PixVal, ReadsEachPlaneOfABitmapLayoutAndItsBand) {
    Handle image;
    ASSERT_TRUE(CreateGenericImage(3, 5, 3, false, image.Out()));
    for (std::intptr_t plane = 0; plane < 3; ++plane)
        for (std::intptr_t pixel = 0; pixel < 15; ++pixel)
            *AccessOf(image.Get(), plane).At(pixel % 5, pixel / 5) = static_cast<std::uint8_t>(plane * 50 + pixel);
    for (std::intptr_t plane = 0; plane < 3; ++plane) {
        EXPECT_EQ(PixVal(image.Get(), plane, -4, -4), plane * 50);
        EXPECT_EQ(PixVal(image.Get(), plane, 5, 1), plane * 50 + 9);
        EXPECT_EQ(PixVal(image.Get(), plane, 8, 6), plane * 50 + 14);
        EXPECT_EQ(PixVal(image.Get(), plane, 2, 1), plane * 50 + 7);
    }
}

} // namespace

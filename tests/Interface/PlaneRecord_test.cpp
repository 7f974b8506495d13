/* The two helpers around plane tables: filling a plane record, and telling a plain raster from other tables. */
#include "ImageCreation.h"
#include "InterfaceHandling.h"
#include "Support/TestImages.h"

#include <limits>

using namespace TestSupport;

namespace {

class SetPlaneRecTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { EXPECT_EQ(ReportCount(), 0) << "this function never reports"; }

    TPlaneRec Marked() { return {&canary, &canaryTable, -7, -8, 0xABCDu}; }
    void ExpectMarkedPlane(const TPlaneRec &record) {
        EXPECT_EQ(record.BaseAddress, &canary);
        EXPECT_EQ(record.VPAT, &canaryTable);
        EXPECT_EQ(record.Datatype, 0xABCDu);
    }
    void ExpectUntouched(const TPlaneRec &record) {
        ExpectMarkedPlane(record);
        EXPECT_EQ(record.Width, -7);
        EXPECT_EQ(record.Height, -8);
    }

    int canary = 0;
    VPAEntry canaryTable{};
};

TEST_F(SetPlaneRecTest, FillsAllFieldsFromTheImage) {
    const auto image = FakeImage::Planar(5, 3, 2, 0x110);
    for (std::size_t plane = 0; plane < 2; ++plane) {
        TPlaneRec record = Marked();
        SetPlaneRec(image->Handle(), static_cast<std::intptr_t>(plane), &record);
        EXPECT_EQ(record.BaseAddress, image->BaseOf(plane));
        EXPECT_EQ(record.VPAT, image->TableOf(plane));
        EXPECT_EQ(record.Width, 5);
        EXPECT_EQ(record.Height, 3);
        EXPECT_EQ(record.Datatype, 0x110u);
    }
    EXPECT_EQ(image->Count(), 1) << "the interface is given back";
}

TEST_F(SetPlaneRecTest, WorksForImagesOfTheLibrary) {
    Handle image;
    ASSERT_TRUE(CreateGenericImageDT(2, 6, 4, 0x220, image.Out()));
    TPlaneRec record = Marked();
    SetPlaneRec(image.Get(), 1, &record);
    EXPECT_EQ(record.Width, 6);
    EXPECT_EQ(record.Height, 4);
    EXPECT_EQ(record.Datatype, 0x220u);
    ASSERT_NE(record.VPAT, &canaryTable);
    EXPECT_EQ(record.VPAT[2].XEntry, 8);
    EXPECT_EQ(record.VPAT[2].YEntry, 48);
    EXPECT_EQ(RefCount(image.Get()), 1u);
}

TEST_F(SetPlaneRecTest, NullLeavesTheRecord) {
    TPlaneRec record = Marked();
    SetPlaneRec(nullptr, 0, &record);
    ExpectUntouched(record);
}

TEST_F(SetPlaneRecTest, WhatIsNoImageLeavesTheRecord) {
    for (const auto &foreign : ForeignHandles()) {
        TPlaneRec record = Marked();
        EXPECT_NO_THROW(SetPlaneRec(foreign.Get(), 0, &record)) << foreign.Name;
        ExpectUntouched(record);
        EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
    }
}

TEST_F(SetPlaneRecTest, AnImageThatRefusesItsInterfaceLeavesTheRecord) {
    const auto image = FakeImage::Planar(5, 3, 1, 8);
    TPlaneRec record = Marked();
    image->Fails.QueryGivesNull = true;
    SetPlaneRec(image->Handle(), 0, &record);
    ExpectUntouched(record);
    image->Fails.QueryStatus = StatusNoInterface;
    SetPlaneRec(image->Handle(), 0, &record);
    ExpectUntouched(record);
    image->Fails.QueryThrows = true;
    EXPECT_NO_THROW(SetPlaneRec(image->Handle(), 0, &record));
    ExpectUntouched(record);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(SetPlaneRecTest, APlaneOutOfRangeKeepsTheFormerPlaneAndGetsTheSize) {
    const auto fake = FakeImage::Planar(5, 3, 2, 8);
    Handle tree, external;
    ASSERT_TRUE(CreateGenericImageDT(2, 5, 3, 8, tree.Out()));
    std::uint8_t pixels[30] = {};
    ASSERT_EQ(CreateImageFromPointer(pixels, 30, 5, 3, 2, 8, 1, 5, 15, nullptr, nullptr, nullptr, external.Out()), 0);
    for (void *image : {fake->Handle(), tree.Get(), external.Get()})
        for (const std::intptr_t plane :
             {std::intptr_t{-1}, std::intptr_t{2}, std::numeric_limits<std::intptr_t>::max(),
              std::numeric_limits<std::intptr_t>::min()}) {
            TPlaneRec record = Marked();
            SetPlaneRec(image, plane, &record);
            ExpectMarkedPlane(record);
            EXPECT_EQ(record.Width, 5);
            EXPECT_EQ(record.Height, 3);
        }
}

TEST_F(SetPlaneRecTest, EachFailingOperationLeavesItsOwnFields) {
    const auto image = FakeImage::Planar(5, 3, 1, 8);
    TPlaneRec record = Marked();
    image->Fails.DimensionsStatus = StatusBadPlane;
    SetPlaneRec(image->Handle(), 0, &record);
    EXPECT_EQ(record.Width, -7);
    EXPECT_EQ(record.Height, -8);
    EXPECT_EQ(record.Datatype, 8u);
    EXPECT_EQ(record.VPAT, image->TableOf(0));

    record = Marked();
    image->Fails = {};
    image->Fails.DatatypeStatus = StatusBadPlane;
    SetPlaneRec(image->Handle(), 0, &record);
    EXPECT_EQ(record.Width, 5);
    EXPECT_EQ(record.Datatype, 0xABCDu);
    EXPECT_EQ(record.BaseAddress, image->BaseOf(0));
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(SetPlaneRecTest, AnOperationThatThrowsGivesTheInterfaceBackAndPassesNothingOn) {
    const auto image = FakeImage::Planar(5, 3, 1, 8);
    image->Fails.OnOperation = [] { throw std::runtime_error("refused"); };
    TPlaneRec record = Marked();
    EXPECT_NO_THROW(SetPlaneRec(image->Handle(), 0, &record));
    ExpectUntouched(record);
    EXPECT_EQ(image->Count(), 1);
}

/// Asks for a table whose offsets are given, with the canary as pitch.
struct Linearity {
    static constexpr std::intptr_t Canary = 0x7EADBEEF;
    bool Linear = false;
    std::intptr_t Pitch = Canary;

    Linearity(std::intptr_t width, std::intptr_t height, const Table::Offsets &x, const Table::Offsets &y) {
        Table table(width, height, x, y);
        Linear = IsVPATLinear(table.Entries(), width, height, &Pitch);
    }
};

std::intptr_t Steps(std::intptr_t index) {
    return index;
}
std::intptr_t Rows(std::intptr_t index) {
    return index * 100;
}

TEST(IsVPATLinearTest, APlainRasterIsLinear) {
    const Linearity plain(7, 5, Steps, Rows);
    EXPECT_TRUE(plain.Linear);
    EXPECT_EQ(plain.Pitch, 100);
    const Linearity shifted(
        7, 5, [](std::intptr_t i) { return i - 5000; }, [](std::intptr_t j) { return 17 - j * 8; });
    EXPECT_TRUE(shifted.Linear);
    EXPECT_EQ(shifted.Pitch, -8);
    const Linearity flat(7, 5, Steps, [](std::intptr_t) { return 3; });
    EXPECT_TRUE(flat.Linear) << "any constant row step counts, 0 too";
    EXPECT_EQ(flat.Pitch, 0);
}

TEST(IsVPATLinearTest, AnyOtherColumnStepThanOneIsNotLinearAndWritesNoPitch) {
    for (const std::intptr_t step : {-1, 0, 2, 3, 4}) {
        const Linearity stepped(
            7, 5, [=](std::intptr_t i) { return i * step; }, Rows);
        EXPECT_FALSE(stepped.Linear) << step;
        EXPECT_EQ(stepped.Pitch, Linearity::Canary) << step;
    }
}

TEST(IsVPATLinearTest, OneWrongColumnAnywhereIsNotLinear) {
    for (std::intptr_t wrong = 0; wrong < 7; ++wrong) {
        const Linearity broken(
            7, 5, [=](std::intptr_t i) { return i + (i == wrong ? 1 : 0); }, Rows);
        EXPECT_FALSE(broken.Linear) << wrong;
        EXPECT_EQ(broken.Pitch, Linearity::Canary) << wrong;
    }
}

TEST(IsVPATLinearTest, OneWrongRowIsNotLinearAndStillWritesThePitch) {
    for (std::intptr_t wrong = 2; wrong < 5; ++wrong) {
        const Linearity broken(7, 5, Steps, [=](std::intptr_t j) { return j * 100 + (j == wrong ? 1 : 0); });
        EXPECT_FALSE(broken.Linear) << wrong;
        EXPECT_EQ(broken.Pitch, 100) << wrong;
    }
}

TEST(IsVPATLinearTest, OneOrTwoRowsAreAlwaysLinear) {
    const Linearity two(3, 2, Steps, [](std::intptr_t j) { return j * 12345; });
    EXPECT_TRUE(two.Linear);
    EXPECT_EQ(two.Pitch, 12345);
    const Linearity one(3, 1, Steps, Rows);
    EXPECT_TRUE(one.Linear);
    EXPECT_EQ(one.Pitch, 0) << "the guard entry behind the only row repeats it";
    const Linearity single(1, 1, Steps, Rows);
    EXPECT_TRUE(single.Linear);
    EXPECT_EQ(single.Pitch, 0);
}

TEST(IsVPATLinearTest, WithoutColumnsOnlyTheRowsCount) {
    Table table(
        3, 4, [](std::intptr_t i) { return i * 5; }, [](std::intptr_t j) { return j * 9; });
    for (const std::intptr_t width : {0, -1, -100}) {
        std::intptr_t pitch = 0;
        EXPECT_TRUE(IsVPATLinear(table.Entries(), width, 4, &pitch)) << width;
        EXPECT_EQ(pitch, 9) << width;
    }
}

TEST(IsVPATLinearTest, WithoutRowsThePitchIsStillWritten) {
    Table table(3, 4, Steps, [](std::intptr_t j) { return j * j + 6 * j; });
    for (const std::intptr_t height : {1, 0, -1, -100}) {
        std::intptr_t pitch = 0;
        EXPECT_TRUE(IsVPATLinear(table.Entries(), 3, height, &pitch)) << height;
        EXPECT_EQ(pitch, 7) << height;
    }
}

TEST(IsVPATLinearTest, OffsetsAtTheEndsOfTheRangeWrapAround) {
    constexpr std::intptr_t lowest = std::numeric_limits<std::intptr_t>::min();
    constexpr std::intptr_t highest = std::numeric_limits<std::intptr_t>::max();
    const Linearity low(
        3, 2, [](std::intptr_t i) { return lowest + i; }, [](std::intptr_t j) { return j == 0 ? highest : lowest; });
    EXPECT_TRUE(low.Linear);
    EXPECT_EQ(low.Pitch, 1);
    const Linearity apart(
        3, 2, [](std::intptr_t i) { return i == 0 ? highest : lowest; }, Rows);
    EXPECT_FALSE(apart.Linear) << "the third column does not go on";
}

TEST(IsVPATLinearTest, ImagesOfTheLibrary) {
    std::intptr_t pitch = 0;
    TPlaneRec record{};
    for (const std::intptr_t width : {2, 3, 4, 5, 8, 641}) {
        Handle grey;
        ASSERT_TRUE(CreateGenericImage(1, width, 4, false, grey.Out()));
        SetPlaneRec(grey.Get(), 0, &record);
        EXPECT_TRUE(IsVPATLinear(record.VPAT, width, 4, &pitch));
        EXPECT_EQ(pitch, -(width + 3) / 4 * 4) << width;
    }
    Handle colour, smallest, wide;
    ASSERT_TRUE(CreateGenericImage(3, 5, 4, false, colour.Out()));
    ASSERT_TRUE(CreateGenericImage(1, 1, 1, false, smallest.Out()));
    ASSERT_TRUE(CreateGenericImageDT(1, 5, 4, 16, wide.Out()));
    for (std::intptr_t plane = 0; plane < 3; ++plane) {
        SetPlaneRec(colour.Get(), plane, &record);
        EXPECT_FALSE(IsVPATLinear(record.VPAT, 5, 4, &pitch)) << plane;
    }
    SetPlaneRec(smallest.Get(), 0, &record);
    EXPECT_TRUE(IsVPATLinear(record.VPAT, 1, 1, &pitch));
    SetPlaneRec(wide.Get(), 0, &record);
    EXPECT_FALSE(IsVPATLinear(record.VPAT, 5, 4, &pitch)) << "two bytes per pixel";
}

} // namespace

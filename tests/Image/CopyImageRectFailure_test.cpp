/* Copies of one plane that fail: the result, the report with its code, name and text, and the references. Also which
 * widths of pixels are copied. */
#include "Image/Pictures.h"
#include "RectangleCopy.h"

#include <limits>
#include <new>

namespace {

using namespace TestSupport;

const Rows Letters = {"abcde", "fghij", "klmno", "pqrst"};
const Rows Blank = {"......", "......", "......", "......", "......"};

class CopyImageRectFailure : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override {
        EXPECT_EQ(Show(source->Handle()), Letters);
        EXPECT_EQ(Show(target->Handle()), Blank) << "a failure writes nothing";
        EXPECT_EQ(source->Count(), 1);
        EXPECT_EQ(target->Count(), 1);
        ClearReports();
    }
    static bool Copy(void *from, void *to, std::intptr_t sourcePlane = 0, std::intptr_t targetPlane = 0,
                     std::int32_t x = 0) {
        return CopyImageRect(from, to, sourcePlane, targetPlane, 0, 0, 4, 3, x, 0);
    }

    const std::unique_ptr<FakeImage> source = Drawn(Letters);
    const std::unique_ptr<FakeImage> target = Drawn(Blank);
};

TEST_F(CopyImageRectFailure, NullIsNoImage) {
    EXPECT_FALSE(Copy(nullptr, target->Handle()));
    ExpectOneReport(ErrNotAnImage, "CopyImageRect");
    EXPECT_FALSE(Copy(source->Handle(), nullptr));
    ExpectOneReport(ErrNotAnImage, "CopyImageRect");
    EXPECT_FALSE(Copy(nullptr, nullptr));
    ExpectOneReport(ErrNotAnImage, "CopyImageRect");
}

TEST_F(CopyImageRectFailure, WhatOffersNoImageInterfaceIsNoImage) {
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        EXPECT_FALSE(Copy(foreign.Get(), target->Handle()));
        ExpectOneReport(ErrNotAnImage, "CopyImageRect");
        EXPECT_FALSE(Copy(source->Handle(), foreign.Get()));
        ExpectOneReport(ErrNotAnImage, "CopyImageRect");
        EXPECT_EQ(foreign.Count(), 1);
        EXPECT_EQ(source->Count(), 1);
    }
}

TEST_F(CopyImageRectFailure, APlaneNumberOutsideIsReportedWithItsWholeCode) {
    const auto three = DrawnPlanes({Letters, Letters, Letters});
    const std::intptr_t far = std::numeric_limits<std::intptr_t>::max();
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{3}, std::intptr_t{4}, far, -far}) {
        EXPECT_FALSE(Copy(three->Handle(), target->Handle(), plane, 0)) << plane;
        ExpectOneReport(ErrPlaneIndex, "CopyImageRect");
    }
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{1}, std::intptr_t{2}, far, -far}) {
        EXPECT_FALSE(Copy(three->Handle(), target->Handle(), 2, plane)) << plane;
        ExpectOneReport(ErrPlaneIndex, "CopyImageRect");
    }
    const FakeImage none(5, 4);
    EXPECT_FALSE(Copy(const_cast<FakeImage &>(none).Handle(), target->Handle()));
    ExpectOneReport(ErrPlaneIndex, "CopyImageRect");
}

TEST_F(CopyImageRectFailure, APlaneNumberOutsideFailsAlsoWhereNothingIsLeftToCopy) {
    EXPECT_FALSE(Copy(source->Handle(), target->Handle(), 1, 0, 99));
    ExpectOneReport(ErrPlaneIndex, "CopyImageRect");
}

TEST_F(CopyImageRectFailure, DataTypesThatDifferAreReportedWithTheirWholeCode) {
    for (const TDataType type : {0x10u, 0x108u, 0x408u, 0x808u, 0x208u, 7u}) {
        const auto other = FakeImage::Planar(5, 4, 1, type);
        EXPECT_FALSE(Copy(other->Handle(), target->Handle())) << type;
        ExpectOneReport(ErrDataType, "CopyImageRect");
        EXPECT_FALSE(Copy(source->Handle(), other->Handle())) << type;
        ExpectOneReport(ErrDataType, "CopyImageRect");
        EXPECT_EQ(other->Pixels, std::vector<std::uint8_t>(other->Pixels.size()));
    }
}

TEST_F(CopyImageRectFailure, DataTypesAreNotLookedAtWhereNothingIsLeftToCopy) {
    const auto other = FakeImage::Planar(5, 4, 1, 16);
    EXPECT_TRUE(Copy(other->Handle(), target->Handle(), 0, 0, 6));
    ExpectNoReport();
}

TEST_F(CopyImageRectFailure, PixelsOfOtherWidthsThatGoOneByOneAreReportedAsABareNumber) {
    for (const TDataType type : {24u, 128u, 40u, 255u}) {
        const auto from = Uneven(5, 4, 1, type);
        const auto to = FakeImage::Planar(5, 4, 1, type);
        const auto alsoUneven = Uneven(5, 4, 1, type);
        for (const auto &[a, b] :
             {std::pair{from.get(), to.get()}, {to.get(), from.get()}, {from.get(), alsoUneven.get()}}) {
            EXPECT_FALSE(Copy(a->Handle(), b->Handle())) << type;
            ExpectOneReport(0x1C, "CopyImageRect");
            EXPECT_EQ(b->Pixels, std::vector<std::uint8_t>(b->Pixels.size()));
        }
    }
}

TEST_F(CopyImageRectFailure, PixelsOfNoWidthAreReportedAsABareNumber) {
    for (const TDataType type : {0x0u, 0x100u, 0x80000008u}) {
        FakeImage from(5, 4, 64), to(5, 4, 64);
        for (FakeImage *image : {&from, &to})
            image->AddPlane(
                image->Pixels.data(), type, [](std::intptr_t x) { return x; }, [](std::intptr_t y) { return y * 5; });
        EXPECT_FALSE(Copy(from.Handle(), to.Handle())) << type;
        ExpectOneReport(0x1C, "CopyImageRect");
        EXPECT_EQ(to.Pixels, std::vector<std::uint8_t>(64));
    }
}

TEST_F(CopyImageRectFailure, PixelsOfAnyWidthThatGoLineByLineAreCopied) {
    for (const TDataType type : {24u, 128u, 40u, 248u}) {
        const auto from = FakeImage::Planar(5, 4, 1, type);
        const auto whole = FakeImage::Planar(5, 4, 1, type), part = FakeImage::Planar(7, 6, 1, type);
        for (std::size_t i = 0; i < from->Pixels.size(); ++i)
            from->Pixels[i] = static_cast<std::uint8_t>(i);
        EXPECT_TRUE(Copy(from->Handle(), whole->Handle()));
        EXPECT_EQ(whole->Pixels, from->Pixels);
        PlaneBytes expected = PixelBytes(part->Handle(), 0);
        PlainCopy{5, 7, PixelSize(type)}(PixelBytes(from->Handle(), 0), expected, 0, 0, 4, 3, 2, 0);
        EXPECT_TRUE(Copy(from->Handle(), part->Handle(), 0, 0, 2));
        EXPECT_EQ(part->Pixels, expected);
        ExpectNoReport();
    }
}

TEST_F(CopyImageRectFailure, WhatAnImageThrowsIsReportedAsErrGeneral) {
    const std::function<void()> throws[] = {
        [] { throw std::runtime_error("refused"); }, [] { throw 5; }, [] { throw std::bad_alloc(); },
        [] { throw std::out_of_range("refused"); }, [] { throw std::logic_error("refused"); }};
    const auto from = Drawn(Letters);
    const auto to = Drawn(Blank);
    for (const auto &fail : throws)
        for (FakeImage *image : {from.get(), to.get()}) {
            image->Fails.OnOperation = fail;
            EXPECT_NO_THROW(EXPECT_FALSE(Copy(from->Handle(), to->Handle())));
            image->Fails = {};
            ExpectOneReport(ErrGeneral, "CopyImageRect");
            EXPECT_EQ(from->Count(), 1);
            EXPECT_EQ(to->Count(), 1);
            EXPECT_EQ(Show(to->Handle()), Blank);
        }
}

TEST_F(CopyImageRectFailure, AnImageThatRefusesItsPlanesIsReportedAsErrGeneral) {
    for (std::int32_t FakeImage::Failures::*failure :
         {&FakeImage::Failures::DatatypeStatus, &FakeImage::Failures::VPAStatus})
        for (FakeImage *image : {source.get(), target.get()}) {
            image->Fails.*failure = StatusBadPlane;
            EXPECT_FALSE(Copy(source->Handle(), target->Handle()));
            image->Fails = {};
            ExpectOneReport(ErrGeneral, "CopyImageRect");
        }
}

TEST_F(CopyImageRectFailure, ASuccessLeavesAnOlderReportAlone) {
    ReportORVError(ErrParameter, "SomethingElse");
    EXPECT_TRUE(Copy(source->Handle(), target->Handle(), 0, 0, 6));
    ExpectOneReport(ErrParameter, "SomethingElse");
}

} // namespace

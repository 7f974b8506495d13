/* A rectangle of all planes: how many planes are copied, which order in memory may differ, and every failure with its
 * report, the planes' own included. */
#include "Image/Pictures.h"
#include "ImageMaps.h"
#include "RectangleCopy.h"

#include <limits>
#include <new>

namespace {

using namespace TestSupport;

constexpr const char *Name = "CopyImageRectPlanes";
constexpr const char *PlaneName = "CopyImageRect";

class CopyImageRectPlanesTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }

    static bool CopyAll(void *from, void *to) { return CopyImageRectPlanes(from, to, 0, 0, 99, 99, 0, 0); }

    const std::unique_ptr<FakeImage> three = DrawnPlanes({{"abc", "def"}, {"ABC", "DEF"}, {"123", "456"}});
    const std::unique_ptr<FakeImage> one = Drawn(Rows{"...", "..."});
};

/// Planes of some types, dense, each in its own memory.
std::unique_ptr<FakeImage> Mixed(const std::vector<TDataType> &types, std::uint8_t fill) {
    auto image = std::make_unique<FakeImage>(5, 4, types.size() * 5 * 4 * 16);
    std::fill(image->Pixels.begin(), image->Pixels.end(), fill);
    for (std::size_t plane = 0; plane < types.size(); ++plane) {
        const auto bytes = static_cast<std::intptr_t>(PixelSize(types[plane]));
        image->AddPlane(
            image->Pixels.data() + plane * 5 * 4 * 16, types[plane], [=](std::intptr_t x) { return x * bytes; },
            [=](std::intptr_t y) { return y * 5 * bytes; });
    }
    return image;
}

bool PlaneHolds(FakeImage &image, std::intptr_t plane, std::uint8_t value) {
    const PlaneBytes bytes = PixelBytes(image.Handle(), plane);
    return std::all_of(bytes.begin(), bytes.end(), [value](std::uint8_t byte) { return byte == value; });
}

TEST_F(CopyImageRectPlanesTest, CopiesTheRectangleOfAllPlanes) {
    const auto target = DrawnPlanes({{"....", "....", "...."}, {"----", "----", "----"}, {"####", "####", "####"}});
    EXPECT_TRUE(CopyImageRectPlanes(three->Handle(), target->Handle(), 2, 1, 1, 0, 2, 1));
    EXPECT_EQ(Show(target->Handle(), 0), (Rows{"....", "..bc", "..ef"}));
    EXPECT_EQ(Show(target->Handle(), 1), (Rows{"----", "--BC", "--EF"}));
    EXPECT_EQ(Show(target->Handle(), 2), (Rows{"####", "##23", "##56"}));
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, ClipsAsTheCopyOfOnePlaneDoes) {
    const auto target = DrawnPlanes({{"....", "...."}, {"----", "----"}, {"####", "####"}});
    EXPECT_TRUE(CopyImageRectPlanes(three->Handle(), target->Handle(), -2, 1, 99, -1, 1, 0));
    EXPECT_EQ(Show(target->Handle(), 0), (Rows{"....", "...a"}));
    EXPECT_EQ(Show(target->Handle(), 1), (Rows{"----", "---A"}));
    EXPECT_EQ(Show(target->Handle(), 2), (Rows{"####", "###1"}));
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, OfThreePlanesToOneCopiesTheFirst) {
    EXPECT_TRUE(CopyAll(three->Handle(), one->Handle()));
    EXPECT_EQ(Show(one->Handle()), (Rows{"abc", "def"}));
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, OfOnePlaneToThreeCopiesToTheFirst) {
    EXPECT_TRUE(CopyAll(one->Handle(), three->Handle()));
    EXPECT_EQ(Show(three->Handle(), 0), (Rows{"...", "..."}));
    EXPECT_EQ(Show(three->Handle(), 1), (Rows{"ABC", "DEF"}));
    EXPECT_EQ(Show(three->Handle(), 2), (Rows{"123", "456"}));
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, NothingLeftGivesTrueWhateverTheTypes) {
    const auto other = FakeImage::Planar(3, 2, 3, 16);
    EXPECT_TRUE(CopyImageRectPlanes(three->Handle(), other->Handle(), 3, 0, 9, 9, 0, 0));
    EXPECT_TRUE(CopyImageRectPlanes(three->Handle(), other->Handle(), 0, 0, 9, 9, 0, 2));
    EXPECT_TRUE(CopyImageRectPlanes(three->Handle(), other->Handle(), -9, -9, -1, -1, 0, 0));
    EXPECT_EQ(other->Pixels, std::vector<std::uint8_t>(other->Pixels.size()));
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, ImagesWithoutPlanesGiveTrue) {
    FakeImage none(3, 2), alsoNone(3, 2);
    EXPECT_TRUE(CopyAll(none.Handle(), alsoNone.Handle()));
    EXPECT_TRUE(CopyAll(three->Handle(), none.Handle()));
    EXPECT_TRUE(CopyAll(none.Handle(), three->Handle()));
    EXPECT_EQ(Show(three->Handle(), 0), (Rows{"abc", "def"}));
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, CopiesBetweenAllTypesAndLayouts) {
    constexpr std::intptr_t width = 18, height = 5, targetWidth = 21, targetHeight = 6;
    for (const TDataType type : {0x8u, 0x108u, 0x10u, 0x110u, 0x20u, 0x120u, 0x40u, 0x140u, 0x220u, 0x240u}) {
        const PlainCopy copy{width, targetWidth, PixelSize(type)};
        const auto targets = MakeLayouts(targetWidth, targetHeight, 3, type, 7);
        for (const auto &from : MakeLayouts(width, height, 3, type, 3))
            for (const auto &to : targets) {
                if (to.Name == "fake repeating")
                    continue; // shows a pixel at several places
                std::vector<PlaneBytes> expected;
                for (std::intptr_t plane = 0; plane < 3; ++plane) {
                    expected.push_back(PixelBytes(to.Get(), plane));
                    copy(from.Content[static_cast<std::size_t>(plane)], expected.back(), 0, 1, 17, 4, 2, 1);
                }
                ASSERT_TRUE(CopyImageRectPlanes(from.Get(), to.Get(), 0, 1, 17, 4, 2, 1));
                for (std::intptr_t plane = 0; plane < 3; ++plane)
                    ASSERT_EQ(PixelBytes(to.Get(), plane), expected[static_cast<std::size_t>(plane)])
                        << from.Name << " to " << to.Name << ", type " << type << ", plane " << plane;
            }
    }
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, TakesThreePlanesApartAndTogetherInEveryOrderAndWidth) {
    constexpr std::intptr_t height = 2;
    for (std::intptr_t width = 1; width < 70; ++width) {
        const auto content = RandomContent(width, height, 3, 8, static_cast<std::uint32_t>(width));
        const auto rules = PitchRules(width, height, 3, 8);
        for (const PitchRule &from : {rules[0], rules[1], rules[2]})
            for (const PitchRule &to : {rules[0], rules[1], rules[2], rules[3]}) {
                const auto source = MakeExternal(from, content, width, height, 8);
                const auto blank = RandomContent(width, height, 3, 8, 1000);
                const auto target = MakeExternal(to, blank, width, height, 8);
                ASSERT_TRUE(CopyAll(source.Get(), target.Get()));
                for (std::intptr_t plane = 0; plane < 3; ++plane)
                    ASSERT_EQ(PixelBytes(target.Get(), plane), content[static_cast<std::size_t>(plane)])
                        << from.Name << " to " << to.Name << ", width " << width;
            }
    }
}

TEST_F(CopyImageRectPlanesTest, LeavesTheFourthByteOfThreePlanesInPixelsOfFour) {
    // The block ends behind the last pixel's third byte.
    constexpr std::size_t bytes = 5 * 3 * 4 - 1;
    FakeImage from(5, 3, bytes), to(5, 3, bytes);
    for (FakeImage *image : {&from, &to})
        for (int plane = 0; plane < 3; ++plane)
            image->AddPlane(
                image->Pixels.data() + plane, 8, [](std::intptr_t x) { return 4 * x; },
                [](std::intptr_t y) { return 20 * y; });
    for (std::size_t i = 0; i < bytes; ++i)
        from.Pixels[i] = static_cast<std::uint8_t>(i + 1);
    EXPECT_TRUE(CopyAll(from.Handle(), to.Handle()));
    for (std::size_t i = 0; i < bytes; ++i)
        EXPECT_EQ(to.Pixels[i], i % 4 == 3 ? 0 : i + 1) << i;
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, PlanesOfOtherWidthsAreCopiedTogetherWhereTheyLieInGroupsAlike) {
    for (const std::intptr_t gap : {0, 3, 7})
        for (const TDataType type : {24u, 128u}) {
            const auto size = static_cast<std::intptr_t>(PixelSize(type));
            const std::intptr_t step = 2 * size + gap;
            FakeImage from(4, 3, static_cast<std::size_t>(12 * step)), to(4, 3, static_cast<std::size_t>(12 * step));
            for (FakeImage *image : {&from, &to})
                for (const std::intptr_t plane : {1, 0})
                    image->AddPlane(
                        image->Pixels.data() + plane * size, type, [=](std::intptr_t x) { return x * step; },
                        [=](std::intptr_t y) { return y * 4 * step; });
            std::fill(from.Pixels.begin(), from.Pixels.end(), std::uint8_t{0xA5});
            EXPECT_TRUE(CopyAll(from.Handle(), to.Handle()));
            ExpectNoReport();
            for (std::size_t i = 0; i < to.Pixels.size(); ++i)
                ASSERT_EQ(to.Pixels[i], static_cast<std::intptr_t>(i) % step < 2 * size ? 0xA5 : 0)
                    << "type " << type << ", gap " << gap << ", byte " << i;
        }
}

TEST_F(CopyImageRectPlanesTest, PlanesOfPairwiseEqualTypesAreCopied) {
    const auto from = Mixed({8, 16, 0x240}, 0x77);
    const auto to = Mixed({8, 16, 0x240}, 0);
    EXPECT_TRUE(CopyAll(from->Handle(), to->Handle()));
    for (std::intptr_t plane = 0; plane < 3; ++plane)
        EXPECT_TRUE(PlaneHolds(*to, plane, 0x77)) << plane;
    ExpectNoReport();
}

TEST_F(CopyImageRectPlanesTest, EqualCountsWithUnequalTypesAreRefusedAsAWhole) {
    const std::vector<TDataType> types[] = {{16, 8, 8}, {8, 16, 8}, {8, 8, 0x108}, {16, 16, 16}};
    for (const auto &other : types) {
        const auto from = Mixed(other, 0x77);
        const auto to = Mixed({8, 8, 8}, 0);
        EXPECT_FALSE(CopyAll(from->Handle(), to->Handle()));
        ExpectOneReport(ErrDataType, Name);
        EXPECT_EQ(to->Pixels, std::vector<std::uint8_t>(to->Pixels.size()));
        EXPECT_EQ(from->Count(), 1);
        EXPECT_EQ(to->Count(), 1);
    }
}

TEST_F(CopyImageRectPlanesTest, OnePlaneEachWithUnequalTypesIsRefused) {
    const auto from = Mixed({16}, 0x77);
    EXPECT_FALSE(CopyAll(from->Handle(), one->Handle()));
    ExpectOneReport(ErrDataType, Name);
    EXPECT_EQ(Show(one->Handle()), (Rows{"...", "..."}));
}

TEST_F(CopyImageRectPlanesTest, UnequalCountsReportEachUnequalPlaneAndGiveTrue) {
    // Required: the result of a plane that fails is not looked at.
    const auto from = Mixed({8, 16, 8, 32}, 0x77);
    const auto to = Mixed({8, 8, 8}, 0);
    EXPECT_TRUE(CopyAll(from->Handle(), to->Handle()));
    ExpectOneReport(ErrDataType, PlaneName);
    EXPECT_TRUE(PlaneHolds(*to, 0, 0x77));
    EXPECT_TRUE(PlaneHolds(*to, 1, 0));
    EXPECT_TRUE(PlaneHolds(*to, 2, 0x77));
}

TEST_F(CopyImageRectPlanesTest, PixelsOfOtherWidthsThatGoOneByOneAreReportedPlaneByPlane) {
    const auto from = Uneven(5, 4, 3, 24);
    const auto to = FakeImage::Planar(5, 4, 3, 24);
    std::fill(from->Pixels.begin(), from->Pixels.end(), std::uint8_t{0x77});
    EXPECT_TRUE(CopyAll(from->Handle(), to->Handle()));
    EXPECT_EQ(ReportCount(), 3);
    const auto report = TakeReport();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->code, 0x1Cu) << "the bare number";
    EXPECT_EQ(report->function, PlaneName);
    EXPECT_EQ(report->text, ComposedText(0x1C));
    EXPECT_EQ(report->serial, 2);
    EXPECT_EQ(to->Pixels, std::vector<std::uint8_t>(to->Pixels.size()));
}

TEST_F(CopyImageRectPlanesTest, OneFailingPlaneDoesNotKeepTheOthersFromBeingCopied) {
    const auto from = Mixed({24, 8, 128, 16}, 0x77);
    auto to = std::make_unique<FakeImage>(5, 4, 4 * 5 * 4 * 32);
    std::intptr_t start = 0;
    for (const TDataType type : {24u, 8u, 128u, 16u}) {
        const auto bytes = static_cast<std::intptr_t>(PixelSize(type));
        to->AddPlane(
            to->Pixels.data() + start, type, [=](std::intptr_t x) { return 2 * x * bytes; },
            [=](std::intptr_t y) { return y * 10 * bytes; });
        start += 40 * bytes;
    }
    EXPECT_TRUE(CopyAll(from->Handle(), to->Handle()));
    EXPECT_EQ(ReportCount(), 2);
    for (const auto &[plane, value] : {std::pair{0, 0}, {1, 0x77}, {2, 0}, {3, 0x77}})
        EXPECT_TRUE(PlaneHolds(*to, plane, static_cast<std::uint8_t>(value))) << plane;
}

// ---- handles and images that fail

TEST_F(CopyImageRectPlanesTest, WhatIsNoImageIsReportedOnceUnderItsOwnName) {
    for (const auto &[from, to] :
         {std::pair<void *, void *>{nullptr, one->Handle()}, {one->Handle(), nullptr}, {nullptr, nullptr}}) {
        EXPECT_FALSE(CopyAll(from, to));
        ExpectOneReport(ErrNotAnImage, Name);
    }
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        EXPECT_FALSE(CopyAll(foreign.Get(), one->Handle()));
        ExpectOneReport(ErrNotAnImage, Name);
        EXPECT_FALSE(CopyAll(one->Handle(), foreign.Get()));
        ExpectOneReport(ErrNotAnImage, Name);
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(one->Count(), 1);
    EXPECT_EQ(Show(one->Handle()), (Rows{"...", "..."}));
}

TEST_F(CopyImageRectPlanesTest, WhatAnImageThrowsIsReportedAsErrGeneral) {
    const std::function<void()> throws[] = {[] { throw std::runtime_error("refused"); }, [] { throw 5; },
                                            [] { throw std::bad_alloc(); },
                                            [] { throw std::out_of_range("refused"); }};
    for (const auto &fail : throws)
        for (FakeImage *image : {three.get(), one.get()}) {
            image->Fails.OnOperation = fail;
            EXPECT_NO_THROW(EXPECT_FALSE(CopyAll(three->Handle(), one->Handle())));
            image->Fails = {};
            ExpectOneReport(ErrGeneral, Name);
            EXPECT_EQ(three->Count(), 1);
            EXPECT_EQ(one->Count(), 1);
        }
    EXPECT_EQ(Show(one->Handle()), (Rows{"...", "..."}));
}

TEST_F(CopyImageRectPlanesTest, AnImageThatRefusesItsPlanesIsReportedAsErrGeneral) {
    for (std::int32_t FakeImage::Failures::*failure :
         {&FakeImage::Failures::DatatypeStatus, &FakeImage::Failures::VPAStatus})
        for (FakeImage *image : {three.get(), one.get()}) {
            image->Fails.*failure = StatusBadPlane;
            EXPECT_FALSE(CopyAll(three->Handle(), one->Handle()));
            image->Fails = {};
            ExpectOneReport(ErrGeneral, Name);
        }
}

TEST_F(CopyImageRectPlanesTest, GivesBackEveryReference) {
    const auto wide = Uneven(3, 2, 3, 24);
    const auto dense = FakeImage::Planar(3, 2, 3, 24);
    for (const auto &[from, to] :
         {std::pair{three.get(), one.get()}, {wide.get(), dense.get()}, {one.get(), one.get()}}) {
        CopyAll(from->Handle(), to->Handle());
        EXPECT_EQ(from->Count(), 1);
        EXPECT_EQ(to->Count(), 1);
    }
}

} // namespace

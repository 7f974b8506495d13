// Bit 0 of every pixel taken from one image to another: which bits move, which images match, what is left out.
#include "ImageMaps.h"
#include "Overlays.h"
#include "Scan/StatisticsModel.h"

namespace {

using namespace TestSupport;

class CopyOverlayTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }

    static void Copy(FakeImage &source, FakeImage &target) {
        EXPECT_EQ(CopyOverlay(source.Handle(), target.Handle()), 1);
        ExpectNoReport();
        EXPECT_EQ(source.Count(), 1);
        EXPECT_EQ(target.Count(), 1);
    }
    static void ExpectReports(std::intptr_t count, std::uint32_t code) {
        EXPECT_EQ(ReportCount(), count);
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, code);
        EXPECT_EQ(report->function, "CopyOverlay");
        EXPECT_EQ(report->text, ComposedText(code));
        ClearReports();
    }
};

TEST_F(CopyOverlayTest, SetsAndClearsBitZeroOfTheTargetAndKeepsTheOthers) {
    const auto source = Stack<std::uint8_t>(4, 1, 8, {{0x01, 0xFE, 0xFF, 0x00}});
    const auto target = Stack<std::uint8_t>(4, 1, 8, {{0xAA, 0xAB, 0x00, 0xFF}});
    Copy(*source, *target);
    EXPECT_EQ(PixelBytes(target->Handle(), 0), (PlaneBytes{0xAB, 0xAA, 0x01, 0xFE}));
    EXPECT_EQ(PixelBytes(source->Handle(), 0), (PlaneBytes{0x01, 0xFE, 0xFF, 0x00}));
}

TEST_F(CopyOverlayTest, CopiesBitZeroOnlyFromA16BitSourceToAn8BitTarget) {
    const auto source = Stack<std::uint16_t>(4, 1, 0x10, {{0xFF01, 0xFFFE, 0x0100, 0x00FF}});
    const auto target = Stack<std::uint8_t>(4, 1, 8, {{0x10, 0x11, 0xFF, 0x80}});
    Copy(*source, *target);
    EXPECT_EQ(PixelBytes(target->Handle(), 0), (PlaneBytes{0x11, 0x10, 0xFE, 0x81}));
}

TEST_F(CopyOverlayTest, CopiesBitZeroOnlyFromAn8BitSourceToWiderTargets) {
    const auto source = Stack<std::int8_t>(2, 1, 0x108, {{-1, -2}});
    const auto words = Stack<std::int32_t>(2, 1, 0x120, {{-2, -1}});
    Copy(*source, *words);
    EXPECT_EQ(ValuesOf<std::int32_t>(words->Handle()), (std::vector<std::int32_t>{-1, -2}));
    const auto wide = Stack<std::uint64_t>(2, 1, 0x40, {{0, ~std::uint64_t{0}}});
    Copy(*source, *wide);
    EXPECT_EQ(ValuesOf<std::uint64_t>(wide->Handle()), (std::vector<std::uint64_t>{1, ~std::uint64_t{1}}));
}

TEST_F(CopyOverlayTest, NeitherNeedsNorChangesTheFlags) {
    for (const TDataType sourceType : {0x8u, 0x408u})
        for (const TDataType targetType : {0x8u, 0x408u, 0x808u}) {
            const auto source = Stack<std::uint8_t>(1, 1, sourceType, {{1}});
            const auto target = Stack<std::uint8_t>(1, 1, targetType, {{4}});
            Copy(*source, *target);
            EXPECT_EQ(target->Pixels[0], 5);
            EXPECT_EQ(TypeOf(target->Handle(), 0), targetType);
            EXPECT_EQ(TypeOf(source->Handle(), 0), sourceType);
            EXPECT_EQ(target->CallsOf("SetCoordinateMap"), 0);
        }
}

TEST_F(CopyOverlayTest, CopiesEachPlaneToThePlaneOfItsNumber) {
    const auto source = Stack<std::uint8_t>(2, 1, 8, {{1, 0}, {0, 1}, {1, 1}});
    const auto target = Stack<std::uint8_t>(2, 1, 8, {{0, 0}, {0, 0}, {0, 0}});
    Copy(*source, *target);
    EXPECT_EQ(target->Pixels, (PlaneBytes{1, 0, 0, 1, 1, 1}));
}

TEST_F(CopyOverlayTest, OfAnImageOntoItselfClearsTheBits) {
    const auto image = Stack<std::uint8_t>(3, 1, 8, {{1, 254, 255}});
    Copy(*image, *image);
    EXPECT_EQ(image->Pixels, (PlaneBytes{0, 254, 254}));
}

TEST_F(CopyOverlayTest, OfAViewOfTheTargetAtTheSamePlaceClearsTheBits) {
    const auto image = Stack<std::uint16_t>(3, 1, 0x10, {{1, 0xFFFE, 0xFFFF}});
    Handle half, whole;
    ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), VPATRotation180, half.Out()));
    ASSERT_TRUE(CreateRotatedImageMap(half.Get(), VPATRotation180, whole.Out()));
    EXPECT_EQ(CopyOverlay(whole.Get(), image->Handle()), 1);
    EXPECT_EQ(ValuesOf<std::uint16_t>(image->Handle()), (std::vector<std::uint16_t>{0, 0xFFFE, 0xFFFE}));
}

TEST_F(CopyOverlayTest, BetweenOverlappingRowsTakesWhatEarlierPixelsLeft) {
    FakeImage source(4, 1, 5), target(4, 1);
    const auto one = [](std::intptr_t i) { return i; };
    const auto none = [](std::intptr_t) { return std::intptr_t{0}; };
    source.AddPlane(source.Pixels.data(), 8, one, none);
    target.AddPlane(source.Pixels.data() + 1, 8, one, none);
    source.Pixels = {0x11, 0x20, 0x30, 0x41, 0x50};
    ASSERT_EQ(source.BaseOf(0), source.Pixels.data());
    EXPECT_EQ(CopyOverlay(source.Handle(), target.Handle()), 1); // each pixel is copied on from the one before
    EXPECT_EQ(source.Pixels, (PlaneBytes{0x11, 0x21, 0x31, 0x41, 0x51}));
    source.Pixels = {0x11, 0x20, 0x30, 0x41, 0x50};
    EXPECT_EQ(CopyOverlay(target.Handle(), source.Handle()), 1);
    EXPECT_EQ(source.Pixels, (PlaneBytes{0x10, 0x20, 0x31, 0x40, 0x50}));
}

TEST_F(CopyOverlayTest, IntoAPixelShownSeveralTimesTakesTheBitOfTheLast) {
    const auto source = Stack<std::uint8_t>(3, 2, 8, {{1, 1, 0, 0, 0, 1}});
    FakeImage target(3, 2, 1);
    const auto none = [](std::intptr_t) { return std::intptr_t{0}; };
    target.AddPlane(target.Pixels.data(), 8, none, none);
    target.Pixels[0] = 0x40;
    Copy(*source, target);
    EXPECT_EQ(target.Pixels[0], 0x41);
    source->Pixels[5] = 0x80;
    Copy(*source, target);
    EXPECT_EQ(target.Pixels[0], 0x40);
}

TEST_F(CopyOverlayTest, BetweenImagesWithoutPlanesSucceeds) {
    FakeImage source(3, 2), target(3, 2);
    Copy(source, target);
}

TEST_F(CopyOverlayTest, RefusesImagesOfDifferentPlaneCountsOrSizes) {
    const auto source = FakeImage::Planar(4, 3, 2, 8);
    for (const ImageSize size : {ImageSize{1, 4, 3}, ImageSize{3, 4, 3}, ImageSize{0, 4, 3}, ImageSize{2, 5, 3},
                                 ImageSize{2, 4, 2}, ImageSize{2, 3, 4}}) {
        SCOPED_TRACE(testing::PrintToString(size));
        const auto target = FakeImage::Planar(size.Width, size.Height, size.Planes, 8);
        std::fill(target->Pixels.begin(), target->Pixels.end(), std::uint8_t{0xFF});
        const auto before = target->Pixels;
        EXPECT_EQ(CopyOverlay(source->Handle(), target->Handle()), 0);
        ExpectReports(1, ErrIndexRange);
        EXPECT_EQ(CopyOverlay(target->Handle(), source->Handle()), 0);
        ExpectReports(1, ErrIndexRange);
        EXPECT_EQ(target->Pixels, before);
        EXPECT_EQ(source->Count(), 1);
        EXPECT_EQ(target->Count(), 1);
    }
}

/// Planes of one type each, every byte of them of one value.
std::unique_ptr<FakeImage> OfTypes(const std::vector<TDataType> &types, std::uint8_t value) {
    constexpr std::intptr_t room = 6 * 32;
    auto image = std::make_unique<FakeImage>(3, 2, types.size() * room);
    std::fill(image->Pixels.begin(), image->Pixels.end(), value);
    for (std::size_t plane = 0; plane < types.size(); ++plane) {
        const auto bytes = static_cast<std::intptr_t>(PixelSize(types[plane]));
        image->AddPlane(
            image->Pixels.data() + static_cast<std::intptr_t>(plane) * room, types[plane],
            [=](std::intptr_t i) { return i * bytes; }, [=](std::intptr_t j) { return j * 3 * bytes; });
    }
    return image;
}

bool CarriesAnOverlay(TDataType type) {
    const std::size_t size = PixelSize(type);
    return (type & DataTypeFloat) == 0 && (size == 1 || size == 2 || size == 4 || size == 8);
}

/// Copies from planes of one bits to planes of zero bits, and looks at each plane.
void ExpectMixedCopy(const std::vector<TDataType> &sourceTypes, const std::vector<TDataType> &targetTypes) {
    SCOPED_TRACE(testing::PrintToString(sourceTypes) + " to " + testing::PrintToString(targetTypes));
    const auto source = OfTypes(sourceTypes, 0xFF), target = OfTypes(targetTypes, 0x00);
    const std::intptr_t result = CopyOverlay(source->Handle(), target->Handle());
    std::intptr_t done = 0;
    PlaneBytes expected(target->Pixels.size(), 0);
    for (std::size_t plane = 0; plane < targetTypes.size(); ++plane)
        if (CarriesAnOverlay(sourceTypes[plane]) && CarriesAnOverlay(targetTypes[plane])) {
            ++done;
            for (std::size_t pixel = 0; pixel < 6; ++pixel)
                expected[plane * 6 * 32 + pixel * PixelSize(targetTypes[plane])] = 1;
        }
    EXPECT_EQ(target->Pixels, expected);
    EXPECT_EQ(result, done > 0 ? 1 : 0);
    const std::intptr_t refused = std::ssize(targetTypes) - done;
    EXPECT_EQ(ReportCount(), refused == 0 ? 0 : refused + 1);
    if (const auto report = TakeReport(); refused > 0) {
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, done > 0 ? 1u : ErrDataType);
        EXPECT_EQ(report->function, "CopyOverlay");
    }
    EXPECT_EQ(source->Count(), 1);
    EXPECT_EQ(target->Count(), 1);
    ClearReports();
}

TEST_F(CopyOverlayTest, ReportsEachPlaneThatIsLeftOutAndThenOne) {
    ExpectMixedCopy({0x8, 0x220}, {0x8, 0x20});
    ExpectMixedCopy({0x8, 0x20}, {0x8, 0x220});
    ExpectMixedCopy({0x220, 0x18, 0x10}, {0x8, 0x8, 0x140});
    ExpectMixedCopy({0x8, 0x8, 0x8, 0x8}, {0x30, 0x208, 0x108, 0x0});
    ExpectMixedCopy({0x48, 0x40}, {0x8, 0x8});
}

TEST_F(CopyOverlayTest, FailsWhenEveryPlaneIsLeftOut) {
    ExpectMixedCopy({0x220}, {0x220});
    ExpectMixedCopy({0x8, 0x240}, {0x240, 0x8});
    ExpectMixedCopy({0x18, 0x8, 0x0}, {0x18, 0x30, 0x8});
    ExpectMixedCopy({0x208}, {0x8});
}

TEST_F(CopyOverlayTest, ChoosesTheTypesPlaneByPlane) {
    ExpectMixedCopy({0x8, 0x10, 0x20, 0x40, 0x108}, {0x140, 0x120, 0x110, 0x108, 0xC});
}

TEST_F(CopyOverlayTest, ReportsWhatIsNoImage) {
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    image->Pixels = {1, 2, 3, 255};
    const auto expectRefusal = [&](void *source, void *target) {
        EXPECT_EQ(CopyOverlay(source, target), 0);
        ExpectReports(1, ErrNotAnImage);
    };
    expectRefusal(nullptr, image->Handle());
    expectRefusal(image->Handle(), nullptr);
    expectRefusal(nullptr, nullptr);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        expectRefusal(foreign.Get(), image->Handle());
        expectRefusal(image->Handle(), foreign.Get());
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(image->Pixels, (PlaneBytes{1, 2, 3, 255}));
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(CopyOverlayTest, FailsWhenEitherImageRefusesItsDataTypesOrTables) {
    const auto source = OfTypes({0x8, 0x10}, 0xFF), target = OfTypes({0x8, 0x10}, 0x00);
    const auto before = target->Pixels;
    for (FakeImage *const refusing : {source.get(), target.get()})
        for (const bool refusesTables : {false, true}) {
            refusing->Fails.VPAStatus = refusesTables ? StatusBadPlane : 0;
            refusing->Fails.DatatypeStatus = refusesTables ? 0 : StatusBadPlane;
            EXPECT_EQ(CopyOverlay(source->Handle(), target->Handle()), 0);
            const auto report = TakeReport();
            ASSERT_TRUE(report.has_value());
            EXPECT_EQ(report->function, "CopyOverlay");
            ClearReports();
            refusing->Fails.VPAStatus = refusing->Fails.DatatypeStatus = 0;
            EXPECT_EQ(target->Pixels, before);
            EXPECT_EQ(source->Count(), 1);
            EXPECT_EQ(target->Count(), 1);
        }
}

TEST_F(CopyOverlayTest, PassesOnWhatEitherImageThrows) {
    const auto source = OfTypes({0x8, 0x10}, 0xFF), target = OfTypes({0x8, 0x10}, 0x00);
    for (FakeImage *const throwing : {source.get(), target.get()})
        ASSERT_NO_FATAL_FAILURE(ExpectThrowsOfEachOperationToPassOn(
            *throwing, [&] { return CopyOverlay(source->Handle(), target->Handle()); },
            [&] {
                EXPECT_EQ(source->Count(), 1);
                EXPECT_EQ(target->Count(), 1);
            }));
}

} // namespace

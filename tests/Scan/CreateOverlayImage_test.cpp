// Copies of images that can carry an overlay: bit 0 of every pixel cleared, the flag set, and what is refused.
#include "AreaOperations.h"
#include "ImageCopies.h"
#include "ImageQueries.h"
#include "Overlays.h"
#include "Scan/StatisticsModel.h"

namespace {

using namespace TestSupport;

class CreateOverlayImageTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }

    /// Makes the copy and expects success without a report.
    Handle Create(FakeImage &image) {
        Handle result;
        EXPECT_EQ(CreateOverlayImage(image.Handle(), result.Out()), 1);
        ExpectNoReport();
        EXPECT_EQ(image.Count(), 1);
        EXPECT_EQ(RefCount(result.Get()), 1u);
        return result;
    }
    /// Expects a number of reports, of which the newest has a code and this function's name.
    static void ExpectReports(std::intptr_t count, std::uint32_t code) {
        EXPECT_EQ(ReportCount(), count);
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, code);
        EXPECT_EQ(report->function, "CreateOverlayImage");
        EXPECT_EQ(report->text, ComposedText(code));
        ClearReports();
    }
    static void ExpectFailure(void *image, std::intptr_t reports, std::uint32_t code) {
        void *out = UntouchedPointer();
        EXPECT_EQ(CreateOverlayImage(image, &out), 0);
        EXPECT_EQ(out, UntouchedPointer());
        ExpectReports(reports, code);
    }
};

TEST_F(CreateOverlayImageTest, Makes254Of255AndMinusTwoOfMinusOne) {
    const auto bytes = Stack<std::uint8_t>(4, 1, 8, {{255, 254, 1, 0}});
    EXPECT_EQ(ValuesOf<std::uint8_t>(Create(*bytes).Get()), (std::vector<std::uint8_t>{254, 254, 0, 0}));
    const auto signedBytes = Stack<std::int8_t>(4, 1, 0x108, {{-1, -2, 127, -128}});
    EXPECT_EQ(ValuesOf<std::int8_t>(Create(*signedBytes).Get()), (std::vector<std::int8_t>{-2, -2, 126, -128}));
}

TEST_F(CreateOverlayImageTest, ClearsOneBitOfWiderPixels) {
    const auto words = Stack<std::uint16_t>(3, 1, 0x10, {{0xFFFF, 0x0101, 0x8000}});
    EXPECT_EQ(ValuesOf<std::uint16_t>(Create(*words).Get()), (std::vector<std::uint16_t>{0xFFFE, 0x0100, 0x8000}));
    const auto longs = Stack<std::int32_t>(2, 1, 0x120, {{-1, 0x01010101}});
    EXPECT_EQ(ValuesOf<std::int32_t>(Create(*longs).Get()), (std::vector<std::int32_t>{-2, 0x01010100}));
    const auto wide = Stack<std::uint64_t>(2, 1, 0x40, {{~std::uint64_t{0}, 0x0100000001000001u}});
    EXPECT_EQ(ValuesOf<std::uint64_t>(Create(*wide).Get()),
              (std::vector<std::uint64_t>{~std::uint64_t{1}, 0x0100000001000000u}));
}

TEST_F(CreateOverlayImageTest, MasksTheWholeWidthOfPixelsWithFewerBits) {
    const auto twelveBits = Stack<std::uint16_t>(2, 1, 0xC, {{0xFFFF, 0x0001}});
    EXPECT_EQ(ValuesOf<std::uint16_t>(Create(*twelveBits).Get()), (std::vector<std::uint16_t>{0xFFFE, 0}));
    const auto oneBit = Stack<std::uint8_t>(2, 1, 1, {{0xFF, 0x01}});
    EXPECT_EQ(ValuesOf<std::uint8_t>(Create(*oneBit).Get()), (std::vector<std::uint8_t>{0xFE, 0}));
}

TEST_F(CreateOverlayImageTest, SetsTheFlagOfEveryPlane) {
    for (const TDataType type : {0x8u, 0x108u, 0x10u, 0x140u, 0x408u, 0x810u}) {
        const auto image = FakeImage::Planar(3, 2, 3, type);
        const Handle result = Create(*image);
        ASSERT_EQ(SizeOf(result.Get()), (ImageSize{3, 3, 2}));
        for (const std::intptr_t plane : {0, 1, 2})
            EXPECT_EQ(TypeOf(result.Get(), plane), type | DataTypeOverlay);
        EXPECT_TRUE(IsOverlayImage(result.Get()));
        EXPECT_EQ(TypeOf(image->Handle(), 0), type);
    }
}

TEST_F(CreateOverlayImageTest, HasTheLayoutOfACompatibleImage) {
    for (const std::intptr_t planes : {1, 2, 3, 4}) {
        const auto image = FakeImage::Planar(5, 3, planes, 8);
        const Handle result = Create(*image);
        Handle compatible;
        ASSERT_TRUE(CreateCompatibleImage(image->Handle(), 0, 0, 1, compatible.Out()));
        EXPECT_EQ(IsInterface(result.Get(), ORV_IID_IIMAGEDIB), IsInterface(compatible.Get(), ORV_IID_IIMAGEDIB));
        for (std::intptr_t plane = 0; plane < planes; ++plane) {
            const VPAEntry *const table = AccessOf(compatible.Get(), plane).Table;
            ExpectTable(
                AccessOf(result.Get(), plane).Table, 5, 3, [=](std::intptr_t i) { return table[i].XEntry; },
                [=](std::intptr_t j) { return table[j].YEntry; });
        }
    }
}

TEST_F(CreateOverlayImageTest, TakesTheCoordinateMapOver) {
    const auto image = FakeImage::Planar(3, 2, 1, 0x10);
    image->Coordinates = SkewedMap;
    const Handle result = Create(*image);
    TCoordinateMap map{};
    ImageInterface(result.Get())->GetCoordinateMap(&map);
    EXPECT_TRUE(SameMap(map, SkewedMap));
}

TEST_F(CreateOverlayImageTest, IsIndependentOfItsSource) {
    const auto image = Stack<std::uint8_t>(3, 1, 8, {{1, 3, 5}});
    const Handle result = Create(*image);
    EXPECT_EQ(PixelBytes(image->Handle(), 0), (PlaneBytes{1, 3, 5}));
    *AccessOf(result.Get(), 0).At(0, 0) = 77;
    EXPECT_EQ(PixelBytes(image->Handle(), 0), (PlaneBytes{1, 3, 5}));
}

TEST_F(CreateOverlayImageTest, OfAnImageWithoutPlanesIsOneToo) {
    FakeImage image(3, 2);
    const Handle result = Create(image);
    EXPECT_EQ(SizeOf(result.Get()), (ImageSize{0, 3, 2}));
}

/// Planes of one type each over one block of bytes 1, 3, 5, 7 and so on.
std::unique_ptr<FakeImage> OfTypes(const std::vector<TDataType> &types) {
    auto image = std::make_unique<FakeImage>(3, 2, 6 * 32);
    for (std::size_t byte = 0; byte < image->Pixels.size(); ++byte)
        image->Pixels[byte] = static_cast<std::uint8_t>(2 * byte + 1);
    for (const TDataType type : types) {
        const auto bytes = static_cast<std::intptr_t>(PixelSize(type));
        image->AddPlane(
            image->Pixels.data(), type, [=](std::intptr_t i) { return i * bytes; },
            [=](std::intptr_t j) { return j * 3 * bytes; });
    }
    return image;
}

TEST_F(CreateOverlayImageTest, ReportsEachPlaneThatIsNotDoneAndThenOne) {
    const std::vector<TDataType> mixtures[] = {{0x8, 0x220},         {0x220, 0x8}, {0x10, 0x18, 0x240, 0x8},
                                               {0x208, 0x120, 0x30}, {0x8, 0x48},  {0x140, 0x0}};
    for (const auto &types : mixtures) {
        SCOPED_TRACE(testing::PrintToString(types));
        const auto image = OfTypes(types);
        const auto before = image->Pixels;
        image->Coordinates = SkewedMap;
        Handle result;
        EXPECT_EQ(CreateOverlayImage(image->Handle(), result.Out()), 1);
        std::intptr_t refused = 0;
        for (std::size_t i = 0; i < types.size(); ++i) {
            const auto plane = static_cast<std::intptr_t>(i);
            EXPECT_EQ(TypeOf(result.Get(), plane), types[i] | DataTypeOverlay);
            const std::size_t size = PixelSize(types[i]);
            if ((types[i] & DataTypeFloat) != 0 || (size != 1 && size != 2 && size != 4 && size != 8)) {
                ++refused;
                continue;
            }
            PlaneBytes expected = PixelBytes(image->Handle(), plane);
            for (std::size_t byte = 0; byte < expected.size(); byte += size)
                expected[byte] &= 0xFE;
            EXPECT_EQ(PixelBytes(result.Get(), plane), expected) << "plane " << plane;
        }
        ExpectReports(refused + 1, 1);
        EXPECT_EQ(image->Pixels, before);
        EXPECT_EQ(image->Count(), 1);
        TCoordinateMap map{};
        ImageInterface(result.Get())->GetCoordinateMap(&map);
        EXPECT_TRUE(SameMap(map, SkewedMap));
    }
}

TEST_F(CreateOverlayImageTest, OfAMixtureOfIntegersIsWhole) {
    const auto image = OfTypes({0x8, 0x10, 0x20, 0x40, 0x108, 0x110, 0x120, 0x140});
    const Handle result = Create(*image);
    EXPECT_EQ(SizeOf(result.Get()), (ImageSize{8, 3, 2}));
    EXPECT_EQ(PixelBytes(result.Get(), 4), PixelBytes(result.Get(), 0));
    EXPECT_EQ(ValuesOf<std::uint16_t>(result.Get(), 1)[0], 0x0300);
}

TEST_F(CreateOverlayImageTest, FailsWhenNoPlaneCanBeDone) {
    const std::vector<TDataType> mixtures[] = {{0x220}, {0x240},       {0x18},         {0x208},
                                               {0x0},   {0x220, 0x18}, {0x240, 0x240}, {0x30, 0x28, 0x220}};
    for (const auto &types : mixtures) {
        SCOPED_TRACE(testing::PrintToString(types));
        const auto image = OfTypes(types);
        ExpectFailure(image->Handle(), std::ssize(types) + 1, ErrDataType);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_F(CreateOverlayImageTest, ReportsWhatIsNoImage) {
    ExpectFailure(nullptr, 1, ErrNotAnImage);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectFailure(foreign.Get(), 1, ErrNotAnImage);
        EXPECT_EQ(foreign.Count(), 1);
    }
}

TEST_F(CreateOverlayImageTest, ReportsANullOutput) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    EXPECT_EQ(CreateOverlayImage(image->Handle(), nullptr), 0);
    ExpectReports(1, ErrParameter);
    EXPECT_EQ(CreateOverlayImage(nullptr, nullptr), 0);
    ExpectReports(1, ErrNotAnImage);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(CreateOverlayImageTest, FailsWhenTheCopyCanNotBeMade) {
    for (const std::intptr_t planes : {1, 3}) {
        const auto empty = FakeImage::Planar(0, 2, planes, 8); // no bitmap has width 0
        ExpectFailure(empty->Handle(), 1, ErrGeneral);
        EXPECT_EQ(empty->Count(), 1);
    }
}

TEST_F(CreateOverlayImageTest, FailsWhenTheImageRefusesADataTypeOrATable) {
    const auto image = FakeImage::Planar(3, 2, 2, 0x10);
    for (const bool refusesTables : {false, true}) {
        image->Fails.VPAStatus = refusesTables ? StatusBadPlane : 0;
        image->Fails.DatatypeStatus = refusesTables ? 0 : StatusBadPlane;
        void *out = UntouchedPointer();
        EXPECT_EQ(CreateOverlayImage(image->Handle(), &out), 0);
        EXPECT_EQ(out, UntouchedPointer());
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, ErrGeneral);
        EXPECT_EQ(report->function, "CreateOverlayImage");
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_F(CreateOverlayImageTest, PassesOnWhatTheImageThrows) {
    for (const TDataType type : {0x8u, 0x10u}) {
        const auto image = FakeImage::Planar(3, 2, 3, type);
        void *out = UntouchedPointer();
        ASSERT_NO_FATAL_FAILURE(ExpectThrowsOfEachOperationToPassOn(
            *image, [&] { return CreateOverlayImage(image->Handle(), &out); },
            [&] { EXPECT_EQ(out, UntouchedPointer()); }));
        ReleaseObject(out);
    }
}

TEST_F(CreateOverlayImageTest, DiffersFromPlainImagesInItsDataTypeSoThatAreasAreNotCopiedBetweenThem) {
    const auto plain = FakeImage::Planar(3, 2, 1, 8);
    const Handle overlay = Create(*plain);
    const TArea area{0, 0, 2, 0, 0, 1};
    EXPECT_EQ(CopyImageArea(overlay.Get(), plain->Handle(), 0, 0, 0, 0, area), 0);
    ExpectOneReport(ErrNotPossible, "CopyImageArea");
}

} // namespace

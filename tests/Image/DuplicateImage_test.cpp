// What a duplicate takes over and what it owns, planes that cannot be copied, failures, and memory at unreadable
// pages. The pixels of all layouts are compared in DuplicateLayouts_test.cpp.
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

namespace {

using namespace TestSupport;

Handle Duplicate(void *image) {
    Handle copy;
    EXPECT_EQ(CreateDuplicateImage(image, copy.Out()), 1);
    EXPECT_TRUE(copy);
    return copy;
}

TEST(CreateDuplicateImage, ReportsWhatIsNoImage) {
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_EQ(CreateDuplicateImage(nullptr, &out), 0);
    ExpectOneReport(0x80000010u, "CreateDuplicateImage");
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        EXPECT_EQ(CreateDuplicateImage(foreign.Get(), &out), 0);
        ExpectOneReport(0x80000010u, "CreateDuplicateImage");
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(out, UntouchedPointer());
}

TEST(CreateDuplicateImage, ReportsNothingOnSuccessAndGivesTheSourceBack) {
    const auto image = FakeImage::Planar(4, 3, 3, 0x10);
    ClearReports();
    const auto copy = Duplicate(image->Handle());
    ExpectNoReport();
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(RefCount(copy.Get()), 1u);
}

TEST(CreateDuplicateImage, CopiesTheCoordinateMap) {
    for (const TDataType type : {0x8u, 0x10u}) {
        const auto image = FakeImage::Planar(4, 3, 1, type);
        image->Coordinates = {-1.25, 1e300, {0.1, -0.0, 5.0, -7.5}};
        const auto copy = Duplicate(image->Handle());
        TCoordinateMap map{};
        ImageInterface(copy.Get())->GetCoordinateMap(&map);
        EXPECT_TRUE(SameMap(map, image->Coordinates));
    }
}

TEST(CreateDuplicateImage, TakesSizeAndDataTypesOver) {
    for (const TDataType type : {0x8u, 0x108u, 0x508u, 0x1u, 0xCu, 0x110u, 0x220u, 0x1Du, 0x3Cu, 0x820u, 0x240u}) {
        const auto image = FakeImage::Planar(5, 3, 2, type);
        const auto copy = Duplicate(image->Handle());
        EXPECT_EQ(SizeOf(copy.Get()), (ImageSize{2, 5, 3}));
        EXPECT_EQ(TypeOf(copy.Get(), 0), type);
        EXPECT_EQ(TypeOf(copy.Get(), 1), type);
    }
}

TEST(CreateDuplicateImage, OfAnOverlayImageIsOneToo) {
    Handle image;
    ASSERT_TRUE(CreateGenericImage(3, 5, 3, true, image.Out()));
    const auto copy = Duplicate(image.Get());
    for (std::intptr_t plane = 0; plane < 3; ++plane)
        EXPECT_EQ(TypeOf(copy.Get(), plane), 0x408u);
    EXPECT_FALSE(IsInterface(copy.Get(), ORV_IID_IIMAGEDIB)) << "an overlay word is no plain 8-bit word";
}

TEST(CreateDuplicateImage, OfAViewHasPlainBuffersAndNoHoldOnTheSource) {
    for (const TDataType type : {0x8u, 0x10u}) {
        auto image = FakeImage::Planar(5, 3, 1, type);
        Handle view;
        ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), VPATRotation90Clockwise, view.Out()));
        const auto copy = Duplicate(view.Get());
        view.Reset();
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(SizeOf(copy.Get()), (ImageSize{1, 3, 5}));
        const std::intptr_t bytes = type == 0x8 ? 1 : 2;
        const auto access = AccessOf(copy.Get(), 0);
        EXPECT_EQ(access.Table[1].XEntry - access.Table[0].XEntry, bytes);
        EXPECT_EQ(access.Table[1].YEntry, type == 0x8 ? -4 : 6);
    }
}

TEST(CreateDuplicateImage, IsIndependentOfItsSource) {
    for (const TDataType type : {0x8u, 0x220u}) {
        const auto source = MakeExternal(PitchRules(4, 3, 3, type)[1], RandomContent(4, 3, 3, type, 5), 4, 3, type);
        const auto copy = Duplicate(source.Get());
        std::memset(AccessOf(source.Get(), 0).At(0, 0), 0x5A, 1);
        std::memset(AccessOf(copy.Get(), 1).At(0, 0), 0xA5, 1);
        EXPECT_EQ(PixelBytes(copy.Get(), 0), source.Content[0]);
        EXPECT_EQ(PixelBytes(source.Get(), 1), source.Content[1]);
    }
}

TEST(CreateDuplicateImage, OfAnImageWithoutPlanesIsOneToo) {
    FakeImage image(6, 2);
    ClearReports();
    const auto copy = Duplicate(image.Handle());
    EXPECT_EQ(SizeOf(copy.Get()), (ImageSize{0, 6, 2}));
    ExpectNoReport();
}

TEST(CreateDuplicateImage, FailsWhenNoPlaneCanBeCopied) {
    for (const TDataType type : {0x18u, 0x28u, 0x30u, 0x138u, 0x80u, 0xFFu})
        for (const std::intptr_t planes : {1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << planes << " planes of type " << type);
            const auto image = FakeImage::Planar(3, 2, planes, type);
            ClearReports();
            void *out = UntouchedPointer();
            EXPECT_EQ(CreateDuplicateImage(image->Handle(), &out), 0);
            EXPECT_EQ(out, UntouchedPointer());
            EXPECT_EQ(ReportCount(), planes + 1) << "one for each plane that is skipped and one for the whole";
            const auto report = TakeReport();
            ASSERT_TRUE(report.has_value());
            EXPECT_EQ(report->code, 0x8000001Cu);
            EXPECT_EQ(report->function, "CreateDuplicateImage");
            EXPECT_EQ(report->text, ComposedText(0x8000001Cu));
            EXPECT_EQ(image->Count(), 1);
        }
}

/// Plane 0 of 8 bits; the planes behind are no bytes and 32 bytes wide, in words that count as plain 8-bit.
std::unique_ptr<FakeImage> PartlyCopyable(std::intptr_t width, std::intptr_t height) {
    auto image = std::make_unique<FakeImage>(width, height, static_cast<std::size_t>(width * height * 32));
    for (const TDataType type : {0x8u, 0x800u, 0x8FFu})
        image->AddPlane(
            image->Pixels.data(), type, [=](std::intptr_t i) { return i * std::intptr_t{32}; },
            [=](std::intptr_t j) { return j * width * std::intptr_t{32}; });
    std::fill(image->Pixels.begin(), image->Pixels.end(), std::uint8_t{0xC3});
    return image;
}

TEST(CreateDuplicateImage, ZeroesSkippedPlanesAndReportsOneWhenOthersWereCopied) {
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{1, 1}, {5, 3}, {17, 31}}) {
        const auto image = PartlyCopyable(width, height);
        ClearReports();
        const auto copy = Duplicate(image->Handle());
        EXPECT_EQ(ReportCount(), 3) << "one for each of two planes that are skipped and one for the whole";
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, 1u);
        EXPECT_EQ(report->function, "CreateDuplicateImage");
        EXPECT_EQ(report->text, ComposedText(1));
        const auto pixels = static_cast<std::size_t>(width * height);
        EXPECT_EQ(PixelBytes(copy.Get(), 0), PlaneBytes(pixels, 0xC3));
        EXPECT_EQ(PixelBytes(copy.Get(), 1), PlaneBytes(pixels, 0));
        EXPECT_EQ(PixelBytes(copy.Get(), 2), PlaneBytes(pixels, 0));
        EXPECT_EQ(image->Count(), 1);
    }
}

/// Tells a size that no memory holds.
class EnormousImage final : public pOLE::IImageVPA {
public:
    explicit EnormousImage(TDataType planeType) : type(planeType) {}
    std::int32_t QueryInterface(const char *, void **queried) override {
        *queried = static_cast<pOLE::IImageVPA *>(this);
        references.Take();
        return 0;
    }
    std::uintptr_t AddRef() override { return references.Take(); }
    std::uintptr_t Release() override { return references.GiveBack(); }
    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override {
        *planes = 1;
        *width = *height = std::intptr_t{1} << 40;
        return 0;
    }
    std::int32_t GetPlaneDatatype(std::intptr_t, TDataType *planeType) override {
        *planeType = type;
        return 0;
    }
    std::int32_t GetPlaneVPA(std::intptr_t, void **, VPAEntry **) override { return -1; }
    std::int32_t GetCoordinateMap(TCoordinateMap *) override { return -1; }
    std::int32_t SetCoordinateMap(TCoordinateMap) override { return -1; }
    void *Handle() { return static_cast<pOLE::IImageVPA *>(this); }
    std::intptr_t Count() const { return references.Count(); }

private:
    CountedReferences references;
    TDataType type;
};

TEST(CreateDuplicateImage, ReportsATargetThatCannotBeMade) {
    for (const TDataType type : {0x8u, 0x10u}) {
        EnormousImage image(type);
        ClearReports();
        void *out = UntouchedPointer();
        EXPECT_EQ(CreateDuplicateImage(image.Handle(), &out), 0);
        EXPECT_EQ(out, UntouchedPointer());
        ExpectOneReport(0x80000001u, "CreateDuplicateImage");
        EXPECT_EQ(image.Count(), 1);
    }
}

TEST(CreateDuplicateImage, ReportsAnEmptyBitmapAsATargetThatCannotBeMade) {
    FakeImage image(0, 5);
    const auto zero = [](std::intptr_t) { return std::intptr_t{0}; };
    image.AddPlane(nullptr, 0x8, zero, zero);
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_EQ(CreateDuplicateImage(image.Handle(), &out), 0);
    EXPECT_EQ(out, UntouchedPointer());
    ExpectOneReport(0x80000001u, "CreateDuplicateImage");
}

TEST(CreateDuplicateImage, TakesPlanesOfDifferentTypesWithoutHarm) {
    FakeImage image(2, 2, 64);
    for (const TDataType type : {0x8u, 0x10u, 0x18u})
        image.AddPlane(
            image.Pixels.data(), type, [](std::intptr_t i) { return 4 * i; }, [](std::intptr_t j) { return 8 * j; });
    Handle copy;
    const bool copied = CreateDuplicateImage(image.Handle(), copy.Out()) != 0;
    EXPECT_EQ(copied, static_cast<bool>(copy));
    EXPECT_EQ(image.Count(), 1);
}

} // namespace

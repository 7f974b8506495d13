// Images of the same form: which layout comes out of which data types, the sizes, the overlay flag, the failures.
#include "ImageCopies.h"
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

constexpr unsigned char OverlayFlags[] = {1, 2, 255};
constexpr unsigned char NoAndYes[] = {0, 1};

/// An image of the tests' own with a plane of each type, all over the same few bytes.
std::unique_ptr<FakeImage> OfTypes(std::initializer_list<TDataType> types, std::intptr_t width = 5,
                                   std::intptr_t height = 3) {
    auto image = std::make_unique<FakeImage>(width, height, 64);
    const auto zero = [](std::intptr_t) { return std::intptr_t{0}; };
    for (const TDataType type : types)
        image->AddPlane(image->Pixels.data(), type, zero, zero);
    return image;
}

Handle Compatible(void *image, std::intptr_t width = 0, std::intptr_t height = 0, unsigned char overlay = 0) {
    Handle result;
    EXPECT_TRUE(CreateCompatibleImage(image, width, height, overlay, result.Out()));
    return result;
}

/// Rows first in memory first, without padding: the layout of typed planes.
void ExpectTypedPlanes(const Handle &image, ImageSize size, TDataType type) {
    ASSERT_TRUE(image);
    EXPECT_EQ(SizeOf(image.Get()), size);
    EXPECT_FALSE(IsInterface(image.Get(), ORV_IID_IIMAGEDIB));
    const auto bytes = static_cast<std::intptr_t>(PixelSize(type));
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane) {
        EXPECT_EQ(TypeOf(image.Get(), plane), type);
        ExpectTable(
            AccessOf(image.Get(), plane).Table, size.Width, size.Height, [=](std::intptr_t i) { return i * bytes; },
            [=](std::intptr_t j) { return j * bytes * size.Width; });
    }
    EXPECT_EQ(RefCount(image.Get()), 1u);
}

/// Last row first in memory, padded to four bytes, three planes interleaved: what CreateGenericImage makes.
void ExpectGenericPlanes(const Handle &image, ImageSize size, TDataType type) {
    ASSERT_TRUE(image);
    EXPECT_EQ(SizeOf(image.Get()), size);
    EXPECT_EQ(IsInterface(image.Get(), ORV_IID_IIMAGEDIB), size.Planes == 1 || size.Planes == 3);
    const std::intptr_t step = size.Planes == 3 ? 3 : 1;
    const std::intptr_t stride = (step * size.Width + 3) & ~std::intptr_t{3};
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane) {
        EXPECT_EQ(TypeOf(image.Get(), plane), type);
        const std::intptr_t start = (size.Height - 1) * stride + (step == 3 ? 2 - plane : 0);
        ExpectTable(
            AccessOf(image.Get(), plane).Table, size.Width, size.Height,
            [=](std::intptr_t i) { return start + i * step; }, [=](std::intptr_t j) { return -j * stride; });
    }
    EXPECT_EQ(RefCount(image.Get()), 1u);
}

TEST(CreateCompatibleImage, ReportsWhatIsNoImage) {
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_FALSE(CreateCompatibleImage(nullptr, 0, 0, 0, &out));
    ExpectOneReport(0x80000010u, "CreateCompatibleImage");
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        EXPECT_FALSE(CreateCompatibleImage(foreign.Get(), 4, 4, 0, &out));
        ExpectOneReport(0x80000010u, "CreateCompatibleImage");
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(out, UntouchedPointer());
}

TEST(CreateCompatibleImage, ReportsANegativeSizeWhenNeitherIsZero) {
    const auto image = OfTypes({0x8});
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{-1, 1},
                                        {1, -1},
                                        {-1, -1},
                                        {Lowest, 5},
                                        {5, Lowest},
                                        {Highest, -1}}) {
        ClearReports();
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreateCompatibleImage(image->Handle(), width, height, 0, &out));
        EXPECT_EQ(out, UntouchedPointer());
        ExpectOneReport(0x8000001Au, "CreateCompatibleImage");
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateCompatibleImage, TakesBothSizesFromTheImageWhenEitherIsZero) {
    const auto image = OfTypes({0x10}, 5, 3);
    ClearReports();
    for (const auto &[width, height] :
         {std::pair<std::intptr_t, std::intptr_t>{0, 0}, {0, 100}, {100, 0}, {0, -7}, {-7, 0}, {Highest, 0}})
        EXPECT_EQ(SizeOf(Compatible(image->Handle(), width, height).Get()), (ImageSize{1, 5, 3}));
    ExpectNoReport();
}

TEST(CreateCompatibleImage, MakesAGenericImageOfPlainEightBitPlanes) {
    for (const std::intptr_t planes : {1, 2, 3, 4}) {
        const auto image = FakeImage::Planar(5, 3, planes, 0x8);
        ExpectGenericPlanes(Compatible(image->Handle()), {planes, 5, 3}, 0x8);
        ExpectGenericPlanes(Compatible(image->Handle(), 9, 2), {planes, 9, 2}, 0x8);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateCompatibleImage, MarksAGenericImageAsOverlayOnDemand) {
    for (const unsigned char overlay : OverlayFlags)
        for (const std::intptr_t planes : {1, 2, 3})
            ExpectGenericPlanes(Compatible(FakeImage::Planar(4, 4, planes, 0x8)->Handle(), 0, 0, overlay),
                                {planes, 4, 4}, 0x408);
}

TEST(CreateCompatibleImage, MakesTypedPlanesOfEqualTypes) {
    for (const TDataType type : {0x108u, 0x10u, 0x110u, 0x20u, 0x120u, 0x40u, 0x140u, 0x220u, 0x240u, 0x18u, 0x820u})
        for (const std::intptr_t planes : {1, 2, 3}) {
            const auto image = FakeImage::Planar(5, 3, planes, type);
            ExpectTypedPlanes(Compatible(image->Handle()), {planes, 5, 3}, type);
            ExpectTypedPlanes(Compatible(image->Handle(), 2, 7, 1), {planes, 2, 7}, type | 0x400);
        }
}

TEST(CreateCompatibleImage, MakesTypedPlanesOfEightBitOverlayPlanes) {
    for (const unsigned char overlay : NoAndYes)
        ExpectTypedPlanes(Compatible(FakeImage::Planar(5, 3, 3, 0x408)->Handle(), 0, 0, overlay), {3, 5, 3}, 0x408);
}

// Required: a word counts as plain 8-bit by its remainder modulo 255, not by its low byte.
TEST(CreateCompatibleImage, CountsWordsWithTheRemainderEightAsPlainEightBit) {
    ExpectGenericPlanes(Compatible(OfTypes({0x206})->Handle()), {1, 5, 3}, 0x8);
    ExpectGenericPlanes(Compatible(OfTypes({0x8, 0x206, 0x8FF})->Handle()), {3, 5, 3}, 0x8);
    ExpectGenericPlanes(Compatible(OfTypes({0x404})->Handle()), {1, 5, 3}, 0x408);
    ExpectGenericPlanes(Compatible(OfTypes({0x8, 0x602})->Handle()), {2, 5, 3}, 0x408);
}

TEST(CreateCompatibleImage, CountsNoSignedWordAsPlainEightBit) {
    ExpectTypedPlanes(Compatible(OfTypes({0x107})->Handle()), {1, 5, 3}, 0x107); // 263 modulo 255 is 8
    ExpectTypedPlanes(Compatible(OfTypes({0x305})->Handle()), {1, 5, 3}, 0x305); // 773 modulo 255 is 8
}

TEST(CreateCompatibleImage, MakesAnImageWithoutPlanesOfOne) {
    const auto image = OfTypes({}, 6, 2);
    ClearReports();
    EXPECT_EQ(SizeOf(Compatible(image->Handle()).Get()), (ImageSize{0, 6, 2}));
    EXPECT_EQ(SizeOf(Compatible(image->Handle(), 3, 4, 1).Get()), (ImageSize{0, 3, 4}));
    ExpectNoReport();
}

TEST(CreateCompatibleImage, TakesNoCoordinatesOver) {
    for (const TDataType type : {0x8u, 0x10u}) {
        const auto image = FakeImage::Planar(4, 4, 1, type);
        image->Coordinates = {1.0, 2.0, {3.0, 4.0, 5.0, 6.0}};
        const auto result = Compatible(image->Handle());
        TCoordinateMap map{};
        ImageInterface(result.Get())->GetCoordinateMap(&map);
        EXPECT_TRUE(SameMap(map, IdentityMap));
    }
}

TEST(CreateCompatibleImage, GivesEveryLayoutThePlainForm) {
    for (const auto &image : MakeLayouts(7, 5, 3, 0x110))
        ExpectTypedPlanes(Compatible(image.Get()), {3, 7, 5}, 0x110);
    for (const auto &image : MakeLayouts(7, 5, 3, 0x8)) {
        Handle turned;
        ASSERT_TRUE(CreateRotatedImageMap(image.Get(), VPATRotation90Clockwise, turned.Out()));
        ExpectGenericPlanes(Compatible(turned.Get()), {3, 5, 7}, 0x8);
    }
}

TEST(CreateCompatibleImage, OwnsMemoryApartFromTheSource) {
    for (const TDataType type : {0x8u, 0x10u}) {
        auto image = FakeImage::Planar(4, 4, 2, type);
        const auto before = image->Pixels;
        const auto result = Compatible(image->Handle());
        for (std::intptr_t plane = 0; plane < 2; ++plane)
            for (std::intptr_t pixel = 0; pixel < 16; ++pixel)
                std::memset(AccessOf(result.Get(), plane).At(pixel % 4, pixel / 4), 0x5A, PixelSize(type));
        EXPECT_EQ(image->Pixels, before);
        EXPECT_EQ(image->Count(), 1) << "the result holds nothing of the source";
    }
}

TEST(CreateCompatibleImage, GivesFalseWithoutAReportForASizeBeyondMemory) {
    ClearReports();
    for (const TDataType type : {0x8u, 0x10u})
        for (const unsigned char overlay : NoAndYes) {
            Handle result;
            const auto image = FakeImage::Planar(4, 4, 3, type);
            EXPECT_FALSE(CreateCompatibleImage(image->Handle(), Highest, Highest, overlay, result.Out()));
            EXPECT_FALSE(CreateCompatibleImage(image->Handle(), Highest, 1, overlay, result.Out()));
            EXPECT_FALSE(result);
            EXPECT_EQ(image->Count(), 1);
        }
    ExpectNoReport();
}

TEST(CreateCompatibleImage, TakesPlanesOfDifferentTypesWithoutHarm) {
    for (const auto &image : {OfTypes({0x8, 0x10}), OfTypes({0x10, 0x8, 0x240}), OfTypes({0x408, 0x8})})
        for (const unsigned char overlay : NoAndYes) {
            Handle result;
            const bool made = CreateCompatibleImage(image->Handle(), 3, 2, overlay, result.Out());
            EXPECT_EQ(made, static_cast<bool>(result));
            EXPECT_EQ(image->Count(), 1);
        }
}

} // namespace

// Copies in one interleaved block: where each pixel lies, what a copy holds, mixed types, memory that is short, and
// every pixel of all layouts and types.
#include "Image/MapModel.h"
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"

namespace {

using namespace TestSupport;

constexpr const char *Name = "CreateDuplicateImageEx";

Handle Duplicated(void *image) {
    ClearReports();
    Handle copy;
    EXPECT_TRUE(CreateDuplicateImageEx(image, copy.Out()));
    ExpectNoReport();
    return copy;
}

/// One block, pixel by pixel, rows without a gap; one count.
void ExpectInterleaved(void *copy, const ImageSize &size, TDataType type) {
    ASSERT_EQ(SizeOf(copy), size);
    EXPECT_EQ(RefCount(copy), 1u);
    const auto bytes = static_cast<std::intptr_t>(PixelSize(type));
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane) {
        const PlaneAccess access = AccessOf(copy, plane);
        EXPECT_EQ(TypeOf(copy, plane), type);
        EXPECT_EQ(access.Base, AccessOf(copy, 0).Base);
        ASSERT_NO_FATAL_FAILURE(ExpectTable(
            access.Table, size.Width, size.Height,
            [=](std::intptr_t i) { return plane * bytes + i * size.Planes * bytes; },
            [=](std::intptr_t j) { return j * size.Width * size.Planes * bytes; }));
    }
}

void ExpectCopyOf(void *image, const ImageSize &size, TDataType type) {
    const Handle copy = Duplicated(image);
    ASSERT_NO_FATAL_FAILURE(ExpectInterleaved(copy.Get(), size, type));
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
        ASSERT_EQ(PixelBytes(copy.Get(), plane), PixelBytes(image, plane)) << "plane " << plane;
}

/// Planes of the types, all over the same bytes, with the identity of a pixel in them.
std::unique_ptr<FakeImage> Mixed(std::initializer_list<TDataType> types, std::intptr_t width, std::intptr_t height) {
    auto image = std::make_unique<FakeImage>(width, height, static_cast<std::size_t>(width * height * 8));
    std::iota(image->Pixels.begin(), image->Pixels.end(), std::uint8_t{1});
    for (const TDataType type : types)
        image->AddPlane(
            image->Pixels.data(), type, [](auto i) { return 8 * i; }, [=](auto j) { return 8 * width * j; });
    return image;
}

} // namespace

TEST(CreateDuplicateImageEx, OfThreePlanarPlanesIsInterleaved) {
    const auto content = RandomContent(6, 4, 3, 8, 1);
    const NamedImage planar = MakeExternal(PitchRules(6, 4, 3, 8)[0], content, 6, 4, 8);
    const Handle copy = Duplicated(planar.Get());
    ExpectInterleaved(copy.Get(), {3, 6, 4}, 8);
    for (std::size_t plane = 0; plane < 3; ++plane)
        EXPECT_EQ(PixelBytes(copy.Get(), static_cast<std::intptr_t>(plane)), content[plane]);
}

TEST(CreateDuplicateImageEx, OfEveryLayoutTypeAndPlaneCountHasItsPixelsInterleaved) {
    std::uint32_t seed = 10;
    for (const TDataType type : TenPixelTypes)
        for (const auto &[width, height] :
             {std::pair<std::intptr_t, std::intptr_t>{1, 1}, {1, 13}, {13, 1}, {7, 5}, {17, 31}, {64, 3}})
            for (std::intptr_t planes = 1; planes <= 5; ++planes)
                for (const NamedImage &image : MakeLayouts(width, height, planes, type, ++seed)) {
                    SCOPED_TRACE(testing::Message() << image.Name << ", " << planes << " planes of " << width << " x "
                                                    << height << ", type " << type);
                    ASSERT_NO_FATAL_FAILURE(ExpectCopyOf(image.Get(), {planes, width, height}, type));
                }
}

TEST(CreateDuplicateImageEx, OfMapsOfTurnedImagesHasTheirPixelsInterleaved) {
    std::mt19937_64 random(2);
    std::uint32_t seed = 3000;
    for (const TDataType type : TenPixelTypes)
        for (const std::uint32_t rotation : {1u, 2u, 3u})
            for (const NamedImage &image : MakeLayouts(9, 6, 3, type, ++seed)) {
                SCOPED_TRACE(testing::Message() << image.Name << ", type " << type << ", rotation " << rotation);
                const PixelRectangle part = RandomPart(random, 9, 6);
                const auto width = static_cast<std::intptr_t>(1 + random() % 12);
                const auto height = static_cast<std::intptr_t>(1 + random() % 12);
                Handle map, turned;
                ASSERT_TRUE(CreateImageMap(image.Get(), part.Left, part.Top, part.Right, part.Bottom, width, height,
                                           map.Out()));
                ASSERT_TRUE(CreateRotatedImageMap(map.Get(), rotation, turned.Out()));
                ASSERT_NO_FATAL_FAILURE(ExpectCopyOf(map.Get(), {3, width, height}, type));
                ASSERT_NO_FATAL_FAILURE(ExpectCopyOf(
                    turned.Get(), rotation == 2 ? ImageSize{3, width, height} : ImageSize{3, height, width}, type));
            }
}

TEST(CreateDuplicateImageEx, OfGenericImagesHasTheirPixelsInterleaved) {
    std::mt19937_64 random(3);
    for (const bool overlay : {false, true})
        for (std::intptr_t planes = 1; planes <= 4; ++planes)
            for (const auto &[width, height] :
                 {std::pair<std::intptr_t, std::intptr_t>{1, 1}, {7, 5}, {8, 3}, {5, 9}}) {
                Handle image;
                ASSERT_TRUE(CreateGenericImage(planes, width, height, overlay, image.Out()));
                for (std::intptr_t plane = 0; plane < planes; ++plane)
                    for (std::intptr_t i = 0; i < width * height; ++i)
                        *AccessOf(image.Get(), plane).At(i % width, i / width) = static_cast<std::uint8_t>(random());
                ASSERT_NO_FATAL_FAILURE(ExpectCopyOf(image.Get(), {planes, width, height}, overlay ? 0x408 : 0x8));
            }
}

TEST(CreateDuplicateImageEx, ReadsNothingOutsideTheSource) {
    for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before})
        for (const TDataType type : {0x8u, 0x10u, 0x220u, 0x40u})
            for (const std::intptr_t planes : {1, 3}) {
                const auto bytes = static_cast<std::intptr_t>(PixelSize(type));
                for (const PitchRule &rule : PitchRules(33, 7, planes, type)) {
                    const std::intptr_t ends[] = {32 * rule.X, 6 * rule.Y, (planes - 1) * rule.Plane};
                    std::intptr_t lowest = 0, highest = bytes;
                    for (const std::intptr_t end : ends) {
                        lowest += std::min<std::intptr_t>(end, 0);
                        highest += std::max<std::intptr_t>(end, 0);
                    }
                    const FencedBlock block(static_cast<std::size_t>(highest - lowest), fence);
                    for (std::intptr_t i = 0; i < highest - lowest; ++i)
                        block.Data()[i] = static_cast<std::uint8_t>(i * 7 + 1);
                    Handle image;
                    ASSERT_EQ(CreateImageFromPointer(block.Data() - lowest, 0, 33, 7, planes, type, rule.X, rule.Y,
                                                     rule.Plane, nullptr, nullptr, nullptr, image.Out()),
                              0);
                    SCOPED_TRACE(testing::Message() << rule.Name << ", type " << type << ", " << planes << " planes");
                    ASSERT_NO_FATAL_FAILURE(ExpectCopyOf(image.Get(), {planes, 33, 7}, type));
                }
            }
}

TEST(CreateDuplicateImageEx, CopiesTheCoordinateMapAndHoldsNothing) {
    for (const bool mixed : {false, true}) {
        const auto image = mixed ? Mixed({0x8, 0x20}, 4, 3) : FakeImage::Planar(4, 3, 2, 0x10);
        image->Coordinates = SkewedMap;
        const auto before = image->Pixels;
        const Handle copy = Duplicated(image->Handle());
        EXPECT_TRUE(SameMap(MapOf(copy.Get()), SkewedMap));
        EXPECT_EQ(RefCount(copy.Get()), 1u);
        EXPECT_EQ(image->Count(), 1);
        for (std::intptr_t i = 0; i < 12; ++i)
            *AccessOf(copy.Get(), 1).At(i % 4, i / 4) = 0x5A;
        EXPECT_EQ(image->Pixels, before);
    }
}

TEST(CreateDuplicateImageEx, OfMixedTypesHasABlockForEachPlane) {
    for (const auto &types : {std::initializer_list<TDataType>{0x8, 0x10},
                              {0x240, 0x8, 0x110},
                              {0x408, 0x8},
                              {0x8, 0x8, 0x120},
                              {0x40, 0x140, 0x220, 0x20, 0x108}})
        for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{1, 1}, {1, 7}, {6, 1}, {5, 4}}) {
            const auto image = Mixed(types, width, height);
            const Handle copy = Duplicated(image->Handle());
            ASSERT_EQ(SizeOf(copy.Get()), (ImageSize{std::ssize(types), width, height}));
            EXPECT_EQ(RefCount(copy.Get()), 1u);
            std::vector<std::uint8_t *> bases;
            for (std::intptr_t plane = 0; plane < std::ssize(types); ++plane) {
                const TDataType type = types.begin()[plane];
                const auto bytes = static_cast<std::intptr_t>(PixelSize(type));
                EXPECT_EQ(TypeOf(copy.Get(), plane), type);
                ExpectTable(
                    AccessOf(copy.Get(), plane).Table, width, height, [=](std::intptr_t i) { return i * bytes; },
                    [=, w = width](std::intptr_t j) { return j * w * bytes; });
                EXPECT_EQ(PixelBytes(copy.Get(), plane), PixelBytes(image->Handle(), plane)) << "plane " << plane;
                bases.push_back(AccessOf(copy.Get(), plane).Base);
            }
            std::sort(bases.begin(), bases.end());
            EXPECT_EQ(std::unique(bases.begin(), bases.end()), bases.end());
        }
}

TEST(CreateDuplicateImageEx, ReportsWhatIsNoImage) {
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_FALSE(CreateDuplicateImageEx(nullptr, &out));
    ExpectOneReport(0x80000010u, Name);
    for (const ForeignHandle &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        EXPECT_FALSE(CreateDuplicateImageEx(foreign.Get(), &out));
        ExpectOneReport(0x80000010u, Name);
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(out, UntouchedPointer());
}

TEST(CreateDuplicateImageEx, ReportsABlockThatNoMemoryHolds) {
    constexpr std::intptr_t size = std::intptr_t{1} << 19; // 64 planes of 2^38 pixels of 8 bytes
    FakeImage image(size, size, 8);
    image.AddPlane(
        image.Pixels.data(), 0x40, [](auto) { return 0; }, [](auto) { return 0; });
    for (int plane = 1; plane < 64; ++plane)
        image.AddPlaneWithTableOf(0, image.Pixels.data(), 0x40);
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_FALSE(CreateDuplicateImageEx(image.Handle(), &out));
    EXPECT_EQ(out, UntouchedPointer());
    ExpectOneReport(0x80000005u, Name);
    EXPECT_EQ(image.Count(), 1);
}

// Required: for planes of different types the same shortage gives true.
TEST(CreateDuplicateImageEx, ReportsPlaneBlocksThatNoMemoryHoldsAndGivesTrue) {
    constexpr std::intptr_t size = std::intptr_t{1} << 21; // 2^42 pixels of 32 bytes
    FakeImage image(size, size, 32);
    image.AddPlane(
        image.Pixels.data(), 0xFF, [](auto) { return 0; }, [](auto) { return 0; });
    image.AddPlaneWithTableOf(0, image.Pixels.data(), 0x1FF);
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_TRUE(CreateDuplicateImageEx(image.Handle(), &out));
    EXPECT_EQ(out, UntouchedPointer());
    ExpectOneReport(0x80000005u, Name);
    EXPECT_EQ(image.Count(), 1);
}

TEST(CreateDuplicateImageEx, OfAnImageThatABlockCannotShowFails) {
    FakeImage withoutPlanes(4, 3), withoutPixels(0, 3, 1);
    withoutPixels.AddPlane(
        withoutPixels.Pixels.data(), 8, [](auto) { return 0; }, [](auto) { return 0; });
    for (FakeImage *const image : {&withoutPlanes, &withoutPixels}) {
        ClearReports();
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreateDuplicateImageEx(image->Handle(), &out));
        EXPECT_EQ(out, UntouchedPointer());
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, 0x80000005u);
        EXPECT_EQ(report->function, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateDuplicateImageEx, ReportsPlanesWhosePixelsAreNotCopied) {
    const auto image = FakeImage::Planar(5, 3, 3, 0x18);
    ClearReports();
    Handle copy;
    EXPECT_TRUE(CreateDuplicateImageEx(image->Handle(), copy.Out()));
    EXPECT_EQ(SizeOf(copy.Get()), (ImageSize{3, 5, 3}));
    EXPECT_EQ(ReportCount(), 3);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, 0x1Cu);
    EXPECT_EQ(report->function, "CopyImageRect");
}

TEST(CreateDuplicateImageEx, GivesEverythingBackWhenTheSourceThrows) {
    for (const bool mixed : {false, true}) {
        const auto image = mixed ? Mixed({0x8, 0x20}, 4, 3) : FakeImage::Planar(4, 3, 2, 0x10);
        bool finished = false;
        for (int failing = 0; !finished; ++failing) {
            ASSERT_LT(failing, 1000);
            int number = 0;
            image->Fails.OnOperation = [&] {
                if (number++ == failing)
                    throw 42; // not a std::exception
            };
            void *out = UntouchedPointer();
            ClearReports();
            try {
                const bool made = CreateDuplicateImageEx(image->Handle(), &out);
                finished = number <= failing;
                EXPECT_EQ(made, out != UntouchedPointer()) << "operation " << failing;
                EXPECT_TRUE(made || ReportCount() > 0) << "operation " << failing;
            } catch (int) {
                EXPECT_EQ(out, UntouchedPointer()) << "operation " << failing;
            }
            if (out != UntouchedPointer())
                ReleaseObject(out);
            EXPECT_EQ(image->Count(), 1) << "operation " << failing;
        }
    }
}

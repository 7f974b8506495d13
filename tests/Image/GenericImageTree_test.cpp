// The images that own their memory, seen from outside: the layouts entry by entry, the bitmap face, queries by name,
// and references that count for both faces.
#include "ImageCreation.h"
#include "ImageQueries.h"
#include "Support/ImageAccess.h"

#include <limits>

namespace {

using namespace TestSupport;

struct Extent {
    std::intptr_t Width, Height;
};
const Extent Extents[] = {{1, 1}, {1, 9},  {9, 1},   {2, 2},   {3, 3},  {4, 4},
                          {5, 3}, {7, 11}, {17, 31}, {33, 65}, {257, 3}};

std::intptr_t PaddedTo4(std::intptr_t bytes) {
    return (bytes + 3) & ~std::intptr_t{3};
}

Handle Generic(std::intptr_t planes, std::intptr_t width, std::intptr_t height, bool overlay = false) {
    Handle image;
    EXPECT_TRUE(CreateGenericImage(planes, width, height, overlay, image.Out()));
    return image;
}

/// Writes every pixel with a value of its own and reads all back: no two pixels share a byte, none lies outside.
void ExpectPixelsToHold(void *image, ImageSize size, std::size_t pixelBytes) {
    const auto value = [](std::intptr_t plane, std::intptr_t x, std::intptr_t y, std::size_t byte) {
        return static_cast<std::uint8_t>(plane * 101 + x * 7 + y * 31 + static_cast<std::intptr_t>(byte) * 13);
    };
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
        for (std::intptr_t y = 0; y < size.Height; ++y)
            for (std::intptr_t x = 0; x < size.Width; ++x)
                for (std::size_t byte = 0; byte < pixelBytes; ++byte)
                    AccessOf(image, plane).At(x, y)[byte] = value(plane, x, y, byte);
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
        for (std::intptr_t y = 0; y < size.Height; ++y)
            for (std::intptr_t x = 0; x < size.Width; ++x)
                for (std::size_t byte = 0; byte < pixelBytes; ++byte)
                    ASSERT_EQ(AccessOf(image, plane).At(x, y)[byte], value(plane, x, y, byte));
}

TEST(GenericImage, LaysOnePlaneBottomUpInRowsPaddedToFour) {
    for (const auto &[width, height] : Extents) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        const auto image = Generic(1, width, height);
        const std::intptr_t stride = PaddedTo4(width), start = (height - 1) * stride;
        ExpectTable(
            AccessOf(image.Get(), 0).Table, width, height, [=](std::intptr_t i) { return start + i; },
            [=](std::intptr_t j) { return -j * stride; });
        ExpectPixelsToHold(image.Get(), {1, width, height}, 1);
    }
}

TEST(GenericImage, OfFiveByThreeHasTheToldEntries) {
    const auto image = Generic(1, 5, 3);
    const auto *const table = AccessOf(image.Get(), 0).Table;
    EXPECT_EQ(table[0].XEntry, 16);
    EXPECT_EQ(table[4].XEntry, 20);
    EXPECT_EQ(table[0].YEntry, 0);
    EXPECT_EQ(table[2].YEntry, -16);
    EXPECT_EQ(table[-1].XEntry, 16);
    EXPECT_EQ(table[8].XEntry, 20);
}

TEST(GenericImage, LaysThreePlanesAsBlueGreenRedOverOneBlock) {
    for (const auto &[width, height] : Extents) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        const auto image = Generic(3, width, height);
        const std::intptr_t stride = PaddedTo4(3 * width);
        for (std::intptr_t plane = 0; plane < 3; ++plane) {
            EXPECT_EQ(AccessOf(image.Get(), plane).Base, AccessOf(image.Get(), 0).Base);
            const std::intptr_t start = (height - 1) * stride + 2 - plane;
            ExpectTable(
                AccessOf(image.Get(), plane).Table, width, height, [=](std::intptr_t i) { return start + 3 * i; },
                [=](std::intptr_t j) { return -j * stride; });
        }
        EXPECT_EQ(AccessOf(image.Get(), 0).At(0, 0) - AccessOf(image.Get(), 2).At(0, 0), 2);
        ExpectPixelsToHold(image.Get(), {3, width, height}, 1);
    }
}

TEST(GenericImage, LaysOtherPlaneCountsAsBlocksOfTheirOwnEachLikeOnePlane) {
    for (const std::intptr_t planes : {2, 4, 5})
        for (const auto &[width, height] : Extents) {
            SCOPED_TRACE(testing::Message() << planes << " planes of " << width << " x " << height);
            const auto image = Generic(planes, width, height);
            const std::intptr_t stride = PaddedTo4(width), start = (height - 1) * stride;
            for (std::intptr_t plane = 0; plane < planes; ++plane) {
                ExpectTable(
                    AccessOf(image.Get(), plane).Table, width, height, [=](std::intptr_t i) { return start + i; },
                    [=](std::intptr_t j) { return -j * stride; });
                for (std::intptr_t other = 0; other < plane; ++other)
                    EXPECT_GE(std::abs(AccessOf(image.Get(), plane).Base - AccessOf(image.Get(), other).Base),
                              stride * height);
            }
            ExpectPixelsToHold(image.Get(), {planes, width, height}, 1);
        }
}

TEST(GenericImage, LaysTypedPlanesTopDownWithoutPadding) {
    const std::pair<TDataType, std::intptr_t> types[] = {{0x8, 1},   {0x408, 1}, {0x1, 1},  {0xC, 2},   {0x110, 2},
                                                         {0x18, 3},  {0x220, 4}, {0x28, 5}, {0x240, 8}, {0x80, 16},
                                                         {0xFF, 32}, {0x820, 4}, {0x510, 2}};
    for (const auto &[type, bytes] : types)
        for (const std::intptr_t planes : {1, 2, 3, 4})
            for (const auto &[width, height] : {Extent{1, 1}, Extent{5, 3}, Extent{1, 7}, Extent{17, 31}}) {
                SCOPED_TRACE(testing::Message()
                             << planes << " planes of " << width << " x " << height << ", " << type);
                Handle image;
                ASSERT_TRUE(CreateGenericImageDT(planes, width, height, type, image.Out()));
                for (std::intptr_t plane = 0; plane < planes; ++plane)
                    ExpectTable(
                        AccessOf(image.Get(), plane).Table, width, height,
                        [size = bytes](std::intptr_t i) { return i * size; },
                        [stride = width * bytes](std::intptr_t j) { return j * stride; });
                ExpectPixelsToHold(image.Get(), {planes, width, height}, static_cast<std::size_t>(bytes));
            }
}

TEST(GenericImage, HasALinearTableWithANegativePitchForOnePlaneOnly) {
    const auto one = Generic(1, 5, 3), three = Generic(3, 5, 3), single = Generic(1, 1, 1);
    std::intptr_t pitch = 0;
    EXPECT_TRUE(IsVPATLinear(AccessOf(one.Get(), 0).Table, 5, 3, &pitch));
    EXPECT_EQ(pitch, -8);
    EXPECT_FALSE(IsVPATLinear(AccessOf(three.Get(), 1).Table, 5, 3, &pitch));
    EXPECT_TRUE(IsVPATLinear(AccessOf(single.Get(), 0).Table, 1, 1, &pitch));
    EXPECT_EQ(pitch, 0);
}

TEST(GenericImage, KeepsItsLayoutAndPixelsWithTheOverlayFlag) {
    const auto image = Generic(3, 5, 3, true);
    ExpectTable(
        AccessOf(image.Get(), 1).Table, 5, 3, [](std::intptr_t i) { return 33 + 3 * i; },
        [](std::intptr_t j) { return -16 * j; });
    EXPECT_TRUE(IsInterface(image.Get(), ORV_IID_IIMAGEDIB));
    EXPECT_EQ(TypeOf(image.Get(), 2), 0x408u);
}

TEST(GenericImage, AnswersABadPlaneNumberWithAStatusAndWritesNothing) {
    Handle typed;
    ASSERT_TRUE(CreateGenericImageDT(3, 2, 2, 0x10, typed.Out()));
    const auto bitmap = Generic(3, 2, 2);
    for (void *handle : {typed.Get(), bitmap.Get()}) {
        const ImageInterface image(handle);
        constexpr auto lowest = std::numeric_limits<std::intptr_t>::min();
        constexpr auto highest = std::numeric_limits<std::intptr_t>::max();
        for (const std::intptr_t plane :
             {std::intptr_t{-1}, std::intptr_t{3}, lowest, highest, std::intptr_t{1} << 32}) {
            TDataType type = 77;
            void *base = UntouchedPointer();
            auto *table = static_cast<VPAEntry *>(UntouchedPointer());
            EXPECT_EQ(image->GetPlaneDatatype(plane, &type), Status(0xFFFFFFFFu));
            EXPECT_EQ(image->GetPlaneVPA(plane, &base, &table), Status(0xFFFFFFFFu));
            EXPECT_EQ(type, 77u);
            EXPECT_EQ(base, UntouchedPointer());
            EXPECT_EQ(table, UntouchedPointer());
        }
    }
}

TEST(GenericImage, KeepsTheCoordinateMapThatIsSet) {
    const auto handle = Generic(1, 2, 2);
    const ImageInterface image(handle.Get());
    const TCoordinateMap map{10.0, 20.0, {0.0, 1.0, -1.0, 0.5}};
    TCoordinateMap read{};
    EXPECT_EQ(image->SetCoordinateMap(map), 0);
    EXPECT_EQ(image->GetCoordinateMap(&read), 0);
    EXPECT_TRUE(SameMap(read, map));
}

TEST(GenericImage, HandsOutOnePointerForUnknownAndImageAndClearsTheOutputOfOtherQueries) {
    Handle typed;
    ASSERT_TRUE(CreateGenericImageDT(1, 2, 2, 0x10, typed.Out()));
    auto *const object = static_cast<pOLE::IUnknown *>(typed.Get());
    for (const char *id : {ORV_IID_IUNKNOWN, ORV_IID_IIMAGEVPA}) {
        void *out = nullptr;
        EXPECT_EQ(object->QueryInterface(id, &out), 0);
        EXPECT_EQ(out, typed.Get());
        EXPECT_EQ(object->Release(), 1u);
    }
    for (const char *id :
         {ORV_IID_IIMAGEDIB, ORV_IID_ICOLORMODELINFO, ORV_IID_IIPPIPROXY, "IImageVPA      x", "IIMAGEVPA       "}) {
        void *out = UntouchedPointer();
        EXPECT_EQ(object->QueryInterface(id, &out), Status(0xFFFFFFFFu)) << id;
        EXPECT_EQ(out, nullptr) << id;
    }
    EXPECT_EQ(RefCount(typed.Get()), 1u);
}

/// The bitmap face of an image; gives its reference back at the end.
struct Bitmap {
    pOLE::IImageDIB *Face = nullptr;
    explicit Bitmap(void *image) {
        void *out = nullptr;
        EXPECT_EQ(static_cast<pOLE::IUnknown *>(image)->QueryInterface(ORV_IID_IIMAGEDIB, &out), 0);
        Face = static_cast<pOLE::IImageDIB *>(out);
    }
    Bitmap(const Bitmap &) = delete;
    Bitmap &operator=(const Bitmap &) = delete;
    ~Bitmap() { Face->Release(); }
};

TEST(GenericImageBitmap, CopiesTheFortyBytesOfItsHeader) {
    for (const auto &[planes, bits] : {std::pair{1, 8}, std::pair{3, 24}})
        for (const auto &[width, height] : Extents) {
            const auto image = Generic(planes, width, height);
            const Bitmap bitmap(image.Get());
            struct {
                TBitmapInfoHeader header;
                std::uint8_t behind[16];
            } out;
            std::memset(&out, 0xA5, sizeof out);
            EXPECT_EQ(bitmap.Face->GetBitmapInfoHeader(&out.header), 0);
            TBitmapInfoHeader expected{};
            expected.biSize = 40;
            expected.biWidth = static_cast<std::int32_t>(width);
            expected.biHeight = static_cast<std::int32_t>(height);
            expected.biPlanes = 1;
            expected.biBitCount = static_cast<std::uint16_t>(bits);
            EXPECT_EQ(std::memcmp(&out.header, &expected, 40), 0) << planes << " " << width << " x " << height;
            for (const auto byte : out.behind)
                EXPECT_EQ(byte, 0xA5);
        }
}

TEST(GenericImageBitmap, HandsOutItsPixelBlockAsBitmapBits) {
    for (const std::intptr_t planes : {1, 3})
        for (const auto &[width, height] : Extents) {
            const auto image = Generic(planes, width, height);
            const Bitmap bitmap(image.Get());
            void *bits = nullptr;
            ASSERT_EQ(bitmap.Face->GetBitmapBits(&bits), 0);
            const std::intptr_t stride = PaddedTo4(planes * width);
            for (std::intptr_t plane = 0; plane < planes; ++plane) {
                EXPECT_EQ(AccessOf(image.Get(), plane).Base, bits);
                const auto last = AccessOf(image.Get(), plane).At(width - 1, 0) - static_cast<std::uint8_t *>(bits);
                EXPECT_EQ(last, (height - 1) * stride + (width - 1) * planes + (planes - 1 - plane));
            }
        }
}

TEST(GenericImageBitmap, LeadsBackToTheImage) {
    const auto image = Generic(3, 2, 2);
    const Bitmap bitmap(image.Get());
    for (const char *id : {ORV_IID_IUNKNOWN, ORV_IID_IIMAGEVPA}) {
        void *out = nullptr;
        ASSERT_EQ(bitmap.Face->QueryInterface(id, &out), 0);
        EXPECT_EQ(out, image.Get());
        EXPECT_EQ(static_cast<pOLE::IUnknown *>(out)->Release(), 2u);
    }
    void *out = UntouchedPointer();
    EXPECT_EQ(bitmap.Face->QueryInterface(ORV_IID_ICOLORMODELINFO, &out), Status(0xFFFFFFFFu));
    EXPECT_EQ(out, nullptr);
}

TEST(GenericImageBitmap, SharesItsCountWithTheImageAndKeepsItAlive) {
    auto image = Generic(1, 4, 4);
    const Bitmap bitmap(image.Get());
    EXPECT_EQ(RefCount(image.Get()), 2u);
    EXPECT_EQ(bitmap.Face->AddRef(), 3u);
    EXPECT_EQ(bitmap.Face->Release(), 2u);
    AccessOf(image.Get(), 0).At(3, 0)[0] = 99;
    image.Reset();
    void *bits = nullptr;
    EXPECT_EQ(bitmap.Face->GetBitmapBits(&bits), 0);
    EXPECT_EQ(static_cast<std::uint8_t *>(bits)[15], 99);
}

TEST(GenericImage, CountsReferencesDownToItsEnd) {
    for (const std::intptr_t planes : {0, 1, 2, 3}) {
        void *image = nullptr;
        ASSERT_TRUE(CreateGenericImage(planes, 4, 4, false, &image));
        auto *const object = static_cast<pOLE::IUnknown *>(image);
        EXPECT_EQ(RefCount(image), 1u);
        EXPECT_EQ(object->AddRef(), 2u);
        EXPECT_EQ(ShareImage(image), 3);
        EXPECT_TRUE(ShareObject(image));
        EXPECT_EQ(RefCount(image), 4u);
        EXPECT_EQ(object->Release(), 3u);
        EXPECT_EQ(ReleaseImage(image), 2);
        EXPECT_EQ(ReleaseIUnknown(image), 1u);
        EXPECT_TRUE(ReleaseObject(image));
        EXPECT_EQ(image, nullptr);
    }
}

TEST(GenericImage, KeepsItsPixelsUntilTheLastOfTwoReleases) {
    void *image = nullptr;
    ASSERT_TRUE(CreateGenericImage(3, 4, 4, false, &image));
    ASSERT_TRUE(ShareObject(image));
    *AccessOf(image, 1).At(2, 3) = 42;
    void *const kept = image;
    EXPECT_FALSE(ReleaseObject(image));
    EXPECT_EQ(image, kept);
    EXPECT_EQ(*AccessOf(image, 1).At(2, 3), 42);
    EXPECT_TRUE(ReleaseObject(image));
    EXPECT_EQ(image, nullptr);
}

} // namespace

// Trees that are no images, and images whose tables lead out of their memory: none of them may be loaded.
#include "Image/ImageObject.h"
#include "ImageCreation.h"
#include "ImageStreams.h"
#include "Objects/TMemStream.h"
#include "Persistence/Tree/ObjectStream.h"
#include "Support/ImageAccess.h"

namespace {

using namespace TestSupport;

using Bytes = std::vector<unsigned char>;

template <class T>
void Append(Bytes &bytes, const T &value) {
    const auto *first = reinterpret_cast<const unsigned char *>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

/// A stored image of one plane that a test can spoil in one place.
struct StoredImage {
    std::uint32_t RootId = 10000;
    std::uint32_t ListId = 4000;
    std::uint32_t PlaneId = 10001;
    std::uint32_t PixelId = 4001;
    std::int32_t Width = 4;
    std::int32_t Height = 2;
    std::uint32_t TableRecords = 12;
    std::uint32_t PixelBytes = 8;
    std::uint32_t Datatype = 8;
    std::int32_t XStart = 0;
    std::int32_t YStep = 4;
    std::int32_t LastGuard = 3;
    std::uint32_t BytesBehindTable = 0;
    int Planes = 1; ///< further ones are references to the first

    Bytes Stored() const {
        Bytes bytes;
        for (const std::uint32_t word :
             {RootId, 1u, ListId, static_cast<std::uint32_t>(Planes), PlaneId, 1u, PixelId, 0u, PixelBytes})
            Append(bytes, word);
        bytes.resize(bytes.size() + PixelBytes, 0x55);
        Append(bytes, TableRecords * 8 + BytesBehindTable);
        for (std::uint32_t i = 0; i < TableRecords; ++i) {
            const std::int32_t x = std::clamp(static_cast<std::int32_t>(i) - 4, 0, 3);
            const std::int32_t y = std::clamp(static_cast<std::int32_t>(i) - 4, 0, 1);
            Append(bytes, i + 1 == TableRecords ? LastGuard : XStart + x);
            Append(bytes, y * YStep);
        }
        bytes.resize(bytes.size() + BytesBehindTable);
        Append(bytes, Datatype);
        for (int i = 1; i < Planes; ++i) {
            Append(bytes, std::uint32_t{0});
            Append(bytes, std::uint32_t{2});
        }
        Append(bytes, Width);
        Append(bytes, Height);
        Append(bytes, TCoordinateMap{0.0, 0.0, {1.0, 0.0, 0.0, 1.0}});
        return bytes;
    }
    bool Loads() const {
        const Bytes bytes = Stored();
        Handle image;
        const bool loaded = MemoryToImage(bytes.data(), bytes.size(), image.Out());
        EXPECT_EQ(loaded, static_cast<bool>(image));
        return loaded;
    }
};

TEST(LoadedImage, IsAWholeTree) {
    EXPECT_TRUE(StoredImage{}.Loads());
    EXPECT_FALSE((StoredImage{.RootId = 4000}.Loads()));
    EXPECT_FALSE((StoredImage{.RootId = 10002}.Loads())) << "a bitmap without its description";
    EXPECT_FALSE((StoredImage{.ListId = 4001}.Loads()));
    EXPECT_FALSE((StoredImage{.PlaneId = 4001}.Loads()));
    EXPECT_FALSE((StoredImage{.PixelId = 4000}.Loads()));
}

TEST(LoadedImage, HasTablesOfItsSize) {
    EXPECT_FALSE((StoredImage{.Width = 5}.Loads()));
    EXPECT_FALSE((StoredImage{.Width = 3}.Loads()));
    EXPECT_FALSE((StoredImage{.Width = -1}.Loads()));
    EXPECT_FALSE((StoredImage{.Height = 5}.Loads()));
    EXPECT_FALSE((StoredImage{.Height = 0x7FFFFFFF}.Loads()));
    EXPECT_FALSE((StoredImage{.TableRecords = 11}.Loads()));
    EXPECT_FALSE((StoredImage{.BytesBehindTable = 1}.Loads()));
    EXPECT_FALSE((StoredImage{.BytesBehindTable = 4}.Loads()));
    EXPECT_FALSE((StoredImage{.TableRecords = 24}.Loads())) << "the size that a full table has in memory";
}

TEST(LoadedImage, HasOffsetsInsideItsPixels) {
    EXPECT_FALSE((StoredImage{.PixelBytes = 7}.Loads()));
    EXPECT_TRUE((StoredImage{.PixelBytes = 9}.Loads()));
    EXPECT_FALSE((StoredImage{.XStart = 1}.Loads()));
    EXPECT_FALSE((StoredImage{.XStart = -1}.Loads()));
    EXPECT_FALSE((StoredImage{.YStep = 5}.Loads()));
    EXPECT_FALSE((StoredImage{.YStep = -4}.Loads()));
    EXPECT_FALSE((StoredImage{.LastGuard = 4}.Loads())) << "guard entries are read, too";
    EXPECT_FALSE((StoredImage{.LastGuard = -1}.Loads()));
}

TEST(LoadedImage, HasPixelsOf1To64Bits) {
    EXPECT_FALSE((StoredImage{.Datatype = 0}.Loads()));
    EXPECT_FALSE((StoredImage{.Datatype = 0xFF00}.Loads()));
    EXPECT_TRUE((StoredImage{.Datatype = 1}.Loads()));
    EXPECT_FALSE((StoredImage{.Datatype = 9}.Loads())) << "two bytes per pixel";
    EXPECT_TRUE((StoredImage{.PixelBytes = 15, .Datatype = 64}.Loads()));
    EXPECT_FALSE((StoredImage{.PixelBytes = 100, .Datatype = 65}.Loads()));
}

TEST(LoadedImage, MayHaveAPlaneSeveralTimes) {
    StoredImage stored;
    stored.Planes = 3;
    const Bytes bytes = stored.Stored();
    Handle image;
    ASSERT_TRUE(MemoryToImage(bytes.data(), bytes.size(), image.Out()));
    for (std::intptr_t plane = 0; plane < 3; ++plane)
        EXPECT_EQ(*AccessOf(image.Get(), plane).At(3, 1), 0x55) << "its table was widened once";
}

TEST(LoadedImage, OfColorSharesItsPixelsAgain) {
    Handle image;
    ASSERT_TRUE(CreateGenericImage(3, 3, 2, false, image.Out()));
    for (std::intptr_t y = 0; y < 2; ++y)
        for (std::intptr_t x = 0; x < 3; ++x)
            for (std::intptr_t plane = 0; plane < 3; ++plane)
                *AccessOf(image.Get(), plane).At(x, y) = static_cast<std::uint8_t>(x + 10 * y + 100 * plane);
    Bytes bytes(static_cast<std::size_t>(ImageToMemorySize(image.Get())));
    ASSERT_TRUE(ImageToMemory(image.Get(), bytes.data(), bytes.size()));
    Handle loaded;
    ASSERT_TRUE(MemoryToImage(bytes.data(), bytes.size(), loaded.Out()));
    auto &tree = static_cast<TIImageVPA *>(static_cast<pOLE::IImageVPA *>(loaded.Get()))->Owner();
    auto &bitmap = static_cast<TSimpleDIB &>(tree);
    for (std::intptr_t plane = 0; plane < 3; ++plane)
        EXPECT_EQ(tree.Plane(plane)->HeadValue(), bitmap.PixelBuffer());
    EXPECT_EQ(bitmap.PixelBuffer()->GetRefCount(), 3);
    EXPECT_EQ(tree.GetRefCount(), 1);
    EXPECT_EQ(*AccessOf(loaded.Get(), 2).At(1, 1), static_cast<std::uint8_t>(211));
}

TEST(LoadedImage, OutsideARecordOfAnImageKeepsItsNarrowTable) {
    StoredImage stored;
    const Bytes whole = stored.Stored();
    Bytes plane(whole.begin() + 16, whole.end() - 56);
    TMemStream stream(plane.data(), plane.size(), TMemStream::Purpose::Reading);
    const auto loaded = Persistence::LoadTree(stream);
    EXPECT_EQ(static_cast<TImagePlane &>(*loaded).GetSize(), 12u * 8u);
    Bytes again(plane.size());
    TMemStream target(again.data(), again.size(), TMemStream::Purpose::Writing);
    EXPECT_EQ(Persistence::StoreTree(target, *loaded), 1);
    EXPECT_EQ(again, plane);
}

} // namespace

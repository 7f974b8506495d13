// Images through streams of the caller's: whose table is the current one, what passes, what is copied first.
#include "CtkFileStream.h"
#include "Image/OwningDuplicate.h"
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageStreams.h"
#include "ImageViews.h"
#include "Persistence/BmpFiles.h"
#include "Persistence/Tree/ObjectStream.h"
#include "Persistence/Tree/TreeNodes.h"

#include <fstream>

namespace {

using namespace TestSupport;
using Persistence::NodeHolder;
using Persistence::TableScope;

Handle MakeImage(std::intptr_t planes, std::intptr_t width, std::intptr_t height) {
    Handle image;
    EXPECT_TRUE(CreateGenericImage(planes, width, height, false, image.Out()));
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x)
                *AccessOf(image.Get(), plane).At(x, y) = static_cast<std::uint8_t>(x + 16 * y + 100 * plane);
    return image;
}

/// A stream that throws what no part of the library knows.
struct ThrowingStream : StringStream {
    std::size_t Read(void *, std::size_t) override { throw 7; }
    std::size_t Write(const void *, std::size_t) override { throw 7; }
};

TEST(ImageStream, PutsTheFormerTableBack) {
    TSList former;
    const TableScope scope(&former);
    TSList table;
    StringStream stream({}, 1 << 16);
    const Handle image = MakeImage(3, 5, 3);
    ASSERT_TRUE(WriteImageStream(image.Get(), &table, &stream));
    EXPECT_EQ(TableScope::Current(), &former);
    EXPECT_GT(table.GetCount(), 0);
    TSList loadTable;
    Handle loaded;
    ASSERT_TRUE(LoadImageStream(&stream, &loadTable, loaded.Out()));
    EXPECT_EQ(TableScope::Current(), &former);
    EXPECT_EQ(loadTable.GetCount(), table.GetCount()) << "one numbering for writer and reader";
}

TEST(ImageStream, PutsTheFormerTableBackWhenAnExceptionPasses) {
    TSList former;
    const TableScope scope(&former);
    TSList table;
    ThrowingStream stream;
    const Handle image = MakeImage(1, 5, 3);
    EXPECT_THROW(WriteImageStream(image.Get(), &table, &stream), int);
    EXPECT_EQ(TableScope::Current(), &former);
    EXPECT_EQ(Image::TreeOf(image.Get())->GetStreamIndex(), -1);
    void *loaded = UntouchedPointer();
    EXPECT_THROW(LoadImageStream(&stream, &table, &loaded), int);
    EXPECT_EQ(TableScope::Current(), &former);
    EXPECT_EQ(loaded, UntouchedPointer());
    StringStream full({}, 100);
    EXPECT_THROW(WriteImageStream(image.Get(), &table, &full), CtkExceptionObject);
    EXPECT_EQ(TableScope::Current(), &former);
}

TEST(ImageStream, LeavesTheCallersTableTheCurrentOneAfterAFailedLoad) {
    TSList former;
    const TableScope scope(&former);
    TSList table;
    StringStream stream(std::string(8, '\1'));
    void *loaded = UntouchedPointer();
    EXPECT_FALSE(LoadImageStream(&stream, &table, &loaded));
    EXPECT_EQ(TableScope::Current(), &table);
    EXPECT_EQ(loaded, UntouchedPointer());
    EXPECT_EQ(table.GetCount(), 0);
}

TEST(ImageStream, WritesAnImageTwiceWithOneTable) {
    TSList table;
    StringStream stream({}, 1 << 16);
    const Handle image = MakeImage(3, 5, 3);
    ASSERT_TRUE(WriteImageStream(image.Get(), &table, &stream));
    ASSERT_TRUE(WriteImageStream(image.Get(), &table, &stream));
    TSList loadTable;
    for (int i = 0; i < 2; ++i) {
        Handle loaded;
        ASSERT_TRUE(LoadImageStream(&stream, &loadTable, loaded.Out())) << i;
        EXPECT_EQ(*AccessOf(loaded.Get(), 2).At(4, 2), static_cast<std::uint8_t>(236));
    }
    EXPECT_EQ(stream.Position, stream.Bytes.size());
}

TEST(ImageStream, RefersToNoObjectOfAFormerLoad) {
    TSList table;
    StringStream stream({}, 1 << 16);
    const Handle image = MakeImage(1, 5, 3);
    ASSERT_TRUE(WriteImageStream(image.Get(), nullptr, &stream));
    stream.Bytes += std::string("\0\0\0\0\0\0\0\0", 8); // a reference to the first image, which may be gone
    {
        Handle loaded;
        ASSERT_TRUE(LoadImageStream(&stream, &table, loaded.Out()));
    }
    Handle again;
    EXPECT_FALSE(LoadImageStream(&stream, &table, again.Out()));
}

TEST(ImageStream, ACutFileIsAFailedLoad) {
    const Handle image = MakeImage(1, 5, 3);
    const TemporaryPath path("a.stream");
    {
        CtkFileStream file(path.Get(), CtkFileStream::ModeWrite);
        ASSERT_TRUE(WriteImageStream(image.Get(), nullptr, &file));
    }
    const FileBytes whole = path.Read();
    for (std::size_t length = 0; length <= whole.size(); length += length + 1 < whole.size() ? 7 : 1) {
        path.Write(FileBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        CtkFileStream file(path.Get(), CtkFileStream::ModeRead);
        Handle loaded;
        EXPECT_EQ(LoadImageStream(&file, nullptr, loaded.Out()), length == whole.size()) << length;
    }
}

TEST(ImageStream, RefusesViewsAndForeignImages) {
    const Handle image = MakeImage(1, 5, 3);
    Handle view;
    ASSERT_TRUE(CreateImageMap(image.Get(), 0, 0, 3, 2, 4, 3, view.Out()));
    StringStream stream({}, 1 << 16);
    EXPECT_EQ(ThrownText([&] { WriteImageStream(view.Get(), nullptr, &stream); }),
              "Attempt to store unregistered Class.");
    FakeImage foreign(2, 2);
    EXPECT_FALSE(WriteImageStream(&foreign, nullptr, &stream));
    EXPECT_FALSE(WriteImageStream(nullptr, nullptr, &stream));
    EXPECT_FALSE(WriteImageStream(image.Get(), nullptr, nullptr));
}

TEST(OwningDuplicate, IsTheImageItselfOnlyWhereItStandsLikeItsDuplicate) {
    const auto isItself = [](const Handle &image) {
        const NodeHolder<TImageObject> tree = Image::OwningDuplicate(image.Get());
        return tree.Get() == Image::TreeOf(image.Get());
    };
    const Handle color = MakeImage(3, 5, 3);
    EXPECT_TRUE(isItself(color));
    const Handle separate = MakeImage(2, 5, 3);
    EXPECT_TRUE(isItself(separate));
    auto *pixels = static_cast<TBuffer *>(Image::TreeOf(separate.Get())->Plane(1)->HeadValue());
    static_cast<char *>(pixels->GetData())[5] = 1;
    EXPECT_FALSE(isItself(separate)) << "bytes between the rows are cleared in a duplicate";
    Handle overlay;
    ASSERT_TRUE(CreateGenericImage(1, 5, 3, true, overlay.Out()));
    EXPECT_FALSE(isItself(overlay)) << "its duplicate is no bitmap";
    Handle view;
    ASSERT_TRUE(CreateImageMap(color.Get(), 0, 0, 4, 2, 5, 3, view.Out()));
    EXPECT_FALSE(isItself(view));
}

TEST(OwningDuplicate, GivesPlanesOfSeveralTypesABlockEach) {
    const Handle bytes = MakeImage(1, 5, 3);
    Handle words;
    ASSERT_TRUE(CreateGenericImageDT(1, 5, 3, 16, words.Out()));
    for (std::intptr_t y = 0; y < 3; ++y)
        for (std::intptr_t x = 0; x < 5; ++x)
            std::memset(AccessOf(words.Get(), 0).At(x, y), static_cast<int>(x + y), 2);
    void *both[] = {bytes.Get(), words.Get()};
    Handle mixed;
    ASSERT_TRUE(CreateConcatenatedImage(both, 2, 1, mixed.Out()));
    std::vector<char> memory(static_cast<std::size_t>(ImageToMemorySize(mixed.Get())));
    ASSERT_TRUE(ImageToMemory(mixed.Get(), memory.data(), memory.size()));
    Handle loaded;
    ASSERT_TRUE(MemoryToImage(memory.data(), memory.size(), loaded.Out()));
    EXPECT_EQ(*AccessOf(loaded.Get(), 0).At(4, 2), 36);
    EXPECT_EQ(*AccessOf(loaded.Get(), 1).At(4, 2), 6);
}

} // namespace

// Bitmap files byte by byte for images small enough to write them out. What is refused, and files that can't be
// written, are in BmpWriterFailures_test.cpp; all layouts and sizes are compared with a model in
// BmpRoundTrip_test.cpp.
#include "Persistence/BmpWriting.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace {

using namespace TestSupport;

TEST(BmpWriter, WritesADenseBlockOfOnePlaneAsItStands) {
    FileBytes memory = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(Written(Wrap(memory.data(), {1, 4, 2}, 1, 4).Get()), Joined(Headers(8, 4, -2, 8), memory));
    EXPECT_EQ(Written(Wrap(memory.data() + 4, {1, 4, 2}, 1, -4).Get()), Joined(Headers(8, 4, 2, 8), memory))
        << "the last row stands first";
}

TEST(BmpWriter, WritesADenseBlockOfThreePlanesAsItStands) {
    FileBytes memory(24);
    std::iota(memory.begin(), memory.end(), std::uint8_t{1});
    EXPECT_EQ(Written(Wrap(memory.data(), {3, 4, 2}, 3, 12).Get()), Joined(Headers(24, 4, -2, 24), memory));
    EXPECT_EQ(Written(Wrap(memory.data() + 12, {3, 4, 2}, 3, -12).Get()), Joined(Headers(24, 4, 2, 24), memory));
}

TEST(BmpWriter, PadsRowsWithZerosToFourBytes) {
    for (std::intptr_t width = 1; width <= 8; ++width)
        for (const std::intptr_t planes : {1, 3}) {
            const std::intptr_t rowBytes = width * planes;
            FileBytes memory(static_cast<std::size_t>(2 * rowBytes), 0xEE);
            FileBytes row(static_cast<std::size_t>(rowBytes), 0xEE);
            row.resize(static_cast<std::size_t>((rowBytes + 3) / 4 * 4), 0);
            const auto bits = static_cast<std::uint16_t>(8 * planes);
            const auto headers =
                Headers(bits, static_cast<std::int32_t>(width), -2, static_cast<std::uint32_t>(2 * row.size()));
            EXPECT_EQ(Written(Wrap(memory.data(), {planes, width, 2}, planes, rowBytes).Get()),
                      Joined(headers, Joined(row, row)))
                << width << " columns of " << planes << " planes";
        }
}

TEST(BmpWriter, PadsA24BitImageOfWidth3WithThreeBytes) {
    FileBytes memory = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(Written(Wrap(memory.data(), {3, 3, 1}, 3, 9).Get()),
              Joined(Headers(24, 3, -1, 12), {1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0}));
}

TEST(BmpWriter, WritesRowsThatAreNotDenseFirstRowFirst) {
    FileBytes memory = {1, 2, 3, 4, 0xAA, 0xAA, 0xAA, 0xAA, 5, 6, 7, 8};
    const FileBytes upright = {1, 2, 3, 4, 5, 6, 7, 8};
    const FileBytes upsideDown = {5, 6, 7, 8, 1, 2, 3, 4};
    EXPECT_EQ(Written(Wrap(memory.data(), {1, 4, 2}, 1, 8).Get()), Joined(Headers(8, 4, -2, 8), upright));
    EXPECT_EQ(Written(Wrap(memory.data() + 8, {1, 4, 2}, 1, -8).Get()), Joined(Headers(8, 4, -2, 8), upsideDown));
}

TEST(BmpWriter, WritesNoMemoryBetweenTheRows) {
    const Handle image = Generic({1, 5, 2}); // rows of 8 bytes, of which 3 were never set
    EXPECT_EQ(Written(image.Get()), Joined(Headers(8, 5, -2, 16), {1, 2, 3, 4, 5, 0, 0, 0, 6, 7, 8, 9, 10, 0, 0, 0}));
}

TEST(BmpWriter, WritesAnImageOfTheLibrarysOwnAsABlock) {
    EXPECT_EQ(Written(Generic({1, 4, 2}).Get()), Joined(Headers(8, 4, 2, 8), {5, 6, 7, 8, 1, 2, 3, 4}));
    EXPECT_EQ(Written(Generic({3, 4, 1}).Get()),
              Joined(Headers(24, 4, -1, 12), {3, 2, 1, 6, 5, 4, 9, 8, 7, 12, 11, 10}))
        << "a single row has no order";
    EXPECT_EQ(Written(Generic({1, 4, 2}, true).Get()), Joined(Headers(8, 4, 2, 8), {5, 6, 7, 8, 1, 2, 3, 4}))
        << "an overlay plane is 8 bits";
}

TEST(BmpWriter, CountsOneColumnAsDense) {
    FileBytes memory = {1, 2, 3, 0xAA, 0xAA, 4, 5, 6};
    EXPECT_EQ(Written(Wrap(memory.data(), {3, 1, 2}, 3, 5).Get()),
              Joined(Headers(24, 1, -2, 8), {1, 2, 3, 0, 4, 5, 6, 0}));
    EXPECT_EQ(Written(Wrap(memory.data(), {3, 1, 2}, 4, 5).Get()),
              Joined(Headers(24, 1, -2, 8), {1, 2, 3, 0, 4, 5, 6, 0}))
        << "with one column no step of 4 can be seen";
    EXPECT_EQ(Written(Wrap(memory.data(), {1, 1, 2}, 1, 5).Get()),
              Joined(Headers(8, 1, -2, 8), {1, 0, 0, 0, 4, 0, 0, 0}));
    EXPECT_EQ(Written(Wrap(memory.data(), {1, 1, 1}, 1, 1).Get()), Joined(Headers(8, 1, -1, 4), {1, 0, 0, 0}));
}

TEST(BmpWriter, CountsOneRowAsDense) {
    FileBytes memory = {1, 2, 3, 4};
    for (const std::intptr_t pitch : {1, 4, 100, -100})
        EXPECT_EQ(Written(Wrap(memory.data(), {1, 4, 1}, 1, pitch).Get()), Joined(Headers(8, 4, -1, 4), memory));
}

TEST(BmpWriter, Writes32BitsFromPixelsFourBytesApart) {
    alignas(4) std::array<std::uint8_t, 32> memory;
    std::iota(memory.begin(), memory.end(), std::uint8_t{1});
    const FileBytes bytes(memory.begin(), memory.end());
    EXPECT_EQ(Written(Wrap(memory.data(), {3, 4, 2}, 4, 16).Get()), Joined(Headers(32, 4, -2, 32), bytes));
    EXPECT_EQ(Written(Wrap(memory.data() + 16, {3, 4, 2}, 4, -16).Get()), Joined(Headers(32, 4, 2, 32), bytes));
}

TEST(BmpWriter, TellsASizeOf32BitsThatIsFourThirdsOf24Bits) {
    alignas(4) std::array<std::uint8_t, 40> memory;
    std::iota(memory.begin(), memory.end(), std::uint8_t{1});
    const FileBytes bytes(memory.begin(), memory.end());
    EXPECT_EQ(Written(Wrap(memory.data(), {3, 5, 2}, 4, 20).Get()), Joined(Headers(32, 5, -2, 42), bytes))
        << "42 bytes are told, 40 are there";
    EXPECT_EQ(Written(Wrap(memory.data(), {3, 3, 3}, 4, 12).Get()),
              Joined(Headers(32, 3, -3, 48), FileBytes(bytes.begin(), bytes.begin() + 36)));
}

TEST(BmpWriter, ReadsNoFourthByteBehindMemoryThatEndsWithTheLastPixel) {
    for (const std::intptr_t width : {4, 5}) {
        const std::intptr_t rowBytes = 4 * width;
        const FencedBlock block(static_cast<std::size_t>(2 * rowBytes), FencedBlock::Fence::Behind);
        std::iota(block.Data(), block.Data() + 2 * rowBytes, std::uint8_t{1});
        FileBytes upright(block.Data() + 1, block.Data() + 2 * rowBytes);
        upright.push_back(0);
        const auto columns = static_cast<std::int32_t>(width);
        const std::uint32_t told = width == 4 ? 32 : 42;
        EXPECT_EQ(Written(Wrap(block.Data() + 1, {3, width, 2}, 4, rowBytes).Get()),
                  Joined(Headers(32, columns, -2, told), upright));
        FileBytes upsideDown = upright;
        if (width == 5) // not written as one block, so the upper row of the image comes first
            std::rotate(upsideDown.begin(), upsideDown.begin() + rowBytes, upsideDown.end());
        EXPECT_EQ(Written(Wrap(block.Data() + 1 + rowBytes, {3, width, 2}, 4, -rowBytes).Get()),
                  Joined(Headers(32, columns, width == 4 ? 2 : -2, told), upsideDown));
    }
}

TEST(BmpWriter, WritesRowsThatAllShowTheSameMemory) {
    FakeImage image(4, 3, 4);
    std::iota(image.Pixels.begin(), image.Pixels.end(), std::uint8_t{1});
    image.AddPlane(
        image.Pixels.data(), 8, [](std::intptr_t x) { return x; }, [](std::intptr_t) { return 0; });
    EXPECT_EQ(Written(image.Handle()), Joined(Headers(8, 4, -3, 12), {1, 2, 3, 4, 1, 2, 3, 4, 1, 2, 3, 4}));
}

TEST(BmpWriter, WritesOverlappingRows) {
    FileBytes memory = {1, 2, 3, 4, 5};
    EXPECT_EQ(Written(Wrap(memory.data(), {1, 4, 2}, 1, 1).Get()),
              Joined(Headers(8, 4, -2, 8), {1, 2, 3, 4, 2, 3, 4, 5}));
}

TEST(BmpWriter, CopiesPixelsThatStandOtherwise) {
    FileBytes memory = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const Handle mirrored = Wrap(memory.data() + 3, {1, 4, 3}, -1, 4);
    EXPECT_EQ(Written(mirrored.Get()), Joined(Headers(8, 4, 3, 12), {12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1}))
        << "the copy's last row stands first";
    EXPECT_EQ(RefCount(mirrored.Get()), 1u);
    Handle redFirst;
    ASSERT_EQ(
        CreateImageFromPointer(memory.data(), 0, 4, 1, 3, 8, 3, 12, 1, nullptr, nullptr, nullptr, redFirst.Out()), 0);
    EXPECT_EQ(Written(redFirst.Get()), Joined(Headers(24, 4, -1, 12), {3, 2, 1, 6, 5, 4, 9, 8, 7, 12, 11, 10}));
}

TEST(BmpWriter, WritesSignedAndOverlayPlanesThatStandAsInAFile) {
    FileBytes memory(12);
    std::iota(memory.begin(), memory.end(), std::uint8_t{1});
    for (const TDataType type : {0x108u, 0x408u}) {
        EXPECT_EQ(Written(Wrap(memory.data(), {3, 4, 1}, 3, 12, type).Get()), Joined(Headers(24, 4, -1, 12), memory));
        EXPECT_EQ(Written(Wrap(memory.data() + 11, {1, 4, 3}, -1, -4, type).Get()),
                  Joined(Headers(8, 4, -3, 12), {12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1}))
            << "one plane can always be copied; its copy has the first row first";
    }
}

TEST(BmpWriter, AsksTheDataTypeOfTheCopyWhereTheImageIsNot8Bit) {
    // Words that a compatible image takes for plain 8 bits: 6 bits float, 4 bits overlay.
    for (const TDataType type : {0x206u, 0x404u}) {
        const auto image = FakeImage::Planar(4, 1, 1, type);
        image->Pixels = {1, 2, 3, 4};
        EXPECT_EQ(Written(image->Handle()), Joined(Headers(8, 4, -1, 4), {1, 2, 3, 4})) << type;
    }
}

TEST(BmpWriter, ReplacesALongerFile) {
    const TemporaryPath path("image.bmp", FileBytes(5000, 0xAA));
    FileBytes memory = {1, 2, 3, 4};
    ASSERT_TRUE(WriteImageFile(Wrap(memory.data(), {1, 4, 1}, 1, 4).Get(), path.Get()));
    EXPECT_EQ(path.Read(), Joined(Headers(8, 4, -1, 4), memory));
}

TEST(BmpWriter, ReplacesAnUnfinishedBitmapByAWholeOne) {
    FileBytes memory = {1, 2, 3, 4};
    const Handle image = Wrap(memory.data(), {1, 4, 1}, 1, 4);
    const FileBytes whole = Joined(Headers(8, 4, -1, 4), memory);
    for (std::size_t length = 0; length <= whole.size(); length += 100) {
        const TemporaryPath path("image.bmp", FileBytes(whole.begin(), whole.begin() + static_cast<long>(length)));
        ASSERT_TRUE(WriteImageFile(image.Get(), path.Get()));
        EXPECT_EQ(path.Read(), whole);
    }
}

TEST(BmpWriter, WritesIntoAPipe) {
    const Handle image = Generic({1, 5, 4});
    const TemporaryPath pipe("pipe.bmp");
    ASSERT_EQ(mkfifo(pipe.Get(), 0600), 0);
    const int reader = open(pipe.Get(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_TRUE(WriteImageFile(image.Get(), pipe.Get()));
    FileBytes bytes(5000);
    const ssize_t count = read(reader, bytes.data(), bytes.size());
    close(reader);
    ASSERT_GE(count, 0);
    bytes.resize(static_cast<std::size_t>(count));
    EXPECT_EQ(bytes, Written(image.Get()));
}

} // namespace

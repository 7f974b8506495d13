/* Images small enough to tell their bitmap files byte by byte, and the headers that those have. */
#ifndef ORV_TESTS_BMP_WRITING_H
#define ORV_TESTS_BMP_WRITING_H

#include "ImageCreation.h"
#include "Persistence/BmpFiles.h"

namespace TestSupport {

/// The headers that the writer makes; height as it stands in the file.
inline FileBytes Headers(std::uint16_t bits, std::int32_t width, std::int32_t height, std::uint32_t pixelBytes) {
    BmpFile file;
    file.biBitCount = bits;
    file.biWidth = width;
    file.biHeight = height;
    if (bits == 8)
        file.SetPalette([](std::uint8_t i) { return PaletteColor{i, i, i}; });
    file.bfSize = file.bfOffBits + pixelBytes;
    return file.Bytes();
}

inline FileBytes Joined(FileBytes first, const FileBytes &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Writes an image and gives the file's bytes; empty when that fails. A failure must not have made the file.
inline FileBytes Written(void *image) {
    ClearReports();
    const TemporaryPath path("image.bmp");
    const bool written = WriteImageFile(image, path.Get());
    EXPECT_EQ(path.Exists(), written);
    return written ? path.Read() : FileBytes{};
}

/// An image of one or three bytes per pixel, planes in the reverse order of the bytes, over memory of the test's.
inline Handle Wrap(void *firstRow, ImageSize size, std::intptr_t pixelBytes, std::intptr_t pitch,
                   TDataType type = 8) {
    constexpr std::intptr_t LastPlaneFirst[] = {2, 1, 0};
    Handle image;
    EXPECT_EQ(CreateImageFromPointer(firstRow, 0, size.Width, size.Height, size.Planes, type, pixelBytes, pitch, 1,
                                     size.Planes == 3 ? LastPlaneFirst : nullptr, nullptr, nullptr, image.Out()),
              0);
    return image;
}

inline Handle Generic(ImageSize size, bool overlay = false) {
    Handle image;
    EXPECT_TRUE(CreateGenericImage(size.Planes, size.Width, size.Height, overlay, image.Out()));
    std::uint8_t value = 0;
    for (std::intptr_t y = 0; y < size.Height; ++y)
        for (std::intptr_t x = 0; x < size.Width; ++x)
            for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
                *AccessOf(image.Get(), plane).At(x, y) = ++value;
    return image;
}

} // namespace TestSupport

#endif

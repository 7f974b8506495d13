/* Bitmap files made by the tests byte by byte, what a reader has to make of them, and files on disk that remove
 * themselves. Nothing here shares code with the library. */
#ifndef ORV_TESTS_BMP_FILES_H
#define ORV_TESTS_BMP_FILES_H

#include "ImageFiles.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <unistd.h>

namespace TestSupport {

using FileBytes = std::vector<std::uint8_t>;

/// A path below the temporary folder that no other test uses; what stands there at the end is removed. What comes in
/// front of the name has no "." and no separator behind the folder.
class TemporaryPath {
public:
    explicit TemporaryPath(const std::string &name) {
        static int number = 0;
        path = testing::TempDir() + "orv" + std::to_string(getpid()) + "-" + std::to_string(number++) + "-" + name;
    }
    TemporaryPath(const std::string &name, const FileBytes &bytes) : TemporaryPath(name) { Write(bytes); }
    TemporaryPath(const TemporaryPath &) = delete;
    TemporaryPath &operator=(const TemporaryPath &) = delete;
    ~TemporaryPath() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    const char *Get() const { return path.c_str(); }
    const std::string &String() const { return path; }
    bool Exists() const { return std::filesystem::exists(path); }
    void Write(const FileBytes &bytes) const {
        std::ofstream file(path, std::ios::binary);
        file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        ASSERT_TRUE(file.good());
    }
    FileBytes Read() const {
        std::ifstream file(path, std::ios::binary);
        EXPECT_TRUE(file.good());
        return FileBytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

private:
    std::string path;
};

template <class T>
void AppendNumber(FileBytes &bytes, T value) {
    for (std::size_t i = 0; i < sizeof value; ++i)
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i)));
}

/// Red, green, blue of a palette entry.
using PaletteColor = std::array<std::uint8_t, 3>;

/// A bitmap file field by field. Every field can be spoilt after MakeBmp has made a good file.
struct BmpFile {
    std::uint16_t bfType = 19778;
    std::uint32_t bfSize = 0;
    std::uint16_t bfReserved1 = 0;
    std::uint16_t bfReserved2 = 0;
    std::uint32_t bfOffBits = 54;
    std::uint32_t biSize = 40;
    std::int32_t biWidth = 0;
    std::int32_t biHeight = 0;
    std::uint16_t biPlanes = 1;
    std::uint16_t biBitCount = 0;
    std::uint32_t biCompression = 0;
    std::uint32_t biSizeImage = 0;
    std::int32_t biXPelsPerMeter = 0;
    std::int32_t biYPelsPerMeter = 0;
    std::uint32_t biClrUsed = 0;
    std::uint32_t biClrImportant = 0;
    FileBytes BehindHeaders; ///< the palette, or the channel masks
    FileBytes Pixels;

    FileBytes Bytes() const {
        FileBytes bytes;
        AppendNumber(bytes, bfType);
        AppendNumber(bytes, bfSize);
        AppendNumber(bytes, bfReserved1);
        AppendNumber(bytes, bfReserved2);
        AppendNumber(bytes, bfOffBits);
        AppendNumber(bytes, biSize);
        AppendNumber(bytes, biWidth);
        AppendNumber(bytes, biHeight);
        AppendNumber(bytes, biPlanes);
        AppendNumber(bytes, biBitCount);
        AppendNumber(bytes, biCompression);
        AppendNumber(bytes, biSizeImage);
        AppendNumber(bytes, biXPelsPerMeter);
        AppendNumber(bytes, biYPelsPerMeter);
        AppendNumber(bytes, biClrUsed);
        AppendNumber(bytes, biClrImportant);
        bytes.insert(bytes.end(), BehindHeaders.begin(), BehindHeaders.end());
        bytes.insert(bytes.end(), Pixels.begin(), Pixels.end());
        return bytes;
    }
    std::size_t RowBytes() const {
        return (static_cast<std::size_t>(biBitCount) / 8 * static_cast<std::size_t>(biWidth) + 3) / 4 * 4;
    }
    /// Puts what stands behind the headers in place, and corrects offset and size.
    void SetBehindHeaders(FileBytes bytes) {
        BehindHeaders = std::move(bytes);
        bfOffBits = static_cast<std::uint32_t>(54 + BehindHeaders.size());
        bfSize = static_cast<std::uint32_t>(bfOffBits + Pixels.size());
    }
    void SetPalette(const std::function<PaletteColor(std::uint8_t)> &color, std::uint8_t reserved = 0) {
        FileBytes bytes;
        for (int i = 0; i < 256; ++i) {
            const auto [red, green, blue] = color(static_cast<std::uint8_t>(i));
            bytes.insert(bytes.end(), {blue, green, red, reserved});
        }
        SetBehindHeaders(std::move(bytes));
    }
    void SetMasks(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
        biCompression = 3;
        FileBytes bytes;
        for (const std::uint32_t mask : {red, green, blue})
            AppendNumber(bytes, mask);
        SetBehindHeaders(std::move(bytes));
    }
};

/// A good file with random pixels, padding included; 8 bits with the palette i, i, i.
inline BmpFile MakeBmp(int bits, std::int32_t width, std::int32_t height, std::uint32_t seed = 1) {
    BmpFile file;
    file.biBitCount = static_cast<std::uint16_t>(bits);
    file.biWidth = width;
    file.biHeight = height;
    std::mt19937 random(seed);
    file.Pixels.resize(file.RowBytes() * static_cast<std::size_t>(std::abs(height)));
    for (auto &byte : file.Pixels)
        byte = static_cast<std::uint8_t>(random());
    if (bits == 8)
        file.SetPalette([](std::uint8_t i) { return PaletteColor{i, i, i}; });
    else
        file.SetBehindHeaders({});
    return file;
}

/// The planes that a good file shows: one for 8 bits with a palette of greys, else red, green, blue.
inline std::vector<PlaneBytes> ShownPlanes(const BmpFile &file) {
    const auto colorOf = [&file](std::uint8_t value) -> PaletteColor {
        const std::uint8_t *entry = &file.BehindHeaders[std::size_t{4} * value];
        return {entry[2], entry[1], entry[0]};
    };
    bool grey = file.biBitCount == 8;
    for (int i = 0; i < 256 && grey; ++i) {
        const auto color = colorOf(static_cast<std::uint8_t>(i));
        grey = color[0] == color[1] && color[0] == color[2];
    }
    const auto width = static_cast<std::size_t>(file.biWidth);
    const auto height = static_cast<std::size_t>(std::abs(file.biHeight));
    std::vector<PlaneBytes> planes(grey ? 1 : 3);
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t row = file.biHeight > 0 ? height - 1 - y : y;
            const std::uint8_t *pixel = &file.Pixels[row * file.RowBytes() + x * (file.biBitCount / 8)];
            for (std::size_t plane = 0; plane < planes.size(); ++plane)
                planes[plane].push_back(file.biBitCount == 8 ? colorOf(*pixel)[plane] : pixel[2 - plane]);
        }
    return planes;
}

/// Loads a file of the bytes. Expects no report.
inline Handle LoadBytes(const FileBytes &bytes) {
    ClearReports();
    const TemporaryPath path("image.bmp", bytes);
    Handle image;
    const bool loaded = LoadImageFile(path.Get(), image.Out());
    EXPECT_EQ(static_cast<bool>(image), loaded) << "the output is null exactly when the load failed";
    ExpectNoReport();
    return image;
}

inline void ExpectPlanes(void *image, const std::vector<PlaneBytes> &planes) {
    ASSERT_EQ(SizeOf(image).Planes, static_cast<std::intptr_t>(planes.size()));
    for (std::size_t plane = 0; plane < planes.size(); ++plane)
        EXPECT_EQ(PixelBytes(image, static_cast<std::intptr_t>(plane)), planes[plane]) << "plane " << plane;
}

/// Reads every pixel of every plane, those behind the guard entries included. The address sanitizer sees each access
/// outside the image's memory; the sum keeps the compiler from leaving the reads out.
inline std::uint64_t SumOfAllPixels(void *image) {
    const ImageSize size = SizeOf(image);
    std::uint64_t sum = 0;
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane) {
        const PlaneAccess access = AccessOf(image, plane);
        EXPECT_EQ(TypeOf(image, plane), 8u);
        for (std::intptr_t y = -4; y < size.Height + 4; ++y)
            for (std::intptr_t x = -4; x < size.Width + 4; ++x)
                sum += *static_cast<volatile std::uint8_t *>(access.At(x, y));
    }
    return sum;
}

inline std::ptrdiff_t OpenFileCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

} // namespace TestSupport

#endif

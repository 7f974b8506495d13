#include "Persistence/BmpReader.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>

#include "CheckedSize.h"
#include "ImageCreation.h"
#include "Interface/Boundary.h"
#include "Persistence/BmpDescription.h"

namespace Persistence {
namespace {

struct FreeBlock {
    void operator()(unsigned char *block) const { std::free(block); }
};
/// From malloc: the pixels of a file can be read into it without clearing it first.
using Block = std::unique_ptr<unsigned char, FreeBlock>;

/// Decoded pixels. Without a block: the file could not be read, or there was no memory.
struct Pixels {
    Block Data;
    std::size_t Bytes;
    std::intptr_t PixelBytes;
    std::intptr_t RowBytes;
    bool LastRowFirst;
};

enum class PaletteKind { Identity, Grey, Color };

PaletteKind KindOf(const BmpPalette &palette) {
    bool identity = true;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const BmpColor &color = palette[i];
        if (color.Red != color.Green || color.Red != color.Blue)
            return PaletteKind::Color;
        identity = identity && color.Red == i;
    }
    return identity ? PaletteKind::Identity : PaletteKind::Grey;
}

Block Allocate(std::size_t bytes) {
    return Block(static_cast<unsigned char *>(std::malloc(bytes)));
}

Pixels ReadAsTheyStand(const FileDescriptor &file, const BmpDescription &description) {
    const std::size_t bytes = description.PixelBytes;
    Block block = Allocate(bytes);
    if (block != nullptr && file.ReadAt(description.PixelOffset, block.get(), bytes) != bytes)
        block.reset();
    return {std::move(block), bytes, description.BitCount / 8, static_cast<std::intptr_t>(description.RowBytes),
            description.LastRowFirst};
}

/// Reads the rows in portions that stay in the cache, and writes them first row first, each pixel replaced by its
/// entry of lookup.
template <class Pixel>
bool MapRows(const FileDescriptor &file, const BmpDescription &description, const std::array<Pixel, 256> &lookup,
             Pixel *target) {
    static_assert(std::numeric_limits<unsigned char>::max() < std::tuple_size_v<std::array<Pixel, 256>>,
                  "every pixel value has its entry");
    constexpr std::size_t PortionBytes = 128 * 1024;
    const std::size_t width = static_cast<std::size_t>(description.Width);
    const std::size_t height = static_cast<std::size_t>(description.Height);
    const std::size_t portionRows = std::clamp(PortionBytes / description.RowBytes, std::size_t{1}, height);
    const Block portion = Allocate(portionRows * description.RowBytes);
    if (portion == nullptr)
        return false;
    for (std::size_t first = 0; first < height; first += portionRows) {
        const std::size_t rows = std::min(portionRows, height - first);
        const std::size_t bytes = rows * description.RowBytes;
        if (file.ReadAt(description.PixelOffset + first * description.RowBytes, portion.get(), bytes) != bytes)
            return false;
        for (std::size_t row = 0; row < rows; ++row) {
            const unsigned char *source = portion.get() + row * description.RowBytes;
            const std::size_t imageRow = description.LastRowFirst ? height - 1 - (first + row) : first + row;
            std::transform(source, source + width, target + imageRow * width,
                           [&lookup](unsigned char value) { return lookup[value]; });
        }
    }
    return true;
}

template <class Pixel>
Pixels ReadThroughPalette(const FileDescriptor &file, const BmpDescription &description,
                          const std::array<Pixel, 256> &lookup) {
    std::size_t bytes = 0;
    if (!orvBase::CheckedProduct(bytes, static_cast<std::size_t>(description.Width), sizeof(Pixel),
                                 static_cast<std::size_t>(description.Height)))
        return {};
    Block block = Allocate(bytes);
    if (block != nullptr && !MapRows(file, description, lookup, reinterpret_cast<Pixel *>(block.get())))
        block.reset();
    return {std::move(block), bytes, sizeof(Pixel), description.Width * std::intptr_t{sizeof(Pixel)}, false};
}

Pixels ReadPixels(const FileDescriptor &file, const BmpDescription &description) {
    const BmpPalette &palette = description.Palette;
    const PaletteKind kind = description.BitCount == 8 ? KindOf(palette) : PaletteKind::Identity;
    if (kind == PaletteKind::Identity)
        return ReadAsTheyStand(file, description);
    if (kind == PaletteKind::Color)
        return ReadThroughPalette(file, description, palette);
    std::array<unsigned char, 256> greys;
    std::transform(palette.begin(), palette.end(), greys.begin(), [](const BmpColor &color) { return color.Red; });
    return ReadThroughPalette(file, description, greys);
}

void FreeUserData(void *, void *userData) {
    std::free(userData);
}

/// The image over the pixels. It owns them from then on.
void *MakeImage(Pixels pixels, std::intptr_t width, std::intptr_t height) {
    constexpr TDataType Unsigned8 = 8;
    constexpr std::intptr_t BlueGreenRed[] = {2, 1, 0};
    const bool isGrey = pixels.PixelBytes == 1;
    unsigned char *const block = pixels.Data.get();
    unsigned char *const firstRow = pixels.LastRowFirst ? block + pixels.RowBytes * (height - 1) : block;
    const std::intptr_t pitch = pixels.LastRowFirst ? -pixels.RowBytes : pixels.RowBytes;
    void *image = nullptr;
    if (CreateImageFromPointer(firstRow, pixels.Bytes, width, height, isGrey ? 1 : 3, Unsigned8, pixels.PixelBytes,
                               pitch, 1, isGrey ? nullptr : BlueGreenRed, FreeUserData, block, &image) != 0)
        return nullptr;
    static_cast<void>(pixels.Data.release());
    return image;
}

} // namespace

void *LoadBmp(const char *path) {
    return Interface::SilentBoundary<void *>(nullptr, [path]() -> void * {
        const FileDescriptor file = FileDescriptor::OpenForReading(path);
        const std::optional<BmpDescription> description = DescribeBmp(file);
        if (!description)
            return nullptr;
        Pixels pixels = ReadPixels(file, *description);
        return pixels.Data == nullptr ? nullptr
                                      : MakeImage(std::move(pixels), description->Width, description->Height);
    });
}

} // namespace Persistence

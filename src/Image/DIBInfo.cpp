// The header and the palette of a bitmap-compatible image.
#include <array>
#include <cstring>

#include "Image/ImagePlane.h"

namespace {

constexpr std::size_t HeaderBytes = sizeof(TBitmapInfoHeader);
constexpr std::size_t PaletteEntries = 256;
static_assert(HeaderBytes == 40);

// Indices into the display's palette: a ramp of greys, a ramp of overlay shades, one for the rest.
std::uint16_t DisplayIndex(std::uint32_t i, std::uint32_t overlayMask) {
    switch (i & overlayMask) {
    case 0:
        return static_cast<std::uint16_t>((63 * i / 255 + 20) & 255);
    case 1:
        return static_cast<std::uint16_t>((31 * i / 255 + 84) & 255);
    default:
        return 18;
    }
}

void WriteIndexTable(char *palette, std::uint32_t overlayMask) {
    for (std::uint32_t i = 0; i < PaletteEntries; ++i) {
        const std::uint16_t index = DisplayIndex(i, overlayMask);
        std::memcpy(palette + i * sizeof index, &index, sizeof index);
    }
}

// Required: an entry with overlay bits writes the same first four entries of the palette each time, not its own.
void WriteColorTable(char *palette, std::uint32_t overlayMask) {
    constexpr std::array<unsigned char, 16> overlayPatch = {255, 200, 160, 0, 255, 0,   0,   0,
                                                            0,   255, 255, 0, 0,   255, 255, 0};
    for (std::uint32_t i = 0; i < PaletteEntries; ++i) {
        const auto level = static_cast<unsigned char>(i);
        const std::array<unsigned char, 4> entry = {level, level, level, 0};
        if ((i & overlayMask) == 0)
            std::memcpy(palette + i * entry.size(), entry.data(), entry.size());
        else
            std::memcpy(palette, overlayPatch.data(), overlayPatch.size());
    }
}

} // namespace

void TDIBInfo::WriteHeader(std::int32_t width, std::int32_t height, std::uint16_t bitCount) {
    const std::size_t paletteBytes = bitCount == 8 ? PaletteEntries * 4 : 0;
    Allocate(HeaderBytes + paletteBytes);
    TBitmapInfoHeader header = {};
    header.biSize = HeaderBytes;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = bitCount;
    std::memset(GetData(), 0, HeaderBytes + paletteBytes);
    std::memcpy(GetData(), &header, HeaderBytes);
}

TBitmapInfoHeader TDIBInfo::Header() {
    TBitmapInfoHeader header;
    std::memcpy(&header, GetData(), HeaderBytes);
    return header;
}

void TDIBInfo::SetPaletteMode(std::int32_t mode, std::uint32_t overlayMask) {
    if (mode != paletteMode_ && Header().biBitCount == 8) {
        char *palette = static_cast<char *>(GetData()) + HeaderBytes;
        if (mode == IndexTable)
            WriteIndexTable(palette, overlayMask);
        else if (mode == ColorTable)
            WriteColorTable(palette, overlayMask);
    }
    paletteMode_ = mode;
}

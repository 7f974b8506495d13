// The records of a bitmap file as they stand in it: the file header, the palette entry and the numbers they hold.
// The 40 bytes of the info header are TBitmapInfoHeader of Interfaces.h. Everything in a bitmap file is
// little-endian.
#pragma once

#include <array>
#include <bit>
#include <cstring>
#include <type_traits>

#include "Interfaces.h"

namespace Persistence {

static_assert(std::endian::native == std::endian::little, "records are copied as they stand in the file");
static_assert(sizeof(TBitmapInfoHeader) == 40 && std::is_trivially_copyable_v<TBitmapInfoHeader>);

inline constexpr std::uint16_t BmpSignature = 19778; // "BM"
inline constexpr std::size_t BmpFileHeaderBytes = 14;
inline constexpr std::size_t BmpInfoHeaderBytes = sizeof(TBitmapInfoHeader);
/// Where the palette stands, or the channel masks: right behind an info header of 40 bytes.
inline constexpr std::size_t BmpHeadersEnd = BmpFileHeaderBytes + BmpInfoHeaderBytes;
inline constexpr std::uint32_t BmpUncompressed = 0;
inline constexpr std::uint32_t BmpChannelMasks = 3;

/// The file header. In the file, four reserved bytes stand before bfOffBits.
struct BmpFileHeader {
    std::uint16_t bfType;
    std::uint32_t bfSize;
    std::uint32_t bfOffBits;
};

/// A palette entry, and a pixel of a 32-bit image.
struct BmpColor {
    std::uint8_t Blue;
    std::uint8_t Green;
    std::uint8_t Red;
    std::uint8_t Reserved;
};
static_assert(sizeof(BmpColor) == 4);

using BmpPalette = std::array<BmpColor, 256>;
inline constexpr std::size_t BmpPaletteBytes = sizeof(BmpPalette);

/// The value at an unaligned place of a file's bytes.
template <class T>
T LoadFileValue(const unsigned char *bytes) {
    static_assert(std::is_trivially_copyable_v<T>);
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <class T>
void StoreFileValue(unsigned char *bytes, const T &value) {
    static_assert(std::is_trivially_copyable_v<T>);
    std::memcpy(bytes, &value, sizeof value);
}

inline BmpFileHeader LoadFileHeader(const unsigned char *bytes) {
    return {LoadFileValue<std::uint16_t>(bytes), LoadFileValue<std::uint32_t>(bytes + 2),
            LoadFileValue<std::uint32_t>(bytes + 10)};
}

inline void StoreFileHeader(unsigned char *bytes, const BmpFileHeader &header) {
    StoreFileValue(bytes, header.bfType);
    StoreFileValue(bytes + 2, header.bfSize);
    StoreFileValue(bytes + 6, std::uint32_t{0});
    StoreFileValue(bytes + 10, header.bfOffBits);
}

} // namespace Persistence

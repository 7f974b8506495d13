// Comparisons of 64 pixels at a time whose answers are bits. Everything is inlined into the loop that runs it, at the
// instruction set level of that loop.
#pragma once

#include <cstdint>
#include <emmintrin.h>

#include "Image/KernelLevel.h"
#include "PixelList/MaximumRows.h"
#include "Scan/PixelRows.h"

namespace PixelList {

/// A byte for each pixel of a block and each of two questions: all bits of it, or none.
struct alignas(64) BlockBytes {
    std::uint8_t First[BitsColumns];
    std::uint8_t Second[BitsColumns];
};

ORV_INLINE std::uint64_t BitsOf(const std::uint8_t *bytes) {
    std::uint64_t bits = 0;
    for (int part = 0; part < 4; ++part) {
        const __m128i sixteen = _mm_load_si128(reinterpret_cast<const __m128i *>(bytes) + part);
        bits |= std::uint64_t{static_cast<std::uint32_t>(_mm_movemask_epi8(sixteen))} << (16 * part);
    }
    return bits;
}

/// As CompareRows, for one row.
template <class T>
ORV_INLINE ComparedBits ComparePixels(const char *pixels, T value) {
    const auto *const row = reinterpret_cast<const typename Scan::Loose<T>::Type *>(pixels);
    BlockBytes bytes;
    for (std::intptr_t i = 0; i < BitsColumns; ++i) {
        const T pixel = row[i];
        bytes.First[i] = pixel == value ? 0xFF : 0;
        bytes.Second[i] = pixel > value ? 0xFF : 0;
    }
    return {BitsOf(bytes.First), BitsOf(bytes.Second)};
}

} // namespace PixelList

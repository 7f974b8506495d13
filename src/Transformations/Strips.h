// Strips of positions: pixels are collected into arrays one by one, and then weighed in registers. All is inlined
// into the loop that runs it, at the instruction set level of that loop.
#pragma once

#include <cstring>
#include <utility>

#include "Image/KernelLevel.h"
#include "Image/RowKernels.h"

namespace Transformations {

/// Positions that are worked on at a time.
inline constexpr std::intptr_t StripLength = 64;

/// The same offset, of which the compiler knows nothing: it would build
/// registers of offsets, only to take them apart again.
ORV_INLINE std::intptr_t Opaque(std::intptr_t offset) {
    __asm__("" : "+r"(offset));
    return offset;
}

/// Runs collect(strip, first, count) and weigh(strip, first, count) for strips of all of count positions. Whole
/// strips, whose length the compiler knows; the last one meets the one before. Each strip is weighed after the next
/// one is collected: words written one by one are slow to be read as a register at once.
template <class Strip, class Collect, class Weigh>
ORV_INLINE void ForEachStrip(std::intptr_t count, Collect collect, Weigh weigh) {
    Strip strips[2];
    Strip *current = &strips[0], *ahead = &strips[1];
    if (count < StripLength) {
        collect(*current, 0, count);
        return weigh(*current, 0, count);
    }
    const std::intptr_t last = count - StripLength;
    collect(*current, 0, StripLength);
    for (std::intptr_t first = 0; first < last;) {
        const std::intptr_t next = first + StripLength < last ? first + StripLength : last;
        collect(*ahead, next, StripLength);
        weigh(*current, first, StripLength);
        std::swap(current, ahead);
        first = next;
    }
    weigh(*current, last, StripLength);
}

/// Puts pixels together from the first three of each four bytes.
ORV_INLINE void LeaveOutFourthBytes(const std::uint8_t *bytes, std::intptr_t count, Image::ThreeBytes *to) {
    auto *const target = reinterpret_cast<char *>(to);
    std::intptr_t i = 0;
    // Four pixels at a time; the four bytes behind them belong to pixels to come.
    for (; i + 6 <= count; i += 4) {
        Image::Vector<std::uint8_t, 16> four;
        Image::LoadVector(four, reinterpret_cast<const char *>(bytes + 4 * i));
        four = __builtin_shufflevector(four, four, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 15, 15, 15, 15);
        Image::StoreVector(target + 3 * i, four);
    }
    for (; i < count; ++i)
        std::memcpy(target + 3 * i, bytes + 4 * i, 3);
}

} // namespace Transformations

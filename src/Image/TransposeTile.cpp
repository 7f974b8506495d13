// Turning tiles of pixels in registers: squares of as many lines as a register has lanes.
#include <array>

#include "Image/RowKernels.h"
#include "Image/VectorRegisters.h"

namespace Image {
namespace {

constexpr std::size_t RegisterBytes = 16;

/// Elements per register; 1 where the element is no power of two wide and goes one by one.
template <class T>
constexpr std::size_t Lanes = (sizeof(T) & (sizeof(T) - 1)) == 0 ? RegisterBytes / sizeof(T) : 1;

/// Turns one square of Lanes x Lanes elements: each stage interleaves the first half of the lines with the second,
/// and after log2(Lanes) stages line j holds what was lane j of every line.
template <class T>
void TransposeSquare(char *const *targetRows, std::intptr_t targetOffset, const char *source, std::intptr_t pitch) {
    constexpr std::size_t count = Lanes<T>;
    constexpr auto all = std::make_index_sequence<count>{};
    using Line = Vector<T, RegisterBytes>;
    std::array<Line, count> lines;
    for (std::size_t i = 0; i < count; ++i)
        LoadVector(lines[i], source + static_cast<std::intptr_t>(i) * pitch);
    for (std::size_t stage = 1; stage < count; stage *= 2) {
        std::array<Line, count> mixed;
        for (std::size_t i = 0; i < count / 2; ++i) {
            InterleaveLanes<0>(mixed[2 * i], lines[i], lines[i + count / 2], all);
            InterleaveLanes<1>(mixed[2 * i + 1], lines[i], lines[i + count / 2], all);
        }
        lines = mixed;
    }
    for (std::size_t j = 0; j < count; ++j)
        StoreVector(targetRows[j] + targetOffset, lines[j]);
}

template <class T>
void TransposeRest(char *const *targetRows, std::intptr_t targetOffset, const char *source, std::intptr_t pitch,
                   std::intptr_t lines, std::intptr_t rows) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    for (std::intptr_t j = 0; j < rows; ++j)
        for (std::intptr_t i = 0; i < lines; ++i)
            std::memcpy(targetRows[j] + targetOffset + i * size, source + i * pitch + j * size, sizeof(T));
}

} // namespace

template <class T>
void TransposeTile(char *const *targetRows, std::intptr_t targetOffset, const char *source, std::intptr_t pitch,
                   std::intptr_t lines, std::intptr_t rows) {
    constexpr auto lanes = static_cast<std::intptr_t>(Lanes<T>);
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    std::intptr_t j = 0;
    if constexpr (lanes > 1)
        for (; j + lanes <= rows; j += lanes) {
            std::intptr_t i = 0;
            for (; i + lanes <= lines; i += lanes)
                TransposeSquare<T>(targetRows + j, targetOffset + i * size, source + i * pitch + j * size, pitch);
            TransposeRest<T>(targetRows + j, targetOffset + i * size, source + i * pitch + j * size, pitch, lines - i,
                             lanes);
        }
    TransposeRest<T>(targetRows + j, targetOffset, source + j * size, pitch, lines, rows - j);
}

template void TransposeTile<std::uint8_t>(char *const *, std::intptr_t, const char *, std::intptr_t, std::intptr_t,
                                          std::intptr_t);
template void TransposeTile<std::uint16_t>(char *const *, std::intptr_t, const char *, std::intptr_t, std::intptr_t,
                                           std::intptr_t);
template void TransposeTile<ThreeBytes>(char *const *, std::intptr_t, const char *, std::intptr_t, std::intptr_t,
                                        std::intptr_t);
template void TransposeTile<std::uint32_t>(char *const *, std::intptr_t, const char *, std::intptr_t, std::intptr_t,
                                           std::intptr_t);
template void TransposeTile<std::uint64_t>(char *const *, std::intptr_t, const char *, std::intptr_t, std::intptr_t,
                                           std::intptr_t);

} // namespace Image

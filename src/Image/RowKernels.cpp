#include "Image/RowKernels.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

// The row kernels exist once per instruction set level and the loader chooses. A sanitizer's own start-up does not
// stand that, so its builds have the one plain level.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORV_ROW_KERNEL
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(undefined_behavior_sanitizer)
#define ORV_ROW_KERNEL
#endif
#endif
#ifndef ORV_ROW_KERNEL
#define ORV_ROW_KERNEL __attribute__((target_clones("arch=x86-64-v3", "default")))
#endif

namespace Image {
namespace {

/// Elements per vector register; 1 where the element is no power of two wide and goes one by one.
template <class T>
constexpr std::size_t Lanes = (sizeof(T) & (sizeof(T) - 1)) == 0 ? 16 / sizeof(T) : 1;

template <class T>
struct VectorOf {
    typedef T Type __attribute__((vector_size(16)));
};
template <class T>
using Vector = typename VectorOf<T>::Type;

template <class T>
inline __attribute__((always_inline)) Vector<T> Load(const char *address) {
    Vector<T> value;
    std::memcpy(&value, address, sizeof value);
    return value;
}

template <class T>
inline __attribute__((always_inline)) void Store(char *address, Vector<T> value) {
    std::memcpy(address, &value, sizeof value);
}

template <class T, std::size_t... I>
inline __attribute__((always_inline)) Vector<T> Reversed(Vector<T> value, std::index_sequence<I...>) {
    return __builtin_shufflevector(value, value, static_cast<int>(sizeof...(I) - 1 - I)...);
}

/// Lanes of a and b in turn, from the lower halves (Half 0) or the upper ones (Half 1).
template <class T, std::size_t Half, std::size_t... I>
inline __attribute__((always_inline)) Vector<T> Interleaved(Vector<T> a, Vector<T> b, std::index_sequence<I...>) {
    constexpr std::size_t count = sizeof...(I);
    return __builtin_shufflevector(a, b, static_cast<int>(Half * count / 2 + I / 2 + (I % 2 == 0 ? 0 : count))...);
}

template <class T>
inline __attribute__((always_inline)) void ReverseLoop(char *target, const char *source, std::intptr_t count) {
    constexpr auto lanes = static_cast<std::intptr_t>(Lanes<T>);
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    std::intptr_t done = 0;
    if constexpr (lanes > 1)
        for (; done + lanes <= count; done += lanes)
            Store<T>(target + done * size, Reversed<T>(Load<T>(source + (count - done - lanes) * size),
                                                       std::make_index_sequence<Lanes<T>>{}));
    for (; done < count; ++done)
        std::memcpy(target + done * size, source + (count - 1 - done) * size, sizeof(T));
}

/// Turns one square of Lanes x Lanes elements: each stage interleaves the first half of the lines with the second,
/// and after log2(Lanes) stages line j holds what was lane j of every line.
template <class T>
inline __attribute__((always_inline)) void TransposeSquare(char *const *targetRows, std::intptr_t targetOffset,
                                                           const char *source, std::intptr_t pitch) {
    constexpr std::size_t count = Lanes<T>;
    constexpr auto all = std::make_index_sequence<count>{};
    std::array<Vector<T>, count> lines;
    for (std::size_t i = 0; i < count; ++i)
        lines[i] = Load<T>(source + static_cast<std::intptr_t>(i) * pitch);
    for (std::size_t stage = 1; stage < count; stage *= 2) {
        std::array<Vector<T>, count> mixed;
        for (std::size_t i = 0; i < count / 2; ++i) {
            mixed[2 * i] = Interleaved<T, 0>(lines[i], lines[i + count / 2], all);
            mixed[2 * i + 1] = Interleaved<T, 1>(lines[i], lines[i + count / 2], all);
        }
        lines = mixed;
    }
    for (std::size_t j = 0; j < count; ++j)
        Store<T>(targetRows[j] + targetOffset, lines[j]);
}

template <class T>
inline __attribute__((always_inline)) void TransposeRest(char *const *targetRows, std::intptr_t targetOffset,
                                                         const char *source, std::intptr_t pitch, std::intptr_t lines,
                                                         std::intptr_t rows) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    for (std::intptr_t j = 0; j < rows; ++j)
        for (std::intptr_t i = 0; i < lines; ++i)
            std::memcpy(targetRows[j] + targetOffset + i * size, source + i * pitch + j * size, sizeof(T));
}

template <class T>
inline __attribute__((always_inline)) void TransposeLoop(char *const *targetRows, std::intptr_t targetOffset,
                                                         const char *source, std::intptr_t pitch, std::intptr_t lines,
                                                         std::intptr_t rows) {
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

ORV_ROW_KERNEL void Reverse8(char *target, const char *source, std::intptr_t count) {
    ReverseLoop<std::uint8_t>(target, source, count);
}

ORV_ROW_KERNEL void Reverse16(char *target, const char *source, std::intptr_t count) {
    ReverseLoop<std::uint16_t>(target, source, count);
}

} // namespace

template <>
void ReverseRow<std::uint8_t>(char *target, const char *source, std::intptr_t count) {
    Reverse8(target, source, count);
}

template <>
void ReverseRow<std::uint16_t>(char *target, const char *source, std::intptr_t count) {
    Reverse16(target, source, count);
}

template <>
void ReverseRow<std::uint32_t>(char *target, const char *source, std::intptr_t count) {
    ReverseLoop<std::uint32_t>(target, source, count);
}

template <>
void ReverseRow<ThreeBytes>(char *target, const char *source, std::intptr_t count) {
    ReverseLoop<ThreeBytes>(target, source, count);
}

template <>
void ReverseRow<std::uint64_t>(char *target, const char *source, std::intptr_t count) {
    ReverseLoop<std::uint64_t>(target, source, count);
}

template <class T>
void TransposeTile(char *const *targetRows, std::intptr_t targetOffset, const char *source, std::intptr_t pitch,
                   std::intptr_t lines, std::intptr_t rows) {
    TransposeLoop<T>(targetRows, targetOffset, source, pitch, lines, rows);
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

// Pieces of a plane's rows as dense, aligned arrays, whatever the layout: in place where the memory is like that
// (the linear form), through a buffer otherwise (the table form). Loops over pixels see arrays only.
#pragma once

#include <algorithm>
#include <cstring>

#include "Image/PlaneView.h"
#include "Image/RowKernels.h"

namespace Scan {

/// Pixels of the longest piece.
template <class T>
inline constexpr std::intptr_t ChunkPixels = std::min<std::intptr_t>(2048, 8192 / static_cast<int>(sizeof(T)));

/// A piece's buffer.
template <class T>
struct alignas(64) Chunk {
    T Pixels[static_cast<std::size_t>(ChunkPixels<T>)];
};

/// The type of the pixels of a plane that stands in memory unaligned.
template <class T>
struct Loose {
    typedef T Type __attribute__((aligned(1), may_alias));
};

/// Bytes from a column to the next where a plane of pixels T is linear; 0 otherwise.
template <class T>
std::intptr_t LinearStep(const Image::PlaneView &view) {
    return view.Width == 1 ? static_cast<std::intptr_t>(sizeof(T)) : view.XStep;
}

/// True when the pixels of a row from address on are an array of T as they stand.
template <class T>
bool IsArray(const Image::PlaneView &view, const char *address) {
    return LinearStep<T>(view) == static_cast<std::intptr_t>(sizeof(T)) &&
           reinterpret_cast<std::uintptr_t>(address) % alignof(T) == 0;
}

/// Gathers count pixels of a row.
template <class T>
void Gather(const Image::PlaneView &view, std::intptr_t x, std::intptr_t y, std::intptr_t count, T *target) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    using Pixel = typename Loose<T>::Type;
    const char *const first = view.Pixel(x, y);
    const std::intptr_t step = LinearStep<T>(view);
    char *const bytes = reinterpret_cast<char *>(target);
    if (step == size) {
        std::copy_n(first, count * size, bytes);
    } else if (step == -size) {
        Image::RowKernels::Best().Reverse<T>()(bytes, first - (count - 1) * size, count);
    } else if (size == 1 && step == 3) {
        Image::RowKernels::Best().ExtractEveryThird(bytes, first, count);
    } else if (step != 0) {
        for (std::intptr_t i = 0; i < count; ++i)
            target[i] = *reinterpret_cast<const Pixel *>(first + i * step);
    } else {
        const char *const row = view.Row(y);
        for (std::intptr_t i = 0; i < count; ++i)
            target[i] = *reinterpret_cast<const Pixel *>(row + view.Columns[x + i].XEntry);
    }
}

/// Writes count pixels into a row, from the first to the last.
template <class T>
void Scatter(const Image::PlaneView &view, std::intptr_t x, std::intptr_t y, std::intptr_t count, const T *source) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    using Pixel = typename Loose<T>::Type;
    char *const first = view.Pixel(x, y);
    const std::intptr_t step = LinearStep<T>(view);
    if (step == size) {
        std::copy_n(reinterpret_cast<const char *>(source), count * size, first);
    } else if (step == -size) {
        Image::RowKernels::Best().Reverse<T>()(first - (count - 1) * size, reinterpret_cast<const char *>(source),
                                               count);
    } else if (step != 0) {
        for (std::intptr_t i = 0; i < count; ++i)
            *reinterpret_cast<Pixel *>(first + i * step) = source[i];
    } else {
        char *const row = view.Row(y);
        for (std::intptr_t i = 0; i < count; ++i)
            *reinterpret_cast<Pixel *>(row + view.Columns[x + i].XEntry) = source[i];
    }
}

/// Pixels x to x + count - 1 of row y for reading: in place, or in the chunk. count up to ChunkPixels.
template <class T>
const T *PixelsToRead(const Image::PlaneView &view, std::intptr_t x, std::intptr_t y, std::intptr_t count,
                      Chunk<T> &chunk) {
    const char *const first = view.Pixel(x, y);
    if (IsArray<T>(view, first))
        return reinterpret_cast<const T *>(first);
    Gather(view, x, y, count, chunk.Pixels);
    return chunk.Pixels;
}

/// Where pixels x to x + count - 1 of row y can be written: in place, or in the chunk, whose content WritePixels
/// brings home. What stands there before is not told.
template <class T>
T *PixelsToWrite(const Image::PlaneView &view, std::intptr_t x, std::intptr_t y, Chunk<T> &chunk) {
    char *const first = view.Pixel(x, y);
    return IsArray<T>(view, first) ? reinterpret_cast<T *>(first) : chunk.Pixels;
}
/// Ends what PixelsToWrite began.
template <class T>
void WritePixels(const Image::PlaneView &view, std::intptr_t x, std::intptr_t y, std::intptr_t count,
                 const T *written, const Chunk<T> &chunk) {
    if (written == chunk.Pixels)
        Scatter(view, x, y, count, written);
}

/// Runs piece(x, y, count) over all pixels, row by row, in pieces of at most the chunk's length.
template <class T, class Piece>
void ForEachPiece(std::intptr_t width, std::intptr_t height, Piece &&piece) {
    for (std::intptr_t y = 0; y < height; ++y)
        for (std::intptr_t x = 0; x < width; x += ChunkPixels<T>)
            piece(x, y, std::min(ChunkPixels<T>, width - x));
}

} // namespace Scan

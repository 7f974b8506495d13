// How an operation over all pixels of a plane runs. The result is the same.
#pragma once

#include "Scan/PixelRows.h"

namespace Scan {

enum class PixelWalk {
    OneByOne, ///< word by word, through the tables
    InPieces  ///< quick loops over pieces of rows, at the current instruction set level
};

/// Calls visit(value) for each pixel through the tables, row by row.
template <class T, class Visit>
void VisitOneByOne(const Image::PlaneView &plane, Visit &&visit) {
    for (std::intptr_t y = 0; y < plane.Height; ++y) {
        const char *const row = plane.Row(y);
        for (std::intptr_t x = 0; x < plane.Width; ++x)
            visit(T{*reinterpret_cast<const typename Loose<T>::Type *>(row + plane.Columns[x].XEntry)});
    }
}

/// Calls visit(pixels, count) for pieces of the rows, row by row.
template <class T, class Visit>
void VisitPieces(const Image::PlaneView &plane, Visit &&visit) {
    Chunk<T> chunk;
    ForEachPiece<T>(plane.Width, plane.Height, [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        visit(PixelsToRead<T>(plane, x, y, count, chunk), count);
    });
}

/// Stores convert(pixel) for each pixel of a plane in another of the same size, through the tables.
template <class Source, class Target, class Convert>
void ConvertOneByOne(const Image::PlaneView &source, const Image::PlaneView &target, Convert &&convert) {
    for (std::intptr_t y = 0; y < source.Height; ++y)
        for (std::intptr_t x = 0; x < source.Width; ++x)
            *reinterpret_cast<typename Loose<Target>::Type *>(target.Pixel(x, y)) =
                convert(Source{*reinterpret_cast<const typename Loose<Source>::Type *>(source.Pixel(x, y))});
}

/// Runs convert(target, source, count) for pieces of the rows of two planes that share no memory.
template <class Source, class Target, class Convert>
void ConvertPieces(const Image::PlaneView &source, const Image::PlaneView &target, Convert &&convert) {
    static_assert(ChunkPixels<Source> <= ChunkPixels<Target>);
    Chunk<Source> read;
    Chunk<Target> written;
    ForEachPiece<Source>(source.Width, source.Height, [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        const Source *const from = PixelsToRead<Source>(source, x, y, count, read);
        Target *const to = PixelsToWrite<Target>(target, x, y, written);
        convert(to, from, count);
        WritePixels(target, x, y, count, to, written);
    });
}

} // namespace Scan

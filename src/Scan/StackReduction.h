// The planes of an image as a stack, reduced pixel by pixel to two new images of one plane: what the reductions
// share. ReducePlainly goes through the tables, one pixel after another; ReduceByPieces hands out pieces of rows as
// arrays.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "Interface/ImageGuard.h"
#include "Scan/PixelRows.h"
#include "Scan/PixelType.h"

namespace Scan {

using StackPlanes = std::span<const Image::PlaneView>;

/// Two results, of a pixel or of a plane.
template <class T>
struct Pair {
    T First;
    T Second;
};

/// A source, held for the time of the call, and the two new images.
struct Stack {
    Interface::ImageForCall Source;
    TDataType Datatype = 0;               ///< of plane 0: all planes are read as this type
    std::vector<Image::PlaneView> Planes; ///< empty for an image without pixels
    Interface::ImageHolder First, Second;
    Pair<Image::PlaneView> Results; ///< the planes of the new images
};

/// Reads the planes of stack.Source and makes the images. False, with the failure reported, when that can't be done.
bool PrepareStack(const char *functionName, Stack &stack);

/// The export: guards, prepares, runs reduce<T>(planes, results) and hands the images out.
template <class Reduce>
std::int32_t ReduceStack(const char *functionName, void *image, void **first, void **second, Reduce &&reduce) {
    Stack stack;
    stack.Source = Interface::GuardCall(image, functionName);
    if (!stack.Source.IsValid())
        return 0;
    if (first == nullptr || second == nullptr) {
        ReportORVError(ErrParameter, functionName);
        return 0;
    }
    if (!PrepareStack(functionName, stack))
        return 0;
    if (!stack.Planes.empty())
        ForPixelType(stack.Datatype, [&]<class T>() { reduce.template operator()<T>(stack.Planes, stack.Results); });
    *first = stack.First.Detach();
    *second = stack.Second.Detach();
    return 1;
}

/// The plain form: reduce(value, count) gives the pair of results of a pixel, where value(plane) is its value there.
template <class T, class Reduce>
void ReducePlainly(StackPlanes planes, const Pair<Image::PlaneView> &results, Reduce &&reduce) {
    using Pixel = typename Loose<T>::Type;
    std::vector<const char *> rows(planes.size());
    for (std::intptr_t y = 0; y < results.First.Height; ++y) {
        for (std::size_t plane = 0; plane < planes.size(); ++plane)
            rows[plane] = planes[plane].Row(y);
        for (std::intptr_t x = 0; x < results.First.Width; ++x) {
            const auto value = [&](std::size_t plane) -> T {
                return *reinterpret_cast<const Pixel *>(rows[plane] + planes[plane].Columns[x].XEntry);
            };
            const Pair<T> reduced = reduce(value, planes.size());
            *reinterpret_cast<Pixel *>(results.First.Pixel(x, y)) = reduced.First;
            *reinterpret_cast<Pixel *>(results.Second.Pixel(x, y)) = reduced.Second;
        }
    }
}

/// Pixels of a piece: what is kept per pixel between the planes stays in the nearest cache.
template <class T>
inline constexpr std::intptr_t PiecePixels = std::min<std::intptr_t>(512, ChunkPixels<T>);

/// So many planes are reduced in one go, and so many further ones in each other.
inline constexpr std::size_t FirstPlanes = 5;
inline constexpr std::size_t FurtherPlanes = 4;

/// The rows of a piece in some planes.
template <class T, std::size_t Planes>
using PieceRows = std::array<const T *, Planes>;

/// One piece of a row, in all planes of a stack.
template <class T>
class StackPiece {
public:
    using Buffers = std::array<Chunk<T>, FirstPlanes>;

    StackPiece(StackPlanes planes, std::intptr_t x, std::intptr_t y, std::intptr_t count, Buffers &buffers)
        : Count(count), planes_(planes), x_(x), y_(y), buffers_(buffers) {}

    const std::intptr_t Count;

    /// Runs start(rows) with the first planes, then add(rows) with further ones until all are through. A row that is
    /// missing at the end is padding, or that of the last plane where padding is null.
    template <class Start, class Add>
    void Fold(const T *padding, Start &&start, Add &&add) const {
        start(Rows<FirstPlanes>(0, padding));
        for (std::size_t plane = FirstPlanes; plane < planes_.size(); plane += FurtherPlanes)
            add(Rows<FurtherPlanes>(plane, padding));
    }

private:
    template <std::size_t Planes>
    PieceRows<T, Planes> Rows(std::size_t first, const T *padding) const {
        PieceRows<T, Planes> rows;
        const T *missing = padding;
        for (std::size_t i = 0; i < Planes; ++i) {
            const bool isThere = first + i < planes_.size();
            rows[i] = isThere ? PixelsToRead(planes_[first + i], x_, y_, Count, buffers_[i]) : missing;
            if (padding == nullptr)
                missing = rows[i];
        }
        return rows;
    }

    StackPlanes planes_;
    std::intptr_t x_;
    std::intptr_t y_;
    Buffers &buffers_;
};

/// The quick form: runs reducePiece(piece, first, second) for all pieces of the stack, which writes piece.Count
/// pixels of both results.
template <class T, class ReducePiece>
void ReduceByPieces(StackPlanes planes, const Pair<Image::PlaneView> &results, ReducePiece &&reducePiece) {
    typename StackPiece<T>::Buffers buffers;
    Pair<Chunk<T>> chunks;
    for (std::intptr_t y = 0; y < results.First.Height; ++y)
        for (std::intptr_t x = 0; x < results.First.Width; x += PiecePixels<T>) {
            const std::intptr_t count = std::min(PiecePixels<T>, results.First.Width - x);
            T *const first = PixelsToWrite(results.First, x, y, chunks.First);
            T *const second = PixelsToWrite(results.Second, x, y, chunks.Second);
            reducePiece(StackPiece<T>(planes, x, y, count, buffers), first, second);
            WritePixels(results.First, x, y, count, first, chunks.First);
            WritePixels(results.Second, x, y, count, second, chunks.Second);
        }
}

} // namespace Scan

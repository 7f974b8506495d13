// The least and the greatest value of the planes of a stack, plain and quick. A NaN counts only in the first plane.
#pragma once

#include "Image/KernelLevel.h"
#include "Scan/StackReduction.h"

namespace Scan {

/// Widens [least, greatest] to a value.
template <class T>
ORV_INLINE void Include(T value, T &least, T &greatest) {
    least = value < least ? value : least;
    greatest = value > greatest ? value : greatest;
}

template <class T>
void MinMaxPlainly(StackPlanes planes, const Pair<Image::PlaneView> &results) {
    ReducePlainly<T>(planes, results, [](const auto &value, std::size_t count) {
        Pair<T> range = {value(0), value(0)};
        for (std::size_t plane = 1; plane < count; ++plane)
            Include(value(plane), range.First, range.Second);
        return range;
    });
}

/// Widens the range by a pixel of each row.
template <class T, class Rows, std::size_t... I>
ORV_INLINE void IncludeAll(const Rows &rows, std::intptr_t x, T &least, T &greatest, std::index_sequence<I...>) {
    (Include(rows[I][x], least, greatest), ...);
}

template <class T>
ORV_INLINE void StartMinMax(const PieceRows<T, FirstPlanes> &rows, T *__restrict least, T *__restrict greatest,
                            std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i) {
        T low = rows[0][i];
        T high = low;
        IncludeAll(rows, i, low, high, std::make_index_sequence<FirstPlanes>());
        least[i] = low;
        greatest[i] = high;
    }
}

template <class T>
ORV_INLINE void AddMinMax(const PieceRows<T, FurtherPlanes> &rows, T *__restrict least, T *__restrict greatest,
                          std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i) {
        T low = least[i];
        T high = greatest[i];
        IncludeAll(rows, i, low, high, std::make_index_sequence<FurtherPlanes>());
        least[i] = low;
        greatest[i] = high;
    }
}

/// The same bytes as MinMaxPlainly gives. To include a value twice changes nothing, so that the last plane can stand
/// in for missing ones.
template <class T>
void MinMaxByPieces(StackPlanes planes, const Pair<Image::PlaneView> &results) {
    ReduceByPieces<T>(planes, results, [](const StackPiece<T> &piece, T *least, T *greatest) {
        const std::intptr_t count = piece.Count;
        piece.Fold(
            nullptr,
            [=](const PieceRows<T, FirstPlanes> &rows) {
                Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { StartMinMax(rows, least, greatest, count); });
            },
            [=](const PieceRows<T, FurtherPlanes> &rows) {
                Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { AddMinMax(rows, least, greatest, count); });
            });
    });
}

} // namespace Scan

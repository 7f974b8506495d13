// The three orders in which the pixels of a list can be sorted. Each is antisymmetric; with rounding, overflow or a
// NaN none of them needs to be an order of all pixels. Throw CImageKernelException when a component is missing.
#pragma once

#include "PixelList/PixelObject.h"

namespace PixelList {

/// Descending by value.
inline bool HasGreaterValue(const CPixel *first, const CPixel *second) {
    return first->At(2) > second->At(2);
}

/// Ascending along a direction in the plane.
struct SortPixelsByPosition {
    std::int64_t DirectionX;
    std::int64_t DirectionY;

    bool operator()(const CPixel *first, const CPixel *second) const {
        return (first->At(0) - second->At(0)) * static_cast<double>(DirectionX) +
                   (first->At(1) - second->At(1)) * static_cast<double>(DirectionY) <
               0;
    }
};

/// Ascending along a direction in the space of all components.
struct SortPixelsByProjection {
    std::uint64_t Count;
    const double *Direction; ///< Count doubles

    bool operator()(const CPixel *first, const CPixel *second) const {
        double sum = 0;
        for (std::uint64_t i = 0; i < Count; ++i)
            sum += (first->At(i) - second->At(i)) * Direction[i];
        return sum < 0;
    }
};

} // namespace PixelList

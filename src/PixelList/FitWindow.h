// The pixels around a maximum that a surface is fitted to.
#pragma once

#include <cmath>
#include <cstdint>

#include "Image/PlaneView.h"
#include "PixelList/Numerics.h"
#include "PixelList/PixelObject.h"
#include "Scan/PixelRows.h"

namespace PixelList {

/// Tables have so many guard entries at each end, so that windows are read without a look at the edges.
inline constexpr int HighestRadius = 4;
inline constexpr std::size_t HighestWindow = 81;

/// A window as doubles. Column i of row j stands in Values[j * Width + i].
struct FitWindow {
    explicit FitWindow(std::int32_t radius)
        : Values(static_cast<std::size_t>(2 * radius + 1) * static_cast<std::size_t>(2 * radius + 1)), Radius(radius),
          Width(2 * radius + 1), Pixel(3) {}

    nrtl::numerics::vector_t<double> Values;
    std::int32_t Radius;
    std::int32_t Width;
    CPixel Pixel; ///< the position and the value at the window's centre
};

/// A maximum in coordinates of the image, and its value.
struct Peak {
    double X;
    double Y;
    double Value;
};

/// Calls take(index, pixel) for all pixels of the window around (x, y) of a plane, row by row. Beyond the edges the
/// guard entries repeat the edge's pixels.
template <class T, class Take>
void ReadWindow(const Image::PlaneView &plane, std::intptr_t x, std::intptr_t y, std::intptr_t radius, Take &&take) {
    std::size_t index = 0;
    for (std::intptr_t row = y - radius; row <= y + radius; ++row) {
        const char *const pixels = plane.Row(row);
        for (std::intptr_t column = x - radius; column <= x + radius; ++column)
            take(index++,
                 T{*reinterpret_cast<const typename Scan::Loose<T>::Type *>(pixels + plane.Columns[column].XEntry)});
    }
}

} // namespace PixelList

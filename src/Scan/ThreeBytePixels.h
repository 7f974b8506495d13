// Three planes of bytes that lie between each other without a gap: the pixels of most colour pictures.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "Image/PlaneView.h"

namespace Scan {

struct ThreeBytePixels {
    Image::PlaneView Pixels;                ///< of three bytes each, from the lowest of them on
    std::array<std::size_t, 3> PlaneOfByte; ///< the plane that byte 0, 1, 2 of each pixel belongs to
};

/// The planes as pixels of three bytes, in rising or falling addresses. Nothing when they do not lie so.
inline std::optional<ThreeBytePixels> AsThreeBytePixels(std::span<const Image::PlaneView> planes) {
    constexpr std::size_t count = 3;
    if (planes.size() != count || planes[0].Width < 2 || planes[0].Height < 1)
        return std::nullopt;
    for (const Image::PlaneView &plane : planes) {
        const bool isAlike = plane.Bytes == 1 && plane.XStep == planes[0].XStep && plane.YStep == planes[0].YStep &&
                             (plane.Height == 1 || plane.YStep != 0);
        if (!isAlike || (plane.XStep != 3 && plane.XStep != -3))
            return std::nullopt;
    }
    std::array<std::size_t, count> order = {0, 1, 2};
    const auto address = [planes](std::size_t plane) {
        return reinterpret_cast<std::uintptr_t>(planes[plane].Pixel(0, 0));
    };
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return address(a) < address(b); });
    if (address(order[1]) != address(order[0]) + 1 || address(order[2]) != address(order[1]) + 1)
        return std::nullopt;
    Image::PlaneView pixels = planes[order[0]];
    pixels.Bytes = count;
    return ThreeBytePixels{pixels, order};
}

} // namespace Scan

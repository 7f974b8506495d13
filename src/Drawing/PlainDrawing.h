// Drawing as it is defined, pixel by pixel, without any short cut: what the quicker ways are measured against.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "Drawing/WidePoint.h"

namespace Drawing {

/// Calls plot(x, y) for the pixels of a line one pixel thick, in order; the end point is left out unless it is the
/// start, too.
template <class Plot>
void PlainThinLine(Point from, Point to, Plot &&plot) {
    const std::int64_t dx = std::abs(to.X - from.X), dy = std::abs(to.Y - from.Y);
    const std::int64_t sx = to.X > from.X ? 1 : -1, sy = to.Y > from.Y ? 1 : -1;
    std::int64_t error = dx - dy;
    do {
        plot(from.X, from.Y);
        const std::int64_t doubled = 2 * error;
        if (doubled > -dy) {
            from.X += sx;
            error -= dy;
        }
        if (doubled < dx) {
            error += dx;
            from.Y += sy;
        }
    } while (from != to);
}

/// Where row y cuts the edge between two points of different y; halves go away from the point `current`.
inline std::int64_t PlainCrossing(Point current, Point previous, std::int64_t y) {
    const double term = static_cast<double>(y - current.Y) / static_cast<double>(previous.Y - current.Y) *
                        static_cast<double>(previous.X - current.X);
    return current.X + static_cast<std::int64_t>(term + std::copysign(0.5, term));
}

/// Calls fill(y, left, right), both ends included, for each row of an image that a polygon reaches, from the top.
template <class Fill>
void PlainPolygon(const std::vector<Point> &corners, std::int64_t width, std::int64_t height, Fill &&fill) {
    std::int64_t top = corners.front().Y, bottom = top;
    for (const Point &corner : corners) {
        top = std::min(top, corner.Y);
        bottom = std::max(bottom, corner.Y);
    }
    // Required: a polygon that ends in row 0 is not drawn.
    if (bottom == 0)
        return;
    for (std::int64_t y = std::max<std::int64_t>(top, 0); y < std::min(bottom + 1, height); ++y) {
        std::int64_t least = INT64_MAX, greatest = INT64_MIN;
        Point previous = corners.back();
        for (const Point &current : corners) {
            if (current.Y != previous.Y && y >= std::min(current.Y, previous.Y) &&
                y <= std::max(current.Y, previous.Y)) {
                const std::int64_t x = PlainCrossing(current, previous, y);
                least = std::min(least, x);
                greatest = std::max(greatest, x);
            }
            previous = current;
        }
        // Required: a span that ends in column 0 is left out.
        if (greatest > 0 && least < width)
            fill(y, std::max<std::int64_t>(least, 0), std::min(greatest, width - 1));
    }
}

} // namespace Drawing

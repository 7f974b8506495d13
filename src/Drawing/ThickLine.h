// Lines of two pixels and more: rectangles that reach about half the thickness beyond both ends.
#pragma once

#include <array>

#include "Drawing/Ink.h"
#include "Drawing/WidePoint.h"

namespace Drawing {

/// A corner before it is truncated.
struct CornerPosition {
    double X, Y;
};
std::array<CornerPosition, 4> ThickLineCornerPositions(Point from, Point to, std::int32_t thickness);

/// The corners of the rectangle in its order, also beyond 32 bits. A line without a length has no direction: its
/// corners are the lowest 32-bit integer.
std::array<Point, 4> ThickLineCorners(Point from, Point to, std::int32_t thickness);

/// Result  true when that has written every pixel of the image.
bool DrawThickLine(const Canvas &canvas, Point from, Point to, std::int32_t thickness);

} // namespace Drawing

// The rectangles that the functions of pixel lists take, ordered and clipped to an image.
#pragma once

#include "Image/Dimensions.h"

namespace PixelList {

/// Pixel coordinates, the last column and row included.
struct Rectangle {
    std::int64_t Left;
    std::int64_t Top;
    std::int64_t Right;
    std::int64_t Bottom;
};

/// Swaps sides that are in the wrong order and clips them to the image. A rectangle left of column 0 or above row 0
/// comes out with its right side below 0.
/// zeroMeansEnd  a right of 0 is the last column, a bottom of 0 the last row, once the sides are in order.
/// Result        false, with the rectangle as it was, when it begins behind the last column or row.
bool ClipRectToImage(const Image::Dimensions &size, Rectangle &rectangle, bool zeroMeansEnd);

} // namespace PixelList

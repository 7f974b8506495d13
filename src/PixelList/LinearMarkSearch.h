// The candidates for maxima of a plane: pixels that are at least a threshold, with no greater one among their
// neighbours. Row by row, at the current instruction set level; MarkField.h has the plain form.
#pragma once

#include "Image/PlaneView.h"
#include "PixelList/MarkedPixel.h"

namespace PixelList {

/// All candidates above the lowest value of the type, row by row. Neighbours are those inside the plane, also where
/// its tables go on. The threshold is truncated to integer pixels' type; no pixel reaches NaN, and a pixel that is
/// NaN is neither a candidate nor greater than one. Throws std::length_error for an axis of 2^32 pixels.
template <class T>
MarkedPixels<T> LinearMarkSearch(const Image::PlaneView &plane, double threshold);

} // namespace PixelList

// Unsigned 16-bit pixels scaled down to bytes.
#pragma once

#include "Scan/PixelWalk.h"

namespace Scan {

/// Stores trunc(pixel * 255 / maximum) for each pixel, and 0 for all of them where maximum is 0.
/// maximum  a whole number from 0 to 65535, which no pixel exceeds.
/// target   of the same size, with pixels of a byte, and no memory of the source's.
void ScaleToBytes(double maximum, const Image::PlaneView &source, const Image::PlaneView &target,
                  PixelWalk walk = PixelWalk::InPieces);

} // namespace Scan

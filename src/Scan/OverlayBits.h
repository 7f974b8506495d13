// Carries the overlay of a plane over into another: bit 0 of each pixel, whatever the widths of the pixels.
#pragma once

#include "Image/PlaneView.h"

namespace Scan {

enum class OverlayMethod {
    ByTables, ///< pixel by pixel, rows then columns: clears the target's bit, then reads the source's
    ByPieces  ///< pieces of rows as arrays
};

/// The fastest method that gives the plain result. Planes may share memory in any way.
OverlayMethod ChooseOverlay(const Image::PlaneView &source, const Image::PlaneView &target);

/// Copies bit 0 of all pixels between planes of the same size, of pixels of 1, 2, 4 or 8 bytes.
void CopyOverlayBits(OverlayMethod method, const Image::PlaneView &source, const Image::PlaneView &target);

} // namespace Scan

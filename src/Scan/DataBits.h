// Copies planes without their overlay bits: all bits of each pixel but bit 0, which becomes 0.
#pragma once

#include "Image/PlaneView.h"

namespace Scan {

enum class DataBitsMethod {
    ByTables,    ///< pixel by pixel
    Rows,        ///< both sides dense in rising addresses: in one go
    CopyAndClear ///< by the quickest copy that the tables allow, then cleared in the target
};

/// The fastest method that gives the plain result for these two views of disjoint memory.
DataBitsMethod ChooseDataBits(const Image::PlaneView &source, const Image::PlaneView &target);

/// Copies a plane to another of the same size and pixel width, 1, 2, 4 or 8 bytes, or 3 for pixels of three planes of
/// bytes, of which all are cleared. The target shares no memory with the source, and its pixels none with each other.
void CopyDataBits(DataBitsMethod method, const Image::PlaneView &source, const Image::PlaneView &target);

} // namespace Scan

// What the exported functions of affine maps share: the size of a result, and the making of it.
#pragma once

#include "Interface/ImageGuard.h"
#include "Matrices.h"

namespace Transformations {

/// The size of the rectangle around an area that is sent through map, whose origin moves so that the rectangle starts
/// at pixel (0, 0). False for a map that is nearly singular.
bool ResultSize(const TArea &area, std::int64_t &width, std::int64_t &height, TCoordinateMap &map);

/// Makes the image of an area of pixels under a map from source pixels to pixels of the result.
/// reduceSize  leaves the last column and row of the rectangle out.
/// out         the result with one reference; untouched on failure.
/// Result      false, without a report of its own, when the result can't be made, whatever is thrown on the way.
bool AffineTransformImage(pOLE::IImageVPA &image, const TArea &area, bool reduceSize, void **out, TCoordinateMap map);

/// The whole image: pixels (0, 0) to (width, height).
bool AffineTransformWholeImage(pOLE::IImageVPA &image, void **out, const TCoordinateMap &map);

/// True when two of the three points of an area coincide.
bool HasEqualPoints(const TArea &area);

} // namespace Transformations

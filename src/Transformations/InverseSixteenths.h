// Where pixels of a rolled up ring lie in its unrolled image, for positions that are cut off to sixteenths: by short
// arctangents, and by the precise ones only where the short ones leave a doubt.
#pragma once

#include "Transformations/PolarRows.h"

namespace Transformations {

/// Whether the kernel below does for row y of the target. It is not for rows through the centre, nor for rings with
/// so many columns that short arctangents are in doubt too often.
bool HasShortArctangents(const InversePolarRing &ring, std::intptr_t y);

/// As FindInversePositions, but with any columns that are cut off to the right sixteenths. For processors with the
/// instructions of Image::KernelLevel::Avx512.
void FindSixteenthsAtAvx512(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y, std::intptr_t count,
                            PolarPiece &piece);

} // namespace Transformations

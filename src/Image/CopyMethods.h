// Runs a numbered copy method on a rectangle. Whatever comes in, nothing outside both images is touched, and exactly
// the pixels of the clipped rectangle are written.
#pragma once

#include "Image/CopyChoice.h"
#include "Image/PlaneCopy.h"

namespace Image {

/// Clips once more, validates the method for the plane pair and copies. Throws as ValidateCopy does, and
/// CImageKernelException with ErrDataType for pixels that a method can't move.
/// fastest  lets any quicker method run that gives the same bytes; otherwise the numbered one runs as it is told.
void RunCopy(CopyMethod method, const vpat_analyzer &source, std::intptr_t sourcePlane, const vpat_analyzer &target,
             std::intptr_t targetPlane, PixelRectangle rectangle, PixelPosition targetPosition, bool fastest);

/// Copies all planes of both images at once when their pixels lie in dense groups of the same order, or when three
/// dense planes meet three interleaved ones. False, with nothing copied, when they do not.
bool CopyAllPlanesAtOnce(const vpat_analyzer &source, const vpat_analyzer &target, const PixelRectangle &rectangle,
                         const PixelPosition &targetPosition);

} // namespace Image

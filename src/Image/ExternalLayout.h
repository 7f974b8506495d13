// The checks that a layout of caller's memory has to pass, in their order.
#pragma once

#include "Image/ExternalImage.h"

namespace Image {

/// Throws CImageKernelException with ErrParameter and the text of the first check that fails.
void CheckExternalLayout(const ExternalLayout &layout);

} // namespace Image

// One picture of an image and of everything that the demo makes of it, for a reader who wants to see them side by
// side.
#pragma once

#include "compositions.h"

/// On top the source, four views beside it and two pictures of exchanged planes; below the strip of thumbnails, the
/// single planes, and the overlay of two images. Each is read through its own table and scaled down by averaging, but
/// for the strip, which is shown pixel by pixel where it fits. The result has three 8-bit planes.
ImageHandle DrawGallery(void *source, const std::vector<View> &views, const Compositions &made);

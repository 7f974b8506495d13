// One picture of an image and four of its views, for a reader who wants to see them side by side.
#pragma once

#include "views.h"

/// Draws the source large on the left and the four views beside it, each read through its own table and scaled down
/// by averaging. The result has three 8-bit planes.
ImageHandle DrawGallery(void *source, const std::vector<View> &views);

// One picture of everything that the demo makes by walks and mappings.
#pragma once

#include "frame_stack.h"
#include "value_maps.h"

struct ScanPictures {
    ImageHandle grey{};
    ImageHandle painted{}; ///< the picture with the walked places
    ImageHandle lineChart{};
    ImageHandle areaChart{};
    ImageHandle histogramChart{};
    ImageHandle stretched{};
    ImageHandle spread{};
    WhiteBalance balance{}; ///< without pictures for a picture of one plane
    FrameStack stack{};
};

/// On top the painted picture, beside it the profile along the line, that across the area, and the histogram. Below
/// the stretched pictures, the tinted and the balanced one, and the sum of the frames in 8 bits; then a frame,
/// minimum, maximum, mean, and the deviation, which is stretched to be seen. The result has three 8-bit planes.
ImageHandle DrawScanGallery(const ScanPictures &made);

// All planes of an image at once, for operations that walk whole images.
#pragma once

#include "Image/PlaneFacts.h"

namespace Scan {

inline bool HasPixels(const Image::Dimensions &size) {
    return size.Width > 0 && size.Height > 0;
}

inline bool HasPlane(const Image::Dimensions &size, std::intptr_t plane) {
    return plane >= 0 && plane < size.Planes;
}

/// What the image tells about its planes; of an image without a pixel the data types only. False when it refuses.
inline bool ReadPlanes(pOLE::IImageVPA &image, const Image::Dimensions &size, std::vector<Image::PlaneFacts> &facts) {
    if (HasPixels(size))
        return Image::ReadPlaneFacts(image, size, facts);
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
        if (image.GetPlaneDatatype(plane, &facts.emplace_back().Datatype) != Interface::StatusOk)
            return false;
    return true;
}

} // namespace Scan

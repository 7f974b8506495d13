// The dimensions of any image, as one value.
#pragma once

#include "Image/DataType.h"
#include "Interfaces.h"

namespace Image {

struct Dimensions {
    std::intptr_t Planes = 0;
    std::intptr_t Width = 0;
    std::intptr_t Height = 0;
};

/// All zero where the image does not tell, or tells what can't be.
inline Dimensions DimensionsOf(pOLE::IImageVPA &image) {
    Dimensions size;
    const bool told = image.GetImageDimensions(&size.Planes, &size.Width, &size.Height) == 0;
    if (!told || size.Planes < 0 || size.Width < 0 || size.Height < 0)
        size = Dimensions{};
    return size;
}

} // namespace Image

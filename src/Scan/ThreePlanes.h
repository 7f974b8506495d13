// What the functions of white balance ask of an image: planes 0, 1 and 2 of one data type.
#pragma once

#include <array>
#include <cstdint>

#include "ErrorHandling.h"
#include "Image/PlaneFacts.h"
#include "Scan/ImagePlanes.h"
#include "Scan/PixelType.h"

namespace Scan {

struct ThreePlanes {
    Image::Dimensions Size;
    TDataType Datatype = 0; ///< of all three: an integer of up to 4 bytes, or a float
    /// Without base and table in an image that has no pixel.
    std::array<Image::PlaneFacts, 3> Planes;
};

constexpr bool CanBalance(TDataType type) {
    const PixelType pixelType = PixelTypeOf(type);
    return pixelType != PixelType::Unsupported && pixelType != PixelType::Signed64 &&
           pixelType != PixelType::Unsigned64;
}

/// Result  0, or the code to report.
inline std::uint32_t ReadThreePlanes(pOLE::IImageVPA &image, ThreePlanes &three) {
    three.Size = Image::DimensionsOf(image);
    if (three.Size.Planes < static_cast<std::intptr_t>(three.Planes.size()))
        return ErrIndexRange;
    std::intptr_t number = 0;
    for (Image::PlaneFacts &plane : three.Planes)
        if (image.GetPlaneDatatype(number++, &plane.Datatype) != Interface::StatusOk)
            return ErrGeneral;
    three.Datatype = three.Planes[0].Datatype;
    for (const Image::PlaneFacts &plane : three.Planes)
        if (plane.Datatype != three.Datatype)
            return ErrDataType;
    if (!CanBalance(three.Datatype))
        return ErrDataType;
    number = 0;
    if (HasPixels(three.Size))
        for (Image::PlaneFacts &plane : three.Planes)
            if (!Image::ReadPlaneFacts(image, number++, plane))
                return ErrGeneral;
    return 0;
}

} // namespace Scan

// The refinement of maxima to fractions of a pixel.
#pragma once

#include "Image/PlaneView.h"
#include "PixelList/FitWindow.h"
#include "PixelList/MarkedPixel.h"

namespace PixelList {

/// How maxima are refined.
struct Refinement {
    std::uint32_t FitMode; ///< one of the Fit constants; any other does nothing
    std::int32_t Radius;   ///< 1 to HighestRadius where there is something to do
    std::int64_t Left;     ///< of the plane, in coordinates of the image
    std::int64_t Top;
};

/// The least squares: one window after the other, or as many at once as registers have lanes. The result is the same.
enum class FitForm { OneByOne, InLanes };

/// The maxima of a plane in coordinates of the image, in their order.
template <class T>
std::vector<Peak> RefineMaxima(const Image::PlaneView &plane, const MarkedPixels<T> &maxima,
                               const Refinement &refinement, FitForm form = FitForm::InLanes);

} // namespace PixelList

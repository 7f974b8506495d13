// An area of an image, upright in the image's own coordinate system.
#include "ImageCoordinates.h"
#include "ImageTransformations.h"
#include "Interface/Boundary.h"
#include "Transformations/AffineTransform.h"

namespace {

constexpr const char FunctionName[] = "CreateSubImage";

} // namespace

bool CreateSubImage(void *image, void **out, TArea area) {
    const Interface::ImageHolder source = Interface::GuardImage(image, FunctionName);
    if (!source.IsValid())
        return false;
    if (out == nullptr) {
        ReportORVError(ErrParameter, FunctionName);
        return false;
    }
    return Interface::SilentBoundary(false, [&] {
        TArea pixels = area;
        TCoordinateMap coordinates, toPixels;
        InitCoordinateMap(&toPixels);
        ImageAreaToPixel(image, &pixels, area);
        source->GetCoordinateMap(&toPixels);
        return InverseCoordinateMap(&coordinates, toPixels) &&
               Transformations::AffineTransformImage(*source.Get(), pixels, false, out, coordinates);
    });
}

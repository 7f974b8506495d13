// A whole image, or an area of one, under an affine map.
#include "ImageCoordinates.h"
#include "ImageTransformations.h"
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "Transformations/AffineTransform.h"

namespace {

constexpr const char WholeName[] = "CreateAffineTransformedImage";
constexpr const char AreaName[] = "CreateAreaAffineTransformedImage";

bool FailParameter(const char *functionName) {
    ReportORVError(ErrParameter, functionName);
    return false;
}

} // namespace

bool CreateAffineTransformedImage(void *image, const TCoordinateMap *map, void **out) {
    using namespace Transformations;
    const Interface::ImageHolder source = Interface::GuardImage(image, WholeName);
    if (!source.IsValid())
        return false;
    if (map == nullptr || out == nullptr)
        return FailParameter(WholeName);
    return AffineTransformWholeImage(*source.Get(), out, *map);
}

bool CreateAreaAffineTransformedImage(void *image, const TCoordinateMap *map, const TArea *area, void **out) {
    using namespace Transformations;
    const Interface::ImageHolder source = Interface::GuardImage(image, AreaName);
    if (!source.IsValid())
        return false;
    if (map == nullptr || area == nullptr || out == nullptr)
        return FailParameter(AreaName);
    if (HasEqualPoints(*area)) {
        ReportORVErrorEx(ErrParameter, Interface::ErrorTexts::ZeroSizedArea, AreaName);
        return false;
    }
    return Interface::SilentBoundary(false, [&] {
        TArea pixels = *area;
        ImageAreaToPixel(image, &pixels, *area);
        return AffineTransformImage(*source.Get(), pixels, true, out, *map);
    });
}

// A turned or skewed area of an image, cut out so that its edges become those of the result.
#include <cmath>

#include "ImageCoordinates.h"
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "Transformations/AffineTransform.h"
#include "Transformations/ArbitraryTransformer.h"

namespace {

constexpr const char FunctionName[] = "CreateAreaSubImage";

bool Fail(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return false;
}

double Length(double x, double y) {
    return std::sqrt(x * x + y * y);
}

/// Required: the x axis of the result runs along the second edge of the area, the y axis along the first, and the
/// distances in pixels count one more than the points lie apart.
TCoordinateMap MapToArea(const TArea &pixels, double width, double height) {
    return {pixels.X0,
            pixels.Y0,
            {(pixels.X2 - pixels.X0 + 1) / width, (pixels.X1 - pixels.X0 + 1) / height,
             (pixels.Y2 - pixels.Y0 + 1) / width, (pixels.Y1 - pixels.Y0 + 1) / height}};
}

} // namespace

bool CreateAreaSubImage(void *image, void **out, TArea area) {
    using namespace Transformations;
    const Interface::ImageHolder source = Interface::GuardImage(image, FunctionName);
    if (!source.IsValid())
        return false;
    if (out == nullptr)
        return Fail(ErrParameter);
    if (HasEqualPoints(area))
        return Fail(ErrParameter, Interface::ErrorTexts::ZeroSizedArea);
    return Interface::GeneralBoundary(FunctionName, [&] {
        const double width = Length(area.X2 - area.X0, area.Y2 - area.Y0) + 1;
        const double height = Length(area.X1 - area.X0, area.Y1 - area.Y0) + 1;
        TArea pixels = area;
        ImageAreaToPixel(image, &pixels, area);
        const TCoordinateMap map = MapToArea(pixels, width, height);
        if (MatrixDeterminant(map.Matrix) == 0.0)
            return Fail(ErrSingularArea);
        return CreateTransformedImageFrom(image, orvBase::TruncateTo<std::int64_t>(width + 0.5),
                                          orvBase::TruncateTo<std::int64_t>(height + 0.5), map, out);
    });
}

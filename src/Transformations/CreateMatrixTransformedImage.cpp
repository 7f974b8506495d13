// A whole image under a matrix, with and without a coordinate system that follows it.
#include "ImageCoordinates.h"
#include "ImageTransformations.h"
#include "Transformations/AffineTransform.h"

namespace {

constexpr const char FunctionName[] = "CreateMatrixTransformedImage";

} // namespace

bool CreateMatrixTransformedImage(void *image, void **out, TMatrix matrix) {
    const Interface::ImageHolder source = Interface::GuardImage(image, FunctionName);
    if (!source.IsValid())
        return false;
    if (out == nullptr) {
        ReportORVError(ErrParameter, FunctionName);
        return false;
    }
    return Transformations::AffineTransformWholeImage(*source.Get(), out, {0.0, 0.0, matrix});
}

bool CreateMatrixTransformedImageEx(void *image, void **out, TMatrix matrix) {
    if (!CreateMatrixTransformedImage(image, out, matrix))
        return false;
    TCoordinateMap identity;
    InitCoordinateMap(&identity);
    SetImageCoordinates(*out, identity);
    return true;
}

// Fills an ellipse or a circle in a plane of an image.
#include "Drawing.h"
#include "Drawing/DrawingFrame.h"
#include "Drawing/Ellipse.h"

namespace {

constexpr const char *FunctionName = "FillEllipseInImage";

} // namespace

std::int32_t FillEllipseInImage(void *image, intptr_t plane, intptr_t centreX, intptr_t centreY, intptr_t radiusA,
                                intptr_t radiusB, uint32_t drawMode, uint32_t antiAlias, double rotation,
                                double value) {
    return Drawing::RunOnImage(image, FunctionName, antiAlias, [&](pOLE::IImageVPA &held) {
        const Drawing::EllipseKey key = {Drawing::LowWord(radiusA), Drawing::LowWord(radiusB), rotation};
        Drawing::RequireRadii(key);
        Drawing::RequireMode(drawMode);
        const Drawing::Canvas canvas = Drawing::CanvasOf(Drawing::PlaneOf(held, plane), {drawMode, value});
        Drawing::FillEllipse(canvas, key, {Drawing::LowWord(centreX), Drawing::LowWord(centreY)});
    });
}

std::int32_t FillCircleInImage(void *image, intptr_t plane, intptr_t centreX, intptr_t centreY, intptr_t radius,
                               uint32_t drawMode, uint32_t antiAlias, double value) {
    return FillEllipseInImage(image, plane, centreX, centreY, radius, radius, drawMode, antiAlias, 0.0, value);
}

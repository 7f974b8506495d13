// Draws the outline of an ellipse or a circle into a plane of an image.
#include "Drawing.h"
#include "Drawing/DrawingFrame.h"
#include "Drawing/Ellipse.h"
#include "Drawing/LineCore.h"

namespace {

constexpr const char *FunctionName = "DrawEllipseInImage";

} // namespace

std::int32_t DrawEllipseInImage(void *image, intptr_t plane, intptr_t centreX, intptr_t centreY, intptr_t radiusA,
                                intptr_t radiusB, intptr_t thickness, uint32_t drawMode, uint32_t antiAlias,
                                double rotation, double value) {
    return Drawing::RunOnImage(image, FunctionName, antiAlias, [&](pOLE::IImageVPA &held) {
        const Drawing::EllipseKey key = {Drawing::LowWord(radiusA), Drawing::LowWord(radiusB), rotation};
        const std::int32_t pixels = Drawing::LowWord(thickness);
        Drawing::RequireRadii(key);
        Drawing::RequireLine(pixels, drawMode);
        const Drawing::Canvas canvas = Drawing::CanvasOf(Drawing::PlaneOf(held, plane), {drawMode, value});
        Drawing::DrawEllipse(canvas, key, {Drawing::LowWord(centreX), Drawing::LowWord(centreY)}, pixels);
    });
}

std::int32_t DrawCircleInImage(void *image, intptr_t plane, intptr_t centreX, intptr_t centreY, intptr_t radius,
                               intptr_t thickness, uint32_t drawMode, uint32_t antiAlias, double value) {
    return DrawEllipseInImage(image, plane, centreX, centreY, radius, radius, thickness, drawMode, antiAlias, 0.0,
                              value);
}

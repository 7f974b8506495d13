// Draws a line into a plane of an image.
#include "Drawing.h"
#include "Drawing/DrawingFrame.h"
#include "Drawing/LineCore.h"

namespace {

constexpr const char *FunctionName = "DrawLineInImage";

} // namespace

std::int32_t DrawLineInImage(void *image, intptr_t plane, intptr_t x0, intptr_t y0, intptr_t x1, intptr_t y1,
                             intptr_t thickness, uint32_t drawMode, uint32_t antiAlias, double value) {
    return Drawing::RunOnImage(image, FunctionName, antiAlias, [&](pOLE::IImageVPA &held) {
        const std::int32_t pixels = Drawing::LowWord(thickness);
        Drawing::RequireLine(pixels, drawMode);
        const Drawing::Canvas canvas = Drawing::CanvasOf(Drawing::PlaneOf(held, plane), {drawMode, value});
        Drawing::DrawLine(canvas, {Drawing::LowWord(x0), Drawing::LowWord(y0)},
                          {Drawing::LowWord(x1), Drawing::LowWord(y1)}, pixels);
    });
}

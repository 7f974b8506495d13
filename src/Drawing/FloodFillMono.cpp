// FloodFillMono: fills a region around a point, up to pixels of the value that is written.
#include "Drawing.h"
#include "Drawing/DrawingFrame.h"
#include "Drawing/DrawnPlane.h"
#include "Drawing/FloodRegion.h"

namespace Drawing::FloodFill {
namespace {

constexpr const char *FunctionName = "FloodFillMono";

// Required: one word per pixel type for the whole process, that of the first fill that writes a pixel of the type.
// The boundary goes by the value of each call.
template <class T>
T FillWord(const AnyBoundary &boundary, TDataType type) {
    static const T word = PixelValueOf<T>(boundary.Logic.Value, Image::BitsOf(type));
    return word;
}

template <class T>
void Fill(const DrawnPlane &plane, orvBase::Point start, const AnyBoundary &boundary) {
    using Pixel = typename Scan::Loose<T>::Type;
    if (!plane.Contains(start.X, start.Y) ||
        boundary(T{*reinterpret_cast<const Pixel *>(plane.Pixel(start.X, start.Y))}))
        return;
    const Image::TableSteps steps = Image::CommonSteps({plane.Table, plane.Width, plane.Table, plane.Height});
    const Image::PlaneView view = {plane.Base,   plane.Table, plane.Table, plane.Width,
                                   plane.Height, sizeof(T),   steps.X,     steps.Y};
    FillRegion(view, start, boundary, FillWord<T>(boundary, plane.Type));
}

} // namespace
} // namespace Drawing::FloodFill

int32_t FloodFillMono(void *image, intptr_t plane, intptr_t x, intptr_t y, double value, double tolerance) {
    using namespace Drawing;
    return RunOnImage(image, FloodFill::FunctionName, [=](const Image::vpat_analyzer &tables) {
        const DrawnPlane drawn = PlaneOf(tables, plane);
        const FloodFill::AnyBoundary boundary = {{value, tolerance}};
        ForDrawnType(drawn.Type, [&]<class T>() { FloodFill::Fill<T>(drawn, {LowWord(x), LowWord(y)}, boundary); });
    });
}

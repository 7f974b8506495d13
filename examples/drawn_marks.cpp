// Each shape is drawn plane by plane: a drawing function knows one plane and one value.
#include "drawn_marks.h"

#include "compositions.h"
#include "sheet.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t replacePixels = 0, orPixels = 2, noAntiAlias = 0;
// The first fill of a pixel type decides what all fills of it write in this process: all fills here write white.
constexpr double white = 255.0;

double ValueOf(const Colour &colour, intptr_t plane) {
    return plane == 0 ? colour.red : plane == 1 ? colour.green : colour.blue;
}

intptr_t Rounded(double value) {
    return std::lround(value);
}

void DrawOutline(void *image, intptr_t plane, const Shape &shape, double spare, intptr_t thickness, double value) {
    const intptr_t x = Rounded(shape.centre.x), y = Rounded(shape.centre.y);
    const intptr_t a = Rounded(shape.halfA + spare), b = Rounded(shape.halfB + spare);
    if (IsRound(shape))
        Require(DrawCircleInImage(image, plane, x, y, a, thickness, replacePixels, noAntiAlias, value) == 0,
                "DrawCircleInImage");
    else
        Require(DrawEllipseInImage(image, plane, x, y, a, b, thickness, replacePixels, noAntiAlias,
                                   shape.rotationRadians, value) == 0,
                "DrawEllipseInImage");
}

} // namespace

ImageHandle CopyInColour(void *picture) {
    const intptr_t width = ImageWidth(picture), height = ImageHeight(picture);
    ImageHandle copy = BlankPaper(3, width, height);
    DrawInto(copy.Get(), picture, {0, 0, width, height});
    return copy;
}

void DrawCross(void *image, const FoundPlace &place, intptr_t arm, intptr_t thickness, const Colour &colour) {
    const intptr_t x = Rounded(place.x), y = Rounded(place.y);
    const intptr_t beyond = thickness == 1 ? 1 : 0; // a thin line leaves its last point out
    for (intptr_t p = 0; p < ImageDimension(image); ++p) {
        const double value = ValueOf(colour, p);
        Require(DrawLineInImage(image, p, x - arm, y, x + arm + beyond, y, thickness, replacePixels, noAntiAlias,
                                value) == 0 &&
                    DrawLineInImage(image, p, x, y - arm, x, y + arm + beyond, thickness, replacePixels, noAntiAlias,
                                    value) == 0,
                "DrawLineInImage");
    }
}

void DrawAround(void *image, const Shape &shape, double spare, intptr_t thickness, const Colour &colour) {
    for (intptr_t p = 0; p < ImageDimension(image); ++p)
        DrawOutline(image, p, shape, spare, thickness, ValueOf(colour, p));
}

bool IsRound(const Shape &shape) {
    return shape.halfA - shape.halfB < 1.0;
}

bool LiesInside(void *image, const Shape &shape, double spare) {
    const double reach = shape.halfA + spare + 1.0;
    return shape.centre.x - reach >= 0.0 && shape.centre.y - reach >= 0.0 &&
           shape.centre.x + reach < static_cast<double>(ImageWidth(image)) &&
           shape.centre.y + reach < static_cast<double>(ImageHeight(image));
}

ImageHandle DrawOutlines(void *grey, const std::vector<Shape> &shapes) {
    ImageHandle mask;
    TArea all{};
    Require(CreateGenericImageDT(1, ImageWidth(grey), ImageHeight(grey), 8, mask.Out()) &&
                MaxImageArea(mask.Get(), &all) && InitializeImageArea(mask.Get(), 0, 0, all),
            "InitializeImageArea");
    for (const Shape &shape : shapes)
        if (LiesInside(grey, shape, spareOfOutlines))
            DrawOutline(mask.Get(), 0, shape, spareOfOutlines, 1, white);
    return mask;
}

ImageHandle FillOutlines(void *outlines, const std::vector<Shape> &shapes) {
    ImageHandle mask;
    Require(CreateDuplicateImage(outlines, mask.Out()), "CreateDuplicateImage");
    for (const Shape &shape : shapes)
        if (LiesInside(outlines, shape, spareOfOutlines))
            Require(FloodFillMono(mask.Get(), 0, Rounded(shape.centre.x), Rounded(shape.centre.y), white, 0.0) == 0,
                    "FloodFillMono");
    return mask;
}

ImageHandle DrawInOverlay(void *overlay, const std::vector<FoundPlace> &places) {
    ImageHandle drawn;
    Require(CreateDuplicateImage(overlay, drawn.Out()), "CreateDuplicateImage");
    for (const FoundPlace &place : places)
        for (intptr_t p = 0; p < ImageDimension(overlay); ++p)
            for (const intptr_t side : {-1, 1}) {
                const auto x = static_cast<intptr_t>(place.x), y = static_cast<intptr_t>(place.y);
                // OR with 1 sets the overlay's bit and leaves the picture alone.
                Require(DrawLineInImage(drawn.Get(), p, x + 4 * side, y, x + 9 * side, y, 3, orPixels, noAntiAlias,
                                        1.0) == 0 &&
                            DrawLineInImage(drawn.Get(), p, x, y + 4 * side, x, y + 9 * side, 3, orPixels,
                                            noAntiAlias, 1.0) == 0,
                        "DrawLineInImage");
            }
    return drawn;
}

ImageHandle ShowOverlay(void *overlay) {
    ImageHandle shown = CopyInColour(overlay);
    const TPlaneRec marked = PlaneOf(overlay, 0);
    for (intptr_t p = 0; p < 3; ++p) {
        const TPlaneRec plane = PlaneOf(shown.Get(), p);
        for (intptr_t y = 0; y < plane.Height; ++y)
            for (intptr_t x = 0; x < plane.Width; ++x) {
                unsigned char &pixel = *AddressOf(plane, x, y);
                pixel = static_cast<unsigned char>((*AddressOf(marked, x, y) & 1) != 0 ? 255 : pixel / 2);
            }
    }
    return shown;
}

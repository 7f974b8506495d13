// Moves all points of a pixel list by a matrix and an offset, in place.
#include "PixelList/ListGuard.h"
#include "PixelList/Pixel.h"

bool TransformPixelListMatrix(void *list, TMatrix matrix, double offsetX, double offsetY) {
    const PixelList::ListHolder pixels = PixelList::GuardList(list, "TransformPixelListMatrix");
    if (!pixels.IsValid())
        return false;
    for (PixelList::CPixel *pixel : *pixels.Object()) {
        const double x = pixel->Components[0];
        const double y = pixel->Components[1];
        pixel->Components[0] = matrix.A11 * x + matrix.A12 * y + offsetX;
        pixel->Components[1] = matrix.A21 * x + matrix.A22 * y + offsetY;
    }
    return true;
}

bool TransformPixelListCoordinates(void *list, TCoordinateMap map) {
    return TransformPixelListMatrix(list, map.Matrix, map.X, map.Y);
}

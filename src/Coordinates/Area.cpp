// Areas (parallelograms), sent through coordinate maps, and the rectangle around one.
#include "Matrices.h"

namespace {

/// Edges start here; a corner beyond the opposite limit does not draw them along.
constexpr double HighestEdge = 2147483647.0;
constexpr double LowestEdge = -2147483648.0;

void Include(TRectangle &rectangle, double x, double y) {
    if (rectangle.Left > x)
        rectangle.Left = x;
    if (x > rectangle.Right)
        rectangle.Right = x;
    if (rectangle.Top > y)
        rectangle.Top = y;
    if (y > rectangle.Bottom)
        rectangle.Bottom = y;
}

} // namespace

void SetArea(TArea *out, double x0, double y0, double x1, double y1, double x2, double y2) {
    *out = TArea{x0, y0, x1, y1, x2, y2};
}

void SetRectArea(TArea *out, double left, double top, double right, double bottom) {
    SetArea(out, left, top, right, top, left, bottom);
}

void BoundingRectangle(TRectangle *out, TArea area, TCoordinateMap map) {
    const double corners[4][2] = {{area.X0, area.Y0},
                                  {area.X1, area.Y1},
                                  {area.X2, area.Y2},
                                  {area.X1 + area.X2 - area.X0, area.Y1 + area.Y2 - area.Y0}};
    *out = TRectangle{HighestEdge, HighestEdge, LowestEdge, LowestEdge};
    for (const auto &corner : corners) {
        double x = 0.0;
        double y = 0.0;
        CoordinateMapTransform(&x, &y, map, corner[0], corner[1]);
        Include(*out, x, y);
    }
}

void CoordinateMapTransformArea(TArea *out, TArea area, TCoordinateMap map) {
    CoordinateMapTransform(&out->X0, &out->Y0, map, area.X0, area.Y0);
    CoordinateMapTransform(&out->X1, &out->Y1, map, area.X1, area.Y1);
    CoordinateMapTransform(&out->X2, &out->Y2, map, area.X2, area.Y2);
}

bool CoordinateMapInverseTransformArea(TArea *out, TArea area, TCoordinateMap map) {
    TCoordinateMap inverse;
    if (!InverseCoordinateMap(&inverse, map))
        return false;
    CoordinateMapTransformArea(out, area, inverse);
    return true;
}

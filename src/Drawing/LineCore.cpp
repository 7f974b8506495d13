#include "Drawing/LineCore.h"

#include <stdexcept>

#include "Drawing/ThickLine.h"
#include "Drawing/ThinLine.h"

namespace Drawing {

void RequireLine(std::int32_t thickness, std::uint32_t drawMode) {
    if (thickness < 1)
        throw std::invalid_argument("Line thickness must be larger than zero");
    RequireMode(drawMode);
}

void DrawLine(const Canvas &canvas, Point from, Point to, std::int32_t thickness) {
    if (thickness > 1) {
        DrawThickLine(canvas, from, to, thickness);
        return;
    }
    LinePlane plane(canvas);
    DrawThinLine(plane, from, to);
}

} // namespace Drawing

// Lines of any thickness.
#pragma once

#include "Drawing/Ink.h"
#include "Drawing/WidePoint.h"

namespace Drawing {

/// Throws std::invalid_argument "Line thickness must be larger than zero", or "Unsupported draw mode".
void RequireLine(std::int32_t thickness, std::uint32_t drawMode);

void DrawLine(const Canvas &canvas, Point from, Point to, std::int32_t thickness);

} // namespace Drawing

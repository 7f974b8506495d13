// Thin outlines and filled ellipses that are not too large: their corners lie so close to each other that hardly any
// arithmetic is left.
#pragma once

#include "Drawing/Ink.h"
#include "Drawing/NearCorners.h"
#include "Drawing/WidePoint.h"

namespace Drawing {

/// The thin lines from corner to corner. False, and nothing drawn, when they may leave the image.
bool DrawNearOutline(const Canvas &canvas, const NearCorners &corners, Point centre);
/// The polygon of the corners.
void FillNearEllipse(const Canvas &canvas, const NearCorners &corners, Point centre);

} // namespace Drawing

// Ellipses: an outline is the lines between the corners of a polygon, a filled one is the polygon.
#pragma once

#include "Drawing/EllipseShape.h"
#include "Drawing/Ink.h"

namespace Drawing {

/// Throws std::invalid_argument "Radii must not be negative" when both are.
void RequireRadii(const EllipseKey &key);

/// Radii of a key that RequireRadii accepts; thickness from 1.
void DrawEllipse(const Canvas &canvas, const EllipseKey &key, Point centre, std::int32_t thickness);
void FillEllipse(const Canvas &canvas, const EllipseKey &key, Point centre);

/// The same without any shape kept, for every ellipse.
void DrawEllipseByEdges(const Canvas &canvas, const EllipseKey &key, Point centre, std::int32_t thickness);
void FillEllipseByEdges(const Canvas &canvas, const EllipseKey &key, Point centre);

} // namespace Drawing

// Outlines so thick that their lines cover each other over and over.
#pragma once

#include "Drawing/EllipseOutline.h"
#include "Drawing/Ink.h"

namespace Drawing {

/// Draws the thick lines of an outline, all but those that add nothing to what others have written. The order in
/// which the pixels of the canvas are written must not matter. region is what the lines may meet.
/// Cost  bounded by the image, whatever the radii and the thickness: of thousands of lines that lie alike only the
///       outermost are filled.
void DrawThickOutline(const Canvas &canvas, const EllipseOutline &outline, const Region &region,
                      std::int32_t thickness);

} // namespace Drawing

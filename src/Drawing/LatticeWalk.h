// Thin lines over the memory of a plane with common steps, inside and outside its image.
#pragma once

#include "Drawing/ThinLine.h"

namespace Drawing {

/// Writes the pixels of a line whose address lies in the memory of the plane. Steps that can't lead there are left
/// out, and so are those of a long line that only come back to where it has written already.
void WalkLattice(const Canvas &canvas, const Lattice &lattice, const LineSteps &steps);

} // namespace Drawing

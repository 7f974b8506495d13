// Thin lines over the memory of a plane with common steps, inside and outside its image.
#pragma once

#include "Drawing/ThinLine.h"

namespace Drawing {

/// Writes the pixels of a line whose address lies in the memory of the plane. Steps that can't lead there are left
/// out. Of a line that stays there for far more steps than there are addresses, each address is asked whether some
/// step leads to it.
void WalkLattice(const Canvas &canvas, const Lattice &lattice, const LineSteps &steps);

} // namespace Drawing

// Copies all pixels of one plane to another of the same size, by the fastest method that both tables allow.
// The plain method always works; the others give the same bytes. Which one runs is chosen once per plane.
#pragma once

#include "ORVTypes.h"

namespace Image {

/// One plane as an algorithm sees it; owns nothing.
struct PlaneView {
    char *Base = nullptr;
    const VPAEntry *Table = nullptr;
    std::intptr_t Width = 0;
    std::intptr_t Height = 0;
    std::intptr_t Bytes = 0; ///< per pixel
    std::intptr_t XStep = 0; ///< common step of the columns in bytes, or 0
    std::intptr_t YStep = 0; ///< common step of the rows in bytes, or 0

    char *Row(std::intptr_t y) const { return Base + Table[y].YEntry; }
    char *Pixel(std::intptr_t x, std::intptr_t y) const { return Row(y) + Table[x].XEntry; }
};

enum class PlaneCopyMethod {
    Plain,     ///< pixel by pixel through both tables
    Rows,      ///< both sides dense in the same direction: a block move per row, or one for all
    Mirrored,  ///< both sides dense in opposite directions
    Transposed ///< the target's rows are dense and the source's columns are: square blocks turned in registers
};

/// The fastest method that gives the plain result for these two planes.
PlaneCopyMethod ChoosePlaneCopy(const PlaneView &source, const PlaneView &target);

/// True when the method gives the plain result for these two planes.
bool AllowsPlaneCopy(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target);

/// True for the pixel widths that are copied: 1, 2, 4 and 8 bytes, and 3 for three interleaved planes in one go.
bool IsCopiedWidth(std::intptr_t bytes);

/// Runs a method that is allowed. Bytes must be a copied width and equal, the sizes equal, the memory disjoint.
void CopyPlane(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target);

} // namespace Image

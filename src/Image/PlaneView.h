// One plane, or a rectangle of one, as an algorithm sees it: base, tables, size and steps. Owns nothing.
#pragma once

#include <algorithm>

#include "Image/VpatAnalyzer.h"

namespace Image {

struct PlaneView {
    char *Base = nullptr;
    const VPAEntry *Columns = nullptr; ///< XEntry of column x of the view stands in Columns[x]
    const VPAEntry *Rows = nullptr;    ///< YEntry of row y of the view stands in Rows[y]
    std::intptr_t Width = 0;
    std::intptr_t Height = 0;
    std::intptr_t Bytes = 0; ///< per pixel
    std::intptr_t XStep = 0; ///< common step of the columns in bytes, or 0
    std::intptr_t YStep = 0; ///< common step of the rows in bytes, or 0

    char *Row(std::intptr_t y) const { return Base + Rows[y].YEntry; }
    char *Pixel(std::intptr_t x, std::intptr_t y) const { return Row(y) + Columns[x].XEntry; }
    /// The offset of the lowest column where the columns lie densely, in either direction.
    std::intptr_t LowestColumn() const { return std::min(Columns[0].XEntry, Columns[Width - 1].XEntry); }
    /// A rectangle of this view. It may reach into the guard entries.
    PlaneView Part(std::intptr_t left, std::intptr_t top, std::intptr_t width, std::intptr_t height) const {
        const bool inside = left >= 0 && top >= 0 && left + width <= Width && top + height <= Height;
        return {Base, Columns + left, Rows + top, width, height, Bytes, inside ? XStep : 0, inside ? YStep : 0};
    }
    /// True when the columns lie side by side, in rising addresses (sign 1) or falling ones (sign -1). A view of one
    /// column does both.
    bool IsDense(std::intptr_t sign) const { return Width == 1 || (XStep != 0 && XStep == sign * Bytes); }
    /// True when it is plain that no two pixels of the view share a byte: the view is linear, and its rows or its
    /// columns lie apart. The order in which such a view is written doesn't matter.
    bool HasDistinctPixels() const;
};

/// The bytes of memory that the pixels of a view lie in.
struct MemoryRange {
    const char *Begin;
    const char *End;

    bool Meets(const MemoryRange &other) const { return Begin < other.End && other.Begin < End; }
};
MemoryRange RangeOf(const PlaneView &view);

/// A whole plane of an analysed image.
PlaneView ViewOf(const vpat_analyzer &image, std::intptr_t plane);
/// A whole plane, with one look at its table.
PlaneView ViewOf(const PlaneFacts &plane, const Dimensions &size);

} // namespace Image

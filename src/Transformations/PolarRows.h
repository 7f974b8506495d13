// The positions of many pixels of a row at once, for rings that are unrolled and rolled up again. The same doubles as
// pixel by pixel.
#pragma once

#include "Transformations/InversePolarRing.h"
#include "Transformations/SixteenthSampling.h"

namespace Transformations {

/// Positions of neighbouring pixels.
struct PolarPiece {
    static constexpr std::intptr_t Capacity = 512;

    alignas(64) double X[Capacity];
    alignas(64) double Y[Capacity];
    alignas(64) double Kept[Capacity]; ///< not 0 for pixels that stay as they are; not told unless some do
    bool KeepsSome = false;
};

/// Pixels of a piece whose columns may be other ones instead.
struct PolarDoubts {
    std::intptr_t Count = 0;
    std::intptr_t Index[PolarPiece::Capacity];
    alignas(64) double X[PolarPiece::Capacity]; ///< the other columns
    alignas(64) double Y[PolarPiece::Capacity]; ///< the rows again
};

/// Works positions on a circle out.
void FindPositions(const CirclePositions &positions, std::intptr_t count, double *x, double *y);

/// What positions are worked out for.
enum class PositionUse {
    Exact,     ///< doubles
    Sixteenths ///< what is cut off of them to sixteenths of pixels
};

/// Columns first to first + count - 1 of row y of the target, all of them in the ring.
void FindInversePositions(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y, std::intptr_t count,
                          PositionUse use, PolarPiece &piece);

/// The same for rings of a whole turn, where some columns may be those in doubts instead.
void FindLikelyPositions(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y, std::intptr_t count,
                         PolarPiece &piece, PolarDoubts &doubts);

/// Columns from Begin up to, but not including End.
struct ColumnRange {
    std::intptr_t Begin;
    std::intptr_t End;
};

/// The columns of row y between left and right that lie in the ring, left and right of its centre.
struct RingColumns {
    ColumnRange Left;
    ColumnRange Right;
};
RingColumns FindRingColumns(const InversePolarRing &ring, std::intptr_t y, const ColumnRange &within);

} // namespace Transformations

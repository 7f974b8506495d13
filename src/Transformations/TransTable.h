// The positions of an affine map in fixed point: what each column and each row of the result adds to them. Built once
// per call; all planes of 8 and 16 bits share it.
#pragma once

#include <vector>

#include "Matrices.h"

namespace Transformations {

/// In units of 1/256 pixel.
struct TransTableEntry {
    std::int32_t XFromX;
    std::int32_t XFromY;
    std::int32_t YFromX;
    std::int32_t YFromY;
};

/// Indices from Begin up to, but not including End.
struct IndexRange {
    std::intptr_t Begin = 0;
    std::intptr_t End = 0;

    bool Contains(std::intptr_t index) const { return index >= Begin && index < End; }
};

/// Added to each position: positions are rounded to the 4 bits that weigh pixels.
inline constexpr std::int32_t PositionRounding = 8;

class TransTable {
public:
    /// map leads from the result, of width by height pixels, to the source.
    TransTable(const TCoordinateMap &map, std::intptr_t width, std::intptr_t height);

    const TransTableEntry *Entries() const { return entries_.data(); }
    std::intptr_t Width() const { return width_; }
    std::intptr_t Height() const { return height_; }
    /// The columns and the rows whose terms fit 32 bits. A term is monotone in its index, so that they are in a row;
    /// all other pixels have no source.
    const IndexRange &Columns() const { return columns_; }
    const IndexRange &Rows() const { return rows_; }

private:
    std::intptr_t width_, height_;
    std::vector<TransTableEntry> entries_;
    IndexRange columns_, rows_;
};

/// A position with its rounding, as whole pixels and 1/256.
struct FixedPosition {
    std::int64_t X;
    std::int64_t Y;

    FixedPosition(const TransTableEntry &column, const TransTableEntry &row)
        : X(std::int64_t{column.XFromX} + row.XFromY + PositionRounding),
          Y(std::int64_t{column.YFromX} + row.YFromY + PositionRounding) {}
    bool FitsIn32Bits() const { return X == static_cast<std::int32_t>(X) && Y == static_cast<std::int32_t>(Y); }
};

} // namespace Transformations

// Which columns of a row of the result have their positions inside the source, or inside a part of it.
#pragma once

#include <limits>

#include "Transformations/TransTable.h"

namespace Transformations {

/// The columns' terms, axis by axis.
struct PositionColumns {
    explicit PositionColumns(const TransTable &table);

    std::vector<std::int32_t> X, Y;
    IndexRange Valid; ///< the columns whose terms fit 32 bits
};

/// Finds the columns whose term on one axis lies between two limits. Terms are monotone, and so are the limits from
/// row to row: each search starts where the one before ended, and all of them together cost one pass over the
/// columns.
class AxisSearch {
public:
    AxisSearch(const std::vector<std::int32_t> &terms, const IndexRange &valid);

    /// Those from low up to, but not including high.
    IndexRange Find(std::int64_t low, std::int64_t high);

private:
    bool IsBehind(std::intptr_t column, std::int64_t limit) const {
        const std::int64_t term = terms_[column];
        return falls_ ? term < limit : term >= limit;
    }
    std::intptr_t FirstBehind(std::intptr_t start, std::int64_t limit) const;

    const std::int32_t *terms_;
    IndexRange valid_, found_;
    bool falls_;
};

/// Whole pixels of the source, from the first numbers up to, but not including the second ones.
struct PixelWindow {
    std::int64_t Left, Top, Right, Bottom;
};

/// Finds the columns whose positions lie in a window.
class InsideColumns {
public:
    InsideColumns(const PositionColumns &columns, const PixelWindow &window)
        : x_(columns.X, columns.Valid), y_(columns.Y, columns.Valid), window_(window) {}

    /// For a row, by its terms with the rounding. An empty range starts where the columns' range does or behind.
    IndexRange Find(std::int64_t rowX, std::int64_t rowY);

private:
    AxisSearch x_, y_;
    PixelWindow window_;
};

} // namespace Transformations

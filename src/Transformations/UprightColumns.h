// The columns of a result under a map that keeps rows rows and columns columns, for sampling in double: where in a
// row of the source, whichever it is, the two pixels of each column lie, and how they are weighed.
#pragma once

#include <vector>

#include "Image/PlaneView.h"
#include "Matrices.h"

namespace Transformations {

/// True when no row changes a column's position and no column a row's, to the last bit: an index times such an
/// element is a zero with the element's sign, whatever the index.
inline bool IsUpright(const TMatrix &matrix) {
    return matrix.A12 == 0.0 && matrix.A21 == 0.0;
}

/// Eight columns whose sixteen pixels lie in a short stretch of memory.
struct ColumnWindow {
    static constexpr std::intptr_t Columns = 8;
    static constexpr std::intptr_t Pixels = 16; ///< that the stretch has room for

    std::intptr_t Start;              ///< in a row of the source, in bytes
    std::uint8_t Places[2 * Columns]; ///< in the stretch, in pixels: of the left ones, and then of the right ones
};

/// The columns of a stretch of a result that have a source. They are in a row: positions rise or fall with the
/// column, or stay.
class UprightColumns {
public:
    /// Finds those among count columns. map leads from the result to the source and is upright.
    void Find(const Image::PlaneView &source, const TCoordinateMap &map, std::intptr_t first, std::intptr_t count);

    std::intptr_t First() const { return first_; } ///< of the result
    std::intptr_t Count() const { return static_cast<std::intptr_t>(left_.size()); }
    /// The weight of each right pixel. The left one has the rest to 1.
    const double *Fractions() const { return fractions_.data(); }
    /// Where the pixels lie in a row, in bytes.
    const std::intptr_t *Left() const { return left_.data(); }
    const std::intptr_t *Right() const { return right_.data(); }
    /// Windows of columns 0, 8, 16 ... and of the last eight, all of whose bytes can be read; null where not all
    /// columns have one.
    const ColumnWindow *Windows() const { return windows_.empty() ? nullptr : windows_.data(); }

private:
    void FindWindows(const Image::PlaneView &source);
    bool FindWindow(const Image::PlaneView &source, std::intptr_t column, ColumnWindow &window) const;

    std::intptr_t first_ = 0;
    std::vector<double> fractions_;
    std::vector<std::intptr_t> left_, right_;
    std::vector<ColumnWindow> windows_;
};

} // namespace Transformations

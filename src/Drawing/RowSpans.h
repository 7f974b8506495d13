// The hull of a polygon by rows: edge by edge, the least and the greatest column of each row; and the filling of it.
#pragma once

#include <boost/container/small_vector.hpp>

#include "Drawing/Ink.h"
#include "Drawing/WidePoint.h"

namespace Drawing {

/// Spans of consecutive rows, which may lie anywhere; owns nothing.
struct SpanView {
    const std::int32_t *Least;
    const std::int32_t *Greatest; ///< below Least for a row without a cut
    std::int64_t Rows;
    Point Shift;         ///< added to columns, and the number of the first row
    std::int64_t Bottom; ///< the largest y of the polygon
    /// Columns that no span goes beyond, in the image at least; before the shift.
    std::int64_t Left, Right;
};
/// Writes what lies in the image, row by row from the top.
void FillSpans(const Canvas &canvas, const SpanView &spans);
/// True when that reaches every pixel of the image.
bool CoverImage(const DrawnPlane &plane, const SpanView &spans);

class RowSpans {
public:
    /// Rows [first, end). Columns from `width` on count as `width`, where that makes a difference to 32 bits.
    RowSpans(std::int64_t first, std::int64_t end, std::int64_t width);

    /// The closed polygon's edge from `previous` to `current`. Its ends may lie anywhere.
    void AddEdge(Point current, Point previous);

    SpanView View() const {
        const auto rows = static_cast<std::int64_t>(least_.size());
        return {least_.data(), greatest_.data(), rows, {0, first_}, bottom_, left_, right_};
    }

private:
    static constexpr std::size_t UsualRows = 128;
    static constexpr std::int64_t NoColumn = std::int64_t{1} << 40; ///< beyond all columns, and far from 64 bits
    using Columns = boost::container::small_vector<std::int32_t, UsualRows>;

    std::int64_t first_, end_, width_;
    std::int64_t bottom_ = INT64_MIN;
    std::int64_t left_ = NoColumn, right_ = -NoColumn;
    Columns least_, greatest_;
};

/// Fills a polygon of few corners: between the outermost cuts of each row.
/// Result  true when that has written every pixel of the image.
bool FillPolygon(const Canvas &canvas, const Point *corners, std::size_t count);

} // namespace Drawing

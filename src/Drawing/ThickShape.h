// What the thick lines around an ellipse write, as spans around (0, 0). The corners of thick lines are truncated,
// which depends on where they lie: spans serve every centre only as long as all corners are positive, and none lies
// so close to a whole number that the rounding of larger coordinates could move it across.
#pragma once

#include <cstdint>
#include <vector>

#include "Drawing/Ink.h"
#include "Drawing/RowSpans.h"
#include "Drawing/WidePoint.h"

namespace Drawing {

class ThickShape {
public:
    /// corners    of the outline, the first one again at the end.
    ThickShape(const std::vector<Point> &corners, std::int32_t reach, std::int32_t thickness);

    std::int32_t Thickness() const { return thickness_; }
    /// True when the shape serves this centre.
    bool Serves(Point centre) const;
    /// Writes all lines. centre  one that the shape serves.
    void Write(const Canvas &canvas, Point centre) const;

private:
    /// Columns of one row, both ends included.
    struct Span {
        std::int32_t Left, Right;
        bool operator<(const Span &other) const { return Left < other.Left; }
    };
    using Rows = std::vector<std::vector<Span>>;

    void AddLine(Rows &rows, std::size_t line);
    void Join(Rows &rows);

    std::vector<Point> corners_;
    std::int32_t thickness_;
    std::int32_t reach_;              ///< of the lines, with their thickness
    std::vector<std::int32_t> least_; ///< spans in layers: each layer has at most one span of each row
    std::vector<std::int32_t> greatest_;
    std::size_t layers_ = 0;
    std::vector<std::size_t> others_; ///< lines that depend on the centre
};

} // namespace Drawing

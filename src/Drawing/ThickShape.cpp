#include "Drawing/ThickShape.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Drawing/ThickLine.h"

namespace Drawing {
namespace {

/// Coordinates below this are rounded to less than SafeDistance by all operations on the way to a corner.
constexpr std::int64_t GreatestCentre = std::int64_t{1} << 20;
constexpr double SafeDistance = 1e-6;

bool IsSafe(double coordinate) {
    const double fraction = coordinate - std::floor(coordinate);
    return fraction > SafeDistance && fraction < 1 - SafeDistance;
}

/// True when the corners of a line, truncated, move along with its ends. Lines along an axis have corners at halves
/// and whole numbers, without any rounding.
bool MovesWithEnds(Point from, Point to, const std::array<CornerPosition, 4> &corners) {
    if (from.X == to.X || from.Y == to.Y)
        return true;
    return std::all_of(corners.begin(), corners.end(),
                       [](const CornerPosition &corner) { return IsSafe(corner.X) && IsSafe(corner.Y); });
}

} // namespace

ThickShape::ThickShape(const std::vector<Point> &corners, std::int32_t reach, std::int32_t thickness)
    : corners_(corners), thickness_(thickness), reach_(reach + 2 * thickness + 2) {
    Rows rows(static_cast<std::size_t>(2 * reach_ + 1));
    for (std::size_t line = 1; line < corners_.size(); ++line)
        AddLine(rows, line);
    Join(rows);
}

void ThickShape::AddLine(Rows &rows, std::size_t line) {
    const Point from = corners_[line - 1], to = corners_[line];
    if (from == to)
        return;
    const std::array<CornerPosition, 4> positions = ThickLineCornerPositions(from, to, thickness_);
    if (!MovesWithEnds(from, to, positions))
        return others_.push_back(line);
    std::array<Point, 4> polygon;
    for (std::size_t i = 0; i < polygon.size(); ++i)
        polygon[i] = {static_cast<std::int64_t>(std::floor(positions[i].X)),
                      static_cast<std::int64_t>(std::floor(positions[i].Y))};
    const auto [top, bottom] = std::minmax({polygon[0].Y, polygon[1].Y, polygon[2].Y, polygon[3].Y});
    RowSpans spans(top, bottom + 1, reach_);
    for (std::size_t i = 0; i < polygon.size(); ++i)
        spans.AddEdge(polygon[i], polygon[(i + 3) % polygon.size()]);
    const SpanView view = spans.View();
    for (std::int64_t i = 0; i < view.Rows; ++i) {
        auto &row = rows[static_cast<std::size_t>(top + i + reach_)];
        const Span span = {view.Least[i], view.Greatest[i]};
        if (span.Left > span.Right)
            continue;
        // Most lines go on where the one before ended.
        if (!row.empty() && span.Left <= row.back().Right + 1 && span.Right >= row.back().Left - 1)
            row.back() = {std::min(row.back().Left, span.Left), std::max(row.back().Right, span.Right)};
        else
            row.push_back(span);
    }
}

/// Spans of a row that touch become one.
void ThickShape::Join(Rows &rows) {
    for (std::vector<Span> &row : rows) {
        std::sort(row.begin(), row.end());
        std::size_t kept = 0;
        for (const Span &span : row)
            if (kept != 0 && span.Left <= row[kept - 1].Right + 1)
                row[kept - 1].Right = std::max(row[kept - 1].Right, span.Right);
            else
                row[kept++] = span;
        row.resize(kept);
        layers_ = std::max(layers_, kept);
    }
    least_.assign(layers_ * rows.size(), std::numeric_limits<std::int32_t>::max());
    greatest_.assign(layers_ * rows.size(), std::numeric_limits<std::int32_t>::min());
    for (std::size_t y = 0; y < rows.size(); ++y)
        for (std::size_t layer = 0; layer < rows[y].size(); ++layer) {
            least_[layer * rows.size() + y] = rows[y][layer].Left;
            greatest_[layer * rows.size() + y] = rows[y][layer].Right;
        }
}

bool ThickShape::Serves(Point centre) const {
    return centre.X > reach_ && centre.Y > reach_ && centre.X < GreatestCentre && centre.Y < GreatestCentre;
}

void ThickShape::Write(const Canvas &canvas, Point centre) const {
    const std::int64_t rows = 2 * std::int64_t{reach_} + 1;
    for (std::size_t layer = 0; layer < layers_; ++layer)
        FillSpans(canvas, {least_.data() + static_cast<std::int64_t>(layer) * rows,
                           greatest_.data() + static_cast<std::int64_t>(layer) * rows,
                           rows,
                           {centre.X, centre.Y - reach_},
                           centre.Y + reach_,
                           -reach_,
                           reach_});
    for (const std::size_t line : others_) {
        const Point from = corners_[line - 1], to = corners_[line];
        DrawThickLine(canvas, {from.X + centre.X, from.Y + centre.Y}, {to.X + centre.X, to.Y + centre.Y}, thickness_);
    }
}

} // namespace Drawing

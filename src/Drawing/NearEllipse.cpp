#include "Drawing/NearEllipse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "Drawing/LineSteps.h"
#include "Drawing/RowSpans.h"

namespace Drawing {
namespace {

/// Edges without an end of more than this in either direction have at most one pixel between their ends.
constexpr std::int32_t ShortEdge = 2;

bool IsShort(std::int32_t dx, std::int32_t dy) {
    constexpr auto most = static_cast<std::uint32_t>(2 * ShortEdge);
    return static_cast<std::uint32_t>(dx + ShortEdge) <= most && static_cast<std::uint32_t>(dy + ShortEdge) <= most;
}

/// The extreme columns of rows around a centre.
class NearSpans {
public:
    explicit NearSpans(std::int32_t reach) : reach_(reach) {
        const auto rows = static_cast<std::size_t>(2 * reach + 1);
        std::fill_n(least_.data(), rows, std::numeric_limits<std::int32_t>::max());
        std::fill_n(greatest_.data(), rows, std::numeric_limits<std::int32_t>::min());
    }

    void Add(std::int32_t x, std::int32_t y) {
        const auto row = static_cast<std::size_t>(y + reach_);
        least_[row] = std::min(least_[row], x);
        greatest_[row] = std::max(greatest_[row], x);
    }
    std::int32_t *Least() { return least_.data() + reach_; }       ///< of row 0
    std::int32_t *Greatest() { return greatest_.data() + reach_; } ///< of row 0
    SpanView View(Point centre, std::int32_t bottom) const {
        return {least_.data(),
                greatest_.data(),
                2 * std::int64_t{reach_} + 1,
                {centre.X, centre.Y - reach_},
                centre.Y + bottom,
                -reach_,
                reach_};
    }

private:
    static constexpr std::size_t MostRows = 3 * NearCorners::GreatestRadius;

    std::int32_t reach_;
    std::array<std::int32_t, MostRows> least_, greatest_;
};

/// The cuts of rows with an edge of any length.
void AddEdge(NearSpans &spans, std::int32_t x, std::int32_t y, std::int32_t previousX, std::int32_t previousY) {
    const double width = previousX - x, height = previousY - y;
    for (std::int32_t row = std::min(y, previousY); row <= std::max(y, previousY); ++row) {
        const double term = static_cast<double>(row - y) / height * width;
        spans.Add(x + static_cast<std::int32_t>(term + std::copysign(0.5, term)), row);
    }
}

/// The edge that leads to corner i.
void AddShortEdge(NearSpans &spans, const NearCorners &corners, std::size_t i) {
    const std::int32_t x = corners.X[i], y = corners.Y[i], dx = corners.X[i - 1] - x, dy = corners.Y[i - 1] - y;
    if (std::abs(dy) > ShortEdge)
        return AddEdge(spans, x, y, x + dx, y + dy);
    spans.Add(x + dx, y + dy);
    spans.Add(x, y);
    // Halves are rounded away from the end of the edge.
    if (std::abs(dy) == 2)
        spans.Add(x + (dx + (dx > 0 ? 1 : -1)) / 2, y + dy / 2);
}

/// The same on one side of an ellipse that is not turned, in an order that has the extreme column of each row last.
/// Without a row between its ends, an edge first writes something else to the row of its corner.
ORV_INLINE void StoreEdge(std::int32_t *columns, const std::int32_t *x, const std::int32_t *y) {
    const std::int32_t dx = x[-1] - x[0], dy = y[-1] - y[0];
    columns[y[0] + dy / 2] = x[0] + (dx + (dx > 0 ? 1 : -1)) / 2;
    columns[y[0]] = x[0];
}

/// Corners move evenly in either direction within each quarter turn. Where two quarters meet, rows may belong to
/// both, or only to the other side.
void AddQuarters(NearSpans &spans, const NearCorners &corners) {
    const std::int32_t *x = corners.X.data(), *y = corners.Y.data();
    const std::int64_t first = corners.Quarters[0], second = corners.Quarters[1], third = corners.Quarters[2];
    std::int32_t *const least = spans.Least(), *const greatest = spans.Greatest();
    greatest[y[third + 1]] = x[third + 1];
    for (std::int64_t i = third + 2; i < corners.Count; ++i)
        StoreEdge(greatest, x + i, y + i);
    for (std::int64_t i = first; i > 0; --i)
        StoreEdge(greatest, x + i, y + i);
    greatest[y[0]] = x[0];
    least[y[first + 1]] = x[first + 1];
    for (std::int64_t i = first + 2; i <= second; ++i)
        StoreEdge(least, x + i, y + i);
    for (std::int64_t i = third; i > second + 1; --i)
        StoreEdge(least, x + i, y + i);
    least[y[second + 1]] = x[second + 1];
    for (const std::int64_t i : {first + 1, second + 1, third + 1, corners.Count})
        AddShortEdge(spans, corners, static_cast<std::size_t>(i));
}

/// Result: the lowest row.
std::int32_t AddEdges(NearSpans &spans, const NearCorners &corners) {
    std::int32_t bottom = corners.Y[0];
    for (std::size_t i = 1; i <= static_cast<std::size_t>(corners.Count); ++i) {
        bottom = std::max(bottom, corners.Y[i]);
        if (corners.Y[i - 1] != corners.Y[i])
            AddShortEdge(spans, corners, i);
    }
    return bottom;
}

} // namespace

bool DrawNearOutline(const Canvas &canvas, const NearCorners &corners, Point centre) {
    const DrawnPlane &plane = canvas.Plane;
    const std::int64_t reach = corners.Reach;
    if (!plane.Contains(centre.X - reach, centre.Y - reach) || !plane.Contains(centre.X + reach, centre.Y + reach))
        return false;
    const VPAEntry *column = plane.Table + centre.X, *row = plane.Table + centre.Y;
    WithWriter(canvas, [&, base = plane.Base](const auto write) {
        const std::int32_t *x = corners.X.data(), *y = corners.Y.data();
        for (std::int64_t i = 0; i < corners.Count; ++i) {
            const std::int32_t dx = x[i + 1] - x[i], dy = y[i + 1] - y[i];
            if (IsShort(dx, dy)) {
                // Without a pixel in between, this is the first one again.
                write(base + column[x[i]].XEntry + row[y[i]].YEntry);
                write(base + column[x[i] + dx / 2].XEntry + row[y[i] + dy / 2].YEntry);
                continue;
            }
            const LineSteps steps({x[i], y[i]}, {x[i + 1], y[i + 1]});
            for (std::int64_t k = 0; k < steps.Count(); ++k) {
                const Point pixel = steps.At(k);
                write(base + column[pixel.X].XEntry + row[pixel.Y].YEntry);
            }
        }
    });
    return true;
}

void FillNearEllipse(const Canvas &canvas, const NearCorners &corners, Point centre) {
    NearSpans spans(corners.Reach);
    if (!corners.HasQuarters)
        return FillSpans(canvas, spans.View(centre, AddEdges(spans, corners)));
    AddQuarters(spans, corners);
    const auto first = static_cast<std::size_t>(corners.Quarters[0]);
    FillSpans(canvas, spans.View(centre, std::max(corners.Y[first], corners.Y[first + 1])));
}

} // namespace Drawing

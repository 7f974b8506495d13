// Lines with equal differences of their ends have equal rectangles but for their places. So all lines of a part of
// the outline that go one way lie between the outermost of them, which the ellipse tells without a walk. A part that
// adds no pixel is left out; else it is halved, and the half that promises more comes first.
#include "Drawing/ThickOutline.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "Drawing/CoveredRows.h"
#include "Drawing/ThickLine.h"

namespace Drawing {
namespace {

using Limits = EllipseOutline::Range;

/// Where a corner of the rectangles may lie.
struct CornerBox {
    Limits X, Y;
};

/// Truncated coordinates lie less than one from the exact ones.
constexpr double Truncation = 1.001;
/// A cut is rounded.
constexpr double CutRounding = 0.501;

Limits Moved(const Limits &range, double by) {
    return {range.Least + by - Truncation, range.Most + by + Truncation};
}

class Walk {
public:
    Walk(const Canvas &canvas, const EllipseOutline &outline, const Region &region, std::int32_t thickness)
        : plane_(canvas.Plane), outline_(outline), region_(region), thickness_(thickness), covered_(canvas),
          all_(static_cast<double>(plane_.Width) * static_cast<double>(plane_.Height)) {}

    void Run() {
        outline_.Close([&](Point from, Point to) { return Draw(from, to); });
        if (outline_.Edges() > 0)
            Visit(1, outline_.Edges());
    }

private:
    /// Lines whose directions are looked at instead of foretold.
    static constexpr std::int64_t FewEdges = CornerBlock;

    void Visit(std::int64_t first, std::int64_t last) {
        if (covered_.AreWhole())
            return;
        if (last - first < FewEdges)
            return DrawFew(first, last);
        const std::int64_t middle = first + (last - first) / 2;
        const double before = PixelsToAdd(first, middle), behind = PixelsToAdd(middle + 1, last);
        if (before >= behind) {
            VisitBoth(first, middle, before, middle + 1, last, behind);
        } else {
            VisitBoth(middle + 1, last, behind, first, middle, before);
        }
    }
    void VisitBoth(std::int64_t first, std::int64_t last, double pixels, std::int64_t otherFirst,
                   std::int64_t otherLast, double otherPixels) {
        if (pixels > 0)
            Visit(first, last);
        if (otherPixels > 0 && PixelsToAdd(otherFirst, otherLast) > 0)
            Visit(otherFirst, otherLast);
    }

    /// About as many pixels as edges first to last may add; 0 only when they add none.
    double PixelsToAdd(std::int64_t first, std::int64_t last) {
        if (covered_.AreWhole() || !outline_.MayMeet(first, last, region_))
            return 0;
        if (!outline_.TakeDirections(first, last, directions_))
            return all_;
        const auto startsOf = [&](double x, double y) { return outline_.OfCorners(first - 1, last - 1, x, y); };
        const Limits x = startsOf(1, 0), y = startsOf(0, 1);
        double pixels = 0;
        for (const Point &direction : directions_)
            if (direction != Point{0, 0})
                pixels += PixelsOfDirection(direction, x, y, startsOf);
        return pixels;
    }

    /// At most FewEdges, direction by direction.
    void DrawFew(std::int64_t first, std::int64_t last) {
        lines_.clear();
        outline_.ForEachOf(first, last, [&](Point from, Point to) {
            if (from != to)
                lines_.push_back({{to.X - from.X, to.Y - from.Y}, from});
            return true;
        });
        while (!lines_.empty() && !covered_.AreWhole()) {
            const Point direction = lines_.back().Direction;
            const auto others = std::partition(lines_.begin(), lines_.end(),
                                               [&](const Line &line) { return line.Direction != direction; });
            const auto startsOf = [&](double x, double y) {
                Limits limits = {std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest()};
                for (auto line = others; line != lines_.end(); ++line) {
                    const double value =
                        x * static_cast<double>(line->From.X) + y * static_cast<double>(line->From.Y);
                    limits = {std::min(limits.Least, value), std::max(limits.Most, value)};
                }
                return limits;
            };
            if (PixelsOfDirection(direction, startsOf(1, 0), startsOf(0, 1), startsOf) > 0)
                for (auto line = others; line != lines_.end(); ++line)
                    Draw(line->From, {line->From.X + direction.X, line->From.Y + direction.Y});
            lines_.erase(others, lines_.end());
        }
    }

    /// About as many pixels as lines of one direction may add, with their starts in a box; startsOf(x, y) gives the
    /// limits of x * X + y * Y of the starts.
    template <class StartsOf>
    double PixelsOfDirection(Point direction, const Limits &x, const Limits &y, const StartsOf &startsOf) {
        const std::array<CornerPosition, 4> corners = ThickLineCornerPositions({0, 0}, direction, thickness_);
        std::array<CornerBox, 4> boxes;
        for (std::size_t i = 0; i < corners.size(); ++i)
            boxes[i] = {Moved(x, corners[i].X), Moved(y, corners[i].Y)};
        covered_.BeginShape();
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const std::size_t j = (i + 3) % corners.size();
            const double rows = corners[j].Y - corners[i].Y;
            if (std::fabs(rows) > 4)
                AddSlopedSide(startsOf, corners[i], (corners[j].X - corners[i].X) / rows, boxes[i].Y, boxes[j].Y);
            else
                AddFlatSide(boxes[i], boxes[j]);
        }
        return covered_.PixelsToAdd();
    }

    /// A side that keeps its slope, but for the truncation of its ends.
    template <class StartsOf>
    void AddSlopedSide(const StartsOf &startsOf, const CornerPosition &corner, double slope, const Limits &y,
                       const Limits &otherY) {
        const Limits starts = startsOf(1, -slope);
        const double x = corner.X - slope * corner.Y;
        const double margin = CutRounding + Truncation * (1 + std::fabs(slope));
        covered_.AddSide(std::min(y.Least, otherY.Least), std::max(y.Most, otherY.Most),
                         {starts.Least + x - margin, 0, slope}, {starts.Most + x + margin, 0, slope});
    }

    /// A side of so few rows that truncation decides its slope.
    void AddFlatSide(const CornerBox &a, const CornerBox &b) {
        covered_.AddSide(std::min(a.Y.Least, b.Y.Least), std::max(a.Y.Most, b.Y.Most),
                         {std::min(a.X.Least, b.X.Least) - CutRounding, 0, 0},
                         {std::max(a.X.Most, b.X.Most) + CutRounding, 0, 0});
    }

    /// Gives false once nothing is left to be written.
    bool Draw(Point from, Point to) {
        if (from == to)
            return true;
        const std::array<Point, 4> corners = ThickLineCorners(from, to, thickness_);
        const auto [top, bottom] = std::minmax({corners[0].Y, corners[1].Y, corners[2].Y, corners[3].Y});
        if (bottom <= 0 || top >= plane_.Height || !Adds(corners))
            return !covered_.AreWhole();
        RowSpans spans(std::max<std::int64_t>(top, 0), std::min(bottom + 1, plane_.Height), plane_.Width);
        for (std::size_t i = 0; i < corners.size(); ++i)
            spans.AddEdge(corners[i], corners[(i + 3) % corners.size()]);
        covered_.Write(spans.View());
        return !covered_.AreWhole();
    }
    bool Adds(const std::array<Point, 4> &corners) {
        covered_.BeginShape();
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const Point a = corners[i], b = corners[(i + 3) % corners.size()];
            if (a.Y == b.Y)
                continue;
            const auto x = static_cast<double>(a.X), y = static_cast<double>(a.Y);
            const double slope = static_cast<double>(b.X - a.X) / static_cast<double>(b.Y - a.Y);
            covered_.AddSide(static_cast<double>(std::min(a.Y, b.Y)), static_cast<double>(std::max(a.Y, b.Y)),
                             {x - CutRounding, y, slope}, {x + CutRounding, y, slope});
        }
        return covered_.PixelsToAdd() > 0;
    }

    struct Line {
        Point Direction, From;
    };

    const DrawnPlane &plane_;
    const EllipseOutline &outline_;
    const Region &region_;
    std::int32_t thickness_;
    CoveredRows covered_;
    double all_; ///< pixels
    std::vector<Point> directions_;
    std::vector<Line> lines_;
};

} // namespace

void DrawThickOutline(const Canvas &canvas, const EllipseOutline &outline, const Region &region,
                      std::int32_t thickness) {
    Walk(canvas, outline, region, thickness).Run();
}

} // namespace Drawing

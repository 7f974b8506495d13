// The way around an ellipse, corner by corner, with the parts left out that can't meet the image.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "Drawing/AngleSteps.h"
#include "Drawing/EllipsePoints.h"
#include "Drawing/WidePoint.h"
#include "TruncateTo.h"

namespace Drawing {

/// Limits of a linear function of positions, X * x + Y * y: what is drawn between corners with values outside all of
/// its ranges does not meet the image.
struct Band {
    struct Range {
        double Least, Most;
    };
    double X, Y;
    std::vector<Range> Ranges;
};
/// All bands must be met.
using Region = std::vector<Band>;

class EllipseOutline {
public:
    EllipseOutline(const EllipseForm &form, Point centre)
        : form_(form), centre_(centre), angles_(form.Step), first_(PointOf(FirstCorner(form))) {}

    /// Corners without the one that closes the outline.
    std::int64_t Corners() const { return angles_.Count() + 1; }

    struct Range {
        double Least, Most;
    };
    /// Reaches around X * x + Y * y at corners first to last.
    Range OfCorners(std::int64_t first, std::int64_t last, double x, double y) const;
    /// All differences to - from that edges first to last may have, with hardly any that they don't have. False when
    /// there are too many.
    bool TakeDirections(std::int64_t first, std::int64_t last, std::vector<Point> &directions) const;

    /// How many edges there are before the one that closes the outline; the first has number 1.
    std::int64_t Edges() const { return form_.HasDirection() ? angles_.Count() : 0; }
    /// Calls edge(from, to) for edges first to last, at most CornerBlock of them, edge i leading to corner i.
    /// Stops when edge gives false, and then gives false.
    template <class Edge>
    bool ForEachOf(std::int64_t first, std::int64_t last, Edge &&edge) const {
        return WalkFew(first, last, edge);
    }
    /// The edge that closes the outline.
    template <class Edge>
    bool Close(Edge &&edge) const {
        return edge(CornerNumber(Edges()), first_);
    }
    /// False when nothing of edges first to last meets the region.
    bool MayMeet(std::int64_t first, std::int64_t last, const Region &region) const;

    /// Calls edge(from, to) for each pair of consecutive corners that may meet the region, in order, the last one
    /// from the last corner to the first. Stops when edge gives false.
    template <class Edge>
    void ForEachEdge(const Region &region, Edge &&edge) const {
        if (Walk(1, Edges(), region, edge))
            Close(edge);
    }

private:
    /// Edges that are walked without a look at the region.
    static constexpr std::int64_t FewEdges = CornerBlock - 1;

    Point PointOf(Corner corner) const {
        // A corner of a rotation without a direction is the lowest integer, away from every image.
        if (std::isnan(corner.X) || std::isnan(corner.Y))
            return {centre_.X + std::numeric_limits<std::int32_t>::min(),
                    centre_.Y + std::numeric_limits<std::int32_t>::min()};
        return {centre_.X + orvBase::TruncateTo<std::int64_t>(corner.X),
                centre_.Y + orvBase::TruncateTo<std::int64_t>(corner.Y)};
    }
    double AngleOf(std::int64_t i) const { return i == 0 ? 0.0 : angles_.At(i); }
    Point CornerNumber(std::int64_t i) const { return i == 0 ? first_ : PointOf(CornerAt(form_, angles_.At(i))); }

    /// Edges first to last, edge i leading to corner i.
    template <class Edge>
    bool Walk(std::int64_t first, std::int64_t last, const Region &region, Edge &edge) const {
        if (last - first < FewEdges)
            return WalkFew(first, last, edge);
        if (!MayMeet(first, last, region))
            return true;
        const std::int64_t middle = first + (last - first) / 2;
        return Walk(first, middle, region, edge) && Walk(middle + 1, last, region, edge);
    }

    template <class Edge>
    bool WalkFew(std::int64_t first, std::int64_t last, Edge &edge) const {
        if (first > last)
            return true;
        CornerAngles angles = {};
        CornerColumns corners;
        const auto count = static_cast<std::size_t>(last - first + 1);
        angles[0] = angles_.At(first);
        for (std::size_t i = 1; i < count; ++i)
            angles[i] = angles[i - 1] + form_.Step;
        CornersAt(form_, angles, count, corners);
        Point from = CornerNumber(first - 1);
        for (std::size_t i = 0; i < count; ++i) {
            const Point to = PointOf({corners.X[i], corners.Y[i]});
            if (!edge(from, to))
                return false;
            from = to;
        }
        return true;
    }

    /// How far a corner lies from the ellipse at most, in x or y: by one rounding, or by one before and one after it
    /// is turned.
    double RoundingOfCorners() const { return form_.IsTurned ? 1.2072 : 0.5001; }
    bool TakeTurned(std::int64_t first, std::int64_t last, Point direction, std::vector<Point> &directions) const;
    Range OfSine(double alongA, double alongB, double begin, double end) const;

    EllipseForm form_;
    Point centre_;
    AngleSteps angles_;
    Point first_;
};

} // namespace Drawing

#include "Drawing/ThickLine.h"

#include <cmath>

#include "Drawing/RowSpans.h"
#include "TruncateTo.h"

namespace Drawing {
namespace {

using Vector2D = CornerPosition;

/// No number is the lowest integer of 32 bits; numbers beyond these are kept, so that what they lead to is drawn.
std::int64_t Truncated(double position) {
    return std::isnan(position) ? orvBase::TruncateTo<std::int32_t>(position)
                                : orvBase::TruncateTo<std::int64_t>(position);
}
Point Truncated(const CornerPosition &corner) {
    return {Truncated(corner.X), Truncated(corner.Y)};
}

} // namespace

std::array<CornerPosition, 4> ThickLineCornerPositions(Point from, Point to, std::int32_t thickness) {
    const double t = thickness;
    const Vector2D a = {static_cast<double>(from.X) + 0.5, static_cast<double>(from.Y) + 0.5};
    const Vector2D d = {static_cast<double>(to.X) + 0.5 - a.X, static_cast<double>(to.Y) + 0.5 - a.Y};
    const double length = std::sqrt(d.X * d.X + d.Y * d.Y);
    const Vector2D u = {d.X / length, d.Y / length};
    const Vector2D p = {a.X - 0.5 * t * u.X + 0.5 * (t - 1) * u.Y, a.Y - 0.5 * t * u.Y - 0.5 * (t - 1) * u.X};
    const Vector2D q = {p.X + (length + t) * u.X, p.Y + (length + t) * u.Y};
    const Vector2D w = {-(t - 1) * u.Y, (t - 1) * u.X};
    return {p, q, Vector2D{q.X + w.X, q.Y + w.Y}, Vector2D{p.X + w.X, p.Y + w.Y}};
}

std::array<Point, 4> ThickLineCorners(Point from, Point to, std::int32_t thickness) {
    const std::array<CornerPosition, 4> corners = ThickLineCornerPositions(from, to, thickness);
    return {Truncated(corners[0]), Truncated(corners[1]), Truncated(corners[2]), Truncated(corners[3])};
}

bool DrawThickLine(const Canvas &canvas, Point from, Point to, std::int32_t thickness) {
    if (from == to) // without a direction all corners lie at the lowest integer, away from every image
        return false;
    const std::array<Point, 4> corners = ThickLineCorners(from, to, thickness);
    return FillPolygon(canvas, corners.data(), corners.size());
}

} // namespace Drawing

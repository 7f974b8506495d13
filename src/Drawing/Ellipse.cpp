#include "Drawing/Ellipse.h"

#include <stdexcept>

#include "Drawing/EllipseOutline.h"
#include "Drawing/ThickLine.h"
#include "Drawing/ThinLine.h"

namespace Drawing {
namespace {

using Offset = EllipseShape::Offset;

/// Thin outlines: addresses in the memory of a plane with common steps, or positions in the image.
Region ThinRegion(const DrawnPlane &plane, const std::optional<Lattice> &lattice) {
    if (lattice)
        return {{static_cast<double>(lattice->XStep),
                 static_cast<double>(lattice->YStep),
                 {{static_cast<double>(lattice->Lowest), static_cast<double>(lattice->Highest)}}}};
    return {{1, 0, {{0, static_cast<double>(plane.Width)}}}, {0, 1, {{0, static_cast<double>(plane.Height)}}}};
}

/// A thick line reaches its thickness beyond its ends at most. Where a corner of it may leave 32 bits it becomes the
/// lowest integer, and the line any polygon.
Region ThickRegion(const DrawnPlane &plane, std::int32_t thickness) {
    constexpr double beyond = 2147483648.0;
    const double reach = 2.0 * thickness;
    const auto ranges = [&](std::intptr_t size) -> std::vector<Band::Range> {
        return {{-reach, static_cast<double>(size) + reach},
                {-beyond - reach, -beyond + reach},
                {beyond - reach, beyond + reach}};
    };
    return {{1, 0, ranges(plane.Width)}, {0, 1, ranges(plane.Height)}};
}

/// All pixels of a shape, the image reaching around all of them.
void WriteInside(const Canvas &canvas, const std::vector<Offset> &pixels, Point centre) {
    const DrawnPlane &plane = canvas.Plane;
    const VPAEntry *column = plane.Table + centre.X, *row = plane.Table + centre.Y;
    WithWriter(canvas, [&](const auto &write) {
        for (const Offset &pixel : pixels)
            write(plane.Base + column[pixel.X].XEntry + row[pixel.Y].YEntry);
    });
}

/// Those of a shape that a line of their own would write.
void WriteThere(const Canvas &canvas, const std::vector<Offset> &pixels, Point centre) {
    const DrawnPlane &plane = canvas.Plane;
    const std::optional<Lattice> lattice = LatticeOf(plane);
    WithWriter(canvas, [&](const auto &write) {
        for (const Offset &pixel : pixels) {
            const Point point = {centre.X + pixel.X, centre.Y + pixel.Y};
            const bool isThere =
                lattice ? lattice->Holds(lattice->OffsetOf(point)) : plane.Contains(point.X, point.Y);
            if (isThere)
                write(lattice ? lattice->First + static_cast<std::intptr_t>(lattice->OffsetOf(point))
                              : plane.Pixel(point.X, point.Y));
        }
    });
}

void DrawThinShape(const Canvas &canvas, EllipseShape &shape, Point centre) {
    const DrawnPlane &plane = canvas.Plane;
    const std::int64_t reach = shape.Reach();
    const bool isInside =
        plane.Contains(centre.X - reach, centre.Y - reach) && plane.Contains(centre.X + reach, centre.Y + reach);
    (isInside ? WriteInside : WriteThere)(canvas, shape.Pixels(), centre);
}

/// True when no two pixels share a byte in part, so that the order of writing does not matter.
bool HasDistinctBytes(const Canvas &canvas) {
    const std::intptr_t bytes = canvas.Colour.Bytes;
    if (bytes == 1)
        return true;
    const std::optional<Lattice> lattice = LatticeOf(canvas.Plane);
    if (!lattice)
        return false;
    const std::intptr_t x = std::abs(lattice->XStep), y = std::abs(lattice->YStep);
    return x >= bytes && y >= bytes &&
           (y >= x * (canvas.Plane.Width - 1) + bytes || x >= y * (canvas.Plane.Height - 1) + bytes);
}

void DrawThickShape(const Canvas &canvas, EllipseShape &shape, Point centre, std::int32_t thickness) {
    if (thickness <= EllipseShape::GreatestRadius && HasDistinctBytes(canvas)) {
        const ThickShape &thick = shape.Thick(thickness);
        if (thick.Serves(centre))
            return thick.Write(canvas, centre);
    }
    const std::vector<Point> &corners = shape.Corners();
    for (std::size_t i = 1; i < corners.size(); ++i) {
        const Point from = {corners[i - 1].X + centre.X, corners[i - 1].Y + centre.Y};
        const Point to = {corners[i].X + centre.X, corners[i].Y + centre.Y};
        if (DrawThickLine(canvas, from, to, thickness))
            return;
    }
}

bool IsEmpty(const DrawnPlane &plane) {
    return plane.Width < 1 || plane.Height < 1;
}

EllipseForm FormOf(const EllipseKey &key) {
    return EllipseFormOf(key.RadiusA, key.RadiusB, key.RotationRadians);
}

} // namespace

void RequireRadii(const EllipseKey &key) {
    if (key.RadiusA < 0 && key.RadiusB < 0)
        throw std::invalid_argument("Radii must not be negative");
}

void DrawEllipseByEdges(const Canvas &canvas, const EllipseKey &key, Point centre, std::int32_t thickness) {
    if (IsEmpty(canvas.Plane))
        return;
    const EllipseOutline outline(FormOf(key), centre);
    // Once a line has written the whole image, all others write the same again.
    if (thickness > 1)
        return outline.ForEachEdge(ThickRegion(canvas.Plane, thickness),
                                   [&](Point from, Point to) { return !DrawThickLine(canvas, from, to, thickness); });
    LinePlane plane(canvas, LatticeOf(canvas.Plane));
    outline.ForEachEdge(ThinRegion(canvas.Plane, plane.Lattice()), [&](Point from, Point to) {
        DrawThinLine(plane, from, to);
        return true;
    });
}

void FillEllipseByEdges(const Canvas &canvas, const EllipseKey &key, Point centre) {
    if (IsEmpty(canvas.Plane))
        return;
    const double height = static_cast<double>(canvas.Plane.Height);
    RowSpans spans(0, canvas.Plane.Height, canvas.Plane.Width);
    const EllipseOutline outline(FormOf(key), centre);
    outline.ForEachEdge({{0, 1, {{0, height}}}}, [&](Point from, Point to) {
        spans.AddEdge(to, from);
        return true;
    });
    FillSpans(canvas, spans.View());
}

void DrawEllipse(const Canvas &canvas, const EllipseKey &key, Point centre, std::int32_t thickness) {
    if (!EllipseShape::IsKept(key))
        return DrawEllipseByEdges(canvas, key, centre, thickness);
    if (IsEmpty(canvas.Plane))
        return;
    EllipseShape &shape = EllipseShape::Of(key);
    if (thickness == 1)
        DrawThinShape(canvas, shape, centre);
    else
        DrawThickShape(canvas, shape, centre, thickness);
}

void FillEllipse(const Canvas &canvas, const EllipseKey &key, Point centre) {
    if (!EllipseShape::IsKept(key))
        return FillEllipseByEdges(canvas, key, centre);
    if (!IsEmpty(canvas.Plane))
        FillSpans(canvas, EllipseShape::Of(key).Spans(centre));
}

} // namespace Drawing

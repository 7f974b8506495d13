#include "Drawing/Ellipse.h"

#include <stdexcept>

#include "Drawing/EllipseOutline.h"
#include "Drawing/NearEllipse.h"
#include "Drawing/ThickLine.h"
#include "Drawing/ThickOutline.h"
#include "Drawing/ThinLine.h"

namespace Drawing {
namespace {

/// Lines from this on cover each other so often that it is worth to look what is covered.
constexpr std::int32_t GreatThickness = 48;

/// Thin outlines: addresses in the memory of a plane with common steps, or positions in the image.
Region ThinRegion(const DrawnPlane &plane, const std::optional<Lattice> &lattice) {
    if (lattice)
        return {{static_cast<double>(lattice->XStep),
                 static_cast<double>(lattice->YStep),
                 {{static_cast<double>(lattice->Lowest), static_cast<double>(lattice->Highest)}}}};
    return {{1, 0, {{0, static_cast<double>(plane.Width)}}}, {0, 1, {{0, static_cast<double>(plane.Height)}}}};
}

/// A thick line reaches its thickness beyond its ends at most.
Region ThickRegion(const DrawnPlane &plane, std::int32_t thickness) {
    const double reach = 2.0 * thickness;
    return {{1, 0, {{-reach, static_cast<double>(plane.Width) + reach}}},
            {0, 1, {{-reach, static_cast<double>(plane.Height) + reach}}}};
}

bool HasAround(const DrawnPlane &plane, Point centre, std::int64_t reach) {
    return plane.Contains(centre.X - reach, centre.Y - reach) && plane.Contains(centre.X + reach, centre.Y + reach);
}

/// All pixels of a shape, the image reaching around all of them.
void WriteInside(const Canvas &canvas, const std::vector<EllipseShape::Offset> &pixels, Point centre) {
    const DrawnPlane &plane = canvas.Plane;
    const VPAEntry *column = plane.Table + centre.X, *row = plane.Table + centre.Y;
    WithWriter(canvas, [&](const auto &write) {
        for (const EllipseShape::Offset &pixel : pixels)
            write(plane.Base + column[pixel.X].XEntry + row[pixel.Y].YEntry);
    });
}

void DrawThickShape(const Canvas &canvas, EllipseShape &shape, Point centre, std::int32_t thickness) {
    if (HasSeparatePixels(canvas)) {
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
    if (thickness > 1) {
        const Region region = ThickRegion(canvas.Plane, thickness);
        if (thickness >= GreatThickness && HasSeparatePixels(canvas))
            return DrawThickOutline(canvas, outline, region, thickness);
        // Once a line has written the whole image, all others write the same again.
        return outline.ForEachEdge(region,
                                   [&](Point from, Point to) { return !DrawThickLine(canvas, from, to, thickness); });
    }
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
    if (!EllipseShape::IsKept(key) || thickness >= GreatThickness)
        return DrawEllipseByEdges(canvas, key, centre, thickness);
    if (IsEmpty(canvas.Plane))
        return;
    if (thickness > 1)
        return DrawThickShape(canvas, EllipseShape::Of(key), centre, thickness);
    EllipseShape *const shape = EllipseShape::OfRepeated(key);
    if (shape != nullptr && HasAround(canvas.Plane, centre, shape->Reach()))
        WriteInside(canvas, shape->Pixels(), centre);
    else if (!DrawNearOutline(canvas, NearCorners(FormOf(key)), centre))
        DrawEllipseByEdges(canvas, key, centre, thickness);
}

void FillEllipse(const Canvas &canvas, const EllipseKey &key, Point centre) {
    if (!EllipseShape::IsKept(key))
        return FillEllipseByEdges(canvas, key, centre);
    if (IsEmpty(canvas.Plane))
        return;
    if (EllipseShape *const shape = EllipseShape::OfRepeated(key))
        FillSpans(canvas, shape->Spans(centre));
    else
        FillNearEllipse(canvas, NearCorners(FormOf(key)), centre);
}

} // namespace Drawing

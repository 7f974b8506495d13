/* The drawing functions once more, as plainly as they can be told: pixel by pixel, on a copy of all the memory that
 * an image and the guard bytes around it take. Every byte of the copy has to come out as that of the image. */
#ifndef ORV_TESTS_DRAWING_MODEL_H
#define ORV_TESTS_DRAWING_MODEL_H

#include "Matrices.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

#include <bit>
#include <cmath>
#include <limits>

namespace TestSupport {

/// Bytes that drawing takes for a pixel.
inline std::size_t StorageOf(TDataType type) {
    const TDataType bits = type & DataTypeBitsMask;
    return bits <= 8 ? 1 : bits <= 16 ? 2 : bits <= 32 ? 4 : 8;
}

/// What drawing makes of a value that is a number, in the low bytes.
inline std::uint64_t WordFor(double value, TDataType type) {
    const auto bits = static_cast<int>(type & DataTypeBitsMask);
    if ((type & DataTypeFloat) != 0 && bits == 64)
        return std::bit_cast<std::uint64_t>(value);
    if ((type & DataTypeFloat) != 0)
        return std::bit_cast<std::uint32_t>(
            static_cast<float>(std::clamp(value, -3.4028234663852886e38, 3.4028234663852886e38)));
    const long double exact = value; // holds every limit of 64 bits exactly
    if ((type & DataTypeSigned) != 0) {
        const long double limit = std::ldexp(1.0L, bits - 1) - 1.0L;
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::clamp(exact, -limit, limit)));
    }
    return static_cast<std::uint64_t>(std::clamp(exact, 0.0L, std::ldexp(1.0L, bits) - 1.0L));
}

struct Ink {
    double Value;
    std::uint32_t Mode;
};

/// One plane, with its pixels in a copy of the image's memory.
class ModelPlane {
public:
    ModelPlane(void *image, std::intptr_t plane, const std::uint8_t *original, PlaneBytes &memoryCopy)
        : size(SizeOf(image)), type(TypeOf(image, plane)), bytes(static_cast<std::intptr_t>(StorageOf(type))),
          memory(memoryCopy) {
        const PlaneAccess access = AccessOf(image, plane);
        const auto base = static_cast<std::intptr_t>(reinterpret_cast<std::uintptr_t>(access.Base) -
                                                     reinterpret_cast<std::uintptr_t>(original));
        for (std::intptr_t x = 0; x < size.Width; ++x)
            columns.push_back(base + access.Table[x].XEntry);
        for (std::intptr_t y = 0; y < size.Height; ++y)
            rows.push_back(access.Table[y].YEntry);
        xStep = StepOf(columns);
        yStep = StepOf(rows);
        if (columns.empty() || rows.empty())
            return;
        lowest = *std::min_element(columns.begin(), columns.end()) + *std::min_element(rows.begin(), rows.end());
        end = *std::max_element(columns.begin(), columns.end()) + *std::max_element(rows.begin(), rows.end()) + bytes;
    }

    std::intptr_t Width() const { return size.Width; }
    std::intptr_t Height() const { return size.Height; }
    TDataType Type() const { return type; }
    /// All columns and all rows are evenly spaced.
    bool IsLinear() const { return xStep != 0 && yStep != 0; }
    std::intptr_t XStep() const { return xStep; }
    std::intptr_t YStep() const { return yStep; }
    /// Where the pixels begin, and the last place where one can.
    std::intptr_t Lowest() const { return lowest; }
    std::intptr_t Highest() const { return end - bytes; }
    std::intptr_t First() const { return columns[0] + rows[0]; }
    bool Inside(std::int64_t x, std::int64_t y) const {
        return x >= 0 && x < size.Width && y >= 0 && y < size.Height;
    }
    std::intptr_t Place(std::int64_t x, std::int64_t y) const {
        return columns[static_cast<std::size_t>(x)] + rows[static_cast<std::size_t>(y)];
    }
    std::uint64_t Read(std::int64_t x, std::int64_t y) const {
        std::uint64_t word = 0;
        std::memcpy(&word, memory.data() + Place(x, y), static_cast<std::size_t>(CountAt(Place(x, y))));
        return word;
    }

    void WriteAt(std::intptr_t place, const Ink &ink) {
        const std::uint64_t word = WordFor(ink.Value, type);
        for (std::intptr_t i = 0; i < CountAt(place); ++i) {
            auto &byte = memory[static_cast<std::size_t>(place + i)];
            const auto part = static_cast<std::uint8_t>(word >> (8 * i));
            if (ink.Mode == 0 || (type & DataTypeFloat) != 0)
                byte = part;
            else
                byte = static_cast<std::uint8_t>(ink.Mode == 1 ? byte & part : byte | part);
        }
    }
    void WriteWord(std::intptr_t place, std::uint64_t word) {
        std::memcpy(memory.data() + place, &word, static_cast<std::size_t>(CountAt(place)));
    }
    /// A pixel of a thin line: evenly spaced planes ask only whether its address is one of theirs.
    void PlotThin(std::int64_t x, std::int64_t y, const Ink &ink) {
        if (!IsLinear()) {
            if (Inside(x, y))
                WriteAt(Place(x, y), ink);
            return;
        }
        const __int128_t place = First() + static_cast<__int128_t>(x) * xStep + static_cast<__int128_t>(y) * yStep;
        if (place >= lowest && place + bytes <= end)
            WriteAt(static_cast<std::intptr_t>(place), ink);
    }

private:
    /// The bytes that a pixel is stored in; the highest one has only as many as its bits need, since what lies behind
    /// it may be nobody's.
    std::intptr_t CountAt(std::intptr_t place) const {
        const auto own = static_cast<std::intptr_t>(((type & DataTypeBitsMask) + 7) / 8);
        return std::min(bytes, Highest() + own - place);
    }

    ImageSize size;
    TDataType type;
    std::intptr_t bytes;
    PlaneBytes &memory;
    std::vector<std::intptr_t> columns, rows;
    std::intptr_t xStep = 0, yStep = 0, lowest = 0, end = 0;

    static std::intptr_t StepOf(const std::vector<std::intptr_t> &entries) {
        if (entries.size() < 2)
            return 0;
        const std::intptr_t step = entries[1] - entries[0];
        for (std::size_t i = 1; i < entries.size(); ++i)
            if (entries[i] - entries[i - 1] != step)
                return 0;
        return step;
    }
};

struct ModelPoint {
    std::int64_t X, Y;
};

inline void ModelThinLine(ModelPlane &plane, ModelPoint from, ModelPoint to, const Ink &ink) {
    const std::int64_t dx = std::abs(to.X - from.X), dy = std::abs(to.Y - from.Y);
    const std::int64_t sx = to.X > from.X ? 1 : -1, sy = to.Y > from.Y ? 1 : -1;
    std::int64_t error = dx - dy;
    ModelPoint at = from;
    do {
        plane.PlotThin(at.X, at.Y, ink);
        const std::int64_t twice = 2 * error;
        if (twice > -dy) {
            at.X += sx;
            error -= dy;
        }
        if (twice < dx) {
            error += dx;
            at.Y += sy;
        }
    } while (at.X != to.X || at.Y != to.Y);
}

/// Toward zero; what is no number becomes the lowest 32-bit integer.
inline std::int64_t ModelTruncate(double value) {
    return std::isfinite(value) && std::abs(value) < 9e18 ? static_cast<std::int64_t>(value)
                                                          : std::numeric_limits<std::int32_t>::min();
}

/// The outermost crossings of a row with the edges of a polygon.
struct ModelSpan {
    std::int64_t Left = std::numeric_limits<std::int64_t>::max();
    std::int64_t Right = std::numeric_limits<std::int64_t>::min();
    void Cut(std::int64_t y, ModelPoint current, ModelPoint previous) {
        if (current.Y == previous.Y || y < std::min(current.Y, previous.Y) || y > std::max(current.Y, previous.Y))
            return;
        const double term = static_cast<double>(y - current.Y) / static_cast<double>(previous.Y - current.Y) *
                            static_cast<double>(previous.X - current.X);
        const std::int64_t x = current.X + ModelTruncate(term + (term < 0 ? -0.5 : 0.5));
        Left = std::min(Left, x);
        Right = std::max(Right, x);
    }
    void Write(ModelPlane &plane, std::int64_t y, const Ink &ink) const {
        if (Left > Right || Right <= 0 || Left >= plane.Width())
            return;
        for (std::int64_t x = std::max<std::int64_t>(Left, 0); x <= std::min<std::int64_t>(Right, plane.Width() - 1);
             ++x)
            plane.WriteAt(plane.Place(x, y), ink);
    }
};

inline void ModelPolygon(ModelPlane &plane, const std::vector<ModelPoint> &points, const Ink &ink) {
    std::int64_t top = points[0].Y, bottom = points[0].Y;
    for (const auto &point : points) {
        top = std::min(top, point.Y);
        bottom = std::max(bottom, point.Y);
    }
    if (bottom == 0)
        return;
    for (std::int64_t y = std::max<std::int64_t>(top, 0); y < std::min<std::int64_t>(bottom + 1, plane.Height());
         ++y) {
        ModelSpan span;
        for (std::size_t i = 0; i < points.size(); ++i)
            span.Cut(y, points[i], points[(i + points.size() - 1) % points.size()]);
        span.Write(plane, y, ink);
    }
}

inline void ModelThickLine(ModelPlane &plane, ModelPoint from, ModelPoint to, std::int64_t thickness,
                           const Ink &ink) {
    const auto t = static_cast<double>(thickness);
    const double ax = static_cast<double>(from.X) + 0.5, ay = static_cast<double>(from.Y) + 0.5;
    const double dx = static_cast<double>(to.X) + 0.5 - ax, dy = static_cast<double>(to.Y) + 0.5 - ay;
    const double length = std::sqrt(dx * dx + dy * dy);
    const double ux = dx / length, uy = dy / length;
    const double px = ax - 0.5 * t * ux + 0.5 * (t - 1) * uy, py = ay - 0.5 * t * uy - 0.5 * (t - 1) * ux;
    const double qx = px + (length + t) * ux, qy = py + (length + t) * uy;
    const double wx = -(t - 1) * uy, wy = (t - 1) * ux;
    const auto corner = [](double x, double y) { return ModelPoint{ModelTruncate(x), ModelTruncate(y)}; };
    ModelPolygon(plane, {corner(px, py), corner(qx, qy), corner(qx + wx, qy + wy), corner(px + wx, py + wy)}, ink);
}

inline void ModelLine(ModelPlane &plane, ModelPoint from, ModelPoint to, std::int64_t thickness, const Ink &ink) {
    if (thickness == 1)
        ModelThinLine(plane, from, to, ink);
    else
        ModelThickLine(plane, from, to, thickness, ink);
}

/// The corners of the polygon that stands for an ellipse, one after the other.
class ModelEllipse {
public:
    static constexpr double FullTurn = 2 * 3.141592653589793;

    ModelEllipse(ModelPoint ellipseCentre, std::int64_t radiusA, std::int64_t radiusB, double rotationRadians)
        : centre(ellipseCentre), a(static_cast<double>(radiusA)), b(static_cast<double>(radiusB)),
          rotation(rotationRadians), step(std::max(std::atan(2 / a), std::atan(2 / b))) {
        RotationMatrix(&matrix, rotation * 180.0 / 3.141592653589793);
    }
    double Step() const { return step; }
    ModelPoint FirstPoint() const { return {Rounded(a * matrix.A11) + centre.X, Rounded(a * matrix.A21) + centre.Y}; }
    ModelPoint PointAt(double angle) const {
        double x = std::round(a * std::cos(angle)), y = std::round(b * std::sin(angle));
        if (rotation != 0) {
            const double turnedX = std::round(matrix.A11 * x + matrix.A12 * y);
            y = std::round(matrix.A21 * x + matrix.A22 * y);
            x = turnedX;
        }
        return {Rounded(x) + centre.X, Rounded(y) + centre.Y};
    }
    std::vector<ModelPoint> Points() const {
        std::vector<ModelPoint> points{FirstPoint()};
        for (double angle = step; angle < FullTurn; angle += step)
            points.push_back(PointAt(angle));
        return points;
    }
    double A() const { return a; }
    double B() const { return b; }
    const TMatrix &Matrix() const { return matrix; }

private:
    ModelPoint centre;
    double a, b, rotation, step;
    TMatrix matrix{};

    static std::int64_t Rounded(double value) { return ModelTruncate(std::round(value)); }
};

inline void ModelEllipseOutline(ModelPlane &plane, const ModelEllipse &ellipse, std::int64_t thickness,
                                const Ink &ink) {
    auto points = ellipse.Points();
    points.push_back(points[0]);
    for (std::size_t i = 1; i < points.size(); ++i)
        ModelLine(plane, points[i - 1], points[i], thickness, ink);
}

} // namespace TestSupport

#endif

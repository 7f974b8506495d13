/* Rings unrolled and rolled up the slow way: one pixel after the other, each step in plain doubles, sampling through
 * the tables. The square around a ring is walked by the model of the walk. */
#ifndef ORV_TESTS_POLAR_MODEL_H
#define ORV_TESTS_POLAR_MODEL_H

#include "PolarTransformations.h"
#include "Scan/MappingModel.h"
#include "Scan/WalkModel.h"

#include <numbers>
#include <optional>

namespace PolarModel {

using namespace MappingModel;

inline constexpr double Pi = std::numbers::pi;
inline constexpr double FullCircle = 2.0 * Pi;

/// What a pixel without a source gets.
template <class T>
constexpr T OutsideValue() {
    if constexpr (sizeof(T) == 1)
        return static_cast<T>(0x81);
    else if constexpr (sizeof(T) == 2)
        return T{0x7FFF};
    else if constexpr (std::is_unsigned_v<T>)
        return std::numeric_limits<T>::max() / 2;
    else
        return T{0};
}

/// Toward zero; nothing for what is not finite or does not fit 32 bits.
inline std::optional<std::int32_t> Truncated(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0))
        return std::nullopt;
    return static_cast<std::int32_t>(value);
}

inline bool AnyOverlay(void *image) {
    for (std::intptr_t plane = 0; plane < SizeOf(image).Planes; ++plane)
        if (const TDataType type = TypeOf(image, plane); type != DataTypeNone && (type & DataTypeOverlay) != 0)
            return true;
    return false;
}

/// Samples one plane between its four neighbours.
template <class T>
class Sampler {
public:
    Sampler(void *image, std::intptr_t plane)
        : access(AccessOf(image, plane)), size(SizeOf(image)), overlay(AnyOverlay(image)) {}

    T At(double x, double y) const { return sizeof(T) <= 2 ? InSixteenths(16.0 * x, 16.0 * y) : InDoubles(x, y); }

private:
    T InDoubles(double x, double y) const {
        const auto ix = Truncated(x), iy = Truncated(y);
        if (!ix || !iy || IsOutside(*ix, *iy))
            return OutsideValue<T>();
        const double fx = x - *ix, fy = y - *iy;
        const auto p00 = Real(*ix, *iy), p10 = Real(*ix + 1, *iy), p01 = Real(*ix, *iy + 1),
                   p11 = Real(*ix + 1, *iy + 1);
        const double s =
            p00 * (1.0 - fx) * (1.0 - fy) + p10 * fx * (1.0 - fy) + p01 * (1.0 - fx) * fy + p11 * fx * fy;
        return WithOverlay(CutTo<T>(std::is_integral_v<T> ? s + 0.5 : s), *ix, *iy);
    }

    T InSixteenths(double x, double y) const {
        const auto sx = Truncated(x), sy = Truncated(y);
        if (!sx || !sy || IsOutside(*sx >> 4, *sy >> 4))
            return OutsideValue<T>();
        const std::int32_t ix = *sx >> 4, fx = *sx & 15, iy = *sy >> 4, fy = *sy & 15;
        const auto p00 = Whole(ix, iy), p10 = Whole(ix + 1, iy), p01 = Whole(ix, iy + 1), p11 = Whole(ix + 1, iy + 1);
        const std::int32_t s = (p00 * (16 - fx) + p10 * fx) * (16 - fy) + p01 * (16 - fx) * fy + p11 * fx * fy;
        return WithOverlay(static_cast<T>((s + 8) >> 8), ix, iy);
    }

    bool IsOutside(std::int32_t ix, std::int32_t iy) const {
        return ix < 0 || ix >= size.Width || iy < 0 || iy >= size.Height;
    }
    T Pixel(std::intptr_t x, std::intptr_t y) const {
        T pixel;
        std::memcpy(&pixel, access.At(x, y), sizeof pixel);
        return pixel;
    }
    double Real(std::intptr_t x, std::intptr_t y) const { return static_cast<double>(Pixel(x, y)); }
    std::int32_t Whole(std::intptr_t x, std::intptr_t y) const { return static_cast<std::int32_t>(Pixel(x, y)); }
    T WithOverlay(T result, std::intptr_t ix, std::intptr_t iy) const {
        if constexpr (std::is_integral_v<T>)
            if (overlay)
                return static_cast<T>((result & ~T{1}) | (Pixel(ix, iy) & T{1}));
        return result;
    }

    PlaneAccess access;
    ImageSize size;
    bool overlay;
};

/// The arguments of CreatePolarImageEx behind the two pointers.
struct Ring {
    double CentreX, CentreY, Start, Range, Inner, Outer;
};
inline void PrintTo(const Ring &ring, std::ostream *out) {
    *out << "centre " << ring.CentreX << ", " << ring.CentreY << ", start " << ring.Start << ", range " << ring.Range
         << ", radii " << ring.Inner << " to " << ring.Outer;
}
inline bool Unroll(void *image, void **out, const Ring &ring) {
    return CreatePolarImageEx(image, out, ring.CentreX, ring.CentreY, ring.Start, ring.Range, ring.Inner, ring.Outer);
}

struct Extent {
    std::intptr_t Width, Height;
};
/// The ring must be of a size that 32 bits hold.
inline Extent UnrolledSize(const Ring &ring) {
    const double circumference = (ring.Inner + ring.Outer) * Pi;
    return {Truncated(std::floor(circumference * ring.Range / 360.0 + 0.5)).value(),
            Truncated(std::floor(ring.Outer - ring.Inner + 1.0 + 0.5 + 0.5)).value()};
}

template <class T>
PlaneBytes UnrolledPlane(void *image, std::intptr_t plane, const Ring &ring) {
    const Sampler<T> source(image, plane);
    const double halfCircumference = (ring.Inner + ring.Outer) * Pi / 2.0;
    const double start = ring.Start * Pi / 180.0;
    const auto [width, height] = UnrolledSize(ring);
    std::vector<T> pixels;
    for (std::intptr_t y = 0; y < height; ++y)
        for (std::intptr_t x = 0; x < width; ++x) {
            const double radius = ring.Outer - static_cast<double>(y);
            const double theta = static_cast<double>(x) * Pi / halfCircumference + start;
            double sine = 0, cosine = 0;
            ::sincos(theta, &sine, &cosine);
            pixels.push_back(source.At(radius * cosine + ring.CentreX, radius * sine + ring.CentreY));
        }
    return BytesOf(pixels);
}

/// The planes of the unrolled image. All planes must have one of the ten pixel types.
inline std::vector<PlaneBytes> Unrolled(void *image, const Ring &ring) {
    std::vector<PlaneBytes> planes;
    for (std::intptr_t plane = 0; plane < SizeOf(image).Planes; ++plane)
        ForPixelType(TypeOf(image, plane),
                     [&](auto zero) { planes.push_back(UnrolledPlane<decltype(zero)>(image, plane, ring)); });
    return planes;
}

/// Unrolls an image and compares size, types and every pixel with the model.
inline void ExpectUnrolledAsTold(void *image, const Ring &ring) {
    const auto expected = Unrolled(image, ring);
    const auto [width, height] = UnrolledSize(ring);
    Handle result;
    ASSERT_TRUE(Unroll(image, result.Out(), ring));
    ASSERT_EQ(SizeOf(result.Get()), (ImageSize{std::ssize(expected), width, height}));
    ASSERT_EQ(RefCount(result.Get()), 1u);
    for (std::size_t plane = 0; plane < expected.size(); ++plane) {
        const auto number = static_cast<std::intptr_t>(plane);
        ASSERT_NO_FATAL_FAILURE(ExpectPlane(result.Get(), number, TypeOf(image, number), expected[plane]));
    }
}

/// The arguments of InversePolarTransform behind the two images.
struct Roll {
    double CentreX, CentreY, Start, Inner;
};
inline void PrintTo(const Roll &roll, std::ostream *out) {
    *out << "centre " << roll.CentreX << ", " << roll.CentreY << ", start " << roll.Start << ", inner radius "
         << roll.Inner;
}
inline bool RollUp(void *polar, void *target, const Roll &roll) {
    return InversePolarTransform(polar, target, roll.CentreX, roll.CentreY, roll.Start, roll.Inner);
}

struct Position {
    double X, Y;
};

/// Where the pixels of a target lie in an unrolled image. The start angle must be within some turns.
class RolledRing {
public:
    RolledRing(const ImageSize &polar, const Roll &arguments) : roll(arguments) {
        startAngle = -Pi / 180.0 * roll.Start;
        while (startAngle < 0)
            startAngle += FullCircle;
        while (startAngle > FullCircle)
            startAngle -= FullCircle;
        outer = static_cast<double>(polar.Height - 2) + roll.Inner;
        extent = std::min(FullCircle, 2.0 * static_cast<double>(polar.Width + 1) / (roll.Inner + outer));
        columnScale = (std::fabs(roll.Inner) + std::fabs(outer)) * Pi * extent / FullCircle;
        rowSpan = outer - roll.Inner + 1.0;
    }

    TArea Square() const {
        const double left = roll.CentreX - outer - 1.0, top = roll.CentreY - outer - 1.0;
        return {left, top, left, roll.CentreY + outer + 1.0, roll.CentreX + outer + 1.0, top};
    }

    /// Nothing for a pixel that stays as it is.
    std::optional<Position> PositionOf(std::int32_t x, std::int32_t y) const {
        const double dx = x - roll.CentreX, dy = y - roll.CentreY, q = dx * dx + dy * dy;
        if (q < roll.Inner * roll.Inner || q > outer * outer)
            return std::nullopt;
        double theta = std::atan2(dy, dx);
        if (theta < 0)
            theta += FullCircle;
        double phi = theta - startAngle;
        if (phi < 0) {
            phi += FullCircle;
            if (extent < FullCircle && phi > extent)
                return std::nullopt;
        }
        if (phi > FullCircle)
            phi -= FullCircle;
        return Position{phi / FullCircle * columnScale, rowSpan - (std::sqrt(q) - roll.Inner)};
    }

private:
    Roll roll;
    double startAngle, outer, extent, columnScale, rowSpan;
};

template <class T>
void RollUpPlaneByModel(void *polar, void *target, std::intptr_t plane, const Roll &roll) {
    const RolledRing ring(SizeOf(polar), roll);
    const Sampler<T> source(polar, plane);
    const PlaneAccess access = AccessOf(target, plane);
    const ImageSize size = SizeOf(target);
    WalkCalls calls;
    calls.Pixel = [&](std::int32_t x, std::int32_t y) {
        if (const auto position = ring.PositionOf(x, y)) {
            const T value = source.At(position->X, position->Y);
            std::memcpy(access.At(x, y), &value, sizeof value);
        }
        return true;
    };
    WalkModel(ring.Square(), 1000).Walk(RectangleOfImage(size.Width, size.Height), calls);
}

/// Writes into the target what InversePolarTransform is told to write. Planes of equal types must have one of the
/// ten pixel types.
inline void RollUpByModel(void *polar, void *target, const Roll &roll) {
    const std::intptr_t planes = std::min(SizeOf(polar).Planes, SizeOf(target).Planes);
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        if (TypeOf(polar, plane) == TypeOf(target, plane))
            ForPixelType(TypeOf(polar, plane),
                         [&](auto zero) { RollUpPlaneByModel<decltype(zero)>(polar, target, plane, roll); });
}

inline void ExpectEqualPlanes(void *image, void *twin) {
    ASSERT_EQ(SizeOf(image), SizeOf(twin));
    for (std::intptr_t plane = 0; plane < SizeOf(image).Planes; ++plane)
        ASSERT_NO_FATAL_FAILURE(ExpectPlane(image, plane, TypeOf(twin, plane), PixelBytes(twin, plane)));
}

/// Rolls up into an image and compares it with its twin, which the model writes.
inline void ExpectRolledUpAsTold(void *polar, void *target, void *twin, const Roll &roll) {
    RollUpByModel(polar, twin, roll);
    ASSERT_TRUE(RollUp(polar, target, roll));
    ASSERT_NO_FATAL_FAILURE(ExpectEqualPlanes(target, twin));
}

/// A double per pixel of one plane, told by its place.
template <class Value>
std::unique_ptr<FakeImage> RealImage(std::intptr_t width, std::intptr_t height, Value value) {
    std::vector<double> pixels;
    for (std::intptr_t y = 0; y < height; ++y)
        for (std::intptr_t x = 0; x < width; ++x)
            pixels.push_back(value(static_cast<double>(x), static_cast<double>(y)));
    return PlainImage(width, height, 0x240, {BytesOf(pixels)});
}

} // namespace PolarModel

#endif

#include "Drawing/EllipsePoints.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "Coordinates/Angle.h"
#include "Drawing/CornerRounding.h"
#include "Image/KernelLevel.h"

namespace Drawing {
namespace {

/// Half the angle between corners about two pixels apart on a circle of the radius.
double StepOf(double radius) {
    return radius == 0 ? Coordinates::Pi / 2 : std::atan(2 / radius);
}

Corner Turned(const EllipseForm &form, double x, double y) {
    return {std::round(form.Turn.A11 * x + form.Turn.A12 * y), std::round(form.Turn.A21 * x + form.Turn.A22 * y)};
}

/// Sine and cosine for a rest of at most an eighth of a turn, close to the last bits.
ORV_INLINE void Polynomials(const Lanes &rest, Lanes &sine, Lanes &cosine) {
    const Lanes square = rest * rest;
    sine = square * 1.58969099521155010221e-10 - 2.50507602534068634195e-08;
    sine = square * sine + 2.75573137070700676789e-06;
    sine = square * sine - 1.98412698298579493134e-04;
    sine = square * sine + 8.33333333332248946124e-03;
    sine = square * sine - 1.66666666666666324348e-01;
    sine = rest + rest * square * sine;
    cosine = square * -1.13596475577881948265e-11 + 2.08757232129817482790e-09;
    cosine = square * cosine - 2.75573143513906633035e-07;
    cosine = square * cosine + 2.48015872894767294178e-05;
    cosine = square * cosine - 1.38888888888741095749e-03;
    cosine = square * cosine + 4.16666666666666019037e-02;
    cosine = 1.0 - 0.5 * square + square * square * cosine;
}

/// For angles from 0 to a whole turn: the quarter turns are taken off, and change places and signs in the end.
ORV_INLINE void QuickTurn(const Lanes &angle, Lanes &sine, Lanes &cosine) {
    Lanes quarters = angle * (2 / Coordinates::Pi);
    RoundToEven(quarters);
    // A quarter turn as the sum of two doubles, the first of which has few enough bits for exact products.
    const Lanes rest = angle - quarters * 1.57079632673412561417 - quarters * 6.07710050650619224932e-11;
    Lanes first, second;
    Polynomials(rest, first, second);
    const Flags isOne = quarters == 1.0, isTwo = quarters == 2.0, isThree = quarters == 3.0;
    Select(sine, isOne | isThree, second, first);
    Select(cosine, isOne | isThree, first, second);
    Select(sine, isTwo | isThree, -sine, sine);
    Select(cosine, isOne | isTwo, -cosine, cosine);
}

/// Far more than the quick functions are ever off, far less than most products are from a half.
constexpr double QuickError = 1e-13;

/// A register of corners; not a number where one is in doubt.
ORV_INLINE void QuickCorners(const EllipseForm &form, const double *angles, Lanes &x, Lanes &y) {
    Lanes angle, sine, cosine;
    Image::LoadVector(angle, reinterpret_cast<const char *>(angles));
    QuickTurn(angle, sine, cosine);
    x = form.A * cosine;
    y = form.B * sine;
    Flags doubts = {};
    RoundOrDoubt(x, std::abs(form.A) * QuickError + QuickError, doubts);
    RoundOrDoubt(y, std::abs(form.B) * QuickError + QuickError, doubts);
    if (form.IsTurned)
        TurnOrDoubt(form, x, y, doubts);
    x = reinterpret_cast<Lanes>(reinterpret_cast<Flags>(x) | doubts);
}

} // namespace

bool EllipseForm::HasDirection() const {
    return !IsTurned || std::isfinite(Turn.A11);
}

EllipseForm EllipseFormOf(std::int32_t radiusA, std::int32_t radiusB, double rotationRadians) {
    if (radiusA < 0 && radiusB < 0)
        throw std::invalid_argument("Radii must not be negative");
    EllipseForm form = {};
    form.A = radiusA;
    form.B = radiusB;
    form.Step = radiusA == radiusB ? StepOf(form.A) : std::max(StepOf(form.A), StepOf(form.B));
    form.IsTurned = rotationRadians != 0;
    form.Turn = {1, 0, 0, 1};
    if (form.IsTurned)
        RotationMatrix(&form.Turn, rotationRadians * Coordinates::HalfTurnDegrees / Coordinates::Pi);
    return form;
}

Corner FirstCorner(const EllipseForm &form) {
    return {std::round(form.A * form.Turn.A11), std::round(form.A * form.Turn.A21)};
}

Corner CornerAt(const EllipseForm &form, double angle) {
    const double x = std::round(form.A * std::cos(angle)), y = std::round(form.B * std::sin(angle));
    return form.IsTurned ? Turned(form, x, y) : Corner{x, y};
}

void CornersAt(const EllipseForm &form, const CornerAngles &angles, std::size_t count, CornerColumns &corners) {
    static_assert(CornerBlock % LaneCount == 0);
    Image::RunAtLevel([&, count]() ORV_INLINE_LAMBDA {
        for (std::size_t i = 0; i < count; i += LaneCount) {
            Lanes x, y;
            QuickCorners(form, angles.data() + i, x, y);
            Image::StoreVector(reinterpret_cast<char *>(corners.X.data() + i), x);
            Image::StoreVector(reinterpret_cast<char *>(corners.Y.data() + i), y);
        }
    });
    for (std::size_t i = 0; i < count; ++i)
        if (std::isnan(corners.X[i])) {
            const Corner exact = CornerAt(form, angles[i]);
            corners.X[i] = exact.X;
            corners.Y[i] = exact.Y;
        }
}

} // namespace Drawing

// The corners of the polygon that stands for an ellipse, around the centre (0, 0).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "Matrices.h"

namespace Drawing {

/// The form of an ellipse, and how its corners follow each other.
struct EllipseForm {
    double A, B;
    double Step; ///< radians from corner to corner
    bool IsTurned;
    TMatrix Turn;

    /// False for a rotation that is not a number or infinite: it has no direction.
    bool HasDirection() const;
};
/// Throws std::invalid_argument "Radii must not be negative" when both are.
EllipseForm EllipseFormOf(std::int32_t radiusA, std::int32_t radiusB, double rotationRadians);

/// Whole numbers.
struct Corner {
    double X, Y;
};
/// The corner that an outline begins and ends with.
Corner FirstCorner(const EllipseForm &form);
/// The corner at an angle, as it is defined.
Corner CornerAt(const EllipseForm &form, double angle);

/// The corners at some angles between 0 and a whole turn, the same as CornerAt gives, but quicker.
/// Rotations without a direction are left to CornerAt.
constexpr std::size_t CornerBlock = 128;
using CornerAngles = std::array<double, CornerBlock>;
struct CornerColumns {
    std::array<double, CornerBlock> X, Y;
};
void CornersAt(const EllipseForm &form, const CornerAngles &angles, std::size_t count, CornerColumns &corners);

} // namespace Drawing

// All corners of an ellipse that is not too large, at once and without a block of memory.
#pragma once

#include <array>
#include <cstdint>

#include "Drawing/EllipsePoints.h"

namespace Drawing {

struct NearCorners {
    /// The greatest radius.
    static constexpr std::int32_t GreatestRadius = 2048;
    static constexpr std::size_t Most = 6464; ///< of an ellipse with both radii the greatest, and some registers

    /// For radii from 0 to the greatest, and rotations with a direction.
    explicit NearCorners(const EllipseForm &form);

    /// Corner Count is the first one again; columns and rows from the centre.
    std::int64_t Count;
    /// No corner is farther from the centre, in either direction.
    std::int32_t Reach;
    /// True for an ellipse that is not turned and has rows enough, but not more than columns: consecutive corners are
    /// at most two rows apart.
    bool HasQuarters;
    /// The last corners before a quarter of a turn, half a turn and three quarters.
    std::array<std::int64_t, 3> Quarters;
    std::array<std::int32_t, Most> X, Y;
};

} // namespace Drawing

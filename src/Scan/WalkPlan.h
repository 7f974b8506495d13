// The geometry of a walk over a parallelogram, worked out once: where lines begin and how samples follow each other.
// Positions are 16.16 fixed-point numbers in 64 bits.
#pragma once

#include <cstdint>
#include <optional>

#include "ORVTypes.h"

namespace Scan {

/// Samples are pixels inside this rectangle, edges included.
struct PixelBounds {
    std::int32_t Left;
    std::int32_t Top;
    std::int32_t Right;
    std::int32_t Bottom;

    bool Contains(std::int32_t x, std::int32_t y) const { return x >= Left && x <= Right && y >= Top && y <= Bottom; }
};

/// The whole image as bounds.
PixelBounds BoundsOf(std::intptr_t width, std::intptr_t height);

struct FixedPoint {
    std::int64_t X;
    std::int64_t Y;

    bool operator==(const FixedPoint &) const = default;
};

/// a + b * factor, wrapping.
inline std::int64_t Advance(std::int64_t a, std::int64_t b, std::int64_t factor = 1) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) +
                                     static_cast<std::uint64_t>(b) * static_cast<std::uint64_t>(factor));
}

/// The pixel coordinate of a position.
inline std::int32_t PixelOf(std::int64_t position) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(position) >> 16));
}

struct WalkPlan {
    FixedPoint Start;      ///< of line 0, before it is aligned
    FixedPoint SampleStep; ///< never 0
    FixedPoint LineStep;   ///< never 0
    std::int64_t Samples;  ///< of each line, at least 1
    std::int64_t Lines;    ///< none when below 1
    bool IsYMajor;         ///< the axis whose pixel grid lines are aligned to

    /// The first sample of a line, aligned.
    FixedPoint LineStart(std::int64_t line) const;
};

/// density from 1 to 1000. Nothing for an area that is out of range: one that the test of its bounding rectangle
/// refuses, or with a corner that no position can hold.
std::optional<WalkPlan> PlanWalk(const TArea &area, std::int64_t density);

} // namespace Scan

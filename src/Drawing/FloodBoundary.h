// What bounds a fill: the test of a pixel against the value and tolerance of a call.
#pragma once

#include <type_traits>

#include "Image/VectorRegisters.h"

namespace Drawing::FloodFill {

class floodfill_boundary_logic_base {
public:
    virtual ~floodfill_boundary_logic_base() = default;
};

class floodfill_boundary_logic_monochrome final : public floodfill_boundary_logic_base {
public:
    floodfill_boundary_logic_monochrome(double value, double tolerance) : Value(value), Tolerance(tolerance) {}

    // Required: both differences are the ones that are not positive. So with a positive tolerance every number
    // bounds, with a negative one what lies as far from the value or farther, but not the value itself.
    ORV_INLINE bool IsBoundary(double pixel) const {
        if (Tolerance == 0.0)
            return pixel == Value;
        if (pixel > Value)
            return Tolerance >= Value - pixel;
        return Tolerance >= pixel - Value;
    }

    double Value;
    double Tolerance;
};

/// The test for any value and tolerance.
struct AnyBoundary {
    floodfill_boundary_logic_monochrome Logic;

    template <class T>
    ORV_INLINE bool operator()(T pixel) const {
        return Logic.IsBoundary(static_cast<double>(pixel));
    }
};

/// The test for one pixel value and no tolerance.
template <class T>
struct EqualBoundary {
    T Pixel;

    ORV_INLINE bool operator()(T pixel) const { return pixel == Pixel; }
};

/// True when a double tells all pixels of the type apart: two pixels are equal when their doubles are.
template <class T>
inline constexpr bool IsExactInDouble = std::is_floating_point_v<T> || sizeof(T) <= 4;

} // namespace Drawing::FloodFill

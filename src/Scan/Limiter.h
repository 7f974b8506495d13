// The one limiter of numbers to a range.
#pragma once

#include <stdexcept>
#include <type_traits>

namespace Scan {

/// value, or the limit that it lies beyond; NaN stays NaN. Throws for limits that cross.
template <class T>
constexpr T LimitTo(T value, std::type_identity_t<T> lower, std::type_identity_t<T> upper) {
    if (lower > upper)
        throw std::logic_error("Lower limit higher than upper limit!");
    return value < lower ? lower : value > upper ? upper : value;
}

} // namespace Scan

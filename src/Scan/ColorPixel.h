// The pixel of a sum of products: limited or reflected, rounded, converted.
#pragma once

#include <limits>
#include <type_traits>

#include "Image/VectorRegisters.h"
#include "Scan/Limiter.h"
#include "TruncateTo.h"

namespace Scan {

template <class T>
inline constexpr double LowerLimit = static_cast<double>(std::numeric_limits<T>::lowest());
/// Of 64-bit integers one above the range.
template <class T>
inline constexpr double UpperLimit = static_cast<double>(std::numeric_limits<T>::max());

/// FitsInt promises that the limited or reflected sum fits in 32 bits, and is a number.
template <class T, bool Reflects, bool FitsInt>
ORV_INLINE T ColorPixel(double sum) {
    constexpr double lower = LowerLimit<T>;
    constexpr double upper = UpperLimit<T>;
    double value = sum;
    if constexpr (Reflects) {
        // Required: a reflected value is not limited again; its low bits are stored.
        const double twice = lower + lower;
        value = sum > upper ? upper : sum < lower ? twice - sum : sum;
    } else {
        value = LimitTo(sum, lower, upper);
    }
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else if constexpr (FitsInt)
        return static_cast<T>(static_cast<std::int32_t>(value + 0.5));
    else
        return orvBase::TruncateTo<T>(value + 0.5);
}

} // namespace Scan

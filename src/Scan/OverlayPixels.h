// Overlays stand in bit 0 of the pixels of integer planes. Pixels have their lowest byte first, so that this is bit 0
// of a pixel's first byte, whatever its width.
#pragma once

#include <type_traits>

#include "Scan/PixelType.h"

namespace Scan {

constexpr bool CanHoldOverlay(TDataType type) {
    return (type & DataTypeFloat) == 0 && PixelTypeOf(type) != PixelType::Unsupported;
}

/// Reported last by an operation that left out planes and did others: no failure.
inline constexpr std::uint32_t SomePlanesLeftOut = 1;

/// Runs operation.operator()<T>() with the unsigned type of a width of 1, 2, 4 or 8 bytes: a bit is the same bit in
/// signed pixels.
template <class Operation>
void ForPixelWidth(std::intptr_t bytes, Operation &&operation) {
    ForPixelType(static_cast<TDataType>(8 * bytes), [&]<class T>() {
        if constexpr (std::is_unsigned_v<T>)
            operation.template operator()<T>();
    });
}

} // namespace Scan

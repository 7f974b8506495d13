// The one conversion from double to an integer: toward zero, with a defined result for every double.
// A plain cast is undefined for values that do not fit; pixel results are promised for those as well.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

namespace orvBase {

/// Converts toward zero. A value that is not finite or does not fit gives the lowest integer of the width converted
/// to, 0x80000000 or 0x8000000000000000:
/// - 8 and 16 bits, and 32 bits signed: converted to 32 bits signed; bits above the type are dropped, no saturation.
/// - 64 bits signed, and 32 bits unsigned: converted to 64 bits signed; bits above the type are dropped.
/// - 64 bits unsigned: below 2^63 converted to 64 bits signed, so that -1.0 gives all bits set; from 2^63 on the
///   distance to 2^63 is converted and the top bit set.
template <class Integer>
[[nodiscard]] constexpr Integer TruncateTo(double value) noexcept {
    static_assert(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>);
    constexpr double twoTo63 = 9223372036854775808.0;
    if constexpr (sizeof(Integer) == 8 && std::is_unsigned_v<Integer>) {
        constexpr auto topBit = std::uint64_t{1} << 63;
        if (value >= twoTo63)
            return static_cast<Integer>(static_cast<std::uint64_t>(TruncateTo<std::int64_t>(value - twoTo63)) |
                                        topBit);
        return static_cast<Integer>(TruncateTo<std::int64_t>(value));
    } else if constexpr (sizeof(Integer) == 8) {
        const bool fits = value >= -twoTo63 && value < twoTo63;
        return fits ? static_cast<Integer>(value) : std::numeric_limits<Integer>::min();
    } else if constexpr (std::is_same_v<Integer, std::int32_t>) {
        const bool fits = value > -2147483649.0 && value < 2147483648.0;
        return fits ? static_cast<Integer>(value) : std::numeric_limits<Integer>::min();
    } else if constexpr (sizeof(Integer) == 4) {
        return static_cast<Integer>(TruncateTo<std::int64_t>(value));
    } else {
        return static_cast<Integer>(TruncateTo<std::int32_t>(value));
    }
}

} // namespace orvBase

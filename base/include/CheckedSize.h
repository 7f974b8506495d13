// Products and sums of sizes that notice an overflow. Every size that is made of numbers of a caller or a file goes
// through here before it is allocated or compared.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

namespace orvBase {

template <class T>
concept MachineWord = std::same_as<T, std::int64_t> || std::same_as<T, std::size_t>;

/// result = first * ... in the order given. False, with result untouched, when the product or one on the way to it
/// leaves the range of the word. A factor of 0 makes the product 0 whatever the others are.
template <MachineWord T, std::same_as<T>... Rest>
[[nodiscard]] constexpr bool CheckedProduct(T &result, T first, Rest... rest) noexcept {
    T product = first;
    if (first == 0 || (... || (rest == 0)))
        product = 0;
    else if ((... || __builtin_mul_overflow(product, rest, &product)))
        return false;
    result = product;
    return true;
}

/// The distance of a step from 0, also of the lowest one, which has no positive counterpart.
[[nodiscard]] constexpr std::size_t Magnitude(std::int64_t step) noexcept {
    const auto word = static_cast<std::size_t>(step);
    return step < 0 ? 0 - word : word;
}

/// result = first + ... in the order given. False, with result untouched, when the sum or one on the way to it leaves
/// the range of the word.
template <MachineWord T, std::same_as<T>... Rest>
[[nodiscard]] constexpr bool CheckedSum(T &result, T first, Rest... rest) noexcept {
    T sum = first;
    if ((... || __builtin_add_overflow(sum, rest, &sum)))
        return false;
    result = sum;
    return true;
}

} // namespace orvBase

// A pixel that may become a maximum, and the order in which candidates are taken.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace PixelList {

/// Columns and rows of a plane are counted in 32 bits here: a longer axis has no memory for its table.
template <class T>
struct MarkedPixel {
    std::uint32_t X;
    std::uint32_t Y;
    T Value;

    friend bool operator==(const MarkedPixel &, const MarkedPixel &) = default;
};

template <class T>
using MarkedPixels = std::vector<MarkedPixel<T>>;

/// Required: only what is above the lowest value of the type is a maximum.
template <class T>
inline constexpr T ValueBelowAll = std::numeric_limits<T>::lowest();

/// Unsigned numbers that stand in the opposite order of values. Both zeros have the same.
template <class T>
auto DescendingKey(T value) {
    if constexpr (std::is_floating_point_v<T>) {
        using Word = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
        constexpr Word sign = Word{1} << (8 * sizeof(Word) - 1);
        const auto bits = std::bit_cast<Word>(value + T{0});
        return static_cast<Word>((bits & sign) != 0 ? bits : ~bits & ~sign);
    } else {
        using Word = std::make_unsigned_t<T>;
        constexpr auto lowest = static_cast<Word>(std::numeric_limits<T>::lowest());
        return static_cast<Word>(~(static_cast<Word>(value) ^ lowest));
    }
}

/// Sorts by value, descending; equal values keep their order. No value may be NaN.
template <class T>
void SortStrongestFirst(MarkedPixels<T> &candidates) {
    constexpr std::size_t fewCandidates = 256; // below, clearing the counters takes longer than comparing
    constexpr std::size_t digits = sizeof(T);
    if (candidates.size() < fewCandidates) {
        std::stable_sort(candidates.begin(), candidates.end(),
                         [](const auto &a, const auto &b) { return a.Value > b.Value; });
        return;
    }
    const auto digitOf = [](const MarkedPixel<T> &candidate, std::size_t digit) {
        return static_cast<std::uint8_t>(DescendingKey(candidate.Value) >> (8 * digit));
    };
    std::array<std::array<std::size_t, 256>, digits> counts{};
    for (const auto &candidate : candidates)
        for (std::size_t digit = 0; digit < digits; ++digit)
            ++counts[digit][digitOf(candidate, digit)];
    MarkedPixels<T> sorted(candidates.size());
    for (std::size_t digit = 0; digit < digits; ++digit) {
        auto &places = counts[digit];
        if (places[digitOf(candidates[0], digit)] == candidates.size())
            continue; // all have the same
        std::size_t place = 0;
        for (std::size_t &count : places)
            place += std::exchange(count, place);
        for (const auto &candidate : candidates)
            sorted[places[digitOf(candidate, digit)]++] = candidate;
        candidates.swap(sorted);
    }
}

} // namespace PixelList

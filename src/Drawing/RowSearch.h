// The ends of runs in a row of pixels: near ones one by one, far ones by blocks.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "Image/KernelLevel.h"

namespace Drawing::FloodFill {

/// Pixels First to Last.
struct Run {
    std::intptr_t First;
    std::intptr_t Last;
};

/// Row gives its pixels one by one (Get(x)) and tells whether they are an array (IsArray).
template <class Row, class Boundary>
class RowSearch {
public:
    RowSearch(const Row &row, const Boundary &boundary, std::intptr_t width)
        : row_(row), boundary_(boundary), width_(width) {}

    ORV_INLINE bool IsBoundary(std::intptr_t x) const { return boundary_(row_.Get(x)); }
    /// The first pixel from x on that is no boundary, or end.
    ORV_INLINE std::intptr_t NextOpen(std::intptr_t x, std::intptr_t end) const { return Next<false>(x, end); }
    /// The run of pixels that are no boundaries around one of them.
    ORV_INLINE Run RunAround(std::intptr_t x) const { return {Previous(x) + 1, Next<true>(x, width_) - 1}; }

private:
    static constexpr std::intptr_t FewPixels = 16;
    static constexpr std::intptr_t BlockPixels = 64;
    static constexpr std::intptr_t LongBlock = 512;
    using Pixel = decltype(std::declval<const Row &>().Get(0));
    /// As wide as a pixel, so that the loops over a block fill the registers.
    using Index =
        std::conditional_t<sizeof(Pixel) == 1, std::uint8_t,
                           std::conditional_t<sizeof(Pixel) == 2, std::uint16_t,
                                              std::conditional_t<sizeof(Pixel) == 4, std::uint32_t, std::uint64_t>>>;

    /// The first pixel from x on that is a boundary or none, as wanted, or end.
    template <bool Wanted>
    ORV_INLINE std::intptr_t Next(std::intptr_t x, std::intptr_t end) const {
        const std::intptr_t near = std::min(end, x + FewPixels);
        for (; x < near; ++x)
            if (IsBoundary(x) == Wanted)
                return x;
        return x < end ? FarNext<Wanted>(x, end) : end;
    }
    /// The last boundary before x, or -1.
    ORV_INLINE std::intptr_t Previous(std::intptr_t x) const {
        const std::intptr_t near = std::max<std::intptr_t>(0, x - FewPixels);
        while (x > near)
            if (IsBoundary(--x))
                return x;
        return x > 0 ? FarPrevious(x) : -1;
    }

    /// Whether, where first and where last a block has a wanted pixel.
    template <bool Wanted, std::intptr_t Count>
    ORV_INLINE static bool IsIn(const Row &row, const Boundary &boundary, std::intptr_t x) {
        Index flags[BlockPixels] = {};
        for (std::intptr_t block = 0; block < Count; block += BlockPixels)
            for (std::intptr_t i = 0; i < BlockPixels; ++i)
                flags[i] =
                    static_cast<Index>(flags[i] | static_cast<Index>(boundary(row.Get(x + block + i)) == Wanted));
        // Wide words take fewer steps to add up.
        std::uint64_t words[BlockPixels * sizeof(Index) / 8], found = 0;
        static_assert(sizeof words == sizeof flags);
        std::memcpy(words, flags, sizeof flags);
        for (const std::uint64_t word : words)
            found |= word;
        return found != 0;
    }
    template <bool Wanted>
    ORV_INLINE static std::intptr_t FirstIn(const Row &row, const Boundary &boundary, std::intptr_t x) {
        Index first = BlockPixels;
        for (Index i = 0; i < BlockPixels; ++i)
            first = std::min(first, boundary(row.Get(x + static_cast<std::intptr_t>(i))) == Wanted
                                        ? i
                                        : static_cast<Index>(BlockPixels));
        return x + static_cast<std::intptr_t>(first);
    }
    ORV_INLINE static std::intptr_t LastIn(const Row &row, const Boundary &boundary, std::intptr_t x) {
        Index behind = 0;
        for (Index i = 0; i < BlockPixels; ++i)
            behind = std::max(behind, boundary(row.Get(x + static_cast<std::intptr_t>(i))) ? static_cast<Index>(i + 1)
                                                                                           : Index{0});
        return x + static_cast<std::intptr_t>(behind) - 1;
    }

    template <bool Wanted>
    std::intptr_t FarNext(std::intptr_t x, std::intptr_t end) const {
        if (!Row::IsArray || end - x < BlockPixels) {
            while (x < end && IsBoundary(x) != Wanted)
                ++x;
            return x;
        }
        const Row row = row_;
        const Boundary boundary = boundary_;
        std::intptr_t found = end;
        std::intptr_t *const result = &found;
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
            std::intptr_t at = x;
            while (end - at >= LongBlock && !IsIn<Wanted, LongBlock>(row, boundary, at))
                at += LongBlock;
            while (end - at >= BlockPixels && !IsIn<Wanted, BlockPixels>(row, boundary, at))
                at += BlockPixels;
            at = std::min(at, end - BlockPixels); // what is looked at twice has nothing
            *result = FirstIn<Wanted>(row, boundary, at);
        });
        return found;
    }
    std::intptr_t FarPrevious(std::intptr_t x) const {
        if (!Row::IsArray || x < BlockPixels) {
            while (x > 0)
                if (IsBoundary(--x))
                    return x;
            return -1;
        }
        const Row row = row_;
        const Boundary boundary = boundary_;
        std::intptr_t found = -1;
        std::intptr_t *const result = &found;
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
            std::intptr_t at = x;
            while (at >= LongBlock && !IsIn<true, LongBlock>(row, boundary, at - LongBlock))
                at -= LongBlock;
            while (at >= BlockPixels && !IsIn<true, BlockPixels>(row, boundary, at - BlockPixels))
                at -= BlockPixels;
            at = std::max(at - BlockPixels, std::intptr_t{0});
            *result = LastIn(row, boundary, at);
        });
        return found;
    }

    Row row_;
    Boundary boundary_;
    std::intptr_t width_;
};

} // namespace Drawing::FloodFill

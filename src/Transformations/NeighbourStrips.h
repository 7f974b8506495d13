// The four pixels around each position of a strip, and what they give for their weights.
#pragma once

#include <type_traits>

#include "Transformations/Strips.h"

namespace Transformations {

template <class Word>
ORV_INLINE std::uint32_t LoadWord(const char *address) {
    Word word;
    std::memcpy(&word, address, sizeof word);
    return word;
}

/// Where the positions of a strip come from: the columns' terms, and the row's with the rounding.
struct StripTerms {
    const std::int32_t *X;
    const std::int32_t *Y;
    std::uint32_t RowX;
    std::uint32_t RowY;

    ORV_INLINE std::int32_t PixelX(std::intptr_t i) const { return static_cast<std::int32_t>(SumX(i)) >> 8; }
    ORV_INLINE std::int32_t PixelY(std::intptr_t i) const { return static_cast<std::int32_t>(SumY(i)) >> 8; }
    /// The weights of the right and of the lower neighbour, in sixteenths.
    ORV_INLINE std::uint32_t WeightX(std::intptr_t i) const { return (SumX(i) >> 4) & 15; }
    ORV_INLINE std::uint32_t WeightY(std::intptr_t i) const { return (SumY(i) >> 4) & 15; }

private:
    ORV_INLINE std::uint32_t SumX(std::intptr_t i) const { return static_cast<std::uint32_t>(X[i]) + RowX; }
    ORV_INLINE std::uint32_t SumY(std::intptr_t i) const { return static_cast<std::uint32_t>(Y[i]) + RowY; }
};

/// The addresses of the four pixels of a position.
struct FourPixels {
    const char *P00, *P10, *P01, *P11;
};

template <class Pixel>
struct NeighbourStrip;

/// Bytes. All four stand in one word, and one multiplication weighs two of them.
template <class T>
struct ByteStrip {
    alignas(64) std::uint32_t Words[StripLength];

    /// The right neighbours stand right behind the left ones in memory.
    ORV_INLINE void CollectPairs(std::intptr_t i, const char *upper, const char *lower) {
        Words[i] = LoadWord<std::uint16_t>(upper) | LoadWord<std::uint16_t>(lower) << 16;
    }
    ORV_INLINE void CollectEach(std::intptr_t i, const FourPixels &at) {
        Words[i] = LoadWord<std::uint8_t>(at.P00) | LoadWord<std::uint8_t>(at.P10) << 8 |
                   LoadWord<std::uint8_t>(at.P01) << 16 | LoadWord<std::uint8_t>(at.P11) << 24;
    }
    ORV_INLINE void Weigh(const StripTerms &terms, std::intptr_t count, T *__restrict to) const {
        // Signed pixels are raised by 128 and the result lowered by it: the weights sum up to 1.
        constexpr std::uint32_t sign = std::is_signed_v<T> ? 0x80 : 0;
        for (std::intptr_t i = 0; i < count; ++i) {
            const std::uint32_t word = Words[i] ^ (sign * 0x01010101u);
            const std::uint32_t left = word & 0xFF00FFu, right = (word >> 8) & 0xFF00FFu;
            const std::uint32_t rows = (left << 4) + (right - left) * terms.WeightX(i);
            const std::uint32_t upper = rows & 0xFFFFu, lower = rows >> 16;
            const std::uint32_t sum = (upper << 4) + (lower - upper) * terms.WeightY(i);
            to[i] = static_cast<T>(((sum + 8) >> 8) ^ sign);
        }
    }
};
template <>
struct NeighbourStrip<char> : ByteStrip<char> {};
template <>
struct NeighbourStrip<unsigned char> : ByteStrip<unsigned char> {};

/// Words of 16 bits.
template <class T>
struct WordStrip {
    alignas(64) std::uint32_t Upper[StripLength];
    alignas(64) std::uint32_t Lower[StripLength];

    ORV_INLINE void CollectPairs(std::intptr_t i, const char *upper, const char *lower) {
        Upper[i] = LoadWord<std::uint32_t>(upper);
        Lower[i] = LoadWord<std::uint32_t>(lower);
    }
    ORV_INLINE void CollectEach(std::intptr_t i, const FourPixels &at) {
        Upper[i] = LoadWord<std::uint16_t>(at.P00) | LoadWord<std::uint16_t>(at.P10) << 16;
        Lower[i] = LoadWord<std::uint16_t>(at.P01) | LoadWord<std::uint16_t>(at.P11) << 16;
    }
    ORV_INLINE void Weigh(const StripTerms &terms, std::intptr_t count, T *__restrict to) const {
        for (std::intptr_t i = 0; i < count; ++i) {
            const auto fx = static_cast<std::int32_t>(terms.WeightX(i));
            const auto fy = static_cast<std::int32_t>(terms.WeightY(i));
            const std::int32_t upper = WeighRow(Upper[i], fx), lower = WeighRow(Lower[i], fx);
            to[i] = static_cast<T>((upper * 16 + (lower - upper) * fy + 8) >> 8);
        }
    }

private:
    ORV_INLINE static std::int32_t WeighRow(std::uint32_t pair, std::int32_t fx) {
        const std::int32_t left = static_cast<T>(pair), right = static_cast<T>(pair >> 16);
        return left * 16 + (right - left) * fx;
    }
};
template <>
struct NeighbourStrip<short> : WordStrip<short> {};
template <>
struct NeighbourStrip<unsigned short> : WordStrip<unsigned short> {};

/// Three bytes, each weighed like all others. A fourth one between them is weighed along and left out in the end. A
/// pair is read with the two bytes behind it.
template <>
struct NeighbourStrip<Image::ThreeBytes> {
    alignas(64) std::uint64_t Upper[StripLength]; ///< the left pixel from bit 0 on, the right one from bit 24 on
    alignas(64) std::uint64_t Lower[StripLength];

    ORV_INLINE void CollectPairs(std::intptr_t i, const char *upper, const char *lower) {
        std::memcpy(&Upper[i], upper, sizeof Upper[i]);
        std::memcpy(&Lower[i], lower, sizeof Lower[i]);
    }
    ORV_INLINE void CollectEach(std::intptr_t i, const FourPixels &at) {
        Upper[i] = Pair(LoadThreeBytes(at.P00), LoadThreeBytes(at.P10));
        Lower[i] = Pair(LoadThreeBytes(at.P01), LoadThreeBytes(at.P11));
    }
    ORV_INLINE void Weigh(const StripTerms &terms, std::intptr_t count, Image::ThreeBytes *__restrict to) const {
        alignas(64) std::uint16_t weightsX[4 * StripLength], weightsY[4 * StripLength];
        alignas(64) std::uint32_t p00[StripLength], p10[StripLength], p01[StripLength], p11[StripLength];
        alignas(64) std::uint8_t weighed[4 * StripLength];
        for (std::intptr_t i = 0; i < count; ++i) {
            StoreFourTimes(weightsX + 4 * i, terms.WeightX(i));
            StoreFourTimes(weightsY + 4 * i, terms.WeightY(i));
        }
        for (std::intptr_t i = 0; i < count; ++i) {
            p00[i] = static_cast<std::uint32_t>(Upper[i]);
            p10[i] = static_cast<std::uint32_t>(Upper[i] >> 24);
            p01[i] = static_cast<std::uint32_t>(Lower[i]);
            p11[i] = static_cast<std::uint32_t>(Lower[i] >> 24);
        }
        WeighBytes(weighed, {Bytes(p00), Bytes(p10), Bytes(p01), Bytes(p11)}, weightsX, weightsY, 4 * count);
        LeaveOutFourthBytes(weighed, count, to);
    }

private:
    /// The bytes of the four pixels of each position.
    struct FourBytes {
        const std::uint8_t *P00, *P10, *P01, *P11;
    };
    ORV_INLINE static std::uint64_t Pair(std::uint32_t left, std::uint32_t right) {
        return left | std::uint64_t{right} << 24;
    }
    ORV_INLINE static std::uint32_t LoadThreeBytes(const char *address) {
        return LoadWord<std::uint16_t>(address) | LoadWord<std::uint8_t>(address + 2) << 16;
    }
    ORV_INLINE static void StoreFourTimes(std::uint16_t *to, std::uint32_t weight) {
        const std::uint64_t twice = weight | weight << 16, fourTimes = twice | twice << 32;
        std::memcpy(to, &fourTimes, sizeof fourTimes);
    }
    /// In words of 16 bits, which wrap on the way and hold every sum in the end: at most 255 * 256 + 8.
    ORV_INLINE static void WeighBytes(std::uint8_t *__restrict weighed, const FourBytes &at, const std::uint16_t *fx,
                                      const std::uint16_t *fy, std::intptr_t count) {
        const std::uint8_t *const p00 = at.P00, *const p10 = at.P10, *const p01 = at.P01, *const p11 = at.P11;
        for (std::intptr_t k = 0; k < count; ++k) {
            const std::uint16_t upper = Mix(p00[k], p10[k], fx[k]), lower = Mix(p01[k], p11[k], fx[k]);
            const auto sum = static_cast<std::uint16_t>(Mix(upper, lower, fy[k]) + 8u);
            weighed[k] = static_cast<std::uint8_t>(sum >> 8);
        }
    }
    ORV_INLINE static const std::uint8_t *Bytes(const std::uint32_t *words) {
        return reinterpret_cast<const std::uint8_t *>(words);
    }
    ORV_INLINE static std::uint16_t Mix(std::uint16_t first, std::uint16_t second, std::uint16_t weight) {
        const auto difference = static_cast<std::uint16_t>(second - first);
        return static_cast<std::uint16_t>(first * 16u + std::uint32_t{difference} * weight);
    }
};

} // namespace Transformations

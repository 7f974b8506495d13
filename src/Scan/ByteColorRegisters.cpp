#include <algorithm>
#include <immintrin.h>

#include "Scan/ByteColorBlocks.h"

namespace Scan {
namespace {

using Byte = unsigned char;

#define ORV_AVX512_KERNEL __attribute__((target("avx2,avx512f,avx512bw,avx512vl,avx512dq")))
#define ORV_AVX512_PART ORV_AVX512_KERNEL inline __attribute__((always_inline))

/// Functions without a mask start from a register that nothing has been written to, which compilers warn of.
constexpr __mmask16 AllLanes = 0xFFFF;
constexpr __mmask8 AllEightLanes = 0xFF;

/// 16 pixels of three sources as floats, in the order of memory.
struct Group {
    __m512 Values[MaximumByteSources];
};
constexpr std::intptr_t GroupPixels = 16;
constexpr int GroupsOfBlock = 4;

/// Where in its half of a block a group stands.
enum class Place { First, Second };

/// Reads groups of arrays.
class ArrayReader {
public:
    explicit ArrayReader(const ByteColorPiece &piece) : piece_(piece) {}

    template <Place>
    ORV_AVX512_PART void Read(std::intptr_t pixel, Group &group) const {
        for (int plane = 0; plane < MaximumByteSources; ++plane) {
            const auto *const address = reinterpret_cast<const __m128i *>(piece_.Sources[plane] + pixel);
            const __m512i numbers = _mm512_maskz_cvtepu8_epi32(AllLanes, _mm_loadu_si128(address));
            group.Values[plane] = _mm512_maskz_cvtepi32_ps(AllLanes, numbers);
        }
    }

private:
    const ByteColorPiece &piece_;
};

/// Reads groups of pixels of three bytes: four pixels go to each lane, from which shuffles take the bytes of a plane.
/// The 64 bytes that are loaded hold the 48 of a first group in front, and those of a second one behind, so that they
/// do not reach out of the half block. Loading 48 bytes with a mask can take ten times as long.
class PixelReader {
public:
    ORV_AVX512_PART explicit PixelReader(const ByteColorPiece &piece)
        : pixels_(piece.Pixels), inFront_(_mm512_setr_epi32(0, 1, 2, 2, 3, 4, 5, 5, 6, 7, 8, 8, 9, 10, 11, 11)),
          behind_(_mm512_add_epi32(inFront_, _mm512_set1_epi32(4))) {
        // Indexes with the top bit set give 0, the upper bytes of each number.
        constexpr int upper = static_cast<int>(0x80808000u);
        const __m512i firstBytes = _mm512_set4_epi32(upper + 9, upper + 6, upper + 3, upper);
        for (int byte = 0; byte < MaximumByteSources; ++byte)
            bytesOfPlane_[piece.PlaneOfByte[byte]] = _mm512_add_epi32(firstBytes, _mm512_set1_epi32(byte));
    }

    template <Place place>
    ORV_AVX512_PART void Read(std::intptr_t pixel, Group &group) const {
        constexpr std::intptr_t bytesBefore = place == Place::First ? 0 : 16;
        const __m512i loaded = _mm512_loadu_si512(pixels_ + MaximumByteSources * pixel - bytesBefore);
        const __m512i spread =
            _mm512_maskz_permutexvar_epi32(AllLanes, place == Place::First ? inFront_ : behind_, loaded);
        for (int plane = 0; plane < MaximumByteSources; ++plane)
            group.Values[plane] =
                _mm512_maskz_cvtepi32_ps(AllLanes, _mm512_shuffle_epi8(spread, bytesOfPlane_[plane]));
    }

private:
    const Byte *pixels_;
    __m512i inFront_, behind_;
    __m512i bytesOfPlane_[MaximumByteSources];
};

/// A row of the matrix, each number in all lanes.
struct WideRow {
    __m512 Coefficients[MaximumByteSources];
    __m512 Offset, Half;
    __m512i Unsure;
};
ORV_AVX512_PART void Widen(const ByteColorRow &row, WideRow &wide) {
    for (int plane = 0; plane < MaximumByteSources; ++plane)
        wide.Coefficients[plane] = _mm512_set1_ps(row.Coefficients[plane]);
    wide.Offset = _mm512_set1_ps(row.Offset);
    wide.Half = _mm512_set1_ps(row.Half);
    wide.Unsure = _mm512_set1_epi32(row.Unsure);
}

template <bool Reflects>
ORV_AVX512_PART __m512i SumOf(const WideRow &row, const Group &group) {
    __m512 sum = row.Offset;
    for (int plane = 0; plane < MaximumByteSources; ++plane)
        sum = _mm512_fmadd_ps(group.Values[plane], row.Coefficients[plane], sum);
    if constexpr (Reflects) {
        const __m512 limited = _mm512_maskz_min_ps(AllLanes, sum, _mm512_set1_ps(GreatestByteSum));
        sum = _mm512_add_ps(_mm512_abs_ps(limited), row.Half);
    }
    return _mm512_maskz_cvttps_epi32(AllLanes, sum);
}

/// The bytes of a block of sums.
template <bool Reflects>
ORV_AVX512_PART __m512i BytesOf(const __m512i (&sums)[GroupsOfBlock]) {
    __m512i numbers[GroupsOfBlock];
    for (int group = 0; group < GroupsOfBlock; ++group)
        numbers[group] = _mm512_maskz_srai_epi32(AllLanes, sums[group], ByteColorFractionBits);
    __m512i low = _mm512_packs_epi32(numbers[0], numbers[1]);
    __m512i high = _mm512_packs_epi32(numbers[2], numbers[3]);
    if constexpr (Reflects) {
        const __m512i lowBits = _mm512_set1_epi16(0xFF);
        low = _mm512_and_si512(low, lowBits);
        high = _mm512_and_si512(high, lowBits);
    }
    // Packing goes lane by lane.
    const __m512i groupOfLane = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    return _mm512_maskz_permutexvar_epi32(AllLanes, groupOfLane, _mm512_packus_epi16(low, high));
}

/// 1 when one of the pixels of two groups is not sure, else 0.
ORV_AVX512_PART std::intptr_t IsUnsure(const WideRow &row, __m512i firstSums, __m512i secondSums) {
    // The lower 16 bits of each sum are its fraction.
    constexpr __mmask32 lowerHalves = 0x55555555u;
    const __m512i leastFractions = _mm512_min_epu16(firstSums, secondSums);
    return _mm512_mask_cmplt_epu16_mask(lowerHalves, leastFractions, row.Unsure) != 0 ? 1 : 0;
}

/// Eight pixels in double, as ColorPixel does one.
template <bool Reflects>
ORV_AVX512_PART __m256i ExactPixels(const ByteColorRow &row, const __m256 (&values)[MaximumByteSources]) {
    __m512d sum = _mm512_set1_pd(row.ExactOffset);
    for (int plane = 0; plane < MaximumByteSources; ++plane) {
        const __m512d value = _mm512_maskz_cvtps_pd(AllEightLanes, values[plane]);
        sum = _mm512_add_pd(sum, _mm512_mul_pd(value, _mm512_set1_pd(row.ExactCoefficients[plane])));
    }
    __m512d limited = _mm512_maskz_min_pd(AllEightLanes, sum, _mm512_set1_pd(255.0));
    if constexpr (Reflects)
        limited = _mm512_abs_pd(limited);
    else
        limited = _mm512_maskz_max_pd(AllEightLanes, limited, _mm512_setzero_pd());
    return _mm512_maskz_cvttpd_epi32(AllEightLanes, _mm512_add_pd(limited, _mm512_set1_pd(0.5)));
}

template <bool Reflects>
ORV_AVX512_PART void StoreExactGroup(const ByteColorRow &row, const Group &group, Byte *target) {
    __m256 low[MaximumByteSources], high[MaximumByteSources];
    for (int plane = 0; plane < MaximumByteSources; ++plane) {
        low[plane] = _mm512_maskz_extractf32x8_ps(AllEightLanes, group.Values[plane], 0);
        high[plane] = _mm512_maskz_extractf32x8_ps(AllEightLanes, group.Values[plane], 1);
    }
    _mm_storel_epi64(reinterpret_cast<__m128i *>(target),
                     _mm256_maskz_cvtepi32_epi8(AllEightLanes, ExactPixels<Reflects>(row, low)));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(target + GroupPixels / 2),
                     _mm256_maskz_cvtepi32_epi8(AllEightLanes, ExactPixels<Reflects>(row, high)));
}

/// Half a block that is not sure, in one word: where it begins, and its target.
constexpr std::intptr_t TargetSlots = 4;
static_assert(TargetSlots > MaximumByteTargets);

/// Whole blocks. What is not sure is noted without a branch, which nothing could foretell, and computed again after a
/// run of blocks.
template <bool Reflects, class Reader, std::size_t Targets>
ORV_AVX512_KERNEL void CombineBlocks(const ByteColorPiece &piece) {
    constexpr std::intptr_t halfPixels = ByteColorBlock / 2;
    constexpr std::intptr_t runPixels = 32 * ByteColorBlock;
    std::intptr_t unsure[Targets * runPixels / halfPixels + 1];
    const Reader reader(piece);
    WideRow rows[Targets];
    for (std::size_t target = 0; target < Targets; ++target)
        Widen(piece.Rows[target], rows[target]);
    for (std::intptr_t start = 0; start < piece.Count; start += runPixels) {
        const std::intptr_t end = std::min(start + runPixels, piece.Count);
        std::intptr_t unsureCount = 0;
        for (std::intptr_t pixel = start; pixel < end; pixel += ByteColorBlock) {
            Group groups[GroupsOfBlock];
            for (int half = 0; half < GroupsOfBlock; half += 2) {
                reader.template Read<Place::First>(pixel + half * GroupPixels, groups[half]);
                reader.template Read<Place::Second>(pixel + (half + 1) * GroupPixels, groups[half + 1]);
            }
            for (std::size_t target = 0; target < Targets; ++target) {
                const auto slot = static_cast<std::intptr_t>(target);
                __m512i sums[GroupsOfBlock];
                for (int group = 0; group < GroupsOfBlock; ++group)
                    sums[group] = SumOf<Reflects>(rows[target], groups[group]);
                _mm512_storeu_si512(piece.Targets[target] + pixel, BytesOf<Reflects>(sums));
                unsure[unsureCount] = pixel * TargetSlots + slot;
                unsureCount += IsUnsure(rows[target], sums[0], sums[1]);
                unsure[unsureCount] = (pixel + halfPixels) * TargetSlots + slot;
                unsureCount += IsUnsure(rows[target], sums[2], sums[3]);
            }
        }
        for (std::intptr_t i = 0; i < unsureCount; ++i) {
            const std::intptr_t pixel = unsure[i] / TargetSlots;
            const std::intptr_t target = unsure[i] % TargetSlots;
            Byte *const bytes = piece.Targets[target] + pixel;
            Group first, second;
            reader.template Read<Place::First>(pixel, first);
            reader.template Read<Place::Second>(pixel + GroupPixels, second);
            StoreExactGroup<Reflects>(piece.Rows[target], first, bytes);
            StoreExactGroup<Reflects>(piece.Rows[target], second, bytes + GroupPixels);
        }
    }
}

template <bool Reflects, class Reader>
void CombineBlocks(const ByteColorPiece &piece) {
    if (piece.TargetCount == 1)
        CombineBlocks<Reflects, Reader, 1>(piece);
    else
        CombineBlocks<Reflects, Reader, MaximumByteTargets>(piece);
}

template <class Reader>
void CombineBlocks(const ByteColorPiece &piece) {
    if (piece.Reflects)
        CombineBlocks<true, Reader>(piece);
    else
        CombineBlocks<false, Reader>(piece);
}

} // namespace

void CombineByteBlocksAtAvx512(const ByteColorPiece &piece) {
    if (piece.Pixels != nullptr)
        CombineBlocks<PixelReader>(piece);
    else
        CombineBlocks<ArrayReader>(piece);
}

} // namespace Scan

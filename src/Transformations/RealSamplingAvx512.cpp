// Eight positions at a time. Each operation rounds as the plain step does, so the bytes are the same.
#include <algorithm>

#include "Transformations/Avx512Lanes.h"
#include "Transformations/RealSampling.h"

namespace Transformations {
namespace {

constexpr std::intptr_t Lanes = Avx512Positions;

/// Gives the next eight positions.
class ArrayReader {
public:
    ORV_AVX512_PART explicit ArrayReader(const PositionArrays &positions) : x_(positions.X), y_(positions.Y) {}

    ORV_AVX512_PART void Read(__m512d &x, __m512d &y) {
        x = _mm512_loadu_pd(x_);
        y = _mm512_loadu_pd(y_);
        x_ += Lanes;
        y_ += Lanes;
    }

private:
    const double *x_, *y_;
};

class RowReader {
public:
    ORV_AVX512_PART explicit RowReader(const PositionsOnRow &positions) : row_(positions.Row) {
        const __m512d first = _mm512_set1_pd(static_cast<double>(positions.First));
        columns_ = _mm512_add_pd(first, _mm512_setr_pd(0, 1, 2, 3, 4, 5, 6, 7));
    }

    ORV_AVX512_PART void Read(__m512d &x, __m512d &y) {
        x = PositionOf(row_.StepX, row_.RowX, row_.OriginX);
        y = PositionOf(row_.StepY, row_.RowY, row_.OriginY);
        columns_ = _mm512_add_pd(columns_, _mm512_set1_pd(static_cast<double>(Lanes)));
    }

private:
    ORV_AVX512_PART __m512d PositionOf(double step, double row, double origin) const {
        const __m512d sum = _mm512_add_pd(_mm512_mul_pd(columns_, _mm512_set1_pd(step)), _mm512_set1_pd(row));
        return _mm512_add_pd(sum, _mm512_set1_pd(origin));
    }

    AffineRow row_;
    __m512d columns_;
};

/// Positions less their whole parts.
template <class T>
ORV_AVX512_PART __m512d Fractions(__m512d positions, __m256i wholes) {
    // A position of -0.0 has the fraction -0.0 in floating point pixels; integers don't show the sign.
    if constexpr (std::is_floating_point_v<T>)
        return _mm512_sub_pd(positions, _mm512_maskz_cvtepi32_pd(AllLanes, wholes));
    else
        return _mm512_maskz_reduce_pd(AllLanes, positions, _MM_FROUND_TO_ZERO);
}

ORV_AVX512_PART __m512i Joined(__m256i low, __m256i high) {
    return _mm512_maskz_inserti64x4(AllLanes, _mm512_castsi256_si512(low), high, 1);
}

/// The older gathers of half a register take less time than the newer ones.
ORV_AVX512_PART __m256i GatherEight(const char *base, __m256i offsets) {
    return _mm256_i32gather_epi32(reinterpret_cast<const int *>(base), offsets, 1);
}

/// Pixels of 8 and 16 bits in windows of 32.
template <class T>
class PairReader {
public:
    ORV_AVX512_PART explicit PairReader(const RealPlane<T> &plane)
        : left_(Placing(plane.LeftByte)), right_(Placing(plane.RightByte)) {}

    ORV_AVX512_PART void Read(const char *windows, __m256i offsets, Pair &pair) const {
        const __m256i read = GatherEight(windows, offsets);
        pair.Left = Widened(_mm256_shuffle_epi8(read, left_));
        pair.Right = Widened(_mm256_shuffle_epi8(read, right_));
    }

private:
    static constexpr bool IsSigned = std::is_signed_v<PlainPixel<T>>;

    /// Moves the pixel that begins at a byte to the lower end of the lane, or to the upper one where it has a sign.
    ORV_AVX512_PART static __m256i Placing(std::int32_t byte) {
        constexpr unsigned none = 0x80;
        const auto from = static_cast<unsigned>(byte);
        const unsigned second = sizeof(T) == 2 ? from + 1 : none;
        const unsigned lane = !IsSigned        ? from | second << 8 | none << 16 | none << 24
                              : sizeof(T) == 2 ? none | none << 8 | from << 16 | second << 24
                                               : none | none << 8 | none << 16 | from << 24;
        return _mm256_add_epi32(_mm256_set1_epi32(static_cast<int>(lane)),
                                _mm256_broadcastsi128_si256(_mm_setr_epi32(0, 0x04040404, 0x08080808, 0x0C0C0C0C)));
    }
    ORV_AVX512_PART static __m512d Widened(__m256i placed) {
        if constexpr (IsSigned)
            placed = _mm256_srai_epi32(placed, 32 - 8 * static_cast<int>(sizeof(T)));
        return _mm512_maskz_cvtepi32_pd(AllLanes, placed);
    }

    __m256i left_, right_;
};

ORV_AVX512_PART __m512i GatherWords(const char *base, __m256i offsets) {
    const auto *const words = reinterpret_cast<const long long *>(base);
    const __m256i low = _mm256_i32gather_epi64(words, _mm256_castsi256_si128(offsets), 1);
    const __m256i high = _mm256_i32gather_epi64(words, _mm256_extracti128_si256(offsets, 1), 1);
    return Joined(low, high);
}

/// Pixels of 32 bits in windows of 64.
template <class T>
requires(sizeof(T) == 4) class PairReader<T> {
public:
    ORV_AVX512_PART explicit PairReader(const RealPlane<T> &plane)
        : left_(_mm_cvtsi32_si128(8 * plane.LeftByte)), right_(_mm_cvtsi32_si128(8 * plane.RightByte)) {}

    ORV_AVX512_PART void Read(const char *windows, __m256i offsets, Pair &pair) const {
        const __m512i read = GatherWords(windows, offsets);
        pair.Left = Placed(read, left_);
        pair.Right = Placed(read, right_);
    }

private:
    ORV_AVX512_PART static __m512d Placed(__m512i windows, __m128i shift) {
        const __m512i shifted = _mm512_maskz_srl_epi64(AllLanes, windows, shift);
        return Widened<T>(_mm512_maskz_cvtepi64_epi32(AllLanes, shifted));
    }

    __m128i left_, right_;
};

/// Pixels of 64 bits.
template <class T>
requires(sizeof(T) == 8) class PairReader<T> {
public:
    ORV_AVX512_PART explicit PairReader(const RealPlane<T> &plane) : step_(plane.XStep) {}

    ORV_AVX512_PART void Read(const char *windows, __m256i offsets, Pair &pair) const {
        pair.Left = Widened<T>(GatherWords(windows, offsets));
        pair.Right = Widened<T>(GatherWords(windows + step_, offsets));
    }

private:
    std::intptr_t step_;
};

/// The terms in the order that results are told by.
ORV_AVX512_PART __m512d Mix(const Pair &upper, const Pair &lower, __m512d fx, __m512d fy) {
    const __m512d one = _mm512_set1_pd(1.0);
    const __m512d gx = _mm512_sub_pd(one, fx), gy = _mm512_sub_pd(one, fy);
    __m512d sum = _mm512_mul_pd(_mm512_mul_pd(upper.Left, gx), gy);
    sum = _mm512_add_pd(sum, _mm512_mul_pd(_mm512_mul_pd(upper.Right, fx), gy));
    sum = _mm512_add_pd(sum, _mm512_mul_pd(_mm512_mul_pd(lower.Left, gx), fy));
    return _mm512_add_pd(sum, _mm512_mul_pd(_mm512_mul_pd(lower.Right, fx), fy));
}

/// As orvBase::TruncateTo, in lanes of 32 bits.
template <class T>
ORV_AVX512_PART __m256i Truncated(__m512d values) {
    if constexpr (sizeof(T) == 4 && std::is_unsigned_v<T>)
        return _mm512_maskz_cvtepi64_epi32(AllLanes, _mm512_maskz_cvttpd_epi64(AllLanes, values));
    else
        return _mm512_maskz_cvttpd_epi32(AllLanes, values);
}
/// The same in lanes of 64.
template <class T>
ORV_AVX512_PART __m512i TruncatedWide(__m512d values) {
    const __m512i whole = _mm512_maskz_cvttpd_epi64(AllLanes, values);
    if constexpr (std::is_signed_v<T>)
        return whole;
    const __m512d limit = _mm512_set1_pd(9223372036854775808.0);
    const __mmask8 above = _mm512_cmp_pd_mask(values, limit, _CMP_GE_OQ);
    const __m512i distance = _mm512_maskz_cvttpd_epi64(AllLanes, _mm512_sub_pd(values, limit));
    return _mm512_mask_or_epi64(whole, above, distance, _mm512_set1_epi64(std::numeric_limits<std::int64_t>::min()));
}

/// Stores eight results. overlay holds the pixels that bit 0 of integers comes from where hasOverlay.
template <class T>
ORV_AVX512_PART void Store(T *target, __m512d sum, bool hasOverlay, __m512d overlay) {
    if constexpr (std::is_same_v<T, double>) {
        _mm512_storeu_pd(target, sum);
    } else if constexpr (std::is_same_v<T, float>) {
        _mm256_storeu_ps(target, _mm512_maskz_cvtpd_ps(AllLanes, sum));
    } else if constexpr (sizeof(T) == 8) {
        _mm512_storeu_si512(target, TruncatedWide<T>(_mm512_add_pd(sum, _mm512_set1_pd(0.5))));
    } else {
        __m256i pixels = Truncated<T>(_mm512_add_pd(sum, _mm512_set1_pd(0.5)));
        if (hasOverlay) {
            constexpr int chooseByFirst = 0xCA;
            pixels = _mm256_ternarylogic_epi32(_mm256_set1_epi32(1), Truncated<T>(overlay), pixels, chooseByFirst);
        }
        if constexpr (sizeof(T) == 1)
            _mm_storel_epi64(reinterpret_cast<__m128i *>(target), _mm256_maskz_cvtepi32_epi8(AllLanes, pixels));
        else if constexpr (sizeof(T) == 2)
            _mm_storeu_si128(reinterpret_cast<__m128i *>(target), _mm256_maskz_cvtepi32_epi16(AllLanes, pixels));
        else
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(target), pixels);
    }
}

/// Which positions are above -1 and below limits.
ORV_AVX512_PART __mmask8 AreWithin(__m512d x, __m512d y, double width, double height) {
    const __m512d minusOne = _mm512_set1_pd(-1.0);
    __mmask8 within = _mm512_cmp_pd_mask(x, minusOne, _CMP_GT_OQ);
    within = _mm512_mask_cmp_pd_mask(within, y, minusOne, _CMP_GT_OQ);
    within = _mm512_mask_cmp_pd_mask(within, x, _mm512_set1_pd(width), _CMP_LT_OQ);
    return _mm512_mask_cmp_pd_mask(within, y, _mm512_set1_pd(height), _CMP_LT_OQ);
}

template <class T>
__attribute__((noinline)) void SampleOneByOne(const CLinearInterpolator<T, double> &interpolator,
                                              const double (&x)[Lanes], const double (&y)[Lanes], T *target) {
    for (std::intptr_t lane = 0; lane < Lanes; ++lane)
        target[lane] = interpolator.Sample(x[lane], y[lane]);
}

/// Samples eight positions that are not all inner.
template <class T>
ORV_AVX512_PART void SampleAtEdge(const RealPlane<T> &plane, __m512d x, __m512d y, T *target) {
    if (AreWithin(x, y, plane.Width, plane.Height) == 0) {
        std::fill_n(target, Lanes, plane.Interpolator->OutsideValue);
        return;
    }
    double xs[Lanes], ys[Lanes];
    _mm512_storeu_pd(xs, x);
    _mm512_storeu_pd(ys, y);
    SampleOneByOne(*plane.Interpolator, xs, ys, target);
}

ORV_AVX512_PART __m256i WholesOf(__m512d positions) {
    return _mm512_maskz_cvttpd_epi32(AllLanes, positions);
}

/// Samples eight inner positions.
template <class T>
class InnerSampler {
public:
    ORV_AVX512_PART explicit InnerSampler(const RealPlane<T> &plane)
        : pairs_(plane), upperWindows_(plane.FirstWindow), lowerWindows_(plane.FirstWindow + plane.YStep),
          hasOverlay_(plane.Interpolator->OverlayFlag), xStep_(_mm256_set1_epi32(plane.XStep)),
          yStep_(_mm256_set1_epi32(plane.YStep)) {}

    ORV_AVX512_PART __m256i OffsetsOf(__m256i columns, __m256i rows) const {
        return _mm256_add_epi32(_mm256_mullo_epi32(columns, xStep_), _mm256_mullo_epi32(rows, yStep_));
    }
    ORV_AVX512_PART void Sample(__m512d x, __m512d y, T *target) const {
        const __m256i columns = WholesOf(x), rows = WholesOf(y);
        const __m256i offsets = OffsetsOf(columns, rows);
        Pair upper, lower;
        pairs_.Read(upperWindows_, offsets, upper);
        pairs_.Read(lowerWindows_, offsets, lower);
        const __m512d fx = Fractions<T>(x, columns), fy = Fractions<T>(y, rows);
        Store(target, Mix(upper, lower, fx, fy), hasOverlay_, upper.Left);
    }

private:
    PairReader<T> pairs_;
    const char *upperWindows_, *lowerWindows_;
    bool hasOverlay_;
    __m256i xStep_, yStep_;
};

template <bool AllAreInner, class T, class Reader>
ORV_AVX512_PART void SampleGroups(const RealPlane<T> &plane, const InnerSampler<T> &inner, Reader &positions,
                                  std::intptr_t count, T *target) {
    for (T *const end = target + count; target != end; target += Lanes) {
        __m512d x, y;
        positions.Read(x, y);
        if (AllAreInner || AreWithin(x, y, plane.InnerWidth, plane.InnerHeight) == AllLanes)
            inner.Sample(x, y, target);
        else
            SampleAtEdge(plane, x, y, target);
    }
}

template <class T>
ORV_AVX512_KERNEL void Run(const RealPlane<T> &plane, const PositionArrays &positions, std::intptr_t count,
                           T *target) {
    const InnerSampler<T> inner(plane);
    ArrayReader reader(positions);
    SampleGroups<false>(plane, inner, reader, count, target);
}

template <class T>
ORV_AVX512_KERNEL void Run(const RealPlane<T> &plane, const PositionsOnRow &positions, std::intptr_t count,
                           T *target) {
    constexpr std::intptr_t longestRun = 128;
    const InnerSampler<T> inner(plane);
    RowReader reader(positions);
    for (std::intptr_t done = 0; done < count; done += longestRun) {
        const std::intptr_t length = std::min(longestRun, count - done);
        if (plane.IsInner(positions.At(done)) && plane.IsInner(positions.At(done + length - 1)))
            SampleGroups<true>(plane, inner, reader, length, target + done);
        else
            SampleGroups<false>(plane, inner, reader, length, target + done);
    }
}

} // namespace

template <class T>
void SampleAtAvx512(const RealPlane<T> &plane, const PositionArrays &positions, std::intptr_t count, T *target) {
    Run(plane, positions, count, target);
}
template <class T>
void SampleAtAvx512(const RealPlane<T> &plane, const PositionsOnRow &positions, std::intptr_t count, T *target) {
    Run(plane, positions, count, target);
}

#define ORV_REAL_KERNEL(T)                                                                                           \
    template void SampleAtAvx512(const RealPlane<T> &, const PositionArrays &, std::intptr_t, T *);                  \
    template void SampleAtAvx512(const RealPlane<T> &, const PositionsOnRow &, std::intptr_t, T *);
ORV_REAL_KERNEL(char)
ORV_REAL_KERNEL(unsigned char)
ORV_REAL_KERNEL(short)
ORV_REAL_KERNEL(unsigned short)
ORV_REAL_KERNEL(int)
ORV_REAL_KERNEL(unsigned int)
ORV_REAL_KERNEL(long)
ORV_REAL_KERNEL(unsigned long)
ORV_REAL_KERNEL(float)
ORV_REAL_KERNEL(double)

} // namespace Transformations

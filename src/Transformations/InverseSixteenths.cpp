#include "Transformations/InverseSixteenths.h"

#include <immintrin.h>

namespace Transformations {
namespace {

#define ORV_AVX512_KERNEL __attribute__((target("avx2,avx512f,avx512bw,avx512vl,avx512dq")))
#define ORV_AVX512_PART ORV_AVX512_KERNEL inline __attribute__((always_inline))

constexpr std::intptr_t Lanes = 8;
/// Functions without a mask start from a register that nothing has been written to, which compilers warn of.
constexpr __mmask8 AllLanes = 0xFF;
/// Radians. Short angles are wrong by less than a tenth of it.
constexpr double AngleMargin = 1e-10;

ORV_AVX512_PART __m512d All(double value) {
    return _mm512_set1_pd(value);
}
ORV_AVX512_PART __m512d Magnitude(__m512d value) {
    return _mm512_maskz_range_pd(AllLanes, value, value, 0x8);
}
ORV_AVX512_PART __m512d Chosen(__mmask8 mask, __m512d where, __m512d elsewhere) {
    return _mm512_mask_blend_pd(mask, elsewhere, where);
}
ORV_AVX512_PART __mmask8 Less(__m512d a, __m512d b) {
    return _mm512_cmp_pd_mask(a, b, _CMP_LT_OQ);
}

/// For tangents up to that of an eighth of a half turn.
ORV_AVX512_PART __m512d ShortArctangent(__m512d tangent) {
    const __m512d squared = _mm512_mul_pd(tangent, tangent);
    __m512d sum = All(0.047073477057312574);
    sum = _mm512_fmadd_pd(sum, squared, All(-0.08456192612721426));
    sum = _mm512_fmadd_pd(sum, squared, All(0.1104048916417201));
    sum = _mm512_fmadd_pd(sum, squared, All(-0.14281588766199055));
    sum = _mm512_fmadd_pd(sum, squared, All(0.19999883856264278));
    sum = _mm512_fmadd_pd(sum, squared, All(-0.33333332097604246));
    sum = _mm512_fmadd_pd(sum, squared, All(0.9999999999783982));
    return _mm512_mul_pd(sum, tangent);
}

/// From 0 to a whole turn.
ORV_AVX512_PART __m512d ShortAngles(__m512d dx, double dy) {
    constexpr double tangentOfEighth = 0.41421356237309503;
    const __m512d columns = Magnitude(dx), rows = All(std::fabs(dy));
    const __m512d smaller = _mm512_maskz_min_pd(AllLanes, columns, rows);
    const __m512d larger = _mm512_maskz_max_pd(AllLanes, columns, rows);
    const __mmask8 isTurned = Less(_mm512_mul_pd(larger, All(tangentOfEighth)), smaller);
    const __m512d numerator = _mm512_mask_sub_pd(smaller, isTurned, smaller, larger);
    const __m512d denominator = _mm512_mask_add_pd(larger, isTurned, smaller, larger);
    __m512d angle = ShortArctangent(_mm512_div_pd(numerator, denominator));
    angle = _mm512_mask_add_pd(angle, isTurned, angle, All(M_PI / 4));
    angle = _mm512_mask_sub_pd(angle, Less(columns, rows), All(M_PI / 2), angle);
    angle = _mm512_mask_sub_pd(angle, Less(dx, _mm512_setzero_pd()), All(M_PI), angle);
    return dy < 0 ? _mm512_sub_pd(All(WholeTurn), angle) : angle;
}

/// What stays the same along a row.
class RowKernel {
public:
    ORV_AVX512_PART RowKernel(const InversePolarRing &ring, double dy)
        : ring_(ring), dy_(dy), scale_(ring.ColumnScale * (16 / WholeTurn)) {}

    /// Result: the lanes that are in doubt.
    ORV_AVX512_PART __mmask8 Find(__m512d dx, double *x, double *y, double *kept) const {
        StoreRows(dx, y);
        const __m512d fromStart = _mm512_sub_pd(ShortAngles(dx, dy_), All(ring_.StartAngle));
        const __m512d wrapped = _mm512_add_pd(fromStart, All(WholeTurn));
        const __m512d beyond = _mm512_sub_pd(wrapped, All(ring_.Extent));
        const __mmask8 isWrapped = Less(fromStart, _mm512_setzero_pd());
        const __mmask8 isKept = _mm512_mask_cmp_pd_mask(isWrapped, beyond, _mm512_setzero_pd(), _CMP_GT_OQ);
        const __m512d sixteenths = _mm512_mul_pd(Chosen(isWrapped, wrapped, fromStart), All(scale_));
        _mm512_store_pd(kept, _mm512_maskz_mov_pd(isKept, All(1.0)));
        _mm512_store_pd(x, _mm512_mul_pd(sixteenths, All(1.0 / 16)));
        return Doubts(fromStart, beyond, sixteenths);
    }

private:
    ORV_AVX512_PART void StoreRows(__m512d dx, double *y) const {
        const __m512d squared = _mm512_add_pd(_mm512_mul_pd(dx, dx), All(dy_ * dy_));
        const __m512d radii = _mm512_maskz_sqrt_pd(AllLanes, squared);
        _mm512_store_pd(y, _mm512_sub_pd(All(ring_.RowSpan), _mm512_sub_pd(radii, All(ring_.InnerRadius))));
    }
    /// Lanes where an angle that is slightly other goes another way, or to another sixteenth. No number is in doubt.
    ORV_AVX512_PART __mmask8 Doubts(__m512d fromStart, __m512d beyond, __m512d sixteenths) const {
        const __m512d toBranch = _mm512_maskz_min_pd(AllLanes, Magnitude(fromStart), Magnitude(beyond));
        const __m512d nearest = _mm512_maskz_roundscale_pd(AllLanes, sixteenths, _MM_FROUND_TO_NEAREST_INT);
        const __m512d toNearest = Magnitude(_mm512_sub_pd(sixteenths, nearest));
        const __mmask8 isCertain = _mm512_cmp_pd_mask(toBranch, All(AngleMargin), _CMP_GT_OQ);
        return static_cast<__mmask8>(
            ~_mm512_mask_cmp_pd_mask(isCertain, toNearest, All(AngleMargin * scale_), _CMP_GT_OQ));
    }

    const InversePolarRing &ring_;
    double dy_;
    double scale_; ///< sixteenths of columns in a radian
};

/// Works out some of the eight pixels of row y that begin at first, and stand in the piece from index on.
__attribute__((noinline)) void FindPrecisely(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y,
                                             unsigned lanes, PolarPiece &piece, std::intptr_t index) {
    for (std::intptr_t lane = 0; lane < Lanes; ++lane) {
        if ((lanes >> lane & 1) == 0)
            continue;
        double &column = piece.X[index + lane], &row = piece.Y[index + lane];
        const bool isShown = ring.Position(static_cast<double>(first + lane), static_cast<double>(y), column, row);
        piece.Kept[index + lane] = isShown ? 0 : 1;
    }
}

} // namespace

bool HasShortArctangents(const InversePolarRing &ring, std::intptr_t y) {
    constexpr double leastDistance = 1e-9, mostDistance = 1e9, mostColumns = 1e6;
    const double rows = std::fabs(static_cast<double>(y) - ring.CentreY);
    return rows > leastDistance && rows < mostDistance && ring.ColumnScale > 0 && ring.ColumnScale < mostColumns;
}

ORV_AVX512_KERNEL void FindSixteenthsAtAvx512(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y,
                                              std::intptr_t count, PolarPiece &piece) {
    const RowKernel row(ring, static_cast<double>(y) - ring.CentreY);
    const __m512d lanes = _mm512_setr_pd(0, 1, 2, 3, 4, 5, 6, 7), centre = All(ring.CentreX);
    for (std::intptr_t i = 0; i < count; i += Lanes) {
        // Lanes behind the last pixel have room in the piece.
        const __m512d x = _mm512_add_pd(All(static_cast<double>(first + i)), lanes);
        const __mmask8 doubts = row.Find(_mm512_sub_pd(x, centre), piece.X + i, piece.Y + i, piece.Kept + i);
        if (__builtin_expect(doubts != 0, 0))
            FindPrecisely(ring, first + i, y, doubts, piece, i);
    }
}

} // namespace Transformations

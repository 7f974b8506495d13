// Eight columns at a time: their left and their right pixels are picked out of one window.
#include "Transformations/Avx512Lanes.h"
#include "Transformations/UprightSampling.h"

namespace Transformations {
namespace {

constexpr __mmask16 AllPlaces = 0xFFFF;

template <int Which>
ORV_AVX512_PART __m256i Half(__m512i both) {
    return _mm512_maskz_extracti64x4_epi64(AllLanes, both, Which);
}

/// Left and right pixels as integers of 32 bits.
ORV_AVX512_PART Pair FromIntegers(__m512i both) {
    return {_mm512_maskz_cvtepi32_pd(AllLanes, Half<0>(both)), _mm512_maskz_cvtepi32_pd(AllLanes, Half<1>(both))};
}

template <class T>
ORV_AVX512_PART Pair PickNarrow(const char *window, __m128i places) {
    constexpr bool isSigned = std::is_signed_v<PlainPixel<T>>;
    if constexpr (sizeof(T) == 1) {
        const __m128i both = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(window)), places);
        return FromIntegers(isSigned ? _mm512_maskz_cvtepi8_epi32(AllPlaces, both)
                                     : _mm512_maskz_cvtepu8_epi32(AllPlaces, both));
    } else {
        const __m256i both = _mm256_permutexvar_epi16(_mm256_cvtepu8_epi16(places),
                                                      _mm256_loadu_si256(reinterpret_cast<const __m256i *>(window)));
        return FromIntegers(isSigned ? _mm512_maskz_cvtepi16_epi32(AllPlaces, both)
                                     : _mm512_maskz_cvtepu16_epi32(AllPlaces, both));
    }
}

template <class T>
ORV_AVX512_PART Pair PickWords(const char *window, __m128i places) {
    const __m512i both = _mm512_maskz_permutexvar_epi32(AllPlaces, _mm512_maskz_cvtepu8_epi32(AllPlaces, places),
                                                        _mm512_loadu_si512(window));
    return {Widened<T>(Half<0>(both)), Widened<T>(Half<1>(both))};
}

template <class T>
ORV_AVX512_PART Pair PickWideWords(const char *window, __m128i places) {
    const __m512i low = _mm512_loadu_si512(window), high = _mm512_loadu_si512(window + 64);
    const __m512i left = _mm512_maskz_cvtepu8_epi64(AllLanes, places);
    const __m512i right = _mm512_maskz_cvtepu8_epi64(AllLanes, _mm_srli_si128(places, 8));
    return {Widened<T>(_mm512_permutex2var_epi64(low, left, high)),
            Widened<T>(_mm512_permutex2var_epi64(low, right, high))};
}

template <class T>
ORV_AVX512_PART Pair Pick(const char *row, const ColumnWindow &window) {
    const __m128i places = _mm_loadu_si128(reinterpret_cast<const __m128i *>(window.Places));
    if constexpr (sizeof(T) <= 2)
        return PickNarrow<T>(row + window.Start, places);
    else if constexpr (sizeof(T) == 4)
        return PickWords<T>(row + window.Start, places);
    else
        return PickWideWords<T>(row + window.Start, places);
}

template <class T>
ORV_AVX512_KERNEL void Run(const UprightColumns &columns, const char *row, double *left, double *right) {
    constexpr std::intptr_t lanes = ColumnWindow::Columns;
    const ColumnWindow *window = columns.Windows();
    const double *const fractions = columns.Fractions();
    const __m512d one = _mm512_set1_pd(1.0);
    for (std::intptr_t done = 0; done < columns.Count(); done += lanes, ++window) {
        const std::intptr_t column = done + lanes <= columns.Count() ? done : columns.Count() - lanes;
        const __m512d fraction = _mm512_loadu_pd(fractions + column);
        const Pair pixels = Pick<T>(row, *window);
        _mm512_storeu_pd(left + column, _mm512_mul_pd(pixels.Left, _mm512_sub_pd(one, fraction)));
        _mm512_storeu_pd(right + column, _mm512_mul_pd(pixels.Right, fraction));
    }
}

} // namespace

template <class T>
void WeighAtAvx512(const UprightColumns &columns, const char *row, double *left, double *right) {
    Run<T>(columns, row, left, right);
}

#define ORV_WEIGHING_KERNEL(T)                                                                                       \
    template void WeighAtAvx512<T>(const UprightColumns &, const char *, double *, double *);
ORV_WEIGHING_KERNEL(char)
ORV_WEIGHING_KERNEL(unsigned char)
ORV_WEIGHING_KERNEL(short)
ORV_WEIGHING_KERNEL(unsigned short)
ORV_WEIGHING_KERNEL(int)
ORV_WEIGHING_KERNEL(unsigned int)
ORV_WEIGHING_KERNEL(long)
ORV_WEIGHING_KERNEL(unsigned long)
ORV_WEIGHING_KERNEL(float)
ORV_WEIGHING_KERNEL(double)

} // namespace Transformations

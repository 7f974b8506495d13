// What kernels in registers of eight doubles share. For files of such kernels only.
#pragma once

#include <immintrin.h>
#include <type_traits>

namespace Transformations {

#define ORV_AVX512_KERNEL __attribute__((target("avx2,avx512f,avx512bw,avx512vl,avx512dq")))
#define ORV_AVX512_PART ORV_AVX512_KERNEL inline __attribute__((always_inline))

/// Functions without a mask start from a register that nothing has been written to, which compilers warn of.
inline constexpr __mmask8 AllLanes = 0xFF;

/// Two pixels of a row for each of eight positions.
struct Pair {
    __m512d Left, Right;
};

/// Pixels of 32 bits as doubles.
template <class T>
requires(sizeof(T) == 4) ORV_AVX512_PART __m512d Widened(__m256i pixels) {
    if constexpr (std::is_floating_point_v<T>)
        return _mm512_maskz_cvtps_pd(AllLanes, _mm256_castsi256_ps(pixels));
    else if constexpr (std::is_signed_v<T>)
        return _mm512_maskz_cvtepi32_pd(AllLanes, pixels);
    else
        return _mm512_maskz_cvtepu32_pd(AllLanes, pixels);
}
/// Pixels of 64 bits as doubles.
template <class T>
requires(sizeof(T) == 8) ORV_AVX512_PART __m512d Widened(__m512i pixels) {
    if constexpr (std::is_floating_point_v<T>)
        return _mm512_castsi512_pd(pixels);
    else if constexpr (std::is_signed_v<T>)
        return _mm512_maskz_cvtepi64_pd(AllLanes, pixels);
    else
        return _mm512_maskz_cvtepu64_pd(AllLanes, pixels);
}

} // namespace Transformations

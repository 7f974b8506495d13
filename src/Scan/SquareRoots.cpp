#include "Scan/SquareRoots.h"

#include <immintrin.h>

#include "Image/KernelLevel.h"

namespace Scan {
namespace {

/// The form with a mask: GCC 12 takes the plain one for a use of something uninitialised.
constexpr __mmask8 AllEightLanes = 0xFF;
constexpr __mmask16 AllSixteenLanes = 0xFFFF;

void RootsAtBaseline(float *values, std::intptr_t count) {
    std::intptr_t i = 0;
    for (; i + 4 <= count; i += 4)
        _mm_storeu_ps(values + i, _mm_sqrt_ps(_mm_loadu_ps(values + i)));
    for (; i < count; ++i)
        _mm_store_ss(values + i, _mm_sqrt_ss(_mm_load_ss(values + i)));
}

void RootsAtBaseline(double *values, std::intptr_t count) {
    std::intptr_t i = 0;
    for (; i + 2 <= count; i += 2)
        _mm_storeu_pd(values + i, _mm_sqrt_pd(_mm_loadu_pd(values + i)));
    for (; i < count; ++i)
        _mm_store_sd(values + i, _mm_sqrt_sd(_mm_setzero_pd(), _mm_load_sd(values + i)));
}

__attribute__((target("avx2"))) std::intptr_t RootsAtAvx2(float *values, std::intptr_t count) {
    std::intptr_t i = 0;
    for (; i + 8 <= count; i += 8)
        _mm256_storeu_ps(values + i, _mm256_sqrt_ps(_mm256_loadu_ps(values + i)));
    return i;
}

__attribute__((target("avx2"))) std::intptr_t RootsAtAvx2(double *values, std::intptr_t count) {
    std::intptr_t i = 0;
    for (; i + 4 <= count; i += 4)
        _mm256_storeu_pd(values + i, _mm256_sqrt_pd(_mm256_loadu_pd(values + i)));
    return i;
}

__attribute__((target("avx512f"))) std::intptr_t RootsAtAvx512(float *values, std::intptr_t count) {
    std::intptr_t i = 0;
    for (; i + 16 <= count; i += 16)
        _mm512_storeu_ps(values + i, _mm512_maskz_sqrt_ps(AllSixteenLanes, _mm512_loadu_ps(values + i)));
    return i;
}

__attribute__((target("avx512f"))) std::intptr_t RootsAtAvx512(double *values, std::intptr_t count) {
    std::intptr_t i = 0;
    for (; i + 8 <= count; i += 8)
        _mm512_storeu_pd(values + i, _mm512_maskz_sqrt_pd(AllEightLanes, _mm512_loadu_pd(values + i)));
    return i;
}

/// The level's registers as far as they go, the rest in small ones.
template <class T>
void Roots(T *values, std::intptr_t count) {
    std::intptr_t done = 0;
    if (Image::CurrentLevel() == Image::KernelLevel::Avx512)
        done = RootsAtAvx512(values, count);
    else if (Image::CurrentLevel() == Image::KernelLevel::Avx2)
        done = RootsAtAvx2(values, count);
    RootsAtBaseline(values + done, count - done);
}

} // namespace

void TakeSquareRoots(float *values, std::intptr_t count) {
    Roots(values, count);
}
void TakeSquareRoots(double *values, std::intptr_t count) {
    Roots(values, count);
}

} // namespace Scan

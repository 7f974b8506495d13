#include "Scan/ByteLookup.h"

#include <immintrin.h>

#include "Image/KernelLevel.h"

namespace Scan {
namespace {

void LookUpAtBaseline(const ByteTable &table, std::uint8_t *__restrict target, const std::uint8_t *__restrict source,
                      std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i)
        target[i] = table[source[i]];
}

/// The table as 16 rows of 16 bytes. A shuffle answers a byte with bit 7 clear by its four lowest bits, and any other
/// with 0. Subtracting 16 from row to row, an index stays clear until its own row has been, and is negative from then
/// on. What rows answer is added up by exclusive or, so each holds its difference from the row before. Indexes of the
/// upper half of the table go through its rows in the same way; they are negative among those of the lower half.
__attribute__((target("avx2"))) void LookUpAtAvx2(const ByteTable &table, std::uint8_t *target,
                                                  const std::uint8_t *source, std::intptr_t count) {
    constexpr std::intptr_t registerBytes = 32;
    __m256i rows[16];
    for (int row = 0; row < 16; ++row)
        rows[row] =
            _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i *>(table.data() + 16 * row)));
    for (int row = 15; row > 0; --row)
        if (row != 8)
            rows[row] = _mm256_xor_si256(rows[row], rows[row - 1]);
    const __m256i rowStep = _mm256_set1_epi8(16);
    const __m256i upperHalf = _mm256_set1_epi8(static_cast<char>(0x80));
    std::intptr_t done = 0;
    for (; done + registerBytes <= count; done += registerBytes) {
        __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(source + done));
        __m256i high = _mm256_xor_si256(low, upperHalf);
        __m256i found = _mm256_xor_si256(_mm256_shuffle_epi8(rows[0], low), _mm256_shuffle_epi8(rows[8], high));
        for (int row = 1; row < 8; ++row) {
            low = _mm256_subs_epi8(low, rowStep);
            high = _mm256_subs_epi8(high, rowStep);
            found = _mm256_xor_si256(found, _mm256_xor_si256(_mm256_shuffle_epi8(rows[row], low),
                                                             _mm256_shuffle_epi8(rows[row + 8], high)));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(target + done), found);
    }
    LookUpAtBaseline(table, target + done, source + done, count - done);
}

/// Each half of the table fills two registers, which one instruction looks up; the index's top bit chooses the half.
__attribute__((target("avx512f,avx512bw,avx512vbmi"))) void
LookUpAtAvx512(const ByteTable &table, std::uint8_t *target, const std::uint8_t *source, std::intptr_t count) {
    constexpr std::intptr_t registerBytes = 64;
    const __m512i first = _mm512_loadu_si512(table.data());
    const __m512i second = _mm512_loadu_si512(table.data() + 64);
    const __m512i third = _mm512_loadu_si512(table.data() + 128);
    const __m512i fourth = _mm512_loadu_si512(table.data() + 192);
    for (std::intptr_t done = 0; done < count; done += registerBytes) {
        const std::intptr_t left = count - done;
        const __mmask64 used = left >= registerBytes ? ~__mmask64{0} : (__mmask64{1} << left) - 1;
        const __m512i index = _mm512_maskz_loadu_epi8(used, source + done);
        const __m512i low = _mm512_permutex2var_epi8(first, index, second);
        const __m512i high = _mm512_permutex2var_epi8(third, index, fourth);
        const __m512i found = _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
        _mm512_mask_storeu_epi8(target + done, used, found);
    }
}

} // namespace

std::array<ByteLookup, 3> ByteLookups() {
    const Image::KernelLevel level = Image::CurrentLevel();
    static const bool hasByteTables = __builtin_cpu_supports("avx512vbmi") != 0;
    return {{{"avx512", level == Image::KernelLevel::Avx512 && hasByteTables, LookUpAtAvx512},
             {"avx2", level != Image::KernelLevel::Baseline, LookUpAtAvx2},
             {"baseline", true, LookUpAtBaseline}}};
}

void LookUp(const ByteTable &table, std::uint8_t *target, const std::uint8_t *source, std::intptr_t count) {
    for (const ByteLookup &level : ByteLookups())
        if (level.IsAvailable)
            return level.Run(table, target, source, count);
}

} // namespace Scan

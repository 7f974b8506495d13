#include "PixelList/MaximumRows.h"

#include <bit>
#include <immintrin.h>

#include "PixelList/PixelBlocks.h"

#define ORV_AVX512_KERNEL __attribute__((target("avx2,avx512f,avx512bw,avx512vl,avx512dq")))

namespace PixelList {
namespace {

template <class T>
ORV_INLINE T Greater(T a, T b) {
    return a < b ? b : a;
}

template <class T>
ORV_INLINE void TestPixels(const NeighbourRows &rows, std::intptr_t first, std::intptr_t count, T threshold,
                           BlockBytes &bytes) {
    using Pixel = typename Scan::Loose<T>::Type;
    const Pixel *const above = reinterpret_cast<const Pixel *>(rows.Above) + first;
    const Pixel *const own = reinterpret_cast<const Pixel *>(rows.Own) + first;
    const Pixel *const below = reinterpret_cast<const Pixel *>(rows.Below) + first;
    for (std::intptr_t i = 0; i < count; ++i) {
        const T pixel = own[i];
        const T left = Greater<T>(above[i - 1], Greater<T>(own[i - 1], below[i - 1]));
        const T right = Greater<T>(above[i + 1], Greater<T>(own[i + 1], below[i + 1]));
        const T most = Greater<T>(Greater<T>(left, right), Greater<T>(above[i], below[i]));
        bytes.First[i] = pixel >= Greater<T>(most, threshold) ? 0xFF : 0;
        bytes.Second[i] = pixel > most ? 0xFF : 0;
    }
}

/// Blocks of 64 columns, whose number the compiler knows. The last one ends at the last column and meets the one
/// before.
template <class T>
ORV_INLINE void TestBlocks(const NeighbourRows &given, std::intptr_t count, T threshold, MaximumBits *bits) {
    const NeighbourRows rows = given;
    BlockBytes bytes;
    std::intptr_t first = 0;
    for (; first + BitsColumns <= count; first += BitsColumns, ++bits) {
        TestPixels(rows, first, BitsColumns, threshold, bytes);
        *bits = {BitsOf(bytes.First), BitsOf(bytes.Second)};
    }
    if (first == count)
        return;
    TestPixels(rows, count - BitsColumns, BitsColumns, threshold, bytes);
    const auto again = static_cast<int>(first - (count - BitsColumns));
    *bits = {BitsOf(bytes.First) >> again, BitsOf(bytes.Second) >> again};
}

/// 64 pixels in registers of 64 bytes, whose comparisons give bits in one instruction.
template <class T>
ORV_AVX512_KERNEL inline __m512i Broadcast(T value) {
    if constexpr (sizeof(T) == 1)
        return _mm512_set1_epi8(static_cast<char>(value));
    else if constexpr (sizeof(T) == 2)
        return _mm512_set1_epi16(static_cast<short>(value));
    else
        return _mm512_set1_epi32(static_cast<int>(value));
}
template <class T>
ORV_AVX512_KERNEL inline ComparedBits CompareRegister(__m512i pixels, __m512i value) {
    if constexpr (std::is_same_v<T, char>)
        return {_mm512_cmpeq_epi8_mask(pixels, value), _mm512_cmpgt_epi8_mask(pixels, value)};
    else if constexpr (std::is_same_v<T, unsigned char>)
        return {_mm512_cmpeq_epi8_mask(pixels, value), _mm512_cmpgt_epu8_mask(pixels, value)};
    else if constexpr (std::is_same_v<T, short>)
        return {_mm512_cmpeq_epi16_mask(pixels, value), _mm512_cmpgt_epi16_mask(pixels, value)};
    else if constexpr (std::is_same_v<T, unsigned short>)
        return {_mm512_cmpeq_epi16_mask(pixels, value), _mm512_cmpgt_epu16_mask(pixels, value)};
    else
        return {_mm512_cmpeq_epi32_mask(pixels, value), _mm512_cmpgt_epi32_mask(pixels, value)};
}
template <class T>
ORV_AVX512_KERNEL inline ComparedBits CompareAtAvx512(const char *pixels, __m512i value) {
    constexpr int registerPixels = 64 / static_cast<int>(sizeof(T));
    ComparedBits bits = {};
    for (int part = 0; part < static_cast<int>(sizeof(T)); ++part) {
        const ComparedBits some = CompareRegister<T>(_mm512_loadu_si512(pixels + 64 * part), value);
        bits.Equal |= some.Equal << (registerPixels * part);
        bits.Greater |= some.Greater << (registerPixels * part);
    }
    return bits;
}
template <class T>
ORV_AVX512_KERNEL void CompareAllAtAvx512(const char *const *rows, int count, T value, ComparedBits *bits) {
    const __m512i all = Broadcast(value);
    for (int i = 0; i < count; ++i)
        bits[i] = CompareAtAvx512<T>(rows[i], all);
}

/// 32 columns.
struct HalfBits {
    std::uint32_t Equal;
    std::uint32_t Greater;
};
template <class T>
ORV_AVX512_KERNEL inline HalfBits CompareHalf(const char *pixels, __m512i value) {
    __m512i row;
    if constexpr (sizeof(T) == 1)
        row = _mm512_maskz_loadu_epi8(0xFFFFFFFF, pixels);
    else
        row = _mm512_loadu_si512(pixels);
    const ComparedBits bits = CompareRegister<T>(row, value);
    HalfBits half = {static_cast<std::uint32_t>(bits.Equal), static_cast<std::uint32_t>(bits.Greater)};
    if constexpr (sizeof(T) == 4) {
        const ComparedBits more = CompareRegister<T>(_mm512_loadu_si512(pixels + 64), value);
        half.Equal |= static_cast<std::uint32_t>(more.Equal) << 16;
        half.Greater |= static_cast<std::uint32_t>(more.Greater) << 16;
    }
    return half;
}

constexpr __mmask16 AllLanes = 0xFFFF;
constexpr int EitherOfThree = 0xFE; ///< a | b | c
constexpr int FirstOrBoth = 0xF8;   ///< a | (b & c)

/// Bits of a window, a row of it in each lane. The first row stands in the lowest lane of the first register.
template <int Registers>
struct WindowBits {
    __m512i Rows[Registers];
};

/// The places and those beside them, in the same row and in those above and below.
template <int Registers>
ORV_AVX512_KERNEL inline WindowBits<Registers> Surrounded(const WindowBits<Registers> &bits) {
    __m512i wide[Registers + 2];
    wide[0] = wide[Registers + 1] = _mm512_setzero_si512();
    for (int i = 0; i < Registers; ++i)
        wide[i + 1] = _mm512_ternarylogic_epi32(bits.Rows[i], _mm512_maskz_slli_epi32(AllLanes, bits.Rows[i], 1),
                                                _mm512_maskz_srli_epi32(AllLanes, bits.Rows[i], 1), EitherOfThree);
    WindowBits<Registers> result;
    for (int i = 0; i < Registers; ++i)
        result.Rows[i] = _mm512_ternarylogic_epi32(
            wide[i + 1], _mm512_maskz_alignr_epi32(AllLanes, wide[i + 1], wide[i], 15),
            _mm512_maskz_alignr_epi32(AllLanes, wide[i + 2], wide[i + 1], 1), EitherOfThree);
    return result;
}

/// Grows an area inside the open places by some steps. Result: the last one has changed it.
template <int Steps, int Registers>
ORV_AVX512_KERNEL inline bool Grow(WindowBits<Registers> &area, const WindowBits<Registers> &open) {
    WindowBits<Registers> before;
#pragma GCC unroll 4
    for (int step = 0; step < Steps; ++step) {
        before = area;
        const WindowBits<Registers> next = Surrounded(area);
        for (int i = 0; i < Registers; ++i) {
            const __m512i seeds = _mm512_and_si512(next.Rows[i], open.Rows[i]);
            // The sum carries from a seed through the rest of its run.
            const __m512i carried = _mm512_xor_si512(_mm512_add_epi32(open.Rows[i], seeds), open.Rows[i]);
            area.Rows[i] = _mm512_ternarylogic_epi32(seeds, carried, open.Rows[i], FirstOrBoth);
        }
    }
    unsigned changed = 0;
    for (int i = 0; i < Registers; ++i)
        changed |= _mm512_cmpneq_epi32_mask(before.Rows[i], area.Rows[i]);
    return changed != 0;
}

/// Grows an area until it does not grow any more, several steps for each question: how many it takes can't be
/// foretold by the processor.
template <int Registers>
ORV_AVX512_KERNEL inline void Fill(WindowBits<Registers> &area, const WindowBits<Registers> &open) {
    if (Grow<2>(area, open))
        while (Grow<4>(area, open))
            ;
}

/// A bit for each row that has some of the places.
template <int Registers>
ORV_AVX512_KERNEL inline std::uint32_t LinesOf(const WindowBits<Registers> &bits) {
    std::uint32_t lines = 0;
    for (int i = 0; i < Registers; ++i)
        lines |= std::uint32_t{_mm512_test_epi32_mask(bits.Rows[i], bits.Rows[i])} << (16 * i);
    return lines;
}

ORV_AVX512_KERNEL inline __m512i LanesOf(const std::uint32_t *rows) {
    const auto lane = [rows](int row) { return static_cast<int>(rows[row]); };
    return _mm512_set_epi32(lane(15), lane(14), lane(13), lane(12), lane(11), lane(10), lane(9), lane(8), lane(7),
                            lane(6), lane(5), lane(4), lane(3), lane(2), lane(1), lane(0));
}

/// What has no mark. It goes into the registers lane by lane: a register loaded from memory would wait until the
/// words stored there have left the processor's queue.
template <class T, int Registers>
ORV_AVX512_KERNEL inline void CompareWindow(const FloodWindow &window, T value, WindowBits<Registers> &equal,
                                            WindowBits<Registers> &greater) {
    const __m512i all = Broadcast(value);
    for (int i = 0; i < Registers; ++i) {
        std::uint32_t isEqual[16], isGreater[16];
#pragma GCC unroll 16
        for (int lane = 0; lane < 16; ++lane) {
            const int line = 16 * i + lane;
            std::uint32_t marked;
            std::memcpy(&marked, window.Marks + line * window.MarksPitch, sizeof marked);
            const HalfBits bits = CompareHalf<T>(window.Rows[line], all);
            isEqual[lane] = bits.Equal & ~marked;
            isGreater[lane] = bits.Greater & ~marked;
        }
        equal.Rows[i] = LanesOf(isEqual);
        greater.Rows[i] = LanesOf(isGreater);
    }
}

template <class T, int Registers>
ORV_AVX512_KERNEL FloodOutcome FloodAtAvx512(const FloodWindow &window, T value) {
    WindowBits<Registers> equal, greater, area;
    CompareWindow<T, Registers>(window, value, equal, greater);
    for (int i = 0; i < Registers; ++i)
        area.Rows[i] = _mm512_maskz_set1_epi32(static_cast<__mmask16>(1u << window.Line >> (16 * i)),
                                               static_cast<int>(1u << window.Place));
    Fill(area, equal);
    constexpr std::uint32_t edgeLines = 1u | 1u << (16 * Registers - 1);
    WindowBits<Registers> beside = Surrounded(area), atSides;
    alignas(64) std::uint32_t rows[16 * Registers];
    for (int i = 0; i < Registers; ++i) {
        beside.Rows[i] = _mm512_and_si512(beside.Rows[i], greater.Rows[i]);
        atSides.Rows[i] = _mm512_and_si512(area.Rows[i], _mm512_set1_epi32(static_cast<int>(window.OpenColumns)));
        _mm512_store_si512(rows + 16 * i, area.Rows[i]);
    }
    if ((LinesOf(area) & edgeLines) != 0 || LinesOf(atSides) != 0)
        return FloodOutcome::TooLarge;
    // All rows: how many have some of the area can't be foretold either.
    for (int line = 0; line < 16 * Registers; ++line) {
        char *const marks = window.Marks + line * window.MarksPitch;
        std::uint32_t marked;
        std::memcpy(&marked, marks, sizeof marked);
        marked |= rows[line];
        std::memcpy(marks, &marked, sizeof marked);
    }
    return LinesOf(beside) != 0 ? FloodOutcome::NoMaximum : FloodOutcome::Maximum;
}

} // namespace

template <class T>
void TestRow(const NeighbourRows &rows, std::intptr_t count, T threshold, MaximumBits *bits) {
    if (count >= BitsColumns) {
        const NeighbourRows *const used = &rows;
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { TestBlocks(*used, count, threshold, bits); });
    } else if (count > 0) {
        BlockBytes bytes = {};
        TestPixels(rows, 0, count, threshold, bytes);
        *bits = {BitsOf(bytes.First), BitsOf(bytes.Second)};
    }
}

template <class T>
void CompareRows(const char *const *rows, int count, T value, ComparedBits *bits) {
    if (Image::CurrentLevel() == Image::KernelLevel::Avx512)
        return CompareAllAtAvx512(rows, count, value, bits);
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        for (int i = 0; i < count; ++i)
            bits[i] = ComparePixels(rows[i], value);
    });
}

bool CanFloodSmall() {
    return Image::CurrentLevel() == Image::KernelLevel::Avx512;
}

template <class T, int Registers>
FloodOutcome FloodSmall(const FloodWindow &window, T value) {
    return FloodAtAvx512<T, Registers>(window, value);
}

template void TestRow(const NeighbourRows &, std::intptr_t, char, MaximumBits *);
template void TestRow(const NeighbourRows &, std::intptr_t, unsigned char, MaximumBits *);
template void TestRow(const NeighbourRows &, std::intptr_t, short, MaximumBits *);
template void TestRow(const NeighbourRows &, std::intptr_t, unsigned short, MaximumBits *);
template void TestRow(const NeighbourRows &, std::intptr_t, int, MaximumBits *);

template void CompareRows(const char *const *, int, char, ComparedBits *);
template void CompareRows(const char *const *, int, unsigned char, ComparedBits *);
template void CompareRows(const char *const *, int, short, ComparedBits *);
template void CompareRows(const char *const *, int, unsigned short, ComparedBits *);
template void CompareRows(const char *const *, int, int, ComparedBits *);

template FloodOutcome FloodSmall<char, 1>(const FloodWindow &, char);
template FloodOutcome FloodSmall<char, 2>(const FloodWindow &, char);
template FloodOutcome FloodSmall<unsigned char, 1>(const FloodWindow &, unsigned char);
template FloodOutcome FloodSmall<unsigned char, 2>(const FloodWindow &, unsigned char);
template FloodOutcome FloodSmall<short, 1>(const FloodWindow &, short);
template FloodOutcome FloodSmall<short, 2>(const FloodWindow &, short);
template FloodOutcome FloodSmall<unsigned short, 1>(const FloodWindow &, unsigned short);
template FloodOutcome FloodSmall<unsigned short, 2>(const FloodWindow &, unsigned short);
template FloodOutcome FloodSmall<int, 1>(const FloodWindow &, int);
template FloodOutcome FloodSmall<int, 2>(const FloodWindow &, int);

} // namespace PixelList

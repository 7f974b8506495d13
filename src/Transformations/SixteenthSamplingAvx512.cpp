// Sixteen positions at a time. Integers throughout, and the same ones as the plain step's.
#include <algorithm>
#include <cstring>
#include <immintrin.h>

#include "Transformations/SixteenthSampling.h"

namespace Transformations {
namespace {

#define ORV_AVX512_KERNEL __attribute__((target("avx2,avx512f,avx512bw,avx512vl,avx512dq")))
#define ORV_AVX512_PART ORV_AVX512_KERNEL inline __attribute__((always_inline))

constexpr std::intptr_t Lanes = SixteenthLanes;
/// Functions without a mask start from a register that nothing has been written to, which compilers warn of.
constexpr __mmask8 EightLanes = 0xFF;
constexpr __mmask16 AllLanes = 0xFFFF;

ORV_AVX512_PART __m512i Joined(__m256i low, __m256i high) {
    return _mm512_maskz_inserti64x4(EightLanes, _mm512_castsi256_si512(low), high, 1);
}

/// Sixteen positions in sixteenths. What doesn't fit 32 bits becomes their lowest number.
struct Sixteenths {
    __m512i X, Y;
};

ORV_AVX512_PART __m256i CutOff(__m512d sixteenths) {
    return _mm512_maskz_cvttpd_epi32(EightLanes, sixteenths);
}

class ArrayReader {
public:
    ORV_AVX512_PART explicit ArrayReader(const PositionArrays &positions) : positions_(positions) {}

    ORV_AVX512_PART void Read(std::intptr_t i, Sixteenths &to) const {
        to.X = Joined(Read(positions_.X + i), Read(positions_.X + i + 8));
        to.Y = Joined(Read(positions_.Y + i), Read(positions_.Y + i + 8));
    }

private:
    ORV_AVX512_PART static __m256i Read(const double *from) {
        return CutOff(_mm512_mul_pd(_mm512_loadu_pd(from), _mm512_set1_pd(16)));
    }

    PositionArrays positions_;
};

/// Radius and centre are taken times sixteen instead of the position: each operation rounds the same digits.
class CircleReader {
public:
    ORV_AVX512_PART explicit CircleReader(const CirclePositions &positions)
        : cosines_(positions.Cosines), sines_(positions.Sines), radius_(_mm512_set1_pd(16 * positions.Radius)),
          centreX_(_mm512_set1_pd(16 * positions.CentreX)), centreY_(_mm512_set1_pd(16 * positions.CentreY)) {}

    ORV_AVX512_PART void Read(std::intptr_t i, Sixteenths &to) const {
        to.X = Joined(Read(cosines_ + i, centreX_), Read(cosines_ + i + 8, centreX_));
        to.Y = Joined(Read(sines_ + i, centreY_), Read(sines_ + i + 8, centreY_));
    }

private:
    ORV_AVX512_PART __m256i Read(const double *directions, __m512d centre) const {
        return CutOff(_mm512_add_pd(_mm512_mul_pd(radius_, _mm512_loadu_pd(directions)), centre));
    }

    const double *cosines_, *sines_;
    __m512d radius_, centreX_, centreY_;
};

template <class Word>
ORV_AVX512_PART Word LoadWord(const char *address) {
    Word word;
    std::memcpy(&word, address, sizeof word);
    return word;
}

ORV_AVX512_PART __m512i Joined(__m128i a, __m128i b, __m128i c, __m128i d) {
    return Joined(_mm256_inserti128_si256(_mm256_castsi128_si256(a), b, 1),
                  _mm256_inserti128_si256(_mm256_castsi128_si256(c), d, 1));
}

/// One word for each number of sixteenths, 0 to 15.
ORV_AVX512_PART __m512i WordsOfSixteenths(unsigned ofNone, unsigned step) {
    const __m512i numbers = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return _mm512_add_epi32(_mm512_set1_epi32(static_cast<int>(ofNone)),
                            _mm512_mullo_epi32(numbers, _mm512_set1_epi32(static_cast<int>(step))));
}

/// The four pixels of each lane, and what they give for weights that the lowest four bits of positions choose.
template <class T>
class Weigher;

template <class T>
requires(sizeof(T) == 1) class Weigher<T> {
public:
    ORV_AVX512_PART Weigher()
        : along_(WordsOfSixteenths(0x00100010, 0x00FF00FF)), across_(WordsOfSixteenths(16, 0xFFFF)) {}

    /// Two neighbours of a row, below them those of the next.
    struct Pixels {
        __m512i Four;

        ORV_AVX512_PART __m512i First() const { return Four; }
    };

    ORV_AVX512_PART static void Load(const char *upper, const char *lower, const std::int32_t *each, Pixels &pixels) {
        pixels.Four = Joined(LoadFour(upper, lower, each), LoadFour(upper, lower, each + 4),
                             LoadFour(upper, lower, each + 8), LoadFour(upper, lower, each + 12));
    }
    ORV_AVX512_PART __m512i Weigh(const Pixels &pixels, __m512i along, __m512i across) const {
        __m512i four = pixels.Four;
        if constexpr (IsSigned)
            four = _mm512_xor_si512(four, _mm512_set1_epi8(static_cast<char>(0x80)));
        const __m512i rows = _mm512_maddubs_epi16(four, Chosen(along_, along));
        const __m512i sum = _mm512_madd_epi16(rows, Chosen(across_, across));
        const __m512i raised = _mm512_add_epi32(sum, _mm512_set1_epi32(IsSigned ? 0x8008 : 8));
        return _mm512_maskz_srli_epi32(AllLanes, raised, 8);
    }
    ORV_AVX512_PART static void Store(T *to, __m512i pixels) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm512_maskz_cvtepi32_epi8(AllLanes, pixels));
    }

private:
    static constexpr bool IsSigned = std::is_signed_v<PlainPixel<T>>;

    ORV_AVX512_PART static __m128i LoadFour(const char *upper, const char *lower, const std::int32_t *offsets) {
        __m128i four = _mm_cvtsi32_si128(LoadWord<std::uint16_t>(upper + offsets[0]));
        four = _mm_insert_epi16(four, LoadWord<std::int16_t>(lower + offsets[0]), 1);
        four = _mm_insert_epi16(four, LoadWord<std::int16_t>(upper + offsets[1]), 2);
        four = _mm_insert_epi16(four, LoadWord<std::int16_t>(lower + offsets[1]), 3);
        four = _mm_insert_epi16(four, LoadWord<std::int16_t>(upper + offsets[2]), 4);
        four = _mm_insert_epi16(four, LoadWord<std::int16_t>(lower + offsets[2]), 5);
        four = _mm_insert_epi16(four, LoadWord<std::int16_t>(upper + offsets[3]), 6);
        return _mm_insert_epi16(four, LoadWord<std::int16_t>(lower + offsets[3]), 7);
    }
    ORV_AVX512_PART static __m512i Chosen(__m512i weights, __m512i position) {
        return _mm512_maskz_permutexvar_epi32(AllLanes, position, weights);
    }

    __m512i along_, across_;
};

template <class T>
requires(sizeof(T) == 2) class Weigher<T> {
public:
    ORV_AVX512_PART Weigher() : along_(WordsOfSixteenths(16, 0xFFFF)) {}

    struct Pixels {
        __m512i Upper, Lower; ///< two neighbours of a row each

        ORV_AVX512_PART __m512i First() const { return Upper; }
    };

    ORV_AVX512_PART static void Load(const char *upper, const char *lower, const std::int32_t *each, Pixels &pixels) {
        __m128i uppers[4], lowers[4];
        LoadFour(upper, lower, each, uppers[0], lowers[0]);
        LoadFour(upper, lower, each + 4, uppers[1], lowers[1]);
        LoadFour(upper, lower, each + 8, uppers[2], lowers[2]);
        LoadFour(upper, lower, each + 12, uppers[3], lowers[3]);
        pixels.Upper = Joined(uppers[0], uppers[1], uppers[2], uppers[3]);
        pixels.Lower = Joined(lowers[0], lowers[1], lowers[2], lowers[3]);
    }
    ORV_AVX512_PART __m512i Weigh(const Pixels &pixels, __m512i along, __m512i across) const {
        const __m512i weights = _mm512_maskz_permutexvar_epi32(AllLanes, along, along_);
        const __m512i first = _mm512_madd_epi16(Signed(pixels.Upper), weights);
        const __m512i second = _mm512_madd_epi16(Signed(pixels.Lower), weights);
        const __m512i part = _mm512_mullo_epi32(_mm512_maskz_sub_epi32(AllLanes, second, first),
                                                _mm512_and_si512(across, _mm512_set1_epi32(15)));
        const __m512i sum = _mm512_add_epi32(_mm512_maskz_slli_epi32(AllLanes, first, 4), part);
        return Signed(_mm512_maskz_srai_epi32(AllLanes, _mm512_add_epi32(sum, _mm512_set1_epi32(8)), 8));
    }
    ORV_AVX512_PART static void Store(T *to, __m512i pixels) {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(to), _mm512_maskz_cvtepi32_epi16(AllLanes, pixels));
    }

private:
    template <int Lane>
    ORV_AVX512_PART static void Insert(const char *upper, const char *lower, std::intptr_t offset, __m128i &uppers,
                                       __m128i &lowers) {
        uppers = _mm_insert_epi32(uppers, LoadWord<std::int32_t>(upper + offset), Lane);
        lowers = _mm_insert_epi32(lowers, LoadWord<std::int32_t>(lower + offset), Lane);
        __asm__("" : "+x"(uppers), "+x"(lowers));
    }
    ORV_AVX512_PART static void LoadFour(const char *upper, const char *lower, const std::int32_t *offsets,
                                         __m128i &uppers, __m128i &lowers) {
        uppers = _mm_cvtsi32_si128(LoadWord<std::int32_t>(upper + offsets[0]));
        lowers = _mm_cvtsi32_si128(LoadWord<std::int32_t>(lower + offsets[0]));
        Insert<1>(upper, lower, offsets[1], uppers, lowers);
        Insert<2>(upper, lower, offsets[2], uppers, lowers);
        Insert<3>(upper, lower, offsets[3], uppers, lowers);
    }
    /// Pixels without a sign less 32768, and back.
    ORV_AVX512_PART static __m512i Signed(__m512i pixels) {
        constexpr auto sign = static_cast<short>(0x8000);
        return std::is_signed_v<T> ? pixels : _mm512_xor_si512(pixels, _mm512_set1_epi16(sign));
    }

    __m512i along_;
};

/// Positions that are found before the first of them is sampled: so no load of pixels waits for its offset.
template <class T>
class Block {
public:
    static constexpr std::intptr_t Groups = 8;

    ORV_AVX512_PART explicit Block(const SixteenthPlane<T> &plane)
        : upperRows_(plane.Base), lowerRows_(plane.Base + plane.RowStep), isTurned_(plane.IsTurned),
          hasOverlay_(plane.Interpolator->OverlayFlag), rowStep_(_mm512_set1_epi32(plane.RowStep)),
          limitAlong_(_mm512_set1_epi32(static_cast<int>(plane.InnerAlong))),
          limitAcross_(_mm512_set1_epi32(static_cast<int>(plane.InnerAcross))) {}

    /// Takes sixteen positions. Result: whether all of them are inner.
    ORV_AVX512_PART bool Take(std::intptr_t group, const Sixteenths &positions) {
        const __m512i along = isTurned_ ? positions.Y : positions.X, across = isTurned_ ? positions.X : positions.Y;
        const __m512i columns = _mm512_maskz_srli_epi32(AllLanes, along, 4);
        const __m512i rows = _mm512_mullo_epi32(_mm512_maskz_srli_epi32(AllLanes, across, 4), rowStep_);
        const __m512i columnBytes = sizeof(T) == 1 ? columns : _mm512_add_epi32(columns, columns);
        _mm512_store_si512(offsets_[group], _mm512_add_epi32(rows, columnBytes));
        _mm512_store_si512(along_[group], along);
        _mm512_store_si512(across_[group], across);
        const __mmask16 within = _mm512_cmplt_epu32_mask(along, limitAlong_);
        return _mm512_mask_cmplt_epu32_mask(within, across, limitAcross_) == AllLanes;
    }
    /// Samples sixteen inner positions.
    ORV_AVX512_PART void Sample(std::intptr_t group, T *target) const {
        typename Weigher<T>::Pixels read;
        Weigher<T>::Load(upperRows_, lowerRows_, offsets_[group], read);
        __m512i pixels = weigher_.Weigh(read, _mm512_load_si512(along_[group]), _mm512_load_si512(across_[group]));
        if (hasOverlay_) {
            constexpr int chooseByFirst = 0xCA;
            pixels = _mm512_ternarylogic_epi32(_mm512_set1_epi32(1), read.First(), pixels, chooseByFirst);
        }
        Weigher<T>::Store(target, pixels);
    }

private:
    alignas(64) std::int32_t offsets_[Groups][Lanes];
    alignas(64) std::int32_t along_[Groups][Lanes];
    alignas(64) std::int32_t across_[Groups][Lanes];
    const char *upperRows_, *lowerRows_;
    bool isTurned_, hasOverlay_;
    __m512i rowStep_, limitAlong_, limitAcross_;
    Weigher<T> weigher_;
};

template <class T, class Positions>
__attribute__((noinline)) void SampleOneByOne(const SixteenthPlane<T> &plane, const Positions &positions, T *target) {
    for (std::intptr_t i = 0; i < Lanes; ++i) {
        const Position position = positions.At(i);
        target[i] = plane.Interpolator->Sample(orvBase::TruncateTo<std::int32_t>(16 * position.X),
                                               orvBase::TruncateTo<std::int32_t>(16 * position.Y));
    }
}

template <class Reader, class T, class Positions>
ORV_AVX512_KERNEL void Run(const SixteenthPlane<T> &plane, const Positions &positions, std::intptr_t count,
                           T *target) {
    Block<T> block(plane);
    const Reader reader(positions);
    const std::intptr_t groups = (count + Lanes - 1) / Lanes;
    // The last sixteen meet those before.
    const auto start = [=](std::intptr_t group) { return std::min(group * Lanes, count - Lanes); };
    for (std::intptr_t first = 0; first < groups; first += Block<T>::Groups) {
        const std::intptr_t length = std::min(groups - first, Block<T>::Groups);
        bool isInner[Block<T>::Groups];
        for (std::intptr_t group = 0; group < length; ++group) {
            Sixteenths read;
            reader.Read(start(first + group), read);
            isInner[group] = block.Take(group, read);
        }
        for (std::intptr_t group = 0; group < length; ++group) {
            const std::intptr_t i = start(first + group);
            if (isInner[group])
                block.Sample(group, target + i);
            else
                SampleOneByOne(plane, positions.From(i), target + i);
        }
    }
}

} // namespace

template <class T>
void SampleAtAvx512(const SixteenthPlane<T> &plane, const PositionArrays &positions, std::intptr_t count, T *target) {
    Run<ArrayReader>(plane, positions, count, target);
}
template <class T>
void SampleAtAvx512(const SixteenthPlane<T> &plane, const CirclePositions &positions, std::intptr_t count,
                    T *target) {
    Run<CircleReader>(plane, positions, count, target);
}

#define ORV_SIXTEENTH_KERNEL(T)                                                                                      \
    template void SampleAtAvx512(const SixteenthPlane<T> &, const PositionArrays &, std::intptr_t, T *);             \
    template void SampleAtAvx512(const SixteenthPlane<T> &, const CirclePositions &, std::intptr_t, T *);
ORV_SIXTEENTH_KERNEL(char)
ORV_SIXTEENTH_KERNEL(unsigned char)
ORV_SIXTEENTH_KERNEL(short)
ORV_SIXTEENTH_KERNEL(unsigned short)

} // namespace Transformations

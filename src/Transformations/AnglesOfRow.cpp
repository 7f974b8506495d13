// An angle is worked out as the unevaluated sum of two doubles, 53 bits and more than ten further ones. Where those
// further bits leave no doubt how the C library rounds, the first double is the result; elsewhere, for about one
// angle in fifteen, the C library is asked.
#include "Transformations/AnglesOfRow.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

#include "Image/KernelLevel.h"

namespace Transformations {
namespace {

constexpr int knots = 64; ///< arctangents of k / 64 are kept

/// The arctangents of the knots, in two doubles.
struct KnotTable {
    std::array<double, 2 *knots> High = {}; ///< longer, so that whatever index no number makes is inside
    std::array<double, 2 *knots> Low = {};

    KnotTable() {
        for (std::size_t k = 0; k <= knots; ++k) {
            const long double angle = std::atan(static_cast<long double>(k) / knots);
            High[k] = static_cast<double>(angle);
            Low[k] = static_cast<double>(angle - High[k]);
        }
    }
};

const KnotTable &Knots() {
    static const KnotTable table;
    return table;
}

/// The steps of the computation on registers of doubles. Results are references, since functions that return large
/// registers differ between instruction sets.
template <std::size_t RegisterBytes>
struct AngleSteps {
    using Real = Image::Vector<double, RegisterBytes>;
    using Word = Image::Vector<std::int64_t, RegisterBytes>; ///< also a mask: all bits of a lane, or none
    static constexpr std::size_t Lanes = RegisterBytes / sizeof(double);

    /// An unevaluated sum; Low is far smaller than High.
    struct TwoReals {
        Real High;
        Real Low;
    };

    static ORV_INLINE void Add(TwoReals &sum, const Real &a, const Real &b) {
        sum.High = a + b;
        const Real ofB = sum.High - a;
        sum.Low = (a - (sum.High - ofB)) + (b - ofB);
    }

    /// The upper half of each number's bits, so that the product of two halves is exact; the rest is a - upper.
    static ORV_INLINE void TakeUpperHalf(Real &upper, const Real &a) {
        upper = reinterpret_cast<Real>(reinterpret_cast<Word>(a) & ~std::int64_t{0x7FFFFFF});
    }

    /// (smaller - knot larger) / (larger + knot smaller), the tangent of what is left of an angle beyond a knot.
    static ORV_INLINE void TakeTangentBeyond(TwoReals &tangent, const Real &knot, const Real &smaller,
                                             const Real &larger) {
        Real upperLarger, upperSmaller, upper;
        TakeUpperHalf(upperLarger, larger);
        TakeUpperHalf(upperSmaller, smaller);
        TwoReals first, numerator, second, denominator;
        Add(first, smaller, -(knot * upperLarger));
        Add(numerator, first.High, -(knot * (larger - upperLarger)));
        Add(second, larger, knot * upperSmaller);
        Add(denominator, second.High, knot * (smaller - upperSmaller));
        TakeUpperHalf(upper, denominator.High);
        const Real inverse = 1.0 / denominator.High;
        TakeUpperHalf(tangent.High, numerator.High * inverse);
        const Real rest = (numerator.High - tangent.High * upper) - tangent.High * (denominator.High - upper);
        const Real lowRest = (first.Low + numerator.Low) - tangent.High * (second.Low + denominator.Low);
        tangent.Low = (rest + lowRest) * inverse;
    }

    /// Arctangent of smaller / larger.
    static ORV_INLINE void TakeArcTangent(TwoReals &angle, const Real &smaller, const Real &larger,
                                          const KnotTable &table) {
        // Adding this leaves the nearest integer in the lowest bits.
        constexpr double integerMaker = 6755399441055744.0; // 1.5 * 2^52
        const Real made = smaller / larger * static_cast<double>(knots) + integerMaker;
        const Word k = reinterpret_cast<Word>(made) & (2 * knots - 1);
        Real high, low;
        for (std::size_t lane = 0; lane < Lanes; ++lane) {
            high[lane] = table.High[static_cast<std::size_t>(k[lane])];
            low[lane] = table.Low[static_cast<std::size_t>(k[lane])];
        }
        TwoReals tangent;
        TakeTangentBeyond(tangent, (made - integerMaker) / static_cast<double>(knots), smaller, larger);
        const Real z = tangent.High + tangent.Low, squared = z * z;
        const Real curve = z * squared * (1.0 / 3 - squared * (1.0 / 5 - squared * (1.0 / 7 - squared * (1.0 / 9))));
        Add(angle, high, tangent.High);
        angle.Low += low + (tangent.Low - curve);
    }

    static ORV_INLINE void TakeBits(Word &bits, const Real &a) { bits = reinterpret_cast<Word>(a); }
    /// All bits of a lane where a is below 0, none elsewhere.
    static ORV_INLINE void TakeNegative(Word &mask, const Real &a) { mask = reinterpret_cast<Word>(a) >> 63; }
    /// a where mask has bits, b elsewhere.
    static ORV_INLINE void Select(Real &chosen, const Word &mask, const Real &a, const Real &b) {
        chosen = reinterpret_cast<Real>((reinterpret_cast<Word>(a) & mask) | (reinterpret_cast<Word>(b) & ~mask));
    }

    /// atan2(y, x) rounded to doubles. doubts: not 0 in lanes where the C library might round otherwise, the bits in
    /// which the other double differs, or all bits where it may be any. Works with
    /// signs instead of comparisons: compilers take large registers apart for many a comparison.
    static ORV_INLINE void TakeAngles(Real &angles, Word &doubts, const Real &x, double y, const KnotTable &table) {
        constexpr double halfTurnLow = 1.2246467991473532e-16;
        constexpr std::int64_t signBit = std::numeric_limits<std::int64_t>::min();
        const Real zero = {}, one = zero + 1.0, half = zero + 0.5, rows = zero + std::fabs(y);
        const Real columns = reinterpret_cast<Real>(reinterpret_cast<Word>(x) & ~signBit);
        Word isSteep, isLeft;
        TakeNegative(isSteep, columns - rows);
        TakeNegative(isLeft, x);
        Real smaller, larger, turn;
        Select(smaller, isSteep, columns, rows);
        Select(larger, isSteep, rows, columns);
        TwoReals first, sum;
        TakeArcTangent(first, smaller, larger, table);
        const Word turned = (isSteep ^ isLeft) & signBit;
        Select(turn, isLeft, one, zero);
        Select(turn, isSteep, half, turn);
        Add(sum, turn * M_PI, reinterpret_cast<Real>(reinterpret_cast<Word>(first.High) ^ turned));
        const Real rest =
            sum.Low + (turn * halfTurnLow + reinterpret_cast<Real>(reinterpret_cast<Word>(first.Low) ^ turned));
        const Real rounded = sum.High + rest, error = rest - (rounded - sum.High);
        angles = y < 0 ? -rounded : rounded;
        // The C library is wrong by less than 0.53 units of the last place, this sum by less than 0.001: what lies
        // within 0.46 units of a double can't be rounded to another. Next to a power of two units are of two sizes.
        constexpr double margin = 1.07;
        Word bits, roundedOtherwise, isTooSmall, isTooLarge;
        TakeBits(bits, rounded);
        TakeBits(roundedOtherwise, rounded + error * margin);
        // Numbers so small that products of their bits vanish are left to the C library.
        TakeNegative(isTooSmall, smaller - 1e-100);
        TakeNegative(isTooLarge, 1e100 - larger);
        const Word isPowerOfTwo = ((bits & 0xFFFFFFFFFFFFF) - 1) >> 63;
        doubts = (bits ^ roundedOtherwise) | isTooSmall | isTooLarge | isPowerOfTwo;
    }
};

constexpr std::intptr_t pieceLength = 256;

/// Angles of a piece of whole registers.
template <std::size_t RegisterBytes>
ORV_INLINE void RoundAngles(const double *x, double y, std::intptr_t count, double *angles, std::int64_t *doubts,
                            const KnotTable &table) {
    using Steps = AngleSteps<RegisterBytes>;
    for (std::intptr_t i = 0; i < count; i += static_cast<std::intptr_t>(Steps::Lanes)) {
        typename Steps::Real from, to;
        typename Steps::Word doubt;
        Image::LoadVector(from, reinterpret_cast<const char *>(x + i));
        Steps::TakeAngles(to, doubt, from, y, table);
        Image::StoreVector(reinterpret_cast<char *>(angles + i), to);
        Image::StoreVector(reinterpret_cast<char *>(doubts + i), doubt);
    }
}

/// Of whole registers of any level.
void RoundAnglesAtLevel(const double *x, double y, std::intptr_t count, double *angles, std::int64_t *doubts) {
    const KnotTable *const table = &Knots();
    if (Image::CurrentLevel() == Image::KernelLevel::Avx512)
        Image::RunAtAvx512([=]() ORV_INLINE_LAMBDA { RoundAngles<64>(x, y, count, angles, doubts, *table); });
    else
        Image::RunAtAvx2([=]() ORV_INLINE_LAMBDA { RoundAngles<32>(x, y, count, angles, doubts, *table); });
}

/// Registers of two doubles are slower than the C library, and of other C libraries it is not known how far wrong
/// they are.
bool IsRoundingQuicker() {
#if defined(__GLIBC__)
    return Image::CurrentLevel() != Image::KernelLevel::Baseline;
#else
    return false;
#endif
}

/// What is not in doubt between two doubles, but may be any.
constexpr std::int64_t AnyAngle = -1;

/// Rounds all angles, and calls settle(i, doubt) for those in doubt: by the bits in which two doubles differ, or by
/// AnyAngle.
template <class Settle>
void ForEachRounded(const double *x, double y, std::intptr_t count, double *angles, Settle &&settle) {
    if (!IsRoundingQuicker())
        return AnglesOfRowPlainly(x, y, count, angles);
    constexpr std::intptr_t mostLanes = 8;
    std::int64_t doubts[pieceLength];
    for (std::intptr_t first = 0; first < count; first += pieceLength) {
        const std::intptr_t length = std::min(count - first, pieceLength);
        const std::intptr_t whole = length - length % mostLanes;
        RoundAnglesAtLevel(x + first, y, whole, angles + first, doubts);
        std::fill(doubts + whole, doubts + length, AnyAngle);
        for (std::intptr_t i = 0; i < length; ++i)
            if (doubts[i] != 0)
                settle(first + i, doubts[i]);
    }
}

} // namespace

void AnglesOfRowPlainly(const double *x, double y, std::intptr_t count, double *angles) {
    for (std::intptr_t i = 0; i < count; ++i)
        angles[i] = std::atan2(y, x[i]);
}

void AnglesOfRow(const double *x, double y, std::intptr_t count, double *angles) {
    ForEachRounded(x, y, count, angles, [=](std::intptr_t i, std::int64_t) { angles[i] = std::atan2(y, x[i]); });
}

std::intptr_t AnglesOrNeighbours(const double *x, double y, std::intptr_t count, double *angles,
                                 DoubtfulAngle *doubts) {
    std::intptr_t found = 0;
    ForEachRounded(x, y, count, angles, [&](std::intptr_t i, std::int64_t doubt) {
        if (doubt == AnyAngle)
            angles[i] = std::atan2(y, x[i]);
        else
            doubts[found++] = {i, std::bit_cast<double>(std::bit_cast<std::int64_t>(angles[i]) ^ doubt)};
    });
    return found;
}

} // namespace Transformations

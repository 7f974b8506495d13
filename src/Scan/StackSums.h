// Sums and sums of squares of the planes of a stack, for a piece of a row, and what is made of them: the mean and the
// deviation, each with the bytes that the formula in double gives. MeanDeviationPlanes.h runs them.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include "Image/KernelLevel.h"
#include "Scan/SquareRoots.h"
#include "Scan/StackReduction.h"
#include "TruncateTo.h"

namespace Scan {

/// Up to so many planes, whole numbers hold the sums of 8-bit and 16-bit pixels, and the proofs below stand.
inline constexpr std::size_t MostExactPlanes = 64;

/// What the sums of pixels are kept in. Double is exact for sums of whole numbers below 2^53: both forms give the
/// same.
template <class T, std::size_t Bytes = sizeof(T)>
struct ExactSums {
    using Sum = double;
    using Squares = double;
};
template <class T>
struct ExactSums<T, 1> {
    using Sum = std::int16_t;
    using Squares = std::int32_t;
};
template <class T>
struct ExactSums<T, 2> {
    using Sum = std::int32_t;
    using Squares = double;
};

template <class T>
using PieceOf = std::array<T, static_cast<std::size_t>(PiecePixels<char>)>;

/// The sums of a piece, and room for what comes out of them.
template <class Sum, class Squares>
struct alignas(64) SumsOfPiece {
    PieceOf<Sum> Sums;
    PieceOf<Squares> SumsOfSquares;
    PieceOf<double> Variances;
};

/// Adds a value and its square.
template <class T, class Sum, class Squares>
ORV_INLINE void AddValue(T value, Sum &sum, Squares &squares) {
    const auto root = static_cast<Squares>(value);
    sum = static_cast<Sum>(sum + static_cast<Sum>(value));
    squares += root * root;
}

/// Adds a pixel of each row, in the order of the planes.
template <class Rows, class Sum, class Squares, std::size_t... I>
ORV_INLINE void AddAll(const Rows &rows, std::intptr_t x, Sum &sum, Squares &squares, std::index_sequence<I...>) {
    (AddValue(rows[I][x], sum, squares), ...);
}

template <class T, class Sum, class Squares>
ORV_INLINE void StartSums(const PieceRows<T, FirstPlanes> &rows, Sum *__restrict sums, Squares *__restrict squares,
                          std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i) {
        Sum sum = 0;
        Squares square = 0;
        AddAll(rows, i, sum, square, std::make_index_sequence<FirstPlanes>());
        sums[i] = sum;
        squares[i] = square;
    }
}

template <class T, class Sum, class Squares>
ORV_INLINE void AddToSums(const PieceRows<T, FurtherPlanes> &rows, Sum *__restrict sums, Squares *__restrict squares,
                          std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i) {
        Sum sum = sums[i];
        Squares square = squares[i];
        AddAll(rows, i, sum, square, std::make_index_sequence<FurtherPlanes>());
        sums[i] = sum;
        squares[i] = square;
    }
}

/// A result as a pixel. Those of 8-bit and 16-bit pixels always fit 32 bits.
template <class T>
ORV_INLINE T PixelOf(double result) {
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(result);
    else if constexpr (sizeof(T) <= 2)
        return static_cast<T>(static_cast<std::int32_t>(result));
    else
        return orvBase::TruncateTo<T>(result);
}

// ---- the formula as it stands

/// Mean and variance of one pixel.
template <class T>
ORV_INLINE void FinishMean(double sum, double squares, double planes, double &variance, T &mean) {
    const double exactMean = sum / planes;
    variance = squares / planes - exactMean * exactMean;
    mean = PixelOf<T>(exactMean);
}

template <class T, class Sum, class Squares>
ORV_INLINE void FinishMeans(const Sum *__restrict sums, const Squares *__restrict squares, double planes,
                            double *__restrict variances, T *__restrict means, std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i)
        FinishMean(static_cast<double>(sums[i]), static_cast<double>(squares[i]), planes, variances[i], means[i]);
}

/// Sums and means in one go, for stacks that the first rows are all of: divisions hide the way to the memory.
template <class T>
ORV_INLINE void MeansOfRows(const PieceRows<T, FirstPlanes> &rows, double planes, double *__restrict variances,
                            T *__restrict means, std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i) {
        double sum = 0;
        double squares = 0;
        AddAll(rows, i, sum, squares, std::make_index_sequence<FirstPlanes>());
        FinishMean(sum, squares, planes, variances[i], means[i]);
    }
}

/// value, or 0. By its bits: compilers keep a branch around what is computed for a choice.
ORV_INLINE double ValueWhere(bool condition, double value) {
    const std::uint64_t mask = condition ? ~std::uint64_t{0} : 0;
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(value) & mask);
}

/// The root of what is not above 0 is not above 0 either, or no number.
template <class T>
ORV_INLINE void FinishDeviations(const double *__restrict roots, T *__restrict deviations, std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i)
        deviations[i] = PixelOf<T>(ValueWhere(roots[i] > 0, roots[i] + 0.5));
}

/// Variances become deviations.
template <class T>
void FinishVariances(double *variances, T *deviations, std::intptr_t count) {
    TakeSquareRoots(variances, count);
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { FinishDeviations(variances, deviations, count); });
}

template <class T, class Sum, class Squares>
void FinishByFormula(SumsOfPiece<Sum, Squares> &piece, std::size_t planes, T *means, T *deviations,
                     std::intptr_t count) {
    const Sum *const sums = piece.Sums.data();
    const Squares *const squares = piece.SumsOfSquares.data();
    double *const variances = piece.Variances.data();
    const auto n = static_cast<double>(planes);
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { FinishMeans(sums, squares, n, variances, means, count); });
    FinishVariances(variances, deviations, count);
}

// ---- the same without divisions
//
// With n planes, S and Q the sums, and D = n * Q - S * S, the mean is S / n and the deviation, rounded, the greatest
// k with D >= n * n * (k - 1/2)^2. All of these are whole numbers or quarters. A whole number that is no multiple of
// n keeps a distance of 1 / n from the next one that is; D and the limit, divided by n * n, keep a distance of at
// least 1 / (4 * 64^2) unless they are equal. The formula's roundings stay below 2^-18 and do not bridge that. They
// are equal only where n is even; where n is a power of two, the formula is without any rounding then.

/// Whether the deviation of so many planes can be told from D.
constexpr bool IsToldByWholeNumbers(std::size_t planes) {
    return planes <= MostExactPlanes && (planes % 2 == 1 || (planes & (planes - 1)) == 0);
}

/// The quotient without its fraction: half a unit further from 0 than sum, no rounding reaches the next whole number.
template <class T, class Real>
ORV_INLINE T MeanOf(Real sum, Real reciprocal) {
    const Real half = sum < 0 ? Real(-0.5) : Real(0.5);
    return static_cast<T>(static_cast<std::int32_t>((sum + half) * reciprocal));
}

template <class T, class Sum, class Squares>
ORV_INLINE void PrepareWholeNumbers(const Sum *__restrict sums, Squares *__restrict squares, std::int32_t planes,
                                    float *__restrict roots, T *__restrict means, std::intptr_t count) {
    using Real = std::conditional_t<sizeof(T) == 1, float, double>;
    const Real reciprocal = Real(1) / static_cast<Real>(planes);
    const auto n = static_cast<Squares>(planes);
    for (std::intptr_t i = 0; i < count; ++i) {
        const auto sum = static_cast<Squares>(sums[i]);
        means[i] = MeanOf<T>(static_cast<Real>(sums[i]), reciprocal);
        squares[i] = n * squares[i] - sum * sum;
        roots[i] = static_cast<float>(squares[i]);
    }
}

/// Single precision tells the root within a hundredth, and whole numbers decide.
template <class T, class Spread>
ORV_INLINE void DecideDeviations(const Spread *__restrict spreads, std::int32_t planes, const float *__restrict roots,
                                 T *__restrict deviations, std::intptr_t count) {
    const float reciprocal = 1.0f / static_cast<float>(planes);
    const auto square = static_cast<Spread>(planes * planes);
    const auto quarter = static_cast<Spread>((planes * planes + 3) / 4);
    for (std::intptr_t i = 0; i < count; ++i) {
        // A tenth less than rounded: the deviation or one less.
        const auto lower = static_cast<std::int32_t>(roots[i] * reciprocal + 0.4f);
        const Spread limit = static_cast<Spread>(lower * (lower + 1)) * square + quarter;
        deviations[i] = static_cast<T>(spreads[i] >= limit ? lower + 1 : lower);
    }
}

template <class T, class Sum, class Squares>
void FinishByWholeNumbers(SumsOfPiece<Sum, Squares> &piece, std::size_t planes, T *means, T *deviations,
                          std::intptr_t count) {
    const Sum *const sums = piece.Sums.data();
    Squares *const spreads = piece.SumsOfSquares.data(); // squares first
    alignas(64) PieceOf<float> buffer;
    float *const roots = buffer.data();
    const auto n = static_cast<std::int32_t>(planes);
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { PrepareWholeNumbers(sums, spreads, n, roots, means, count); });
    TakeSquareRoots(roots, count);
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { DecideDeviations(spreads, n, roots, deviations, count); });
}

} // namespace Scan

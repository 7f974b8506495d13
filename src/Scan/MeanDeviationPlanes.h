// The mean and the deviation of the planes of a stack, in double and in the order of the planes, plain and quick.
#pragma once

#include <cmath>

#include "Scan/StackSums.h"

namespace Scan {

/// A result as a pixel, whatever it is.
template <class T>
T ConvertResult(double result) {
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(result);
    else
        return orvBase::TruncateTo<T>(result);
}

template <class T>
void MeanDeviationPlainly(StackPlanes planes, const Pair<Image::PlaneView> &results) {
    ReducePlainly<T>(planes, results, [](const auto &value, std::size_t count) {
        double sum = 0;
        double squares = 0;
        for (std::size_t plane = 0; plane < count; ++plane) {
            const auto pixel = static_cast<double>(value(plane));
            sum += pixel;
            squares += pixel * pixel;
        }
        const double mean = sum / static_cast<double>(count);
        const double variance = squares / static_cast<double>(count) - mean * mean;
        // Required: the half is added to the deviation of float types, too.
        const double deviation = variance > 0 ? std::sqrt(variance) + 0.5 : 0.0;
        return Pair<T>{ConvertResult<T>(mean), ConvertResult<T>(deviation)};
    });
}

/// What stands in for the rows of missing planes.
template <class T>
inline constexpr std::array<T, static_cast<std::size_t>(PiecePixels<T>)> ZeroRow = {};

/// Sums up with the given kinds of sums, and runs finish(sums, means, deviations, count) on those of each piece.
template <class T, class Sum, class Squares, class Finish>
void ReduceSums(StackPlanes planes, const Pair<Image::PlaneView> &results, Finish &&finish) {
    SumsOfPiece<Sum, Squares> sums;
    Sum *const sum = sums.Sums.data();
    Squares *const squares = sums.SumsOfSquares.data();
    ReduceByPieces<T>(planes, results, [&](const StackPiece<T> &piece, T *means, T *deviations) {
        const std::intptr_t count = piece.Count;
        piece.Fold(
            ZeroRow<T>.data(),
            [=](const PieceRows<T, FirstPlanes> &rows) {
                Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { StartSums(rows, sum, squares, count); });
            },
            [=](const PieceRows<T, FurtherPlanes> &rows) {
                Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { AddToSums(rows, sum, squares, count); });
            });
        finish(sums, means, deviations, count);
    });
}

/// Floats of few planes, in one go.
template <class T>
void ReduceInOneGo(StackPlanes planes, const Pair<Image::PlaneView> &results) {
    alignas(64) PieceOf<double> buffer;
    double *const variances = buffer.data();
    const auto n = static_cast<double>(planes.size());
    ReduceByPieces<T>(planes, results, [&](const StackPiece<T> &piece, T *means, T *deviations) {
        const std::intptr_t count = piece.Count;
        piece.Fold(
            ZeroRow<T>.data(),
            [=](const PieceRows<T, FirstPlanes> &rows) {
                Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { MeansOfRows(rows, n, variances, means, count); });
            },
            [](const PieceRows<T, FurtherPlanes> &) {});
        FinishVariances(variances, deviations, count);
    });
}

/// How the quick form sums up and finishes.
enum class DeviationMethod {
    DoubleSums,   ///< any planes
    WholeSums,    ///< pixels of 8 and 16 bits, up to MostExactPlanes
    WholeNumbers, ///< these where IsToldByWholeNumbers
    OneGo         ///< floats, up to FirstPlanes
};

/// The quickest method that gives the plain result.
template <class T>
DeviationMethod ChooseDeviation(std::size_t planes) {
    if (std::is_floating_point_v<T> && planes <= FirstPlanes)
        return DeviationMethod::OneGo;
    if (sizeof(T) > 2 || planes > MostExactPlanes)
        return DeviationMethod::DoubleSums;
    return IsToldByWholeNumbers(planes) ? DeviationMethod::WholeNumbers : DeviationMethod::WholeSums;
}

/// The same bytes as MeanDeviationPlainly gives, by a method that suits the type and the number of planes. Where the
/// mean is no number, it may be another one that is none.
template <class T>
void MeanDeviationByPieces(DeviationMethod method, StackPlanes planes, const Pair<Image::PlaneView> &results) {
    using Exact = ExactSums<T>;
    const std::size_t n = planes.size();
    const auto byFormula = [n](auto &sums, T *means, T *deviations, std::intptr_t count) {
        FinishByFormula(sums, n, means, deviations, count);
    };
    if constexpr (sizeof(T) <= 2) {
        const auto byWholeNumbers = [n](auto &sums, T *means, T *deviations, std::intptr_t count) {
            FinishByWholeNumbers(sums, n, means, deviations, count);
        };
        if (method == DeviationMethod::WholeNumbers)
            return ReduceSums<T, typename Exact::Sum, typename Exact::Squares>(planes, results, byWholeNumbers);
        if (method == DeviationMethod::WholeSums)
            return ReduceSums<T, typename Exact::Sum, typename Exact::Squares>(planes, results, byFormula);
    }
    if constexpr (std::is_floating_point_v<T>)
        if (method == DeviationMethod::OneGo)
            return ReduceInOneGo<T>(planes, results);
    ReduceSums<T, double, double>(planes, results, byFormula);
}

} // namespace Scan

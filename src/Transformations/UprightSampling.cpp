#include "Transformations/UprightSampling.h"

#include <algorithm>

#include "Image/KernelLevel.h"
#include "Scan/PixelRows.h"
#include "Transformations/RealSampling.h"

namespace Transformations {
namespace {

template <class T>
ORV_INLINE void WeighPixels(double *__restrict left, double *__restrict right, const char *row,
                            const std::intptr_t *leftPlaces, const std::intptr_t *rightPlaces,
                            const double *fractions, std::intptr_t count) {
    using Pixel = typename Scan::Loose<T>::Type;
    for (std::intptr_t i = 0; i < count; ++i) {
        left[i] = static_cast<double>(*reinterpret_cast<const Pixel *>(row + leftPlaces[i])) * (1 - fractions[i]);
        right[i] = static_cast<double>(*reinterpret_cast<const Pixel *>(row + rightPlaces[i])) * fractions[i];
    }
}

/// The weighed pixels of two rows.
struct RowPair {
    const double *UpperLeft, *UpperRight, *LowerLeft, *LowerRight;
};

/// The terms in the order that results are told by.
template <class T>
ORV_INLINE void MixRows(T *__restrict to, const RowPair &rows, double fraction, std::intptr_t count) {
    const double rest = 1 - fraction;
    for (std::intptr_t i = 0; i < count; ++i) {
        const double sum = rows.UpperLeft[i] * rest + rows.UpperRight[i] * rest + rows.LowerLeft[i] * fraction +
                           rows.LowerRight[i] * fraction;
        if constexpr (std::is_floating_point_v<T>)
            to[i] = static_cast<T>(sum);
        else
            to[i] = orvBase::TruncateTo<T>(sum + 0.5);
    }
}

} // namespace

template <class T>
UprightSampling<T>::UprightSampling(const CLinearInterpolator<T, double> &interpolator, const TCoordinateMap &map)
    : interpolator_(interpolator), map_(map), source_(SourceViewOf<T>(interpolator)) {}

template <class T>
void UprightSampling<T>::Weigh(WeighedRow &row) const {
    const char *const pixels = source_.Row(row.Row);
    double *const left = row.Left.data(), *const right = row.Right.data();
    if (columns_.Windows() != nullptr && Image::CurrentLevel() == Image::KernelLevel::Avx512)
        return WeighAtAvx512<T>(columns_, pixels, left, right);
    const std::intptr_t *const leftPlaces = columns_.Left(), *const rightPlaces = columns_.Right();
    const double *const fractions = columns_.Fractions();
    const std::intptr_t count = columns_.Count();
    Image::RunAtLevel(
        [=]() ORV_INLINE_LAMBDA { WeighPixels<T>(left, right, pixels, leftPlaces, rightPlaces, fractions, count); });
}

/// A row of the source, or the guard below its last one. The row to keep is not given up for it.
template <class T>
auto UprightSampling<T>::RowAt(std::int64_t row, std::int64_t keep) -> const WeighedRow & {
    for (const WeighedRow &weighed : rows_)
        if (weighed.Row == row)
            return weighed;
    WeighedRow &weighed = rows_[0].Row == keep ? rows_[1] : rows_[0];
    weighed.Row = row;
    Weigh(weighed);
    return weighed;
}

template <class T>
void UprightSampling<T>::CopyOverlayBits(std::int64_t row, T *to) const {
    if constexpr (std::is_integral_v<T>) {
        const char *const pixels = source_.Row(row);
        for (std::intptr_t i = 0; i < columns_.Count(); ++i) {
            const T pixel = *reinterpret_cast<const typename Scan::Loose<T>::Type *>(pixels + columns_.Left()[i]);
            to[i] = static_cast<T>((to[i] & interpolator_.OverlayMask) | (pixel & 1));
        }
    }
}

/// Writes the pixels of the columns. False, with nothing written, for a row without a source.
template <class T>
bool UprightSampling<T>::SampleRow(std::intptr_t y, T *to) {
    const AffineRow terms = {0.0, map_.Matrix.A21, 0.0, static_cast<double>(y) * map_.Matrix.A22, 0.0, map_.Y};
    const double position = PositionsOnRow{terms, 0}.At(0).Y;
    const auto whole = orvBase::TruncateTo<std::int32_t>(position);
    if (whole < 0 || whole >= source_.Height || columns_.Count() == 0)
        return false;
    const std::int64_t below = std::int64_t{whole} + 1;
    const WeighedRow &upper = RowAt(whole, below), &lower = RowAt(below, whole);
    const RowPair rows = {upper.Left.data(), upper.Right.data(), lower.Left.data(), lower.Right.data()};
    const double fraction = position - whole;
    const std::intptr_t count = columns_.Count();
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { MixRows(to, rows, fraction, count); });
    if (interpolator_.OverlayFlag)
        CopyOverlayBits(whole, to);
    return true;
}

template <class T>
void UprightSampling<T>::FillStretch(const Image::PlaneView &target, std::intptr_t first, std::intptr_t count) {
    columns_.Find(source_, map_, first, count);
    for (WeighedRow &row : rows_) {
        row.Row = -1;
        row.Left.resize(static_cast<std::size_t>(columns_.Count()));
        row.Right.resize(static_cast<std::size_t>(columns_.Count()));
    }
    for (std::intptr_t y = 0; y < target.Height; ++y) {
        char *const pixels = target.Pixel(first, y);
        const bool isArray = Scan::IsArray<T>(target, pixels);
        T *const to = isArray ? reinterpret_cast<T *>(pixels) : buffer_.data();
        T *const inside = to + (columns_.First() - first);
        T *const end = SampleRow(y, inside) ? inside + columns_.Count() : inside;
        std::fill(to, inside, interpolator_.OutsideValue);
        std::fill(end, to + count, interpolator_.OutsideValue);
        if (!isArray)
            Scan::Scatter<T>(target, first, y, count, to);
    }
}

template <class T>
void UprightSampling<T>::Fill(const Image::PlaneView &target) {
    buffer_.resize(static_cast<std::size_t>(std::min(LongestStretch, target.Width)));
    for (std::intptr_t first = 0; first < target.Width; first += LongestStretch)
        FillStretch(target, first, std::min(LongestStretch, target.Width - first));
}

template class UprightSampling<char>;
template class UprightSampling<unsigned char>;
template class UprightSampling<short>;
template class UprightSampling<unsigned short>;
template class UprightSampling<int>;
template class UprightSampling<unsigned int>;
template class UprightSampling<long>;
template class UprightSampling<unsigned long>;
template class UprightSampling<float>;
template class UprightSampling<double>;

} // namespace Transformations

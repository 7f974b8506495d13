#include "Transformations/SixteenthSampling.h"

#include <algorithm>
#include <cmath>

#include "Image/KernelLevel.h"

namespace Transformations {
namespace {

/// Sixteenths of pixels from 0 up to here have both neighbours in a line, and fit 32 bits as parts of 256.
std::uint32_t InnerLimit(std::int64_t pixels) {
    constexpr std::int64_t mostPixels = std::int64_t{1} << 23;
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(pixels - 1, 0, mostPixels) * 16);
}

/// As the kernel sees it, where the neighbours of the grid come in pairs.
template <class T>
SixteenthPlane<T> PlaneOf(const CLinearInterpolatorFPA<T> &interpolator, const Image::PlaneView &view,
                          const SourceGrid &grid) {
    const std::uint32_t innerX = InnerLimit(view.Width), innerY = InnerLimit(view.Height);
    return {&interpolator,
            grid.Base,
            grid.YStep,
            grid.IsTurned,
            grid.IsTurned ? innerY : innerX,
            grid.IsTurned ? innerX : innerY};
}

/// Whether sixteenfold numbers are still far from what double can't hold.
bool AreModerate(const PositionArrays &) {
    return true;
}
bool AreModerate(const CirclePositions &positions) {
    constexpr double limit = 1e100;
    return std::fabs(positions.Radius) < limit && std::fabs(positions.CentreX) < limit &&
           std::fabs(positions.CentreY) < limit;
}

/// TruncateTo<std::int32_t>(16 * position), written without branches.
ORV_INLINE std::int32_t CutOff(double position) {
    constexpr double lowest = std::numeric_limits<std::int32_t>::min();
    const double scaled = 16 * position;
    const double above = scaled > lowest - 1 ? scaled : lowest;
    return static_cast<std::int32_t>(above < -lowest ? above : lowest);
}

/// Where the limits of a source are, and where positions go.
struct CutTarget {
    std::int32_t *X;
    std::int32_t *Y;
    std::uint32_t InnerX;
    std::uint32_t InnerY;
};

/// Result: whether all positions are inner ones.
template <class Positions>
ORV_INLINE bool CutOffAll(const Positions &positions, std::intptr_t count, const CutTarget &target) {
    std::int32_t *__restrict const x = target.X;
    std::int32_t *__restrict const y = target.Y;
    const std::uint32_t innerX = target.InnerX, innerY = target.InnerY;
    std::uint32_t outer = 0;
    for (std::intptr_t i = 0; i < count; ++i) {
        const Position position = positions.At(i);
        const auto cutX = static_cast<std::uint32_t>(CutOff(position.X));
        const auto cutY = static_cast<std::uint32_t>(CutOff(position.Y));
        outer |= static_cast<std::uint32_t>(cutX >= innerX) | static_cast<std::uint32_t>(cutY >= innerY);
        x[i] = static_cast<std::int32_t>(cutX << 4);
        y[i] = static_cast<std::int32_t>(cutY << 4);
    }
    return outer == 0;
}

} // namespace

template <class T>
SixteenthSampling<T>::SixteenthSampling(const CLinearInterpolatorFPA<T> &interpolator)
    : interpolator_(interpolator), view_(SourceViewOf<T>(interpolator)), grid_(SourceGrid::Of<T>(view_)),
      innerX_(InnerLimit(view_.Width)), innerY_(InnerLimit(view_.Height)),
      plane_(PlaneOf(interpolator, view_, grid_)) {}

template <class T>
template <class Positions>
void SixteenthSampling<T>::SampleAll(const Positions &positions, std::intptr_t count, T *target) const {
    if (grid_.Access == NeighbourAccess::Pairs && count >= SixteenthLanes && AreModerate(positions) &&
        Image::CurrentLevel() == Image::KernelLevel::Avx512)
        return SampleAtAvx512(plane_, positions, count, target);
    for (std::intptr_t first = 0; first < count; first += Capacity)
        SamplePiece(positions.From(first), std::min(count - first, Capacity), target + first);
}

template <class T>
template <class Positions>
void SixteenthSampling<T>::SamplePiece(const Positions &positions, std::intptr_t count, T *target) const {
    Piece piece;
    Image::RunAtLevel([&, innerX = innerX_, innerY = innerY_]() ORV_INLINE_LAMBDA {
        const Positions from = positions;
        const std::intptr_t length = count;
        for (std::intptr_t first = 0; first < length; first += TestedLength) {
            const CutTarget to = {piece.X + first, piece.Y + first, innerX, innerY};
            const bool isInner = length - first >= TestedLength ? CutOffAll(from.From(first), TestedLength, to)
                                                                : CutOffAll(from.From(first), length - first, to);
            piece.IsOuter[first / TestedLength] = !isInner;
        }
    });
    std::intptr_t waiting = 0; // where inner positions begin that go together
    for (std::intptr_t first = 0; first < count; first += TestedLength) {
        if (!piece.IsOuter[first / TestedLength])
            continue;
        SampleInner(piece, waiting, first, target);
        waiting = std::min(first + TestedLength, count);
        for (std::intptr_t i = first; i < waiting; ++i) {
            const Position position = positions.At(i);
            target[i] = interpolator_.Sample(CutOff(position.X), CutOff(position.Y));
        }
    }
    SampleInner(piece, waiting, count, target);
}

template <class T>
void SixteenthSampling<T>::SampleInner(const Piece &piece, std::intptr_t first, std::intptr_t end, T *target) const {
    SampleRun(grid_, {piece.X + first, piece.Y + first, 0, 0, end - first}, target + first);
    if (!interpolator_.OverlayFlag)
        return;
    for (std::intptr_t i = first; i < end; ++i) {
        const auto *const pixel =
            reinterpret_cast<const typename Scan::Loose<T>::Type *>(view_.Pixel(piece.X[i] >> 8, piece.Y[i] >> 8));
        target[i] = static_cast<T>((target[i] & ~1) | (*pixel & 1));
    }
}

#define ORV_SIXTEENTH_SAMPLING(T)                                                                                    \
    template class SixteenthSampling<T>;                                                                             \
    template void SixteenthSampling<T>::SampleAll(const PositionArrays &, std::intptr_t, T *) const;                 \
    template void SixteenthSampling<T>::SampleAll(const CirclePositions &, std::intptr_t, T *) const;
ORV_SIXTEENTH_SAMPLING(char)
ORV_SIXTEENTH_SAMPLING(unsigned char)
ORV_SIXTEENTH_SAMPLING(short)
ORV_SIXTEENTH_SAMPLING(unsigned short)

} // namespace Transformations

#include "Transformations/RealSampling.h"

#include <algorithm>

#include "CheckedSize.h"
#include "Image/KernelLevel.h"
#include "Image/PlaneView.h"

namespace Transformations {
namespace {

template <class T, class Positions>
void SamplePlainly(const CLinearInterpolator<T, double> &interpolator, const Positions &positions,
                   std::intptr_t count, T *target) {
    for (std::intptr_t i = 0; i < count; ++i) {
        const Position position = positions.At(i);
        target[i] = interpolator.Sample(position.X, position.Y);
    }
}

/// The limit of positions that have count pixels before them, of which the last ones can't begin a window. A limit of
/// -1 lies above no position.
double InnerLimit(std::intptr_t count, std::intptr_t lastOnes) {
    return count > lastOnes ? static_cast<double>(count - lastOnes) : -1.0;
}

/// Kernels that read pixels as doubles lose bit 0 of the largest ones.
template <class T>
bool KeepsOverlay(const CLinearInterpolator<T, double> &source) {
    return sizeof(T) < 8 || std::is_floating_point_v<T> || !source.OverlayFlag;
}

bool FitsIn32Bits(const Image::PlaneView &view) {
    constexpr std::intptr_t widest = 1 << 30;
    std::intptr_t columns = 0, rows = 0;
    return orvBase::CheckedProduct(columns, view.Width, view.XStep) &&
           orvBase::CheckedProduct(rows, view.Height, view.YStep) && columns > -widest && columns < widest &&
           rows > -widest && rows < widest;
}

/// False where windows don't do.
template <class T>
bool FindWindows(const Image::PlaneView &view, RealPlane<T> &plane) {
    constexpr std::intptr_t pixelBytes = sizeof(T), windowBytes = RealPlane<T>::WindowBytes;
    if (view.XStep == 0 || view.YStep == 0 || !FitsIn32Bits(view))
        return false;
    const std::intptr_t distance = view.XStep < 0 ? -view.XStep : view.XStep;
    std::intptr_t start = 0, neighbours = 1;
    if (pixelBytes < 8) {
        if (distance + pixelBytes > windowBytes)
            return false;
        // The window goes from the left pixel to the right one and, where it is wider, on to the next.
        start = view.XStep < 0 ? pixelBytes - windowBytes : 0;
        neighbours = (windowBytes - pixelBytes + distance - 1) / distance;
    }
    plane.FirstWindow = view.Pixel(0, 0) + start;
    plane.XStep = static_cast<std::int32_t>(view.XStep);
    plane.YStep = static_cast<std::int32_t>(view.YStep);
    plane.LeftByte = static_cast<std::int32_t>(-start);
    plane.RightByte = static_cast<std::int32_t>(view.XStep - start);
    plane.Width = static_cast<double>(view.Width);
    plane.Height = static_cast<double>(view.Height);
    plane.InnerWidth = InnerLimit(view.Width, neighbours);
    plane.InnerHeight = InnerLimit(view.Height, 1);
    return true;
}

} // namespace

template <class T>
RealSampling<T>::RealSampling(const CLinearInterpolator<T, double> &interpolator) : plane_{} {
    plane_.Interpolator = &interpolator;
    hasKernels_ = KeepsOverlay(interpolator) && FindWindows(SourceViewOf<T>(interpolator), plane_);
}

template <class T>
template <class Positions>
void RealSampling<T>::Run(const Positions &positions, std::intptr_t count, T *target) const {
    std::intptr_t done = 0;
    if (hasKernels_ && Image::CurrentLevel() == Image::KernelLevel::Avx512) {
        done = count - count % Avx512Positions;
        SampleAtAvx512(plane_, positions, done, target);
    }
    SamplePlainly(*plane_.Interpolator, positions.From(done), count - done, target + done);
}

#define ORV_REAL_SAMPLING(T)                                                                                         \
    template class RealSampling<T>;                                                                                  \
    template void RealSampling<T>::Run(const PositionArrays &, std::intptr_t, T *) const;                            \
    template void RealSampling<T>::Run(const PositionsOnRow &, std::intptr_t, T *) const;
ORV_REAL_SAMPLING(char)
ORV_REAL_SAMPLING(unsigned char)
ORV_REAL_SAMPLING(short)
ORV_REAL_SAMPLING(unsigned short)
ORV_REAL_SAMPLING(int)
ORV_REAL_SAMPLING(unsigned int)
ORV_REAL_SAMPLING(long)
ORV_REAL_SAMPLING(unsigned long)
ORV_REAL_SAMPLING(float)
ORV_REAL_SAMPLING(double)

} // namespace Transformations

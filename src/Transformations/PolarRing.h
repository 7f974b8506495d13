// A ring that an image is unrolled from, the directions of its columns, and how polar positions are sampled.
#pragma once

#include <cmath>
#include <vector>

#include "Transformations/Interpolator.h"

namespace Transformations {

/// The ring that an image is unrolled from.
struct PolarRing {
    double CentreX;
    double CentreY;
    double OuterRadius; ///< row 0; each row is one pixel further in
    double AngleStep;   ///< half of the mean circumference
    double StartAngle;  ///< radians
};

/// The directions of all columns, worked out once per call and shared by the planes.
class PolarColumns {
public:
    PolarColumns(const PolarRing &ring, std::intptr_t width)
        : cosines_(static_cast<std::size_t>(width)), sines_(cosines_.size()) {
        for (std::size_t x = 0; x < cosines_.size(); ++x) {
            const double angle = static_cast<double>(x) * M_PI / ring.AngleStep + ring.StartAngle;
            sincos(angle, &sines_[x], &cosines_[x]);
        }
    }

    const double *Cosines() const { return cosines_.data(); }
    const double *Sines() const { return sines_.data(); }

private:
    std::vector<double> cosines_, sines_;
};

/// How positions are handed to a sampler: in 1/16 pixel for pixels of 8 and 16 bits, in double for all others.
template <class T>
inline constexpr bool IsSampledInFixedPoint = std::is_integral_v<T> && sizeof(T) <= 2;

template <class T>
using PolarInterpolator =
    std::conditional_t<IsSampledInFixedPoint<T>, CLinearInterpolatorFPA<T>, CLinearInterpolator<T, double>>;

/// Samples where polar geometry leads. Required: fixed-point positions are cut off, not rounded.
template <class T>
T SamplePolar(const PolarInterpolator<T> &interpolator, double x, double y) {
    if constexpr (IsSampledInFixedPoint<T>)
        return interpolator.Sample(orvBase::TruncateTo<std::int32_t>(16 * x),
                                   orvBase::TruncateTo<std::int32_t>(16 * y));
    else
        return interpolator.Sample(x, y);
}

} // namespace Transformations

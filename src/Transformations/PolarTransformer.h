// The worker that unrolls a ring, one plane at a time: columns follow the angle, rows the radius.
#pragma once

#include "Transformations/PolarRing.h"
#include "Transformations/PolarSampling.h"

namespace Transformations {

template <class T, class I = PolarInterpolator<T>>
class CPolarTransformer final : public CBaseTransformer<T, I> {
public:
    /// columns must outlive this.
    CPolarTransformer(Interface::ImageHolder source, const PolarRing &ring, const PolarColumns &columns)
        : CBaseTransformer<T, I>(std::move(source)), ring_(ring), columns_(columns) {}

    /// Fills a plane, as wide as there are columns, from the selected one.
    void Transform(const Image::PlaneView &target) const {
        const Image::PlaneView source = SourceViewOf<T>(this->Interpolator);
        if (source.Width < 1 || source.Height < 1)
            return TransformPlainly(target);
        const PolarSampling<T> sampling(this->Interpolator);
        Scan::Chunk<T> chunk;
        Scan::ForEachPiece<double>(target.Width, target.Height,
                                   [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
                                       T *const to = Scan::PixelsToWrite(target, x, y, chunk);
                                       SampleRow(sampling, x, y, count, to);
                                       Scan::WritePixels(target, x, y, count, to, chunk);
                                   });
    }
    /// The same, pixel by pixel.
    void TransformPlainly(const Image::PlaneView &target) const {
        Scan::Chunk<T> chunk;
        Scan::ForEachPiece<T>(target.Width, target.Height,
                              [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
                                  T *const to = Scan::PixelsToWrite(target, x, y, chunk);
                                  for (std::intptr_t i = 0; i < count; ++i)
                                      to[i] = Sample(x + i, y);
                                  Scan::WritePixels(target, x, y, count, to, chunk);
                              });
    }

private:
    void SampleRow(const PolarSampling<T> &sampling, std::intptr_t first, std::intptr_t y, std::intptr_t count,
                   T *to) const {
        const CirclePositions positions = {columns_.Cosines() + first, columns_.Sines() + first,
                                           ring_.OuterRadius - static_cast<double>(y), ring_.CentreX, ring_.CentreY};
        if constexpr (IsSampledInFixedPoint<T>) {
            sampling.Sample(positions, count, to);
        } else {
            Scan::Chunk<double> atX, atY;
            FindPositions(positions, count, atX.Pixels, atY.Pixels);
            sampling.Sample(atX.Pixels, atY.Pixels, count, to);
        }
    }
    T Sample(std::intptr_t x, std::intptr_t y) const {
        const double radius = ring_.OuterRadius - static_cast<double>(y);
        return SamplePolar<T>(this->Interpolator, radius * columns_.Cosines()[x] + ring_.CentreX,
                              radius * columns_.Sines()[x] + ring_.CentreY);
    }

    PolarRing ring_;
    const PolarColumns &columns_;
};

} // namespace Transformations

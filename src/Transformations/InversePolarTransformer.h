// The worker that rolls an unrolled ring up again, one plane at a time: a walk over the square around the ring in the
// target. Pixel by pixel in the order of the walk, or row by row where no pixel can meet another.
#pragma once

#include "Scan/PixelSet.h"
#include "Transformations/PolarRows.h"
#include "Transformations/PolarSampling.h"

namespace Transformations {

enum class InversePolarMethod { PixelByPixel, RowByRow };

template <class T, class I = PolarInterpolator<T>>
class CInversePolarTransformer final : public CBaseTransformer<T, I> {
public:
    CInversePolarTransformer(Interface::ImageHolder source, const InversePolarRing &ring,
                             const Image::PlaneView &target)
        : CBaseTransformer<T, I>(std::move(source)), ring_(ring), target_(target) {}

    InversePolarMethod ChooseMethod() const {
        const Image::PlaneView source = SourceViewOf<T>(this->Interpolator);
        const bool isOrderFree = source.Width > 0 && source.Height > 0 && target_.HasDistinctPixels() &&
                                 !Image::RangeOf(source).Meets(Image::RangeOf(target_));
        return isOrderFree ? InversePolarMethod::RowByRow : InversePolarMethod::PixelByPixel;
    }

    /// Writes the ring into the target.
    void Transform(const Scan::WalkPlan &plan, const Scan::PixelBounds &bounds, InversePolarMethod method) {
        if (method == InversePolarMethod::PixelByPixel) {
            Scan::QuickWalk(plan, bounds, *this);
        } else {
            InversePolarRows<T> rows(ring_, target_, this->Interpolator);
            Scan::VisitPixels(plan, bounds, rows);
        }
    }

    bool WantsLines() const { return false; }
    bool BeginLine(std::int64_t) const { return true; }
    bool EndLine(std::int64_t) const { return true; }
    bool Pixel(std::int32_t x, std::int32_t y) {
        double u = 0, v = 0;
        // A pixel that is kept need not be read and written back: nobody else looks on.
        if (!ring_.Position(x, y, u, v))
            return true;
        const T sampled = SamplePolar<T>(this->Interpolator, u, v);
        std::memcpy(target_.Pixel(x, y), &sampled, sizeof sampled);
        return true;
    }

private:
    InversePolarRing ring_;
    Image::PlaneView target_;
};

} // namespace Transformations

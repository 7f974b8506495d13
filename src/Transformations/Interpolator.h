// Sampling a plane between its pixels, one position at a time: the plain step that all geometric transforms are told
// by. Quicker loops elsewhere give the same bytes.
#pragma once

#include <limits>
#include <type_traits>

#include "Image/Dimensions.h"
#include "Interface/ImageGuard.h"
#include "Interface/InterfaceId.h"
#include "Scan/PixelRows.h"
#include "Scan/TypedWalk.h"
#include "TruncateTo.h"

namespace Transformations {

template <class T>
using PlainPixel = std::conditional_t<std::is_same_v<T, char>, signed char, T>;

/// What a pixel without a source gets. Required: uneven as it is, callers know these values.
template <class T>
constexpr T BaseOutsideValue() {
    if constexpr (std::is_floating_point_v<T>)
        return T{0};
    else if constexpr (sizeof(T) == 1)
        return static_cast<T>(0x81);
    else if constexpr (sizeof(T) == 2)
        return static_cast<T>(0x7FFF);
    else
        return std::is_signed_v<T> ? T{0} : static_cast<T>(std::numeric_limits<T>::max() >> 1);
}
/// The same for affine maps sampled in double, and for callbacks.
template <class T>
constexpr T AffineOutsideValue() {
    if constexpr (std::is_floating_point_v<T> || std::is_signed_v<PlainPixel<T>>)
        return T{0};
    else
        return static_cast<T>(std::numeric_limits<T>::max() >> 1);
}

/// The source of a transform: an image, the selected plane, and what its pixels share.
template <class T>
class CBaseInterpolator {
public:
    explicit CBaseInterpolator(Interface::ImageHolder source);
    virtual ~CBaseInterpolator() = 0;

    /// False for a plane that the image doesn't have, or whose pixels are not as wide as T.
    bool SelectPlane(std::intptr_t plane);

    Interface::ImageHolder SourceImage;
    char *SourceBase = nullptr;
    const VPAEntry *SourceTable = nullptr;
    std::int64_t SourcePlanes = 0;
    std::int64_t SourceWidth = 0;
    std::int64_t SourceHeight = 0;
    bool OverlayFlag = false; ///< a plane of the source carries an overlay
    T OverlayMask = T{};      ///< all bits but bit 0; 0 for floats
    T OutsideValue = BaseOutsideValue<T>();

protected:
    T Pixel(std::int64_t x, std::int64_t y) const {
        return *reinterpret_cast<const typename Scan::Loose<T>::Type *>(SourceBase + SourceTable[x].XEntry +
                                                                        SourceTable[y].YEntry);
    }
    /// The overlay bit comes from one pixel.
    T WithOverlayOf(T pixel, T sampled) const {
        if constexpr (std::is_integral_v<T>)
            if (OverlayFlag)
                return static_cast<T>((sampled & OverlayMask) | (pixel & 1));
        return sampled;
    }
};

template <class T>
CBaseInterpolator<T>::~CBaseInterpolator() = default;

template <class T>
CBaseInterpolator<T>::CBaseInterpolator(Interface::ImageHolder source) : SourceImage(std::move(source)) {
    const Image::Dimensions size = Image::DimensionsOf(*SourceImage.Get());
    SourcePlanes = size.Planes;
    SourceWidth = size.Width;
    SourceHeight = size.Height;
    if constexpr (std::is_integral_v<T>)
        OverlayMask = static_cast<T>(~T{1});
    for (std::int64_t plane = 0; plane < SourcePlanes && !OverlayFlag; ++plane) {
        TDataType type = DataTypeNone;
        const bool isTold = SourceImage->GetPlaneDatatype(plane, &type) == Interface::StatusOk;
        OverlayFlag = isTold && type != DataTypeNone && (type & DataTypeOverlay) != 0;
    }
    SelectPlane(0);
}

template <class T>
bool CBaseInterpolator<T>::SelectPlane(std::intptr_t plane) {
    Image::PlaneFacts facts;
    if (plane < 0 || plane >= SourcePlanes || !Image::ReadPlaneFacts(*SourceImage.Get(), plane, facts) ||
        Image::BytesOf(facts.Datatype) != static_cast<std::intptr_t>(sizeof(T)))
        return false;
    SourceBase = static_cast<char *>(facts.Base);
    SourceTable = facts.Table;
    return true;
}

/// The selected plane, with one look at its table. Empty where none is selected.
template <class T>
Image::PlaneView SourceViewOf(const CBaseInterpolator<T> &source) {
    if (source.SourceTable == nullptr)
        return {};
    const Image::PlaneFacts facts = {source.SourceBase, const_cast<VPAEntry *>(source.SourceTable), 8 * sizeof(T)};
    return Image::ViewOf(facts, {source.SourcePlanes, source.SourceWidth, source.SourceHeight});
}

/// Samples at real positions.
template <class T, class Position>
class CLinearInterpolator;

template <class T>
class CLinearInterpolator<T, double> final : public CBaseInterpolator<T> {
public:
    using CBaseInterpolator<T>::CBaseInterpolator;

    T Sample(double x, double y) const {
        // A position beyond 32 bits, or none, converts to the lowest integer.
        const auto ix = orvBase::TruncateTo<std::int32_t>(x), iy = orvBase::TruncateTo<std::int32_t>(y);
        if (ix < 0 || ix >= this->SourceWidth || iy < 0 || iy >= this->SourceHeight)
            return this->OutsideValue;
        const double fx = x - ix, fy = y - iy;
        const T p00 = this->Pixel(ix, iy);
        const std::int64_t right = std::int64_t{ix} + 1, below = std::int64_t{iy} + 1;
        const double sum = static_cast<double>(p00) * (1 - fx) * (1 - fy) +
                           static_cast<double>(this->Pixel(right, iy)) * fx * (1 - fy) +
                           static_cast<double>(this->Pixel(ix, below)) * (1 - fx) * fy +
                           static_cast<double>(this->Pixel(right, below)) * fx * fy;
        if constexpr (std::is_floating_point_v<T>)
            return static_cast<T>(sum);
        else
            return this->WithOverlayOf(p00, orvBase::TruncateTo<T>(sum + 0.5));
    }
};

/// The base of those that work in fixed point, for pixels of 8 and 16 bits.
template <class T>
class CBaseInterpolatorFPA : public CBaseInterpolator<T> {
    static_assert(std::is_integral_v<T> && sizeof(T) <= 2);

public:
    using CBaseInterpolator<T>::CBaseInterpolator;
    ~CBaseInterpolatorFPA() override = 0;
};

template <class T>
CBaseInterpolatorFPA<T>::~CBaseInterpolatorFPA() = default;

/// Samples at positions in units of 1/16 pixel.
template <class T>
class CLinearInterpolatorFPA final : public CBaseInterpolatorFPA<T> {
public:
    using CBaseInterpolatorFPA<T>::CBaseInterpolatorFPA;

    T Sample(std::int32_t sx, std::int32_t sy) const { return Sample(sx >> 4, sy >> 4, sx & 15, sy & 15); }

    /// The same with whole pixels and weights from 0 to 15 apart.
    T Sample(std::int32_t ix, std::int32_t iy, std::int32_t fx, std::int32_t fy) const {
        if (ix < 0 || ix >= this->SourceWidth || iy < 0 || iy >= this->SourceHeight)
            return this->OutsideValue;
        const T p00 = this->Pixel(ix, iy);
        const std::int64_t right = std::int64_t{ix} + 1, below = std::int64_t{iy} + 1;
        const std::int32_t sum = (Value(p00) * (16 - fx) + Value(this->Pixel(right, iy)) * fx) * (16 - fy) +
                                 Value(this->Pixel(ix, below)) * (16 - fx) * fy +
                                 Value(this->Pixel(right, below)) * fx * fy;
        // Required: 8, not 128, is added before the shift.
        return this->WithOverlayOf(p00, static_cast<T>((sum + 8) >> 8));
    }

private:
    static std::int32_t Value(T pixel) { return static_cast<PlainPixel<T>>(pixel); }
};

/// A functor that samples the selected plane by interpolator I.
template <class T, class I>
class CBaseTransformer : public orvScan::scanfunctor_unary_t<T> {
public:
    explicit CBaseTransformer(Interface::ImageHolder source) : Interpolator(std::move(source)) {}

    bool SelectPlane(std::intptr_t plane) override { return Interpolator.SelectPlane(plane); }

    I Interpolator;
};

} // namespace Transformations

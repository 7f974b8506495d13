// The walk over an area of a plane with the work per pixel compiled in, once per pixel type and operation.
#pragma once

#include <functional>

#include "Image/PlaneFacts.h"
#include "Interface/ImageGuard.h"
#include "Scan/PixelRows.h"
#include "Scan/PixelSet.h"

namespace orvBase {

/// A pair of coordinates.
template <class T>
struct vector_t {
    T X;
    T Y;
};

} // namespace orvBase

namespace orvScan {

/// The base of all functors over pixels of type T.
template <class T>
class scanfunctor_unary_t {
public:
    virtual ~scanfunctor_unary_t() = default;
    /// Prepares for a plane. False when there is no such plane, or its pixels are not as wide as T.
    virtual bool SelectPlane(std::intptr_t plane) = 0;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
/// In the place of line callbacks where there are none.
struct nullcallback : std::unary_function<orvBase::vector_t<int>, bool>,
                      std::binary_function<orvBase::vector_t<int>, int, bool> {
    bool operator()(const orvBase::vector_t<int> &) const { return true; }
    bool operator()(const orvBase::vector_t<int> &, int) const { return true; }
};
#pragma GCC diagnostic pop

/// Leads the pixels of type T of a walk over a plane to an operation, which has
///   void operator()(Pixel &pixel)                  Pixel being Scan::Loose<T>::Type
///   void Rows(const Image::PlaneView &rectangle)   the same for each pixel of a rectangle of the plane
///   void Row(const Image::PlaneView &plane, std::intptr_t x, std::intptr_t y, std::intptr_t count)   and of a row
///   static bool IsOrderFree(const Image::PlaneView &plane)   whether the order of pixels makes no difference
template <class T, class Op>
class CIterateAdaptor final : public scanfunctor_unary_t<T> {
public:
    CIterateAdaptor(pOLE::IImageVPA &image, Op &operation)
        : image_(image), size_(Image::DimensionsOf(image)), operation_(operation) {}

    bool SelectPlane(std::intptr_t plane) override {
        return SelectPlaneOfAnyWidth(plane) && view_.Bytes == std::intptr_t{sizeof(T)};
    }
    /// Pixels that are wider than T hold it in their first bytes.
    bool SelectPlaneOfAnyWidth(std::intptr_t plane) {
        Image::PlaneFacts facts;
        if (plane < 0 || plane >= size_.Planes || !Image::ReadPlaneFacts(image_, plane, facts))
            return false;
        view_ = Image::ViewOf(facts, size_);
        return true;
    }

    /// The selected plane, with density from 1 to 1000. Result: as that of the exported scans.
    std::int64_t Walk(const TArea &area, std::int64_t density) {
        const auto plan = Scan::PlanWalk(area, density);
        if (!plan)
            return -1;
        const Scan::PixelBounds bounds = Scan::BoundsOf(size_.Width, size_.Height);
        return Op::IsOrderFree(view_) ? Scan::VisitPixels(*plan, bounds, *this)
                                      : Scan::QuickWalk(*plan, bounds, *this);
    }

    void Rectangle(std::int32_t left, std::int32_t top, std::int64_t width, std::int64_t height) {
        operation_.Rows(view_.Part(left, top, width, height));
    }
    void Span(std::int32_t left, std::int32_t y, std::int64_t width) { operation_.Row(view_, left, y, width); }
    bool Pixel(std::int32_t x, std::int32_t y) {
        operation_(*reinterpret_cast<typename Scan::Loose<T>::Type *>(view_.Pixel(x, y)));
        return true;
    }

    bool WantsLines() const { return false; }
    bool BeginLine(std::int64_t) const { return line_({}, 0); }
    bool EndLine(std::int64_t) const { return line_({}, 0); }

private:
    pOLE::IImageVPA &image_;
    Image::Dimensions size_;
    Op &operation_;
    Image::PlaneView view_;
    nullcallback line_;
};

} // namespace orvScan

namespace Scan {

/// Walks over an area of a plane, in pixel coordinates. Result: as that of the exported scans; -1 also for no image,
/// a plane out of range or of another pixel width than T, and a density below 1.
template <class T, class Op>
std::int64_t TypedWalk(pOLE::IImageVPA *image, std::intptr_t plane, const TArea &area, std::int64_t density,
                       Op &operation) {
    constexpr std::int64_t highestDensity = 1000, failed = -1;
    if (image == nullptr || density < 1)
        return failed;
    const auto held = Interface::ImageHolder::Share(image);
    orvScan::CIterateAdaptor<T, Op> adaptor(*image, operation);
    return adaptor.SelectPlane(plane) ? adaptor.Walk(area, std::min(density, highestDensity)) : failed;
}

} // namespace Scan

// Copying an area of a plane, pixel for pixel, to a place in another image.
#include <cmath>

#include "AreaOperations.h"
#include "Image/PlaneCopy.h"
#include "Scan/PixelRows.h"
#include "Scan/PixelSet.h"
#include "Scan/PixelType.h"
#include "Scan/ScanRequest.h"
#include "TruncateTo.h"

namespace Scan {
namespace {

constexpr const char *FunctionName = "CopyImageArea";
constexpr std::int64_t allPixels = 1000;

/// Copies the pixels of a walk. Views are whole planes, whose guard entries may be used.
template <class T>
struct AreaCopy {
    Image::PlaneView Source;
    Image::PlaneView Target;
    std::intptr_t Dx;
    std::intptr_t Dy;

    bool WantsLines() const { return false; }
    bool BeginLine(std::int64_t) const { return true; }
    bool EndLine(std::int64_t) const { return true; }
    bool Pixel(std::int32_t x, std::int32_t y) const {
        std::memcpy(Target.Pixel(x + Dx, y + Dy), Source.Pixel(x, y), sizeof(T));
        return true;
    }
    void Span(std::int32_t left, std::int32_t y, std::int64_t width) const {
        constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
        if (Source.XStep == size && Target.XStep == size)
            std::memcpy(Target.Pixel(left + Dx, y + Dy), Source.Pixel(left, y),
                        static_cast<std::size_t>(width * size));
        else
            Rectangle(left, y, width, 1);
    }
    void Rectangle(std::int32_t left, std::int32_t top, std::int64_t width, std::int64_t height) const {
        Image::CopyDisjointPlane(Source.Part(left, top, width, height),
                                 Target.Part(left + Dx, top + Dy, width, height));
    }
};

bool IsInsideImages(const PixelBounds &walked, const Image::Dimensions &first, const Image::Dimensions &second,
                    std::intptr_t dx, std::intptr_t dy) {
    return walked.Right < first.Width && walked.Bottom < first.Height && walked.Right + dx < second.Width &&
           walked.Bottom + dy < second.Height;
}

/// The part of the bounds that samples can lie in, roughly. All of it when a line can begin on the far side.
PixelBounds AroundSamples(const TArea &area, const PixelBounds &bounds) {
    constexpr double margin = 2.0, furthest = 65000.0;
    const auto x = std::minmax({area.X0, area.X1, area.X2, area.X1 + area.X2 - area.X0});
    const auto y = std::minmax({area.Y0, area.Y1, area.Y2, area.Y1 + area.Y2 - area.Y0});
    const bool isOrdinary = x.first >= 0.0 && y.first >= 0.0 && x.second <= furthest && y.second <= furthest;
    if (!isOrdinary)
        return bounds;
    return {bounds.Left, bounds.Top, std::min(bounds.Right, static_cast<std::int32_t>(x.second + margin)),
            std::min(bounds.Bottom, static_cast<std::int32_t>(y.second + margin))};
}

struct CopyRequest {
    pOLE::IImageVPA &Source;
    pOLE::IImageVPA &Target;
    Image::PlaneFacts SourcePlane;
    Image::PlaneFacts TargetPlane;
    std::int64_t Dx;
    std::int64_t Dy;
    TArea Area;
};

/// Result: as that of ScanPlaneBinary.
template <class T>
std::int64_t CopyPixels(const CopyRequest &request) {
    const Image::Dimensions source = Image::DimensionsOf(request.Source);
    const Image::Dimensions target = Image::DimensionsOf(request.Target);
    const auto plan = PlanWalk(request.Area, allPixels);
    if (!plan)
        return scanFailed;
    // Required: the bounds of ScanPlaneBinary, which reach one column and row behind the last.
    const PixelBounds bounds = CommonBounds(source, target, request.Dx, request.Dy, 1);
    AreaCopy<T> copy = {Image::ViewOf(request.SourcePlane, source), Image::ViewOf(request.TargetPlane, target),
                        static_cast<std::intptr_t>(request.Dx), static_cast<std::intptr_t>(request.Dy)};
    if (bounds.Left > bounds.Right || bounds.Top > bounds.Bottom)
        return QuickWalk(*plan, bounds, copy);
    const bool isOrderFree = copy.Target.HasDistinctPixels() &&
                             IsInsideImages(AroundSamples(request.Area, bounds), source, target, copy.Dx, copy.Dy) &&
                             !Image::RangeOf(copy.Source).Meets(Image::RangeOf(copy.Target));
    return isOrderFree ? VisitPixels(*plan, bounds, copy) : QuickWalk(*plan, bounds, copy);
}

std::int32_t Refuse(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return 0;
}

/// From the rounded corner of the area to the target position, wrapping.
std::int64_t Offset(std::int64_t target, double corner) {
    return Advance(target, -1, orvBase::TruncateTo<std::int64_t>(std::floor(corner + 0.5)));
}

bool HasPlane(const Image::Dimensions &size, std::intptr_t plane) {
    return plane >= 0 && plane < size.Planes;
}

} // namespace
} // namespace Scan

int32_t CopyImageArea(void *source, void *target, intptr_t sourcePlane, intptr_t targetPlane, int64_t targetX,
                      int64_t targetY, TArea area) {
    using namespace Scan;
    const Interface::ImageForCall from = Interface::GuardCall(source, FunctionName);
    if (!from.IsValid())
        return 0;
    const Interface::ImageForCall to = Interface::GuardCall(target, FunctionName);
    if (!to.IsValid())
        return 0;
    if (!HasPlane(Image::DimensionsOf(*from.Get()), sourcePlane) ||
        !HasPlane(Image::DimensionsOf(*to.Get()), targetPlane))
        return Refuse(ErrPlaneIndex);
    CopyRequest request = {*from.Get(), *to.Get(), {}, {}, Offset(targetX, area.X0), Offset(targetY, area.Y0), area};
    if (!Image::ReadPlaneFacts(*from.Get(), sourcePlane, request.SourcePlane) ||
        !Image::ReadPlaneFacts(*to.Get(), targetPlane, request.TargetPlane))
        return Refuse(ErrGeneral);
    if (request.SourcePlane.Datatype != request.TargetPlane.Datatype)
        return Refuse(ErrNotPossible);
    std::int64_t copied = scanFailed;
    if (!ForPixelType(request.SourcePlane.Datatype, [&]<class T>() { copied = CopyPixels<T>(request); }))
        return Refuse(ErrDataType);
    return copied != scanFailed ? 1 : 0;
}

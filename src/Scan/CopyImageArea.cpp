// Copying an area of a plane, pixel for pixel, to a place in another image.
#include <cmath>

#include "AreaOperations.h"
#include "Image/PlaneCopy.h"
#include "Scan/ImagePlanes.h"
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
        char pixel[sizeof(T)]; // both may share memory
        std::memcpy(pixel, Source.Pixel(x, y), sizeof pixel);
        std::memcpy(Target.Pixel(x + Dx, y + Dy), pixel, sizeof pixel);
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

/// From the lowest to the highest position along an axis, in pixels.
struct Reach {
    double Lowest, Highest;
};

/// Of all samples. Not that of the area: steps are rounded, so that the last line can lie far behind its edge.
/// mostCorrection  what the alignment of a line can add to its highest position; never along the line's own axis.
Reach ReachOf(std::int64_t start, std::int64_t sampleStep, std::int64_t lineStep, const WalkPlan &plan,
              double mostCorrection) {
    const auto travel = [](std::int64_t step, std::int64_t steps) {
        return static_cast<double>(step) / 65536.0 * static_cast<double>(steps);
    };
    const double first = static_cast<double>(start) / 65536.0;
    const double along = travel(sampleStep, plan.Samples - 1), across = travel(lineStep, plan.Lines - 1);
    return {first + std::min(along, 0.0) + std::min(across, 0.0),
            first + std::max(along, 0.0) + std::max(across, 0.0) + mostCorrection};
}

/// The part of the bounds that samples can lie in. All of it when a line can begin on the far side.
PixelBounds AroundSamples(const WalkPlan &plan, const PixelBounds &bounds) {
    constexpr double furthest = 65000.0;
    const FixedPoint &step = plan.SampleStep;
    const double slope = std::fabs(plan.IsYMajor ? static_cast<double>(step.X) / static_cast<double>(step.Y)
                                                 : static_cast<double>(step.Y) / static_cast<double>(step.X));
    const Reach x = ReachOf(plan.Start.X, step.X, plan.LineStep.X, plan, plan.IsYMajor ? slope : 0.0);
    const Reach y = ReachOf(plan.Start.Y, step.Y, plan.LineStep.Y, plan, plan.IsYMajor ? 0.0 : slope);
    const bool isOrdinary = x.Lowest >= 0.0 && y.Lowest >= 0.0 && x.Highest <= furthest && y.Highest <= furthest;
    if (!isOrdinary)
        return bounds;
    return {bounds.Left, bounds.Top, std::min(bounds.Right, static_cast<std::int32_t>(x.Highest)),
            std::min(bounds.Bottom, static_cast<std::int32_t>(y.Highest))};
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
                             IsInsideImages(AroundSamples(*plan, bounds), source, target, copy.Dx, copy.Dy) &&
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
    TDataType sourceType = 0, targetType = 0;
    if (from->GetPlaneDatatype(sourcePlane, &sourceType) != Interface::StatusOk ||
        to->GetPlaneDatatype(targetPlane, &targetType) != Interface::StatusOk)
        return Refuse(ErrGeneral);
    if (sourceType != targetType)
        return Refuse(ErrNotPossible);
    if (PixelTypeOf(sourceType) == PixelType::Unsupported)
        return Refuse(ErrDataType);
    if (!Image::ReadPlaneFacts(*from.Get(), sourcePlane, request.SourcePlane) ||
        !Image::ReadPlaneFacts(*to.Get(), targetPlane, request.TargetPlane))
        return Refuse(ErrGeneral);
    std::int64_t copied = scanFailed;
    ForPixelType(sourceType, [&]<class T>() { copied = CopyPixels<T>(request); });
    return copied != scanFailed ? 1 : 0;
}

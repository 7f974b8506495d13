// CopyOverlay: carries bit 0 of each pixel over into another image, in place.
#include "ErrorHandling.h"
#include "Interface/ImageGuard.h"
#include "Overlays.h"
#include "Scan/ImagePlanes.h"
#include "Scan/OverlayBits.h"
#include "Scan/OverlayPixels.h"

namespace Scan {
namespace {

constexpr const char *FunctionName = "CopyOverlay";

int32_t Fail(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return 0;
}

/// False, with the failure reported, when one of the two can't hold an overlay.
bool CopyPlane(const Image::PlaneFacts &source, const Image::PlaneFacts &target, const Image::Dimensions &size) {
    if (!CanHoldOverlay(source.Datatype) || !CanHoldOverlay(target.Datatype)) {
        ReportORVError(ErrDataType, FunctionName);
        return false;
    }
    if (!HasPixels(size))
        return true;
    const Image::PlaneView from = ViewOf(source, size);
    const Image::PlaneView to = ViewOf(target, size);
    CopyOverlayBits(ChooseOverlay(from, to), from, to);
    return true;
}

} // namespace
} // namespace Scan

int32_t CopyOverlay(void *source, void *target) {
    using namespace Scan;
    const Interface::ImageForCall from = Interface::GuardCall(source, FunctionName);
    if (!from.IsValid())
        return 0;
    const Interface::ImageForCall to = Interface::GuardCall(target, FunctionName);
    if (!to.IsValid())
        return 0;
    const Image::Dimensions size = Image::DimensionsOf(*from.Get());
    const Image::Dimensions targetSize = Image::DimensionsOf(*to.Get());
    if (size.Planes != targetSize.Planes || size.Width != targetSize.Width || size.Height != targetSize.Height)
        return Fail(ErrIndexRange);
    std::vector<Image::PlaneFacts> sources, targets;
    if (!ReadPlanes(*from.Get(), size, sources) || !ReadPlanes(*to.Get(), size, targets))
        return Fail(ErrGeneral);
    std::intptr_t copied = 0;
    for (std::size_t plane = 0; plane < sources.size(); ++plane)
        copied += CopyPlane(sources[plane], targets[plane], size) ? 1 : 0;
    if (copied == size.Planes)
        return 1;
    if (copied == 0)
        return Fail(ErrDataType);
    ReportORVError(SomePlanesLeftOut, FunctionName);
    return 1;
}

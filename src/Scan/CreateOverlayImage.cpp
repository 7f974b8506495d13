// CreateOverlayImage: a copy of an image that is ready to carry graphics in bit 0 of its pixels.
#include "ImageCopies.h"
#include "Overlays.h"
#include "Scan/DataBits.h"
#include "Scan/ImagePlanes.h"
#include "Scan/OverlayPixels.h"
#include "Scan/ResultImage.h"
#include "Scan/ThreeBytePixels.h"

namespace Scan {
namespace {

constexpr const char *FunctionName = "CreateOverlayImage";

using Views = std::vector<Image::PlaneView>;

int32_t Fail(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return 0;
}

bool IsHandled(const Image::PlaneFacts &source, const Image::PlaneFacts &target) {
    return CanHoldOverlay(source.Datatype) && Image::BytesOf(source.Datatype) == Image::BytesOf(target.Datatype);
}

void CopyPlane(const Image::PlaneView &source, const Image::PlaneView &target) {
    CopyDataBits(ChooseDataBits(source, target), source, target);
}

/// Three planes between each other on both sides go as one, whichever way they are turned. False when they do not.
bool CopyThreeBytes(const Views &source, const Views &target) {
    const auto from = AsThreeBytePixels(source);
    const auto to = AsThreeBytePixels(target);
    if (!from || !to || from->PlaneOfByte != to->PlaneOfByte)
        return false;
    CopyPlane(from->Pixels, to->Pixels);
    return true;
}

/// The views of the planes that are handled; each other one is reported.
struct HandledPlanes {
    Views Source, Target;
    std::intptr_t Count = 0;
};

HandledPlanes SelectPlanes(const std::vector<Image::PlaneFacts> &source, const std::vector<Image::PlaneFacts> &target,
                           const Image::Dimensions &size) {
    HandledPlanes planes;
    for (std::size_t plane = 0; plane < source.size(); ++plane) {
        if (!IsHandled(source[plane], target[plane])) {
            ReportORVError(ErrDataType, FunctionName);
            continue;
        }
        ++planes.Count;
        if (!HasPixels(size))
            continue;
        planes.Source.push_back(ViewOf(source[plane], size));
        planes.Target.push_back(ViewOf(target[plane], size));
    }
    return planes;
}

void CopyPlanes(const HandledPlanes &planes) {
    if (CopyThreeBytes(planes.Source, planes.Target))
        return;
    for (std::size_t plane = 0; plane < planes.Source.size(); ++plane)
        CopyPlane(planes.Source[plane], planes.Target[plane]);
}

} // namespace
} // namespace Scan

int32_t CreateOverlayImage(void *image, void **result) {
    using namespace Scan;
    const Interface::ImageForCall source = Interface::GuardCall(image, FunctionName);
    if (!source.IsValid())
        return 0;
    if (result == nullptr)
        return Fail(ErrParameter);
    void *made = nullptr;
    const bool isMade = CreateCompatibleImage(image, 0, 0, 1, &made);
    Interface::ImageHolder target = AdoptImage(made);
    if (!isMade || !target.IsValid())
        return Fail(ErrGeneral);
    const Image::Dimensions size = Image::DimensionsOf(*source.Get());
    const Image::Dimensions targetSize = Image::DimensionsOf(*target.Get());
    std::vector<Image::PlaneFacts> from, to;
    // The image may be of a foreign class, and have changed since the target was made in its form.
    if (size.Planes != targetSize.Planes || size.Width != targetSize.Width || size.Height != targetSize.Height ||
        !ReadPlanes(*source.Get(), size, from) || !ReadPlanes(*target.Get(), size, to))
        return Fail(ErrGeneral);
    const HandledPlanes planes = SelectPlanes(from, to, size);
    CopyPlanes(planes);
    PassCoordinateMap(*source.Get(), *target.Get());
    if (planes.Count == 0 && size.Planes != 0)
        return Fail(ErrDataType);
    if (planes.Count != size.Planes)
        ReportORVError(SomePlanesLeftOut, FunctionName);
    *result = target.Detach();
    return 1;
}

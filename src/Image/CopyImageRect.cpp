// The exported copies of rectangles.
#include <algorithm>

#include "Image/CopyMethods.h"
#include "Interface/Boundary.h"
#include "RectangleCopy.h"

namespace Image {
namespace {

constexpr const char *OnePlaneName = "CopyImageRect";
constexpr const char *AllPlanesName = "CopyImageRectPlanes";

bool HasPlane(const vpat_analyzer &image, std::intptr_t plane) {
    return plane >= 0 && plane < image.Planes();
}

bool Refuse(std::uint32_t code, const char *functionName) {
    ReportORVError(code, functionName);
    return false;
}

/// One plane into another; failures are reported as those of the one-plane copy.
bool CopyOnePlane(const vpat_analyzer &source, const vpat_analyzer &target, std::intptr_t sourcePlane,
                  std::intptr_t targetPlane, PixelRectangle rectangle, PixelPosition at) {
    if (!HasPlane(source, sourcePlane) || !HasPlane(target, targetPlane))
        return Refuse(ErrPlaneIndex, OnePlaneName);
    if (!ClipRect(source, target, rectangle, at))
        return true;
    const bool wholeLines = rectangle.Width() == source.Width();
    const CopyMethod method = ChooseCopy(source, sourcePlane, target, targetPlane, wholeLines);
    if (method == CopyMethod::CopyIncompatible)
        return Refuse(ErrDataType, OnePlaneName);
    RunCopy(method, source, sourcePlane, target, targetPlane, rectangle, at, true);
    return true;
}

bool CopyAllPlanes(const vpat_analyzer &source, const vpat_analyzer &target, PixelRectangle rectangle,
                   PixelPosition at) {
    if (!ClipRect(source, target, rectangle, at))
        return true;
    if (source.Planes() == target.Planes() && source.Planes() > 0) {
        const CopyMethod method = ChooseCopyAll(source, target, rectangle.Width() == source.Width());
        if (method == CopyMethod::CopyIncompatible)
            return Refuse(ErrDataType, AllPlanesName);
        if (CopyAllPlanesAtOnce(source, target, rectangle, at))
            return true;
    }
    const std::intptr_t planes = std::min(source.Planes(), target.Planes());
    // Required: a plane that fails is reported and does not change the result.
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        Interface::KernelWordBoundary(OnePlaneName,
                                      [&] { return CopyOnePlane(source, target, plane, plane, rectangle, at); });
    return true;
}

/// The plane's facts. False when the plane, or any other of the image, is none, or when there are unusually many.
bool ReadPlane(pOLE::IImageVPA &image, const Dimensions &size, std::intptr_t plane, PlaneFacts &facts) {
    constexpr std::intptr_t usualPlanes = 32;
    if (plane < 0 || plane >= size.Planes || size.Planes > usualPlanes)
        return false;
    PlaneFacts other;
    for (std::intptr_t i = 0; i < size.Planes; ++i)
        if (!ReadPlaneFacts(image, i, i == plane ? facts : other))
            return false;
    return true;
}

bool IsInside(const Dimensions &size, const PixelPosition &at, std::intptr_t width, std::intptr_t height) {
    return at.X >= 0 && at.Y >= 0 && at.X <= size.Width - width && at.Y <= size.Height - height;
}

/// Looks at the rectangle's own entries only.
PlaneView PartOf(const PlaneFacts &plane, const PixelPosition &at, std::intptr_t width, std::intptr_t height) {
    const VPAEntry *columns = plane.Table + at.X;
    const VPAEntry *rows = plane.Table + at.Y;
    const TableSteps steps = CommonSteps({columns, width, rows, height});
    return {static_cast<char *>(plane.Base), columns, rows, width, height, BytesOf(plane.Datatype), steps.X, steps.Y};
}

/// The road of most rectangles, which lie inside both images and share no memory: there, all numbered methods give
/// the same bytes, and the quickest that the rectangle's own part of both tables allows can run. False, with nothing
/// copied or reported, in all other cases, failures included.
bool CopyDisjointRectangle(pOLE::IImageVPA &source, std::intptr_t sourcePlane, pOLE::IImageVPA &target,
                           std::intptr_t targetPlane, PixelRectangle rectangle, PixelPosition targetPosition) {
    const Dimensions sourceSize = DimensionsOf(source), targetSize = DimensionsOf(target);
    PlaneFacts from, to;
    if (!ReadPlane(source, sourceSize, sourcePlane, from) || !ReadPlane(target, targetSize, targetPlane, to) ||
        from.Datatype != to.Datatype || !IsTypedWidth(BytesOf(from.Datatype)) ||
        !ClipRect(sourceSize, targetSize, rectangle, targetPosition))
        return false;
    const std::intptr_t width = rectangle.Width(), height = rectangle.Height();
    const PixelPosition sourcePosition = {rectangle.Left, rectangle.Top};
    if (width < 1 || height < 1 || !IsInside(sourceSize, sourcePosition, width, height) ||
        !IsInside(targetSize, targetPosition, width, height))
        return false;
    const PlaneView sourceView = PartOf(from, sourcePosition, width, height);
    const PlaneView targetView = PartOf(to, targetPosition, width, height);
    if (RangeOf(sourceView).Meets(RangeOf(targetView)))
        return false;
    CopyDisjointPlane(sourceView, targetView);
    return true;
}

/// Guards both handles and runs copy(source, target).
template <class Copy>
bool OnTwoImages(void *source, void *target, const char *functionName, Copy &&copy) {
    Interface::ImageForCall from = Interface::GuardCall(source, functionName);
    if (!from.IsValid())
        return false;
    Interface::ImageForCall to = Interface::GuardCall(target, functionName);
    if (!to.IsValid())
        return false;
    return Interface::KernelWordBoundary(functionName, [&] { return copy(from, to); });
}

} // namespace
} // namespace Image

bool CopyImageRect(void *source, void *target, intptr_t sourcePlane, intptr_t targetPlane, int32_t left, int32_t top,
                   int32_t right, int32_t bottom, int32_t targetX, int32_t targetY) {
    using namespace Image;
    const PixelRectangle rectangle = {left, top, right, bottom};
    const PixelPosition at = {targetX, targetY};
    return OnTwoImages(source, target, OnePlaneName, [&](auto &from, auto &to) {
        return CopyDisjointRectangle(*from.Get(), sourcePlane, *to.Get(), targetPlane, rectangle, at) ||
               CopyOnePlane(vpat_analyzer(std::move(from)), vpat_analyzer(std::move(to)), sourcePlane, targetPlane,
                            rectangle, at);
    });
}

bool CopyImageRectPlanes(void *source, void *target, int32_t left, int32_t top, int32_t right, int32_t bottom,
                         int32_t targetX, int32_t targetY) {
    using namespace Image;
    return OnTwoImages(source, target, AllPlanesName, [&](auto &from, auto &to) {
        return CopyAllPlanes(vpat_analyzer(std::move(from)), vpat_analyzer(std::move(to)), {left, top, right, bottom},
                             {targetX, targetY});
    });
}

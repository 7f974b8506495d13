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
    if (CopyApart(source, sourcePlane, target, targetPlane, rectangle, at))
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

/// Guards both handles, analyses both images and runs copy(source, target).
template <class Copy>
bool OnTwoImages(void *source, void *target, const char *functionName, Copy &&copy) {
    Interface::ImageForCall from = Interface::GuardCall(source, functionName);
    if (!from.IsValid())
        return false;
    Interface::ImageForCall to = Interface::GuardCall(target, functionName);
    if (!to.IsValid())
        return false;
    return Interface::KernelWordBoundary(
        functionName, [&] { return copy(vpat_analyzer(std::move(from)), vpat_analyzer(std::move(to))); });
}

} // namespace
} // namespace Image

bool CopyImageRect(void *source, void *target, intptr_t sourcePlane, intptr_t targetPlane, int32_t left, int32_t top,
                   int32_t right, int32_t bottom, int32_t targetX, int32_t targetY) {
    return Image::OnTwoImages(source, target, Image::OnePlaneName, [&](const auto &from, const auto &to) {
        return Image::CopyOnePlane(from, to, sourcePlane, targetPlane, {left, top, right, bottom},
                                   {targetX, targetY});
    });
}

bool CopyImageRectPlanes(void *source, void *target, int32_t left, int32_t top, int32_t right, int32_t bottom,
                         int32_t targetX, int32_t targetY) {
    return Image::OnTwoImages(source, target, Image::AllPlanesName, [&](const auto &from, const auto &to) {
        return Image::CopyAllPlanes(from, to, {left, top, right, bottom}, {targetX, targetY});
    });
}

// A copy of an image with pixels of its own.
#include <algorithm>
#include <cstring>

#include "Image/PlaneCopy.h"
#include "Image/VpatAnalyzer.h"
#include "ImageCopies.h"
#include "ImageQueries.h"
#include "InterfaceHandling.h"

namespace Image {
namespace {

constexpr const char *FunctionName = "CreateDuplicateImage";
constexpr std::uint32_t SomePlanesSkipped = 1;

PlaneView ViewOf(const vpat_analyzer &image, std::intptr_t plane, std::intptr_t bytes) {
    return {static_cast<char *>(image.PlaneBase(plane)),
            image.Table(plane),
            image.Width(),
            image.Height(),
            bytes,
            image.XStep(plane),
            image.YStep(plane)};
}

void CopyByFastestMethod(const PlaneView &source, const PlaneView &target) {
    CopyPlane(ChoosePlaneCopy(source, target), source, target);
}

/// True when the three planes of an 8-bit image interleave without a gap and all advance alike.
bool IsThreeByteInterleaved(const vpat_analyzer &image) {
    constexpr std::intptr_t planes = 3;
    if (image.Planes() != planes)
        return false;
    unsigned seen = 0;
    const char *lowest = std::min({image.FirstPixel(0), image.FirstPixel(1), image.FirstPixel(2)});
    for (std::intptr_t plane = 0; plane < planes; ++plane) {
        const std::intptr_t offset = image.FirstPixel(plane) - lowest;
        if (BytesOf(image.Datatype(plane)) != 1 || (image.XStep(plane) != planes && image.XStep(plane) != -planes) ||
            image.XStep(plane) != image.XStep(0) || image.YStep(plane) == 0 || image.YStep(plane) != image.YStep(0) ||
            offset >= planes)
            return false;
        seen |= 1u << offset;
    }
    return seen == 7u;
}

/// Three interleaved planes in the same order on both sides go in one pass. False when they do not lie so.
bool CopyThreeBytePixels(const vpat_analyzer &source, const vpat_analyzer &target) {
    if (!IsThreeByteInterleaved(source) || !IsThreeByteInterleaved(target))
        return false;
    std::intptr_t lowest = 0;
    for (std::intptr_t plane = 1; plane < source.Planes(); ++plane) {
        if (source.FirstPixel(plane) - source.FirstPixel(0) != target.FirstPixel(plane) - target.FirstPixel(0))
            return false;
        if (source.FirstPixel(plane) < source.FirstPixel(lowest))
            lowest = plane;
    }
    CopyByFastestMethod(ViewOf(source, lowest, 3), ViewOf(target, lowest, 3));
    return true;
}

/// A plane of a pixel width that isn't copied must not hand out what the heap held before.
void ClearPlane(const vpat_analyzer &image, std::intptr_t plane) {
    const PlaneView view = ViewOf(image, plane, (BitsOf(image.Datatype(plane)) + 7) / 8);
    for (std::intptr_t y = 0; y < view.Height; ++y)
        for (std::intptr_t x = 0; x < view.Width; ++x)
            std::memset(view.Pixel(x, y), 0, static_cast<std::size_t>(view.Bytes));
}

/// The number of planes copied; each other one is cleared and reported.
std::intptr_t CopyPlanes(const vpat_analyzer &source, const vpat_analyzer &target) {
    if (CopyThreeBytePixels(source, target))
        return source.Planes();
    std::intptr_t copied = 0;
    for (std::intptr_t plane = 0; plane < source.Planes(); ++plane) {
        const std::intptr_t bytes = BytesOf(source.Datatype(plane));
        if (bytes != 3 && IsCopiedWidth(bytes) && bytes == BytesOf(target.Datatype(plane))) {
            CopyByFastestMethod(ViewOf(source, plane, bytes), ViewOf(target, plane, bytes));
            ++copied;
        } else {
            ReportORVError(ErrDataType, FunctionName);
            ClearPlane(target, plane);
        }
    }
    return copied;
}

/// Fills the target. False, with the failure reported, when nothing could be copied.
bool FillDuplicate(const Interface::ImageHolder &source, void *target) {
    const vpat_analyzer from(source);
    const vpat_analyzer to(target);
    const std::intptr_t copied = CopyPlanes(from, to);
    TCoordinateMap map;
    if (source->GetCoordinateMap(&map) >= 0)
        to.Image().SetCoordinateMap(map);
    if (copied == from.Planes())
        return true;
    ReportORVError(copied == 0 ? ErrDataType : SomePlanesSkipped, FunctionName);
    return copied != 0;
}

} // namespace
} // namespace Image

int32_t CreateDuplicateImage(void *image, void **result) {
    using namespace Image;
    const Interface::ImageHolder source = Interface::GuardImage(image, FunctionName);
    if (!source.IsValid())
        return 0;
    void *target = nullptr;
    if (!CreateCompatibleImage(image, 0, 0, 0, &target) || target == nullptr || result == nullptr) {
        ReportORVError(ErrGeneral, FunctionName);
        ReleaseObject(target);
        return 0;
    }
    bool filled = false;
    try {
        filled = FillDuplicate(source, target);
    } catch (...) {
        ReportORVError(ErrGeneral, FunctionName);
    }
    if (!filled) {
        ReleaseObject(target);
        return 0;
    }
    *result = target;
    return 1;
}

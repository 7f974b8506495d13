// A copy of an image with pixels of its own.
#include <cstring>
#include <stdexcept>

#include "Image/CopyMethods.h"
#include "Image/DuplicateImage.h"
#include "ImageCopies.h"
#include "ImageQueries.h"
#include "InterfaceHandling.h"

namespace Image {
namespace {

constexpr const char *FunctionName = "CreateDuplicateImage";
constexpr std::uint32_t SomePlanesSkipped = 1;

/// True when the three planes of an 8-bit image interleave without a gap and all advance alike, in either direction.
bool IsThreeByteInterleaved(const vpat_analyzer &image) {
    constexpr std::intptr_t planes = 3;
    if (image.Planes() != planes)
        return false;
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        if (BytesOf(image.Datatype(plane)) != 1 || (image.XStep(plane) != planes && image.XStep(plane) != -planes) ||
            image.XStep(plane) != image.XStep(0) || image.YStep(plane) == 0 || image.YStep(plane) != image.YStep(0))
            return false;
    const auto order = image.MemoryOrder();
    return image.FirstPixel(order[1]) - image.FirstPixel(order[0]) == 1 &&
           image.FirstPixel(order[2]) - image.FirstPixel(order[1]) == 1;
}

/// Three interleaved planes in the same order on both sides go in one pass, whichever way they are turned. False when
/// they do not lie so.
bool CopyThreeBytePixels(const vpat_analyzer &source, const vpat_analyzer &target) {
    if (!IsThreeByteInterleaved(source) || !IsThreeByteInterleaved(target) ||
        source.MemoryOrder() != target.MemoryOrder())
        return false;
    const std::intptr_t lowest = source.MemoryOrder().front();
    PlaneView from = ViewOf(source, lowest);
    PlaneView to = ViewOf(target, lowest);
    from.Bytes = 3;
    to.Bytes = 3;
    CopyDisjointPlane(from, to);
    return true;
}

bool CopyAllPlanes(const vpat_analyzer &source, const vpat_analyzer &target) {
    return CopyThreeBytePixels(source, target) ||
           CopyAllPlanesAtOnce(source, target, {0, 0, source.Width() - 1, source.Height() - 1}, {0, 0});
}

/// A plane of a pixel width that isn't copied must not hand out what the heap held before.
void ClearPlane(const vpat_analyzer &image, std::intptr_t plane) {
    const auto bytes = static_cast<std::size_t>((BitsOf(image.Datatype(plane)) + 7) / 8);
    const PlaneView view = ViewOf(image, plane);
    for (std::intptr_t y = 0; y < view.Height; ++y)
        for (std::intptr_t x = 0; x < view.Width; ++x)
            std::memset(view.Pixel(x, y), 0, bytes);
}

/// The number of planes copied; each other one is cleared and reported.
std::intptr_t CopyPlanes(const vpat_analyzer &source, const vpat_analyzer &target) {
    if (CopyAllPlanes(source, target))
        return source.Planes();
    std::intptr_t copied = 0;
    for (std::intptr_t plane = 0; plane < source.Planes(); ++plane) {
        const std::intptr_t bytes = BytesOf(source.Datatype(plane));
        if (IsTypedWidth(bytes) && bytes == BytesOf(target.Datatype(plane))) {
            CopyDisjointPlane(ViewOf(source, plane), ViewOf(target, plane));
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
    const vpat_analyzer to(target, vpat_analyzer::Linearity::Known);
    if (from.Planes() != to.Planes() || from.Width() != to.Width() || from.Height() != to.Height())
        throw std::runtime_error("image changed"); // since the target was made by its size
    const std::intptr_t copied = CopyPlanes(from, to);
    TCoordinateMap map = {};
    if (source->GetCoordinateMap(&map) >= 0)
        to.Image().SetCoordinateMap(map);
    if (copied == from.Planes())
        return true;
    ReportORVError(copied == 0 ? ErrDataType : SomePlanesSkipped, FunctionName);
    return copied != 0;
}

DuplicateTarget MakeCompatible(void *image) {
    DuplicateTarget target;
    if (!CreateCompatibleImage(image, 0, 0, 0, &target.Handle))
        target.Handle = nullptr;
    return target;
}

} // namespace

std::int32_t Duplicate(void *image, DuplicateTarget (*make)(void *image), void **result) {
    const Interface::ImageHolder source = Interface::GuardImage(image, FunctionName);
    if (!source.IsValid())
        return 0;
    DuplicateTarget target;
    bool filled = false;
    try {
        target = make(image);
        const bool made = target.Handle != nullptr && result != nullptr;
        if (!made)
            ReportORVError(ErrGeneral, FunctionName);
        filled = made && (target.IsFilled || FillDuplicate(source, target.Handle));
    } catch (...) {
        ReportORVError(ErrGeneral, FunctionName);
    }
    if (!filled) {
        ReleaseObject(target.Handle);
        return 0;
    }
    *result = target.Handle;
    return 1;
}

} // namespace Image

int32_t CreateDuplicateImage(void *image, void **result) {
    return Image::Duplicate(image, Image::MakeCompatible, result);
}

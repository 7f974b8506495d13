// An image of unsigned 16-bit planes scaled down to 8 bits.
#include <algorithm>
#include <cstring>
#include <vector>

#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageQueries.h"
#include "Scan/ByteScale.h"
#include "Scan/ImagePlanes.h"
#include "Scan/Limiter.h"
#include "Scan/PixelType.h"
#include "Scan/PlaneStatistics.h"
#include "Scan/ResultImage.h"
#include "ValueMapping.h"

namespace Scan {
namespace {

constexpr const char *FunctionName = "MapTo8Bit";
constexpr double HighestMaximum = 65535.0;

/// 0 for a plane that is none of the ten types, which so takes no part in a common scale.
double MaximumOf(const Image::PlaneFacts &plane, const Image::Dimensions &size) {
    return MeasureGreatestMagnitude(Image::ViewOf(plane, size), plane.Datatype);
}

double CommonMaximum(const std::vector<Image::PlaneFacts> &planes, const Image::Dimensions &size) {
    double maximum = 0;
    for (const Image::PlaneFacts &plane : planes)
        maximum = std::max(maximum, MaximumOf(plane, size));
    return maximum;
}

/// A plane that isn't converted must not hand out what the heap held before.
void ClearPlane(const Image::PlaneView &plane) {
    for (std::intptr_t y = 0; y < plane.Height; ++y)
        for (std::intptr_t x = 0; x < plane.Width; ++x)
            *plane.Pixel(x, y) = 0;
}

/// False when an image refuses a plane.
bool MapPlanes(pOLE::IImageVPA &source, const Image::Dimensions &size, pOLE::IImageVPA &target, bool hasCommonScale) {
    std::vector<Image::PlaneFacts> from, to;
    if (!ReadPlanes(source, size, from) || !ReadPlanes(target, size, to))
        return false;
    if (!HasPixels(size))
        return true;
    const double common = hasCommonScale ? CommonMaximum(from, size) : 0;
    for (std::size_t plane = 0; plane < from.size(); ++plane) {
        const Image::PlaneView view = Image::ViewOf(to[plane], size);
        // Required: planes of all other types are left blank, without a report.
        if (PixelTypeOf(from[plane].Datatype) != PixelType::Unsigned16) {
            ClearPlane(view);
            continue;
        }
        const double maximum = hasCommonScale ? common : MaximumOf(from[plane], size);
        ScaleToBytes(LimitTo(maximum, 0.0, HighestMaximum), Image::ViewOf(from[plane], size), view);
    }
    return true;
}

/// The result, or nothing where it can't be made.
Interface::ImageHolder Mapped(pOLE::IImageVPA &source, bool hasCommonScale) {
    const Image::Dimensions size = Image::DimensionsOf(source);
    void *made = nullptr;
    if (!CreateGenericImage(size.Planes, size.Width, size.Height, false, &made))
        return {};
    Interface::ImageHolder target = AdoptImage(made);
    if (!target.IsValid())
        return {};
    if (!MapPlanes(source, size, *target.Get(), hasCommonScale))
        return {};
    PassCoordinateMap(source, *target.Get());
    return target;
}

} // namespace
} // namespace Scan

int32_t MapTo8Bit(void *image, unsigned char commonScale, void **result) {
    using namespace Scan;
    const Interface::ImageForCall source = Interface::GuardCall(image, FunctionName);
    if (!source.IsValid())
        return 0;
    if (result == nullptr) {
        ReportORVError(ErrParameter, FunctionName);
        return 0;
    }
    if (IsAll8Bit(image))
        return CreateDuplicateImage(image, result);
    Interface::ImageHolder mapped = Mapped(*source.Get(), commonScale != 0);
    if (!mapped.IsValid()) {
        ReportORVError(ErrGeneral, FunctionName);
        return 0;
    }
    *result = mapped.Detach();
    return 1;
}

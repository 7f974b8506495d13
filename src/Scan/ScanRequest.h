// What the exported scans share: their arguments, the checks in front of a walk, and the walk with the caller's
// callbacks.
#pragma once

#include "Scan/OrderedWalk.h"
#include "Scan/ScanAdaptors.h"

namespace Scan {

/// What each exported scan is told about its walk.
struct ScanRequest {
    const char *FunctionName;
    TArea Area;
    std::int64_t Density;
    bool UsesCoordinateSystem;
    LineCallbacks Lines;
};

inline constexpr std::int64_t scanFailed = -1;

/// Reports and gives scanFailed.
std::int64_t RefuseScan(std::uint32_t code, const ScanRequest &request);

/// The plane's base and table. False, with a report, when the image refuses or has none.
bool ReadPlane(pOLE::IImageVPA &image, std::intptr_t plane, const ScanRequest &request, char *&base,
               const VPAEntry *&table);

/// Clamps the density and leads the area to pixel coordinates. False, with a report, for a negative density or an
/// image that refuses its coordinate map.
bool PrepareArea(pOLE::IImageVPA &image, ScanRequest &request);

/// The bounds of a scan over two images. behind: 1 when the column and row behind the last are inside, else 0.
PixelBounds CommonBounds(const Image::Dimensions &first, const Image::Dimensions &second, std::int64_t dx,
                         std::int64_t dy, int behind);

/// Takes what a scan over two images is told into its adaptor. False, with a report, when one of the handles is none.
template <class Adaptor>
bool HoldImages(const ScanRequest &request, void *image1, void *image2, std::int64_t dx, std::int64_t dy,
                Adaptor &adaptor) {
    adaptor.PrivateData = request.Lines.PrivateData;
    adaptor.Dx = static_cast<std::int32_t>(dx);
    adaptor.Dy = static_cast<std::int32_t>(dy);
    adaptor.Image1 = Interface::GuardImage(image1, request.FunctionName);
    if (adaptor.Image1.IsValid())
        adaptor.Image2 = Interface::GuardImage(image2, request.FunctionName);
    return adaptor.Image2.IsValid();
}

/// A walk without pixels: calls the line callbacks only.
std::int64_t WalkLinesOnly(const ScanRequest &request);

/// A walk that calls adaptor.Pixel and the line callbacks.
template <class Adaptor>
std::int64_t WalkWithCallbacks(const ScanRequest &request, const PixelBounds &bounds, Adaptor &adaptor) {
    struct Visitor : LineCallbacks {
        Adaptor &Pixels;
        bool Pixel(std::int32_t x, std::int32_t y) { return Pixels.Pixel(x, y); }
    };
    const auto plan = PlanWalk(request.Area, request.Density);
    if (!plan)
        return scanFailed;
    Visitor visitor = {request.Lines, adaptor};
    return QuickWalk(*plan, bounds, visitor);
}

} // namespace Scan

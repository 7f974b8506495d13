// Scans over single planes, with the caller's callbacks.
#include "Scan/ImagePlanes.h"
#include "Scan/ScanRequest.h"

namespace Scan {
namespace {

std::int64_t ScanOnePlane(ScanRequest request, Interface::ImageHolder image, std::intptr_t plane,
                          TScanPlaneUnaryCallback callback) {
    const Image::Dimensions size = Image::DimensionsOf(*image.Get());
    if (!HasPlane(size, plane))
        return RefuseScan(ErrElementIndex, request);
    if (!PrepareArea(*image.Get(), request))
        return scanFailed;
    if (callback == nullptr)
        return WalkLinesOnly(request);
    CAdaptorScanPlaneUnary adaptor = {callback, request.Lines.PrivateData, std::move(image), nullptr, nullptr};
    if (!ReadPlane(*adaptor.Image.Get(), plane, request, adaptor.Base, adaptor.Table))
        return scanFailed;
    return WalkWithCallbacks(request, BoundsOf(size.Width, size.Height), adaptor);
}

struct PlaneOffset {
    std::int64_t X;
    std::int64_t Y;
};

std::int64_t ScanTwoPlanes(ScanRequest request, CAdaptorScanPlaneBinary &adaptor, std::intptr_t plane1,
                           std::intptr_t plane2, PlaneOffset offset) {
    pOLE::IImageVPA &image1 = *adaptor.Image1.Get();
    pOLE::IImageVPA &image2 = *adaptor.Image2.Get();
    const Image::Dimensions size1 = Image::DimensionsOf(image1), size2 = Image::DimensionsOf(image2);
    if (!HasPlane(size1, plane1) || !HasPlane(size2, plane2))
        return RefuseScan(ErrElementIndex, request);
    if (!PrepareArea(image1, request))
        return scanFailed;
    if (adaptor.Callback == nullptr)
        return WalkLinesOnly(request);
    if (!ReadPlane(image1, plane1, request, adaptor.Base1, adaptor.Table1) ||
        !ReadPlane(image2, plane2, request, adaptor.Base2, adaptor.Table2))
        return scanFailed;
    // Required: one column and one row more than both images have; the guard entries of the tables answer for them.
    return WalkWithCallbacks(request, CommonBounds(size1, size2, offset.X, offset.Y, 1), adaptor);
}

} // namespace
} // namespace Scan

int64_t ScanPlaneUnary(void *image, intptr_t plane, TArea area, int64_t density, unsigned char useCoordinateSystem,
                       TScanPlaneUnaryCallback pixelCallback, TScanLineCallback lineBeginCallback,
                       TScanLineCallback lineEndCallback, void *privateData) {
    using namespace Scan;
    const ScanRequest request = {
        "ScanPlaneUnary", area, density, useCoordinateSystem != 0, {lineBeginCallback, lineEndCallback, privateData}};
    Interface::ImageHolder held = Interface::GuardImage(image, request.FunctionName);
    return held.IsValid() ? ScanOnePlane(request, std::move(held), plane, pixelCallback) : scanFailed;
}

int64_t ScanPlaneBinary(void *image1, void *image2, intptr_t plane1, intptr_t plane2, TArea area, int64_t density,
                        int64_t dx, int64_t dy, unsigned char useCoordinateSystem,
                        TScanPlaneBinaryCallback pixelCallback, TScanLineCallback lineBeginCallback,
                        TScanLineCallback lineEndCallback, void *privateData) {
    using namespace Scan;
    const ScanRequest request = {"ScanPlaneBinary",
                                 area,
                                 density,
                                 useCoordinateSystem != 0,
                                 {lineBeginCallback, lineEndCallback, privateData}};
    CAdaptorScanPlaneBinary adaptor = {};
    adaptor.Callback = pixelCallback;
    return HoldImages(request, image1, image2, dx, dy, adaptor)
               ? ScanTwoPlanes(request, adaptor, plane1, plane2, {dx, dy})
               : scanFailed;
}

// Scans over all planes of images, with the caller's callbacks.
#include "Scan/ScanRequest.h"

namespace Scan {
namespace {

std::int64_t ScanOneImage(ScanRequest request, CAdaptorScanImageUnary &adaptor) {
    pOLE::IImageVPA &image = *adaptor.Image.Get();
    const Image::Dimensions size = Image::DimensionsOf(image);
    if (!PrepareArea(image, request))
        return scanFailed;
    if (adaptor.Callback == nullptr)
        return WalkLinesOnly(request);
    if (!adaptor.Planes.Read(image, size.Planes))
        return RefuseScan(ErrGeneral, request);
    return WalkWithCallbacks(request, BoundsOf(size.Width, size.Height), adaptor);
}

std::int64_t ScanTwoImages(ScanRequest request, CAdaptorScanImageBinary &adaptor, std::int64_t dx, std::int64_t dy) {
    pOLE::IImageVPA &image1 = *adaptor.Image1.Get();
    pOLE::IImageVPA &image2 = *adaptor.Image2.Get();
    const Image::Dimensions size1 = Image::DimensionsOf(image1), size2 = Image::DimensionsOf(image2);
    if (!PrepareArea(image1, request))
        return scanFailed;
    if (adaptor.Callback == nullptr)
        return WalkLinesOnly(request);
    if (!adaptor.Planes1.Read(image1, size1.Planes) || !adaptor.Planes2.Read(image2, size2.Planes))
        return RefuseScan(ErrGeneral, request);
    return WalkWithCallbacks(request, CommonBounds(size1, size2, dx, dy, 0), adaptor);
}

} // namespace
} // namespace Scan

int64_t ScanImageUnary(void *image, TArea area, int64_t density, unsigned char useCoordinateSystem,
                       TScanImageUnaryCallback pixelCallback, TScanLineCallback lineBeginCallback,
                       TScanLineCallback lineEndCallback, void *privateData) {
    using namespace Scan;
    const ScanRequest request = {
        "ScanImageUnary", area, density, useCoordinateSystem != 0, {lineBeginCallback, lineEndCallback, privateData}};
    CAdaptorScanImageUnary adaptor = {
        pixelCallback, privateData, Interface::GuardImage(image, request.FunctionName), {}};
    return adaptor.Image.IsValid() ? ScanOneImage(request, adaptor) : scanFailed;
}

int64_t ScanImageBinary(void *image1, void *image2, TArea area, int64_t density, int64_t dx, int64_t dy,
                        unsigned char useCoordinateSystem, TScanImageBinaryCallback pixelCallback,
                        TScanLineCallback lineBeginCallback, TScanLineCallback lineEndCallback, void *privateData) {
    using namespace Scan;
    const ScanRequest request = {"ScanImageBinary",
                                 area,
                                 density,
                                 useCoordinateSystem != 0,
                                 {lineBeginCallback, lineEndCallback, privateData}};
    CAdaptorScanImageBinary adaptor = {};
    adaptor.Callback = pixelCallback;
    return HoldImages(request, image1, image2, dx, dy, adaptor) ? ScanTwoImages(request, adaptor, dx, dy)
                                                                : scanFailed;
}

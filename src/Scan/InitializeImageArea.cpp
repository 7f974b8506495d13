// Filling an area of a plane with one value. The data type of plane 0 says how the value is stored.
#include "AreaOperations.h"
#include "Scan/ImagePlanes.h"
#include "Scan/PixelType.h"
#include "Scan/SetPixel.h"
#include "Scan/TypedWalk.h"
#include "TruncateTo.h"

namespace Scan {

bool CanFillInAnyOrder(const Image::PlaneView &plane, std::intptr_t pixelBytes) {
    if (pixelBytes == 1)
        return true;
    const auto isWhole = [=](std::intptr_t offset) { return offset % pixelBytes == 0; };
    for (std::intptr_t x = 1; x < plane.Width && plane.XStep == 0; ++x)
        if (!isWhole(Image::Step(plane.Columns[x].XEntry, plane.Columns[0].XEntry)))
            return false;
    for (std::intptr_t y = 1; y < plane.Height && plane.YStep == 0; ++y)
        if (!isWhole(Image::Step(plane.Rows[y].YEntry, plane.Rows[0].YEntry)))
            return false;
    return (isWhole(plane.XStep) && isWhole(plane.YStep)) || (plane.Bytes >= pixelBytes && plane.HasDistinctPixels());
}

namespace {

constexpr std::int64_t allPixels = 1000;

std::int32_t Refuse(std::uint32_t code, const char *functionName) {
    ReportORVError(code, functionName);
    return 0;
}

/// What both exports are asked.
template <class Value>
struct FillRequest {
    const char *FunctionName;
    std::intptr_t Plane;
    Value StoredValue;
    TArea Area;
};

/// The value as pixels of type T hold it.
template <class T>
T AsPixel(double value) {
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else
        return orvBase::TruncateTo<T>(value);
}
/// Integers of up to 4 bytes keep their low bits; all others pass through a double.
template <class T>
T AsPixel(std::int64_t value) {
    if constexpr (std::is_integral_v<T> && sizeof(T) <= 4)
        return static_cast<T>(static_cast<std::uint64_t>(value));
    else
        return AsPixel<T>(static_cast<double>(value));
}

/// Integers of up to 4 bytes are stored into planes of wider pixels, too. Result: 0, or the code to report.
template <class T>
std::uint32_t FillAnyWidth(const FillRequest<std::int64_t> &request, pOLE::IImageVPA &image,
                           std::intptr_t planeBytes) {
    if (planeBytes < std::intptr_t{sizeof(T)})
        return ErrNotPossible;
    const T value = AsPixel<T>(request.StoredValue);
    CSetPixel<T> operation = {&value};
    orvScan::CIterateAdaptor<T, CSetPixel<T>> adaptor(image, operation);
    if (!adaptor.SelectPlaneOfAnyWidth(request.Plane))
        return ErrGeneral;
    adaptor.Walk(request.Area, allPixels);
    return 0;
}

/// Result: 0, or the code to report.
template <class T, class Value>
std::uint32_t FillPixels(const FillRequest<Value> &request, pOLE::IImageVPA &image) {
    Image::PlaneFacts plane;
    if (!Image::ReadPlaneFacts(image, request.Plane, plane))
        return ErrGeneral;
    if constexpr (std::is_integral_v<Value> && std::is_integral_v<T> && sizeof(T) <= 4)
        return FillAnyWidth<T>(request, image, Image::BytesOf(plane.Datatype));
    const T value = AsPixel<T>(request.StoredValue);
    CSetPixel<T> operation = {&value};
    TypedWalk<T>(&image, request.Plane, request.Area, allPixels, operation);
    return 0;
}

template <class Value>
std::int32_t FillArea(void *handle, const FillRequest<Value> &request) {
    const Interface::ImageForCall image = Interface::GuardCall(handle, request.FunctionName);
    if (!image.IsValid())
        return 0;
    if (!HasPlane(Image::DimensionsOf(*image.Get()), request.Plane))
        return Refuse(ErrPlaneIndex, request.FunctionName);
    // Required: the type of plane 0 decides, whichever plane is filled.
    TDataType type = 0;
    if (image->GetPlaneDatatype(0, &type) != Interface::StatusOk)
        return Refuse(ErrGeneral, request.FunctionName);
    std::uint32_t code = ErrDataType;
    ForPixelType(type, [&]<class T>() { code = FillPixels<T>(request, *image.Get()); });
    return code == 0 ? 1 : Refuse(code, request.FunctionName);
}

} // namespace
} // namespace Scan

int32_t InitializeImageArea(void *image, intptr_t plane, int64_t value, TArea area) {
    return Scan::FillArea<std::int64_t>(image, {"InitializeImageArea", plane, value, area});
}

int32_t InitializeImageAreaEx(void *image, intptr_t plane, double value, TArea area) {
    return Scan::FillArea<double>(image, {"InitializeImageAreaEx", plane, value, area});
}

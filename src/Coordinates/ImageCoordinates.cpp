// The coordinate system of an image, read and written through the image's own interface. The map leads from image
// coordinates to pixel coordinates; what its arithmetic does stands in CoordinateMap.cpp and Area.cpp.
#include "ImageCoordinates.h"

#include "ImageQueries.h"
#include "Interface/ImageGuard.h"
#include "Matrices.h"

namespace {

constexpr const char SetImageCoordinatesName[] = "SetImageCoordinates";
constexpr const char GetImageCoordinatesName[] = "GetImageCoordinates";
constexpr const char SetImageOriginName[] = "SetImageOrigin";
constexpr const char GetImageOriginName[] = "GetImageOrigin";
constexpr const char PixelToImageName[] = "PixelToImage";
constexpr const char ImageToPixelName[] = "ImageToPixel";
constexpr const char MaxImageAreaName[] = "MaxImageArea";
constexpr const char PixelAreaToImageName[] = "PixelAreaToImage";
constexpr const char ImageAreaToPixelName[] = "ImageAreaToPixel";

/// The image's map for a wrapper. On failure two reports are left on the thread: the reader's own, and ErrGeneral
/// under the wrapper's name.
bool ReadMapFor(const char *functionName, void *image, TCoordinateMap &map) {
    InitCoordinateMap(&map);
    if (GetImageCoordinates(image, &map))
        return true;
    ReportORVError(ErrGeneral, functionName);
    return false;
}

/// The position of the last of size pixels.
double LastPixel(intptr_t size) {
    return static_cast<double>(static_cast<intptr_t>(static_cast<uintptr_t>(size) - 1u));
}

} // namespace

bool SetImageCoordinates(void *image, TCoordinateMap map) {
    const Interface::ImageForCall holder = Interface::GuardCall(image, SetImageCoordinatesName);
    if (!holder.IsValid())
        return false;
    holder->SetCoordinateMap(map);
    return true;
}

bool GetImageCoordinates(void *image, TCoordinateMap *out) {
    const Interface::ImageForCall holder = Interface::GuardCall(image, GetImageCoordinatesName);
    if (!holder.IsValid() || out == nullptr)
        return false;
    holder->GetCoordinateMap(out);
    return true;
}

bool SetImageOrigin(void *image, double x, double y) {
    const Interface::ImageForCall holder = Interface::GuardCall(image, SetImageOriginName);
    if (!holder.IsValid())
        return false;
    TCoordinateMap map;
    InitCoordinateMap(&map);
    holder->GetCoordinateMap(&map);
    map.X = x;
    map.Y = y;
    holder->SetCoordinateMap(map);
    return true;
}

bool GetImageOrigin(void *image, double *outX, double *outY) {
    TCoordinateMap map;
    if (!ReadMapFor(GetImageOriginName, image, map) || outX == nullptr || outY == nullptr)
        return false;
    *outX = map.X;
    *outY = map.Y;
    return true;
}

void PixelToImage(void *image, double *outX, double *outY, double x, double y) {
    TCoordinateMap map;
    if (ReadMapFor(PixelToImageName, image, map) && outX != nullptr && outY != nullptr)
        CoordinateMapInverseTransform(outX, outY, map, x, y);
}

void ImageToPixel(void *image, double *outX, double *outY, double x, double y) {
    TCoordinateMap map;
    if (ReadMapFor(ImageToPixelName, image, map) && outX != nullptr && outY != nullptr)
        CoordinateMapTransform(outX, outY, map, x, y);
}

bool PixelToImageCoordinates(void *image, double *outX, double *outY, double x, double y) {
    if (image == nullptr)
        return false;
    PixelToImage(image, outX, outY, x, y);
    return true; // Required: also where there was no way to convert, so only a null handle gives false.
}

bool ImageToPixelCoordinates(void *image, double *outX, double *outY, double x, double y) {
    if (image == nullptr)
        return false;
    ImageToPixel(image, outX, outY, x, y);
    return true; // Required: also where there was no way to convert, so only a null handle gives false.
}

bool MaxImageArea(void *image, TArea *out) {
    const Interface::ImageForCall holder = Interface::GuardCall(image, MaxImageAreaName);
    if (!holder.IsValid() || out == nullptr)
        return false;
    intptr_t planes = 0;
    intptr_t width = 0;
    intptr_t height = 0;
    holder->GetImageDimensions(&planes, &width, &height);
    SetRectArea(out, 0.0, 0.0, LastPixel(width), LastPixel(height));
    return true;
}

void PixelAreaToImage(void *image, TArea *out, TArea area) {
    TCoordinateMap map;
    if (ReadMapFor(PixelAreaToImageName, image, map) && out != nullptr)
        CoordinateMapInverseTransformArea(out, area, map);
}

void ImageAreaToPixel(void *image, TArea *out, TArea area) {
    TCoordinateMap map;
    if (ReadMapFor(ImageAreaToPixelName, image, map) && out != nullptr)
        CoordinateMapTransformArea(out, area, map);
}

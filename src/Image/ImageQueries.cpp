// The exported questions about an image's form.
#include "ImageQueries.h"

#include "Image/Dimensions.h"
#include "Interface/ImageGuard.h"
#include "Interface/InterfaceId.h"

using Image::DimensionsOf;
using Interface::GuardCall;
using Interface::ImageForCall;

intptr_t ImageDimension(void *image) {
    const ImageForCall held = GuardCall(image, "ImageDimension");
    return held.IsValid() ? DimensionsOf(*held.Get()).Planes : 0;
}

intptr_t ImageWidth(void *image) {
    const ImageForCall held = GuardCall(image, "ImageWidth");
    return held.IsValid() ? DimensionsOf(*held.Get()).Width : 0;
}

intptr_t ImageHeight(void *image) {
    const ImageForCall held = GuardCall(image, "ImageHeight");
    return held.IsValid() ? DimensionsOf(*held.Get()).Height : 0;
}

TDataType ImageDatatype(void *image, intptr_t plane) {
    constexpr const char *functionName = "ImageDatatype";
    const ImageForCall held = GuardCall(image, functionName);
    if (!held.IsValid())
        return DataTypeNone;
    TDataType type = DataTypeNone;
    if (plane < 0 || plane >= DimensionsOf(*held.Get()).Planes ||
        held->GetPlaneDatatype(plane, &type) != Interface::StatusOk) {
        ReportORVError(ErrPlaneIndex, functionName);
        return DataTypeNone;
    }
    return type;
}

bool HasOverlay(void *image) {
    const ImageForCall held = GuardCall(image, "HasOverlay");
    if (!held.IsValid())
        return false;
    const intptr_t planes = DimensionsOf(*held.Get()).Planes;
    for (intptr_t plane = 0; plane < planes; ++plane) {
        TDataType type = 0;
        if (held->GetPlaneDatatype(plane, &type) == Interface::StatusOk && (type & DataTypeOverlay) != 0)
            return true;
    }
    return false;
}

bool IsOverlayImage(void *image) {
    return HasOverlay(image);
}

bool IsAll8Bit(void *image) {
    const ImageForCall held = GuardCall(image, "IsAll8Bit");
    if (!held.IsValid())
        return false;
    const intptr_t planes = DimensionsOf(*held.Get()).Planes;
    for (intptr_t plane = 0; plane < planes; ++plane) {
        TDataType type = 0;
        if (held->GetPlaneDatatype(plane, &type) != Interface::StatusOk || Image::BitsOf(type) != 8)
            return false;
    }
    return planes > 0;
}

bool GetImageVPA(void *image, intptr_t plane, void **base, VPAEntry **table) {
    const ImageForCall held = GuardCall(image, "GetImageVPA");
    return held.IsValid() && base != nullptr && table != nullptr && held->GetPlaneVPA(plane, base, table) >= 0;
}

intptr_t ImageColorModel(void *image) {
    const ImageForCall held = GuardCall(image, "ImageColorModel");
    if (!held.IsValid())
        return 0;
    const auto info = Interface::QueryHandle<pOLE::IColorModelInfo, 0>(static_cast<pOLE::IUnknown *>(held.Get()));
    if (info.IsValid())
        return info->GetColorModel();
    switch (DimensionsOf(*held.Get()).Planes) {
    case 1:
        return -1;
    case 3:
        return -2;
    default:
        return 0;
    }
}

// A new image of another's form.
#include <vector>

#include "Image/Dimensions.h"
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "Interface/ImageGuard.h"

namespace {

constexpr const char *FunctionName = "CreateCompatibleImage";

/// The data types of all planes. False when the image refuses one.
bool ReadDatatypes(pOLE::IImageVPA &image, intptr_t planes, std::vector<TDataType> &types) {
    for (intptr_t plane = 0; plane < planes; ++plane)
        if (image.GetPlaneDatatype(plane, &types.emplace_back()) != Interface::StatusOk)
            return false;
    return true;
}

template <class Predicate>
bool AllOf(const std::vector<TDataType> &types, Predicate &&fulfils) {
    for (const TDataType type : types)
        if (!fulfils(type))
            return false;
    return true;
}

// Required: a modulus, not a mask. The overlay word 0x408 fails, the 6-bit float word 0x206 passes.
bool IsPlainEightBit(TDataType type) {
    return (type & DataTypeSigned) == 0 && type % 255u == 8;
}

/// An image of one plane for each data type, shown as one image.
bool CreateMixed(const std::vector<TDataType> &types, intptr_t width, intptr_t height, TDataType mark, void **out) {
    std::vector<Interface::ImageHolder> planes;
    std::vector<void *> handles;
    planes.reserve(types.size());
    for (const TDataType type : types) {
        void *plane = nullptr;
        if (!CreateGenericImageDT(1, width, height, type | mark, &plane))
            return false;
        planes.emplace_back(static_cast<pOLE::IImageVPA *>(plane));
        handles.push_back(plane);
    }
    return CreateConcatenatedImage(handles.data(), handles.size(), 1, out);
}

} // namespace

bool CreateCompatibleImage(void *image, intptr_t width, intptr_t height, unsigned char overlay, void **out) {
    const Interface::ImageHolder source = Interface::GuardImage(image, FunctionName);
    if (!source.IsValid())
        return false;
    if (width != 0 && height != 0 && (width < 0 || height < 0)) {
        ReportORVError(ErrIndexRange, FunctionName);
        return false;
    }
    const Image::Dimensions size = Image::DimensionsOf(*source.Get());
    if (width == 0 || height == 0) {
        width = size.Width;
        height = size.Height;
    }
    std::vector<TDataType> types;
    if (!ReadDatatypes(*source.Get(), size.Planes, types)) {
        ReportORVError(ErrGeneral, FunctionName);
        return false;
    }
    if (AllOf(types, IsPlainEightBit)) {
        const bool marked =
            overlay != 0 || !AllOf(types, [](TDataType type) { return (type & DataTypeOverlay) == 0; });
        return CreateGenericImage(size.Planes, width, height, marked, out);
    }
    const TDataType mark = overlay != 0 ? DataTypeOverlay : 0;
    const TDataType first = types.front();
    if (!AllOf(types, [first](TDataType type) { return type == first; }))
        return CreateMixed(types, width, height, mark, out);
    return CreateGenericImageDT(size.Planes, width, height, first | mark, out);
}

// The exported makers of images that own their memory.
#include <limits>

#include "Image/TreeBuilder.h"
#include "ImageCreation.h"
#include "Interface/Boundary.h"

namespace {

using Persistence::NodeHolder;

/// The root keeps its size in 31 bits, and its list counts planes in as many.
bool FitsTree(intptr_t planes, intptr_t width, intptr_t height) {
    constexpr intptr_t highest = std::numeric_limits<std::int32_t>::max();
    return planes <= highest && width <= highest && height <= highest;
}

NodeHolder<TImageObject> MakeBitmap(std::int32_t width, std::int32_t height, std::uint16_t bitCount) {
    NodeHolder<TDIBInfo> info(new TDIBInfo);
    info->WriteHeader(width, height, bitCount);
    info->SetPaletteMode(bitCount == 8 ? TDIBInfo::IndexTable : TDIBInfo::ColorTable, 0);
    return Image::BuildBitmap(std::move(info));
}

NodeHolder<TImageObject> MakeGeneric(intptr_t planes, std::int32_t width, std::int32_t height) {
    switch (planes) {
    case 1:
        return MakeBitmap(width, height, 8);
    case 3:
        return MakeBitmap(width, height, 24);
    default:
        return Image::BuildSeparatePlanes({planes, width, height});
    }
}

/// The handle that carries the tree's one reference.
void *HandleOf(NodeHolder<TImageObject> root) {
    return static_cast<pOLE::IImageVPA *>(root.Detach()->Interface());
}

/// Checks what both creators check, clears *out and runs make(width, height). False on any failure of it.
template <class Make>
bool Create(intptr_t planes, intptr_t width, intptr_t height, void **out, Make &&make) {
    if (height < 0 || width < 0 || planes < 0 || out == nullptr)
        return false;
    *out = nullptr;
    if (!FitsTree(planes, width, height))
        return false;
    return Interface::SilentBoundary(false, [&] {
        *out = make(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
        return true;
    });
}

} // namespace

bool CreateGenericImage(intptr_t planes, intptr_t width, intptr_t height, bool overlay, void **out) {
    return Create(planes, width, height, out, [=](std::int32_t w, std::int32_t h) -> void * {
        NodeHolder<TImageObject> root = MakeGeneric(planes, w, h);
        if (overlay)
            root->SetOverlay(true);
        // Required: a bitmap without a pixel gives true and a null handle. Its empty root is freed here.
        if (root->PlaneList() == nullptr)
            return nullptr;
        return HandleOf(std::move(root));
    });
}

bool CreateGenericImageDT(intptr_t planes, intptr_t width, intptr_t height, TDataType datatype, void **out) {
    return Create(planes, width, height, out, [=](std::int32_t w, std::int32_t h) -> void * {
        return HandleOf(Image::BuildTypedPlanes({planes, w, h}, datatype));
    });
}

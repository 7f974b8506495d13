#include "Image/OwningDuplicate.h"

#include <algorithm>
#include <cstring>

#include "Image/DataType.h"
#include "Image/Dimensions.h"
#include "Image/DuplicateImage.h"
#include "Image/PlaneCopy.h"
#include "Image/TreeBuilder.h"
#include "ImageCopies.h"

namespace Image {
namespace {

using Persistence::Adopt;
using Persistence::NodeHolder;

bool HaveEqualBlocks(TBuffer &a, TBuffer &b) {
    return a.GetSize() == b.GetSize() && a.GetData() != nullptr && b.GetData() != nullptr &&
           std::memcmp(a.GetData(), b.GetData(), a.GetSize()) == 0;
}

/// The plane's pixel block; null when it is a view.
TBuffer *PixelsOf(const TImagePlane &plane) {
    const auto *data = plane.NodeAt(0);
    const bool isBlock = plane.GetCount() == 1 && data->Item != nullptr && data->Item->IsClass(TBuffer::ClassId);
    return isBlock ? static_cast<TBuffer *>(data->Item) : nullptr;
}

/// True when the bytes between the rows of a bitmap block are zero, as they are in a new one.
bool HasClearPadding(const TImagePlane &plane, std::size_t usedBytes, std::size_t rows) {
    TBuffer &pixels = *PixelsOf(plane);
    const std::size_t stride = rows == 0 ? 0 : pixels.GetSize() / rows;
    if (stride <= usedBytes)
        return true;
    const auto *row = static_cast<const unsigned char *>(pixels.GetData());
    for (std::size_t y = 0; y < rows; ++y, row += stride)
        if (std::any_of(row + usedBytes, row + stride, [](unsigned char byte) { return byte != 0; }))
            return false;
    return true;
}

/// True when a plane differs from a new one in its pixels only.
bool IsLikeNew(TImagePlane &plane, TImagePlane &fresh) {
    TBuffer *pixels = PixelsOf(plane);
    TBuffer *freshPixels = PixelsOf(fresh);
    return pixels != nullptr && freshPixels != nullptr && plane.Datatype == fresh.Datatype &&
           pixels->GetCount() == 0 && pixels->GetData() != nullptr && pixels->GetSize() == freshPixels->GetSize() &&
           HaveEqualBlocks(plane, fresh);
}

bool HasEqualInfo(const TImageObject &tree, const TImageObject &fresh) {
    if (!tree.IsClass(TSimpleDIB::ClassId))
        return true;
    TDIBInfo *info = static_cast<const TSimpleDIB &>(tree).Info();
    TDIBInfo *freshInfo = static_cast<const TSimpleDIB &>(fresh).Info();
    return info != nullptr && info->GetCount() == 0 && info->GetPaletteMode() == freshInfo->GetPaletteMode() &&
           HaveEqualBlocks(*info, *freshInfo);
}

/// The block of a plane is that of plane 0 in both trees or in none.
bool SharesAlike(TImageObject &tree, TImageObject &fresh, std::intptr_t plane) {
    return (PixelsOf(*tree.Plane(plane)) == PixelsOf(*tree.Plane(0))) ==
           (PixelsOf(*fresh.Plane(plane)) == PixelsOf(*fresh.Plane(0)));
}

/// True when a tree differs from a new one of its form in pixels and coordinate map only, so that storing it gives
/// the bytes that storing its duplicate gives.
bool StandsLikeNew(TImageObject &tree, TImageObject &fresh, const Dimensions &size) {
    if (tree.GetClassId() != fresh.GetClassId() || tree.GetCount() != fresh.GetCount() ||
        tree.PlaneList() == nullptr || fresh.PlaneList() == nullptr || !HasEqualInfo(tree, fresh))
        return false;
    for (std::intptr_t number = 0; number < size.Planes; ++number) {
        TImagePlane &plane = *tree.Plane(number);
        const auto rows = static_cast<std::size_t>(size.Height);
        const auto bytes = static_cast<std::size_t>(BytesOf(plane.Datatype));
        const bool isColor = size.Planes == 3 && tree.IsClass(TSimpleDIB::ClassId);
        if (!IsTypedWidth(static_cast<std::intptr_t>(bytes)) || !IsLikeNew(plane, *fresh.Plane(number)) ||
            !SharesAlike(tree, fresh, number) ||
            !HasClearPadding(plane, static_cast<std::size_t>(size.Width) * (isColor ? 3 : bytes), rows))
            return false;
    }
    return true;
}

/// A typed plane of its own for each plane of a form.
NodeHolder<TImageObject> OwningForm(TImageObject &form, const Dimensions &size) {
    const TreeForm onePlane = {1, static_cast<std::int32_t>(size.Width), static_cast<std::int32_t>(size.Height)};
    NodeHolder<TImageObject> root(new TImageObject);
    NodeHolder<TSList> list(new TSList);
    for (std::intptr_t number = 0; number < size.Planes; ++number) {
        const NodeHolder<TImageObject> part = BuildTypedPlanes(onePlane, form.Plane(number)->Datatype);
        part->Plane(0)->Share();
        Adopt(*list, NodeHolder<TImagePlane>(part->Plane(0)));
    }
    Adopt(*root, std::move(list));
    root->SetSize(onePlane.Width, onePlane.Height);
    return root;
}

bool OwnsItsPixels(TImageObject &tree, const Dimensions &size) {
    for (std::intptr_t number = 0; number < size.Planes; ++number)
        if (PixelsOf(*tree.Plane(number)) == nullptr)
            return false;
    return true;
}

void *HandleOf(NodeHolder<TImageObject> tree) {
    return static_cast<pOLE::IImageVPA *>(tree.Detach()->Interface());
}

/// A compatible image whose planes are no views, or the image itself where it stands like a new one.
DuplicateTarget MakeOwning(void *image) {
    void *compatible = nullptr;
    if (!CreateCompatibleImage(image, 0, 0, 0, &compatible) || compatible == nullptr)
        return {};
    NodeHolder<TImageObject> fresh(TreeOf(compatible));
    const Dimensions size = DimensionsOf(*fresh->Interface());
    const Interface::ImageHolder source = Interface::QueryImage(image);
    TImageObject *tree = source.IsValid() ? TreeOf(source.Get()) : nullptr;
    if (!OwnsItsPixels(*fresh, size))
        return {HandleOf(OwningForm(*fresh, size)), false};
    if (tree == nullptr || !StandsLikeNew(*tree, *fresh, size))
        return {HandleOf(std::move(fresh)), false};
    tree->Share();
    return {HandleOf(NodeHolder<TImageObject>(tree)), true};
}

} // namespace

NodeHolder<TImageObject> OwningDuplicate(void *image) {
    void *copy = nullptr;
    if (Duplicate(image, MakeOwning, &copy) == 0)
        return {};
    return NodeHolder<TImageObject>(TreeOf(copy));
}

TImageObject *TreeOf(void *image) {
    pOLE::IImageVPA *handle = Interface::BorrowAs(Interface::BorrowableClass::TreeImage, image);
    auto *face = static_cast<TIImageVPA *>(handle);
    return face != nullptr && face->IsMemberOf(TIImageVPA::ClassId) ? &face->Owner() : nullptr;
}

} // namespace Image

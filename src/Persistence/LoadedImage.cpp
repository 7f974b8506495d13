#include "Persistence/LoadedImage.h"

#include <algorithm>
#include <unordered_set>

#include "Image/DataType.h"
#include "Image/TreeBuilder.h"

namespace Persistence {
namespace {

[[noreturn]] void Refuse() {
    throw CtkExceptionObject("The loaded object is no image.");
}

void Require(bool condition) {
    if (!condition)
        Refuse();
}

/// The child as a node of exactly this class.
template <class Node>
Node &ChildOfClass(const TSList &parent, std::int64_t number) {
    const auto *place = parent.NodeAt(number);
    Require(place != nullptr && place->Item != nullptr && place->Item->IsClass(Node::ClassId));
    return static_cast<Node &>(*place->Item);
}

struct OffsetRange {
    std::int64_t Lowest;
    std::int64_t Highest;
};

/// The range of one axis's offsets, guard entries included.
OffsetRange RangeOf(const VPAEntry *table, std::intptr_t VPAEntry::*axis, std::intptr_t count) {
    OffsetRange range = {table[-Image::GuardEntries].*axis, table[-Image::GuardEntries].*axis};
    for (std::intptr_t i = 1 - Image::GuardEntries; i < count + Image::GuardEntries; ++i) {
        range.Lowest = std::min<std::int64_t>(range.Lowest, table[i].*axis);
        range.Highest = std::max<std::int64_t>(range.Highest, table[i].*axis);
    }
    return range;
}

struct Size {
    std::intptr_t Width;
    std::intptr_t Height;
};

void CheckPlane(TImagePlane &plane, Size size) {
    Require(plane.GetCount() == 1);
    const auto &pixels = ChildOfClass<TBuffer>(plane, 0);
    Require(pixels.GetCount() == 0);
    const std::intptr_t bits = Image::BitsOf(plane.Datatype);
    Require(bits >= 1 && bits <= 64);
    Require(plane.GetSize() % (sizeof(VPAEntry) / 2) == 0); // nothing behind the last narrow entry
    plane.WidenTable();
    std::size_t records = 0;
    Require(Image::TableRecords(size.Width, size.Height, records) && plane.GetSize() % sizeof(VPAEntry) == 0 &&
            plane.GetSize() / sizeof(VPAEntry) == records);
    if (size.Width == 0 || size.Height == 0)
        return;
    // Entries have 32 bits, so that no sum overflows.
    const OffsetRange x = RangeOf(plane.Table(), &VPAEntry::XEntry, size.Width);
    const OffsetRange y = RangeOf(plane.Table(), &VPAEntry::YEntry, size.Height);
    const std::int64_t end = x.Highest + y.Highest + (bits + 7) / 8;
    Require(x.Lowest + y.Lowest >= 0 && end <= static_cast<std::int64_t>(pixels.GetSize()));
}

/// A bitmap hands its block out with its description: both must tell of the image's own pixels.
void CheckBitmap(const TSimpleDIB &image, std::intptr_t planes, Size size) {
    auto &info = ChildOfClass<TDIBInfo>(image, 1);
    Require(info.GetCount() == 0 && info.GetSize() >= sizeof(TBitmapInfoHeader));
    const TBitmapInfoHeader header = info.Header();
    Image::BitmapGeometry geometry = {};
    Require(Image::GeometryOf(header, geometry));
    const std::size_t paletteBytes = header.biBitCount == 8 ? 1024 : 0;
    Require(info.GetSize() == sizeof header + paletteBytes && planes == (header.biBitCount == 8 ? 1 : 3));
    Require(geometry.Width == size.Width && geometry.Height == size.Height && image.PixelBuffer() != nullptr);
    Require(static_cast<std::size_t>(geometry.Stride) * static_cast<std::size_t>(geometry.Height) <=
            image.PixelBuffer()->GetSize());
}

} // namespace

void FinishLoadedImage(TSList &object) {
    auto &image = static_cast<TImageObject &>(object);
    const bool isBitmap = image.IsClass(TSimpleDIB::ClassId);
    Require(image.GetCount() == (isBitmap ? 2 : 1));
    const auto &list = ChildOfClass<TSList>(image, 0);
    Size size = {};
    std::intptr_t planes = 0;
    image.GetDimensions(&planes, &size.Width, &size.Height);
    Require(size.Width >= 0 && size.Height >= 0);
    std::unordered_set<const TSList *> checked;
    for (const auto *node = list.HeadNode(); node != nullptr; node = node->Next) {
        Require(node->Item->IsClass(TImagePlane::ClassId));
        // A plane may stand in the list any number of times.
        if (checked.insert(node->Item).second)
            CheckPlane(static_cast<TImagePlane &>(*node->Item), size);
    }
    if (isBitmap)
        CheckBitmap(static_cast<const TSimpleDIB &>(image), planes, size);
}

NodeHolder<TImageObject> AsLoadedImage(NodeHolder<TSList> object) {
    Require(object->IsMemberOf(TImageObject::ClassId));
    return NodeHolder<TImageObject>(static_cast<TImageObject *>(object.Detach()));
}

} // namespace Persistence

// How the nodes of an image stand in a stream, and how they are replicated.
#include <cstring>
#include <vector>

#include "Image/ImageObject.h"
#include "Persistence/Tree/StreamBytes.h"

using Persistence::ReadValue;
using Persistence::WriteValue;

namespace {

/// An entry pair of a table in a stream.
struct NarrowEntry {
    std::int32_t XEntry;
    std::int32_t YEntry;
};
static_assert(sizeof(NarrowEntry) * 2 == sizeof(VPAEntry));

/// The source as a node of the same class.
template <class Node>
Node &SourceOf(TSList &source) {
    auto *node = dynamic_cast<Node *>(&source);
    if (node == nullptr)
        throw CtkExceptionObject("Impossible replication requested.");
    return *node;
}

} // namespace

void TImagePlane::Load(CtkStream &stream) {
    isNarrow_ = true;
    TBuffer::Load(stream);
    Datatype = ReadValue<TDataType>(stream);
}

void TImagePlane::Store(CtkStream &stream) {
    TSList::Store(stream);
    if (isNarrow_) {
        StoreBlock(stream, GetData(), GetSize());
    } else {
        const auto *entries = static_cast<const VPAEntry *>(GetData());
        std::vector<NarrowEntry> narrowed(GetSize() / sizeof(VPAEntry));
        for (std::size_t i = 0; i < narrowed.size(); ++i)
            narrowed[i] = {static_cast<std::int32_t>(entries[i].XEntry),
                           static_cast<std::int32_t>(entries[i].YEntry)};
        StoreBlock(stream, narrowed.data(), narrowed.size() * sizeof(NarrowEntry));
    }
    WriteValue(stream, Datatype);
}

void TImagePlane::Replicate(TSList &source) {
    TBuffer::Replicate(source);
    const auto &plane = SourceOf<TImagePlane>(source);
    Datatype = plane.Datatype;
    isNarrow_ = plane.isNarrow_;
}

void TImagePlane::WidenTable() {
    if (!isNarrow_)
        return;
    std::vector<NarrowEntry> narrow(GetSize() / sizeof(NarrowEntry));
    if (!narrow.empty())
        std::memcpy(narrow.data(), GetData(), narrow.size() * sizeof(NarrowEntry));
    Allocate(narrow.size() * sizeof(VPAEntry));
    auto *entries = static_cast<VPAEntry *>(GetData());
    for (std::size_t i = 0; i < narrow.size(); ++i)
        entries[i] = {narrow[i].XEntry, narrow[i].YEntry};
    isNarrow_ = false;
}

void TDIBInfo::Load(CtkStream &stream) {
    TBuffer::Load(stream);
    paletteMode_ = ReadValue<std::int32_t>(stream);
}

void TDIBInfo::Store(CtkStream &stream) {
    TBuffer::Store(stream);
    WriteValue(stream, paletteMode_);
}

void TDIBInfo::Replicate(TSList &source) {
    TBuffer::Replicate(source);
    paletteMode_ = SourceOf<TDIBInfo>(source).paletteMode_;
}

void TImageObject::Load(CtkStream &stream) {
    TSList::Load(stream);
    width_ = ReadValue<std::int32_t>(stream);
    height_ = ReadValue<std::int32_t>(stream);
    Coordinates = ReadValue<TCoordinateMap>(stream);
}

void TImageObject::Store(CtkStream &stream) {
    TSList::Store(stream);
    WriteValue(stream, width_);
    WriteValue(stream, height_);
    WriteValue(stream, Coordinates);
}

void TImageObject::Replicate(TSList &source) {
    TSList::Replicate(source);
    const auto &image = SourceOf<TImageObject>(source);
    width_ = image.width_;
    height_ = image.height_;
    Coordinates = image.Coordinates;
}

void TSimpleDIB::Load(CtkStream &stream) {
    TImageObject::Load(stream);
    const TSList *planes = PlaneList();
    const TSList *plane = planes == nullptr || planes->GetCount() == 0 ? nullptr : planes->HeadValue();
    if (plane == nullptr || plane->GetCount() == 0)
        return;
    if (auto *pixels = dynamic_cast<TBuffer *>(plane->HeadValue()))
        SetPixelBuffer(pixels);
}

// A view that turns an image by swapping and reversing the two columns of its tables. No pixel is touched.
#include <algorithm>
#include <stdexcept>

#include "Image/BasicImageMap.h"
#include "ImageMaps.h"
#include "Interface/Boundary.h"

namespace Image {
namespace {

/// Base and table of one plane.
struct PlaneTable {
    void *Base = nullptr;
    VPAEntry *Table = nullptr;
};

PlaneTable TableOf(pOLE::IImageVPA &image, std::intptr_t plane) {
    PlaneTable found;
    if (image.GetPlaneVPA(plane, &found.Base, &found.Table) < 0 || found.Base == nullptr || found.Table == nullptr)
        throw std::runtime_error("no VPA");
    return found;
}

bool TablesEqual(const VPAEntry *first, const VPAEntry *other, const Dimensions &size) {
    if (first == other)
        return true;
    for (std::intptr_t x = 0; x < size.Width; ++x)
        if (first[x].XEntry != other[x].XEntry)
            return false;
    for (std::intptr_t y = 0; y < size.Height; ++y)
        if (first[y].YEntry != other[y].YEntry)
            return false;
    return true;
}

bool AllTablesEqual(pOLE::IImageVPA &source, const Dimensions &size) {
    if (size.Planes <= 1)
        return true;
    const VPAEntry *first = TableOf(source, 0).Table;
    for (std::intptr_t plane = 1; plane < size.Planes; ++plane)
        if (!TablesEqual(first, TableOf(source, plane).Table, size))
            return false;
    return true;
}

template <std::uint32_t Rotation>
class CVPATRotatedImageMap final : public CBasicImageMap<CVPATRotatedImageMap<Rotation>> {
public:
    explicit CVPATRotatedImageMap(const Interface::ImageHolder &source)
        : CBasicImageMap<CVPATRotatedImageMap>(source) {
        const std::intptr_t tables = AllTablesEqual(*source.Get(), this->size_) ? 1 : this->size_.Planes;
        if constexpr (Rotation != VPATRotation180)
            std::swap(this->size_.Width, this->size_.Height);
        this->AllocateTables(tables);
        for (std::intptr_t plane = 0; plane < this->size_.Planes; ++plane) {
            const PlaneTable old = TableOf(*source.Get(), plane);
            this->bases_[static_cast<std::size_t>(plane)] = old.Base;
            if (plane < tables)
                Rewrite(this->Table(plane), old.Table);
        }
    }

private:
    void Rewrite(VPAEntry *table, const VPAEntry *old) const {
        const std::intptr_t width = this->size_.Width;
        const std::intptr_t height = this->size_.Height;
        constexpr bool mirrorsX = Rotation != VPATRotation90CounterClockwise;
        constexpr bool mirrorsY = Rotation != VPATRotation90Clockwise;
        for (std::intptr_t i = 0; i < width; ++i)
            table[mirrorsX ? width - 1 - i : i].XEntry = Rotation == VPATRotation180 ? old[i].XEntry : old[i].YEntry;
        for (std::intptr_t j = 0; j < height; ++j)
            table[mirrorsY ? height - 1 - j : j].YEntry = Rotation == VPATRotation180 ? old[j].YEntry : old[j].XEntry;
        WriteGuardEntries(table, width, height);
    }
};

/// The map with its first reference, or null for another rotation.
pOLE::IImageVPA *MakeRotatedMap(const Interface::ImageHolder &source, std::uint32_t rotation) {
    switch (rotation) {
    case VPATRotation90CounterClockwise:
        return new CVPATRotatedImageMap<VPATRotation90CounterClockwise>(source);
    case VPATRotation180:
        return new CVPATRotatedImageMap<VPATRotation180>(source);
    case VPATRotation90Clockwise:
        return new CVPATRotatedImageMap<VPATRotation90Clockwise>(source);
    default:
        return nullptr;
    }
}

} // namespace
} // namespace Image

bool CreateRotatedImageMap(void *image, uint32_t rotation, void **out) {
    return Interface::SilentBoundary(false, [&] {
        const Interface::ImageHolder source = Interface::QueryImage(image);
        if (!source.IsValid() || out == nullptr)
            return false;
        pOLE::IImageVPA *map = Image::MakeRotatedMap(source, rotation);
        if (map == nullptr)
            return false;
        *out = map;
        return true;
    });
}

#include "Image/PlaneView.h"

#include <algorithm>
#include <cstdlib>

namespace Image {
namespace {

struct Extent {
    std::intptr_t Lowest;
    std::intptr_t Highest;
};

Extent ExtentOf(const VPAEntry *table, std::intptr_t VPAEntry::*axis, std::intptr_t count) {
    Extent extent = {table[0].*axis, table[0].*axis};
    for (std::intptr_t i = 1; i < count; ++i) {
        extent.Lowest = std::min(extent.Lowest, table[i].*axis);
        extent.Highest = std::max(extent.Highest, table[i].*axis);
    }
    return extent;
}

} // namespace

std::intptr_t PlaneView::LowestColumn() const {
    return std::min(Columns[0].XEntry, Columns[Width - 1].XEntry);
}

PlaneView PlaneView::Part(std::intptr_t left, std::intptr_t top, std::intptr_t width, std::intptr_t height) const {
    PlaneView part = *this;
    part.Columns += left;
    part.Rows += top;
    part.Width = width;
    part.Height = height;
    const bool inside = left >= 0 && top >= 0 && left + width <= Width && top + height <= Height;
    if (!inside) {
        part.XStep = 0;
        part.YStep = 0;
    }
    return part;
}

bool PlaneView::HasDistinctPixels() const {
    const std::intptr_t x = std::abs(XStep);
    const std::intptr_t y = std::abs(YStep);
    if ((Width > 1 && x < Bytes) || (Height > 1 && y < Bytes))
        return false;
    return Width == 1 || Height == 1 || y >= (Width - 1) * x + Bytes || x >= (Height - 1) * y + Bytes;
}

MemoryRange RangeOf(const PlaneView &view) {
    if (view.Width < 1 || view.Height < 1)
        return {nullptr, nullptr};
    const Extent x = ExtentOf(view.Columns, &VPAEntry::XEntry, view.Width);
    const Extent y = ExtentOf(view.Rows, &VPAEntry::YEntry, view.Height);
    return {view.Base + x.Lowest + y.Lowest, view.Base + x.Highest + y.Highest + view.Bytes};
}

PlaneView ViewOf(const vpat_analyzer &image, std::intptr_t plane) {
    return {static_cast<char *>(image.PlaneBase(plane)),
            image.Table(plane),
            image.Table(plane),
            image.Width(),
            image.Height(),
            BytesOf(image.Datatype(plane)),
            image.XStep(plane),
            image.YStep(plane)};
}

} // namespace Image

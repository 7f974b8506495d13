#include "Image/PlaneView.h"

#include <algorithm>

#include "CheckedSize.h"

namespace Image {
namespace {

struct Extent {
    std::intptr_t Lowest;
    std::intptr_t Highest;
};

/// step is the common one of the entries, or 0.
Extent ExtentOf(const VPAEntry *table, std::intptr_t VPAEntry::*axis, std::intptr_t count, std::intptr_t step) {
    Extent extent = {table[0].*axis, table[0].*axis};
    std::intptr_t last = 0;
    if (step != 0 && orvBase::CheckedProduct(last, count - 1, step) && orvBase::CheckedSum(last, last, extent.Lowest))
        return {std::min(extent.Lowest, last), std::max(extent.Highest, last)};
    for (std::intptr_t i = 1; i < count; ++i) {
        extent.Lowest = std::min(extent.Lowest, table[i].*axis);
        extent.Highest = std::max(extent.Highest, table[i].*axis);
    }
    return extent;
}

/// True when a step passes over a whole line of count pixels.
bool Clears(std::size_t step, std::intptr_t count, std::size_t pixelStep, std::size_t bytes) {
    std::size_t lineBytes = 0;
    return orvBase::CheckedProduct(lineBytes, static_cast<std::size_t>(count - 1), pixelStep) &&
           orvBase::CheckedSum(lineBytes, lineBytes, bytes) && step >= lineBytes;
}

} // namespace

bool PlaneView::HasDistinctPixels() const {
    const std::size_t x = orvBase::Magnitude(XStep);
    const std::size_t y = orvBase::Magnitude(YStep);
    const auto bytes = static_cast<std::size_t>(Bytes);
    if ((Width > 1 && x < bytes) || (Height > 1 && y < bytes))
        return false;
    return Width == 1 || Height == 1 || Clears(y, Width, x, bytes) || Clears(x, Height, y, bytes);
}

MemoryRange RangeOf(const PlaneView &view) {
    if (view.Width < 1 || view.Height < 1)
        return {nullptr, nullptr};
    const Extent x = ExtentOf(view.Columns, &VPAEntry::XEntry, view.Width, view.XStep);
    const Extent y = ExtentOf(view.Rows, &VPAEntry::YEntry, view.Height, view.YStep);
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

PlaneView ViewOf(const PlaneFacts &plane, const Dimensions &size) {
    const TableSteps steps = CommonSteps({plane.Table, size.Width, plane.Table, size.Height});
    return {static_cast<char *>(plane.Base), plane.Table, plane.Table, size.Width, size.Height,
            BytesOf(plane.Datatype),         steps.X,     steps.Y};
}

} // namespace Image

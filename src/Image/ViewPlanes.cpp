#include "Image/ViewPlanes.h"

#include <limits>
#include <new>

#include "Image/Dimensions.h"
#include "Image/TableWriter.h"
#include "TruncateTo.h"

namespace Image {
namespace {

using Persistence::Adopt;
using Persistence::NodeHolder;

std::int32_t TreeSize(std::intptr_t count) {
    if (count < 0 || count > std::numeric_limits<std::int32_t>::max())
        throw ViewNotPossible();
    return static_cast<std::int32_t>(count);
}

bool IsInside(const SourceRectangle &rectangle, const Dimensions &size) {
    return rectangle.Left >= 0 && rectangle.Right < size.Width && rectangle.Top >= 0 &&
           rectangle.Bottom < size.Height;
}

} // namespace

void MapTable(VPAEntry *target, const VPAEntry *source, std::intptr_t VPAEntry::*axis, std::intptr_t first,
              std::intptr_t last, std::intptr_t targetCount) {
    if (targetCount <= 0)
        return;
    const double scale = static_cast<double>(last - first + 1) / static_cast<double>(targetCount);
    for (std::intptr_t i = 0; i < targetCount; ++i)
        target[i].*axis = source[orvBase::TruncateTo<std::int32_t>(static_cast<double>(i) * scale) + first].*axis;
}

ViewBuilder::ViewBuilder(std::intptr_t targetWidth, std::intptr_t targetHeight)
    : width_(TreeSize(targetWidth)), height_(TreeSize(targetHeight)), planes_(new TSList) {}

void ViewBuilder::AddViewPlane(pOLE::IImageVPA &source, std::intptr_t plane, const SourceRectangle &rectangle) {
    const Dimensions size = DimensionsOf(source);
    if (!IsInside(rectangle, size))
        throw "SourceRectangle outside Image in AffineMap";
    // The tables are filled by source positions of 31 bits.
    TreeSize(rectangle.Right - rectangle.Left + 1);
    TreeSize(rectangle.Bottom - rectangle.Top + 1);
    NodeHolder<TImagePlane> view(new TImagePlane);
    std::size_t records = 0;
    if (!TableRecords(width_, height_, records))
        throw std::bad_alloc();
    view->Allocate(records * sizeof(VPAEntry));
    Adopt(*view, NodeHolder<TImageDataExt>(new TImageDataExt(static_cast<pOLE::IUnknown *>(&source), plane)));
    void *base = nullptr;
    VPAEntry *table = nullptr;
    if (plane < 0 || plane >= size.Planes || source.GetPlaneDatatype(plane, &view->Datatype) != 0 ||
        source.GetPlaneVPA(plane, &base, &table) < 0 || table == nullptr)
        throw ViewNotPossible();
    // Pixels that the source does not have can't be shown.
    if ((width_ > 0 && size.Width < 1) || (height_ > 0 && size.Height < 1))
        throw ViewNotPossible();
    WriteLinearTable(view->Table(), width_, height_, {}, {});
    MapTable(view->Table(), table, &VPAEntry::XEntry, rectangle.Left, rectangle.Right, width_);
    MapTable(view->Table(), table, &VPAEntry::YEntry, rectangle.Top, rectangle.Bottom, height_);
    WriteGuardEntries(view->Table(), width_, height_);
    Adopt(*planes_, std::move(view));
}

void ViewBuilder::AddWholePlanes(pOLE::IImageVPA &source, std::intptr_t first, std::intptr_t end) {
    const Dimensions size = DimensionsOf(source);
    for (std::intptr_t plane = first; plane < end; ++plane)
        AddViewPlane(source, plane, {0, 0, size.Width - 1, size.Height - 1});
}

NodeHolder<TImageObject> ViewBuilder::Finish(const TCoordinateMap &map) {
    NodeHolder<TImageObject> image(new TImageObject);
    Adopt(*image, std::move(planes_));
    image->SetSize(width_, height_);
    image->Coordinates = map;
    return image;
}

} // namespace Image

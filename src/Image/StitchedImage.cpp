#include "Image/StitchedImage.h"

#include "CheckedSize.h"
#include "Image/TableWriter.h"
#include "ImageMaps.h"
#include "Interface/ImageKernelException.h"

namespace Image {
namespace {

using ErrorHandling::CImageKernelException;

/// A failing status travels as the exception's code.
void ThrowFailure(std::int32_t status) {
    if (status < 0)
        throw CImageKernelException(static_cast<std::uint32_t>(status));
}

Dimensions ReadDimensions(pOLE::IImageVPA &image) {
    Dimensions size;
    ThrowFailure(image.GetImageDimensions(&size.Planes, &size.Width, &size.Height));
    return size;
}

bool IsNegative(const Dimensions &size) {
    return size.Planes < 0 || size.Width < 0 || size.Height < 0;
}

TDataType ReadDatatype(pOLE::IImageVPA &image, std::intptr_t plane) {
    TDataType type = 0;
    ThrowFailure(image.GetPlaneDatatype(plane, &type));
    return type;
}

/// later - earlier, wrapping: a distance between any two addresses is a machine word.
std::intptr_t Difference(std::intptr_t later, std::intptr_t earlier) {
    return static_cast<std::intptr_t>(static_cast<std::uintptr_t>(later) - static_cast<std::uintptr_t>(earlier));
}

std::intptr_t Sum(std::intptr_t a, std::intptr_t b) {
    return static_cast<std::intptr_t>(static_cast<std::uintptr_t>(a) + static_cast<std::uintptr_t>(b));
}

/// True when both tables advance alike along an axis of the given length.
bool AdvanceAlike(const VPAEntry *a, const VPAEntry *b, std::intptr_t VPAEntry::*axis, std::intptr_t count) {
    for (std::intptr_t i = 1; i < count; ++i)
        if (Difference(a[i].*axis, a[i - 1].*axis) != Difference(b[i].*axis, b[i - 1].*axis))
            return false;
    return true;
}

} // namespace

StitchedImage::StitchedImage(void *first, void *second, std::uint32_t direction)
    : first_(Interface::QueryImage(first)), second_(Interface::QueryImage(second)) {
    if (!first_.IsValid() || !second_.IsValid())
        throw CImageKernelException(ErrNotAnImage);
    if (direction > PanoramaStacked)
        throw CImageKernelException(ErrParameter);
    const Dimensions a = ReadDimensions(*first_.Get());
    const Dimensions b = ReadDimensions(*second_.Get());
    const bool stacked = direction == PanoramaStacked;
    if (IsNegative(a) || IsNegative(b) || a.Planes != b.Planes ||
        (stacked ? a.Width != b.Width : a.Height != b.Height))
        throw CImageKernelException(ErrIndexRange);
    CheckDataTypes(a.Planes);
    if (!orvBase::CheckedSum(width_, a.Width, stacked ? std::intptr_t{0} : b.Width) ||
        !orvBase::CheckedSum(height_, a.Height, stacked ? b.Height : std::intptr_t{0}))
        throw CImageKernelException(ErrCreateFailed);
    for (std::intptr_t plane = 0; plane < a.Planes; ++plane)
        BuildPlane(plane, a, b, direction);
}

void StitchedImage::CheckDataTypes(std::intptr_t planes) {
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        if (((ReadDatatype(*first_.Get(), plane) ^ ReadDatatype(*second_.Get(), plane)) & ~DataTypeOverlay) != 0)
            throw CImageKernelException(ErrDataType);
}

void StitchedImage::BuildPlane(std::intptr_t plane, const Dimensions &first, const Dimensions &second,
                               std::uint32_t direction) {
    void *base = nullptr;
    void *otherBase = nullptr;
    VPAEntry *own = nullptr;
    VPAEntry *other = nullptr;
    ThrowFailure(first_->GetPlaneVPA(plane, &base, &own));
    ThrowFailure(second_->GetPlaneVPA(plane, &otherBase, &other));
    if (base == nullptr || own == nullptr || otherBase == nullptr || other == nullptr)
        throw CImageKernelException(ErrGeneral);
    const bool stacked = direction == PanoramaStacked;
    // One table per plane serves both images only when they advance alike along the axis that isn't joined.
    if (stacked ? !AdvanceAlike(own, other, &VPAEntry::XEntry, first.Width)
                : !AdvanceAlike(own, other, &VPAEntry::YEntry, first.Height))
        throw CImageKernelException(ErrNotPossible);
    std::size_t records = 0;
    if (!TableRecords(width_, height_, records))
        throw CImageKernelException(ErrCreateFailed);
    bases_.push_back(base);
    VPAEntry *table = tables_.emplace_back(records).data() + GuardEntries;
    for (std::intptr_t x = 0; x < first.Width; ++x)
        table[x].XEntry = own[x].XEntry;
    for (std::intptr_t y = 0; y < first.Height; ++y)
        table[y].YEntry = own[y].YEntry;
    const std::intptr_t distance =
        Difference(reinterpret_cast<std::intptr_t>(otherBase), reinterpret_cast<std::intptr_t>(base));
    if (stacked) {
        const std::intptr_t shift = Sum(distance, Difference(other[0].XEntry, own[0].XEntry));
        for (std::intptr_t y = 0; y < second.Height; ++y)
            table[first.Height + y].YEntry = Sum(shift, other[y].YEntry);
    } else {
        const std::intptr_t shift = Sum(distance, Difference(other[0].YEntry, own[0].YEntry));
        for (std::intptr_t x = 0; x < second.Width; ++x)
            table[first.Width + x].XEntry = Sum(shift, other[x].XEntry);
    }
    WriteGuardEntries(table, width_, height_);
}

bool StitchedImage::HasPlane(std::intptr_t plane) const {
    return plane >= 0 && static_cast<std::size_t>(plane) < bases_.size();
}

std::int32_t StitchedImage::GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) {
    *planes = static_cast<std::intptr_t>(bases_.size());
    *width = width_;
    *height = height_;
    return Interface::StatusOk;
}

std::int32_t StitchedImage::GetPlaneDatatype(std::intptr_t plane, TDataType *type) {
    return HasPlane(plane) ? first_->GetPlaneDatatype(plane, type) : Interface::StatusParameter;
}

std::int32_t StitchedImage::GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) {
    if (!HasPlane(plane))
        return Interface::StatusParameter;
    *base = bases_[static_cast<std::size_t>(plane)];
    *table = tables_[static_cast<std::size_t>(plane)].data() + GuardEntries;
    return Interface::StatusOk;
}

} // namespace Image

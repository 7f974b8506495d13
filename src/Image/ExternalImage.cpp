#include "Image/ExternalImage.h"

#include <cstdlib>

#include "CheckedSize.h"
#include "Image/DataType.h"
#include "Image/ExternalLayout.h"
#include "Image/TableWriter.h"
#include "Interface/Boundary.h"
#include "Interface/ImageGuard.h"

namespace Image {

using ErrorHandling::CImageKernelException;

CExternalImage::TableSet::~TableSet() {
    for (std::intptr_t i = 0; i < count_; ++i)
        std::free(blocks_[i]);
    std::free(blocks_);
}

bool CExternalImage::TableSet::Allocate(std::intptr_t planes, std::size_t recordsPerTable) {
    std::size_t bytes = 0;
    if (!orvBase::CheckedProduct(bytes, static_cast<std::size_t>(planes), sizeof(VPAEntry *)))
        return false;
    blocks_ = static_cast<VPAEntry **>(std::malloc(bytes));
    if (blocks_ == nullptr)
        return false;
    for (; count_ < planes; ++count_) {
        blocks_[count_] = static_cast<VPAEntry *>(std::malloc(recordsPerTable * sizeof(VPAEntry)));
        if (blocks_[count_] == nullptr)
            return false;
    }
    return true;
}

VPAEntry *CExternalImage::TableSet::Entry0(std::intptr_t plane) const {
    return blocks_[plane] + GuardEntries;
}

CExternalImage::CExternalImage(const ExternalLayout &layout, TImageReleaseCallback release, void *userData)
    : userData_(userData), height_(layout.Height), width_(layout.Width), datatype_(layout.Datatype),
      planes_(layout.Planes), buffer_(layout.Buffer) {
    CheckExternalLayout(layout);
    BuildTables(layout);
    Interface::SetBorrowableClass(Interface::BorrowableClass::ExternalImage, AsUnknown(), this);
    release_ = release;
}

CExternalImage::~CExternalImage() {
    if (release_ != nullptr)
        release_(buffer_, userData_);
}

void CExternalImage::BuildTables(const ExternalLayout &layout) {
    std::size_t records = 0;
    if (!TableRecords(width_, height_, records) || !tables_.Allocate(planes_, records))
        throw CImageKernelException(ErrCreateFailed);
    for (std::intptr_t k = 0; k < planes_; ++k) {
        VPAEntry *table = tables_.Entry0(layout.PlaneOrder != nullptr ? layout.PlaneOrder[k] : k);
        WriteLinearTable(table, width_, height_, {k * layout.PitchPlane, layout.PitchX}, {0, layout.PitchY});
    }
}

std::int32_t CExternalImage::GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) {
    *planes = planes_;
    *width = width_;
    *height = height_;
    return Interface::StatusOk;
}

std::int32_t CExternalImage::GetPlaneDatatype(std::intptr_t plane, TDataType *type) {
    if (plane < 0 || plane >= planes_)
        return Interface::StatusParameter;
    *type = datatype_;
    return Interface::StatusOk;
}

std::int32_t CExternalImage::GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) {
    if (plane < 0 || plane >= planes_)
        return Interface::StatusParameter;
    *base = buffer_;
    *table = tables_.Entry0(plane);
    return Interface::StatusOk;
}

} // namespace Image

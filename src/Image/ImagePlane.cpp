#include "Image/ImagePlane.h"

#include "CtkExceptionObject.h"
#include "Image/TableWriter.h"

VPAEntry *TImagePlane::Table() {
    return static_cast<VPAEntry *>(GetData()) + Image::GuardEntries;
}

void *TImagePlane::PixelBase() const {
    const auto *data = NodeAt(0);
    return data == nullptr ? nullptr : static_cast<TDataPointer *>(data->Item)->GetData();
}

TImageDataExt::TImageDataExt(void *source, std::intptr_t plane) : TDataPointer(DataTag), plane_(plane) {
    AddClass(ClassId);
    if (source == nullptr)
        return;
    void *found = nullptr;
    const std::int32_t status = static_cast<pOLE::IUnknown *>(source)->QueryInterface(ORV_IID_IIMAGEVPA, &found);
    if (status < 0)
        return;
    if (found == nullptr)
        throw CtkExceptionObject("ImageVPA-Interface not supported");
    source_ = Interface::ImageHolder(static_cast<pOLE::IImageVPA *>(found));
}

void *TImageDataExt::GetData() {
    void *base = nullptr;
    VPAEntry *table = nullptr;
    if (!source_.IsValid() || source_->GetPlaneVPA(plane_, &base, &table) < 0)
        return nullptr;
    return base;
}

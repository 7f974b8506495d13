#include "Image/ImageObject.h"

#include "Interface/InterfaceId.h"
#include "Matrices.h"

using Interface::IsInterfaceId;
using Interface::StatusOk;
using Interface::StatusTreeFailure;

TImageObject::TImageObject() : interface_(std::make_unique<TIImageVPA>(*this)) {
    AddClass(ClassId);
    InitCoordinateMap(&Coordinates);
}

TImageObject::~TImageObject() = default;

std::int32_t TImageObject::QueryInterface(const char *id, void **out) {
    if (!IsInterfaceId(id, ORV_IID_IUNKNOWN) && !IsInterfaceId(id, ORV_IID_IIMAGEVPA)) {
        *out = nullptr;
        return StatusTreeFailure;
    }
    if (interface_ == nullptr)
        return StatusTreeFailure;
    interface_->AddRef();
    *out = static_cast<pOLE::IImageVPA *>(interface_.get());
    return StatusOk;
}

std::int32_t TImageObject::GetDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) {
    const TSList *list = PlaneList();
    *planes = list == nullptr ? 0 : list->GetCount();
    *width = width_;
    *height = height_;
    return StatusOk;
}

void TImageObject::SetOverlay(bool on) {
    const TSList *list = ValueAt(0);
    for (auto *node = list->HeadNode(); node != nullptr; node = node->Next) {
        auto *plane = static_cast<TImagePlane *>(node->Item);
        plane->Datatype = on ? plane->Datatype | DataTypeOverlay : plane->Datatype & ~DataTypeOverlay;
    }
}

void TImageObject::SetSize(std::int32_t width, std::int32_t height) {
    width_ = width;
    height_ = height;
}

TSList *TImageObject::PlaneList() const {
    const auto *node = NodeAt(0);
    return node == nullptr ? nullptr : node->Item;
}

TImagePlane *TImageObject::Plane(std::intptr_t number) const {
    constexpr std::intptr_t quicklyWalked = 32;
    const TSList *list = PlaneList();
    if (number >= quicklyWalked && list != nullptr) {
        std::call_once(indexOnce_, [&] {
            for (auto *node = list->HeadNode(); node != nullptr; node = node->Next)
                index_.push_back(static_cast<TImagePlane *>(node->Item));
        });
        if (static_cast<std::intptr_t>(index_.size()) == list->GetCount())
            return number < list->GetCount() ? index_[static_cast<std::size_t>(number)] : nullptr;
    }
    const auto *node = list == nullptr ? nullptr : list->NodeAt(number);
    return node == nullptr ? nullptr : static_cast<TImagePlane *>(node->Item);
}

TSimpleDIB::TSimpleDIB() {
    AddClass(ClassId);
}

TSimpleDIB::~TSimpleDIB() = default;

std::int32_t TSimpleDIB::QueryInterface(const char *id, void **out) {
    if (!IsInterfaceId(id, ORV_IID_IIMAGEDIB))
        return TImageObject::QueryInterface(id, out);
    if (bitmapInterface_ == nullptr) {
        *out = nullptr;
        return StatusTreeFailure;
    }
    bitmapInterface_->AddRef();
    *out = static_cast<pOLE::IImageDIB *>(bitmapInterface_.get());
    return StatusOk;
}

void TSimpleDIB::SetPixelBuffer(TBuffer *pixels) {
    bitmapInterface_ = std::make_unique<TIImageDIB>(*this);
    pixels_ = pixels;
}

TDIBInfo *TSimpleDIB::Info() const {
    const auto *node = NodeAt(1);
    return node == nullptr ? nullptr : static_cast<TDIBInfo *>(node->Item);
}

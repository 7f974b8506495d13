#include "Image/TreeInterfaces.h"

#include <cstring>

#include "Image/ImageObject.h"
#include "Image/TableWriter.h"
#include "Interface/ImageGuard.h"

using Interface::StatusOk;
using Interface::StatusTreeFailure;

TIImageVPA::TIImageVPA(TImageObject &owner) : owner_(owner) {
    AddClass(ClassId);
    Interface::SetBorrowableClass(Interface::BorrowableClass::TreeImage, this, this);
}

std::int32_t TIImageVPA::QueryInterface(const char *id, void **out) {
    return owner_.QueryInterface(id, out);
}

std::uintptr_t TIImageVPA::AddRef() {
    owner_.Share();
    return static_cast<std::uintptr_t>(owner_.GetRefCount());
}

std::uintptr_t TIImageVPA::Release() {
    // The last reference takes this object along with its owner: nothing of it is touched afterwards.
    return static_cast<std::uintptr_t>(owner_.Release());
}

std::int32_t TIImageVPA::GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) {
    return owner_.GetDimensions(planes, width, height);
}

std::int32_t TIImageVPA::GetPlaneDatatype(std::intptr_t plane, TDataType *type) {
    TImagePlane *found = owner_.Plane(plane);
    if (found == nullptr)
        return StatusTreeFailure;
    *type = found->Datatype;
    return StatusOk;
}

std::int32_t TIImageVPA::GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) {
    TImagePlane *found = owner_.Plane(plane);
    if (found == nullptr)
        return StatusTreeFailure;
    *base = found->PixelBase();
    *table = found->Table();
    return StatusOk;
}

std::int32_t TIImageVPA::GetCoordinateMap(TCoordinateMap *map) {
    *map = owner_.Coordinates;
    return StatusOk;
}

std::int32_t TIImageVPA::SetCoordinateMap(TCoordinateMap map) {
    owner_.Coordinates = map;
    return StatusOk;
}

TIImageDIB::TIImageDIB(TSimpleDIB &owner) : owner_(owner) {
    AddClass(ClassId);
}

std::int32_t TIImageDIB::QueryInterface(const char *id, void **out) {
    return owner_.QueryInterface(id, out);
}

std::uintptr_t TIImageDIB::AddRef() {
    owner_.Share();
    return static_cast<std::uintptr_t>(owner_.GetRefCount());
}

std::uintptr_t TIImageDIB::Release() {
    return static_cast<std::uintptr_t>(owner_.Release());
}

std::int32_t TIImageDIB::GetBitmapInfoHeader(TBitmapInfoHeader *header) {
    std::memcpy(header, owner_.Info()->GetData(), sizeof *header);
    return StatusOk;
}

std::int32_t TIImageDIB::GetBitmapBits(void **bits) {
    *bits = owner_.PixelBuffer()->GetData();
    return StatusOk;
}

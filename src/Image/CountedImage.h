// What images with a reference count of their own have in common: two interfaces, and a coordinate system.
#pragma once

#include "Image/Dimensions.h"
#include "Interface/BasicIUnknown.h"
#include "Matrices.h"

namespace Image {

/// Counted by its first base, an image by its second, whose slots forward to the first. T, derived from it, tells its
/// planes.
template <class T>
class CountedImage : public orvBase::CBasicIUnknown<T>, public pOLE::IImageVPA {
public:
    std::int32_t QueryInterface(const char *id, void **out) override { return Base::QueryInterface(id, out); }
    std::uintptr_t AddRef() override { return Base::AddRef(); }
    std::uintptr_t Release() override { return Base::Release(); }

    bool SupportsInterface(const char *id) override {
        return Interface::IsInterfaceId(id, ORV_IID_IUNKNOWN) || Interface::IsInterfaceId(id, ORV_IID_IIMAGEVPA);
    }

    std::int32_t GetCoordinateMap(TCoordinateMap *map) override {
        *map = coordinates_;
        return Interface::StatusOk;
    }

    std::int32_t SetCoordinateMap(TCoordinateMap map) override {
        coordinates_ = map;
        return Interface::StatusOk;
    }

protected:
    using Base = orvBase::CBasicIUnknown<T>;

    /// One reference for the maker, and the identity as coordinate map.
    CountedImage() : Base(1) { InitCoordinateMap(&coordinates_); }
    ~CountedImage() override = default;

private:
    TCoordinateMap coordinates_;
};

} // namespace Image

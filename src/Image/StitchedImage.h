// Two images shown as one, side by side or one above the other.
#pragma once

#include <vector>

#include "Image/Dimensions.h"
#include "Interface/BasicIUnknown.h"
#include "Interface/ImageGuard.h"

namespace Image {

class StitchedImage final : public orvBase::CBasicIUnknown<StitchedImage>, public pOLE::IImageVPA {
public:
    /// Throws CImageKernelException when the two can't be shown through one table per plane.
    StitchedImage(void *first, void *second, std::uint32_t direction);

    std::int32_t QueryInterface(const char *id, void **out) override { return Base::QueryInterface(id, out); }
    std::uintptr_t AddRef() override { return Base::AddRef(); }
    std::uintptr_t Release() override { return Base::Release(); }
    bool SupportsInterface(const char *id) override;

    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override;
    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override;
    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override;
    std::int32_t GetCoordinateMap(TCoordinateMap *map) override;
    std::int32_t SetCoordinateMap(TCoordinateMap map) override;

private:
    using Base = orvBase::CBasicIUnknown<StitchedImage>;

    ~StitchedImage() override = default;
    void CheckDataTypes(std::intptr_t planes);
    void BuildPlane(std::intptr_t plane, const Dimensions &first, const Dimensions &second, std::uint32_t direction);
    bool HasPlane(std::intptr_t plane) const;

    Interface::ImageHolder first_;
    Interface::ImageHolder second_;
    TCoordinateMap coordinates_;
    std::intptr_t width_ = 0;
    std::intptr_t height_ = 0;
    std::vector<void *> bases_;
    std::vector<std::vector<VPAEntry>> tables_;
};

} // namespace Image

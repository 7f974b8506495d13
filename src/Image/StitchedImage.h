// Two images shown as one, side by side or one above the other.
#pragma once

#include <vector>

#include "Image/CountedImage.h"
#include "Interface/ImageGuard.h"

namespace Image {

class StitchedImage final : public CountedImage<StitchedImage> {
public:
    /// Throws CImageKernelException when the two can't be shown through one table per plane.
    StitchedImage(void *first, void *second, std::uint32_t direction);

    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override;
    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override;
    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override;

private:
    ~StitchedImage() override = default;
    void CheckDataTypes(std::intptr_t planes);
    void BuildPlane(std::intptr_t plane, const Dimensions &first, const Dimensions &second, std::uint32_t direction);
    bool HasPlane(std::intptr_t plane) const;

    Interface::ImageHolder first_;
    Interface::ImageHolder second_;
    std::intptr_t width_ = 0;
    std::intptr_t height_ = 0;
    std::vector<void *> bases_;
    std::vector<std::vector<VPAEntry>> tables_;
};

} // namespace Image

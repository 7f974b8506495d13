/* Images told by their steps alone, over a block that is large enough for any small image. */
#ifndef ORV_TESTS_LINEAR_IMAGES_H
#define ORV_TESTS_LINEAR_IMAGES_H

#include "Support/ImageAccess.h"

namespace TestSupport {

struct PlaneSteps {
    std::intptr_t Start, X, Y; ///< byte of the first pixel, bytes per column and per row
    TDataType Type = 8;
};

/// A step that stands for entries without a common difference.
inline constexpr std::intptr_t UnevenStep = 0x7EEF;

inline Table::Offsets EntriesByStep(std::intptr_t step) {
    if (step == UnevenStep)
        return [](std::intptr_t i) { return i * i * 16; };
    return [step](std::intptr_t i) { return i * step; };
}

inline std::unique_ptr<FakeImage> Linear(std::intptr_t width, std::intptr_t height,
                                         const std::vector<PlaneSteps> &planes) {
    constexpr std::size_t bytes = 8192;
    auto image = std::make_unique<FakeImage>(width, height, bytes);
    for (const PlaneSteps &plane : planes)
        image->AddPlane(image->Pixels.data() + bytes / 2 + plane.Start, plane.Type, EntriesByStep(plane.X),
                        EntriesByStep(plane.Y));
    return image;
}

} // namespace TestSupport

#endif

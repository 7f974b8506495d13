#include "Persistence/BmpLayout.h"

#include <algorithm>
#include <stdexcept>

namespace Persistence {
namespace {

/// Bytes from a pixel to the next as a bitmap file can have them. A single column counts as dense.
std::optional<std::intptr_t> PixelStep(const Image::vpat_analyzer &image, std::intptr_t plane) {
    if (image.Width() == 1)
        return image.Planes();
    const std::intptr_t step = image.XStep(plane);
    const bool fits = step == image.Planes() || (step == 4 && image.Planes() == 3);
    return fits ? std::optional(step) : std::nullopt;
}

/// Bytes from a row to the next. A single row counts as dense; rows that all show the same memory are at distance 0.
std::optional<std::intptr_t> RowStep(const Image::vpat_analyzer &image, std::intptr_t plane,
                                     std::intptr_t pixelStep) {
    if (image.Height() == 1)
        return image.Width() * pixelStep;
    const std::intptr_t step = image.YStep(plane);
    const VPAEntry *const table = image.Table(plane);
    const bool constant = step != 0 || std::all_of(table, table + image.Height(), [table](const VPAEntry &entry) {
                              return entry.YEntry == table[0].YEntry;
                          });
    return constant ? std::optional(step) : std::nullopt;
}

std::optional<BmpLayout> LayoutOf(const Image::vpat_analyzer &image) {
    // The planes are R, G, B: the last one has the lowest address.
    const std::intptr_t last = image.Planes() - 1;
    const char *const firstRow = image.FirstPixel(last);
    const auto pixelStep = PixelStep(image, last);
    const auto rowStep = pixelStep ? RowStep(image, last, *pixelStep) : std::nullopt;
    if (!rowStep)
        return std::nullopt;
    for (std::intptr_t plane = 0; plane < last; ++plane)
        if (PixelStep(image, plane) != pixelStep || RowStep(image, plane, *pixelStep) != rowStep ||
            image.FirstPixel(plane) != firstRow + (last - plane))
            return std::nullopt;
    return BmpLayout{image.Planes(), image.Width(), image.Height(), reinterpret_cast<const unsigned char *>(firstRow),
                     *pixelStep,     *rowStep};
}

} // namespace

std::optional<BmpLayout> AnalyzeBmpLayout(const Interface::ImageHolder &image) {
    try {
        return LayoutOf(Image::vpat_analyzer(image));
    } catch (const std::runtime_error &) {
        return std::nullopt;
    }
}

} // namespace Persistence

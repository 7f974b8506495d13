// Each image is read through its own table.
#include "sheet.h"

#include <algorithm>

namespace {

/// The mean of the pixels that fall on one pixel of the sheet.
unsigned char MeanOf(const TPlaneRec &plane, const Cell &pixels) {
    intptr_t sum = 0;
    for (intptr_t y = pixels.top; y < pixels.top + pixels.height; ++y)
        for (intptr_t x = pixels.left; x < pixels.left + pixels.width; ++x)
            sum += *AddressOf(plane, x, y);
    return static_cast<unsigned char>(sum / (pixels.width * pixels.height));
}

} // namespace

void DrawInto(void *sheet, void *image, const Cell &cell) {
    const intptr_t width = ImageWidth(image);
    const intptr_t height = ImageHeight(image);
    const double scale = std::min(static_cast<double>(cell.width) / static_cast<double>(width),
                                  static_cast<double>(cell.height) / static_cast<double>(height));
    const intptr_t shownWidth = std::max<intptr_t>(static_cast<intptr_t>(static_cast<double>(width) * scale), 1);
    const intptr_t shownHeight = std::max<intptr_t>(static_cast<intptr_t>(static_cast<double>(height) * scale), 1);
    const intptr_t left = cell.left + (cell.width - shownWidth) / 2;
    const intptr_t top = cell.top + (cell.height - shownHeight) / 2;
    for (intptr_t p = 0; p < 3; ++p) {
        const TPlaneRec from = PlaneOf(image, ImageDimension(image) == 3 ? p : 0);
        const TPlaneRec to = PlaneOf(sheet, p);
        for (intptr_t y = 0; y < shownHeight; ++y)
            for (intptr_t x = 0; x < shownWidth; ++x) {
                const intptr_t x0 = x * width / shownWidth;
                const intptr_t y0 = y * height / shownHeight;
                const intptr_t x1 = std::max(x0 + 1, (x + 1) * width / shownWidth);
                const intptr_t y1 = std::max(y0 + 1, (y + 1) * height / shownHeight);
                *AddressOf(to, left + x, top + y) = MeanOf(from, {x0, y0, x1 - x0, y1 - y0});
            }
    }
}

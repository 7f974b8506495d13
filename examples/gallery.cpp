// Draws into a new image through its table, as it reads the views through theirs.
#include "gallery.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr intptr_t gap = 10;
constexpr intptr_t smallCell = 150;
constexpr intptr_t largeCell = 2 * smallCell + gap;
constexpr intptr_t largeCellWidth = 390;
constexpr intptr_t sheetWidth = largeCellWidth + 2 * smallCell + 4 * gap;
constexpr intptr_t sheetHeight = largeCell + 2 * gap;
constexpr unsigned char paper = 255;

struct Cell {
    intptr_t left;
    intptr_t top;
    intptr_t width;
    intptr_t height;
};

/// The mean of the pixels that fall on one pixel of the sheet.
unsigned char MeanOf(const TPlaneRec &plane, const Cell &pixels) {
    intptr_t sum = 0;
    for (intptr_t y = pixels.top; y < pixels.top + pixels.height; ++y)
        for (intptr_t x = pixels.left; x < pixels.left + pixels.width; ++x)
            sum += *AddressOf(plane, x, y);
    return static_cast<unsigned char>(sum / (pixels.width * pixels.height));
}

/// Draws an image into the middle of a cell, as large as fits.
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

} // namespace

ImageHandle DrawGallery(void *source, const std::vector<View> &views) {
    ImageHandle sheet;
    if (!CreateGenericImage(3, sheetWidth, sheetHeight, false, sheet.Out()) || sheet.Get() == nullptr)
        throw std::runtime_error("no memory for the gallery");
    for (intptr_t p = 0; p < 3; ++p)
        for (intptr_t y = 0; y < sheetHeight; ++y)
            for (intptr_t x = 0; x < sheetWidth; ++x)
                *AddressOf(PlaneOf(sheet.Get(), p), x, y) = paper;

    DrawInto(sheet.Get(), source, {gap, gap, largeCellWidth, largeCell});
    for (std::size_t i = 0; i < views.size(); ++i) {
        const intptr_t column = static_cast<intptr_t>(i % 2);
        const intptr_t row = static_cast<intptr_t>(i / 2);
        DrawInto(sheet.Get(), views[i].image.Get(),
                 {2 * gap + largeCellWidth + column * (smallCell + gap), gap + row * (smallCell + gap), smallCell,
                  smallCell});
    }
    return sheet;
}

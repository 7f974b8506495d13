// Draws into a new image through its table, as it reads the views through theirs.
#include "gallery.h"

#include <algorithm>

namespace {

constexpr intptr_t gap = 10;
constexpr intptr_t viewCell = 120;
constexpr intptr_t upperHeight = 2 * viewCell + gap;
constexpr intptr_t sourceWidth = 333;
constexpr intptr_t stripWidth = 515;
constexpr intptr_t stripHeight = 90;
constexpr intptr_t planeWidth = (stripWidth - 2 * gap) / 3;
constexpr intptr_t sheetWidth = sourceWidth + 3 * viewCell + 5 * gap;
constexpr intptr_t sheetHeight = upperHeight + 2 * stripHeight + 4 * gap;

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

ImageHandle DrawGallery(void *source, const std::vector<View> &views, const Compositions &made) {
    ImageHandle sheet = BlankPaper(3, sheetWidth, sheetHeight);
    const auto draw = [&sheet](void *image, const Cell &cell) { DrawInto(sheet.Get(), image, cell); };

    draw(source, {gap, gap, sourceWidth, upperHeight});
    const auto upperCell = [](intptr_t column, intptr_t row) {
        return Cell{2 * gap + sourceWidth + column * (viewCell + gap), gap + row * (viewCell + gap), viewCell,
                    viewCell};
    };
    for (std::size_t i = 0; i < views.size(); ++i)
        draw(views[i].image.Get(), upperCell(static_cast<intptr_t>(i % 2), static_cast<intptr_t>(i / 2)));
    for (std::size_t i = 0; i < made.recombined.size(); ++i)
        draw(made.recombined[i].image.Get(), upperCell(2, static_cast<intptr_t>(i)));

    const intptr_t lower = 2 * gap + upperHeight;
    draw(made.strip.picture.Get(), {gap, lower, stripWidth, stripHeight});
    for (std::size_t i = 0; i < made.split.size(); ++i)
        draw(made.split[i].image.Get(), {gap + static_cast<intptr_t>(i) * (planeWidth + gap),
                                         lower + stripHeight + gap, planeWidth, stripHeight});
    draw(made.overlay.picture.Get(),
         {2 * gap + stripWidth, lower, sheetWidth - stripWidth - 3 * gap, 2 * stripHeight + gap});
    return sheet;
}

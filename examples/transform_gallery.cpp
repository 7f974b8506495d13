// The unrolled ring is nearly as wide as the sheet and needs no scaling worth mentioning.
#include "transform_gallery.h"

#include "compositions.h"
#include "sheet.h"

namespace {

constexpr intptr_t gap = 10;
constexpr intptr_t boardWidth = 235;
constexpr intptr_t boardHeight = 176;
constexpr intptr_t labelSide = 150;
constexpr intptr_t lensWidth = 197;
constexpr intptr_t sheetWidth = 3 * boardWidth + 4 * gap;
constexpr intptr_t stripWidth = sheetWidth - 2 * gap;
constexpr intptr_t stripHeight = 62;
constexpr intptr_t sheetHeight = boardHeight + labelSide + stripHeight + 4 * gap;

} // namespace

ImageHandle DrawTransformGallery(const TransformPictures &made) {
    ImageHandle sheet = BlankPaper(3, sheetWidth, sheetHeight);
    const auto draw = [&sheet](const ImageHandle &image, const Cell &cell) {
        DrawInto(sheet.Get(), image.Get(), cell);
    };
    intptr_t left = gap;
    for (const ImageHandle *board : {&made.board, &made.bySystem.image, &made.byCorners.image}) {
        draw(*board, {left, gap, boardWidth, boardHeight});
        left += boardWidth + gap;
    }
    const intptr_t middle = boardHeight + 2 * gap;
    draw(made.label.Get() != nullptr ? made.label : made.board, {gap, middle, labelSide, labelSide});
    draw(made.ring.rolled.image, {labelSide + 2 * gap, middle, labelSide, labelSide});
    draw(made.lens.bent.image, {2 * labelSide + 3 * gap, middle, lensWidth, labelSide});
    draw(made.lens.undone.image, {2 * labelSide + lensWidth + 4 * gap, middle, lensWidth, labelSide});
    draw(made.ring.unrolled.image, {gap, middle + labelSide + gap, stripWidth, stripHeight});
    return sheet;
}

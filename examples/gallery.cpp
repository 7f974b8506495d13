// Draws into a new image through its table, as it reads the views through theirs.
#include "gallery.h"

#include "sheet.h"

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

// The targets are drawn by the library at their own size, everything else is scaled down.
#include "maxima_gallery.h"

#include "compositions.h"
#include "drawn_marks.h"
#include "sheet.h"

#include <cmath>

namespace {

constexpr intptr_t gap = 10;
constexpr intptr_t largeWidth = 486;
constexpr intptr_t largeHeight = 364;
constexpr intptr_t smallWidth = 229;
constexpr intptr_t smallHeight = (largeHeight - gap) / 2;
constexpr intptr_t side = 137;
constexpr intptr_t panels = 5;
constexpr intptr_t sheetWidth = panels * side + (panels + 1) * gap;
constexpr intptr_t upperHeight = largeHeight + 2 * gap;
constexpr intptr_t sheetHeight = upperHeight + side + gap;
constexpr intptr_t middle = side / 2;
constexpr Colour lines{175.0, 175.0, 175.0};
constexpr Colour spread{30.0, 90.0, 200.0};

/// The ellipse of twice the deviation, in pixels of the panel.
Shape SpreadOf(const std::vector<FoundPlace> &offsets, double scale) {
    double x = 0.0, y = 0.0, xx = 0.0, xy = 0.0, yy = 0.0;
    const double share = 1.0 / static_cast<double>(offsets.size());
    for (const FoundPlace &offset : offsets)
        x += share * offset.x, y += share * offset.y, xx += share * offset.x * offset.x,
            xy += share * offset.x * offset.y, yy += share * offset.y * offset.y;
    xx -= x * x, xy -= x * y, yy -= y * y;
    const double half = (xx + yy) / 2.0, apart = std::hypot((xx - yy) / 2.0, xy);
    return {{middle + scale * x, middle + scale * y},
            2.0 * scale * std::sqrt(half + apart),
            2.0 * scale * std::sqrt(std::max(half - apart, 0.0)),
            0.5 * std::atan2(2.0 * xy, xx - yy)};
}

/// A target whose ring has a radius of so many pixels of the picture.
ImageHandle DrawTarget(const std::vector<FoundPlace> &offsets, double ring) {
    ImageHandle target = BlankPaper(3, side, side);
    const double scale = static_cast<double>(side) / 4.0 / ring;
    DrawCross(target.Get(), {middle, middle, 0.0}, middle, 1, lines);
    DrawAround(target.Get(), {{middle, middle}, scale * ring, scale * ring, 0.0}, 0.0, 1, lines);
    for (const FoundPlace &offset : offsets) {
        const intptr_t x = std::lround(middle + scale * offset.x), y = std::lround(middle + scale * offset.y);
        for (intptr_t p = 0; p < 3; ++p)
            Require(FillCircleInImage(target.Get(), p, x, y, 2, 0, 0,
                                      p == 0   ? markColour.red
                                      : p == 1 ? markColour.green
                                               : markColour.blue) == 0,
                    "FillCircleInImage");
    }
    const Shape ellipse = SpreadOf(offsets, scale);
    if (LiesInside(target.Get(), ellipse, 2.0))
        DrawAround(target.Get(), ellipse, 0.0, 1, spread);
    return target;
}

} // namespace

ImageHandle DrawMaximaGallery(const MaximaPictures &made) {
    const bool hasPeaks = made.peaks.Get() != nullptr;
    ImageHandle sheet = BlankPaper(3, sheetWidth, hasPeaks ? sheetHeight : upperHeight);
    const auto draw = [&sheet](const ImageHandle &image, const Cell &cell) {
        if (image.Get() != nullptr)
            DrawInto(sheet.Get(), image.Get(), cell);
    };
    draw(made.annotated, {gap, gap, largeWidth, largeHeight});
    const intptr_t right = largeWidth + 2 * gap;
    draw(hasPeaks ? made.peaks : made.mask, {right, gap, smallWidth, smallHeight});
    draw(made.overlay, {right, smallHeight + 2 * gap, smallWidth, smallHeight});
    if (!hasPeaks)
        return sheet;
    const intptr_t top = largeHeight + 2 * gap;
    intptr_t left = gap;
    draw(made.mask, {left, top, side, side});
    const double rings[] = {4.0, 0.4, 0.4, 0.4};
    for (std::size_t i = 0; i < made.offsets.size(); ++i) {
        left += side + gap;
        draw(DrawTarget(made.offsets[i], rings[i]), {left, top, side, side});
    }
    return sheet;
}

// Charts keep their size, everything else is scaled down.
#include "scan_gallery.h"

#include "bar_chart.h"
#include "compositions.h"
#include "sheet.h"

namespace {

constexpr intptr_t gap = 10;
constexpr intptr_t upperHeight = 3 * chartHeight + 2 * gap;
constexpr intptr_t chartWidth = 380;
constexpr intptr_t smallWidth = 137;
constexpr intptr_t smallHeight = 103;
constexpr intptr_t smallOnes = 5; // in a row
constexpr intptr_t sheetWidth = smallOnes * (smallWidth + gap) + gap;
constexpr intptr_t sheetHeight = upperHeight + 2 * smallHeight + 4 * gap;

} // namespace

ImageHandle DrawScanGallery(const ScanPictures &made) {
    ImageHandle sheet = BlankPaper(3, sheetWidth, sheetHeight);
    const auto draw = [&sheet](const ImageHandle &image, const Cell &cell) {
        if (image.Get() != nullptr)
            DrawInto(sheet.Get(), image.Get(), cell);
    };
    draw(made.painted, {gap, gap, sheetWidth - chartWidth - 3 * gap, upperHeight});
    const ImageHandle *const charts[] = {&made.lineChart, &made.areaChart, &made.histogramChart};
    intptr_t top = gap;
    for (const ImageHandle *chart : charts) {
        draw(*chart, {sheetWidth - chartWidth - gap, top, chartWidth, chartHeight});
        top += chartHeight + gap;
    }
    const ImageHandle deviation = StretchToRange(made.stack.deviation.Get());
    const ImageHandle *const smallPictures[][smallOnes] = {
        {&made.stretched, &made.spread, &made.balance.tinted, &made.balance.balanced, &made.stack.mapped},
        {&made.stack.frames.front(), &made.stack.minimum, &made.stack.maximum, &made.stack.mean, &deviation}};
    for (const auto &row : smallPictures) {
        intptr_t left = gap;
        for (const ImageHandle *picture : row) {
            draw(*picture, {left, top, smallWidth, smallHeight});
            left += smallWidth + gap;
        }
        top += smallHeight + gap;
    }
    return sheet;
}

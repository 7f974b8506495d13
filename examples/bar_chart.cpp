// Bars are areas filled by InitializeImageArea; the counts come from ImageHistogram.
#include "bar_chart.h"

#include "compositions.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int64_t ink = 60;
/// A line of samples drifts by 1/65536 of a pixel each; shorter ones stay in their row.
constexpr intptr_t tileSide = 16384;

/// Adds the counts of a tile that begins at a pixel.
void AddTile(void *image, intptr_t left, intptr_t top, GreyCounts &counts) {
    const intptr_t right = std::min(left + tileSide, ImageWidth(image)) - 1;
    const intptr_t bottom = std::min(top + tileSide, ImageHeight(image)) - 1;
    TArea tile{};
    SetRectArea(&tile, static_cast<double>(left), static_cast<double>(top), static_cast<double>(right),
                static_cast<double>(bottom));
    PixelAreaToImage(image, &tile, tile); // the histogram takes image coordinates
    GreyCounts found{};
    Require(ImageHistogram(image, 0, tile, 1000, found.data()) != 0, "ImageHistogram");
    for (std::size_t grey = 0; grey < counts.size(); ++grey)
        counts[grey] += found[grey];
}

} // namespace

ImageHandle DrawBars(const std::vector<double> &shares) {
    ImageHandle chart = BlankPaper(1, static_cast<intptr_t>(shares.size()), chartHeight);
    for (std::size_t column = 0; column < shares.size(); ++column) {
        const double x = static_cast<double>(column);
        const double height = std::floor(shares[column] * static_cast<double>(chartHeight) + 0.5);
        const double top = static_cast<double>(chartHeight) - height;
        const TArea bar = {x, top, x, top, x, static_cast<double>(chartHeight - 1)}; // one sample wide
        if (height > 0.0)
            Require(InitializeImageArea(chart.Get(), 0, ink, bar) != 0, "InitializeImageArea");
    }
    return chart;
}

GreyCounts CountGreys(void *image) {
    GreyCounts counts{};
    for (intptr_t top = 0; top < ImageHeight(image); top += tileSide)
        for (intptr_t left = 0; left < ImageWidth(image); left += tileSide)
            AddTile(image, left, top, counts);
    return counts;
}

std::vector<double> SharesOfGreatest(const GreyCounts &counts) {
    const double greatest = static_cast<double>(*std::max_element(counts.begin(), counts.end()));
    std::vector<double> shares;
    for (const uint64_t count : counts)
        shares.push_back(greatest > 0.0 ? std::sqrt(static_cast<double>(count) / greatest) : 0.0);
    return shares;
}

/* FindMaxima in its plainest form: every step on grids of values, with marks as a grid of their own. */
#ifndef ORV_TESTS_MAXIMA_MODEL_H
#define ORV_TESTS_MAXIMA_MODEL_H

#include "PixelList/MaximaSupport.h"

namespace TestSupport {

/// Orders a rectangle and clips it to an image; a refused one stays as it is.
inline bool ClipToImage(std::intptr_t width, std::intptr_t height, PixelRectangle &r, bool zeroMeansEnd) {
    PixelRectangle clipped = r;
    if (clipped.Left > clipped.Right)
        std::swap(clipped.Left, clipped.Right);
    if (clipped.Top > clipped.Bottom)
        std::swap(clipped.Top, clipped.Bottom);
    if (!(width > clipped.Left && height > clipped.Top))
        return false;
    if (zeroMeansEnd && clipped.Right == 0)
        clipped.Right = width - 1;
    if (zeroMeansEnd && clipped.Bottom == 0)
        clipped.Bottom = height - 1;
    r = {std::max<std::int64_t>(clipped.Left, 0), std::max<std::int64_t>(clipped.Top, 0),
         std::min<std::int64_t>(clipped.Right, width - 1), std::min<std::int64_t>(clipped.Bottom, height - 1)};
    return true;
}

/// The search of FindMaxima. T holds at most 32 bits.
template <class T>
class MaximaModel {
public:
    MaximaModel(const PixelGrid<T> &pixels, const PixelRectangle &rectangle)
        : grid(pixels), marks(pixels.Width, pixels.Height), area(rectangle) {
        ClipToImage(grid.Width, grid.Height, area, true);
        area.Left = std::max<std::int64_t>(area.Left, 0);
        area.Top = std::max<std::int64_t>(area.Top, 0);
        if (area.Right < 0 || area.Right >= grid.Width)
            area.Right = grid.Width - 1;
        if (area.Bottom < 0 || area.Bottom >= grid.Height)
            area.Bottom = grid.Height - 1;
    }

    Spots Search(std::int64_t locality, std::int64_t threshold) {
        MarkRow(area.Top);
        MarkRow(area.Bottom);
        for (std::int64_t y = area.Top; y <= area.Bottom; ++y)
            for (std::int64_t x = area.Left; x <= area.Right; ++x)
                Visit(x, y, threshold);
        std::stable_sort(spots.rbegin(), spots.rend(), Stronger);
        if (locality < 1)
            return spots;
        for (auto spot = spots.rbegin(); spot != spots.rend(); ++spot)
            KeepOrDrop(*spot, locality);
        std::erase_if(spots, [](const Spot &spot) { return spot.Value == 0.0; });
        std::stable_sort(spots.begin(), spots.end(), Stronger);
        return spots;
    }

private:
    const PixelGrid<T> &grid;
    PixelGrid<std::uint8_t> marks;
    PixelRectangle area;
    Spots spots;

    static bool Stronger(const Spot &a, const Spot &b) { return a.Value > b.Value; }

    void MarkRow(std::int64_t y) {
        for (std::int64_t x = area.Left; x < area.Right; ++x)
            if (grid.Inside(x, y))
                marks.At(x, y) = 1;
    }

    void Visit(std::intptr_t x, std::intptr_t y, std::int64_t threshold) {
        const T value = grid.At(x, y);
        if (marks.At(x, y) != 0 || static_cast<std::int64_t>(value) < threshold)
            return;
        const std::intptr_t neighbours[8][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
        for (const auto &step : neighbours)
            if (grid.Clamped(x + step[0], y + step[1]) > value)
                return;
        if (WalkPlateau(x, y, value))
            spots.push_back({static_cast<double>(x), static_cast<double>(y), static_cast<double>(value)});
    }

    /// False when the plateau has a greater pixel beside it. In the order of the walk by recursion.
    bool WalkPlateau(std::intptr_t startX, std::intptr_t startY, T value) {
        struct Place {
            std::intptr_t X, Y;
        };
        const Place backward[8] = {{1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}, {1, 0}};
        bool isMaximum = true;
        std::vector<Place> pending = {{startX, startY}};
        while (!pending.empty()) {
            const Place place = pending.back();
            pending.pop_back();
            if (!grid.Inside(place.X, place.Y) || marks.At(place.X, place.Y) != 0 ||
                grid.At(place.X, place.Y) < value)
                continue;
            if (grid.At(place.X, place.Y) > value) {
                isMaximum = false;
                continue;
            }
            marks.At(place.X, place.Y) = 1;
            for (const Place &step : backward)
                pending.push_back({place.X + step.X, place.Y + step.Y});
        }
        return isMaximum;
    }

    void KeepOrDrop(Spot &spot, std::int64_t locality) {
        const auto x = static_cast<std::int64_t>(spot.X), y = static_cast<std::int64_t>(spot.Y);
        if (marks.At(x, y) == 0) {
            spot.Value = 0.0;
            return;
        }
        // The largest distance inside the image is below its size, so a longer reach changes nothing.
        const std::int64_t reach = std::min<std::int64_t>(locality, grid.Width + grid.Height);
        for (std::int64_t v = std::max(y - reach, area.Top); v <= std::min(y + reach, area.Bottom); ++v)
            for (std::int64_t u = std::max(x - reach, area.Left); u <= std::min(x + reach, area.Right); ++u)
                marks.At(u, v) = 0;
        spot.Value = std::trunc(spot.Value);
    }
};

} // namespace TestSupport

#endif

// Fills a region run by run, and its narrow ways pixel by pixel. What is filled bounds from then on, so that nothing
// is filled twice, and the order makes no difference.
#pragma once

#include <vector>

#include "Drawing/Point.h"
#include "Drawing/RowSearch.h"

namespace Drawing::FloodFill {

/// Rows gives for each row y a search over it (SearchOf(y)), tests pixels (IsOpen(x, y)) and fills runs (Fill(y,
/// run)) so that their pixels bound. Holds what is still to be looked at: little for an open region, at most one
/// entry per open side way.
template <class Rows>
class SpanFill {
public:
    SpanFill(Rows &rows, std::intptr_t width, std::intptr_t height)
        : rows_(rows), lastX_(static_cast<std::int32_t>(width - 1)), lastY_(static_cast<std::int32_t>(height - 1)) {}

    /// Fills what can be reached from a pixel that is no boundary.
    void FillFrom(orvBase::Point start) {
        pixels_.push_back(start);
        while (!pixels_.empty() || !stretches_.empty()) {
            if (!pixels_.empty()) {
                FillNarrowWays();
                continue;
            }
            const Stretch stretch = stretches_.back();
            stretches_.pop_back();
            FillBeside(stretch);
        }
    }

private:
    /// Pixels of row Y beside a run that has been filled in row Y - Direction. Behind both ends of the stretch that
    /// row has a boundary.
    struct Stretch {
        Run Pixels;
        std::intptr_t Y, Direction;
    };
    static constexpr std::size_t Neighbours = 4;

    void Push(const Stretch &stretch) {
        if (stretch.Pixels.First <= stretch.Pixels.Last && stretch.Y >= 0 && stretch.Y <= lastY_)
            stretches_.push_back(stretch);
    }
    void FillRun(const Run &run, std::intptr_t y) {
        rows_.Fill(y, run);
        Push({run, y - 1, -1});
        Push({run, y + 1, 1});
    }

    /// Follows ways of one pixel, without a branch on where they lead. A pixel that leads on to three sides begins a
    /// wide part of the region, which is left to runs.
    void FillNarrowWays() {
        std::size_t count = pixels_.size();
        while (count > 0) {
            if (count + Neighbours > pixels_.size())
                pixels_.resize(2 * count + 64);
            const orvBase::Point at = pixels_[--count];
            if (!rows_.IsOpen(at.X, at.Y))
                continue;
            rows_.Fill(at.Y, {at.X, at.X});
            // At an edge of the plane the neighbour is the pixel itself, which is filled.
            const orvBase::Point around[Neighbours] = {{std::max(at.X - 1, 0), at.Y},
                                                       {at.X, std::max(at.Y - 1, 0)},
                                                       {std::min(at.X + 1, lastX_), at.Y},
                                                       {at.X, std::min(at.Y + 1, lastY_)}};
            orvBase::Point *const top = pixels_.data() + count;
            std::size_t open = 0;
            for (const orvBase::Point &pixel : around) {
                top[open] = pixel;
                open += rows_.IsOpen(pixel.X, pixel.Y) ? 1 : 0;
            }
            count += open;
            if (open >= Neighbours - 1) {
                count -= open;
                LeaveToRuns(top, open);
            }
        }
        pixels_.clear();
    }
    void LeaveToRuns(const orvBase::Point *pixels, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            if (rows_.IsOpen(pixels[i].X, pixels[i].Y))
                FillRun(rows_.SearchOf(pixels[i].Y).RunAround(pixels[i].X), pixels[i].Y);
    }

    void FillBeside(const Stretch &stretch) {
        const auto search = rows_.SearchOf(stretch.Y);
        const std::intptr_t back = stretch.Y - stretch.Direction, ahead = stretch.Y + stretch.Direction;
        const std::intptr_t end = stretch.Pixels.Last + 1;
        for (std::intptr_t x = stretch.Pixels.First; (x = search.NextOpen(x, end)) < end;) {
            const Run run = search.RunAround(x);
            if (run.First == run.Last) {
                pixels_.push_back({static_cast<std::int32_t>(x), static_cast<std::int32_t>(stretch.Y)});
            } else {
                rows_.Fill(stretch.Y, run);
                // Around the ends of the run behind: its own row is bounded one pixel beyond them.
                Push({{run.First, stretch.Pixels.First - 2}, back, -stretch.Direction});
                Push({{end + 1, run.Last}, back, -stretch.Direction});
                Push({run, ahead, stretch.Direction});
            }
            x = run.Last + 2;
        }
    }

    Rows &rows_;
    std::int32_t lastX_;
    std::int32_t lastY_;
    std::vector<Stretch> stretches_;
    std::vector<orvBase::Point> pixels_;
};

} // namespace Drawing::FloodFill

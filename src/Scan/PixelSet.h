// The pixels that a walk visits, as rectangles and rows instead of one by one: for work whose order doesn't matter.
// A visitor has
//   void Rectangle(std::int32_t left, std::int32_t top, std::int64_t width, std::int64_t height)
//   void Span(std::int32_t left, std::int32_t y, std::int64_t width)
//   void Pixel(std::int32_t x, std::int32_t y)
// and is shown each pixel as often as the walk visits it, in no particular order.
#pragma once

#include "Scan/DigitalArea.h"
#include "Scan/OrderedWalk.h"

namespace Scan {

namespace Detail {

/// An order-free visitor behind the ordered walk.
template <class Visitor>
struct PixelByPixel {
    Visitor &Visited;

    bool WantsLines() const { return false; }
    bool BeginLine(std::int64_t) const { return true; }
    bool EndLine(std::int64_t) const { return true; }
    bool Pixel(std::int32_t x, std::int32_t y) {
        Visited.Pixel(x, y);
        return true;
    }
};

/// The lines of a plan that are not first to last.
template <class Visitor>
void WalkOtherLines(const WalkPlan &plan, const IndexRange &done, const PixelBounds &bounds, Visitor &visitor,
                    WalkCount &count) {
    PixelByPixel<Visitor> visits = {visitor};
    WalkLines(plan, {0, done.First - 1}, bounds, visits, count);
    WalkLines(plan, {done.Last + 1, plan.Lines - 1}, bounds, visits, count);
}

} // namespace Detail

/// Result: as that of the ordered walk.
template <class Visitor>
std::int64_t VisitPixels(const WalkPlan &plan, const PixelBounds &bounds, Visitor &visitor) {
    WalkCount count;
    PixelRectangle rectangle;
    if (IsRectangle(plan, bounds, rectangle)) {
        const std::int64_t pixels = rectangle.Width * rectangle.Height;
        if (pixels > 0)
            visitor.Rectangle(rectangle.Left, rectangle.Top, rectangle.Width, rectangle.Height);
        count.Inside = static_cast<std::uint32_t>(pixels);
        count.IsClipped = pixels != plan.Lines * plan.Samples;
        return count.Signed();
    }
    DigitalArea area;
    if (area.Build(plan, bounds)) {
        std::int64_t pixels = 0;
        area.ForEachSpan([&](std::int32_t left, std::int32_t right, std::int32_t y) {
            visitor.Span(left, y, std::int64_t{right} - left + 1);
            pixels += std::int64_t{right} - left + 1;
        });
        for (const PixelPlace &repeat : area.Repeats())
            visitor.Pixel(repeat.X, repeat.Y);
        pixels += static_cast<std::int64_t>(area.Repeats().size());
        const IndexRange lines = area.Lines();
        count.Inside = static_cast<std::uint32_t>(pixels);
        count.IsClipped = pixels != (lines.Last - lines.First + 1) * plan.Samples;
        Detail::WalkOtherLines(plan, lines, bounds, visitor, count);
        return count.Signed();
    }
    Detail::PixelByPixel<Visitor> visits = {visitor};
    return QuickWalk(plan, bounds, visits);
}

} // namespace Scan

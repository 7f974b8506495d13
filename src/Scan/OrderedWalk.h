// Walks that visit samples in their order: the plain one, which tests each sample, and the quick one, which works out
// per line which samples lie inside. Both do the same for every visitor:
//   bool WantsLines()                        whether the two below have to be called
//   bool BeginLine(std::int64_t linesLeft), bool EndLine(std::int64_t linesLeft)   false ends the walk
//   bool Pixel(std::int32_t x, std::int32_t y)                                     false ends it behind this line
#pragma once

#include "Scan/SampleRanges.h"

namespace Scan {

/// Samples handed out, in 32 bits, and whether some were not.
struct WalkCount {
    std::uint32_t Inside = 0;
    bool IsClipped = false;

    std::int64_t Signed() const { return static_cast<std::int32_t>(IsClipped ? 0u - Inside : Inside); }
};

template <class Visitor>
std::int64_t PlainWalk(const WalkPlan &plan, const PixelBounds &bounds, Visitor &visitor) {
    WalkCount count;
    bool stopped = false;
    for (std::int64_t line = 0; line < plan.Lines && !stopped; ++line) {
        FixedPoint position = plan.LineStart(line);
        if (!visitor.BeginLine(plan.Lines - line))
            break;
        for (std::int64_t i = 0; i < plan.Samples && !stopped; ++i) {
            const std::int32_t x = PixelOf(position.X), y = PixelOf(position.Y);
            if (bounds.Contains(x, y)) {
                ++count.Inside;
                stopped = !visitor.Pixel(x, y);
            } else {
                count.IsClipped = true;
            }
            position = {Advance(position.X, plan.SampleStep.X), Advance(position.Y, plan.SampleStep.Y)};
        }
        if (!visitor.EndLine(plan.Lines - line))
            break;
    }
    return count.Signed();
}

/// Visits count samples from position on. Result: how many were visited; fewer, or stopped set, when the visitor
/// wanted no more.
template <class Visitor>
std::int64_t VisitSamples(const WalkPlan &plan, FixedPoint position, std::int64_t count, Visitor &visitor,
                          bool &stopped) {
    const FixedPoint step = plan.SampleStep;
    for (std::int64_t i = 0; i < count; ++i) {
        if (!visitor.Pixel(PixelOf(position.X), PixelOf(position.Y))) {
            stopped = true;
            return i + 1;
        }
        position = {Advance(position.X, step.X), Advance(position.Y, step.Y)};
    }
    return count;
}

/// The samples of one line. Result: false when the visitor wanted no more.
template <class Visitor>
bool WalkLine(const WalkPlan &plan, std::int64_t line, const PixelBounds &bounds, Visitor &visitor,
              WalkCount &count) {
    const FixedPoint start = plan.LineStart(line);
    std::int64_t reached = 0, inside = 0; // samples passed, and those of them that lay inside
    bool stopped = false;
    ForEachInside(plan, start, bounds, [&](std::int64_t first, std::int64_t length) {
        const FixedPoint position = {Advance(start.X, plan.SampleStep.X, first),
                                     Advance(start.Y, plan.SampleStep.Y, first)};
        const std::int64_t visited = VisitSamples(plan, position, length, visitor, stopped);
        inside += visited;
        reached = first + visited;
        return !stopped;
    });
    count.Inside += static_cast<std::uint32_t>(inside);
    count.IsClipped = count.IsClipped || inside < (stopped ? reached : plan.Samples);
    return !stopped;
}

/// Lines first to last. Result: false when the visitor wanted no more.
template <class Visitor>
bool WalkLines(const WalkPlan &plan, const IndexRange &lines, const PixelBounds &bounds, Visitor &visitor,
               WalkCount &count) {
    for (std::int64_t line = lines.First; line <= lines.Last; ++line) {
        if (!visitor.BeginLine(plan.Lines - line))
            return false;
        const bool goesOn = WalkLine(plan, line, bounds, visitor, count);
        if (!visitor.EndLine(plan.Lines - line) || !goesOn)
            return false;
    }
    return true;
}

template <class Visitor>
std::int64_t QuickWalk(const WalkPlan &plan, const PixelBounds &bounds, Visitor &visitor) {
    constexpr std::int64_t manyLines = 0x10000;
    WalkCount count;
    if (plan.Lines <= manyLines || visitor.WantsLines()) {
        WalkLines(plan, {0, plan.Lines - 1}, bounds, visitor, count);
        return count.Signed();
    }
    // Far more lines than an image has rows: most of them can't meet the bounds.
    std::int64_t next = 0;
    const bool finished = ForEachNearLines(plan, bounds, [&](const IndexRange &lines) {
        count.IsClipped = count.IsClipped || lines.First > next;
        next = lines.Last + 1;
        return WalkLines(plan, lines, bounds, visitor, count);
    });
    count.IsClipped = count.IsClipped || (finished && next < plan.Lines);
    return count.Signed();
}

} // namespace Scan

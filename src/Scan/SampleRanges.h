// Which members of an arithmetic progression of positions lie inside, found without stepping through it.
#pragma once

#include <algorithm>

#include "Scan/WalkPlan.h"

namespace Scan {

/// Positions First + i * Step for i from 0 to Count - 1. Step is not 0.
struct Progression {
    std::int64_t First;
    std::int64_t Step;
    std::int64_t Count;
};

/// Indices First to Last; none when Last is below First.
struct IndexRange {
    std::int64_t First;
    std::int64_t Last;
};

namespace Detail {

__extension__ typedef __int128 Wide;

/// Rounds up; divisor above 0.
inline Wide CeilingOf(Wide value, Wide divisor) {
    return value / divisor + (value % divisor > 0 ? 1 : 0);
}
/// Rounds down; divisor above 0.
inline Wide FloorOf(Wide value, Wide divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

/// The indices of positions in [low, high].
template <class Number>
IndexRange IndicesBetween(Number first, Number step, Number count, Number low, Number high) {
    const Number distanceLow = step > 0 ? low - first : first - high;
    const Number distanceHigh = step > 0 ? high - first : first - low;
    const Number size = step > 0 ? step : -step;
    if (distanceHigh < 0)
        return {0, -1};
    const Number begin = distanceLow <= 0 ? 0 : (distanceLow + size - 1) / size;
    return {static_cast<std::int64_t>(begin), static_cast<std::int64_t>(std::min(distanceHigh / size, count - 1))};
}

/// Pixel coordinates have 32 bits, so positions return after 2^48: a long progression passes the range several times.
template <class Use>
bool ForEachPass(const Progression &positions, Wide low, Wide high, Use &&use) {
    constexpr Wide period = Wide{1} << 48;
    const Wide first = positions.First, step = positions.Step, count = positions.Count;
    const Wide last = first + step * (count - 1);
    const Wide from = CeilingOf(std::min(first, last) - high, period),
               to = FloorOf(std::max(first, last) - low, period);
    for (Wide pass = 0; pass <= to - from; ++pass) {
        const Wide shift = (step > 0 ? from + pass : to - pass) * period;
        const IndexRange range = IndicesBetween<Wide>(first, step, count, low + shift, high + shift);
        if (range.First <= range.Last && !use(range))
            return false;
    }
    return true;
}

} // namespace Detail

/// Runs use(IndexRange) for the indices whose positions lie in pixels low to high, in rising order. use gives false
/// to stop. Result: false when stopped.
template <class Use>
bool ForEachIndexRange(const Progression &positions, std::int32_t low, std::int32_t high, Use &&use) {
    if (low > high)
        return true;
    constexpr std::int64_t near = std::int64_t{1} << 46;
    const std::int64_t lowest = std::int64_t{low} * 65536, highest = std::int64_t{high} * 65536 + 65535;
    const std::int64_t size = positions.Step > 0 ? positions.Step : -positions.Step;
    if (positions.First > -near && positions.First < near && positions.Count <= near / size) {
        const IndexRange range =
            Detail::IndicesBetween(positions.First, positions.Step, positions.Count, lowest, highest);
        return range.First > range.Last || use(range);
    }
    return Detail::ForEachPass(positions, lowest, highest, use);
}

/// Runs use(firstIndex, count) for the pieces of a line whose samples lie inside the bounds, in rising order.
template <class Use>
bool ForEachInside(const WalkPlan &plan, const FixedPoint &start, const PixelBounds &bounds, Use &&use) {
    const Progression columns = {start.X, plan.SampleStep.X, plan.Samples};
    return ForEachIndexRange(columns, bounds.Left, bounds.Right, [&](const IndexRange &inX) {
        const Progression rows = {Advance(start.Y, plan.SampleStep.Y, inX.First), plan.SampleStep.Y,
                                  inX.Last - inX.First + 1};
        return ForEachIndexRange(rows, bounds.Top, bounds.Bottom, [&](const IndexRange &inY) {
            return use(inX.First + inY.First, inY.Last - inY.First + 1);
        });
    });
}

/// Runs use(IndexRange) for the lines that can have samples inside the bounds by their coordinate across the axis
/// that they are aligned to. All others have none.
template <class Use>
bool ForEachNearLines(const WalkPlan &plan, const PixelBounds &bounds, Use &&use) {
    using Detail::Wide;
    const auto stepAcross = Wide{plan.IsYMajor ? plan.SampleStep.X : plan.SampleStep.Y};
    const auto stepAlong = Wide{plan.IsYMajor ? plan.SampleStep.Y : plan.SampleStep.X};
    const Progression lines = {plan.IsYMajor ? plan.Start.X : plan.Start.Y,
                               plan.IsYMajor ? plan.LineStep.X : plan.LineStep.Y, plan.Lines};
    const Wide mostCorrection = Wide{1} << 31, steepness = stepAcross / stepAlong;
    const Wide correction = std::min(mostCorrection, (steepness < 0 ? -steepness : steepness) * 65536 + 131072);
    const Wide travel = stepAcross * (plan.Samples - 1);
    const Wide low = Wide{plan.IsYMajor ? bounds.Left : bounds.Top} * 65536 - correction - std::max<Wide>(travel, 0);
    const Wide high =
        Wide{plan.IsYMajor ? bounds.Right : bounds.Bottom} * 65536 + 65535 + correction - std::min<Wide>(travel, 0);
    if (high - low >= Wide{1} << 48)
        return use(IndexRange{0, plan.Lines - 1});
    return Detail::ForEachPass(lines, low, high, use);
}

} // namespace Scan

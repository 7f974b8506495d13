#include "Scan/DigitalArea.h"

#include <cstdlib>

#include "Image/KernelLevel.h"

namespace Scan {
namespace {

constexpr std::int64_t onePixel = 65536;
constexpr std::int64_t halfPixel = 0x8000;
constexpr std::int64_t near = std::int64_t{1} << 45; // positions up to here never pass the end of 32-bit coordinates
constexpr std::int64_t lastMasked = 65535 * onePixel + 65535;

/// A plan's numbers by axis: along the lines, and across them.
struct Axes {
    std::int64_t StartAlong, StartAcross;
    std::int64_t StepAlong, StepAcross;
    std::int64_t LineAlong, LineAcross;
};

Axes AxesOf(const WalkPlan &plan) {
    if (plan.IsYMajor)
        return {plan.Start.Y, plan.Start.X, plan.SampleStep.Y, plan.SampleStep.X, plan.LineStep.Y, plan.LineStep.X};
    return {plan.Start.X, plan.Start.Y, plan.SampleStep.X, plan.SampleStep.Y, plan.LineStep.X, plan.LineStep.Y};
}

bool IsNear(const WalkPlan &plan) {
    return std::abs(plan.Start.X) < near && std::abs(plan.Start.Y) < near;
}

struct Range {
    std::int64_t First;
    std::int64_t Last;
};

/// count coordinates from first on, in either direction, as far as low to high reach.
Range Clipped(std::int64_t first, std::int64_t step, std::int64_t count, std::int32_t low, std::int32_t high) {
    const std::int64_t last = first + (step > 0 ? count - 1 : 1 - count);
    return {std::max<std::int64_t>(std::min(first, last), low), std::min<std::int64_t>(std::max(first, last), high)};
}

} // namespace

bool IsRectangle(const WalkPlan &plan, const PixelBounds &bounds, PixelRectangle &rectangle) {
    const Axes axes = AxesOf(plan);
    // A drift of 1/65536 pixel a step stays within the pixel whose centre it starts from.
    const bool isStraight = std::abs(axes.StepAlong) == onePixel && axes.StepAcross == 1 &&
                            plan.Samples <= halfPixel && plan.Lines >= 1 && plan.Lines <= halfPixel && IsNear(plan) &&
                            (plan.Lines == 1 || (std::abs(axes.LineAcross) == onePixel && axes.LineAlong == 1));
    if (!isStraight)
        return false;
    const std::int64_t along = (axes.StartAlong & 0xFFFF0000) >> 16, across = axes.StartAcross >> 16;
    const Range columns = plan.IsYMajor ? Clipped(across, axes.LineAcross, plan.Lines, bounds.Left, bounds.Right)
                                        : Clipped(along, axes.StepAlong, plan.Samples, bounds.Left, bounds.Right);
    const Range rows = plan.IsYMajor ? Clipped(along, axes.StepAlong, plan.Samples, bounds.Top, bounds.Bottom)
                                     : Clipped(across, axes.LineAcross, plan.Lines, bounds.Top, bounds.Bottom);
    rectangle = {};
    if (columns.First <= columns.Last && rows.First <= rows.Last)
        rectangle = {static_cast<std::int32_t>(columns.First), static_cast<std::int32_t>(rows.First),
                     columns.Last - columns.First + 1, rows.Last - rows.First + 1};
    return true;
}

bool DigitalArea::Build(const WalkPlan &plan, const PixelBounds &bounds) {
    constexpr std::int64_t mostLines = 0x10000, mostSamples = 0x100000;
    if (bounds.Left > bounds.Right || bounds.Top > bounds.Bottom || !IsNear(plan) ||
        std::abs(AxesOf(plan).StepAlong) != onePixel || plan.Lines < 2 || plan.Lines > mostLines ||
        plan.Samples > mostSamples)
        return false;
    followsY_ = plan.IsYMajor;
    alongBounds_ = followsY_ ? Interval{bounds.Top, bounds.Bottom} : Interval{bounds.Left, bounds.Right};
    acrossBounds_ = followsY_ ? Interval{bounds.Left, bounds.Right} : Interval{bounds.Top, bounds.Bottom};
    if (!FindLines(plan) || !AreOneApart())
        return false;
    FindIntervals();
    FindIrregularities();
    return true;
}

bool DigitalArea::FindLines(const WalkPlan &plan) {
    const Axes axes = AxesOf(plan);
    lines_ = Detail::IndicesBetween<std::int64_t>(axes.StartAlong, axes.LineAlong, plan.Lines, 0, lastMasked);
    if (lines_.Last <= lines_.First)
        return false;
    const bool runsUp = axes.StepAlong > 0;
    samples_ = plan.Samples;
    slope_ = runsUp ? axes.StepAcross : -axes.StepAcross;
    line_.reserve(static_cast<std::size_t>(lines_.Last - lines_.First + 1));
    for (std::int64_t i = lines_.First; i <= lines_.Last; ++i) {
        const FixedPoint start = plan.LineStart(i);
        const std::int64_t along = (followsY_ ? start.Y : start.X) >> 16;
        const std::int64_t lowest = runsUp ? along : along - (samples_ - 1);
        line_.push_back(
            {static_cast<std::int32_t>(lowest), (followsY_ ? start.X : start.Y) + (lowest - along) * slope_});
    }
    if (axes.LineAlong < 0)
        std::reverse(line_.begin(), line_.end());
    return true;
}

bool DigitalArea::AreOneApart() const {
    constexpr std::int64_t tolerance = 64;
    const auto distanceBehind = [this](std::size_t i) {
        return line_[i + 1].Across - AcrossAt(line_[i], line_[i + 1].Lowest);
    };
    const bool rises = distanceBehind(0) > 0;
    for (std::size_t i = 0; i + 1 < line_.size(); ++i) {
        const std::int64_t distance = rises ? distanceBehind(i) : -distanceBehind(i);
        if (distance < onePixel - tolerance || distance > onePixel + tolerance)
            return false;
    }
    return true;
}

void DigitalArea::FindIntervals() {
    sense_ = line_[1].Across - AcrossAt(line_[0], line_[1].Lowest) > 0 ? 1 : -1;
    const auto reach = static_cast<std::int32_t>(samples_ - 1);
    along_ = {std::max(line_.front().Lowest, alongBounds_.First),
              std::min(line_.back().Lowest + reach, alongBounds_.Last)};
    if (along_.IsEmpty())
        return;
    intervals_.reserve(static_cast<std::size_t>(along_.Last - along_.First) + 1);
    std::size_t first = 0, behind = 0; // the lines that cover a coordinate
    for (std::int32_t along = along_.First; along <= along_.Last; ++along) {
        while (behind < line_.size() && line_[behind].Lowest <= along)
            ++behind;
        while (first < behind && line_[first].Lowest + reach < along)
            ++first;
        Interval across = {0, -1};
        if (first < behind) {
            const auto begin = static_cast<std::int32_t>(AcrossAt(line_[first], along) >> 16);
            const auto end = static_cast<std::int32_t>(AcrossAt(line_[behind - 1], along) >> 16);
            across = {std::max(std::min(begin, end), acrossBounds_.First),
                      std::min(std::max(begin, end), acrossBounds_.Last)};
        }
        intervals_.push_back(across);
    }
}

/// Which of Count coordinates have a fraction across within Width of a pixel's edge: those where
/// Fraction + i * Step, in 16 bits, is below Width.
struct DigitalArea::EdgeSearch {
    std::int32_t First; ///< coordinate along
    std::int32_t Count;
    std::uint16_t Fraction;
    std::uint16_t Step;
    std::uint16_t Width;

    bool IsMet(std::int32_t i) const {
        return static_cast<std::uint16_t>(Fraction + static_cast<std::uint32_t>(i) * Step) < Width;
    }
    ORV_INLINE bool IsMetAnywhere() const {
        const std::uint16_t step = Step, width = Width;
        std::uint16_t fraction = Fraction, met = 0;
        for (std::int32_t i = 0; i < Count; ++i) {
            met = static_cast<std::uint16_t>(met | (fraction < width ? 1 : 0));
            fraction = static_cast<std::uint16_t>(fraction + step);
        }
        return met != 0;
    }
};

/// Two lines 65536 + excess apart step over a pixel, or meet in one, where the fraction of the position across lies
/// within |excess| of the pixel's edge.
DigitalArea::EdgeSearch DigitalArea::SearchBetween(const Line &line, const Line &next) const {
    const std::int64_t excess = std::abs(next.Across - AcrossAt(line, next.Lowest)) - onePixel;
    const std::int32_t first = std::max(next.Lowest, alongBounds_.First);
    const std::int32_t last = std::min(static_cast<std::int32_t>(line.Lowest + samples_ - 1), alongBounds_.Last);
    const auto width = static_cast<std::uint16_t>(std::abs(excess));
    const bool atUpperEdge = (excess > 0) == (sense_ > 0);
    const std::int64_t edge = atUpperEdge ? onePixel - width : 0;
    return {first, excess == 0 ? 0 : std::max(last - first + 1, 0),
            static_cast<std::uint16_t>((AcrossAt(line, first) - edge) & 0xFFFF),
            static_cast<std::uint16_t>(slope_ & 0xFFFF), width};
}

void DigitalArea::FindIrregularities() {
    std::vector<EdgeSearch> searches;
    searches.reserve(line_.size());
    for (std::size_t i = 0; i + 1 < line_.size(); ++i)
        searches.push_back(SearchBetween(line_[i], line_[i + 1]));
    std::vector<std::uint8_t> areMet(searches.size());
    const EdgeSearch *const search = searches.data();
    std::uint8_t *const isMet = areMet.data();
    const std::size_t count = searches.size();
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        for (std::size_t i = 0; i < count; ++i)
            isMet[i] = search[i].IsMetAnywhere() ? 1 : 0;
    });
    for (std::size_t i = 0; i < count; ++i)
        if (areMet[i] != 0)
            AddIrregularities(line_[i], line_[i + 1]);
    SortHoles();
}

void DigitalArea::SortHoles() {
    if (holes_.empty())
        return;
    std::sort(holes_.begin(), holes_.end(),
              [](const PixelPlace &a, const PixelPlace &b) { return a.Y != b.Y ? a.Y < b.Y : a.X < b.X; });
    const Interval &rows = followsY_ ? along_ : acrossBounds_;
    firstRow_ = rows.First;
    rowHasHole_.resize(static_cast<std::size_t>(rows.Last - rows.First) + 1);
    for (const PixelPlace &hole : holes_)
        rowHasHole_[static_cast<std::size_t>(hole.Y - firstRow_)] = true;
}

void DigitalArea::AddIrregularities(const Line &line, const Line &next) {
    const std::int64_t excess = std::abs(next.Across - AcrossAt(line, next.Lowest)) - onePixel;
    const EdgeSearch search = SearchBetween(line, next);
    for (std::int32_t i = 0; i < search.Count; ++i)
        if (search.IsMet(i))
            AddIrregularity(line, search.First + i, excess);
}

void DigitalArea::AddIrregularity(const Line &line, std::int32_t along, std::int64_t excess) {
    const std::int64_t across = (AcrossAt(line, along) >> 16) + (excess > 0 ? sense_ : 0);
    if (across < acrossBounds_.First || across > acrossBounds_.Last)
        return;
    const auto place = static_cast<std::int32_t>(across);
    (excess > 0 ? holes_ : repeats_).push_back(followsY_ ? PixelPlace{place, along} : PixelPlace{along, place});
}

} // namespace Scan

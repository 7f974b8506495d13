// The set of pixels that the lines of a walk cover together, found without visiting them. Lines that advance by whole
// pixels lie one pixel apart: along each column (of lines that follow x; each row, of lines that follow y) they cover
// an interval, but for single holes, and single pixels covered twice, where the rounding of the steps adds up.
#pragma once

#include <algorithm>
#include <vector>

#include "Scan/SampleRanges.h"

namespace Scan {

struct PixelPlace {
    std::int32_t X;
    std::int32_t Y;
};

struct PixelRectangle {
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int64_t Width = 0;
    std::int64_t Height = 0;
};

/// True for a walk that visits each pixel of an axis-parallel rectangle once. rectangle is the part inside the
/// bounds.
bool IsRectangle(const WalkPlan &plan, const PixelBounds &bounds, PixelRectangle &rectangle);

class DigitalArea {
public:
    /// False for a walk that doesn't cover its area so.
    bool Build(const WalkPlan &plan, const PixelBounds &bounds);

    /// The lines that the set stands for. The others begin on the far side of the plane.
    IndexRange Lines() const { return lines_; }
    /// Pixels inside the bounds that a second line covers again.
    const std::vector<PixelPlace> &Repeats() const { return repeats_; }
    /// Runs use(left, right, y) for the rows of pixels inside the bounds, edges included.
    template <class Use>
    void ForEachSpan(Use &&use) const;

private:
    // Along is the axis that lines follow, across the other one.
    struct Line {
        std::int32_t Lowest; ///< its first coordinate along, whichever way it runs
        std::int64_t Across; ///< position there
    };
    struct Interval {
        std::int32_t First;
        std::int32_t Last;

        bool IsEmpty() const { return First > Last; }
    };

    std::int64_t AcrossAt(const Line &line, std::int32_t along) const {
        return line.Across + std::int64_t{along - line.Lowest} * slope_;
    }
    struct EdgeSearch;
    EdgeSearch SearchBetween(const Line &line, const Line &next) const;
    bool FindLines(const WalkPlan &plan);
    bool AreOneApart() const;
    void FindIntervals();
    void FindIrregularities();
    void SortHoles();
    void AddIrregularities(const Line &line, const Line &next);
    void AddIrregularity(const Line &line, std::int32_t along, std::int64_t excess);
    template <class Use>
    void CutAtHoles(Interval columns, std::int32_t y, Use &use) const;
    template <class Use>
    void ForEachColumnSpan(Use &use) const;

    bool followsY_ = false;
    IndexRange lines_ = {0, -1};
    std::int64_t samples_ = 0;
    std::int64_t slope_ = 0; ///< across, per pixel along
    std::int64_t sense_ = 1; ///< of the across coordinate from line to line
    Interval alongBounds_ = {0, -1}, acrossBounds_ = {0, -1};
    std::vector<Line> line_; ///< Lowest rises
    Interval along_ = {0, -1};
    std::vector<Interval> intervals_; ///< one for each coordinate of along_
    std::vector<PixelPlace> holes_;   ///< by row, then column
    std::int32_t firstRow_ = 0;
    std::vector<bool> rowHasHole_; ///< from firstRow_ on; only where there are holes
    std::vector<PixelPlace> repeats_;
};

template <class Use>
void DigitalArea::CutAtHoles(Interval columns, std::int32_t y, Use &use) const {
    const auto isBefore = [](const PixelPlace &a, const PixelPlace &b) { return a.Y != b.Y ? a.Y < b.Y : a.X < b.X; };
    if (holes_.empty() || !rowHasHole_[static_cast<std::size_t>(y - firstRow_)])
        return use(columns.First, columns.Last, y);
    auto hole = std::lower_bound(holes_.begin(), holes_.end(), PixelPlace{columns.First, y}, isBefore);
    for (; hole != holes_.end() && hole->Y == y && hole->X <= columns.Last; ++hole) {
        if (columns.First < hole->X)
            use(columns.First, hole->X - 1, y);
        columns.First = hole->X + 1;
    }
    if (!columns.IsEmpty())
        use(columns.First, columns.Last, y);
}

/// Turns the intervals of columns into rows: a row goes on as long as it lies in the next column's interval.
template <class Use>
void DigitalArea::ForEachColumnSpan(Use &use) const {
    std::vector<std::int32_t> begin(static_cast<std::size_t>(acrossBounds_.Last - acrossBounds_.First) + 1);
    const auto beginOf = [&](std::int32_t y) -> std::int32_t & {
        return begin[static_cast<std::size_t>(y - acrossBounds_.First)];
    };
    Interval former = {0, -1};
    for (std::int32_t x = along_.First; x <= along_.Last + 1; ++x) {
        const bool isBehind = x > along_.Last;
        const Interval rows = isBehind ? Interval{0, -1} : intervals_[static_cast<std::size_t>(x - along_.First)];
        const bool meets =
            !rows.IsEmpty() && !former.IsEmpty() && rows.First <= former.Last && former.First <= rows.Last;
        const Interval shared = meets ? Interval{std::max(rows.First, former.First), std::min(rows.Last, former.Last)}
                                      : Interval{former.Last + 1, former.Last};
        for (std::int32_t y = former.First; y < shared.First && y <= former.Last; ++y)
            CutAtHoles({beginOf(y), x - 1}, y, use);
        for (std::int32_t y = std::max(shared.Last + 1, former.First); y <= former.Last; ++y)
            CutAtHoles({beginOf(y), x - 1}, y, use);
        for (std::int32_t y = rows.First; y <= rows.Last; ++y) {
            if (meets && y == shared.First)
                y = shared.Last + 1;
            if (y <= rows.Last)
                beginOf(y) = x;
        }
        former = rows;
    }
}

template <class Use>
void DigitalArea::ForEachSpan(Use &&use) const {
    if (!followsY_)
        return ForEachColumnSpan(use);
    for (std::int32_t y = along_.First; y <= along_.Last; ++y) {
        const Interval columns = intervals_[static_cast<std::size_t>(y - along_.First)];
        if (!columns.IsEmpty())
            CutAtHoles(columns, y, use);
    }
}

} // namespace Scan

#include "Transformations/TransTable.h"

#include <algorithm>

#include "Image/KernelLevel.h"
#include "TruncateTo.h"

namespace Transformations {
namespace {

/// The four terms of an index, as they are before they are truncated.
struct RealTerms {
    double XFromX, XFromY, YFromX, YFromY;

    ORV_INLINE RealTerms(const TCoordinateMap &map, std::intptr_t index) {
        const auto place = static_cast<double>(index);
        XFromX = (place * map.Matrix.A11 + map.X) * 16.0 * 16.0;
        XFromY = place * map.Matrix.A12 * 16.0 * 16.0;
        YFromX = place * map.Matrix.A21 * 16.0 * 16.0;
        YFromY = (place * map.Matrix.A22 + map.Y) * 16.0 * 16.0;
    }
    bool ColumnFits() const { return Fits(XFromX) && Fits(YFromX); }
    bool RowFits() const { return Fits(XFromY) && Fits(YFromY); }

private:
    static bool Fits(double term) { return term > -2147483649.0 && term < 2147483648.0; }
};

/// For terms that all fit.
ORV_INLINE void FillQuickly(TransTableEntry *entries, std::intptr_t count, const TCoordinateMap &map) {
    for (std::intptr_t i = 0; i < count; ++i) {
        const RealTerms terms(map, i);
        entries[i] = {static_cast<std::int32_t>(terms.XFromX), static_cast<std::int32_t>(terms.XFromY),
                      static_cast<std::int32_t>(terms.YFromX), static_cast<std::int32_t>(terms.YFromY)};
    }
}

void Extend(IndexRange &range, std::intptr_t index, bool fits) {
    if (!fits)
        return;
    if (range.End == 0)
        range.Begin = index;
    range.End = index + 1;
}

} // namespace

TransTable::TransTable(const TCoordinateMap &map, std::intptr_t width, std::intptr_t height)
    : width_(width), height_(height), entries_(static_cast<std::size_t>(std::max(width, height))) {
    const auto count = static_cast<std::intptr_t>(entries_.size());
    const RealTerms first(map, 0), last(map, count - 1);
    if (first.ColumnFits() && first.RowFits() && last.ColumnFits() && last.RowFits()) {
        TransTableEntry *const entries = entries_.data();
        const TCoordinateMap *const used = &map;
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { FillQuickly(entries, count, *used); });
        columns_ = {0, width};
        rows_ = {0, height};
        return;
    }
    for (std::intptr_t i = 0; i < count; ++i) {
        const RealTerms terms(map, i);
        using orvBase::TruncateTo;
        entries_[static_cast<std::size_t>(i)] = {
            TruncateTo<std::int32_t>(terms.XFromX), TruncateTo<std::int32_t>(terms.XFromY),
            TruncateTo<std::int32_t>(terms.YFromX), TruncateTo<std::int32_t>(terms.YFromY)};
        Extend(columns_, i, i < width && terms.ColumnFits());
        Extend(rows_, i, i < height && terms.RowFits());
    }
}

} // namespace Transformations

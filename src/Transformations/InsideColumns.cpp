#include "Transformations/InsideColumns.h"

#include <algorithm>

namespace Transformations {

PositionColumns::PositionColumns(const TransTable &table) : Valid(table.Columns()) {
    const auto width = static_cast<std::size_t>(table.Width());
    X.resize(width);
    Y.resize(width);
    for (std::size_t x = 0; x < width; ++x) {
        X[x] = table.Entries()[x].XFromX;
        Y[x] = table.Entries()[x].YFromX;
    }
}

AxisSearch::AxisSearch(const std::vector<std::int32_t> &terms, const IndexRange &valid)
    : terms_(terms.data()), valid_(valid), found_{valid.Begin, valid.Begin},
      falls_(valid.Begin < valid.End && terms_[valid.End - 1] < terms_[valid.Begin]) {}

std::intptr_t AxisSearch::FirstBehind(std::intptr_t start, std::int64_t limit) const {
    while (start < valid_.End && !IsBehind(start, limit))
        ++start;
    while (start > valid_.Begin && IsBehind(start - 1, limit))
        --start;
    return start;
}

IndexRange AxisSearch::Find(std::int64_t low, std::int64_t high) {
    found_.Begin = FirstBehind(found_.Begin, falls_ ? high : low);
    found_.End = FirstBehind(found_.End, falls_ ? low : high);
    return found_;
}

IndexRange InsideColumns::Find(std::int64_t rowX, std::int64_t rowY) {
    // A position that doesn't fit 32 bits is outside whatever the size of the source.
    constexpr std::int64_t unitsPerPixel = 256, highest = std::int64_t{1} << 31;
    const auto find = [=](AxisSearch &axis, std::int64_t first, std::int64_t last, std::int64_t row) {
        const std::int64_t low = first * unitsPerPixel - row;
        const std::int64_t high = std::min(last, highest / unitsPerPixel) * unitsPerPixel - row;
        return axis.Find(low, std::max(low, high));
    };
    const IndexRange x = find(x_, window_.Left, window_.Right, rowX);
    const IndexRange y = find(y_, window_.Top, window_.Bottom, rowY);
    const std::intptr_t begin = std::max(x.Begin, y.Begin);
    return {begin, std::max(begin, std::min(x.End, y.End))};
}

} // namespace Transformations

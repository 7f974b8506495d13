#include "Transformations/UprightColumns.h"

#include <algorithm>

#include "CheckedSize.h"
#include "Transformations/RealSampling.h"
#include "TruncateTo.h"

namespace Transformations {

void UprightColumns::Find(const Image::PlaneView &source, const TCoordinateMap &map, std::intptr_t first,
                          std::intptr_t count) {
    const PositionsOnRow positions = {{map.Matrix.A11, 0.0, 0.0 * map.Matrix.A12, 0.0, map.X}, first};
    first_ = first;
    fractions_.clear();
    left_.clear();
    right_.clear();
    for (std::intptr_t i = 0; i < count; ++i) {
        const double position = positions.At(i).X;
        const auto whole = orvBase::TruncateTo<std::int32_t>(position);
        if (whole < 0 || whole >= source.Width)
            continue;
        if (left_.empty())
            first_ = first + i;
        fractions_.push_back(position - whole);
        left_.push_back(source.Columns[whole].XEntry);
        right_.push_back(source.Columns[std::intptr_t{whole} + 1].XEntry);
    }
    FindWindows(source);
}

void UprightColumns::FindWindows(const Image::PlaneView &source) {
    windows_.clear();
    // Where pixels lie closer than that, no page between them is without a pixel: from the first pixel of a row to
    // the last one, all can be read.
    const auto farthest = static_cast<std::size_t>(ColumnWindow::Pixels * source.Bytes);
    if (source.XStep == 0 || orvBase::Magnitude(source.XStep) > farthest || Count() < ColumnWindow::Columns)
        return;
    for (std::intptr_t done = 0; done < Count(); done += ColumnWindow::Columns) {
        ColumnWindow window = {};
        if (!FindWindow(source, std::min(done, Count() - ColumnWindow::Columns), window))
            return windows_.clear();
        windows_.push_back(window);
    }
}

/// False where there is no window for the eight columns from one on.
bool UprightColumns::FindWindow(const Image::PlaneView &source, std::intptr_t column, ColumnWindow &window) const {
    const std::intptr_t windowBytes = ColumnWindow::Pixels * source.Bytes;
    const std::intptr_t edges[] = {source.Columns[0].XEntry, source.Columns[source.Width - 1].XEntry};
    const auto lowestOf = [column](const std::vector<std::intptr_t> &places) {
        return *std::min_element(places.begin() + column, places.begin() + column + ColumnWindow::Columns);
    };
    const std::intptr_t latest = std::max(edges[0], edges[1]) + source.Bytes - windowBytes;
    window.Start = std::min({lowestOf(left_), lowestOf(right_), latest});
    if (window.Start < std::min(edges[0], edges[1]))
        return false;
    for (std::intptr_t i = 0; i < 2 * ColumnWindow::Columns; ++i) {
        const auto &places = i < ColumnWindow::Columns ? left_ : right_;
        const auto place = static_cast<std::size_t>(column + i % ColumnWindow::Columns);
        const std::intptr_t distance = places[place] - window.Start;
        if (distance >= windowBytes || distance % source.Bytes != 0)
            return false;
        window.Places[i] = static_cast<std::uint8_t>(distance / source.Bytes);
    }
    return true;
}

} // namespace Transformations

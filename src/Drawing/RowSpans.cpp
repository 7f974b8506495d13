#include "Drawing/RowSpans.h"

#include <cmath>
#include <limits>

#include "Drawing/DrawnSpans.h"
#include "Drawing/RowFill.h"
#include "Image/KernelLevel.h"
#include "Image/TableSteps.h"
#include "TruncateTo.h"

namespace Drawing {
namespace {

constexpr std::int32_t GreatestColumn = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t Uncut = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t NearBy = std::int64_t{1} << 30; ///< sums and differences of such coordinates fit 32 bits

bool IsNear(Point point) {
    return point.X > -NearBy && point.X < NearBy && point.Y > -NearBy && point.Y < NearBy;
}

/// Cuts of consecutive rows by one edge. The order of the operations is part of the result.
struct EdgeCuts {
    std::int32_t FirstRow; ///< counted from the current end of the edge
    double Height, Width;
    std::int32_t X; ///< of the current end

    ORV_INLINE std::int32_t At(std::int32_t i) const {
        const double term = static_cast<double>(FirstRow + i) / Height * Width;
        return X + static_cast<std::int32_t>(term + std::copysign(0.5, term));
    }
};

ORV_INLINE void Widen(const EdgeCuts &edge, std::int32_t *__restrict least, std::int32_t *__restrict greatest,
                      std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t x = edge.At(i);
        least[i] = least[i] < x ? least[i] : x;
        greatest[i] = greatest[i] > x ? greatest[i] : x;
    }
}

/// Rows from which an edge is worth a loop of the processor's best level.
constexpr std::int32_t ManyRows = 16;
/// Rows of fewer pixels are written through the table, without a look at its steps.
constexpr std::intptr_t FewColumns = 4;
/// Columns from which their analysis is quicker than one loop.
constexpr std::intptr_t ManyColumns = 64;

std::intptr_t StepOfFew(const VPAEntry *columns, std::intptr_t count) {
    const std::intptr_t step = Image::Step(columns[1].XEntry, columns[0].XEntry);
    std::intptr_t deviation = 0;
    for (std::intptr_t x = 2; x < count; ++x)
        deviation |= Image::Step(columns[x].XEntry, columns[x - 1].XEntry) ^ step;
    return deviation == 0 ? step : 0;
}

template <class Writer>
void FillDenseRows(const DrawnPlane &plane, const DrawnSpans &spans, bool isMirrored, const Writer &write) {
    Image::RunAtLevel([&]() ORV_INLINE_LAMBDA {
        spans.ForEachRow([&](std::int64_t y, std::int64_t left, std::int64_t right) ORV_INLINE_LAMBDA {
            FillDense<64>(plane.Row(y) + plane.Table[isMirrored ? right : left].XEntry,
                          (right - left + 1) * Writer::Bytes, write);
        });
    });
}

template <class Writer>
void FillRows(const DrawnPlane &plane, const DrawnSpans &spans, const Writer &write) {
    if (spans.Left > spans.Right)
        return;
    const ColumnRange columns = ColumnsOf(plane, spans.Left, spans.Right);
    if constexpr (Writer::Bytes != 0)
        if (std::abs(columns.Step) == Writer::Bytes)
            return FillDenseRows(plane, spans, columns.Step < 0, write);
    spans.ForEachRow([&](std::int64_t y, std::int64_t left, std::int64_t right) {
        char *row = plane.Row(y);
        for (std::int64_t x = left; x <= right; ++x)
            write(row + plane.Table[x].XEntry);
    });
}

} // namespace

ColumnRange ColumnsOf(const DrawnPlane &plane, std::intptr_t left, std::intptr_t right) {
    if (right - left < FewColumns)
        return {left, right, 0};
    if (right - left < ManyColumns)
        return {left, right, StepOfFew(plane.Table + left, right - left + 1)};
    const auto steps = Image::CommonSteps({plane.Table + left, right - left + 1, plane.Table, 0});
    return {left, right, steps.X};
}

void FillSpans(const Canvas &canvas, const SpanView &spans) {
    const DrawnSpans drawn(canvas.Plane, spans);
    if (drawn.Count > 0)
        WithWriter(canvas, [&](const auto &write) { FillRows(canvas.Plane, drawn, write); });
}

bool CoverImage(const DrawnPlane &plane, const SpanView &spans) {
    const DrawnSpans drawn(plane, spans);
    if (drawn.Count < plane.Height)
        return false;
    std::int64_t whole = 0;
    drawn.ForEachRow([&](std::int64_t, std::int64_t left, std::int64_t right) {
        whole += left == 0 && right == plane.Width - 1 ? 1 : 0;
    });
    return whole == plane.Height;
}

RowSpans::RowSpans(std::int64_t first, std::int64_t end, std::int64_t width)
    : first_(first), end_(std::max(first, end)), width_(std::min<std::int64_t>(width, GreatestColumn - 1)) {
    const auto rows = static_cast<std::size_t>(end_ - first_);
    least_.resize(rows, GreatestColumn);
    greatest_.resize(rows, Uncut);
}

void RowSpans::AddEdge(Point current, Point previous) {
    bottom_ = std::max({bottom_, current.Y, previous.Y});
    const std::int64_t begin = std::max(first_, std::min(current.Y, previous.Y));
    const std::int64_t end = std::min(end_, std::max(current.Y, previous.Y) + 1);
    if (current.Y == previous.Y || begin >= end)
        return;
    left_ = std::min({left_, current.X, previous.X});
    right_ = std::max({right_, current.X, previous.X});
    std::int32_t *least = least_.data() + (begin - first_), *greatest = greatest_.data() + (begin - first_);
    const double height = static_cast<double>(previous.Y - current.Y);
    const double width = static_cast<double>(previous.X - current.X);
    if (IsNear(current) && IsNear(previous)) {
        const EdgeCuts edge = {static_cast<std::int32_t>(begin - current.Y), height, width,
                               static_cast<std::int32_t>(current.X)};
        const auto count = static_cast<std::int32_t>(end - begin);
        if (count < ManyRows)
            return Widen(edge, least, greatest, count);
        return Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { Widen(edge, least, greatest, count); });
    }
    for (std::int64_t y = begin; y < end; ++y, ++least, ++greatest) {
        const double term = static_cast<double>(y - current.Y) / height * width;
        const std::int64_t cut = current.X + orvBase::TruncateTo<std::int64_t>(term + std::copysign(0.5, term));
        const auto x = static_cast<std::int32_t>(std::clamp<std::int64_t>(cut, -1, width_));
        *least = std::min(*least, x);
        *greatest = std::max(*greatest, x);
    }
}

bool FillPolygon(const Canvas &canvas, const Point *corners, std::size_t count) {
    std::int64_t top = corners[0].Y, bottom = corners[0].Y;
    for (std::size_t i = 1; i < count; ++i) {
        top = std::min(top, corners[i].Y);
        bottom = std::max(bottom, corners[i].Y);
    }
    const DrawnPlane &plane = canvas.Plane;
    if (bottom <= 0 || top >= plane.Height || plane.Width < 1)
        return false;
    RowSpans spans(std::max<std::int64_t>(top, 0), std::min(bottom + 1, plane.Height), plane.Width);
    for (std::size_t i = 0; i < count; ++i)
        spans.AddEdge(corners[i], corners[i == 0 ? count - 1 : i - 1]);
    FillSpans(canvas, spans.View());
    return CoverImage(plane, spans.View());
}

} // namespace Drawing

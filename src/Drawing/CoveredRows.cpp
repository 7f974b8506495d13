#include "Drawing/CoveredRows.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Drawing/DrawnSpans.h"
#include "Image/KernelLevel.h"

namespace Drawing {
namespace {

constexpr double Nowhere = std::numeric_limits<double>::infinity();

ORV_INLINE void WidenBy(double *__restrict left, double *__restrict right, std::int64_t first, std::int64_t count,
                        SlopedLine leftLine, SlopedLine rightLine) {
    for (std::int64_t i = 0; i < count; ++i) {
        const auto y = static_cast<double>(first + i);
        const double least = leftLine.X + (y - leftLine.Y) * leftLine.Slope;
        const double most = rightLine.X + (y - rightLine.Y) * rightLine.Slope;
        left[i] = left[i] < least ? left[i] : least;
        right[i] = right[i] > most ? right[i] : most;
    }
}

/// Spans that end in column 0 are left out.
constexpr double LeastRight = 1;

constexpr std::int64_t LaneCount = 8;
typedef Image::Vector<double, LaneCount * sizeof(double)> Lanes;
typedef Image::Vector<std::int64_t, LaneCount * sizeof(double)> Flags;

ORV_INLINE void AddPixels(Lanes &sums, const double *first, const double *last, const double *left,
                          const double *right) {
    Lanes open, close, least, most;
    Image::LoadVector(open, reinterpret_cast<const char *>(first));
    Image::LoadVector(close, reinterpret_cast<const char *>(last));
    Image::LoadVector(least, reinterpret_cast<const char *>(left));
    Image::LoadVector(most, reinterpret_cast<const char *>(right));
    const Flags reaches = most >= LeastRight;
    least = least > open ? least : open;
    most = most < close ? most : close;
    const Flags adds = reaches & (most >= least);
    sums += reinterpret_cast<Lanes>(reinterpret_cast<Flags>(most - least + 1.0) & adds);
}

} // namespace

CoveredRows::CoveredRows(const Canvas &canvas)
    : canvas_(canvas), columns_(ColumnsOf(canvas.Plane, 0, canvas.Plane.Width - 1)), height_(canvas.Plane.Height),
      openRows_(height_), first_(static_cast<std::size_t>(height_), 0.0),
      last_(static_cast<std::size_t>(height_), static_cast<double>(canvas.Plane.Width - 1)),
      left_(static_cast<std::size_t>(height_)), right_(static_cast<std::size_t>(height_)) {}

void CoveredRows::Write(const SpanView &spans) {
    WithWriter(canvas_, [&](const auto &write) {
        DrawnSpans(canvas_.Plane, spans).ForEachRow([&](std::int64_t y, std::int64_t left, std::int64_t right) {
            double &first = first_[static_cast<std::size_t>(y)], &last = last_[static_cast<std::size_t>(y)];
            if (first > last)
                return;
            const auto open = static_cast<std::int64_t>(first), close = static_cast<std::int64_t>(last);
            FillRow(canvas_.Plane, columns_, y, std::max(left, open), std::min(right, close), write);
            if (left <= open)
                first = static_cast<double>(std::max(open, right + 1));
            if (right >= close)
                last = static_cast<double>(std::min(close, left - 1));
            openRows_ -= first > last ? 1 : 0;
        });
    });
}

void CoveredRows::BeginShape() {
    top_ = height_;
    end_ = 0;
}

void CoveredRows::AddSide(double top, double bottom, const SlopedLine &left, const SlopedLine &right) {
    if (!(bottom >= 0) || !(top < static_cast<double>(height_)))
        return;
    const auto first = static_cast<std::int64_t>(std::max(top, 0.0));
    const auto end = static_cast<std::int64_t>(std::min(bottom, static_cast<double>(height_ - 1))) + 1;
    const auto clear = [&](std::int64_t from, std::int64_t to) {
        std::fill(left_.begin() + from, left_.begin() + to, Nowhere);
        std::fill(right_.begin() + from, right_.begin() + to, -Nowhere);
    };
    if (top_ >= end_) {
        clear(first, end);
        top_ = first;
        end_ = end;
    }
    if (first < top_)
        clear(first, std::exchange(top_, first));
    if (end > end_)
        clear(std::exchange(end_, end), end);
    double *const leftRows = left_.data() + first, *const rightRows = right_.data() + first;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { WidenBy(leftRows, rightRows, first, end - first, left, right); });
}

double CoveredRows::PixelsToAdd() const {
    Lanes sums = {};
    const double *first = first_.data(), *last = last_.data(), *left = left_.data(), *right = right_.data();
    const std::int64_t wholeEnd = top_ + std::max<std::int64_t>(end_ - top_, 0) / LaneCount * LaneCount;
    const std::int64_t begin = top_;
    Lanes *const out = &sums;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        for (std::int64_t row = begin; row < wholeEnd; row += LaneCount)
            AddPixels(*out, first + row, last + row, left + row, right + row);
    });
    double sum = 0;
    for (std::int64_t lane = 0; lane < LaneCount; ++lane)
        sum += sums[lane];
    for (std::int64_t y = wholeEnd; y < end_; ++y) {
        const double least = std::max(left[y], first[y]), most = std::min(right[y], last[y]);
        sum += right[y] >= LeastRight && most >= least ? most - least + 1 : 0.0;
    }
    return sum;
}

} // namespace Drawing

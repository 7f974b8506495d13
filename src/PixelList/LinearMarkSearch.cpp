#include "PixelList/LinearMarkSearch.h"

#include <bit>
#include <cmath>
#include <stdexcept>

#include "Image/KernelLevel.h"
#include "Scan/PixelRows.h"
#include "TruncateTo.h"

namespace PixelList {
namespace {

/// The least value of the pixel's type that a candidate may have; NaN when there is none.
template <class T>
T LeastCandidate(double threshold) {
    constexpr T lowest = ValueBelowAll<T>;
    if constexpr (std::is_integral_v<T>) {
        const T truncated = orvBase::TruncateTo<T>(threshold);
        return truncated == lowest ? static_cast<T>(lowest + 1) : truncated;
    } else {
        constexpr T infinity = std::numeric_limits<T>::infinity();
        if (threshold <= static_cast<double>(lowest))
            return std::nextafter(lowest, T{0});
        if (threshold > static_cast<double>(std::numeric_limits<T>::max()))
            return infinity;
        const T nearest = static_cast<T>(threshold);
        return static_cast<double>(nearest) < threshold ? std::nextafter(nearest, infinity) : nearest;
    }
}

/// The rows of a plane as arrays: in place, or gathered once each into one of three buffers in turn.
template <class T>
class RowArrays {
public:
    explicit RowArrays(const Image::PlaneView &plane) : plane_(plane) {}

    /// Good until the third row after it is asked for.
    const T *Row(std::intptr_t y) {
        const char *const first = plane_.Pixel(0, y);
        if (Scan::IsArray<T>(plane_, first))
            return reinterpret_cast<const T *>(first);
        auto &buffer = buffers_[static_cast<std::size_t>(y % 3)];
        buffer.resize(static_cast<std::size_t>(plane_.Width));
        Scan::Gather(plane_, 0, y, plane_.Width, buffer.data());
        return buffer.data();
    }

private:
    const Image::PlaneView &plane_;
    std::vector<T> buffers_[3];
};

/// The greater one; b when either is NaN.
template <class T>
ORV_INLINE T Greater(T a, T b) {
    return a > b ? a : b;
}

/// A row, the rows above and below it, and where its marks go. Columns[i + 1] takes the greatest pixel of column i.
template <class T>
struct RowSearch {
    const T *Above;
    const T *Here;
    const T *Below;
    T *Columns;
    std::uint8_t *Marks;
    std::intptr_t Count;
    T Least;
};

template <class T>
ORV_INLINE void FindColumnMaxima(const RowSearch<T> &row) {
    using Limits = std::numeric_limits<T>;
    constexpr T below = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
    const T *const above = row.Above, *const here = row.Here, *const under = row.Below;
    T *const __restrict columns = row.Columns + 1;
    for (std::intptr_t i = 0; i < row.Count; ++i)
        columns[i] = Greater(above[i], Greater(under[i], Greater(here[i], below)));
}

/// Result: whether there is a mark.
template <class T>
ORV_INLINE bool MarkRow(const RowSearch<T> &row) {
    const T *const here = row.Here, *const columns = row.Columns;
    std::uint8_t *const __restrict marks = row.Marks;
    const T least = row.Least;
    std::uint8_t any = 0;
    for (std::intptr_t i = 0; i < row.Count; ++i) {
        const T limit = Greater(columns[i], Greater(columns[i + 1], columns[i + 2]));
        const auto mark = static_cast<std::uint8_t>((here[i] >= limit) & (here[i] >= least));
        marks[i] = mark;
        any |= mark;
    }
    return any != 0;
}

template <class T>
bool SearchRow(const RowSearch<T> &row) {
    const RowSearch<T> *const used = &row;
    bool found = false;
    bool *const out = &found;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        const RowSearch<T> held = *used;
        FindColumnMaxima(held);
        // The columns beside the outer ones are not there: they say the same as these.
        held.Columns[0] = held.Columns[1];
        held.Columns[held.Count + 1] = held.Columns[held.Count];
        *out = MarkRow(held);
    });
    return found;
}

/// Appends the marked pixels of row y. The marks are padded with zeros to whole words.
template <class T>
void Collect(const RowSearch<T> &row, std::intptr_t y, MarkedPixels<T> &candidates) {
    for (std::intptr_t x = 0; x < row.Count; x += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, row.Marks + x, sizeof word);
        for (; word != 0; word &= word - 1) {
            const std::intptr_t place = x + std::countr_zero(word) / 8;
            candidates.push_back({static_cast<std::uint32_t>(place), static_cast<std::uint32_t>(y), row.Here[place]});
        }
    }
}

} // namespace

template <class T>
MarkedPixels<T> LinearMarkSearch(const Image::PlaneView &plane, double threshold) {
    MarkedPixels<T> candidates;
    if (plane.Width < 1 || plane.Height < 1)
        return candidates;
    constexpr std::intptr_t longest = std::numeric_limits<std::uint32_t>::max();
    if (plane.Width > longest || plane.Height > longest)
        throw std::length_error("more pixels than can be counted");
    const auto width = static_cast<std::size_t>(plane.Width);
    std::vector<T> columns(width + 2);
    std::vector<std::uint8_t> marks((width + 7) / 8 * 8);
    RowArrays<T> rows(plane);
    RowSearch<T> row = {
        nullptr, nullptr, rows.Row(0), columns.data(), marks.data(), plane.Width, LeastCandidate<T>(threshold)};
    row.Here = row.Below;
    for (std::intptr_t y = 0; y < plane.Height; ++y) {
        row.Above = row.Here;
        row.Here = row.Below;
        if (y + 1 < plane.Height)
            row.Below = rows.Row(y + 1);
        if (SearchRow(row))
            Collect(row, y, candidates);
    }
    return candidates;
}

template MarkedPixels<char> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<unsigned char> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<short> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<unsigned short> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<int> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<unsigned int> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<long> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<unsigned long> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<float> LinearMarkSearch(const Image::PlaneView &, double);
template MarkedPixels<double> LinearMarkSearch(const Image::PlaneView &, double);

} // namespace PixelList

#include "Transformations/FixedPointPlane.h"

#include <algorithm>
#include <type_traits>

#include "Scan/PixelRows.h"
#include "Transformations/InnerPixels.h"
#include "Transformations/InsideColumns.h"
#include "Transformations/UprightRows.h"

namespace Transformations {
namespace {

/// A row's terms, with the rounding.
struct RowPosition {
    std::int64_t X;
    std::int64_t Y;

    explicit RowPosition(const TransTableEntry &row)
        : X(std::int64_t{row.XFromY} + PositionRounding), Y(std::int64_t{row.YFromY} + PositionRounding) {}
};

/// Gives bit 0 of the left upper pixel to each pixel of a row that has a source.
template <class Pixel>
void CopyOverlayBits(const Image::PlaneView &source, const PositionColumns &columns, const RowPosition &row,
                     const IndexRange &inside, Pixel *to) {
    for (std::intptr_t x = inside.Begin; x < inside.End; ++x) {
        const auto i = static_cast<std::size_t>(x);
        const char *const pixel = source.Pixel((columns.X[i] + row.X) >> 8, (columns.Y[i] + row.Y) >> 8);
        const auto from = *reinterpret_cast<const typename Scan::Loose<Pixel>::Type *>(pixel);
        to[x] = static_cast<Pixel>((to[x] & ~1) | (from & 1));
    }
}

template <class Pixel>
void FinishRow(const FixedPointSource<Pixel> &source, const PositionColumns &columns, const RowPosition &row,
               const IndexRange &inside, Pixel *to) {
    if constexpr (std::is_integral_v<Pixel>) {
        if (source.Finish == RowFinish::CopyOverlayBits)
            CopyOverlayBits(source.View, columns, row, inside, to);
    } else if (source.Finish == RowFinish::ReverseBytes) {
        for (std::intptr_t x = inside.Begin; x < inside.End; ++x)
            std::swap(to[x].Bytes[0], to[x].Bytes[2]);
    }
}

/// Rows under any map: columns without a source, those at its edges one by one, and those between by loops without
/// tests.
template <class Pixel>
class TurnedRows {
public:
    TurnedRows(const FixedPointSource<Pixel> &source, const PositionColumns &columns)
        : source_(source), columns_(columns), grid_(SourceGrid::Of<Pixel>(source.View)),
          inside_(columns, {0, 0, source.View.Width, source.View.Height}), inner_(columns, grid_.Inner(source.View)) {
    }

    /// Writes the pixels that have a source.
    IndexRange Sample(std::intptr_t y, const RowPosition &row, Pixel *to) {
        const IndexRange inside = inside_.Find(row.X, row.Y);
        const IndexRange found = inner_.Find(row.X, row.Y);
        const IndexRange inner = found.Begin < found.End ? found : IndexRange{inside.End, inside.End};
        for (std::intptr_t x = inside.Begin; x < inner.Begin; ++x)
            to[x] = source_.Sample(x, y);
        SampleRun(grid_,
                  {columns_.X.data() + inner.Begin, columns_.Y.data() + inner.Begin,
                   static_cast<std::uint32_t>(row.X), static_cast<std::uint32_t>(row.Y), inner.End - inner.Begin},
                  to + inner.Begin);
        for (std::intptr_t x = inner.End; x < inside.End; ++x)
            to[x] = source_.Sample(x, y);
        return inside;
    }

private:
    const FixedPointSource<Pixel> &source_;
    const PositionColumns &columns_;
    SourceGrid grid_;
    InsideColumns inside_, inner_;
};

/// Rows under an upright map.
template <class Pixel>
class AxisRows {
public:
    AxisRows(const FixedPointSource<Pixel> &source, const TransTable &table, const PositionColumns &columns)
        : rows_(source.View, table), height_(source.View.Height),
          fromColumns_(columns.Valid.End == 0 ? 0 : columns.Y[static_cast<std::size_t>(columns.Valid.Begin)]) {}

    IndexRange Sample(std::intptr_t, const RowPosition &row, Pixel *to) {
        const std::int64_t y = fromColumns_ + row.Y;
        if (y != static_cast<std::int32_t>(y) || y < 0 || y >> 8 >= height_)
            return {};
        const IndexRange &inside = rows_.Inside();
        rows_.Sample(y >> 8, static_cast<std::uint32_t>((y >> 4) & 15), to + inside.Begin);
        return inside;
    }

private:
    UprightRows<Pixel> rows_;
    std::int64_t height_, fromColumns_;
};

template <class Pixel>
void FillOutside(Pixel *first, Pixel *last, const Pixel &value) {
    if constexpr (std::is_integral_v<Pixel>)
        std::fill(first, last, value);
    else // the same byte for all planes
        std::memset(first, value.Bytes[0], static_cast<std::size_t>(last - first) * sizeof(Pixel));
}

/// Fills all rows with what rows.Sample writes and the outside value.
template <class Pixel, class Rows>
void FillRows(const FixedPointSource<Pixel> &source, const TransTable &table, const PositionColumns &columns,
              const Image::PlaneView &target, Rows &&rows) {
    std::vector<Pixel> buffer(static_cast<std::size_t>(target.Width));
    for (std::intptr_t y = 0; y < target.Height; ++y) {
        char *const first = target.Pixel(0, y);
        const bool isArray = Scan::IsArray<Pixel>(target, first);
        Pixel *const to = isArray ? reinterpret_cast<Pixel *>(first) : buffer.data();
        IndexRange inside;
        if (table.Rows().Contains(y)) {
            const RowPosition row(table.Entries()[y]);
            inside = rows.Sample(y, row, to);
            FinishRow(source, columns, row, inside, to);
        }
        FillOutside(to, to + inside.Begin, source.Outside);
        FillOutside(to + inside.End, to + target.Width, source.Outside);
        if (!isArray)
            Scan::Scatter<Pixel>(target, 0, y, target.Width, to);
    }
}

} // namespace

template <class Pixel>
void TransformFixedPoint(const FixedPointSource<Pixel> &source, const TransTable &table,
                         const Image::PlaneView &target) {
    if (target.Width < 1 || target.Height < 1)
        return;
    const PositionColumns columns(table);
    if (IsUpright(table))
        FillRows(source, table, columns, target, AxisRows<Pixel>(source, table, columns));
    else
        FillRows(source, table, columns, target, TurnedRows<Pixel>(source, columns));
}

template void TransformFixedPoint(const FixedPointSource<char> &, const TransTable &, const Image::PlaneView &);
template void TransformFixedPoint(const FixedPointSource<unsigned char> &, const TransTable &,
                                  const Image::PlaneView &);
template void TransformFixedPoint(const FixedPointSource<short> &, const TransTable &, const Image::PlaneView &);
template void TransformFixedPoint(const FixedPointSource<unsigned short> &, const TransTable &,
                                  const Image::PlaneView &);
template void TransformFixedPoint(const FixedPointSource<Image::ThreeBytes> &, const TransTable &,
                                  const Image::PlaneView &);

} // namespace Transformations

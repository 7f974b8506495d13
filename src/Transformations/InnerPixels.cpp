#include "Transformations/InnerPixels.h"

#include <limits>

#include "CheckedSize.h"
#include "Image/KernelLevel.h"
#include "Transformations/NeighbourStrips.h"

namespace Transformations {
namespace {

/// False when the offset of some pixel from pixel (0, 0) may not fit 32 bits.
bool HasShortOffsets(const Image::PlaneView &view) {
    std::size_t columns = 0, rows = 0, all = 0;
    return orvBase::CheckedProduct(columns, static_cast<std::size_t>(view.Width), orvBase::Magnitude(view.XStep)) &&
           orvBase::CheckedProduct(rows, static_cast<std::size_t>(view.Height), orvBase::Magnitude(view.YStep)) &&
           orvBase::CheckedSum(all, columns, rows) && all <= std::numeric_limits<std::int32_t>::max();
}

ORV_INLINE FourPixels ByTable(const SourceGrid &grid, std::int32_t x, std::int32_t y) {
    const VPAEntry *const column = grid.Table + x, *const row = grid.Table + y;
    const char *const upper = grid.Base + row[0].YEntry, *const lower = grid.Base + row[1].YEntry;
    return {upper + column[0].XEntry, upper + column[1].XEntry, lower + column[0].XEntry, lower + column[1].XEntry};
}

template <class Pixel, NeighbourAccess Access>
ORV_INLINE void CollectOne(NeighbourStrip<Pixel> &strip, const SourceGrid &grid, std::intptr_t i,
                           std::intptr_t offset) {
    const char *const upper = grid.Base + offset, *const lower = upper + grid.YStep;
    if constexpr (Access == NeighbourAccess::Pairs)
        strip.CollectPairs(i, upper, lower);
    else
        strip.CollectEach(i, {upper, upper + grid.XStep, lower, lower + grid.XStep});
}

template <class Pixel, NeighbourAccess Access>
ORV_INLINE void Collect(NeighbourStrip<Pixel> &strip, const SourceGrid &grid, const StripTerms &terms,
                        std::intptr_t count) {
    if constexpr (Access == NeighbourAccess::ByTable) {
        for (std::intptr_t i = 0; i < count; ++i)
            strip.CollectEach(i, ByTable(grid, terms.PixelX(i), terms.PixelY(i)));
        return;
    }
    alignas(64) std::int32_t offsets[StripLength];
    for (std::intptr_t i = 0; i < count; ++i)
        offsets[i] = terms.PixelX(i) * grid.XStep + terms.PixelY(i) * grid.YStep;
    std::intptr_t i = 0;
    for (; i + 4 <= count; i += 4) {
        CollectOne<Pixel, Access>(strip, grid, i, Opaque(offsets[i]));
        CollectOne<Pixel, Access>(strip, grid, i + 1, Opaque(offsets[i + 1]));
        CollectOne<Pixel, Access>(strip, grid, i + 2, Opaque(offsets[i + 2]));
        CollectOne<Pixel, Access>(strip, grid, i + 3, Opaque(offsets[i + 3]));
    }
    for (; i < count; ++i)
        CollectOne<Pixel, Access>(strip, grid, i, Opaque(offsets[i]));
}

ORV_INLINE StripTerms TermsFrom(const PositionRun &run, std::intptr_t first) {
    return {run.X + first, run.Y + first, run.RowX, run.RowY};
}

template <class Pixel, NeighbourAccess Access>
ORV_INLINE void SampleStrips(const SourceGrid &source, const PositionRun &positions, Pixel *to) {
    const SourceGrid grid = source;
    const PositionRun run = positions;
    using Strip = NeighbourStrip<Pixel>;
    ForEachStrip<Strip>(
        run.Count,
        [&](Strip &strip, std::intptr_t first, std::intptr_t count)
            ORV_INLINE_LAMBDA { Collect<Pixel, Access>(strip, grid, TermsFrom(run, first), count); },
        [&](const Strip &strip, std::intptr_t first, std::intptr_t count)
            ORV_INLINE_LAMBDA { strip.Weigh(TermsFrom(run, first), count, to + first); });
}

template <NeighbourAccess Access, class Pixel>
void SampleAtLevel(const SourceGrid &grid, const PositionRun &run, Pixel *to) {
    const SourceGrid *const source = &grid;
    const PositionRun *const positions = &run;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { SampleStrips<Pixel, Access>(*source, *positions, to); });
}

} // namespace

template <class Pixel>
SourceGrid SourceGrid::Of(const Image::PlaneView &source) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(Pixel));
    if (source.XStep == 0 || source.YStep == 0 || !HasShortOffsets(source))
        return {source.Base, source.Columns, 0, 0, NeighbourAccess::ByTable, false, 0};
    const auto x = static_cast<std::int32_t>(source.XStep), y = static_cast<std::int32_t>(source.YStep);
    const bool isTurned = x != size && y == size;
    const NeighbourAccess access = x == size || isTurned ? NeighbourAccess::Pairs : NeighbourAccess::Steps;
    return {source.Pixel(0, 0),
            source.Columns,
            isTurned ? y : x,
            isTurned ? x : y,
            access,
            isTurned,
            access == NeighbourAccess::Pairs && size == 3 ? 1 : 0};
}

PixelWindow SourceGrid::Inner(const Image::PlaneView &source) const {
    return {0, 0, source.Width - 1 - (IsTurned ? 0 : ReachBeyond), source.Height - 1 - (IsTurned ? ReachBeyond : 0)};
}

template <class Pixel>
void SampleRun(const SourceGrid &source, const PositionRun &run, Pixel *to) {
    if (run.Count < 1)
        return;
    const PositionRun turned = {run.Y, run.X, run.RowY, run.RowX, run.Count};
    const PositionRun &used = source.IsTurned ? turned : run;
    switch (source.Access) {
    case NeighbourAccess::Pairs:
        return SampleAtLevel<NeighbourAccess::Pairs>(source, used, to);
    case NeighbourAccess::Steps:
        return SampleAtLevel<NeighbourAccess::Steps>(source, used, to);
    case NeighbourAccess::ByTable:
        return SampleAtLevel<NeighbourAccess::ByTable>(source, used, to);
    }
}

template SourceGrid SourceGrid::Of<char>(const Image::PlaneView &);
template SourceGrid SourceGrid::Of<unsigned char>(const Image::PlaneView &);
template SourceGrid SourceGrid::Of<short>(const Image::PlaneView &);
template SourceGrid SourceGrid::Of<unsigned short>(const Image::PlaneView &);
template SourceGrid SourceGrid::Of<Image::ThreeBytes>(const Image::PlaneView &);

template void SampleRun(const SourceGrid &, const PositionRun &, char *);
template void SampleRun(const SourceGrid &, const PositionRun &, unsigned char *);
template void SampleRun(const SourceGrid &, const PositionRun &, short *);
template void SampleRun(const SourceGrid &, const PositionRun &, unsigned short *);
template void SampleRun(const SourceGrid &, const PositionRun &, Image::ThreeBytes *);

} // namespace Transformations

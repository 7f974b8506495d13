// Sampling in fixed point where all four pixels of every position lie inside the source: no tests, and many pixels at
// a time. The same bytes as the plain step's.
#pragma once

#include "Image/PlaneView.h"
#include "Image/RowKernels.h"
#include "Transformations/InsideColumns.h"

namespace Transformations {

/// Some neighbouring pixels of a row of the result: positions are the sums of the columns' terms and the row's, which
/// come with the rounding. Sums are taken in 32 bits and wrap: where the true sum is inside the source, it comes out.
struct PositionRun {
    const std::int32_t *X;
    const std::int32_t *Y;
    std::uint32_t RowX;
    std::uint32_t RowY;
    std::intptr_t Count;
};

/// How the four pixels of a position are reached.
enum class NeighbourAccess {
    Pairs,  ///< by steps, left and right neighbour as one
    Steps,  ///< by steps, each on its own
    ByTable ///< through the table
};

/// A source, as the loops see it.
struct SourceGrid {
    const char *Base; ///< with steps, the address of pixel (0, 0)
    const VPAEntry *Table;
    std::int32_t XStep;
    std::int32_t YStep;
    NeighbourAccess Access;
    bool IsTurned; ///< x and y of steps and positions are exchanged, which makes pairs of pixels above each other
    std::int32_t ReachBeyond; ///< pixels behind a pair that are read along, in the direction of the pair

    /// The positions that may be sampled.
    PixelWindow Inner(const Image::PlaneView &source) const;

    /// Pixel is a type of 8 or 16 bits, or Image::ThreeBytes.
    template <class Pixel>
    static SourceGrid Of(const Image::PlaneView &source);
};

/// Samples a run of positions in the inner window into to. Nothing but pixels of the source is read.
template <class Pixel>
void SampleRun(const SourceGrid &source, const PositionRun &run, Pixel *to);

} // namespace Transformations

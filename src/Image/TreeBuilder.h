// Builds the trees of images that own their memory, one function per memory layout.
// Every builder cleans up what it built when memory is short, and passes the exception on.
#pragma once

#include "Image/ImageObject.h"
#include "Image/TableWriter.h"
#include "Persistence/Tree/NodeHolder.h"

namespace Image {

/// The form of a tree image; sizes are at most 31 bits, as the root keeps them.
struct TreeForm {
    std::intptr_t Planes;
    std::int32_t Width;
    std::int32_t Height;
};

/// A bitmap's pixels as its header tells them.
struct BitmapGeometry {
    std::int32_t Width;
    std::int32_t Height; ///< rows, never negative
    bool BottomUp;       ///< the last row stands first in memory
    std::intptr_t PixelBytes;
    std::intptr_t Stride; ///< bytes of a row; the last ones may be padding
};

/// False for a header whose pixels are not 8, 24 or 32 bits wide, that has no pixel, or is too large.
bool GeometryOf(const TBitmapInfoHeader &header, BitmapGeometry &geometry);

/// Makes the tree of a bitmap from its description: 1 plane for 8 bits, else 3 planes R, G, B over B, G, R memory.
/// The result has no planes when the header has no geometry.
Persistence::NodeHolder<TSimpleDIB> BuildBitmap(Persistence::NodeHolder<TDIBInfo> info);

/// Makes 8-bit planes with a padded, bottom-up block each.
Persistence::NodeHolder<TImageObject> BuildSeparatePlanes(const TreeForm &form);

/// Makes planes of any data type, top-down and without padding. A non-zero interlace is added to the offset of every
/// second row, and the row step is that of the row pairs' halves.
Persistence::NodeHolder<TImageObject> BuildTypedPlanes(const TreeForm &form, TDataType datatype,
                                                       std::intptr_t interlace = 0);

/// Fills a typed plane's table: rows 2k at k * yStep and rows 2k + 1 at k * yStep + interlace where interlace isn't
/// 0.
void WriteTypedTable(VPAEntry *table, std::int32_t width, std::int32_t height, std::intptr_t xStep,
                     std::intptr_t yStep, std::intptr_t interlace);

} // namespace Image

// Tells whether an image's pixels stand in memory as a bitmap file has them, so that its rows can be written as they
// are.
#pragma once

#include <optional>

#include "Image/VpatAnalyzer.h"

namespace Persistence {

/// Rows of B, G, R (and one byte more where pixels are 4 bytes wide) or of single bytes, at a constant distance.
struct BmpLayout {
    std::intptr_t Planes; ///< 1 or 3
    std::intptr_t Width;
    std::intptr_t Height;
    const unsigned char *FirstRow; ///< the lowest byte of the pixel (0, 0)
    std::intptr_t PixelBytes;      ///< 1, 3 or 4
    std::intptr_t PitchBytes;      ///< from a row to the next; may be negative or 0

    const unsigned char *Row(std::intptr_t y) const { return FirstRow + y * PitchBytes; }
    std::intptr_t RowBytes() const { return Width * PixelBytes; }
    /// The row with the highest address.
    std::intptr_t HighestRow() const { return PitchBytes < 0 ? 0 : Height - 1; }
    const unsigned char *LowestAddress() const { return PitchBytes < 0 ? Row(Height - 1) : FirstRow; }
};

/// The layout of an image of one or three 8-bit planes, at least 1 x 1. Nothing unless the planes have equal column
/// steps and equal row steps, the column step is the plane count (or 4 with three planes), and three planes stand as
/// B, G, R; nothing also when the image does not give its tables.
std::optional<BmpLayout> AnalyzeBmpLayout(const Interface::ImageHolder &image);

} // namespace Persistence

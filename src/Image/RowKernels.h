// The inner loops of plane copies on dense memory. Any address may be unaligned.
#pragma once

#include <cstdint>

namespace Image {

/// The pixel of three interleaved 8-bit planes.
struct ThreeBytes {
    std::uint8_t Bytes[3];
};

/// Copies count elements in reverse order; the memory must be disjoint.
template <class T>
void ReverseRow(char *target, const char *source, std::intptr_t count);

/// Turns a tile of up to 64 x 64 elements: element j of source line i goes to element i of target row j.
/// targetRows     start of each target row; the tile begins targetOffset bytes behind it.
/// source, pitch  element 0 of source line 0, and bytes from a line to the next.
/// lines, rows    source lines (elements of a target row), and elements of a source line (target rows).
template <class T>
void TransposeTile(char *const *targetRows, std::intptr_t targetOffset, const char *source, std::intptr_t pitch,
                   std::intptr_t lines, std::intptr_t rows);

} // namespace Image

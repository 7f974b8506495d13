// The one writer of plane tables: linear entries, and the guard entries that close every table.
#pragma once

#include <algorithm>

#include "ORVTypes.h"

namespace Image {

/// Guard entries at each end of a table.
inline constexpr std::intptr_t GuardEntries = 4;

/// Records of the table of an image, guards included. False when their bytes do not fit a machine word.
[[nodiscard]] bool TableRecords(std::intptr_t width, std::intptr_t height, std::size_t &records);

/// The offsets of one axis: start + i * step, in wrapping arithmetic.
struct AxisOffsets {
    std::intptr_t Start = 0;
    std::intptr_t Step = 0;
};

/// Repeats the nearest entry in the four places before and behind each axis. The last step of every table.
inline void WriteGuardEntries(VPAEntry *table, std::intptr_t width, std::intptr_t height) {
    if (width > 0)
        for (std::intptr_t i = 0; i < GuardEntries; ++i) {
            table[-1 - i].XEntry = table[0].XEntry;
            table[width + i].XEntry = table[width - 1].XEntry;
        }
    if (height > 0)
        for (std::intptr_t i = 0; i < GuardEntries; ++i) {
            table[-1 - i].YEntry = table[0].YEntry;
            table[height + i].YEntry = table[height - 1].YEntry;
        }
}

/// Fills a whole table block of max(width, height) + 8 records; table points at entry 0, four records in. The entries
/// that the shorter axis does not use become 0.
void WriteLinearTable(VPAEntry *table, std::intptr_t width, std::intptr_t height, AxisOffsets x, AxisOffsets y);

} // namespace Image

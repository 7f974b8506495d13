// The one look at the entries of a table: whether those of an axis all stand equally far apart.
#pragma once

#include <array>
#include <cstdint>

#include "ORVTypes.h"

namespace Image {

/// later - earlier, wrapping.
inline std::intptr_t Step(std::intptr_t later, std::intptr_t earlier) {
    return static_cast<std::intptr_t>(static_cast<std::uintptr_t>(later) - static_cast<std::uintptr_t>(earlier));
}

/// Bytes from each column, and from each row, to the next.
struct TableSteps {
    std::intptr_t X;
    std::intptr_t Y;

    bool operator==(const TableSteps &) const = default;
};

/// A rectangle of a table: XEntry of Width columns and YEntry of Height rows.
struct TablePart {
    const VPAEntry *Columns;
    std::intptr_t Width;
    const VPAEntry *Rows;
    std::intptr_t Height;
};

/// From the first entry of each axis to the second; 0 for an axis with fewer than two.
TableSteps FirstSteps(const TablePart &part);

/// The common step of each axis, or 0. Differences wrap. Cost: one pass over the entries.
TableSteps CommonSteps(const TablePart &part);

/// CommonSteps at one instruction set level. All levels give the same; a test can list and call each.
struct StepFinder {
    const char *Name;
    bool IsAvailable; ///< on this processor
    TableSteps (*Find)(const TablePart &part);
};
/// The quickest first; the last one is for every x86-64 processor.
const std::array<StepFinder, 3> &StepFinders();

} // namespace Image

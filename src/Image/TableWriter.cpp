#include "Image/TableWriter.h"

#include "CheckedSize.h"

namespace Image {
namespace {

/// start + i * step without overflow in the language's sense.
std::intptr_t OffsetAt(AxisOffsets axis, std::intptr_t index) {
    return static_cast<std::intptr_t>(static_cast<std::uintptr_t>(axis.Start) +
                                      static_cast<std::uintptr_t>(index) * static_cast<std::uintptr_t>(axis.Step));
}

} // namespace

bool TableRecords(std::intptr_t width, std::intptr_t height, std::size_t &records) {
    const auto longer = static_cast<std::size_t>(std::max({width, height, std::intptr_t{0}}));
    std::size_t bytes = 0;
    return orvBase::CheckedSum(records, longer, std::size_t{2 * GuardEntries}) &&
           orvBase::CheckedProduct(bytes, records, sizeof(VPAEntry));
}

void WriteLinearTable(VPAEntry *table, std::intptr_t width, std::intptr_t height, AxisOffsets x, AxisOffsets y) {
    const std::intptr_t shorter = std::min(width, height);
    const std::intptr_t longer = std::max(width, height);
    for (std::intptr_t i = -GuardEntries; i < 0; ++i)
        table[i] = {0, 0};
    for (std::intptr_t i = 0; i < shorter; ++i)
        table[i] = {OffsetAt(x, i), OffsetAt(y, i)};
    for (std::intptr_t i = shorter; i < width; ++i)
        table[i] = {OffsetAt(x, i), 0};
    for (std::intptr_t i = shorter; i < height; ++i)
        table[i] = {0, OffsetAt(y, i)};
    for (std::intptr_t i = longer; i < longer + GuardEntries; ++i)
        table[i] = {0, 0};
    WriteGuardEntries(table, width, height);
}

} // namespace Image

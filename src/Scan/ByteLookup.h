// A table of 256 bytes looked up for each byte of an array, once per instruction set level. All levels give the same
// bytes; a test can list and call each.
#pragma once

#include <array>
#include <cstdint>

namespace Scan {

using ByteTable = std::array<std::uint8_t, 256>;

struct ByteLookup {
    const char *Name;
    bool IsAvailable; ///< on this processor, at the current level of kernels
    /// target[i] = table[source[i]] for i below count. The arrays may be unaligned, and share no memory.
    void (*Run)(const ByteTable &table, std::uint8_t *target, const std::uint8_t *source, std::intptr_t count);
};
/// The quickest first; the last one is for every x86-64 processor.
std::array<ByteLookup, 3> ByteLookups();

/// The quickest that is available.
void LookUp(const ByteTable &table, std::uint8_t *target, const std::uint8_t *source, std::intptr_t count);

} // namespace Scan

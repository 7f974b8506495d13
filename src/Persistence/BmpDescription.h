// What a bitmap file tells of itself, once it has been compared with what the file really holds.
#pragma once

#include <optional>

#include "Persistence/BmpFormat.h"
#include "Persistence/FileDescriptor.h"

namespace Persistence {

/// The form of a file whose pixels can be read. PixelBytes from PixelOffset on lie inside the file, so every size
/// made of these numbers is bounded by the file's own length.
struct BmpDescription {
    std::intptr_t Width;    ///< at least 1
    std::intptr_t Height;   ///< at least 1
    bool LastRowFirst;      ///< the order of the rows in the file
    std::intptr_t BitCount; ///< 8, 24 or 32
    std::uint64_t PixelOffset;
    std::size_t RowBytes;   ///< of a row in the file, with its padding to 4 bytes
    std::size_t PixelBytes; ///< of all rows
    BmpPalette Palette;     ///< all 0 where the file has none or ends before
};

/// Nothing for a file that is no bitmap, is of another kind than 8, 24 or 32 uncompressed bits in one plane, or has
/// fewer pixels than it claims.
std::optional<BmpDescription> DescribeBmp(const FileDescriptor &file);

} // namespace Persistence

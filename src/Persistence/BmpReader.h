// Windows bitmaps into images: 8, 24 and 32 bits, uncompressed. No RLE, no 1, 4 and 16 bits.
#pragma once

namespace Persistence {

/// The image of a bitmap file over a block of its own, with one reference; null for everything that is none. Neither
/// reports nor throws by itself; a failure to make the image of the finished block is reported by its maker.
/// 8 bits, palette i, i, i   one plane, the file's own rows.
/// 8 bits, palette of greys  one plane, mapped, rows not padded, first row first.
/// 8 bits, other palettes    the planes R, G, B over palette entries of 4 bytes, first row first.
/// 24 and 32 bits            the planes R, G, B over the file's own rows.
void *LoadBmp(const char *path);

} // namespace Persistence

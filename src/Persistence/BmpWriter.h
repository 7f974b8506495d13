// Images into Windows bitmaps: one plane of 8 bits with a grey palette, three planes with 24 or 32 bits.
#pragma once

namespace Persistence {

/// Writes an image whose planes are one or three of 8 bits.
/// image   only read. Pixels that do not stand as in a bitmap file are copied into a form that does.
/// path    a file that is there is replaced; a failure leaves it as it was, or no bitmap.
/// Result  false: no image; another form; the file can't be made, or not wholly written.
/// Rows    first row first, but for an image that is one dense block with the last row first: that block as it is.
/// 32 bits come from pixels 4 bytes apart; the fourth byte is written as it stands in memory.
bool WriteBmp(void *image, const char *path);

} // namespace Persistence

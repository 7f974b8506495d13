/* Reading and writing image files by name. This version handles Windows bitmaps (BMP); the native format, drivers
 * and the file plug-in are not built in yet, and their names fail as told below.
 * But for LoadImageFile's two parameter checks no failure is reported. File calls must not overlap in a process. */
#ifndef ORV_IMAGE_FILES_H
#define ORV_IMAGE_FILES_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Reads an image file. Its extension, without regard to case, chooses the format.
 *  path    the extension starts at the first "." behind the last separator ("/" or "\\") and ends before the next
 *          ".": "a.b.bmp" is no ".bmp". A name without "." and without a directory raises std::out_of_range. Null
 *          or empty, or a null out: reports ErrParameter, false, out untouched.
 *  out     the image with one reference; null when the file can't be read.
 *  Result  true when out is an image.
 *  .bmp    8, 24 and 32 bits, uncompressed, either row order; others give false. 8 bits with a grey palette give one
 *          plane, mapped through the palette; any other palette, 24 and 32 bits give the planes R, G, B.
 *  Hostile files are safe: no size in the file is believed beyond what the file really holds. */
ORV_API bool LoadImageFile(const char *path, void **out);

/** Writes an image file. The last four characters of the path, without regard to case, choose the format.
 *  image   null or no image: false.
 *  .bmp    one plane or three planes of 8 bits; anything else false. Pixels that lie 4 bytes apart are written as 32
 *          bits, with the byte between them.
 *  Result  true when the whole file was written. A file that exists is replaced; a failed write leaves it as it was,
 *          or one that is no bitmap. */
ORV_API bool WriteImageFile(void *image, const char *path);

/** Writes an image file through the file plug-in's lossy writer where the name stands for a lossy format.
 *  quality  handed to the plug-in.
 *  Result   false: no image, or no plug-in (this version loads none). */
ORV_API bool WriteLossyImageFile(void *image, const char *path, double quality);

ORV_END_C

#endif

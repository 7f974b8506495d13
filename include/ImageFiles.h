/* Reading and writing image files by name: Windows bitmaps (BMP), the library's own format (LMG), all others through
 * the optional library libORVFile.so, which is found at run time; drivers, which deliver an image.
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
 *  .lmg    the image as it was stored, see ImageStreams.h. A regular file only.
 *  .so, .gdv  a driver: it is loaded as the system's loader finds the path, and its GetImage gives the object.
 *  others  through the plug-in's GetImageFromFile. Without a plug-in the loader's message goes to standard error.
 *          Drivers and the plug-in are unloaded, once their objects are gone, when their CanUnload agrees; without
 *          CanUnload they give no object.
 *  Hostile files are safe: no size in the file is believed beyond what the file really holds. */
ORV_API bool LoadImageFile(const char *path, void **out);

/** Writes an image file. The last four characters of the path, without regard to case, choose the format.
 *  image   null or no image: false.
 *  .bmp    one plane or three planes of 8 bits; anything else false. Pixels that lie 4 bytes apart are written as 32
 *          bits, with the byte between them.
 *  .lmg    any image of pixels of 1, 2, 4 or 8 bytes, by value. What can't be duplicated is reported under
 *          CreateDuplicateImage. The file is written beside and takes its name when it is whole; a failed
 *          write leaves what was there. A path that can't be opened for writing: false.
 *  others  through the plug-in's SaveImageToFile, and its result; false without a plug-in.
 *  Result  true when the whole file was written. A file that exists is replaced; a failed write of a .lmg leaves
 *          it as it was, one of a .bmp leaves it so or as one that is no bitmap. */
ORV_API bool WriteImageFile(void *image, const char *path);

/** Writes an image file through the file plug-in's lossy writer where the name stands for a lossy format.
 *  quality  handed to the plug-in's SaveLossyImageToFile, for a name that its GetIsLossyFormatFileName knows. Any
 *           other name goes to WriteImageFile.
 *  Result   the plug-in's; false: no image, or no plug-in. A plug-in without these two functions gets all names in
 *           SaveImageToFile. */
ORV_API bool WriteLossyImageFile(void *image, const char *path, double quality);

ORV_END_C

#endif

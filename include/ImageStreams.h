/* Images in streams and in blocks of memory, in the library's own format; a .lmg file holds the same bytes.
 * Streams are C++ objects: see ObjectStreams.h. None of these calls may run beside another one of them, nor beside
 * LoadImageFile and WriteImageFile, in one process. Offsets beyond 31 bits and pixel blocks beyond 32 bits do not fit
 * the format. */
#ifndef ORV_IMAGE_STREAMS_H
#define ORV_IMAGE_STREAMS_H

#include "ORVTypes.h"

#ifdef __cplusplus
class CtkStream;
class TSList;
#else
typedef struct CtkStream CtkStream;
typedef struct TSList TSList;
#endif

ORV_BEGIN_C

/** Writes an image to a stream as it stands: nothing is copied or turned.
 *  image   an image with memory of its own. False for null and for all others: external, stitched and foreign images.
 *  table   a list that the objects of the image are entered in, so that pixels that planes share are stored once; the
 *          list keeps bare addresses and must not be released as a tree. Null: every plane stores its own copy.
 *  stream  takes the bytes from its position on. Null: false.
 *  Result  true when all was written.
 *  Raises  CtkExceptionObject when the stream takes too few bytes, and for a view, which has to be duplicated first;
 *          what the stream throws. Nothing is reported. */
ORV_API bool WriteImageStream(void *image, TSList *table, CtkStream *stream);

/** Reads an image from a stream.
 *  stream  read from its position up to the end of the image, no further. Null: false.
 *  table   a list as in writing, or null for an image that was written so.
 *  out     the image with one reference; untouched on failure. Null: false.
 *  Result  true when out is an image. Hostile streams are safe: no count and no size is believed, every offset is
 *          looked at, and what was read up to a failure is released. Nothing is reported.
 *  Raises  what the stream throws, but for the exceptions of this library's streams. */
ORV_API bool LoadImageStream(CtkStream *stream, TSList *table, void **out);

/** The reader of a format that is gone. Result: false, ErrGeneral reported. */
#ifdef __cplusplus
ORV_API bool LoadOLDImageStream(...);
#else
ORV_API bool LoadOLDImageStream();
#endif

/** The size that ImageToMemory needs.
 *  image   any image of pixels of 1, 2, 4 or 8 bytes, views too; only read.
 *  Result  bytes as a 32-bit number with its sign; 0 when the image can't be stored. What CreateDuplicateImage can't
 *          copy it reports under its own name. */
ORV_API intptr_t ImageToMemorySize(void *image);

/** Writes an image to a block of memory, pixels by value.
 *  buffer  takes ImageToMemorySize bytes. After a failure its contents are open. Null: false.
 *  Result  false: no image, or bufferSize bytes are too few. Reports as ImageToMemorySize. */
ORV_API bool ImageToMemory(void *image, void *buffer, size_t bufferSize);

/** Reads an image from a block of memory.
 *  buffer  only read; bytes behind the image are not looked at.
 *  out     the image with one reference; null when the block holds none. Safe for any bytes, as LoadImageStream.
 *  Result  true when out is an image. Nothing is reported. */
ORV_API bool MemoryToImage(const void *buffer, size_t size, void **out);

ORV_END_C

#endif

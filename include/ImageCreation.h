/* Making images: over memory of the caller's, and with memory of their own.
 * A handle that comes out carries one reference for the caller, who gives it back with ReleaseObject. */
#ifndef ORV_IMAGE_CREATION_H
#define ORV_IMAGE_CREATION_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Called once when an external image dies, on the thread that gave back the last reference. */
typedef void (*TImageReleaseCallback)(void *buffer, void *userData);

/** Wraps memory of the caller's as an image, without a copy.
 *  buffer      address of pixel (0, 0) of the plane first in memory order; the caller keeps the memory alive until
 *              release is called. With a negative pitch it is not the lowest address.
 *  bufferSize  bytes, compared with width x height x planes x bytes per pixel; 0 skips that test.
 *  width, height, planes   at least 1.
 *  datatype    of every plane.
 *  pitchX, pitchY, pitchPlane   bytes from a pixel, line, plane to the next; any sign, magnitude at least the bytes
 *              per pixel where the axis has more than one element. Their extent is not compared with bufferSize.
 *  planeOrder  null, or a permutation of 0 .. planes - 1: plane k of the memory is image plane planeOrder[k].
 *              {2, 1, 0} shows B, G, R memory as R, G, B.
 *  release     null, or called with buffer and userData when the last reference goes, views included.
 *  out         the image; untouched on failure, and release is not called then.
 *  Result      0, or the error word: 2 (ErrParameter cut to 16 bits) with one of the texts "Data pointer must not
 *              be NULL", "Inconsistent data", "Invalid dimension parameters", "X Pitch too small", "Y Pitch too
 *              small", "Z Pitch too small", "Sequence order is invalid"; 5 when a table can't be allocated. The
 *              failure is reported under this function's name. Offsets beyond 64 bits count as inconsistent data.
 *  Cost        16 bytes per column or row and plane. */
ORV_API int32_t CreateImageFromPointer(void *buffer, size_t bufferSize, intptr_t width, intptr_t height,
                                       intptr_t planes, TDataType datatype, intptr_t pitchX, intptr_t pitchY,
                                       intptr_t pitchPlane, const intptr_t *planeOrder, TImageReleaseCallback release,
                                       void *userData, void **out);

/** Makes an 8-bit image with memory of its own. The pixels are not cleared.
 *  planes      1: bitmap-compatible, rows padded to 4 bytes, last row first in memory; 3: the same with B, G, R
 *              interleaved, image planes R, G, B; any other count: a block per plane, laid out as for 1.
 *  overlay     marks every plane as an overlay plane (data type 0x408).
 *  out         the image. Set to null as soon as the arguments have proved not negative; untouched before.
 *  Result      false for a negative argument, a size beyond 31 bits per axis or beyond memory; no report. Width or
 *              height 0 with 1 or 3 planes gives true and a null handle (with overlay: false). */
ORV_API bool CreateGenericImage(intptr_t planes, intptr_t width, intptr_t height, bool overlay, void **out);

/** Makes an image of any data type with memory of its own: a block per plane, first row first, rows not padded.
 *  The pixels are not cleared. Arguments and failures as for CreateGenericImage; the data type word is taken as it
 *  is, its flags included. */
ORV_API bool CreateGenericImageDT(intptr_t planes, intptr_t width, intptr_t height, TDataType datatype, void **out);

ORV_END_C

#endif

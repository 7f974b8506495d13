/* Overlays: graphics in bit 0 of the pixels of integer planes. A plane that carries one has the flag
 * DataTypeOverlay in its data type, which makes its type differ from that of a plain plane.
 * Result of all: 1, or 0 with a report. What the operations of an image of the caller's own class throw passes on. */
#ifndef ORV_OVERLAYS_H
#define ORV_OVERLAYS_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Makes a copy of an image with bit 0 of all pixels cleared, the overlay flag set and the source's coordinate map.
 *  result  the copy with one reference; untouched on failure. ErrParameter for null.
 *  Errors  ErrNotAnImage; ErrGeneral when the copy can't be made or the image refuses a plane; ErrDataType for each
 *          plane of float pixels, or of pixels that are not 1, 2, 4 or 8 bytes wide: it is not copied, and the plane
 *          of the result not set. When other planes were copied, the code 1 is reported last and the result is 1.
 *          When none was, ErrDataType is reported last and the result is 0.
 *  Threads safe beside other readers of image. */
ORV_API int32_t CreateOverlayImage(void *image, void **result);

/** Copies bit 0 of each pixel from one image to another of the same size and plane count, in place; all other bits
 *  of the target stay, and the widths of the pixels may differ. The overlay flags are neither needed nor changed.
 *  Of an image onto itself, it clears the bits.
 *  Errors   ErrNotAnImage; ErrIndexRange when plane counts, widths or heights differ; ErrGeneral when either image
 *           refuses a plane; ErrDataType for each plane that is float in either image, or not 1, 2, 4 or 8 bytes
 *           wide: it is left out. When others were done, the code 1 is reported last and the result is 1. When none
 *           was, ErrDataType is reported last and the result is 0.
 *  Threads  the caller keeps other threads away from the target. */
ORV_API int32_t CopyOverlay(void *source, void *target);

ORV_END_C

#endif

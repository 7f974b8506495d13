/* Copying rectangles of pixels between images of any table layout and equal data types.
 * Exactly the pixels of the clipped rectangle are written, and not one byte else. */
#ifndef ORV_RECTANGLE_COPY_H
#define ORV_RECTANGLE_COPY_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Copies a rectangle of one plane into a plane of another image, or of the same.
 *  left to bottom    the rectangle in source pixels, edges included; swapped where left > right or top > bottom,
 *                    and clipped to the source.
 *  targetX, targetY  where its left upper corner goes; what does not fit the target is not copied. A corner left
 *                    of or above the target is not supported: nothing but pixels of the target is written then.
 *  Result            true, also when nothing was left to copy. False with a report: ErrNotAnImage; ErrPlaneIndex;
 *                    ErrDataType when the data types differ; 0x1C for pixels that would have to go one by one and
 *                    are not 1, 2, 4 or 8 bytes wide; ErrGeneral for anything else.
 *  Cost              O(width + height) of both images for the choice of the method; then one block move for whole
 *                    lines of equal layout, one per line for dense pixels, else a loop over the pixels. */
ORV_API bool CopyImageRect(void *source, void *target, intptr_t sourcePlane, intptr_t targetPlane, int32_t left,
                           int32_t top, int32_t right, int32_t bottom, int32_t targetX, int32_t targetY);

/** Copies a rectangle of all planes that both images have, plane by plane or, where the planes of both are
 *  interleaved alike, all at once.
 *  Result  as CopyImageRect; where planes go one by one true also when one of them failed, each failure being
 *          reported under CopyImageRect. */
ORV_API bool CopyImageRectPlanes(void *source, void *target, int32_t left, int32_t top, int32_t right, int32_t bottom,
                                 int32_t targetX, int32_t targetY);

ORV_END_C

#endif

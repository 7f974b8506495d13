/* Filling and copying the pixels of a parallelogram. The pixels are those of the walks of ImageScan.h at density
 * 1000, always in pixel coordinates. Pixels outside the image are left out without a report.
 * Result of all: 1, or 0 with a report. What the operations of an image of the caller's own class throw passes on.
 * Errors   ErrNotAnImage for an image without IImageVPA; ErrPlaneIndex for a plane out of range; ErrDataType for
 *          pixels that are none of the ten types; ErrGeneral for an image that refuses a plane.
 * Threads  the caller keeps other threads away from the pixels written. */
#ifndef ORV_AREA_OPERATIONS_H
#define ORV_AREA_OPERATIONS_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Copies an area of a plane, so that its corner P0 comes to (targetX, targetY) of the target.
 *  source and target may be one image: pixels are then read and written in the order of the walk.
 *  area    pixel coordinates of the source. A column or row directly behind the smaller of both images is written
 *          through the table's guard entries, onto the last one.
 *  Errors  also ErrNotPossible when the data type words of the two planes differ in any bit. An area out of
 *          range, and a walk that copied one pixel only and left others out, give 0 without a report. */
ORV_API int32_t CopyImageArea(void *source, void *target, intptr_t sourcePlane, intptr_t targetPlane, int64_t targetX,
                              int64_t targetY, TArea area);

/** Sets the pixels of an area to a value.
 *  value   its low 8, 16 or 32 bits are stored; for 64-bit and float pixels it goes through a double, so that 53 bits
 *          of it survive.
 *  Type    the data type of plane 0 decides how the value is stored. Where it does not fit the plane's own width:
 *          integers of 1, 2 and 4 bytes are refused with ErrNotPossible when the plane's pixels are narrower;
 *          other types store nothing.
 *  Result  1 once the fill began, whatever part of the area lay inside. */
ORV_API int32_t InitializeImageArea(void *image, intptr_t plane, int64_t value, TArea area);

/** The same with a real value. Integers drop the fraction and then the bits above their width: on 8 bits, 300.7 is
 *  stored as 44 and -1.5 as 255. No number, and a value beyond 32 bits (64 bits for unsigned 32-bit and for wider
 *  pixels), stores the low bits of the lowest integer. A plane whose pixels are not as wide as those of plane 0 is
 *  left as it is. */
ORV_API int32_t InitializeImageAreaEx(void *image, intptr_t plane, double value, TArea area);

ORV_END_C

#endif

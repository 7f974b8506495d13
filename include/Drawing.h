/* Lines, circles and ellipses drawn into a plane of an image, and filling of regions. Planes of integers up to 64
 * bits and of floating point of 32 or 64 bits.
 * Coordinates, radii and thickness are pixels, of which the low 32 bits count as signed numbers. What lies outside
 * the image is left out, except by lines one pixel thick, see DrawLineInImage.
 * value     limited to what the pixel's type holds, once per call: unsigned b bits 0 to 2^b - 1; signed b bits
 *           -(2^(b-1) - 1) to 2^(b-1) - 1, so that the lowest integer can't be drawn. Fractions are dropped.
 * drawMode  0: pixel = value. On integers also 1: pixel AND value, 2: pixel OR value; on floating point these are
 *           as 0. Else ErrParameter "Unsupported draw mode".
 * antiAlias 0; else ErrUnsupportedMode "Unsupported anti-alias mode", before anything else but the image is looked
 *           at.
 * Result of all: 0, or the error code that was reported: ErrNotAnImage; ErrUnsupportedMode; ErrIndexRange for a plane
 *           number out of range; ErrParameter; ErrDataType "Unsupported image data type: ..."; ErrNotAnImage also for
 *           an image that refuses its size or a plane; ErrGeneral for all else. Pixels already written stay written.
 * Threads   the caller keeps other threads away from the plane. */
#ifndef ORV_DRAWING_H
#define ORV_DRAWING_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Draws a line.
 *  x0, y0, x1, y1  the end points. One pixel thick, the last point itself is not drawn, unless it is the first one,
 * too. thickness       from 1. Thicker lines are rectangles that reach about half the thickness beyond both points.
 *                  Below 1: ErrParameter "Line thickness must be larger than zero".
 *  A line one pixel thick that leaves a plane with equal steps between all columns and between all rows at the side
 *  goes on in the rows beside; no byte that is not of a pixel of the plane, or between two of them, is touched. */
ORV_API int32_t DrawLineInImage(void *image, intptr_t plane, intptr_t x0, intptr_t y0, intptr_t x1, intptr_t y1,
                                intptr_t thickness, uint32_t drawMode, uint32_t antiAlias, double value);

/** Draws the outline of an ellipse, as a polygon of lines.
 *  radiusA, radiusB  the half axes. Both negative: ErrParameter "Radii must not be negative".
 *  rotation          radians, from the x axis towards the y axis, of axis A. */
ORV_API int32_t DrawEllipseInImage(void *image, intptr_t plane, intptr_t centreX, intptr_t centreY, intptr_t radiusA,
                                   intptr_t radiusB, intptr_t thickness, uint32_t drawMode, uint32_t antiAlias,
                                   double rotation, double value);

/** Fills an ellipse. Parameters as above. */
ORV_API int32_t FillEllipseInImage(void *image, intptr_t plane, intptr_t centreX, intptr_t centreY, intptr_t radiusA,
                                   intptr_t radiusB, uint32_t drawMode, uint32_t antiAlias, double rotation,
                                   double value);

/** DrawEllipseInImage with both radii equal and without rotation; reports under that name. */
ORV_API int32_t DrawCircleInImage(void *image, intptr_t plane, intptr_t centreX, intptr_t centreY, intptr_t radius,
                                  intptr_t thickness, uint32_t drawMode, uint32_t antiAlias, double value);

/** FillEllipseInImage with both radii equal and without rotation; reports under that name. */
ORV_API int32_t FillCircleInImage(void *image, intptr_t plane, intptr_t centreX, intptr_t centreY, intptr_t radius,
                                  uint32_t drawMode, uint32_t antiAlias, double value);

/** Fills the region around a point with a value, up to pixels that have that value already, over the four neighbours
 *  of each pixel.
 *  x, y       where to begin. Outside the image, or on a pixel that bounds: nothing is written, result 0.
 *  value      what bounds the region and, limited as above, what is written: the value written is that of the first
 *             fill of the pixel type in the process, whatever later calls say. Use one value per type and process.
 *  tolerance  0. Positive: every pixel bounds, so that nothing is written. Negative: pixels bound that are as far
 * from value or farther. */
ORV_API int32_t FloodFillMono(void *image, intptr_t plane, intptr_t x, intptr_t y, double value, double tolerance);

ORV_END_C

#endif

/* Walks over a parallelogram of pixels that call the caller back for each of them.
 *
 * The walk. The three points of an area are rounded to pixels: P0, the end P1 of the first edge, along which a line
 * runs, and the end P2 of the second edge, along which lines follow each other. A line has
 * trunc(length * density / 1000) + 1 samples, where length is the longer of the first edge's extents in x and y;
 * lines lie as far apart that a sample stands for as much area in both directions. Positions are 16.16 fixed-point
 * numbers, whose steps are never 0: a line along an axis drifts by 1/65536 of a pixel per sample. Samples outside the
 * image are left out, and make the result negative. Of the coordinate that a line starts from on its longer axis 16
 * bits count: a line that starts left of or above the image is left out whole, unless the image is so wide or high
 * that it meets coordinate + 65536. Starts are aligned to the pixel grid, so a slanting first line can pass P0 by a
 * pixel.
 *
 * Arguments of all four
 *  area                 pixel coordinates of the first image, or, where useCoordinateSystem is not 0, coordinates of
 *                       its coordinate system. Points that are no finite numbers, or beyond the range that
 *                       BoundingRectangle accepts, give -1 without a report or a walk without samples.
 *  density              samples per 1000 pixels of an edge: 1000 all, 500 every second one. 0 counts as 1, anything
 *                       above 1000 as 1000.
 *  pixelCallback        called for each sample inside; null: no pixel is touched, and the line callbacks are called
 *                       for each line.
 *  lineBeginCallback, lineEndCallback   called before and behind each line with the number of lines left, this one
 *                       included; null where not wanted.
 *  A callback that gives 0 ends the walk: one of a line's begin without a call of the line's end, one of a pixel
 *  after it. A callback must not write to the tables. What it throws passes on to the caller.
 *  privateData          handed to each callback.
 * Result     the number of pixels handed to pixelCallback, made negative when a sample lay outside; 0 without a
 *            pixelCallback; -1 on failure. A walk of one pixel that left others out gives -1, too.
 * Errors     ErrNotAnImage for an image without IImageVPA; ErrElementIndex for a plane out of range; ErrParameter for
 *            a negative density; ErrGeneral for an image that refuses a plane's table or its coordinate system.
 * Threads    any number of walks at once over images that nobody writes. Each image is kept alive for the time of
 *            the walk, also when a callback gives back the caller's own reference. */
#ifndef ORV_IMAGE_SCAN_H
#define ORV_IMAGE_SCAN_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** pixel is the address of pixel (x, y). Result: 0 ends the walk. */
typedef unsigned char (*TScanPlaneUnaryCallback)(void *privateData, void *pixel, int32_t x, int32_t y);
/** pixel1 is the address of pixel (x, y) of the first image, pixel2 of (x + dx, y + dy) of the second one. */
typedef unsigned char (*TScanPlaneBinaryCallback)(void *privateData, void *pixel1, void *pixel2, int32_t x,
                                                  int32_t y);
/** pixels holds the address of pixel (x, y) of each plane, and a null pointer behind the last one. */
typedef unsigned char (*TScanImageUnaryCallback)(void *privateData, void **pixels, int32_t x, int32_t y);
/** pixels1 as above; pixels2 the same of pixel (x + dx, y + dy) of the second image. */
typedef unsigned char (*TScanImageBinaryCallback)(void *privateData, void **pixels1, void **pixels2, int32_t x,
                                                  int32_t y);
/** linesLeft counts down to 1, which is the last line. Result: 0 ends the walk. */
typedef unsigned char (*TScanLineCallback)(void *privateData, int64_t linesLeft);

/** Walks over an area of one plane. */
ORV_API int64_t ScanPlaneUnary(void *image, intptr_t plane, TArea area, int64_t density,
                               unsigned char useCoordinateSystem, TScanPlaneUnaryCallback pixelCallback,
                               TScanLineCallback lineBeginCallback, TScanLineCallback lineEndCallback,
                               void *privateData);

/** Walks over an area of a plane and in step over a plane of another image, or of the same.
 *  dx, dy  from a pixel of the first image to its partner in the second.
 *  A sample one column or row behind the smaller image still counts as inside: there, the guard entries of the tables
 *  lead to the last column or row. */
ORV_API int64_t ScanPlaneBinary(void *image1, void *image2, intptr_t plane1, intptr_t plane2, TArea area,
                                int64_t density, int64_t dx, int64_t dy, unsigned char useCoordinateSystem,
                                TScanPlaneBinaryCallback pixelCallback, TScanLineCallback lineBeginCallback,
                                TScanLineCallback lineEndCallback, void *privateData);

/** Walks over an area of all planes at once. A plane whose base address is null ends the list of planes. */
ORV_API int64_t ScanImageUnary(void *image, TArea area, int64_t density, unsigned char useCoordinateSystem,
                               TScanImageUnaryCallback pixelCallback, TScanLineCallback lineBeginCallback,
                               TScanLineCallback lineEndCallback, void *privateData);

/** Walks over an area of all planes of an image and in step over those of another, or of the same. The two may have
 *  different numbers of planes. */
ORV_API int64_t ScanImageBinary(void *image1, void *image2, TArea area, int64_t density, int64_t dx, int64_t dy,
                                unsigned char useCoordinateSystem, TScanImageBinaryCallback pixelCallback,
                                TScanLineCallback lineBeginCallback, TScanLineCallback lineEndCallback,
                                void *privateData);

/* Kept for older callers: these take any arguments, do nothing and report at once. */
#ifdef __cplusplus
#define ORV_ANY_ARGUMENTS ...
#else
#define ORV_ANY_ARGUMENTS
#endif

/** Result: 0, ErrNotPossible reported. */
ORV_API int64_t Iterate(ORV_ANY_ARGUMENTS);
/** Result: -1, ErrNotPossible reported. */
ORV_API int64_t Scan1_Area(ORV_ANY_ARGUMENTS);
/** Result: -1, ErrNotPossible reported. */
ORV_API int64_t Scan1_All(ORV_ANY_ARGUMENTS);
/** Result: -1, ErrNotPossible reported. */
ORV_API int64_t Scan2_All(ORV_ANY_ARGUMENTS);
/** Result: 0, ErrNotPossible reported. */
ORV_API int64_t BinaryImageOperator(ORV_ANY_ARGUMENTS);
/** Result: 0, ErrGeneral reported. */
ORV_API int64_t FillPlane(ORV_ANY_ARGUMENTS);

#undef ORV_ANY_ARGUMENTS

ORV_END_C

#endif

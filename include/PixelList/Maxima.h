/* Local maxima of an image as pixel lists of dimension 3 (x, y, value), and the order of lists.
 * Rectangles are pixel coordinates of the image, the last column and row included.
 * No exception leaves these functions: ErrGeneral when memory runs out or an image of the caller's own class throws.
 * Threads  a search is safe beside other readers of the image; sorting needs the list for itself. */
#ifndef ORV_PIXEL_LIST_MAXIMA_H
#define ORV_PIXEL_LIST_MAXIMA_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** How the position of a maximum is refined to fractions of a pixel. Any other value acts as FitNone. */
ORV_CONSTANT uint32_t FitNone = 0;       /**< not at all */
ORV_CONSTANT uint32_t FitQuadratic = 1;  /**< one step of a Taylor series of second order over 3 x 3 pixels */
ORV_CONSTANT uint32_t FitParaboloid = 2; /**< least squares: a circular paraboloid over the window */
ORV_CONSTANT uint32_t FitGaussian = 3;   /**< the same on the logarithms of the pixels */

/** Finds the local maxima of a plane of signed or unsigned 8-bit or 16-bit, or signed 32-bit pixels. A maximum is a
 *  pixel, or a connected area of equal pixels, with no greater one among its eight neighbours; an area is
 *  found at its first pixel, row by row. Rows top and bottom are walls where x is below right: nothing in them is
 *  found, nor are areas that touch them compared with what lies behind.
 *  left, top, right, bottom  swapped where they are in the wrong order, and clipped; a right or bottom of 0, or
 *             below, stands for the last column or row.
 *  Locality   below 1: all maxima, in ascending order of value, equal ones row by row. Else a maximum is left out
 *             that has one of greater value, or an equal one further on, within this distance in x and in y;
 *             so is one of value 0. The order is descending then.
 *  Threshold  the least value that counts.
 *  list       one reference; may be empty. Null: ErrParameter. Null also after a failure once the list was made.
 *  Result     -1, or 0: ErrNotAnImage; ErrPlaneIndex; ErrDataType for floating point and for more than 32 bits;
 *             without a report for unsigned 32-bit pixels, and when there is no memory for the marks. */
ORV_API int32_t FindMaxima(void *image, intptr_t plane, int64_t left, int64_t top, int64_t right, int64_t bottom,
                           int64_t Locality, int64_t Threshold, void **list);

/** FindSubPixelMaxima with FitNone; reports under that name. */
ORV_API bool FindMaximaEx(void *image, intptr_t plane, int64_t left, int64_t top, int64_t right, int64_t bottom,
                          int64_t Locality, void **list, double Threshold);

/** Finds the local maxima of a plane of any of the ten pixel types, strongest first, equal ones row by row. A pixel
 *  is a candidate when it is at least Threshold and none of its eight neighbours inside the rectangle is greater; so
 *  each pixel of an area of equal ones is. The strongest candidate is taken, all within Locality of it in x and in y
 *  are dropped, and so on. A pixel of the lowest value of its type is never taken.
 *  left, top, right, bottom  swapped where they are in the wrong order, and clipped to the image.
 *  Locality   below 0 acts as 0: every candidate is taken.
 *  fitMode    one of the Fit constants. FitQuadratic on integers computes differences in the pixel's own type: on
 *             unsigned pixels they wrap, so that the step has a meaning on floating point first of all.
 *             FitParaboloid and FitGaussian set the value, too. A fit that fails leaves the pixel as it was. Least
 *             squares are computed in coordinates of the image and lose accuracy far from its origin.
 *             FitGaussian wants pixels above 0. It lifts a window that reaches lower by as much as that takes; where
 *             rounding leaves the lowest pixel at 0, mostly from -2 down, the result is no number.
 *  Radius     of the fitted window, 0 to 4; 0 acts as FitNone. Beyond the edges the window repeats the edge's pixels.
 *  Threshold  truncated towards zero for integer pixels, then cast to their type: -1 is 255 for unsigned bytes.
 *  list       one reference; may be empty; untouched on failure. Null: ErrParameter.
 *  Errors     in this order: ErrParameter for a Radius out of range; ErrNotAnImage; ErrPlaneIndex; ErrDataType;
 *             ErrGeneral when there is no view of the rectangle. */
ORV_API bool FindSubPixelMaxima(void *image, intptr_t plane, int64_t left, int64_t top, int64_t right, int64_t bottom,
                                int64_t Locality, uint32_t fitMode, int32_t Radius, void **list, double Threshold);

/** Sorts by component 2, descending. The order among equal values is any.
 *  Errors: ErrNotAPixelList; ErrDimension for a list of dimension 2. */
ORV_API bool SortPixelsByValue(void *list);

/** Sorts along a direction, ascending in x * dx + y * dy. The order among equal ones is any.
 *  Errors: ErrNotAPixelList; ErrDimension for a list of dimension 2, though component 2 is not looked at. */
ORV_API bool SortPixelsByPosition(void *list, int64_t dx, int64_t dy);

/** Sorts ascending in the product of all components with a vector of as many. The order among equal ones is any.
 *  Errors: ErrNotAPixelList; ErrParameter for a null vector. */
ORV_API bool SortPixelsEx(void *list, const double *vector);

/** Sorts with SortPixelsEx, then removes each pixel that lies within a distance in x and in y of one before it that
 *  stays. The distance itself counts as close.
 *  Errors, in this order: ErrParameter "projection vector missing"; ErrParameter "separation must be positive";
 *  ErrDimension "pixel list needs at least dimension 2", behind ErrNotAPixelList for a handle that is no list. */
ORV_API bool SeparatePixels(void *list, const double *vector, double separation);

ORV_END_C

#endif

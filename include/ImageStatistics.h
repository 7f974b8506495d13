/* Numbers and images that sum up the pixels of an image.
 * Result of all: 1, or 0 with a report; outputs are untouched on failure. What the operations of an image of the
 * caller's own class throw passes on.
 * Threads safe beside other readers of the image. */
#ifndef ORV_IMAGE_STATISTICS_H
#define ORV_IMAGE_STATISTICS_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Counts the grey values of an area of a plane of unsigned 8-bit integers.
 *  area       in the image's coordinate system; the part inside the image counts. Pixels are those of the walks of
 *             ImageScan.h.
 *  density    samples per 1000 pixels of an edge, at least 1; above 1000 counts as 1000.
 *  histogram  256 counters; cleared first. ErrParameter for null.
 *  Errors     ErrNotAnImage; ErrPlaneIndex; ErrDataType for any other data type; ErrGeneral for an image that refuses
 *             the data type. Also ErrGeneral, with the counters cleared and set as far as the walk came, for one that
 *             refuses the table, a density below 1, pixels of no width, an area out of range, and for a walk that
 *             counted one pixel only and left others out. */
ORV_API int32_t ImageHistogram(void *image, intptr_t plane, TArea area, int64_t density, uint64_t *histogram);

/** The least and the greatest value of all planes at each pixel.
 *  minimumImage, maximumImage  one plane each of the data type of plane 0, one reference each; identity coordinate
 *          map. All planes are read as that type. ErrParameter for null.
 *  Errors  ErrNotAnImage; ErrDataType for pixels that are none of the ten types; ErrNotPossible when a plane is
 *          narrower than plane 0; ErrGeneral when a result can't be made or the image refuses a plane. */
ORV_API int32_t CreateMinMaxImage(void *image, void **minimumImage, void **maximumImage);

/** The mean and the standard deviation of all planes at each pixel, computed in double:
 *  mean = sum / n, x = (sum of squares) / n - mean * mean, deviation = sqrt(x) + 0.5 where x > 0, else 0.
 *  Integer types drop the fraction of both: the mean is truncated, the deviation rounded. The half is added to
 *  deviations of float types, too.
 *  meanImage, deviationImage and errors as for CreateMinMaxImage. */
ORV_API int32_t CreateMeanVarianceImage(void *image, void **meanImage, void **deviationImage);

ORV_END_C

#endif

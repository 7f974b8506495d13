/* New images with the pixel values of others led to a wanted range.
 * Results keep width, height, plane count and coordinate map of their source.
 * Result of all: 1, or 0 with a report; outputs are untouched on failure. What the operations of an image of the
 * caller's own class throw passes on.
 * Threads safe beside other readers of image. */
#ifndef ORV_VALUE_MAPPING_H
#define ORV_VALUE_MAPPING_H

#include "ORVTypes.h"

/** Modes of CreateNormalizedImage. */
ORV_CONSTANT int32_t NormalizeMeanDeviation = 0;  /**< target1 the wanted mean, target2 the wanted deviation */
ORV_CONSTANT int32_t NormalizeMinimumMaximum = 1; /**< target1 the wanted minimum, target2 the wanted maximum */

ORV_BEGIN_C

/** Stretches the values of each plane, each by its own statistics: stored = value * gain + offset (+ 0.5 for
 *  integers, which are then truncated), limited to the range of the pixel type.
 *  mode 0  gain = target2 / deviation (1 where either is 0), offset = target1 - gain * mean. target1 is limited to
 *          the pixel type's range, target2 to 0 .. upper limit squared. The mean of a signed plane of 8 or 16 bits
 *          is taken 128 or 32768 too high, and squares of 32-bit integers wrap at 32 bits.
 *  mode 1  gain = (target2 - target1) / (maximum - minimum) (1 where either difference is 0), offset = target2 -
 *          gain * maximum. Both targets are limited to the pixel type's range; target1 above target2 inverts.
 *  result  the new image with one reference. ErrParameter for null.
 *  Errors  ErrNotAnImage; ErrGeneral when the result can't be made or the image refuses a plane; ErrDataType for a
 *          plane that is none of the ten types; ErrParameter "Unknown Normalization Mode specified". */
ORV_API int32_t CreateNormalizedImage(void *image, int32_t mode, double target1, double target2, void **result);

/** Scales an image of unsigned 16-bit planes down to 8 bits: stored = trunc(value * 255 / maximum), or 0 where the
 *  maximum is 0.
 *  commonScale  non-zero: maximum is that of all planes (of signed planes the greatest magnitude, of float planes
 *               that of the pixels cut to 32-bit integers), at most 65535; 0: each plane's own.
 *  result       an image of 8-bit planes with one reference; a plain duplicate where all planes have 8 bits already.
 *               Planes of any other type than unsigned 16 bits are 0 in it. ErrParameter for null.
 *  Errors       ErrNotAnImage; ErrGeneral when the result can't be made or the image refuses a plane. */
ORV_API int32_t MapTo8Bit(void *image, unsigned char commonScale, void **result);

ORV_END_C

#endif

/* Linear combinations of planes, and white balance.
 * Result of all: 1, or 0 with a report; outputs are untouched on failure. What the operations of an image of the
 * caller's own class throw passes on. */
#ifndef ORV_COLOR_TRANSFORMS_H
#define ORV_COLOR_TRANSFORMS_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Makes an image whose planes are linear combinations of the source's n planes:
 *  v = offset + pixel[0] * c[0] + ... + pixel[n - 1] * c[n - 1], in this order, in double. Integers store trunc(v +
 *  0.5), after v was limited.
 *  targetPlanes  number of planes of the result, 1 to 1048576; all of the data type of plane 0 of image.
 *  absolute      0: v is limited to the range of the pixel type. Otherwise v above the range becomes its upper
 *                limit, and v below it is reflected at the lower limit, which gives the magnitude for unsigned
 *                types; the reflected value is not limited again, only its low bits are stored.
 *  matrix        targetPlanes rows of n + 1 values: c[0] to c[n - 1] and the offset.
 *  result        the new image with one reference and the source's coordinate map. ErrParameter for null.
 *  Errors        ErrNotAnImage; ErrParameter "Invalid Target Dimension" for too many planes, "Invalid input Array"
 *                for a null matrix; ErrDataType for pixels that are none of the ten types; ErrNotPossible when a
 *                plane is narrower than plane 0; ErrGeneral when the result can't be made or the image refuses a
 *                plane.
 *  Threads       safe beside other readers of image. */
ORV_API int32_t CreateColorTransform(void *image, int64_t targetPlanes, unsigned char absolute, const double *matrix,
                                     void **result);

/** CreateColorTransform with one target plane; reports under that name.
 *  coefficients  one row: a value for each plane, and the offset. */
ORV_API int32_t CreateLinearCombinationImage(void *image, unsigned char absolute, const double *coefficients,
                                             void **result);

/** Measures planes 0, 1 and 2 of an area, and gives the gains that make their sums equal to the greatest of them.
 *  redGain, greenGain, blueGain  out: greatest sum / sum of planes 0, 1, 2; infinite for a sum of 0. ErrParameter for
 *          null.
 *  area    pixel coordinates; the part inside the image counts. Pixels are those of the walks of ImageScan.h.
 *  Sums    of integers are 64 bits wide and wrap; those of signed integers are then taken as unsigned and get half
 *          the range of the type added once, which for 32 bits is subtracted instead.
 *  Errors  ErrNotAnImage; ErrIndexRange for fewer than three planes; ErrDataType when the three differ in their data
 *          type, or are integers of more than 4 bytes, or none of the ten types; ErrGeneral for an area that no walk
 *          accepts, and for an image that refuses a plane.
 *  Threads safe beside other readers of image. */
ORV_API int32_t CalculateWhiteBalance(void *image, double *redGain, double *greenGain, double *blueGain, TArea area);

/** Multiplies planes 0, 1 and 2 by a gain each, in place.
 *  Gains   integer pixels are multiplied by trunc(gain * 256 + 0.5) and shifted right by 8 bits; the result is
 *          limited to the upper end of the type's range. Signed integers count from the lower end of their range;
 *          with 32 bits this count is a signed number itself, negative from pixel 0 on.
 *          Products wrap at 32 bits, those of 32-bit pixels at 64. float pixels use the gain in single precision.
 *  Errors  as CalculateWhiteBalance.
 *  Threads the caller keeps other threads away from the image. */
ORV_API int32_t ApplyWhiteBalance(void *image, double redGain, double greenGain, double blueGain);

ORV_END_C

#endif

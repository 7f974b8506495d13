/* Rings of an image unrolled into rectangles, and rolled up again.
 * Angles are degrees; they grow from the x axis towards the y axis, clockwise where y runs down. Radii and centres
 * are pixels. Sampling, edges and overlays are those of ImageTransformations.h; 8-bit and 16-bit pixels are
 * weighed with 4 fractional bits. Outside is 0x81 for 8 and 0x7FFF for 16 bits, 0x7FFFFFFF and 0x7FFFFFFFFFFFFFFF
 * for unsigned 32 and 64 bits, and 0 for all other pixels. */
#ifndef ORV_POLAR_TRANSFORMATIONS_H
#define ORV_POLAR_TRANSFORMATIONS_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Unrolls a sector of a ring: columns follow the angle, one pixel of arc each at the mean radius, and rows the
 *  radius, from the outer one inwards.
 *  angleStart  the first angle; angleRange: how far to go from there.
 *  out         the new image with one reference and the identity as coordinate system; untouched on failure. Null:
 *              ErrParameter.
 *  Size        floor((innerRadius + outerRadius) * pi * angleRange / 360 + 0.5) by floor(outerRadius - innerRadius
 *              + 2).
 *  Result      true; false without a report for a null image, and when the result can't be made or a plane has none
 *              of the ten pixel types; false with a report: ErrNotAnImage for any other handle that is no image,
 *              ErrDimension "Operation failed because target image would have width and/or height of 0".
 *  Threads     safe beside other readers of image. */
ORV_API bool CreatePolarImageEx(void *image, void **out, double centreX, double centreY, double angleStart,
                                double angleRange, double innerRadius, double outerRadius);

/** CreatePolarImageEx of the whole ring; reports under that name. */
ORV_API bool CreatePolarImage(void *image, void **out, double centreX, double centreY, double angleStart,
                              double innerRadius, double outerRadius);

/** Writes an unrolled ring into a ring of an image of the caller's.
 *  angleStart   turns the other way round than in CreatePolarImageEx.
 *  innerRadius  the outer one is innerRadius + height - 2 of the unrolled image.
 *  Sectors      of less than a whole turn are spread over a larger angle than they were taken from.
 *  Planes       of the two images whose data types differ are left alone. Pixels outside the ring keep their value.
 *               Pixels of the ring beyond a sector keep it or get the outside value, by the side of the sector they
 *               lie on.
 *  Result       true; false with ErrNotAnImage; false without a report when a plane has none of the ten pixel
 *               types.
 *  Threads      the caller keeps other threads away from target. */
ORV_API bool InversePolarTransform(void *polarImage, void *target, double centreX, double centreY, double angleStart,
                                   double innerRadius);

/** Makes a square image with the ring that an unrolled image shows, around its centre.
 *  out     the new image with one reference; null: ErrParameter.
 *  Size    floor(2 * (height - 1 + innerRadius) + 0.5) on each side.
 *  Pixels  outside the ring are 127 (8 bits), 32767 (16), 0x7FFFFFFF (32) and 2^63 (64) where unsigned, else 0.
 *  Result  true; false with a report: ErrNotAnImage, ErrCreateFailed, those of InversePolarTransform. */
ORV_API bool CreateInversePolarImage(void *polarImage, void **out, double angleStart, double innerRadius);

ORV_END_C

#endif

/* New images by a geometric map of others. Each pixel of the result is sampled between four pixels of the source
 * at the position that the map gives for it.
 *
 * Sampling  of 8-bit and 16-bit pixels under an affine map: positions with 8 fractional bits, of which 4 weigh the
 *           four pixels. All other pixels, and all under a callback: positions and weights in double; integers
 *           store trunc(s + 0.5).
 * Edges     a position counts as inside from above -1 (from about -1/32 where positions have 8 fractional bits) to
 *           below width and height; the last column and row are their own neighbours.
 * Outside   pixels whose position lies outside, is no number or does not fit 32 bits get a fixed value: under a
 *           callback, and under an affine map where pixels are sampled in double, 127 (8 bits), 32767 (16),
 *           0x7FFFFFFF (32) and 0x7FFFFFFFFFFFFFFF (64) for unsigned and 0 for signed and float pixels; under an
 *           affine map of 8-bit and 16-bit pixels 0x81 and 0x7FFF.
 * Overlay   where a plane of the source has an overlay, bit 0 of integer pixels is taken from the pixel left
 *           above, and never mixed.
 * Results   have all planes and data types of the source and one reference. out is untouched on failure; a null
 *           out reports ErrParameter.
 * Threads   safe beside other readers of image. */
#ifndef ORV_IMAGE_TRANSFORMATIONS_H
#define ORV_IMAGE_TRANSFORMATIONS_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Maps a whole image.
 *  map     leads from source pixels to pixels of the result, but for a shift: the result begins at the left upper
 *          corner of the mapped image. A determinant whose magnitude is not above 1e-6 gives false without a
 *          report. Null: ErrParameter.
 *  Size    floor(right - left + 1.5) - 1 by floor(bottom - top + 1.5) - 1 of the rectangle around the mapped area
 *          (0, 0), (width, 0), (0, height).
 *  Result  true; false with ErrNotAnImage or, without a report, when the result can't be made. The result's
 *          coordinate system is that of image, mapped, so that a coordinate names the same point of the scene in
 *          both. */
ORV_API bool CreateAffineTransformedImage(void *image, const TCoordinateMap *map, void **out);

/** Maps an area of an image.
 *  map     as above, with its determinant.
 *  area    in the image's coordinate system. Two equal points report ErrParameter "Zero sized areas cannot be
 *          processed".
 *  Size    as above, of the mapped area. */
ORV_API bool CreateAreaAffineTransformedImage(void *image, const TCoordinateMap *map, const TArea *area, void **out);

/** CreateAffineTransformedImage with a matrix and no origin; reports under this name. */
ORV_API bool CreateMatrixTransformedImage(void *image, void **out, TMatrix matrix);

/** CreateMatrixTransformedImage, with the identity as coordinate system of the result; reports under that name. */
ORV_API bool CreateMatrixTransformedImageEx(void *image, void **out, TMatrix matrix);

/** Shows an area of an image in the image's own coordinate system, axes aligned to it.
 *  area    in the image's coordinate system.
 *  Size    floor(right - left + 1.5) by floor(bottom - top + 1.5) of the rectangle around the area.
 *  Result  true; false with ErrNotAnImage; false without a report for a coordinate system without an inverse, and
 *          when the result can't be made. */
ORV_API bool CreateSubImage(void *image, void **out, TArea area);

/** Cuts a turned area out of an image, so that its edges become those of the result.
 *  area    in the image's coordinate system. The x axis of the result runs from P0 to P2 and its y axis from P0 to
 *          P1: an area of SetRectArea comes out transposed. Two equal points report ErrParameter "Zero sized areas
 *          cannot be processed"; edges in one direction ErrSingularArea.
 *  Size    trunc(L + 1.5) each, L being the length of the edge in the units of area.
 *          Each step is the edge and 1 in both coordinates, divided by the length and 1: the far corner of a turned
 *          area lies up to a few pixels beside P1 + P2 - P0.
 *  Result  true; false with a report: ErrNotAnImage, those above, and those of CreateTransformedImage under its
 *          name. */
ORV_API bool CreateAreaSubImage(void *image, void **out, TArea area);

/** Gets a pixel of the result in x and y and must leave the position in the source there. */
typedef void (*TTransform)(void *userData, double *x, double *y);

/** Makes an image of a given size from the positions that a function gives.
 *  width, height  below 1: ErrParameter "Invalid Target Dimension".
 *  transform      called for each pixel of each plane, row by row, on this thread. Null: ErrParameter. What it
 *                 throws ends the call with ErrGeneral.
 *  Result         true; false with a report: ErrNotAnImage, those above, ErrGeneral when the result can't be made.
 *                 Planes whose pixels are none of the ten types report ErrDataType, are left unset, and do not
 *                 change the result. The coordinate system is the identity. */
ORV_API bool CreateTransformedImage(void *image, intptr_t width, intptr_t height, TTransform transform,
                                    void *userData, void **out);

ORV_END_C

#endif

/* Images made of the planes and rectangles of others. Without a copy where the caller shares: the result then has
 * tables of its own over the pixels of its sources, a write shows in both, and each plane keeps its source alive.
 * None of these functions reports by itself; a copy that fails leaves the report of CreateDuplicateImage. What a
 * source throws passes on, but for a CtkExceptionObject in CreateImageMap. */
#ifndef ORV_IMAGE_VIEWS_H
#define ORV_IMAGE_VIEWS_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Puts all planes of one image between the planes of another.
 *  image, insert  handles.
 *  position       the number that insert's first plane gets; beyond the planes of image it goes behind them.
 *  share          non-zero: a view; 0: a copy with pixels of its own.
 *  alignOrigins   0: insert is resampled to the size of image by its table. Non-zero: both are laid over each other
 *                 with their rounded origins in one place, and the result is their overlap.
 *  out            the result with one reference; null on failure once both are images.
 *  Result         1; 0 when either is no image, position is negative, or the view or its copy can't be made.
 *                 Images that do not overlap raise CtkExceptionObject "Nonintersecting images", with out null.
 *  The coordinate map is that of image; aligned, with the origin of the overlap. */
ORV_API int32_t CreateImageInsertList(void *image, void *insert, intptr_t position, unsigned char share,
                                      unsigned char alignOrigins, void **out);

/** Leaves count planes out, from position on.
 *  position  beyond the planes: all stay.
 *  count     beyond the planes: none follows. Neither number is checked: a negative count repeats planes.
 *  Result    true; false when image is none, or a plane would have a number below 0. share, out as above. */
ORV_API bool CreateImageDeleteList(void *image, intptr_t position, intptr_t count, unsigned char share, void **out);

/** Picks count planes, from first on. A count above the plane count becomes that count.
 *  Result  true; false when image is none, or a picked plane does not exist. share, out as above. */
ORV_API bool CreateImageSubList(void *image, intptr_t first, intptr_t count, unsigned char share, void **out);

/** Shows a rectangle of all planes, rescaled by leaving out or repeating columns and rows (nearest neighbour).
 *  left to bottom  the rectangle in pixels, its right and bottom edge included.
 *  targetWidth, targetHeight   the size of the view in pixels, at least 1.
 *  out             the view with one reference; untouched for a bad rectangle, null on a later failure.
 *  Result          true; false for no image, a rectangle that is not inside it, and a size below 1.
 *  The view's origin is the source's minus (left, top); its matrix is the source's, not scaled. */
ORV_API bool CreateImageMap(void *image, intptr_t left, intptr_t top, intptr_t right, intptr_t bottom,
                            intptr_t targetWidth, intptr_t targetHeight, void **out);

ORV_END_C

#endif

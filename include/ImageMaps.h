/* Views: images that show the pixels of others through tables of their own. No pixel is copied, a write through a
 * view shows in its source, and a view keeps its sources alive. */
#ifndef ORV_IMAGE_MAPS_H
#define ORV_IMAGE_MAPS_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** How CreateRotatedImageMap turns, as seen on a screen with y down. */
typedef enum TVPATRotation {
    VPATRotation90CounterClockwise = 1, /**< pixel (x, y) is source pixel (source width - 1 - y, x) */
    VPATRotation180 = 2,                /**< pixel (x, y) is source pixel (width - 1 - x, height - 1 - y) */
    VPATRotation90Clockwise = 3         /**< pixel (x, y) is source pixel (y, source height - 1 - x) */
} TVPATRotation;

/** Shows an image turned by 90, 180 or 270 degrees.
 *  rotation  a value of TVPATRotation.
 *  out       the view with one reference; untouched on failure.
 *  Result    false, without a report, for anything that is no image, for another rotation, and when memory is short.
 *  The view starts with a copy of the source's coordinate map, not turned with it.
 *  Cost      O(width + height) per distinct table; access costs what the source's costs. */
ORV_API bool CreateRotatedImageMap(void *image, uint32_t rotation, void **out);

/** Where CreatePanoramicImageMap puts the second image. */
typedef enum TPanoramaDirection {
    PanoramaSideBySide = 0, /**< to the right; the heights must be equal */
    PanoramaStacked = 1     /**< below; the widths must be equal */
} TPanoramaDirection;

/** Shows two images as one, side by side or one above the other.
 *  direction  a value of TPanoramaDirection.
 *  out        the view with one reference and the identity as coordinate map; untouched on failure.
 *  Result     false with a report under this function's name, the code without its failure bit: 0x10 for what is no
 *             image, 2 for another direction, 0x1A when plane counts or sizes do not match, 0x1C when data types
 *             differ other than in the overlay bit, 0x13 when the tables do not advance alike along the axis that
 *             is not joined (one table per plane must do for both), 5 for a size beyond a machine word. Anything
 *             else, like short memory or a null out, is reported as ErrGeneral or as its number 1.
 *  Cost       O(width + height) per plane. */
ORV_API bool CreatePanoramicImageMap(void *first, void *second, uint32_t direction, void **out);

ORV_END_C

#endif

/* Pixel lists: ordered series of points of one dimension, each an array of doubles. Component 0 is x, component 1
 * y, component 2 a value, by convention; the searches of Maxima.h give lists of that form.
 * A list is an object with one reference for the caller, given back with ReleaseObject; its pixels go with it.
 * Components are passed as arrays of as many doubles as the list has dimensions, and are copied.
 * Errors   ErrNotAPixelList for a handle that is no list. ErrGeneral when memory runs out or an image of the caller's
 *          own class throws. No exception leaves these functions.
 * Threads  readers of a list are safe beside each other; a writer needs the list for itself. */
#ifndef ORV_PIXEL_LIST_PIXEL_H
#define ORV_PIXEL_LIST_PIXEL_H

#include "ORVTypes.h"
#include "PixelList/Maxima.h"

ORV_BEGIN_C

/** Makes an empty list.
 *  dimension  components of each pixel, 2 to 256.
 *  Result     a list with one reference, or null with ErrParameter "Dimension too low" or "Dimension too high". */
ORV_API void *CreatePixelList(int64_t dimension);

/** True for a pixel list; false, without a report, for null and for every other object. */
ORV_API bool IsPixels(void *list);

/** The number of components of each pixel; 0 with ErrNotAPixelList. */
ORV_API int64_t PixelListDimension(void *list);

/** The number of pixels; -1 with ErrNotAPixelList. */
ORV_API int64_t PixelListCount(void *list);

/** Appends a pixel. Errors: ErrNotAPixelList; ErrParameter for null components. */
ORV_API bool AddPixel(void *list, const double *components);

/** Overwrites all components of a pixel.
 *  Errors, in this order: ErrDimension for null components; ErrElementIndex "Negative indices are not allowed";
 *  ErrIndexRange "Index too high or object invalid", the code being another one than that of the readers. */
ORV_API bool ModifyListPixel(void *list, int64_t index, const double *components);

/** Copies all components of a pixel out.
 *  Errors, in this order: ErrElementIndex "Negative indices are not allowed"; ErrElementIndex "Index too high or
 *  object invalid", also behind ErrNotAPixelList for a handle that is no list; ErrParameter for null components. */
ORV_API bool ListPixelEx(void *list, int64_t index, double *components);

/** The components 0, 1 and 2 of a pixel, rounded: floor(0.5 + component), so 2.5 gives 3 and -2.5 gives -2. What does
 *  not fit, or is no number, gives the lowest integer.
 *  Errors, in this order: the index and the handle as in ListPixelEx; ErrDimension for a list of dimension 2;
 *  ErrParameter when an output is null. */
ORV_API bool ListPixel(void *list, int64_t index, int64_t *x, int64_t *y, int64_t *value);

/** Removes a pixel; those behind it move down by one.
 *  Errors, in this order: ErrNotAPixelList; ErrElementIndex "Negative indices are not allowed"; ErrElementIndex
 *  "Index too high or object invalid". */
ORV_API bool RemovePixel(void *list, int64_t index);

/** Removes all pixels. False without a report when there is none. Errors: ErrNotAPixelList. */
ORV_API bool RemoveAllPixels(void *list);

/** Removes the pixels from index count on. Too high a count leaves the list as it is, reports the code 3 "Not enough
 *  pixels in pixel list" and gives true.
 *  Errors: ErrNotAPixelList; ErrElementIndex "Negative indices are not allowed". */
ORV_API bool TruncatePixelList(void *list, int64_t count);

/** A new list with copies of the pixels of the first list, then of the second. Result: a list with one reference, or
 *  null with ErrNotAPixelList, or ErrIndexRange "Pixel list dimensions do not match". */
ORV_API void *ConcatenatePixelLists(void *first, void *second);

/** Copies all pixels of a list into another one.
 *  target  in: a list, which is emptied first and may have a lower dimension than source: pixels are cut to it. A
 *          list copied onto itself stays as it is. Null, or the handle of another object, is overwritten with a new
 *          list of the dimension of source with one reference; that object is not released. Nothing else will do,
 *          since the object is looked at. A failure leaves all as it was.
 *  Errors  ErrNotAPixelList for source; ErrParameter for a null pointer to the target; ErrIndexRange "Pixel list
 *          dimensions do not match" for a target of higher dimension; ErrCreateFailed; ErrGeneral under the name
 *          AddPixel when there is no memory for a pixel. */
ORV_API bool CopyPixelList(void *source, void **target);

/** Moves all pixels: x' = A11 x + A12 y + offsetX, y' = A21 x + A22 y + offsetY. Other components stay. Any matrix
 *  will do. Errors: ErrNotAPixelList. */
ORV_API bool TransformPixelListMatrix(void *list, TMatrix matrix, double offsetX, double offsetY);

/** The same with the matrix and the origin of a coordinate map; reports under the name of the function above. */
ORV_API bool TransformPixelListCoordinates(void *list, TCoordinateMap map);

/** A copy of an image with the places of the pixels marked in its overlay: bit 0 of all planes. Components 0 and 1
 *  are pixel coordinates, of which the fraction is dropped: -0.5 is 0. Pixels outside the image are left out.
 *  result  a new image with one reference: a duplicate of an overlay image, else one made by CreateOverlayImage;
 *          untouched when there is no pixel, or no list, and on failure. Null: ErrParameter.
 *  Result  true; also true for a list without pixels, with the code 3 reported, and for a handle that is no list,
 *          with ErrNotAPixelList under the name PixelListCount before it.
 *  Errors  ErrGeneral "Unable to create output image"; ErrCreateFailed. */
ORV_API bool CreateOverlayFromPixelList(void *list, void *image, void **result);

/** A list of the places that are marked in the overlay of plane 0 of an image: row by row, from left to right.
 *  dimension  of the list, 2 to 256; components from 2 on are 0.
 *  left, top, right, bottom  pixel coordinates, the last ones included; swapped where they are in the wrong order and
 *             clipped to the image. A right or bottom of 0 stands for the last column or row.
 *  list       one reference; untouched on failure. Null: ErrParameter.
 *  Errors, in this order: ErrNotOverlayImage; ErrDataType for pixels of floating point; ErrParameter "Pixel list
 *             dimension is either too high or too low"; ErrPlaneIndex when there is no table; ErrGeneral "Specified
 *             rectangle lies completely outside the image". */
ORV_API bool CreatePixelListFromOverlay(void *image, int64_t dimension, int64_t left, int64_t top, int64_t right,
                                        int64_t bottom, void **list);

ORV_END_C

#endif

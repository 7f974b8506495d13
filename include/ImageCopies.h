/* New images with the form or the content of others. The results own their memory. */
#ifndef ORV_IMAGE_COPIES_H
#define ORV_IMAGE_COPIES_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Makes an image of the same form: planes and data types as in image, pixels not set, identity coordinate map.
 *  width, height  of the new image; when either is 0, both are taken from image.
 *  overlay        non-zero marks every plane of the result as an overlay plane.
 *  out            the new image with one reference.
 *  Result         false: ErrNotAnImage reported for what is no image; ErrIndexRange when width or height is negative
 *                 and neither is 0; ErrGeneral when image refuses a plane's data type; no report
 *                 when the result can't be made.
 *  An image of plain 8-bit planes becomes what CreateGenericImage makes, one of equal types what CreateGenericImageDT
 *  makes. Planes of different types become typed planes each, gathered into one image. */
ORV_API bool CreateCompatibleImage(void *image, intptr_t width, intptr_t height, unsigned char overlay, void **out);

/** Makes a copy of an image: its pixels in plain buffers, and its coordinate map.
 *  result  the copy with one reference; untouched on failure.
 *  Result  1; 0 on failure. Reports: ErrNotAnImage for what is no image; ErrGeneral when the target can't be made
 *          or the image refuses its pixels; ErrDataType for each plane whose pixels are not 1, 2, 4 or 8 bytes
 *          wide (it is zeroed in the copy), and then code 1 when others were copied, ErrDataType and result 0 when
 *          none was. */
ORV_API int32_t CreateDuplicateImage(void *image, void **result);

/** Makes a copy of an image in one block of memory: pixel by pixel interleaved whatever the source was, rows not
 *  padded. Planes of different data types get a block each.
 *  out     the copy with one reference and the source's coordinate map; untouched on failure.
 *  Result  true; false with a report: ErrNotAnImage for what is no image; ErrCreateFailed when the copy can't be
 *          made; that of CopyImageRectPlanes when the pixels can't be copied. Planes of different types that can't
 *          be made give true, with ErrCreateFailed reported and out untouched.
 *  Raises  what the image's own operations throw, and std::runtime_error for an image that refuses a plane. */
ORV_API bool CreateDuplicateImageEx(void *image, void **out);

/** Gathers the planes of several images of one size into one image.
 *  images  count handles.
 *  share   non-zero: the result is a view of the images, which it keeps alive; 0: of copies of them.
 *  out     the result with one reference and the first image's coordinate map; a single image comes back itself, with
 *          one more reference. Untouched on failure.
 *  Result  false with a report: ErrParameter "Invalid input Array" for no images; ErrNotAnImage; ErrIndexRange when
 *          sizes differ; ErrGeneral when a copy or the result can't be made. */
ORV_API bool CreateConcatenatedImage(void *const *images, size_t count, unsigned char share, void **out);

ORV_END_C

#endif

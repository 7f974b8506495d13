/* The coordinate system of an image: a map from image coordinates to pixel coordinates, both real numbers.
 * Handles that are null or have no IImageVPA report ErrNotAnImage under "SetImageCoordinates", "GetImageCoordinates"
 * or "SetImageOrigin"; the functions that read the map first then add a second report, ErrGeneral under their own
 * name, and leave their outputs untouched. What the operations of an image throw passes on. */
#ifndef ORV_IMAGE_COORDINATES_H
#define ORV_IMAGE_COORDINATES_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Replaces the map. It is not validated: a singular matrix shows only when it has to be inverted. */
ORV_API bool SetImageCoordinates(void *image, TCoordinateMap map);
/** Copies the map out. */
ORV_API bool GetImageCoordinates(void *image, TCoordinateMap *out);
/** Replaces the origin: the pixel position of image coordinate (0, 0). The matrix stays. */
ORV_API bool SetImageOrigin(void *image, double x, double y);
/** Reads the origin. */
ORV_API bool GetImageOrigin(void *image, double *outX, double *outY);

/** Leads a pixel position to image coordinates. A map without an inverse leaves the outputs, without a report. */
ORV_API void PixelToImage(void *image, double *outX, double *outY, double x, double y);
/** Leads image coordinates to a pixel position. */
ORV_API void ImageToPixel(void *image, double *outX, double *outY, double x, double y);
/** PixelToImage with a result: false, without a report, for a null handle; otherwise true, whatever it did. */
ORV_API bool PixelToImageCoordinates(void *image, double *outX, double *outY, double x, double y);
/** ImageToPixel with a result: false, without a report, for a null handle; otherwise true, whatever it did. */
ORV_API bool ImageToPixelCoordinates(void *image, double *outX, double *outY, double x, double y);

/** Leads an area of pixel positions to image coordinates. A map without an inverse leaves out, without a report. */
ORV_API void PixelAreaToImage(void *image, TArea *out, TArea area);
/** Leads an area of image coordinates to pixel positions. */
ORV_API void ImageAreaToPixel(void *image, TArea *out, TArea area);

ORV_END_C

#endif

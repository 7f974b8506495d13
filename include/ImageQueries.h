/* Asking an image for its form, a data type word for its meaning, and single pixels for their values.
 * Every function with an image takes any handle with IImageVPA. For a null handle or one without it, where nothing
 * else is told, it reports ErrNotAnImage under its own name and returns its failure value. What the operations of an
 * image throw passes on. */
#ifndef ORV_IMAGE_QUERIES_H
#define ORV_IMAGE_QUERIES_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** The number of planes; 0 on failure. */
ORV_API intptr_t ImageDimension(void *image);
/** The width in pixels; 0 on failure. */
ORV_API intptr_t ImageWidth(void *image);
/** The height in pixels; 0 on failure. */
ORV_API intptr_t ImageHeight(void *image);
/** The data type of a plane. 0xFFFFFFFF on failure; a plane out of range reports ErrPlaneIndex. */
ORV_API TDataType ImageDatatype(void *image, intptr_t plane);
/** True when any plane is an overlay plane. False on failure. */
ORV_API bool HasOverlay(void *image);
/** HasOverlay under its other name; reports as HasOverlay. */
ORV_API bool IsOverlayImage(void *image);
/** True when there is a plane and every plane has 8 bits per pixel. False on failure. */
ORV_API bool IsAll8Bit(void *image);
/** Writes a plane's base address and a pointer to entry 0 of its table, good as long as the image lives. False,
 *  without a report, when the image refuses the plane number or an output is null. */
ORV_API bool GetImageVPA(void *image, intptr_t plane, void **base, VPAEntry **table);
/** Writes the area of all pixel centres, (0, 0) to (width - 1, height - 1), in pixel coordinates. */
ORV_API bool MaxImageArea(void *image, TArea *out);
/** The colour model that the image tells; else -1 for one plane, -2 for three, 0 for any other count and on
 *  failure. */
ORV_API intptr_t ImageColorModel(void *image);

/** The low byte of the word. */
ORV_API intptr_t BitsPerPixel(TDataType type);
/** Bytes of storage per pixel: the bits rounded up; 0 for a word that is 0 or has bit 31 set. */
ORV_API intptr_t BytesPerPixel(TDataType type);
/** Bit 8. */
ORV_API bool IsSignedDatatype(TDataType type);
/** Bit 9. */
ORV_API bool IsFloatDatatype(TDataType type);
/** Writes the smallest and largest value of an integer type of 1 to 32 bits; false, with nothing written, for all
 *  others. */
ORV_API bool GetDatatypeMinMaxVal(TDataType type, int64_t *min, int64_t *max);
/** Planes that a colour model needs: 1 for -1, 0 and 1; 3 for -2 and 2 to 11; -1 for all others. */
ORV_API intptr_t NumPlanesNeededPerImage(int32_t model);

/** Reads one pixel.
 *  value   the low BytesPerPixel bytes are overwritten, the others stay: clear the word first. It must have room for
 *          BytesPerPixel bytes where that is above 8. A signed type (that of plane 0 decides) is sign-extended; a
 *          negative 32-bit value reads as -1.
 *  Result  false, without a report, for a null handle, no IImageVPA, or a position outside. An exception of the
 *          image's own passes on.
 *  Threads one read at a time in the process. */
ORV_API bool GetPixVal(void *image, intptr_t plane, intptr_t x, intptr_t y, uint64_t *value);
/** GetPixVal under its other name. */
ORV_API bool GetPixel(void *image, intptr_t plane, intptr_t x, intptr_t y, uint64_t *value);
/** Writes one pixel: the first BytesPerPixel bytes at value, with no conversion of type or range. Fails as
 *  GetPixVal does. */
ORV_API bool SetPixVal(void *image, intptr_t plane, intptr_t x, intptr_t y, const uint64_t *value);
/** SetPixVal under its other name. */
ORV_API bool SetPixel(void *image, intptr_t plane, intptr_t x, intptr_t y, const uint64_t *value);

/** The pixel of a plane of at most 16 bits, or an error code (bit 31 set, as a positive number).
 *  x, y    -4 to width + 3 and height + 3; outside the image the nearest edge pixel is read.
 *  Result  the pixel without sign extension. 0x80000010 no image; 0x80000002 with the text "Invalid Plane Index",
 *          "Invalid X coordinate" or "Invalid Y coordinate"; 0x8000001C when the pixel has no byte or more than 16
 *          bits; 0x80000001 when the image gives no table. All are reported. */
ORV_API intptr_t PixVal(void *image, intptr_t plane, intptr_t x, intptr_t y);

ORV_END_C

#endif

/* The interfaces behind the opaque handles, for C++ callers who query them or implement them.
 * A class of the caller's own that implements pOLE::IImageVPA is an image for every function of the library. */
#ifndef ORV_INTERFACES_H
#define ORV_INTERFACES_H

#include "ORVTypes.h"

/* Interface ids: exactly 16 bytes, blank padded, compared byte by byte without a terminator. */
#define ORV_IID_IUNKNOWN "IUnknown        "
#define ORV_IID_IIMAGEVPA "IImageVPA       "
#define ORV_IID_IIMAGEDIB "IImageDIB       "
#define ORV_IID_ICOLORMODELINFO "IColorModelInfo "
#define ORV_IID_IIPPIPROXY "IIPPIProxy      "
#define ORV_IID_IGRABBER "IGrabber        "

/** The 40 bytes at the head of a bitmap's description, as a device-independent bitmap holds them. */
typedef struct TBitmapInfoHeader {
    uint32_t biSize;
    int32_t biWidth;
    int32_t biHeight; /**< positive: the last row stands first in memory; negative: the first row does */
    uint16_t biPlanes;
    uint16_t biBitCount;
    uint32_t biCompression;
    uint32_t biSizeImage;
    int32_t biXPelsPerMeter;
    int32_t biYPelsPerMeter;
    uint32_t biClrUsed;
    uint32_t biClrImportant;
} TBitmapInfoHeader;

#ifdef __cplusplus

namespace pOLE {

/// The root of all interfaces: query by name, counted references.
struct IUnknown {
    /// Asks for another interface of the same object. id points to 16 bytes. Status 0: *out is the interface and
    /// carries one new reference. Negative: there is none.
    virtual int32_t QueryInterface(const char *id, void **out) = 0;
    /// Takes a reference and returns the new count.
    virtual uintptr_t AddRef() = 0;
    /// Gives a reference back and returns the remaining count; at 0 the object is gone.
    virtual uintptr_t Release() = 0;

protected:
    ~IUnknown() = default;
};

/// An image: planes of one size, each with a base address and a table.
struct IImageVPA : IUnknown {
    /// Writes plane count, width and height in pixels; status 0.
    virtual int32_t GetImageDimensions(intptr_t *planes, intptr_t *width, intptr_t *height) = 0;
    /// Writes the plane's data type; a plane number out of range gives a failure status and writes nothing.
    virtual int32_t GetPlaneDatatype(intptr_t plane, TDataType *type) = 0;
    /// Writes the plane's base address and a pointer to entry 0 of its table; same failure.
    virtual int32_t GetPlaneVPA(intptr_t plane, void **base, VPAEntry **table) = 0;
    /// Copies the image's coordinate system out; status 0.
    virtual int32_t GetCoordinateMap(TCoordinateMap *map) = 0;
    /// Replaces the image's coordinate system; status 0.
    virtual int32_t SetCoordinateMap(TCoordinateMap map) = 0;

protected:
    ~IImageVPA() = default;
};

/// The bitmap face of an image whose pixels lie as a device-independent bitmap has them.
struct IImageDIB : IUnknown {
    /// Copies the 40 bytes of the header; status 0.
    virtual int32_t GetBitmapInfoHeader(TBitmapInfoHeader *header) = 0;
    /// Writes the address of the pixel block; status 0.
    virtual int32_t GetBitmapBits(void **bits) = 0;

protected:
    ~IImageDIB() = default;
};

/// Tells an image's colour model. No class of this library implements it; images of plug-ins can.
struct IColorModelInfo : IUnknown {
    virtual int32_t GetColorModel() = 0;

protected:
    ~IColorModelInfo() = default;
};

/// Declared for query only.
struct IIPPIProxy : IUnknown {
protected:
    ~IIPPIProxy() = default;
};

} // namespace pOLE

#endif /* __cplusplus */

#endif

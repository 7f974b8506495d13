// Reading and writing single pixels.
#include <cstring>

#include "Image/Dimensions.h"
#include "ImageQueries.h"
#include "Interface/ImageGuard.h"
#include "Threads.h"

namespace {

/// The address of a pixel and the width of its plane; an address of null for a position outside or for no image.
struct PixelPlace {
    void *Address = nullptr;
    std::size_t Bytes = 0;
    TDataType FirstPlaneType = 0;
};

bool IsInside(const Image::Dimensions &size, intptr_t plane, intptr_t x, intptr_t y) {
    return plane >= 0 && plane < size.Planes && x >= 0 && x < size.Width && y >= 0 && y < size.Height;
}

PixelPlace FindPixel(pOLE::IImageVPA &image, intptr_t plane, intptr_t x, intptr_t y) {
    PixelPlace place;
    TDataType type = 0;
    void *base = nullptr;
    VPAEntry *table = nullptr;
    if (!IsInside(Image::DimensionsOf(image), plane, x, y) || image.GetPlaneDatatype(plane, &type) != 0 ||
        image.GetPlaneDatatype(0, &place.FirstPlaneType) != 0 || image.GetPlaneVPA(plane, &base, &table) < 0 ||
        base == nullptr || table == nullptr)
        return place;
    place.Address = static_cast<char *>(base) + table[x].XEntry + table[y].YEntry;
    place.Bytes = static_cast<std::size_t>(Image::BytesOf(type));
    return place;
}

/// Runs transfer(place) on a pixel while its image is held. Exceptions of the image's own pass on.
template <class Transfer>
bool OnPixel(void *image, intptr_t plane, intptr_t x, intptr_t y, Transfer &&transfer) {
    const Interface::ImageForCall held = Interface::QueryCall(image);
    if (!held.IsValid())
        return false;
    const PixelPlace place = FindPixel(*held.Get(), plane, x, y);
    if (place.Address == nullptr)
        return false;
    transfer(place);
    return true;
}

std::uint64_t WidenWithSign(std::uint32_t word) {
    return static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(word)});
}

/// Extends the sign of a value of a signed type narrower than 8 bytes.
/// Required: both words are built in 32 bits with shift counts modulo 32. For 4 bytes the second one has every bit
/// set, so that a negative 32-bit pixel reads as -1 whatever its magnitude.
std::uint64_t ExtendSign(std::uint64_t value, TDataType type) {
    const std::intptr_t bytes = Image::BytesOf(type);
    if (!IsSignedDatatype(type) || bytes >= 8)
        return value;
    const auto signShift = static_cast<std::uint32_t>(bytes * 8 - 1) & 31u;
    const auto widthShift = static_cast<std::uint32_t>(bytes * 8) & 31u;
    if ((WidenWithSign(1u << signShift) & value) == 0)
        return value;
    return value | WidenWithSign(0u - (1u << widthShift));
}

tkThreads::CCriticalSection &PixelReadLock() {
    static auto *lock = new tkThreads::CCriticalSection;
    return *lock;
}

} // namespace

bool GetPixVal(void *image, intptr_t plane, intptr_t x, intptr_t y, uint64_t *value) {
    const tkThreads::CAutoLock guard(&PixelReadLock());
    if (image == nullptr || value == nullptr)
        return false;
    return OnPixel(image, plane, x, y, [value](const PixelPlace &place) {
        std::memcpy(value, place.Address, place.Bytes);
        // Required: the type of plane 0 decides over the sign, not that of the plane read.
        *value = ExtendSign(*value, place.FirstPlaneType);
    });
}

bool GetPixel(void *image, intptr_t plane, intptr_t x, intptr_t y, uint64_t *value) {
    return GetPixVal(image, plane, x, y, value);
}

bool SetPixVal(void *image, intptr_t plane, intptr_t x, intptr_t y, const uint64_t *value) {
    if (image == nullptr || value == nullptr)
        return false;
    return OnPixel(image, plane, x, y,
                   [value](const PixelPlace &place) { std::memcpy(place.Address, value, place.Bytes); });
}

bool SetPixel(void *image, intptr_t plane, intptr_t x, intptr_t y, const uint64_t *value) {
    return SetPixVal(image, plane, x, y, value);
}

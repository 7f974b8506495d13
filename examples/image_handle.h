// One owner for one image handle, and the address rule of the library, for the examples beside it.
#pragma once

#include <ORVImg.h>
#include <utility>

/// Owns one reference of an image and gives it back at the end of the scope.
class ImageHandle {
public:
    ImageHandle() = default;
    ImageHandle(ImageHandle &&other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    ImageHandle &operator=(ImageHandle &&other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    ~ImageHandle() { GiveBack(); }

    void *Get() const { return handle; }
    /// Where a creating function stores its result; the owner must be empty.
    void **Out() { return &handle; }
    /// True when that was the last reference. ReleaseObject keeps the pointer while others hold the image, this owner
    /// does not: its own reference is gone either way.
    bool GiveBack() {
        const bool gone = ReleaseObject(handle);
        handle = nullptr;
        return gone;
    }

private:
    void *handle = nullptr;
};

/// The plane of an image; the record holds no reference and is good as long as the image lives.
inline TPlaneRec PlaneOf(void *image, intptr_t plane) {
    TPlaneRec record{};
    SetPlaneRec(image, plane, &record);
    return record;
}

/// The one rule by which every pixel is reached.
inline unsigned char *AddressOf(const TPlaneRec &plane, intptr_t x, intptr_t y) {
    return static_cast<unsigned char *>(plane.BaseAddress) + plane.VPAT[x].XEntry + plane.VPAT[y].YEntry;
}

// The root of an image that owns its memory: size, coordinate system, and the plane list as first child.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "Image/ImagePlane.h"
#include "Image/TreeInterfaces.h"

/// Child 0 is the list of planes. The outside world holds the interface object, never the root itself.
class TImageObject : public TSList {
public:
    static constexpr unsigned ClassId = 3;

    TImageObject();
    ~TImageObject() override;

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }
    std::uint32_t LevelTag() const { return levelTag_; }

    /// Statuses as the interface objects give them: 0, or -1.
    virtual std::int32_t QueryInterface(const char *id, void **out);
    virtual std::int32_t GetDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height);
    /// Sets or clears the overlay bit of every plane's data type; changes no pixel. Throws CtkExceptionObject when
    /// there is no plane list.
    virtual void SetOverlay(bool on);

    void SetSize(std::int32_t width, std::int32_t height);
    /// Null for a plane number out of range. The first call for a plane far behind in the list indexes the list,
    /// which must be complete then.
    TImagePlane *Plane(std::intptr_t number) const;
    /// Null as long as the tree is empty.
    TSList *PlaneList() const;
    TIImageVPA *Interface() const { return interface_.get(); }

    /// A list's body, then width and height in 4 bytes each, then the coordinate map. A loaded tree may be of any
    /// shape: whoever loads it looks at it before it becomes an image.
    void Load(CtkStream &stream) override;
    void Store(CtkStream &stream) override;
    void Replicate(TSList &source) override;

    TCoordinateMap Coordinates;

private:
    std::unique_ptr<TIImageVPA> interface_;
    mutable std::once_flag indexOnce_;
    mutable std::vector<TImagePlane *> index_;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    std::uint32_t levelTag_ = 30;
};

/// The root of an image whose pixels lie as a device-independent bitmap has them. Child 1 is the bitmap's
/// description.
class TSimpleDIB : public TImageObject {
public:
    static constexpr unsigned ClassId = 8;

    TSimpleDIB();
    ~TSimpleDIB() override;

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }
    std::uint32_t LevelTag() const { return levelTag_; }
    std::int32_t QueryInterface(const char *id, void **out) override;

    /// Completes a built tree: the bitmap interface and the block that it hands out (held by the planes).
    void SetPixelBuffer(TBuffer *pixels);
    TBuffer *PixelBuffer() const { return pixels_; }
    /// Null as long as the tree is empty.
    TDIBInfo *Info() const;
    /// An image's body. The pixel buffer is the first child of the first plane, where there is one.
    void Load(CtkStream &stream) override;

private:
    std::uint32_t levelTag_ = 31;
    std::unique_ptr<TIImageDIB> bitmapInterface_;
    TBuffer *pixels_ = nullptr;
};

// The interface objects of tree images. They have no count of their own: references are those of the owner.
#pragma once

#include "CtkObject.h"
#include "Interfaces.h"

class TImageObject;
class TSimpleDIB;

/// The handle of a tree image.
class TIImageVPA final : public pOLE::IImageVPA, public CtkObject {
public:
    static constexpr unsigned ClassId = 12;

    explicit TIImageVPA(TImageObject &owner);

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }
    std::uint32_t LevelTag() const { return levelTag_; }
    TImageObject &Owner() const { return owner_; }

    std::int32_t QueryInterface(const char *id, void **out) override;
    std::uintptr_t AddRef() override;
    std::uintptr_t Release() override;
    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override;
    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override;
    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override;
    std::int32_t GetCoordinateMap(TCoordinateMap *map) override;
    std::int32_t SetCoordinateMap(TCoordinateMap map) override;

private:
    TImageObject &owner_;
    std::uint32_t levelTag_ = 35;
};

/// The bitmap face of a tree image.
class TIImageDIB final : public pOLE::IImageDIB, public CtkObject {
public:
    static constexpr unsigned ClassId = 13;

    explicit TIImageDIB(TSimpleDIB &owner);

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }
    std::uint32_t LevelTag() const { return levelTag_; }

    std::int32_t QueryInterface(const char *id, void **out) override;
    std::uintptr_t AddRef() override;
    std::uintptr_t Release() override;
    std::int32_t GetBitmapInfoHeader(TBitmapInfoHeader *header) override;
    std::int32_t GetBitmapBits(void **bits) override;

private:
    TSimpleDIB &owner_;
    std::uint32_t levelTag_ = 36;
};

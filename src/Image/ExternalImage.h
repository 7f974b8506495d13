// An image over memory of the caller's: it owns its tables only, and tells the caller when it dies.
#pragma once

#include "Image/CountedImage.h"
#include "ImageCreation.h"

namespace Image {

/// How the pixels lie in the caller's memory.
struct ExternalLayout {
    void *Buffer;
    std::size_t BufferSize; ///< 0: unknown
    std::intptr_t Width;
    std::intptr_t Height;
    std::intptr_t Planes;
    TDataType Datatype;
    std::intptr_t PitchX;
    std::intptr_t PitchY;
    std::intptr_t PitchPlane;
    const std::intptr_t *PlaneOrder; ///< null: 0, 1, 2, ...
};

class CExternalImage final : public CountedImage<CExternalImage> {
public:
    /// Throws CImageKernelException for a layout that can't be; release is not called then.
    CExternalImage(const ExternalLayout &layout, TImageReleaseCallback release, void *userData);

    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override;
    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override;
    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override;

private:
    /// One block from malloc per plane.
    class TableSet {
    public:
        TableSet() = default;
        TableSet(const TableSet &) = delete;
        TableSet &operator=(const TableSet &) = delete;
        ~TableSet();
        /// False when memory is short.
        bool Allocate(std::intptr_t planes, std::size_t recordsPerTable);
        VPAEntry *Entry0(std::intptr_t plane) const;

    private:
        VPAEntry **blocks_ = nullptr;
        std::intptr_t count_ = 0;
    };

    ~CExternalImage() override;
    void BuildTables(const ExternalLayout &layout);

    void *userData_;
    TImageReleaseCallback release_ = nullptr;
    std::intptr_t height_;
    std::intptr_t width_;
    TDataType datatype_;
    std::intptr_t planes_;
    void *buffer_;
    TableSet tables_;
};

} // namespace Image

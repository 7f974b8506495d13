// What stands between a walk and the caller's callbacks: one function object for each kind of scan. It holds the
// images while the walk runs, and finds the addresses of a sample.
#pragma once

#include <vector>

#include "Image/Dimensions.h"
#include "ImageScan.h"
#include "Interface/ImageGuard.h"

namespace Scan {

/// The callbacks of a line, either of which may be null.
struct LineCallbacks {
    TScanLineCallback Begin;
    TScanLineCallback End;
    void *PrivateData;

    bool WantsLines() const { return Begin != nullptr || End != nullptr; }
    bool BeginLine(std::int64_t linesLeft) const { return Begin == nullptr || Begin(PrivateData, linesLeft) != 0; }
    bool EndLine(std::int64_t linesLeft) const { return End == nullptr || End(PrivateData, linesLeft) != 0; }
};

inline char *PixelAddress(char *base, const VPAEntry *table, std::intptr_t x, std::intptr_t y) {
    return base + table[x].XEntry + table[y].YEntry;
}

/// Pixels of one plane.
struct CAdaptorScanPlaneUnary {
    TScanPlaneUnaryCallback Callback;
    void *PrivateData;
    Interface::ImageHolder Image;
    char *Base;
    const VPAEntry *Table;

    bool Pixel(std::int32_t x, std::int32_t y) const {
        return Callback(PrivateData, PixelAddress(Base, Table, x, y), x, y) != 0;
    }
};

/// Pixels of a plane, each with its partner in another.
struct CAdaptorScanPlaneBinary {
    TScanPlaneBinaryCallback Callback;
    void *PrivateData;
    Interface::ImageHolder Image1;
    Interface::ImageHolder Image2;
    std::int32_t Dx;
    std::int32_t Dy;
    char *Base1;
    char *Base2;
    const VPAEntry *Table1;
    const VPAEntry *Table2;

    bool Pixel(std::int32_t x, std::int32_t y) const {
        char *const second = PixelAddress(Base2, Table2, std::intptr_t{x} + Dx, std::intptr_t{y} + Dy);
        return Callback(PrivateData, PixelAddress(Base1, Table1, x, y), second, x, y) != 0;
    }
};

/// Bases, tables and pixel addresses of all planes of an image. Each list ends with a zero; a plane without a base
/// ends it early.
class PlaneAddresses {
public:
    /// False when the image refuses a plane.
    bool Read(pOLE::IImageVPA &image, std::intptr_t planes);
    /// The addresses of pixel (x, y).
    void **At(std::intptr_t x, std::intptr_t y) {
        for (std::size_t plane = 0; bases_[plane] != nullptr; ++plane)
            pixels_[plane] = PixelAddress(bases_[plane], tables_[plane], x, y);
        return pixels_.data();
    }

private:
    std::vector<char *> bases_;
    std::vector<const VPAEntry *> tables_;
    std::vector<void *> pixels_;
};

/// Pixels of all planes.
struct CAdaptorScanImageUnary {
    TScanImageUnaryCallback Callback;
    void *PrivateData;
    Interface::ImageHolder Image;
    PlaneAddresses Planes;

    bool Pixel(std::int32_t x, std::int32_t y) { return Callback(PrivateData, Planes.At(x, y), x, y) != 0; }
};

/// Pixels of all planes of an image, with their partners in another.
struct CAdaptorScanImageBinary {
    TScanImageBinaryCallback Callback;
    void *PrivateData;
    Interface::ImageHolder Image1;
    Interface::ImageHolder Image2;
    std::int32_t Dx;
    std::int32_t Dy;
    PlaneAddresses Planes1;
    PlaneAddresses Planes2;

    bool Pixel(std::int32_t x, std::int32_t y) {
        void **const second = Planes2.At(std::intptr_t{x} + Dx, std::intptr_t{y} + Dy);
        return Callback(PrivateData, Planes1.At(x, y), second, x, y) != 0;
    }
};

} // namespace Scan

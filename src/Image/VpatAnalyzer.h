// The one analysis of an image's tables: what every choice of a faster path is made from.
#pragma once

#include <vector>

#include "Image/Dimensions.h"
#include "Interface/ImageGuard.h"

namespace Image {

class vpat_analyzer {
public:
    /// Holds the image and analyses each plane once. Throws std::runtime_error "image invalid" for what is no image.
    explicit vpat_analyzer(void *handle);
    explicit vpat_analyzer(Interface::ImageHolder image);
    virtual ~vpat_analyzer() = default;

    pOLE::IImageVPA &Image() const { return *image_.Get(); }
    std::intptr_t Planes() const { return size_.Planes; }
    std::intptr_t Width() const { return size_.Width; }
    std::intptr_t Height() const { return size_.Height; }

    // Required: a plane number up to and including the plane count is accepted; the place behind the last plane reads
    // as zero. Any other throws std::out_of_range "invalid index".
    void *PlaneBase(std::intptr_t plane) const { return At(plane).Base; }
    VPAEntry *Table(std::intptr_t plane) const { return At(plane).Table; }
    TDataType Datatype(std::intptr_t plane) const { return At(plane).Datatype; }
    /// Bytes from each column to the next; 0 when the columns are not linear or there is only one.
    std::intptr_t XStep(std::intptr_t plane) const { return At(plane).XStep; }
    /// Bytes from each row to the next; 0 when the rows are not linear or there is only one.
    std::intptr_t YStep(std::intptr_t plane) const { return At(plane).YStep; }

    /// The address of pixel (0, 0) of a plane.
    char *FirstPixel(std::intptr_t plane) const;

private:
    struct Plane {
        void *Base = nullptr;
        VPAEntry *Table = nullptr;
        TDataType Datatype = 0;
        std::intptr_t XStep = 0;
        std::intptr_t YStep = 0;
    };

    void Analyze();
    const Plane &At(std::intptr_t plane) const;

    Interface::ImageHolder image_;
    Dimensions size_;
    std::vector<Plane> planes_; ///< one per plane and an empty one behind
};

} // namespace Image

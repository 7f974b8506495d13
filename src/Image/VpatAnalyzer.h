// The one analysis of an image's tables: what every choice of a faster path is made from.
#pragma once

#include <boost/container/small_vector.hpp>
#include <optional>
#include <vector>

#include "Image/Dimensions.h"
#include "Image/PlaneFacts.h"
#include "Image/TableSteps.h"
#include "Interface/ImageGuard.h"

namespace Image {

class vpat_analyzer {
public:
    /// Whether every table has to be looked at whole. Known is for an image that this library has just made itself
    /// with linear tables only: the first two entries of each axis then tell its step.
    enum class Linearity { Unknown, Known };

    /// Holds the image, reads its planes, and looks at the tables when they are first asked about: for one thread.
    /// Throws std::runtime_error "image invalid" for what is no image.
    explicit vpat_analyzer(void *handle, Linearity linearity = Linearity::Unknown);
    explicit vpat_analyzer(Interface::ImageHolder image, Linearity linearity = Linearity::Unknown);
    explicit vpat_analyzer(Interface::ImageForCall image, Linearity linearity = Linearity::Unknown);
    virtual ~vpat_analyzer() = default;

    pOLE::IImageVPA &Image() const { return *image_.Get(); }
    const Dimensions &Size() const { return size_; }
    std::intptr_t Planes() const { return size_.Planes; }
    std::intptr_t Width() const { return size_.Width; }
    std::intptr_t Height() const { return size_.Height; }

    // Required: a plane number up to and including the plane count is accepted; the place behind the last plane reads
    // as zero. Any other throws std::out_of_range "invalid index".
    void *PlaneBase(std::intptr_t plane) const { return At(plane).Base; }
    VPAEntry *Table(std::intptr_t plane) const { return At(plane).Table; }
    TDataType Datatype(std::intptr_t plane) const { return At(plane).Datatype; }
    /// Bytes from each column to the next; 0 when the columns are not linear or there is only one.
    std::intptr_t XStep(std::intptr_t plane) const { return StepsOf(plane).X; }
    /// Bytes from each row to the next; 0 when the rows are not linear or there is only one.
    std::intptr_t YStep(std::intptr_t plane) const { return StepsOf(plane).Y; }

    /// What kind of step a plane's columns or rows have, as a set of the bits below; 0 when they have none.
    unsigned XClass(std::intptr_t plane) const;
    unsigned YClass(std::intptr_t plane) const;
    static constexpr unsigned ClassLinear = 1;      ///< there is a common step
    static constexpr unsigned ClassDense = 2;       ///< of one pixel, or of one pixel of all planes
    static constexpr unsigned ClassInterleaved = 4; ///< of one pixel of all planes
    static constexpr unsigned ClassNegative = 8;

    /// True when all planes have one data type and lie pixel by pixel between each other.
    bool IsInterleaved() const;
    /// Bytes between the pixels of an interleaved image; else 0 when every plane is dense, -1 when one is not.
    std::intptr_t ColumnGap() const;
    /// True when all planes have one data type; also for an image without planes.
    bool HasOneDatatype() const;
    /// The plane numbers by the address of their first pixel.
    const std::vector<std::intptr_t> &MemoryOrder() const;

    /// The address of pixel (0, 0) of a plane.
    char *FirstPixel(std::intptr_t plane) const;

private:
    struct Plane : PlaneFacts {
        mutable std::optional<TableSteps> Steps;
    };
    static constexpr std::size_t UsualPlanes = 4;

    void ReadPlanes();
    const Plane &At(std::intptr_t plane) const;
    const TableSteps &StepsOf(std::intptr_t plane) const;

    Interface::ImageForCall image_;
    Linearity linearity_;
    Dimensions size_;
    /// One per plane and an empty one behind; those of usual images need no block of their own.
    boost::container::small_vector<Plane, UsualPlanes + 1> planes_;
    mutable std::vector<std::intptr_t> order_; ///< empty until it is asked for
};

} // namespace Image

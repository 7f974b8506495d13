#include "Transformations/AffineTransform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "ImageCopies.h"
#include "Interface/Boundary.h"
#include "Scan/PixelType.h"
#include "Scan/ResultImage.h"
#include "Transformations/AffineTransformer.h"
#include "Transformations/ThreePlanes.h"

namespace Transformations {
namespace {

using Interface::ImageHolder;

/// The planes of one call, from a source to a fresh image of the same planes.
class PlaneWorkers {
public:
    /// map leads from the target to the source.
    PlaneWorkers(ImageHolder source, ImageHolder target, const TCoordinateMap &map)
        : source_(std::move(source)), target_(std::move(target)), size_(Image::DimensionsOf(*target_.Get())),
          map_(map) {}

    /// The status words of all planes, ORed together. A plane that fails doesn't keep the others from being done.
    std::uint32_t Run(std::intptr_t planes) {
        if (planes == size_.Planes && RunThreeBytes())
            return 0;
        std::uint32_t status = 0;
        for (std::intptr_t plane = 0; plane < planes; ++plane)
            status |= RunPlane(plane);
        return status;
    }

private:
    std::uint32_t RunPlane(std::intptr_t plane) {
        Image::PlaneFacts facts;
        if (source_->GetPlaneDatatype(plane, &facts.Datatype) != Interface::StatusOk)
            return ErrDataType;
        std::uint32_t status = 0;
        const bool isKnown = Scan::ForPixelType(facts.Datatype, [&]<class T>() { status = RunTyped<T>(plane); });
        return isKnown ? status : ErrDataType;
    }

    template <class T>
    std::uint32_t RunTyped(std::intptr_t plane) {
        Image::PlaneFacts facts;
        if (plane >= size_.Planes)
            return ErrPlaneIndex;
        if (!Image::ReadPlaneFacts(*target_.Get(), plane, facts) ||
            Image::BytesOf(facts.Datatype) != static_cast<std::intptr_t>(sizeof(T)))
            return ErrNotPossible;
        const Image::PlaneView view = Image::ViewOf(facts, size_);
        if constexpr (std::is_integral_v<T> && sizeof(T) <= 2) {
            CAffineTransformerFPA<T> transformer(source_, Table());
            return Transform(transformer, plane, view);
        } else {
            CAffineTransformer<T> transformer(source_, map_);
            return Transform(transformer, plane, view);
        }
    }

    /// False, with nothing done, unless both images are three planes of bytes between each other.
    bool RunThreeBytes() {
        const Image::Dimensions sourceSize = Image::DimensionsOf(*source_.Get());
        std::vector<Image::PlaneFacts> from, to;
        if (size_.Planes != 3 || sourceSize.Planes != 3 || sourceSize.Width < 1 || sourceSize.Height < 1 ||
            !Image::ReadPlaneFacts(*source_.Get(), sourceSize, from) ||
            !Image::ReadPlaneFacts(*target_.Get(), size_, to))
            return false;
        const bool isBytes = std::all_of(from.begin(), from.end(), [](const Image::PlaneFacts &plane) {
            return Scan::PixelTypeOf(plane.Datatype) == Scan::PixelType::Unsigned8;
        });
        return isBytes && TransformThreeBytes({source_, Table()}, ViewsOf(from, sourceSize), ViewsOf(to, size_));
    }

    static std::array<Image::PlaneView, 3> ViewsOf(const std::vector<Image::PlaneFacts> &planes,
                                                   const Image::Dimensions &size) {
        return {Image::ViewOf(planes[0], size), Image::ViewOf(planes[1], size), Image::ViewOf(planes[2], size)};
    }

    template <class Transformer>
    static std::uint32_t Transform(Transformer &transformer, std::intptr_t plane, const Image::PlaneView &view) {
        if (!transformer.SelectPlane(plane))
            return ErrNotPossible;
        transformer.Transform(view);
        return 0;
    }

    const TransTable &Table() {
        if (!table_)
            table_.emplace(map_, size_.Width, size_.Height);
        return *table_;
    }

    ImageHolder source_, target_;
    Image::Dimensions size_;
    TCoordinateMap map_;
    std::optional<TransTable> table_; ///< made for the first plane that needs it
};

/// One less, wrapping.
std::int64_t Reduced(std::int64_t size) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(size) - 1u);
}

/// Lets a user coordinate name the same point of the scene in both images.
void ComposeCoordinates(pOLE::IImageVPA &source, pOLE::IImageVPA &target, const TCoordinateMap &forward) {
    TCoordinateMap coordinates, composed;
    InitCoordinateMap(&coordinates);
    source.GetCoordinateMap(&coordinates);
    ComposeCoordinateMaps(&composed, coordinates, forward);
    target.SetCoordinateMap(composed);
}

/// An empty holder on failure.
ImageHolder Transformed(pOLE::IImageVPA &image, const TArea &area, bool reduceSize, TCoordinateMap map) {
    std::intptr_t planes = 0, sourceWidth = 0, sourceHeight = 0;
    std::int64_t width = 0, height = 0;
    if (image.GetImageDimensions(&planes, &sourceWidth, &sourceHeight) != Interface::StatusOk ||
        !ResultSize(area, width, height, map))
        return {};
    if (reduceSize) {
        width = Reduced(width);
        height = Reduced(height);
    }
    void *made = nullptr;
    const bool isMade = CreateCompatibleImage(&image, width, height, 0, &made);
    ImageHolder target = Scan::AdoptImage(made);
    TCoordinateMap backward;
    if (!isMade || !target.IsValid() || !InverseCoordinateMap(&backward, map))
        return {};
    if (PlaneWorkers(ImageHolder::Share(&image), target, backward).Run(planes) != 0)
        return {};
    ComposeCoordinates(image, *target.Get(), map);
    return target;
}

} // namespace

bool ResultSize(const TArea &area, std::int64_t &width, std::int64_t &height, TCoordinateMap &map) {
    constexpr double smallestDeterminant = 1e-6;
    TRectangle bounds;
    BoundingRectangle(&bounds, area, map);
    width = orvBase::TruncateTo<std::int64_t>(std::floor(bounds.Right - bounds.Left + 1.0 + 0.5));
    height = orvBase::TruncateTo<std::int64_t>(std::floor(bounds.Bottom - bounds.Top + 1.0 + 0.5));
    if (!(std::fabs(MatrixDeterminant(map.Matrix)) > smallestDeterminant))
        return false;
    map.X -= bounds.Left;
    map.Y -= bounds.Top;
    return true;
}

bool AffineTransformImage(pOLE::IImageVPA &image, const TArea &area, bool reduceSize, void **out,
                          TCoordinateMap map) {
    return Interface::SilentBoundary(false, [&] {
        ImageHolder result = Transformed(image, area, reduceSize, map);
        if (!result.IsValid())
            return false;
        *out = result.Detach();
        return true;
    });
}

bool AffineTransformWholeImage(pOLE::IImageVPA &image, void **out, const TCoordinateMap &map) {
    return Interface::SilentBoundary(false, [&] {
        const Image::Dimensions size = Image::DimensionsOf(image);
        TArea area;
        SetRectArea(&area, 0.0, 0.0, static_cast<double>(size.Width), static_cast<double>(size.Height));
        return AffineTransformImage(image, area, true, out, map);
    });
}

bool HasEqualPoints(const TArea &area) {
    const auto isSame = [](double xa, double ya, double xb, double yb) { return xa == xb && ya == yb; };
    return isSame(area.X0, area.Y0, area.X1, area.Y1) || isSame(area.X0, area.Y0, area.X2, area.Y2) ||
           isSame(area.X1, area.Y1, area.X2, area.Y2);
}

} // namespace Transformations

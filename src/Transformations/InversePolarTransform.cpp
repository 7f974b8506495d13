// Rolling an unrolled ring up again, into a ring of an image of the caller's.
#include "Interface/Boundary.h"
#include "PolarTransformations.h"
#include "Scan/PixelType.h"
#include "Transformations/InversePolarTransformer.h"

namespace Transformations {
namespace {

using Interface::ImageHolder;

constexpr const char *FunctionName = "InversePolarTransform";
constexpr std::int64_t allPixels = 1000;

bool Fail(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return false;
}

/// Reports the status of an image that doesn't tell its sizes.
bool HasDimensions(pOLE::IImageVPA &image) {
    std::intptr_t planes = 0, width = 0, height = 0;
    const std::int32_t status = image.GetImageDimensions(&planes, &width, &height);
    return status == Interface::StatusOk || Fail(static_cast<std::uint32_t>(status));
}

/// The planes of one call.
struct InversePolarPlanes {
    ImageHolder Source, Target;
    InversePolarRing Ring;

    /// The status words of all planes, ORed together.
    std::uint32_t Run() const {
        const std::intptr_t planes =
            std::min(Image::DimensionsOf(*Source.Get()).Planes, Image::DimensionsOf(*Target.Get()).Planes);
        std::uint32_t status = 0;
        for (std::intptr_t plane = 0; plane < planes; ++plane)
            status |= RunPlane(plane);
        return status;
    }

private:
    std::uint32_t RunPlane(std::intptr_t plane) const {
        TDataType sourceType = 0, targetType = 0;
        if (Source->GetPlaneDatatype(plane, &sourceType) != Interface::StatusOk ||
            Target->GetPlaneDatatype(plane, &targetType) != Interface::StatusOk)
            return ErrDataType;
        if (sourceType != targetType)
            return 0;
        std::uint32_t status = ErrDataType;
        Scan::ForPixelType(sourceType, [&]<class T>() { status = RunTyped<T>(plane); });
        return status;
    }

    template <class T>
    std::uint32_t RunTyped(std::intptr_t plane) const {
        const Image::Dimensions size = Image::DimensionsOf(*Target.Get());
        Image::PlaneFacts facts;
        if (!Image::ReadPlaneFacts(*Target.Get(), plane, facts))
            return ErrNotPossible;
        CInversePolarTransformer<T> transformer(Source, Ring, Image::ViewOf(facts, size));
        if (!transformer.SelectPlane(plane))
            return ErrNotPossible;
        if (const auto plan = Scan::PlanWalk(Ring.Square, allPixels))
            transformer.Transform(*plan, Scan::BoundsOf(size.Width, size.Height), transformer.ChooseMethod());
        return 0;
    }
};

} // namespace
} // namespace Transformations

bool InversePolarTransform(void *polarImage, void *target, double centreX, double centreY, double angleStart,
                           double innerRadius) {
    using namespace Transformations;
    const ImageHolder from = Interface::GuardImage(polarImage, FunctionName);
    if (!from.IsValid())
        return false;
    const ImageHolder to = Interface::GuardImage(target, FunctionName);
    if (!to.IsValid())
        return false;
    return Interface::GeneralBoundary(FunctionName, [&] {
        if (!HasDimensions(*from.Get()) || !HasDimensions(*to.Get()))
            return false;
        const Image::Dimensions size = Image::DimensionsOf(*from.Get());
        const InversePolarRing ring = InverseRingOf(static_cast<double>(size.Width), static_cast<double>(size.Height),
                                                    centreX, centreY, angleStart, innerRadius);
        return InversePolarPlanes{from, to, ring}.Run() == 0;
    });
}

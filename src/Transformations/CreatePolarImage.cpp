// Unrolling a ring, or a sector of one, into a rectangle. Failures are quiet, but for handles that are no images and
// for empty results.
#include "ImageCopies.h"
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "PolarTransformations.h"
#include "Scan/PixelType.h"
#include "Scan/ResultImage.h"
#include "Transformations/PolarTransformer.h"

namespace Transformations {
namespace {

using Interface::ImageHolder;

constexpr const char *FunctionName = "CreatePolarImageEx";

struct ResultSize {
    std::int32_t Width;
    std::int32_t Height;
};

ResultSize SizeOf(double angleRange, double innerRadius, double outerRadius) {
    const double circumference = (innerRadius + outerRadius) * M_PI;
    // Required: half a pixel is added twice, so that radii of 10 and 20 make 12 rows.
    return {orvBase::TruncateTo<std::int32_t>(std::floor(circumference * angleRange / 360.0 + 0.5)),
            orvBase::TruncateTo<std::int32_t>(std::floor(outerRadius - innerRadius + 1.0 + 0.5 + 0.5))};
}

/// The planes of one call.
class PolarPlanes {
public:
    PolarPlanes(ImageHolder source, ImageHolder target, const PolarRing &ring)
        : source_(std::move(source)), target_(std::move(target)), size_(Image::DimensionsOf(*target_.Get())),
          ring_(ring), columns_(ring, size_.Width) {}

    /// The status words of all planes, ORed together. A plane that fails doesn't keep the others from being done.
    std::uint32_t Run() const {
        std::uint32_t status = 0;
        for (std::intptr_t plane = 0; plane < Image::DimensionsOf(*source_.Get()).Planes; ++plane)
            status |= RunPlane(plane);
        return status;
    }

private:
    std::uint32_t RunPlane(std::intptr_t plane) const {
        TDataType type = 0;
        if (source_->GetPlaneDatatype(plane, &type) != Interface::StatusOk)
            return ErrDataType;
        std::uint32_t status = ErrDataType;
        Scan::ForPixelType(type, [&]<class T>() { status = RunTyped<T>(plane); });
        return status;
    }

    template <class T>
    std::uint32_t RunTyped(std::intptr_t plane) const {
        Image::PlaneFacts facts;
        if (plane >= size_.Planes)
            return ErrPlaneIndex;
        CPolarTransformer<T> transformer(source_, ring_, columns_);
        if (!transformer.SelectPlane(plane) || !Image::ReadPlaneFacts(*target_.Get(), plane, facts) ||
            Image::BytesOf(facts.Datatype) != static_cast<std::intptr_t>(sizeof(T)))
            return ErrNotPossible;
        transformer.Transform(Image::ViewOf(facts, size_));
        return 0;
    }

    ImageHolder source_, target_;
    Image::Dimensions size_;
    PolarRing ring_;
    PolarColumns columns_;
};

/// An empty holder on failure.
ImageHolder Unrolled(const ImageHolder &source, const ResultSize &size, const PolarRing &ring) {
    std::intptr_t planes = 0, width = 0, height = 0;
    if (source->GetImageDimensions(&planes, &width, &height) != Interface::StatusOk)
        return {};
    void *made = nullptr;
    const bool isMade = CreateCompatibleImage(source.Get(), size.Width, size.Height, 0, &made);
    ImageHolder target = Scan::AdoptImage(made);
    if (!isMade || !target.IsValid() || PolarPlanes(source, target, ring).Run() != 0)
        return {};
    return target;
}

bool Fail(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return false;
}

} // namespace
} // namespace Transformations

bool CreatePolarImageEx(void *image, void **out, double centreX, double centreY, double angleStart, double angleRange,
                        double innerRadius, double outerRadius) {
    using namespace Transformations;
    if (image == nullptr)
        return false;
    const ImageHolder source = Interface::GuardImage(image, FunctionName);
    if (!source.IsValid())
        return false;
    if (out == nullptr)
        return Fail(ErrParameter);
    const ResultSize size = SizeOf(angleRange, innerRadius, outerRadius);
    if (size.Width < 1 || size.Height < 1)
        return Fail(ErrDimension, Interface::ErrorTexts::EmptyTargetImage);
    const PolarRing ring = {centreX, centreY, outerRadius, (innerRadius + outerRadius) * M_PI / 2,
                            angleStart * M_PI / 180};
    return Interface::SilentBoundary(false, [&] {
        ImageHolder result = Unrolled(source, size, ring);
        if (!result.IsValid())
            return false;
        *out = result.Detach();
        return true;
    });
}

bool CreatePolarImage(void *image, void **out, double centreX, double centreY, double angleStart, double innerRadius,
                      double outerRadius) {
    constexpr double wholeTurn = 360.0;
    return CreatePolarImageEx(image, out, centreX, centreY, angleStart, wholeTurn, innerRadius, outerRadius);
}

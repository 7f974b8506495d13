// Rolling an unrolled ring up into a new square image around it.
#include <cmath>

#include "AreaOperations.h"
#include "ImageCopies.h"
#include "ImageQueries.h"
#include "Interface/Boundary.h"
#include "PolarTransformations.h"
#include "Scan/PixelType.h"
#include "Scan/ResultImage.h"
#include "Scan/SetPixel.h"
#include "Transformations/Interpolator.h"

namespace Transformations {
namespace {

using Interface::ImageHolder;

constexpr const char *FunctionName = "CreateInversePolarImage";

bool Fail(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return false;
}

/// Fills a plane of a fresh image with its background.
void FillPlane(pOLE::IImageVPA &image, const TArea &area, std::intptr_t plane) {
    TDataType type = DataTypeNone, firstType = DataTypeNone;
    image.GetPlaneDatatype(plane, &type);
    image.GetPlaneDatatype(0, &firstType);
    double value = 0.0;
    Scan::ForPixelType(type, [&]<class T>() {
        value = static_cast<double>(AffineOutsideValue<T>());
        T background = static_cast<T>(0);
        if constexpr (std::is_integral_v<T>)
            background = orvBase::TruncateTo<T>(value); // as the fill below stores it
        // The fill below leaves planes alone whose pixels are not as wide as those of plane 0.
        Image::PlaneFacts facts;
        if (Image::BytesOf(type) != Image::BytesOf(firstType) && Image::ReadPlaneFacts(image, plane, facts)) {
            const Image::PlaneView view = Image::ViewOf(facts, Image::DimensionsOf(image));
            Scan::CSetPixel<T>{&background}.Rows(view);
        }
    });
    InitializeImageAreaEx(&image, plane, value, area);
}

/// An image with nothing but background. Empty, with a report, when it can't be made.
ImageHolder MakeBackground(const ImageHolder &source, double radius) {
    const auto side = orvBase::TruncateTo<std::int64_t>(std::floor(2.0 * radius + 0.5));
    void *made = nullptr;
    const bool isMade = CreateCompatibleImage(source.Get(), side, side, 0, &made);
    ImageHolder target = Scan::AdoptImage(made);
    if (!isMade || !target.IsValid()) {
        Fail(ErrCreateFailed);
        return {};
    }
    TArea area;
    MaxImageArea(target.Get(), &area);
    for (std::intptr_t plane = 0; plane < Image::DimensionsOf(*target.Get()).Planes; ++plane)
        FillPlane(*target.Get(), area, plane);
    return target;
}

} // namespace
} // namespace Transformations

bool CreateInversePolarImage(void *polarImage, void **out, double angleStart, double innerRadius) {
    using namespace Transformations;
    const ImageHolder source = Interface::GuardImage(polarImage, FunctionName);
    if (!source.IsValid())
        return false;
    if (out == nullptr)
        return Fail(ErrParameter);
    return Interface::GeneralBoundary(FunctionName, [&] {
        std::intptr_t planes = 0, width = 0, height = 0;
        const std::int32_t status = source->GetImageDimensions(&planes, &width, &height);
        if (status != Interface::StatusOk)
            return Fail(static_cast<std::uint32_t>(status));
        const double radius = (static_cast<double>(height) - 1) + innerRadius;
        ImageHolder target = MakeBackground(source, radius);
        if (!target.IsValid() ||
            !InversePolarTransform(source.Get(), target.Get(), radius, radius, angleStart, innerRadius))
            return false;
        *out = target.Detach();
        return true;
    });
}

// Counting the grey values of an area.
#include <algorithm>

#include "ImageCoordinates.h"
#include "ImageStatistics.h"
#include "Scan/Histogram.h"
#include "Scan/ImagePlanes.h"
#include "Scan/TypedWalk.h"

namespace Scan {
namespace {

constexpr const char *FunctionName = "ImageHistogram";

std::int32_t Refuse(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return 0;
}

bool IsUnsigned8Bit(TDataType type) {
    return Image::BytesOf(type) < 2 && (type & (DataTypeSigned | DataTypeFloat)) == 0;
}

} // namespace
} // namespace Scan

int32_t ImageHistogram(void *image, intptr_t plane, TArea area, int64_t density, uint64_t *histogram) {
    using namespace Scan;
    const Interface::ImageForCall held = Interface::GuardCall(image, FunctionName);
    if (!held.IsValid())
        return 0;
    if (histogram == nullptr)
        return Refuse(ErrParameter);
    if (!HasPlane(Image::DimensionsOf(*held.Get()), plane))
        return Refuse(ErrPlaneIndex);
    TDataType type = 0;
    if (held->GetPlaneDatatype(plane, &type) != Interface::StatusOk)
        return Refuse(ErrGeneral);
    if (!IsUnsigned8Bit(type))
        return Refuse(ErrDataType);
    TArea pixels = area;
    ImageAreaToPixel(image, &pixels, area);
    std::fill_n(histogram, 256, std::uint64_t{0});
    CHistogram8Bit operation(histogram);
    const std::int64_t counted = TypedWalk<unsigned char>(held.Get(), plane, pixels, density, operation);
    operation.Finish();
    return counted == -1 ? Refuse(ErrGeneral) : 1;
}

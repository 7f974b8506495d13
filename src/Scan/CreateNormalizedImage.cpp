// A new image whose planes are each stretched to a wanted mean and deviation, or to a wanted minimum and maximum.
#include <algorithm>
#include <vector>

#include "ImageCopies.h"
#include "Interface/ErrorTexts.h"
#include "Scan/ImagePlanes.h"
#include "Scan/LinearMap.h"
#include "Scan/PixelType.h"
#include "Scan/ResultImage.h"
#include "ValueMapping.h"

namespace Scan {
namespace {

constexpr const char *FunctionName = "CreateNormalizedImage";

struct Normalization {
    std::int32_t Mode;
    double Target1;
    double Target2;

    bool IsKnown() const { return Mode == NormalizeMeanDeviation || Mode == NormalizeMinimumMaximum; }
    LinearMap MapFor(const Image::PlaneView &plane, TDataType type) const {
        if (Mode == NormalizeMeanDeviation)
            return MapToMeanDeviation(type, MeasureMeanDeviation(plane, type), Target1, Target2);
        return MapToExtremes(type, MeasureExtremes(plane, type), Target1, Target2);
    }
};

/// Reports a failure.
bool Fail(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return false;
}

bool CheckTypes(const std::vector<Image::PlaneFacts> &planes) {
    const auto isKnown = [](const Image::PlaneFacts &plane) {
        return PixelTypeOf(plane.Datatype) != PixelType::Unsupported;
    };
    return std::all_of(planes.begin(), planes.end(), isKnown) || Fail(ErrDataType);
}

bool NormalizePlane(const Normalization &normalization, TDataType type, const Image::PlaneView &source,
                    const Image::PlaneView &target) {
    if (source.Width != target.Width || source.Height != target.Height || source.Bytes != target.Bytes)
        return Fail(ErrNotPossible);
    ApplyLinearMap(normalization.MapFor(source, type), type, source, target);
    return true;
}

/// False, with the failure reported, when the target can't be filled.
bool NormalizePlanes(const Normalization &normalization, pOLE::IImageVPA &source, pOLE::IImageVPA &target) {
    const Image::Dimensions size = Image::DimensionsOf(source), targetSize = Image::DimensionsOf(target);
    std::vector<Image::PlaneFacts> from, to;
    if (!ReadPlanes(source, size, from) || !ReadPlanes(target, targetSize, to) || from.size() != to.size())
        return Fail(ErrGeneral);
    if (!CheckTypes(from))
        return false;
    if (!normalization.IsKnown())
        return Fail(ErrParameter, Interface::ErrorTexts::UnknownNormalizationMode);
    for (std::size_t plane = 0; HasPixels(size) && plane < from.size(); ++plane)
        if (!NormalizePlane(normalization, from[plane].Datatype, Image::ViewOf(from[plane], size),
                            Image::ViewOf(to[plane], targetSize)))
            return false;
    return true;
}

/// The result, or nothing where a failure was reported.
Interface::ImageHolder Normalized(const Normalization &normalization, void *handle, pOLE::IImageVPA &source) {
    void *made = nullptr;
    const bool isMade = CreateCompatibleImage(handle, 0, 0, 0, &made);
    Interface::ImageHolder target = AdoptImage(made);
    if (!isMade || !target.IsValid()) {
        Fail(ErrGeneral);
        return {};
    }
    if (!NormalizePlanes(normalization, source, *target.Get()))
        return {};
    PassCoordinateMap(source, *target.Get());
    return target;
}

} // namespace
} // namespace Scan

int32_t CreateNormalizedImage(void *image, int32_t mode, double target1, double target2, void **result) {
    using namespace Scan;
    const Interface::ImageForCall source = Interface::GuardCall(image, FunctionName);
    if (!source.IsValid())
        return 0;
    if (result == nullptr)
        return Fail(ErrParameter);
    Interface::ImageHolder normalized = Normalized({mode, target1, target2}, image, *source.Get());
    if (!normalized.IsValid())
        return 0;
    *result = normalized.Detach();
    return 1;
}

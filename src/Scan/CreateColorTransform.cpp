// New images whose planes are linear combinations of an image's planes.
#include <algorithm>

#include "ColorTransforms.h"
#include "ImageCreation.h"
#include "Interface/ErrorTexts.h"
#include "Interface/ImageGuard.h"
#include "Scan/ColorMatrix.h"
#include "Scan/ImagePlanes.h"
#include "Scan/PixelType.h"
#include "Scan/ResultImage.h"

namespace Scan {
namespace {

constexpr const char *FunctionName = "CreateColorTransform";
constexpr std::int64_t GreatestTargetDimension = 0x100000;

/// The failure value, with the failure reported.
bool Fail(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return false;
}

struct ColorSource {
    Image::Dimensions Size;
    TDataType Datatype = 0;               ///< of plane 0: all planes are read as this type
    std::vector<Image::PlaneView> Planes; ///< empty for an image without pixels
};

bool ReadSource(pOLE::IImageVPA &image, ColorSource &source) {
    source.Size = Image::DimensionsOf(image);
    if (source.Size.Planes < 1)
        return Fail(ErrDataType);
    if (image.GetPlaneDatatype(0, &source.Datatype) != Interface::StatusOk)
        return Fail(ErrGeneral);
    if (PixelTypeOf(source.Datatype) == PixelType::Unsupported)
        return Fail(ErrDataType);
    std::vector<Image::PlaneFacts> facts;
    if (!ReadPlanes(image, source.Size, facts))
        return Fail(ErrGeneral);
    // Required: planes of different types pass, and a wider one is read as the narrower type of plane 0. A narrower
    // one can't be read as a wider type, since its last pixel would be left.
    for (const Image::PlaneFacts &plane : facts)
        if (Image::BytesOf(plane.Datatype) < Image::BytesOf(source.Datatype))
            return Fail(ErrNotPossible);
    if (HasPixels(source.Size))
        for (const Image::PlaneFacts &plane : facts)
            source.Planes.push_back(ViewOf(plane, source.Size));
    return true;
}

/// Makes the target planes of some rows, from number first on. False when the target refuses one.
bool CombineRows(const ColorSource &source, const ColorRows &rows, pOLE::IImageVPA &target, std::intptr_t first) {
    Image::PlaneView views[MaximumTargets];
    for (std::intptr_t row = 0; row < rows.Count; ++row) {
        Image::PlaneFacts facts;
        if (!Image::ReadPlaneFacts(target, first + row, facts))
            return false;
        views[row] = ViewOf(facts, source.Size);
    }
    CombinePlanes(ChooseColorMethod(source.Datatype, rows), source.Datatype, rows, source.Planes,
                  {views, static_cast<std::size_t>(rows.Count)});
    return true;
}

bool CombineAll(const ColorSource &source, const double *matrix, bool reflects, pOLE::IImageVPA &target,
                std::intptr_t targetPlanes) {
    const std::intptr_t rowLength = source.Size.Planes + 1;
    for (std::intptr_t first = 0; first < targetPlanes && !source.Planes.empty(); first += MaximumTargets) {
        const std::intptr_t count = std::min(MaximumTargets, targetPlanes - first);
        if (!CombineRows(source, {matrix + first * rowLength, source.Size.Planes, count, reflects}, target, first))
            return false;
    }
    return true;
}

/// The new image, or an empty holder with the failure reported.
Interface::ImageHolder Transform(pOLE::IImageVPA &image, std::int64_t targetPlanes, bool reflects,
                                 const double *matrix) {
    ColorSource source;
    if (!ReadSource(image, source))
        return {};
    void *made = nullptr;
    const bool isMade = targetPlanes > 0 && CreateGenericImageDT(targetPlanes, source.Size.Width, source.Size.Height,
                                                                 source.Datatype, &made);
    Interface::ImageHolder target = AdoptImage(isMade ? made : nullptr);
    if (!target.IsValid() || !CombineAll(source, matrix, reflects, *target.Get(), targetPlanes)) {
        Fail(ErrGeneral);
        return {};
    }
    PassCoordinateMap(image, *target.Get());
    return target;
}

} // namespace
} // namespace Scan

int32_t CreateColorTransform(void *image, int64_t targetPlanes, unsigned char absolute, const double *matrix,
                             void **result) {
    using namespace Scan;
    const Interface::ImageForCall source = Interface::GuardCall(image, FunctionName);
    if (!source.IsValid())
        return 0;
    if (result == nullptr)
        return Fail(ErrParameter);
    if (targetPlanes > GreatestTargetDimension)
        return Fail(ErrParameter, Interface::ErrorTexts::InvalidTargetDimension);
    if (matrix == nullptr)
        return Fail(ErrParameter, Interface::ErrorTexts::InvalidInputArray);
    Interface::ImageHolder target = Transform(*source.Get(), targetPlanes, absolute != 0, matrix);
    if (!target.IsValid())
        return 0;
    *result = target.Detach();
    return 1;
}

int32_t CreateLinearCombinationImage(void *image, unsigned char absolute, const double *coefficients, void **result) {
    return CreateColorTransform(image, 1, absolute, coefficients, result);
}

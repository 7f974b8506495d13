#include "Scan/StackReduction.h"

#include "ImageCreation.h"
#include "Scan/ImagePlanes.h"
#include "Scan/ResultImage.h"

namespace Scan {
namespace {

bool Fail(std::uint32_t code, const char *functionName) {
    ReportORVError(code, functionName);
    return false;
}

/// A new image of one plane, or an empty holder.
Interface::ImageHolder MakePlane(const Image::Dimensions &size, TDataType type) {
    void *image = nullptr;
    const bool made = CreateGenericImageDT(1, size.Width, size.Height, type, &image);
    return AdoptImage(made ? image : nullptr);
}

/// The plane of an image that MakePlane made.
bool ViewPlane(const Interface::ImageHolder &image, const Image::Dimensions &size, Image::PlaneView &view) {
    Image::PlaneFacts facts;
    if (!image.IsValid() || !Image::ReadPlaneFacts(*image.Get(), 0, facts))
        return false;
    view = ViewOf(facts, size);
    return true;
}

} // namespace

bool PrepareStack(const char *functionName, Stack &stack) {
    pOLE::IImageVPA &source = *stack.Source.Get();
    const Image::Dimensions size = Image::DimensionsOf(source);
    const bool isTold = source.GetPlaneDatatype(0, &stack.Datatype) == Interface::StatusOk;
    if (!isTold && size.Planes > 0)
        return Fail(ErrGeneral, functionName);
    if (!isTold || PixelTypeOf(stack.Datatype) == PixelType::Unsupported)
        return Fail(ErrDataType, functionName);
    if (size.Planes < 1) // of a size that can't be
        return Fail(ErrGeneral, functionName);
    std::vector<Image::PlaneFacts> facts;
    if (!ReadPlanes(source, size, facts))
        return Fail(ErrGeneral, functionName);
    // Required: planes of different types pass. A wider plane is read as the narrower type of plane 0; a narrower one
    // can't be read as a wider type, since its last pixel would be left.
    for (const Image::PlaneFacts &plane : facts)
        if (Image::BytesOf(plane.Datatype) < Image::BytesOf(stack.Datatype))
            return Fail(ErrNotPossible, functionName);
    stack.First = MakePlane(size, stack.Datatype);
    stack.Second = MakePlane(size, stack.Datatype);
    if (!stack.First.IsValid() || !stack.Second.IsValid())
        return Fail(ErrGeneral, functionName);
    if (!HasPixels(size))
        return true;
    for (const Image::PlaneFacts &plane : facts)
        stack.Planes.push_back(ViewOf(plane, size));
    return (ViewPlane(stack.First, size, stack.Results.First) &&
            ViewPlane(stack.Second, size, stack.Results.Second)) ||
           Fail(ErrGeneral, functionName);
}

} // namespace Scan

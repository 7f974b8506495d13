// A new image of the positions that a function of the caller gives.
#include "ImageCopies.h"
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "Scan/PixelType.h"
#include "Scan/ResultImage.h"
#include "Transformations/ArbitraryTransformer.h"

namespace Transformations {
namespace {

using Interface::ImageHolder;

constexpr const char FunctionName[] = "CreateTransformedImage";

bool Fail(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return false;
}

/// 0, or the error word of what keeps a plane from being filled.
template <class T>
std::uint32_t FillPlane(const ImageHolder &source, pOLE::IImageVPA &target, std::intptr_t plane,
                        const SourcePositions &positions) {
    const Image::Dimensions size = Image::DimensionsOf(target);
    if (plane >= size.Planes)
        return ErrPlaneIndex;
    Image::PlaneFacts facts;
    CArbitraryTransformer<T> transformer(source, positions);
    if (!transformer.SelectPlane(plane) || !Image::ReadPlaneFacts(target, plane, facts) ||
        Image::BytesOf(facts.Datatype) != static_cast<std::intptr_t>(sizeof(T)))
        return ErrNotPossible;
    transformer.Transform(Image::ViewOf(facts, size));
    return 0;
}

/// Required: a plane that can't be filled is reported and changes nothing else.
void FillPlanes(const ImageHolder &source, pOLE::IImageVPA &target, const SourcePositions &positions) {
    const std::intptr_t planes = Image::DimensionsOf(*source.Get()).Planes;
    for (std::intptr_t plane = 0; plane < planes; ++plane) {
        TDataType type = DataTypeNone;
        std::uint32_t status = ErrDataType;
        if (source->GetPlaneDatatype(plane, &type) == Interface::StatusOk)
            Scan::ForPixelType(type, [&]<class T>() { status = FillPlane<T>(source, target, plane, positions); });
        if (status != 0)
            Fail(status);
    }
}

bool IsMissing(const SourcePositions &positions) {
    const auto *callback = std::get_if<CallbackPositions>(&positions);
    return callback != nullptr && callback->Transform == nullptr;
}

/// False, with the failure reported, when there is no result.
bool Make(const ImageHolder &source, std::intptr_t width, std::intptr_t height, const SourcePositions &positions,
          void **out) {
    void *made = nullptr;
    const bool isMade = CreateCompatibleImage(source.Get(), width, height, 0, &made);
    ImageHolder target = Scan::AdoptImage(made);
    if (!isMade || !target.IsValid())
        return Fail(ErrGeneral);
    FillPlanes(source, *target.Get(), positions);
    *out = target.Detach();
    return true;
}

} // namespace

bool CreateTransformedImageFrom(void *image, std::intptr_t width, std::intptr_t height,
                                const SourcePositions &positions, void **out) {
    const ImageHolder source = Interface::GuardImage(image, FunctionName);
    if (!source.IsValid())
        return false;
    if (out == nullptr)
        return Fail(ErrParameter);
    if (width < 1 || height < 1)
        return Fail(ErrParameter, Interface::ErrorTexts::InvalidTargetDimension);
    if (IsMissing(positions))
        return Fail(ErrParameter);
    return Interface::GeneralBoundary(FunctionName, [&] { return Make(source, width, height, positions, out); });
}

} // namespace Transformations

bool CreateTransformedImage(void *image, intptr_t width, intptr_t height, TTransform transform, void *userData,
                            void **out) {
    using namespace Transformations;
    return CreateTransformedImageFrom(image, width, height, CallbackPositions{transform, userData}, out);
}

// The search for maxima of planes of any type, strongest first, with or without fractions of a pixel.
#include "ImageViews.h"
#include "Interface/Boundary.h"
#include "Interface/ImageGuard.h"
#include "PixelList/ClipRectToImage.h"
#include "PixelList/GreedySelection.h"
#include "PixelList/LinearMarkSearch.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Maxima.h"
#include "PixelList/Refinement.h"
#include "Scan/ImagePlanes.h"
#include "Scan/PixelType.h"

namespace PixelList {
namespace {

constexpr const char *FunctionName = "FindSubPixelMaxima";

bool Refuse(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return false;
}

bool IsWhole(const Rectangle &rectangle, const Image::Dimensions &size) {
    return rectangle.Left == 0 && rectangle.Top == 0 && rectangle.Right == size.Width - 1 &&
           rectangle.Bottom == size.Height - 1;
}

/// Columns or rows from first to last; 0 where there is none.
std::intptr_t CountOf(std::int64_t first, std::int64_t last) {
    std::intptr_t count = 0;
    return last >= first && !__builtin_sub_overflow(last, first, &count) && !__builtin_add_overflow(count, 1, &count)
               ? count
               : 0;
}

/// What a rectangle of an image shows, as an image of its own; empty when there is no such rectangle.
Interface::ImageHolder ViewOfRectangle(void *image, const Rectangle &rectangle) {
    void *view = nullptr;
    const bool made =
        CreateImageMap(image, rectangle.Left, rectangle.Top, rectangle.Right, rectangle.Bottom,
                       CountOf(rectangle.Left, rectangle.Right), CountOf(rectangle.Top, rectangle.Bottom), &view);
    return Interface::ImageHolder(made ? static_cast<pOLE::IImageVPA *>(view) : nullptr);
}

struct Request {
    std::intptr_t Plane;
    TDataType Type;
    std::int64_t Locality;
    double Threshold;
    Refinement Fit;
};

/// The maxima of one plane. Result: false when the image refuses its table.
bool Search(pOLE::IImageVPA &image, const Request &request, std::vector<Peak> &peaks) {
    const Image::Dimensions size = Image::DimensionsOf(image);
    Image::PlaneFacts facts{nullptr, nullptr, request.Type};
    if (!Scan::HasPlane(size, request.Plane))
        return false;
    if (!Scan::HasPixels(size))
        return true;
    if (image.GetPlaneVPA(request.Plane, &facts.Base, &facts.Table) < 0 || facts.Base == nullptr ||
        facts.Table == nullptr)
        return false;
    const Image::PlaneView plane = Image::ViewOf(facts, size);
    return Scan::ForPixelType(request.Type, [&]<class T>() {
        MarkedPixels<T> maxima = LinearMarkSearch<T>(plane, request.Threshold);
        SelectGreedily(maxima, plane.Width, plane.Height, request.Locality);
        peaks = RefineMaxima(plane, maxima, request.Fit);
    });
}

/// A list of dimension 3 with its first reference.
ListHolder ListOf(const std::vector<Peak> &peaks) {
    auto *const list = new CPixelList(3);
    ListHolder held(list);
    list->reserve(peaks.size());
    for (const Peak &peak : peaks) {
        const double components[] = {peak.X, peak.Y, peak.Value};
        list->Append(components);
    }
    return held;
}

bool FindInRectangle(void *image, pOLE::IImageVPA &held, Rectangle rectangle, Request request, void **out) {
    const Image::Dimensions size = Image::DimensionsOf(held);
    ClipRectToImage(size, rectangle, false);
    std::vector<Peak> peaks;
    if (!Scan::HasPixels(size) || IsWhole(rectangle, size)) {
        if (!Search(held, request, peaks))
            return Refuse(ErrDataType);
    } else {
        const Interface::ImageHolder view = ViewOfRectangle(image, rectangle);
        if (!view.IsValid())
            return Refuse(ErrGeneral);
        request.Fit.Left = rectangle.Left;
        request.Fit.Top = rectangle.Top;
        if (!Search(*view.Get(), request, peaks))
            return Refuse(ErrDataType);
    }
    *out = ListOf(peaks).Detach();
    return true;
}

} // namespace
} // namespace PixelList

bool FindSubPixelMaxima(void *image, intptr_t plane, int64_t left, int64_t top, int64_t right, int64_t bottom,
                        int64_t Locality, uint32_t fitMode, int32_t Radius, void **list, double Threshold) {
    using namespace PixelList;
    if (Radius < 0 || Radius > HighestRadius)
        return Refuse(ErrParameter);
    return Interface::GeneralBoundary(FunctionName, [&] {
        const Interface::ImageForCall held = Interface::GuardCall(image, FunctionName);
        if (!held.IsValid())
            return false;
        if (!Scan::HasPlane(Image::DimensionsOf(*held.Get()), plane))
            return Refuse(ErrPlaneIndex);
        TDataType type = 0;
        if (held->GetPlaneDatatype(plane, &type) != Interface::StatusOk)
            return Refuse(ErrGeneral);
        if (Scan::PixelTypeOf(type) == Scan::PixelType::Unsupported)
            return Refuse(ErrDataType);
        if (list == nullptr)
            return Refuse(ErrParameter);
        const Refinement fit = {Radius == 0 ? FitNone : fitMode, Radius, 0, 0};
        return FindInRectangle(image, *held.Get(), {left, top, right, bottom},
                               {plane, type, Locality, Threshold, fit}, list);
    });
}

bool FindMaximaEx(void *image, intptr_t plane, int64_t left, int64_t top, int64_t right, int64_t bottom,
                  int64_t Locality, void **list, double Threshold) {
    return FindSubPixelMaxima(image, plane, left, top, right, bottom, Locality, FitNone, 1, list, Threshold);
}

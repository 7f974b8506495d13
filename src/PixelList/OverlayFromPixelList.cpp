// CreateOverlayFromPixelList: marks the points of a pixel list in the overlay of a copy of an image.
#include <vector>

#include "Image/PlaneFacts.h"
#include "ImageCopies.h"
#include "ImageQueries.h"
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "Overlays.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Pixel.h"
#include "Scan/ResultImage.h"
#include "TruncateTo.h"

namespace PixelList {
namespace {

constexpr const char *FunctionName = "CreateOverlayFromPixelList";
constexpr std::uint32_t NothingToDo = 3; // no failure, so that it has no failure bit

struct Place {
    std::intptr_t X;
    std::intptr_t Y;
};

bool Fail(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return false;
}

/// A copy of the image that carries an overlay, or an empty holder.
Interface::ImageHolder MakeTarget(void *image) {
    void *made = nullptr;
    const std::int32_t status =
        IsOverlayImage(image) ? CreateDuplicateImage(image, &made) : CreateOverlayImage(image, &made);
    return status == 0 ? Interface::ImageHolder() : Scan::AdoptImage(made);
}

/// The places of those pixels that lie in an image, fractions dropped, in the order of the list.
std::vector<Place> PlacesInside(const CPixelList &list, const Image::Dimensions &size) {
    std::vector<Place> places;
    places.reserve(list.size());
    for (const CPixel *pixel : list) {
        const auto x = orvBase::TruncateTo<std::int64_t>(pixel->Components[0]);
        const auto y = orvBase::TruncateTo<std::int64_t>(pixel->Components[1]);
        if (x >= 0 && x < size.Width && y >= 0 && y < size.Height)
            places.push_back({x, y});
    }
    return places;
}

/// False, with nothing marked in it, when a plane has no table.
bool MarkPlane(pOLE::IImageVPA &image, std::intptr_t plane, const std::vector<Place> &places) {
    Image::PlaneFacts facts;
    if (image.GetPlaneVPA(plane, &facts.Base, &facts.Table) < 0 || facts.Base == nullptr || facts.Table == nullptr)
        return false;
    char *const base = static_cast<char *>(facts.Base);
    for (const Place &place : places)
        base[facts.Table[place.X].XEntry + facts.Table[place.Y].YEntry] |= 1;
    return true;
}

bool MarkImage(const CPixelList &list, void *image, void **result) {
    Interface::ImageHolder target = MakeTarget(image);
    if (!target.IsValid())
        return Fail(ErrGeneral, Interface::ErrorTexts::NoOutputImage);
    const Image::Dimensions size = Image::DimensionsOf(*target.Get());
    std::vector<Place> places;
    try {
        places = PlacesInside(list, size);
    } catch (...) {
        return Fail(ErrCreateFailed);
    }
    // An image without a pixel has no table to ask for.
    for (std::intptr_t plane = 0; plane < size.Planes && !places.empty(); ++plane)
        if (!MarkPlane(*target.Get(), plane, places))
            return Fail(ErrGeneral, Interface::ErrorTexts::NoOutputImage);
    *result = target.Detach();
    return true;
}

} // namespace
} // namespace PixelList

bool CreateOverlayFromPixelList(void *list, void *image, void **result) {
    using namespace PixelList;
    // Required: an empty list, and a handle that is none, which PixelListCount has reported, are no failure.
    if (PixelListCount(list) < 1) {
        ReportORVError(NothingToDo, FunctionName);
        return true;
    }
    const ListHolder pixels = GuardList(list, FunctionName);
    if (!pixels.IsValid())
        return false;
    if (result == nullptr)
        return Fail(ErrParameter);
    return Interface::GeneralBoundary(FunctionName, [&] { return MarkImage(*pixels.Object(), image, result); });
}

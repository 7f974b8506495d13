// The exported search for maxima with plateaus. The search itself stands in MaximaSearch.cpp.
#include <type_traits>

#include "Image/PlaneFacts.h"
#include "Interface/Boundary.h"
#include "Interface/ImageGuard.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Maxima.h"
#include "PixelList/MaximaSearch.h"
#include "Scan/PixelType.h"

namespace PixelList {
namespace {

constexpr const char *FunctionName = "FindMaxima";
// Required: success is all bits set; callers test for any but 0.
constexpr std::int32_t Success = -1;
constexpr std::int32_t Failure = 0;

std::int32_t Refuse(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return Failure;
}

/// One axis of the rectangle. A side before the first place stands for the edge of its own kind.
void LimitSides(std::int64_t &first, std::int64_t &last, std::int64_t count) {
    if (first < 0)
        first = 0;
    if (last < 0 || last >= count)
        last = count - 1;
}

Rectangle Limited(const Image::Dimensions &size, Rectangle rectangle) {
    // A rectangle that lies behind the image stays as it is, and then has its first column or row behind the last.
    ClipRectToImage(size, rectangle, true);
    LimitSides(rectangle.Left, rectangle.Right, size.Width);
    LimitSides(rectangle.Top, rectangle.Bottom, size.Height);
    return rectangle;
}

// Required: 32-bit pixels are searched when they are signed only.
template <class T>
constexpr bool IsSearched = std::is_integral_v<T> && sizeof(T) <= 4 && !std::is_same_v<T, unsigned int>;

/// False for a plane that can't be searched.
bool Search(pOLE::IImageVPA &image, const Image::Dimensions &size, std::intptr_t plane, TDataType type,
            const MaximaRequest &request, std::vector<Candidate> &maxima) {
    bool isDone = false;
    Scan::ForPixelType(type, [&]<class T>() {
        if constexpr (IsSearched<T>) {
            Image::PlaneFacts facts;
            if (size.Width < 1 || size.Height < 1)
                isDone = true;
            else if (Image::ReadPlaneFacts(image, plane, facts))
                isDone = SearchMaxima<T>(Image::ViewOf(facts, size), request, maxima);
        }
    });
    return isDone;
}

void AppendAll(const std::vector<Candidate> &maxima, CPixelList &list) {
    list.reserve(maxima.size());
    for (const Candidate &maximum : maxima) {
        const double components[] = {static_cast<double>(maximum.X), static_cast<double>(maximum.Y),
                                     static_cast<double>(maximum.Value)};
        list.Append(components);
    }
}

std::int32_t Find(pOLE::IImageVPA &image, std::intptr_t plane, Rectangle rectangle, std::int64_t locality,
                  std::int64_t threshold, void **out) {
    const Image::Dimensions size = Image::DimensionsOf(image);
    if (plane < 0 || plane >= size.Planes)
        return Refuse(ErrPlaneIndex);
    TDataType type = 0;
    if (image.GetPlaneDatatype(plane, &type) != Interface::StatusOk)
        return Refuse(ErrGeneral);
    if ((type & DataTypeFloat) != 0 || Image::BytesOf(type) > 4)
        return Refuse(ErrDataType);
    if (out == nullptr)
        return Refuse(ErrParameter);
    ListHolder list(new CPixelList(3));
    *out = nullptr; // until the search has ended well
    std::vector<Candidate> maxima;
    if (!Search(image, size, plane, type, {Limited(size, rectangle), locality, threshold}, maxima))
        return Failure;
    AppendAll(maxima, *list.Object());
    *out = list.Detach();
    return Success;
}

} // namespace
} // namespace PixelList

int32_t FindMaxima(void *image, intptr_t plane, int64_t left, int64_t top, int64_t right, int64_t bottom,
                   int64_t Locality, int64_t Threshold, void **list) {
    using namespace PixelList;
    return Interface::GeneralBoundary(FunctionName, Failure, [&] {
        const Interface::ImageForCall source = Interface::GuardCall(image, FunctionName);
        return source.IsValid() ? Find(*source.Get(), plane, {left, top, right, bottom}, Locality, Threshold, list)
                                : Failure;
    });
}

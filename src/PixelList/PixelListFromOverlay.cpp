// CreatePixelListFromOverlay: the marked places of an image's overlay as a pixel list. Rows are looked at in blocks,
// of which most have no mark and are passed by as a whole.
#include <array>

#include "ImageQueries.h"
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "PixelList/ClipRectToImage.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Pixel.h"
#include "Scan/ImagePlanes.h"
#include "Scan/OverlayPixels.h"
#include "Scan/PixelRows.h"

namespace PixelList {
namespace {

constexpr const char *FunctionName = "CreatePixelListFromOverlay";

bool Fail(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return false;
}

/// Pixels that are looked at together. A number known to the compiler, which makes vector code of the loop then.
template <class T>
constexpr std::intptr_t BlockPixels = 256 / static_cast<std::intptr_t>(sizeof(T));

template <class T>
[[gnu::always_inline]] inline bool IsAnyMarked(const T *pixels, std::intptr_t count) {
    T together = 0;
    for (std::intptr_t i = 0; i < count; ++i)
        together = static_cast<T>(together | pixels[i]);
    return (together & 1) != 0;
}

/// Appends the marked ones among pixels (x, y) to (x + count - 1, y).
template <class T>
void ListMarked(const T *pixels, std::intptr_t x, std::intptr_t y, std::intptr_t count, CPixelList &list) {
    std::array<double, CPixel::HighestDimension> components = {};
    components[1] = static_cast<double>(y);
    for (std::intptr_t begin = 0; begin < count; begin += BlockPixels<T>) {
        const std::intptr_t end = std::min(begin + BlockPixels<T>, count);
        const bool isAny = end - begin == BlockPixels<T> ? IsAnyMarked(pixels + begin, BlockPixels<T>)
                                                         : IsAnyMarked(pixels + begin, end - begin);
        if (!isAny)
            continue;
        for (std::intptr_t i = begin; i < end; ++i)
            if ((pixels[i] & 1) != 0) {
                components[0] = static_cast<double>(x + i);
                list.Append(components.data());
            }
    }
}

/// Lists the marked places of a part of a plane that has pixels of the unsigned type T, row by row.
template <class T>
void ListPart(const Image::PlaneView &part, const Rectangle &rectangle, CPixelList &list) {
    Scan::Chunk<T> chunk;
    Scan::ForEachPiece<T>(part.Width, part.Height, [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        ListMarked(Scan::PixelsToRead(part, x, y, count, chunk), rectangle.Left + x, rectangle.Top + y, count, list);
    });
}

void ListPlane(const Image::PlaneView &plane, const Rectangle &rectangle, CPixelList &list) {
    const std::intptr_t width = rectangle.Right - rectangle.Left + 1;
    const std::intptr_t height = rectangle.Bottom - rectangle.Top + 1;
    if (width <= 0 || height <= 0)
        return;
    const Image::PlaneView part = plane.Part(rectangle.Left, rectangle.Top, width, height);
    // The overlay is in the first byte of a pixel, which is enough for a width that no pixel type has.
    const bool isTyped = Scan::PixelTypeOf(static_cast<TDataType>(8 * plane.Bytes)) != Scan::PixelType::Unsupported;
    Scan::ForPixelWidth(isTyped ? plane.Bytes : 1, [&]<class T>() { ListPart<T>(part, rectangle, list); });
}

bool ListOverlay(void *image, int64_t dimension, Rectangle rectangle, void **list) {
    if (!IsOverlayImage(image))
        return Fail(ErrNotOverlayImage);
    const Interface::ImageForCall held = Interface::GuardCall(image, FunctionName);
    if (!held.IsValid())
        return false;
    Image::PlaneFacts plane;
    if (held->GetPlaneDatatype(0, &plane.Datatype) != Interface::StatusOk)
        plane.Datatype = 0; // the table decides
    if ((plane.Datatype & DataTypeFloat) != 0)
        return Fail(ErrDataType);
    if (dimension < static_cast<int64_t>(CPixel::LowestDimension) ||
        dimension > static_cast<int64_t>(CPixel::HighestDimension))
        return Fail(ErrParameter, Interface::ErrorTexts::DimensionOutOfRange);
    const Image::Dimensions size = Image::DimensionsOf(*held.Get());
    const bool isTold = held->GetPlaneVPA(0, &plane.Base, &plane.Table) >= 0;
    if (!isTold || (Scan::HasPixels(size) && (plane.Base == nullptr || plane.Table == nullptr)))
        return Fail(ErrPlaneIndex);
    if (!ClipRectToImage(size, rectangle, true))
        return Fail(ErrGeneral, Interface::ErrorTexts::RectangleOutside);
    if (list == nullptr)
        return Fail(ErrParameter);
    ListHolder marked(new CPixelList(static_cast<std::uint64_t>(dimension)));
    ListPlane(Image::ViewOf(plane, size), rectangle, *marked.Object());
    *list = marked.Detach();
    return true;
}

} // namespace
} // namespace PixelList

bool CreatePixelListFromOverlay(void *image, int64_t dimension, int64_t left, int64_t top, int64_t right,
                                int64_t bottom, void **list) {
    using namespace PixelList;
    return Interface::GeneralBoundary(FunctionName, [&] {
        return ListOverlay(image, dimension, {left, top, right, bottom}, list);
    });
}

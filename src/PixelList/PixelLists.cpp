// Making a pixel list, and asking a handle what list it is.
#include "PixelList/Pixel.h"

#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "PixelList/ListGuard.h"

using namespace Interface::ErrorTexts;
using PixelList::CPixel;
using PixelList::CPixelList;

void *CreatePixelList(int64_t dimension) {
    constexpr const char *functionName = "CreatePixelList";
    const auto refuse = [](const char *text) {
        ReportORVErrorEx(ErrParameter, text, functionName);
        return nullptr;
    };
    if (dimension < static_cast<int64_t>(CPixel::LowestDimension))
        return refuse(DimensionTooLow);
    if (dimension > static_cast<int64_t>(CPixel::HighestDimension))
        return refuse(DimensionTooHigh);
    return Interface::GeneralBoundary(functionName, static_cast<void *>(nullptr), [&]() -> void * {
        return (new CPixelList(static_cast<std::uint64_t>(dimension)))->AsUnknown();
    });
}

bool IsPixels(void *list) {
    return PixelList::ListBehind(list) != nullptr;
}

int64_t PixelListDimension(void *list) {
    const PixelList::ListHolder pixels = PixelList::GuardList(list, "PixelListDimension");
    return pixels.IsValid() ? static_cast<int64_t>(pixels.Object()->Dimension) : 0;
}

int64_t PixelListCount(void *list) {
    const PixelList::ListHolder pixels = PixelList::GuardList(list, "PixelListCount");
    return pixels.IsValid() ? static_cast<int64_t>(pixels.Object()->size()) : -1;
}

// SeparatePixels: sorts a list along a direction and thins it.
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Pixel.h"
#include "PixelList/PixelSeparation.h"

bool SeparatePixels(void *list, const double *vector, double separation) {
    using namespace PixelList;
    using namespace Interface::ErrorTexts;
    constexpr const char *functionName = "SeparatePixels";
    const auto refuse = [](std::uint32_t code, const char *text) {
        ReportORVErrorEx(code, text, functionName);
        return false;
    };
    if (vector == nullptr)
        return refuse(ErrParameter, NoProjectionVector);
    if (!(separation > 0.0))
        return refuse(ErrParameter, SeparationNotPositive);
    if (PixelListDimension(list) < 2)
        return refuse(ErrDimension, SeparationDimension);
    if (!SortPixelsEx(list, vector))
        return false;
    const ListHolder pixels = GuardList(list, functionName);
    if (!pixels.IsValid())
        return false;
    return Interface::GeneralBoundary(functionName, [&] {
        RemoveClosePixels(SeparationMethod::ByCells, *pixels.Object(), separation);
        return true;
    });
}

// The exported sorts of pixel lists.
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Maxima.h"
#include "PixelList/SortPixels.h"

namespace PixelList {
namespace {

bool Refuse(std::uint32_t code, const char *text, const char *functionName) {
    ReportORVErrorEx(code, text, functionName);
    return false;
}

/// Runs sort(method, list) on a list of at least three components.
template <class Sort>
bool SortWithValues(void *handle, const char *functionName, Sort &&sort) {
    const ListHolder list = GuardList(handle, functionName);
    if (!list.IsValid())
        return false;
    if (list.Object()->Dimension < 3)
        return Refuse(ErrDimension, nullptr, functionName);
    return Interface::GeneralBoundary(functionName, [&] {
        sort(ChooseSort(list.Object()->size()), *list.Object());
        return true;
    });
}

} // namespace
} // namespace PixelList

bool SortPixelsByValue(void *list) {
    return PixelList::SortWithValues(list, "SortPixelsByValue", PixelList::SortByValue);
}

// Required: a list of dimension 2 is refused, though its positions would do.
bool SortPixelsByPosition(void *list, int64_t dx, int64_t dy) {
    return PixelList::SortWithValues(
        list, "SortPixelsByPosition", [=](PixelList::SortMethod method, PixelList::CPixelList &pixels) {
            PixelList::SortByPosition(method, pixels, PixelList::SortPixelsByPosition{dx, dy});
        });
}

bool SortPixelsEx(void *list, const double *vector) {
    using namespace PixelList;
    constexpr const char *functionName = "SortPixelsEx";
    const ListHolder pixels = GuardList(list, functionName);
    if (!pixels.IsValid())
        return false;
    if (vector == nullptr)
        return Refuse(ErrParameter, nullptr, functionName);
    const std::uint64_t dimension = pixels.Object()->Dimension;
    std::vector<double> direction;
    try {
        direction.assign(vector, vector + dimension);
    } catch (...) {
        return Refuse(ErrGeneral, Interface::ErrorTexts::PixelDataInaccessible, functionName);
    }
    return Interface::GeneralBoundary(functionName, [&] {
        CPixelList &sorted = *pixels.Object();
        SortByProjection(ChooseSort(sorted.size()), sorted, SortPixelsByProjection{dimension, direction.data()});
        return true;
    });
}

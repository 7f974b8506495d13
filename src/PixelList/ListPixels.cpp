// The pixels of a list one by one: appending, overwriting, reading and removing.
#include <algorithm>
#include <cmath>

#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Pixel.h"
#include "TruncateTo.h"

using namespace Interface::ErrorTexts;
using namespace PixelList;

namespace {

bool Refuse(std::uint32_t code, const char *text, const char *functionName) {
    ReportORVErrorEx(code, text, functionName);
    return false;
}

/// False, with the failure reported, for an index out of range. A handle that is no list has a count of -1, which
/// PixelListCount reports before, so that every index is too high.
bool RequireIndex(void *list, int64_t index, std::uint32_t codeOfTooHigh, const char *functionName) {
    if (index < 0)
        return Refuse(ErrElementIndex, NegativeIndex, functionName);
    if (index >= PixelListCount(list))
        return Refuse(codeOfTooHigh, IndexTooHigh, functionName);
    return true;
}

CPixel &PixelAt(const ListHolder &list, int64_t index) {
    return *(*list.Object())[static_cast<std::size_t>(index)];
}

/// Deletes the pixels from index first up to but not including end; those behind move down.
void RemovePixels(CPixelList &list, int64_t first, int64_t end) {
    const auto from = list.begin() + first;
    const auto to = list.begin() + end;
    for (auto pixel = from; pixel != to; ++pixel)
        delete *pixel;
    list.erase(from, to);
}

std::int64_t Rounded(double component) {
    return orvBase::TruncateTo<std::int64_t>(std::floor(0.5 + component));
}

} // namespace

bool AddPixel(void *list, const double *components) {
    constexpr const char *functionName = "AddPixel";
    const ListHolder pixels = GuardList(list, functionName);
    if (!pixels.IsValid())
        return false;
    if (components == nullptr)
        return Refuse(ErrParameter, nullptr, functionName);
    return Interface::GeneralBoundary(functionName, [&] {
        pixels.Object()->Append(components);
        return true;
    });
}

bool ModifyListPixel(void *list, int64_t index, const double *components) {
    constexpr const char *functionName = "ModifyListPixel";
    if (components == nullptr)
        return Refuse(ErrDimension, nullptr, functionName);
    // Required: the readers report another code for an index that is too high.
    if (!RequireIndex(list, index, ErrIndexRange, functionName))
        return false;
    const ListHolder pixels = GuardList(list, functionName);
    if (!pixels.IsValid())
        return false;
    return Interface::GeneralBoundary(functionName, [&] {
        CPixel &pixel = PixelAt(pixels, index);
        for (std::uint64_t i = 0; i < pixels.Object()->Dimension; ++i)
            pixel.At(i) = components[i];
        return true;
    });
}

bool ListPixelEx(void *list, int64_t index, double *components) {
    constexpr const char *functionName = "ListPixelEx";
    if (!RequireIndex(list, index, ErrElementIndex, functionName))
        return false;
    const ListHolder pixels = GuardList(list, functionName);
    if (!pixels.IsValid())
        return false;
    if (components == nullptr)
        return Refuse(ErrParameter, nullptr, functionName);
    const std::uint64_t dimension = pixels.Object()->Dimension;
    std::fill_n(components, dimension, 0.0);
    try {
        const CPixel &pixel = PixelAt(pixels, index);
        for (std::uint64_t i = 0; i < dimension; ++i)
            components[i] = pixel.At(i);
        return true;
    } catch (...) {
        return Refuse(ErrGeneral, PixelDataInaccessible, functionName);
    }
}

bool ListPixel(void *list, int64_t index, int64_t *x, int64_t *y, int64_t *value) {
    constexpr const char *functionName = "ListPixel";
    if (!RequireIndex(list, index, ErrElementIndex, functionName))
        return false;
    const ListHolder pixels = GuardList(list, functionName);
    if (!pixels.IsValid())
        return false;
    if (pixels.Object()->Dimension < 3)
        return Refuse(ErrDimension, nullptr, functionName);
    if (x == nullptr || y == nullptr || value == nullptr)
        return Refuse(ErrParameter, nullptr, functionName);
    return Interface::GeneralBoundary(functionName, [&] {
        const CPixel &pixel = PixelAt(pixels, index);
        const std::int64_t rounded[] = {Rounded(pixel.At(0)), Rounded(pixel.At(1)), Rounded(pixel.At(2))};
        *x = rounded[0];
        *y = rounded[1];
        *value = rounded[2];
        return true;
    });
}

bool RemovePixel(void *list, int64_t index) {
    constexpr const char *functionName = "RemovePixel";
    const ListHolder pixels = GuardList(list, functionName);
    if (!pixels.IsValid() || !RequireIndex(list, index, ErrElementIndex, functionName))
        return false;
    RemovePixels(*pixels.Object(), index, index + 1);
    return true;
}

bool RemoveAllPixels(void *list) {
    const ListHolder pixels = GuardList(list, "RemoveAllPixels");
    // Required: a list that is empty already gives false without a report.
    if (!pixels.IsValid() || pixels.Object()->empty())
        return false;
    pixels.Object()->Clear();
    return true;
}

bool TruncatePixelList(void *list, int64_t count) {
    constexpr const char *functionName = "TruncatePixelList";
    // No failure, so that it has no failure bit.
    constexpr std::uint32_t nothingToDo = 3;
    const ListHolder pixels = GuardList(list, functionName);
    if (!pixels.IsValid())
        return false;
    if (count < 0)
        return Refuse(ErrElementIndex, NegativeIndex, functionName);
    const auto present = static_cast<int64_t>(pixels.Object()->size());
    if (count > present)
        ReportORVErrorEx(nothingToDo, NotEnoughPixels, functionName);
    else
        RemovePixels(*pixels.Object(), count, present);
    return true;
}

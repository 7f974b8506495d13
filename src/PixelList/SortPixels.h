// Sorts the pixels of a list by the orders of Comparators.h, whatever the components: with NaN, infinite ones, or
// differences that overflow or round, no pixel is lost or doubled, and none is next to one that the order puts before
// it. Memory is used where there is some; where there is none, only the last promise needs a true order.
// Throws CImageKernelException when a pixel lacks a component, with the list as it was.
#pragma once

#include <vector>

#include "PixelList/Comparators.h"

namespace PixelList {

enum class SortMethod {
    ByComparisons, ///< a merge sort that compares pixels
    ByKeys         ///< a radix sort of one number per pixel, then the order itself where it differs from the numbers
};

/// The faster method.
SortMethod ChooseSort(std::size_t count);

void SortByValue(SortMethod method, std::vector<CPixel *> &pixels);
void SortByPosition(SortMethod method, std::vector<CPixel *> &pixels, const SortPixelsByPosition &order);
void SortByProjection(SortMethod method, std::vector<CPixel *> &pixels, const SortPixelsByProjection &order);

} // namespace PixelList

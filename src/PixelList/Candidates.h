// What a search finds, before it becomes a pixel list: the order by value, and the choice among maxima that lie
// close.
#pragma once

#include <vector>

#include "PixelList/ClipRectToImage.h"
#include "PixelList/MarkMap.h"

namespace PixelList {

struct Candidate {
    std::int32_t X;
    std::int32_t Y;
    std::int32_t Value;

    bool operator==(const Candidate &) const = default;
};

/// Ascending by value; equal ones keep their order. Cost: one pass over the candidates for each byte of the values in
/// which they differ.
void SortByValue(std::vector<Candidate> &candidates);

/// Takes candidates, which are in the order of SortByValue, from the last to the first. Each that has its mark stays
/// and clears the marks within locality of it in x and in y, inside the rectangle. Of those that stay the ones of
/// value 0 go as well. What is left is descending by value, equal ones in the order in which they were.
/// locality  at least 1. Of any size: the squares of those that stay overlap little, so that each mark is cleared a
/// few times at most.
void SelectByLocality(std::vector<Candidate> &candidates, MarkMap &marks, const Rectangle &rectangle,
                      std::int64_t locality);

} // namespace PixelList

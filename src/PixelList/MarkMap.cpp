#include "PixelList/MarkMap.h"

#include <limits>

#include "CheckedSize.h"

namespace PixelList {

bool MarkMap::Allocate(const Image::Dimensions &size) {
    constexpr std::intptr_t longest = std::numeric_limits<std::int32_t>::max() - WordMarks;
    if (size.Width > longest || size.Height > longest)
        return false;
    rowWords_ = size.Width / WordMarks + 2;
    std::intptr_t words = 0;
    if (!orvBase::CheckedProduct(words, rowWords_, size.Height))
        return false;
    // Zeros of calloc: of a large block they are new pages, which cost nothing where no mark is ever set.
    words_.reset(static_cast<Word *>(std::calloc(static_cast<std::size_t>(words), sizeof(Word))));
    return words_ != nullptr;
}

} // namespace PixelList

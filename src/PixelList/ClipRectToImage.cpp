#include "PixelList/ClipRectToImage.h"

#include <algorithm>

namespace PixelList {

bool ClipRectToImage(const Image::Dimensions &size, Rectangle &rectangle, bool zeroMeansEnd) {
    auto [left, right] = std::minmax({rectangle.Left, rectangle.Right});
    auto [top, bottom] = std::minmax({rectangle.Top, rectangle.Bottom});
    if (left >= size.Width || top >= size.Height)
        return false;
    const auto end = [zeroMeansEnd](std::int64_t last, std::intptr_t count) {
        return zeroMeansEnd && last == 0 ? count - 1 : std::min(last, count - 1);
    };
    rectangle = {std::max<std::int64_t>(left, 0), std::max<std::int64_t>(top, 0), end(right, size.Width),
                 end(bottom, size.Height)};
    return true;
}

} // namespace PixelList

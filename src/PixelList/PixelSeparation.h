// Thins a list of pixels so that no two that are left lie close to each other.
#pragma once

#include "PixelList/PixelListObject.h"

namespace PixelList {

/// How the pixels that stay are looked through for a close one.
enum class SeparationMethod {
    OneByOne, ///< all of them
    ByCells   ///< those in the neighbourhood; OneByOne when there is no memory or the separation is infinite
};

/// Removes, from the front, each pixel that lies within the separation, in x and in y, of one before it that stays.
/// The separation itself counts as close; a component that is no number is close to nothing.
void RemoveClosePixels(SeparationMethod method, CPixelList &list, double separation);

} // namespace PixelList

// Three planes of bytes that lie between each other, under an affine map as one.
#pragma once

#include <span>

#include "Image/PlaneView.h"
#include "Interface/ImageGuard.h"
#include "Transformations/TransTable.h"

namespace Transformations {

/// The image that three planes belong to, and the table of its map.
struct ThreePlaneSource {
    Interface::ImageHolder Image;
    const TransTable &Table;
};

/// Fills the planes of target. False, with nothing done, when source or target do not lie so, or when the image has
/// an overlay.
bool TransformThreeBytes(const ThreePlaneSource &image, std::span<const Image::PlaneView> source,
                         std::span<const Image::PlaneView> target);

} // namespace Transformations

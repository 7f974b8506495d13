// A plane of 8-bit or 16-bit pixels under an affine map, quicker than pixel by pixel and with the same bytes. Three
// planes of bytes that lie between each other on both sides go as one.
#pragma once

#include <functional>

#include "Image/PlaneView.h"
#include "Transformations/TransTable.h"

namespace Transformations {

/// What is done to the pixels of a row in the end.
enum class RowFinish {
    None,
    CopyOverlayBits, ///< bit 0 becomes that of the left upper pixel; not for Image::ThreeBytes
    ReverseBytes     ///< the bytes of each pixel change places; for Image::ThreeBytes
};

/// What the pixels of a result come from. Pixel is a type of 8 or 16 bits, or Image::ThreeBytes.
template <class Pixel>
struct FixedPointSource {
    Image::PlaneView View;
    Pixel Outside; ///< what a pixel without a source gets
    RowFinish Finish;
    /// The plain step for column x and row y of the result.
    std::function<Pixel(std::intptr_t x, std::intptr_t y)> Sample;
};

/// Fills target, as large as the table is made for.
template <class Pixel>
void TransformFixedPoint(const FixedPointSource<Pixel> &source, const TransTable &table,
                         const Image::PlaneView &target);

} // namespace Transformations

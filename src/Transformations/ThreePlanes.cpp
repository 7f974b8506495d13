#include "Transformations/ThreePlanes.h"

#include <algorithm>
#include <array>

#include "Scan/ThreeBytePixels.h"
#include "Transformations/AffineTransformer.h"

namespace Transformations {
namespace {

using ByteTransformer = CAffineTransformerFPA<unsigned char>;

/// The plain step for pixels of three bytes, in the order of the source's memory.
class ThreeSteps {
public:
    explicit ThreeSteps(const ThreePlaneSource &image)
        : planes_{ByteTransformer(image.Image, image.Table), ByteTransformer(image.Image, image.Table),
                  ByteTransformer(image.Image, image.Table)} {}

    bool Select(const std::array<std::size_t, 3> &planeOfByte) {
        bool isSelected = true;
        for (std::size_t byte = 0; byte < 3; ++byte)
            isSelected = planes_[byte].SelectPlane(static_cast<std::intptr_t>(planeOfByte[byte])) && isSelected;
        return isSelected && !planes_[0].Interpolator.OverlayFlag;
    }
    Image::ThreeBytes Sample(std::intptr_t x, std::intptr_t y) const {
        return {{planes_[0].Sample(x, y), planes_[1].Sample(x, y), planes_[2].Sample(x, y)}};
    }
    std::uint8_t OutsideValue() const { return planes_[0].Interpolator.OutsideValue; }

private:
    std::array<ByteTransformer, 3> planes_;
};

/// Rows of three bytes take what lies behind the last column and row from one plane's table: the others must lead to
/// their own bytes of the same pixels there.
bool HaveEqualEdges(std::span<const Image::PlaneView> planes) {
    const auto width = planes[0].Width, height = planes[0].Height;
    const auto column = [=](const Image::PlaneView &plane) {
        return plane.Columns[width].XEntry - plane.Columns[0].XEntry;
    };
    const auto row = [=](const Image::PlaneView &plane) { return plane.Rows[height].YEntry - plane.Rows[0].YEntry; };
    return std::all_of(planes.begin(), planes.end(), [&](const Image::PlaneView &plane) {
        return column(plane) == column(planes[0]) && row(plane) == row(planes[0]);
    });
}

} // namespace

bool TransformThreeBytes(const ThreePlaneSource &image, std::span<const Image::PlaneView> source,
                         std::span<const Image::PlaneView> target) {
    const auto from = Scan::AsThreeBytePixels(source), to = Scan::AsThreeBytePixels(target);
    if (!from || !to || !HaveEqualEdges(source))
        return false;
    const auto &order = from->PlaneOfByte;
    const bool isReversed = order[0] == to->PlaneOfByte[2] && order[2] == to->PlaneOfByte[0];
    ThreeSteps steps(image);
    if ((order != to->PlaneOfByte && !isReversed) || !steps.Select(order))
        return false;
    const std::uint8_t outside = steps.OutsideValue();
    TransformFixedPoint<Image::ThreeBytes>(
        {from->Pixels,
         {{outside, outside, outside}},
         isReversed ? RowFinish::ReverseBytes : RowFinish::None,
         [&steps](std::intptr_t x, std::intptr_t y) { return steps.Sample(x, y); }},
        image.Table, to->Pixels);
    return true;
}

} // namespace Transformations

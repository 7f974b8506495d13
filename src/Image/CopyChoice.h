// Which rectangle is copied, and by which numbered method, told from the facts about both images.
#pragma once

#include <algorithm>
#include <utility>

#include "Image/VpatAnalyzer.h"

namespace Image {

/// The numbers are fixed.
enum class CopyMethod {
    CopyIncompatible = 0,  ///< data types differ
    CopyTableToTable = 1,  ///< neither side is linear
    CopyTableToLinear = 2, ///< only the target is linear
    CopyLinearToTable = 3, ///< only the source is linear
    CopyLinearToLinear = 4,
    CopyLineByLine = 5, ///< both dense with the same step
    CopyWhole = 6,      ///< whole lines of equal layout
    CopyPerPlane = 7    ///< for all planes: no common method
};

/// A rectangle of pixels, edges included.
struct PixelRectangle {
    std::int64_t Left;
    std::int64_t Top;
    std::int64_t Right;
    std::int64_t Bottom;

    std::int64_t Width() const { return Right - Left + 1; }
    std::int64_t Height() const { return Bottom - Top + 1; }
};

struct PixelPosition {
    std::int64_t X;
    std::int64_t Y;
};

/// One axis: clips [first, last] so that it fits behind targetFirst. False when less than nothing is left.
inline bool ClipAxis(std::int64_t &first, std::int64_t &last, std::int64_t targetFirst, std::int64_t targetCount) {
    const std::int64_t count = last - first + 1;
    if (targetFirst < 0) {
        first -= targetFirst;
        return targetFirst + count >= 0;
    }
    const std::int64_t usable = std::min(count, targetCount - targetFirst);
    last = first + usable - 1;
    return usable >= 0;
}

/// Orders the rectangle and clips it to both images. False when nothing is left.
/// A negative target position moves the rectangle's left or top edge and stays negative.
inline bool ClipRect(const Dimensions &source, const Dimensions &target, PixelRectangle &rectangle,
                     PixelPosition &targetPosition) {
    if (rectangle.Left > rectangle.Right)
        std::swap(rectangle.Left, rectangle.Right);
    if (rectangle.Top > rectangle.Bottom)
        std::swap(rectangle.Top, rectangle.Bottom);
    if (rectangle.Left >= source.Width || rectangle.Top >= source.Height || targetPosition.X >= target.Width ||
        targetPosition.Y >= target.Height || rectangle.Bottom < 0 || rectangle.Right < 0)
        return false;
    if (rectangle.Left < 0)
        targetPosition.X -= rectangle.Left;
    if (rectangle.Top < 0)
        targetPosition.Y -= rectangle.Top;
    rectangle.Left = std::max<std::int64_t>(rectangle.Left, 0);
    rectangle.Top = std::max<std::int64_t>(rectangle.Top, 0);
    rectangle.Right = std::min<std::int64_t>(rectangle.Right, source.Width - 1);
    rectangle.Bottom = std::min<std::int64_t>(rectangle.Bottom, source.Height - 1);
    const bool columnsLeft = ClipAxis(rectangle.Left, rectangle.Right, targetPosition.X, target.Width);
    const bool rowsLeft = ClipAxis(rectangle.Top, rectangle.Bottom, targetPosition.Y, target.Height);
    return columnsLeft && rowsLeft;
}
inline bool ClipRect(const vpat_analyzer &source, const vpat_analyzer &target, PixelRectangle &rectangle,
                     PixelPosition &targetPosition) {
    return ClipRect(source.Size(), target.Size(), rectangle, targetPosition);
}

/// The method for one plane pair. wholeLines: the rectangle spans the source's full width.
CopyMethod ChooseCopy(const vpat_analyzer &source, std::intptr_t sourcePlane, const vpat_analyzer &target,
                      std::intptr_t targetPlane, bool wholeLines);

/// The method for all planes of two images with equal plane counts.
CopyMethod ChooseCopyAll(const vpat_analyzer &source, const vpat_analyzer &target, bool wholeLines);

/// Refuses a method that is stronger than the choice for the pair: CImageKernelException with ErrPlaneIndex for a
/// plane number out of range, std::logic_error with its text for all else.
void ValidateCopy(const vpat_analyzer &source, std::intptr_t sourcePlane, const vpat_analyzer &target,
                  std::intptr_t targetPlane, bool wholeLines, CopyMethod requested);

} // namespace Image

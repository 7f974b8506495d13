// Which rectangle is copied, and by which numbered method, told from the facts about both images.
#pragma once

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

/// Orders the rectangle and clips it to both images. False when nothing is left.
/// A negative target position moves the rectangle's left or top edge and stays negative.
bool ClipRect(const vpat_analyzer &source, const vpat_analyzer &target, PixelRectangle &rectangle,
              PixelPosition &targetPosition);

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

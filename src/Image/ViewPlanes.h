// Builds images whose planes are views: a table of their own over the pixels of a plane of another image.
#pragma once

#include "Image/ImageObject.h"
#include "Persistence/Tree/NodeHolder.h"

namespace Image {

/// The inclusive rectangle of a source image that a view shows.
struct SourceRectangle {
    std::intptr_t Left;
    std::intptr_t Top;
    std::intptr_t Right;
    std::intptr_t Bottom;
};

/// Thrown for what no view can show: a plane that the source doesn't have, a size that no image has. A class of its
/// own, so that nothing a source throws is taken for it.
struct ViewNotPossible {};

/// Collects view planes of one size, then makes the image.
class ViewBuilder {
public:
    /// Throws ViewNotPossible for a size that a tree image can't have.
    ViewBuilder(std::intptr_t targetWidth, std::intptr_t targetHeight);

    /// Adds a view of one plane. Throws the text "SourceRectangle outside Image in AffineMap" as a plain pointer for
    /// a rectangle outside, ViewNotPossible for a plane that the source refuses.
    void AddViewPlane(pOLE::IImageVPA &source, std::intptr_t plane, const SourceRectangle &rectangle);
    /// Adds planes first to end - 1, each over the whole source.
    void AddWholePlanes(pOLE::IImageVPA &source, std::intptr_t first, std::intptr_t end);

    /// The image with its one reference.
    Persistence::NodeHolder<TImageObject> Finish(const TCoordinateMap &map);

private:
    std::int32_t width_;
    std::int32_t height_;
    Persistence::NodeHolder<TSList> planes_;
};

/// Fills one axis of a view's table from a source's: entry i is the source's entry trunc(i * count / targetCount) +
/// first. The guard entries are written by the caller.
void MapTable(VPAEntry *target, const VPAEntry *source, std::intptr_t VPAEntry::*axis, std::intptr_t first,
              std::intptr_t last, std::intptr_t targetCount);

} // namespace Image

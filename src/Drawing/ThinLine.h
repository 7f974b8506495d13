// Lines one pixel thick.
#pragma once

#include <optional>

#include "Drawing/Ink.h"
#include "Drawing/LineSteps.h"

namespace Drawing {

/// A plane whose columns and rows have common steps: pixels lie on a lattice of addresses that goes on outside the
/// image. A line may write wherever an address lies in the memory of the plane.
struct Lattice {
    char *First; ///< pixel (0, 0)
    std::intptr_t XStep, YStep;
    std::intptr_t Lowest, Highest; ///< of all pixels, in bytes from the first

    bool Holds(WideInt offset) const { return offset >= Lowest && offset <= Highest; }
    WideInt OffsetOf(Point point) const { return WideInt{point.X} * XStep + WideInt{point.Y} * YStep; }
};
/// Empty for a plane that is none. Cost: one look at the whole table.
std::optional<Lattice> LatticeOf(const DrawnPlane &plane);

/// What lines of one call share. The table is looked at when the first line leaves the image.
class LinePlane {
public:
    explicit LinePlane(const Canvas &canvas) : canvas_(canvas) {}
    LinePlane(const Canvas &canvas, const std::optional<Lattice> &lattice)
        : canvas_(canvas), lattice_(lattice), isAnalysed_(true) {}

    const Drawing::Canvas &Canvas() const { return canvas_; }
    const DrawnPlane &Plane() const { return canvas_.Plane; }
    const std::optional<Drawing::Lattice> &Lattice() {
        if (!isAnalysed_)
            lattice_ = LatticeOf(canvas_.Plane);
        isAnalysed_ = true;
        return lattice_;
    }

private:
    const Drawing::Canvas &canvas_;
    std::optional<Drawing::Lattice> lattice_;
    bool isAnalysed_ = false;
};

/// Draws the pixels of PlainThinLine that lie in the image, or of a plane with common steps those whose address lies
/// in its memory, so that the line goes on in the rows beside when it leaves the image at the side.
void DrawThinLine(LinePlane &plane, Point from, Point to);

} // namespace Drawing

// Copies all pixels of one plane view to another of the same size, by the fastest method that both tables allow.
// The plain method always works; the others give the same bytes. Which one runs is chosen once per view.
#pragma once

#include "Image/PlaneView.h"

namespace Image {

enum class PlaneCopyMethod {
    TableToTable, ///< pixel by pixel through both tables, row by row
    TableToSteps, ///< the same with a constant step on the target's side
    StepsToTable, ///< the same with a constant step on the source's side
    StepsToSteps, ///< the same with constant steps on both sides
    Tiled,        ///< through both tables in squares that stay in the cache
    Rows,         ///< both sides dense in the same direction: a block move per row
    Whole,        ///< rows that follow each other without a gap on both sides: one block move
    Mirrored,     ///< both sides dense in opposite directions
    Transposed,   ///< the target's rows are dense and the source's columns are: square blocks turned in registers
    EveryThird    ///< one of three interleaved 8-bit planes into a dense one
};

inline constexpr PlaneCopyMethod AllPlaneCopyMethods[] = {
    PlaneCopyMethod::TableToTable, PlaneCopyMethod::TableToSteps, PlaneCopyMethod::StepsToTable,
    PlaneCopyMethod::StepsToSteps, PlaneCopyMethod::Tiled,        PlaneCopyMethod::Rows,
    PlaneCopyMethod::Whole,        PlaneCopyMethod::Mirrored,     PlaneCopyMethod::Transposed,
    PlaneCopyMethod::EveryThird};

/// The fastest method that gives the plain result for these two views of disjoint memory.
PlaneCopyMethod ChoosePlaneCopy(const PlaneView &source, const PlaneView &target);

/// True when the method gives the plain result for these two views of disjoint memory.
bool AllowsPlaneCopy(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target);

/// Copies by the method that ChoosePlaneCopy gives, and by what is quickest where memory is known to be disjoint.
void CopyDisjointPlane(const PlaneView &source, const PlaneView &target);

/// True for the pixel widths of an image's planes that are copied pixel by pixel: 1, 2, 4 and 8 bytes.
bool IsTypedWidth(std::intptr_t bytes);

/// Runs a method that is allowed. Bytes and sizes must be equal, and Bytes a typed width, or 3 for three interleaved
/// planes in one go; TableToTable, Rows and Whole take any. The first four methods, Rows and Whole also take views
/// that share memory: rows go from the first to the last, pixels of a row likewise or all at once.
void CopyPlane(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target);

} // namespace Image

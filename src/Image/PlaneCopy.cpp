#include "Image/PlaneCopy.h"

#include <algorithm>
#include <cstring>

#include "CheckedSize.h"
#include "Image/RowKernels.h"

namespace Image {
namespace {

/// Side of the square that is worked through at a time where a turned table would miss the cache at every pixel.
constexpr std::intptr_t TileSide = 64;

/// Where the columns of a view stand: by its table, or by its step.
struct ByTable {
    const VPAEntry *Columns;
    explicit ByTable(const PlaneView &view) : Columns(view.Columns) {}
    std::intptr_t operator[](std::intptr_t x) const { return Columns[x].XEntry; }
};
struct ByStep {
    std::intptr_t First;
    std::intptr_t Step;
    explicit ByStep(const PlaneView &view) : First(view.Columns[0].XEntry), Step(view.XStep) {}
    std::intptr_t operator[](std::intptr_t x) const { return First + x * Step; }
};

template <class T, class SourceColumns, class TargetColumns>
void CopyPixels(const PlaneView &source, const PlaneView &target) {
    const SourceColumns fromColumns(source);
    const TargetColumns toColumns(target);
    for (std::intptr_t y = 0; y < source.Height; ++y) {
        const char *from = source.Row(y);
        char *to = target.Row(y);
        for (std::intptr_t x = 0; x < source.Width; ++x) {
            T pixel;
            std::memcpy(&pixel, from + fromColumns[x], sizeof pixel);
            std::memcpy(to + toColumns[x], &pixel, sizeof pixel);
        }
    }
}

template <class T>
void CopyTiled(const PlaneView &source, const PlaneView &target) {
    for (std::intptr_t top = 0; top < source.Height; top += TileSide)
        for (std::intptr_t left = 0; left < source.Width; left += TileSide) {
            const std::intptr_t width = std::min(TileSide, source.Width - left);
            const std::intptr_t height = std::min(TileSide, source.Height - top);
            CopyPixels<T, ByTable, ByTable>(source.Part(left, top, width, height),
                                            target.Part(left, top, width, height));
        }
}

/// Pixels of any width, through both tables.
void CopyWidePixels(const PlaneView &source, const PlaneView &target) {
    for (std::intptr_t y = 0; y < source.Height; ++y)
        for (std::intptr_t x = 0; x < source.Width; ++x)
            std::memmove(target.Pixel(x, y), source.Pixel(x, y), static_cast<std::size_t>(source.Bytes));
}

/// Moves row after row of two dense views.
template <class MoveRow>
void ForEachDenseRow(const PlaneView &source, const PlaneView &target, MoveRow &&moveRow) {
    const std::intptr_t sourceColumn = source.LowestColumn();
    const std::intptr_t targetColumn = target.LowestColumn();
    for (std::intptr_t y = 0; y < source.Height; ++y)
        moveRow(target.Row(y) + targetColumn, source.Row(y) + sourceColumn);
}

bool HasRowStep(const PlaneView &view) {
    return view.Height == 1 || view.YStep != 0;
}

void CopyRows(const PlaneView &source, const PlaneView &target) {
    const auto rowBytes = static_cast<std::size_t>(source.Width * source.Bytes);
    ForEachDenseRow(source, target, [rowBytes](char *to, const char *from) { std::memmove(to, from, rowBytes); });
}

void CopyWhole(const PlaneView &source, const PlaneView &target) {
    const std::intptr_t lowest = source.YStep < 0 ? source.Height - 1 : 0;
    std::memmove(target.Row(lowest) + target.LowestColumn(), source.Row(lowest) + source.LowestColumn(),
                 static_cast<std::size_t>(source.Width * source.Bytes * source.Height));
}

template <class T>
void CopyMirrored(const PlaneView &source, const PlaneView &target) {
    const auto reverse = RowKernels::Best().Reverse<T>();
    ForEachDenseRow(source, target, [&](char *to, const char *from) { reverse(to, from, source.Width); });
}

/// The source's columns run along memory with YStep +-Bytes, and memory lines follow each other with XStep.
template <class T>
void CopyTransposed(const PlaneView &source, const PlaneView &target) {
    const bool rising = source.YStep > 0;
    for (std::intptr_t top = 0; top < source.Height; top += TileSide) {
        const std::intptr_t rows = std::min(TileSide, source.Height - top);
        // Row i of the turned tile, counted along the source's memory, is row top + i or bottom - i of the target.
        char *targetRows[TileSide];
        for (std::intptr_t i = 0; i < rows; ++i)
            targetRows[i] = target.Pixel(0, rising ? top + i : top + rows - 1 - i);
        const std::intptr_t lowestRow = rising ? top : top + rows - 1;
        for (std::intptr_t left = 0; left < source.Width; left += TileSide)
            TransposeTile<T>(targetRows, left * source.Bytes, source.Pixel(left, lowestRow), source.XStep,
                             std::min(TileSide, source.Width - left), rows);
    }
}

void CopyEveryThird(const PlaneView &source, const PlaneView &target) {
    const auto extract = RowKernels::Best().ExtractEveryThird;
    for (std::intptr_t y = 0; y < source.Height; ++y)
        extract(target.Pixel(0, y), source.Pixel(0, y), source.Width);
}

template <class T>
void Run(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target) {
    switch (method) {
    case PlaneCopyMethod::TableToTable:
        CopyPixels<T, ByTable, ByTable>(source, target);
        break;
    case PlaneCopyMethod::TableToSteps:
        CopyPixels<T, ByTable, ByStep>(source, target);
        break;
    case PlaneCopyMethod::StepsToTable:
        CopyPixels<T, ByStep, ByTable>(source, target);
        break;
    case PlaneCopyMethod::StepsToSteps:
        CopyPixels<T, ByStep, ByStep>(source, target);
        break;
    case PlaneCopyMethod::Tiled:
        CopyTiled<T>(source, target);
        break;
    case PlaneCopyMethod::Mirrored:
        CopyMirrored<T>(source, target);
        break;
    case PlaneCopyMethod::Transposed:
        CopyTransposed<T>(source, target);
        break;
    default:
        break;
    }
}

bool AreDenseAlike(const PlaneView &source, const PlaneView &target) {
    return (source.IsDense(1) && target.IsDense(1)) || (source.IsDense(-1) && target.IsDense(-1));
}

bool IsLinear(const PlaneView &view) {
    return view.Width == 1 || view.XStep != 0;
}

} // namespace

bool AllowsPlaneCopy(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target) {
    const std::intptr_t rowBytes = source.Width * source.Bytes;
    switch (method) {
    case PlaneCopyMethod::TableToTable:
        return true;
    case PlaneCopyMethod::TableToSteps:
        return IsLinear(target);
    case PlaneCopyMethod::StepsToTable:
        return IsLinear(source);
    case PlaneCopyMethod::StepsToSteps:
        return IsLinear(source) && IsLinear(target);
    case PlaneCopyMethod::Tiled:
        return target.HasDistinctPixels();
    case PlaneCopyMethod::Rows:
        return AreDenseAlike(source, target);
    case PlaneCopyMethod::Whole:
        return AreDenseAlike(source, target) && source.YStep == target.YStep &&
               (source.YStep == rowBytes || source.YStep == -rowBytes);
    case PlaneCopyMethod::Mirrored:
        return (source.IsDense(1) && target.IsDense(-1)) || (source.IsDense(-1) && target.IsDense(1));
    case PlaneCopyMethod::Transposed:
        return target.IsDense(1) && target.HasDistinctPixels() && source.Width > 1 && source.XStep != 0 &&
               source.YStep != 0 && (source.YStep == source.Bytes || source.YStep == -source.Bytes);
    case PlaneCopyMethod::EveryThird:
        return source.Bytes == 1 && source.XStep == 3 && target.IsDense(1);
    }
    return false;
}

PlaneCopyMethod ChoosePlaneCopy(const PlaneView &source, const PlaneView &target) {
    for (const auto method : {PlaneCopyMethod::Whole, PlaneCopyMethod::Rows, PlaneCopyMethod::Mirrored,
                              PlaneCopyMethod::Transposed, PlaneCopyMethod::EveryThird})
        if (AllowsPlaneCopy(method, source, target))
            return method;
    const bool rowsFollowMemory = orvBase::Magnitude(source.XStep) <= orvBase::Magnitude(source.YStep);
    if (!rowsFollowMemory && AllowsPlaneCopy(PlaneCopyMethod::Tiled, source, target))
        return PlaneCopyMethod::Tiled;
    if (IsLinear(source))
        return IsLinear(target) ? PlaneCopyMethod::StepsToSteps : PlaneCopyMethod::StepsToTable;
    return IsLinear(target) ? PlaneCopyMethod::TableToSteps : PlaneCopyMethod::TableToTable;
}

void CopyDisjointPlane(const PlaneView &source, const PlaneView &target) {
    if (source.Width < 1 || source.Height < 1)
        return;
    const PlaneCopyMethod method = ChoosePlaneCopy(source, target);
    if (method == PlaneCopyMethod::Rows && HasRowStep(source) && HasRowStep(target))
        RowKernels::Best().CopyRows(target.Row(0) + target.LowestColumn(), target.YStep,
                                    source.Row(0) + source.LowestColumn(), source.YStep, source.Width * source.Bytes,
                                    source.Height);
    else
        CopyPlane(method, source, target);
}

bool IsTypedWidth(std::intptr_t bytes) {
    return bytes == 1 || bytes == 2 || bytes == 4 || bytes == 8;
}

void CopyPlane(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target) {
    if (source.Width < 1 || source.Height < 1)
        return;
    if (method == PlaneCopyMethod::Rows)
        return CopyRows(source, target);
    if (method == PlaneCopyMethod::Whole)
        return CopyWhole(source, target);
    if (method == PlaneCopyMethod::EveryThird)
        return CopyEveryThird(source, target);
    switch (source.Bytes) {
    case 1:
        Run<std::uint8_t>(method, source, target);
        break;
    case 2:
        Run<std::uint16_t>(method, source, target);
        break;
    case 3:
        Run<ThreeBytes>(method, source, target);
        break;
    case 4:
        Run<std::uint32_t>(method, source, target);
        break;
    case 8:
        Run<std::uint64_t>(method, source, target);
        break;
    default:
        CopyWidePixels(source, target);
    }
}

} // namespace Image

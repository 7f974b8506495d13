#include "Image/CopyChoice.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "Interface/ImageKernelException.h"

namespace Image {
namespace {

constexpr unsigned Linear = vpat_analyzer::ClassLinear;
constexpr unsigned Dense = vpat_analyzer::ClassDense;
constexpr unsigned Interleaved = vpat_analyzer::ClassInterleaved;

bool AllPlanesHaveClass3(const vpat_analyzer &image) {
    for (std::intptr_t plane = 0; plane < image.Planes(); ++plane)
        if (image.XClass(plane) != (Linear | Dense))
            return false;
    return true;
}

bool SuitsWholeCopy(const vpat_analyzer &image) {
    return image.Planes() == 1 || AllPlanesHaveClass3(image);
}

bool HaveEqualClasses(const vpat_analyzer &source, const vpat_analyzer &target) {
    for (std::intptr_t plane = 0; plane < source.Planes(); ++plane)
        if (source.XClass(plane) != target.XClass(plane))
            return false;
    return true;
}

bool HaveEqualDatatypes(const vpat_analyzer &source, const vpat_analyzer &target) {
    for (std::intptr_t plane = 0; plane < source.Planes(); ++plane)
        if (source.Datatype(plane) != target.Datatype(plane))
            return false;
    return true;
}

} // namespace

CopyMethod ChooseCopy(const vpat_analyzer &source, std::intptr_t sourcePlane, const vpat_analyzer &target,
                      std::intptr_t targetPlane, bool wholeLines) {
    if (source.Datatype(sourcePlane) != target.Datatype(targetPlane))
        return CopyMethod::CopyIncompatible;
    const unsigned xSource = source.XClass(sourcePlane);
    const unsigned xTarget = target.XClass(targetPlane);
    if (xSource == 0 && xTarget == 0)
        return CopyMethod::CopyTableToTable;
    if (xSource == 0)
        return (xTarget & Linear) != 0 ? CopyMethod::CopyTableToLinear : CopyMethod::CopyLinearToLinear;
    if ((xSource & Linear) != 0 && xTarget == 0)
        return CopyMethod::CopyLinearToTable;
    if ((xSource & xTarget & Dense) == 0 || source.XStep(sourcePlane) != target.XStep(targetPlane))
        return CopyMethod::CopyLinearToLinear;
    if ((source.Planes() > 1 && (xSource & Interleaved) != 0) ||
        (target.Planes() > 1 && (xTarget & Interleaved) != 0))
        return CopyMethod::CopyLinearToLinear;
    const bool whole = wholeLines && SuitsWholeCopy(source) && SuitsWholeCopy(target) &&
                       source.Width() == target.Width() && source.ColumnGap() == target.ColumnGap() &&
                       source.YClass(sourcePlane) == target.YClass(targetPlane);
    return whole ? CopyMethod::CopyWhole : CopyMethod::CopyLineByLine;
}

CopyMethod ChooseCopyAll(const vpat_analyzer &source, const vpat_analyzer &target, bool wholeLines) {
    if (source.Planes() == 1)
        return ChooseCopy(source, 0, target, 0, wholeLines);
    if (!HaveEqualDatatypes(source, target))
        return CopyMethod::CopyIncompatible;
    const bool alike = HaveEqualClasses(source, target) && source.IsInterleaved() && target.IsInterleaved() &&
                       source.MemoryOrder() == target.MemoryOrder() && source.XStep(0) == target.XStep(0) &&
                       source.XStep(0) != 0 && source.YStep(0) != 0 && target.YStep(0) != 0;
    if (!alike)
        return CopyMethod::CopyPerPlane;
    return wholeLines && source.YStep(0) == target.YStep(0) ? CopyMethod::CopyWhole : CopyMethod::CopyLineByLine;
}

void ValidateCopy(const vpat_analyzer &source, std::intptr_t sourcePlane, const vpat_analyzer &target,
                  std::intptr_t targetPlane, bool wholeLines, CopyMethod requested) {
    if (sourcePlane < 0 || sourcePlane >= source.Planes() || targetPlane < 0 || targetPlane >= target.Planes())
        throw ErrorHandling::CImageKernelException(ErrPlaneIndex);
    if (requested == CopyMethod::CopyPerPlane)
        throw std::logic_error("copy mode does not make sense in this context");
    const CopyMethod choice = ChooseCopy(source, sourcePlane, target, targetPlane, wholeLines);
    if (choice == CopyMethod::CopyIncompatible)
        throw std::logic_error("source and destination are incompatible");
    using enum CopyMethod;
    const bool tooStrong =
        (requested == CopyTableToLinear && choice == CopyLinearToTable) ||
        (requested == CopyLinearToLinear && (choice == CopyTableToLinear || choice == CopyLinearToTable)) ||
        (requested == CopyLineByLine && choice != CopyLineByLine && choice != CopyWhole) ||
        (requested == CopyWhole && choice != CopyWhole);
    if (tooStrong)
        throw std::logic_error("incompatible copy mode");
}

} // namespace Image

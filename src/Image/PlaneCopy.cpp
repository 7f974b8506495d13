#include "Image/PlaneCopy.h"

#include <algorithm>
#include <cstring>

#include "Image/RowKernels.h"

namespace Image {
namespace {

/// Side of the square that the plain method works through at a time, so that a turned table stays in the cache.
constexpr std::intptr_t TileSide = 64;

template <class T>
void CopyTile(const PlaneView &source, const PlaneView &target, std::intptr_t left, std::intptr_t top) {
    const std::intptr_t right = std::min(left + TileSide, source.Width);
    const std::intptr_t bottom = std::min(top + TileSide, source.Height);
    for (std::intptr_t y = top; y < bottom; ++y) {
        const char *from = source.Row(y);
        char *to = target.Row(y);
        for (std::intptr_t x = left; x < right; ++x)
            std::memcpy(to + target.Table[x].XEntry, from + source.Table[x].XEntry, sizeof(T));
    }
}

template <class T>
void CopyPlain(const PlaneView &source, const PlaneView &target) {
    for (std::intptr_t top = 0; top < source.Height; top += TileSide)
        for (std::intptr_t left = 0; left < source.Width; left += TileSide)
            CopyTile<T>(source, target, left, top);
}

/// True when the columns of a plane lie side by side, in rising addresses (sign 1) or falling ones (sign -1). A plane
/// of one column does both.
bool IsDense(const PlaneView &plane, std::intptr_t sign) {
    return plane.Width == 1 || plane.XStep == sign * plane.Bytes;
}

/// Start of a row in memory: its leftmost or its rightmost pixel.
char *RowStart(const PlaneView &plane, std::intptr_t y) {
    return std::min(plane.Pixel(0, y), plane.Pixel(plane.Width - 1, y));
}

void CopyRows(const PlaneView &source, const PlaneView &target) {
    const std::intptr_t rowBytes = source.Width * source.Bytes;
    const bool gapless = source.YStep == target.YStep && (source.YStep == rowBytes || source.YStep == -rowBytes);
    if (gapless) {
        const std::intptr_t lowest = source.YStep < 0 ? source.Height - 1 : 0;
        std::memcpy(RowStart(target, lowest), RowStart(source, lowest),
                    static_cast<std::size_t>(rowBytes * source.Height));
        return;
    }
    for (std::intptr_t y = 0; y < source.Height; ++y)
        std::memcpy(RowStart(target, y), RowStart(source, y), static_cast<std::size_t>(rowBytes));
}

template <class T>
void CopyMirrored(const PlaneView &source, const PlaneView &target) {
    for (std::intptr_t y = 0; y < source.Height; ++y)
        ReverseRow<T>(RowStart(target, y), RowStart(source, y), source.Width);
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

template <class T>
void Run(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target) {
    switch (method) {
    case PlaneCopyMethod::Plain:
        CopyPlain<T>(source, target);
        break;
    case PlaneCopyMethod::Rows:
        CopyRows(source, target);
        break;
    case PlaneCopyMethod::Mirrored:
        CopyMirrored<T>(source, target);
        break;
    case PlaneCopyMethod::Transposed:
        CopyTransposed<T>(source, target);
        break;
    }
}

} // namespace

bool AllowsPlaneCopy(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target) {
    switch (method) {
    case PlaneCopyMethod::Plain:
        return true;
    case PlaneCopyMethod::Rows:
        return (IsDense(source, 1) && IsDense(target, 1)) || (IsDense(source, -1) && IsDense(target, -1));
    case PlaneCopyMethod::Mirrored:
        return (IsDense(source, 1) && IsDense(target, -1)) || (IsDense(source, -1) && IsDense(target, 1));
    case PlaneCopyMethod::Transposed:
        return IsDense(target, 1) && source.Width > 1 && source.XStep != 0 &&
               (source.YStep == source.Bytes || source.YStep == -source.Bytes);
    }
    return false;
}

PlaneCopyMethod ChoosePlaneCopy(const PlaneView &source, const PlaneView &target) {
    for (const auto method : {PlaneCopyMethod::Rows, PlaneCopyMethod::Mirrored, PlaneCopyMethod::Transposed})
        if (AllowsPlaneCopy(method, source, target))
            return method;
    return PlaneCopyMethod::Plain;
}

bool IsCopiedWidth(std::intptr_t bytes) {
    return bytes == 1 || bytes == 2 || bytes == 3 || bytes == 4 || bytes == 8;
}

void CopyPlane(PlaneCopyMethod method, const PlaneView &source, const PlaneView &target) {
    if (source.Width < 1 || source.Height < 1)
        return;
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
        break;
    }
}

} // namespace Image

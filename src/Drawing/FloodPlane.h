// A plane with equal steps, turned and mirrored so that neighbours in a row lie as close in memory as they can.
#pragma once

#include <utility>

#include "CheckedSize.h"
#include "Drawing/Point.h"
#include "Image/PlaneView.h"
#include "Scan/PixelRows.h"

namespace Drawing::FloodFill {

/// The four neighbours of a pixel are the same in every turn and mirroring, and so is a region.
struct FloodPlane {
    char *First;
    std::intptr_t Width;
    std::intptr_t Height;
    std::intptr_t XStep;
    std::intptr_t YStep;

    char *Row(std::intptr_t y) const { return First + y * YStep; }
};

/// A linear view, and the position of start in it.
inline FloodPlane FloodPlaneOf(const Image::PlaneView &view, orvBase::Point &start) {
    FloodPlane plane = {view.Pixel(0, 0), view.Width, view.Height, view.XStep, view.YStep};
    const bool isTurned =
        plane.Width == 1 || (plane.Height > 1 && orvBase::Magnitude(plane.YStep) < orvBase::Magnitude(plane.XStep));
    if (isTurned) {
        std::swap(plane.Width, plane.Height);
        std::swap(plane.XStep, plane.YStep);
        std::swap(start.X, start.Y);
    }
    if (plane.Width == 1)
        plane.XStep = view.Bytes;
    if (plane.XStep < 0) {
        plane.First += (plane.Width - 1) * plane.XStep;
        plane.XStep = -plane.XStep;
        start.X = static_cast<std::int32_t>(plane.Width - 1 - start.X);
    }
    return plane;
}

/// Pixels of a row that are an array.
template <class T>
class ArrayRow {
public:
    static constexpr bool IsArray = true;
    ArrayRow(const FloodPlane &plane, std::intptr_t y) : pixels_(reinterpret_cast<T *>(plane.Row(y))) {}
    ORV_INLINE T Get(std::intptr_t x) const { return pixels_[x]; }
    ORV_INLINE void Fill(std::intptr_t first, std::intptr_t last, T word) const {
        constexpr std::intptr_t few = 4;
        if (last - first >= few) {
            std::fill(pixels_ + first, pixels_ + last + 1, word);
            return;
        }
        for (std::intptr_t x = first; x <= last; ++x)
            pixels_[x] = word;
    }

private:
    T *pixels_;
};

/// Pixels of a row that are none.
template <class T>
class SteppedRow {
public:
    static constexpr bool IsArray = false;
    SteppedRow(const FloodPlane &plane, std::intptr_t y) : first_(plane.Row(y)), step_(plane.XStep) {}
    ORV_INLINE T Get(std::intptr_t x) const { return *Address(x); }
    void Fill(std::intptr_t first, std::intptr_t last, T word) const {
        for (std::intptr_t x = first; x <= last; ++x)
            *Address(x) = word;
    }

private:
    using Pixel = typename Scan::Loose<T>::Type;
    ORV_INLINE Pixel *Address(std::intptr_t x) const { return reinterpret_cast<Pixel *>(first_ + x * step_); }

    char *first_;
    std::intptr_t step_;
};

template <class T>
bool HasArrayRows(const FloodPlane &plane) {
    return plane.XStep == static_cast<std::intptr_t>(sizeof(T)) &&
           reinterpret_cast<std::uintptr_t>(plane.First) % alignof(T) == 0 &&
           (plane.Height == 1 || plane.YStep % static_cast<std::intptr_t>(alignof(T)) == 0);
}

} // namespace Drawing::FloodFill

// Filling pixels with a value.
#pragma once

#include "Image/KernelLevel.h"
#include "Image/PlaneView.h"
#include "Scan/PixelRows.h"

namespace Scan {

/// True when writing one value to all pixels of a plane gives the same bytes in any order: no two pixels of this size
/// share some of their bytes only.
bool CanFillInAnyOrder(const Image::PlaneView &plane, std::intptr_t pixelBytes);

/// Writes value to count pixels side by side.
template <class T>
void FillDense(char *target, std::intptr_t count, T value) {
    if constexpr (sizeof(T) == 1) {
        std::memset(target, static_cast<unsigned char>(value), static_cast<std::size_t>(count));
    } else {
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
            auto *const pixels = reinterpret_cast<typename Loose<T>::Type *>(target);
            for (std::intptr_t i = 0; i < count; ++i)
                pixels[i] = value;
        });
    }
}

/// The per-pixel operation of the fills.
template <class T>
struct CSetPixel {
    const T *Value;

    using Pixel = typename Loose<T>::Type;

    static bool IsOrderFree(const Image::PlaneView &plane) {
        return CanFillInAnyOrder(plane, static_cast<std::intptr_t>(sizeof(T)));
    }
    void operator()(Pixel &pixel) const { pixel = *Value; }
    void Row(const Image::PlaneView &plane, std::intptr_t x, std::intptr_t y, std::intptr_t count) const {
        constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
        const std::intptr_t step = LinearStep<T>(plane);
        if (step == size || step == -size)
            FillDense(plane.Pixel(step > 0 ? x : x + count - 1, y), count, *Value);
        else
            FillThroughTable(plane.Part(x, y, count, 1));
    }
    void Rows(const Image::PlaneView &rectangle) const {
        constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
        const std::intptr_t step = LinearStep<T>(rectangle);
        if (step == size || step == -size) {
            const std::intptr_t lowest = rectangle.LowestColumn();
            for (std::intptr_t y = 0; y < rectangle.Height; ++y)
                FillDense(rectangle.Row(y) + lowest, rectangle.Width, *Value);
        } else if (rectangle.Height > 1 && (rectangle.YStep == size || rectangle.YStep == -size)) {
            const std::intptr_t lowest =
                std::min(rectangle.Rows[0].YEntry, rectangle.Rows[rectangle.Height - 1].YEntry);
            for (std::intptr_t x = 0; x < rectangle.Width; ++x)
                FillDense(rectangle.Base + rectangle.Columns[x].XEntry + lowest, rectangle.Height, *Value);
        } else {
            FillThroughTable(rectangle);
        }
    }

private:
    void FillThroughTable(const Image::PlaneView &rectangle) const {
        for (std::intptr_t y = 0; y < rectangle.Height; ++y) {
            char *const row = rectangle.Row(y);
            for (std::intptr_t x = 0; x < rectangle.Width; ++x)
                *reinterpret_cast<Pixel *>(row + rectangle.Columns[x].XEntry) = *Value;
        }
    }
};

} // namespace Scan

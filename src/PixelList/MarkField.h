// The search for maxima in its plain form: a field of marks, rescanned for every maximum. It takes maxima times
// pixels of time; the quick forms are tested against it.
#pragma once

#include "CheckedSize.h"
#include "PixelList/MarkedPixel.h"
#include "Scan/PixelRows.h"

namespace PixelList {

/// One byte per pixel of a plane, with a table of its rows.
class MarkField {
public:
    MarkField(std::intptr_t width, std::intptr_t height) : width_(width) {
        std::size_t count = 0;
        if (!orvBase::CheckedProduct(count, static_cast<std::size_t>(width), static_cast<std::size_t>(height)))
            throw std::bad_alloc();
        marks_.resize(count);
        for (std::intptr_t y = 0; y < height; ++y)
            rows_.push_back(marks_.data() + y * width);
    }

    unsigned char &At(std::intptr_t x, std::intptr_t y) { return rows_[static_cast<std::size_t>(y)][x]; }
    /// Clears the marks of a square, as far as it lies in the field.
    void ClearAround(std::intptr_t x, std::intptr_t y, std::int64_t halfWidth) {
        const auto height = static_cast<std::intptr_t>(rows_.size());
        const std::intptr_t reach = std::min<std::int64_t>(halfWidth, std::max(width_, height));
        for (std::intptr_t row = std::max<std::intptr_t>(0, y - reach); row <= std::min(height - 1, y + reach); ++row)
            for (std::intptr_t column = std::max<std::intptr_t>(0, x - reach);
                 column <= std::min(width_ - 1, x + reach); ++column)
                At(column, row) = 0;
    }

private:
    std::intptr_t width_;
    std::vector<unsigned char> marks_;
    std::vector<unsigned char *> rows_;
};

template <class T>
T PixelAt(const Image::PlaneView &plane, std::intptr_t x, std::intptr_t y) {
    return *reinterpret_cast<const typename Scan::Loose<T>::Type *>(plane.Pixel(x, y));
}

/// Pixels outside the plane take no part.
template <class T>
bool HasGreaterNeighbour(const Image::PlaneView &plane, std::intptr_t x, std::intptr_t y) {
    for (std::intptr_t row = std::max<std::intptr_t>(0, y - 1); row <= std::min(plane.Height - 1, y + 1); ++row)
        for (std::intptr_t column = std::max<std::intptr_t>(0, x - 1); column <= std::min(plane.Width - 1, x + 1);
             ++column)
            if (PixelAt<T>(plane, column, row) > PixelAt<T>(plane, x, y))
                return true;
    return false;
}

/// Marks pixels that are at least the threshold, in the pixel's type or above, and have no greater neighbour.
template <class T, class Threshold>
void MarkPlainly(const Image::PlaneView &plane, Threshold threshold, MarkField &marks) {
    for (std::intptr_t y = 0; y < plane.Height; ++y)
        for (std::intptr_t x = 0; x < plane.Width; ++x)
            marks.At(x, y) = PixelAt<T>(plane, x, y) >= threshold && !HasGreaterNeighbour<T>(plane, x, y) ? 1 : 0;
}

/// Takes the strongest marked pixel and clears the marks around it until none is left.
template <class T>
MarkedPixels<T> SelectByRescan(const Image::PlaneView &plane, MarkField &marks, std::int64_t locality) {
    MarkedPixels<T> taken;
    while (true) {
        MarkedPixel<T> best{0, 0, ValueBelowAll<T>};
        for (std::intptr_t y = 0; y < plane.Height; ++y)
            for (std::intptr_t x = 0; x < plane.Width; ++x)
                if (marks.At(x, y) != 0 && PixelAt<T>(plane, x, y) > best.Value)
                    best = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), PixelAt<T>(plane, x, y)};
        if (best.Value == ValueBelowAll<T>)
            return taken;
        taken.push_back(best);
        marks.ClearAround(best.X, best.Y, std::max<std::int64_t>(locality, 0));
    }
}

} // namespace PixelList

// Summing up three planes over an area.
#pragma once

#include <array>
#include <type_traits>

#include "Image/PlaneView.h"
#include "Scan/PixelRows.h"
#include "Scan/ThreeBytePixels.h"

namespace Scan {

/// Adds up count 8-bit pixels of each of three planes that lie as dense groups of three; sums[k] gets byte k.
void AddThreeBytePixels(const unsigned char *pixels, std::intptr_t count, std::uint64_t (&sums)[3]);

/// The sum of count integers, sign-extended and wrapping.
template <class T>
std::uint64_t SumOf(const T *pixels, std::intptr_t count);

/// The per-pixel operation of the white balance measurement.
template <class T>
class CWhiteBalanceSum {
public:
    /// Integers add up in 64 bits and wrap, floats in double, in the order of the walk.
    using Sum = std::conditional_t<std::is_integral_v<T>, std::uint64_t, double>;
    static constexpr bool IsOrderFree = std::is_integral_v<T>;

    explicit CWhiteBalanceSum(const std::array<Image::PlaneView, 3> &planes)
        : planes_(planes), groups_(GroupsOf(planes)) {}

    const std::array<Sum, 3> &Sums() const { return sums_; }

    bool WantsLines() const { return false; }
    bool BeginLine(std::int64_t) const { return true; }
    bool EndLine(std::int64_t) const { return true; }
    bool Pixel(std::int32_t x, std::int32_t y) {
        for (std::size_t i = 0; i < planes_.size(); ++i)
            sums_[i] += static_cast<Sum>(*reinterpret_cast<const typename Loose<T>::Type *>(planes_[i].Pixel(x, y)));
        return true;
    }
    void Span(std::int32_t left, std::int32_t y, std::int64_t width) { Rectangle(left, y, width, 1); }
    void Rectangle(std::int32_t left, std::int32_t top, std::int64_t width, std::int64_t height) {
        if (!groups_)
            return AddPlanes(left, top, width, height);
        for (std::int64_t y = top; y < top + height; ++y)
            AddGroups(left, y, width);
    }

private:
    static std::optional<ThreeBytePixels> GroupsOf(const std::array<Image::PlaneView, 3> &planes) {
        const bool areBytes = sizeof(T) == 1 && std::is_unsigned_v<T>;
        return areBytes ? AsThreeBytePixels(planes) : std::nullopt;
    }
    void AddGroups(std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        const Image::PlaneView &pixels = groups_->Pixels;
        const char *const lowest = pixels.Pixel(pixels.XStep > 0 ? x : x + count - 1, y);
        std::uint64_t sums[3] = {};
        AddThreeBytePixels(reinterpret_cast<const unsigned char *>(lowest), count, sums);
        for (std::size_t byte = 0; byte < 3; ++byte)
            sums_[groups_->PlaneOfByte[byte]] += static_cast<Sum>(sums[byte]);
    }
    void AddPlanes(std::int32_t left, std::int32_t top, std::int64_t width, std::int64_t height) {
        Chunk<T> chunk;
        for (std::size_t i = 0; i < planes_.size(); ++i) {
            const Image::PlaneView part = planes_[i].Part(left, top, width, height);
            ForEachPiece<T>(width, height, [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
                if constexpr (IsOrderFree)
                    sums_[i] += SumOf(PixelsToRead(part, x, y, count, chunk), count);
            });
        }
    }

    std::array<Image::PlaneView, 3> planes_;
    std::array<Sum, 3> sums_{};
    std::optional<ThreeBytePixels> groups_; ///< where the planes lie so
};

} // namespace Scan

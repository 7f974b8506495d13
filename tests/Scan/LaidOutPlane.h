/* A plane of given pixels in a memory layout of its own, as the algorithms see planes. */
#ifndef ORV_TESTS_LAID_OUT_PLANE_H
#define ORV_TESTS_LAID_OUT_PLANE_H

#include "Image/KernelLevel.h"
#include "Image/PlaneView.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace TestSupport {

enum class PlaneLayout { Dense, Padded, Misaligned, Mirrored, BottomUp, Spaced, Interleaved, Turned, Scattered };
inline constexpr PlaneLayout AllPlaneLayouts[] = {
    PlaneLayout::Dense,       PlaneLayout::Padded,   PlaneLayout::Misaligned,
    PlaneLayout::Mirrored,    PlaneLayout::BottomUp, PlaneLayout::Spaced,
    PlaneLayout::Interleaved, PlaneLayout::Turned,   PlaneLayout::Scattered};

/// Owns its memory and its table, and is as large as its pixels reach.
template <class T>
class LaidOutPlane {
public:
    LaidOutPlane(std::intptr_t width, std::intptr_t height, PlaneLayout layout)
        : width_(width), height_(height), table_(static_cast<std::size_t>(std::max(width, height))) {
        const auto size = static_cast<std::intptr_t>(sizeof(T));
        std::intptr_t x = size, y = width * size, start = 0;
        switch (layout) {
        case PlaneLayout::Dense:
        case PlaneLayout::Scattered:
            break;
        case PlaneLayout::Padded:
            y += 5 * size;
            break;
        case PlaneLayout::Misaligned:
            start = 1;
            break;
        case PlaneLayout::Mirrored:
            x = -size;
            break;
        case PlaneLayout::BottomUp:
            y = -y;
            break;
        case PlaneLayout::Spaced:
            x *= 2;
            y *= 2;
            break;
        case PlaneLayout::Interleaved:
            x *= 3;
            y *= 3;
            break;
        case PlaneLayout::Turned:
            x = height * size;
            y = size;
            break;
        }
        memory_.resize(
            static_cast<std::size_t>(std::abs(x) * (width - 1) + std::abs(y) * (height - 1) + size + start));
        for (std::intptr_t i = 0; i < width; ++i)
            table_[static_cast<std::size_t>(i)].XEntry = i * x;
        for (std::intptr_t j = 0; j < height; ++j)
            table_[static_cast<std::size_t>(j)].YEntry = j * y;
        origin_ =
            start + std::max<std::intptr_t>(0, -x * (width - 1)) + std::max<std::intptr_t>(0, -y * (height - 1));
        if (layout == PlaneLayout::Scattered)
            for (std::intptr_t i = 0; i + 2 < width; i += 3)
                std::swap(table_[static_cast<std::size_t>(i)].XEntry, table_[static_cast<std::size_t>(i + 2)].XEntry);
    }
    LaidOutPlane(std::intptr_t width, std::intptr_t height, PlaneLayout layout, const std::vector<T> &pixels)
        : LaidOutPlane(width, height, layout) {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            std::memcpy(Address(i), &pixels[i], sizeof(T));
    }
    LaidOutPlane(const LaidOutPlane &) = delete;
    LaidOutPlane &operator=(const LaidOutPlane &) = delete;

    Image::PlaneView View() {
        const Image::TableSteps steps = Image::CommonSteps({table_.data(), width_, table_.data(), height_});
        return {memory_.data() + origin_,
                table_.data(),
                table_.data(),
                width_,
                height_,
                static_cast<std::intptr_t>(sizeof(T)),
                steps.X,
                steps.Y};
    }
    std::vector<T> Pixels() {
        std::vector<T> pixels(static_cast<std::size_t>(width_ * height_));
        for (std::size_t i = 0; i < pixels.size(); ++i)
            std::memcpy(&pixels[i], Address(i), sizeof(T));
        return pixels;
    }

private:
    char *Address(std::size_t pixel) {
        const std::size_t x = pixel % static_cast<std::size_t>(width_), y = pixel / static_cast<std::size_t>(width_);
        return memory_.data() + origin_ + table_[x].XEntry + table_[y].YEntry;
    }

    std::intptr_t width_, height_, origin_ = 0;
    std::vector<VPAEntry> table_;
    std::vector<char> memory_;
};

/// Random pixels of all magnitudes, with the limits of the type among them, and infinities and what is no number
/// where the type has them.
template <class T>
std::vector<T> WildPixels(std::intptr_t count, std::uint32_t seed) {
    using Limits = std::numeric_limits<T>;
    std::mt19937_64 random(seed);
    std::vector<T> pixels(static_cast<std::size_t>(count));
    for (T &pixel : pixels) {
        const std::uint64_t word = random();
        if constexpr (std::is_floating_point_v<T>) {
            const T special[] = {Limits::max(),
                                 Limits::lowest(),
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 Limits::quiet_NaN(),
                                 Limits::denorm_min(),
                                 T{0},
                                 -T{0}};
            const auto scale = static_cast<T>(word % 16 == 0 ? 1e30 : word % 16 < 4 ? 1.0 : 1e5);
            pixel = word % 64 < 8 ? special[word % 8]
                                  : scale * (static_cast<T>(word >> 40) / static_cast<T>(1 << 23) - T{1});
        } else {
            pixel = word % 64 == 0   ? Limits::max()
                    : word % 64 == 1 ? Limits::lowest()
                                     : static_cast<T>(word >> (8 + word % 24));
        }
    }
    return pixels;
}

/// The data type word of a pixel type.
template <class T>
constexpr TDataType WordOf() {
    return static_cast<TDataType>(8 * sizeof(T)) | (std::is_floating_point_v<T> ? DataTypeFloat : 0u) |
           (std::is_integral_v<T> && std::is_signed_v<T> ? DataTypeSigned : 0u);
}

/// Calls visit.operator()<T>() with each of the ten pixel types.
template <class Visit>
void ForAllPixelTypes(Visit &&visit) {
    visit.template operator()<char>();
    visit.template operator()<unsigned char>();
    visit.template operator()<short>();
    visit.template operator()<unsigned short>();
    visit.template operator()<int>();
    visit.template operator()<unsigned int>();
    visit.template operator()<long>();
    visit.template operator()<unsigned long>();
    visit.template operator()<float>();
    visit.template operator()<double>();
}

/// Calls visit(level) while each level of this processor is forced.
template <class Visit>
void AtAllLevels(Visit &&visit) {
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        visit(Image::NameOf(level));
    }
}

} // namespace TestSupport

#endif

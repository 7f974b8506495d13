/* An image of one plane in memory of many forms that ends at an unreadable page, and the comparison of pixels that
 * were sampled in double. */
#ifndef ORV_TESTS_FENCED_IMAGE_H
#define ORV_TESTS_FENCED_IMAGE_H

#include "Image/FencedPiece.h"
#include "Interface/ImageGuard.h"
#include "Scan/LaidOutPlane.h"

#include <cmath>

namespace TestSupport {

enum class Form { Dense, Padded, Misaligned, Mirrored, BottomUp, EveryOther, Interleaved, Turned, Scattered, OneRow };
inline constexpr Form AllForms[] = {Form::Dense,     Form::Padded,     Form::Misaligned,  Form::Mirrored,
                                    Form::BottomUp,  Form::EveryOther, Form::Interleaved, Form::Turned,
                                    Form::Scattered, Form::OneRow};

struct Axes {
    std::intptr_t Start, XStep, YStep;
};

inline Axes AxesOf(Form form, std::intptr_t width, std::intptr_t height, std::intptr_t size) {
    switch (form) {
    case Form::Padded:
        return {0, size, (width + 5) * size};
    case Form::Misaligned:
        return {1, size, width * size + 3};
    case Form::Mirrored:
        return {(width - 1) * size, -size, width * size};
    case Form::BottomUp:
        return {(height - 1) * width * size, size, -width * size};
    case Form::EveryOther:
        return {0, 2 * size, 2 * width * size};
    case Form::Interleaved:
        return {0, 3 * size, 3 * width * size};
    case Form::Turned:
        return {0, height * size, size};
    case Form::OneRow:
        return {0, size, 0};
    case Form::Dense:
    case Form::Scattered:
        break;
    }
    return {0, size, width * size};
}

/// An image of one plane that fills its memory up to an unreadable page, or from one on.
template <class T>
class FencedImage {
public:
    FencedImage(Form form, std::intptr_t width, std::intptr_t height, FencedBlock::Fence fence, bool overlay,
                std::uint32_t seed)
        : memory_(std::size_t{1} << 16, fence), image_(width, height) {
        constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
        const Axes axes = AxesOf(form, width, height, size);
        const std::intptr_t reach = std::abs(axes.XStep) * (width - 1) + std::abs(axes.YStep) * (height - 1) + size;
        const std::intptr_t lead = form == Form::Misaligned ? 1 : 0;
        std::uint8_t *const first = memory_.Take(static_cast<std::size_t>(reach + lead));
        const bool scattered = form == Form::Scattered;
        const auto column = [=](std::intptr_t i) { return scattered && i % 3 != 2 && (i ^ 1) < width ? i ^ 1 : i; };
        const auto xEntry = [=](std::intptr_t i) { return column(i) * axes.XStep; };
        const auto yEntry = [=](std::intptr_t j) { return j * axes.YStep; };
        const auto pixels = WildPixels<T>(width * height, seed);
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x)
                std::memcpy(first + axes.Start + xEntry(x) + yEntry(y),
                            &pixels[static_cast<std::size_t>(y * width + x)], sizeof(T));
        image_.AddPlane(first + axes.Start, WordOf<T>() | (overlay ? DataTypeOverlay : 0u), xEntry, yEntry);
    }

    Interface::ImageHolder Hold() { return Interface::ImageHolder::Share(&image_); }

private:
    FencedPiece memory_;
    FakeImage image_;
};

/// Which of two numbers that are none a sum passes on is not promised.
template <class T>
bool IsSame(T a, T b) {
    if constexpr (std::is_floating_point_v<T>)
        if (std::isnan(a) && std::isnan(b))
            return true;
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace TestSupport

#endif

/* Planes of a few pixels in one block of memory, laid out in several ways, as views for the inside of the library. */
#ifndef ORV_TESTS_PLANE_LAYOUTS_H
#define ORV_TESTS_PLANE_LAYOUTS_H

#include "Image/PlaneView.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace PlaneLayouts {

enum class Layout { Planar, Interleaved, MirroredInterleaved, BottomUp, Turned, EveryOther, Scattered, SharedRows };

inline constexpr Layout AllLayouts[] = {Layout::Planar,    Layout::Interleaved, Layout::MirroredInterleaved,
                                        Layout::BottomUp,  Layout::Turned,      Layout::EveryOther,
                                        Layout::Scattered, Layout::SharedRows};

inline const char *NameOf(Layout layout) {
    constexpr const char *names[] = {"planar",      "interleaved", "mirrored interleaved", "bottom-up", "turned",
                                     "every other", "scattered",   "shared rows"};
    return names[static_cast<std::size_t>(layout)];
}

class Planes {
public:
    Planes(Layout layout, std::intptr_t count, std::intptr_t width, std::intptr_t height, std::intptr_t bytes)
        : Memory(static_cast<std::size_t>(2 * count * (width + 3) * height * bytes)) {
        tables_.resize(static_cast<std::size_t>(count));
        for (std::intptr_t plane = 0; plane < count; ++plane)
            Add(layout, plane, count, width, height, bytes);
    }
    Planes(const Planes &) = delete;
    Planes &operator=(const Planes &) = delete;

    std::vector<unsigned char> Memory;
    std::vector<Image::PlaneView> Views;

    void Fill(std::mt19937 &random) {
        std::generate(Memory.begin(), Memory.end(), [&] {
            const auto number = random();
            return static_cast<unsigned char>(number % 5 == 0 ? 0 : number % 5 == 1 ? 255 : number >> 8);
        });
    }

    /// Which of two numbers that are none a sum or product passes on is not promised: makes all of them one.
    template <class T>
    void MakeNaNsAlike() {
        for (const Image::PlaneView &view : Views)
            for (std::intptr_t y = 0; y < view.Height; ++y)
                for (std::intptr_t x = 0; x < view.Width; ++x) {
                    T pixel;
                    std::memcpy(&pixel, view.Pixel(x, y), sizeof pixel);
                    if (std::isnan(pixel))
                        pixel = std::numeric_limits<T>::quiet_NaN();
                    std::memcpy(view.Pixel(x, y), &pixel, sizeof pixel);
                }
    }
    void MakeNaNsAlike(TDataType type) {
        if ((type & DataTypeFloat) == 0)
            return;
        if ((type & DataTypeBitsMask) == 32)
            MakeNaNsAlike<float>();
        else
            MakeNaNsAlike<double>();
    }

private:
    struct Axis {
        std::intptr_t Start;
        std::intptr_t Step; ///< 0 for entries in no order
    };
    std::vector<std::vector<VPAEntry>> tables_;

    void Add(Layout layout, std::intptr_t plane, std::intptr_t count, std::intptr_t width, std::intptr_t height,
             std::intptr_t bytes) {
        const std::intptr_t pitch = count * (width + 3) * bytes;
        const std::intptr_t planeBytes = (width + 3) * height * bytes;
        Axis x = {plane * planeBytes, bytes};
        Axis y = {0, (width + 3) * bytes};
        switch (layout) {
        case Layout::Planar:
        case Layout::Scattered:
            break;
        case Layout::Interleaved: // the last plane first
            x = {(count - 1 - plane) * bytes, count * bytes};
            y.Step = pitch;
            break;
        case Layout::MirroredInterleaved:
            x = {((width - 1) * count + plane) * bytes, -count * bytes};
            y.Step = pitch;
            break;
        case Layout::BottomUp:
            y = {(height - 1) * y.Step, -y.Step};
            break;
        case Layout::Turned:
            x.Step = height * bytes;
            y.Step = bytes;
            break;
        case Layout::EveryOther:
            x = {2 * plane * planeBytes, 2 * bytes};
            y.Step = 2 * (width + 3) * bytes;
            break;
        case Layout::SharedRows: // rows overlap by all but one pixel, planes by all but one row
            x.Start = plane * bytes;
            y.Step = bytes;
            break;
        }
        std::vector<VPAEntry> &table = tables_[static_cast<std::size_t>(plane)];
        table.resize(static_cast<std::size_t>(std::max(width, height)));
        for (std::intptr_t i = 0; i < width; ++i)
            table[static_cast<std::size_t>(i)].XEntry = x.Start + i * x.Step;
        for (std::intptr_t i = 0; i < height; ++i)
            table[static_cast<std::size_t>(i)].YEntry = y.Start + i * y.Step;
        if (layout == Layout::Scattered) {
            for (std::intptr_t i = 0; i + 1 < width; i += 2)
                std::swap(table[static_cast<std::size_t>(i)].XEntry, table[static_cast<std::size_t>(i + 1)].XEntry);
            if (width > 2)
                x.Step = 0;
        }
        Views.push_back({reinterpret_cast<char *>(Memory.data()), table.data(), table.data(), width, height, bytes,
                         width > 1 ? x.Step : 0, height > 1 ? y.Step : 0});
        if (layout == Layout::Scattered && width == 2)
            Views.back().XStep = -x.Step;
    }
};

} // namespace PlaneLayouts

#endif

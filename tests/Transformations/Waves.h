/* Smooth pictures for comparisons of sampling, how steep they are, and how far two samplings are apart. */
#pragma once

#include "Transformations/TransformChecks.h"

namespace Waves {

using namespace TransformModel;

inline constexpr std::intptr_t Width = 160, Height = 120;

/// Waves of some pixels' length between two whole numbers.
template <class T>
std::unique_ptr<FakeImage> WavesOf(TDataType type, double smallest, double largest) {
    std::vector<T> pixels;
    for (std::intptr_t y = 0; y < Height; ++y)
        for (std::intptr_t x = 0; x < Width; ++x) {
            const double wave = std::sin(static_cast<double>(x) / 17.0) * std::cos(static_cast<double>(y) / 13.0);
            pixels.push_back(static_cast<T>(std::lround(smallest + (0.5 + 0.5 * wave) * (largest - smallest))));
        }
    return ImageOf(Width, Height, type, pixels);
}

/// The largest step from a pixel to its right and to its lower neighbour.
template <class T>
std::pair<double, double> Steepest(const std::vector<T> &pixels) {
    double right = 0.0, down = 0.0;
    const auto at = [&](std::intptr_t x, std::intptr_t y) {
        return static_cast<double>(pixels[static_cast<std::size_t>(y * Width + x)]);
    };
    for (std::intptr_t y = 0; y + 1 < Height; ++y)
        for (std::intptr_t x = 0; x + 1 < Width; ++x) {
            right = std::max(right, std::fabs(at(x + 1, y) - at(x, y)));
            down = std::max(down, std::fabs(at(x, y + 1) - at(x, y)));
        }
    return {right, down};
}

struct Difference {
    double Largest = 0.0, Sum = 0.0;
    std::intptr_t Count = 0;
    void Add(double difference) {
        Largest = std::max(Largest, std::fabs(difference));
        Sum += difference;
        ++Count;
    }
};

/// The maps that are compared.
inline const std::initializer_list<NamedMatrix> Maps = {{"turned by 10 degrees", Turned(10.0)},
                                                        {"turned by -73 degrees", Turned(-73.0)},
                                                        {"0.7 times", {0.7, 0.0, 0.0, 0.7}},
                                                        {"2.3 times", Turned(0.0, 2.3)},
                                                        {"sheared", {1.1, 0.4, -0.2, 0.9}}};

/// Where a pixel of the result comes from.
inline TCoordinateMap MapBack(const TMatrix &matrix) {
    TCoordinateMap map{0.0, 0.0, matrix}, back;
    std::int64_t width = 0, height = 0;
    EXPECT_TRUE(ModelResultSize(RectArea(0.0, 0.0, Width, Height), width, height, map));
    EXPECT_TRUE(InverseCoordinateMap(&back, map));
    return back;
}

/// Visits the pixels of a result whose position lies well inside the source: visit(index, x, y).
template <class Visit>
void ForEachInner(void *result, std::size_t count, const TCoordinateMap &back, Visit &&visit) {
    const auto row = SizeOf(result).Width;
    for (std::size_t i = 0; i < count; ++i) {
        double x = 0.0, y = 0.0;
        CoordinateMapTransform(&x, &y, back, static_cast<double>(static_cast<std::intptr_t>(i) % row),
                               static_cast<double>(static_cast<std::intptr_t>(i) / row));
        if (x > 0.1 && y > 0.1 && x < Width - 1.1 && y < Height - 1.1)
            visit(i, x, y);
    }
}

} // namespace Waves

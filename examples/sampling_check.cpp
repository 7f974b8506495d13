// Reads beyond the last column and row, and in front of the first ones, by the guard entries of the tables.
#include "sampling_check.h"

#include <algorithm>
#include <cmath>

namespace {

enum class Place { Inside, Outside, Undecided };

constexpr double roundingOfDoubles = 1e-6;

Place PlaceOf(Point position, const TPlaneRec &source, double error) {
    const auto width = static_cast<double>(source.Width), height = static_cast<double>(source.Height);
    if (position.x <= -1.0 - error || position.y <= -1.0 - error || position.x >= width + error ||
        position.y >= height + error)
        return Place::Outside;
    const bool isInside =
        position.x >= error && position.y >= error && position.x < width - error && position.y < height - error;
    return isInside ? Place::Inside : Place::Undecided;
}

/// How much the mix can change when the position moves by this along both axes: no slope between two pixels is
/// steeper than the range of the pixels around.
double ChangeWithin(const TPlaneRec &source, Point position, double error) {
    if (error <= roundingOfDoubles)
        return 0.0;
    const auto x = static_cast<intptr_t>(position.x), y = static_cast<intptr_t>(position.y);
    int least = 255, greatest = 0;
    for (intptr_t row = y - 1; row <= y + 2; ++row)
        for (intptr_t column = x - 1; column <= x + 2; ++column) {
            const int value = *AddressOf(source, column, row);
            least = std::min(least, value);
            greatest = std::max(greatest, value);
        }
    return 2.0 * error * (greatest - least);
}

} // namespace

double MixAt(const TPlaneRec &source, Point position) {
    const auto x = static_cast<intptr_t>(position.x), y = static_cast<intptr_t>(position.y);
    const double right = position.x - static_cast<double>(x), down = position.y - static_cast<double>(y);
    const double upper = *AddressOf(source, x, y) * (1.0 - right) + *AddressOf(source, x + 1, y) * right;
    const double lower = *AddressOf(source, x, y + 1) * (1.0 - right) + *AddressOf(source, x + 1, y + 1) * right;
    return upper * (1.0 - down) + lower * down;
}

SamplingFindings CheckSampling(void *result, void *source,
                               const std::function<std::optional<Point>(Point)> &positionOf,
                               const Sampling &sampling) {
    SamplingFindings found;
    std::vector<TPlaneRec> from, to;
    for (intptr_t p = 0; p < ImageDimension(source); ++p) {
        from.push_back(PlaneOf(source, p));
        to.push_back(PlaneOf(result, p));
    }
    const double error = sampling.positionError + roundingOfDoubles;
    for (intptr_t y = 0; y < ImageHeight(result); ++y)
        for (intptr_t x = 0; x < ImageWidth(result); ++x) {
            const auto position = positionOf({static_cast<double>(x), static_cast<double>(y)});
            const Place place = position ? PlaceOf(*position, from.front(), error) : Place::Undecided;
            for (std::size_t p = 0; p < from.size() && place != Place::Undecided; ++p) {
                const int value = *AddressOf(to[p], x, y);
                if (place == Place::Outside) {
                    ++found.outside;
                    found.wrong += value != sampling.outside;
                    continue;
                }
                const double mix = MixAt(from[p], *position);
                const double change = ChangeWithin(from[p], *position, sampling.positionError) + roundingOfDoubles;
                ++found.mixed;
                found.wrong += value < mix - sampling.below - change || value > mix + sampling.above + change;
            }
        }
    return found;
}

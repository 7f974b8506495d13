/* Random areas of every kind around an image: upright, turned, without extent, with parallel or nearly parallel
 * edges, partly and wholly outside, far away, and random densities. */
#ifndef ORV_TESTS_RANDOM_AREAS_H
#define ORV_TESTS_RANDOM_AREAS_H

#include "ORVTypes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

namespace TestSupport {

class AreaRandom {
public:
    explicit AreaRandom(std::uint64_t seed) : engine(seed) {}

    /// A number of [low, high].
    std::int64_t Draw(std::int64_t low, std::int64_t high) {
        return low + static_cast<std::int64_t>(engine() % static_cast<std::uint64_t>(high - low + 1));
    }
    bool OneIn(std::int64_t count) { return Draw(1, count) == 1; }
    /// A number of [0, 1).
    double Real() { return static_cast<double>(engine() >> 11) * 0x1p-53; }

    /// Mostly all pixels.
    std::int64_t Density() {
        switch (Draw(0, 9)) {
        case 0:
            return Draw(0, 1100);
        case 1:
            return Draw(0, 20);
        case 2:
            return 500;
        case 3:
            return Draw(300, 999);
        default:
            return 1000;
        }
    }

    TArea Area(std::int64_t width, std::int64_t height) {
        TArea area = Form(width, height);
        if (OneIn(3))
            for (double *const coordinate : Coordinates(area))
                *coordinate += OneIn(4) ? 0.5 : Real() - 0.5;
        if (OneIn(12))
            Move(area, static_cast<double>(Draw(-80, 80)), static_cast<double>(Draw(-80, 80)));
        if (OneIn(40)) // what 16 bits do not hold
            Move(area, static_cast<double>(65536 * Draw(-2, 2)), static_cast<double>(65536 * Draw(-2, 2)));
        return area;
    }

    /// Long in one direction or both.
    TArea WideArea(std::int64_t width, std::int64_t height) {
        const auto x = [&] { return static_cast<double>(Draw(-width / 3, width + width / 3)); };
        const auto y = [&] { return static_cast<double>(Draw(-height / 3, height + height / 3)); };
        TArea area{x(), y(), x(), y(), 0, 0};
        area.X2 = area.X0 + static_cast<double>(Draw(-4, 4));
        area.Y2 = area.Y0 + static_cast<double>(Draw(-4, 4));
        if (OneIn(3))
            area = {area.X0, area.Y0, area.X2, area.Y2, area.X1, area.Y1};
        if (OneIn(4)) { // nearly parallel
            area.X2 = area.X1 + static_cast<double>(Draw(-1, 1));
            area.Y2 = area.Y1 + static_cast<double>(Draw(-1, 1));
        }
        return area;
    }

private:
    static std::array<double *, 6> Coordinates(TArea &area) {
        return {&area.X0, &area.Y0, &area.X1, &area.Y1, &area.X2, &area.Y2};
    }
    static void Move(TArea &area, double x, double y) {
        const auto places = Coordinates(area);
        for (std::size_t i = 0; i < 6; ++i)
            *places[i] += i % 2 == 0 ? x : y;
    }
    double Near(std::int64_t count) { return static_cast<double>(Draw(-count / 2 - 2, count + count / 2 + 2)); }
    double Inside(std::int64_t count) { return static_cast<double>(Draw(0, count - 1)); }

    TArea Form(std::int64_t width, std::int64_t height) {
        const bool inside = OneIn(2);
        const auto x = [&] { return inside ? Inside(width) : Near(width); };
        const auto y = [&] { return inside ? Inside(height) : Near(height); };
        const TArea any{x(), y(), x(), y(), x(), y()};
        const auto factor = static_cast<double>(Draw(-3, 3));
        switch (Draw(0, 9)) {
        case 0:
        case 1:
            return {any.X0, any.Y0, any.X1, any.Y0, any.X0, any.Y2};
        case 2:
            return {any.X0, any.Y0, any.X0, any.Y1, any.X2, any.Y0};
        case 3:
            return {any.X0, any.Y0, any.X0, any.Y0, any.X2, any.Y2};
        case 4:
            return {any.X0, any.Y0, any.X1, any.Y1, any.X0, any.Y0};
        case 5: // parallel
            return {any.X0,
                    any.Y0,
                    any.X1,
                    any.Y1,
                    any.X0 + factor * (any.X1 - any.X0),
                    any.Y0 + factor * (any.Y1 - any.Y0)};
        case 6: // nearly parallel
            return {any.X0,
                    any.Y0,
                    any.X1,
                    any.Y1,
                    any.X1 + static_cast<double>(Draw(-1, 1)),
                    any.Y1 + static_cast<double>(Draw(-1, 1))};
        case 7: // a turned rectangle
            return {any.X0, any.Y0, any.X1, any.Y1, any.X0 - (any.Y1 - any.Y0), any.Y0 + (any.X1 - any.X0)};
        default:
            return any;
        }
    }

    std::mt19937_64 engine;
};

} // namespace TestSupport

#endif

// Positions of lines and polygons, wide enough that sums of 32-bit coordinates, radii and thickness never overflow.
#pragma once

#include <cstdint>

namespace Drawing {

struct Point {
    std::int64_t X;
    std::int64_t Y;

    bool operator==(const Point &) const = default;
};

} // namespace Drawing

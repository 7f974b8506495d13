// A position in a plane as the drawing family keeps it.
#pragma once

#include <cstdint>

namespace orvBase {

struct Point {
    std::int32_t X;
    std::int32_t Y;
};

} // namespace orvBase

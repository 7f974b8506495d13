// Degrees outside, radians inside.
#pragma once

namespace Coordinates {

inline constexpr double Pi = 3.141592653589793;
inline constexpr double HalfTurnDegrees = 180.0;

} // namespace Coordinates

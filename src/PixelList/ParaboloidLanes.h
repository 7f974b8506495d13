// The least squares of eight windows at once, one per lane of a vector register: bit for bit what ParaboloidFit gives
// for each of them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "PixelList/FitWindow.h"

namespace PixelList {

inline constexpr std::size_t FitLanes = 8;

/// Eight windows of one radius, and what becomes of their pixels.
struct alignas(64) LaneWindows {
    /// The value of pixel index of each window, row by row.
    double Values[HighestWindow][FitLanes];
    double X[FitLanes];
    double Y[FitLanes];
    double Value[FitLanes];
};

/// Fits all lanes at the current instruction set level. Lanes that no window stands in may hold any numbers.
void FitParaboloids(LaneWindows &windows, std::int32_t radius);

} // namespace PixelList

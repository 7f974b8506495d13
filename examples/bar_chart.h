// Numbers drawn as bars, and the histogram of a picture.
#pragma once

#include "image_handle.h"

#include <array>
#include <vector>

inline constexpr intptr_t chartHeight = 76;

/// One dark bar per column on white paper, each as high as its share of the chart, from 0 to 1.
ImageHandle DrawBars(const std::vector<double> &shares);

using GreyCounts = std::array<uint64_t, 256>;

/// How often each value occurs in plane 0, which has 8 bits; the image may have any coordinate system.
GreyCounts CountGreys(void *image);

/// The square roots of the counts as shares of the greatest: so rare values can be seen, too.
std::vector<double> SharesOfGreatest(const GreyCounts &counts);

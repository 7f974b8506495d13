// The three turns under our names and theirs.
#ifndef ORV_BENCH_ROTATIONS_H
#define ORV_BENCH_ROTATIONS_H

#include "ImageMaps.h"
#include <opencv2/core.hpp>

namespace Bench {

struct Rotation {
    const char *name;
    TVPATRotation ours;
    int theirs;
};

inline constexpr Rotation Rotations[] = {
    {"90 clockwise", VPATRotation90Clockwise, cv::ROTATE_90_CLOCKWISE},
    {"90 counterclockwise", VPATRotation90CounterClockwise, cv::ROTATE_90_COUNTERCLOCKWISE},
    {"180", VPATRotation180, cv::ROTATE_180},
};

} // namespace Bench

#endif

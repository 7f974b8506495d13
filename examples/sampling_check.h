// A plain mix of four pixels, to compare what the transforms sampled with.
#pragma once

#include "image_handle.h"
#include "views.h"

#include <optional>

/// The mix of the four pixels around a place between the first and the last centre.
double MixAt(const TPlaneRec &source, Point position);

/// How far a pixel may be from the mix of the four pixels around its true position, and what it is beyond the source.
struct Sampling {
    double positionError; ///< along each axis, in pixels
    double below;         ///< grey levels that rounding takes away at most
    double above;         ///< grey levels that it adds at most
    unsigned char outside;
};
/// Positions are cut to 1/256 twice and rounded to 1/16; 8/256 of a grey level are added before the fraction goes.
inline constexpr Sampling affineSampling = {10.0 / 256.0, 1.0, 8.0 / 256.0, 129};
/// Positions are cut to 1/16.
inline constexpr Sampling polarSampling = {1.0 / 16.0, 1.0, 8.0 / 256.0, 129};
/// Positions and weights are exact.
inline constexpr Sampling callbackSampling = {0.0, 0.5, 0.5, 127};

struct SamplingFindings {
    std::int64_t mixed = 0;   ///< pixels whose position lies inside the source, in all planes
    std::int64_t outside = 0; ///< pixels whose position lies beyond it
    std::int64_t wrong = 0;   ///< of both
};

/// Looks at all pixels of a result of 8-bit planes but those whose position is so near to the edge of the source that
/// the error decides, those up to one pixel left of or above it, and those without a position.
SamplingFindings CheckSampling(void *result, void *source,
                               const std::function<std::optional<Point>(Point)> &positionOf,
                               const Sampling &sampling);

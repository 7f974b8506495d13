// A linear map of pixel values: how it is found from what was measured of a plane, and how it is applied.
#pragma once

#include "Scan/PlaneStatistics.h"

namespace Scan {

/// Stored is value * Gain + Offset + Rounding, in this order, limited to the range of the pixel type and truncated.
struct LinearMap {
    double Gain;
    double Offset;
    double Rounding;   ///< 0.5 for integers, 0 for floats
    double LowerLimit; ///< of the pixel type
    double UpperLimit;
};

/// The map that leads a plane to a wanted mean and deviation.
LinearMap MapToMeanDeviation(TDataType type, const MeanDeviation &measured, double wantedMean,
                             double wantedDeviation);
/// The map that leads a plane to a wanted minimum and maximum. A minimum above the maximum inverts.
LinearMap MapToExtremes(TDataType type, const Extremes &measured, double wantedMinimum, double wantedMaximum);

/// Maps a plane into another of the same size and type that shares no memory with it. What is no number is stored as
/// such in a float plane, as the lowest 32-bit or 64-bit integer cut to the type in others.
void ApplyLinearMap(const LinearMap &map, TDataType type, const Image::PlaneView &source,
                    const Image::PlaneView &target, PixelWalk walk = PixelWalk::InPieces);

} // namespace Scan

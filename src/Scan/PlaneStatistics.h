// What the value mappings measure of a whole plane: mean and deviation, extremes, greatest magnitude.
#pragma once

#include "ORVTypes.h"
#include "Scan/PixelWalk.h"

namespace Scan {

struct MeanDeviation {
    double Mean;
    double Deviation;
};
struct Extremes {
    double Minimum;
    double Maximum;
};

// Each takes a plane of at least one pixel, and a data type word that is one of the ten.

/// Mean and deviation of a plane.
MeanDeviation MeasureMeanDeviation(const Image::PlaneView &plane, TDataType type,
                                   PixelWalk walk = PixelWalk::InPieces);

/// The smallest and the largest pixel. Pixels that are no number do not count; where none counts, the type's largest
/// value is the minimum and its smallest the maximum. Of a zero the sign is not told.
Extremes MeasureExtremes(const Image::PlaneView &plane, TDataType type, PixelWalk walk = PixelWalk::InPieces);

/// The largest value of an unsigned plane, or the greatest magnitude of a signed one; of a float plane that of its
/// pixels cut to 32-bit integers.
double MeasureGreatestMagnitude(const Image::PlaneView &plane, TDataType type, PixelWalk walk = PixelWalk::InPieces);

} // namespace Scan

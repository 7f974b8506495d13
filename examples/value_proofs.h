// What the demo proves about pictures with other values. Each question is answered pixel by pixel through the tables.
#pragma once

#include "frame_stack.h"
#include "value_maps.h"

/// Each pixel is the weighted sum of the colours, no further away than half a grey level.
bool IsBrightness(void *grey, void *picture);
/// Each plane lies on the straight line that leads its least value to 0 and its greatest to 255.
bool IsStretchedToRange(void *stretched, void *picture);
/// Each plane lies on the straight line that leads its mean and deviation to the wanted ones, limited to a byte.
bool IsStretchedToSpread(void *stretched, void *picture, double mean, double deviation);

/// Each pixel of the balanced picture is the tinted one times its gain, and no further away than gains in steps of
/// 1/256 and dropped fractions explain.
bool IsMultipliedByGains(const WhiteBalance &balance);
/// The gains take back the tint, to two percent. All must have been found over the same area of a picture whose
/// colours are well lit there.
bool UndoesTheTint(const WhiteBalance &balance);
/// The last report of this thread is about the number of planes.
bool IsRefusedForItsPlanes(void *picture);

/// Minimum and maximum are those of the frames.
bool HasLeastAndGreatest(const FrameStack &stack);
/// The mean is that of the frames without its fraction, the deviation that of the frames, rounded.
bool HasMeanAndDeviation(const FrameStack &stack);
/// The spot is in no pixel of the minimum, and the maximum has all of its places.
bool OnlyMaximumShowsTheSpot(const FrameStack &stack);
/// 8 bits of the sum: the greatest is 255, all others in proportion.
bool MapsInProportion(const FrameStack &stack);

/// The root mean square of the difference to the thing, where no spot comes: of the first frame and of the mean.
struct NoiseLeft {
    double ofFrame;
    double ofMean;
    intptr_t pixels;
};
NoiseLeft MeasureNoise(const FrameStack &stack);

// One call of the library each, and what it needs around it.
#include "value_maps.h"

#include <algorithm>

namespace {

constexpr double greatestUsefulGain = 50.0;

Gains Measure(void *picture, const TArea &area) {
    Gains gains{};
    Require(CalculateWhiteBalance(picture, &gains[0], &gains[1], &gains[2], area) != 0, "CalculateWhiteBalance");
    return gains;
}

/// Multiplies each plane by a number of its own.
ImageHandle Tint(void *picture, const Gains &tint) {
    const double rows[3][4] = {{tint[0], 0.0, 0.0, 0.0}, {0.0, tint[1], 0.0, 0.0}, {0.0, 0.0, tint[2], 0.0}};
    ImageHandle tinted;
    Require(CreateColorTransform(picture, 3, 0, rows[0], tinted.Out()) != 0, "CreateColorTransform");
    return tinted;
}

} // namespace

ImageHandle MakeGrey(void *picture) {
    const double fromColour[] = {0.299, 0.587, 0.114, 0.0}; // red, green, blue, offset
    const double fromGrey[] = {1.0, 0.0};
    ImageHandle grey;
    Require(CreateLinearCombinationImage(picture, 0, ImageDimension(picture) == 3 ? fromColour : fromGrey,
                                         grey.Out()) != 0,
            "CreateLinearCombinationImage");
    return grey;
}

ImageHandle StretchToRange(void *picture) {
    ImageHandle stretched;
    Require(CreateNormalizedImage(picture, NormalizeMinimumMaximum, 0.0, 255.0, stretched.Out()) != 0,
            "CreateNormalizedImage");
    return stretched;
}

ImageHandle StretchToSpread(void *picture, double mean, double deviation) {
    ImageHandle stretched;
    Require(CreateNormalizedImage(picture, NormalizeMeanDeviation, mean, deviation, stretched.Out()) != 0,
            "CreateNormalizedImage");
    return stretched;
}

WhiteBalance Balance(void *picture, const TArea &area, const Gains &tint) {
    WhiteBalance balance;
    balance.tint = tint;
    balance.untinted = Measure(picture, area);
    balance.tinted = Tint(picture, tint);
    balance.gains = Measure(balance.tinted.Get(), area);
    // A plane without any light has no gain, and one with hardly any has a useless one.
    const auto isUseful = [](double gain) { return gain >= 1.0 && gain <= greatestUsefulGain; };
    if (!std::all_of(balance.gains.begin(), balance.gains.end(), isUseful))
        return balance;
    Require(CreateDuplicateImage(balance.tinted.Get(), balance.balanced.Out()) != 0, "CreateDuplicateImage");
    Require(ApplyWhiteBalance(balance.balanced.Get(), balance.gains[0], balance.gains[1], balance.gains[2]) != 0,
            "ApplyWhiteBalance");
    return balance;
}

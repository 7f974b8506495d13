// Pictures with other grey values: grey from colour, stretched, and the white balance of colours.
#pragma once

#include "views.h"

#include <array>

/// The brightness of a picture in one plane; a picture of one plane gives a copy.
ImageHandle MakeGrey(void *picture);

/// Each plane stretched so that it reaches from 0 to 255.
ImageHandle StretchToRange(void *picture);
/// Each plane stretched to this mean and deviation.
ImageHandle StretchToSpread(void *picture, double mean, double deviation);

using Gains = std::array<double, 3>;

struct WhiteBalance {
    Gains tint{1.0, 1.0, 1.0}; ///< what the planes of the picture were multiplied by
    Gains untinted{};          ///< the gains of the picture before that
    Gains gains{};
    ImageHandle tinted{};
    ImageHandle balanced{}; ///< empty when the gains are no white balance: the area has hardly any of a colour
};

/// Tints a picture of three planes as a coloured lamp would, measures it over an area and balances it.
WhiteBalance Balance(void *picture, const TArea &area, const Gains &tint);

// What the demo looks for: round marks of a board to fractions of a pixel, bright spots of any picture.
#pragma once

#include "scene.h"
#include "views.h"

#include <array>

/// A pixel list is given back as an image is.
using ListHandle = ImageHandle;

/// A pixel of a list of dimension 3.
struct FoundPlace {
    double x;
    double y;
    double value;
};
std::vector<FoundPlace> PlacesOf(void *list);
/// A list of dimension 3 with these pixels.
ListHandle ListOf(const std::vector<FoundPlace> &places);

struct SpotSearch {
    int64_t locality;
    int64_t threshold; ///< that one in 200 pixels reaches, or more
};
SpotSearch SearchFor(void *grey);
/// FindMaxima in a plane of 8 bits: the brightest pixel of each spot, brightest first.
ListHandle FindSpots(void *grey, const SpotSearch &search);
/// The same places as pixels of dimension 4, the fourth component being the mean of the 5 x 5 pixels around; sorted
/// by that, greatest first. It tells spots apart that all reach white.
ListHandle OrderByLight(void *spots, void *grey);

/// The ways to refine a place, in the order of their numbers.
struct Fit {
    uint32_t mode;
    const char *name;
};
inline constexpr std::array<Fit, 4> fits = {{{FitNone, "FitNone"},
                                             {FitQuadratic, "FitQuadratic"},
                                             {FitParaboloid, "FitParaboloid"},
                                             {FitGaussian, "FitGaussian"}}};

/// FindSubPixelMaxima in every step-th column and row of a plane of peaks; the places are those of the plane itself.
ListHandle FindPeaks(void *peaks, uint32_t fitMode, int32_t radius, intptr_t step);

/// A spot as an ellipse.
struct Shape {
    Point centre;
    double halfA;
    double halfB;
    double rotationRadians; ///< of axis A
};
/// The ellipse that has the second moments of the light within reach of a place of an 8-bit plane: pixels count from
/// a quarter of the way between what lies around and the place, and whole from three quarters on.
Shape MeasureShape(void *grey, const FoundPlace &place, double reach);

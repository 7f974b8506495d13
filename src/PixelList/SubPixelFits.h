// The fits that move a maximum to fractions of a pixel, as they are told: one window at a time, with matrices of any
// size. ParaboloidLanes.h has the least squares for many windows at once.
#pragma once

#include <cmath>

#include "PixelList/FitWindow.h"

namespace PixelList {

/// The nine pixels around a maximum, row by row.
template <class T>
struct Neighbourhood {
    T Pixels[9];
};

/// Moves a position by one step of a Taylor series of second order. A neighbourhood without curvature leaves it.
template <class T>
void FitQuadraticStep(const Neighbourhood<T> &window, double &x, double &y);

/// Fits z = a (x^2 + y^2) - b x - c y + d in coordinates of the image. Gives the highest or lowest point of it, or a
/// copy of the window's pixel when there is none.
CPixel ParaboloidFit(const FitWindow &window);

/// The smallest value that the logarithm is taken of.
inline constexpr double LeastLogarithmic = nrtl::numerics::Tiny;

/// Replaces values by their logarithms, after adding what lifts the smallest of them to LeastLogarithmic where it is
/// below. Rounding leaves most values from -2 down at 0, of which the logarithm is infinite. Result: what was added.
template <class Values>
double TakeLogarithms(Values &values) {
    double smallest = LeastLogarithmic;
    for (const double value : values)
        smallest = value < smallest ? value : smallest;
    const double offset = smallest < LeastLogarithmic ? LeastLogarithmic - smallest : 0.0;
    for (double &value : values) {
        if (offset != 0.0)
            value += offset;
        value = std::log(value);
    }
    return offset;
}

/// ParaboloidFit on the logarithms of the window. Required: the value is brought back by the exponential also when
/// the fit has failed and it is still that of the pixel.
CPixel GaussianFit(FitWindow window);

} // namespace PixelList

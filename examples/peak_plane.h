// A float plane in which round bright marks of many pixels are single peaks.
#pragma once

#include "image_handle.h"

/// The logarithm of an 8-bit plane, so that light becomes a summand, smoothed by a Gaussian, less its mean over a
/// wider square: what grows evenly, as light does, goes out, and a mark becomes a peak at its centre.
/// grey  one plane. Result: one plane of float pixels.
ImageHandle MakePeakPlane(void *grey);

/// An 8-bit picture of a float plane: 0 for 0 and below, 255 for its greatest value.
ImageHandle ShowPeakPlane(void *peaks);

/// Every step-th column and row of an image, a view; its pixel (x, y) shows the image's (step x, step y).
ImageHandle EveryFewPixels(void *image, intptr_t step);

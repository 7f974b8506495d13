// The fourth part of the demo: places found in a picture, and drawn into it.
#pragma once

#include "demo_report.h"
#include "scene.h"

/// Finds the marks of the scene to fractions of a pixel, or the bright spots of any other picture, such as the stars
/// of a sky; draws crosses, circles and ellipses there, fills outlines, makes an overlay of the places and a list of
/// the overlay; writes all of it as bitmaps, and proves it. picture  one or three 8-bit planes. scene  what it shows,
/// or null when that is not known.
void RunMaxima(void *picture, const Scene *scene, const std::string &stem, bool drawsGallery, Verdict &verdict);

// The second half of the demo: what walks over areas see, and pictures with other values.
#pragma once

#include "demo_report.h"
#include "scene.h"

/// Walks over a picture of one or three 8-bit planes, draws profiles and a histogram, stretches, balances, and makes
/// a stack of noisy frames; writes all of it as bitmaps, and proves it. scene  what the picture shows, or null when
/// that is not known.
void RunScans(void *picture, const Scene *scene, const std::string &stem, bool drawsGallery, Verdict &verdict);

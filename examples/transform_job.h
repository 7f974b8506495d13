// The third part of the demo: pictures that are sampled between the pixels of others.
#pragma once

#include "demo_report.h"
#include "scene.h"

/// Shows the board of a picture of one or three 8-bit planes straight, unrolls a ring and rolls it up again, bends
/// the picture by a lens and undoes it; writes all of it as bitmaps, and proves it. scene  what the picture shows,
/// and then the ring is that of a label; or null when that is not known.
void RunTransforms(void *picture, const Scene *scene, const std::string &stem, bool drawsGallery, Verdict &verdict);

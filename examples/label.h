// A round label with lettering and dots along a ring, drawn in plain C++ for the demo to unroll.
#pragma once

#include "ring.h"
#include "scene.h"

struct Label {
    ImageHandle image;
    Ring ring;               ///< what of it is unrolled: all dots and letters
    std::vector<Mark> marks; ///< the dots
};

/// planes  1 or 3. The lettering begins at the top and runs clockwise.
Label DrawLabel(intptr_t planes);

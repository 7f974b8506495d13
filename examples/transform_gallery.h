// One picture of the transforms that the demo runs.
#pragma once

#include "lens.h"
#include "ring.h"

struct TransformPictures {
    ImageHandle board{};
    TransformedPicture bySystem{};
    TransformedPicture byCorners{};
    ImageHandle label{};
    RoundTrip ring{};
    LensPictures lens{};
};

/// On top the turned board, then straight by its coordinate system and by its corners. In the middle the label and
/// the label's ring rolled up again, the picture through a lens and the lens undone. Below the unrolled ring. The
/// result has three 8-bit planes.
ImageHandle DrawTransformGallery(const TransformPictures &made);

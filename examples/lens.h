// A lens that bends a picture towards its middle, and the way back, as callbacks of CreateTransformedImage.
#pragma once

#include "transformed.h"

/// A place at distance r from the centre shows what lies at r * (1 + bend * (r / reach)^2).
struct Lens {
    Point centre;
    double reach;
    double bend;

    Point Bend(Point place) const;
    /// The inverse of Bend.
    Point Straighten(Point place) const;
};

/// A lens over the middle of a picture that bends its corners most.
Lens LensOver(void *picture);

/// A picture through the lens, and the picture that is made of that one again; the calls of the callbacks.
struct LensPictures {
    TransformedPicture bent;
    TransformedPicture undone; ///< its toSource leads to places of the bent picture
    std::int64_t callsToBend = 0;
    std::int64_t callsToUndo = 0;
};
LensPictures BendAndUndo(void *picture, const Lens &lens);

/// By a callback that leaves each position as it is.
ImageHandle CopyByCallback(void *picture);

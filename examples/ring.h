// A ring of a picture unrolled into a rectangle, and rolled up again.
#pragma once

#include "transformed.h"

#include <optional>

struct Ring {
    Point centre;
    double inner; ///< radii in whole pixels
    double outer;
    double startDegrees; ///< where unrolling begins; it goes clockwise
};

/// The largest ring of half its radius around the middle of a picture, three pixels away from the edge.
Ring LargestRing(void *picture);

/// A column for each pixel of arc in the middle of the ring, a row for each radius, the outer one first.
TransformedPicture Unroll(void *picture, const Ring &ring);

/// An unrolled ring as a new square picture, turned as it was before. All shows one pixel further out than before.
TransformedPicture RollUp(void *unrolled, const Ring &ring);

/// Unrolls the ring with one row more on both sides, and rolls it up without its last two rows: by that all comes
/// back to its radius.
struct RoundTrip {
    TransformedPicture unrolled; ///< of the wider ring
    ImageHandle cut;             ///< a view of all its rows but two
    TransformedPicture rolled;
};
RoundTrip UnrollAndRollUp(void *picture, const Ring &ring);

/// Where a picture that was rolled up has the centre of its ring.
Point CentreOf(const TransformedPicture &rolled);
/// True for the pixels of the ring in a picture that was rolled up.
bool LiesInRing(const TransformedPicture &rolled, const Ring &ring, Point pixel);

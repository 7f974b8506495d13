// What the demo proves about pictures that are put together. Answered through the exported interface alone.
#pragma once

#include "compositions.h"

/// The strip has the pixels of a thumbnail in its place.
bool StripHolds(const Strip &strip, std::size_t number, const View &thumbnail);

/// All of the strip that no thumbnail covers is white paper still.
bool PaperIsUntouched(const Strip &strip, const std::vector<View> &thumbnails);

/// Split planes in their own order are the source again, pixel for pixel and at the source's addresses.
bool PlanesMakeTheSource(const std::vector<View> &split, void *source);

/// A copy of the split planes has the same pixels, and a value written to it does not appear in the source.
bool CopyOfPlanesStandsAlone(const std::vector<View> &split, void *source);

/// The overlay is as large as the part that both pictures have, and each of its pixels has the address of the pixel
/// of the picture, or of the half turn, that lies there.
bool LiesByItsOrigins(const Overlay &overlay, void *source);

/// The thing that both origins were set to lies at the origin of the overlay, in the planes of both.
bool OriginStaysOnTheThing(const Overlay &overlay, void *source);

// One picture of what the demo finds and of what it draws there.
#pragma once

#include "found_places.h"

#include <vector>

struct MaximaPictures {
    ImageHandle annotated{};                        ///< the picture with what was found
    ImageHandle peaks{};                            ///< the plane of peaks as a picture; empty where none was made
    ImageHandle overlay{};                          ///< what the overlay shows
    ImageHandle mask{};                             ///< outlines filled inside
    std::vector<std::vector<FoundPlace>> offsets{}; ///< one for each fit: found less true places; may be empty
};

/// On top the picture with what was found; beside it the plane of peaks and the overlay. Below the filled outlines,
/// and for each fit how far the places are off the true ones: the ring has a radius of 4 pixels for the first one,
/// 0.4 for the others, the ellipse has twice their deviation. Without peaks the filled outlines take their place, and
/// nothing is below. The result has three 8-bit planes.
ImageHandle DrawMaximaGallery(const MaximaPictures &made);

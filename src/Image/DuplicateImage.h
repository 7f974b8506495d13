// Duplicating an image into a target of any kind.
#pragma once

#include <cstdint>

namespace Image {

/// What a duplicate is made in.
struct DuplicateTarget {
    void *Handle = nullptr; ///< with one reference; null when it can't be made
    bool IsFilled = false;  ///< true when it needs no pixels: it is the image itself
};

/// CreateDuplicateImage, into what make(image) gives: checks the handle, copies pixels and coordinate map, reports
/// under the name of that function. What make throws is a failure.
std::int32_t Duplicate(void *image, DuplicateTarget (*make)(void *image), void **result);

} // namespace Image

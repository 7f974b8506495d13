// Images as they are stored: all pixels in the tree's own memory, in the form in which a duplicate has them.
#pragma once

#include "Image/ImageObject.h"
#include "Persistence/Tree/NodeHolder.h"

namespace Image {

/// A tree with the image's pixels by value, one reference for the caller. Images of one data type come out as
/// CreateDuplicateImage makes them, and fail and report as it does; planes of several types get a typed block each.
/// An image that already stands like its duplicate, byte for byte, is given itself: nothing is copied then.
/// Empty when the image can't be duplicated.
Persistence::NodeHolder<TImageObject> OwningDuplicate(void *image);

/// The tree behind a handle of an image that owns its memory; null for all other handles. An object that is no
/// interface must not be passed.
TImageObject *TreeOf(void *image);

} // namespace Image

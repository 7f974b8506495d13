// What a loaded tree must be before it can be used as an image. Nothing of it is believed: it may come from anywhere.
#pragma once

#include "Persistence/Tree/NodeHolder.h"

class TImageObject;

namespace Persistence {

/// Widens the tables of a loaded image and looks at all of it: the shape of the tree, the tables' sizes against the
/// image's, every offset against the plane's memory, the data types, a bitmap's description. Throws
/// CtkExceptionObject for an image that operations could not go over safely.
void FinishLoadedImage(TSList &object);

/// The image that a load gave; throws CtkExceptionObject, and the object is released, when it is another object.
NodeHolder<TImageObject> AsLoadedImage(NodeHolder<TSList> object);

} // namespace Persistence

// An image that a call has made and fills before it is handed out.
#pragma once

#include "Interface/ImageGuard.h"
#include "InterfaceHandling.h"

namespace Scan {

/// Takes over the one reference of an image just made: it goes whatever is thrown until it is handed out. Empty for
/// null.
inline Interface::ImageHolder AdoptImage(void *made) {
    Interface::ImageHolder image = Interface::QueryImage(made);
    ReleaseObject(made);
    return image;
}

/// Gives an image the coordinate map of its source, where that tells it.
inline void PassCoordinateMap(pOLE::IImageVPA &source, pOLE::IImageVPA &target) {
    TCoordinateMap map = {};
    if (source.GetCoordinateMap(&map) >= 0)
        target.SetCoordinateMap(map);
}

} // namespace Scan

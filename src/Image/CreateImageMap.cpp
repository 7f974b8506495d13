// A rectangle of an image, shown at another size by its tables alone.
#include "Image/Dimensions.h"
#include "Image/ViewPlanes.h"
#include "ImageViews.h"
#include "Interface/Boundary.h"

namespace {

Persistence::NodeHolder<TImageObject> BuildMap(const Interface::ImageHolder &source,
                                               const Image::SourceRectangle &rectangle, intptr_t targetWidth,
                                               intptr_t targetHeight) {
    Image::ViewBuilder builder(targetWidth, targetHeight);
    const intptr_t planes = Image::DimensionsOf(*source.Get()).Planes;
    for (intptr_t plane = 0; plane < planes; ++plane)
        builder.AddViewPlane(*source.Get(), plane, rectangle);
    TCoordinateMap map = {};
    source->GetCoordinateMap(&map);
    // Required: the view's coordinate system is moved with the cut and never scaled.
    map.X -= static_cast<double>(rectangle.Left);
    map.Y -= static_cast<double>(rectangle.Top);
    return builder.Finish(map);
}

} // namespace

bool CreateImageMap(void *image, intptr_t left, intptr_t top, intptr_t right, intptr_t bottom, intptr_t targetWidth,
                    intptr_t targetHeight, void **out) {
    const Interface::ImageHolder source = Interface::QueryImage(image);
    if (!source.IsValid() || out == nullptr)
        return false;
    const Image::Dimensions size = Image::DimensionsOf(*source.Get());
    if (top < 0 || left < 0 || bottom < top || right < left || right >= size.Width || bottom >= size.Height)
        return false;
    *out = nullptr;
    if (targetWidth < 1 || targetHeight < 1)
        return false;
    return Interface::SilentObjectBoundary([&] {
        try {
            auto map = BuildMap(source, {left, top, right, bottom}, targetWidth, targetHeight);
            *out = static_cast<pOLE::IImageVPA *>(map.Detach()->Interface());
            return true;
        } catch (const Image::ViewNotPossible &) {
            return false;
        }
    });
}

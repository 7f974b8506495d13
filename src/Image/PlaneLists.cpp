// Images made of the planes of others: inserted, left out, picked.
#include <algorithm>
#include <cmath>
#include <limits>

#include "CheckedSize.h"
#include "CtkExceptionObject.h"
#include "Image/Dimensions.h"
#include "Image/ViewPlanes.h"
#include "ImageCopies.h"
#include "ImageViews.h"
#include "TruncateTo.h"

namespace Image {
namespace {

using Interface::ImageHolder;
using Persistence::NodeHolder;

TCoordinateMap MapOf(const ImageHolder &image) {
    TCoordinateMap map = {};
    image->GetCoordinateMap(&map);
    return map;
}

/// Stores a view, or for a caller who does not share a copy of it.
bool HandOut(NodeHolder<TImageObject> view, unsigned char share, void **out) {
    void *handle = static_cast<pOLE::IImageVPA *>(view->Interface());
    if (share == 0)
        return CreateDuplicateImage(handle, out) != 0;
    static_cast<void>(view.Detach()); // its reference is the caller's now
    *out = handle;
    return true;
}

/// Builds with a builder of the given size. False for what can't be built: planes that do not exist, sizes beyond
/// what an image can have. Other exceptions pass on.
template <class Build>
bool BuildView(std::intptr_t width, std::intptr_t height, unsigned char share, void **out, Build &&build) {
    try {
        ViewBuilder builder(width, height);
        return HandOut(build(builder), share, out);
    } catch (const ViewNotPossible &) {
        return false;
    }
}

struct Overlap {
    std::intptr_t Left;
    std::intptr_t Top;
    std::intptr_t Right;
    std::intptr_t Bottom;
};

struct Origin {
    std::intptr_t X;
    std::intptr_t Y;
};

Origin RoundedOrigin(const TCoordinateMap &map) {
    return {orvBase::TruncateTo<std::int32_t>(std::floor(0.5 + map.X)),
            orvBase::TruncateTo<std::int32_t>(std::floor(0.5 + map.Y))};
}

/// The pixels that both images have when their origins are laid over each other, in coordinates from the origins.
Overlap OverlapOf(const Dimensions &a, const Origin &aOrigin, const Dimensions &b, const Origin &bOrigin) {
    const Overlap overlap = {-std::min(aOrigin.X, bOrigin.X), -std::min(aOrigin.Y, bOrigin.Y),
                             std::min(a.Width - aOrigin.X, b.Width - bOrigin.X) - 1,
                             std::min(a.Height - aOrigin.Y, b.Height - bOrigin.Y) - 1};
    if (overlap.Top > overlap.Bottom || overlap.Left > overlap.Right)
        throw CtkExceptionObject("Nonintersecting images");
    return overlap;
}

SourceRectangle RectangleIn(const Overlap &overlap, const Origin &origin) {
    return {overlap.Left + origin.X, overlap.Top + origin.Y, overlap.Right + origin.X, overlap.Bottom + origin.Y};
}

/// The two images of an insertion and what of each is shown.
struct Insertion {
    ImageHolder Image;
    ImageHolder Insert;
    SourceRectangle ImageRectangle;
    SourceRectangle InsertRectangle;
    std::intptr_t Width;
    std::intptr_t Height;
    TCoordinateMap Map;
};

/// Sizes that no table reaches would not fit the arithmetic of an overlap.
bool IsBeyondMemory(const ImageHolder &image) {
    constexpr std::intptr_t highest = std::numeric_limits<std::intptr_t>::max() / 4;
    const Dimensions size = DimensionsOf(*image.Get());
    return size.Width > highest || size.Height > highest;
}

Insertion PlanInsertion(const ImageHolder &image, const ImageHolder &insert, bool alignOrigins) {
    const Dimensions a = DimensionsOf(*image.Get());
    const Dimensions b = DimensionsOf(*insert.Get());
    Insertion plan = {
        image,    insert,      {0, 0, a.Width - 1, a.Height - 1}, {0, 0, b.Width - 1, b.Height - 1}, a.Width,
        a.Height, MapOf(image)};
    if (!alignOrigins)
        return plan;
    const Origin aOrigin = RoundedOrigin(plan.Map);
    const Origin bOrigin = RoundedOrigin(MapOf(insert));
    const Overlap overlap = OverlapOf(a, aOrigin, b, bOrigin);
    plan.ImageRectangle = RectangleIn(overlap, aOrigin);
    plan.InsertRectangle = RectangleIn(overlap, bOrigin);
    plan.Width = overlap.Right - overlap.Left + 1;
    plan.Height = overlap.Bottom - overlap.Top + 1;
    plan.Map.X = static_cast<double>(-overlap.Left);
    plan.Map.Y = static_cast<double>(-overlap.Top);
    return plan;
}

NodeHolder<TImageObject> BuildInsertion(ViewBuilder &builder, const Insertion &plan, std::intptr_t position) {
    const std::intptr_t planes = DimensionsOf(*plan.Image.Get()).Planes;
    const std::intptr_t inserted = DimensionsOf(*plan.Insert.Get()).Planes;
    const std::intptr_t front = std::min(planes, position);
    for (std::intptr_t plane = 0; plane < front; ++plane)
        builder.AddViewPlane(*plan.Image.Get(), plane, plan.ImageRectangle);
    for (std::intptr_t plane = 0; plane < inserted; ++plane)
        builder.AddViewPlane(*plan.Insert.Get(), plane, plan.InsertRectangle);
    for (std::intptr_t plane = front; plane < planes; ++plane)
        builder.AddViewPlane(*plan.Image.Get(), plane, plan.ImageRectangle);
    return builder.Finish(plan.Map);
}

} // namespace
} // namespace Image

int32_t CreateImageInsertList(void *image, void *insert, intptr_t position, unsigned char share,
                              unsigned char alignOrigins, void **out) {
    using namespace Image;
    const ImageHolder first = Interface::QueryImage(image);
    const ImageHolder second = Interface::QueryImage(insert);
    if (!first.IsValid() || !second.IsValid() || out == nullptr)
        return 0;
    *out = nullptr;
    if (IsBeyondMemory(first) || IsBeyondMemory(second))
        return 0;
    const Insertion plan = PlanInsertion(first, second, alignOrigins != 0);
    const bool built = BuildView(plan.Width, plan.Height, share, out,
                                 [&](ViewBuilder &builder) { return BuildInsertion(builder, plan, position); });
    return built ? 1 : 0;
}

bool CreateImageDeleteList(void *image, intptr_t position, intptr_t count, unsigned char share, void **out) {
    using namespace Image;
    const ImageHolder source = Interface::QueryImage(image);
    if (!source.IsValid() || out == nullptr)
        return false;
    *out = nullptr;
    const Dimensions size = DimensionsOf(*source.Get());
    const intptr_t front = std::min(size.Planes, position);
    intptr_t next = 0;
    if (!orvBase::CheckedSum(next, front, count))
        next = count < 0 ? -1 : size.Planes;
    return BuildView(size.Width, size.Height, share, out, [&](ViewBuilder &builder) {
        builder.AddWholePlanes(*source.Get(), 0, front);
        builder.AddWholePlanes(*source.Get(), next, size.Planes);
        return builder.Finish(MapOf(source));
    });
}

bool CreateImageSubList(void *image, intptr_t first, intptr_t count, unsigned char share, void **out) {
    using namespace Image;
    const ImageHolder source = Interface::QueryImage(image);
    if (!source.IsValid() || out == nullptr)
        return false;
    *out = nullptr;
    const Dimensions size = DimensionsOf(*source.Get());
    intptr_t end = 0;
    if (!orvBase::CheckedSum(end, first, std::min(count, size.Planes)))
        return false;
    return BuildView(size.Width, size.Height, share, out, [&](ViewBuilder &builder) {
        builder.AddWholePlanes(*source.Get(), first, end);
        return builder.Finish(MapOf(source));
    });
}

// Plain counting and comparing of addresses: nothing here uses the formulas of the library.
#include "composition_proofs.h"

#include "proofs.h"

#include <algorithm>
#include <cmath>

namespace {

/// The split planes gathered in their own order.
ImageHandle Gather(const std::vector<View> &split, bool share) {
    std::vector<void *> planes;
    for (const View &view : split)
        planes.push_back(view.image.Get());
    ImageHandle result;
    Require(CreateConcatenatedImage(planes.data(), planes.size(), share, result.Out()), "CreateConcatenatedImage");
    return result;
}

struct Position {
    intptr_t x;
    intptr_t y;
};

/// The pixel at which an image has its origin.
Position OriginPixel(void *image) {
    double x = 0.0;
    double y = 0.0;
    GetImageOrigin(image, &x, &y);
    return {static_cast<intptr_t>(std::floor(x + 0.5)), static_cast<intptr_t>(std::floor(y + 0.5))};
}

bool IsInside(void *image, intptr_t x, intptr_t y) {
    return x >= 0 && y >= 0 && x < ImageWidth(image) && y < ImageHeight(image);
}

/// The shift from a pixel of the picture to the pixel of the half turn that lies on it.
Position ShiftToTurned(const Overlay &overlay, void *source) {
    const Position origin = OriginPixel(source);
    const Position turnedOrigin = OriginPixel(overlay.turned.Get());
    return {turnedOrigin.x - origin.x, turnedOrigin.y - origin.y};
}

/// True when pixel (0, 0) of one plane lies at a pixel of the other, and so on for all of its pixels.
bool ShowsFrom(const TPlaneRec &shown, const TPlaneRec &original, const Position &first) {
    for (intptr_t y = 0; y < shown.Height; ++y)
        for (intptr_t x = 0; x < shown.Width; ++x)
            if (AddressOf(shown, x, y) != AddressOf(original, first.x + x, first.y + y))
                return false;
    return true;
}

} // namespace

bool StripHolds(const Strip &strip, std::size_t number, const View &thumbnail) {
    const Strip::Place &place = strip.places[number];
    const intptr_t width = ImageWidth(thumbnail.image.Get());
    const intptr_t height = ImageHeight(thumbnail.image.Get());
    ImageHandle cut;
    return CreateImageMap(strip.picture.Get(), place.left, place.top, place.left + width - 1, place.top + height - 1,
                          width, height, cut.Out()) &&
           SamePixels(cut.Get(), thumbnail.image.Get());
}

bool PaperIsUntouched(const Strip &strip, const std::vector<View> &thumbnails) {
    const auto isCovered = [&](intptr_t x, intptr_t y) {
        for (std::size_t i = 0; i < thumbnails.size(); ++i)
            if (IsInside(thumbnails[i].image.Get(), x - strip.places[i].left, y - strip.places[i].top))
                return true;
        return false;
    };
    for (intptr_t p = 0; p < ImageDimension(strip.picture.Get()); ++p) {
        const TPlaneRec plane = PlaneOf(strip.picture.Get(), p);
        for (intptr_t y = 0; y < plane.Height; ++y)
            for (intptr_t x = 0; x < plane.Width; ++x)
                if (*AddressOf(plane, x, y) != 255 && !isCovered(x, y))
                    return false;
    }
    return true;
}

bool PlanesMakeTheSource(const std::vector<View> &split, void *source) {
    const ImageHandle together = Gather(split, true);
    if (!SamePixels(together.Get(), source))
        return false;
    for (intptr_t p = 0; p < ImageDimension(source); ++p)
        if (!ShowsFrom(PlaneOf(together.Get(), p), PlaneOf(source, p), {0, 0}))
            return false;
    return true;
}

bool CopyOfPlanesStandsAlone(const std::vector<View> &split, void *source) {
    ImageHandle copy;
    if (split.size() == 1) // gathering a single image gives that image itself, whatever is shared
        Require(CreateImageSubList(source, 0, 1, 0, copy.Out()), "CreateImageSubList");
    else
        copy = Gather(split, false);
    if (!SamePixels(copy.Get(), source))
        return false;
    uint64_t before = 0;
    uint64_t after = 0;
    if (!GetPixVal(source, 0, 0, 0, &before))
        return false;
    const uint64_t written = before ^ 0xFFu;
    return SetPixVal(copy.Get(), 0, 0, 0, &written) && GetPixVal(source, 0, 0, 0, &after) && after == before &&
           GetPixVal(copy.Get(), 0, 0, 0, &after) && after == written;
}

bool LiesByItsOrigins(const Overlay &overlay, void *source) {
    const Position shift = ShiftToTurned(overlay, source);
    intptr_t shared = 0;
    Position first{ImageWidth(source), ImageHeight(source)};
    for (intptr_t y = 0; y < ImageHeight(source); ++y)
        for (intptr_t x = 0; x < ImageWidth(source); ++x)
            if (IsInside(overlay.turned.Get(), x + shift.x, y + shift.y)) {
                ++shared;
                first = {std::min(first.x, x), std::min(first.y, y)};
            }
    void *planes = overlay.planes.Get();
    const intptr_t count = ImageDimension(source);
    if (shared == 0 || ImageWidth(planes) * ImageHeight(planes) != shared || ImageDimension(planes) != 2 * count)
        return false;
    for (intptr_t p = 0; p < count; ++p)
        if (!ShowsFrom(PlaneOf(planes, p), PlaneOf(source, p), first) ||
            !ShowsFrom(PlaneOf(planes, count + p), PlaneOf(overlay.turned.Get(), p),
                       {first.x + shift.x, first.y + shift.y}))
            return false;
    return true;
}

bool OriginStaysOnTheThing(const Overlay &overlay, void *source) {
    const Position inSource = OriginPixel(source);
    const Position inTurned = OriginPixel(overlay.turned.Get());
    const Position inOverlay = OriginPixel(overlay.planes.Get());
    const intptr_t count = ImageDimension(source);
    for (intptr_t p = 0; p < count; ++p)
        if (AddressOf(PlaneOf(overlay.planes.Get(), p), inOverlay.x, inOverlay.y) !=
                AddressOf(PlaneOf(source, p), inSource.x, inSource.y) ||
            AddressOf(PlaneOf(overlay.planes.Get(), count + p), inOverlay.x, inOverlay.y) !=
                AddressOf(PlaneOf(overlay.turned.Get(), p), inTurned.x, inTurned.y))
            return false;
    return true;
}

// The callbacks get the lens and a counter as their user data.
#include "lens.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double bendOfCorners = 0.2;

struct CountedLens {
    const Lens &lens;
    std::int64_t calls = 0;
};

/// Leads a place of the bent picture to the place that it shows.
void BendPosition(void *data, double *x, double *y) {
    auto &counted = *static_cast<CountedLens *>(data);
    ++counted.calls;
    const Point place = counted.lens.Bend({*x, *y});
    *x = place.x;
    *y = place.y;
}

/// The other way round: where the bent picture shows a place.
void StraightenPosition(void *data, double *x, double *y) {
    auto &counted = *static_cast<CountedLens *>(data);
    ++counted.calls;
    const Point place = counted.lens.Straighten({*x, *y});
    *x = place.x;
    *y = place.y;
}

void KeepPosition(void *, double *, double *) {}

} // namespace

Point Lens::Bend(Point place) const {
    const double dx = place.x - centre.x, dy = place.y - centre.y;
    const double scale = 1.0 + bend * (dx * dx + dy * dy) / (reach * reach);
    return {centre.x + dx * scale, centre.y + dy * scale};
}

Point Lens::Straighten(Point place) const {
    const double dx = place.x - centre.x, dy = place.y - centre.y;
    const double bent = std::hypot(dx, dy) / reach;
    double straight = bent; // the root of straight + bend * straight^3 - bent, by Newton's steps
    for (int step = 0; step < 5; ++step)
        straight -=
            (straight + bend * straight * straight * straight - bent) / (1.0 + 3.0 * bend * straight * straight);
    const double scale = bent > 0.0 ? straight / bent : 1.0;
    return {centre.x + dx * scale, centre.y + dy * scale};
}

Lens LensOver(void *picture) {
    const double right = static_cast<double>(ImageWidth(picture) - 1) / 2.0;
    const double bottom = static_cast<double>(ImageHeight(picture) - 1) / 2.0;
    return {{right, bottom}, std::max(std::hypot(right, bottom), 1.0), bendOfCorners};
}

LensPictures BendAndUndo(void *picture, const Lens &lens) {
    const auto bend = [lens](Point place) { return lens.Bend(place); };
    const auto straighten = [lens](Point place) { return lens.Straighten(place); };
    LensPictures made{{"through a lens", "lens", bend, straighten},
                      {"the lens undone", "lens_undone", straighten, bend}};
    const intptr_t width = ImageWidth(picture), height = ImageHeight(picture);
    CountedLens forward{lens}, backward{lens};
    Require(CreateTransformedImage(picture, width, height, BendPosition, &forward, made.bent.image.Out()),
            "CreateTransformedImage");
    Require(CreateTransformedImage(made.bent.image.Get(), width, height, StraightenPosition, &backward,
                                   made.undone.image.Out()),
            "CreateTransformedImage");
    made.callsToBend = forward.calls;
    made.callsToUndo = backward.calls;
    return made;
}

ImageHandle CopyByCallback(void *picture) {
    ImageHandle copy;
    Require(
        CreateTransformedImage(picture, ImageWidth(picture), ImageHeight(picture), KeepPosition, nullptr, copy.Out()),
        "CreateTransformedImage");
    return copy;
}

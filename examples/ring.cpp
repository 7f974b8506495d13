// What places the calls should have gone by is told here in plain polar coordinates.
#include "ring.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double wholeTurn = 2.0 * std::numbers::pi;

/// An angle in radians from 0 up to a whole turn.
double InOneTurn(double angle) {
    const double rest = std::fmod(angle, wholeTurn);
    return rest < 0.0 ? rest + wholeTurn : rest;
}

} // namespace

Ring LargestRing(void *picture) {
    const double width = static_cast<double>(ImageWidth(picture)), height = static_cast<double>(ImageHeight(picture));
    const double outer = std::max(std::floor(std::min(width, height) / 2.0) - 3.0, 1.0);
    return {{(width - 1.0) / 2.0, (height - 1.0) / 2.0}, std::floor(outer / 2.0), outer, -90.0};
}

TransformedPicture Unroll(void *picture, const Ring &ring) {
    const double columnsPerRadian = (ring.inner + ring.outer) / 2.0;
    const double start = ring.startDegrees * std::numbers::pi / 180.0;
    const auto toSource = [=](Point pixel) {
        const double radius = ring.outer - pixel.y, angle = pixel.x / columnsPerRadian + start;
        return Point{radius * std::cos(angle) + ring.centre.x, radius * std::sin(angle) + ring.centre.y};
    };
    const auto toResult = [=](Point place) {
        const double dx = place.x - ring.centre.x, dy = place.y - ring.centre.y;
        return Point{InOneTurn(std::atan2(dy, dx) - start) * columnsPerRadian, ring.outer - std::hypot(dx, dy)};
    };
    TransformedPicture unrolled{"CreatePolarImage", "unrolled", toSource, toResult};
    Require(CreatePolarImage(picture, unrolled.image.Out(), ring.centre.x, ring.centre.y, ring.startDegrees,
                             ring.inner, ring.outer),
            "CreatePolarImage");
    return unrolled;
}

TransformedPicture RollUp(void *unrolled, const Ring &ring) {
    const double columnsPerRadian = (ring.inner + ring.outer) / 2.0;
    const double start = ring.startDegrees * std::numbers::pi / 180.0;
    const double centre = static_cast<double>(ImageHeight(unrolled)) - 1.0 + ring.inner;
    const auto toSource = [=](Point pixel) {
        const double dx = pixel.x - centre, dy = pixel.y - centre;
        return Point{InOneTurn(std::atan2(dy, dx) - start) * columnsPerRadian, ring.outer + 1.0 - std::hypot(dx, dy)};
    };
    const auto toResult = [=](Point place) {
        const double radius = ring.outer + 1.0 - place.y, angle = place.x / columnsPerRadian + start;
        return Point{radius * std::cos(angle) + centre, radius * std::sin(angle) + centre};
    };
    TransformedPicture rolled{"CreateInversePolarImage", "rolled", toSource, toResult};
    // The start angle of this direction counts the other way round.
    Require(CreateInversePolarImage(unrolled, rolled.image.Out(), -ring.startDegrees, ring.inner),
            "CreateInversePolarImage");
    return rolled;
}

RoundTrip UnrollAndRollUp(void *picture, const Ring &ring) {
    RoundTrip trip{Unroll(picture, {ring.centre, ring.inner - 1.0, ring.outer + 1.0, ring.startDegrees}), {}, {}};
    void *const wider = trip.unrolled.image.Get();
    const intptr_t width = ImageWidth(wider), height = ImageHeight(wider) - 2;
    Require(CreateImageMap(wider, 0, 0, width - 1, height - 1, width, height, trip.cut.Out()), "CreateImageMap");
    trip.rolled = RollUp(trip.cut.Get(), ring);
    return trip;
}

Point CentreOf(const TransformedPicture &rolled) {
    const double centre = static_cast<double>(ImageWidth(rolled.image.Get())) / 2.0; // whole radii
    return {centre, centre};
}

bool LiesInRing(const TransformedPicture &rolled, const Ring &ring, Point pixel) {
    const Point centre = CentreOf(rolled);
    const double square = (pixel.x - centre.x) * (pixel.x - centre.x) + (pixel.y - centre.y) * (pixel.y - centre.y);
    return square >= ring.inner * ring.inner && square <= ring.outer * ring.outer;
}

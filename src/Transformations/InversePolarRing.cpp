#include "Transformations/InversePolarRing.h"

namespace Transformations {
namespace {

/// Turns an angle into 0 to a whole turn. One that is no number or not finite stays no place in the image.
double OneTurn(double angle) {
    constexpr double manyTurns = 1e6;
    if (!(std::fabs(angle) <= manyTurns))
        angle = std::fmod(angle, WholeTurn); // steps would take too long, or have no end
    while (angle < 0)
        angle += WholeTurn;
    while (angle > WholeTurn)
        angle -= WholeTurn;
    return angle;
}

} // namespace

InversePolarRing InverseRingOf(double width, double height, double centreX, double centreY, double angleStartDegrees,
                               double innerRadius) {
    const double outer = (height - 2) + innerRadius;
    const double extent = std::min(WholeTurn, 2 * (width + 1) / (innerRadius + outer));
    InversePolarRing ring = {};
    ring.Square = {centreX - outer - 1, centreY - outer - 1, centreX - outer - 1,
                   centreY + outer + 1, centreX + outer + 1, centreY - outer - 1};
    ring.CentreX = centreX;
    ring.CentreY = centreY;
    ring.OuterSquared = outer * outer;
    ring.InnerSquared = innerRadius * innerRadius;
    ring.Extent = extent;
    // Required: the sign is the opposite of the one that unrolling takes.
    ring.StartAngle = OneTurn(-M_PI / 180 * angleStartDegrees);
    ring.ColumnScale = (std::fabs(innerRadius) + std::fabs(outer)) * M_PI * extent / WholeTurn;
    ring.InnerRadius = innerRadius;
    ring.RowSpan = outer - innerRadius + 1;
    return ring;
}

} // namespace Transformations

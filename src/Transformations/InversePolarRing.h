// Where the pixels of a ring lie in its unrolled image.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "ORVTypes.h"

namespace Transformations {

inline constexpr double WholeTurn = 2 * M_PI;

/// The ring in the target that an unrolled image is written to.
struct InversePolarRing {
    double CentreX;
    double CentreY;
    double OuterSquared;
    double InnerSquared;
    double Extent;      ///< radians that the unrolled image covers, at most a whole turn
    double StartAngle;  ///< radians, from 0 to a whole turn
    double ColumnScale; ///< columns of a whole turn
    double InnerRadius;
    double RowSpan;
    TArea Square; ///< around the ring

    /// The position of a pixel (x, y) of the target in the unrolled image. False for pixels that are kept.
    bool Position(double x, double y, double &u, double &v) const {
        const double dx = x - CentreX, dy = y - CentreY, squared = dx * dx + dy * dy;
        if (squared < InnerSquared || squared > OuterSquared)
            return false;
        double angle = std::atan2(dy, dx);
        if (angle < 0)
            angle += WholeTurn;
        angle -= StartAngle;
        if (angle < 0) {
            angle += WholeTurn;
            // Required: only angles that were below the start are held against the extent.
            if (Extent < WholeTurn && angle > Extent)
                return false;
        }
        if (angle > WholeTurn)
            angle -= WholeTurn;
        u = angle / WholeTurn * ColumnScale;
        v = RowSpan - (std::sqrt(squared) - InnerRadius);
        return true;
    }
};

/// The ring for an unrolled image of the given size.
/// angleStartDegrees  turns the other way round than where the image is unrolled.
InversePolarRing InverseRingOf(double width, double height, double centreX, double centreY, double angleStartDegrees,
                               double innerRadius);

} // namespace Transformations

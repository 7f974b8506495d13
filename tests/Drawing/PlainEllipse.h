// Ellipses corner by corner, as they are defined.
#pragma once

#include "Drawing/Ellipse.h"
#include "Drawing/ThickLine.h"
#include "DrawnPlanes.h"

namespace DrawingTests {

using Drawing::EllipseKey;

/// The corners as they are defined, angle after angle.
inline std::vector<Point> PlainCorners(const EllipseKey &key, Point centre) {
    const Drawing::EllipseForm form = Drawing::EllipseFormOf(key.RadiusA, key.RadiusB, key.RotationRadians);
    const auto point = [&](Drawing::Corner corner) {
        return Point{centre.X + static_cast<std::int64_t>(corner.X), centre.Y + static_cast<std::int64_t>(corner.Y)};
    };
    std::vector<Point> corners = {point(Drawing::FirstCorner(form))};
    for (double angle = form.Step; angle < 2 * 3.141592653589793; angle += form.Step)
        corners.push_back(point(Drawing::CornerAt(form, angle)));
    return corners;
}

inline void ModelOutline(const RandomCase &one, const EllipseKey &key, Point centre, std::int32_t thickness) {
    std::vector<Point> corners = PlainCorners(key, centre);
    corners.push_back(corners.front());
    for (std::size_t i = 1; i < corners.size(); ++i) {
        if (thickness == 1) {
            one.Model.ThinLine(corners[i - 1], corners[i]);
        } else {
            const auto rectangle = Drawing::ThickLineCorners(corners[i - 1], corners[i], thickness);
            one.Model.Polygon({rectangle.begin(), rectangle.end()});
        }
    }
}

inline EllipseKey AnyEllipse(Random &random, std::int64_t greatestRadius) {
    constexpr double rotations[] = {0.0, -0.0, 0.5, -2.0, 1.5707963267948966, 7.0};
    return {static_cast<std::int32_t>(Pick(random, 0, greatestRadius)),
            static_cast<std::int32_t>(Pick(random, 0, greatestRadius)),
            rotations[static_cast<std::size_t>(Pick(random, 0, 5))]};
}

} // namespace DrawingTests

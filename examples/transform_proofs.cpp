// Plain loops over tables, and marks that are measured where they should be.
#include "transform_proofs.h"

#include "proofs.h"
#include "sampling_check.h"

#include <algorithm>
#include <cmath>

namespace {

/// Far enough from all edges to be measured with what lies around it.
bool LiesWhole(void *image, Point place, double radius) {
    const double reach = radius + 8.0;
    return place.x >= reach && place.y >= reach && place.x + reach <= static_cast<double>(ImageWidth(image) - 1) &&
           place.y + reach <= static_cast<double>(ImageHeight(image) - 1);
}

template <class Visit>
void ForEachPixel(void *image, Visit visit) {
    for (intptr_t y = 0; y < ImageHeight(image); ++y)
        for (intptr_t x = 0; x < ImageWidth(image); ++x)
            visit(x, y, Point{static_cast<double>(x), static_cast<double>(y)});
}

} // namespace

Findings FindMarksAt(void *image, const std::vector<Mark> &marks, const std::function<Point(Point)> &placeOf,
                     double largestRadius) {
    Findings findings;
    const TPlaneRec plane = PlaneOf(image, 0);
    for (const Mark &mark : marks) {
        const Point expected = placeOf({mark.x, mark.y});
        if (mark.radius > largestRadius || !LiesWhole(image, expected, mark.radius))
            continue;
        const Point found = MeasureMark(plane, expected, mark.radius);
        ++findings.count;
        findings.largestError =
            std::max(findings.largestError, std::hypot(found.x - expected.x, found.y - expected.y));
    }
    return findings;
}

bool IsTransposed(void *lying, void *standing) {
    if (ImageWidth(lying) != ImageHeight(standing) || ImageHeight(lying) != ImageWidth(standing))
        return false;
    bool holds = ImageDimension(lying) == ImageDimension(standing);
    for (intptr_t p = 0; p < ImageDimension(lying) && holds; ++p) {
        const TPlaneRec one = PlaneOf(lying, p), other = PlaneOf(standing, p);
        ForEachPixel(lying, [&](intptr_t x, intptr_t y, Point) {
            holds = holds && *AddressOf(one, x, y) == *AddressOf(other, y, x);
        });
    }
    return holds;
}

bool DiffersInItsSystemOnly(void *image, void *withoutSystem) {
    TCoordinateMap map{};
    return SamePixels(image, withoutSystem) && GetImageCoordinates(withoutSystem, &map) &&
           CoordinateMapIsTranslation(map) && map.X == 0.0 && map.Y == 0.0;
}

double LargestDistance(void *size, const std::function<Point(Point)> &one, const std::function<Point(Point)> &other) {
    const double right = static_cast<double>(ImageWidth(size) - 1),
                 bottom = static_cast<double>(ImageHeight(size) - 1);
    double largest = 0.0;
    for (const Point corner : {Point{0.0, 0.0}, Point{right, 0.0}, Point{0.0, bottom}, Point{right, bottom}}) {
        const Point a = one(corner), b = other(corner);
        largest = std::max(largest, std::hypot(a.x - b.x, a.y - b.y));
    }
    return largest;
}

bool IsFilledBeside(void *image, const std::function<bool(Point)> &isMeant, unsigned char value) {
    bool holds = true;
    for (intptr_t p = 0; p < ImageDimension(image); ++p) {
        const TPlaneRec plane = PlaneOf(image, p);
        ForEachPixel(image, [&](intptr_t x, intptr_t y, Point pixel) {
            holds = holds && (isMeant(pixel) || *AddressOf(plane, x, y) == value);
        });
    }
    return holds;
}

double RootMeanSquare(void *image, void *other, const std::function<bool(Point)> &isMeant,
                      const std::function<Point(Point)> &otherPlaceOf) {
    double sum = 0.0, count = 0.0;
    for (intptr_t p = 0; p < ImageDimension(image); ++p) {
        const TPlaneRec plane = PlaneOf(image, p), otherPlane = PlaneOf(other, p);
        ForEachPixel(image, [&](intptr_t x, intptr_t y, Point pixel) {
            if (!isMeant(pixel))
                return;
            const double difference = *AddressOf(plane, x, y) - MixAt(otherPlane, otherPlaceOf(pixel));
            sum += difference * difference;
            count += 1.0;
        });
    }
    return count > 0.0 ? std::sqrt(sum / count) : 0.0;
}

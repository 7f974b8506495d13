// Plain loops over pixels and places, without a list function but for reading.
#include "maxima_proofs.h"

#include "drawn_marks.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace {

constexpr unsigned char white = 255;

template <class Visit>
void ForEachNeighbour(const TPlaneRec &plane, intptr_t x, intptr_t y, Visit visit) {
    for (intptr_t j = std::max<intptr_t>(y - 1, 0); j <= std::min<intptr_t>(y + 1, plane.Height - 1); ++j)
        for (intptr_t i = std::max<intptr_t>(x - 1, 0); i <= std::min<intptr_t>(x + 1, plane.Width - 1); ++i)
            if (i != x || j != y)
                visit(*AddressOf(plane, i, j));
}

bool IsWithin(const FoundPlace &one, const FoundPlace &other, int64_t locality) {
    const auto reach = static_cast<double>(locality);
    return std::abs(one.x - other.x) <= reach && std::abs(one.y - other.y) <= reach;
}

/// Row and column of each place inside the plane, without fractions.
std::set<std::pair<intptr_t, intptr_t>> PixelsOf(const std::vector<FoundPlace> &places, void *image) {
    std::set<std::pair<intptr_t, intptr_t>> pixels;
    for (const FoundPlace &place : places) {
        const auto x = static_cast<intptr_t>(place.x), y = static_cast<intptr_t>(place.y);
        if (x >= 0 && y >= 0 && x < ImageWidth(image) && y < ImageHeight(image))
            pixels.emplace(y, x);
    }
    return pixels;
}

} // namespace

bool AreMaxima(const std::vector<FoundPlace> &places, void *grey, int64_t threshold) {
    const TPlaneRec plane = PlaneOf(grey, 0);
    return std::all_of(places.begin(), places.end(), [&](const FoundPlace &place) {
        const auto x = static_cast<intptr_t>(place.x), y = static_cast<intptr_t>(place.y);
        bool holds = place.value == *AddressOf(plane, x, y) && place.value >= static_cast<double>(threshold);
        ForEachNeighbour(plane, x, y, [&](unsigned char grey) { holds = holds && place.value >= grey; });
        return holds;
    });
}

bool AreApartAndDescending(const std::vector<FoundPlace> &places, int64_t locality) {
    for (std::size_t i = 0; i < places.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (IsWithin(places[i], places[j], locality) || places[i].value > places[j].value)
                return false;
    return true;
}

bool MissNone(const std::vector<FoundPlace> &places, void *grey, const SpotSearch &search) {
    const TPlaneRec plane = PlaneOf(grey, 0);
    for (intptr_t y = 1; y < plane.Height - 1; ++y)
        for (intptr_t x = 0; x < plane.Width; ++x) {
            const unsigned char value = *AddressOf(plane, x, y);
            bool isPeak = value >= search.threshold;
            if (isPeak)
                ForEachNeighbour(plane, x, y, [&](unsigned char other) { isPeak = isPeak && value > other; });
            const FoundPlace peak{static_cast<double>(x), static_cast<double>(y), static_cast<double>(value)};
            if (isPeak && std::none_of(places.begin(), places.end(), [&](const FoundPlace &place) {
                    return place.value >= peak.value && IsWithin(place, peak, search.locality);
                }))
                return false;
        }
    return true;
}

PlaceErrors CompareWithMarks(const std::vector<FoundPlace> &places, const std::vector<Mark> &marks) {
    PlaceErrors errors;
    std::set<const Mark *> found;
    double sum = 0.0;
    for (const FoundPlace &place : places) {
        const auto distance = [&](const Mark &mark) { return std::hypot(place.x - mark.x, place.y - mark.y); };
        const Mark &nearest = *std::min_element(
            marks.begin(), marks.end(), [&](const Mark &a, const Mark &b) { return distance(a) < distance(b); });
        if (distance(nearest) < nearest.radius)
            found.insert(&nearest);
        sum += distance(nearest);
        errors.largest = std::max(errors.largest, distance(nearest));
        errors.offsets.push_back({place.x - nearest.x, place.y - nearest.y, place.value});
    }
    errors.eachMarkIsFound = found.size() == marks.size() && places.size() == marks.size();
    errors.mean = places.empty() ? 0.0 : sum / static_cast<double>(places.size());
    return errors;
}

bool MarksThePlacesOnly(void *overlay, void *picture, const std::vector<FoundPlace> &places) {
    const std::set<std::pair<intptr_t, intptr_t>> pixels = PixelsOf(places, picture);
    bool holds = ImageDimension(overlay) == ImageDimension(picture);
    for (intptr_t p = 0; p < ImageDimension(picture) && holds; ++p) {
        const TPlaneRec marked = PlaneOf(overlay, p), plane = PlaneOf(picture, p);
        for (intptr_t y = 0; y < plane.Height; ++y)
            for (intptr_t x = 0; x < plane.Width; ++x) {
                const int bit = pixels.count({y, x}) != 0 ? 1 : 0;
                holds = holds && *AddressOf(marked, x, y) == ((*AddressOf(plane, x, y) & 0xFE) | bit);
            }
    }
    return holds;
}

bool GivesThePlacesBack(void *list, std::vector<FoundPlace> places) {
    for (FoundPlace &place : places)
        place = {std::trunc(place.x), std::trunc(place.y), 0.0};
    const auto isBefore = [](const FoundPlace &a, const FoundPlace &b) {
        return std::pair(a.y, a.x) < std::pair(b.y, b.x);
    };
    const auto isSame = [](const FoundPlace &a, const FoundPlace &b) {
        return a.x == b.x && a.y == b.y && a.value == b.value;
    };
    std::sort(places.begin(), places.end(), isBefore);
    places.erase(std::unique(places.begin(), places.end(), isSame), places.end());
    const std::vector<FoundPlace> given = PlacesOf(list);
    return std::equal(given.begin(), given.end(), places.begin(), places.end(), isSame);
}

bool IsDrawnAtThePlacesOnly(void *drawn, void *original, const std::vector<FoundPlace> &places, double reach,
                            double value) {
    const TPlaneRec plane = PlaneOf(drawn, 0), before = PlaneOf(original, 0);
    for (intptr_t y = 0; y < plane.Height; ++y)
        for (intptr_t x = 0; x < plane.Width; ++x)
            if (*AddressOf(plane, x, y) != *AddressOf(before, x, y) &&
                std::none_of(places.begin(), places.end(), [&](const FoundPlace &place) {
                    return std::hypot(place.x - static_cast<double>(x), place.y - static_cast<double>(y)) <= reach;
                }))
                return false;
    return std::all_of(places.begin(), places.end(), [&](const FoundPlace &place) {
        const intptr_t x = std::lround(place.x), y = std::lround(place.y);
        return x < 0 || y < 0 || x >= plane.Width || y >= plane.Height || *AddressOf(plane, x, y) == value;
    });
}

bool IsFilledInside(void *filled, void *outlines, const std::vector<Shape> &shapes) {
    ImageHandle model;
    Require(CreateDuplicateImage(outlines, model.Out()), "CreateDuplicateImage");
    const TPlaneRec plane = PlaneOf(model.Get(), 0);
    std::vector<std::pair<intptr_t, intptr_t>> open;
    for (const Shape &shape : shapes)
        if (LiesInside(outlines, shape, spareOfOutlines))
            open.emplace_back(std::lround(shape.centre.x), std::lround(shape.centre.y));
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        if (x < 0 || y < 0 || x >= plane.Width || y >= plane.Height || *AddressOf(plane, x, y) == white)
            continue;
        *AddressOf(plane, x, y) = white;
        for (const auto &next : {std::pair(x - 1, y), std::pair(x, y - 1), std::pair(x + 1, y), std::pair(x, y + 1)})
            open.push_back(next);
    }
    const TPlaneRec other = PlaneOf(filled, 0);
    for (intptr_t y = 0; y < plane.Height; ++y)
        for (intptr_t x = 0; x < plane.Width; ++x)
            if (*AddressOf(plane, x, y) != *AddressOf(other, x, y))
                return false;
    return true;
}

int64_t CountWhite(void *mask) {
    const TPlaneRec plane = PlaneOf(mask, 0);
    int64_t count = 0;
    for (intptr_t y = 0; y < plane.Height; ++y)
        for (intptr_t x = 0; x < plane.Width; ++x)
            count += *AddressOf(plane, x, y) == white ? 1 : 0;
    return count;
}

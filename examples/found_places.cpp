// The searches are calls of the library; what a found spot looks like is a plain sum over its pixels.
#include "found_places.h"

#include "peak_plane.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double peakThreshold = 0.2; // of the logarithm: clearly above the board's edge
constexpr intptr_t peakLocality = 24; // pixels

/// Calls visit(x, y, grey) for the pixels of a plane within reach of a place, along both axes.
template <class Visit>
void ForEachNear(const TPlaneRec &plane, double placeX, double placeY, double reach, Visit visit) {
    const auto first = [&](double place) {
        return std::max<intptr_t>(static_cast<intptr_t>(std::ceil(place - reach)), 0);
    };
    const auto last = [&](double place, int64_t size) {
        return std::min<intptr_t>(static_cast<intptr_t>(std::floor(place + reach)), size - 1);
    };
    for (intptr_t y = first(placeY); y <= last(placeY, plane.Height); ++y)
        for (intptr_t x = first(placeX); x <= last(placeX, plane.Width); ++x)
            visit(static_cast<double>(x), static_cast<double>(y), static_cast<double>(*AddressOf(plane, x, y)));
}

double MeanAround(const TPlaneRec &plane, const FoundPlace &place, double reach) {
    double sum = 0.0, count = 0.0;
    ForEachNear(plane, place.x, place.y, reach, [&](double, double, double grey) { sum += grey, count += 1.0; });
    return count > 0.0 ? sum / count : 0.0;
}

/// The mean of the pixels at this distance from a place.
double MeanAtDistance(const TPlaneRec &plane, const FoundPlace &place, double distance) {
    double sum = 0.0, count = 0.0;
    ForEachNear(plane, place.x, place.y, distance, [&](double x, double y, double grey) {
        const double from = std::hypot(x - place.x, y - place.y);
        if (from > distance - 2.0 && from <= distance)
            sum += grey, count += 1.0;
    });
    return count > 0.0 ? sum / count : 0.0;
}

} // namespace

std::vector<FoundPlace> PlacesOf(void *list) {
    std::vector<FoundPlace> places;
    std::array<double, 256> components{};
    for (int64_t i = 0; i < PixelListCount(list); ++i) {
        Require(ListPixelEx(list, i, components.data()), "ListPixelEx");
        places.push_back({components[0], components[1], components[2]});
    }
    return places;
}

ListHandle ListOf(const std::vector<FoundPlace> &places) {
    ListHandle list;
    *list.Out() = CreatePixelList(3);
    Require(list.Get() != nullptr, "CreatePixelList");
    for (const FoundPlace &place : places) {
        const double components[] = {place.x, place.y, place.value};
        Require(AddPixel(list.Get(), components), "AddPixel");
    }
    return list;
}

SpotSearch SearchFor(void *grey) {
    TArea all{};
    std::array<uint64_t, 256> counts{};
    Require(MaxImageArea(grey, &all) && ImageHistogram(grey, 0, all, 1000, counts.data()), "ImageHistogram");
    const auto enough = static_cast<uint64_t>(ImageWidth(grey) * ImageHeight(grey) / 200);
    uint64_t brighter = 0;
    int64_t threshold = 255;
    while (threshold > 1 && (brighter += counts[static_cast<std::size_t>(threshold)]) < enough)
        --threshold;
    return {std::max<int64_t>(std::min(ImageWidth(grey), ImageHeight(grey)) / 50, 4), threshold};
}

ListHandle FindSpots(void *grey, const SpotSearch &search) {
    ListHandle list;
    // 0 as the last column and row stands for those of the image.
    Require(FindMaxima(grey, 0, 0, 0, 0, 0, search.locality, search.threshold, list.Out()) != 0, "FindMaxima");
    return list;
}

ListHandle OrderByLight(void *spots, void *grey) {
    ListHandle list;
    *list.Out() = CreatePixelList(4);
    Require(list.Get() != nullptr, "CreatePixelList");
    for (const FoundPlace &spot : PlacesOf(spots)) {
        const double components[] = {spot.x, spot.y, spot.value, MeanAround(PlaneOf(grey, 0), spot, 2.0)};
        Require(AddPixel(list.Get(), components), "AddPixel");
    }
    const double brightestFirst[] = {0.0, 0.0, 0.0, -1.0};
    Require(SortPixelsEx(list.Get(), brightestFirst), "SortPixelsEx");
    return list;
}

ListHandle FindPeaks(void *peaks, uint32_t fitMode, int32_t radius, intptr_t step) {
    const ImageHandle view = EveryFewPixels(peaks, step);
    ListHandle list;
    Require(FindSubPixelMaxima(view.Get(), 0, 0, 0, ImageWidth(view.Get()) - 1, ImageHeight(view.Get()) - 1,
                               peakLocality / step, fitMode, radius, list.Out(), peakThreshold),
            "FindSubPixelMaxima");
    TMatrix toPlane{};
    SetMatrix(&toPlane, static_cast<double>(step), 0.0, 0.0, static_cast<double>(step));
    Require(TransformPixelListMatrix(list.Get(), toPlane, 0.0, 0.0), "TransformPixelListMatrix");
    return list;
}

Shape MeasureShape(void *grey, const FoundPlace &place, double reach) {
    const TPlaneRec plane = PlaneOf(grey, 0);
    const double around = MeanAtDistance(plane, place, reach);
    const double contrast = MeanAround(plane, place, 1.0) - around;
    double mass = 1e-9, sumX = 0.0, sumY = 0.0, sumXX = 0.0, sumXY = 0.0, sumYY = 0.0;
    ForEachNear(plane, place.x, place.y, reach, [&](double x, double y, double value) {
        const double dx = x - place.x, dy = y - place.y;
        const double share = contrast > 0.0 && std::hypot(dx, dy) <= reach ? (value - around) / contrast : 0.0;
        const double weight = std::clamp(2.0 * share - 0.5, 0.0, 1.0);
        mass += weight, sumX += weight * dx, sumY += weight * dy;
        sumXX += weight * dx * dx, sumXY += weight * dx * dy, sumYY += weight * dy * dy;
    });
    const double meanX = sumX / mass, meanY = sumY / mass;
    const double xx = sumXX / mass - meanX * meanX, yy = sumYY / mass - meanY * meanY,
                 xy = sumXY / mass - meanX * meanY;
    const double middle = (xx + yy) / 2.0, apart = std::hypot((xx - yy) / 2.0, xy);
    // A full ellipse has a quarter of the square of its half axes as moments.
    const auto halfAxis = [](double moment) { return 2.0 * std::sqrt(std::max(moment, 0.0)); };
    return {{place.x + meanX, place.y + meanY},
            halfAxis(middle + apart),
            halfAxis(middle - apart),
            0.5 * std::atan2(2.0 * xy, xx - yy)};
}

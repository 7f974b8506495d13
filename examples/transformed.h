// A picture that is sampled from another one, and which place of the other each of its pixels shows.
#pragma once

#include "views.h"

struct TransformedPicture {
    std::string name;
    std::string fileEnding;
    std::function<Point(Point)> toSource;   ///< which place of the source a pixel shows
    std::function<Point(Point)> toResult{}; ///< where a place of the source appears
    ImageHandle image{};
};

/// The functions of a map that leads from pixels of the result to places of the source.
inline TransformedPicture UnderMap(std::string name, std::string fileEnding, const TCoordinateMap &toSource) {
    TCoordinateMap toResult{};
    Require(InverseCoordinateMap(&toResult, toSource), "InverseCoordinateMap");
    const auto apply = [](const TCoordinateMap &map) {
        return [map](Point place) {
            Point led{};
            CoordinateMapTransform(&led.x, &led.y, map, place.x, place.y);
            return led;
        };
    };
    return {std::move(name), std::move(fileEnding), apply(toSource), apply(toResult)};
}

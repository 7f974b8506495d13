// Grey profiles: what walks over a turned line and a turned area see, told in the image's own coordinate system.
#pragma once

#include "views.h"

/// A pixel that a walk came by.
struct Sample {
    const unsigned char *pixel;
    int32_t x;
    int32_t y;
};

struct WalkedLine {
    int64_t linesLeftAtBegin = 0;
    int64_t linesLeftAtEnd = 0;
    std::vector<Sample> samples{};
};

/// Everything that the callbacks of one walk were told.
struct PlaneWalk {
    int64_t result = 0;
    std::vector<WalkedLine> lines{};
};

/// Walks over an area of plane 0 in image coordinates.
PlaneWalk WalkOver(void *image, const TArea &area, int64_t density);

struct ProfileValue {
    double position; ///< in image coordinates
    double grey;
};
using Profile = std::vector<ProfileValue>;

/// Each sample of the first line over its image coordinate x.
Profile AlongTheLine(void *image, const PlaneWalk &walk);
/// The mean of each line that has a sample over the mean of its image coordinates y.
Profile AcrossTheLines(void *image, const PlaneWalk &walk);

/// The grey values of a profile as shares of white, brought to so many columns.
std::vector<double> SharesOfWhite(const Profile &profile, std::size_t columns);

/// A line and an area in the turned system of an image, and how densely they are walked.
struct WalkPlaces {
    TCoordinateMap map;
    TArea line;
    TArea area;
    int64_t density;
};

/// What the red plane gets in the painted area.
inline constexpr unsigned char reddish = 0x80;

/// A copy of the picture in three planes, with red added in the area, and all of red and green in a band along the
/// line.
ImageHandle PaintPlaces(void *picture, const WalkPlaces &places);
/// The band: the line, two units wide on both sides.
TArea BandAlong(const TArea &line);

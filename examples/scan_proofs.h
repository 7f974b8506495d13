// What the demo proves about walks, profiles and charts.
#pragma once

#include "bar_chart.h"
#include "scan_profile.h"
#include "scene.h"

/// Each sample has the address that the table gives for its position, and the result of the walk is their number.
bool NotesTheTablesPixels(const PlaneWalk &walk, void *image);
/// Each line is begun and ended once, with the number of lines left.
bool CountsItsLines(const PlaneWalk &walk);
/// All samples lie in the area or close beside it: the number of lines is rounded, so that the last one may lie half
/// a step beyond, and corners and samples are rounded to pixels.
bool StaysInArea(const PlaneWalk &walk, void *image, const TArea &area, int64_t density);
/// The first line has its samples one step apart, from one of its ends to the other.
bool HasNoGap(const PlaneWalk &walk, int64_t density);
/// ImageHistogram over the area counts the pixels that the walk came by.
bool HistogramCountsTheWalk(const PlaneWalk &walk, void *image, const TArea &area, int64_t density);
/// A line that goes on beyond the picture gives its pixels inside, as a negative number.
bool TellsThatItWasClipped(void *image, const TArea &line);
/// Painted pixels are those that walks over plane 0 come by, and no others.
bool OnlyTheWalkIsPainted(void *painted, void *picture, const WalkPlaces &places);

/// What of a scene was found in a profile, and how far from where it was drawn.
struct Findings {
    int count = 0;
    double largestError = 0.0; ///< in pixels
};
/// The marks through whose middle the line goes: the place halfway between the two slopes of each.
Findings FindMarks(const Profile &profile, void *image, const std::vector<Mark> &marks);
/// The upper and the lower edge of the board.
Findings FindEdges(const Profile &profile, double halfHeight);

/// The bars are as high as they should be, and the rest of the paper is white.
bool BarsAreRight(void *chart, const std::vector<double> &shares);
/// The counts are those of a plain loop over all pixels.
bool CountsAllPixels(const GreyCounts &counts, void *image);

// What the demo proves about lists of maxima, and about what is drawn where they are.
#pragma once

#include "found_places.h"

/// Each place is a pixel of this value, at least the threshold, and none of its eight neighbours is greater.
bool AreMaxima(const std::vector<FoundPlace> &places, void *grey, int64_t threshold);
/// No two of them lie within the locality along both axes, and none follows on a lesser one.
bool AreApartAndDescending(const std::vector<FoundPlace> &places, int64_t locality);
/// Each pixel that is greater than its eight neighbours, and at least the threshold, has a found place within the
/// locality that is not less than it. The first and the last row don't count: the search does not look into them.
bool MissNone(const std::vector<FoundPlace> &places, void *grey, const SpotSearch &search);

/// How far found places are from the true ones.
struct PlaceErrors {
    bool eachMarkIsFound = false;      ///< and nothing else is
    double mean = 0.0;                 ///< in pixels
    double largest = 0.0;              ///< in pixels
    std::vector<FoundPlace> offsets{}; ///< found less true, in the order of the found places
};
PlaceErrors CompareWithMarks(const std::vector<FoundPlace> &places, const std::vector<Mark> &marks);

/// The overlay has bit 0 set at the places, without their fractions, and nowhere else, in all planes; all other bits
/// are those of the picture.
bool MarksThePlacesOnly(void *overlay, void *picture, const std::vector<FoundPlace> &places);
/// A list that was made from the overlay has the same places without their fractions, row by row.
bool GivesThePlacesBack(void *list, std::vector<FoundPlace> places);

/// Pixels of plane 0 that differ lie within reach of a place, and the pixel of each place that lies in the picture
/// has the value.
bool IsDrawnAtThePlacesOnly(void *drawn, void *original, const std::vector<FoundPlace> &places, double reach,
                            double value);
/// What a fill over four neighbours makes of the outlines, from the middle of each shape that has one.
bool IsFilledInside(void *filled, void *outlines, const std::vector<Shape> &shapes);
/// How many pixels of an 8-bit plane are white.
int64_t CountWhite(void *mask);

// What the demo proves about pictures that were sampled from others.
#pragma once

#include "scan_proofs.h"
#include "transformed.h"

/// The marks that lie whole in a picture: how far their centres are from where they should be.
/// largestRadius  larger ones are left out: what bends a picture bends them out of round.
Findings FindMarksAt(void *image, const std::vector<Mark> &marks, const std::function<Point(Point)> &placeOf,
                     double largestRadius);

/// Rows of one are the columns of the other.
bool IsTransposed(void *lying, void *standing);
/// Two pictures with the same pixels, of which the second one has no coordinate system.
bool DiffersInItsSystemOnly(void *image, void *withoutSystem);
/// How far two functions lead a pixel of a picture of this size apart at most; both keep straight lines straight.
double LargestDistance(void *size, const std::function<Point(Point)> &one, const std::function<Point(Point)> &other);

/// All other pixels than those for which isMeant holds have this value.
bool IsFilledBeside(void *image, const std::function<bool(Point)> &isMeant, unsigned char value);
/// The root mean square of the differences between the pixels for which isMeant holds and their places in another
/// picture, in grey levels. otherPlaceOf gives places inside it.
double RootMeanSquare(void *image, void *other, const std::function<bool(Point)> &isMeant,
                      const std::function<Point(Point)> &otherPlaceOf);

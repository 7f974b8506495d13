// Pictures put together from parts of others: cut and rescaled, plane by plane, and laid over each other.
#pragma once

#include "views.h"

/// A white image with pixels of its own.
ImageHandle BlankPaper(intptr_t planes, intptr_t width, intptr_t height);

/// The whole picture at four sizes, its middle shrunk and a detail enlarged: views by table alone.
std::vector<View> MakeThumbnails(void *source);

/// A picture with a copy of each thumbnail.
struct Strip {
    struct Place {
        intptr_t left;
        intptr_t top;
    };
    ImageHandle picture{};
    std::vector<Place> places{}; ///< where each thumbnail has its first pixel
};
Strip CopyIntoStrip(const std::vector<View> &thumbnails);

/// Each plane as a picture of its own.
std::vector<View> SplitPlanes(void *source);

/// Pictures of three planes, made of the planes of a split picture in other orders.
std::vector<View> Recombine(const std::vector<View> &split);

/// A picture and its own half turn, laid over each other so that one thing in both lies in one place.
struct Overlay {
    ImageHandle turned{};
    ImageHandle planes{};  ///< all planes of the picture, then all planes of the half turn, where both have pixels
    ImageHandle picture{}; ///< red from the picture, green and blue from the half turn
};

/// Sets the origin of source to the thing, which is a place in pixels, and that of the half turn to where it appears
/// there.
Overlay LayOverHalfTurn(void *source, Point thing);

/// All of it, for one picture. Each part holds the picture alive.
struct Compositions {
    std::vector<View> thumbnails;
    Strip strip;
    std::vector<View> split;
    std::vector<View> recombined;
    Overlay overlay;
};

// Lines, circles and ellipses on what was found, regions filled inside their outlines, and marks in an overlay.
#pragma once

#include "found_places.h"

struct Colour {
    double red;
    double green;
    double blue;
};
inline constexpr Colour markColour{230.0, 20.0, 60.0};
inline constexpr Colour ringColour{90.0, 225.0, 255.0};
inline constexpr double spareOfOutlines = 3.0; ///< between a shape and its outline, in pixels

/// A copy with three 8-bit planes of an image that has one or three.
ImageHandle CopyInColour(void *picture);

/// A cross whose arms have this many pixels beside the middle.
void DrawCross(void *image, const FoundPlace &place, intptr_t arm, intptr_t thickness, const Colour &colour);
/// The circle, or the ellipse, that goes around a shape with some pixels to spare.
void DrawAround(void *image, const Shape &shape, double spare, intptr_t thickness, const Colour &colour);
bool IsRound(const Shape &shape);
/// True when a shape with so many pixels around it lies in the image. Others are not outlined: thin lines that leave
/// the image at the side would go on in the rows beside.
bool LiesInside(void *image, const Shape &shape, double spare);

/// Black, with the outlines in white.
ImageHandle DrawOutlines(void *grey, const std::vector<Shape> &shapes);
/// The same with FloodFillMono from the middle of each shape.
ImageHandle FillOutlines(void *outlines, const std::vector<Shape> &shapes);

/// A duplicate of an overlay image, with a cross around each of the places in the overlay: bit 0 of all planes.
ImageHandle DrawInOverlay(void *overlay, const std::vector<FoundPlace> &places);
/// What an overlay shows: the picture at half its light, and white where a pixel of plane 0 is marked.
ImageHandle ShowOverlay(void *overlay);

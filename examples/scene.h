// The scene that the demo works on when it is given no file: a lit board with round marks, drawn in plain C++.
#pragma once

#include <cstdint>
#include <vector>

/// A round mark; its centre is a real position in pixels, (0, 0) being the centre of the first pixel.
struct Mark {
    double x;
    double y;
    double radius;
};

struct Scene {
    int width;
    int height;
    Mark middle; ///< the mark in the middle of the board; a half turn about it leads the board onto itself
    std::vector<Mark> marks;
    std::vector<std::uint8_t> grey;         ///< width x height bytes, first row first, no padding
    std::vector<std::uint8_t> blueGreenRed; ///< three bytes per pixel, first row first, no padding
    double angleDegrees;                    ///< of the board's edges against those of the picture
    double halfHeight;                      ///< of the board, in pixels
    int groundRows;                         ///< so many rows from the top show the grey ground only
};

/// Draws the scene: the same bytes on every call. The ground and the marks are lit unevenly, blurred as by a lens and
/// noisy as from a sensor.
Scene DrawScene();

// Draws images into places of a larger one, for the pictures that show many of them side by side.
#pragma once

#include "image_handle.h"

/// A place on a sheet, in pixels.
struct Cell {
    intptr_t left;
    intptr_t top;
    intptr_t width;
    intptr_t height;
};

/// Draws an image of one or three 8-bit planes into the middle of a cell, as large as fits, scaled by averaging.
/// sheet  three 8-bit planes.
void DrawInto(void *sheet, void *image, const Cell &cell);

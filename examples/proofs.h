// What the demo proves about each view. Every question is answered through the exported interface alone.
#pragma once

#include "scene.h"
#include "views.h"

/// Both images have the same size, planes and data types, and the same value in every pixel.
bool SamePixels(void *first, void *second);

/// Every pixel of the view has the very address of the source pixel that it shows.
bool NoPixelMoved(const View &view, void *source);

/// A value written through the view appears in the source and in the caller's own memory; it is put back.
bool WriteShowsInSource(const View &view, void *source, const CallersBuffer &buffer);

/// Writes an image as a bitmap, loads the file again and compares all pixels.
bool FileHolds(void *image, const std::string &path);

/// The centre of gravity of a mark, as it is found in the pixels. expected  no further away than a few pixels.
Point MeasureMark(const TPlaneRec &plane, Point expected, double radius);

/// Measures the centre of each mark that lies whole in the view, through the view's own table, and gives the largest
/// distance in pixels from where it was drawn.
double LargestMarkError(const View &view, const std::vector<Mark> &marks);

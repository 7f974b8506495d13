// A buffer of the caller's as an image, and the views of it that the demo shows.
#pragma once

#include "image_handle.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

/// Pixels in memory of the caller's own: one byte per pixel, or blue, green, red; rows without padding.
struct CallersBuffer {
    intptr_t width = 0;
    intptr_t height = 0;
    intptr_t planes = 0;
    std::vector<unsigned char> bytes{};
    int imagesAlive = 0; ///< counted down by the release callback
};

struct Point {
    double x;
    double y;
};

struct View {
    std::string name;
    std::string fileEnding;
    std::function<Point(Point)> toSource; ///< which source pixel a pixel of the view is
    std::function<Point(Point)> toView{}; ///< where a place of the source appears in the view
    std::vector<intptr_t> sourcePlanes{}; ///< which source plane each plane of the view is
    ImageHandle image{};
    double microsecondsToMake = 0.0;
};

/// Copies the pixels of an image of one or three 8-bit planes. From here on all views show this memory. Throws
/// std::runtime_error for any other image.
CallersBuffer CopyOut(void *image);

/// Shows columns firstColumn to firstColumn + width - 1 of a buffer as an image. The buffer must outlive the image;
/// its release callback says so and counts when it fires.
ImageHandle Wrap(CallersBuffer &buffer, intptr_t firstColumn, intptr_t width);

/// Turned by 90, 180 and 270 degrees, and cut in two halves that are joined again in the opposite order.
std::vector<View> MakeViews(void *source, CallersBuffer &buffer);

/// The numbers 0 to count - 1: the planes of an image in their own order.
std::vector<intptr_t> PlanesInOrder(intptr_t count);

/// Throws std::runtime_error with the name of what failed and the last report when done is false.
void Require(bool done, const char *what);

/// What the library has reported last on this thread, as one line.
std::string LastError();

/// Runs make, which gives a view, and notes in the view how long that took.
template <class Maker>
View Timed(Maker make) {
    const auto start = std::chrono::steady_clock::now();
    View view = make();
    view.microsecondsToMake =
        std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
    return view;
}

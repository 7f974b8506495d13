// What all rows of the benchmark share: the registration of a pair, images over the same pixels on both sides, and
// the check that both sides do the same work.
#ifndef ORV_BENCH_PEERS_H
#define ORV_BENCH_PEERS_H

#include "ORVImg.h"
#include <benchmark/benchmark.h>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <string>

namespace Bench {

using Body = std::function<void(benchmark::State &)>;

constexpr int Width = 1920;
constexpr int Height = 1080;

/// Registers one row: ours, theirs, and the highest ratio of the two times that is good.
void RegisterPair(const std::string &row, double goal, Body ours, Body theirs);

/// A handle that gives its reference back. Copies of a body may share one.
using ImageHandle = std::shared_ptr<void>;
ImageHandle Hold(void *image);

/// An OpenCV image of the given type with the same random bytes on every run (floats between 0 and 1).
cv::Mat RandomPixels(int type, int width = Width, int height = Height);

/// Wraps the pixels of an OpenCV image; B, G, R become the planes R, G, B.
ImageHandle External(const cv::Mat &pixels);
/// An image that owns its memory, with the pixels of an 8-bit OpenCV image of one or three channels.
ImageHandle Generic(const cv::Mat &pixels);
/// A view of an image.
ImageHandle Turned(const ImageHandle &image, TVPATRotation rotation);

/// Ends the program with a message unless the image shows the pixels of the OpenCV image.
void RequireSamePixels(void *image, const cv::Mat &pixels, const std::string &row);
/// Ends the program with a message when something that the rows are built on fails.
void Require(bool success, const std::string &what);

/// Copies the pixels into a block of malloc and frees it.
Body CopyIntoFreshBlock(const cv::Mat &pixels);

void RegisterHandles();
void RegisterViews();
void RegisterDuplicates();
void RegisterRectangles();
void RegisterBitmaps(const std::string &folder);
void RegisterScans();
void RegisterStatistics();
void RegisterMappings();
void RegisterColors();
void RegisterAffine();
void RegisterArbitrary();
void RegisterPolar();
void RegisterPixelLists();
void RegisterMaxima();
void RegisterSubPixel();
void RegisterDrawing();
void RegisterFloodFill();

} // namespace Bench

#endif

// Images of ours over OpenCV's pixels, and the comparison of the two.
#include "Peers.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Bench {

namespace {

TDataType DatatypeOf(const cv::Mat &pixels) {
    auto bits = static_cast<TDataType>(8 * pixels.elemSize1());
    return pixels.depth() == CV_32F ? bits | DataTypeFloat : bits;
}

// OpenCV keeps colours as B, G, R; the planes of an image are R, G, B.
int ChannelOfPlane(const cv::Mat &pixels, intptr_t plane) {
    return pixels.channels() == 3 ? static_cast<int>(2 - plane) : static_cast<int>(plane);
}

template <class Visit>
void ForEachPixel(void *image, const cv::Mat &pixels, Visit visit) {
    for (intptr_t plane = 0; plane < pixels.channels(); ++plane) {
        TPlaneRec record{};
        SetPlaneRec(image, plane, &record);
        Require(record.BaseAddress != nullptr, "an image with pixels");
        auto bytes = pixels.elemSize1();
        for (int y = 0; y < pixels.rows; ++y) {
            for (int x = 0; x < pixels.cols; ++x) {
                auto *ours = static_cast<char *>(record.BaseAddress) + record.VPAT[x].XEntry + record.VPAT[y].YEntry;
                auto *theirs = pixels.ptr(y, x) + bytes * static_cast<std::size_t>(ChannelOfPlane(pixels, plane));
                visit(ours, theirs, bytes);
            }
        }
    }
}

} // namespace

void Require(bool success, const std::string &what) {
    if (success)
        return;
    std::fprintf(stderr, "the benchmark can't go on without %s\n", what.c_str());
    std::exit(1);
}

void RegisterPair(const std::string &row, double goal, Body ours, Body theirs) {
    static int rows = 0;
    auto withGoal = [goal, number = ++rows](Body body) {
        return [goal, number, body](benchmark::State &state) {
            body(state);
            state.counters["goal"] = goal;
            state.counters["row"] = number;
        };
    };
    benchmark::RegisterBenchmark((row + "|ours").c_str(), withGoal(std::move(ours)));
    benchmark::RegisterBenchmark((row + "|theirs").c_str(), withGoal(std::move(theirs)));
}

ImageHandle Hold(void *image) {
    Require(image != nullptr, "an image");
    return {image, [](void *held) { ReleaseObject(held); }};
}

cv::Mat RandomPixels(int type, int width, int height) {
    cv::Mat pixels(height, width, type);
    cv::RNG random(4711);
    random.fill(pixels, cv::RNG::UNIFORM, 0, pixels.depth() == CV_32F ? 1 : pixels.depth() == CV_16U ? 65536 : 256);
    return pixels;
}

ImageHandle External(const cv::Mat &pixels) {
    void *image = nullptr;
    const intptr_t order[] = {2, 1, 0};
    auto *keptAlive = new cv::Mat(pixels);
    auto release = [](void *, void *userData) { delete static_cast<cv::Mat *>(userData); };
    auto status =
        CreateImageFromPointer(pixels.data, pixels.total() * pixels.elemSize(), pixels.cols, pixels.rows,
                               pixels.channels(), DatatypeOf(pixels), static_cast<intptr_t>(pixels.elemSize()),
                               static_cast<intptr_t>(pixels.step[0]), static_cast<intptr_t>(pixels.elemSize1()),
                               pixels.channels() == 3 ? order : nullptr, release, keptAlive, &image);
    Require(status == 0, "an external image");
    return Hold(image);
}

ImageHandle Generic(const cv::Mat &pixels) {
    void *image = nullptr;
    Require(CreateGenericImage(pixels.channels(), pixels.cols, pixels.rows, false, &image), "a generic image");
    auto handle = Hold(image);
    ForEachPixel(image, pixels,
                 [](char *ours, const uchar *theirs, std::size_t bytes) { std::memcpy(ours, theirs, bytes); });
    return handle;
}

ImageHandle Turned(const ImageHandle &image, TVPATRotation rotation) {
    void *view = nullptr;
    Require(CreateRotatedImageMap(image.get(), rotation, &view), "a turned view");
    return Hold(view);
}

void RequireSamePixels(void *image, const cv::Mat &pixels, const std::string &row) {
    Require(ImageWidth(image) == pixels.cols && ImageHeight(image) == pixels.rows &&
                ImageDimension(image) == pixels.channels(),
            "equal sizes on both sides: " + row);
    bool isSame = true;
    ForEachPixel(image, pixels, [&](const char *ours, const uchar *theirs, std::size_t bytes) {
        isSame = isSame && std::memcmp(ours, theirs, bytes) == 0;
    });
    Require(isSame, "equal pixels on both sides: " + row);
}

Body CopyIntoFreshBlock(const cv::Mat &pixels) {
    return [pixels](benchmark::State &state) {
        auto bytes = pixels.total() * pixels.elemSize();
        for (auto _ : state) {
            void *block = std::malloc(bytes);
            if (!block)
                return state.SkipWithError("no memory");
            std::memcpy(block, pixels.data, bytes);
            benchmark::DoNotOptimize(block);
            benchmark::ClobberMemory();
            std::free(block);
        }
    };
}

} // namespace Bench

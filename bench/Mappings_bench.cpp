// CreateNormalizedImage beside normalize, and beside meanStdDev with convertTo; MapTo8Bit beside minMaxLoc with
// convertTo. Both sides make a fresh image each time.
#include "Peers.h"
#include <algorithm>
#include <cmath>

namespace Bench {

namespace {

using Theirs = std::function<cv::Mat()>;
using Ours = std::function<void *()>;

Body MakeOurs(const Ours &make) {
    return [make](benchmark::State &state) {
        for (auto _ : state) {
            void *image = make();
            benchmark::DoNotOptimize(image);
            benchmark::ClobberMemory();
            ReleaseObject(image);
        }
    };
}

Body MakeTheirs(const Theirs &make) {
    return [make](benchmark::State &state) {
        for (auto _ : state) {
            cv::Mat image = make();
            benchmark::DoNotOptimize(image.data);
            benchmark::ClobberMemory();
        }
    };
}

/// The two sides round in different ways: ours truncates.
template <class T>
void RequireCloseTo(void *image, const cv::Mat &pixels, double tolerance, const std::string &row) {
    TPlaneRec record{};
    SetPlaneRec(image, 0, &record);
    Require(record.BaseAddress != nullptr, "an image with pixels: " + row);
    double furthest = 0;
    for (int y = 0; y < pixels.rows; ++y)
        for (int x = 0; x < pixels.cols; ++x) {
            const auto *ours = reinterpret_cast<const T *>(static_cast<const char *>(record.BaseAddress) +
                                                           record.VPAT[x].XEntry + record.VPAT[y].YEntry);
            furthest = std::max(furthest, std::abs(static_cast<double>(*ours) - pixels.at<T>(y, x)));
        }
    Require(furthest <= tolerance, "pixels that lie close on both sides: " + row);
}

template <class T>
void RegisterMapping(const std::string &row, double goal, double tolerance, const Ours &ours, const Theirs &theirs) {
    RequireCloseTo<T>(Hold(ours()).get(), theirs(), tolerance, row);
    RegisterPair(row, goal, MakeOurs(ours), MakeTheirs(theirs));
}

void *Normalized(const ImageHandle &image, int32_t mode, double target1, double target2) {
    void *result = nullptr;
    CreateNormalizedImage(image.get(), mode, target1, target2, &result);
    return result;
}

template <class T>
void RegisterExtremes(const std::string &type, int matrixType, double lowest, double highest, double tolerance,
                      double goal) {
    const cv::Mat pixels = RandomPixels(matrixType);
    const ImageHandle image = External(pixels);
    RegisterMapping<T>(
        "CreateNormalizedImage, minimum and maximum, " + type + " / normalize", goal, tolerance,
        [=] { return Normalized(image, NormalizeMinimumMaximum, lowest, highest); },
        [=] {
            cv::Mat result;
            cv::normalize(pixels, result, lowest, highest, cv::NORM_MINMAX);
            return result;
        });
}

template <class T>
void RegisterMeanDeviation(const std::string &type, int matrixType, double mean, double deviation, double goal) {
    const cv::Mat pixels = RandomPixels(matrixType);
    const ImageHandle image = External(pixels);
    RegisterMapping<T>(
        "CreateNormalizedImage, mean and deviation, " + type + " / meanStdDev and convertTo", goal, 1,
        [=] { return Normalized(image, NormalizeMeanDeviation, mean, deviation); },
        [=] {
            cv::Scalar theirMean, theirDeviation;
            cv::meanStdDev(pixels, theirMean, theirDeviation);
            const double gain = deviation / theirDeviation[0];
            cv::Mat result;
            pixels.convertTo(result, -1, gain, mean - gain * theirMean[0]);
            return result;
        });
}

void RegisterScaleToBytes() {
    cv::Mat pixels = RandomPixels(CV_16UC1);
    pixels /= 16; // twelve bits
    const ImageHandle image = External(pixels);
    RegisterMapping<uchar>(
        "MapTo8Bit / minMaxLoc and convertTo", 0.55, 1,
        [=] {
            void *result = nullptr;
            MapTo8Bit(image.get(), 0, &result);
            return result;
        },
        [=] {
            double maximum = 0;
            cv::minMaxLoc(pixels, nullptr, &maximum);
            cv::Mat result;
            pixels.convertTo(result, CV_8U, 255.0 / maximum);
            return result;
        });
}

} // namespace

void RegisterMappings() {
    RegisterExtremes<uchar>("8 bits", CV_8UC1, 10, 240, 1, 0.45);
    RegisterExtremes<ushort>("16 bits", CV_16UC1, 10, 60000, 1, 0.95);
    RegisterExtremes<float>("float", CV_32FC1, -1, 1, 1e-5, 1.0);
    RegisterMeanDeviation<uchar>("8 bits", CV_8UC1, 120, 40, 0.7);
    RegisterMeanDeviation<ushort>("16 bits", CV_16UC1, 30000, 10000, 1.0);
    RegisterScaleToBytes();
}

} // namespace Bench

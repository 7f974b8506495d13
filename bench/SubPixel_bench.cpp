// Bright spots located to fractions of a pixel, beside a dilation with a square of 11 x 11, whose fixed points are
// the maxima with a neighbourhood of 5, and the same least squares around each of them.
#include "Peers.h"
#include "PixelList/Pixel.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <random>

namespace Bench {

namespace {

constexpr int Locality = 5;
constexpr int Radius = 2;
constexpr int WindowPixels = (2 * Radius + 1) * (2 * Radius + 1);
constexpr double Threshold = 60;

// ---- spots

void DrawSpot(cv::Mat &pixels, double centreX, double centreY, double height) {
    const int left = cvRound(centreX) - 5, top = cvRound(centreY) - 5;
    for (int y = top; y <= top + 10; ++y)
        for (int x = left; x <= left + 10; ++x) {
            const double distance = (x - centreX) * (x - centreX) + (y - centreY) * (y - centreY);
            pixels.at<uchar>(y, x) = cv::saturate_cast<uchar>(10 + height * std::exp(-distance / 2.88));
        }
}

/// One spot in the middle of each cell of a grid, at most a third of a pixel off the nearest whole position.
cv::Mat Spots(int columns, int rows) {
    cv::Mat pixels(Height, Width, CV_8UC1, cv::Scalar(10));
    std::mt19937 random(4711);
    std::uniform_real_distribution<double> offset(-0.33, 0.33), height(100, 240);
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
            const int x = (2 * column + 1) * Width / (2 * columns), y = (2 * row + 1) * Height / (2 * rows);
            DrawSpot(pixels, x + offset(random), y + offset(random), height(random));
        }
    return pixels;
}

// ---- their way

/// The least squares of z = a (x^2 + y^2) - b x - c y + d around (0, 0), solved once: the coefficients are sums of
/// the window's values with these weights.
struct Weights {
    cv::Mat OfValues; ///< four rows
    Weights() {
        cv::Mat equations(WindowPixels, 4, CV_64F);
        for (int i = 0; i < WindowPixels; ++i) {
            const double x = i % (2 * Radius + 1) - Radius, y = i / (2 * Radius + 1) - Radius;
            const double line[] = {x * x + y * y, -x, -y, 1};
            std::copy_n(line, 4, equations.ptr<double>(i));
        }
        OfValues = equations.inv(cv::DECOMP_SVD);
    }
};

template <class Pixel>
cv::Point3d FitTheirWay(const cv::Mat &pixels, const cv::Point &centre, const Weights &weights) {
    double fit[4] = {};
    double values[WindowPixels];
    for (int i = 0; i < WindowPixels; ++i)
        values[i] = pixels.at<Pixel>(std::clamp(centre.y + i / (2 * Radius + 1) - Radius, 0, Height - 1),
                                     std::clamp(centre.x + i % (2 * Radius + 1) - Radius, 0, Width - 1));
    for (int k = 0; k < 4; ++k)
        for (int i = 0; i < WindowPixels; ++i)
            fit[k] += weights.OfValues.at<double>(k, i) * values[i];
    const double x = fit[1] / (2 * fit[0]), y = fit[2] / (2 * fit[0]);
    return {centre.x + x, centre.y + y, fit[3] - fit[0] * (x * x + y * y)};
}

template <class Pixel>
std::vector<cv::Point3d> FindTheirWay(const cv::Mat &pixels) {
    static const Weights weights;
    const cv::Mat square = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(2 * Locality + 1, 2 * Locality + 1));
    cv::Mat dilated, isMaximum, isBright;
    cv::dilate(pixels, dilated, square);
    cv::compare(pixels, dilated, isMaximum, cv::CMP_EQ);
    cv::compare(pixels, Threshold, isBright, cv::CMP_GE);
    isMaximum &= isBright;
    std::vector<cv::Point> places;
    cv::findNonZero(isMaximum, places);
    std::sort(places.begin(), places.end(),
              [&](const cv::Point &a, const cv::Point &b) { return pixels.at<Pixel>(a) > pixels.at<Pixel>(b); });
    std::vector<cv::Point3d> found;
    found.reserve(places.size());
    for (const cv::Point &place : places)
        found.push_back(FitTheirWay<Pixel>(pixels, place, weights));
    return found;
}

// ---- our way

void *FindOurWay(const ImageHandle &image) {
    void *list = nullptr;
    FindSubPixelMaxima(image.get(), 0, 0, 0, Width - 1, Height - 1, Locality, FitParaboloid, Radius, &list,
                       Threshold);
    return list;
}

// ---- both sides do the same work

template <class Pixel>
void RequireSameSpots(const cv::Mat &pixels, const ImageHandle &image, int count) {
    const auto ours = Hold(FindOurWay(image));
    const auto theirs = FindTheirWay<Pixel>(pixels);
    Require(PixelListCount(ours.get()) == count && theirs.size() == static_cast<std::size_t>(count),
            "as many spots on both sides");
    double ourSum = 0, theirSum = 0;
    for (int i = 0; i < count; ++i) {
        double components[3];
        Require(ListPixelEx(ours.get(), i, components), "a spot of ours");
        ourSum += std::abs(components[0]) + std::abs(components[1]) + components[2];
        const auto &spot = theirs[static_cast<std::size_t>(i)];
        theirSum += std::abs(spot.x) + std::abs(spot.y) + spot.z;
    }
    Require(std::abs(ourSum - theirSum) < 0.01 * count, "spots at the same places on both sides");
}

template <class Pixel>
void RegisterSpots(const std::string &type, const cv::Mat &pixels, int count, double goal) {
    const auto image = External(pixels);
    RequireSameSpots<Pixel>(pixels, image, count);
    RegisterPair(
        "FindSubPixelMaxima, " + type + ", " + std::to_string(count) + " spots, paraboloids / dilate 11 x 11", goal,
        [=](benchmark::State &state) {
            for (auto _ : state) {
                void *list = FindOurWay(image);
                benchmark::DoNotOptimize(list);
                ReleaseObject(list);
            }
        },
        [=](benchmark::State &state) {
            for (auto _ : state) {
                const auto found = FindTheirWay<Pixel>(pixels);
                benchmark::DoNotOptimize(found.data());
            }
        });
}

} // namespace

void RegisterSubPixel() {
    const std::array<std::array<int, 2>, 3> grids = {{{10, 10}, {40, 25}, {125, 80}}};
    for (const auto &[columns, rows] : grids)
        RegisterSpots<uchar>("8-bit", Spots(columns, rows), columns * rows, 1.0);
    cv::Mat floats;
    Spots(125, 80).convertTo(floats, CV_32F);
    RegisterSpots<float>("float", floats, 10000, 1.0);
}

} // namespace Bench

// A ring unrolled and rolled up again beside warpPolar, whose unrolled images have columns for radii and rows for
// angles. Both sides make the same number of pixels.
#include "Peers.h"
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace Bench {

namespace {

// ---- the same ring on both sides

constexpr double Radius = 539; ///< of the largest whole circle in the image, whose inner radius is 0
constexpr int Rows = 541;
constexpr int Columns = 1693;
constexpr int Side = 1080;

void *Unroll(const ImageHandle &image) {
    void *unrolled = nullptr;
    CreatePolarImage(image.get(), &unrolled, Width / 2, Height / 2, 0, 0, Radius);
    return unrolled;
}

/// One pixel per unit of the radius, from the centre outwards.
cv::Mat UnrollTheirWay(const cv::Mat &image) {
    cv::Mat unrolled;
    cv::warpPolar(image, unrolled, cv::Size(Rows, Columns), cv::Point2f(Width / 2, Height / 2), Rows,
                  cv::INTER_LINEAR);
    return unrolled;
}

bool RollUp(const ImageHandle &unrolled, const ImageHandle &target) {
    return InversePolarTransform(unrolled.get(), target.get(), Side / 2, Side / 2, 0, 0);
}

void RollUpTheirWay(const cv::Mat &unrolled, cv::Mat &target) {
    cv::warpPolar(unrolled, target, cv::Size(Side, Side), cv::Point2f(Side / 2, Side / 2), Rows,
                  cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);
}

// ---- both sides do the same work

/// An image without edges, on which a fraction of a pixel makes little difference.
cv::Mat SmoothPixels() {
    cv::Mat pixels(Height, Width, CV_8UC1);
    for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x)
            pixels.at<uchar>(y, x) = cv::saturate_cast<uchar>(128 + 100 * std::sin(x / 80.0) * std::cos(y / 60.0));
    return pixels;
}

void RequireSameRing() {
    const cv::Mat pixels = SmoothPixels();
    const auto ours = Hold(Unroll(External(pixels)));
    Require(ImageWidth(ours.get()) == Columns && ImageHeight(ours.get()) == Rows, "an unrolled ring of that size");
    const cv::Mat theirs = UnrollTheirWay(pixels);
    double difference = 0;
    for (int y = 0; y < Radius; ++y)
        for (int x = 0; x < Columns; ++x) {
            std::uint64_t value = 0;
            GetPixel(ours.get(), 0, x, y, &value);
            difference += std::abs(static_cast<double>(value) - theirs.at<uchar>(x, static_cast<int>(Radius) - y));
        }
    Require(difference / (Radius * Columns) < 1, "the same ring on both sides");
}

// ---- rows

Body UnrollOurs(const ImageHandle &image) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            void *unrolled = Unroll(image);
            benchmark::DoNotOptimize(unrolled);
            benchmark::ClobberMemory();
            ReleaseObject(unrolled);
        }
    };
}

Body UnrollTheirs(const cv::Mat &image) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            const cv::Mat unrolled = UnrollTheirWay(image);
            benchmark::DoNotOptimize(unrolled.data);
            benchmark::ClobberMemory();
        }
    };
}

Body RollUpOurs(const ImageHandle &unrolled, const ImageHandle &target) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            RollUp(unrolled, target);
            benchmark::ClobberMemory();
        }
    };
}

Body RollUpTheirs(const cv::Mat &unrolled, const cv::Mat &target) {
    return [=](benchmark::State &state) {
        cv::Mat existing = target;
        for (auto _ : state) {
            RollUpTheirWay(unrolled, existing);
            benchmark::ClobberMemory();
        }
    };
}

void RegisterType(const std::string &name, int type, double unrollGoal, double rollUpGoal) {
    const cv::Mat pixels = RandomPixels(type);
    const auto image = External(pixels);
    RegisterPair("CreatePolarImage, " + name + ", radius 539 of 1920 x 1080 / warpPolar", unrollGoal,
                 UnrollOurs(image), UnrollTheirs(pixels));
    const auto unrolled = Hold(Unroll(image));
    const cv::Mat target(Side, Side, type, cv::Scalar(0)), theirTarget = target.clone();
    const auto ourTarget = External(target);
    Require(RollUp(unrolled, ourTarget), "a ring rolled up");
    RegisterPair("InversePolarTransform, " + name + ", to 1080 x 1080 / warpPolar", rollUpGoal,
                 RollUpOurs(unrolled, ourTarget), RollUpTheirs(UnrollTheirWay(pixels), theirTarget));
}

} // namespace

void RegisterPolar() {
    RequireSameRing();
    RegisterType("8-bit", CV_8UC1, 0.30, 0.8);
    RegisterType("16-bit", CV_16UC1, 0.35, 0.8);
    RegisterType("float", CV_32FC1, 0.7, 0.8);
}

} // namespace Bench

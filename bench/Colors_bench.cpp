// Linear combinations of interleaved 8-bit planes beside cv::transform into a fresh image; white balance measured
// beside cv::sum, and applied beside cv::multiply, in place.
#include "Peers.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Bench {

namespace {

/// A camera's colours corrected, in the order R, G, B, and the offset of each row.
constexpr double Correction[] = {1.5283,  -0.3717, -0.1566, 2.25, //
                                 -0.2194, 1.4361,  -0.2167, -1.5, //
                                 0.0391,  -0.5612, 1.5221,  0.875};
constexpr double Gains[] = {1.21, 1.0, 1.37};

/// The grey of a picture.
constexpr double GreyWeights[] = {0.299, 0.587, 0.114, 0};

/// The rows for channels in the order B, G, R.
cv::Mat TheirMatrix(const double *ours, int rows) {
    cv::Mat matrix(rows, 4, CV_32F);
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < 4; ++column) {
            const int theirColumn = column == 3 ? 3 : 2 - column;
            matrix.at<float>(rows - 1 - row, theirColumn) = static_cast<float>(ours[4 * row + column]);
        }
    return matrix;
}

/// Theirs rounds in fixed point, ours cuts gains to 8 bits: the same work gives pixels that are one apart at most.
void RequireAlmostSamePixels(void *image, const cv::Mat &pixels, const std::string &row) {
    bool isAlike = ImageWidth(image) == pixels.cols && ImageHeight(image) == pixels.rows &&
                   ImageDimension(image) == pixels.channels();
    Require(isAlike, "equal sizes on both sides: " + row);
    for (int plane = 0; plane < pixels.channels(); ++plane) {
        TPlaneRec record{};
        SetPlaneRec(image, plane, &record);
        const int channel = pixels.channels() - 1 - plane;
        for (int y = 0; y < pixels.rows; ++y)
            for (int x = 0; x < pixels.cols; ++x) {
                const char *ours =
                    static_cast<const char *>(record.BaseAddress) + record.VPAT[y].YEntry + record.VPAT[x].XEntry;
                const int theirs = pixels.ptr(y)[x * pixels.channels() + channel];
                isAlike = isAlike && std::abs(*reinterpret_cast<const unsigned char *>(ours) - theirs) <= 1;
            }
    }
    Require(isAlike, "almost equal pixels on both sides: " + row);
}

void RegisterTransform(const cv::Mat &pixels, const ImageHandle &image, const double *rows, int planes,
                       const std::string &row, double goal) {
    const cv::Mat matrix = TheirMatrix(rows, planes);
    auto transform = [=](void **result) { return CreateColorTransform(image.get(), planes, 0, rows, result); };
    void *ours = nullptr;
    Require(transform(&ours) == 1, "transformed colours");
    cv::Mat theirs;
    cv::transform(pixels, theirs, matrix);
    RequireAlmostSamePixels(Hold(ours).get(), theirs, row);
    RegisterPair(
        row, goal,
        [=](benchmark::State &state) {
            for (auto _ : state) {
                void *result = nullptr;
                transform(&result);
                benchmark::DoNotOptimize(result);
                benchmark::ClobberMemory();
                ReleaseObject(result);
            }
        },
        [=](benchmark::State &state) {
            for (auto _ : state) {
                cv::Mat result;
                cv::transform(pixels, result, matrix);
                benchmark::DoNotOptimize(result.data);
                benchmark::ClobberMemory();
            }
        });
}

void RegisterMeasure(const cv::Mat &pixels, const ImageHandle &image) {
    const std::string row = "CalculateWhiteBalance, 3 interleaved planes / sum";
    const TArea whole = {0, 0, Width - 1, 0, 0, Height - 1};
    double gains[3] = {};
    Require(CalculateWhiteBalance(image.get(), &gains[0], &gains[1], &gains[2], whole) == 1, "a white balance");
    const cv::Scalar sums = cv::sum(pixels);
    const double greatest = std::max({sums[0], sums[1], sums[2]});
    for (int plane = 0; plane < 3; ++plane)
        Require(std::abs(gains[plane] - greatest / sums[2 - plane]) < 1e-12, "equal sums on both sides: " + row);
    RegisterPair(
        row, 0.25,
        [=](benchmark::State &state) {
            double red = 0, green = 0, blue = 0;
            for (auto _ : state) {
                CalculateWhiteBalance(image.get(), &red, &green, &blue, whole);
                benchmark::DoNotOptimize(red);
            }
        },
        [=](benchmark::State &state) {
            for (auto _ : state) {
                cv::Scalar sum = cv::sum(pixels);
                benchmark::DoNotOptimize(sum);
            }
        });
}

void RegisterApply() {
    const std::string row = "ApplyWhiteBalance, 3 interleaved planes / multiply by a scalar";
    const cv::Scalar theirGains(Gains[2], Gains[1], Gains[0]);
    auto ourPixels = RandomPixels(CV_8UC3), theirPixels = ourPixels.clone();
    const auto image = External(ourPixels);
    const auto apply = [=] { return ApplyWhiteBalance(image.get(), Gains[0], Gains[1], Gains[2]); };
    Require(apply() == 1, "an applied white balance");
    cv::multiply(theirPixels, theirGains, theirPixels);
    RequireAlmostSamePixels(image.get(), theirPixels, row);
    RegisterPair(
        row, 0.25,
        [=](benchmark::State &state) {
            for (auto _ : state) {
                apply();
                benchmark::ClobberMemory();
            }
        },
        [=](benchmark::State &state) {
            auto pixels = theirPixels;
            for (auto _ : state) {
                cv::multiply(pixels, theirGains, pixels);
                benchmark::ClobberMemory();
            }
        });
}

} // namespace

void RegisterColors() {
    const auto pixels = RandomPixels(CV_8UC3);
    const auto image = External(pixels);
    RegisterTransform(pixels, image, Correction, 3, "CreateColorTransform, 3 interleaved planes to 3 / transform",
                      1.2);
    RegisterTransform(pixels, image, GreyWeights, 1,
                      "CreateLinearCombinationImage, 3 interleaved planes to 1 / transform", 0.6);
    RegisterMeasure(pixels, image);
    RegisterApply();
}

} // namespace Bench

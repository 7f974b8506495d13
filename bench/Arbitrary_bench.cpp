// CreateAreaSubImage beside warpAffine under the same map, and CreateTransformedImage beside maps that the same
// function fills with remap. Both sides make a fresh image each time.
#include "ImageTransformations.h"
#include "Matrices.h"
#include "Peers.h"
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace Bench {

namespace {

using Ours = std::function<void *()>;
using Theirs = std::function<cv::Mat()>;
/// From a pixel of the result to its position in the source.
using Position = std::function<cv::Point2d(int, int)>;

void RegisterTransform(const std::string &row, double goal, const Ours &ours, const Theirs &theirs) {
    RegisterPair(
        row, goal,
        [ours](benchmark::State &state) {
            for (auto _ : state) {
                void *image = ours();
                benchmark::DoNotOptimize(image);
                benchmark::ClobberMemory();
                ReleaseObject(image);
            }
        },
        [theirs](benchmark::State &state) {
            for (auto _ : state) {
                const cv::Mat image = theirs();
                benchmark::DoNotOptimize(image.data);
                benchmark::ClobberMemory();
            }
        });
}

/// Their weights have 5 bits, and pixels at the border mix with a colour of their own there: looks at the others, and
/// takes a difference of a tenth of the whole range for equal.
template <class T>
void RequireCloseTo(void *image, const cv::Mat &pixels, const Position &position, const std::string &row) {
    Require(ImageWidth(image) == pixels.cols && ImageHeight(image) == pixels.rows,
            "equal sizes on both sides: " + row);
    const double range = std::is_floating_point_v<T> ? 1.0 : static_cast<double>(std::numeric_limits<T>::max());
    TPlaneRec record{};
    SetPlaneRec(image, 0, &record);
    Require(record.BaseAddress != nullptr, "an image with pixels: " + row);
    std::size_t compared = 0;
    double furthest = 0;
    for (int y = 0; y < pixels.rows; ++y)
        for (int x = 0; x < pixels.cols; ++x) {
            const cv::Point2d source = position(x, y);
            if (source.x < 1 || source.y < 1 || source.x > Width - 2 || source.y > Height - 2)
                continue;
            const auto *ours = reinterpret_cast<const T *>(static_cast<const char *>(record.BaseAddress) +
                                                           record.VPAT[x].XEntry + record.VPAT[y].YEntry);
            furthest = std::max(furthest, std::abs(static_cast<double>(*ours) - pixels.at<T>(y, x)));
            ++compared;
        }
    Require(compared > pixels.total() / 2 && furthest <= range / 10, "pixels that lie close on both sides: " + row);
}

/// An area of the size of the image, turned around its middle.
TArea TurnedArea(double degrees) {
    const double angle = degrees * CV_PI / 180, cosine = std::cos(angle), sine = std::sin(angle);
    const auto corner = [&](double x, double y) {
        return cv::Point2d(Width / 2 + x * cosine - y * sine, Height / 2 + x * sine + y * cosine);
    };
    const double right = (Width - 1) / 2.0, bottom = (Height - 1) / 2.0;
    const cv::Point2d origin = corner(-right, -bottom), below = corner(-right, bottom),
                      beside = corner(right, -bottom);
    TArea area{};
    SetArea(&area, origin.x, origin.y, below.x, below.y, beside.x, beside.y);
    return area;
}

template <class T>
void RegisterTurnedArea(const std::string &type, int matrixType, double goal) {
    const std::string row = "CreateAreaSubImage, turned, " + type + " / warpAffine";
    const cv::Mat pixels = RandomPixels(matrixType);
    const ImageHandle image = External(pixels);
    const TArea area = TurnedArea(10);
    const Ours ours = [=] {
        void *result = nullptr;
        CreateAreaSubImage(image.get(), &result, area);
        return result;
    };
    const cv::Matx23d map((area.X2 - area.X0 + 1) / Width, (area.X1 - area.X0 + 1) / Height, area.X0,
                          (area.Y2 - area.Y0 + 1) / Width, (area.Y1 - area.Y0 + 1) / Height, area.Y0);
    const Theirs theirs = [=] {
        cv::Mat result;
        cv::warpAffine(pixels, result, map, {Width, Height}, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);
        return result;
    };
    const auto position = [map](int x, int y) {
        return cv::Point2d(map(0, 0) * x + map(0, 1) * y + map(0, 2), map(1, 0) * x + map(1, 1) * y + map(1, 2));
    };
    RequireCloseTo<T>(Hold(ours()).get(), theirs(), position, row);
    RegisterTransform(row, goal, ours, theirs);
}

struct Lens {
    double CentreX, CentreY, Distortion;
};

void DistortPosition(void *userData, double *x, double *y) {
    const auto *lens = static_cast<const Lens *>(userData);
    const double fromX = *x - lens->CentreX, fromY = *y - lens->CentreY;
    const double scale = 1 + lens->Distortion * (fromX * fromX + fromY * fromY);
    *x = lens->CentreX + fromX * scale;
    *y = lens->CentreY + fromY * scale;
}

cv::Mat Remapped(const cv::Mat &pixels, TTransform transform, void *userData) {
    cv::Mat mapX(Height, Width, CV_32FC1), mapY(Height, Width, CV_32FC1), result;
    for (int row = 0; row < Height; ++row) {
        auto *toX = mapX.ptr<float>(row), *toY = mapY.ptr<float>(row);
        for (int column = 0; column < Width; ++column) {
            double x = column, y = row;
            transform(userData, &x, &y);
            toX[column] = static_cast<float>(x);
            toY[column] = static_cast<float>(y);
        }
    }
    cv::remap(pixels, result, mapX, mapY, cv::INTER_LINEAR);
    return result;
}

template <class T>
void RegisterLens(const std::string &type, int matrixType, double goal) {
    static Lens lens = {Width / 2.0, Height / 2.0, 5e-8};
    // Nobody sees through it: a call is a call on both sides.
    static TTransform volatile transform = DistortPosition;
    const std::string row = "CreateTransformedImage, lens distortion, " + type + " / maps and remap";
    const cv::Mat pixels = RandomPixels(matrixType);
    const ImageHandle image = External(pixels);
    const Ours ours = [=] {
        void *result = nullptr;
        CreateTransformedImage(image.get(), Width, Height, transform, &lens, &result);
        return result;
    };
    const Theirs theirs = [=] { return Remapped(pixels, transform, &lens); };
    const auto position = [](int x, int y) {
        cv::Point2d source(x, y);
        DistortPosition(&lens, &source.x, &source.y);
        return source;
    };
    RequireCloseTo<T>(Hold(ours()).get(), theirs(), position, row);
    RegisterTransform(row, goal, ours, theirs);
}

} // namespace

void RegisterArbitrary() {
    RegisterTurnedArea<uchar>("8 bits", CV_8UC1, 0.6);
    RegisterTurnedArea<ushort>("16 bits", CV_16UC1, 1.0);
    RegisterTurnedArea<float>("float", CV_32FC1, 1.0);
    RegisterLens<uchar>("8 bits", CV_8UC1, 1.1);
    RegisterLens<ushort>("16 bits", CV_16UC1, 1.1);
    RegisterLens<float>("float", CV_32FC1, 1.1);
}

} // namespace Bench

// Affine maps beside warpAffine with the same map, bilinear, and an upright crop beside clone of a region; fresh
// images on both sides.
#include "ImageTransformations.h"
#include "Matrices.h"
#include "Peers.h"
#include <opencv2/imgproc.hpp>

namespace Bench {

namespace {

Body Transform(const ImageHandle &image, const TMatrix &matrix) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            void *result = nullptr;
            CreateMatrixTransformedImage(image.get(), &result, matrix);
            benchmark::DoNotOptimize(result);
            benchmark::ClobberMemory();
            ReleaseObject(result);
        }
    };
}

// The map that CreateMatrixTransformedImage uses, and its result's size.
struct Warp {
    cv::Matx23d map;
    cv::Size size;

    explicit Warp(const TMatrix &matrix) {
        TArea whole;
        TRectangle bounds;
        SetRectArea(&whole, 0, 0, Width, Height);
        BoundingRectangle(&bounds, whole, {0, 0, matrix});
        map = {matrix.A11, matrix.A12, -bounds.Left, matrix.A21, matrix.A22, -bounds.Top};
        size = {static_cast<int>(bounds.Right - bounds.Left + 0.5),
                static_cast<int>(bounds.Bottom - bounds.Top + 0.5)};
    }
    void Run(const cv::Mat &pixels, cv::Mat &result) const {
        cv::warpAffine(pixels, result, map, size, cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    }
};

Body WarpIntoFreshImage(const cv::Mat &pixels, const Warp &warp) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            cv::Mat result;
            warp.Run(pixels, result);
            benchmark::DoNotOptimize(result.data);
            benchmark::ClobberMemory();
        }
    };
}

// The two weigh pixels with different numbers of bits: a smooth picture shows that they do the same work.
void RequireSameWork(const TMatrix &matrix) {
    cv::Mat ramp(Height, Width, CV_32FC1), warped;
    for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x)
            ramp.at<float>(y, x) = static_cast<float>(x + 2 * y);
    Warp warp(matrix);
    warp.Run(ramp, warped);
    void *result = nullptr;
    Require(CreateMatrixTransformedImage(External(ramp).get(), &result, matrix), "a transformed image");
    auto held = Hold(result);
    TPlaneRec plane{};
    SetPlaneRec(result, 0, &plane);
    Require(ImageWidth(result) == warped.cols && ImageHeight(result) == warped.rows, "equal sizes of a warp");
    int different = 0;
    for (int y = 0; y < warped.rows; ++y)
        for (int x = 0; x < warped.cols; ++x) {
            auto *row = static_cast<char *>(plane.BaseAddress) + plane.VPAT[y].YEntry;
            auto ours = *reinterpret_cast<float *>(row + plane.VPAT[x].XEntry);
            different += std::abs(ours - warped.at<float>(y, x)) > 0.1F;
        }
    // At the edges the one repeats pixels where the other mixes them with the border.
    Require(different < 4 * (Width + Height), "equal pixels of a warp");
}

struct Goals {
    double grey, deep, real, colour;
};

void RegisterMap(const std::string &name, const TMatrix &matrix, const Goals &goals) {
    RequireSameWork(matrix);
    auto registerForm = [&](const std::string &form, int type, double goal) {
        auto pixels = RandomPixels(type);
        RegisterPair("CreateMatrixTransformedImage, " + name + ", " + form + " / warpAffine", goal,
                     Transform(External(pixels), matrix), WarpIntoFreshImage(pixels, Warp(matrix)));
    };
    registerForm("8 bits", CV_8UC1, goals.grey);
    registerForm("16 bits", CV_16UC1, goals.deep);
    registerForm("float", CV_32FC1, goals.real);
    registerForm("3 x 8 bits interleaved", CV_8UC3, goals.colour);
}

void RegisterCrop(const std::string &form, int type) {
    auto pixels = RandomPixels(type);
    auto image = External(pixels);
    cv::Rect region(200, 100, 1200, 800);
    TArea area;
    SetRectArea(&area, region.x, region.y, region.br().x - 1, region.br().y - 1);
    auto row = "CreateSubImage, upright crop, " + form + " / clone";
    void *crop = nullptr;
    Require(CreateSubImage(image.get(), &crop, area), "a crop");
    RequireSamePixels(Hold(crop).get(), pixels(region).clone(), row);
    RegisterPair(
        row, 2.0,
        [=](benchmark::State &state) {
            for (auto _ : state) {
                void *result = nullptr;
                CreateSubImage(image.get(), &result, area);
                benchmark::DoNotOptimize(result);
                benchmark::ClobberMemory();
                ReleaseObject(result);
            }
        },
        [=](benchmark::State &state) {
            for (auto _ : state) {
                cv::Mat result = pixels(region).clone();
                benchmark::DoNotOptimize(result.data);
                benchmark::ClobberMemory();
            }
        });
}

} // namespace

void RegisterAffine() {
    TMatrix turn;
    RotationMatrix(&turn, 10);
    RegisterMap("rotation by 10 degrees", turn, {0.25, 0.20, 0.70, 0.33});
    RegisterMap("scale 0.5", {0.5, 0, 0, 0.5}, {0.22, 0.17, 0.40, 0.35});
    RegisterMap("scale 2", {2, 0, 0, 2}, {0.25, 0.18, 0.36, 0.40});
    RegisterCrop("8 bits", CV_8UC1);
    RegisterCrop("16 bits", CV_16UC1);
    RegisterCrop("3 x 8 bits interleaved", CV_8UC3);
}

} // namespace Bench

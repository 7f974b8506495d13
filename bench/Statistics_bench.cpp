// Minimum and maximum, mean and deviation over a stack of five planes beside chains of min, max and accumulate, and
// CreateOverlayImage beside a memcpy of as many bytes into a fresh block.
#include "Peers.h"
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace Bench {

namespace {

constexpr int Planes = 5;

/// The same planes on both sides.
struct Stack {
    cv::Mat Block;             ///< the planes one below the other
    std::vector<cv::Mat> Each; ///< views of the block
    ImageHandle Ours;

    explicit Stack(int type) : Block(RandomPixels(type, Width, Planes * Height)) {
        for (int plane = 0; plane < Planes; ++plane)
            Each.push_back(Block.rowRange(plane * Height, (plane + 1) * Height));
        const auto bytes = static_cast<intptr_t>(Block.elemSize());
        const auto bits = static_cast<TDataType>(8 * bytes);
        void *image = nullptr;
        CreateImageFromPointer(Block.data, Block.total() * Block.elemSize(), Width, Height, Planes,
                               Block.depth() == CV_32F ? bits | DataTypeFloat : bits, bytes, Width * bytes,
                               intptr_t{Width} * Height * bytes, nullptr, nullptr, nullptr, &image);
        Ours = Hold(image);
    }
};

using Reduction = int32_t (*)(void *image, void **first, void **second);

Body Reduce(const Stack &stack, Reduction reduction) {
    return [stack, reduction](benchmark::State &state) {
        for (auto _ : state) {
            void *first = nullptr, *second = nullptr;
            reduction(stack.Ours.get(), &first, &second);
            benchmark::DoNotOptimize(first);
            benchmark::DoNotOptimize(second);
            benchmark::ClobberMemory();
            ReleaseObject(first);
            ReleaseObject(second);
        }
    };
}

// ---- minimum and maximum

void ChainOfMinMax(const Stack &stack, cv::Mat &least, cv::Mat &greatest) {
    cv::min(stack.Each[0], stack.Each[1], least);
    cv::max(stack.Each[0], stack.Each[1], greatest);
    for (std::size_t plane = 2; plane < stack.Each.size(); ++plane) {
        cv::min(least, stack.Each[plane], least);
        cv::max(greatest, stack.Each[plane], greatest);
    }
}

Body MinMaxTheirWay(const Stack &stack) {
    return [stack](benchmark::State &state) {
        for (auto _ : state) {
            cv::Mat least, greatest;
            ChainOfMinMax(stack, least, greatest);
            benchmark::DoNotOptimize(least.data);
            benchmark::DoNotOptimize(greatest.data);
            benchmark::ClobberMemory();
        }
    };
}

void RegisterMinMax(const std::string &form, const Stack &stack) {
    auto row = "CreateMinMaxImage, 5 planes of " + form + " / min and max";
    void *first = nullptr, *second = nullptr;
    Require(CreateMinMaxImage(stack.Ours.get(), &first, &second) == 1, "a minimum and a maximum: " + row);
    cv::Mat least, greatest;
    ChainOfMinMax(stack, least, greatest);
    RequireSamePixels(Hold(first).get(), least, row);
    RequireSamePixels(Hold(second).get(), greatest, row);
    RegisterPair(row, 0.55, Reduce(stack, CreateMinMaxImage), MinMaxTheirWay(stack));
}

// ---- mean and deviation

/// Sums and sums of squares alone, in existing images of double, which the sums need: what is made of them comes on
/// top for us.
void Accumulate(const Stack &stack, cv::Mat &sums, cv::Mat &squares) {
    sums.setTo(0);
    squares.setTo(0);
    for (const cv::Mat &plane : stack.Each) {
        cv::accumulate(plane, sums);
        cv::accumulateSquare(plane, squares);
    }
}

Body AccumulateTheirWay(const Stack &stack) {
    return [stack](benchmark::State &state) {
        cv::Mat sums(Height, Width, CV_64F), squares(Height, Width, CV_64F);
        for (auto _ : state) {
            Accumulate(stack, sums, squares);
            benchmark::ClobberMemory();
        }
    };
}

/// The results that the sums lead to, as pixels of T.
template <class T>
void RequireMeanDeviation(const Stack &stack, const std::string &row) {
    cv::Mat sums(Height, Width, CV_64F), squares(Height, Width, CV_64F);
    Accumulate(stack, sums, squares);
    cv::Mat means(Height, Width, stack.Block.type()), deviations(Height, Width, stack.Block.type());
    for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x) {
            const double mean = sums.at<double>(y, x) / Planes;
            const double variance = squares.at<double>(y, x) / Planes - mean * mean;
            means.at<T>(y, x) = static_cast<T>(mean);
            deviations.at<T>(y, x) = static_cast<T>(variance > 0 ? std::sqrt(variance) + 0.5 : 0.0);
        }
    void *first = nullptr, *second = nullptr;
    Require(CreateMeanVarianceImage(stack.Ours.get(), &first, &second) == 1, "a mean and a deviation: " + row);
    RequireSamePixels(Hold(first).get(), means, row);
    RequireSamePixels(Hold(second).get(), deviations, row);
}

template <class T>
void RegisterMeanDeviation(const std::string &form, const Stack &stack, double goal) {
    auto row = "CreateMeanVarianceImage, 5 planes of " + form + " / accumulate and accumulateSquare";
    RequireMeanDeviation<T>(stack, row);
    RegisterPair(row, goal, Reduce(stack, CreateMeanVarianceImage), AccumulateTheirWay(stack));
}

// ---- overlay

Body MakeOverlay(const ImageHandle &image) {
    return [image](benchmark::State &state) {
        for (auto _ : state) {
            void *copy = nullptr;
            CreateOverlayImage(image.get(), &copy);
            benchmark::DoNotOptimize(copy);
            benchmark::ClobberMemory();
            ReleaseObject(copy);
        }
    };
}

void RegisterOverlay(const std::string &form, const ImageHandle &image, const cv::Mat &pixels) {
    auto row = "CreateOverlayImage, " + form + " / malloc and memcpy";
    void *copy = nullptr;
    Require(CreateOverlayImage(image.get(), &copy) == 1, "an overlay image: " + row);
    cv::Mat expected;
    cv::bitwise_and(pixels, cv::Scalar::all(pixels.elemSize1() == 1 ? 0xFE : 0xFFFE), expected);
    RequireSamePixels(Hold(copy).get(), expected, row);
    RegisterPair(row, 1.15, MakeOverlay(image), CopyIntoFreshBlock(pixels));
}

} // namespace

void RegisterStatistics() {
    const Stack grey(CV_8UC1), deep(CV_16UC1), real(CV_32FC1);
    RegisterMinMax("8 bits", grey);
    RegisterMinMax("16 bits", deep);
    RegisterMinMax("float", real);
    RegisterMeanDeviation<uchar>("8 bits", grey, 0.2);
    RegisterMeanDeviation<ushort>("16 bits", deep, 0.25);
    RegisterMeanDeviation<float>("float", real, 0.4);
    auto bytes = RandomPixels(CV_8UC1), words = RandomPixels(CV_16UC1), colour = RandomPixels(CV_8UC3);
    RegisterOverlay("8 bits", External(bytes), bytes);
    RegisterOverlay("16 bits", External(words), words);
    RegisterOverlay("3 x 8 bits interleaved", External(colour), colour);
}

} // namespace Bench

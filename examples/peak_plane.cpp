// Both smoothings go along the rows, then along the columns; beyond the edges the edge's pixels go on.
#include "peak_plane.h"

#include "views.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double sigma = 10.0;    // pixels; of the marks' own size
constexpr int gaussianReach = 40; // pixels
constexpr int meanReach = 40;     // pixels; marks beside stay outside, and so does the edge of the board

struct Plane {
    intptr_t width;
    intptr_t height;
    std::vector<double> values;
};

Plane LogarithmOf(void *grey) {
    const TPlaneRec from = PlaneOf(grey, 0);
    Plane plane{from.Width, from.Height, {}};
    for (intptr_t y = 0; y < from.Height; ++y)
        for (intptr_t x = 0; x < from.Width; ++x)
            plane.values.push_back(std::log(1.0 + *AddressOf(from, x, y)));
    return plane;
}

std::vector<double> Weights(bool isGaussian) {
    const int reach = isGaussian ? gaussianReach : meanReach;
    std::vector<double> weights;
    double sum = 0.0;
    for (int i = -reach; i <= reach; ++i) {
        weights.push_back(isGaussian ? std::exp(-i * i / (2.0 * sigma * sigma)) : 1.0);
        sum += weights.back();
    }
    for (double &weight : weights)
        weight /= sum;
    return weights;
}

/// Smooths one line; step leads to its next value.
void SmoothLine(double *first, intptr_t step, intptr_t count, const std::vector<double> &weights) {
    const auto reach = static_cast<intptr_t>(weights.size() / 2);
    std::vector<double> line;
    for (intptr_t i = -reach; i < count + reach; ++i)
        line.push_back(first[std::clamp<intptr_t>(i, 0, count - 1) * step]);
    for (intptr_t i = 0; i < count; ++i) {
        double sum = 0.0;
        for (std::size_t k = 0; k < weights.size(); ++k)
            sum += weights[k] * line[static_cast<std::size_t>(i) + k];
        first[i * step] = sum;
    }
}

Plane Smoothed(Plane plane, const std::vector<double> &weights) {
    for (intptr_t y = 0; y < plane.height; ++y)
        SmoothLine(plane.values.data() + y * plane.width, 1, plane.width, weights);
    for (intptr_t x = 0; x < plane.width; ++x)
        SmoothLine(plane.values.data() + x, plane.width, plane.height, weights);
    return plane;
}

float &FloatAt(const TPlaneRec &plane, intptr_t x, intptr_t y) {
    return *reinterpret_cast<float *>(AddressOf(plane, x, y));
}

} // namespace

ImageHandle MakePeakPlane(void *grey) {
    const Plane plane = LogarithmOf(grey);
    const Plane fine = Smoothed(plane, Weights(true)), wide = Smoothed(plane, Weights(false));
    ImageHandle image;
    Require(CreateGenericImageDT(1, plane.width, plane.height, 32 | DataTypeFloat, image.Out()),
            "CreateGenericImageDT");
    const TPlaneRec to = PlaneOf(image.Get(), 0);
    for (intptr_t y = 0; y < plane.height; ++y)
        for (intptr_t x = 0; x < plane.width; ++x) {
            const auto i = static_cast<std::size_t>(y * plane.width + x);
            FloatAt(to, x, y) = static_cast<float>(fine.values[i] - wide.values[i]);
        }
    return image;
}

ImageHandle ShowPeakPlane(void *peaks) {
    const TPlaneRec from = PlaneOf(peaks, 0);
    float greatest = 0.0f;
    for (intptr_t y = 0; y < from.Height; ++y)
        for (intptr_t x = 0; x < from.Width; ++x)
            greatest = std::max(greatest, FloatAt(from, x, y));
    ImageHandle image;
    Require(CreateGenericImageDT(1, from.Width, from.Height, 8, image.Out()), "CreateGenericImageDT");
    const TPlaneRec to = PlaneOf(image.Get(), 0);
    for (intptr_t y = 0; y < from.Height; ++y)
        for (intptr_t x = 0; x < from.Width; ++x) {
            const float share = greatest > 0.0f ? std::max(FloatAt(from, x, y), 0.0f) / greatest : 0.0f;
            *AddressOf(to, x, y) = static_cast<unsigned char>(255.0f * share);
        }
    return image;
}

ImageHandle EveryFewPixels(void *image, intptr_t step) {
    const intptr_t columns = ImageWidth(image) / step, rows = ImageHeight(image) / step;
    ImageHandle view;
    Require(CreateImageMap(image, 0, 0, columns * step - 1, rows * step - 1, columns, rows, view.Out()),
            "CreateImageMap");
    return view;
}

#include "PixelList/Refinement.h"

#include <array>
#include <span>

#include "PixelList/Maxima.h"
#include "PixelList/ParaboloidLanes.h"
#include "PixelList/SubPixelFits.h"

namespace PixelList {
namespace {

template <class T>
void RefineQuadratically(const Image::PlaneView &plane, const MarkedPixels<T> &maxima, std::vector<Peak> &peaks) {
    for (std::size_t i = 0; i < maxima.size(); ++i) {
        Neighbourhood<T> around;
        ReadWindow<T>(plane, maxima[i].X, maxima[i].Y, 1,
                      [&](std::size_t place, T pixel) { around.Pixels[place] = pixel; });
        FitQuadraticStep(around, peaks[i].X, peaks[i].Y);
    }
}

template <class T>
void FitOneByOne(const Image::PlaneView &plane, const MarkedPixels<T> &maxima, const Refinement &refinement,
                 std::vector<Peak> &peaks) {
    for (std::size_t i = 0; i < maxima.size(); ++i) {
        FitWindow window(refinement.Radius);
        ReadWindow<T>(plane, maxima[i].X, maxima[i].Y, refinement.Radius,
                      [&](std::size_t place, T pixel) { window.Values[place] = static_cast<double>(pixel); });
        window.Pixel.At(0) = peaks[i].X;
        window.Pixel.At(1) = peaks[i].Y;
        window.Pixel.At(2) = peaks[i].Value;
        const CPixel fit = refinement.FitMode == FitGaussian ? GaussianFit(std::move(window)) : ParaboloidFit(window);
        peaks[i] = {fit.At(0), fit.At(1), fit.At(2)};
    }
}

/// The values of one lane.
class LaneValues {
public:
    LaneValues(LaneWindows &windows, std::size_t lane, std::int32_t radius)
        : windows_(windows), lane_(lane), count_(static_cast<std::size_t>((2 * radius + 1) * (2 * radius + 1))) {}

    template <class T>
    void Read(const Image::PlaneView &plane, const MarkedPixel<T> &maximum, std::int32_t radius) {
        ReadWindow<T>(plane, maximum.X, maximum.Y, radius, [this](std::size_t place, T pixel) {
            windows_.Values[place][lane_] = static_cast<double>(pixel);
        });
    }
    double TakeLogarithms() {
        std::array<double, HighestWindow> values;
        const std::span<double> used(values.data(), count_);
        for (std::size_t i = 0; i < count_; ++i)
            values[i] = windows_.Values[i][lane_];
        const double offset = PixelList::TakeLogarithms(used);
        for (std::size_t i = 0; i < count_; ++i)
            windows_.Values[i][lane_] = values[i];
        return offset;
    }

private:
    LaneWindows &windows_;
    std::size_t lane_;
    std::size_t count_;
};

/// Fits the peaks from index first on, at most one per lane.
template <class T>
void FitSomeLanes(const Image::PlaneView &plane, const MarkedPixels<T> &maxima, const Refinement &refinement,
                  std::size_t first, LaneWindows &windows, std::vector<Peak> &peaks) {
    const std::size_t lanes = std::min(FitLanes, maxima.size() - first);
    const bool isGaussian = refinement.FitMode == FitGaussian;
    double offsets[FitLanes] = {};
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        const Peak &peak = peaks[first + lane];
        windows.X[lane] = peak.X;
        windows.Y[lane] = peak.Y;
        windows.Value[lane] = peak.Value;
        LaneValues values(windows, lane, refinement.Radius);
        values.Read(plane, maxima[first + lane], refinement.Radius);
        if (isGaussian)
            offsets[lane] = values.TakeLogarithms();
    }
    FitParaboloids(windows, refinement.Radius);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        const double value = windows.Value[lane];
        peaks[first + lane] = {windows.X[lane], windows.Y[lane],
                               isGaussian ? std::exp(value) - offsets[lane] : value};
    }
}

template <class T>
void FitInLanes(const Image::PlaneView &plane, const MarkedPixels<T> &maxima, const Refinement &refinement,
                std::vector<Peak> &peaks) {
    LaneWindows windows{};
    for (std::size_t first = 0; first < maxima.size(); first += FitLanes)
        FitSomeLanes(plane, maxima, refinement, first, windows, peaks);
}

} // namespace

template <class T>
std::vector<Peak> RefineMaxima(const Image::PlaneView &plane, const MarkedPixels<T> &maxima,
                               const Refinement &refinement, FitForm form) {
    std::vector<Peak> peaks;
    peaks.reserve(maxima.size());
    for (const MarkedPixel<T> &maximum : maxima)
        peaks.push_back({static_cast<double>(refinement.Left + maximum.X),
                         static_cast<double>(refinement.Top + maximum.Y), static_cast<double>(maximum.Value)});
    if (refinement.FitMode == FitQuadratic)
        RefineQuadratically(plane, maxima, peaks);
    else if (refinement.FitMode != FitParaboloid && refinement.FitMode != FitGaussian)
        return peaks;
    else if (form == FitForm::OneByOne)
        FitOneByOne(plane, maxima, refinement, peaks);
    else
        FitInLanes(plane, maxima, refinement, peaks);
    return peaks;
}

#define ORV_REFINE(T)                                                                                                \
    template std::vector<Peak> RefineMaxima(const Image::PlaneView &, const MarkedPixels<T> &, const Refinement &,   \
                                            FitForm)
ORV_REFINE(char);
ORV_REFINE(unsigned char);
ORV_REFINE(short);
ORV_REFINE(unsigned short);
ORV_REFINE(int);
ORV_REFINE(unsigned int);
ORV_REFINE(long);
ORV_REFINE(unsigned long);
ORV_REFINE(float);
ORV_REFINE(double);
#undef ORV_REFINE

} // namespace PixelList

/* How far the fits are off the true places of synthetic peaks: with and without noise, in float and 8-bit pixels,
 * with each radius, near the origin and far from it. Prints the tables of errors that the documentation carries. */
#include "ImageViews.h"
#include "ORVImg.h"
#include "Support/TestImages.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <random>

namespace {

using namespace TestSupport;

constexpr std::intptr_t Tile = 16; ///< one peak each
constexpr std::intptr_t Tiles = 8; ///< in each direction
constexpr std::intptr_t Side = Tile * Tiles;
constexpr double PeakHeight = 200;

enum class Shape { Gaussian, Paraboloid };

double HeightOf(Shape shape, double squaredDistance) {
    return shape == Shape::Gaussian ? PeakHeight * std::exp(-squaredDistance / 8) // a standard deviation of 2 pixels
                                    : std::max(0.0, PeakHeight - 4 * squaredDistance);
}

struct Place {
    double X;
    double Y;
};

/// A plane of peaks, at random fractions of a pixel off the middle of their tiles, that begins at column left.
template <class T>
class Peaks {
public:
    Peaks(Shape shape, double noise, std::intptr_t left)
        : image_(FakeImage::Planar(left + Side, Side, 1,
                                   static_cast<TDataType>(8 * sizeof(T)) |
                                       (std::is_floating_point_v<T> ? DataTypeFloat : 0u))),
          left_(left) {
        std::mt19937 random(20);
        std::uniform_real_distribution<double> fraction(-0.5, 0.5);
        for (std::intptr_t i = 0; i < Tiles * Tiles; ++i)
            places_.push_back({static_cast<double>(left + i % Tiles * Tile + Tile / 2) + fraction(random),
                               static_cast<double>(i / Tiles * Tile + Tile / 2) + fraction(random)});
        std::normal_distribution<double> deviation(0, 1);
        for (std::intptr_t y = 0; y < Side; ++y)
            for (std::intptr_t x = left; x < left + Side; ++x) {
                const Place &peak = places_[PlaceOf(x, y)];
                const double dx = static_cast<double>(x) - peak.X, dy = static_cast<double>(y) - peak.Y;
                Write(x, y, HeightOf(shape, dx * dx + dy * dy) + noise * deviation(random));
            }
    }

    void *Image() const { return image_->Handle(); }
    std::intptr_t Left() const { return left_; }
    const Place &TrueOne(double x, double y) const {
        const auto column = static_cast<std::intptr_t>(std::clamp(x - static_cast<double>(left_), 0.0, Side - 1.0));
        const auto row = static_cast<std::intptr_t>(std::clamp(y, 0.0, Side - 1.0));
        return places_[PlaceOf(left_ + column, row)];
    }

private:
    std::size_t PlaceOf(std::intptr_t x, std::intptr_t y) const {
        return static_cast<std::size_t>(y / Tile * Tiles + (x - left_) / Tile);
    }
    void Write(std::intptr_t x, std::intptr_t y, double value) {
        const T pixel =
            static_cast<T>(std::is_integral_v<T> ? std::clamp(std::floor(value + 0.5), 0.0, 255.0) : value);
        std::memcpy(image_->PixelAddress(0, x, y), &pixel, sizeof pixel);
    }

    std::unique_ptr<FakeImage> image_;
    std::intptr_t left_;
    std::vector<Place> places_;
};

/// Distances from the true places, in pixels.
struct Errors {
    double Mean = 0;
    double Greatest = 0;
    int Lost = 0; ///< peaks whose place is no number; they do not count in the mean
};

/// The errors of the peaks in a list whose column 0 is column `shift` of the plane.
template <class T>
Errors ErrorsOf(const Peaks<T> &peaks, void *list, double shift) {
    Errors errors;
    double sum = 0;
    const std::int64_t count = PixelListCount(list);
    EXPECT_EQ(count, Tiles * Tiles);
    for (std::int64_t i = 0; i < count; ++i) {
        double found[3] = {};
        EXPECT_TRUE(ListPixelEx(list, i, found));
        if (std::isnan(found[0]) || std::isnan(found[1])) {
            ++errors.Lost;
            continue;
        }
        const Place &place = peaks.TrueOne(found[0] + shift, found[1]);
        const double error = std::hypot(found[0] + shift - place.X, found[1] - place.Y);
        sum += error;
        errors.Greatest = std::max(errors.Greatest, error);
    }
    errors.Mean = sum / static_cast<double>(count - errors.Lost);
    return errors;
}

template <class T>
Errors Locate(const Peaks<T> &peaks, std::uint32_t fit, std::int32_t radius) {
    Handle list;
    EXPECT_TRUE(FindSubPixelMaxima(peaks.Image(), 0, peaks.Left(), 0, peaks.Left() + Side - 1, Side - 1, 6, fit,
                                   radius, list.Out(), PeakHeight / 2));
    return ErrorsOf(peaks, list.Get(), 0);
}

/// The same on a map that is cut out, in whose coordinates the peaks are near the origin.
template <class T>
Errors LocateInCutOut(const Peaks<T> &peaks, std::uint32_t fit, std::int32_t radius) {
    Handle map, list;
    EXPECT_TRUE(
        CreateImageMap(peaks.Image(), peaks.Left(), 0, peaks.Left() + Side - 1, Side - 1, Side, Side, map.Out()));
    EXPECT_TRUE(
        FindSubPixelMaxima(map.Get(), 0, 0, 0, Side - 1, Side - 1, 6, fit, radius, list.Out(), PeakHeight / 2));
    return ErrorsOf(peaks, list.Get(), static_cast<double>(peaks.Left()));
}

std::string Shown(const Errors &errors) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1e / %.1e", errors.Mean, errors.Greatest);
    return text + (errors.Lost > 0 ? ", " + std::to_string(errors.Lost) + " lost" : "");
}

// ---- near the origin

/// The greatest error that is good, of each radius from 1 to 4.
using Limits = std::array<double, 4>;

struct Row {
    Shape Drawn;
    bool IsFloat;
    double Noise;
    double Quadratic; ///< the radius plays no part
    Limits Paraboloid;
    Limits Gaussian;
    int Lost = 0; ///< of 64 peaks, by logarithms of pixels below 0, at radius 4
};

// On 8-bit pixels the differences of FitQuadratic wrap, so that its step is next to none. The tails of Gaussian peaks
// drown in the noise at radius 4, where the least logarithms outweigh all others.
const Row rows[] = {
    {Shape::Gaussian, true, 0, 0.025, {0.025, 0.09, 0.18, 0.27}, {5e-7, 1e-7, 6e-8, 4e-8}},
    {Shape::Gaussian, false, 0, 0.8, {0.04, 0.1, 0.18, 0.28}, {0.015, 0.008, 0.01, 0.025}},
    {Shape::Paraboloid, true, 0, 4e-6, {3e-6, 8e-7, 4e-7, 2e-7}, {0.0045, 0.016, 0.045, 0.12}},
    {Shape::Paraboloid, false, 0, 0.8, {0.1, 0.025, 0.015, 0.01}, {0.1, 0.03, 0.05, 0.13}},
    {Shape::Gaussian, true, 2, 0.26, {0.14, 0.12, 0.21, 0.34}, {0.12, 0.065, 0.07, 1.4}, 2},
    {Shape::Gaussian, false, 2, 0.9, {0.13, 0.13, 0.21, 0.32}, {0.11, 0.065, 0.07, 1.4}},
    {Shape::Paraboloid, true, 2, 0.8, {0.55, 0.18, 0.1, 0.05}, {0.55, 0.2, 0.14, 0.18}},
    {Shape::Paraboloid, false, 2, 1.2, {0.6, 0.18, 0.09, 0.05}, {0.6, 0.2, 0.1, 0.17}},
};

template <class T>
void CheckRow(const Row &row) {
    const Peaks<T> peaks(row.Drawn, row.Noise, 0);
    for (std::int32_t radius = 1; radius <= 4; ++radius) {
        const Errors quadratic = Locate(peaks, FitQuadratic, radius),
                     paraboloid = Locate(peaks, FitParaboloid, radius), gaussian = Locate(peaks, FitGaussian, radius);
        std::printf("| %s | %s | %g | %d | %s | %s | %s |\n",
                    row.Drawn == Shape::Gaussian ? "Gaussian" : "paraboloid", row.IsFloat ? "float" : "8-bit",
                    row.Noise, radius, Shown(quadratic).c_str(), Shown(paraboloid).c_str(), Shown(gaussian).c_str());
        const auto index = static_cast<std::size_t>(radius - 1);
        EXPECT_LT(quadratic.Greatest, row.Quadratic);
        EXPECT_LT(paraboloid.Greatest, row.Paraboloid[index]);
        EXPECT_LT(gaussian.Greatest, row.Gaussian[index]);
        EXPECT_EQ(quadratic.Lost + paraboloid.Lost, 0);
        EXPECT_LE(gaussian.Lost, radius == 4 ? row.Lost : 0);
    }
}

TEST(FitAccuracy, NearTheOriginIsThatOfTheTable) {
    std::puts("| Peak | Pixels | Noise | Radius | `FitQuadratic` | `FitParaboloid` | `FitGaussian` |");
    std::puts("|---|---|---|---|---|---|---|");
    for (const Row &row : rows)
        row.IsFloat ? CheckRow<float>(row) : CheckRow<unsigned char>(row);
}

// ---- far from the origin

/// Fits of peaks of their own shape, in double pixels: nothing but the arithmetic is off.
class FarPeaks {
public:
    explicit FarPeaks(std::intptr_t left)
        : paraboloids_(Shape::Paraboloid, 0, left), gaussians_(Shape::Gaussian, 0, left) {}

    void CheckDirectly(std::int32_t radius, double limit) const {
        Check("", radius, limit, Locate(paraboloids_, FitParaboloid, radius),
              Locate(gaussians_, FitGaussian, radius));
    }
    void CheckCutOut(std::int32_t radius, double limit) const {
        Check(", cut out", radius, limit, LocateInCutOut(paraboloids_, FitParaboloid, radius),
              LocateInCutOut(gaussians_, FitGaussian, radius));
    }

private:
    void Check(const char *how, std::int32_t radius, double limit, const Errors &paraboloid,
               const Errors &gaussian) const {
        std::printf("| x = %d%s | %d | %s | %s |\n", static_cast<int>(paraboloids_.Left()), how, radius,
                    Shown(paraboloid).c_str(), Shown(gaussian).c_str());
        EXPECT_LT(paraboloid.Greatest, limit);
        EXPECT_LT(gaussian.Greatest, limit);
        EXPECT_EQ(paraboloid.Lost + gaussian.Lost, 0);
    }

    Peaks<double> paraboloids_, gaussians_;
};

TEST(FitAccuracy, FarFromTheOriginIsLostUnlessAMapIsCutOut) {
    constexpr Limits near = {6e-7, 1e-7, 2e-8, 1e-8}, at1000 = {2e-3, 2e-4, 5e-5, 2e-5},
                     at4000 = {0.5, 0.03, 0.015, 0.01};
    const FarPeaks first(0), second(1000), third(4000);
    std::puts("| Peaks from | Radius | `FitParaboloid` on paraboloids | `FitGaussian` on Gaussians |");
    std::puts("|---|---|---|---|");
    for (std::int32_t radius = 1; radius <= 4; ++radius) {
        const auto index = static_cast<std::size_t>(radius - 1);
        first.CheckDirectly(radius, near[index]);
        second.CheckDirectly(radius, at1000[index]);
        second.CheckCutOut(radius, near[index]);
        third.CheckDirectly(radius, at4000[index]);
        third.CheckCutOut(radius, near[index]);
    }
}

} // namespace

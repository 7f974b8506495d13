// The fits of single windows with known answers, and the least squares of eight windows at once, at every instruction
// set level, against those of one after the other, to the last bit.
#include "PixelList/SubPixelFits.h"

#include <bit>
#include <gtest/gtest.h>

#include "PixelList/Maxima.h"
#include "PixelList/Refinement.h"
#include "Scan/LaidOutPlane.h"
#include "Support/TestImages.h"

namespace {

using namespace PixelList;
using namespace TestSupport;

// ---- the quadratic step

template <class T>
std::pair<double, double> StepOf(const Neighbourhood<T> &window, double x = 0, double y = 0) {
    FitQuadraticStep(window, x, y);
    return {x, y};
}

TEST(FitQuadraticStep, FindsTheTopOfAParaboloid) {
    // z = 10 - (x - 0.25)^2 - (y + 0.5)^2
    Neighbourhood<double> window{};
    for (int i = 0; i < 9; ++i) {
        const double x = i % 3 - 1 - 0.25, y = i / 3 - 1 + 0.5;
        window.Pixels[i] = 10 - x * x - y * y;
    }
    EXPECT_EQ(StepOf(window, 7, 5), (std::pair{7.25, 4.5}));
}

TEST(FitQuadraticStep, TakesTheMixedTermIntoAccount) {
    // z = -2 x^2 - 3 y^2 + x y + x: the top is at x = 6/23, y = 1/23.
    Neighbourhood<double> window{};
    for (int i = 0; i < 9; ++i) {
        const double x = i % 3 - 1, y = i / 3 - 1;
        window.Pixels[i] = -2 * x * x - 3 * y * y + x * y + x;
    }
    EXPECT_EQ(StepOf(window), (std::pair{6.0 / 23.0, 1.0 / 23.0}));
}

TEST(FitQuadraticStep, WithoutCurvatureThePositionStays) {
    EXPECT_EQ(StepOf(Neighbourhood<float>{{1, 1, 1, 1, 1, 1, 1, 1, 1}}, 3, 4), (std::pair{3.0, 4.0}));
    EXPECT_EQ(StepOf(Neighbourhood<double>{{-1, 0, 1, -1, 0, 1, -1, 0, 1}}, 3, 4), (std::pair{3.0, 4.0}));
}

TEST(FitQuadraticStep, TheStepIsNotLimited) {
    EXPECT_NEAR(StepOf(Neighbourhood<double>{{0, 0, 0, 0.5, 1, 1.4, 0, 0, 0}}).first, 4.5, 1e-12);
}

TEST(FitQuadraticStep, DifferencesOfUnsignedBytesWrap) {
    // Left 100 - 200 is 156, right 90 - 200 is 146, above 199 - 200 is 255, below 0 - 200 is 56; all corners 50.
    const Neighbourhood<unsigned char> window = {{0, 199, 0, 100, 200, 90, 0, 0, 0}};
    const double a = 0.5 * (146 + 156), c = 0.0, e = 0.5 * (56 + 255), d = 4 * a * e - c * c;
    const double gx = 0.5 * (146 - 156), gy = 0.5 * (56 - 255);
    EXPECT_EQ(StepOf(window), (std::pair{(-2 * e * gx + c * gy) / d, (gx * c - 2 * a * gy) / d}));
}

TEST(FitQuadraticStep, DifferencesOfSignedBytesWrapAndTheirSumsDoNot) {
    // -128 - 100 is 28, -100 - 100 is 56; 0 - 100 is -100, twice.
    const Neighbourhood<char> window = {{100, 0, 100, -128, 100, -100, 100, 0, 100}};
    const double a = 0.5 * (56 + 28), c = 0.0, e = 0.5 * (-100 - 100), d = 4 * a * e - c * c;
    const double gx = 0.5 * (56 - 28), gy = 0.0;
    EXPECT_EQ(StepOf(window), (std::pair{(-2 * e * gx + c * gy) / d, (gx * c - 2 * a * gy) / d}));
}

TEST(FitQuadraticStep, SumsOf32And64BitsWrapInThePixelsType) {
    // Both differences are -1 modulo 2^32, and so is each half of their sum's 2^32 - 2.
    const Neighbourhood<unsigned int> words = {{8, 6, 8, 7, 8, 7, 8, 6, 8}};
    const double a = 0.5 * 4294967294.0, e = 0.5 * 4294967292.0;
    EXPECT_EQ(StepOf(words), (std::pair{(-2 * e * 0.0 + 0.0) / (4 * a * e), (0.0 - 2 * a * 0.0) / (4 * a * e)}));
    const Neighbourhood<int> ints = {{0, -1000000000, 0, 0, 2000000000, 1, 0, -5, 0}};
    // Above: -3000000000 is 1294967296, below -2000000005; their sum -705032709 fits.
    const double left = -2000000000.0, right = -1999999999.0;
    const double sum = left + right + 4294967296.0; // 294967297
    const double A = 0.5 * sum, E = 0.5 * (1294967296.0 - 2000000005.0), D = 4 * A * E;
    const double gx = 0.5 * 1.0, gy = 0.5 * (-2000000005.0 - 1294967296.0 + 4294967296.0);
    EXPECT_EQ(StepOf(ints), (std::pair{(-2 * E * gx + 0.0 * gy) / D, (gx * 0.0 - 2 * A * gy) / D}));
    const Neighbourhood<unsigned long> longs = {{8, 6, 8, 7, 8, 7, 8, 6, 8}};
    EXPECT_EQ(StepOf(longs, 2, 3), (std::pair{2.0, 3.0}));
}

TEST(FitQuadraticStep, FloatPixelsAreComputedInFloat) {
    const Neighbourhood<float> window = {{0.1F, 0.3F, 0.2F, 0.4F, 0.9F, 0.5F, 0.15F, 0.25F, 0.35F}};
    float d[9];
    for (int i = 0; i < 9; ++i)
        d[i] = window.Pixels[i] - window.Pixels[4];
    const float a = 0.5F * (d[5] + d[3]), c = 0.25F * (d[8] + d[0] - d[2] - d[6]), e = 0.5F * (d[7] + d[1]);
    const float det = 4.0F * a * e - c * c, gx = 0.5F * (d[5] - d[3]), gy = 0.5F * (d[7] - d[1]);
    EXPECT_EQ(StepOf(window), (std::pair{static_cast<double>((-2.0F * e * gx + c * gy) / det),
                                         static_cast<double>((gx * c - 2.0F * a * gy) / det)}));
}

// ---- least squares

/// A window of radius around (x, y) whose pixels are value(x, y).
template <class Value>
FitWindow WindowOf(std::int32_t radius, double x, double y, Value &&value) {
    FitWindow window(radius);
    for (std::int32_t j = -radius; j <= radius; ++j)
        for (std::int32_t i = -radius; i <= radius; ++i)
            window.Values[static_cast<std::size_t>((j + radius) * window.Width + i + radius)] = value(x + i, y + j);
    window.Pixel.At(0) = x;
    window.Pixel.At(1) = y;
    window.Pixel.At(2) = value(x, y);
    return window;
}
Peak PeakOf(const CPixel &pixel) {
    return {pixel.At(0), pixel.At(1), pixel.At(2)};
}
void ExpectNear(const Peak &peak, double x, double y, double value, double tolerance) {
    EXPECT_NEAR(peak.X, x, tolerance);
    EXPECT_NEAR(peak.Y, y, tolerance);
    EXPECT_NEAR(peak.Value, value, tolerance);
}

TEST(ParaboloidFit, FindsTheTopOfAParaboloidWithEachRadius) {
    for (std::int32_t radius = 1; radius <= HighestRadius; ++radius) {
        const FitWindow window = WindowOf(radius, 6, 9, [](double x, double y) {
            return 10 - 2 * (x - 6.25) * (x - 6.25) - 2 * (y - 8.5) * (y - 8.5);
        });
        ExpectNear(PeakOf(ParaboloidFit(window)), 6.25, 8.5, 10, 1e-9);
    }
}

TEST(ParaboloidFit, AFlatWindowLeavesThePixel) {
    const FitWindow window = WindowOf(2, 6, 9, [](double, double) { return 5.0; });
    const Peak peak = PeakOf(ParaboloidFit(window));
    EXPECT_EQ(peak.X, 6);
    EXPECT_EQ(peak.Y, 9);
    EXPECT_EQ(peak.Value, 5);
}

TEST(ParaboloidFit, AllComponentsBehindTheValueAreZero) {
    FitWindow window = WindowOf(1, 6, 9, [](double x, double y) { return -(x - 6) * (x - 6) - y; });
    window.Pixel = CPixel(5);
    window.Pixel.At(4) = 77;
    const CPixel fit = ParaboloidFit(window);
    EXPECT_EQ(fit.Dimension, 5u);
    EXPECT_EQ(fit.At(3), 0);
    EXPECT_EQ(fit.At(4), 0);
}

TEST(GaussianFit, FindsTheTopOfAGaussianWithEachRadius) {
    for (std::int32_t radius = 1; radius <= HighestRadius; ++radius) {
        const FitWindow window = WindowOf(radius, 6, 9, [](double x, double y) {
            return 40 * std::exp(-((x - 6.25) * (x - 6.25) + (y - 8.5) * (y - 8.5)) / 4);
        });
        ExpectNear(PeakOf(GaussianFit(window)), 6.25, 8.5, 40, 1e-8);
    }
}

TEST(GaussianFit, ValuesBelowTinyAreRaisedFirst) {
    std::vector<double> values = {1.0, 0.0, 3.0};
    EXPECT_EQ(TakeLogarithms(values), LeastLogarithmic);
    EXPECT_EQ(values, (std::vector<double>{std::log(1.0 + LeastLogarithmic), std::log(LeastLogarithmic),
                                           std::log(3.0 + LeastLogarithmic)}));
    values = {2.0, LeastLogarithmic};
    EXPECT_EQ(TakeLogarithms(values), 0.0);
    EXPECT_EQ(values, (std::vector<double>{std::log(2.0), std::log(LeastLogarithmic)}));
    values = {-2.0, 6.0};
    EXPECT_EQ(TakeLogarithms(values), 2.0);
    EXPECT_EQ(values[1], std::log(8.0));
    EXPECT_EQ(values[0], -std::numeric_limits<double>::infinity()); // what is added to -2 is 2 after rounding
}

TEST(GaussianFit, AfterAFitThatFailsTheExponentialOfThePixelIsTaken) {
    const Peak peak = PeakOf(GaussianFit(WindowOf(1, 6, 9, [](double, double) { return 5.0; })));
    EXPECT_EQ(peak.X, 6);
    EXPECT_EQ(peak.Y, 9);
    EXPECT_EQ(peak.Value, std::exp(5.0));
    const Peak dark = PeakOf(GaussianFit(WindowOf(1, 6, 9, [](double, double) { return -1.0; })));
    EXPECT_EQ(dark.Value, std::exp(-1.0) - (LeastLogarithmic + 1.0));
}

// ---- eight at once

bool IsSame(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

/// Some places of a plane as if they were maxima, the corners among them.
template <class T>
MarkedPixels<T> SomePlaces(const Image::PlaneView &plane, std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    MarkedPixels<T> places;
    const auto width = static_cast<std::uint32_t>(plane.Width), height = static_cast<std::uint32_t>(plane.Height);
    for (std::size_t i = 0; i < count; ++i) {
        const auto x = static_cast<std::uint32_t>(i == 0 ? 0 : i == 1 ? width - 1 : random() % width);
        const auto y = static_cast<std::uint32_t>(i == 0 ? 0 : i == 1 ? height - 1 : random() % height);
        places.push_back({x, y, *reinterpret_cast<const typename Scan::Loose<T>::Type *>(plane.Pixel(x, y))});
    }
    return places;
}

/// A plane with guard entries, of which a part is flat.
template <class T>
std::unique_ptr<FakeImage> PartlyFlat(std::intptr_t width, std::intptr_t height, std::uint32_t seed, bool wild) {
    auto image = FakeImage::Planar(width, height, 1, WordOf<T>());
    std::vector<T> pixels = WildPixels<T>(width * height, seed);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        if (!wild)
            pixels[i] = static_cast<T>(static_cast<std::intptr_t>(i) % width < width / 3 ? 7 : 1 + i * i % 97);
    std::memcpy(image->Pixels.data(), pixels.data(), image->Pixels.size());
    return image;
}

template <class T>
void CompareForms(bool wild, std::uint32_t number) {
    constexpr std::intptr_t width = 37, height = 21;
    const auto image = PartlyFlat<T>(width, height, number, wild);
    const Image::PlaneView plane =
        Image::ViewOf(Image::PlaneFacts{image->BaseOf(0), image->TableOf(0), WordOf<T>()}, {1, width, height});
    const auto places = SomePlaces<T>(plane, 1 + number % 40, number);
    for (const std::int64_t left : {0, 1000, 4000, 100000, 30000000})
        for (std::int32_t radius = 1; radius <= HighestRadius; ++radius)
            for (const std::uint32_t mode : {FitParaboloid, FitGaussian}) {
                const Refinement refinement = {mode, radius, left, left / 3};
                const auto expected = RefineMaxima(plane, places, refinement, FitForm::OneByOne);
                AtAllLevels([&](const char *level) {
                    const auto peaks = RefineMaxima(plane, places, refinement);
                    ASSERT_EQ(peaks.size(), places.size());
                    for (std::size_t i = 0; i < peaks.size(); ++i)
                        ASSERT_TRUE(IsSame(peaks[i].X, expected[i].X) && IsSame(peaks[i].Y, expected[i].Y) &&
                                    IsSame(peaks[i].Value, expected[i].Value))
                            << level << ", type " << WordOf<T>() << ", left " << left << ", radius " << radius
                            << ", mode " << mode << ", place " << i << ", case " << number;
                });
            }
}

TEST(ParaboloidLanes, GiveTheBitsOfOneFitAfterTheOther) {
    std::uint32_t number = 0;
    ForAllPixelTypes([&]<class T>() {
        for (const bool wild : {false, true})
            ASSERT_NO_FATAL_FAILURE(CompareForms<T>(wild, ++number));
    });
}

TEST(ParaboloidLanes, ManyPositionsFarFromTheOrigin) {
    // Far away rounding decides about pivots and about what is singular.
    constexpr std::intptr_t width = 37, height = 21;
    const auto image = PartlyFlat<double>(width, height, 1, false);
    const Image::PlaneView plane =
        Image::ViewOf(Image::PlaneFacts{image->BaseOf(0), image->TableOf(0), WordOf<double>()}, {1, width, height});
    std::mt19937_64 random(9);
    for (int number = 0; number < 300; ++number) {
        const auto places = SomePlaces<double>(plane, 8, static_cast<std::uint32_t>(number));
        const Refinement refinement = {FitParaboloid, 1 + number % 4,
                                       static_cast<std::int64_t>(random() >> (1 + random() % 62)),
                                       static_cast<std::int64_t>(random() >> (1 + random() % 62))};
        const auto expected = RefineMaxima(plane, places, refinement, FitForm::OneByOne);
        const auto peaks = RefineMaxima(plane, places, refinement);
        for (std::size_t i = 0; i < places.size(); ++i)
            ASSERT_TRUE(IsSame(peaks[i].X, expected[i].X) && IsSame(peaks[i].Y, expected[i].Y) &&
                        IsSame(peaks[i].Value, expected[i].Value))
                << "case " << number << ", place " << i;
    }
}

TEST(RefineMaxima, OtherModesGiveThePixelsInCoordinatesOfTheImage) {
    const auto image = PartlyFlat<short>(9, 9, 1, false);
    const Image::PlaneView plane =
        Image::ViewOf(Image::PlaneFacts{image->BaseOf(0), image->TableOf(0), WordOf<short>()}, {1, 9, 9});
    for (const std::uint32_t mode : {FitNone, 4u, 0x80000001u}) {
        const auto peaks = RefineMaxima<short>(plane, {{4, 5, -6}, {1, 2, 3}}, {mode, 4, 100, 200});
        ASSERT_EQ(peaks.size(), 2u);
        EXPECT_EQ(peaks[0].X, 104);
        EXPECT_EQ(peaks[0].Y, 205);
        EXPECT_EQ(peaks[0].Value, -6);
        EXPECT_EQ(peaks[1].X, 101);
    }
}

} // namespace

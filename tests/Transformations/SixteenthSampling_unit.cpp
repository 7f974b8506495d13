// Positions cut off to sixteenths and sampled many at once, at each instruction set level, against the plain step
// position by position, on sources that touch an unreadable page.
#include "Transformations/SixteenthSampling.h"

#include <cmath>
#include <gtest/gtest.h>

#include "Transformations/FencedImage.h"
#include "Transformations/PolarRing.h"

namespace {

using namespace TestSupport;
using namespace Transformations;

double SpecialPosition(std::mt19937 &random, double limit) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double positions[] = {0.0,
                                -0.0,
                                -0.0624,
                                -0.0625,
                                -1.0,
                                limit - 1,
                                std::nextafter(limit - 1, 0.0),
                                limit - 0.5,
                                std::nextafter(limit, 0.0),
                                limit,
                                limit - 2,
                                std::numeric_limits<double>::quiet_NaN(),
                                infinity,
                                -infinity,
                                1e300,
                                -1.7e308,
                                134217727.99,
                                134217728.0,
                                -134217728.01,
                                268435456.5,
                                std::numeric_limits<double>::denorm_min()};
    return positions[random() % std::size(positions)];
}

/// Groups of inner positions, of whole sixteenths, of special ones, and of those around the edges.
std::vector<double> RandomPositions(std::mt19937 &random, std::intptr_t count, double limit) {
    std::uniform_real_distribution<double> around(-2.0, limit + 1.5), within(0.0, std::max(limit - 1.0, 0.0625));
    std::vector<double> positions;
    unsigned kind = 0;
    for (std::intptr_t i = 0; i < count; ++i) {
        if (i % 32 == 0)
            kind = random() % 8;
        if (kind == 0 || (kind == 1 && random() % 16 == 0))
            positions.push_back(SpecialPosition(random, limit));
        else if (kind == 2)
            positions.push_back(around(random));
        else if (kind == 3)
            positions.push_back(std::floor(16 * within(random)) / 16);
        else
            positions.push_back(within(random));
    }
    return positions;
}

template <class T>
T Sentinel() {
    return static_cast<T>(93);
}

/// Samples by sample(target) into a longer array, and compares with the plain step at position(i).
template <class T, class Sample, class PositionAt>
void ExpectPlainPixels(const CLinearInterpolatorFPA<T> &interpolator, std::intptr_t count, const Sample &sample,
                       const PositionAt &position, const std::string &about) {
    AtAllLevels([&](const char *level) {
        std::vector<T> target(static_cast<std::size_t>(count) + 40, Sentinel<T>());
        sample(target.data());
        for (std::intptr_t i = 0; i < count; ++i) {
            const Position at = position(i);
            ASSERT_EQ(+target[static_cast<std::size_t>(i)], +SamplePolar<T>(interpolator, at.X, at.Y))
                << about << ", " << level << ", position " << i << ": " << at.X << ", " << at.Y;
        }
        for (auto i = static_cast<std::size_t>(count); i < target.size(); ++i)
            ASSERT_EQ(+target[i], +Sentinel<T>()) << about << ", " << level << ", written behind the end";
    });
}

template <class T>
void CompareArrays(const CLinearInterpolatorFPA<T> &interpolator, std::mt19937 &random, const std::string &about) {
    const SixteenthSampling<T> sampling(interpolator);
    const auto count = static_cast<std::intptr_t>(random() % 300);
    const auto x = RandomPositions(random, count, static_cast<double>(interpolator.SourceWidth));
    const auto y = RandomPositions(random, count, static_cast<double>(interpolator.SourceHeight));
    const PositionArrays positions = {x.data(), y.data()};
    ExpectPlainPixels<T>(
        interpolator, count, [&](T *target) { sampling.Sample(x.data(), y.data(), count, target); },
        [&](std::intptr_t i) { return positions.At(i); }, about);
}

template <class T>
void CompareCircle(const CLinearInterpolatorFPA<T> &interpolator, std::mt19937 &random, const std::string &about) {
    const auto width = static_cast<double>(interpolator.SourceWidth);
    const auto height = static_cast<double>(interpolator.SourceHeight);
    std::uniform_real_distribution<double> portion(-0.2, 1.2), turn(0.0, 7.0);
    const SixteenthSampling<T> sampling(interpolator);
    const auto count = static_cast<std::intptr_t>(random() % 200);
    const double start = turn(random), step = turn(random) / 100;
    std::vector<double> cosines, sines;
    for (std::intptr_t i = 0; i < count; ++i) {
        cosines.push_back(i == 7 ? 0.0 : std::cos(start + static_cast<double>(i) * step));
        sines.push_back(i == 9 ? 0.0 : std::sin(start + static_cast<double>(i) * step));
    }
    CirclePositions positions = {cosines.data(), sines.data(), portion(random) * height, portion(random) * width,
                                 portion(random) * height};
    if (random() % 8 == 0)
        positions.Radius = SpecialPosition(random, height);
    if (random() % 16 == 0)
        positions.CentreX = SpecialPosition(random, width);
    ExpectPlainPixels<T>(
        interpolator, count, [&](T *target) { sampling.Sample(positions, count, target); },
        [&](std::intptr_t i) { return positions.At(i); }, about);
}

template <class T>
void CompareAllForms() {
    constexpr std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 5}, {64, 37}};
    for (const Form form : AllForms) {
        std::mt19937 random(11 + static_cast<std::uint32_t>(form));
        for (const auto &[width, height] : sizes)
            for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before})
                for (const bool overlay : {false, true}) {
                    FencedImage<T> image(form, width, height, fence, overlay, 5);
                    const CLinearInterpolatorFPA<T> interpolator(image.Hold());
                    for (int number = 0; number < 10; ++number) {
                        const std::string about = "form " + std::to_string(static_cast<int>(form)) + ", " +
                                                  std::to_string(width) + " x " + std::to_string(height) +
                                                  (overlay ? " with overlay" : "") + ", case " +
                                                  std::to_string(number);
                        ASSERT_NO_FATAL_FAILURE(CompareArrays(interpolator, random, about));
                        ASSERT_NO_FATAL_FAILURE(CompareCircle(interpolator, random, about));
                    }
                }
    }
}

TEST(SixteenthSampling, SignedBytesAreThoseOfThePlainStep) {
    CompareAllForms<char>();
}
TEST(SixteenthSampling, UnsignedBytesAreThoseOfThePlainStep) {
    CompareAllForms<unsigned char>();
}
TEST(SixteenthSampling, Signed16BitPixelsAreThoseOfThePlainStep) {
    CompareAllForms<short>();
}
TEST(SixteenthSampling, Unsigned16BitPixelsAreThoseOfThePlainStep) {
    CompareAllForms<unsigned short>();
}

} // namespace

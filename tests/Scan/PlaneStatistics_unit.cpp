// What is measured of a plane: known answers, and the walk in pieces at every instruction set level and in every
// layout against the walk through the tables, to the last bit.
#include "Scan/PlaneStatistics.h"

#include <cmath>
#include <gtest/gtest.h>

#include "Scan/LaidOutPlane.h"

namespace {

using namespace Scan;
using namespace TestSupport;

template <class T>
LaidOutPlane<T> RowOf(const std::vector<T> &pixels) {
    return {static_cast<std::intptr_t>(pixels.size()), 1, PlaneLayout::Dense, pixels};
}

/// Equal bits, but for which of many forms what is no number has.
bool IsSame(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

/// The answer of both walks.
template <class T>
MeanDeviation MeanDeviationOf(const std::vector<T> &pixels) {
    auto plane = RowOf(pixels);
    const MeanDeviation plain = MeasureMeanDeviation(plane.View(), WordOf<T>(), PixelWalk::OneByOne);
    const MeanDeviation quick = MeasureMeanDeviation(plane.View(), WordOf<T>());
    EXPECT_TRUE(IsSame(quick.Mean, plain.Mean));
    EXPECT_TRUE(IsSame(quick.Deviation, plain.Deviation));
    return plain;
}

template <class T>
Extremes ExtremesOf(const std::vector<T> &pixels) {
    auto plane = RowOf(pixels);
    const Extremes plain = MeasureExtremes(plane.View(), WordOf<T>(), PixelWalk::OneByOne);
    const Extremes quick = MeasureExtremes(plane.View(), WordOf<T>());
    EXPECT_EQ(quick.Minimum, plain.Minimum);
    EXPECT_EQ(quick.Maximum, plain.Maximum);
    return plain;
}

template <class T>
double MagnitudeOf(const std::vector<T> &pixels) {
    auto plane = RowOf(pixels);
    const double plain = MeasureGreatestMagnitude(plane.View(), WordOf<T>(), PixelWalk::OneByOne);
    EXPECT_EQ(MeasureGreatestMagnitude(plane.View(), WordOf<T>()), plain);
    return plain;
}

/// Compares the walks at all levels.
template <class T>
void CompareWalks(const Image::PlaneView &plane, const std::string &where) {
    const TDataType type = WordOf<T>();
    const MeanDeviation mean = MeasureMeanDeviation(plane, type, PixelWalk::OneByOne);
    const Extremes extremes = MeasureExtremes(plane, type, PixelWalk::OneByOne);
    const double magnitude = MeasureGreatestMagnitude(plane, type, PixelWalk::OneByOne);
    AtAllLevels([&](const char *level) {
        const MeanDeviation quickMean = MeasureMeanDeviation(plane, type);
        const Extremes quickExtremes = MeasureExtremes(plane, type);
        ASSERT_TRUE(IsSame(quickMean.Mean, mean.Mean)) << level << ", " << where;
        ASSERT_TRUE(IsSame(quickMean.Deviation, mean.Deviation)) << level << ", " << where;
        ASSERT_EQ(quickExtremes.Minimum, extremes.Minimum) << level << ", " << where;
        ASSERT_EQ(quickExtremes.Maximum, extremes.Maximum) << level << ", " << where;
        ASSERT_EQ(MeasureGreatestMagnitude(plane, type), magnitude) << level << ", " << where;
    });
}

TEST(PlaneStatistics, EveryWalkLevelAndLayoutGivesTheSame) {
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1},   {1, 37},   {37, 1},
                                                             {257, 3}, {2049, 2}, {4111, 1}};
    ForAllPixelTypes([&]<class T>() {
        for (const PlaneLayout layout : AllPlaneLayouts)
            for (const auto &[width, height] : sizes) {
                LaidOutPlane<T> plane(width, height, layout, WildPixels<T>(width * height, 3));
                const std::string where = "type " + std::to_string(WordOf<T>()) + ", layout " +
                                          std::to_string(static_cast<int>(layout)) + ", " + std::to_string(width);
                ASSERT_NO_FATAL_FAILURE(CompareWalks<T>(plane.View(), where));
            }
    });
}

TEST(PlaneStatistics, SumsThatADoubleDoesNotHoldWholeAreThoseOfTheBins) {
    constexpr std::intptr_t width = 1700, height = 1500; // squares up to 2^32 each: above 2^53
    std::vector<unsigned short> pixels(static_cast<std::size_t>(width * height));
    std::mt19937 random(17);
    std::generate(pixels.begin(), pixels.end(), [&] { return static_cast<unsigned short>(65535 - random() % 300); });
    LaidOutPlane<unsigned short> plane(width, height, PlaneLayout::Dense, pixels);
    ASSERT_NO_FATAL_FAILURE(CompareWalks<unsigned short>(plane.View(), "bright"));
}

TEST(PlaneStatistics, MeanAndDeviationOfKnownPixels) {
    const MeanDeviation bytes = MeanDeviationOf<unsigned char>({0, 10, 20, 30});
    EXPECT_EQ(bytes.Mean, 15.0);
    EXPECT_EQ(bytes.Deviation, std::sqrt(125.0));
    const MeanDeviation floats = MeanDeviationOf<float>({-1.5F, 0.5F});
    EXPECT_EQ(floats.Mean, -0.5);
    EXPECT_EQ(floats.Deviation, 1.0);
    const MeanDeviation same = MeanDeviationOf<unsigned short>(std::vector<unsigned short>(50, 4711));
    EXPECT_EQ(same.Mean, 4711.0);
    EXPECT_EQ(same.Deviation, 0.0);
}

TEST(PlaneStatistics, MeanOfNarrowSignedPlanesIsHalfTheirRangeTooHigh) {
    EXPECT_EQ(MeanDeviationOf<char>({-128, 127}).Mean, 127.5);
    EXPECT_EQ(MeanDeviationOf<char>({-1, -1}).Mean, 127.0);
    EXPECT_EQ(MeanDeviationOf<short>({-32768, -32768}).Mean, 0.0);
    EXPECT_EQ(MeanDeviationOf<short>({5, 7}).Mean, 32774.0);
    EXPECT_EQ(MeanDeviationOf<int>({-5, -7}).Mean, -6.0);
}

TEST(PlaneStatistics, SquaresOf32BitIntegersWrapAndChangeTheirSign) {
    // 50000 squared is 2500000000, which is above 2^31: as a signed word -1794967296.
    const double mean = 25000, square = 2500000000.0;
    EXPECT_EQ(MeanDeviationOf<int>({0, 50000}).Deviation, std::sqrt(square / 2 - mean * mean));
    EXPECT_EQ(MeanDeviationOf<unsigned int>({0, 50000}).Deviation, 0.0);
    // 65536 squared is 2^32, of which nothing is left.
    EXPECT_EQ(MeanDeviationOf<int>({65536, -65536}).Deviation, 0.0);
    EXPECT_EQ(MeanDeviationOf<long>({65536, -65536}).Deviation, 65536.0);
}

TEST(PlaneStatistics, ADeviationThatIsNoNumberStaysNone) {
    EXPECT_TRUE(std::isnan(MeanDeviationOf<float>({1.0F, std::numeric_limits<float>::quiet_NaN()}).Deviation));
    EXPECT_TRUE(std::isnan(MeanDeviationOf<double>({1.0, std::numeric_limits<double>::infinity()}).Deviation));
}

TEST(PlaneStatistics, ExtremesOfKnownPixels) {
    const Extremes shorts = ExtremesOf<short>({4, -9, 300});
    EXPECT_EQ(shorts.Minimum, -9.0);
    EXPECT_EQ(shorts.Maximum, 300.0);
    const Extremes whole = ExtremesOf<unsigned long>({0, std::numeric_limits<unsigned long>::max()});
    EXPECT_EQ(whole.Minimum, 0.0);
    EXPECT_EQ(whole.Maximum, 18446744073709551616.0);
}

TEST(PlaneStatistics, WhatIsNoNumberIsNoExtreme) {
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    for (const std::size_t length : {1u, 15u, 16u, 17u, 100u})
        for (const std::size_t place : {std::size_t{0}, length / 2, length - 1}) {
            std::vector<float> pixels(length + 1, none);
            pixels[place] = -2.0F;
            pixels[length] = 3.0F;
            const Extremes found = ExtremesOf(pixels);
            EXPECT_EQ(found.Minimum, -2.0) << place << " of " << length;
            EXPECT_EQ(found.Maximum, 3.0) << place << " of " << length;
        }
    const Extremes nothing = ExtremesOf(std::vector<float>(40, none));
    EXPECT_EQ(nothing.Minimum, static_cast<double>(std::numeric_limits<float>::max()));
    EXPECT_EQ(nothing.Maximum, static_cast<double>(std::numeric_limits<float>::lowest()));
}

TEST(PlaneStatistics, MagnitudeTakesTheSignOffAndCutsFloats) {
    EXPECT_EQ(MagnitudeOf<unsigned short>({7, 1000, 3}), 1000.0);
    EXPECT_EQ(MagnitudeOf<unsigned short>({0, 0}), 0.0);
    EXPECT_EQ(MagnitudeOf<short>({-32768, 32767}), 32768.0);
    EXPECT_EQ(MagnitudeOf<int>({std::numeric_limits<int>::lowest()}), 2147483648.0);
    EXPECT_EQ(MagnitudeOf<float>({0.99F, -0.5F}), 0.0);
    EXPECT_EQ(MagnitudeOf<double>({-7.9, 3.0}), 7.0);
    EXPECT_EQ(MagnitudeOf<double>({1e12}), 2147483648.0);
}

} // namespace

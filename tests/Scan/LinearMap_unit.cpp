// Linear maps: how they are found, and every way to apply them against the plain one, to the last bit.
#include "Scan/LinearMap.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numeric>

#include "Scan/LaidOutPlane.h"

namespace {

using namespace Scan;
using namespace TestSupport;

template <class T>
std::vector<T> Apply(const LinearMap &map, std::intptr_t width, std::intptr_t height, const std::vector<T> &pixels,
                     PlaneLayout from, PlaneLayout to, PixelWalk walk) {
    LaidOutPlane<T> source(width, height, from, pixels);
    LaidOutPlane<T> target(width, height, to);
    ApplyLinearMap(map, WordOf<T>(), source.View(), target.View(), walk);
    return target.Pixels();
}

/// Equal bytes, but for which of many forms what is no number has.
template <class T>
bool SameBytes(const std::vector<T> &a, const std::vector<T> &b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](T left, T right) {
        return std::memcmp(&left, &right, sizeof left) == 0 || (left != left && right != right);
    });
}

/// Compares the walks at all levels.
template <class T>
void CompareWalks(const LinearMap &map, std::intptr_t width, std::intptr_t height, const std::vector<T> &pixels,
                  PlaneLayout from, PlaneLayout to, const std::string &where) {
    const auto plain = Apply(map, width, height, pixels, from, to, PixelWalk::OneByOne);
    AtAllLevels([&](const char *level) {
        ASSERT_TRUE(SameBytes(Apply(map, width, height, pixels, from, to, PixelWalk::InPieces), plain))
            << level << ", " << where << ", gain " << map.Gain << ", offset " << map.Offset;
    });
}

template <class T>
LinearMap MapOf(double gain, double offset) {
    LinearMap map = MapToExtremes(WordOf<T>(), {0, 0}, 0, 0);
    map.Gain = gain;
    map.Offset = offset;
    return map;
}

/// Maps of usual kinds and wild ones, in turn.
template <class T>
LinearMap RandomMap(std::mt19937_64 &random, int number) {
    const double range = static_cast<double>(std::numeric_limits<T>::max());
    std::uniform_real_distribution<double> unit(-1, 1);
    const auto share = [&] { return std::floor(unit(random) * range); };
    switch (number % 4) {
    case 0:
        return MapToExtremes(WordOf<T>(), {share(), share()}, share(), share());
    case 1:
        return MapToMeanDeviation(WordOf<T>(), {std::abs(share()), std::abs(share()) / 8 + 0.25}, share(),
                                  std::abs(share()));
    case 2:
        return MapOf<T>(unit(random) * std::pow(10.0, 40 * unit(random)),
                        unit(random) * std::pow(10.0, 40 * unit(random)));
    default:
        return MapOf<T>(static_cast<double>(number % 16) / 8, static_cast<double>(number % 32) / 4 - 4);
    }
}

template <class T>
std::vector<T> AllPixelsOfType() {
    if constexpr (sizeof(T) <= 2) {
        std::vector<T> pixels(std::size_t{1} << (8 * sizeof(T)));
        std::iota(pixels.begin(), pixels.end(), std::numeric_limits<T>::lowest());
        return pixels;
    } else {
        return WildPixels<T>(4097, 5);
    }
}

TEST(LinearMap, EveryLevelMapsEveryPixelTheSame) {
    ForAllPixelTypes([]<class T>() {
        const auto pixels = AllPixelsOfType<T>();
        std::mt19937_64 random(29);
        for (int number = 0; number < 40; ++number)
            ASSERT_NO_FATAL_FAILURE(
                CompareWalks(RandomMap<T>(random, number), static_cast<std::intptr_t>(pixels.size()), 1, pixels,
                             PlaneLayout::Dense, PlaneLayout::Dense,
                             "type " + std::to_string(WordOf<T>()) + ", map " + std::to_string(number)));
    });
}

TEST(LinearMap, EveryLayoutOfSourceAndTargetGetsTheSamePixels) {
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1}, {1, 9}, {67, 3}, {2050, 1}};
    ForAllPixelTypes([&]<class T>() {
        const LinearMap map = MapOf<T>(-0.75, 40.3);
        for (const auto &[width, height] : sizes)
            for (const PlaneLayout from : AllPlaneLayouts)
                for (const PlaneLayout to : AllPlaneLayouts)
                    ASSERT_NO_FATAL_FAILURE(
                        CompareWalks(map, width, height, WildPixels<T>(width * height, 8), from, to,
                                     "type " + std::to_string(WordOf<T>()) + ", layouts " +
                                         std::to_string(static_cast<int>(from)) + " and " +
                                         std::to_string(static_cast<int>(to)) + ", width " + std::to_string(width)));
    });
}

TEST(LinearMap, MapsThatAreNoNumbersHaveAResultAtEveryLevel) {
    const double none = std::numeric_limits<double>::quiet_NaN(), endless = std::numeric_limits<double>::infinity();
    ForAllPixelTypes([&]<class T>() {
        for (const double gain : {1.0, none, endless, -endless, 1e308})
            for (const double offset : {0.0, none, endless, -endless, -1e308})
                ASSERT_NO_FATAL_FAILURE(CompareWalks(MapOf<T>(gain, offset), 67, 3, WildPixels<T>(201, 6),
                                                     PlaneLayout::Dense, PlaneLayout::Dense,
                                                     "type " + std::to_string(WordOf<T>())));
    });
}

/// What both walks give.
template <class T>
std::vector<T> Mapped(const LinearMap &map, const std::vector<T> &pixels) {
    const auto width = static_cast<std::intptr_t>(pixels.size());
    const auto plain = Apply(map, width, 1, pixels, PlaneLayout::Dense, PlaneLayout::Dense, PixelWalk::OneByOne);
    EXPECT_TRUE(
        SameBytes(Apply(map, width, 1, pixels, PlaneLayout::Dense, PlaneLayout::Dense, PixelWalk::InPieces), plain));
    return plain;
}

TEST(LinearMap, AddsAHalfAndCutsTowardZero) {
    EXPECT_EQ(Mapped<short>(MapOf<short>(1, -10.25), {10, 9, 11, 0}), (std::vector<short>{0, 0, 1, -9}));
    EXPECT_EQ(Mapped<int>(MapOf<int>(1, -10.25), {10, 9, 11, 0}), (std::vector<int>{0, 0, 1, -9}));
    EXPECT_EQ(Mapped<char>(MapOf<char>(0.5, 0), {3, -3, -4, 5}), (std::vector<char>{2, -1, -1, 3}));
    EXPECT_EQ(Mapped<float>(MapOf<float>(0.5, 0), {3, -3}), (std::vector<float>{1.5F, -1.5F}));
}

TEST(LinearMap, LimitsToTheTypesRange) {
    EXPECT_EQ(Mapped<unsigned char>(MapOf<unsigned char>(10, -50), {0, 5, 30, 31, 255}),
              (std::vector<unsigned char>{0, 0, 250, 255, 255}));
    EXPECT_EQ(Mapped<short>(MapOf<short>(1e6, 0), {-1, 0, 1}), (std::vector<short>{-32768, 0, 32767}));
    EXPECT_EQ(Mapped<short>(MapOf<short>(100, 0), {-400, 0, 400}), (std::vector<short>{-32768, 0, 32767}));
    EXPECT_EQ(Mapped<unsigned int>(MapOf<unsigned int>(1e9, -1e9), {0, 1, 5, 6}),
              (std::vector<unsigned int>{0, 0, 4000000000u, 4294967295u}));
    EXPECT_EQ(Mapped<long>(MapOf<long>(1e19, 0), {-1, 1}),
              (std::vector<long>{std::numeric_limits<long>::lowest(), std::numeric_limits<long>::max()}));
    EXPECT_EQ(Mapped<float>(MapOf<float>(1e39, 0), {-1, 1}),
              (std::vector<float>{std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max()}));
}

TEST(LinearMap, WhatIsNoNumberStaysNoneInFloatPlanes) {
    const auto mapped = Mapped<double>(MapOf<double>(2, 1), {std::numeric_limits<double>::quiet_NaN(), 4});
    EXPECT_TRUE(std::isnan(mapped[0]));
    EXPECT_EQ(mapped[1], 9.0);
}

TEST(LinearMap, LeadsExtremesToTheWantedOnes) {
    const LinearMap map = MapToExtremes(8, {50, 100}, 0, 255);
    EXPECT_EQ(map.Gain, 5.1);
    EXPECT_EQ(map.Offset, 255 - 5.1 * 100);
    EXPECT_EQ(map.Rounding, 0.5);
    const LinearMap inverse = MapToExtremes(8, {0, 255}, 255, 0);
    EXPECT_EQ(inverse.Gain, -1.0);
    EXPECT_EQ(inverse.Offset, 255.0);
    EXPECT_EQ(Mapped<unsigned char>(inverse, {0, 1, 200, 255}), (std::vector<unsigned char>{255, 254, 55, 0}));
}

TEST(LinearMap, HasGainOneWhereNothingIsSpreadOrShallBe) {
    EXPECT_EQ(MapToExtremes(8, {7, 7}, 0, 200).Gain, 1.0);
    EXPECT_EQ(MapToExtremes(8, {7, 7}, 0, 200).Offset, 193.0);
    EXPECT_EQ(MapToExtremes(8, {7, 9}, 100, 100).Gain, 1.0);
    EXPECT_EQ(MapToMeanDeviation(8, {40, 0}, 100, 20).Gain, 1.0);
    EXPECT_EQ(MapToMeanDeviation(8, {40, 0}, 100, 20).Offset, 60.0);
    EXPECT_EQ(MapToMeanDeviation(8, {40, 3}, 100, 0).Gain, 1.0);
}

TEST(LinearMap, LimitsWhatIsWanted) {
    const LinearMap extremes = MapToExtremes(8, {0, 255}, -1000, 1000);
    EXPECT_EQ(extremes.Gain, 1.0);
    EXPECT_EQ(extremes.Offset, 0.0);
    const LinearMap mean = MapToMeanDeviation(8, {100, 1}, 300, 1e9);
    EXPECT_EQ(mean.Gain, 255.0 * 255.0);
    EXPECT_EQ(mean.Offset, 255 - 255.0 * 255.0 * 100);
    EXPECT_EQ(MapToMeanDeviation(0x110, {0, 1}, -1e9, -5).Offset, -32768.0);
    EXPECT_EQ(MapToExtremes(0x220, {0, 1}, 0, 1e300).Gain, static_cast<double>(std::numeric_limits<float>::max()));
}

} // namespace

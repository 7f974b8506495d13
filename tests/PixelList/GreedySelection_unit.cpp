// The choice among candidates against the rescan of a field of marks, and the order that it works in.
#include "PixelList/GreedySelection.h"

#include <gtest/gtest.h>

#include "PixelList/LinearMarkSearch.h"
#include "PixelList/MarkField.h"
#include "Scan/LaidOutPlane.h"

namespace {

using namespace PixelList;
using namespace TestSupport;

constexpr std::int64_t Most = std::numeric_limits<std::int64_t>::max();

template <class T>
void CompareWithRescan(std::intptr_t width, std::intptr_t height, unsigned values, std::uint32_t number) {
    std::mt19937 random(number);
    std::vector<T> pixels(static_cast<std::size_t>(width * height));
    for (T &pixel : pixels)
        pixel = static_cast<T>(static_cast<T>(random() % values) - (std::is_signed_v<T> ? T{2} : T{0}));
    LaidOutPlane<T> plane(width, height, PlaneLayout::Dense, pixels);
    for (const std::int64_t locality :
         {std::int64_t{0}, std::int64_t{-1}, -Most - 1, std::int64_t{1}, std::int64_t{2}, std::int64_t{3},
          std::int64_t{7}, std::int64_t{20}, std::int64_t{1000000000000000000}, Most}) {
        MarkField marks(width, height);
        MarkPlainly<T>(plane.View(), static_cast<T>(1), marks);
        const auto expected = SelectByRescan<T>(plane.View(), marks, locality);
        auto selected = LinearMarkSearch<T>(plane.View(), 1);
        SelectGreedily(selected, width, height, locality);
        ASSERT_EQ(selected, expected) << "type " << WordOf<T>() << ", " << width << " x " << height << ", " << values
                                      << " values, Locality " << locality << ", case " << number;
    }
}

TEST(GreedySelection, GivesTheListOfTheRescan) {
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1}, {1, 30}, {30, 1}, {13, 9}, {24, 17}};
    std::uint32_t number = 0;
    ForAllPixelTypes([&]<class T>() {
        for (const auto &[width, height] : sizes)
            for (const unsigned values : {2u, 5u, 120u})
                ASSERT_NO_FATAL_FAILURE(CompareWithRescan<T>(width, height, values, ++number));
    });
}

TEST(GreedySelection, ManyCandidatesAreSortedAsFewAre) {
    ForAllPixelTypes([]<class T>() {
        for (const std::size_t count : {2u, 255u, 256u, 3000u}) {
            MarkedPixels<T> candidates;
            for (const T value : WildPixels<T>(static_cast<std::intptr_t>(count), 5))
                if (value == value)
                    candidates.push_back({static_cast<std::uint32_t>(candidates.size()), 0, value});
            auto expected = candidates;
            std::stable_sort(expected.begin(), expected.end(),
                             [](const auto &a, const auto &b) { return a.Value > b.Value; });
            SortStrongestFirst(candidates);
            ASSERT_EQ(candidates, expected) << "type " << WordOf<T>() << ", " << count;
        }
    });
}

TEST(GreedySelection, BothZerosAreEqualValues) {
    MarkedPixels<double> candidates;
    for (std::uint32_t i = 0; i < 600; ++i)
        candidates.push_back({i, 0, i % 3 == 0 ? -0.0 : 0.0});
    SortStrongestFirst(candidates);
    for (std::uint32_t i = 0; i < 600; ++i)
        ASSERT_EQ(candidates[i].X, i);
}

TEST(GreedySelection, TheSquareIncludesItsEdge) {
    const MarkedPixels<int> four = {{10, 10, 9}, {13, 13, 8}, {7, 14, 7}, {10, 6, 6}};
    auto taken = four;
    SelectGreedily(taken, 30, 30, 3);
    EXPECT_EQ(taken, (MarkedPixels<int>{{10, 10, 9}, {7, 14, 7}, {10, 6, 6}}));
    taken = four;
    SelectGreedily(taken, 30, 30, 2);
    EXPECT_EQ(taken, four);
}

TEST(GreedySelection, WhatIsDroppedDropsNothing) {
    MarkedPixels<int> candidates = {{0, 0, 1}, {3, 0, 2}, {6, 0, 3}};
    SelectGreedily(candidates, 10, 1, 3);
    EXPECT_EQ(candidates, (MarkedPixels<int>{{6, 0, 3}, {0, 0, 1}}));
}

TEST(GreedySelection, MillionsOfCandidatesTakeNoTimeEach) {
    // All pixels of a flat plane, at neighbourhoods from the least to one beyond the plane. By rescans this takes
    // hours.
    constexpr std::uint32_t width = 1500, height = 1000;
    MarkedPixels<unsigned char> all;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            all.push_back({x, y, 200});
    for (const std::int64_t locality : {std::int64_t{1}, std::int64_t{9}, std::int64_t{400}, Most}) {
        auto taken = all;
        SelectGreedily(taken, width, height, locality);
        const auto along = [&](std::uint32_t count) {
            return locality >= count
                       ? 1u
                       : (count + static_cast<std::uint32_t>(locality)) / (static_cast<std::uint32_t>(locality) + 1);
        };
        EXPECT_EQ(taken.size(), std::size_t{along(width)} * along(height)) << locality;
    }
}

} // namespace

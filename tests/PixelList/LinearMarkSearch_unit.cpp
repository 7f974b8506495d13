// The candidates for maxima: known answers, and the row-wise search at every instruction set level and in every
// layout against the search pixel by pixel.
#include "PixelList/LinearMarkSearch.h"

#include <gtest/gtest.h>

#include "PixelList/MarkField.h"
#include "Scan/LaidOutPlane.h"
#include "TruncateTo.h"

namespace {

using namespace PixelList;
using namespace TestSupport;

template <class T>
MarkedPixels<T> SearchPlainly(const Image::PlaneView &plane, double threshold) {
    MarkField marks(plane.Width, plane.Height);
    if constexpr (std::is_integral_v<T>)
        MarkPlainly<T>(plane, orvBase::TruncateTo<T>(threshold), marks);
    else
        MarkPlainly<T>(plane, threshold, marks);
    MarkedPixels<T> found;
    for (std::intptr_t y = 0; y < plane.Height; ++y)
        for (std::intptr_t x = 0; x < plane.Width; ++x)
            if (marks.At(x, y) != 0 && PixelAt<T>(plane, x, y) > ValueBelowAll<T>)
                found.push_back(
                    {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), PixelAt<T>(plane, x, y)});
    return found;
}

/// Pixels of a few values only, so that areas of equal ones are common; some are wild.
template <class T>
std::vector<T> FewValues(std::intptr_t count, std::uint32_t seed) {
    std::vector<T> pixels = WildPixels<T>(count, seed);
    std::mt19937 random(seed);
    for (T &pixel : pixels)
        if (random() % 16 != 0)
            pixel = static_cast<T>(random() % 4);
    return pixels;
}

template <class T>
void CompareSearches(const std::vector<T> &pixels, std::intptr_t width, std::intptr_t height, PlaneLayout layout,
                     const std::string &where) {
    LaidOutPlane<T> plane(width, height, layout, pixels);
    const double none = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();
    for (const double threshold : {2.0, 2.5, -0.75, 0.0, 99.0, 300.0, -1e300, 1e300, 3.4028235e38, infinity, none}) {
        const auto plain = SearchPlainly<T>(plane.View(), threshold);
        AtAllLevels([&](const char *level) {
            ASSERT_EQ(LinearMarkSearch<T>(plane.View(), threshold), plain)
                << level << ", threshold " << threshold << ", " << where;
        });
    }
}

TEST(LinearMarkSearch, EveryLevelLayoutAndTypeGivesTheSame) {
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1}, {1, 9}, {37, 1}, {2, 2}, {67, 5}, {257, 3}};
    ForAllPixelTypes([&]<class T>() {
        std::uint32_t number = 0;
        for (const PlaneLayout layout : AllPlaneLayouts)
            for (const auto &[width, height] : sizes) {
                const std::string where = "type " + std::to_string(WordOf<T>()) + ", layout " +
                                          std::to_string(static_cast<int>(layout)) + ", case " +
                                          std::to_string(++number);
                ASSERT_NO_FATAL_FAILURE(
                    CompareSearches<T>(FewValues<T>(width * height, number), width, height, layout, where));
                ASSERT_NO_FATAL_FAILURE(
                    CompareSearches<T>(WildPixels<T>(width * height, number), width, height, layout, where));
            }
    });
}

/// The places of candidates in a plane that is drawn with digits.
std::vector<std::string> Marked(const std::vector<std::string> &lines, double threshold) {
    const auto width = static_cast<std::intptr_t>(lines[0].size()), height = static_cast<std::intptr_t>(lines.size());
    std::vector<float> pixels;
    for (const auto &line : lines)
        for (const char digit : line)
            pixels.push_back(digit == '?' ? std::numeric_limits<float>::quiet_NaN()
                                          : static_cast<float>(digit - '0'));
    LaidOutPlane<float> plane(width, height, PlaneLayout::Dense, pixels);
    std::vector<std::string> marked(lines.size(), std::string(lines[0].size(), '.'));
    for (const auto &found : LinearMarkSearch<float>(plane.View(), threshold))
        marked[found.Y][found.X] = lines[found.Y][found.X];
    return marked;
}
using Drawing = std::vector<std::string>;

TEST(LinearMarkSearch, MarksWhatHasNoGreaterNeighbour) {
    EXPECT_EQ(Marked({"00000", "01200", "00000", "00030"}, 1), (Drawing{".....", "..2..", ".....", "...3."}));
}

TEST(LinearMarkSearch, BordersAndCornersAreCandidates) {
    EXPECT_EQ(Marked({"501", "000", "203"}, 1), (Drawing{"5.1", "...", "2.3"}));
    EXPECT_EQ(Marked({"12321"}, 1), (Drawing{"..3.."}));
    EXPECT_EQ(Marked({"2", "1", "1"}, 1), (Drawing{"2", ".", "1"}));
    EXPECT_EQ(Marked({"4"}, 4), (Drawing{"4"}));
}

TEST(LinearMarkSearch, EqualNeighboursStayAsAGroup) {
    EXPECT_EQ(Marked({"0000", "0330", "0300", "0002"}, 1), (Drawing{"....", ".33.", ".3..", "...2"}));
    EXPECT_EQ(Marked({"0000", "0330", "0304", "0000"}, 1), (Drawing{"....", ".3..", ".3.4", "...."}));
}

TEST(LinearMarkSearch, ThePixelHasToReachTheThreshold) {
    EXPECT_EQ(Marked({"20304"}, 3), (Drawing{"..3.4"}));
    EXPECT_EQ(Marked({"20304"}, 3.5), (Drawing{"....4"}));
    EXPECT_EQ(Marked({"20304"}, std::numeric_limits<double>::quiet_NaN()), (Drawing{"....."}));
}

TEST(LinearMarkSearch, WhatIsNoNumberIsNoCandidateAndNotGreater) {
    EXPECT_EQ(Marked({"?2?", "?1?"}, 0), (Drawing{".2.", "..."}));
    EXPECT_EQ(Marked({"1?1"}, 0), (Drawing{"1.1"}));
}

TEST(LinearMarkSearch, TheThresholdIsCutForIntegers) {
    LaidOutPlane<unsigned char> bytes(5, 1, PlaneLayout::Dense, {2, 0, 3, 0, 44});
    EXPECT_EQ(LinearMarkSearch<unsigned char>(bytes.View(), 2.9).size(), 3u);
    EXPECT_EQ(LinearMarkSearch<unsigned char>(bytes.View(), 300).size(), 1u); // 300 is 44 in a byte
    LaidOutPlane<short> shorts(3, 1, PlaneLayout::Dense, {-2, -5, -3});
    EXPECT_EQ(LinearMarkSearch<short>(shorts.View(), -2.9).size(), 1u);
    EXPECT_EQ(LinearMarkSearch<short>(shorts.View(), -3.9).size(), 2u);
}

TEST(LinearMarkSearch, TheLowestValueOfATypeIsNone) {
    ForAllPixelTypes([]<class T>() {
        constexpr T lowest = std::numeric_limits<T>::lowest();
        const T next = std::is_floating_point_v<T> ? static_cast<T>(lowest / 2) : static_cast<T>(lowest + 1);
        LaidOutPlane<T> plane(4, 1, PlaneLayout::Dense, {lowest, lowest, lowest, next});
        const MarkedPixels<T> expected = {{3, 0, next}};
        EXPECT_EQ(LinearMarkSearch<T>(plane.View(), static_cast<double>(lowest)), expected) << WordOf<T>();
    });
}

TEST(LinearMarkSearch, APlaneWithoutPixelsHasNone) {
    Image::PlaneView plane;
    EXPECT_TRUE(LinearMarkSearch<int>(plane, 0).empty());
    plane.Width = std::intptr_t{1} << 40;
    EXPECT_TRUE(LinearMarkSearch<int>(plane, 0).empty());
    plane.Height = 1;
    EXPECT_THROW(LinearMarkSearch<int>(plane, 0), std::length_error);
}

} // namespace

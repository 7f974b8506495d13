// 16-bit pixels scaled down to bytes: the product that stands for the division against the division itself.
#include "Scan/ByteScale.h"

#include <gtest/gtest.h>
#include <numeric>

#include "Scan/LaidOutPlane.h"

namespace {

using namespace Scan;
using namespace TestSupport;

std::vector<unsigned char> Scale(std::intptr_t width, std::intptr_t height, const std::vector<unsigned short> &pixels,
                                 double maximum, PixelWalk walk, PlaneLayout from = PlaneLayout::Dense,
                                 PlaneLayout to = PlaneLayout::Dense) {
    LaidOutPlane<unsigned short> source(width, height, from, pixels);
    LaidOutPlane<unsigned char> target(width, height, to);
    ScaleToBytes(maximum, source.View(), target.View(), walk);
    return target.Pixels();
}

/// All pixels from 0 to maximum.
void CompareAllPixels(unsigned maximum) {
    std::vector<unsigned short> pixels(maximum + 1);
    std::iota(pixels.begin(), pixels.end(), static_cast<unsigned short>(0));
    const auto width = static_cast<std::intptr_t>(pixels.size());
    const auto plain = Scale(width, 1, pixels, maximum, PixelWalk::OneByOne);
    AtAllLevels([&](const char *level) {
        ASSERT_EQ(Scale(width, 1, pixels, maximum, PixelWalk::InPieces), plain) << level << ", " << maximum;
    });
}

TEST(ByteScale, EveryPixelOfMaximaUpTo600IsThatOfTheDivision) {
    for (unsigned maximum = 0; maximum <= 600; ++maximum)
        ASSERT_NO_FATAL_FAILURE(CompareAllPixels(maximum));
}

TEST(ByteScale, EveryPixelOfLargeMaximaIsThatOfTheDivision) {
    for (const unsigned maximum :
         {1000u, 1020u, 4095u, 4096u, 32767u, 32768u, 51000u, 65279u, 65280u, 65534u, 65535u})
        ASSERT_NO_FATAL_FAILURE(CompareAllPixels(maximum));
    std::mt19937 random(33);
    for (int number = 0; number < 40; ++number)
        ASSERT_NO_FATAL_FAILURE(CompareAllPixels(static_cast<unsigned>(random() % 65536)));
}

TEST(ByteScale, PixelsNextToAWholeResultAreThoseOfTheDivisionForEveryMaximum) {
    for (unsigned maximum = 256; maximum < 65536; maximum += 7) {
        std::vector<unsigned short> pixels;
        for (unsigned result = 1; result <= 255; result += 14)
            for (unsigned pixel = result * maximum / 255; pixel <= result * maximum / 255 + 1; ++pixel)
                pixels.push_back(static_cast<unsigned short>(std::min(pixel, maximum)));
        const auto width = static_cast<std::intptr_t>(pixels.size());
        ASSERT_EQ(Scale(width, 1, pixels, maximum, PixelWalk::InPieces),
                  Scale(width, 1, pixels, maximum, PixelWalk::OneByOne))
            << maximum;
    }
}

TEST(ByteScale, KnownPixels) {
    const std::vector<unsigned short> pixels = {0, 1, 1000, 1999, 2000};
    const std::vector<unsigned char> expected = {0, 0, 127, 254, 255};
    EXPECT_EQ(Scale(5, 1, pixels, 2000, PixelWalk::OneByOne), expected);
    EXPECT_EQ(Scale(5, 1, pixels, 2000, PixelWalk::InPieces), expected);
}

TEST(ByteScale, APlaneOfZerosStaysZero) {
    const std::vector<unsigned short> zeros(70);
    const std::vector<unsigned char> expected(70);
    EXPECT_EQ(Scale(70, 1, zeros, 0, PixelWalk::OneByOne), expected);
    EXPECT_EQ(Scale(70, 1, zeros, 0, PixelWalk::InPieces), expected);
}

TEST(ByteScale, EveryLayoutOfSourceAndTargetGetsTheSamePixels) {
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1}, {1, 9}, {67, 3}, {2050, 1}};
    for (const auto &size : sizes)
        for (const PlaneLayout from : AllPlaneLayouts)
            for (const PlaneLayout to : AllPlaneLayouts) {
                const std::intptr_t width = size.first, height = size.second;
                const auto pixels = WildPixels<unsigned short>(width * height, 9);
                const auto plain = Scale(width, height, pixels, 65535, PixelWalk::OneByOne, from, to);
                AtAllLevels([&](const char *level) {
                    ASSERT_EQ(Scale(width, height, pixels, 65535, PixelWalk::InPieces, from, to), plain)
                        << level << ", layouts " << static_cast<int>(from) << " and " << static_cast<int>(to);
                });
            }
}

} // namespace

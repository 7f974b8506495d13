// Every method of multiplying planes by gains gives at every instruction set level the bytes of the plain one, which
// goes plane after plane, rows then columns, and writes nothing else.
#include "Scan/WhiteBalanceGains.h"

#include "Image/KernelLevel.h"
#include "Scan/PlaneLayouts.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace PlaneLayouts;
using Image::ForcedLevel;
using Image::KernelLevel;
using Scan::GainMethod;
using Gains = std::array<double, 3>;

constexpr TDataType AllTypes[] = {0x8, 0x108, 0x10, 0x110, 0x20, 0x120, 0x220, 0x240};

const Gains AllGains[] = {{1, 1, 1},
                          {1.5, 0.75, 1.25},
                          {0, 0.001, 0.002},
                          {255.99, 255.998, 0},
                          {256, 1, 1},
                          {-1, 2, -0.004},
                          {1e6, 3.3e4, 8388607.9},
                          {1e300, std::numeric_limits<double>::infinity(), std::nan("")}};

/// The block after a method went over planes that begin as the given bytes.
std::vector<unsigned char> Multiplied(GainMethod method, TDataType type, const Gains &gains, Planes &planes,
                                      const std::vector<unsigned char> &before) {
    planes.Memory.assign(before.begin(), before.end());
    ApplyGains(method, type, planes.Views, gains);
    planes.MakeNaNsAlike(type);
    return planes.Memory;
}

void ExpectSameBytes(TDataType type, const Gains &gains, Planes &planes) {
    const auto before = planes.Memory;
    const auto expected = Multiplied(GainMethod::OneByOne, type, gains, planes, before);
    const GainMethod chosen = Scan::ChooseGainMethod(planes.Views);
    for (const KernelLevel level : Image::AvailableLevels()) {
        const ForcedLevel forced(level);
        ASSERT_TRUE(Multiplied(chosen, type, gains, planes, before) == expected)
            << Image::NameOf(level) << ", method " << static_cast<int>(chosen) << ", type " << std::hex << type;
        if (chosen == GainMethod::ThreeByteRows) {
            ASSERT_TRUE(Multiplied(GainMethod::InPieces, type, gains, planes, before) == expected)
                << Image::NameOf(level);
        }
    }
    planes.Memory.assign(before.begin(), before.end());
}

TEST(WhiteBalanceGains, GivesTheSameBytesByEveryMethodInEveryLayout) {
    std::mt19937 random(1);
    for (const Layout layout : AllLayouts)
        for (const std::intptr_t width : {1, 2, 3, 21, 64, 65, 130, 2050})
            for (const TDataType type : AllTypes) {
                SCOPED_TRACE(std::string(NameOf(layout)) + ", width " + std::to_string(width));
                Planes planes(layout, 3, width, 3, Image::BytesOf(type));
                planes.Fill(random);
                for (const Gains &gains : AllGains)
                    ASSERT_NO_FATAL_FAILURE(ExpectSameBytes(type, gains, planes));
            }
}

TEST(WhiteBalanceGains, TakesInterleavedBytesAtOnceAndSharedPixelsOneByOne) {
    const auto choice = [](Layout layout, std::intptr_t bytes) {
        Planes planes(layout, 3, 20, 4, bytes);
        return Scan::ChooseGainMethod(planes.Views);
    };
    EXPECT_EQ(choice(Layout::Interleaved, 1), GainMethod::ThreeByteRows);
    EXPECT_EQ(choice(Layout::MirroredInterleaved, 1), GainMethod::ThreeByteRows);
    EXPECT_EQ(choice(Layout::Interleaved, 2), GainMethod::InPieces);
    EXPECT_EQ(choice(Layout::Planar, 1), GainMethod::InPieces);
    EXPECT_EQ(choice(Layout::Turned, 4), GainMethod::InPieces);
    EXPECT_EQ(choice(Layout::Scattered, 1), GainMethod::OneByOne);
    EXPECT_EQ(choice(Layout::SharedRows, 1), GainMethod::OneByOne);
}

/// Every byte by every gain of 24 bits' worth of products and some beyond, against the formula.
TEST(WhiteBalanceGains, MultipliesEveryByteByTheFormula) {
    for (const KernelLevel level : Image::AvailableLevels()) {
        const ForcedLevel forced(level);
        for (int gain = 0; gain < 0x10100; gain += gain < 600 || gain > 0xFF00 ? 1 : 113) {
            Planes planes(Layout::Interleaved, 3, 256, 1, 1);
            for (std::size_t i = 0; i < planes.Memory.size(); ++i)
                planes.Memory[i] = static_cast<unsigned char>(i / 3);
            const double factor = gain / 256.0;
            ApplyGains(GainMethod::ThreeByteRows, 0x8, planes.Views, Gains{factor, 1, factor});
            for (int value = 0; value < 256; ++value) {
                const int expected = std::min(value * gain >> 8, 255);
                const auto first = static_cast<std::size_t>(3 * value);
                ASSERT_EQ(planes.Memory[first], expected) << value << " by " << gain;
                ASSERT_EQ(planes.Memory[first + 1], value);
                ASSERT_EQ(planes.Memory[first + 2], expected) << value << " by " << gain;
            }
        }
    }
}

} // namespace

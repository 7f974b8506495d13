// Every method of linear combination gives at every instruction set level the bytes of the plain one, which gives
// those of a formula written down here, also where sums lie on edges of rounding.
#include "Scan/ColorMatrix.h"

#include "Image/KernelLevel.h"
#include "Scan/ByteColors.h"
#include "Scan/PixelType.h"
#include "Scan/PlaneLayouts.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace PlaneLayouts;
using Image::ForcedLevel;
using Image::KernelLevel;
using Scan::ColorMethod;
using Scan::ColorRows;

constexpr TDataType AllTypes[] = {0x8, 0x108, 0x10, 0x110, 0x20, 0x120, 0x40, 0x140, 0x220, 0x240};
constexpr double Infinity = std::numeric_limits<double>::infinity();

using Numbers = std::vector<double>;

/// The bytes of the target planes that a method makes.
std::vector<unsigned char> Combined(ColorMethod method, TDataType type, const ColorRows &rows, Planes &sources,
                                    Layout targetLayout) {
    const Image::PlaneView &first = sources.Views.front();
    Planes targets(targetLayout, rows.Count, first.Width, first.Height, Image::BytesOf(type));
    CombinePlanes(method, type, rows, sources.Views, targets.Views);
    targets.MakeNaNsAlike(type);
    return targets.Memory;
}

bool Allows(ColorMethod method, TDataType type, const ColorRows &rows) {
    return method != ColorMethod::BytesInFloat ||
           (Scan::PixelTypeOf(type) == Scan::PixelType::Unsigned8 && Scan::CanCombineBytes(rows));
}

/// All methods at all levels against the plain one.
void ExpectSameBytes(TDataType type, const ColorRows &rows, Planes &sources, Layout targetLayout) {
    const auto expected = Combined(ColorMethod::OneByOne, type, rows, sources, targetLayout);
    for (const KernelLevel level : Image::AvailableLevels()) {
        const ForcedLevel forced(level);
        for (const ColorMethod method : {ColorMethod::InPieces, ColorMethod::BytesInFloat})
            if (Allows(method, type, rows)) {
                ASSERT_TRUE(Combined(method, type, rows, sources, targetLayout) == expected)
                    << Image::NameOf(level) << ", method " << static_cast<int>(method) << ", type " << std::hex
                    << type;
            }
    }
}

/// Numbers of many kinds: round decimals, powers of two, any, large ones, and what is no number.
double AnyNumber(std::mt19937 &random) {
    const double any = static_cast<double>(random()) / 2147483648.0 - 1.0;
    switch (random() % 16) {
    case 0:
        return 0;
    case 1:
    case 2:
    case 3:
    case 4:
        return std::round(any * 100) / 100;
    case 5:
    case 6:
    case 7:
        return std::round(any * 16) / 8;
    case 8:
        return any * 1e3;
    case 9:
        return random() % 8 == 0 ? any * 1e300 : any * 40;
    case 10:
        return random() % 8 == 0 ? Infinity : any * 1e-40;
    case 11:
        return random() % 8 == 0 ? std::numeric_limits<double>::quiet_NaN() : any;
    default:
        return any * 1.5;
    }
}

Numbers AnyRows(std::mt19937 &random, std::intptr_t planes, std::intptr_t count) {
    Numbers numbers;
    for (std::intptr_t row = 0; row < count; ++row) {
        for (std::intptr_t plane = 0; plane < planes; ++plane)
            numbers.push_back(AnyNumber(random));
        numbers.push_back(AnyNumber(random) * 100);
    }
    return numbers;
}

TEST(ColorMatrix, GivesTheSameBytesByEveryMethodInEveryLayout) {
    std::mt19937 random(1);
    for (const Layout layout : AllLayouts)
        for (const std::intptr_t width : {1, 2, 3, 63, 64, 65, 130, 513})
            for (const TDataType type : AllTypes) {
                SCOPED_TRACE(std::string(NameOf(layout)) + ", width " + std::to_string(width));
                const auto planes = static_cast<std::intptr_t>(random() % 5 + 1);
                const auto count = static_cast<std::intptr_t>(random() % 3 + 1);
                Planes sources(layout, planes, width, 3, Image::BytesOf(type));
                sources.Fill(random);
                const Numbers numbers = AnyRows(random, planes, count);
                const ColorRows rows = {numbers.data(), planes, count, random() % 2 == 0};
                const Layout target = random() % 2 == 0 ? Layout::Planar : Layout::Interleaved;
                ASSERT_NO_FATAL_FAILURE(ExpectSameBytes(type, rows, sources, target));
            }
}

TEST(ColorMatrix, GivesTheSameBytesForRandomRowsOfBytes) {
    std::mt19937 random(2);
    for (int number = 0; number < 1500; ++number) {
        SCOPED_TRACE("case " + std::to_string(number));
        const auto planes = static_cast<std::intptr_t>(random() % 3 + 1);
        const auto count = static_cast<std::intptr_t>(random() % 2 * 2 + 1);
        Planes sources(random() % 2 == 0 ? Layout::Interleaved : Layout::Planar, planes,
                       static_cast<std::intptr_t>(random() % 300 + 1), 2, 1);
        sources.Fill(random);
        const Numbers numbers = AnyRows(random, planes, count);
        const ColorRows rows = {numbers.data(), planes, count, random() % 2 == 0};
        ASSERT_NO_FATAL_FAILURE(ExpectSameBytes(0x8, rows, sources, Layout::Planar));
    }
}

/// One byte by the formula.
unsigned char ByteByFormula(double sum, bool reflects) {
    if (sum > 255)
        sum = 255;
    else if (sum < 0)
        sum = reflects ? 0.0 + 0.0 - sum : 0.0;
    return static_cast<unsigned char>(static_cast<std::int32_t>(sum + 0.5));
}

/// All 256 values of a byte through a row that leads close to edges of rounding.
void ExpectFormula(double coefficient, double offset, bool reflects) {
    Planes source(Layout::Planar, 1, 256, 1, 1);
    for (std::size_t i = 0; i < 256; ++i)
        source.Memory[i] = static_cast<unsigned char>(i);
    const double numbers[] = {coefficient, offset};
    const ColorRows rows = {numbers, 1, 1, reflects};
    ASSERT_TRUE(Scan::CanCombineBytes(rows));
    for (const KernelLevel level : Image::AvailableLevels()) {
        const ForcedLevel forced(level);
        for (const ColorMethod method : {ColorMethod::OneByOne, ColorMethod::InPieces, ColorMethod::BytesInFloat}) {
            const auto bytes = Combined(method, 0x8, rows, source, Layout::Planar);
            for (std::size_t i = 0; i < 256; ++i)
                ASSERT_EQ(bytes[i], ByteByFormula(offset + static_cast<double>(i) * coefficient, reflects))
                    << i << " * " << coefficient << " + " << offset << ", " << Image::NameOf(level) << ", method "
                    << static_cast<int>(method);
        }
    }
}

TEST(ColorMatrix, RoundsSumsOfBytesAtEdgesAsDoubleDoes) {
    for (const double step : {0.0, 1.0, -1.0})
        for (const double coefficient : {0.5, 0.1, 0.3, 0.7, 1.1, 0.05, 1.0 / 3, 50.0, -0.5, -0.7, -3.1, -15.9})
            for (const double offset : {0.0, 0.5, 0.1, 0.45, -0.5, 127.5, 3000.5}) {
                const double towards = step * Infinity;
                const double nearby = step == 0 ? coefficient : std::nextafter(coefficient, towards);
                const double nearbyOffset = step == 0 ? offset : std::nextafter(offset, towards);
                for (const bool reflects : {false, true}) {
                    ASSERT_NO_FATAL_FAILURE(ExpectFormula(nearby, offset, reflects));
                    ASSERT_NO_FATAL_FAILURE(ExpectFormula(coefficient, nearbyOffset, reflects));
                }
            }
}

TEST(ColorMatrix, RoundsSumsALittleOffAnEdgeAsDoubleDoes) {
    for (int exponent = -50; exponent < -5; ++exponent)
        for (const double sign : {1.0, -1.0}) {
            const double little = sign * std::ldexp(1.0, exponent);
            ASSERT_NO_FATAL_FAILURE(ExpectFormula(1.0, 0.5 + little, false));
            ASSERT_NO_FATAL_FAILURE(ExpectFormula(0.5 + little, 0.0, false));
            ASSERT_NO_FATAL_FAILURE(ExpectFormula(-0.5 + little, 0.0, true));
        }
}

TEST(ColorMatrix, LeavesSinglePrecisionWhereNumbersAreTooLargeOrNone) {
    const Numbers unfit[] = {{64, 100},      {0, 16384},        {Infinity, 0},
                             {0, -Infinity}, {std::nan(""), 0}, {0, std::nan("")}};
    for (const Numbers &numbers : unfit)
        EXPECT_EQ(Scan::ChooseColorMethod(0x8, {numbers.data(), 1, 1, false}), ColorMethod::InPieces);
    const Numbers fit = {60, 100};
    EXPECT_EQ(Scan::ChooseColorMethod(0x8, {fit.data(), 1, 1, false}), ColorMethod::BytesInFloat);
    EXPECT_EQ(Scan::ChooseColorMethod(0x108, {fit.data(), 1, 1, false}), ColorMethod::InPieces);
    const Numbers fourPlanes = {1, 1, 1, 1, 0};
    EXPECT_EQ(Scan::ChooseColorMethod(0x8, {fourPlanes.data(), 4, 1, false}), ColorMethod::InPieces);
}

} // namespace

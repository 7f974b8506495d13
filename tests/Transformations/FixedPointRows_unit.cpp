// Affine maps in fixed point: the loops without tests against the plain step, byte by byte, at every instruction set
// level, for every layout and type, and on sources between unreadable pages.
#include "Transformations/AffineTransformer.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <sstream>

#include "Scan/LaidOutPlane.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"
#include "Transformations/ThreePlanes.h"

namespace {

using namespace Transformations;
using namespace TestSupport;

struct Size {
    std::intptr_t Width, Height;
};

/// Turned, scaled, mirrored, upright and hostile maps from results to a source of some size.
class RandomMaps {
public:
    explicit RandomMaps(std::uint32_t seed) : random_(seed) {}

    TCoordinateMap Next(const Size &source) {
        const double shiftX = Between(-0.5, 1.0) * static_cast<double>(source.Width);
        const double shiftY = Between(-0.5, 1.0) * static_cast<double>(source.Height);
        const double angle = Between(-std::numbers::pi, std::numbers::pi), scale = std::exp2(Between(-3, 2));
        switch (random_() % 8) {
        case 0: // whole pixels, both ways and in steps
            return {std::floor(shiftX), std::floor(shiftY), {Whole(), 0, 0, Whole()}};
        case 1: // upright
            return {shiftX, shiftY, {Between(-3, 3), 0, 0, Between(-3, 3)}};
        case 2: // scales whose positions fall on the eighth of a pixel that decides
            return {shiftX, std::floor(shiftY), {std::floor(Between(-16, 16)) / 8, 0, 0, 0.5}};
        case 3: // axes exchanged
            return {shiftX, shiftY, {0, Between(-2, 2), Between(-2, 2), 0}};
        case 4: // anything
            return {shiftX, shiftY, {Between(-2, 2), Between(-2, 2), Between(-2, 2), Between(-2, 2)}};
        case 5: // hardly turned
            return {shiftX, shiftY, {1, Between(-0.01, 0.01), Between(-0.01, 0.01), 1}};
        default:
            return {shiftX,
                    shiftY,
                    {scale * std::cos(angle), -scale * std::sin(angle), scale * std::sin(angle),
                     scale * std::cos(angle)}};
        }
    }
    std::intptr_t Length(std::intptr_t highest) {
        return 1 + static_cast<std::intptr_t>(random_() % static_cast<std::uint32_t>(highest));
    }

private:
    double Between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random_); }
    double Whole() { return std::floor(Between(-3, 4)); }

    std::mt19937 random_;
};

template <class T>
std::vector<T> Plain(const CAffineTransformerFPA<T> &transformer, const Size &size) {
    LaidOutPlane<T> target(size.Width, size.Height, PlaneLayout::Dense);
    transformer.TransformPlainly(target.View());
    return target.Pixels();
}

/// All planes of an image, into a target of some layout.
template <class T>
void CompareWithPlain(void *image, const TCoordinateMap &map, const Size &size, PlaneLayout layout) {
    const TransTable table(map, size.Width, size.Height);
    CAffineTransformerFPA<T> transformer(Interface::QueryImage(image), table);
    for (std::intptr_t plane = 0; plane < transformer.Interpolator.SourcePlanes; ++plane) {
        ASSERT_TRUE(transformer.SelectPlane(plane));
        const std::vector<T> plain = Plain(transformer, size);
        AtAllLevels([&](const char *level) {
            LaidOutPlane<T> target(size.Width, size.Height, layout);
            transformer.Transform(target.View());
            ASSERT_EQ(target.Pixels(), plain) << level << ", plane " << plane;
        });
    }
}

std::string Describe(const TCoordinateMap &map) {
    std::ostringstream text;
    text << "map " << map.X << ", " << map.Y << ", " << map.Matrix.A11 << ", " << map.Matrix.A12 << ", "
         << map.Matrix.A21 << ", " << map.Matrix.A22;
    return text.str();
}

/// What the table must hold: each term by itself, and where the terms of a column or a row fit 32 bits.
void CompareTable(const TCoordinateMap &map, std::intptr_t width, std::intptr_t height) {
    const TransTable table(map, width, height);
    const auto fits = [](double term) { return term > -2147483649.0 && term < 2147483648.0; };
    for (std::intptr_t i = 0; i < std::max(width, height); ++i) {
        const auto place = static_cast<double>(i);
        const double terms[] = {(place * map.Matrix.A11 + map.X) * 256, place * map.Matrix.A12 * 256,
                                place * map.Matrix.A21 * 256, (place * map.Matrix.A22 + map.Y) * 256};
        const TransTableEntry &entry = table.Entries()[i];
        const std::int32_t found[] = {entry.XFromX, entry.XFromY, entry.YFromX, entry.YFromY};
        for (int term = 0; term < 4; ++term)
            if (fits(terms[term])) {
                ASSERT_EQ(found[term], static_cast<std::int32_t>(std::trunc(terms[term]))) << i << ", " << term;
            }
        ASSERT_EQ(table.Columns().Contains(i), i < width && fits(terms[0]) && fits(terms[2])) << i;
        ASSERT_EQ(table.Rows().Contains(i), i < height && fits(terms[1]) && fits(terms[3])) << i;
    }
}

TEST(TransTable, HoldsTruncatedTermsAndTellsWhichFit32Bits) {
    constexpr double limit = 2147483648.0 / 256;
    const auto none = std::numeric_limits<double>::quiet_NaN();
    RandomMaps maps(70);
    for (int number = 0; number < 300; ++number) {
        const TCoordinateMap map = maps.Next({500, 400});
        ASSERT_NO_FATAL_FAILURE(CompareTable(map, maps.Length(90), maps.Length(90))) << Describe(map);
    }
    const TCoordinateMap hostile[] = {{limit, 0, {1, 0, 0, 1}},      {limit - 9, 0, {1, 0, 0, 1}},
                                      {-limit - 9, 0, {1, 0, 0, 1}}, {-limit, 0, {0, limit / 7, 0, 1}},
                                      {0, -limit - 2, {1, 0, 0, 1}}, {0, 0, {1, limit / 5, -limit / 6, 1e300}},
                                      {none, 0, {1, 0, 0, 1}},       {0, 0, {none, 0, 0, 1}},
                                      {0, 0, {1, 0, 0, HUGE_VAL}},   {-HUGE_VAL, 0, {HUGE_VAL, 0, 0, 1}}};
    for (const TCoordinateMap &map : hostile)
        ASSERT_NO_FATAL_FAILURE(CompareTable(map, 40, 60)) << Describe(map);
}

template <class T>
class FixedPointRows : public testing::Test {};
using FixedPointTypes = testing::Types<char, unsigned char, short, unsigned short>;
TYPED_TEST_SUITE(FixedPointRows, FixedPointTypes);

TYPED_TEST(FixedPointRows, GiveTheBytesOfThePlainStepForEveryLayoutAndMap) {
    RandomMaps maps(71);
    const Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 70}, {67, 5}, {150, 40}};
    int number = 0;
    for (const Size &source : sizes)
        for (const NamedImage &image : MakeLayouts(source.Width, source.Height, 2, WordOf<TypeParam>(), 5))
            for (int i = 0; i < 8; ++i, ++number) {
                const TCoordinateMap map = maps.Next(source);
                const Size size = {maps.Length(200), maps.Length(12)};
                const PlaneLayout layout = AllPlaneLayouts[number % 9];
                ASSERT_NO_FATAL_FAILURE(CompareWithPlain<TypeParam>(image.Get(), map, size, layout))
                    << "case " << number << ", " << image.Name << ", " << Describe(map);
            }
}

TYPED_TEST(FixedPointRows, TakeTheOverlayBitFromTheSamePixelAsThePlainStep) {
    RandomMaps maps(72);
    const Size source = {90, 33};
    const TDataType type = WordOf<TypeParam>() | DataTypeOverlay;
    for (const NamedImage &image : MakeLayouts(source.Width, source.Height, 1, type, 6))
        for (int number = 0; number < 16; ++number) {
            const TCoordinateMap map = maps.Next(source);
            ASSERT_NO_FATAL_FAILURE(CompareWithPlain<TypeParam>(image.Get(), map, {150, 20}, PlaneLayout::Dense))
                << "case " << number << ", " << image.Name << ", " << Describe(map);
        }
}

TYPED_TEST(FixedPointRows, AgreeWithThePlainStepWherePositionsDoNotFit32Bits) {
    constexpr double infinite = std::numeric_limits<double>::infinity(), limit = 2147483648.0 / 256;
    const auto none = std::numeric_limits<double>::quiet_NaN();
    const auto image = FakeImage::Planar(40, 30, 1, WordOf<TypeParam>());
    const auto content = RandomContent(40, 30, 1, WordOf<TypeParam>(), 8);
    std::copy(content[0].begin(), content[0].end(), image->Pixels.begin());
    const TCoordinateMap maps[] = {
        {none, 0, {1, 0, 0, 1}},           {0, 0, {none, 0, 0, 1}},
        {0, 0, {1, none, 0, 1}},           {infinite, 0, {-infinite, 0, 0, 1}},
        {0, infinite, {1, 0, 0, 1}},       {0, 0, {1e300, 0, 0, 1}},
        {-limit, 0, {1, limit, 0, 1}},     {-limit, 0, {limit, 0, 0, 1}},
        {-limit - 1, 0, {1, limit, 0, 1}}, {limit - 0.01, 3, {-limit / 2, 0, 0.5, 1}},
        {5, -limit, {1, 0, limit, 0.5}},   {1, 1, {1e6, 1e6, -1e6, 1e6}},
        {limit - 1, 0, {1, 0, 0, 1}},      {3, 4, {1, -2e6, 0, 1}},
    };
    for (const TCoordinateMap &map : maps)
        ASSERT_NO_FATAL_FAILURE(CompareWithPlain<TypeParam>(image->Handle(), map, {70, 40}, PlaneLayout::Dense))
            << Describe(map);
}

/// A plane in memory that an unreadable page follows or precedes, and rows that end at one each.
template <class T>
void CompareBetweenPages(FencedBlock::Fence fence, std::intptr_t xStep, std::intptr_t yStep, const Size &source,
                         RandomMaps &maps) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    const std::intptr_t endX = (source.Width - 1) * xStep, endY = (source.Height - 1) * yStep;
    const std::intptr_t lowest = std::min<std::intptr_t>(endX, 0) + std::min<std::intptr_t>(endY, 0);
    const std::intptr_t bytes = std::abs(endX) + std::abs(endY) + size;
    const FencedBlock block(static_cast<std::size_t>(bytes), fence);
    std::iota(block.Data(), block.Data() + bytes, static_cast<std::uint8_t>(11));
    FakeImage image(source.Width, source.Height);
    image.AddPlane(
        block.Data() - lowest, WordOf<T>(), [=](std::intptr_t x) { return x * xStep; },
        [=](std::intptr_t y) { return y * yStep; });
    for (int number = 0; number < 20; ++number) {
        const TCoordinateMap map = maps.Next(source);
        ASSERT_NO_FATAL_FAILURE(CompareWithPlain<T>(image.Handle(), map, {100, 40}, PlaneLayout::Dense))
            << "steps " << xStep << " and " << yStep << ", case " << number << ", " << Describe(map);
    }
}

TYPED_TEST(FixedPointRows, ReadNothingBesideThePixelsOfTheSource) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(TypeParam));
    RandomMaps maps(73);
    const Size source = {31, 17};
    for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before})
        for (const std::intptr_t pixels : {1, 2, 3, -1, -3})
            for (const std::intptr_t sign : {1, -1}) {
                const std::intptr_t step = pixels * size, row = sign * source.Width * std::abs(step);
                ASSERT_NO_FATAL_FAILURE(CompareBetweenPages<TypeParam>(fence, step, row, source, maps));
                const std::intptr_t column = sign * source.Height * std::abs(step);
                ASSERT_NO_FATAL_FAILURE(CompareBetweenPages<TypeParam>(fence, column, step, source, maps));
            }
}

/// Three planes of bytes between each other in one block.
struct ThreeByteImage {
    ThreeByteImage(const Size &size, std::intptr_t step, const std::array<std::intptr_t, 3> &byteOfPlane,
                   FencedBlock::Fence fence, TDataType type = 8)
        : Block(static_cast<std::size_t>(3 * size.Width * size.Height), fence), Image(size.Width, size.Height) {
        const std::intptr_t start = step < 0 ? 3 * (size.Width - 1) : 0, pitch = 3 * size.Width;
        for (const std::intptr_t byte : byteOfPlane)
            Image.AddPlane(
                Block.Data() + start + byte, type, [=](std::intptr_t x) { return x * step; },
                [=](std::intptr_t y) { return y * pitch; });
    }
    Interface::ImageHolder Holder() { return Interface::QueryImage(Image.Handle()); }
    std::array<Image::PlaneView, 3> Views() {
        std::array<Image::PlaneView, 3> views;
        const Interface::ImageHolder image = Holder();
        for (std::size_t plane = 0; plane < 3; ++plane) {
            Image::PlaneFacts facts;
            Image::ReadPlaneFacts(*image.Get(), static_cast<std::intptr_t>(plane), facts);
            views[plane] = Image::ViewOf(facts, Image::DimensionsOf(*image.Get()));
        }
        return views;
    }

    FencedBlock Block;
    FakeImage Image;
};

constexpr std::array<std::intptr_t, 3> RedFirst = {0, 1, 2}, BlueFirst = {2, 1, 0}, Mixed = {1, 2, 0};

/// False when the three planes did not go as one.
bool CompareThreePlanes(ThreeByteImage &source, ThreeByteImage &target, const TCoordinateMap &map) {
    const Interface::ImageHolder image = source.Holder();
    const auto from = source.Views(), to = target.Views();
    const Size size = {to[0].Width, to[0].Height};
    const TransTable table(map, size.Width, size.Height);
    bool isDone = true;
    AtAllLevels([&](const char *level) {
        std::fill_n(target.Block.Data(), 3 * size.Width * size.Height, std::uint8_t{0x5B});
        isDone = isDone && TransformThreeBytes({image, table}, from, to);
        for (std::intptr_t plane = 0; isDone && plane < 3; ++plane) {
            CAffineTransformerFPA<unsigned char> transformer(image, table);
            transformer.SelectPlane(plane);
            const PlaneBytes pixels = PixelBytes(target.Image.Handle(), plane);
            ASSERT_EQ(pixels, Plain(transformer, size)) << level << ", plane " << plane;
        }
    });
    return isDone;
}

TEST(FixedPointRowsOfThreePlanes, GiveTheBytesOfThePlainStep) {
    RandomMaps maps(74);
    int number = 0;
    for (const Size &size : {Size{2, 1}, Size{2, 2}, Size{3, 40}, Size{101, 23}})
        for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before})
            for (const std::intptr_t step : {3, -3})
                for (const auto &order : {RedFirst, BlueFirst}) {
                    ThreeByteImage source(size, step, order, fence);
                    std::mt19937 random(9);
                    std::generate_n(source.Block.Data(), 3 * size.Width * size.Height,
                                    [&] { return static_cast<std::uint8_t>(random()); });
                    for (int i = 0; i < 24; ++i, ++number) {
                        const TCoordinateMap map = maps.Next(size);
                        ThreeByteImage target({1 + maps.Length(150), maps.Length(9)}, number % 3 == 0 ? -3 : 3,
                                              BlueFirst, fence);
                        ASSERT_TRUE(CompareThreePlanes(source, target, map)) << "case " << number;
                        ASSERT_FALSE(testing::Test::HasFatalFailure()) << "case " << number << ", " << Describe(map);
                    }
                }
}

TEST(FixedPointRowsOfThreePlanes, AreLeftToEachPlaneInAnyOtherOrderAndWithAnOverlay) {
    const TCoordinateMap map = {0, 0, {1, 0, 0, 1}};
    ThreeByteImage target({9, 9}, 3, BlueFirst, FencedBlock::Fence::Behind);
    ThreeByteImage mixed({9, 9}, 3, Mixed, FencedBlock::Fence::Behind);
    ThreeByteImage overlaid({9, 9}, 3, BlueFirst, FencedBlock::Fence::Behind, 8 | DataTypeOverlay);
    ThreeByteImage usual({9, 9}, 3, RedFirst, FencedBlock::Fence::Behind);
    EXPECT_FALSE(CompareThreePlanes(mixed, target, map));
    EXPECT_FALSE(CompareThreePlanes(overlaid, target, map));
    EXPECT_TRUE(CompareThreePlanes(usual, target, map));
}

} // namespace

// Upright maps sampled in double, at each instruction set level, against the plain step pixel by pixel.
#include "Transformations/UprightSampling.h"

#include <gtest/gtest.h>
#include <sstream>

#include "Support/TestLayouts.h"
#include "Transformations/AffineTransformer.h"
#include "Transformations/FencedImage.h"

namespace {

using namespace TestSupport;
using namespace Transformations;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double None = std::numeric_limits<double>::quiet_NaN();

struct Size {
    std::intptr_t Width, Height;
};

/// What the result's pixels must be.
template <class T>
std::vector<T> PlainPixels(const CLinearInterpolator<T, double> &interpolator, const TCoordinateMap &map,
                           const Size &size) {
    const TMatrix &matrix = map.Matrix;
    std::vector<T> pixels;
    for (std::intptr_t j = 0; j < size.Height; ++j)
        for (std::intptr_t i = 0; i < size.Width; ++i) {
            const auto x = static_cast<double>(i), y = static_cast<double>(j);
            pixels.push_back(interpolator.Sample((x * matrix.A11 + y * matrix.A12) + map.X,
                                                 (x * matrix.A21 + y * matrix.A22) + map.Y));
        }
    return pixels;
}

std::string Describe(const TCoordinateMap &map) {
    std::ostringstream text;
    text << "map " << map.X << ", " << map.Y << ", " << map.Matrix.A11 << ", " << map.Matrix.A12 << ", "
         << map.Matrix.A21 << ", " << map.Matrix.A22;
    return text.str();
}

template <class T>
void CompareWithPlain(Interface::ImageHolder image, const TCoordinateMap &map, const Size &size,
                      PlaneLayout layout = PlaneLayout::Dense) {
    const CAffineTransformer<T> transformer(std::move(image), map);
    const std::vector<T> plain = PlainPixels(transformer.Interpolator, map, size);
    ASSERT_TRUE(IsUpright(map.Matrix));
    AtAllLevels([&](const char *level) {
        LaidOutPlane<T> target(size.Width, size.Height, layout, std::vector<T>(plain.size(), static_cast<T>(93)));
        transformer.Transform(target.View());
        const std::vector<T> pixels = target.Pixels();
        for (std::size_t i = 0; i < plain.size(); ++i)
            ASSERT_TRUE(IsSame(pixels[i], plain[i]))
                << level << ", " << Describe(map) << ", pixel " << i << " of " << size.Width
                << " columns: " << +pixels[i] << " and not " << +plain[i];
    });
}

/// Upright maps to a source of some size: scales of use, turned around or not, and origins in its surroundings.
class UprightMaps {
public:
    explicit UprightMaps(std::uint32_t seed) : random_(seed) {}

    TCoordinateMap Next(const Size &source) {
        const double x = Scale(), y = Scale();
        return {Origin(x, source.Width), Origin(y, source.Height), {x, Zero(), Zero(), y}};
    }
    std::intptr_t Length(std::uint32_t highest) { return 1 + static_cast<std::intptr_t>(random_() % highest); }

private:
    double Scale() {
        const double scales[] = {0.5, 2.0, 1.0, 1.0 / 3, 3.0, 1 / 1.7, 1.7, 0.999, 0.01, 7.3, 1e3, 0.0, -0.0};
        const double scale = scales[random_() % std::size(scales)];
        return random_() % 4 == 0 ? -scale : scale;
    }
    /// A map that turns an axis around starts at the axis' other end.
    double Origin(double scale, std::intptr_t length) {
        const double shift = std::uniform_real_distribution<double>(-3, 3)(random_);
        const double origin = scale < 0 ? static_cast<double>(length - 1) : 0.0;
        const double origins[] = {origin, origin + shift, origin + 0.5, origin - 0.5, std::floor(origin + shift),
                                  -0.0};
        return origins[random_() % std::size(origins)];
    }
    double Zero() { return random_() % 2 == 0 ? 0.0 : -0.0; }

    std::mt19937 random_;
};

TEST(UprightSampling, GoesForMapsWhoseRowsAndColumnsAreFreeOfEachOtherOnly) {
    EXPECT_TRUE(IsUpright({2.0, 0.0, 0.0, 0.5}));
    EXPECT_TRUE(IsUpright({-1.0, -0.0, 0.0, 0.0}));
    EXPECT_TRUE(IsUpright({None, 0.0, -0.0, Infinity}));
    for (const double element : {1.0, -1e-300, std::numeric_limits<double>::denorm_min(), None, Infinity}) {
        EXPECT_FALSE(IsUpright({1.0, element, 0.0, 1.0})) << element;
        EXPECT_FALSE(IsUpright({1.0, 0.0, element, 1.0})) << element;
    }
}

/// Four zeros around a position show its sign: a sum of zeros is negative where all of them are.
template <class T>
void CompareSignsOfZeros() {
    const auto zeroOf = [](unsigned signs, unsigned bit) { return (signs >> bit & 1u) != 0 ? -0.0 : 0.0; };
    const auto image = FakeImage::Planar(2, 2, 1, WordOf<T>());
    for (unsigned pixels = 0; pixels < 16; ++pixels) {
        for (unsigned i = 0; i < 4; ++i) {
            const auto zero = static_cast<T>(zeroOf(pixels, i));
            std::memcpy(image->Pixels.data() + i * sizeof(T), &zero, sizeof(T));
        }
        for (unsigned signs = 0; signs < 16; ++signs)
            for (const double scale : {0.0, -0.0, -0.5, 1.0}) {
                const TMatrix matrix = {scale, zeroOf(signs, 2), zeroOf(signs, 3), scale};
                ASSERT_NO_FATAL_FAILURE(CompareWithPlain<T>(Interface::QueryImage(image->Handle()),
                                                            {zeroOf(signs, 0), zeroOf(signs, 1), matrix}, {3, 3}));
            }
    }
}

TEST(UprightSampling, KeepsTheSignsOfZeros) {
    ASSERT_NO_FATAL_FAILURE(CompareSignsOfZeros<float>());
    ASSERT_NO_FATAL_FAILURE(CompareSignsOfZeros<double>());
}

template <class T>
class UprightPixels : public testing::Test {};
using PixelTypes =
    testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, long, unsigned long, float, double>;
TYPED_TEST_SUITE(UprightPixels, PixelTypes);

TYPED_TEST(UprightPixels, AreThoseOfThePlainStepForEveryLayout) {
    UprightMaps maps(80);
    int number = 0;
    for (const Size &source :
         {Size{1, 1}, Size{1, 9}, Size{9, 1}, Size{2, 2}, Size{3, 17}, Size{67, 5}, Size{41, 30}})
        for (const bool overlay : {false, true}) {
            const TDataType type = WordOf<TypeParam>() | (overlay ? DataTypeOverlay : 0u);
            for (const NamedImage &image : MakeLayouts(source.Width, source.Height, 1, type, 6))
                for (int i = 0; i < 20; ++i, ++number)
                    ASSERT_NO_FATAL_FAILURE(
                        CompareWithPlain<TypeParam>(Interface::QueryImage(image.Get()), maps.Next(source),
                                                    {maps.Length(120), maps.Length(9)}, AllPlaneLayouts[number % 9]))
                        << "case " << number << ", " << image.Name << (overlay ? " with overlay" : "");
        }
}

TYPED_TEST(UprightPixels, AreMadeOfNothingBesideThePixelsOfTheSource) {
    UprightMaps maps(81);
    int number = 0;
    for (const Form form : AllForms)
        for (const Size &source : {Size{1, 1}, Size{1, 9}, Size{9, 1}, Size{16, 3}, Size{17, 4}, Size{64, 16}})
            for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
                FencedImage<TypeParam> image(form, source.Width, source.Height, fence, number % 3 == 0, 5);
                for (int i = 0; i < 40; ++i, ++number)
                    ASSERT_NO_FATAL_FAILURE(CompareWithPlain<TypeParam>(image.Hold(), maps.Next(source),
                                                                        {maps.Length(140), maps.Length(20)}))
                        << "case " << number << ", form " << static_cast<int>(form);
            }
}

TYPED_TEST(UprightPixels, OfColumnsInBlocksOfTheirOwnAreMadeOfNothingBetweenThem) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(TypeParam));
    for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
        const FencedBlock first(3 * sizeof(TypeParam), fence), second(3 * sizeof(TypeParam), fence);
        for (std::uint8_t i = 0; i < 3 * size; ++i)
            first.Data()[i] = second.Data()[i] = static_cast<std::uint8_t>(7 * i);
        const std::intptr_t distance = second.Data() - first.Data();
        for (const bool isTurned : {false, true}) {
            FakeImage image(2, 3);
            image.AddPlane(
                isTurned ? second.Data() : first.Data(), WordOf<TypeParam>(),
                [=](std::intptr_t x) { return isTurned ? -x * distance : x * distance; },
                [=](std::intptr_t y) { return y * size; });
            for (const double column : {0.0, 0.5, 1.0, 1.5}) {
                const TCoordinateMap map = {column, 0.0, {0.0, 0.0, 0.0, 0.75}};
                ASSERT_NO_FATAL_FAILURE(
                    CompareWithPlain<TypeParam>(Interface::QueryImage(image.Handle()), map, {20, 4}));
            }
        }
    }
}

TYPED_TEST(UprightPixels, AgreeWithThePlainStepWherePositionsAreFarAwayOrNone) {
    FencedImage<TypeParam> image(Form::Dense, 40, 30, FencedBlock::Fence::Behind, false, 7);
    const double scales[] = {1.0,   -1.0, 0.0, None, Infinity, -Infinity, 1e300, 4294967296.0, 2147483648.0 / 7,
                             1e-310};
    const double origins[] = {
        0.0,           -0.0, std::nextafter(-1.0, 0.0), -1.0, std::nextafter(40.0, 0.0), 30.0, None, Infinity, -1e300,
        -2147483648.0, 4.5};
    for (const double scale : scales)
        for (const double origin : origins) {
            const TCoordinateMap map = {origin, 3.25, {scale, 0.0, -0.0, 0.5}};
            ASSERT_NO_FATAL_FAILURE(CompareWithPlain<TypeParam>(image.Hold(), map, {45, 5}));
            const TCoordinateMap turned = {3.25, origin, {0.5, -0.0, 0.0, scale}};
            ASSERT_NO_FATAL_FAILURE(CompareWithPlain<TypeParam>(image.Hold(), turned, {9, 35}));
        }
}

TYPED_TEST(UprightPixels, TakeTheNeighboursOfTheLastColumnAndRowFromTheTable) {
    const auto image = FakeImage::Planar(21, 6, 1, WordOf<TypeParam>());
    const auto content = RandomContent(21, 6, 1, WordOf<TypeParam>(), 9);
    std::copy(content[0].begin(), content[0].end(), image->Pixels.begin());
    void *base = nullptr;
    VPAEntry *table = nullptr;
    ASSERT_EQ(image->GetPlaneVPA(0, &base, &table), 0);
    table[21].XEntry = table[3].XEntry;
    table[6].YEntry = table[1].YEntry;
    for (const double scale : {0.5, 1.0, 0.25, 2.0}) {
        const TCoordinateMap map = {0.75, 0.25, {scale, 0.0, 0.0, scale}};
        ASSERT_NO_FATAL_FAILURE(CompareWithPlain<TypeParam>(Interface::QueryImage(image->Handle()), map, {70, 20}));
    }
}

TYPED_TEST(UprightPixels, AreThoseOfThePlainStepInResultsOfManyColumns) {
    FencedImage<TypeParam> image(Form::Padded, 300, 4, FencedBlock::Fence::Behind, true, 10);
    for (const Size &size : {Size{4095, 2}, Size{4096, 2}, Size{4097, 3}, Size{8200, 2}}) {
        const double scale = 298.0 / static_cast<double>(size.Width);
        const TCoordinateMap map = {0.1, 2.9, {scale, 0.0, 0.0, -1.3}};
        ASSERT_NO_FATAL_FAILURE(CompareWithPlain<TypeParam>(image.Hold(), map, size));
        ASSERT_NO_FATAL_FAILURE(
            CompareWithPlain<TypeParam>(image.Hold(), {-100, 0, {0.05, 0, 0, 1}}, size, PlaneLayout::Mirrored));
    }
}

} // namespace

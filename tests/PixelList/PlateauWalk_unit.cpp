// The walk over plateaus against a walk pixel by pixel with a mark of its own for each pixel: the same marks and the
// same answer, for areas that fit the window of bits and for those that do not.
#include "PixelList/PlateauWalk.h"

#include "Image/KernelLevel.h"
#include "Image/VpatAnalyzer.h"
#include "PixelList/MaximaSupport.h"

#include <gtest/gtest.h>
#include <random>

namespace {

using namespace PixelList;
using namespace TestSupport;
using Marks = PixelGrid<std::uint8_t>;

/// Pixel by pixel, as it is told.
template <class T>
bool WalkPlainly(const PixelGrid<T> &pixels, Marks &marks, std::intptr_t x, std::intptr_t y) {
    const T value = pixels.At(x, y);
    bool isMaximum = true;
    std::vector<std::pair<std::intptr_t, std::intptr_t>> places = {{x, y}};
    while (!places.empty()) {
        const auto [column, row] = places.back();
        places.pop_back();
        if (!pixels.Inside(column, row) || marks.At(column, row) != 0 || pixels.At(column, row) < value)
            continue;
        if (pixels.At(column, row) > value) {
            isMaximum = false;
            continue;
        }
        marks.At(column, row) = 1;
        for (std::intptr_t i = 0; i < 9; ++i)
            places.emplace_back(column + i % 3 - 1, row + i / 3 - 1);
    }
    return isMaximum;
}

enum class Form { Any, RunByRun };

/// Walks from every pixel without a mark, with both walks side by side.
template <class T>
void CompareWalks(const PixelGrid<T> &pixels, const Image::PlaneView &plane, Form form, std::mt19937 &random) {
    Marks expected(pixels.Width, pixels.Height);
    MarkMap marks;
    ASSERT_TRUE(marks.Allocate({1, pixels.Width, pixels.Height}));
    for (int i = 0; i < 5; ++i) {
        const auto x = static_cast<std::int32_t>(random() % static_cast<unsigned>(pixels.Width));
        const auto y = static_cast<std::int32_t>(random() % static_cast<unsigned>(pixels.Height));
        marks.Set(x, y);
        expected.At(x, y) = 1;
    }
    DenseRows<T> rows(plane);
    PlateauWalk<T> walk(rows, marks, plane);
    for (std::int32_t y = 0; y < pixels.Height; ++y)
        for (std::int32_t x = 0; x < pixels.Width; ++x) {
            ASSERT_EQ(marks.IsSet(x, y), expected.At(x, y) != 0) << x << ", " << y;
            if (marks.IsSet(x, y) || random() % 3 == 0)
                continue;
            const bool isMaximum = form == Form::Any ? walk.Run(x, y) : walk.WalkRuns(x, y);
            ASSERT_EQ(isMaximum, WalkPlainly(pixels, expected, x, y)) << x << ", " << y;
        }
}

template <class T>
Image::PlaneView DenseView(PixelGrid<T> &pixels, Table &table) {
    const auto size = static_cast<std::intptr_t>(sizeof(T));
    return {reinterpret_cast<char *>(pixels.Values.data()),
            table.Entries(),
            table.Entries(),
            pixels.Width,
            pixels.Height,
            size,
            size,
            size * pixels.Width};
}
template <class T>
Table DenseTable(const PixelGrid<T> &pixels) {
    const auto size = static_cast<std::intptr_t>(sizeof(T));
    return {pixels.Width, pixels.Height, [=](std::intptr_t i) { return i * size; },
            [=, width = pixels.Width](std::intptr_t j) { return j * size * width; }};
}

template <class T>
void CompareOnDenseRows(PixelGrid<T> &pixels, std::mt19937 &random) {
    Table table = DenseTable(pixels);
    const Image::PlaneView plane = DenseView(pixels, table);
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        SCOPED_TRACE(Image::NameOf(level));
        ASSERT_NO_FATAL_FAILURE(CompareWalks(pixels, plane, Form::Any, random));
        ASSERT_NO_FATAL_FAILURE(CompareWalks(pixels, plane, Form::RunByRun, random));
    }
}

template <class T>
class PlateauWalkTest : public testing::Test {};
using Types = testing::Types<char, unsigned char, short, unsigned short, int>;
TYPED_TEST_SUITE(PlateauWalkTest, Types);

TYPED_TEST(PlateauWalkTest, MarksAndAnswersAsTheWalkPixelByPixel) {
    std::mt19937 random(71);
    for (int number = 0; number < 60; ++number) {
        PixelGrid<TypeParam> pixels(1 + random() % 200, 1 + random() % 90);
        // Mostly one value: areas grow large and winding.
        const auto rarity = static_cast<unsigned>(2 + number % 7);
        for (TypeParam &pixel : pixels.Values)
            pixel = static_cast<TypeParam>(random() % rarity != 0 ? 7 : 6 + random() % 3);
        ASSERT_NO_FATAL_FAILURE(CompareOnDenseRows(pixels, random)) << number;
    }
}

TYPED_TEST(PlateauWalkTest, FollowsRunsOfEveryLengthToBothSides) {
    std::mt19937 random(72);
    for (std::intptr_t length = 1; length <= 200; ++length) {
        PixelGrid<TypeParam> pixels(260, 3);
        const std::intptr_t start = static_cast<std::intptr_t>(random() % 60);
        for (std::intptr_t x = start; x < start + length; ++x)
            pixels.At(x, 1) = 5;
        if (length % 3 == 1)
            pixels.At(start + length, static_cast<std::intptr_t>(random() % 3)) = 9;
        if (length % 3 == 2 && start > 0)
            pixels.At(start - 1, static_cast<std::intptr_t>(random() % 3)) = 9;
        ASSERT_NO_FATAL_FAILURE(CompareOnDenseRows(pixels, random)) << length;
    }
}

TEST(PlateauWalk, WorksInEveryLayout) {
    std::mt19937 random(73);
    for (const std::intptr_t width : {5, 70}) {
        PixelGrid<std::uint16_t> pixels(width, 23);
        for (std::uint16_t &pixel : pixels.Values)
            pixel = static_cast<std::uint16_t>(random() % 5 == 0 ? random() % 3 : 1);
        const std::vector<PlaneBytes> content = {pixels.Bytes(), pixels.Bytes()};
        std::vector<NamedImage> images;
        for (const auto &rule : LayoutRules(width, 23, 2, 16))
            images.push_back(MakeFake(rule, content, width, 23, 16));
        for (const auto &rule : PitchRules(width, 23, 2, 16))
            images.push_back(MakeExternal(rule, content, width, 23, 16));
        for (const NamedImage &image : images) {
            const Image::vpat_analyzer facts(image.Get());
            const auto shown = PixelGrid<std::uint16_t>::Of(image.Get(), 1);
            ASSERT_NO_FATAL_FAILURE(CompareWalks(shown, ViewOf(facts, 1), Form::Any, random)) << image.Name;
        }
    }
}

/// A wall of 9 with a passage of 1 that winds through it.
PixelGrid<std::uint8_t> Winding(std::intptr_t width, std::intptr_t height) {
    PixelGrid<std::uint8_t> pixels(width, height, 0);
    for (std::intptr_t y = 0; y < height; ++y)
        for (std::intptr_t x = 0; x < width; ++x) {
            const bool isJoint = y / 2 % 2 == 0 ? x == width - 1 : x == 0;
            pixels.At(x, y) = y % 2 == 0 || isJoint ? 1 : 0;
        }
    return pixels;
}

TEST(PlateauWalk, FollowsAWindingAreaThroughTheWholeImage) {
    std::mt19937 random(74);
    for (const std::intptr_t width : {9, 63, 64, 65, 130}) {
        auto pixels = Winding(width, 41);
        ASSERT_NO_FATAL_FAILURE(CompareOnDenseRows(pixels, random)) << width;
        PixelGrid<std::uint8_t> turned(41, width);
        for (std::intptr_t y = 0; y < width; ++y)
            for (std::intptr_t x = 0; x < 41; ++x)
                turned.At(x, y) = pixels.At(y, x);
        ASSERT_NO_FATAL_FAILURE(CompareOnDenseRows(turned, random)) << width;
    }
}

TEST(PlateauWalk, CoversALargeImageOfEqualPixels) {
    PixelGrid<std::uint8_t> pixels(4096, 3072, 3);
    Table table = DenseTable(pixels);
    const Image::PlaneView plane = DenseView(pixels, table);
    MarkMap marks;
    ASSERT_TRUE(marks.Allocate({1, 4096, 3072}));
    DenseRows<std::uint8_t> rows(plane);
    EXPECT_TRUE(PlateauWalk<std::uint8_t>(rows, marks, plane).Run(2000, 1000));
    for (std::int32_t y = 0; y < 3072; ++y)
        for (std::int32_t x = 0; x < 4096; x += MarkMap::WordMarks)
            ASSERT_EQ(marks.From(x, y), ~MarkMap::Word{0}) << x << ", " << y;
}

} // namespace

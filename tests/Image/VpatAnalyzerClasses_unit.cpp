// What the analysis of an image's tables tells beyond the steps: their classes, interleaving, gaps and memory order.
#include "Image/VpatAnalyzer.h"

#include <stdexcept>

#include "Image/LinearImages.h"
#include "Image/RandomTables.h"
#include "Image/RectangleModel.h"

namespace {

using namespace TestSupport;
using Image::vpat_analyzer;

constexpr TDataType Types[] = {8, 16, 24, 0x220, 0x240}; // 1, 2, 3, 4 and 8 bytes

/// Planes with one step each way, a pixel's bytes from one to the next.
std::unique_ptr<FakeImage> Alike(std::intptr_t width, std::intptr_t height, std::intptr_t planeCount,
                                 std::intptr_t xStep, std::intptr_t yStep, TDataType type) {
    std::vector<PlaneSteps> planes;
    for (std::intptr_t plane = 0; plane < planeCount; ++plane)
        planes.push_back({plane * static_cast<std::intptr_t>(PixelSize(type)), xStep, yStep, type});
    return Linear(width, height, planes);
}

TEST(VpatAnalyzerClasses, TellTheKindOfAColumnStep) {
    for (const TDataType type : Types)
        for (std::intptr_t planes = 1; planes <= 4; ++planes) {
            const auto b = static_cast<std::intptr_t>(PixelSize(type));
            const auto classOf = [&](std::intptr_t step) {
                const auto image = Alike(5, 4, planes, step, 1000, type);
                return vpat_analyzer(image->Handle()).XClass(planes - 1);
            };
            SCOPED_TRACE(testing::Message() << b << " bytes, " << planes << " planes");
            EXPECT_EQ(classOf(0), 0u);
            EXPECT_EQ(classOf(UnevenStep), 0u);
            EXPECT_EQ(classOf(b * planes), 7u);
            EXPECT_EQ(classOf(-b * planes), 15u);
            EXPECT_EQ(classOf(b), planes == 1 ? 7u : 3u);
            EXPECT_EQ(classOf(-b), planes == 1 ? 15u : 11u);
            EXPECT_EQ(classOf(b * planes + 1), 1u);
            EXPECT_EQ(classOf(-b * planes - 1), 1u) << "the sign is not told";
            EXPECT_EQ(classOf(5 * b), 1u);
        }
}

TEST(VpatAnalyzerClasses, TellTheKindOfARowStepByTheLinesWidth) {
    constexpr std::intptr_t width = 5;
    for (const TDataType type : Types)
        for (std::intptr_t planes = 1; planes <= 4; ++planes) {
            const auto b = static_cast<std::intptr_t>(PixelSize(type));
            const auto classOf = [&](std::intptr_t step) {
                const auto image = Alike(width, 4, planes, 3, step, type);
                return vpat_analyzer(image->Handle()).YClass(planes - 1);
            };
            SCOPED_TRACE(testing::Message() << b << " bytes, " << planes << " planes");
            EXPECT_EQ(classOf(0), 0u);
            EXPECT_EQ(classOf(UnevenStep), 0u);
            EXPECT_EQ(classOf(b * width * planes), 7u);
            EXPECT_EQ(classOf(-b * width * planes), 15u);
            EXPECT_EQ(classOf(b * width), planes == 1 ? 7u : 3u);
            EXPECT_EQ(classOf(-b * width), planes == 1 ? 15u : 11u);
            EXPECT_EQ(classOf(b * width * planes + 1), 1u);
            EXPECT_EQ(classOf(b * planes), 1u) << "a column's step is no row's";
        }
}

TEST(VpatAnalyzerClasses, OneColumnOrOneRowHasNone) {
    const auto column = Alike(1, 5, 1, 1, 1, 8), row = Alike(5, 1, 1, 1, 5, 8);
    const vpat_analyzer ofColumn(column->Handle()), ofRow(row->Handle());
    EXPECT_EQ(ofColumn.XClass(0), 0u);
    EXPECT_EQ(ofColumn.YClass(0), 7u);
    EXPECT_EQ(ofRow.XClass(0), 7u);
    EXPECT_EQ(ofRow.YClass(0), 0u);
}

TEST(VpatAnalyzerClasses, PixelsOfNoWidthAreNeverDense) {
    const auto image = Alike(5, 4, 1, 1, 5, 0);
    const vpat_analyzer facts(image->Handle());
    EXPECT_EQ(facts.XClass(0), 1u);
    EXPECT_EQ(facts.YClass(0), 1u);
}

bool Interleaved(const std::unique_ptr<FakeImage> &image) {
    return vpat_analyzer(image->Handle()).IsInterleaved();
}

TEST(VpatAnalyzerInterleaving, OnePlaneIsWhereBothItsStepsAreLinear) {
    EXPECT_TRUE(Interleaved(Alike(5, 4, 1, 1, 5, 8)));
    EXPECT_TRUE(Interleaved(Alike(5, 4, 1, -7, 3, 8)));
    EXPECT_FALSE(Interleaved(Alike(5, 4, 1, UnevenStep, 5, 8)));
    EXPECT_FALSE(Interleaved(Alike(5, 4, 1, 1, UnevenStep, 8)));
    EXPECT_FALSE(Interleaved(Alike(5, 4, 1, 0, 5, 8)));
    EXPECT_FALSE(Interleaved(Alike(1, 4, 1, 1, 5, 8)));
    EXPECT_FALSE(Interleaved(Alike(5, 1, 1, 1, 5, 8)));
}

TEST(VpatAnalyzerInterleaving, SeveralPlanesAreWhereTheirPixelsLieSideBySide) {
    for (const TDataType type : Types) {
        const auto b = static_cast<std::intptr_t>(PixelSize(type));
        EXPECT_TRUE(Interleaved(Alike(5, 4, 3, 3 * b, 15 * b, type)));
        EXPECT_TRUE(Interleaved(Alike(5, 4, 3, 3 * b + 1, 15 * b, type))) << "gaps between the groups";
        EXPECT_TRUE(Interleaved(Alike(5, 4, 3, 3 * b, 15 * b + 1, type))) << "gaps between the rows";
        EXPECT_TRUE(Interleaved(Alike(5, 4, 3, 3 * b, -15 * b, type))) << "bottom-up";
        EXPECT_FALSE(Interleaved(Alike(5, 4, 3, 3 * b - 1, 15 * b, type)));
        EXPECT_FALSE(Interleaved(Alike(5, 4, 3, -3 * b, 15 * b, type))) << "mirrored";
        EXPECT_FALSE(Interleaved(Alike(5, 4, 3, 3 * b, 15 * b - 1, type)));
        EXPECT_FALSE(Interleaved(Alike(5, 1, 3, 3 * b, 15 * b, type))) << "one row has no step";
        EXPECT_FALSE(Interleaved(Alike(5, 4, 3, b, 15 * b, type))) << "by line";
    }
}

TEST(VpatAnalyzerInterleaving, PlanesMayStandInAnyOrderButNotApart) {
    EXPECT_TRUE(Interleaved(Linear(5, 4, {{2, 3, 15}, {0, 3, 15}, {1, 3, 15}})));
    EXPECT_TRUE(Interleaved(Linear(5, 4, {{1, 3, 15}, {0, 3, -15}, {2, 3, 15}}))) << "rows either way";
    EXPECT_FALSE(Interleaved(Linear(5, 4, {{0, 4, 20}, {1, 4, 20}, {3, 4, 20}})));
    EXPECT_FALSE(Interleaved(Linear(5, 4, {{0, 6, 30}, {2, 6, 30}, {4, 6, 30}}))) << "equal, but not a pixel's bytes";
    EXPECT_FALSE(Interleaved(Linear(5, 4, {{0, 3, 15}, {0, 3, 15}, {1, 3, 15}})));
}

TEST(VpatAnalyzerInterleaving, PlanesMustHaveOneTypeAndOneStep) {
    EXPECT_FALSE(Interleaved(Linear(5, 4, {{0, 2, 10, 8}, {1, 2, 10, 0x108}})));
    EXPECT_FALSE(Interleaved(Linear(5, 4, {{0, 2, 10}, {1, 3, 10}})));
    EXPECT_FALSE(Interleaved(Linear(5, 4, {{0, 3, 15}, {1, 2, 15}})));
    EXPECT_FALSE(Interleaved(Linear(5, 4, {{0, 2, 10}, {1, 2, 11}})));
}

TEST(VpatAnalyzerInterleaving, GoesByTheFirstPixelAndNotByTheBase) {
    FakeImage image(5, 4, 64);
    for (int plane = 0; plane < 3; ++plane) // the same base, as an image over a pointer has it
        image.AddPlane(
            image.Pixels.data(), 8, [plane](std::intptr_t x) { return 3 * x + plane - 20; },
            [](std::intptr_t y) { return 15 * y + 20; });
    EXPECT_TRUE(vpat_analyzer(image.Handle()).IsInterleaved());
    EXPECT_EQ(static_cast<void *>(vpat_analyzer(image.Handle()).FirstPixel(2)), image.Pixels.data() + 2);
}

std::intptr_t Gap(const std::unique_ptr<FakeImage> &image) {
    return vpat_analyzer(image->Handle()).ColumnGap();
}

TEST(VpatAnalyzerColumnGap, OfAnInterleavedImageIsWhatLiesBetweenItsGroups) {
    EXPECT_EQ(Gap(Alike(5, 4, 3, 3, 15, 8)), 0);
    EXPECT_EQ(Gap(Alike(5, 4, 3, 4, 20, 8)), 1);
    EXPECT_EQ(Gap(Alike(5, 4, 2, 11, 55, 0x220)), 3);
    EXPECT_EQ(Gap(Alike(5, 4, 1, 2, 10, 16)), 0);
    EXPECT_EQ(Gap(Alike(5, 4, 1, 7, 35, 16)), 5);
    EXPECT_EQ(Gap(Alike(5, 4, 1, -2, 10, 16)), -4) << "one plane counts as interleaved, either way";
}

TEST(VpatAnalyzerColumnGap, OfOtherImagesTellsWhetherAllPlanesAreDense) {
    EXPECT_EQ(Gap(Linear(5, 4, {{0, 1, 5}, {20, 1, 5}})), 0);
    EXPECT_EQ(Gap(Linear(5, 4, {{0, 1, 9}, {40, 1, 7}})), 0) << "rows are not asked";
    EXPECT_EQ(Gap(Linear(5, 4, {{0, 1, 5}, {40, 2, 10}})), 0) << "classes 3 and 7 have 3 in common";
    EXPECT_EQ(Gap(Linear(5, 4, {{0, -1, 5}, {40, -1, 5}})), -1);
    EXPECT_EQ(Gap(Linear(5, 4, {{0, 1, 5}, {40, -1, 5}})), 0) << "and so have 3 and 11";
    EXPECT_EQ(Gap(Linear(5, 4, {{0, 1, 5}, {40, UnevenStep, 5}})), -1);
    EXPECT_EQ(Gap(Linear(5, 4, {{0, 1, 5}, {40, 4, 20}})), -1);
    EXPECT_EQ(Gap(Linear(5, 1, {{0, 1, 5}})), -1) << "one row: class 7 is not 3";
}

TEST(VpatAnalyzerOrder, GoesByTheFirstPixelsAddress) {
    const auto image = Linear(5, 4, {{40, 1, 5}, {0, -1, -5}, {80, 1, -5}, {20, 1, 5}});
    EXPECT_EQ(vpat_analyzer(image->Handle()).MemoryOrder(), (std::vector<std::intptr_t>{1, 3, 0, 2}));
}

TEST(VpatAnalyzerOrder, OneDatatypeIsToldOfAllPlanes) {
    const auto one = Linear(5, 4, {{0, 1, 5}, {20, 1, 5}});
    const auto two = Linear(5, 4, {{0, 1, 5}, {20, 1, 5}, {40, 1, 5, 0x108}});
    FakeImage none(5, 4);
    EXPECT_TRUE(vpat_analyzer(one->Handle()).HasOneDatatype());
    EXPECT_FALSE(vpat_analyzer(two->Handle()).HasOneDatatype());
    EXPECT_TRUE(vpat_analyzer(none.Handle()).HasOneDatatype());
}

TEST(VpatAnalyzerAccessors, AcceptTheNumberBehindTheLastPlane) {
    const auto image = Alike(5, 4, 2, 2, 10, 8);
    const vpat_analyzer facts(image->Handle());
    EXPECT_EQ(facts.PlaneBase(2), nullptr);
    EXPECT_EQ(facts.Table(2), nullptr);
    EXPECT_EQ(facts.Datatype(2), 0u);
    EXPECT_EQ(facts.XStep(2), 0);
    EXPECT_EQ(facts.YStep(2), 0);
    EXPECT_EQ(facts.XClass(2), 0u);
    EXPECT_EQ(facts.YClass(2), 0u);
}

TEST(VpatAnalyzerAccessors, RefuseAnyOtherNumber) {
    const auto image = Alike(5, 4, 2, 2, 10, 8);
    const vpat_analyzer facts(image->Handle());
    const std::function<void(std::intptr_t)> accessors[] = {
        [&](auto plane) { static_cast<void>(facts.PlaneBase(plane)); },
        [&](auto plane) { static_cast<void>(facts.Table(plane)); },
        [&](auto plane) { static_cast<void>(facts.Datatype(plane)); },
        [&](auto plane) { static_cast<void>(facts.XStep(plane)); },
        [&](auto plane) { static_cast<void>(facts.YStep(plane)); },
        [&](auto plane) { static_cast<void>(facts.XClass(plane)); },
        [&](auto plane) { static_cast<void>(facts.YClass(plane)); }};
    for (const auto &accessor : accessors)
        for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{3}, INTPTR_MAX, INTPTR_MIN}) {
            try {
                accessor(plane);
                ADD_FAILURE() << "no exception for plane " << plane;
            } catch (const std::out_of_range &error) {
                EXPECT_STREQ(error.what(), "invalid index");
            }
        }
}

TEST(VpatAnalyzerFacts, OneUnevenEntryTakesTheStepOfItsAxisOnly) {
    for (const auto &[width, height] : {std::pair{9, 3}, {3, 9}, {7, 7}, {2, 9}, {9, 2}, {9, 1}, {1, 9}, {2, 2}}) {
        const auto factsWith = [&, w = width, h = height](int oddColumn, int oddRow) {
            FakeImage image(w, h, 512);
            image.AddPlane(
                image.Pixels.data() + 256, 8, [=](std::intptr_t x) { return 3 * x + (x == oddColumn ? 1 : 0); },
                [=](std::intptr_t y) { return -5 * y + (y == oddRow ? 1 : 0); });
            const vpat_analyzer facts(image.Handle());
            return std::pair{facts.XStep(0), facts.YStep(0)};
        };
        const std::intptr_t x = width > 1 ? 3 : 0, y = height > 1 ? -5 : 0;
        EXPECT_EQ(factsWith(-1, -1), (std::pair{x, y}));
        for (int odd = 0; odd < width && width > 2; ++odd)
            EXPECT_EQ(factsWith(odd, -1), (std::pair{std::intptr_t{0}, y})) << odd << " of " << width;
        for (int odd = 0; odd < height && height > 2; ++odd)
            EXPECT_EQ(factsWith(-1, odd), (std::pair{x, std::intptr_t{0}})) << odd << " of " << height;
    }
}

TEST(VpatAnalyzerFacts, AreThoseOfTheTablesForLayoutsOfAnyKind) {
    int interleaved = 0;
    for (std::uint64_t number = 0; number < 4000; ++number) {
        Random random(number);
        ImageForm form{static_cast<Family>(number % FamilyCount), Draw(random, 1, 9), Draw(random, 1, 9), {}};
        form.Types.assign(static_cast<std::size_t>(Draw(random, 1, 4)), Types[Draw(random, 0, 4)]);
        const RandomImage image(form, random);
        const vpat_analyzer facts(image.Get());
        const ModelImage model(image.Get());
        SCOPED_TRACE(testing::Message() << "case " << number << ", " << FamilyNames[number % FamilyCount]);
        for (std::intptr_t plane = 0; plane < facts.Planes(); ++plane) {
            ASSERT_EQ(facts.XStep(plane), model[plane].XStep);
            ASSERT_EQ(facts.YStep(plane), model[plane].YStep);
            ASSERT_EQ(facts.XClass(plane), model.XClass(plane));
            ASSERT_EQ(facts.YClass(plane), model.YClass(plane));
        }
        ASSERT_EQ(facts.IsInterleaved(), model.IsInterleaved());
        ASSERT_EQ(facts.ColumnGap(), model.ColumnGap());
        // Planes with one first pixel have no order.
        ASSERT_TRUE(form.Kind == Family::SharedMemory || facts.MemoryOrder() == model.MemoryOrder());
        interleaved += model.IsInterleaved() && facts.Planes() > 1 ? 1 : 0;
    }
    EXPECT_GT(interleaved, 200);
}

} // namespace

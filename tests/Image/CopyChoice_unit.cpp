// What is left of a rectangle, which numbered method is chosen for it, and which methods are refused.
#include "Image/CopyChoice.h"

#include <limits>
#include <stdexcept>

#include "Image/LinearImages.h"
#include "Image/RandomTables.h"
#include "Image/RectangleModel.h"
#include "Interface/ImageKernelException.h"

namespace {

using namespace TestSupport;
using Image::ChooseCopy;
using Image::ChooseCopyAll;
using Image::ClipRect;
using Image::CopyMethod;
using Image::PixelPosition;
using Image::PixelRectangle;
using Image::ValidateCopy;
using Image::vpat_analyzer;

using ImagePtr = std::unique_ptr<FakeImage>;

// ---- ClipRect

/// A rectangle and position, and what they become; for a source of 10 x 8 and a target of 6 x 5.
struct Clipping {
    PixelRectangle Rectangle;
    PixelPosition At;
    bool Left;
    PixelRectangle ClippedRectangle{};
    PixelPosition ClippedAt{};
};

void ExpectClipping(const Clipping &one) {
    const auto source = FakeImage::Planar(10, 8, 1, 8), target = FakeImage::Planar(6, 5, 1, 8);
    PixelRectangle r = one.Rectangle;
    PixelPosition at = one.At;
    const std::string where =
        testing::PrintToString(std::vector<std::int64_t>{r.Left, r.Top, r.Right, r.Bottom, at.X, at.Y});
    EXPECT_EQ(ClipRect(vpat_analyzer(source->Handle()), vpat_analyzer(target->Handle()), r, at), one.Left) << where;
    if (!one.Left)
        return;
    const PixelRectangle &e = one.ClippedRectangle;
    EXPECT_EQ((std::vector{r.Left, r.Top, r.Right, r.Bottom}), (std::vector{e.Left, e.Top, e.Right, e.Bottom}))
        << where;
    EXPECT_EQ((std::vector{at.X, at.Y}), (std::vector{one.ClippedAt.X, one.ClippedAt.Y})) << where;
}

TEST(ClipRect, LeavesWhatFits) {
    ExpectClipping({{1, 2, 3, 4}, {2, 1}, true, {1, 2, 3, 4}, {2, 1}});
    ExpectClipping({{9, 7, 9, 7}, {5, 4}, true, {9, 7, 9, 7}, {5, 4}});
}

TEST(ClipRect, OrdersTheSides) {
    ExpectClipping({{3, 4, 1, 2}, {0, 0}, true, {1, 2, 3, 4}, {0, 0}});
}

TEST(ClipRect, NothingIsLeftOfWhatLiesOutside) {
    for (const Clipping &one : {Clipping{{10, 0, 12, 3}, {0, 0}, false},
                                {{0, 8, 3, 9}, {0, 0}, false},
                                {{0, 0, 3, 3}, {6, 0}, false},
                                {{0, 0, 3, 3}, {0, 5}, false},
                                {{0, -9, 3, -1}, {0, 0}, false},
                                {{-9, 0, -1, 3}, {0, 0}, false}})
        ExpectClipping(one);
}

TEST(ClipRect, ANegativeCornerMovesTheTarget) {
    ExpectClipping({{-2, -3, 2, 1}, {1, 0}, true, {0, 0, 2, 1}, {3, 3}});
}

TEST(ClipRect, LimitsTheRectangleToTheSourceAndTheTarget) {
    ExpectClipping({{8, 6, 99, 99}, {0, 0}, true, {8, 6, 9, 7}, {0, 0}});
    ExpectClipping({{0, 0, 9, 7}, {2, 3}, true, {0, 0, 3, 1}, {2, 3}});
}

TEST(ClipRect, ATargetThatIsMovedOutLeavesNothingOrAnEmptyRectangle) {
    ExpectClipping({{-4, 0, 2, 1}, {2, 0}, true, {0, 0, -1, 1}, {6, 0}});
    ExpectClipping({{-5, 0, 2, 1}, {2, 0}, false});
    ExpectClipping({{0, -3, 2, 1}, {0, 2}, true, {0, 0, 2, -1}, {0, 5}});
    ExpectClipping({{0, -4, 2, 1}, {0, 2}, false});
}

TEST(ClipRect, ANegativeTargetPositionMovesTheCornerAndStaysNegative) {
    // Required: a target position left of or above the image is not brought to 0.
    ExpectClipping({{1, 2, 5, 6}, {-2, -1}, true, {3, 3, 5, 6}, {-2, -1}});
    ExpectClipping({{1, 2, 5, 6}, {-5, 0}, true, {6, 2, 5, 6}, {-5, 0}});
    ExpectClipping({{1, 2, 5, 6}, {-6, 0}, false});
    ExpectClipping({{0, 0, 9, 7}, {-2, 0}, true, {2, 0, 9, 4}, {-2, 0}}); // the target's width is not asked
}

TEST(ClipRect, TakesTheLargestNumbers) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    ExpectClipping({{lowest, lowest, highest, highest}, {lowest, lowest}, true, {0, 0, 5, 4}, {0, 0}});
    ExpectClipping({{lowest, 0, highest, 0}, {0, 0}, false});
    ExpectClipping({{0, 0, highest, highest}, {lowest, lowest}, false});
    ExpectClipping({{highest, highest, highest, highest}, {0, 0}, false});
}

// ---- ChooseCopy

/// The method for plane 0 of both images.
CopyMethod Choice(const ImagePtr &source, const ImagePtr &target, bool wholeLines = false) {
    return ChooseCopy(vpat_analyzer(source->Handle()), 0, vpat_analyzer(target->Handle()), 0, wholeLines);
}
CopyMethod ChoiceOfAll(const ImagePtr &source, const ImagePtr &target, bool wholeLines = false) {
    return ChooseCopyAll(vpat_analyzer(source->Handle()), vpat_analyzer(target->Handle()), wholeLines);
}

ImagePtr Dense() {
    return Linear(5, 4, {{0, 1, 5}});
}
ImagePtr Scattered() {
    return Linear(5, 4, {{0, UnevenStep, 90}});
}
ImagePtr Spread() {
    return Linear(5, 4, {{0, 7, 40}});
}

TEST(ChooseCopy, GivesTheNumbersTheirNames) {
    EXPECT_EQ(static_cast<int>(CopyMethod::CopyIncompatible), 0);
    EXPECT_EQ(static_cast<int>(CopyMethod::CopyTableToTable), 1);
    EXPECT_EQ(static_cast<int>(CopyMethod::CopyTableToLinear), 2);
    EXPECT_EQ(static_cast<int>(CopyMethod::CopyLinearToTable), 3);
    EXPECT_EQ(static_cast<int>(CopyMethod::CopyLinearToLinear), 4);
    EXPECT_EQ(static_cast<int>(CopyMethod::CopyLineByLine), 5);
    EXPECT_EQ(static_cast<int>(CopyMethod::CopyWhole), 6);
    EXPECT_EQ(static_cast<int>(CopyMethod::CopyPerPlane), 7);
}

TEST(ChooseCopy, UnequalTypesAreIncompatible) {
    EXPECT_EQ(Choice(Dense(), Linear(5, 4, {{0, 1, 5, 0x108}})), CopyMethod::CopyIncompatible);
    EXPECT_EQ(Choice(Scattered(), Linear(5, 4, {{0, 2, 10, 16}})), CopyMethod::CopyIncompatible);
}

TEST(ChooseCopy, TablesWithoutAStepGoByTheTable) {
    EXPECT_EQ(Choice(Scattered(), Scattered()), CopyMethod::CopyTableToTable);
    EXPECT_EQ(Choice(Scattered(), Dense()), CopyMethod::CopyTableToLinear);
    EXPECT_EQ(Choice(Scattered(), Spread()), CopyMethod::CopyTableToLinear);
    EXPECT_EQ(Choice(Dense(), Scattered()), CopyMethod::CopyLinearToTable);
    EXPECT_EQ(Choice(Spread(), Scattered()), CopyMethod::CopyLinearToTable);
    EXPECT_EQ(Choice(Linear(1, 4, {{0, 1, 5}}), Dense()), CopyMethod::CopyTableToLinear) << "one column has no step";
}

TEST(ChooseCopy, RowsAreNotAskedForALinearCopy) {
    EXPECT_EQ(Choice(Linear(5, 4, {{0, 1, UnevenStep}}), Dense()), CopyMethod::CopyLineByLine);
    EXPECT_EQ(Choice(Linear(5, 4, {{0, 7, UnevenStep}}), Dense()), CopyMethod::CopyLinearToLinear);
}

TEST(ChooseCopy, ColumnsThatAreNotDenseAlikeGoByTheirSteps) {
    EXPECT_EQ(Choice(Spread(), Dense()), CopyMethod::CopyLinearToLinear);
    EXPECT_EQ(Choice(Dense(), Spread()), CopyMethod::CopyLinearToLinear);
    EXPECT_EQ(Choice(Spread(), Spread()), CopyMethod::CopyLinearToLinear);
    EXPECT_EQ(Choice(Dense(), Linear(5, 4, {{0, -1, 5}})), CopyMethod::CopyLinearToLinear);
}

TEST(ChooseCopy, OnePlaneOfAnInterleavedImageGoesByItsSteps) {
    const auto interleaved = [] { return Linear(5, 4, {{0, 2, 10}, {1, 2, 10}}); };
    EXPECT_EQ(Choice(interleaved(), interleaved(), true), CopyMethod::CopyLinearToLinear);
    EXPECT_EQ(Choice(interleaved(), Linear(5, 4, {{0, 1, 5}, {20, 1, 5}})), CopyMethod::CopyLinearToLinear);
    // Equal steps, dense for the one plane of twice the width and grouped for the two others.
    EXPECT_EQ(Choice(Linear(5, 4, {{0, 2, 10, 16}}), Linear(5, 4, {{0, 4, 20, 16}, {2, 4, 20, 16}})),
              CopyMethod::CopyLinearToLinear);
}

TEST(ChooseCopy, DenseColumnsOfOneStepGoLineByLine) {
    EXPECT_EQ(Choice(Dense(), Dense()), CopyMethod::CopyLineByLine);
    EXPECT_EQ(Choice(Linear(5, 4, {{0, -1, 5}}), Linear(5, 4, {{0, -1, 9}})), CopyMethod::CopyLineByLine);
    EXPECT_EQ(Choice(Linear(5, 4, {{0, 8, 40, 0x240}}), Linear(9, 9, {{0, 8, 72, 0x240}}), true),
              CopyMethod::CopyLineByLine)
        << "the widths differ";
    EXPECT_EQ(Choice(Dense(), Linear(5, 4, {{0, 1, 6}}), true), CopyMethod::CopyLineByLine)
        << "the row classes differ";
    EXPECT_EQ(Choice(Dense(), Linear(5, 4, {{0, 1, -5}}), true), CopyMethod::CopyLineByLine);
}

TEST(ChooseCopy, WholeLinesOfEqualLayoutGoAsAWhole) {
    EXPECT_EQ(Choice(Dense(), Dense(), true), CopyMethod::CopyWhole);
    EXPECT_EQ(Choice(Dense(), Linear(5, 9, {{0, 1, 5}}), true), CopyMethod::CopyWhole) << "the heights may differ";
    EXPECT_EQ(Choice(Linear(5, 4, {{0, -1, -5}}), Linear(5, 4, {{0, -1, -5}}), true), CopyMethod::CopyWhole);
    EXPECT_EQ(Choice(Linear(5, 4, {{0, 1, 8}}), Linear(5, 4, {{0, 1, 9}}), true), CopyMethod::CopyWhole)
        << "rows of class 1, whatever their step";
    EXPECT_EQ(Choice(Linear(5, 1, {{0, 1, 5}}), Linear(5, 1, {{0, 1, 9}}), true), CopyMethod::CopyWhole) << "one row";
}

TEST(ChooseCopy, SeveralPlanesGoAsAWholeWhereAllAreDense) {
    const auto planar = [] { return Linear(5, 4, {{0, 1, 5}, {20, 1, 5}}); };
    const auto mixed = [] { return Linear(5, 4, {{0, 1, 5}, {20, 2, 10}}); };
    EXPECT_EQ(Choice(planar(), planar(), true), CopyMethod::CopyWhole);
    EXPECT_EQ(Choice(mixed(), planar(), true), CopyMethod::CopyLineByLine);
    EXPECT_EQ(Choice(planar(), mixed(), true), CopyMethod::CopyLineByLine);
    // One plane of rows of class 7 beside two of rows of class 3.
    EXPECT_EQ(Choice(Dense(), planar(), true), CopyMethod::CopyLineByLine);
    // Rows of class 7 on both sides: two planes line by line in turn.
    EXPECT_EQ(Choice(Dense(), Linear(5, 4, {{0, 1, 10}, {5, 1, 10}}), true), CopyMethod::CopyWhole);
    EXPECT_EQ(Choice(Linear(5, 4, {{0, -1, 5}, {20, -1, 5}}), Linear(5, 4, {{0, -1, 5}, {20, -1, 5}}), true),
              CopyMethod::CopyLineByLine)
        << "mirrored planes are not of class 3";
}

TEST(ChooseCopy, UnequalGapsBetweenColumnsKeepTheWholeFromBeingCopied) {
    // One plane without a row step is not interleaved: its gap is -1. Two dense planes have the gap 0.
    const auto oneRow = [] { return Linear(5, 1, {{0, 1, 5}}); };
    EXPECT_EQ(Choice(oneRow(), Linear(5, 4, {{0, 1, UnevenStep}}), true), CopyMethod::CopyWhole);
    EXPECT_EQ(Choice(oneRow(), Linear(5, 1, {{0, 1, 1}, {9, 1, 1}}), true), CopyMethod::CopyLineByLine);
    EXPECT_EQ(Choice(Linear(5, 1, {{0, 1, 1}, {9, 1, 1}}), oneRow(), true), CopyMethod::CopyLineByLine);
}

// ---- ChooseCopyAll

ImagePtr Grouped(std::intptr_t yStep = 15) {
    return Linear(5, 4, {{0, 3, yStep}, {1, 3, yStep}, {2, 3, yStep}});
}

TEST(ChooseCopyAll, OfOnePlaneIsTheChoiceForThatPlane) {
    EXPECT_EQ(ChoiceOfAll(Scattered(), Dense()), CopyMethod::CopyTableToLinear);
    EXPECT_EQ(ChoiceOfAll(Dense(), Dense(), true), CopyMethod::CopyWhole);
    EXPECT_EQ(ChoiceOfAll(Dense(), Linear(5, 4, {{0, 2, 10, 16}})), CopyMethod::CopyIncompatible);
}

TEST(ChooseCopyAll, OneUnequalTypeIsIncompatible) {
    EXPECT_EQ(ChoiceOfAll(Linear(5, 4, {{0, 1, 5}, {20, 1, 5}}), Linear(5, 4, {{0, 1, 5}, {20, 1, 5, 0x108}})),
              CopyMethod::CopyIncompatible);
}

TEST(ChooseCopyAll, GroupsOfEqualLayoutGoTogether) {
    EXPECT_EQ(ChoiceOfAll(Grouped(), Grouped()), CopyMethod::CopyLineByLine);
    EXPECT_EQ(ChoiceOfAll(Grouped(), Grouped(), true), CopyMethod::CopyWhole);
    EXPECT_EQ(ChoiceOfAll(Grouped(), Grouped(18), true), CopyMethod::CopyLineByLine);
    EXPECT_EQ(ChoiceOfAll(Grouped(), Grouped(-15), true), CopyMethod::CopyLineByLine);
    EXPECT_EQ(ChoiceOfAll(Grouped(-15), Grouped(-15), true), CopyMethod::CopyWhole);
    const auto spaced = [] { return Linear(5, 4, {{0, 4, 20}, {1, 4, 20}, {2, 4, 20}}); };
    EXPECT_EQ(ChoiceOfAll(spaced(), spaced(), true), CopyMethod::CopyWhole);
}

TEST(ChooseCopyAll, EverythingElseGoesPlaneByPlane) {
    const auto planar = [] { return Linear(5, 4, {{0, 1, 5}, {20, 1, 5}, {40, 1, 5}}); };
    EXPECT_EQ(ChoiceOfAll(planar(), planar(), true), CopyMethod::CopyPerPlane);
    EXPECT_EQ(ChoiceOfAll(planar(), Grouped()), CopyMethod::CopyPerPlane);
    EXPECT_EQ(ChoiceOfAll(Grouped(), planar()), CopyMethod::CopyPerPlane);
    EXPECT_EQ(ChoiceOfAll(Grouped(), Linear(5, 4, {{2, 3, 15}, {1, 3, 15}, {0, 3, 15}})), CopyMethod::CopyPerPlane)
        << "another order";
    const auto spaced = [](std::intptr_t step) {
        return Linear(5, 4, {{0, step, 5 * step}, {1, step, 5 * step}, {2, step, 5 * step}});
    };
    EXPECT_EQ(ChoiceOfAll(spaced(4), spaced(5)), CopyMethod::CopyPerPlane) << "one class, unequal steps";
    EXPECT_EQ(ChoiceOfAll(Linear(5, 1, {{0, 2, 10}, {1, 2, 10}}), Linear(5, 1, {{0, 2, 10}, {1, 2, 10}})),
              CopyMethod::CopyPerPlane)
        << "one row has no step";
}

TEST(ChooseCopyAll, AndChooseCopyGoByTheTablesAlone) {
    constexpr TDataType types[] = {8, 0x108, 16, 24, 0x240};
    for (std::uint64_t number = 0; number < 6000; ++number) {
        Random random(number);
        ImageForm form{
            static_cast<Family>(Draw(random, 0, FamilyCount - 1)), Draw(random, 1, 6), Draw(random, 1, 6), {}};
        form.Types.assign(static_cast<std::size_t>(Draw(random, 1, 3)), types[Draw(random, 0, 4)]);
        const RandomImage first(form, random);
        if (OneIn(random, 2))
            form.Kind = static_cast<Family>(Draw(random, 0, FamilyCount - 1));
        if (OneIn(random, 9))
            form.Types.back() = 8;
        if (OneIn(random, 3))
            form.Width = Draw(random, 1, 6);
        const RandomImage second(form, random);
        const vpat_analyzer source(first.Get()), target(second.Get());
        const ModelImage sourceModel(first.Get()), targetModel(second.Get());
        for (const bool whole : {false, true}) {
            ASSERT_EQ(static_cast<int>(ChooseCopyAll(source, target, whole)),
                      MethodModelOfAll(sourceModel, targetModel, whole))
                << number;
            for (std::intptr_t plane = 0; plane < source.Planes(); ++plane)
                ASSERT_EQ(static_cast<int>(ChooseCopy(source, plane, target, 0, whole)),
                          MethodModel(sourceModel, plane, targetModel, 0, whole))
                    << number;
        }
    }
}

} // namespace

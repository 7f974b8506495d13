// What FindSubPixelMaxima and FindMaximaEx select: candidates, thresholds, the order of the list, rectangles, sizes.
#include "PixelList/MaximaSupport.h"

#include <chrono>

namespace {

using namespace TestSupport;

TEST(FindSubPixelMaxima, GivesTrueAndAListOfDimension3WithOneReference) {
    const auto grid = Digits({".....", "..7..", "....."});
    const auto image = ImageOf(grid);
    void *list = UntouchedPointer();
    ClearReports();
    EXPECT_TRUE(FindSubPixelMaxima(image->Handle(), 0, 0, 0, 4, 2, 0, FitNone, 0, &list, 1.0));
    ExpectNoReport();
    EXPECT_EQ(ReadSpots(list), (Spots{{2, 1, 7}}));
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(image->Pixels, grid.Bytes());
    EXPECT_TRUE(ReleaseObject(list));
}

TEST(FindSubPixelMaxima, WithoutAMaximumTheListIsEmptyAndTheResultTrue) {
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::uint8_t>(4, 3), Everything), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::uint8_t>(4, 3, 9), Everything, {0, 10.0}), Spots{});
}

TEST(FindSubPixelMaxima, FindsAPeakAnywhereAlsoAtBordersAndCorners) {
    for (const PixelRectangle &r : {Everything, PixelRectangle{1, 1, 5, 3}})
        for (std::intptr_t y = 1; y <= 3; ++y)
            for (std::intptr_t x = 1; x <= 5; ++x) {
                PixelGrid<std::uint16_t> grid(7, 5);
                grid.At(x, y) = 500;
                EXPECT_EQ(SubPixelMaxima(grid, r), (Spots{{static_cast<double>(x), static_cast<double>(y), 500}}));
            }
    for (const std::intptr_t x : {0, 3, 6})
        for (const std::intptr_t y : {0, 2, 4}) {
            PixelGrid<double> grid(7, 5);
            grid.At(x, y) = 0.5;
            EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, 0.25}),
                      (Spots{{static_cast<double>(x), static_cast<double>(y), 0.5}}));
        }
}

TEST(FindSubPixelMaxima, EachPixelOfAPlateauIsACandidate) {
    const auto grid = Digits({"......", ".666..", ".66...", "......"});
    EXPECT_EQ(SubPixelMaxima(grid, Everything), (Spots{{1, 1, 6}, {2, 1, 6}, {3, 1, 6}, {1, 2, 6}, {2, 2, 6}}));
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {1}), (Spots{{1, 1, 6}, {3, 1, 6}}));
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {2}), (Spots{{1, 1, 6}}));
}

TEST(FindSubPixelMaxima, AGreaterNeighbourRulesOutItsNeighboursOnlyAndNotTheirPlateau) {
    EXPECT_EQ(SubPixelMaxima(Digits({".......", ".66669.", "......."}), Everything),
              (Spots{{5, 1, 9}, {1, 1, 6}, {2, 1, 6}, {3, 1, 6}}));
    const std::intptr_t steps[8][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
    for (const auto &step : steps) {
        PixelGrid<std::uint8_t> grid(5, 5);
        grid.At(2, 2) = 5;
        grid.At(2 + step[0], 2 + step[1]) = 6;
        EXPECT_EQ(SubPixelMaxima(grid, Everything),
                  (Spots{{2.0 + static_cast<double>(step[0]), 2.0 + static_cast<double>(step[1]), 6}}));
    }
}

TEST(FindSubPixelMaxima, ComesOutInDescendingOrderWithEqualPeaksInScanOrder) {
    EXPECT_EQ(SubPixelMaxima(Digits({"5.3.5.9", ".......", "3.5.1.3"}), Everything),
              (Spots{{6, 0, 9}, {0, 0, 5}, {4, 0, 5}, {2, 2, 5}, {2, 0, 3}, {0, 2, 3}, {6, 2, 3}, {4, 2, 1}}));
}

TEST(FindSubPixelMaxima, TakesTheStrongestAndDropsWhatIsWithinItsLocality) {
    const auto grid = Digits({"..........", ".7..8..9..", ".........."});
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {2}), (Spots{{7, 1, 9}, {4, 1, 8}, {1, 1, 7}}));
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {3}), (Spots{{7, 1, 9}, {1, 1, 7}})) << "the 8 drops nothing itself";
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {6}), (Spots{{7, 1, 9}}));
    EXPECT_EQ(SubPixelMaxima(Digits({"5..5..5"}), Everything, {3}), (Spots{{0, 0, 5}, {6, 0, 5}}))
        << "of equal ones the first stands";
    const auto diagonal = Digits({"9....", ".....", ".....", "...5."});
    EXPECT_EQ(SubPixelMaxima(diagonal, Everything, {2}), (Spots{{0, 0, 9}, {3, 3, 5}}));
    EXPECT_EQ(SubPixelMaxima(diagonal, Everything, {3}), (Spots{{0, 0, 9}}));
}

TEST(FindSubPixelMaxima, ANegativeLocalityActsAsZeroAndALargeOneLeavesOnePeak) {
    const auto grid = Digits({"5.3.5.9", ".......", "355.1.3"});
    const Spots all = SubPixelMaxima(grid, Everything, {0});
    EXPECT_EQ(all.size(), 8u);
    for (const std::int64_t locality : {std::int64_t{-1}, std::int64_t{-2}, Lowest64 + 1, Lowest64})
        EXPECT_EQ(SubPixelMaxima(grid, Everything, {locality}), all) << locality;
    for (const std::int64_t locality : {std::int64_t{6}, std::int64_t{1} << 32, Highest64 - 1, Highest64})
        EXPECT_EQ(SubPixelMaxima(grid, Everything, {locality}), (Spots{{6, 0, 9}})) << locality;
}

TEST(FindSubPixelMaxima, TheLowestValueOfATypeIsNeverReturned) {
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::uint8_t>(3, 2), Everything, {0, 0.0}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::uint64_t>(3, 2), Everything, {0, 0.0}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::int8_t>(3, 2, -128), Everything, {0, -128.0}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::int16_t>(3, 2, -32768), Everything, {0, -32768.0}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::int64_t>(3, 2, Lowest64), Everything, {0, -1e300}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<float>(3, 2, -3.4028235e38f), Everything, {0, -Infinity}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<double>(3, 2, -1.7976931348623157e308), Everything, {0, -Infinity}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<double>(3, 2, -Infinity), Everything, {0, -Infinity}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::int8_t>(2, 1, -127), Everything, {0, -128.0}),
              (Spots{{0, 0, -127}, {1, 0, -127}}));
}

TEST(FindSubPixelMaxima, TheBackgroundOfAnUnsignedPlaneIsNeverReturned) {
    EXPECT_EQ(SubPixelMaxima(Digits({".....", ".7...", "....."}), Everything, {0, 0.0}), (Spots{{1, 1, 7}}));
    EXPECT_EQ(SubPixelMaxima(Digits<std::uint32_t>({".....", ".7...", "....."}), Everything, {0, -0.5}),
              (Spots{{1, 1, 7}}));
}

TEST(FindSubPixelMaxima, TheBackgroundOfAFloatPlaneIsReturnedInScanOrder) {
    const Spots expected = {{1, 1, 7}, {3, 0, 0}, {4, 0, 0}, {3, 1, 0}, {4, 1, 0}, {3, 2, 0}, {4, 2, 0}};
    const auto grid = Digits<float>({".....", ".7...", "....."});
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, 0.0}), expected);
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, -1.0}), expected);
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {1, 0.0}), (Spots{{1, 1, 7}, {3, 0, 0}, {3, 2, 0}}));
}

TEST(FindSubPixelMaxima, ForIntegersTheThresholdIsTruncatedTowardZero) {
    const auto grid = Digits({"3.4.5"});
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, 4.99}), (Spots{{4, 0, 5}, {2, 0, 4}}));
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, 5.0}), (Spots{{4, 0, 5}}));
    PixelGrid<std::int8_t> below(3, 1, -9);
    below.At(0, 0) = 0;
    below.At(2, 0) = -1;
    EXPECT_EQ(SubPixelMaxima(below, Everything, {0, -0.99}), (Spots{{0, 0, 0}}));
    EXPECT_EQ(SubPixelMaxima(below, Everything, {0, -1.99}), (Spots{{0, 0, 0}, {2, 0, -1}}));
}

TEST(FindSubPixelMaxima, ForIntegersTheThresholdIsThenCastToTheType) {
    const auto grid = Digits({"3.4.5"});
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, 256.0 + 4}), (Spots{{4, 0, 5}, {2, 0, 4}}));
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, -1.0}), Spots{}) << "255";
    const auto wide = Digits<std::uint64_t>({"3.4.5"});
    EXPECT_EQ(SubPixelMaxima(wide, Everything, {0, -1.0}), Spots{});
    // 65534 is -2 in 16 bits, which the zeros between do reach, but for their greater neighbours.
    EXPECT_EQ(SubPixelMaxima(Digits<std::int16_t>({"3.4...5"}), Everything, {0, 65534.0}),
              (Spots{{6, 0, 5}, {2, 0, 4}, {0, 0, 3}, {4, 0, 0}}));
}

TEST(FindSubPixelMaxima, ForRealNumbersTheThresholdIsComparedAsItIs) {
    // 0.7f lies below 0.7.
    EXPECT_EQ(SubPixelMaxima(PixelGrid<float>(1, 1, 0.7f), Everything, {0, 0.7}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<float>(1, 1, 0.7f), Everything, {0, static_cast<double>(0.7f)}),
              (Spots{{0, 0, static_cast<double>(0.7f)}}));
    EXPECT_EQ(SubPixelMaxima(PixelGrid<double>(1, 1, 0.5), Everything, {0, 0.50000001}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<double>(1, 1, 0.5), Everything, {0, 0.5}), (Spots{{0, 0, 0.5}}));
}

TEST(FindSubPixelMaxima, AThresholdThatIsNoNumberIsReachedByNoRealNumber) {
    EXPECT_EQ(SubPixelMaxima(PixelGrid<float>(3, 3, 5.0f), Everything, {0, NotANumber}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<double>(3, 3, Infinity), Everything, {0, NotANumber}), Spots{});
    EXPECT_EQ(SubPixelMaxima(PixelGrid<double>(1, 1, Infinity), Everything, {0, Infinity}),
              (Spots{{0, 0, Infinity}}));
    EXPECT_EQ(SubPixelMaxima(PixelGrid<double>(1, 1, 1e308), Everything, {0, Infinity}), Spots{});
}

TEST(FindSubPixelMaxima, APixelThatIsNoNumberIsNeverReturnedAndRulesOutNothing) {
    PixelGrid<double> grid(5, 3, NotANumber);
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, -Infinity}), Spots{});
    grid.At(2, 1) = -4.0;
    grid.At(3, 1) = -Infinity;
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {0, -Infinity}), (Spots{{2, 1, -4}}));
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {5, -Infinity}), (Spots{{2, 1, -4}}));
}

TEST(FindSubPixelMaxima, PixelsOutsideTheRectangleTakeNoPart) {
    const auto grid = Digits({".....", ".98..", ".....", "...7."});
    EXPECT_EQ(SubPixelMaxima(grid, {2, 0, 4, 2}), (Spots{{2, 1, 8}}));
    EXPECT_EQ(SubPixelMaxima(grid, {2, 2, 4, 3}), (Spots{{3, 3, 7}}));
    EXPECT_EQ(SubPixelMaxima(grid, {2, 1, 2, 1}), (Spots{{2, 1, 8}}));
}

TEST(FindSubPixelMaxima, ARectangleIsSwappedAndClippedAndZeroIsZero) {
    const auto grid = Digits({"4....", ".98..", ".....", "...7."});
    const Spots right = {{2, 1, 8}, {3, 3, 7}};
    EXPECT_EQ(SubPixelMaxima(grid, {4, 0, 2, 3}), right);
    EXPECT_EQ(SubPixelMaxima(grid, {2, 3, 4, 0}), right);
    EXPECT_EQ(SubPixelMaxima(grid, {2, -9, Highest64, 99}), right);
    EXPECT_EQ(SubPixelMaxima(grid, {Highest64, 99, 2, Lowest64}), right);
    EXPECT_EQ(SubPixelMaxima(grid, {0, 0, 0, 0}), (Spots{{0, 0, 4}}));
    EXPECT_EQ(SubPixelMaxima(grid, {Lowest64, Lowest64, 0, 0}), (Spots{{0, 0, 4}}));
}

TEST(FindSubPixelMaxima, TheCoordinateSystemOfTheImagePlaysNoPart) {
    const auto image = ImageOf(Digits({".....", "..7..", "....."}));
    image->Coordinates = {10.0, -20.0, {0.0, 2.0, -2.0, 0.0}};
    EXPECT_EQ(SubPixelMaxima(image->Handle(), Everything), (Spots{{2, 1, 7}}));
    EXPECT_EQ(SubPixelMaxima(image->Handle(), {1, 1, 3, 2}), (Spots{{2, 1, 7}}));
    EXPECT_EQ(image->Count(), 1);
}

TEST(FindSubPixelMaxima, SearchesSmallImages) {
    EXPECT_EQ(SubPixelMaxima(Digits({"5"}), Everything), (Spots{{0, 0, 5}}));
    EXPECT_EQ(SubPixelMaxima(Digits({"5455"}), Everything), (Spots{{0, 0, 5}, {2, 0, 5}, {3, 0, 5}}));
    EXPECT_EQ(SubPixelMaxima(Digits({"5", "4", "6", "6", "1", "7"}), Everything),
              (Spots{{0, 5, 7}, {0, 2, 6}, {0, 3, 6}, {0, 0, 5}}));
    EXPECT_EQ(SubPixelMaxima(Digits({"12", "34"}), Everything), (Spots{{1, 1, 4}}));
    EXPECT_EQ(SubPixelMaxima(Digits({"42", "14"}), Everything), (Spots{{0, 0, 4}, {1, 1, 4}}));
}

TEST(FindSubPixelMaxima, AnImageWithoutPixelsGivesAnEmptyListAndIsNotRead) {
    for (const auto &[width, height] : {std::pair{0, 3}, std::pair{3, 0}, std::pair{0, 0}}) {
        FakeImage image(width, height);
        image.AddPlane(
            nullptr, 8, [](std::intptr_t) { return 0; }, [](std::intptr_t) { return 0; });
        for (const PixelRectangle &r : {Everything, PixelRectangle{0, 0, 0, 0}, PixelRectangle{-1, -1, 5, 5}})
            EXPECT_EQ(SubPixelMaxima(image.Handle(), r, {0, 0.0, FitParaboloid, 2}), Spots{})
                << width << " x " << height;
        EXPECT_EQ(image.Count(), 1);
    }
}

TEST(FindSubPixelMaxima, AFlatPictureIsNotScannedOncePerMaximum) {
    const PixelGrid<std::uint8_t> grid(512, 512, 3);
    const auto start = std::chrono::steady_clock::now();
    const Spots spots = SubPixelMaxima(grid, Everything);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    ASSERT_EQ(spots.size(), 512u * 512u);
    for (std::size_t i = 0; i < spots.size(); ++i)
        ASSERT_EQ(spots[i], (Spot{static_cast<double>(i % 512), static_cast<double>(i / 512), 3}));
}

TEST(FindMaximaEx, GivesTheListOfFindSubPixelMaximaWithoutAFit) {
    const auto image = ImageOf(Digits({"5.3.5.9", ".......", "355.1.3"}));
    for (const std::int64_t locality : {0, 1, 3})
        for (const double threshold : {1.0, 4.5, 8.0}) {
            Handle list;
            ClearReports();
            ASSERT_TRUE(FindMaximaEx(image->Handle(), 0, 1, 0, 6, 2, locality, list.Out(), threshold));
            ExpectNoReport();
            EXPECT_EQ(ReadSpots(list.Get()), SubPixelMaxima(image->Handle(), {1, 0, 6, 2}, {locality, threshold}));
        }
    EXPECT_EQ(image->Count(), 1);
}

} // namespace

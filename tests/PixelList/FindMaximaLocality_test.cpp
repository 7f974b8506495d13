// What the locality of FindMaxima leaves over, and the order of the list with and without one.
#include "PixelList/MaximaSupport.h"

namespace {

using namespace TestSupport;

TEST(FindMaximaLocality, OfTwoEqualPeaksTheLaterInScanOrderSurvives) {
    const auto besides = Digits({"........", ".5..5...", "........"});
    EXPECT_EQ(Maxima(besides, Everything, 3), (Spots{{4, 1, 5}}));
    EXPECT_EQ(Maxima(besides, Everything, 2), (Spots{{1, 1, 5}, {4, 1, 5}}));
    const auto below = Digits({"...", ".5.", "...", "...", ".5.", "..."});
    EXPECT_EQ(Maxima(below, Everything, 3), (Spots{{1, 4, 5}}));
    EXPECT_EQ(Maxima(below, Everything, 2), (Spots{{1, 1, 5}, {1, 4, 5}}));
    const auto diagonal = Digits({"......", "....5.", "......", "......", ".5....", "......"});
    EXPECT_EQ(Maxima(diagonal, Everything, 3), (Spots{{1, 4, 5}}));
    EXPECT_EQ(Maxima(diagonal, Everything, 2), (Spots{{4, 1, 5}, {1, 4, 5}}));
}

TEST(FindMaximaLocality, OfTwoPeaksTheGreaterSurvives) {
    EXPECT_EQ(Maxima(Digits({"........", ".6..5...", "........"}), Everything, 3), (Spots{{1, 1, 6}}));
    EXPECT_EQ(Maxima(Digits({"........", ".5..6...", "........"}), Everything, 3), (Spots{{4, 1, 6}}));
}

TEST(FindMaximaLocality, IsADistanceInBothAxes) {
    const auto grid =
        Digits({".........", ".9.......", ".........", ".........", ".........", ".....5...", "........."});
    EXPECT_EQ(Maxima(grid, Everything, 4), (Spots{{1, 1, 9}})) << "4 in x and 4 in y";
    EXPECT_EQ(Maxima(grid, Everything, 3), (Spots{{1, 1, 9}, {5, 5, 5}}));
    const auto far = Digits({"........", ".9.....5", "........"});
    EXPECT_EQ(Maxima(far, Everything, 5), (Spots{{1, 1, 9}, {7, 1, 5}}));
    EXPECT_EQ(Maxima(far, Everything, 6), (Spots{{1, 1, 9}}));
}

TEST(FindMaximaLocality, APeakThatIsLeftOutLeavesNoOtherOut) {
    const auto grid = Digits({"..........", ".9..8..7..", ".........."});
    EXPECT_EQ(Maxima(grid, Everything, 3), (Spots{{1, 1, 9}, {7, 1, 7}}));
    EXPECT_EQ(Maxima(Digits({"..........", ".5..5..5..", ".........."}), Everything, 3),
              (Spots{{1, 1, 5}, {7, 1, 5}}));
}

TEST(FindMaximaLocality, IsTakenFromTheFirstPixelOfAPlateau) {
    const auto grid = Digits({"...........", ".66666.5...", "..........."});
    EXPECT_EQ(Maxima(grid, Everything, 5), (Spots{{1, 1, 6}, {7, 1, 5}}));
    EXPECT_EQ(Maxima(grid, Everything, 6), (Spots{{1, 1, 6}}));
}

TEST(FindMaximaLocality, BelowOneGivesTheListInAscendingOrder) {
    const auto grid = Digits({".........", ".5.3.5.9.", ".........", ".3.5.1.3.", "........."});
    const Spots ascending = {{5, 3, 1}, {3, 1, 3}, {1, 3, 3}, {7, 3, 3}, {1, 1, 5}, {5, 1, 5}, {3, 3, 5}, {7, 1, 9}};
    for (const std::int64_t locality : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-5}, Lowest64})
        EXPECT_EQ(Maxima(grid, Everything, locality), ascending) << locality;
}

TEST(FindMaximaLocality, FromOneOnGivesTheListInDescendingOrder) {
    const auto grid = Digits({".........", ".5.3.5.9.", ".........", ".3.5.1.3.", "........."});
    EXPECT_EQ(Maxima(grid, Everything, 1),
              (Spots{{7, 1, 9}, {1, 1, 5}, {5, 1, 5}, {3, 3, 5}, {3, 1, 3}, {1, 3, 3}, {7, 3, 3}, {5, 3, 1}}));
}

TEST(FindMaximaLocality, FromOneOnMaximaOfValueZeroVanish) {
    PixelGrid<std::int8_t> grid(9, 5, -9);
    grid.At(1, 1) = 0;
    grid.At(3, 1) = -3;
    grid.At(5, 3) = 4;
    grid.At(7, 3) = 0;
    EXPECT_EQ(Maxima(grid, Everything, 0, -8), (Spots{{3, 1, -3}, {1, 1, 0}, {7, 3, 0}, {5, 3, 4}}));
    EXPECT_EQ(Maxima(grid, Everything, 1, -8), (Spots{{5, 3, 4}, {3, 1, -3}}));
    const PixelGrid<std::uint8_t> flat(5, 4);
    EXPECT_EQ(Maxima(flat, Everything, 0, 0), (Spots{{4, 0, 0}}));
    EXPECT_EQ(Maxima(flat, Everything, 1, 0), Spots{});
}

TEST(FindMaximaLocality, AMaximumOfValueZeroLeavesOthersOutBeforeItVanishes) {
    PixelGrid<std::int8_t> grid(7, 3, -9);
    grid.At(1, 1) = 0;
    grid.At(3, 1) = -3;
    EXPECT_EQ(Maxima(grid, Everything, 1, -8), (Spots{{3, 1, -3}}));
    EXPECT_EQ(Maxima(grid, Everything, 2, -8), Spots{});
}

TEST(FindMaximaLocality, MayBeAsLargeAsANumberCanBe) {
    const auto grid = Digits({".........", ".5.3.5.9.", ".........", ".3.5.1.3.", "........."});
    for (const std::int64_t locality : {std::int64_t{7}, std::int64_t{1000}, (std::int64_t{1} << 32) - 1,
                                        std::int64_t{1} << 32, Highest64 - 8, Highest64})
        EXPECT_EQ(Maxima(grid, Everything, locality), (Spots{{7, 1, 9}})) << locality;
    EXPECT_EQ(Maxima(Digits({".....", ".5.5.", "....."}), {1, 0, 3, 2}, Highest64), (Spots{{3, 1, 5}}));
}

TEST(FindMaximaLocality, CountsInTheRectangleOnly) {
    const auto grid = Digits({"..........", ".9..5..7..", ".........."});
    EXPECT_EQ(Maxima(grid, {3, 0, 5, 2}, 9), (Spots{{4, 1, 5}})) << "what is not found leaves nothing out";
    EXPECT_EQ(Maxima(grid, {3, 0, 8, 2}, 9), (Spots{{7, 1, 7}}));
}

TEST(FindMaximaLocality, KeepsTheExtremesOfLargeTypes) {
    PixelGrid<std::int32_t> grid(9, 3, std::numeric_limits<std::int32_t>::min());
    grid.At(1, 1) = std::numeric_limits<std::int32_t>::max();
    grid.At(4, 1) = std::numeric_limits<std::int32_t>::min() + 1;
    grid.At(7, 1) = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(Maxima(grid, Everything, 1, std::numeric_limits<std::int32_t>::min() + 1),
              (Spots{{1, 1, 2147483647.0}, {7, 1, 2147483647.0}, {4, 1, -2147483647.0}}));
}

} // namespace

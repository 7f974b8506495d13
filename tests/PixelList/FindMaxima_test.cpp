/* Where FindMaxima finds a maximum: rectangles with their two marked rows, neighbours, thresholds, pixel types. */
#include "PixelList/MaximaSupport.h"

namespace {

using namespace TestSupport;

/// A picture of zeros with one bright pixel.
template <class T = std::uint8_t>
PixelGrid<T> Peak(std::intptr_t x, std::intptr_t y, T value = 9, std::intptr_t width = 7, std::intptr_t height = 6) {
    PixelGrid<T> grid(width, height);
    grid.At(x, y) = value;
    return grid;
}

TEST(FindMaxima, GivesMinusOneAndAListOfDimension3WithOneReference) {
    const auto image = ImageOf(Peak(3, 2));
    void *list = UntouchedPointer();
    ClearReports();
    EXPECT_EQ(FindMaxima(image->Handle(), 0, 0, 0, 6, 5, 0, 1, &list), -1);
    ExpectNoReport();
    EXPECT_EQ(ReadSpots(list), (Spots{{3, 2, 9}}));
    EXPECT_EQ(image->Count(), 1);
    EXPECT_TRUE(ReleaseObject(list));
}

TEST(FindMaxima, OnlyReadsTheImage) {
    const auto grid = Digits({"....", ".55.", ".5..", "...."});
    const auto image = ImageOf(grid);
    EXPECT_EQ(Maxima(image->Handle(), Everything, 1), (Spots{{1, 1, 5}}));
    EXPECT_EQ(image->Pixels, grid.Bytes());
}

TEST(FindMaxima, GivesCoordinatesOfTheWholeImage) {
    EXPECT_EQ(Maxima(Peak(4, 3), {2, 1, 6, 5}), (Spots{{4, 3, 9}}));
    EXPECT_EQ(Maxima(Peak(4, 3), {3, 2, 5, 4}), (Spots{{4, 3, 9}}));
}

TEST(FindMaxima, FindsNothingInTheRowsTopAndBottomButForTheColumnRight) {
    for (std::intptr_t x = 1; x <= 5; ++x)
        for (const std::intptr_t y : {1, 4}) {
            const Spots expected = x == 5 ? Spots{{5, static_cast<double>(y), 9}} : Spots{};
            EXPECT_EQ(Maxima(Peak(x, y), {1, 1, 5, 4}), expected) << x << ", " << y;
        }
}

TEST(FindMaxima, FindsMaximaInTheColumnsLeftAndRightOfTheRowsBetween) {
    for (const std::intptr_t x : {1, 5})
        for (const std::intptr_t y : {2, 3})
            EXPECT_EQ(Maxima(Peak(x, y), {1, 1, 5, 4}), (Spots{{static_cast<double>(x), static_cast<double>(y), 9}}));
}

TEST(FindMaxima, FindsNothingOutsideTheRectangle) {
    for (std::intptr_t y = 0; y < 6; ++y)
        for (std::intptr_t x = 0; x < 7; ++x)
            if (x < 2 || x > 4 || y < 1 || y > 4) {
                EXPECT_EQ(Maxima(Peak(x, y), {2, 1, 4, 4}), Spots{}) << x << ", " << y;
            }
}

TEST(FindMaxima, ARectangleOfOneColumnHasNoMarkedPixels) {
    for (std::intptr_t y = 1; y <= 4; ++y)
        EXPECT_EQ(Maxima(Peak(3, y), {3, 1, 3, 4}), (Spots{{3, static_cast<double>(y), 9}}));
}

TEST(FindMaxima, ARectangleOfOneRowHasOnlyTheColumnRightLeft) {
    const auto grid = Digits({".......", ".4.5.6.", "......."});
    EXPECT_EQ(Maxima(grid, {1, 1, 5, 1}), (Spots{{5, 1, 6}}));
    EXPECT_EQ(Maxima(grid, {1, 1, 4, 1}), Spots{});
    EXPECT_EQ(Maxima(grid, {3, 1, 3, 1}), (Spots{{3, 1, 5}}));
}

TEST(FindMaxima, ANeighbourOutsideTheRectangleIsTheRealPixel) {
    const std::intptr_t steps[8][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
    for (const auto &step : steps) {
        auto grid = Peak(3, 2);
        grid.At(3 + step[0], 2 + step[1]) = 10;
        EXPECT_EQ(Maxima(grid, {3, 2, 3, 2}), Spots{}) << step[0] << ", " << step[1];
        grid.At(3 + step[0], 2 + step[1]) = 8;
        EXPECT_EQ(Maxima(grid, {3, 2, 3, 2}), (Spots{{3, 2, 9}})) << step[0] << ", " << step[1];
    }
}

TEST(FindMaxima, OfTwoEqualNeighboursTheFirstInScanOrderStands) {
    EXPECT_EQ(Maxima(Digits({"....", ".66.", "...."}), Everything), (Spots{{1, 1, 6}}));
    EXPECT_EQ(Maxima(Digits({"....", "..6.", ".6..", "...."}), Everything), (Spots{{2, 1, 6}}));
    EXPECT_EQ(Maxima(Digits({"....", ".6..", ".6..", "...."}), Everything), (Spots{{1, 1, 6}}));
}

TEST(FindMaxima, TheThresholdItselfCounts) {
    const auto grid = Digits({".......", ".4.5.6.", "......."});
    EXPECT_EQ(Maxima(grid, Everything, 0, 4), (Spots{{1, 1, 4}, {3, 1, 5}, {5, 1, 6}}));
    EXPECT_EQ(Maxima(grid, Everything, 0, 5), (Spots{{3, 1, 5}, {5, 1, 6}}));
    EXPECT_EQ(Maxima(grid, Everything, 0, 6), (Spots{{5, 1, 6}}));
    EXPECT_EQ(Maxima(grid, Everything, 0, 7), Spots{});
}

TEST(FindMaxima, ThresholdsAreComparedIn64Bits) {
    const auto grid = Peak<std::uint8_t>(3, 2, 255);
    for (const std::int64_t never :
         {std::int64_t{256}, std::int64_t{256 + 9}, (std::int64_t{1} << 32) + 1, Highest64})
        EXPECT_EQ(Maxima(grid, Everything, 0, never), Spots{}) << never;
    for (const std::int64_t always : {Lowest64, -(std::int64_t{1} << 32) + 255, std::int64_t{-1}})
        EXPECT_EQ(Maxima(grid, {1, 1, 5, 4}, 0, always), (Spots{{3, 2, 255}})) << always;
}

TEST(FindMaxima, WithAThresholdOfZeroAFlatPictureOfZeroIsOneMaximum) {
    EXPECT_EQ(Maxima(PixelGrid<std::uint8_t>(5, 4), Everything, 0, 0), (Spots{{4, 0, 0}}))
        << "the row top is marked but for its last column";
    EXPECT_EQ(Maxima(PixelGrid<std::uint8_t>(5, 4), Everything, 0, 1), Spots{});
}

template <class T>
class FindMaximaOfType : public testing::Test {};
using SearchedTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t>;
TYPED_TEST_SUITE(FindMaximaOfType, SearchedTypes);

TYPED_TEST(FindMaximaOfType, FindsTheExtremesOfTheType) {
    using T = TypeParam;
    constexpr T low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
    PixelGrid<T> grid(6, 5, low);
    grid.At(1, 1) = high;
    grid.At(4, 3) = static_cast<T>(low + 1);
    const Spots expected = {{4, 3, static_cast<double>(low) + 1}, {1, 1, static_cast<double>(high)}};
    EXPECT_EQ(Maxima(grid, Everything, 0, Lowest64), expected);
    EXPECT_EQ(Maxima(grid, Everything, 0, high), (Spots{expected[1]}));
    EXPECT_EQ(Maxima(grid, Everything, 0, static_cast<std::int64_t>(high) + 1), Spots{});
}

TYPED_TEST(FindMaximaOfType, ComparesWithTheSignOfTheType) {
    using T = TypeParam;
    PixelGrid<T> grid(5, 5, 1);
    grid.At(2, 2) = static_cast<T>(-1);
    const Spots spots = Maxima(grid, {1, 1, 3, 3}, 0, Lowest64);
    if (std::is_signed_v<T>)
        EXPECT_EQ(spots, (Spots{{3, 1, 1}})) << "the flat area, found in the column right";
    else
        EXPECT_EQ(spots, (Spots{{2, 2, static_cast<double>(std::numeric_limits<T>::max())}}));
}

TEST(FindMaxima, TakesAPlaneOf12BitsAsTwoBytesUnmasked) {
    const auto grid = Peak<std::uint16_t>(3, 2, 0xF123);
    const auto image = ImageOf(grid, 12);
    EXPECT_EQ(Maxima(image->Handle(), Everything, 0, 0x1000), (Spots{{3, 2, 0xF123}}));
    PixelGrid<std::int16_t> signedGrid(7, 6, -5);
    signedGrid.At(2, 2) = -4;
    EXPECT_EQ(Maxima(ImageOf(signedGrid, 12 | DataTypeSigned)->Handle(), Everything, 0, -4), (Spots{{2, 2, -4}}));
}

TEST(FindMaxima, OverlayAndComplexFlagsPlayNoPart) {
    for (const TDataType flags : {DataTypeOverlay, DataTypeComplex, DataTypeOverlay | DataTypeComplex}) {
        const auto image = ImageOf(Peak<std::uint8_t>(3, 2, 7), 8 | flags);
        EXPECT_EQ(Maxima(image->Handle(), Everything, 0, 7), (Spots{{3, 2, 7}}))
            << "the overlay bit belongs to the value";
    }
}

TEST(FindMaxima, SearchesTheNamedPlane) {
    auto image = FakeImage::Planar(5, 5, 3, 8);
    for (std::uint8_t plane = 0; plane < 3; ++plane)
        *image->PixelAddress(plane, plane + 1, 2) = static_cast<std::uint8_t>(plane + 5);
    for (int plane = 0; plane < 3; ++plane)
        EXPECT_EQ(Maxima(image->Handle(), Everything, 0, 1, plane), (Spots{{plane + 1.0, 2, plane + 5.0}}));
}

TEST(FindMaximaRectangle, SwapsSidesInTheWrongOrder) {
    const auto grid = Digits({".......", ".4.5.6.", ".......", ".7.8.9.", "......."});
    const Spots expected = {{3, 3, 8}, {5, 3, 9}};
    EXPECT_EQ(Maxima(grid, {2, 2, 5, 4}), expected);
    EXPECT_EQ(Maxima(grid, {5, 2, 2, 4}), expected);
    EXPECT_EQ(Maxima(grid, {2, 4, 5, 2}), expected);
    EXPECT_EQ(Maxima(grid, {5, 4, 2, 2}), expected);
}

TEST(FindMaximaRectangle, ARightOrBottomOfZeroOrBelowStandsForTheEnd) {
    const auto grid = Digits({".......", ".4.5.6.", ".......", ".7.8.9.", "......."});
    const Spots all = {{1, 1, 4}, {3, 1, 5}, {5, 1, 6}, {1, 3, 7}, {3, 3, 8}, {5, 3, 9}};
    for (const std::int64_t end : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-99}, Lowest64})
        EXPECT_EQ(Maxima(grid, {end, end, end, end}), all) << end;
    EXPECT_EQ(Maxima(grid, {0, 0, 6, 0}), all);
    EXPECT_EQ(Maxima(grid, {0, 0, 0, 4}), all);
    EXPECT_EQ(Maxima(grid, {-3, -2, -1, -1}), all);
}

TEST(FindMaximaRectangle, ZeroMeansTheEndAfterTheSidesAreInOrder) {
    const auto grid = Digits({".......", ".4.5.6.", ".......", ".7.8.9.", "......."});
    // From column 3 to 0 is from column 0 to 3.
    EXPECT_EQ(Maxima(grid, {3, 0, 0, 4}), (Spots{{1, 1, 4}, {3, 1, 5}, {1, 3, 7}, {3, 3, 8}}));
    // From -3 to 0 ends at the last column.
    EXPECT_EQ(Maxima(grid, {0, 2, -3, 4}), (Spots{{1, 3, 7}, {3, 3, 8}, {5, 3, 9}}));
}

TEST(FindMaximaRectangle, IsClippedToTheImage) {
    const auto grid = Digits({".......", ".4.5.6.", ".......", ".7.8.9.", "......."});
    const Spots all = {{1, 1, 4}, {3, 1, 5}, {5, 1, 6}, {1, 3, 7}, {3, 3, 8}, {5, 3, 9}};
    EXPECT_EQ(Maxima(grid, {-5, -7, 99, 99}), all);
    EXPECT_EQ(Maxima(grid, {Lowest64, Lowest64, Highest64, Highest64}), all);
    EXPECT_EQ(Maxima(grid, {Highest64, Highest64, Lowest64, Lowest64}), all);
    EXPECT_EQ(Maxima(grid, {4, 2, 7, 5}), (Spots{{5, 3, 9}}));
}

TEST(FindMaximaRectangle, BehindTheLastColumnOrRowGivesAnEmptyList) {
    const auto grid = PixelGrid<std::uint8_t>(7, 5, 3);
    const PixelRectangle outside[] = {{7, 0, 9, 4},  {9, 0, 7, 4},  {0, 5, 6, 9},
                                      {0, 9, 6, 5},  {7, 5, 7, 5},  {Highest64, 0, Highest64, 4},
                                      {6, 5, 0, 9},  {9, 4, 8, 0},  {0, Highest64, 6, Highest64},
                                      {7, 0, 9, -4}, {-2, 5, 0, 6}, {Highest64, Highest64, Highest64, Highest64}};
    for (const PixelRectangle &r : outside)
        EXPECT_EQ(Maxima(grid, r, 0, Lowest64), Spots{}) << testing::PrintToString(r);
}

TEST(FindMaximaSize, AnImageOfOnePixelIsAMaximum) {
    EXPECT_EQ(Maxima(PixelGrid<std::uint8_t>(1, 1, 5), Everything), (Spots{{0, 0, 5}}));
    EXPECT_EQ(Maxima(PixelGrid<std::int32_t>(1, 1, -5), Everything, 0, -5), (Spots{{0, 0, -5}}));
    EXPECT_EQ(Maxima(PixelGrid<std::uint8_t>(1, 1, 5), Everything, 0, 6), Spots{});
}

TEST(FindMaximaSize, AnImageOfOneColumnIsSearchedFromEndToEnd) {
    EXPECT_EQ(Maxima(Digits({"5", "4", "6", "6", "1", "7"}), Everything), (Spots{{0, 0, 5}, {0, 2, 6}, {0, 5, 7}}));
}

TEST(FindMaximaSize, AnImageOfOneRowIsSearchedInItsLastColumnOnly) {
    EXPECT_EQ(Maxima(Digits({"947126"}), Everything), (Spots{{5, 0, 6}}));
    EXPECT_EQ(Maxima(Digits({"947165"}), Everything), Spots{});
}

TEST(FindMaximaSize, AnImageOfTwoByTwoHasItsRightColumn) {
    EXPECT_EQ(Maxima(Digits({"12", "34"}), Everything), (Spots{{1, 1, 4}}));
    EXPECT_EQ(Maxima(Digits({"14", "32"}), Everything), (Spots{{1, 0, 4}}));
    EXPECT_EQ(Maxima(Digits({"42", "31"}), Everything), Spots{});
    EXPECT_EQ(Maxima(Digits({"22", "22"}), Everything), (Spots{{1, 0, 2}}));
}

TEST(FindMaximaSize, AnImageWithoutPixelsGivesAnEmptyListAndIsNotRead) {
    for (const auto &[width, height] : {std::pair{0, 3}, std::pair{3, 0}, std::pair{0, 0}}) {
        FakeImage image(width, height);
        image.AddPlane(
            nullptr, 8, [](std::intptr_t) { return 0; }, [](std::intptr_t) { return 0; });
        for (const PixelRectangle &r : {Everything, PixelRectangle{0, 0, 0, 0}, PixelRectangle{-1, -1, 5, 5}})
            EXPECT_EQ(Maxima(image.Handle(), r, 1, Lowest64), Spots{}) << width << " x " << height;
        EXPECT_EQ(image.Count(), 1);
    }
}

} // namespace

// How FindSubPixelMaxima refines a position: each fit on peaks whose place is known, and its deliberate oddities.
#include "PixelList/MaximaSupport.h"

namespace {

using namespace TestSupport;

/// A double plane of a function of x and y.
template <class Function>
PixelGrid<double> Surface(std::intptr_t width, std::intptr_t height, const Function &z) {
    PixelGrid<double> grid(width, height);
    for (std::intptr_t y = 0; y < height; ++y)
        for (std::intptr_t x = 0; x < width; ++x)
            grid.At(x, y) = z(static_cast<double>(x), static_cast<double>(y));
    return grid;
}

/// A circular paraboloid.
PixelGrid<double> Paraboloid(double peakX, double peakY, std::intptr_t width = 9, std::intptr_t height = 10,
                             double peak = 10.0) {
    return Surface(width, height,
                   [=](double x, double y) { return -(x - peakX) * (x - peakX) - (y - peakY) * (y - peakY) + peak; });
}

/// A plane of one type with a 3 x 3 neighbourhood around (2, 2), anything else 0.
template <class T>
PixelGrid<T> Neighbourhood(const std::vector<T> &nine) {
    PixelGrid<T> grid(5, 5);
    for (std::intptr_t i = 0; i < 9; ++i)
        grid.At(1 + i % 3, 1 + i / 3) = nine[static_cast<std::size_t>(i)];
    return grid;
}

/// The only maximum of a picture at its strongest pixel, refined.
template <class T>
Spot Refined(const PixelGrid<T> &grid, std::uint32_t fit, std::int32_t radius, const PixelRectangle &r = Everything,
             double threshold = 1.0) {
    const Spots spots = SubPixelMaxima(grid, r, {1000, threshold, fit, radius});
    EXPECT_EQ(spots.size(), 1u);
    return spots.empty() ? Spot{NotANumber, NotANumber, NotANumber} : spots[0];
}

void ExpectNear(const Spot &spot, double x, double y, double value, double tolerance = 1e-9) {
    EXPECT_NEAR(spot.X, x, tolerance);
    EXPECT_NEAR(spot.Y, y, tolerance);
    EXPECT_NEAR(spot.Value, value, tolerance);
}

TEST(FitParaboloidOf, AParaboloidReturnsItsPeakAndHeight) {
    ExpectNear(Refined(Paraboloid(3.25, 4.5), FitParaboloid, 2), 3.25, 4.5, 10.0);
}

TEST(FitParaboloidOf, AParaboloidReturnsItsPeakWithEveryRadius) {
    for (std::int32_t radius = 1; radius <= 4; ++radius)
        ExpectNear(Refined(Paraboloid(6.7, 5.1, 15, 13), FitParaboloid, radius), 6.7, 5.1, 10.0, 1e-8);
}

TEST(FitParaboloidOf, WholePixelsGivesAHeightThatIsNotTruncated) {
    const auto grid = Digits({"......", ".1221.", ".2442.", ".2442.", ".1221.", "......"});
    const Spot spot = Refined(grid, FitParaboloid, 1);
    EXPECT_GT(spot.X, 2.0);
    EXPECT_LT(spot.X, 3.0);
    EXPECT_GT(spot.Value, 4.0) << "between the four pixels of 4 the surface is higher";
    EXPECT_NE(spot.Value, std::trunc(spot.Value));
}

TEST(FitParaboloidOf, AFlatWindowLeavesThePixel) {
    const PixelGrid<double> grid(9, 9, 2.5);
    EXPECT_EQ(SubPixelMaxima(grid, Everything, {1000, 1.0, FitParaboloid, 2}), (Spots{{0, 0, 2.5}}));
    EXPECT_EQ(SubPixelMaxima(PixelGrid<std::uint8_t>(3, 3, 7), {1, 1, 1, 1}, {0, 1.0, FitParaboloid, 1}),
              (Spots{{1, 1, 7}}))
        << "a rectangle of one pixel has a flat window";
}

TEST(FitParaboloidOf, APeakFarFromTheOriginIsBetterSearchedOnAMap) {
    const auto image = ImageOf(Paraboloid(1003.25, 4.5, 1010, 10));
    const SubPixelChoice choice{1000, 9.0, FitParaboloid, 1};
    const Spots direct = SubPixelMaxima(image->Handle(), Everything, choice);
    ASSERT_EQ(direct.size(), 1u);
    ExpectNear(direct[0], 1003.25, 4.5, 10.0, 0.5);
    EXPECT_GT(std::fabs(direct[0].X - 1003.25), 1e-9) << "the fit is carried out in absolute coordinates";
    Handle map;
    ASSERT_TRUE(CreateImageMap(image->Handle(), 1000, 0, 1009, 9, 10, 10, map.Out()));
    const Spots onMap = SubPixelMaxima(map.Get(), Everything, choice);
    ASSERT_EQ(onMap.size(), 1u);
    ExpectNear(onMap[0], 3.25, 4.5, 10.0);
}

TEST(FitQuadraticOf, AParaboloidReturnsItsPeakAndKeepsThePixelsValue) {
    const Spot spot = Refined(Paraboloid(3.25, 4.5), FitQuadratic, 2);
    EXPECT_EQ(spot, (Spot{3.25, 4.5, 10.0 - 0.0625 - 0.25}));
}

TEST(FitQuadraticOf, AnyRadiusUsesTheInnerNineOnly) {
    auto grid = Paraboloid(4.125, 4.75, 9, 10);
    for (std::intptr_t y = 0; y < 10; ++y)
        for (std::intptr_t x = 0; x < 9; ++x)
            if (std::abs(x - 4) > 1 || std::abs(y - 5) > 1)
                grid.At(x, y) = -static_cast<double>(x * y);
    for (std::int32_t radius = 1; radius <= 4; ++radius)
        EXPECT_EQ(Refined(grid, FitQuadratic, radius), (Spot{4.125, 4.75, 10.0 - 0.015625 - 0.0625})) << radius;
}

TEST(FitQuadraticOf, AFlatWindowLeavesThePixel) {
    EXPECT_EQ(SubPixelMaxima(PixelGrid<double>(5, 5, 2.5), Everything, {1000, 1.0, FitQuadratic, 1}),
              (Spots{{0, 0, 2.5}}));
    // A ridge: no curvature along y.
    EXPECT_EQ(Refined(Neighbourhood<double>({4, 5, 3, 4, 5, 3, 4, 5, 3}), FitQuadratic, 1, {1, 1, 3, 3}),
              (Spot{2, 1, 5}))
        << "in a rectangle, so that the row above the first is the first";
}

TEST(FitQuadraticOf, ASkewedPeakMayStepFarAway) {
    // A = -1, C = 1.95, E = -1, D = 0.1975, gx = gy = 1.
    const auto grid = Neighbourhood<double>({10, 8, 6.1, 8, 10, 10, 6.1, 10, 10});
    const Spots spots = SubPixelMaxima(grid, {1, 1, 3, 3}, {0, 1.0, FitQuadratic, 1});
    const double c = 0.25 * (0.0 + 0.0 - (6.1 - 10.0) - (6.1 - 10.0)), d = 4.0 - c * c;
    ASSERT_EQ(spots.size(), 5u) << "the two corners and the three around the centre's lower right";
    EXPECT_EQ(spots[1], (Spot{2.0 + (2.0 + c) / d, 2.0 + (c + 2.0) / d, 10.0}));
    EXPECT_GT(spots[1].X, 20.0);
}

// Required: differences of unsigned pixels wrap in the pixel's own type.
TEST(FitQuadraticOf, UnsignedBytesShowsTheWrappedDifferences) {
    const auto grid = Neighbourhood<std::uint8_t>({0, 0, 0, 0, 10, 8, 0, 0, 0});
    // Neighbours 246, the right one 254, corners 246: A = 250, C = 0, E = 246, gx = 4, gy = 0.
    EXPECT_EQ(Refined(grid, FitQuadratic, 1), (Spot{2.0 + (-2.0 * 246.0 * 4.0) / (4.0 * 250.0 * 246.0), 2.0, 10}));
}

TEST(FitQuadraticOf, UnsignedWordsShowsTheWrappedDifferences) {
    const auto grid = Neighbourhood<std::uint16_t>({0, 0, 0, 0, 10, 8, 0, 0, 0});
    EXPECT_EQ(Refined(grid, FitQuadratic, 1),
              (Spot{2.0 + (-2.0 * 65526.0 * 4.0) / (4.0 * 65530.0 * 65526.0), 2.0, 10}));
}

TEST(FitQuadraticOf, UnsignedDoubleWordsAlsoWrapsTheSums) {
    const auto grid = Neighbourhood<std::uint32_t>({0, 0, 0, 0, 10, 8, 0, 0, 0});
    const double a = 0.5 * (4294967296.0 - 12.0), e = 0.5 * (4294967296.0 - 20.0);
    EXPECT_EQ(Refined(grid, FitQuadratic, 1), (Spot{2.0 + (-2.0 * e * 4.0) / (4.0 * a * e), 2.0, 10}));
}

TEST(FitQuadraticOf, SignedIntegersStepsAsRealNumbersDo) {
    const std::vector<int> nine = {0, 0, 0, 0, 10, 8, 0, 2, 0};
    // A = -6, E = -9, C = 0.25 * (-10 - 10 + 10 + 10) = 0, gx = 4, gy = 1.
    const Spot expected{2.0 + (-2.0 * -9.0 * 4.0) / (4.0 * -6.0 * -9.0),
                        2.0 + (-2.0 * -6.0 * 1.0) / (4.0 * -6.0 * -9.0), 10};
    const auto refined = [&]<class T>(T) {
        return Refined(Neighbourhood<T>(std::vector<T>(nine.begin(), nine.end())), FitQuadratic, 1);
    };
    EXPECT_EQ(refined(std::int16_t{}), expected);
    EXPECT_EQ(refined(std::int32_t{}), expected);
    EXPECT_EQ(refined(std::int64_t{}), expected);
    EXPECT_EQ(refined(double{}), expected);
}

TEST(FitQuadraticOf, AFloatPlaneIsComputedInFloat) {
    const auto grid = Neighbourhood<float>({0.1f, 0.3f, 0.2f, 0.7f, 1.1f, 0.9f, 0.3f, 0.6f, 0.17f});
    const float l = 0.7f - 1.1f, r = 0.9f - 1.1f, t = 0.3f - 1.1f, b = 0.6f - 1.1f;
    const float a = 0.5f * (r + l), e = 0.5f * (b + t), gx = 0.5f * (r - l), gy = 0.5f * (b - t);
    const float c = 0.25f * ((0.17f - 1.1f) + (0.1f - 1.1f) - (0.2f - 1.1f) - (0.3f - 1.1f));
    const float d = 4.0f * a * e - c * c;
    EXPECT_EQ(Refined(grid, FitQuadratic, 1),
              (Spot{2.0 + static_cast<double>((-2.0f * e * gx + c * gy) / d),
                    2.0 + static_cast<double>((gx * c - 2.0f * a * gy) / d), static_cast<double>(1.1f)}));
}

TEST(FitQuadraticOf, APeakAtTheCornerReadsClampedPixels) {
    PixelGrid<double> grid(5, 5, 1.0);
    grid.At(0, 0) = 10.0;
    grid.At(1, 0) = 8.0;
    grid.At(0, 1) = 6.0;
    grid.At(1, 1) = 5.0;
    // A = -1, C = 0.25 * (-5 + 0 + 2 + 4), E = -2, gx = -1, gy = -2.
    const double c = 0.25, d = 8.0 - c * c;
    EXPECT_EQ(Refined(grid, FitQuadratic, 1),
              (Spot{(-2.0 * -2.0 * -1.0 + c * -2.0) / d, (-1.0 * c - 2.0 * -1.0 * -2.0) / d, 10.0}));
}

TEST(Fits, TheWindowEndsAtTheRectangle) {
    // Outside the rectangle the picture is much greater; inside it is what the same rectangle cut out would be.
    PixelGrid<double> grid = Paraboloid(5.25, 4.5, 12, 10, 40.0);
    for (std::intptr_t y = 0; y < 10; ++y)
        for (std::intptr_t x = 0; x < 4; ++x)
            grid.At(x, y) = 100.0 + static_cast<double>(x);
    const PixelRectangle r{5, 3, 9, 8};
    for (const std::uint32_t fit : {FitQuadratic, FitParaboloid, FitGaussian}) {
        const auto cut = grid.Cut(r);
        const Spot alone = Refined(cut, fit, 4, Everything, 39.0);
        const Spot inside = Refined(grid, fit, 4, r, 39.0);
        EXPECT_NEAR(inside.X, alone.X + 5.0, 1e-8) << fit;
        EXPECT_NEAR(inside.Y, alone.Y + 3.0, 1e-8) << fit;
        EXPECT_NEAR(inside.Value, alone.Value, 1e-7) << fit;
    }
}

PixelGrid<double> Bell(double peakX, double peakY, double height, double base = 0.0) {
    return Surface(13, 12, [=](double x, double y) {
        return base + height * std::exp(-0.3 * ((x - peakX) * (x - peakX) + (y - peakY) * (y - peakY)));
    });
}

TEST(FitGaussianOf, ABellReturnsItsPeakAndHeight) {
    for (std::int32_t radius = 1; radius <= 4; ++radius)
        ExpectNear(Refined(Bell(6.3, 5.4, 200.0), FitGaussian, radius), 6.3, 5.4, 200.0, 1e-7);
}

TEST(FitGaussianOf, PixelsBelowZeroAreLiftedAndTheLiftIsTakenOffAgain) {
    // The corners of the window are the smallest; they are lifted to the smallest step above 0.
    const auto grid = Bell(6.0, 6.0, 11.0, -7.0);
    const double lift = 2.220446049250313e-16 - grid.At(5, 5);
    ASSERT_GT(lift, 0.9);
    const double centre = std::log(grid.At(6, 6) + lift), side = std::log(grid.At(5, 6) + lift),
                 corner = std::log(2.220446049250313e-16), mean = (centre + 4.0 * side + 4.0 * corner) / 9.0;
    // A straight line over the squared distances 0, 1 and 2.
    const double slope =
        (-4.0 / 3.0 * (centre - mean) - 4.0 / 3.0 * (side - mean) + 8.0 / 3.0 * (corner - mean)) / 4.0;
    const Spot spot = Refined(grid, FitGaussian, 1, Everything, 0.0);
    EXPECT_NEAR(spot.X, 6.0, 1e-7);
    EXPECT_NEAR(spot.Y, 6.0, 1e-7);
    const double expected = std::exp(mean - slope * 4.0 / 3.0) - lift;
    EXPECT_NEAR(spot.Value, expected, 1e-6 * expected);
    const Spot zeros = Refined(Neighbourhood<std::uint8_t>({0, 0, 0, 0, 9, 0, 0, 0, 0}), FitGaussian, 1);
    EXPECT_NEAR(zeros.X, 2.0, 1e-7);
    EXPECT_NEAR(zeros.Y, 2.0, 1e-7);
    EXPECT_GE(zeros.Value, 0.0);
}

// Required: the lift is told, and what rounding makes of it. The logarithm of the 0 that is left is infinite.
TEST(FitGaussianOf, AWindowThatRoundingLeavesAtZeroGivesNoNumbers) {
    for (const double lowest : {-2.0, -5.0, -1000.0}) {
        const auto grid = Neighbourhood<double>({lowest, 5, 1, 5, 9, 5, 1, 5, 1});
        const Spot spot = Refined(grid, FitGaussian, 1, Everything, 6.0);
        EXPECT_EQ(spot, (Spot{NotANumber, NotANumber, NotANumber})) << lowest;
    }
    const Spot lifted = Refined(Neighbourhood<double>({-1.5, 5, 1, 5, 9, 5, 1, 5, 1}), FitGaussian, 1, Everything, 6);
    EXPECT_TRUE(std::isfinite(lifted.X) && std::isfinite(lifted.Y) && std::isfinite(lifted.Value));
}

// Required: where the fit fails, the value still becomes exp(value) less the lift.
TEST(FitGaussianOf, AFlatWindowLeavesThePlaceAndRaisesTheValue) {
    EXPECT_EQ(Refined(PixelGrid<double>(9, 9, 2.5), FitGaussian, 2), (Spot{0, 0, std::exp(2.5)}));
    EXPECT_EQ(Refined(PixelGrid<std::uint8_t>(9, 9, 3), FitGaussian, 1), (Spot{0, 0, std::exp(3.0)}));
    EXPECT_EQ(Refined(PixelGrid<double>(9, 9, -2.0), FitGaussian, 1, Everything, -5.0),
              (Spot{0, 0, std::exp(-2.0) - (2.220446049250313e-16 + 2.0)}));
}

TEST(Fits, OfAnotherNumberActAsFitNone) {
    const auto grid = Paraboloid(3.25, 4.25);
    for (const std::uint32_t fit : {FitNone, 4u, 5u, 255u, 256u + FitParaboloid, 0x80000001u, 0xFFFFFFFFu})
        EXPECT_EQ(Refined(grid, fit, 2), (Spot{3, 4, 10.0 - 0.0625 - 0.0625})) << fit;
}

TEST(Fits, WithARadiusOfZeroGiveWholePositions) {
    const auto grid = Paraboloid(3.25, 4.25);
    for (const std::uint32_t fit : {FitQuadratic, FitParaboloid, FitGaussian})
        EXPECT_EQ(Refined(grid, fit, 0), (Spot{3, 4, 10.0 - 0.0625 - 0.0625})) << fit;
}

TEST(Fits, LeaveTheOrderOfTheList) {
    // The flat 7 comes first, though the fit makes the sharp 6 higher.
    const auto grid = Digits({".........", ".777.....", ".777..55.", ".777..66.", "......55.", "........."});
    const Spots plain = SubPixelMaxima(grid, Everything, {2});
    const Spots fitted = SubPixelMaxima(grid, Everything, {2, 1.0, FitParaboloid, 1});
    ASSERT_EQ(plain.size(), fitted.size());
    for (std::size_t i = 0; i < plain.size(); ++i)
        if (plain[i].Value == 6.0) {
            EXPECT_NEAR(fitted[i].Y, 3.0, 1e-6);
        }
    EXPECT_EQ(plain.back().Value, 6.0);
}

} // namespace

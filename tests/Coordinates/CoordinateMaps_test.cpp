// Coordinate maps and areas: every result bit for bit, and what stays untouched where there is no inverse.
#include "Coordinates/ExactRecords.h"
#include "ErrorHandling.h"
#include "Matrices.h"

namespace {

using namespace TestSupport;

constexpr double HighestEdge = 2147483647.0;
constexpr double LowestEdge = -2147483648.0;
constexpr int RandomCases = 2000;
constexpr TCoordinateMap SingularMap{5.0, 6.0, {1.0, 2.0, 2.0, 4.0}};

struct Point {
    double X;
    double Y;
};

Point Transform(const TCoordinateMap &map, double x, double y) {
    Point result{-77.0, -88.0};
    CoordinateMapTransform(&result.X, &result.Y, map, x, y);
    return result;
}

/// The inverse as the arithmetic is promised, for a map that has one.
TCoordinateMap ExpectedInverse(const TCoordinateMap &map) {
    const TMatrix &m = map.Matrix;
    const double d = m.A11 * m.A22 - m.A12 * m.A21;
    const TMatrix i{m.A22 / d, -m.A12 / d, -m.A21 / d, m.A11 / d};
    return {i.A11 * -map.X + i.A12 * -map.Y, i.A21 * -map.X + i.A22 * -map.Y, i};
}

TArea ExpectedArea(const TCoordinateMap &map, const TArea &area) {
    const Point p0 = Transform(map, area.X0, area.Y0);
    const Point p1 = Transform(map, area.X1, area.Y1);
    const Point p2 = Transform(map, area.X2, area.Y2);
    return {p0.X, p0.Y, p1.X, p1.Y, p2.X, p2.Y};
}

TRectangle Bounds(const TArea &area, const TCoordinateMap &map = IdentityMap) {
    TRectangle rectangle{-1.0, -1.0, -1.0, -1.0};
    BoundingRectangle(&rectangle, area, map);
    return rectangle;
}

} // namespace

TEST(InitCoordinateMap, GivesOriginZeroAndTheIdentity) {
    TCoordinateMap map{9.0, 9.0, {9.0, 9.0, 9.0, 9.0}};
    InitCoordinateMap(&map);
    EXPECT_TRUE(SameBits(map, IdentityMap));
}

TEST(CoordinateMapIsTranslation, HasNoTolerance) {
    EXPECT_TRUE(CoordinateMapIsTranslation(IdentityMap));
    const double off = 1.0000000001;
    EXPECT_FALSE(CoordinateMapIsTranslation({0.0, 0.0, {off, 0.0, 0.0, 1.0}}));
    EXPECT_FALSE(CoordinateMapIsTranslation({0.0, 0.0, {1.0, 1e-300, 0.0, 1.0}}));
    EXPECT_FALSE(CoordinateMapIsTranslation({0.0, 0.0, {1.0, 0.0, -1e-300, 1.0}}));
    EXPECT_FALSE(CoordinateMapIsTranslation({0.0, 0.0, {1.0, 0.0, 0.0, off}}));
    EXPECT_TRUE(CoordinateMapIsTranslation({0.0, 0.0, {1.0, -0.0, -0.0, 1.0}})) << "a negative zero equals 0";
}

TEST(CoordinateMapIsTranslation, DoesNotLookAtTheOrigin) {
    EXPECT_TRUE(CoordinateMapIsTranslation({3.5, -1e300, IdentityMatrix}));
    EXPECT_TRUE(CoordinateMapIsTranslation({NaN, Infinity, IdentityMatrix}));
}

TEST(CoordinateMapIsTranslation, IsFalseForAnyNaNInTheMatrix) {
    EXPECT_FALSE(CoordinateMapIsTranslation({0.0, 0.0, {NaN, 0.0, 0.0, 1.0}}));
    EXPECT_FALSE(CoordinateMapIsTranslation({0.0, 0.0, {1.0, NaN, 0.0, 1.0}}));
    EXPECT_FALSE(CoordinateMapIsTranslation({0.0, 0.0, {1.0, 0.0, NaN, 1.0}}));
    EXPECT_FALSE(CoordinateMapIsTranslation({0.0, 0.0, {1.0, 0.0, 0.0, NaN}}));
}

TEST(CoordinateMapTransform, AddsTheOriginToTheLinearPart) {
    const Point point = Transform({10.0, 20.0, {1.0, 2.0, 3.0, 4.0}}, 5.0, 6.0);
    EXPECT_EQ(point.X, 27.0);
    EXPECT_EQ(point.Y, 59.0);
}

TEST(CoordinateMapTransform, AddsTheOriginLast) {
    // 1 + (1e16 - 1e16) is 1; with the origin added first the 1 would be lost.
    const Point point = Transform({1.0, 1.0, {1e16, -1e16, -1e16, 1e16}}, 1.0, 1.0);
    EXPECT_EQ(point.X, 1.0);
    EXPECT_EQ(point.Y, 1.0);
}

TEST(CoordinateMapTransform, IsExactForRandomMapsAndWritesOverItsArguments) {
    RandomDoubles random(21);
    for (int number = 0; number < RandomCases; ++number) {
        const TCoordinateMap map = random.Map();
        const double x = random.Next();
        const double y = random.Next();
        const TMatrix &m = map.Matrix;
        Point point{x, y};
        CoordinateMapTransform(&point.X, &point.Y, map, point.X, point.Y);
        const Point expected{map.X + (m.A11 * x + m.A12 * y), map.Y + (m.A21 * x + m.A22 * y)};
        ASSERT_TRUE(SameBits(point, expected)) << "case " << number;
    }
}

TEST(BoundingRectangle, OfAPlainRectangleIsThatRectangle) {
    EXPECT_TRUE(SameBits(Bounds({1.0, 2.0, 11.0, 2.0, 1.0, 7.0}), TRectangle{1.0, 2.0, 11.0, 7.0}));
}

TEST(BoundingRectangle, TakesTheFourthCornerOfARotatedAreaIntoAccount) {
    EXPECT_TRUE(SameBits(Bounds({0.0, 0.0, 4.0, 3.0, -3.0, 4.0}), TRectangle{-3.0, 0.0, 4.0, 7.0}));
}

TEST(BoundingRectangle, SendsTheCornersThroughTheMap) {
    const TCoordinateMap map{100.0, 200.0, {0.0, -1.0, 1.0, 0.0}};
    EXPECT_TRUE(SameBits(Bounds({0.0, 0.0, 10.0, 0.0, 0.0, 5.0}, map), TRectangle{95.0, 200.0, 100.0, 210.0}));
}

TEST(BoundingRectangle, AddsBeforeItSubtractsInTheFourthCorner) {
    // (1e16 + 1) - 1e16 is 0; subtracting first would give 1.
    const TRectangle rectangle = Bounds({1e16, 1e16, 1e16, 1e16, 1.0, 1.0});
    EXPECT_EQ(rectangle.Left, 0.0);
    EXPECT_EQ(rectangle.Top, 0.0);
}

TEST(BoundingRectangle, KeepsItsLimitsOnTheFarSide) {
    EXPECT_TRUE(SameBits(Bounds({3e9, 4e9, 5e9, 4e9, 3e9, 6e9}), TRectangle{HighestEdge, HighestEdge, 5e9, 6e9}));
    EXPECT_TRUE(
        SameBits(Bounds({-3e9, -4e9, -5e9, -4e9, -3e9, -6e9}), TRectangle{-5e9, -6e9, LowestEdge, LowestEdge}));
    EXPECT_TRUE(SameBits(Bounds({HighestEdge, LowestEdge, HighestEdge, LowestEdge, HighestEdge, LowestEdge}),
                         TRectangle{HighestEdge, LowestEdge, HighestEdge, LowestEdge}));
}

TEST(BoundingRectangle, LeavesOutCornersThatAreNotNumbers) {
    const TRectangle untouched{HighestEdge, HighestEdge, LowestEdge, LowestEdge};
    EXPECT_TRUE(SameBits(Bounds({NaN, NaN, NaN, NaN, NaN, NaN}), untouched));
    // A NaN in P1 leaves the corners P0 and P2.
    EXPECT_TRUE(SameBits(Bounds({1.0, 2.0, NaN, NaN, 3.0, 5.0}), TRectangle{1.0, 2.0, 3.0, 5.0}));
    // An infinite x makes y not a number on its way through the matrix: only P2 counts for the rows.
    EXPECT_TRUE(
        SameBits(Bounds({-Infinity, 0.0, Infinity, 0.0, 0.0, 1.0}), TRectangle{-Infinity, 1.0, Infinity, 1.0}));
}

TEST(BoundingRectangle, OfRandomAreasIsTheExtentOfTheFourCorners) {
    RandomDoubles random(22);
    for (int number = 0; number < RandomCases; ++number) {
        const TArea a = random.Area();
        const TCoordinateMap map = random.Map();
        const Point corners[] = {Transform(map, a.X0, a.Y0), Transform(map, a.X1, a.Y1), Transform(map, a.X2, a.Y2),
                                 Transform(map, a.X1 + a.X2 - a.X0, a.Y1 + a.Y2 - a.Y0)};
        TRectangle expected{Infinity, Infinity, -Infinity, -Infinity};
        for (const Point &corner : corners) {
            expected.Left = std::fmin(expected.Left, corner.X);
            expected.Top = std::fmin(expected.Top, corner.Y);
            expected.Right = std::fmax(expected.Right, corner.X);
            expected.Bottom = std::fmax(expected.Bottom, corner.Y);
        }
        ASSERT_TRUE(SameBits(Bounds(a, map), expected)) << "case " << number;
    }
}

TEST(InverseCoordinateMap, SendsTheNegatedOriginThroughTheInverseMatrix) {
    TCoordinateMap inverse{};
    ASSERT_TRUE(InverseCoordinateMap(&inverse, {10.0, 20.0, {2.0, 0.0, 0.0, 4.0}}));
    EXPECT_EQ(inverse.X, -5.0);
    EXPECT_EQ(inverse.Y, -5.0);
    EXPECT_TRUE(SameBits(inverse.Matrix, TMatrix{0.5, -0.0, -0.0, 0.25}));
}

TEST(InverseCoordinateMap, IsExactForRandomMapsAndTakesItsOperandAsOutput) {
    RandomDoubles random(23);
    int inverted = 0;
    for (int number = 0; number < RandomCases; ++number) {
        const TCoordinateMap map = random.Map();
        TCoordinateMap inverse{};
        const bool done = InverseCoordinateMap(&inverse, map);
        ASSERT_TRUE(SameBits(inverse, done ? ExpectedInverse(map) : map)) << "case " << number;
        TCoordinateMap inPlace = map;
        ASSERT_EQ(InverseCoordinateMap(&inPlace, inPlace), done);
        ASSERT_TRUE(SameBits(inPlace, inverse)) << "case " << number;
        inverted += done ? 1 : 0;
    }
    EXPECT_GT(inverted, RandomCases / 2);
}

TEST(InverseCoordinateMap, LeavesTheInputInTheOutputWhenItFails) {
    ResetORVErrorCount();
    TCoordinateMap out{9.0, 9.0, {9.0, 9.0, 9.0, 9.0}};
    EXPECT_FALSE(InverseCoordinateMap(&out, SingularMap));
    EXPECT_TRUE(SameBits(out, SingularMap));
    const TCoordinateMap noNumber{NaN, 1.0, {NaN, 0.0, 0.0, 1.0}};
    EXPECT_FALSE(InverseCoordinateMap(&out, noNumber));
    EXPECT_TRUE(SameBits(out, noNumber));
    EXPECT_EQ(GetORVErrorCount(), 0);
}

TEST(CoordinateMapInverseTransform, GoesThroughTheInverseMap) {
    RandomDoubles random(24);
    for (int number = 0; number < RandomCases; ++number) {
        const TCoordinateMap map = random.Map();
        const Point from{random.Next(), random.Next()};
        Point point = from;
        const bool done = CoordinateMapInverseTransform(&point.X, &point.Y, map, point.X, point.Y);
        ASSERT_TRUE(SameBits(point, done ? Transform(ExpectedInverse(map), from.X, from.Y) : from))
            << "case " << number;
    }
}

TEST(CoordinateMapInverseTransform, UndoesTheTransform) {
    const TCoordinateMap map{10.0, 20.0, {0.0, -2.0, 2.0, 0.0}};
    Point point{};
    ASSERT_TRUE(CoordinateMapInverseTransform(&point.X, &point.Y, map, 4.0, 30.0));
    EXPECT_EQ(point.X, 5.0);
    EXPECT_EQ(point.Y, 3.0);
}

TEST(CoordinateMapInverseTransform, LeavesItsOutputsOnASingularMap) {
    ResetORVErrorCount();
    Point point{-1.0, -2.0};
    EXPECT_FALSE(CoordinateMapInverseTransform(&point.X, &point.Y, SingularMap, 3.0, 4.0));
    EXPECT_TRUE(SameBits(point, Point{-1.0, -2.0}));
    EXPECT_EQ(GetORVErrorCount(), 0);
}

TEST(CoordinateMapTransformArea, TransformsThePointsOneByOne) {
    RandomDoubles random(25);
    for (int number = 0; number < RandomCases; ++number) {
        const TCoordinateMap map = random.Map();
        const TArea area = random.Area();
        TArea result = area;
        CoordinateMapTransformArea(&result, result, map);
        ASSERT_TRUE(SameBits(result, ExpectedArea(map, area))) << "case " << number;
    }
}

TEST(CoordinateMapInverseTransformArea, SendsThePointsThroughOneInverse) {
    RandomDoubles random(26);
    for (int number = 0; number < RandomCases; ++number) {
        const TCoordinateMap map = random.Map();
        const TArea area = random.Area();
        TArea result = area;
        const bool done = CoordinateMapInverseTransformArea(&result, result, map);
        ASSERT_TRUE(SameBits(result, done ? ExpectedArea(ExpectedInverse(map), area) : area)) << "case " << number;
    }
}

TEST(CoordinateMapInverseTransformArea, WritesNothingOnASingularMap) {
    ResetORVErrorCount();
    const TArea before{1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
    TArea out = before;
    EXPECT_FALSE(CoordinateMapInverseTransformArea(&out, {0.0, 0.0, 1.0, 0.0, 0.0, 1.0}, SingularMap));
    EXPECT_TRUE(SameBits(out, before));
    EXPECT_EQ(GetORVErrorCount(), 0);
}

TEST(ComposeCoordinateMaps, AppliesTheFirstMapThenTheSecond) {
    const TCoordinateMap quarterTurn{0.0, 0.0, {0.0, -1.0, 1.0, 0.0}};
    const TCoordinateMap shiftAndStretch{10.0, 20.0, {3.0, 0.0, 0.0, 5.0}};
    TCoordinateMap composed{};
    ComposeCoordinateMaps(&composed, shiftAndStretch, quarterTurn);
    EXPECT_TRUE(SameBits(composed, TCoordinateMap{-20.0, 10.0, {0.0, -5.0, 3.0, 0.0}}));
    ComposeCoordinateMaps(&composed, quarterTurn, shiftAndStretch);
    EXPECT_TRUE(SameBits(composed, TCoordinateMap{10.0, 20.0, {0.0, -3.0, 5.0, 0.0}}));
}

TEST(ComposeCoordinateMaps, IsExactForRandomMapsAndTakesAnOperandAsOutput) {
    RandomDoubles random(27);
    for (int number = 0; number < RandomCases; ++number) {
        const TCoordinateMap first = random.Map();
        const TCoordinateMap second = random.Map();
        const TMatrix &a = first.Matrix;
        const TMatrix &b = second.Matrix;
        const Point origin = Transform(second, first.X, first.Y);
        const TCoordinateMap expected{origin.X,
                                      origin.Y,
                                      {b.A11 * a.A11 + b.A12 * a.A21, b.A11 * a.A12 + b.A12 * a.A22,
                                       a.A11 * b.A21 + a.A21 * b.A22, a.A12 * b.A21 + a.A22 * b.A22}};
        TCoordinateMap composed{};
        ComposeCoordinateMaps(&composed, first, second);
        ASSERT_TRUE(SameBits(composed, expected)) << "case " << number;
        TCoordinateMap overFirst = first;
        ComposeCoordinateMaps(&overFirst, overFirst, second);
        ASSERT_TRUE(SameBits(overFirst, expected)) << "case " << number;
        TCoordinateMap overSecond = second;
        ComposeCoordinateMaps(&overSecond, first, overSecond);
        ASSERT_TRUE(SameBits(overSecond, expected)) << "case " << number;
    }
}

TEST(SetArea, StoresTheSixValues) {
    TArea area{};
    SetArea(&area, 1.0, -2.0, 3.5, NaN, -0.0, 6.0);
    EXPECT_TRUE(SameBits(area, TArea{1.0, -2.0, 3.5, NaN, -0.0, 6.0}));
}

TEST(SetRectArea, PutsTheCornerLeftTopAndTheEdgesAlongTheAxes) {
    TArea area{};
    SetRectArea(&area, 10.0, 20.0, 30.0, 40.0);
    EXPECT_TRUE(SameBits(area, TArea{10.0, 20.0, 30.0, 20.0, 10.0, 40.0}));
}

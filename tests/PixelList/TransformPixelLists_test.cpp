/* Moving all pixels of a list by a matrix and an offset, or by a coordinate map. */
#include "PixelList/NoLists.h"
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

using TransformPixelListTest = PixelListTest;

/// Reads x and y before it writes either; the products are added from left to right.
Points Moved(Points points, const TMatrix &matrix, double offsetX, double offsetY) {
    for (auto &point : points) {
        const double x = point[0], y = point[1];
        point[0] = matrix.A11 * x + matrix.A12 * y + offsetX;
        point[1] = matrix.A21 * x + matrix.A22 * y + offsetY;
    }
    return points;
}

TEST_F(TransformPixelListTest, MultipliesRowByColumnAndAddsTheOffset) {
    const Handle list = ListOf(2, {{1, 0}, {0, 1}, {10, 100}});
    EXPECT_TRUE(TransformPixelListMatrix(list.Get(), {2, 3, 5, 7}, 1000, 2000));
    EXPECT_TRUE(Holds(list.Get(), {{1002, 2005}, {1003, 2007}, {1320, 2750}}));
    ExpectNoReport();
}

TEST_F(TransformPixelListTest, ReadsBothComponentsBeforeItWritesEither) {
    const Handle list = ListOf(3, {{1, 2, 9}, {-3, 4, 8}});
    EXPECT_TRUE(TransformPixelListMatrix(list.Get(), {0, 1, 1, 0}, 0, 0));
    EXPECT_TRUE(Holds(list.Get(), {{2, 1, 9}, {4, -3, 8}}));
}

TEST_F(TransformPixelListTest, LeavesComponentsFromTwoOnAsTheyAre) {
    for (const std::int64_t dimension : {3, 4, 256}) {
        RandomComponents random(static_cast<std::uint32_t>(dimension));
        const Points points = {random.AnyPoint(dimension), random.AnyPoint(dimension), random.AnyPoint(dimension)};
        const Handle list = ListOf(dimension, points);
        const TMatrix matrix{0.5, -1.5, 2.25, 3};
        EXPECT_TRUE(TransformPixelListMatrix(list.Get(), matrix, 7, -8));
        EXPECT_TRUE(Holds(list.Get(), Moved(points, matrix, 7, -8)));
    }
}

TEST_F(TransformPixelListTest, AcceptsASingularMatrix) {
    const Handle list = ListOf(2, {{1, 2}, {3, 4}});
    EXPECT_TRUE(TransformPixelListMatrix(list.Get(), {1, 1, 1, 1}, 0, 0));
    EXPECT_TRUE(Holds(list.Get(), {{3, 3}, {7, 7}}));
    EXPECT_TRUE(TransformPixelListMatrix(list.Get(), {0, 0, 0, 0}, 5, 6));
    EXPECT_TRUE(Holds(list.Get(), {{5, 6}, {5, 6}}));
    ExpectNoReport();
}

TEST_F(TransformPixelListTest, TakesAnEmptyList) {
    const Handle list = ListOf(2);
    EXPECT_TRUE(TransformPixelListMatrix(list.Get(), {1, 0, 0, 1}, 1, 1));
    EXPECT_TRUE(TransformPixelListCoordinates(list.Get(), {1, 1, {1, 0, 0, 1}}));
    EXPECT_TRUE(Holds(list.Get(), {}));
    ExpectNoReport();
}

TEST_F(TransformPixelListTest, ByACoordinateMapUsesItsMatrixAndItsOrigin) {
    const Points points = {{1, 0, 5}, {0, 1, 6}, {10, 100, 7}};
    const Handle list = ListOf(3, points);
    EXPECT_TRUE(TransformPixelListCoordinates(list.Get(), {1000, 2000, {2, 3, 5, 7}}));
    EXPECT_TRUE(Holds(list.Get(), {{1002, 2005, 5}, {1003, 2007, 6}, {1320, 2750, 7}}));
    ExpectNoReport();
}

TEST_F(TransformPixelListTest, GivesTheSameBitsAsTheSumFromLeftToRight) {
    for (const std::uint32_t number : CaseNumbers(300)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomComponents random(number);
        const std::int64_t dimension = random.Pick(2, 5);
        Points points;
        for (std::int64_t count = random.Pick(0, 20); count > 0; --count)
            points.push_back(random.AnyPoint(dimension));
        const TMatrix matrix{random.Any(), random.Any(), random.Any(), random.Any()};
        const double x = random.Any(), y = random.Any();
        const Handle byMatrix = ListOf(dimension, points), byMap = ListOf(dimension, points);
        EXPECT_TRUE(TransformPixelListMatrix(byMatrix.Get(), matrix, x, y));
        EXPECT_TRUE(TransformPixelListCoordinates(byMap.Get(), {x, y, matrix}));
        const Points expected = Moved(points, matrix, x, y);
        ASSERT_TRUE(Holds(byMatrix.Get(), expected));
        ASSERT_TRUE(Holds(byMap.Get(), expected));
        ExpectNoReport();
    }
}

TEST_F(TransformPixelListTest, ReportsWhatIsNoListUnderOneName) {
    for (const auto &none : NoLists()) {
        EXPECT_FALSE(TransformPixelListMatrix(none.Get(), {1, 0, 0, 1}, 0, 0)) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "TransformPixelListMatrix");
        // Required: the map is handed on, so the report bears the name of the function with the matrix.
        EXPECT_FALSE(TransformPixelListCoordinates(none.Get(), {0, 0, {1, 0, 0, 1}})) << none.Name;
        ExpectReports(1, ErrNotAPixelList, "TransformPixelListMatrix");
        none.ExpectLeftAlone();
    }
}

} // namespace

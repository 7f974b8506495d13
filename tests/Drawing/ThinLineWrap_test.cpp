// Thin lines that leave an image at the side: they go on in the neighbouring rows where columns and rows are evenly
// spaced, and nowhere else; and they never write in front of the plane's first pixel or behind its last one.
#include "Drawing/DrawingSupport.h"

namespace {

using namespace TestSupport;

/// A cleared plane of 8 x 4 pixels of 8 bits in one of the layouts.
Subject Plane8x4(const std::string &layout, std::intptr_t planes = 1) {
    for (const auto &rule : LayoutRules(8, 4, planes, 8))
        if (rule.Name == layout)
            return FakeSubject(rule, 8, 4, planes, 8);
    throw std::runtime_error("no such layout");
}
Picture AfterLine(const Subject &subject, std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) {
    subject.Clear();
    EXPECT_EQ(DrawLineInImage(subject.Get(), 0, x0, y0, x1, y1, 1, 0, 0, 9.0), 0);
    return PictureOf(subject);
}
/// Bytes that are not 0.
std::ptrdiff_t Written(const Subject &subject) {
    return std::ssize(subject.Memory()) - std::count(subject.Memory().begin(), subject.Memory().end(), 0);
}

TEST(ThinLineWrap, GoesOnInTheNextRowOfAnEvenPlane) {
    EXPECT_EQ(AfterLine(Plane8x4("planar"), 6, 1, 11, 1), (Picture{"........", "......**", "***.....", "........"}));
    EXPECT_EQ(AfterLine(Plane8x4("planar"), 1, 1, -4, 1), (Picture{".....***", "**......", "........", "........"}));
}

TEST(ThinLineWrap, StopsAtTheSideWhereColumnsOrRowsAreUneven) {
    EXPECT_EQ(AfterLine(Plane8x4("scattered"), 6, 1, 11, 1),
              (Picture{"........", "......**", "........", "........"}));
    for (const auto &rule : HalfEvenRules(8, 4, 8)) {
        if (!rule.Name.starts_with("uneven"))
            continue;
        EXPECT_EQ(AfterLine(FakeSubject(rule, 8, 4, 1, 8), 6, 1, 11, 1),
                  (Picture{"........", "......**", "........", "........"}))
            << rule.Name;
    }
}

TEST(ThinLineWrap, ComesInFromOutsideWhereItsAddressesDo) {
    EXPECT_EQ(AfterLine(Plane8x4("planar"), 20, -2, 23, -2),
              (Picture{"....***.", "........", "........", "........"}));
    EXPECT_EQ(AfterLine(Plane8x4("planar"), -6, 4, -3, 4), (Picture{"........", "........", "........", "..***..."}));
}

TEST(ThinLineWrap, EndsAtTheFirstAndTheLastPixel) {
    const Subject plane = Plane8x4("planar");
    EXPECT_EQ(AfterLine(plane, 5, 3, 40, 3), (Picture{"........", "........", "........", ".....***"}));
    EXPECT_EQ(Written(plane), 3);
    EXPECT_EQ(AfterLine(plane, 2, 0, -40, 0), (Picture{"***.....", "........", "........", "........"}));
    EXPECT_EQ(Written(plane), 3);
}

TEST(ThinLineWrap, ReachesAllRowsOfABottomUpPlane) {
    const Subject plane = Plane8x4("bottomUp");
    EXPECT_EQ(AfterLine(plane, 2, 0, 2, 4), (Picture{"..*.....", "..*.....", "..*.....", "..*....."}));
    EXPECT_EQ(Written(plane), 4);
    // Eleven bytes from row to row: three are no pixel, then the row above goes on.
    EXPECT_EQ(AfterLine(plane, 6, 2, 13, 2), (Picture{"........", "**......", "......**", "........"}));
    EXPECT_EQ(Written(plane), 7);
    EXPECT_EQ(AfterLine(plane, 6, 0, 13, 0), (Picture{"......**", "........", "........", "........"}));
    EXPECT_EQ(Written(plane), 2);
}

TEST(ThinLineWrap, ReachesAllColumnsOfAMirroredPlane) {
    const Subject plane = Plane8x4("mirrored");
    EXPECT_EQ(AfterLine(plane, 0, 1, 8, 1), (Picture{"........", "********", "........", "........"}));
    EXPECT_EQ(AfterLine(plane, 6, 1, 11, 1), (Picture{"***.....", "......**", "........", "........"}));
    EXPECT_EQ(AfterLine(plane, 0, 3, -9, 3), (Picture{"........", "........", "........", "*......."}));
}

TEST(ThinLineWrap, ReachesAllPixelsOfAPlaneTurnedAround) {
    const Subject plane = Plane8x4("turnedAround");
    EXPECT_EQ(AfterLine(plane, 0, 0, 8, 4), AfterLine(Plane8x4("scattered"), 0, 0, 8, 4));
    EXPECT_EQ(AfterLine(plane, 6, 1, 11, 1), (Picture{"........", "......**", "***.....", "........"}));
}

TEST(ThinLineWrap, LeavesATurnedPlaneAboveAndBelow) {
    const Subject plane = Plane8x4("columnsFirst");
    EXPECT_EQ(AfterLine(plane, 3, 2, 3, 6), (Picture{"....*...", "....*...", "...*....", "...*...."}));
    EXPECT_EQ(AfterLine(plane, 6, 1, 11, 1), (Picture{"........", "......**", "........", "........"}));
}

TEST(ThinLineWrap, WritesBetweenPaddedRowsButNotAroundThem) {
    const Subject plane = Plane8x4("padded");
    AfterLine(plane, 0, 1, 22, 1);
    const PlaneAccess access = AccessOf(plane.Get(), 0);
    for (std::intptr_t i = 0; i < 22; ++i)
        EXPECT_EQ(access.At(0, 1)[i], 9) << i;
    EXPECT_EQ(Written(plane), 22);
    AfterLine(plane, 0, 3, 22, 3);
    EXPECT_EQ(Written(plane), 8);
}

TEST(ThinLineWrap, StaysInItsPlaneOfInterleavedPixels) {
    const Subject image = Plane8x4("interleaved", 3);
    for (std::intptr_t plane = 0; plane < 3; ++plane) {
        image.Clear();
        EXPECT_EQ(DrawLineInImage(image.Get(), plane, -100, 0, 100, 0, 1, 0, 0, 9.0), 0);
        EXPECT_EQ(Written(image), 32);
        for (std::intptr_t i = 0; i < 32; ++i)
            EXPECT_EQ(PixelAt<std::uint8_t>(image, i % 8, i / 8, plane), 9) << plane << ": " << i;
    }
}

TEST(ThinLineWrap, APlaneOfOneColumnOrOneRowHasNoNeighbours) {
    for (const bool column : {true, false}) {
        const Subject line = PlainSubject(column ? 1 : 8, column ? 8 : 1);
        EXPECT_EQ(
            DrawLineInImage(line.Get(), 0, -3, column ? 2 : -1, column ? 12 : -1, column ? 2 : 12, 1, 0, 0, 9.0), 0);
        EXPECT_EQ(Written(line), column ? 1 : 0);
        // The same address arithmetic would meet pixels from here.
        line.Clear();
        EXPECT_EQ(column ? DrawLineInImage(line.Get(), 0, 1, 2, 5, 2, 1, 0, 0, 9.0)
                         : DrawLineInImage(line.Get(), 0, 2, 1, 2, 5, 1, 0, 0, 9.0),
                  0);
        EXPECT_EQ(Written(line), 0);
    }
}

TEST(ThinLineWrap, WrittenPixelsTakeTheDrawModeAndTheConvertedValue) {
    const Subject plane = PlainSubject(8, 4, 16);
    plane.Refill(4);
    EXPECT_TRUE(DrawsAsTold(plane, 0, LineCall{5, 1, 30, 1, 1, 1, 0x0FF0}));
    EXPECT_TRUE(DrawsAsTold(plane, 0, LineCall{5, 1, 30, 1, 1, 2, 1e9}));
    EXPECT_TRUE(DrawsAsTold(plane, 0, LineCall{5, 1, -30, 2, 1, 0, -1e9}));
}

TEST(ThinLineWrap, ThickLinesAndFilledShapesEndAtTheSides) {
    const Subject plane = Plane8x4("planar");
    EXPECT_EQ(DrawLineInImage(plane.Get(), 0, 6, 1, 30, 1, 2, 0, 0, 9.0), 0);
    for (const std::string &row : PictureOf(plane))
        EXPECT_EQ(row.substr(0, 5), ".....");
    plane.Clear();
    EXPECT_EQ(FillEllipseInImage(plane.Get(), 0, 12, 2, 7, 2, 0, 0, 0.0, 9.0), 0);
    for (const std::string &row : PictureOf(plane))
        EXPECT_EQ(row.substr(0, 5), ".....");
    EXPECT_GT(Written(plane), 0);
}

TEST(ThinLineWrap, OutlinesWrapAsTheirLinesDo) {
    const Subject plane = Plane8x4("planar");
    EXPECT_EQ(DrawCircleInImage(plane.Get(), 0, 8, 1, 0, 1, 0, 0, 9.0), 0);
    EXPECT_EQ(PictureOf(plane), (Picture{"........", "........", "*.......", "........"}));
}

} // namespace

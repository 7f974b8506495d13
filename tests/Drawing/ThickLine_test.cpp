// Lines of thickness 2 and more: the rectangle's four corners, and how a polygon is filled.
#include "Drawing/DrawingSupport.h"

namespace {

using namespace TestSupport;

struct FilledRectangle {
    std::int64_t Left, Top, Right, Bottom;
};

class ThickLine : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ExpectNoReport(); }
    /// Draws into a cleared 8-bit image of 30 x 30 and expects exactly one rectangle of pixels, clipped to the image.
    void ExpectRectangle(const LineCall &line, const FilledRectangle &rectangle) {
        for (const Subject &subject : {PlainSubject(30, 30), ScatteredSubject(30, 30)}) {
            EXPECT_EQ(line.Draw(subject.Get(), 0), 0);
            Picture expected(30, std::string(30, '.'));
            for (std::int64_t y = std::max<std::int64_t>(rectangle.Top, 0);
                 y <= std::min<std::int64_t>(rectangle.Bottom, 29); ++y)
                for (std::int64_t x = std::max<std::int64_t>(rectangle.Left, 0);
                     x <= std::min<std::int64_t>(rectangle.Right, 29); ++x)
                    expected[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = '*';
            EXPECT_EQ(PictureOf(subject), expected) << testing::PrintToString(line);
        }
    }
    static constexpr FilledRectangle Nothing{0, 0, -1, -1};
};

TEST_F(ThickLine, ReachesHalfItsThicknessBeyondBothEnds) {
    ExpectRectangle({10, 10, 20, 10, 3}, {9, 9, 22, 11});
    ExpectRectangle({20, 10, 10, 10, 3}, {9, 9, 22, 11});
    ExpectRectangle({10, 10, 10, 20, 3}, {9, 9, 11, 22});
    ExpectRectangle({10, 20, 10, 10, 3}, {9, 9, 11, 22});
    ExpectRectangle({10, 10, 20, 10, 2}, {9, 10, 21, 11});
    ExpectRectangle({10, 10, 12, 10, 8}, {6, 7, 16, 14});
}

TEST_F(ThickLine, IsClippedAtTheEdges) {
    ExpectRectangle({-50, 10, 50, 10, 3}, {0, 9, 29, 11});
    ExpectRectangle({25, 10, 40, 10, 3}, {24, 9, 29, 11});
    ExpectRectangle({10, 28, 20, 28, 9}, {6, 24, 25, 29});
    ExpectRectangle({0, 0, 29, 29, 1000}, {0, 0, 29, 29});
}

TEST_F(ThickLine, OfLengthZeroWritesNothing) {
    for (const std::int64_t thickness : {2, 3, 10, 1000000})
        for (const std::int64_t at : {0, 15, -1, 29, 30})
            ExpectRectangle({at, at, at, at, thickness}, Nothing);
}

TEST_F(ThickLine, WhosePolygonEndsAtRow0WritesNothing) {
    ExpectRectangle({2, -3, 8, -3, 8}, {0, 0, 12, 1});
    ExpectRectangle({2, -3, 8, -3, 6}, Nothing);
    ExpectRectangle({2, -3, 8, -3, 5}, Nothing);
    ExpectRectangle({2, -9, 8, -9, 5}, Nothing);
}

TEST_F(ThickLine, WhosePolygonEndsAtColumn0WritesNothing) {
    ExpectRectangle({-3, 2, -3, 8, 8}, {0, 0, 1, 12});
    ExpectRectangle({-3, 2, -3, 8, 6}, Nothing);
    ExpectRectangle({-3, 2, -3, 8, 5}, Nothing);
    ExpectRectangle({-9, 2, -9, 8, 5}, Nothing);
}

TEST_F(ThickLine, WhosePolygonBeginsAtTheFarEdgesIsLeftOut) {
    ExpectRectangle({10, 31, 20, 31, 3}, Nothing);
    ExpectRectangle({10, 30, 20, 30, 3}, {9, 29, 22, 29});
    ExpectRectangle({31, 10, 31, 20, 3}, Nothing);
    ExpectRectangle({30, 10, 30, 20, 3}, {29, 9, 29, 22});
}

TEST_F(ThickLine, TakesTheLow32BitsOfItsThickness) {
    ExpectRectangle({10, 10, 20, 10, 0x100000003}, {9, 9, 22, 11});
    ExpectRectangle({0x10000000A, 0x20000000A, 0x300000014, 0x40000000A, 3}, {9, 9, 22, 11});
}

TEST_F(ThickLine, ModesAreThoseOfThinLines) {
    const Subject subject = ScatteredSubject(30, 30);
    for (const auto &[mode, expected] : {std::pair{0u, 0x35}, std::pair{1u, 0x24}, std::pair{2u, 0x7D}}) {
        std::fill(subject.Memory().begin(), subject.Memory().end(), std::uint8_t{0x6C});
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 10, 10, 20, 10, 3, mode, 0, 0x35), 0);
        EXPECT_EQ(PixelAt<std::uint8_t>(subject, 12, 11), expected);
        EXPECT_EQ(PixelAt<std::uint8_t>(subject, 12, 12), 0x6C);
    }
}

TEST_F(ThickLine, RandomLinesInAllTypesModesAndLayouts) {
    std::uint32_t number = 0;
    for (const TDataType type : TenTypes)
        for (const ImageSize size :
             {ImageSize{1, 1, 1}, ImageSize{2, 1, 7}, ImageSize{2, 6, 1}, ImageSize{2, 9, 5}, ImageSize{1, 31, 26}}) {
            std::mt19937 random(++number);
            for (const Subject &subject : AllSubjects(size.Width, size.Height, size.Planes, type)) {
                subject.Refill(number);
                for (int i = 0; i < 6; ++i) {
                    LineCall call{Between(random, -9, size.Width + 9), Between(random, -9, size.Height + 9),
                                  Between(random, -9, size.Width + 9), Between(random, -9, size.Height + 9),
                                  Between(random, 2, 9)};
                    call.Mode = static_cast<std::uint32_t>(Between(random, 0, 2));
                    call.Value = RandomValue(random);
                    ASSERT_TRUE(DrawsAsTold(subject, Between(random, 0, size.Planes - 1), call)) << "case " << number;
                }
            }
        }
}

TEST_F(ThickLine, RandomLinesOfManyDirectionsAndThicknesses) {
    const Subject even = PlainSubject(67, 45), scattered = ScatteredSubject(67, 45);
    for (std::uint32_t number = 0; number < 4000; ++number) {
        std::mt19937 random(number);
        const std::int64_t reach = number % 5 == 0 ? 20000 : 40;
        const LineCall call{Between(random, -reach, reach),
                            Between(random, -reach, reach),
                            Between(random, 0, 66),
                            Between(random, 0, 44),
                            Between(random, 2, number % 7 == 0 ? 300 : 20),
                            0,
                            255.0};
        for (const Subject *subject : {&even, &scattered}) {
            subject->Clear();
            ASSERT_TRUE(DrawsAsTold(*subject, 0, call)) << "case " << number;
        }
    }
}

} // namespace

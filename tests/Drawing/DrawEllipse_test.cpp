// Outlines of ellipses: the corners of the polygon, its lines, turning, and random ellipses against the model.
#include "Drawing/DrawingSupport.h"

namespace {

using namespace TestSupport;

class DrawEllipse : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ExpectNoReport(); }
    Picture After(const EllipseCall &call) {
        subject.Clear();
        EXPECT_EQ(call.Draw(subject.Get(), 0), 0);
        return PictureOf(subject);
    }
    Subject subject = ScatteredSubject(11, 7);
};

TEST_F(DrawEllipse, OfRadii0IsOnePixel) {
    EXPECT_EQ(After({4, 3, 0, 0}), (Picture{"...........", "...........", "...........", "....*......", "...........",
                                            "...........", "..........."}));
    EXPECT_EQ(After({11, 3, 0, 0}), Picture(7, "..........."));
}

TEST_F(DrawEllipse, OfRadii1HasThreeCornersAtOneSideAndThreeAtTheOther) {
    // Steps of atan(2): corners at (1, 0), (0, 1), (-1, 1), (-1, 0), (0, -1), (1, -1).
    EXPECT_EQ(After({4, 3, 1, 1}), (Picture{"...........", "...........", "....**.....", "...*.*.....", "...**......",
                                            "...........", "..........."}));
}

TEST_F(DrawEllipse, WithARadiusOf0IsALine) {
    // Steps of a quarter turn: (3, 0), (0, 0), (-3, 0), (0, 0), and back to (3, 0).
    EXPECT_EQ(After({5, 3, 3, 0}), (Picture{"...........", "...........", "...........", "..*******..", "...........",
                                            "...........", "..........."}));
    EXPECT_EQ(After({5, 3, 0, 3}), (Picture{".....*.....", ".....*.....", ".....*.....", ".....*.....", ".....*.....",
                                            ".....*.....", ".....*....."}));
}

TEST_F(DrawEllipse, ItsRotationIsInRadiansFromXTowardsY) {
    EXPECT_EQ(After({5, 3, 3, 0, 1, 0, Pi / 2}), After({5, 3, 0, 3}));
    EXPECT_EQ(After({5, 3, 3, 0, 1, 0, Pi / 4}), (Picture{"...........", "...*.......", "....*......", ".....*.....",
                                                          "......*....", ".......*...", "..........."}));
    EXPECT_EQ(After({5, 3, 3, 0, 1, 0, -Pi / 4}), (Picture{"...........", ".......*...", "......*....", ".....*.....",
                                                           "....*......", "...*.......", "..........."}));
}

TEST_F(DrawEllipse, TakesTheLow32BitsOfCentreRadiiAndThickness) {
    subject.Clear();
    EXPECT_EQ(DrawEllipseInImage(subject.Get(), 0, 0x100000005, 0x200000003, 0x300000004, 0x400000002, 0x500000001, 0,
                                 0, 0.0, 1.0),
              0);
    const Picture drawn = PictureOf(subject);
    EXPECT_EQ(drawn, After({5, 3, 4, 2}));
    subject.Clear();
    EXPECT_EQ(DrawEllipseInImage(subject.Get(), 0, 0xFFFFFFFF, 3, 4, 2, 1, 0, 0, 0.0, 1.0), 0);
    const Picture aside = PictureOf(subject);
    EXPECT_EQ(aside, After({-1, 3, 4, 2}));
}

TEST_F(DrawEllipse, IsClosed) {
    const Subject image = ScatteredSubject(80, 60);
    EXPECT_EQ((EllipseCall{40, 30, 33, 21, 1, 0, 0.4}.Draw(image.Get(), 0)), 0);
    const Picture drawn = PictureOf(image);
    std::size_t written = 0;
    for (std::size_t y = 1; y < 59; ++y)
        for (std::size_t x = 1; x < 79; ++x) {
            if (drawn[y][x] != '*')
                continue;
            ++written;
            const std::string around =
                drawn[y - 1].substr(x - 1, 3) + drawn[y][x - 1] + drawn[y][x + 1] + drawn[y + 1].substr(x - 1, 3);
            EXPECT_GE(std::count(around.begin(), around.end(), '*'), 2) << x << ", " << y;
        }
    EXPECT_GT(written, 120u);
}

TEST_F(DrawEllipse, ThickOutlinesOfLengthZeroWriteNothing) {
    EXPECT_EQ(After({4, 3, 0, 0, 3}), Picture(7, "..........."));
}

TEST_F(DrawEllipse, OneNegativeRadiusIsDrawnByTheSameArithmetic) {
    for (const Subject &image : {PlainSubject(40, 30), ScatteredSubject(40, 30)})
        for (const auto &[a, b] : {std::pair{-9, 7}, std::pair{7, -9}, std::pair{-1, 0}, std::pair{0, -12},
                                   std::pair{-300, 2}, std::pair{14, -1}})
            for (const double rotation : {0.0, 0.7})
                for (const std::int64_t thickness : {1, 3}) {
                    image.Clear();
                    EXPECT_TRUE(DrawsAsTold(image, 0, EllipseCall{20, 15, a, b, thickness, 0, rotation, 9.0}));
                    EXPECT_TRUE(DrawsAsTold(image, 0, FilledEllipseCall{{20, 15, a, b, 1, 0, rotation, 7.0}}));
                }
}

TEST_F(DrawEllipse, RandomOutlinesInAllTypesModesAndLayouts) {
    std::uint32_t number = 0;
    for (const TDataType type : TenTypes)
        for (const ImageSize size :
             {ImageSize{1, 1, 1}, ImageSize{2, 1, 7}, ImageSize{2, 6, 1}, ImageSize{2, 9, 5}, ImageSize{1, 31, 26}}) {
            std::mt19937 random(++number);
            for (const Subject &image : AllSubjects(size.Width, size.Height, size.Planes, type)) {
                image.Refill(number);
                for (int i = 0; i < 4; ++i) {
                    EllipseCall call{Between(random, -5, size.Width + 5), Between(random, -5, size.Height + 5),
                                     Between(random, 0, 20), Between(random, 0, 20)};
                    call.Thickness = std::max<std::int64_t>(1, Between(random, -3, 5));
                    call.Mode = static_cast<std::uint32_t>(Between(random, 0, 2));
                    call.Rotation = i % 2 == 0 ? 0.0 : static_cast<double>(Between(random, -9000, 9000)) / 1003.0;
                    call.Value = RandomValue(random);
                    ASSERT_TRUE(DrawsAsTold(image, Between(random, 0, size.Planes - 1), call)) << "case " << number;
                }
            }
        }
}

TEST_F(DrawEllipse, RandomOutlinesOfManySizes) {
    const Subject even = PlainSubject(67, 45), scattered = ScatteredSubject(67, 45);
    for (std::uint32_t number = 0; number < 1500; ++number) {
        std::mt19937 random(number);
        const std::int64_t reach = number % 10 == 0 ? 2000 : 60;
        const EllipseCall call{Between(random, -reach, reach),
                               Between(random, -reach, reach),
                               Between(random, 0, reach),
                               Between(random, 0, reach),
                               number % 3 == 0 ? Between(random, 2, 30) : 1,
                               0,
                               number % 2 == 0 ? 0.0 : static_cast<double>(Between(random, -9000, 9000)) / 1003.0,
                               255.0};
        for (const Subject *image : {&even, &scattered}) {
            image->Clear();
            ASSERT_TRUE(DrawsAsTold(*image, 0, call)) << "case " << number;
        }
    }
}

} // namespace

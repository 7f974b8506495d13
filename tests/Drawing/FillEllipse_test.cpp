// Filled ellipses: one span per row between the outermost crossings, and random ellipses against the model.
#include "Drawing/DrawingSupport.h"

namespace {

using namespace TestSupport;

class FillEllipse : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ExpectNoReport(); }
    Picture After(const EllipseCall &call) {
        subject.Clear();
        EXPECT_EQ(FilledEllipseCall{call}.Draw(subject.Get(), 0), 0);
        return PictureOf(subject);
    }
    static Picture Empty() { return Picture(7, "..........."); }
    Subject subject = ScatteredSubject(11, 7);
};

TEST_F(FillEllipse, WithARadiusOf0InEitherDirection) {
    EXPECT_EQ(After({4, 3, 0, 0}), Empty());
    EXPECT_EQ(After({4, 3, 3, 0}), Empty());
    EXPECT_EQ(After({5, 3, 0, 3}), (Picture{".....*.....", ".....*.....", ".....*.....", ".....*.....", ".....*.....",
                                            ".....*.....", ".....*....."}));
}

TEST_F(FillEllipse, OfRadii1FillsItsSixCorners) {
    EXPECT_EQ(After({4, 3, 1, 1}), (Picture{"...........", "...........", "....**.....", "...***.....", "...**......",
                                            "...........", "..........."}));
}

TEST_F(FillEllipse, WhoseLowestRowIs0WritesNothing) {
    EXPECT_EQ(After({4, -1, 1, 1}), Empty());
    EXPECT_EQ(After({4, 0, 1, 1}), (Picture{"...***.....", "...**......", "...........", "...........", "...........",
                                            "...........", "..........."}));
}

TEST_F(FillEllipse, RowsThatReachColumn0OnlyAreLeftOut) {
    EXPECT_EQ(After({-1, 3, 1, 1}), Empty());
    EXPECT_EQ(After({0, 3, 1, 1}), (Picture{"...........", "...........", "**.........", "**.........", "...........",
                                            "...........", "..........."}));
}

TEST_F(FillEllipse, IsClippedAtAllEdges) {
    EXPECT_EQ(After({5, 3, 100, 100}), Picture(7, "***********"));
    EXPECT_EQ(After({11, 7, 1, 1}), (Picture{"...........", "...........", "...........", "...........",
                                             "...........", "...........", "..........."}));
    EXPECT_EQ(After({10, 6, 1, 1}), (Picture{"...........", "...........", "...........", "...........",
                                             "...........", "..........*", ".........**"}));
}

TEST_F(FillEllipse, TakesTheLow32BitsOfCentreAndRadii) {
    subject.Clear();
    EXPECT_EQ(
        FillEllipseInImage(subject.Get(), 0, 0x100000005, 0x200000003, 0x300000004, 0x400000002, 0, 0, 0.0, 1.0), 0);
    const Picture drawn = PictureOf(subject);
    EXPECT_EQ(drawn, After({5, 3, 4, 2}));
    EXPECT_NE(drawn, Empty());
}

TEST_F(FillEllipse, AQuarterTurnExchangesTheRadii) {
    EXPECT_EQ(After({5, 3, 2, 0, 1, 0, Pi / 2}), (Picture{"...........", ".....*.....", ".....*.....", ".....*.....",
                                                          ".....*.....", ".....*.....", "..........."}));
}

TEST_F(FillEllipse, ModesSetAndMaskAndAddBits) {
    for (const auto &[mode, expected] : {std::pair{0u, 0x35}, std::pair{1u, 0x24}, std::pair{2u, 0x7D}}) {
        std::fill(subject.Memory().begin(), subject.Memory().end(), std::uint8_t{0x6C});
        EXPECT_EQ(FillEllipseInImage(subject.Get(), 0, 5, 3, 4, 2, mode, 0, 0.0, 0x35), 0);
        EXPECT_EQ(PixelAt<std::uint8_t>(subject, 5, 3), expected);
        EXPECT_EQ(PixelAt<std::uint8_t>(subject, 0, 0), 0x6C);
    }
}

TEST_F(FillEllipse, RandomEllipsesInAllTypesModesAndLayouts) {
    std::uint32_t number = 0;
    for (const TDataType type : TenTypes)
        for (const ImageSize size :
             {ImageSize{1, 1, 1}, ImageSize{2, 1, 7}, ImageSize{2, 6, 1}, ImageSize{2, 9, 5}, ImageSize{1, 31, 26}}) {
            std::mt19937 random(++number);
            for (const Subject &image : AllSubjects(size.Width, size.Height, size.Planes, type)) {
                image.Refill(number);
                for (int i = 0; i < 4; ++i) {
                    FilledEllipseCall call{{Between(random, -5, size.Width + 5), Between(random, -5, size.Height + 5),
                                            Between(random, 0, 20), Between(random, 0, 20)}};
                    call.Mode = static_cast<std::uint32_t>(Between(random, 0, 2));
                    call.Rotation = i % 2 == 0 ? 0.0 : static_cast<double>(Between(random, -9000, 9000)) / 1003.0;
                    call.Value = RandomValue(random);
                    ASSERT_TRUE(DrawsAsTold(image, Between(random, 0, size.Planes - 1), call)) << "case " << number;
                }
            }
        }
}

TEST_F(FillEllipse, RandomEllipsesOfManySizes) {
    const Subject even = PlainSubject(67, 45), scattered = ScatteredSubject(67, 45);
    for (std::uint32_t number = 0; number < 1500; ++number) {
        std::mt19937 random(number);
        const std::int64_t reach = number % 10 == 0 ? 2000 : 60;
        const FilledEllipseCall call{
            {Between(random, -reach, reach), Between(random, -reach, reach), Between(random, 0, reach),
             Between(random, 0, reach), 1, 0,
             number % 2 == 0 ? 0.0 : static_cast<double>(Between(random, -9000, 9000)) / 1003.0, 255.0}};
        for (const Subject *image : {&even, &scattered}) {
            image->Clear();
            ASSERT_TRUE(DrawsAsTold(*image, 0, call)) << "case " << number;
        }
    }
}

} // namespace

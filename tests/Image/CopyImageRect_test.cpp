/* A rectangle of one plane: what is copied where, and what clipping leaves. */
#include "Image/Pictures.h"
#include "ImageMaps.h"
#include "RectangleCopy.h"

#include <limits>

namespace {

using namespace TestSupport;

constexpr std::int32_t Lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t Highest = std::numeric_limits<std::int32_t>::max();
const Rows Letters = {"abcde", "fghij", "klmno", "pqrst"};
const Rows Blank = {"......", "......", "......", "......", "......"};

class CopyImageRectTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override {
        EXPECT_EQ(Show(source->Handle()), Letters) << "the source is only read";
        EXPECT_EQ(source->Count(), 1);
        EXPECT_EQ(target->Count(), 1);
        ClearReports();
    }

    /// Copies and expects success without a report. What the target shows then.
    Rows Copy(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom, std::int32_t x,
              std::int32_t y) {
        EXPECT_TRUE(CopyImageRect(source->Handle(), target->Handle(), 0, 0, left, top, right, bottom, x, y));
        ExpectNoReport();
        return Show(target->Handle());
    }

    std::unique_ptr<FakeImage> source = Drawn(Letters);
    std::unique_ptr<FakeImage> target = Drawn(Blank);
};

TEST_F(CopyImageRectTest, CopiesTheRectangleWithItsEdgesToTheTargetPosition) {
    EXPECT_EQ(Copy(1, 1, 3, 2, 2, 3), (Rows{"......", "......", "......", "..ghi.", "..lmn."}));
}

TEST_F(CopyImageRectTest, CopiesOnePixel) {
    EXPECT_EQ(Copy(4, 3, 4, 3, 5, 4), (Rows{"......", "......", "......", "......", ".....t"}));
}

TEST_F(CopyImageRectTest, CopiesAWholeImage) {
    EXPECT_EQ(Copy(0, 0, 4, 3, 0, 0), (Rows{"abcde.", "fghij.", "klmno.", "pqrst.", "......"}));
}

TEST_F(CopyImageRectTest, CopiesWholeLinesBetweenImagesOfOneForm) {
    target = Drawn(Rows{".....", ".....", ".....", "....."});
    EXPECT_EQ(Copy(0, 1, 4, 2, 0, 1), (Rows{".....", "fghij", "klmno", "....."}));
    EXPECT_EQ(Copy(0, 0, 4, 3, 0, 0), Letters);
}

TEST_F(CopyImageRectTest, SwapsALeftGreaterThanRight) {
    EXPECT_EQ(Copy(3, 1, 1, 2, 0, 0), (Rows{"ghi...", "lmn...", "......", "......", "......"}));
}

TEST_F(CopyImageRectTest, SwapsATopGreaterThanBottom) {
    EXPECT_EQ(Copy(1, 2, 3, 1, 0, 0), (Rows{"ghi...", "lmn...", "......", "......", "......"}));
}

TEST_F(CopyImageRectTest, ClipsTheRectangleToTheSource) {
    EXPECT_EQ(Copy(3, 2, 99, 99, 1, 1), (Rows{"......", ".no...", ".st...", "......", "......"}));
}

TEST_F(CopyImageRectTest, NegativeCoordinatesMoveTheTargetPositionByTheSameAmount) {
    EXPECT_EQ(Copy(-2, -1, 1, 0, 1, 2), (Rows{"......", "......", "......", "...ab.", "......"}));
}

TEST_F(CopyImageRectTest, ANegativeTargetPositionIsMadeUpForByTheRectangle) {
    EXPECT_EQ(Copy(-3, -2, 1, 1, -2, -2), (Rows{".ab...", ".fg...", "......", "......", "......"}));
}

TEST_F(CopyImageRectTest, CopiesNoMoreThanFitsTheTarget) {
    EXPECT_EQ(Copy(0, 0, 4, 3, 4, 3), (Rows{"......", "......", "......", "....ab", "....fg"}));
}

TEST_F(CopyImageRectTest, ARectangleEntirelyOutsideGivesTrueAndChangesNothing) {
    const std::int32_t outside[][6] = {{5, 0, 9, 3, 0, 0},   {0, 4, 4, 9, 0, 0},    {-9, 0, -1, 3, 0, 0},
                                       {0, -9, 4, -1, 0, 0}, {0, 0, 4, 3, 6, 0},    {0, 0, 4, 3, 0, 5},
                                       {9, 0, 5, 3, 0, 0},   {0, 9, 4, 4, 0, 0},    {-1, 0, -9, 3, 0, 0},
                                       {0, -1, 4, -9, 0, 0}, {0, 0, 4, 3, 99, -99}, {Highest, 0, Highest, 3, 0, 0}};
    for (const auto &r : outside)
        EXPECT_EQ(Copy(r[0], r[1], r[2], r[3], r[4], r[5]), Blank)
            << r[0] << " " << r[1] << " " << r[2] << " " << r[3] << " to " << r[4] << ", " << r[5];
}

TEST_F(CopyImageRectTest, ATargetPositionThatTheRectangleMovesOutGivesTrueAndChangesNothing) {
    for (const std::int32_t step : {4, 5, 99})
        EXPECT_EQ(Copy(-step, 0, 4, 3, 2, 0), Blank) << step;
    for (const std::int32_t step : {3, 4, 99})
        EXPECT_EQ(Copy(0, -step, 4, 3, 0, 2), Blank) << step;
    EXPECT_EQ(Copy(Lowest, Lowest, Highest, Highest, 0, 0), Blank);
}

TEST_F(CopyImageRectTest, TheLastColumnAndRowOfTheTargetAreReached) {
    EXPECT_EQ(Copy(-3, -2, 4, 3, 2, 2), (Rows{"......", "......", "......", "......", ".....a"}));
}

TEST_F(CopyImageRectTest, TakesTheLargestCoordinates) {
    EXPECT_EQ(Copy(Lowest, Lowest, Highest, Highest, Lowest, Lowest),
              (Rows{"abcde.", "fghij.", "klmno.", "pqrst.", "......"}));
    target = Drawn(Blank);
    EXPECT_EQ(Copy(Highest, Highest, 4, 3, 5, 4), (Rows{"......", "......", "......", "......", ".....t"}));
}

TEST_F(CopyImageRectTest, WritesTheNamedPlaneOnly) {
    const auto from = DrawnPlanes({{"ab", "cd"}, {"ef", "gh"}, {"ij", "kl"}});
    const auto to = DrawnPlanes({{"..", ".."}, {"--", "--"}});
    ASSERT_TRUE(CopyImageRect(from->Handle(), to->Handle(), 2, 1, 0, 0, 1, 1, 0, 0));
    EXPECT_EQ(Show(to->Handle(), 0), (Rows{"..", ".."}));
    EXPECT_EQ(Show(to->Handle(), 1), (Rows{"ij", "kl"}));
    ASSERT_TRUE(CopyImageRect(from->Handle(), to->Handle(), 1, 0, 1, 0, 1, 1, 0, 0));
    EXPECT_EQ(Show(to->Handle(), 0), (Rows{"f.", "h."}));
    EXPECT_EQ(Show(to->Handle(), 1), (Rows{"ij", "kl"}));
}

TEST_F(CopyImageRectTest, CopiesAPlaneOfATurnedView) {
    const Rows expected[] = {{},
                             {"ejot", "dins", "chmr", "bglq", "afkp"},
                             {"tsrqp", "onmlk", "jihgf", "edcba"},
                             {"pkfa", "qlgb", "rmhc", "snid", "toje"}};
    for (const std::uint32_t rotation : {1u, 2u, 3u}) {
        Handle view;
        ASSERT_TRUE(CreateRotatedImageMap(source->Handle(), rotation, view.Out()));
        const Rows &shown = expected[rotation];
        ASSERT_EQ(Show(view.Get()), shown) << "the view itself";
        const auto copy = Drawn(Rows(shown.size(), std::string(shown[0].size(), '.')));
        ASSERT_TRUE(CopyImageRect(view.Get(), copy->Handle(), 0, 0, 0, 0, 99, 99, 0, 0));
        EXPECT_EQ(Show(copy->Handle()), shown);
        // And the other way round: writing through the view.
        const auto base = Drawn(Rows(4, "....."));
        Handle turned;
        ASSERT_TRUE(CreateRotatedImageMap(base->Handle(), rotation, turned.Out()));
        ASSERT_TRUE(CopyImageRect(copy->Handle(), turned.Get(), 0, 0, 0, 0, 99, 99, 0, 0));
        EXPECT_EQ(Show(base->Handle()), Letters);
    }
}

TEST_F(CopyImageRectTest, CopiesAPlaneOfAStitchedViewWithAnUnevenTable) {
    const auto right = Drawn(Rows{"12345", "67890", "ABCDE", "vwxyz"});
    Handle stitched;
    ASSERT_TRUE(CreatePanoramicImageMap(source->Handle(), right->Handle(), 0, stitched.Out()));
    ASSERT_TRUE(CopyImageRect(stitched.Get(), target->Handle(), 0, 0, 3, 0, 6, 3, 1, 0));
    EXPECT_EQ(Show(target->Handle()), (Rows{".de12.", ".ij67.", ".noAB.", ".stvw.", "......"}));
}

TEST_F(CopyImageRectTest, CopiesBetweenAllTypesAndLayouts) {
    constexpr std::intptr_t width = 19, height = 6, targetWidth = 18, targetHeight = 7;
    for (const TDataType type : {0x8u, 0x108u, 0x10u, 0x110u, 0x20u, 0x120u, 0x40u, 0x140u, 0x220u, 0x240u}) {
        const PlainCopy copy{width, targetWidth, PixelSize(type)};
        const auto targets = MakeLayouts(targetWidth, targetHeight, 2, type, 77);
        for (const auto &from : MakeLayouts(width, height, 2, type, 33))
            for (const auto &to : targets) {
                if (to.Name == "fake repeating")
                    continue; // shows a pixel at several places
                auto expected = PixelBytes(to.Get(), 1);
                const auto other = PixelBytes(to.Get(), 0);
                copy(from.Content[0], expected, 1, 2, 17, 4, 1, 3);
                ASSERT_TRUE(CopyImageRect(from.Get(), to.Get(), 0, 1, 1, 2, 18, 4, 1, 3));
                ASSERT_EQ(PixelBytes(to.Get(), 1), expected) << from.Name << " to " << to.Name << ", type " << type;
                ASSERT_EQ(PixelBytes(to.Get(), 0), other) << from.Name << " to " << to.Name << ", type " << type;
            }
    }
    ExpectNoReport();
}

} // namespace

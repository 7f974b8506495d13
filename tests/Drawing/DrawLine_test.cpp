// Lines one pixel thick as their callers see them: which pixels, which plane, how modes and arguments count.
#include "Drawing/DrawingSupport.h"

namespace {

using namespace TestSupport;

class DrawLine : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override {
        ExpectNoReport();
        if (subject.Fake) {
            EXPECT_EQ(subject.Fake->Count(), 1);
        }
    }
    /// Draws into a cleared image of 8 x 6 pixels whose rows and columns are out of order.
    Picture After(std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) {
        subject.Clear();
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, x0, y0, x1, y1, 1, 0, 0, 7.0), 0);
        return PictureOf(subject);
    }
    Subject subject = ScatteredSubject(8, 6);
};

TEST_F(DrawLine, PlotsAllButItsLastPixel) {
    EXPECT_EQ(After(0, 0, 3, 0), (Picture{"***.....", "........", "........", "........", "........", "........"}));
    EXPECT_EQ(After(3, 1, 0, 1), (Picture{"........", ".***....", "........", "........", "........", "........"}));
    EXPECT_EQ(After(2, 1, 2, 4), (Picture{"........", "..*.....", "..*.....", "..*.....", "........", "........"}));
    EXPECT_EQ(After(2, 4, 2, 1), (Picture{"........", "........", "..*.....", "..*.....", "..*.....", "........"}));
    EXPECT_EQ(After(1, 1, 4, 4), (Picture{"........", ".*......", "..*.....", "...*....", "........", "........"}));
    EXPECT_EQ(After(4, 1, 1, 4), (Picture{"........", "....*...", "...*....", "..*.....", "........", "........"}));
}

TEST_F(DrawLine, WithBothEndsEqualPlotsOnePixel) {
    EXPECT_EQ(After(5, 2, 5, 2), (Picture{"........", "........", ".....*..", "........", "........", "........"}));
    EXPECT_EQ(After(8, 2, 8, 2), Picture(6, "........"));
    EXPECT_EQ(After(5, 6, 5, 6), Picture(6, "........"));
    EXPECT_EQ(After(-1, 0, -1, 0), Picture(6, "........"));
}

TEST_F(DrawLine, OneStepPlotsItsFirstPixel) {
    EXPECT_EQ(After(5, 2, 6, 2), After(5, 2, 5, 2));
    EXPECT_EQ(After(5, 2, 4, 3), After(5, 2, 5, 2));
}

TEST_F(DrawLine, HalvesStayWithTheFormerRowOrColumn) {
    EXPECT_EQ(After(0, 0, 4, 2), (Picture{"**......", "..**....", "........", "........", "........", "........"}));
    EXPECT_EQ(After(4, 2, 0, 0), (Picture{"........", ".**.....", "...**...", "........", "........", "........"}));
    EXPECT_EQ(After(1, 0, 3, 4), (Picture{".*......", ".*......", "..*.....", "..*.....", "........", "........"}));
    EXPECT_EQ(After(7, 5, 5, 1), (Picture{"........", "........", "......*.", "......*.", ".......*", ".......*"}));
}

TEST_F(DrawLine, KeepsItsWayWhenItsEndsLieOutside) {
    EXPECT_EQ(After(-4, -2, 4, 2), (Picture{"**......", "..**....", "........", "........", "........", "........"}));
    EXPECT_EQ(After(6, 0, 12, 3), (Picture{"......**", "........", "........", "........", "........", "........"}));
}

TEST_F(DrawLine, TakesTheLow32BitsOfItsCoordinatesAndThickness) {
    const std::int64_t far = std::int64_t{5} << 32;
    EXPECT_EQ(After(0x100000003, far + 1, far + 6, 0x100000001), After(3, 1, 6, 1));
    EXPECT_EQ(After(0xFFFFFFFF, 2, 3, 2), After(-1, 2, 3, 2));
    subject.Clear();
    EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 3, 1, 6, 1, 0x700000001, 0, 0, 7.0), 0);
    const Picture thin = PictureOf(subject);
    EXPECT_EQ(thin, After(3, 1, 6, 1));
}

TEST_F(DrawLine, ModesSetAndMaskAndAddBitsOfIntegers) {
    const auto drawn = [&](std::uint32_t mode, std::uint8_t before, double value) {
        std::fill(subject.Memory().begin(), subject.Memory().end(), before);
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 1, 1, 2, 1, 1, mode, 0, value), 0);
        EXPECT_EQ(PixelAt<std::uint8_t>(subject, 2, 1), before);
        return static_cast<int>(PixelAt<std::uint8_t>(subject, 1, 1));
    };
    EXPECT_EQ(drawn(0, 0x6C, 0x35), 0x35);
    EXPECT_EQ(drawn(1, 0x6C, 0x35), 0x24);
    EXPECT_EQ(drawn(2, 0x6C, 0x35), 0x7D);
}

TEST_F(DrawLine, ModesAllSetFloatingPointPixels) {
    for (const std::uint32_t mode : {0u, 1u, 2u}) {
        const Subject real = PlainSubject(4, 4, 32 | DataTypeFloat);
        const Subject longReal = PlainSubject(4, 4, 64 | DataTypeFloat);
        real.Refill(5);
        longReal.Refill(6);
        EXPECT_EQ(DrawLineInImage(real.Get(), 0, 1, 2, 2, 2, 1, mode, 0, -1.25), 0);
        EXPECT_EQ(DrawLineInImage(longReal.Get(), 0, 1, 2, 2, 2, 1, mode, 0, -1.25), 0);
        EXPECT_EQ(PixelAt<float>(real, 1, 2), -1.25f) << mode;
        EXPECT_EQ(PixelAt<double>(longReal, 1, 2), -1.25) << mode;
    }
}

TEST_F(DrawLine, LeavesTheOtherPlanesAlone) {
    for (std::intptr_t plane = 0; plane < 3; ++plane)
        for (const Subject &several : AllSubjects(7, 5, 3, 16)) {
            several.Refill(static_cast<std::uint32_t>(plane) + 1);
            EXPECT_TRUE(DrawsAsTold(several, plane, LineCall{0, 0, 7, 5, 1, 0, 4711.0}));
        }
}

TEST_F(DrawLine, DrawsInImagesThatOwnTheirMemory) {
    for (const std::intptr_t planes : {1, 2, 3}) {
        Handle image;
        ASSERT_TRUE(CreateGenericImage(planes, 9, 5, planes == 3, image.Out()));
        for (std::intptr_t plane = 0; plane < planes; ++plane) {
            const PlaneAccess access = AccessOf(image.Get(), plane);
            for (std::intptr_t i = 0; i < 45; ++i)
                *access.At(i % 9, i / 9) = 1;
        }
        EXPECT_EQ(DrawLineInImage(image.Get(), planes - 1, 0, 4, 4, 0, 1, 0, 0, 200.0), 0);
        for (std::intptr_t plane = 0; plane < planes; ++plane) {
            const PlaneAccess access = AccessOf(image.Get(), plane);
            for (std::intptr_t i = 0; i < 45; ++i) {
                const bool met = plane == planes - 1 && i % 9 == 4 - i / 9 && i / 9 > 0;
                EXPECT_EQ(*access.At(i % 9, i / 9), met ? 200 : 1) << planes << ": " << i;
            }
        }
        EXPECT_EQ(RefCount(image.Get()), 1u);
    }
}

TEST_F(DrawLine, DrawsInTheSmallestImages) {
    for (const TDataType type : TenTypes)
        for (const ImageSize size : {ImageSize{1, 1, 1}, ImageSize{1, 1, 9}, ImageSize{1, 9, 1}, ImageSize{1, 2, 2}})
            for (const Subject &small : AllSubjects(size.Width, size.Height, 1, type)) {
                small.Refill(3);
                EXPECT_TRUE(DrawsAsTold(small, 0, LineCall{0, 0, 0, 0, 1, 0, 3.0}));
                EXPECT_TRUE(DrawsAsTold(small, 0, LineCall{-3, -3, 12, 12, 1, 0, 4.0}));
                EXPECT_TRUE(DrawsAsTold(small, 0, LineCall{0, 12, 0, -4, 1, 2, 5.0}));
                EXPECT_TRUE(DrawsAsTold(small, 0, LineCall{12, 0, -4, 0, 1, 1, 5.0}));
                EXPECT_TRUE(DrawsAsTold(small, 0, LineCall{-3, 1, 12, 0, 1, 0, 9.0}));
            }
}

TEST_F(DrawLine, AnImageWithoutPixelsTakesNone) {
    for (const ImageSize size : {ImageSize{1, 0, 0}, ImageSize{1, 0, 4}, ImageSize{1, 4, 0}}) {
        const auto empty = std::make_unique<FakeImage>(size.Width, size.Height, 64u);
        empty->AddPlane(
            empty->Pixels.data() + 32, 8, [](std::intptr_t i) { return i; }, [](std::intptr_t j) { return j; });
        EXPECT_EQ(DrawLineInImage(empty->Handle(), 0, -2, -2, 5, 5, 1, 0, 0, 9.0), 0);
        EXPECT_EQ(DrawLineInImage(empty->Handle(), 0, -2, -2, 5, 5, 3, 0, 0, 9.0), 0);
        EXPECT_EQ(FillCircleInImage(empty->Handle(), 0, 0, 0, 5, 0, 0, 9.0), 0);
        EXPECT_EQ(empty->Pixels, PlaneBytes(64));
    }
}

} // namespace

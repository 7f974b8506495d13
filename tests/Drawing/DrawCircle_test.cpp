// Circles are ellipses of two equal radii that are not turned.
#include "Drawing/DrawingSupport.h"

namespace {

using namespace TestSupport;

TEST(DrawCircle, IsTheOutlineOfAnEllipseOfEqualRadii) {
    for (const Subject &circle : {PlainSubject(60, 50, 16), ScatteredSubject(60, 50, 16)})
        for (std::int64_t radius = 0; radius < 70; ++radius)
            for (const std::int64_t thickness : {1, 2, 5})
                for (const std::uint32_t mode : {0u, 1u, 2u}) {
                    circle.Refill(static_cast<std::uint32_t>(radius));
                    const PlaneBytes before = circle.Memory();
                    EXPECT_EQ(DrawCircleInImage(circle.Get(), 0, 31, 22, radius, thickness, mode, 0, 4711.0), 0);
                    const PlaneBytes drawn = circle.Memory();
                    circle.Memory().assign(before.begin(), before.end());
                    EXPECT_EQ(
                        DrawEllipseInImage(circle.Get(), 0, 31, 22, radius, radius, thickness, mode, 0, 0.0, 4711.0),
                        0);
                    ASSERT_EQ(drawn, circle.Memory()) << radius << ", " << thickness << ", " << mode;
                }
}

TEST(DrawCircle, FilledIsAFilledEllipseOfEqualRadii) {
    for (const Subject &circle : {PlainSubject(60, 50, 16), ScatteredSubject(60, 50, 16)})
        for (std::int64_t radius = 0; radius < 70; ++radius)
            for (const std::uint32_t mode : {0u, 1u, 2u}) {
                circle.Refill(static_cast<std::uint32_t>(radius));
                const PlaneBytes before = circle.Memory();
                EXPECT_EQ(FillCircleInImage(circle.Get(), 0, 31, 22, radius, mode, 0, 4711.0), 0);
                const PlaneBytes drawn = circle.Memory();
                circle.Memory().assign(before.begin(), before.end());
                EXPECT_EQ(FillEllipseInImage(circle.Get(), 0, 31, 22, radius, radius, mode, 0, 0.0, 4711.0), 0);
                ASSERT_EQ(drawn, circle.Memory()) << radius << ", " << mode;
            }
}

TEST(DrawCircle, OfRadius0IsOnePixelAsAnOutlineAndNoneFilled) {
    const Subject subject = ScatteredSubject(5, 3);
    EXPECT_EQ(FillCircleInImage(subject.Get(), 0, 2, 1, 0, 0, 0, 9.0), 0);
    EXPECT_EQ(PictureOf(subject), (Picture{".....", ".....", "....."}));
    EXPECT_EQ(DrawCircleInImage(subject.Get(), 0, 2, 1, 0, 1, 0, 0, 9.0), 0);
    EXPECT_EQ(PictureOf(subject), (Picture{".....", "..*..", "....."}));
}

TEST(DrawCircle, TakesTheLow32BitsOfItsArguments) {
    const Subject subject = ScatteredSubject(9, 7);
    EXPECT_EQ(DrawCircleInImage(subject.Get(), 0, 0x100000004, 0x200000003, 0x300000001, 0x400000001, 0, 0, 9.0), 0);
    EXPECT_EQ(PictureOf(subject),
              (Picture{".........", ".........", "....**...", "...*.*...", "...**....", ".........", "........."}));
    subject.Clear();
    EXPECT_EQ(FillCircleInImage(subject.Get(), 0, 0x100000004, 0x200000003, 0x300000001, 0, 0, 9.0), 0);
    EXPECT_EQ(PictureOf(subject),
              (Picture{".........", ".........", "....**...", "...***...", "...**....", ".........", "........."}));
}

TEST(DrawCircle, LeavesTheOtherPlanesAlone) {
    for (const Subject &subject : AllSubjects(12, 9, 3, 8)) {
        subject.Refill(9);
        std::vector<PlaneBytes> before;
        for (std::intptr_t plane = 0; plane < 3; ++plane)
            before.push_back(PixelBytes(subject.Get(), plane));
        EXPECT_EQ(FillCircleInImage(subject.Get(), 1, 6, 4, 3, 0, 0, 77.0), 0);
        EXPECT_EQ(PixelAt<std::uint8_t>(subject, 6, 4, 1), 77) << subject.Name;
        for (const std::intptr_t plane : {0, 2})
            EXPECT_EQ(PixelBytes(subject.Get(), plane), before[static_cast<std::size_t>(plane)]) << subject.Name;
    }
}

} // namespace

/* An area of an image in the image's own coordinate system, its axes upright. */
#include "ImageCoordinates.h"
#include "Transformations/TransformChecks.h"

namespace {

using namespace TransformModel;

using Bytes = std::vector<std::uint8_t>;

class CreateSubImageTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override {
        EXPECT_EQ(image->Count(), 1);
        ClearReports();
    }
    Handle SubImage(const TArea &area) {
        Handle out;
        EXPECT_TRUE(CreateSubImage(image->Handle(), out.Out(), area));
        EXPECT_EQ(ReportCount(), 0);
        return out;
    }
    void ExpectSilentRefusal(const TArea &area) {
        ExpectRefusal(image->Handle(), [&](void *from, void **out) { return CreateSubImage(from, out, area); });
        ExpectNoReport();
    }

    std::unique_ptr<FakeImage> image =
        ImageOf<std::uint8_t>(4, 3, 8, {11, 12, 13, 14, 21, 22, 23, 24, 31, 32, 33, 34});
};

TEST_F(CreateSubImageTest, ShowsARectangleWithBothItsEdges) {
    const Handle out = SubImage(RectArea(1.0, 1.0, 3.0, 2.0));
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{1, 3, 2}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{22, 23, 24, 32, 33, 34}));
}

TEST_F(CreateSubImageTest, OfTheWholeImageIsEqual) {
    const Handle out = SubImage(RectArea(0.0, 0.0, 3.0, 2.0));
    ASSERT_EQ(SizeOf(out.Get()), SizeOf(image->Handle()));
    EXPECT_EQ(PixelBytes(out.Get(), 0), PixelBytes(image->Handle(), 0));
}

TEST_F(CreateSubImageTest, ShowsAPointAsOnePixel) {
    const Handle out = SubImage({2.0, 1.0, 2.0, 1.0, 2.0, 1.0});
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{1, 1, 1}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{23}));
}

TEST_F(CreateSubImageTest, TakesTheSizeOfTheRectangleRoundedHalfUp) {
    const std::pair<double, std::intptr_t> sizes[] = {{0.0, 1}, {0.49, 1}, {0.5, 2}, {1.25, 2}, {2.5, 4}, {9.0, 10}};
    for (const auto &[right, width] : sizes)
        EXPECT_EQ(SizeOf(SubImage(RectArea(0.0, 0.0, right, 2.0)).Get()), (ImageSize{1, width, 3})) << right;
}

TEST_F(CreateSubImageTest, DoesNotCareForTheOrderOfTheCorners) {
    const Handle out = SubImage(RectArea(3.0, 2.0, 1.0, 1.0));
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{1, 3, 2}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{22, 23, 24, 32, 33, 34}));
}

TEST_F(CreateSubImageTest, FillsWhatLiesBesideTheImage) {
    const Handle out = SubImage(RectArea(3.0, -1.0, 4.0, 0.0));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{129, 129, 14, 129}));
    const Handle away = SubImage(RectArea(-1e6, 7.0, -1e6, 8.0));
    EXPECT_EQ(PixelsOf<std::uint8_t>(away), (Bytes{129, 129}));
}

TEST_F(CreateSubImageTest, IsUprightInTheImagesOwnCoordinates) {
    image->Coordinates = {3.0, 0.0, {0.0, -1.0, 1.0, 0.0}}; // x runs down, y to the left
    const Handle out = SubImage(RectArea(0.0, 0.0, 2.0, 1.0));
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{1, 3, 2}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{14, 24, 34, 13, 23, 33}));
}

TEST_F(CreateSubImageTest, HasTheUnitOfTheCoordinateSystemAsItsPixel) {
    image->Coordinates = {1.0, 1.0, {0.5, 0.0, 0.0, 0.5}};
    const Handle out = SubImage(RectArea(0.0, 0.0, 4.0, 0.0));
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{1, 5, 1}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{22, 22, 23, 23, 24}));
}

TEST_F(CreateSubImageTest, HasACoordinateSystemWithoutTurnThatBeginsAtTheArea) {
    image->Coordinates = {1.0, 1.0, {0.5, 0.0, 0.0, 0.5}};
    const Handle out = SubImage(RectArea(1.0, -1.0, 4.0, 2.0));
    TCoordinateMap coordinates{};
    ASSERT_TRUE(GetImageCoordinates(out.Get(), &coordinates));
    EXPECT_TRUE(SameMap(coordinates, {-1.0, 1.0, IdentityMatrix}));
}

TEST_F(CreateSubImageTest, GivesFalseWithoutAReportForACoordinateSystemWithoutAnInverse) {
    for (const double determinant : {0.0, 1e-7, std::nan("")}) {
        image->Coordinates = {0.0, 0.0, {1.0, 0.0, 0.0, determinant}};
        ExpectSilentRefusal(SmallArea);
    }
}

TEST_F(CreateSubImageTest, GivesFalseWithoutAReportForACoordinateSystemWhoseInverseIsTooSmall) {
    image->Coordinates = {0.0, 0.0, {1001.0, 0.0, 0.0, 1000.0}};
    ExpectSilentRefusal(SmallArea);
    image->Coordinates.Matrix.A11 = 999.0;
    EXPECT_EQ(SizeOf(SubImage(SmallArea).Get()), (ImageSize{1, 4, 3}));
}

TEST_F(CreateSubImageTest, EqualsTheModelForAreasInAnyCoordinateSystem) {
    const TArea areas[] = {RectArea(0.0, 0.0, 20.0, 13.0),
                           RectArea(2.0, 3.0, 9.0, 8.0),
                           RectArea(2.3, 3.7, 9.1, 8.2),
                           RectArea(-3.5, -2.25, 9.0, 8.0),
                           {10.0, 1.0, 18.0, 9.0, 4.0, 7.0}};
    image = WildImage(21, 14, {0x408, 0x10, 0x120, 0x220}, 17);
    for (const auto &[name, matrix] : Matrices())
        for (const double origin : {0.0, 5.0, 2.71}) {
            image->Coordinates = {origin, -origin, matrix};
            const ModelSource source(image->Handle());
            for (const auto &area : areas) {
                SCOPED_TRACE(testing::Message() << name << ", origin " << origin << ", area from " << area.X0);
                ASSERT_NO_FATAL_FAILURE(ExpectSubImageAsModel(image->Handle(), source, area));
            }
        }
}

TEST_F(CreateSubImageTest, CutsAtWholePixelsFromEveryLayoutAndType) {
    for (const TDataType type : PixelTypes)
        for (const auto &layout : MakeLayouts(19, 6, 2, type, type)) {
            SCOPED_TRACE(testing::Message() << layout.Name << ", type " << type);
            const ModelSource source(layout.Get());
            for (const auto &area : {RectArea(2.0, 1.0, 17.0, 4.0), RectArea(0.0, 0.0, 18.0, 5.0),
                                     RectArea(-2.0, -1.0, 20.0, 7.0), RectArea(18.0, 5.0, 18.0, 5.0)})
                ASSERT_NO_FATAL_FAILURE(ExpectSubImageAsModel(layout.Get(), source, area));
        }
}

} // namespace

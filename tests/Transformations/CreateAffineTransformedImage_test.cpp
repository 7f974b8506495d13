/* A whole image, or an area of it in image coordinates, by a map with an origin. Values of single pixels and the
 * weights are tested in CreateMatrixTransformedImage_test.cpp. */
#include "Transformations/TransformChecks.h"

#include <thread>

namespace {

using namespace TransformModel;

using Bytes = std::vector<std::uint8_t>;
const std::vector<std::uint8_t> Digits = {11, 12, 13, 14, 21, 22, 23, 24, 31, 32, 33, 34};

TEST(CreateAffineTransformedImage, BeginsAtTheCornerOfTheMappedImageWhateverTheOrigin) {
    const auto image = ImageOf(4, 3, 8, Digits);
    for (const double origin : {0.0, 1000.0, -77.0, 0.25, -12345.5}) {
        const TCoordinateMap map{origin, -origin, {-1.0, 0.0, 0.0, 1.0}};
        Handle out;
        ASSERT_TRUE(CreateAffineTransformedImage(image->Handle(), &map, out.Out()));
        ASSERT_EQ(SizeOf(out.Get()), (ImageSize{1, 4, 3}));
        EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{129, 14, 13, 12, 129, 24, 23, 22, 129, 34, 33, 32}));
    }
}

TEST(CreateAffineTransformedImage, GivesTheResultTheMapsOwnOriginLessTheCorner) {
    const auto image = ImageOf(4, 3, 8, Digits);
    image->Coordinates = {10.0, 20.0, {2.0, 0.0, 0.0, 2.0}};
    const TCoordinateMap map{100.0, 200.0, {3.0, 0.0, 0.0, -1.0}};
    Handle out;
    ASSERT_TRUE(CreateAffineTransformedImage(image->Handle(), &map, out.Out()));
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{1, 12, 3}));
    TCoordinateMap coordinates{};
    ASSERT_EQ(ImageInterface(out.Get())->GetCoordinateMap(&coordinates), 0);
    EXPECT_TRUE(SameMap(coordinates, {30.0, -17.0, {6.0, 0.0, 0.0, -2.0}}));
}

TEST(CreateAffineTransformedImage, GivesWhatCreateMatrixTransformedImageGivesForTheMatrix) {
    const auto image = WildImage(13, 8, {0x8, 0x110, 0x40, 0x220}, 5);
    const ModelSource source(image->Handle());
    for (const auto &[name, matrix] : Matrices()) {
        SCOPED_TRACE(name);
        const TCoordinateMap map{7.0, -3.5, matrix};
        ExpectAsModel(
            image->Handle(), source,
            [&](void *from, void **out) { return CreateAffineTransformedImage(from, &map, out); },
            ModelWhole(source, map));
    }
}

TEST(CreateAffineTransformedImage, LetsPositionsWhoseTableWordsDoNotFit32BitsBeOutside) {
    const auto image = WildImage(10, 200, {0x8, 0x110, 0x120}, 1);
    const ModelSource source(image->Handle());
    const TMatrix matrix{1e-5, 1.0, 0.0, 1.0}; // back: x = 1e5 (i - j), so that words cancel out along i = j
    ExpectWholeAsModel(image->Handle(), source, matrix);
    Handle out;
    ASSERT_TRUE(CreateMatrixTransformedImage(image->Handle(), out.Out(), matrix));
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{3, 200, 200}));
    const auto bytes = PixelsOf<std::uint8_t>(out);
    const auto words = ValuesOf<std::int16_t>(PixelBytes(out.Get(), 1));
    const auto content = ValuesOf<std::int16_t>(source.Planes[1]);
    for (std::size_t i = 0; i < 200; ++i) { // 83e5 * 256 fits, 84e5 * 256 does not
        EXPECT_EQ(bytes[i * 201], i <= 83 ? source.Planes[0][i * 10] : 129) << i;
        EXPECT_EQ(words[i * 201], i <= 83 ? content[i * 10] : 0x7FFF) << i;
    }
}

TEST(CreateAffineTransformedImage, LetsPositionsBeyond32BitsBeOutside) {
    const auto image = WildImage(9, 9, {0x8, 0x10, 0x20, 0x240}, 1);
    const ModelSource source(image->Handle());
    for (const double scale : {1e-4, 1e-6, 1e-9, 1e-12})
        ExpectWholeAsModel(image->Handle(), source, {scale, 0.0, 0.3, 1e-4 / scale});
}

TEST(AffineTransforms, RunBesideEachOtherOnOneSource) {
    const auto image = WildImage(61, 40, {0x8, 0x8, 0x8, 0x220}, 4);
    const ModelSource source(image->Handle());
    std::vector<std::thread> threads;
    std::atomic<int> equal{0};
    for (int turn = 0; turn < 4; ++turn)
        threads.emplace_back([&, turn] {
            const TMatrix matrix = Turned(37.0 * turn);
            const auto expected = ModelWhole(source, {0.0, 0.0, matrix});
            for (int again = 0; again < 20; ++again) {
                Handle out;
                bool same = CreateMatrixTransformedImage(image->Handle(), out.Out(), matrix);
                for (std::size_t plane = 0; same && plane < 3; ++plane)
                    same = PixelBytes(out.Get(), static_cast<std::intptr_t>(plane)) == expected->Planes[plane];
                equal += same ? 1 : 0;
            }
        });
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(equal, 80);
    EXPECT_EQ(image->Count(), 1);
}

class CreateAreaAffineTransformedImageTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override {
        EXPECT_EQ(image->Count(), 1);
        ClearReports();
    }
    bool Run(const TArea &area, const TCoordinateMap &map, void **out) {
        return CreateAreaAffineTransformedImage(image->Handle(), &map, &area, out);
    }
    Bytes Shown(const TArea &area, ImageSize size, const TCoordinateMap &map = IdentityMap) {
        Handle out;
        EXPECT_TRUE(Run(area, map, out.Out()));
        EXPECT_EQ(ReportCount(), 0);
        EXPECT_EQ(SizeOf(out.Get()), size);
        return PixelsOf<std::uint8_t>(out);
    }
    void ExpectZeroSized(const TArea &area) {
        void *out = UntouchedPointer();
        EXPECT_FALSE(Run(area, IdentityMap, &out));
        EXPECT_EQ(out, UntouchedPointer());
        ExpectOneReportWithText(0x80000002u, "CreateAreaAffineTransformedImage",
                                "Zero sized areas cannot be processed");
    }

    std::unique_ptr<FakeImage> image = ImageOf(4, 3, 8, Digits);
};

TEST_F(CreateAreaAffineTransformedImageTest, ShowsTheAreaWithoutItsLastColumnAndRow) {
    EXPECT_EQ(Shown(RectArea(1.0, 1.0, 3.0, 3.0), {1, 2, 2}), (Bytes{22, 23, 32, 33}));
}

TEST_F(CreateAreaAffineTransformedImageTest, FillsWhatLiesBesideTheImage) {
    EXPECT_EQ(Shown(RectArea(-1.0, 1.0, 2.0, 4.0), {1, 3, 3}), (Bytes{129, 21, 22, 129, 31, 32, 129, 129, 129}));
    EXPECT_EQ(Shown(RectArea(100.0, 100.0, 102.0, 101.0), {1, 2, 1}), (Bytes{129, 129}));
}

TEST_F(CreateAreaAffineTransformedImageTest, TakesTheAreaInImageCoordinatesAndTheMapFromPixels) {
    image->Coordinates = {2.0, 1.0, {1.0, 0.0, 0.0, 1.0}};
    EXPECT_EQ(Shown(RectArea(-1.0, 0.0, 1.0, 2.0), {1, 2, 2}), (Bytes{22, 23, 32, 33}));
    image->Coordinates = {0.0, 0.0, {0.0, 2.0, 1.0, 0.0}};
    EXPECT_EQ(Shown(RectArea(1.0, 0.5, 3.0, 1.5), {1, 2, 2}), (Bytes{22, 23, 32, 33}));
    EXPECT_EQ(Shown(RectArea(1.0, 0.5, 3.0, 1.5), {1, 2, 2}, {5.0, 6.0, {0.0, 1.0, 1.0, 0.0}}),
              (Bytes{22, 32, 23, 33}));
}

TEST_F(CreateAreaAffineTransformedImageTest, TakesTheRectangleAroundATurnedArea) {
    EXPECT_EQ(Shown({1.0, 0.0, 2.0, 1.0, 0.0, 1.0}, {1, 2, 2}), (Bytes{11, 12, 21, 22}));
}

TEST_F(CreateAreaAffineTransformedImageTest, ReportsZeroSizedAreasForTwoEqualPoints) {
    ExpectZeroSized({1.0, 2.0, 3.0, 2.0, 1.0, 2.0});
    ExpectZeroSized({1.0, 2.0, 1.0, 2.0, 1.0, 5.0});
    ExpectZeroSized({1.0, 2.0, 3.0, 5.0, 3.0, 5.0});
    ExpectZeroSized({1.0, 2.0, 1.0, 2.0, 1.0, 2.0});
}

TEST_F(CreateAreaAffineTransformedImageTest, TakesAreasWhosePointsDifferByTheLeast) {
    Handle out;
    EXPECT_TRUE(Run({1.0, 2.0, std::nextafter(1.0, 2.0), 2.0, 1.0, 5.0}, IdentityMap, out.Out()));
    EXPECT_EQ(SizeOf(out.Get()), (ImageSize{1, 4, 3})) << "0 by 3 is the size of the source";
}

TEST_F(CreateAreaAffineTransformedImageTest, TakesAreasOfThreePointsInALine) {
    EXPECT_EQ(Shown({0.0, 0.0, 1.0, 1.0, 2.0, 2.0}, {1, 3, 3}), (Bytes{11, 12, 13, 21, 22, 23, 31, 32, 33}));
}

TEST_F(CreateAreaAffineTransformedImageTest, GivesFalseWithoutAReportForASingularMap) {
    void *out = UntouchedPointer();
    EXPECT_FALSE(Run(SmallArea, {0.0, 0.0, {1.0, 1.0, 1.0, 1.0}}, &out));
    EXPECT_EQ(out, UntouchedPointer());
    ExpectNoReport();
}

TEST_F(CreateAreaAffineTransformedImageTest, TellsAZeroSizedAreaOfASingularMapToo) {
    void *out = UntouchedPointer();
    EXPECT_FALSE(Run({1.0, 2.0, 3.0, 2.0, 1.0, 2.0}, {0.0, 0.0, {1.0, 1.0, 1.0, 1.0}}, &out));
    ExpectOneReportWithText(0x80000002u, "CreateAreaAffineTransformedImage", "Zero sized areas cannot be processed");
}

TEST_F(CreateAreaAffineTransformedImageTest, EqualsTheModelForShiftedTurnedAndOutlyingAreas) {
    const TArea areas[] = {
        RectArea(0.0, 0.0, 21.0, 14.0),  RectArea(2.0, 3.0, 9.0, 8.0),     RectArea(2.3, 3.7, 9.1, 8.2),
        RectArea(-3.5, -2.25, 9.0, 8.0), RectArea(15.0, 9.0, 30.0, 20.0),  RectArea(-50.0, 0.0, -40.0, 9.0),
        RectArea(9.0, 8.0, 2.0, 3.0),    {10.0, 1.0, 18.0, 9.0, 4.0, 7.0}, {3.0, 3.0, 3.5, 3.25, 17.0, 11.0}};
    image = WildImage(21, 14, {0x8, 0x110, 0x520, 0x240}, 17);
    for (const auto &coordinates :
         {IdentityMap, TCoordinateMap{3.0, 2.0, Turned(15.0, 1.2)}, TCoordinateMap{0.5, 0.5, {0.0, 1.0, 1.0, 0.0}}}) {
        image->Coordinates = coordinates;
        const ModelSource source(image->Handle());
        for (const auto &area : areas)
            for (const auto &[name, matrix] : Matrices()) {
                SCOPED_TRACE(testing::Message() << name << ", area from " << area.X0 << ", " << area.Y0);
                ASSERT_NO_FATAL_FAILURE(ExpectAreaAsModel(image->Handle(), source, area, {area.Y1, area.X2, matrix}));
            }
    }
}

} // namespace

/* A turned area cut out of an image, so that its edges become those of the result. */
#include "Transformations/TransformChecks.h"

namespace {

using namespace TransformModel;

using Bytes = std::vector<std::uint8_t>;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

class CreateAreaSubImageTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override {
        EXPECT_EQ(image->Count(), 1);
        ClearReports();
    }
    Handle Cut(const TArea &area) {
        Handle out;
        EXPECT_TRUE(CreateAreaSubImage(image->Handle(), out.Out(), area));
        EXPECT_EQ(ReportCount(), 0);
        return out;
    }
    void ExpectFailure(const TArea &area) {
        ExpectRefusal(image->Handle(), [&](void *from, void **out) { return CreateAreaSubImage(from, out, area); });
    }

    std::unique_ptr<FakeImage> image =
        ImageOf<std::uint8_t>(4, 3, 8, {11, 12, 13, 14, 21, 22, 23, 24, 31, 32, 33, 34});
};

TEST_F(CreateAreaSubImageTest, OfARectangleOf100By50Is50By100) {
    image = FakeImage::Planar(120, 80, 1, 8);
    EXPECT_EQ(SizeOf(Cut(RectArea(0.0, 0.0, 99.0, 49.0)).Get()), (ImageSize{1, 50, 100}));
}

TEST_F(CreateAreaSubImageTest, HasItsXAxisAlongP2AndItsYAxisAlongP1) {
    image = FakeImage::Planar(64, 64, 1, 8);
    for (std::intptr_t y = 0; y < 64; ++y)
        for (std::intptr_t x = 0; x < 64; ++x)
            *image->PixelAddress(0, x, y) = static_cast<std::uint8_t>(2 * x + y);
    const auto pixels = PixelsOf<std::uint8_t>(Cut({10.0, 20.0, 10.0, 29.0, 40.0, 20.0}));
    ASSERT_EQ(pixels.size(), 31u * 10u);
    EXPECT_EQ(pixels.front(), 40);
    // One column right: 31/31 pixels right and 1/31 down. One row down: 1/10 right and 10/10 down.
    EXPECT_EQ(pixels[1], 42);
    EXPECT_EQ(pixels[30], 40 + 60 + 1);
    EXPECT_EQ(pixels[9 * 31], 40 + 2 + 9);
}

TEST_F(CreateAreaSubImageTest, TakesLengthsInTheUnitsOfTheArea) {
    image->Coordinates = {0.0, 0.0, {0.1, 0.0, 0.0, 0.1}};
    EXPECT_EQ(SizeOf(Cut({0.0, 0.0, 0.0, 20.0, 30.0, 0.0}).Get()), (ImageSize{1, 31, 21}));
}

TEST_F(CreateAreaSubImageTest, RoundsALengthAndAHalfDown) {
    const std::pair<double, std::intptr_t> sizes[] = {{0.1, 1}, {0.49, 1}, {0.5, 2}, {1.49, 2}, {2.5, 4}, {4.0, 5}};
    for (const auto &[length, width] : sizes)
        EXPECT_EQ(SizeOf(Cut({0.0, 0.0, 0.0, 2.0, length, 0.0}).Get()), (ImageSize{1, width, 3})) << length;
    EXPECT_EQ(SizeOf(Cut({0.0, 0.0, 4.0, -3.0, 3.0, 4.0}).Get()), (ImageSize{1, 6, 6}));
}

TEST_F(CreateAreaSubImageTest, FillsWhatLiesBesideTheImageAsUnderAFunction) {
    EXPECT_EQ(PixelsOf<std::uint8_t>(Cut({10.0, 10.0, 10.0, 11.0, 11.0, 10.0})), (Bytes{127, 127, 127, 127}));
    image = ImageOf<std::uint16_t>(1, 1, 0x10, {7});
    EXPECT_EQ(PixelsOf<std::uint16_t>(Cut({10.0, 10.0, 10.0, 11.0, 10.4, 10.0})),
              (std::vector<std::uint16_t>{32767, 32767}));
}

TEST_F(CreateAreaSubImageTest, HasTheIdentityAsCoordinateSystem) {
    image->Coordinates = {1.0, 2.0, {0.5, 0.0, 0.0, 0.5}};
    const Handle out = Cut({0.0, 0.0, 0.0, 2.0, 3.0, 0.0});
    TCoordinateMap coordinates{};
    ASSERT_EQ(ImageInterface(out.Get())->GetCoordinateMap(&coordinates), 0);
    EXPECT_TRUE(SameMap(coordinates, IdentityMap));
}

TEST_F(CreateAreaSubImageTest, ReportsZeroSizedAreasForTwoEqualPoints) {
    for (const TArea &area : {TArea{1.0, 2.0, 3.0, 2.0, 1.0, 2.0},
                              {1.0, 2.0, 1.0, 2.0, 1.0, 5.0},
                              {1.0, 2.0, 3.0, 5.0, 3.0, 5.0},
                              {1.0, 2.0, 1.0, 2.0, 1.0, 2.0}}) {
        ExpectFailure(area);
        ExpectOneReportWithText(0x80000002u, "CreateAreaSubImage", "Zero sized areas cannot be processed");
    }
}

TEST_F(CreateAreaSubImageTest, ReportsASingularAreaForEdgesInOneDirection) {
    ExpectFailure({0.0, 0.0, 3.0, 3.0, 5.0, 5.0});
    ExpectOneReport(0x80000019u, "CreateAreaSubImage");
    ExpectFailure({2.0, 2.0, 5.0, 1.0, 7.0, 1.0}); // 4 and 6 to the right, 0 down, after adding 1
    ExpectOneReport(0x80000019u, "CreateAreaSubImage");
}

TEST_F(CreateAreaSubImageTest, ReportsASingularAreaInPixelsOnly) {
    image->Coordinates = {0.0, 0.0, {1.0, 1.0, 1.0, 1.0}};
    ExpectFailure({0.0, 0.0, 0.0, 3.0, 5.0, 0.0});
    ExpectOneReport(0x80000019u, "CreateAreaSubImage");
    image->Coordinates = {0.0, 0.0, {0.0, 0.0, 0.0, 0.0}};
    ExpectFailure({0.0, 0.0, 0.0, 3.0, 5.0, 0.0});
    ExpectOneReport(0x80000019u, "CreateAreaSubImage");
}

TEST_F(CreateAreaSubImageTest, AddsOneToEdgesInALineThatIsNotADiagonal) {
    const TArea area{0.0, 0.0, 2.0, 1.0, 4.0, 2.0}; // 3, 2 and 5, 3 after adding 1
    ExpectAreaSubImageAsModel(image->Handle(), ModelSource(image->Handle()), area);
    EXPECT_EQ(SizeOf(Cut(area).Get()), (ImageSize{1, 5, 3}));
}

TEST_F(CreateAreaSubImageTest, ReportsTheSizeOfAnAreaThatIsNoNumberUnderTheFunctionBehindIt) {
    ExpectFailure({0.0, 0.0, NaN, 3.0, 5.0, 0.0});
    ExpectOneReportWithText(0x80000002u, "CreateTransformedImage", "Invalid Target Dimension");
    ExpectFailure({NaN, 0.0, 1.0, 3.0, 5.0, 0.0});
    ExpectOneReportWithText(0x80000002u, "CreateTransformedImage", "Invalid Target Dimension");
    ExpectFailure({0.0, 0.0, 0.0, 3.0, std::numeric_limits<double>::infinity(), 0.0});
    ExpectOneReportWithText(0x80000002u, "CreateTransformedImage", "Invalid Target Dimension");
}

TEST_F(CreateAreaSubImageTest, ReportsASizeThatNoMemoryHoldsUnderTheFunctionBehindIt) {
    ExpectFailure({0.0, 0.0, 0.0, 1e9, 1e9, 0.0});
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, 0x80000001u);
    EXPECT_EQ(report->function, "CreateTransformedImage");
}

TEST_F(CreateAreaSubImageTest, IsAllOutsideInACoordinateSystemThatIsNoNumber) {
    image->Coordinates = {NaN, 0.0, IdentityMatrix};
    EXPECT_EQ(PixelsOf<std::uint8_t>(Cut({0.0, 0.0, 0.0, 1.0, 2.0, 0.0})), Bytes(6, 127));
    image->Coordinates = {1e300, 0.0, IdentityMatrix};
    EXPECT_EQ(PixelsOf<std::uint8_t>(Cut({0.0, 0.0, 0.0, 1.0, 2.0, 0.0})), Bytes(6, 127));
}

TEST_F(CreateAreaSubImageTest, EqualsTheModelForAreasInAnyCoordinateSystem) {
    const TArea areas[] = {RectArea(0.0, 0.0, 20.0, 13.0),   {0.0, 0.0, 0.0, 13.0, 20.0, 0.0},
                           {2.3, 3.7, 2.3, 9.1, 11.4, 3.7},  {-3.5, -2.25, -6.0, 8.0, 9.0, 3.0},
                           {10.0, 1.0, 18.0, 9.0, 4.0, 7.0}, {15.0, 9.0, -20.0, 9.5, 16.0, 2.0},
                           {3.0, 3.0, 3.5, 3.25, 17.0, 11.0}};
    image = WildImage(21, 14, {0x408, 0x110, 0x20, 0x220, 0x140}, 17);
    for (const auto &[name, matrix] : Matrices())
        for (const double origin : {0.0, 2.71}) {
            image->Coordinates = {origin, -origin, matrix};
            const ModelSource source(image->Handle());
            for (const auto &area : areas) {
                SCOPED_TRACE(testing::Message() << name << ", origin " << origin << ", area from " << area.X0);
                ASSERT_NO_FATAL_FAILURE(ExpectAreaSubImageAsModel(image->Handle(), source, area));
            }
        }
}

TEST_F(CreateAreaSubImageTest, EqualsTheModelForEveryLayoutAndType) {
    for (const TDataType type : PixelTypes)
        for (const auto &layout : MakeLayouts(35, 9, 2, type, type)) {
            SCOPED_TRACE(testing::Message() << layout.Name << ", type " << type);
            const ModelSource source(layout.Get());
            for (const TArea &area : {TArea{0.0, 0.0, 0.0, 8.0, 34.0, 0.0},
                                      {12.0, -3.0, 9.5, 8.0, 40.0, 4.0},
                                      {30.0, 8.5, 31.0, 3.0, -4.0, 2.0}})
                ASSERT_NO_FATAL_FAILURE(ExpectAreaSubImageAsModel(layout.Get(), source, area));
        }
}

} // namespace

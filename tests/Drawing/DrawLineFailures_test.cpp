// What lines refuse beside what all drawing refuses: thickness, and draw modes at every thickness; and the radii that
// ellipses refuse.
#include "Drawing/DrawingCalls.h"

namespace {

using namespace TestSupport;

constexpr const char *TooThin = "Line thickness must be larger than zero";
constexpr const char *NoSuchMode = "Unsupported draw mode";
constexpr const char *NegativeRadii = "Radii must not be negative";

class DrawLineFailures : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }
    void ExpectParameterReport(std::int32_t result, const std::string &text, const std::string &reporter) {
        EXPECT_EQ(result, Status(ErrParameter));
        ExpectReportWithText(ErrParameter, text, reporter);
        EXPECT_EQ(image->Pixels, PlaneBytes(25));
        EXPECT_EQ(image->Count(), 1);
    }
    std::unique_ptr<FakeImage> image = FakeImage::Planar(5, 5, 1, 8);
};

TEST_F(DrawLineFailures, AThicknessBelow1IsRefused) {
    for (const std::int64_t thickness :
         {std::int64_t{0}, std::int64_t{-1}, Lowest32, Lowest64, std::int64_t{0x80000000}, std::int64_t{0x100000000},
          std::int64_t{0xFFFFFFFF}}) {
        SCOPED_TRACE(thickness);
        ExpectParameterReport(DrawLineInImage(image->Handle(), 0, 1, 1, 3, 3, thickness, 0, 0, 9.0), TooThin,
                              "DrawLineInImage");
        ExpectParameterReport(DrawEllipseInImage(image->Handle(), 0, 2, 2, 1, 1, thickness, 0, 0, 0.0, 9.0), TooThin,
                              "DrawEllipseInImage");
        ExpectParameterReport(DrawCircleInImage(image->Handle(), 0, 2, 2, 0, thickness, 0, 0, 9.0), TooThin,
                              "DrawEllipseInImage");
    }
}

TEST_F(DrawLineFailures, AThicknessBelow1IsRefusedOutsideTheImageToo) {
    ExpectParameterReport(DrawLineInImage(image->Handle(), 0, 100, 100, 300, 300, 0, 0, 0, 9.0), TooThin,
                          "DrawLineInImage");
    ExpectParameterReport(DrawCircleInImage(image->Handle(), 0, -200, 2, 3, 0, 0, 0, 9.0), TooThin,
                          "DrawEllipseInImage");
    ExpectParameterReport(DrawCircleInImage(image->Handle(), 0, Lowest32, Lowest32, Highest32, 0, 0, 0, 9.0), TooThin,
                          "DrawEllipseInImage");
}

TEST_F(DrawLineFailures, AThicknessBelow1ComesBeforeTheDrawMode) {
    ExpectParameterReport(DrawLineInImage(image->Handle(), 0, 1, 1, 3, 3, 0, 3, 0, 9.0), TooThin, "DrawLineInImage");
    ExpectParameterReport(DrawCircleInImage(image->Handle(), 0, 2, 2, 1, -1, 3, 0, 9.0), TooThin,
                          "DrawEllipseInImage");
}

TEST_F(DrawLineFailures, AnUnknownDrawModeIsRefusedAtEveryThickness) {
    for (const std::int64_t thickness : {1, 2, 3, 100})
        for (const std::int64_t at : {2, 100})
            ExpectParameterReport(DrawLineInImage(image->Handle(), 0, at, at, at + 2, at, thickness, 3, 0, 9.0),
                                  NoSuchMode, "DrawLineInImage");
}

TEST_F(DrawLineFailures, AnUnknownDrawModeIsRefusedWhereNothingWouldBeDrawn) {
    ExpectParameterReport(DrawLineInImage(image->Handle(), 0, 2, 2, 2, 2, 3, 3, 0, 9.0), NoSuchMode,
                          "DrawLineInImage");
    ExpectParameterReport(DrawCircleInImage(image->Handle(), 0, -200, 2, 3, 1, 3, 0, 9.0), NoSuchMode,
                          "DrawEllipseInImage");
    ExpectParameterReport(DrawCircleInImage(image->Handle(), 0, -200, 2, 3, 4, 3, 0, 9.0), NoSuchMode,
                          "DrawEllipseInImage");
    ExpectParameterReport(FillCircleInImage(image->Handle(), 0, -200, 2, 3, 3, 0, 9.0), NoSuchMode,
                          "FillEllipseInImage");
    ExpectParameterReport(FillCircleInImage(image->Handle(), 0, 2, 2, 0, 3, 0, 9.0), NoSuchMode,
                          "FillEllipseInImage");
}

TEST_F(DrawLineFailures, TwoNegativeRadiiAreRefused) {
    for (const auto &[a, b] : {std::pair{std::int64_t{-1}, std::int64_t{-1}}, std::pair{Lowest32, std::int64_t{-1}},
                               std::pair{std::int64_t{-5}, Lowest64 + 0xFFFFFFFF},
                               std::pair{std::int64_t{0xFFFFFFFF}, std::int64_t{0x1FFFFFFFE}}}) {
        SCOPED_TRACE(std::to_string(a) + ", " + std::to_string(b));
        ExpectParameterReport(DrawEllipseInImage(image->Handle(), 0, 2, 2, a, b, 1, 0, 0, 0.0, 9.0), NegativeRadii,
                              "DrawEllipseInImage");
        ExpectParameterReport(DrawEllipseInImage(image->Handle(), 0, 2, 2, a, b, 4, 0, 0, 1.0, 9.0), NegativeRadii,
                              "DrawEllipseInImage");
        ExpectParameterReport(FillEllipseInImage(image->Handle(), 0, 2, 2, a, b, 0, 0, 0.0, 9.0), NegativeRadii,
                              "FillEllipseInImage");
        ExpectParameterReport(DrawCircleInImage(image->Handle(), 0, 2, 2, a, 1, 0, 0, 9.0), NegativeRadii,
                              "DrawEllipseInImage");
        ExpectParameterReport(FillCircleInImage(image->Handle(), 0, 2, 2, a, 0, 0, 9.0), NegativeRadii,
                              "FillEllipseInImage");
    }
}

TEST_F(DrawLineFailures, OneNegativeRadiusIsNone) {
    EXPECT_EQ(DrawEllipseInImage(image->Handle(), 0, 2, 2, -1, 1, 1, 0, 0, 0.0, 9.0), 0);
    EXPECT_EQ(FillEllipseInImage(image->Handle(), 0, 2, 2, 1, -1, 0, 0, 0.0, 9.0), 0);
    EXPECT_EQ(DrawEllipseInImage(image->Handle(), 0, 2, 2, -1, 0, 1, 0, 0, 0.0, 9.0), 0);
    ExpectNoReport();
    EXPECT_EQ(image->Count(), 1);
}

} // namespace

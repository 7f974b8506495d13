// The less travelled branches of the walk: where steps stay at their presets, 32-bit products that wrap, areas beyond
// the range of pixels; all of them against the model, with what makes each one special told beside it.
#include "Scan/ScanRecorder.h"

namespace {

using namespace TestSupport;

/// A wide or tall image whose rows and columns repeat over few bytes.
std::unique_ptr<FakeImage> Repeating(std::intptr_t width, std::intptr_t height) {
    auto image = std::make_unique<FakeImage>(width, height, 32);
    image->AddPlane(
        image->Pixels.data(), 8, [](auto x) { return x % 7; }, [](auto y) { return y % 11; });
    return image;
}

void ExpectModelWalkOver(std::intptr_t width, std::intptr_t height, const TArea &area, std::int64_t density = 1000) {
    const auto image = Repeating(width, height);
    ScanRequest request;
    request.Image1 = image->Handle();
    request.Area = area;
    request.Density = density;
    ClearReports();
    ExpectModelWalk(Scan::PlaneUnary, request);
    ExpectNoReport();
}

} // namespace

TEST(WalkBranches, TurnedAreasOfAllDensitiesAreAsTold) {
    for (const std::int64_t density : {1, 2, 3, 7, 99, 100, 333, 500, 501, 667, 750, 998, 999, 1000})
        for (const TArea &area :
             {TArea{20, 3, 40, 17, 8, 30}, TArea{3, 20, 17, 40, 30, 8}, TArea{40, 40, 12, 33, 44, 20},
              TArea{5, 45, 9, 2, 47, 49}, TArea{0, 0, 49, 49, 49, 0}, TArea{0, 0, 49, 1, 48, 1},
              TArea{0, 0, 1, 49, 1, 48}, TArea{7, 7, 8, 7, 30, 8}}) {
            SCOPED_TRACE(testing::Message() << "density " << density << ", P0 " << area.X0 << ", " << area.Y0);
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(50, 50, area, density));
        }
}

TEST(WalkBranches, ALineStepTooLargeForItsProductStaysAtTheEdgeItself) {
    // 20000 times the distance of lines leaves 31 bits: the second line then starts 20000 / 65536 of a pixel on.
    const TArea flat{0, 0, 30000, 1, 20000, 0};
    EXPECT_EQ(WalkModel(flat, 1000).Lines(), 2);
    ExpectModelWalkOver(50100, 3, flat);
    ExpectModelWalkOver(50100, 3, {0, 1, 30000, 0, 20000, 1});
    const TArea steep{0, 0, 1, 30000, 0, 20000};
    EXPECT_EQ(WalkModel(steep, 1000).Lines(), 2);
    ExpectModelWalkOver(3, 50100, steep);
    ExpectModelWalkOver(3, 50100, {1, 50000, 0, 20000, 1, 30000});
}

TEST(WalkBranches, AnAreaOf32768RowsBelowAHorizontalEdgeIsEmpty) {
    // The product of steps is 2^31, which has no positive counterpart in 32 bits.
    const TArea area{0, 0, 3, 0, 0, 32768};
    EXPECT_LT(WalkModel(area, 1000).Lines(), 1);
    const auto image = Repeating(10, 10);
    ScanRequest request;
    request.Image1 = image->Handle();
    request.Area = area;
    EXPECT_EQ(RunScan(Scan::PlaneUnary, request), (WalkRecord{0, {}}));
    request.Given.Pixel = false;
    EXPECT_EQ(RunScan(Scan::PlaneUnary, request), (WalkRecord{0, {}}));
}

TEST(WalkBranches, ProductsOfStepsWrapIn32Bits) {
    for (const double rows :
         {32766.0, 32767.0, 32768.0, 32769.0, 40000.0, 65535.0, 65536.0, 65537.0, 98304.0, 131072.0}) {
        SCOPED_TRACE(rows);
        ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(10, 10, {0, 0, 3, 0, 0, rows}));
        ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(10, 10, {0, 0, 0, 3, rows, 0}));
        ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(10, 10, {0, 9, 3, 9, 0, 9 - rows}));
        ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(70, 80000, {1, 0, 4, 2, 0, rows}));
    }
}

TEST(WalkBranches, AProductThatWrapsToZeroMakesTheEdgesParallel) {
    const WalkModel tall({0, 0, 3, 0, 0, 65536}, 1000);
    EXPECT_EQ(tall.Lines(), 65537);
    EXPECT_TRUE(tall.IsYMajor());
    ExpectModelWalkOver(40000, 10, {0, 0, 3, 0, 0, 65536});
    const WalkModel wide({0, 0, 0, 3, 65536, 0}, 1000);
    EXPECT_EQ(wide.Lines(), 65537);
    EXPECT_FALSE(wide.IsYMajor());
    ExpectModelWalkOver(10, 40000, {0, 0, 0, 3, 65536, 0});
}

TEST(WalkBranches, NearlyParallelEdgesAreAsTold) {
    for (const double length : {5.0, 100.0, 1000.0, 16383.0, 16384.0, 30000.0, 32767.0, 32768.0, 65535.0, 65536.0})
        for (const double shift : {-2.0, -1.0, 1.0, 2.0}) {
            SCOPED_TRACE(testing::Message() << length << " by " << shift);
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(300, 40, {10, 10, 10 + length, 10, 10 + length, 10 + shift}));
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(300, 40, {10, 10, 10 + length, 10 + shift, 10 + length, 10}));
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(40, 300, {10, 10, 10, 10 + length, 10 + shift, 10 + length}));
        }
}

TEST(WalkBranches, LowDensitiesOfLongEdgesAreAsTold) {
    for (const std::int64_t density : {0, 1, 2, 5, 10, 100, 1000})
        for (const double length : {999.0, 1000.0, 1001.0, 30000.0, 70000.0}) {
            SCOPED_TRACE(testing::Message() << "density " << density << ", length " << length);
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(80000, 9, {0, 0, length, 3, 0, 8}, density));
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(9, 80000, {3, 0, 0, length, 8, 20}, density));
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(80000, 9, {0, 0, 0, 0, length, 8}, density));
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(80000, 9, {0, 0, length, 8, 2 * length, 16}, density));
        }
}

TEST(WalkBranches, LinesThatEnterAndLeaveTheImageAreAsTold) {
    for (const double x : {-40.0, -6.0, -1.0, 0.0, 5.0, 12.0, 30.0})
        for (const double y : {-35.0, -5.0, -1.0, 0.0, 7.0, 11.0, 33.0})
            for (const auto &[dx, dy] :
                 {std::pair{40.0, 3.0}, {3.0, 40.0}, {-40.0, 17.0}, {25.0, -25.0}, {-9.0, -31.0}}) {
                SCOPED_TRACE(testing::Message() << "from " << x << ", " << y << " by " << dx << ", " << dy);
                ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(12, 11, {x, y, x + dx, y + dy, x - dy, y + dx}));
                ASSERT_NO_FATAL_FAILURE(ExpectModelWalkOver(12, 11, {x, y, x + dx, y + dy, x + 3, y - 8}));
            }
}

TEST(WalkBranches, AnImageWithoutPixelsHasNoneToVisit) {
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{0, 0}, {0, 5}, {5, 0}}) {
        FakeImage image(width, height, 8);
        image.AddPlane(
            image.Pixels.data(), 8, [](auto) { return 0; }, [](auto) { return 0; });
        ScanRequest request;
        request.Image1 = image.Handle();
        request.Area = {0, 0, 2, 0, 0, 1};
        for (const Scan scan : {Scan::PlaneUnary, Scan::ImageUnary})
            EXPECT_EQ(RunScan(scan, request), (WalkRecord{0, {Begin(2), End(2), Begin(1), End(1)}}));
    }
}

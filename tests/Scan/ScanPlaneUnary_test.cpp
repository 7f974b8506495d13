// The walk over one plane, sample by sample: each rule with positions worked out by hand, then areas of every kind
// against the model.
#include "Scan/ScanRecorder.h"

namespace {

using namespace TestSupport;

/// A walk over plane 0 of a small image.
WalkRecord Walk(const TArea &area, std::int64_t density = 1000, std::intptr_t width = 10, std::intptr_t height = 8) {
    const auto image = FakeImage::Planar(width, height, 1, 8);
    ClearReports();
    ScanRequest request;
    request.Image1 = image->Handle();
    request.Area = area;
    request.Density = density;
    WalkRecord record = RunScan(Scan::PlaneUnary, request);
    ExpectNoReport();
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(record, ModelScan(Scan::PlaneUnary, request)) << "the model tells otherwise";
    return record;
}

/// The pixels alone, by line.
using Lines = std::vector<std::vector<std::pair<std::int64_t, std::int32_t>>>;
Lines LinesOf(const WalkRecord &record) {
    Lines lines;
    for (const WalkNote &note : record.Notes)
        if (note.Kind == Call::LineBegin)
            lines.emplace_back();
        else if (note.Kind == Call::Pixel)
            lines.back().emplace_back(note.First, note.Y);
    return lines;
}

} // namespace

TEST(ScanPlaneUnary, VisitsOnePixelWhenAllPointsRoundToIt) {
    const WalkNotes notes = {Begin(1), Pixel(3, 2), End(1)};
    EXPECT_EQ(Walk({3, 2, 3, 2, 3, 2}), (WalkRecord{1, notes}));
    EXPECT_EQ(Walk({2.5, 1.5, 3.49, 2.49, 3.2, 1.6}), (WalkRecord{1, notes}));
}

TEST(ScanPlaneUnary, RoundsHalvesUp) {
    EXPECT_EQ(LinesOf(Walk({-0.5, 0.5, -0.5, 0.5, -0.5, 0.5})), (Lines{{{0, 1}}}));
    EXPECT_EQ(LinesOf(Walk({0.49999, 1.5, 2.5, 1.4999, 0.49999, 1.5})), (Lines{{{0, 2}, {1, 2}, {2, 2}, {3, 1}}}));
    const auto outside = Walk({-0.50001, 0, -0.50001, 0, -0.50001, 0});
    EXPECT_EQ(outside, (WalkRecord{0, {Begin(1), End(1)}}));
}

TEST(ScanPlaneUnary, RunsLinesAlongTheFirstEdge) {
    const WalkNotes notes = {Begin(2), Pixel(1, 1), Pixel(2, 1), Pixel(3, 1), End(2),
                             Begin(1), Pixel(1, 2), Pixel(2, 2), Pixel(3, 2), End(1)};
    EXPECT_EQ(Walk({1, 1, 3, 1, 1, 2}), (WalkRecord{6, notes}));
}

TEST(ScanPlaneUnary, RunsInTheDirectionsOfTheEdges) {
    EXPECT_EQ(LinesOf(Walk({3, 2, 1, 2, 3, 1})), (Lines{{{3, 2}, {2, 2}, {1, 2}}, {{3, 1}, {2, 1}, {1, 1}}}));
    EXPECT_EQ(LinesOf(Walk({1, 1, 1, 3, 2, 1})), (Lines{{{1, 1}, {1, 2}, {1, 3}}, {{2, 1}, {2, 2}, {2, 3}}}));
    EXPECT_EQ(LinesOf(Walk({2, 3, 2, 1, 1, 3})), (Lines{{{2, 3}, {2, 2}, {2, 1}}, {{1, 3}, {1, 2}, {1, 1}}}));
}

TEST(ScanPlaneUnary, TakesADiagonalAsXMajor) {
    EXPECT_EQ(LinesOf(Walk({1, 1, 4, 4, 1, 1})), (Lines{{{1, 1}, {2, 2}, {3, 3}, {4, 4}}}));
    EXPECT_EQ(LinesOf(Walk({4, 4, 1, 1, 4, 4})), (Lines{{{4, 4}, {3, 3}, {2, 2}, {1, 1}}}));
}

TEST(ScanPlaneUnary, AlignsAnInclinedLineOnTheGridOfItsMajorAxis) {
    EXPECT_EQ(LinesOf(Walk({0, 0, 4, 2, 0, 0})), (Lines{{{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}}}));
    EXPECT_EQ(LinesOf(Walk({0, 0, 2, 4, 0, 0})), (Lines{{{0, 0}, {0, 1}, {1, 2}, {1, 3}, {2, 4}}}));
    EXPECT_EQ(LinesOf(Walk({4, 2, 0, 0, 4, 2})), (Lines{{{4, 2}, {3, 1}, {2, 1}, {1, 0}, {0, 0}}}));
}

TEST(ScanPlaneUnary, TakesSamplesWhereTheLineMeetsTheEdgesOfPixels) {
    // Through (4.5, 1.5) at x = 4 a falling line is at 2.0, a whole pixel off its point P0.
    EXPECT_EQ(LinesOf(Walk({4, 1, 1, 4, 4, 1})), (Lines{{{4, 2}, {3, 3}, {2, 4}, {1, 5}}}));
    EXPECT_EQ(LinesOf(Walk({1, 4, 4, 1, 1, 4})), (Lines{{{1, 5}, {2, 4}, {3, 3}, {4, 2}}}));
}

TEST(ScanPlaneUnary, SetsLinesOfATurnedSquareOneSampleApart) {
    // A sample step along the edge is 1.25 long, so lines lie 0.8 apart on the other edge of length 5.
    const auto lines = LinesOf(Walk({4, 0, 8, 3, 1, 4}, 1000, 12, 10));
    ASSERT_EQ(lines.size(), 7u);
    for (const auto &line : lines)
        EXPECT_EQ(line.size(), 5u);
    EXPECT_EQ(lines.front().front(), (std::pair<std::int64_t, std::int32_t>{4, 0}));
}

TEST(ScanPlaneUnary, GivesLinesOfOneSampleAlongTheSecondEdgeWhenTheFirstIsEmpty) {
    EXPECT_EQ(LinesOf(Walk({1, 1, 1, 1, 1, 3})), (Lines{{{1, 1}}, {{1, 2}}, {{1, 3}}}));
    EXPECT_EQ(LinesOf(Walk({1, 1, 1, 1, 3, 1})), (Lines{{{1, 1}}, {{2, 1}}, {{3, 1}}}));
    EXPECT_EQ(LinesOf(Walk({3, 3, 3, 3, 3, 1})), (Lines{{{3, 3}}, {{3, 2}}, {{3, 1}}}));
    EXPECT_EQ(LinesOf(Walk({3, 3, 3, 3, 1, 3})), (Lines{{{3, 3}}, {{2, 3}}, {{1, 3}}}));
    EXPECT_EQ(LinesOf(Walk({1, 1, 1, 1, 4, 4})), (Lines{{{1, 1}}, {{2, 2}}, {{3, 3}}, {{4, 4}}}));
}

TEST(ScanPlaneUnary, GivesOneLineWhenTheSecondEdgeIsEmpty) {
    EXPECT_EQ(LinesOf(Walk({2, 1, 5, 1, 2, 1})), (Lines{{{2, 1}, {3, 1}, {4, 1}, {5, 1}}}));
    EXPECT_EQ(LinesOf(Walk({2, 1, 2, 4, 2, 1})), (Lines{{{2, 1}, {2, 2}, {2, 3}, {2, 4}}}));
}

TEST(ScanPlaneUnary, StepsParallelEdgesByPixelsOfTheSecond) {
    EXPECT_EQ(LinesOf(Walk({1, 1, 4, 1, 3, 1})), (Lines{{{1, 1}, {2, 1}, {3, 1}, {4, 1}},
                                                        {{2, 1}, {3, 1}, {4, 1}, {5, 1}},
                                                        {{3, 1}, {4, 1}, {5, 1}, {6, 1}}}));
    EXPECT_EQ(LinesOf(Walk({1, 3, 1, 4, 1, 1})), (Lines{{{1, 3}, {1, 4}}, {{1, 2}, {1, 3}}, {{1, 1}, {1, 2}}}));
    EXPECT_EQ(LinesOf(Walk({5, 1, 4, 1, 7, 1})), (Lines{{{5, 1}, {4, 1}}, {{6, 1}, {5, 1}}, {{7, 1}, {6, 1}}}));
}

TEST(ScanPlaneUnary, AlignsByTheSecondEdgeWhenTheSmallAngleBetweenTheEdgesIsLost) {
    // The first edge's slope of 1 in 70000 rounds to 0, so a horizontal second edge counts as parallel to it.
    const WalkModel slight({0, 0, 70000, 1, 5, 0}, 1000);
    EXPECT_EQ(slight.Lines(), 6);
    EXPECT_EQ(Walk({0, 0, 70000, 1, 5, 0}).Result, -45);
}

TEST(ScanPlaneUnary, GivesFiftyOneSamplesForAHundredPixelsAtHalfDensity) {
    const auto lines = LinesOf(Walk({0, 0, 100, 0, 0, 0}, 500, 101, 1));
    ASSERT_EQ(lines.size(), 1u);
    ASSERT_EQ(lines[0].size(), 51u);
    for (std::size_t i = 0; i < 51; ++i)
        EXPECT_EQ(lines[0][i].first, 2 * static_cast<std::int64_t>(i));
}

TEST(ScanPlaneUnary, ThinsLinesAsItThinsSamples) {
    const auto lines = LinesOf(Walk({0, 0, 8, 0, 0, 6}, 500));
    ASSERT_EQ(lines.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        ASSERT_EQ(lines[i].size(), 5u);
        EXPECT_EQ(lines[i][4], (std::pair<std::int64_t, std::int32_t>{8, 2 * static_cast<std::int32_t>(i)}));
    }
}

TEST(ScanPlaneUnary, TakesDensityZeroAsOneAndMoreThanAThousandAsAThousand) {
    for (const TArea &area : {TArea{0, 0, 9, 0, 0, 7}, TArea{0, 0, 4000, 3, 1, 2500}, TArea{1, 1, 5, 4, 0, 6}}) {
        EXPECT_EQ(Walk(area, 0), Walk(area, 1));
        EXPECT_NE(Walk(area, 1), Walk(area, 1000));
        for (const std::int64_t density : {std::int64_t{1001}, std::int64_t{1'000'000}, std::int64_t{1} << 32,
                                           std::numeric_limits<std::int64_t>::max()})
            EXPECT_EQ(Walk(area, density), Walk(area, 1000)) << density;
    }
}

TEST(ScanPlaneUnary, TakesOneSampleOfAShortAreaAtALowDensity) {
    EXPECT_EQ(LinesOf(Walk({1, 1, 9, 1, 1, 7}, 1)), (Lines{{{1, 1}}}));
}

TEST(ScanPlaneUnary, DriftsIntoTheNextRowBehind32768Samples) {
    const auto lines = LinesOf(Walk({0, 0, 40000, 0, 0, 0}, 1000, 40001, 2));
    ASSERT_EQ(lines.size(), 1u);
    ASSERT_EQ(lines[0].size(), 40001u);
    for (std::size_t i = 0; i < lines[0].size(); ++i)
        ASSERT_EQ(lines[0][i], (std::pair<std::int64_t, std::int32_t>{i, i < 32768 ? 0 : 1})) << i;
}

TEST(ScanPlaneUnary, DriftsIntoTheNextColumnOnALongLineDownOrUp) {
    const auto down = LinesOf(Walk({0, 0, 0, 40000, 0, 0}, 1000, 2, 40001));
    ASSERT_EQ(down[0].size(), 40001u);
    EXPECT_EQ(down[0][32767].first, 0);
    EXPECT_EQ(down[0][32768].first, 1);
    const auto up = Walk({1, 40000, 1, 0, 1, 40000}, 1000, 2, 40001);
    EXPECT_EQ(up.Result, -32768);
}

TEST(ScanPlaneUnary, LeavesALineThatStartsLeftOfTheImageOutWhole) {
    EXPECT_EQ(Walk({-1, 2, 5, 2, -1, 2}), (WalkRecord{0, {Begin(1), End(1)}}));
    EXPECT_EQ(Walk({3, -1, 3, 5, 3, -1}), (WalkRecord{0, {Begin(1), End(1)}}));
    EXPECT_EQ(Walk({-1, 2, 5, 8, -1, 2}), (WalkRecord{0, {Begin(1), End(1)}}));
}

TEST(ScanPlaneUnary, CountsWhatOtherLinesVisitWhenOneIsLeftOut) {
    // Lines start at x = -1, 0, 1.
    const auto record = Walk({-1, 0, -1, 2, 1, 0});
    EXPECT_EQ(record.Result, -6);
    const auto leaning = Walk({-1, 0, 2, 0, 1, 2});
    EXPECT_EQ(LinesOf(leaning), (Lines{{}, {{0, 1}, {1, 1}, {2, 1}, {3, 1}}, {{1, 2}, {2, 2}, {3, 2}, {4, 2}}}));
    EXPECT_EQ(leaning.Result, -8);
}

TEST(ScanPlaneUnary, KeepsTheSignOfTheOtherAxis) {
    EXPECT_EQ(LinesOf(Walk({0, -2, 3, 1, 0, -2})), (Lines{{{2, 0}, {3, 1}}}));
    EXPECT_EQ(Walk({0, -2, 3, 1, 0, -2}).Result, -2);
    EXPECT_EQ(LinesOf(Walk({-1, 0, 1, 4, -1, 0})), (Lines{{{0, 2}, {0, 3}, {1, 4}}}));
}

TEST(ScanPlaneUnary, ClipsLinesThatRunOutOfTheImage) {
    EXPECT_EQ(Walk({7, 1, 12, 1, 7, 1}), (WalkRecord{-3, {Begin(1), Pixel(7, 1), Pixel(8, 1), Pixel(9, 1), End(1)}}));
    EXPECT_EQ(Walk({1, 1, -3, 1, 1, 1}), (WalkRecord{-2, {Begin(1), Pixel(1, 1), Pixel(0, 1), End(1)}}));
    EXPECT_EQ(Walk({8, 7, 9, 7, 8, 9}),
              (WalkRecord{-2, {Begin(3), Pixel(8, 7), Pixel(9, 7), End(3), Begin(2), End(2), Begin(1), End(1)}}));
    EXPECT_EQ(Walk({20, 20, 22, 20, 20, 21}), (WalkRecord{0, {Begin(2), End(2), Begin(1), End(1)}}));
}

TEST(ScanPlaneUnary, GivesMinusOneForOnePixelInsideAndOthersOut) {
    const auto record = Walk({9, 3, 12, 3, 9, 3});
    EXPECT_EQ(record, (WalkRecord{-1, {Begin(1), Pixel(9, 3), End(1)}}));
}

TEST(ScanPlaneUnary, ShowsAStartFarLeftInsideAWideImage) {
    // The sign of -1 gets lost above 16 bits: the line starts at 65535.
    const auto image = std::make_unique<FakeImage>(70000, 3, 16);
    image->AddPlane(
        image->Pixels.data(), 8, [](auto x) { return x % 7; }, [](auto y) { return y; });
    ScanRequest request;
    request.Image1 = image->Handle();
    request.Area = {-1, 1, 9, 1, -1, 1};
    const auto right = RunScan(Scan::PlaneUnary, request);
    ExpectSameWalk(right, ModelScan(Scan::PlaneUnary, request));
    EXPECT_EQ(right.Result, 11);
    EXPECT_EQ(right.Notes[1], Pixel(65535, 1));
    EXPECT_EQ(right.Notes[11], Pixel(65545, 1));

    request.Area = {-60000, 1, -60003, 1, -60000, 1};
    EXPECT_EQ(RunScan(Scan::PlaneUnary, request).Notes[1], Pixel(5536, 1));
    request.Area = {65541, 1, 65543, 1, 65541, 1}; // the same from the right
    const auto wrapped = RunScan(Scan::PlaneUnary, request);
    EXPECT_EQ(wrapped.Notes[1], Pixel(5, 1));
    EXPECT_EQ(wrapped.Result, 3);
    request.Area = {65541, 0, 65541, 2, 65541, 0}; // the minor axis keeps it
    EXPECT_EQ(RunScan(Scan::PlaneUnary, request).Notes[1], Pixel(65541, 0));
}

TEST(ScanPlaneUnary, ShowsAStartFarAboveInsideATallImage) {
    const auto image = std::make_unique<FakeImage>(3, 70000, 16);
    image->AddPlane(
        image->Pixels.data(), 8, [](auto x) { return x; }, [](auto y) { return y % 5; });
    ScanRequest request;
    request.Image1 = image->Handle();
    for (const TArea &area :
         {TArea{1, -1, 1, 9, 1, -1}, TArea{1, -3000, 1, 9, 2, -3000}, TArea{0, 65540, 0, 65530, 2, 65540}}) {
        request.Area = area;
        const auto walked = RunScan(Scan::PlaneUnary, request);
        EXPECT_NE(walked.Result, 0);
        ExpectSameWalk(walked, ModelScan(Scan::PlaneUnary, request));
    }
}

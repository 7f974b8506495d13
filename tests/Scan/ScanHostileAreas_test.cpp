// Areas that no picture has: no numbers, points beyond 32 and 47 bits, lines of 2^31 samples and more. Each walk ends
// soon; where it is told to visit samples after all, it visits these.
#include "Scan/ScanRecorder.h"

#include <cmath>

namespace {

using namespace TestSupport;

constexpr double TwoTo31 = 2147483648.0;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

/// A 10 x 8 image walked by any scan, with lines and pixels noted.
struct Setting {
    std::unique_ptr<FakeImage> Image = FakeImage::Planar(10, 8, 1, 8);
    ScanRequest Request;
    explicit Setting(const TArea &area) {
        Request.Image1 = Request.Image2 = Image->Handle();
        Request.Area = area;
    }
    WalkRecord Walk(Scan scan = Scan::PlaneUnary) {
        ClearReports();
        const WalkRecord record = RunScan(scan, Request);
        ExpectNoReport();
        EXPECT_EQ(Image->Count(), 1);
        return record;
    }
};

/// Positions only; for areas with too many lines to note.
struct PositionList {
    WalkNotes Pixels;
    static unsigned char OnPixel(void *self, void *, std::int32_t x, std::int32_t y) {
        static_cast<PositionList *>(self)->Pixels.push_back(Pixel(x, y));
        return 1;
    }
};
std::int64_t WalkPixelsOnly(FakeImage &image, const TArea &area, PositionList &list, std::int64_t density = 1000) {
    return ScanPlaneUnary(image.Handle(), 0, area, density, 0, PositionList::OnPixel, nullptr, nullptr, &list);
}

TArea WithCoordinate(int place, double value) {
    TArea area{1, 1, 4, 2, 0, 5};
    double *const coordinates[] = {&area.X0, &area.Y0, &area.X1, &area.Y1, &area.X2, &area.Y2};
    *coordinates[place] = value;
    return area;
}

} // namespace

TEST(ScanHostileAreas, PointsThatAreNoFiniteNumbersGiveMinusOneWithoutAReport) {
    for (const Scan scan : AllScans)
        for (int place = 0; place < 6; ++place)
            for (const double value : {NaN, -NaN, Infinity, -Infinity, 1e300, -1e300, 1e19, -1e19,
                                       9223372036854775808.0, -9223372036854775808.0, 1e15, -1e15, 1.5e14, -1.5e14}) {
                Setting setting(WithCoordinate(place, value));
                EXPECT_EQ(setting.Walk(scan), (WalkRecord{-1, {}})) << NameOf(scan) << " " << place << " " << value;
                setting.Request.Given = {false, true, true};
                EXPECT_EQ(setting.Walk(scan), (WalkRecord{-1, {}})) << NameOf(scan) << " " << place << " " << value;
            }
}

TEST(ScanHostileAreas, CoordinateSystemsThatLeadNowhereGiveMinusOneWithoutAReport) {
    for (const Scan scan : AllScans)
        for (const double value : {NaN, Infinity, 1e300}) {
            Setting setting({1, 1, 4, 2, 0, 5});
            setting.Image->Coordinates = {value, 0, {1, 0, 0, 1}};
            setting.Request.UseCoordinateSystem = 1;
            EXPECT_EQ(setting.Walk(scan), (WalkRecord{-1, {}}));
            setting.Image->Coordinates = {0, 0, {1, 0, value, 1}};
            EXPECT_EQ(setting.Walk(scan), (WalkRecord{-1, {}}));
        }
}

TEST(ScanHostileAreas, BeyondTheRightEndOf32BitsGiveMinusOne) {
    for (const Scan scan : AllScans) {
        EXPECT_EQ(Setting({0, 0, TwoTo31, 0, 0, 0}).Walk(scan), (WalkRecord{-1, {}}));
        EXPECT_EQ(Setting({0, 0, 2e9, 0, 2e9, 1}).Walk(scan), (WalkRecord{-1, {}})) << "the fourth corner counts";
        EXPECT_EQ(Setting({TwoTo31, 0, TwoTo31, 0, TwoTo31, 0}).Walk(scan), (WalkRecord{-1, {}}));
        EXPECT_EQ(Setting({TwoTo31, 5 * TwoTo31, 0, 0, 0, 0}).Walk(scan), (WalkRecord{-1, {}}));
    }
}

TEST(ScanHostileAreas, UpToTheRightEndOf32BitsAreWalked) {
    EXPECT_EQ(Setting({0, 0, TwoTo31 - 1, 0, 0, 0}).Walk().Result, -10);
    EXPECT_EQ(Setting({0, 0, TwoTo31 - 0.51, 0, 0, 0}).Walk().Result, -10);
    EXPECT_EQ(Setting({0, 0, TwoTo31 - 0.5, 0, 0, 0}).Walk().Result, -1);
}

TEST(ScanHostileAreas, BelowTheRangeAreRefusedOnlyWhenTheyAreLeftOfItToo) {
    const WalkNotes walked = {Begin(1), End(1)};
    EXPECT_EQ(Setting({0, TwoTo31, 0, TwoTo31, -TwoTo31 - 1, TwoTo31}).Walk(), (WalkRecord{-1, {}}));
    EXPECT_EQ(Setting({0, TwoTo31 + 50, 0, TwoTo31 + 50, 0, TwoTo31 + 50}).Walk(), (WalkRecord{0, walked}));
    EXPECT_EQ(Setting({9, 0, 9, TwoTo31, 9, 0}).Walk().Result, -8);
    EXPECT_EQ(Setting({-TwoTo31, TwoTo31, -TwoTo31, TwoTo31, -TwoTo31, TwoTo31}).Walk(), (WalkRecord{0, walked}));
    // Above the range and below it at once.
    EXPECT_EQ(Setting({0, -TwoTo31 - 1, 0, TwoTo31, 0, -TwoTo31 - 1}).Walk(), (WalkRecord{0, walked}));
}

TEST(ScanHostileAreas, AboveTheRangeAreRefusedWhenTheBottomIsInside) {
    EXPECT_EQ(Setting({0, 0, 0, -TwoTo31 - 1, 0, 0}).Walk(), (WalkRecord{-1, {}}));
    EXPECT_EQ(Setting({3, 5, 3, -TwoTo31, 3, 5}).Walk().Result, -6);
    EXPECT_EQ(Setting({-TwoTo31 - 1, 0, 0, -TwoTo31 - 1, 0, 0}).Walk(), (WalkRecord{-1, {}}));
}

TEST(ScanHostileAreas, LeftOfTheRangeAreWalkedWhenTheBottomIsInside) {
    WalkNotes notes = {Begin(1)};
    for (std::int64_t x = 5; x >= 0; --x)
        notes.push_back(Pixel(x, 5));
    notes.push_back(End(1));
    EXPECT_EQ(Setting({5, 5, -TwoTo31 - 1, 5, 5, 5}).Walk(), (WalkRecord{-6, notes}));
    EXPECT_EQ(Setting({5, 5, -1e14, 5, 5, 5}).Walk(), (WalkRecord{-6, notes}));
}

TEST(ScanHostileAreas, LongLinesEndSoon) {
    for (const Scan scan : AllScans)
        for (const double end : {TwoTo31 - 1, TwoTo31 - 70000, 1e9}) {
            // A binary scan has one column and row more.
            const std::int64_t extra = scan == Scan::PlaneBinary ? 1 : 0;
            EXPECT_EQ(Setting({0, 3, end, 3, 0, 3}).Walk(scan).Result, -10 - extra);
            EXPECT_EQ(Setting({2, 0, 2, end, 2, 0}).Walk(scan).Result, -8 - extra);
            EXPECT_EQ(Setting({0, 0, end, 0, 0, 90}).Walk(scan).Result, -(10 + extra) * (8 + extra));
            EXPECT_EQ(Setting({0, 0, end, end, 0, 0}).Walk(scan).Result, -8 - extra);
        }
    EXPECT_EQ(Setting({9, 3, -TwoTo31, 3, 9, 3}).Walk().Result, -10);
    EXPECT_EQ(Setting({9, 7, -TwoTo31, 7, 9, 0}).Walk().Result, -80);
    EXPECT_EQ(Setting({9, 7, 9, -TwoTo31, 0, 7}).Walk().Result, -80);
}

TEST(ScanHostileAreas, LongLinesOutsideEndSoon) {
    for (const Scan scan : AllScans)
        for (const TArea &area : {TArea{0, 100, TwoTo31 - 1, 100, 0, 200}, TArea{100, 0, 100, TwoTo31 - 1, 200, 0},
                                  TArea{-5, 3, TwoTo31 - 1, 3, -5, 3}, TArea{3, -5, 3, TwoTo31 - 1, 3, -5},
                                  TArea{100, 3, TwoTo31 - 1, 3, 100, 90}, TArea{20, 20, TwoTo31 - 1, 900, 10, 70}})
            EXPECT_EQ(Setting(area).Walk(scan).Result, 0) << NameOf(scan);
}

TEST(ScanHostileAreas, LongLinesStartWhereTheLow16BitsOfTheirStartAre) {
    // A start at -2^31 counts as 0; the line then runs once through all 32 bits.
    const WalkRecord across = Setting({-TwoTo31, 0, TwoTo31 - 1, 0, -TwoTo31, 0}).Walk();
    EXPECT_EQ(across.Result, -10);
    EXPECT_EQ(across.Notes.at(1), Pixel(0, 0));
    EXPECT_EQ(across.Notes.at(10), Pixel(9, 0));
    EXPECT_EQ(Setting({-TwoTo31 + 7, 0, TwoTo31 - 1, 0, -TwoTo31 + 7, 0}).Walk().Result, -3);
}

TEST(ScanHostileAreas, ALineLongerThan32BitsComesRound) {
    // Each turn of 2^32 samples drifts by 65536 rows.
    FakeImage image(10, 140000, 32);
    image.AddPlane(
        image.Pixels.data(), 8, [](auto x) { return x; }, [](auto) { return 0; });
    PositionList list;
    EXPECT_EQ(WalkPixelsOnly(image, {5, 5, -1e12, 5, 5, 5}, list), -26);
    WalkNotes told;
    for (std::int64_t x = 5; x >= 0; --x)
        told.push_back(Pixel(x, 5));
    for (std::int32_t turn = 1; turn <= 2; ++turn)
        for (std::int64_t x = 9; x >= 0; --x)
            told.push_back(Pixel(x, 5 + 65536 * turn));
    EXPECT_EQ(list.Pixels, told);
}

TEST(ScanHostileAreas, ManyLinesComeRoundWithTheLow16BitsOfTheirStarts) {
    const auto image = FakeImage::Planar(10, 8, 1, 8);
    PositionList list;
    EXPECT_EQ(WalkPixelsOnly(*image, {0, 0, 9, 0, 0, 16777216.0}, list), 0) << "each line starts at 32768";
    EXPECT_EQ(WalkPixelsOnly(*image, {3, 0, 3, 0, 3, 16777215.0}, list), -56);
    EXPECT_EQ(WalkPixelsOnly(*image, {0, 3, 0, 3, 16777215.0, 3}, list), -50);
    WalkNotes told; // at each turn of 65536 lines they have drifted by a pixel
    for (std::int64_t x = 3; x < 10; ++x)
        for (std::int32_t y = 0; y < 8; ++y)
            told.push_back(Pixel(x, y));
    for (std::int32_t y = 3; y < 8; ++y)
        for (std::int64_t x = 0; x < 10; ++x)
            told.push_back(Pixel(x, y));
    EXPECT_EQ(list.Pixels, told);
}

TEST(ScanHostileAreas, LowDensitiesOfLongEdgesAreQuickWithPlainSteps) {
    for (const double length : {1e6, 1e8, TwoTo31 - 1})
        for (const std::int64_t density : {0, 1, 10}) {
            Setting setting({2, 3, length, 3, 2, 3});
            setting.Request.Density = density;
            EXPECT_EQ(setting.Walk().Result, -1) << length << " " << density;
        }
}

TEST(ScanHostileAreas, ManyLinesStopWhenACallbackSaysSo) {
    for (const Scan scan : AllScans)
        for (const WalkStops &stops : {WalkStops{0, 3, 0}, WalkStops{0, 0, 3}, WalkStops{4, 0, 0}})
            for (const TArea &area : {TArea{3, 0, 3, 0, 3, TwoTo31 - 1}, TArea{0, 3, 0, 3, TwoTo31 - 1, 3},
                                      TArea{0, 0, 0, 0, 5, 1e14}, TArea{0, 0, 0, 0, -1e14, 5}}) {
                Setting setting(area);
                setting.Request.Stops = stops;
                if (stops.Pixel == 0)
                    setting.Request.Given.Pixel = false;
                if (stops.Pixel != 0 && area.X2 != 3) // the others meet fewer pixels
                    continue;
                EXPECT_EQ(setting.Walk(scan), ModelScan(scan, setting.Request)) << NameOf(scan);
            }
}

TEST(ScanHostileAreas, EdgesBeyond32BitsAreCutTo32BitsInTheDistanceOfLines) {
    // 2^32 + 3 rows count as 3 for the number of lines.
    Setting setting({0, -3, 4, -3, 0, 4294967296.0});
    setting.Request.Given.Pixel = false;
    EXPECT_EQ(setting.Walk().Notes.size(), 8u);
    EXPECT_EQ(setting.Walk(), ModelScan(Scan::PlaneUnary, setting.Request));
    setting.Request.Given.Pixel = true;
    EXPECT_EQ(setting.Walk(), ModelScan(Scan::PlaneUnary, setting.Request));
}

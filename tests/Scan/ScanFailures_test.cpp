// What the scans refuse, in which order, and how: result, code, name, no callback, no reference kept.
#include "ImageCoordinates.h"
#include "Matrices.h"
#include "Scan/ScanRecorder.h"

namespace {

using namespace TestSupport;

constexpr std::int64_t Lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t Highest = std::numeric_limits<std::int64_t>::max();

/// Two images of 2 and 3 planes and an area inside.
struct ScanSetting {
    std::unique_ptr<FakeImage> First = FakeImage::Planar(6, 5, 2, 8);
    std::unique_ptr<FakeImage> Second = FakeImage::Planar(6, 5, 3, 8);
    ScanRequest Request;
    ScanSetting() {
        Request.Image1 = First->Handle();
        Request.Image2 = Second->Handle();
        Request.Area = {1, 1, 3, 1, 1, 2};
    }
    std::int64_t Call(Scan scan) {
        ScanRecorder recorder;
        ClearReports();
        const std::int64_t result = CallScan(scan, Request, recorder);
        calls = recorder.Notes.size();
        return result;
    }
    /// Both with and without callbacks, since checks come before either walk.
    void ExpectFailure(Scan scan, std::uint32_t code) {
        for (const WalkChoice &given :
             {WalkChoice{}, WalkChoice{false, true, true}, WalkChoice{false, false, false}}) {
            Request.Given = given;
            EXPECT_EQ(Call(scan), -1) << NameOf(scan);
            EXPECT_EQ(calls, 0u);
            ExpectOneReport(code, NameOf(scan));
            ExpectReleased();
        }
        Request.Given = {};
    }
    void ExpectReleased() const {
        EXPECT_EQ(First->Count(), 1);
        EXPECT_EQ(Second->Count(), 1);
    }
    std::size_t calls = 0;
};

} // namespace

TEST(ScanFailures, NullHandlesAreNoImages) {
    for (const Scan scan : AllScans) {
        ScanSetting setting;
        setting.Request.Image1 = nullptr;
        setting.ExpectFailure(scan, ErrNotAnImage);
        setting.Request.Image2 = nullptr;
        setting.ExpectFailure(scan, ErrNotAnImage);
        setting.Request.Image1 = setting.First->Handle();
        if (IsBinary(scan))
            setting.ExpectFailure(scan, ErrNotAnImage);
    }
}

TEST(ScanFailures, HandlesWithoutAnImageAreReported) {
    for (const Scan scan : AllScans)
        for (const ForeignHandle &foreign : ForeignHandles()) {
            SCOPED_TRACE(foreign.Name);
            ScanSetting setting;
            setting.Request.Image1 = foreign.Get();
            setting.ExpectFailure(scan, ErrNotAnImage);
            setting.Request.Image1 = setting.First->Handle();
            setting.Request.Image2 = foreign.Get();
            if (IsBinary(scan))
                setting.ExpectFailure(scan, ErrNotAnImage);
            EXPECT_EQ(foreign.Count(), 1);
        }
}

TEST(ScanFailures, ImagesThatRefuseTheQueryAreReported) {
    for (const Scan scan : AllScans)
        for (const bool second : {false, true}) {
            ScanSetting setting;
            if (second && !IsBinary(scan))
                continue;
            auto &fails = (second ? setting.Second : setting.First)->Fails;
            fails.QueryThrows = true;
            setting.ExpectFailure(scan, ErrNotAnImage);
            fails.QueryThrows = false;
            fails.QueryGivesNull = true;
            setting.ExpectFailure(scan, ErrNotAnImage);
            fails.QueryStatus = StatusNoInterface;
            setting.ExpectFailure(scan, ErrNotAnImage);
        }
}

TEST(ScanFailures, PlanesOutOfRangeAreReported) {
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{2}, Lowest, Highest, std::intptr_t{1} << 32})
        for (const Scan scan : {Scan::PlaneUnary, Scan::PlaneBinary}) {
            ScanSetting setting;
            setting.Request.Plane1 = plane;
            setting.ExpectFailure(scan, ErrElementIndex);
        }
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{3}, Lowest, Highest, std::intptr_t{1} << 32}) {
        ScanSetting setting;
        setting.Request.Plane2 = plane;
        setting.ExpectFailure(Scan::PlaneBinary, ErrElementIndex);
    }
}

TEST(ScanFailures, EachPlaneOfItsOwnImageIsInRange) {
    ScanSetting setting;
    setting.Request.Plane1 = 1;
    setting.Request.Plane2 = 2;
    ClearReports();
    EXPECT_EQ(RunScan(Scan::PlaneBinary, setting.Request).Result, 6);
    EXPECT_EQ(RunScan(Scan::PlaneUnary, setting.Request).Result, 6);
    ExpectNoReport();
}

TEST(ScanFailures, NegativeDensitiesAreReported) {
    for (const Scan scan : AllScans)
        for (const std::int64_t density : {std::int64_t{-1}, std::int64_t{-1000}, Lowest}) {
            ScanSetting setting;
            setting.Request.Density = density;
            setting.ExpectFailure(scan, ErrParameter);
        }
}

TEST(ScanFailures, ComeInTheOrderImagePlaneDensity) {
    for (const Scan scan : {Scan::PlaneUnary, Scan::PlaneBinary}) {
        ScanSetting setting;
        setting.Request.Density = -1;
        setting.Request.Plane1 = -1;
        setting.ExpectFailure(scan, ErrElementIndex);
        setting.Request.Image1 = nullptr;
        setting.ExpectFailure(scan, ErrNotAnImage);
    }
    ScanSetting setting;
    setting.Request.Density = -1;
    setting.Request.Plane1 = -1;
    setting.Request.Image2 = nullptr;
    setting.ExpectFailure(Scan::PlaneBinary, ErrNotAnImage);
    setting.Request.Image2 = setting.Second->Handle();
    setting.Request.Plane1 = 0;
    setting.Request.Plane2 = 3;
    setting.ExpectFailure(Scan::PlaneBinary, ErrElementIndex);
}

TEST(ScanFailures, ComeBeforeTheCoordinateSystemIsRead) {
    for (const Scan scan : AllScans) {
        ScanSetting setting;
        setting.Request.UseCoordinateSystem = 1;
        setting.Request.Density = -1;
        setting.ExpectFailure(scan, ErrParameter);
        EXPECT_EQ(setting.First->CallsOf("GetCoordinateMap"), 0);
    }
}

TEST(ScanFailures, ImagesThatRefuseATableAreReported) {
    for (const Scan scan : AllScans)
        for (const bool second : {false, true}) {
            if (second && !IsBinary(scan))
                continue;
            ScanSetting setting;
            (second ? setting.Second : setting.First)->Fails.VPAStatus = Status(ErrGeneral);
            EXPECT_EQ(setting.Call(scan), -1) << NameOf(scan);
            EXPECT_EQ(setting.calls, 0u);
            ExpectOneReport(ErrGeneral, NameOf(scan));
            setting.ExpectReleased();
        }
}

TEST(ScanFailures, ImagesThatTellNoSizeShowNoPixel) {
    for (const Scan scan : AllScans)
        for (const bool second : {false, true}) {
            if (second && !IsBinary(scan))
                continue;
            ScanSetting setting;
            setting.Request.Given = {true, false, false};
            (second ? setting.Second : setting.First)->Fails.DimensionsStatus = Status(ErrGeneral);
            EXPECT_LE(setting.Call(scan), 0) << NameOf(scan);
            EXPECT_EQ(setting.calls, 0u);
            setting.ExpectReleased();
        }
}

TEST(ScanFailures, ExceptionsOfAnImagePassOnAndReleaseIt) {
    for (const Scan scan : AllScans)
        for (const bool second : {false, true})
            for (const bool anInt : {false, true}) {
                if (second && !IsBinary(scan))
                    continue;
                ScanSetting setting;
                (second ? setting.Second : setting.First)->Fails.OnOperation = [anInt] {
                    if (anInt)
                        throw 42;
                    throw std::runtime_error("no operation");
                };
                if (anInt)
                    EXPECT_THROW(setting.Call(scan), int);
                else
                    EXPECT_THROW(setting.Call(scan), std::runtime_error);
                EXPECT_EQ(setting.calls, 0u);
                ExpectNoReport();
                setting.ExpectReleased();
            }
}

TEST(ScanCoordinates, OfTheImageLeadTheAreaToPixels) {
    const TCoordinateMap maps[] = {{3, 2, {1, 0, 0, 1}}, {5, 4, {0.6, -0.8, 0.8, 0.6}}, {9, 1, {-2, 0.5, 0, 1.25}}};
    const TArea area{0, 0, 3, 1, -1, 2.5};
    for (const Scan scan : AllScans)
        for (const TCoordinateMap &map : maps) {
            ScanSetting setting;
            ASSERT_TRUE(SetImageCoordinates(setting.First->Handle(), map));
            setting.Request.Area = area;
            setting.Request.UseCoordinateSystem = 1;
            const WalkRecord record = RunScan(scan, setting.Request);
            CoordinateMapTransformArea(&setting.Request.Area, area, map);
            ExpectSameWalk(record, ModelScan(scan, setting.Request));
            setting.Request.Given.Pixel = false;
            setting.Request.UseCoordinateSystem = 0;
            const WalkRecord lines = ModelScan(scan, setting.Request);
            setting.Request.Area = area;
            setting.Request.UseCoordinateSystem = 7;
            ExpectSameWalk(RunScan(scan, setting.Request), lines);
        }
}

TEST(ScanCoordinates, WithoutUseLeaveTheAreaInPixels) {
    for (const Scan scan : AllScans) {
        ScanSetting setting;
        setting.First->Coordinates = {3, 2, {0, 1, -1, 0}};
        EXPECT_EQ(RunScan(scan, setting.Request).Notes.at(1), Pixel(1, 1));
        EXPECT_EQ(setting.First->CallsOf("GetCoordinateMap"), 0);
    }
}

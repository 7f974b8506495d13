// Callbacks of the scans: each one missing, stopping, throwing, giving back the caller's handle, scanning again; and
// who holds references meanwhile.
#include "ImageCreation.h"
#include "Scan/ScanRecorder.h"

#include <thread>

namespace {

using namespace TestSupport;

/// Two images and an area of 4 lines of 5 pixels, or with whatever else a test sets.
struct ScanSetting {
    std::unique_ptr<FakeImage> First = FakeImage::Planar(8, 7, 2, 8);
    std::unique_ptr<FakeImage> Second = FakeImage::Planar(8, 7, 3, 8);
    ScanRequest Request;
    ScanSetting() {
        Request.Image1 = First->Handle();
        Request.Image2 = Second->Handle();
        Request.Area = {1, 1, 5, 1, 1, 4};
    }
    void ExpectReleased() const {
        EXPECT_EQ(First->Count(), 1);
        EXPECT_EQ(Second->Count(), 1);
    }
};

constexpr TArea Areas[] = {{1, 1, 5, 1, 1, 4}, {1, 1, 12, 3, -2, 9}, {3, 3, 3, 3, 3, 3}, {20, 20, 22, 21, 18, 25}};

/// Steps through all choices of callbacks.
std::vector<WalkChoice> AllChoices() {
    std::vector<WalkChoice> choices;
    for (unsigned bits = 0; bits < 8; ++bits)
        choices.push_back({(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0});
    return choices;
}

/// What is thrown, and where.
struct Bomb {
    std::function<void()> InPixel, InBegin, InEnd;
    std::int64_t CallsBefore = 0;
    unsigned char Reach(const std::function<void()> &explode) {
        if (explode && CallsBefore-- == 0)
            explode();
        return 1;
    }
    static Bomb &Of(void *data) { return *static_cast<Bomb *>(data); }
    static unsigned char OnPlane(void *data, void *, std::int32_t, std::int32_t) {
        return Of(data).Reach(Of(data).InPixel);
    }
    static unsigned char OnPlanes(void *data, void *, void *, std::int32_t, std::int32_t) {
        return Of(data).Reach(Of(data).InPixel);
    }
    static unsigned char OnImage(void *data, void **, std::int32_t, std::int32_t) {
        return Of(data).Reach(Of(data).InPixel);
    }
    static unsigned char OnImages(void *data, void **, void **, std::int32_t, std::int32_t) {
        return Of(data).Reach(Of(data).InPixel);
    }
    static unsigned char OnBegin(void *data, std::int64_t) { return Of(data).Reach(Of(data).InBegin); }
    static unsigned char OnEnd(void *data, std::int64_t) { return Of(data).Reach(Of(data).InEnd); }
};

std::int64_t CallWith(Scan scan, const ScanRequest &r, Bomb &bomb, bool withPixel = true) {
    switch (scan) {
    case Scan::PlaneUnary:
        return ScanPlaneUnary(r.Image1, 0, r.Area, 1000, 0, withPixel ? Bomb::OnPlane : nullptr, Bomb::OnBegin,
                              Bomb::OnEnd, &bomb);
    case Scan::PlaneBinary:
        return ScanPlaneBinary(r.Image1, r.Image2, 0, 0, r.Area, 1000, 0, 0, 0, withPixel ? Bomb::OnPlanes : nullptr,
                               Bomb::OnBegin, Bomb::OnEnd, &bomb);
    case Scan::ImageUnary:
        return ScanImageUnary(r.Image1, r.Area, 1000, 0, withPixel ? Bomb::OnImage : nullptr, Bomb::OnBegin,
                              Bomb::OnEnd, &bomb);
    default:
        return ScanImageBinary(r.Image1, r.Image2, r.Area, 1000, 0, 0, 0, withPixel ? Bomb::OnImages : nullptr,
                               Bomb::OnBegin, Bomb::OnEnd, &bomb);
    }
}

} // namespace

TEST(ScanCallbacks, AreCalledAsToldInEachCombination) {
    for (const Scan scan : AllScans)
        for (const TArea &area : Areas)
            for (const WalkChoice &choice : AllChoices()) {
                SCOPED_TRACE(testing::Message() << NameOf(scan) << " pixel " << choice.Pixel << " begin "
                                                << choice.LineBegin << " end " << choice.LineEnd);
                ScanSetting setting;
                setting.Request.Area = area;
                setting.Request.Given = choice;
                ExpectModelWalk(scan, setting.Request);
                setting.ExpectReleased();
            }
}

TEST(ScanCallbacks, StopTheWalkAsToldInEachCombination) {
    for (const Scan scan : AllScans)
        for (const TArea &area : Areas)
            for (const WalkChoice &choice : AllChoices())
                for (std::int64_t stop = 1; stop <= 12; ++stop)
                    for (const WalkStops &stops : {WalkStops{stop, 0, 0}, WalkStops{0, stop, 0},
                                                   WalkStops{0, 0, stop}, WalkStops{7, stop, stop}}) {
                        ScanSetting setting;
                        setting.Request.Area = area;
                        setting.Request.Given = choice;
                        setting.Request.Stops = stops;
                        ClearReports();
                        ExpectModelWalk(scan, setting.Request);
                        ExpectNoReport();
                        setting.ExpectReleased();
                        ASSERT_FALSE(testing::Test::HasFailure()) << NameOf(scan) << " stop " << stop;
                    }
}

TEST(ScanCallbacks, StopOfAPixelStillGetsItsLineEnd) {
    ScanSetting setting;
    setting.Request.Stops.Pixel = 2;
    const WalkNotes notes = {Begin(4), Pixel(1, 1), Pixel(2, 1), End(4)};
    for (const Scan scan : AllScans)
        EXPECT_EQ(RunScan(scan, setting.Request), (WalkRecord{2, notes}));
}

TEST(ScanCallbacks, StopOfALineBeginGetsNoLineEnd) {
    ScanSetting setting;
    setting.Request.Area = {1, 1, 2, 1, 1, 4};
    setting.Request.Stops.LineBegin = 2;
    const WalkNotes notes = {Begin(4), Pixel(1, 1), Pixel(2, 1), End(4), Begin(3)};
    for (const Scan scan : AllScans)
        EXPECT_EQ(RunScan(scan, setting.Request), (WalkRecord{2, notes}));
}

TEST(ScanCallbacks, StopOfALineEndEndsTheWalk) {
    ScanSetting setting;
    setting.Request.Area = {6, 1, 8, 1, 6, 4};
    setting.Request.Stops.LineEnd = 1;
    const WalkRecord record = RunScan(Scan::PlaneUnary, setting.Request);
    EXPECT_EQ(record, (WalkRecord{-2, {Begin(4), Pixel(6, 1), Pixel(7, 1), End(4)}}));
}

TEST(ScanCallbacks, RunOncePerLineWithoutAPixelCallback) {
    const WalkNotes begins = {Begin(4), Begin(3), Begin(2), Begin(1)};
    const WalkNotes ends = {End(4), End(3), End(2), End(1)};
    const WalkNotes both = {Begin(4), End(4), Begin(3), End(3), Begin(2), End(2), Begin(1), End(1)};
    for (const Scan scan : AllScans) {
        ScanSetting setting;
        setting.Request.Given = {false, true, false};
        EXPECT_EQ(RunScan(scan, setting.Request), (WalkRecord{0, begins}));
        setting.Request.Given = {false, false, true};
        EXPECT_EQ(RunScan(scan, setting.Request), (WalkRecord{0, ends}));
        setting.Request.Given = {false, true, true};
        EXPECT_EQ(RunScan(scan, setting.Request), (WalkRecord{0, both}));
        setting.Request.Stops.LineBegin = 2;
        EXPECT_EQ(RunScan(scan, setting.Request), (WalkRecord{0, {Begin(4), End(4), Begin(3)}}));
        setting.Request.Stops = {0, 0, 1};
        EXPECT_EQ(RunScan(scan, setting.Request), (WalkRecord{0, {Begin(4), End(4)}}));
    }
}

TEST(ScanCallbacks, WithoutOneForPixelsReadNoTable) {
    for (const Scan scan : AllScans) {
        ScanSetting setting;
        setting.First->Fails.VPAStatus = setting.Second->Fails.VPAStatus = StatusBadPlane;
        Bomb harmless;
        ClearReports();
        EXPECT_EQ(CallWith(scan, setting.Request, harmless, false), 0) << NameOf(scan);
        ExpectNoReport();
        EXPECT_EQ(setting.First->CallsOf("GetPlaneVPA"), 0);
        EXPECT_EQ(setting.Second->CallsOf("GetPlaneVPA"), 0);
    }
}

TEST(ScanCallbacks, AllMissingGiveZeroAtOnceForAnAreaOfManyLines) {
    for (const Scan scan : AllScans) {
        ScanSetting setting;
        setting.Request.Given = {false, false, false};
        setting.Request.Area = {0, 0, 0, 0, 5, 2147483647.0};
        EXPECT_EQ(RunScan(scan, setting.Request), (WalkRecord{0, {}}));
    }
}

TEST(ScanCallbacks, PassOnWhatTheyThrowAndReleaseTheImages) {
    const auto throwText = [] { throw std::runtime_error("from the callback"); };
    const auto throwNumber = [] { throw 42; };
    for (const Scan scan : AllScans)
        for (const std::int64_t before : {0, 1, 3})
            for (int place = 0; place < 3; ++place) {
                ScanSetting setting;
                ClearReports();
                Bomb bomb;
                auto &where = place == 0 ? bomb.InPixel : place == 1 ? bomb.InBegin : bomb.InEnd;
                where = throwText;
                bomb.CallsBefore = before;
                EXPECT_THROW(CallWith(scan, setting.Request, bomb), std::runtime_error);
                setting.ExpectReleased();
                where = throwNumber;
                bomb.CallsBefore = before;
                EXPECT_THROW(CallWith(scan, setting.Request, bomb, place == 0), int);
                setting.ExpectReleased();
                ExpectNoReport();
            }
}

TEST(ScanCallbacks, SeeImagesThatTheWalkHolds) {
    for (const Scan scan : AllScans) {
        ScanSetting setting;
        Bomb bomb;
        bomb.InPixel = [&] {
            EXPECT_GE(setting.First->Count(), 2);
            EXPECT_GE(setting.Second->Count(), IsBinary(scan) ? 2 : 1);
        };
        EXPECT_EQ(CallWith(scan, setting.Request, bomb), 20);
        EXPECT_EQ(bomb.CallsBefore, -20) << "the check has not run";
        setting.ExpectReleased();
    }
}

TEST(ScanCallbacks, MayGiveBackTheCallersHandles) {
    for (const Scan scan : AllScans)
        for (int place = 0; place < 3; ++place) {
            std::vector<std::uint8_t> pixels(64, 7);
            bool gone[2] = {false, false};
            void *images[2] = {nullptr, nullptr};
            for (int i = 0; i < 2; ++i)
                ASSERT_EQ(CreateImageFromPointer(
                              pixels.data(), 64, 8, 8, 1, 8, 1, 8, 64, nullptr,
                              [](void *, void *flag) { *static_cast<bool *>(flag) = true; }, &gone[i], &images[i]),
                          0);
            ScanRequest request;
            request.Image1 = images[0];
            request.Image2 = images[1];
            request.Area = {1, 1, 5, 1, 1, 4};
            Bomb bomb;
            (place == 0   ? bomb.InPixel
             : place == 1 ? bomb.InBegin
                          : bomb.InEnd) = [&] {
                ReleaseObject(images[0]);
                ReleaseObject(images[1]);
                EXPECT_FALSE(gone[0]);
                EXPECT_EQ(gone[1], !IsBinary(scan));
            };
            EXPECT_EQ(CallWith(scan, request, bomb), 20) << NameOf(scan);
            EXPECT_TRUE(gone[0]);
            EXPECT_TRUE(gone[1]);
        }
}

TEST(ScanCallbacks, MayScanAgain) {
    for (const Scan scan : AllScans) {
        ScanSetting setting;
        const WalkRecord alone = ModelScan(Scan::ImageUnary, setting.Request);
        Bomb bomb;
        bomb.InPixel = [&] { EXPECT_EQ(RunScan(Scan::ImageUnary, setting.Request), alone); };
        EXPECT_EQ(CallWith(scan, setting.Request, bomb), 20);
        setting.ExpectReleased();
    }
}

TEST(ScanCallbacks, OfSeveralThreadsWalkOneImage) {
    ScanSetting setting;
    setting.Request.Area = {1, 1, 12, 3, -2, 9};
    std::vector<WalkRecord> records(8);
    std::vector<std::thread> threads;
    for (WalkRecord &record : records)
        threads.emplace_back([&record, &setting] {
            for (int round = 0; round < 50; ++round)
                record = RunScan(Scan::ImageBinary, setting.Request);
        });
    for (std::thread &thread : threads)
        thread.join();
    for (const WalkRecord &record : records)
        ExpectSameWalk(record, ModelScan(Scan::ImageBinary, setting.Request));
    setting.ExpectReleased();
}

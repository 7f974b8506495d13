// Two planes walked in step: the partner's place, the rectangle with its additional column and row, offsets of any
// size, and whose coordinate system counts.
#include "ImageCoordinates.h"
#include "Matrices.h"
#include "Scan/ScanRecorder.h"
#include "Support/TestLayouts.h"

namespace {

using namespace TestSupport;

constexpr std::int64_t Lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t Highest = std::numeric_limits<std::int64_t>::max();

struct Pair {
    std::unique_ptr<FakeImage> First, Second;
    ScanRequest Request;

    Pair(std::intptr_t width1, std::intptr_t height1, std::intptr_t width2, std::intptr_t height2, TArea area)
        : First(FakeImage::Planar(width1, height1, 2, 8)), Second(FakeImage::Planar(width2, height2, 3, 0x10)) {
        Request.Image1 = First->Handle();
        Request.Image2 = Second->Handle();
        Request.Area = area;
        Request.Plane1 = 1;
        Request.Plane2 = 2;
    }
    WalkRecord Walk(Scan scan = Scan::PlaneBinary) {
        ClearReports();
        WalkRecord record = RunScan(scan, Request);
        ExpectNoReport();
        ExpectSameWalk(record, ModelScan(scan, Request));
        EXPECT_EQ(First->Count(), 1);
        EXPECT_EQ(Second->Count(), 1);
        return record;
    }
};

WalkNotes PixelsOf(const WalkRecord &record) {
    WalkNotes pixels;
    std::copy_if(record.Notes.begin(), record.Notes.end(), std::back_inserter(pixels),
                 [](const WalkNote &note) { return note.Kind == Call::Pixel; });
    return pixels;
}

constexpr std::pair<std::intptr_t, std::intptr_t> SecondSizes[] = {{5, 4}, {9, 7}, {4, 3}, {6, 2}, {1, 1}};

} // namespace

TEST(ScanPlaneBinary, AdmitsOneColumnAndOneRowMoreThanTheImages) {
    Pair pair(5, 4, 5, 4, {0, 0, 6, 0, 0, 5});
    const WalkRecord record = pair.Walk();
    EXPECT_EQ(record.Result, -30);
    EXPECT_EQ(PixelsOf(record).back(), Pixel(5, 4));
    pair.Request.Area = {0, 0, 5, 0, 0, 4};
    EXPECT_EQ(pair.Walk().Result, 30);
}

TEST(ScanPlaneBinary, LeadsTheAdditionalColumnAndRowToTheLastOnes) {
    Pair pair(5, 4, 5, 4, {5, 4, 5, 4, 5, 4});
    const auto onPixel = [](void *data, void *pixel1, void *pixel2, std::int32_t, std::int32_t) -> unsigned char {
        auto &images = *static_cast<Pair *>(data);
        EXPECT_EQ(pixel1, images.First->PixelAddress(1, 4, 3));
        EXPECT_EQ(pixel2, images.Second->PixelAddress(2, 4, 3));
        return 1;
    };
    EXPECT_EQ(ScanPlaneBinary(pair.Request.Image1, pair.Request.Image2, 1, 2, pair.Request.Area, 1000, 0, 0, 0,
                              onPixel, nullptr, nullptr, &pair),
              1);
}

TEST(ScanPlaneBinary, PairsPixelsAtTheOffset) {
    Pair pair(5, 4, 9, 7, {0, 0, 4, 0, 0, 3});
    for (const auto &[dx, dy] :
         {std::pair{0, 0}, {2, 1}, {4, 3}, {-1, 0}, {0, -2}, {-3, 2}, {5, 5}, {8, 6}, {9, 7}}) {
        SCOPED_TRACE(testing::Message() << "offset " << dx << ", " << dy);
        pair.Request.Dx = dx;
        pair.Request.Dy = dy;
        EXPECT_NE(PixelsOf(pair.Walk()).size(), 0u);
    }
}

TEST(ScanPlaneBinary, LeavesOutWhatHasNoPartner) {
    Pair pair(5, 4, 5, 4, {0, 0, 4, 0, 0, 3});
    pair.Request.Dx = -2;
    pair.Request.Dy = -1;
    const WalkRecord record = pair.Walk();
    EXPECT_EQ(record.Result, -9);
    EXPECT_EQ(PixelsOf(record).front(), Pixel(2, 1));
    pair.Request.Dx = 2;
    pair.Request.Dy = 1;
    EXPECT_EQ(PixelsOf(pair.Walk()).back(), Pixel(3, 3));
    pair.Request.Dx = 6;
    EXPECT_EQ(pair.Walk().Result, 0);
    pair.Request.Dx = -7;
    EXPECT_EQ(pair.Walk().Result, 0);
}

TEST(ScanPlaneBinary, TakesTheSmallerOfBothImagesForAllOffsets) {
    for (const auto &[width, height] : SecondSizes)
        for (const Scan scan : {Scan::PlaneBinary, Scan::ImageBinary}) {
            Pair pair(5, 4, width, height, {0, 0, 7, 0, 0, 6});
            for (pair.Request.Dx = -6; pair.Request.Dx <= 10; ++pair.Request.Dx)
                for (pair.Request.Dy = -5; pair.Request.Dy <= 8; ++pair.Request.Dy) {
                    SCOPED_TRACE(testing::Message() << NameOf(scan) << ", " << width << " x " << height << " at "
                                                    << pair.Request.Dx << ", " << pair.Request.Dy);
                    pair.Walk(scan);
                    ASSERT_FALSE(testing::Test::HasFailure());
                }
        }
}

TEST(ScanPlaneBinary, LeavesAllOutForOffsetsBeyond32Bits) {
    constexpr std::int64_t turn = std::int64_t{1} << 32; // 0 in 32 bits
    for (const Scan scan : {Scan::PlaneBinary, Scan::ImageBinary})
        for (const std::int64_t far :
             {turn, turn + 1, -turn, -turn - 1, turn << 8, turn / 2, -turn / 2, Lowest, Highest})
            for (const bool alongX : {true, false}) {
                Pair pair(5, 4, 5, 4, {0, 0, 4, 0, 0, 3});
                (alongX ? pair.Request.Dx : pair.Request.Dy) = far;
                const WalkRecord record = pair.Walk(scan);
                EXPECT_EQ(record.Result, 0) << far;
                EXPECT_EQ(PixelsOf(record).size(), 0u);
            }
}

TEST(ScanPlaneBinary, WalksOneImageAgainstItself) {
    const auto image = FakeImage::Planar(6, 5, 2, 8);
    for (const auto &[plane1, plane2] : {std::pair{0, 0}, {0, 1}, {1, 0}})
        for (const Scan scan : {Scan::PlaneBinary, Scan::ImageBinary}) {
            ScanRequest request;
            request.Image1 = request.Image2 = image->Handle();
            request.Plane1 = plane1;
            request.Plane2 = plane2;
            request.Dx = 1;
            request.Area = {1, 0, 4, 3, 0, 4};
            ExpectModelWalk(scan, request);
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(ScanPlaneBinary, WalksImagesOfAllLayoutsInStep) {
    const auto firsts = MakeLayouts(7, 6, 3, 0x20, 3);
    const auto seconds = MakeLayouts(8, 5, 2, 0x240, 4);
    for (const Scan scan : {Scan::PlaneBinary, Scan::ImageBinary})
        for (const auto &first : firsts)
            for (const auto &second : seconds) {
                SCOPED_TRACE(first.Name + " with " + second.Name);
                ScanRequest request;
                request.Image1 = first.Get();
                request.Image2 = second.Get();
                request.Area = {1, 0, 8, 2, 0, 7};
                request.Plane1 = 2;
                request.Plane2 = 1;
                request.Dx = 1;
                request.Dy = -1;
                ASSERT_NO_FATAL_FAILURE(ExpectModelWalk(scan, request));
            }
}

TEST(ScanPlaneBinary, AppliesTheCoordinateSystemOfTheFirstImageOnly) {
    const TCoordinateMap map{2.0, 1.0, {0.0, 1.5, -0.5, 1.0}};
    const TArea area{0, 0, 1, 4, -2, 1};
    TArea inPixels;
    CoordinateMapTransformArea(&inPixels, area, map);
    for (const Scan scan : {Scan::PlaneBinary, Scan::ImageBinary})
        for (const unsigned char use : {std::uint8_t{1}, std::uint8_t{2}, std::uint8_t{128}, std::uint8_t{255}}) {
            Pair pair(9, 8, 9, 8, area);
            pair.First->Coordinates = map;
            pair.Second->Coordinates = {100.0, 100.0, {3.0, 0.0, 0.0, 3.0}};
            pair.Request.UseCoordinateSystem = use;
            const WalkRecord record = RunScan(scan, pair.Request);
            EXPECT_EQ(pair.Second->CallsOf("GetCoordinateMap"), 0);
            pair.Request.Area = inPixels;
            ExpectSameWalk(record, ModelScan(scan, pair.Request));
            EXPECT_GE(PixelsOf(record).size(), 10u);
        }
}

TEST(ScanPlaneBinary, IgnoresTheCoordinateSystemUnlessAsked) {
    Pair pair(9, 8, 9, 8, {0, 0, 4, 0, 0, 4});
    pair.First->Coordinates = {100.0, 100.0, {3.0, 0.0, 0.0, 3.0}};
    EXPECT_EQ(pair.Walk().Result, 25);
    EXPECT_EQ(pair.First->CallsOf("GetCoordinateMap"), 0);
}

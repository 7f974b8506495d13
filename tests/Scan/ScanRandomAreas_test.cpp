// Random areas through all four scans against the model: every position, every line, the result. Images come in many
// layouts and data types. Set ORV_TEST_CASE to a number to run that case alone.
#include "Scan/RandomAreas.h"

#include "ImageCoordinates.h"
#include "Matrices.h"
#include "Scan/ScanRecorder.h"
#include "Support/TestLayouts.h"

#include <cstdlib>

namespace {

using namespace TestSupport;

constexpr std::uint64_t CaseCount = 40'000;

/// Images of three sizes, all layouts, and data types of all widths.
const std::vector<NamedImage> &Images() {
    static const std::vector<NamedImage> images = [] {
        std::vector<NamedImage> all;
        for (auto &image : MakeLayouts(13, 9, 2, 0x8))
            all.push_back(image);
        for (auto &image : MakeLayouts(8, 21, 3, 0x110))
            all.push_back(image);
        for (auto &image : MakeLayouts(30, 17, 1, 0x240))
            all.push_back(image);
        for (auto &image : MakeLayouts(1, 1, 4, 0x18))
            all.push_back(image);
        return all;
    }();
    return images;
}

TCoordinateMap RandomMap(AreaRandom &random) {
    const auto value = [&random](double range) { return (random.Real() - 0.5) * 2 * range; };
    return {value(12), value(12), {value(1.5), value(1.5), value(1.5), value(1.5)}};
}

ScanRequest RandomRequest(AreaRandom &random) {
    const auto any = [&random] {
        return Images()[static_cast<std::size_t>(random.Draw(0, std::ssize(Images()) - 1))].Get();
    };
    ScanRequest request;
    request.Image1 = any();
    request.Image2 = random.OneIn(5) ? request.Image1 : any();
    const ImageSize size1 = SizeOf(request.Image1), size2 = SizeOf(request.Image2);
    request.Area = random.Area(size1.Width, size1.Height);
    request.Density = random.Density();
    request.Plane1 = random.Draw(0, size1.Planes - 1);
    request.Plane2 = random.Draw(0, size2.Planes - 1);
    request.Dx = random.OneIn(3) ? 0 : random.Draw(-10, 10);
    request.Dy = random.OneIn(3) ? 0 : random.Draw(-10, 10);
    request.UseCoordinateSystem = random.OneIn(6) ? 1 : 0;
    const auto choice = random.Draw(0, 20);
    request.Given = {choice != 1, choice % 2 == 0, choice % 3 == 0};
    if (random.OneIn(8))
        request.Stops.Pixel = random.Draw(1, 60);
    if (random.OneIn(12))
        request.Stops.LineBegin = random.Draw(1, 12);
    if (random.OneIn(12))
        request.Stops.LineEnd = random.Draw(1, 12);
    return request;
}

void ExpectRandomWalkAsTold(std::uint64_t number) {
    AreaRandom random(number);
    const auto scan = static_cast<Scan>(random.Draw(0, 3));
    ScanRequest request = RandomRequest(random);
    if (request.UseCoordinateSystem != 0) {
        ASSERT_TRUE(SetImageCoordinates(request.Image1, RandomMap(random)));
    }
    const WalkRecord walked = RunScan(scan, request);
    TCoordinateMap map;
    ASSERT_TRUE(GetImageCoordinates(request.Image1, &map));
    if (request.UseCoordinateSystem != 0)
        CoordinateMapTransformArea(&request.Area, request.Area, map);
    const TArea &area = request.Area;
    SCOPED_TRACE(testing::Message() << "case " << number << ": " << NameOf(scan) << " of (" << area.X0 << ", "
                                    << area.Y0 << "), (" << area.X1 << ", " << area.Y1 << "), (" << area.X2 << ", "
                                    << area.Y2 << ") at density " << request.Density);
    ExpectSameWalk(walked, ModelScan(scan, request));
}

void RunCases(std::uint64_t first, std::uint64_t count) {
    if (const char *only = std::getenv("ORV_TEST_CASE"))
        return ExpectRandomWalkAsTold(std::strtoull(only, nullptr, 10));
    ClearReports();
    for (std::uint64_t number = first; number < first + count; ++number) {
        ExpectRandomWalkAsTold(number);
        if (testing::Test::HasFailure())
            return;
    }
    ExpectNoReport();
}

} // namespace

TEST(ScanRandomAreas, AreWalkedAsTold) {
    RunCases(0, CaseCount / 2);
}

TEST(ScanRandomAreas, OfAnotherSeedAreWalkedAsTold) {
    RunCases(1'000'000, CaseCount / 2);
}

TEST(ScanRandomAreas, WiderThan16BitsAreWalkedAsTold) {
    const auto wide = std::make_unique<FakeImage>(70000, 5, 64), tall = std::make_unique<FakeImage>(5, 70000, 64);
    for (FakeImage *const image : {wide.get(), tall.get()})
        image->AddPlane(
            image->Pixels.data(), 8, [](auto x) { return x % 7; }, [](auto y) { return y % 11; });
    for (std::uint64_t number = 0; number < 150; ++number) {
        AreaRandom random(number);
        ScanRequest request;
        request.Image1 = random.OneIn(2) ? wide->Handle() : tall->Handle();
        request.Image2 = random.OneIn(2) ? wide->Handle() : tall->Handle();
        const ImageSize size = SizeOf(request.Image1);
        request.Area = random.WideArea(size.Width, size.Height);
        request.Density = random.Density();
        request.Dx = random.Draw(-2, 2);
        const auto scan = static_cast<Scan>(random.Draw(0, 3));
        SCOPED_TRACE(testing::Message() << "case " << number << ": " << NameOf(scan));
        ASSERT_NO_FATAL_FAILURE(ExpectModelWalk(scan, request));
    }
}

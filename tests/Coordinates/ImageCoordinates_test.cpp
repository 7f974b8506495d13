// The coordinate system of an image: directions, what fails how, and how many references and reports that leaves.
#include "ImageCoordinates.h"

#include "Coordinates/ExactRecords.h"
#include "ImageQueries.h"
#include "Matrices.h"
#include "Support/TestImages.h"
#include "Support/TestLayouts.h"

namespace {

using namespace TestSupport;

constexpr TCoordinateMap SampleMap{10.0, 20.0, {2.0, 1.0, -1.0, 3.0}};
constexpr TCoordinateMap SingularMap{5.0, 6.0, {1.0, 2.0, 2.0, 4.0}};
constexpr TArea SampleArea{1.0, 2.0, 11.0, 3.0, -4.0, 8.0};
constexpr double KeptX = -1234.5;
constexpr double KeptY = 6789.25;
constexpr TArea KeptArea{-1.0, -2.0, -3.0, -4.0, -5.0, -6.0};

struct Point {
    double X = KeptX;
    double Y = KeptY;
};

/// A fresh image over a block of its own.
Handle FreshImage(std::intptr_t width = 4, std::intptr_t height = 3) {
    static std::uint8_t block[1] = {};
    void *image = nullptr;
    // Only the tables count here: no test of this file touches a pixel.
    EXPECT_EQ(CreateImageFromPointer(block, 0, width, height, 1, 8, 1, width, 0, nullptr, nullptr, nullptr, &image),
              0);
    return Handle(image);
}

/// Calls of every function of the family, each with outputs that it must leave alone when it fails.
struct Operation {
    std::string Name;
    std::int64_t Reports;  ///< that a bad handle leaves
    std::uint32_t Code;    ///< of the last of them
    std::string Reporter;  ///< of the last of them
    std::string NullWorks; ///< empty, or the reason why a null handle leaves no report
    std::function<bool(void *)> FailsUntouched;
};

bool PointUntouched(const std::function<void(double *, double *)> &call) {
    Point point;
    call(&point.X, &point.Y);
    return SameBits(point, Point{});
}

bool AreaUntouched(const std::function<void(TArea *)> &call) {
    TArea area = KeptArea;
    call(&area);
    return SameBits(area, KeptArea);
}

std::vector<Operation> OperationsOnPoints() {
    return {{"GetImageOrigin", 2, ErrGeneral, "GetImageOrigin", "",
             [](void *image) {
                 return PointUntouched([&](double *x, double *y) { EXPECT_FALSE(GetImageOrigin(image, x, y)); });
             }},
            {"PixelToImage", 2, ErrGeneral, "PixelToImage", "",
             [](void *image) {
                 return PointUntouched([&](double *x, double *y) { PixelToImage(image, x, y, 3.0, 4.0); });
             }},
            {"ImageToPixel", 2, ErrGeneral, "ImageToPixel", "",
             [](void *image) {
                 return PointUntouched([&](double *x, double *y) { ImageToPixel(image, x, y, 3.0, 4.0); });
             }},
            {"PixelToImageCoordinates", 2, ErrGeneral, "PixelToImage", "it is tested for first",
             [](void *image) {
                 return PointUntouched([&](double *x, double *y) {
                     EXPECT_EQ(PixelToImageCoordinates(image, x, y, 3.0, 4.0), image != nullptr);
                 });
             }},
            {"ImageToPixelCoordinates", 2, ErrGeneral, "ImageToPixel", "it is tested for first", [](void *image) {
                 return PointUntouched([&](double *x, double *y) {
                     EXPECT_EQ(ImageToPixelCoordinates(image, x, y, 3.0, 4.0), image != nullptr);
                 });
             }}};
}

std::vector<Operation> Operations() {
    std::vector<Operation> operations = OperationsOnPoints();
    operations.push_back({"SetImageCoordinates", 1, ErrNotAnImage, "SetImageCoordinates", "",
                          [](void *image) { return !SetImageCoordinates(image, SampleMap); }});
    operations.push_back({"GetImageCoordinates", 1, ErrNotAnImage, "GetImageCoordinates", "", [](void *image) {
                              TCoordinateMap map = SampleMap;
                              return !GetImageCoordinates(image, &map) && SameBits(map, SampleMap);
                          }});
    operations.push_back({"SetImageOrigin", 1, ErrNotAnImage, "SetImageOrigin", "",
                          [](void *image) { return !SetImageOrigin(image, 1.0, 2.0); }});
    operations.push_back({"MaxImageArea", 1, ErrNotAnImage, "MaxImageArea", "", [](void *image) {
                              return AreaUntouched([&](TArea *out) { EXPECT_FALSE(MaxImageArea(image, out)); });
                          }});
    operations.push_back({"PixelAreaToImage", 2, ErrGeneral, "PixelAreaToImage", "", [](void *image) {
                              return AreaUntouched([&](TArea *out) { PixelAreaToImage(image, out, SampleArea); });
                          }});
    operations.push_back({"ImageAreaToPixel", 2, ErrGeneral, "ImageAreaToPixel", "", [](void *image) {
                              return AreaUntouched([&](TArea *out) { ImageAreaToPixel(image, out, SampleArea); });
                          }});
    return operations;
}

void ExpectFailure(const Operation &operation, void *image, const std::string &handleName) {
    SCOPED_TRACE(operation.Name + " of " + handleName);
    ClearReports();
    EXPECT_TRUE(operation.FailsUntouched(image)) << "result or outputs";
    EXPECT_EQ(ReportCount(), operation.Reports);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, operation.Code);
    EXPECT_EQ(report->function, operation.Reporter);
    EXPECT_EQ(report->serial, operation.Reports - 1);
}

} // namespace

TEST(ImageCoordinates, ReportEveryNullHandle) {
    for (const Operation &operation : Operations()) {
        if (operation.NullWorks.empty()) {
            ExpectFailure(operation, nullptr, "a null handle");
            continue;
        }
        ClearReports();
        EXPECT_TRUE(operation.FailsUntouched(nullptr)) << operation.Name;
        EXPECT_EQ(ReportCount(), 0) << operation.Name << ": " << operation.NullWorks;
    }
}

TEST(ImageCoordinates, ReportEveryForeignHandle) {
    for (const ForeignHandle &foreign : ForeignHandles())
        for (const Operation &operation : Operations()) {
            ExpectFailure(operation, foreign.Get(), foreign.Name);
            EXPECT_EQ(foreign.Count(), 1) << operation.Name << " of " << foreign.Name;
        }
}

TEST(ImageCoordinates, ReportEveryImageThatRefusesItsInterface) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    const auto expectAll = [&](const char *failure) {
        for (const Operation &operation : Operations()) {
            image->ClearCalls();
            ExpectFailure(operation, image->Handle(), failure);
            EXPECT_EQ(image->Count(), 1);
            EXPECT_EQ(image->Calls().size(), 1u) << "only the query";
        }
    };
    image->Fails.QueryThrows = true;
    expectAll("an image that throws");
    image->Fails = {};
    image->Fails.QueryGivesNull = true;
    expectAll("an image that gives null");
    image->Fails = {};
    image->Fails.QueryStatus = StatusNoInterface;
    expectAll("an image with a failure status");
}

TEST(ImageCoordinates, GiveTheInterfaceBackOnEveryPath) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    Point point;
    TArea area{};
    TCoordinateMap map{};
    const std::pair<const char *, std::function<void()>> calls[] = {
        {"SetImageCoordinates", [&] { SetImageCoordinates(image->Handle(), SampleMap); }},
        {"GetImageCoordinates", [&] { GetImageCoordinates(image->Handle(), &map); }},
        {"SetImageOrigin", [&] { SetImageOrigin(image->Handle(), 1.0, 2.0); }},
        {"GetImageOrigin", [&] { GetImageOrigin(image->Handle(), &point.X, &point.Y); }},
        {"PixelToImage", [&] { PixelToImage(image->Handle(), &point.X, &point.Y, 1.0, 2.0); }},
        {"ImageToPixel", [&] { ImageToPixel(image->Handle(), &point.X, &point.Y, 1.0, 2.0); }},
        {"MaxImageArea", [&] { MaxImageArea(image->Handle(), &area); }},
        {"PixelAreaToImage", [&] { PixelAreaToImage(image->Handle(), &area, SampleArea); }},
        {"ImageAreaToPixel", [&] { ImageAreaToPixel(image->Handle(), &area, SampleArea); }}};
    for (const auto &[name, call] : calls) {
        image->Fails = {};
        call();
        EXPECT_EQ(image->Count(), 1) << name;
        image->Fails.OnOperation = [] { throw std::runtime_error("refused"); };
        EXPECT_THROW(call(), std::runtime_error) << name << " lets an exception of the image's own pass";
        EXPECT_EQ(image->Count(), 1) << name << " with an exception on its way";
    }
}

TEST(SetImageCoordinates, ReplacesTheMapAsItIs) {
    const Handle image = FreshImage();
    ClearReports();
    for (const TCoordinateMap &map :
         {SampleMap, SingularMap, TCoordinateMap{NaN, Infinity, {NaN, -0.0, 1e300, 0.0}}}) {
        EXPECT_TRUE(SetImageCoordinates(image.Get(), map)) << "the map is not validated";
        TCoordinateMap read{};
        EXPECT_TRUE(GetImageCoordinates(image.Get(), &read));
        EXPECT_TRUE(SameBits(read, map));
    }
    EXPECT_EQ(ReportCount(), 0);
}

TEST(GetImageCoordinates, OfAFreshImageGivesTheIdentity) {
    TCoordinateMap map = SampleMap;
    EXPECT_TRUE(GetImageCoordinates(FreshImage().Get(), &map));
    EXPECT_TRUE(SameBits(map, IdentityMap));
}

TEST(GetImageCoordinates, ReadsAnyClassOfImageThroughItsInterface) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    image->Coordinates = SampleMap;
    TCoordinateMap map{};
    EXPECT_TRUE(GetImageCoordinates(image->Handle(), &map));
    EXPECT_TRUE(SameBits(map, SampleMap));
    EXPECT_TRUE(SetImageCoordinates(image->Handle(), SingularMap));
    EXPECT_TRUE(SameBits(image->Coordinates, SingularMap));
}

TEST(SetImageOrigin, KeepsTheMatrix) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    image->Coordinates = SampleMap;
    EXPECT_TRUE(SetImageOrigin(image->Handle(), -3.5, 7.25));
    EXPECT_TRUE(SameBits(image->Coordinates, TCoordinateMap{-3.5, 7.25, SampleMap.Matrix}));
    EXPECT_EQ(image->CallsOf("GetCoordinateMap"), 1);
    EXPECT_EQ(image->CallsOf("SetCoordinateMap"), 1);
}

TEST(GetImageOrigin, HandsOutTheOriginAlone) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    image->Coordinates = SampleMap;
    Point origin;
    EXPECT_TRUE(GetImageOrigin(image->Handle(), &origin.X, &origin.Y));
    EXPECT_TRUE(SameBits(origin, Point{10.0, 20.0}));
}

TEST(ImageToPixel, IsTheIdentityOnAFreshImage) {
    Point point;
    ImageToPixel(FreshImage().Get(), &point.X, &point.Y, 3.5, 4.5);
    EXPECT_TRUE(SameBits(point, Point{3.5, 4.5}));
}

TEST(ImageToPixel, OfTheNullPointIsTheOrigin) {
    const Handle image = FreshImage();
    ASSERT_TRUE(SetImageOrigin(image.Get(), 10.0, 20.0));
    Point point;
    ImageToPixel(image.Get(), &point.X, &point.Y, 0.0, 0.0);
    EXPECT_TRUE(SameBits(point, Point{10.0, 20.0}));
    PixelToImage(image.Get(), &point.X, &point.Y, 10.0, 20.0);
    EXPECT_TRUE(SameBits(point, Point{0.0, 0.0}));
}

TEST(ImageToPixel, GoesFromImageToPixelCoordinatesAndDoesNotRound) {
    const Handle image = FreshImage();
    ASSERT_TRUE(SetImageCoordinates(image.Get(), SampleMap));
    ClearReports();
    Point point;
    ImageToPixel(image.Get(), &point.X, &point.Y, 0.25, 0.5);
    EXPECT_TRUE(SameBits(point, Point{11.0, 21.25}));
    EXPECT_TRUE(ImageToPixelCoordinates(image.Get(), &point.X, &point.Y, 1.0, 1.0));
    EXPECT_TRUE(SameBits(point, Point{13.0, 22.0}));
    EXPECT_EQ(ReportCount(), 0);
}

TEST(PixelToImage, GivesWhatTheInverseMapGives) {
    RandomDoubles random(31);
    const Handle image = FreshImage();
    ClearReports();
    for (int number = 0; number < 500; ++number) {
        const TCoordinateMap map = random.Map();
        const double x = random.Next();
        const double y = random.Next();
        Point expected;
        CoordinateMapInverseTransform(&expected.X, &expected.Y, map, x, y);
        ASSERT_TRUE(SetImageCoordinates(image.Get(), map));
        Point point;
        PixelToImage(image.Get(), &point.X, &point.Y, x, y);
        ASSERT_TRUE(SameBits(point, expected)) << "case " << number;
        Point withResult;
        ASSERT_TRUE(PixelToImageCoordinates(image.Get(), &withResult.X, &withResult.Y, x, y));
        ASSERT_TRUE(SameBits(withResult, expected)) << "case " << number;
    }
    EXPECT_EQ(ReportCount(), 0);
}

TEST(PixelToImage, LeavesOutputsAndReportsAloneForASingularMatrix) {
    const Handle image = FreshImage();
    ASSERT_TRUE(SetImageCoordinates(image.Get(), SingularMap));
    ClearReports();
    Point point;
    PixelToImage(image.Get(), &point.X, &point.Y, 1.0, 2.0);
    EXPECT_TRUE(SameBits(point, Point{}));
    EXPECT_TRUE(PixelToImageCoordinates(image.Get(), &point.X, &point.Y, 1.0, 2.0)) << "true whatever it did";
    EXPECT_TRUE(SameBits(point, Point{}));
    EXPECT_EQ(ReportCount(), 0);
    ImageToPixel(image.Get(), &point.X, &point.Y, 1.0, 2.0);
    EXPECT_TRUE(SameBits(point, Point{10.0, 16.0})) << "the other direction needs no inverse";
}

TEST(MaxImageArea, IsTheAreaOfThePixelCentres) {
    const Handle image = FreshImage(640, 480);
    const TArea expected{0.0, 0.0, 639.0, 0.0, 0.0, 479.0};
    TArea area = KeptArea;
    EXPECT_TRUE(MaxImageArea(image.Get(), &area));
    EXPECT_TRUE(SameBits(area, expected));
    ASSERT_TRUE(SetImageOrigin(image.Get(), 10.0, 20.0));
    ASSERT_TRUE(SetImageCoordinates(image.Get(), SampleMap));
    area = KeptArea;
    EXPECT_TRUE(MaxImageArea(image.Get(), &area)) << "the coordinate system does not count";
    EXPECT_TRUE(SameBits(area, expected));
}

TEST(MaxImageArea, OfNoPixelsEndsAtMinusOne) {
    FakeImage empty(0, 0);
    TArea area = KeptArea;
    EXPECT_TRUE(MaxImageArea(empty.Handle(), &area));
    EXPECT_TRUE(SameBits(area, TArea{0.0, 0.0, -1.0, 0.0, 0.0, -1.0}));
}

TEST(MaxImageArea, SubtractsBeforeItConverts) {
    FakeImage wide((std::intptr_t{1} << 53) + 1, (std::intptr_t{1} << 60) + 1);
    TArea area = KeptArea;
    EXPECT_TRUE(MaxImageArea(wide.Handle(), &area));
    EXPECT_EQ(area.X1, 0x1p53) << "2^53 + 1 has no double of its own";
    EXPECT_EQ(area.Y2, 0x1p60);
    EXPECT_EQ(wide.CallsOf("GetPlaneVPA"), 0);
}

TEST(ImageAreaToPixel, SendsTheAreaThroughTheMap) {
    const Handle image = FreshImage();
    ASSERT_TRUE(SetImageCoordinates(image.Get(), SampleMap));
    TArea expected{};
    CoordinateMapTransformArea(&expected, SampleArea, SampleMap);
    TArea area = SampleArea;
    ImageAreaToPixel(image.Get(), &area, area);
    EXPECT_TRUE(SameBits(area, expected));
    EXPECT_EQ(area.X0, 14.0);
    EXPECT_EQ(area.Y0, 25.0);
}

TEST(PixelAreaToImage, SendsTheAreaThroughTheInverse) {
    const Handle image = FreshImage();
    ASSERT_TRUE(SetImageCoordinates(image.Get(), SampleMap));
    TArea expected{};
    ASSERT_TRUE(CoordinateMapInverseTransformArea(&expected, SampleArea, SampleMap));
    TArea area = SampleArea;
    PixelAreaToImage(image.Get(), &area, area);
    EXPECT_TRUE(SameBits(area, expected));
}

TEST(PixelAreaToImage, KeepsTheOutputOnASingularMap) {
    const Handle image = FreshImage();
    ASSERT_TRUE(SetImageCoordinates(image.Get(), SingularMap));
    ClearReports();
    TArea area = KeptArea;
    PixelAreaToImage(image.Get(), &area, SampleArea);
    EXPECT_TRUE(SameBits(area, KeptArea));
    EXPECT_EQ(ReportCount(), 0);
}

// The grey values of an area of a plane: what is counted, what is refused, and the counters against a plain walk that
// follows the rules sample by sample. Set ORV_TEST_CASE to a number to run that random case alone.
#include "ImageCreation.h"
#include "Matrices.h"
#include "Scan/StatisticsModel.h"

#include <cstdlib>

namespace {

using namespace TestSupport;

using Counters = std::array<std::uint64_t, 256>;
constexpr std::uint64_t Mark = 0x1122334455667788u; ///< what counters hold before a call

Counters Marked() {
    Counters counters;
    counters.fill(Mark);
    return counters;
}

/// Counters that are 0 but for some values.
Counters Counted(std::initializer_list<std::pair<int, std::uint64_t>> values) {
    Counters counters{};
    for (const auto &[value, count] : values)
        counters[static_cast<std::size_t>(value)] = count;
    return counters;
}

TArea RectangleArea(double left, double top, double right, double bottom) {
    return {left, top, right, top, left, bottom};
}

/// Counts by the plain walk in pixel coordinates and by the library in those of the image.
void ExpectHistogramLikeThePlainWalk(void *image, std::intptr_t plane, TArea area, std::int64_t density) {
    const ImageSize size = SizeOf(image);
    const PlaneAccess pixels = AccessOf(image, plane);
    TCoordinateMap map{};
    ImageInterface(image)->GetCoordinateMap(&map);
    TArea pixelArea{};
    CoordinateMapTransformArea(&pixelArea, area, map);
    Counters expected{};
    const std::int32_t walked =
        PlainWalk(pixelArea, std::min<std::int64_t>(density, 1000)).Run(size.Width, size.Height, [&](auto x, auto y) {
            ++expected[*pixels.At(x, y)];
        });
    Counters counters = Marked();
    ClearReports();
    ASSERT_EQ(ImageHistogram(image, plane, area, density, counters.data()), walked == -1 ? 0 : 1)
        << "the plain walk gives " << walked;
    EXPECT_EQ(ReportCount(), walked == -1 ? 1 : 0);
    ClearReports();
    for (std::size_t value = 0; value < counters.size(); ++value)
        ASSERT_EQ(counters[value], expected[value]) << "counter " << value << "; the plain walk gives " << walked;
    ASSERT_EQ(RefCount(image), 1u);
}

class ImageHistogramTest : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override {
        EXPECT_EQ(image->Count(), 1);
        ClearReports();
    }
    /// Counts and expects success without a report.
    Counters Count(const TArea &area, std::int64_t density = 1000, std::intptr_t plane = 0) {
        Counters counters = Marked();
        EXPECT_EQ(ImageHistogram(image->Handle(), plane, area, density, counters.data()), 1);
        ExpectNoReport();
        return counters;
    }
    /// Expects a failure. What the counters hold then.
    Counters Fail(std::uint32_t code, const TArea &area, std::int64_t density = 1000, std::intptr_t plane = 0) {
        Counters counters = Marked();
        EXPECT_EQ(ImageHistogram(image->Handle(), plane, area, density, counters.data()), 0);
        ExpectOneReport(code, "ImageHistogram");
        return counters;
    }
    std::unique_ptr<FakeImage> image =
        Stack<std::uint8_t>(4, 3, 8, {{1, 2, 3, 4, 1, 2, 2, 4, 9, 9, 9, 255}, {5, 5, 5, 5, 0, 0, 0, 0, 6, 6, 6, 6}});
    const TArea whole = RectangleArea(0, 0, 3, 2);
};

TEST_F(ImageHistogramTest, CountsEachPixelOfAWholePlane) {
    EXPECT_EQ(Count(whole), Counted({{1, 2}, {2, 3}, {3, 1}, {4, 2}, {9, 3}, {255, 1}}));
    EXPECT_EQ(Count(whole, 1000, 1), Counted({{5, 4}, {0, 4}, {6, 4}}));
}

TEST_F(ImageHistogramTest, CountsTheEdgesOfAnAreaAndNothingElse) {
    EXPECT_EQ(Count(RectangleArea(1, 1, 2, 2)), Counted({{2, 2}, {9, 2}}));
    EXPECT_EQ(Count(RectangleArea(3, 2, 3, 2)), Counted({{255, 1}}));
}

TEST_F(ImageHistogramTest, ClearsTheCountersInsteadOfAddingToThem) {
    Counters counters = Marked();
    for (int round = 0; round < 2; ++round)
        ASSERT_EQ(ImageHistogram(image->Handle(), 0, RectangleArea(0, 2, 2, 2), 1000, counters.data()), 1);
    EXPECT_EQ(counters, Counted({{9, 3}}));
}

TEST_F(ImageHistogramTest, TakesTheAreaInTheCoordinateSystemOfTheImage) {
    image->Coordinates = {1.0, 2.0, {1.0, 0.0, 0.0, 1.0}};
    EXPECT_EQ(Count(RectangleArea(-1, -2, 2, -2)), Counted({{1, 1}, {2, 1}, {3, 1}, {4, 1}}));
    image->Coordinates = {0.0, 0.0, {3.0, 0.0, 0.0, 2.0}};
    EXPECT_EQ(Count(RectangleArea(0, 0, 1, 1)), Counted({{1, 2}, {2, 3}, {3, 1}, {4, 2}, {9, 3}, {255, 1}}));
    image->Coordinates = {0.0, 0.0, {0.0, 1.0, 1.0, 0.0}}; // x and y change places
    EXPECT_EQ(Count(RectangleArea(0, 3, 2, 3)), Counted({{4, 2}, {255, 1}}));
}

TEST_F(ImageHistogramTest, OfAnAreaPartlyOutsideCountsThePartInside) {
    EXPECT_EQ(Count(RectangleArea(2, 1, 9, 7)), Counted({{2, 1}, {4, 1}, {9, 1}, {255, 1}}));
    EXPECT_EQ(Count(RectangleArea(0, -5, 3, 0)), Counted({{1, 1}, {2, 1}, {3, 1}, {4, 1}}));
}

TEST_F(ImageHistogramTest, OfAnAreaWhollyOutsideCountsNothing) {
    EXPECT_EQ(Count(RectangleArea(10, 10, 20, 20)), Counted({}));
    EXPECT_EQ(Count(RectangleArea(4, 0, 4, 0)), Counted({}));
}

TEST_F(ImageHistogramTest, LeavesLinesOutThatStartLeftOfTheImage) {
    EXPECT_EQ(Count(RectangleArea(-1, 0, 3, 2)), Counted({}));
    EXPECT_EQ(Count(RectangleArea(3, 0, -1, 0)), Counted({{1, 1}, {2, 1}, {3, 1}, {4, 1}}));
}

TEST_F(ImageHistogramTest, CountsALineThatStartsFarEnoughLeftToReappear) {
    EXPECT_EQ(Count(RectangleArea(-65536, 0, -65533, 2)), Count(whole));
}

TEST_F(ImageHistogramTest, CountsEverySecondPixelAtHalfDensity) {
    EXPECT_EQ(Count(RectangleArea(0, 0, 3, 0), 500), Counted({{1, 1}, {3, 1}}));
    EXPECT_EQ(Count(RectangleArea(0, 0, 3, 0), 1), Counted({{1, 1}}));
}

TEST_F(ImageHistogramTest, TakesADensityAboveAThousandAsAThousand) {
    for (const std::int64_t density : {std::int64_t{1001}, std::int64_t{1000000}, std::int64_t{Highest}})
        EXPECT_EQ(Count(whole, density), Count(whole, 1000));
}

TEST_F(ImageHistogramTest, FailsForADensityBelowOneWithTheCountersCleared) {
    for (const std::int64_t density : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-1000}, std::int64_t{Lowest}})
        EXPECT_EQ(Fail(ErrGeneral, whole, density), Counted({})) << "density " << density;
}

TEST_F(ImageHistogramTest, FailsForOnePixelInsideWhereOthersAreOutside) {
    EXPECT_EQ(Fail(ErrGeneral, {3, 2, 5, 2, 3, 2}), Counted({{255, 1}}));
    EXPECT_EQ(Count({2, 2, 5, 2, 2, 2}), Counted({{9, 1}, {255, 1}}));
}

TEST_F(ImageHistogramTest, FailsForAnAreaOutOfRangeWithTheCountersCleared) {
    for (const double far : {2147483648.0, 3e9, 1e15, 1e300, std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()})
        for (int point = 0; point < 6; ++point) {
            TArea area = whole;
            double *const numbers[] = {&area.X0, &area.Y0, &area.X1, &area.Y1, &area.X2, &area.Y2};
            const bool bottomOnly = point % 2 != 0 && far < 1e15; // with such a bottom only the left is looked at
            *numbers[point] = far;
            if (!bottomOnly) {
                EXPECT_EQ(Fail(ErrGeneral, area), Counted({})) << "number " << point << " is " << far;
            }
        }
    for (const double far : {-1e15, -1e300, -std::numeric_limits<double>::infinity()})
        for (int point = 0; point < 6; ++point) {
            TArea area = whole;
            double *const numbers[] = {&area.X0, &area.Y0, &area.X1, &area.Y1, &area.X2, &area.Y2};
            *numbers[point] = far;
            EXPECT_EQ(Fail(ErrGeneral, area), Counted({})) << "number " << point << " is " << far;
        }
    EXPECT_EQ(Fail(ErrGeneral, RectangleArea(0, -3e9, 3, -3e9)), Counted({}));
}

TEST_F(ImageHistogramTest, LeavesOutWithoutVisitingThemBillionsOfSamplesBesideTheImage) {
    EXPECT_EQ(Count({-2e9, 0, 10, 0, -2e9, 0}), Counted({}));
    EXPECT_EQ(Count({2e9, 5, 3, 5, 2e9, 5}), Counted({}));
}

TEST_F(ImageHistogramTest, TakesTheOverlayBitAsPartOfTheValue) {
    image = Stack<std::uint8_t>(2, 1, 0x408, {{2, 3}});
    EXPECT_EQ(Count(RectangleArea(0, 0, 1, 0)), Counted({{2, 1}, {3, 1}}));
}

TEST_F(ImageHistogramTest, CountsUnsignedPixelsOfUpToEightBits) {
    for (const TDataType type : {0x1u, 0x7u, 0x8u, 0x408u, 0x808u, 0xC05u}) {
        image = Stack<std::uint8_t>(2, 1, type, {{200, 3}});
        EXPECT_EQ(Count(RectangleArea(0, 0, 1, 0)), Counted({{200, 1}, {3, 1}})) << "type " << type;
    }
}

TEST_F(ImageHistogramTest, RefusesPlanesOfOtherTypes) {
    for (const TDataType type : {0x9u, 0x10u, 0x20u, 0x40u, 0x101u, 0x108u, 0x110u, 0x208u, 0x220u, 0x240u, 0x308u,
                                 0x508u, 0x18u, 0xFFFFFFFFu}) {
        image = FakeImage::Planar(4, 3, 1, type);
        EXPECT_EQ(Fail(ErrDataType, whole), Marked()) << "type " << type;
    }
}

TEST_F(ImageHistogramTest, LooksAtTheTypeOfThePlaneThatIsCounted) {
    image = std::make_unique<FakeImage>(2, 1, 8);
    for (const TDataType type : {0x10u, 0x8u})
        image->AddPlane(
            image->Pixels.data(), type, [](std::intptr_t i) { return i; }, [](std::intptr_t) { return 0; });
    EXPECT_EQ(Count(RectangleArea(0, 0, 1, 0), 1000, 1), Counted({{0, 2}}));
    EXPECT_EQ(Fail(ErrDataType, RectangleArea(0, 0, 1, 0)), Marked());
}

TEST_F(ImageHistogramTest, FailsInTheWalkForPixelsOfNoByte) {
    for (const TDataType type : {0x0u, 0x400u, 0x80000008u}) {
        image = FakeImage::Planar(4, 3, 1, type);
        EXPECT_EQ(Fail(ErrGeneral, whole), Counted({})) << "type " << type;
    }
}

TEST_F(ImageHistogramTest, RefusesAPlaneOutOfRange) {
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{2}, Lowest, Highest, std::intptr_t{1} << 32})
        EXPECT_EQ(Fail(ErrPlaneIndex, whole, 0, plane), Marked()) << "plane " << plane;
    image = std::make_unique<FakeImage>(4, 3);
    EXPECT_EQ(Fail(ErrPlaneIndex, whole), Marked());
}

TEST_F(ImageHistogramTest, ReportsANullTable) {
    EXPECT_EQ(ImageHistogram(image->Handle(), 0, whole, 1000, nullptr), 0);
    ExpectOneReport(ErrParameter, "ImageHistogram");
    EXPECT_EQ(ImageHistogram(nullptr, 0, whole, 1000, nullptr), 0);
    ExpectOneReport(ErrNotAnImage, "ImageHistogram");
}

TEST_F(ImageHistogramTest, ReportsWhatIsNoImage) {
    Counters counters = Marked();
    for (const auto &foreign : ForeignHandles()) {
        EXPECT_EQ(ImageHistogram(foreign.Get(), 0, whole, 1000, counters.data()), 0) << foreign.Name;
        ExpectOneReport(ErrNotAnImage, "ImageHistogram");
        EXPECT_EQ(foreign.Count(), 1);
    }
    image->Fails.QueryThrows = true;
    EXPECT_EQ(Fail(ErrNotAnImage, whole), Marked());
    EXPECT_EQ(counters, Marked());
}

TEST_F(ImageHistogramTest, FailsWhenTheImageRefusesADataTypeOrATable) {
    image->Fails.VPAStatus = StatusBadPlane;
    Fail(ErrGeneral, whole);
    image->Fails.VPAStatus = 0;
    image->Fails.DatatypeStatus = StatusBadPlane;
    Fail(ErrGeneral, whole);
}

TEST_F(ImageHistogramTest, PassesOnWhatTheImageThrows) {
    Counters counters = Marked();
    ExpectThrowsOfEachOperationToPassOn(
        *image, [&] { return ImageHistogram(image->Handle(), 0, whole, 1000, counters.data()); }, [] {});
    EXPECT_EQ(counters, Count(whole));
}

/// What a picture can be like.
enum class Picture { Natural, Noise, Flat, TwoValues };

std::uint8_t PixelOf(Picture picture, std::intptr_t x, std::intptr_t y, std::uint32_t noise) {
    switch (picture) {
    case Picture::Natural:
        return static_cast<std::uint8_t>(
            128.0 + 90.0 * std::sin(static_cast<double>(x) * 0.01) * std::cos(static_cast<double>(y) * 0.013) +
            noise % 7);
    case Picture::Noise:
        return static_cast<std::uint8_t>(noise >> 8);
    case Picture::Flat:
        return 77;
    case Picture::TwoValues:
        return (noise & 0x1000u) != 0 ? 0xFF : 0x00;
    }
    return 0;
}

std::vector<PlaneBytes> ContentOf(Picture picture, std::intptr_t width, std::intptr_t height, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<PlaneBytes> content(1);
    for (std::intptr_t y = 0; y < height; ++y)
        for (std::intptr_t x = 0; x < width; ++x)
            content[0].push_back(PixelOf(picture, x, y, static_cast<std::uint32_t>(random())));
    return content;
}

class HistogramOfPicture : public testing::TestWithParam<Picture> {};
INSTANTIATE_TEST_SUITE_P(All, HistogramOfPicture,
                         testing::Values(Picture::Natural, Picture::Noise, Picture::Flat, Picture::TwoValues));

TEST_P(HistogramOfPicture, CountsEveryPixelOfALargeImageOnce) {
    constexpr std::intptr_t width = 1921, height = 1083;
    const auto content = ContentOf(GetParam(), width, height, 3);
    const auto image = MakeExternal({"planar", 1, width, width * height}, content, width, height, 8);
    ASSERT_NO_FATAL_FAILURE(
        ExpectHistogramLikeThePlainWalk(image.Get(), 0, RectangleArea(0, 0, width - 1, height - 1), 1000));
    Counters counters{}, expected{};
    for (const std::uint8_t value : content[0])
        ++expected[value];
    ASSERT_EQ(ImageHistogram(image.Get(), 0, RectangleArea(0, 0, width - 1, height - 1), 1000, counters.data()), 1);
    EXPECT_EQ(counters, expected);
    ASSERT_NO_FATAL_FAILURE(ExpectHistogramLikeThePlainWalk(image.Get(), 0, {900, 50, 1500, 500, 400, 700}, 1000));
}

TEST_P(HistogramOfPicture, EqualsThePlainWalkOnLinesSoLongThatTheyDrift) {
    const auto wide = MakeExternal({"planar", 1, 40000, 0}, ContentOf(GetParam(), 40000, 4, 4), 40000, 4, 8);
    for (const double top : {0.0, 1.0, 3.0})
        ASSERT_NO_FATAL_FAILURE(
            ExpectHistogramLikeThePlainWalk(wide.Get(), 0, RectangleArea(0, top, 39999, 3), 1000));
    const auto tall = MakeExternal({"planar", 1, 4, 0}, ContentOf(GetParam(), 4, 40000, 5), 4, 40000, 8);
    for (const TArea &area :
         {TArea{0, 0, 3, 0, 0, 39999}, TArea{0, 0, 0, 39999, 3, 0}, TArea{0, 39999, 3, 39999, 0, 0}})
        ASSERT_NO_FATAL_FAILURE(ExpectHistogramLikeThePlainWalk(tall.Get(), 0, area, 1000));
}

TEST_P(HistogramOfPicture, EqualsThePlainWalkAroundTheLengthsOfVectors) {
    for (const std::intptr_t width : {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 257, 1025})
        for (const std::intptr_t height : {1, 2, 3, 5})
            for (const auto &image : LayoutsOf(ContentOf(GetParam(), width, height, 6), width, height, 8)) {
                SCOPED_TRACE(testing::Message() << image.Name << " of " << width << " x " << height);
                const double right = static_cast<double>(width - 1), bottom = static_cast<double>(height - 1);
                for (const TArea &area : {RectangleArea(0, 0, right, bottom), RectangleArea(right, bottom, 0, 0),
                                          RectangleArea(1, 0, right - 1, bottom)})
                    ASSERT_NO_FATAL_FAILURE(ExpectHistogramLikeThePlainWalk(image.Get(), 0, area, 1000));
            }
}

/// A random area of an image and a random map for it.
class RandomCase {
public:
    explicit RandomCase(std::uint32_t number) : random(number) {
        const std::intptr_t width = Pick(1, 60), height = Pick(1, 40);
        const auto picture = static_cast<Picture>(Pick(0, 3));
        const auto images = LayoutRules(width, height, 1, 8);
        const auto rule = images[static_cast<std::size_t>(Pick(0, std::ssize(images) - 1))];
        image = MakeFake(rule, ContentOf(picture, width, height, number), width, height, 8);
        for (double *const number_ : {&area.X0, &area.X1, &area.X2})
            *number_ = Coordinate(width);
        for (double *const number_ : {&area.Y0, &area.Y1, &area.Y2})
            *number_ = Coordinate(height);
        if (Pick(0, 4) == 0)
            area = RectangleArea(area.X0, area.Y0, area.X1, area.Y2);
        if (Pick(0, 5) == 0) // parallel edges
            area.X2 = 2 * area.X1 - area.X0, area.Y2 = 2 * area.Y1 - area.Y0;
        if (Pick(0, 9) == 0)
            area.X1 = area.X0, area.Y1 = area.Y0;
        if (const double far = Pick(0, 9) == 0 ? 65536.0 : 0.0; far > 0.0) // so far left that it reappears
            area.X0 -= far, area.X1 -= far, area.X2 -= far;
        Density = Pick(0, 1) == 0 ? 1000 : Pick(1, 1100);
        if (Pick(0, 1) == 0)
            return;
        TCoordinateMap &map = image.Fake->Coordinates;
        map = {Coordinate(width), Coordinate(height), {Factor(), Factor(), Factor(), Factor()}};
        CoordinateMapInverseTransformArea(&area, area, map);
    }
    void Run() { ExpectHistogramLikeThePlainWalk(image.Get(), 0, area, Density); }

private:
    std::mt19937 random;
    NamedImage image;
    TArea area{};
    std::int64_t Density = 1000;

    std::intptr_t Pick(std::intptr_t low, std::intptr_t high) {
        return low + static_cast<std::intptr_t>(random() % static_cast<std::uint64_t>(high - low + 1));
    }
    double Factor() { return static_cast<double>(Pick(-8, 8)) / 4.0; }
    double Coordinate(std::intptr_t size) {
        const std::intptr_t reach = Pick(0, 2) == 0 ? size : 0;
        const auto whole = static_cast<double>(Pick(-reach, size - 1 + reach));
        return Pick(0, 1) == 0 ? whole : whole + static_cast<double>(Pick(-50, 50)) / 100.0;
    }
};

TEST(ImageHistogramAtRandom, EqualsThePlainWalk) {
    const char *const single = std::getenv("ORV_TEST_CASE");
    const std::uint32_t first = single != nullptr ? static_cast<std::uint32_t>(std::stoul(single)) : 1;
    const std::uint32_t last = single != nullptr ? first : 4000;
    for (std::uint32_t number = first; number <= last; ++number) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        ASSERT_NO_FATAL_FAILURE(RandomCase(number).Run());
    }
}

TEST(ImageHistogram, ReadsNothingOutsideThePixels) {
    for (const std::intptr_t width : {1, 15, 16, 33, 64, 257})
        for (const std::intptr_t height : {1, 2, 5})
            for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
                const auto bytes = static_cast<std::size_t>(width * height);
                const FencedBlock block(bytes, fence);
                for (std::size_t byte = 0; byte < bytes; ++byte)
                    block.Data()[byte] = static_cast<std::uint8_t>(byte * 37);
                Handle image;
                ASSERT_EQ(CreateImageFromPointer(block.Data(), bytes, width, height, 1, 8, 1, width, 0, nullptr,
                                                 nullptr, nullptr, image.Out()),
                          0);
                const double right = static_cast<double>(width - 1), bottom = static_cast<double>(height - 1);
                for (const TArea &area :
                     {RectangleArea(0, 0, right, bottom), RectangleArea(0, 0, right + 3, bottom + 3),
                      RectangleArea(-2, -2, right, bottom), TArea{0, 0, right, bottom, -bottom, right}})
                    ASSERT_NO_FATAL_FAILURE(ExpectHistogramLikeThePlainWalk(image.Get(), 0, area, 1000));
            }
}

} // namespace

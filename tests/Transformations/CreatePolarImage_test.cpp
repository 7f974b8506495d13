/* Unrolling rings: sizes, the place that each pixel is taken from, sampling, and what comes with the result.
 * All pixel types and layouts against the model stand in PolarLayouts_test.cpp, failures in PolarFailures_test.cpp.
 */
#include "Image/MapModel.h"
#include "Transformations/PolarModel.h"

namespace {

using namespace PolarModel;

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;

/// A ring of which row 0, column 0 is taken from (x, y); two rows.
Ring At(double x, double y) {
    constexpr double radius = 3;
    return {x - radius, y, 0, 360, radius, radius};
}

/// The pixel that is sampled at (x, y) of an image.
template <class T>
T SampledAt(void *image, double x, double y, std::intptr_t plane = 0) {
    Handle result;
    EXPECT_TRUE(Unroll(image, result.Out(), At(x, y)));
    return ValuesOf<T>(PixelBytes(result.Get(), plane)).at(0);
}

template <class T>
std::unique_ptr<FakeImage> OneRow(const std::vector<T> &row, TDataType type) {
    return PlainImage(std::ssize(row), 1, type, {BytesOf(row)});
}

void ExpectSize(const Ring &ring, std::intptr_t width, std::intptr_t height) {
    const auto image = FakeImage::Planar(8, 8, 1, 0x8);
    Handle result;
    ASSERT_TRUE(Unroll(image->Handle(), result.Out(), ring)) << testing::PrintToString(ring);
    EXPECT_EQ(SizeOf(result.Get()), (ImageSize{1, width, height})) << testing::PrintToString(ring);
}

/// Compares a result with place + 1000 times row of where each pixel lies, for an image of such values.
void ExpectPlaces(void *result, const Ring &ring) {
    const ImageSize size = SizeOf(result);
    const auto values = ValuesOf<double>(PixelBytes(result, 0));
    for (std::intptr_t y = 0; y < size.Height; ++y)
        for (std::intptr_t x = 0; x < size.Width; ++x) {
            const double radius = ring.Outer - static_cast<double>(y);
            const double angle = static_cast<double>(x) * 2 / (ring.Inner + ring.Outer) + ring.Start * Pi / 180;
            const double place = ring.CentreX + radius * std::cos(angle),
                         row = ring.CentreY + radius * std::sin(angle);
            ASSERT_NEAR(values[static_cast<std::size_t>(y * size.Width + x)], place + 1000 * row, 1e-8)
                << "column " << x << ", row " << y;
        }
}

} // namespace

TEST(CreatePolarImage, RadiiTenAndTwentyGive94ColumnsAndTwelveRows) {
    const auto image = FakeImage::Planar(50, 40, 1, 0x8);
    Handle result;
    ASSERT_TRUE(CreatePolarImage(image->Handle(), result.Out(), 25, 20, 0, 10, 20));
    EXPECT_EQ(SizeOf(result.Get()), (ImageSize{1, 94, 12}));
}

TEST(CreatePolarImage, EqualRadiiGiveTwoRows) {
    const auto image = FakeImage::Planar(50, 40, 1, 0x8);
    Handle result;
    ASSERT_TRUE(CreatePolarImage(image->Handle(), result.Out(), 25, 20, 0, 15, 15));
    EXPECT_EQ(SizeOf(result.Get()), (ImageSize{1, 94, 2}));
}

TEST(CreatePolarImage, IsCreatePolarImageExOfTheFullCircle) {
    const auto image = MakeLayouts(31, 27, 2, 0x8, 5).front();
    Handle whole, sector;
    ASSERT_TRUE(CreatePolarImage(image.Get(), whole.Out(), 14.5, 12.25, 33.5, 4.5, 12));
    ASSERT_TRUE(CreatePolarImageEx(image.Get(), sector.Out(), 14.5, 12.25, 33.5, 360.0, 4.5, 12));
    ExpectEqualPlanes(whole.Get(), sector.Get());
}

TEST(CreatePolarImageEx, RoundsTheArcAtTheMeanRadiusAndAddsTwoToTheDistanceOfTheRadii) {
    ExpectSize({4, 4, 0, 180, 10, 20}, 47, 12);
    ExpectSize({4, 4, 0, 720, 10, 20}, 188, 12);
    ExpectSize({4, 4, 0, 90, 10, 20}, 24, 12);
    ExpectSize({4, 4, 0, 5.7, 10, 20}, 1, 12);
    ExpectSize({4, 4, 0, 1.95, 10, 20}, 1, 12);
    ExpectSize({4, 4, 0, 360, 0, 10}, 31, 12);
    ExpectSize({4, 4, 0, 360, 1.25, 3.75}, 16, 4);
    ExpectSize({4, 4, 0, 360, 1, 3.99}, 16, 4);
}

TEST(CreatePolarImageEx, TakesAnInnerRadiusThatIsUpToOneLarger) {
    ExpectSize({4, 4, 0, 360, 11, 10}, 66, 1);
    ExpectSize({4, 4, 0, 360, 10.5, 10}, 64, 1);
}

TEST(CreatePolarImageEx, TakesRadiiAndRangesOfAnySign) {
    ExpectSize({4, 4, 0, -360, -20, -10}, 94, 12);
    ExpectSize({4, 4, 0, -180, -20, -10}, 47, 12);
    ExpectSize({4, 4, 0, 360, -5, 10}, 16, 17);
}

TEST(CreatePolarImageEx, ShowsTheOuterRadiusInRowZeroAndTurnsFromTheXAxisTowardTheYAxis) {
    const auto image = RealImage(101, 101, [](double x, double y) { return x + 1000 * y; });
    const Ring ring{50, 50, 0, 360, 10, 20};
    Handle result;
    ASSERT_TRUE(Unroll(image->Handle(), result.Out(), ring));
    ExpectPlaces(result.Get(), ring);
    EXPECT_DOUBLE_EQ(ValuesOf<double>(PixelBytes(result.Get(), 0))[0], 70 + 1000 * 50) << "angle 0 is at the right";
    EXPECT_DOUBLE_EQ(ValuesOf<double>(PixelBytes(result.Get(), 0))[11 * 94], 59 + 1000 * 50)
        << "the last row lies one pixel within the inner radius";
}

TEST(CreatePolarImageEx, StartsAtAnyAngle) {
    const auto image = RealImage(101, 101, [](double x, double y) { return x + 1000 * y; });
    for (const double start : {90.0, -90.0, 450.0, -1234.5, 33.75, 180.0, 360.0, 1e5}) {
        const Ring ring{50.25, 49.5, start, 360, 10, 20};
        SCOPED_TRACE(testing::PrintToString(ring));
        Handle result;
        ASSERT_TRUE(Unroll(image->Handle(), result.Out(), ring));
        ExpectPlaces(result.Get(), ring);
    }
}

TEST(CreatePolarImageEx, ASectorHasTheColumnsOfTheFullCircleFromItsStart) {
    const auto image = MakeLayouts(45, 45, 1, 0x240, 3).front();
    const Ring whole{22, 22, 17, 360, 5, 15};
    const auto expected = ValuesOf<double>(Unrolled(image.Get(), whole)[0]);
    const std::size_t wholeWidth = 63;
    for (const double range : {3.0, 90.0, 180.0, 359.0}) {
        Ring sector = whole;
        sector.Range = range;
        Handle result;
        ASSERT_TRUE(Unroll(image.Get(), result.Out(), sector));
        const auto width = static_cast<std::size_t>(UnrolledSize(sector).Width);
        const auto values = ValuesOf<double>(PixelBytes(result.Get(), 0));
        ASSERT_EQ(values.size(), width * 12);
        for (std::size_t y = 0; y < 12; ++y)
            ASSERT_EQ(std::memcmp(&values[y * width], &expected[y * wholeWidth], width * sizeof(double)), 0) << range;
    }
}

TEST(CreatePolarImageEx, AnglesBeyondTheFullCircleRepeatTheRing) {
    const auto image = RealImage(101, 101, [](double x, double y) { return x + 1000 * y; });
    const Ring ring{50, 50, 10, 1000, 10, 20};
    Handle result;
    ASSERT_TRUE(Unroll(image->Handle(), result.Out(), ring));
    ExpectPlaces(result.Get(), ring);
}

TEST(CreatePolarImageEx, NegativeRadiiAndRangesRunTheOtherWayRoundOnTheOtherSide) {
    const auto image = RealImage(101, 101, [](double x, double y) { return x + 1000 * y; });
    for (const Ring &ring : {Ring{50, 50, 20, -360, -20, -10}, Ring{50, 50, 0, 360, -5, 30}}) {
        SCOPED_TRACE(testing::PrintToString(ring));
        Handle result;
        ASSERT_TRUE(Unroll(image->Handle(), result.Out(), ring));
        ExpectPlaces(result.Get(), ring);
    }
}

TEST(CreatePolarImageEx, CutsPositionsOf8And16BitPixelsToSixteenthsWithoutRounding) {
    Bytes row(10);
    Words words(10);
    for (std::size_t i = 0; i < row.size(); ++i) {
        row[i] = static_cast<std::uint8_t>(16 * i);
        words[i] = static_cast<std::uint16_t>(16 * i);
    }
    const auto image = OneRow(row, 0x8), wide = OneRow(words, 0x10);
    EXPECT_EQ(SampledAt<std::uint8_t>(image->Handle(), 5.1, 0), 81) << "81.6 sixteenths count as 81";
    EXPECT_EQ(SampledAt<std::uint16_t>(wide->Handle(), 5.1, 0), 81);
    EXPECT_EQ(SampledAt<std::uint8_t>(image->Handle(), 5.1249, 0), 81);
    EXPECT_EQ(SampledAt<std::uint8_t>(image->Handle(), 5.125, 0), 82);
}

TEST(CreatePolarImageEx, AddsEightTo256thsOf8And16BitPixelsBeforeItDropsThem) {
    const auto sampled = [](auto corner, auto others, TDataType type, double x, double y) {
        const std::vector pixels{corner, others, others, others};
        const auto image = PlainImage(2, 2, type, {BytesOf(pixels)});
        return static_cast<int>(SampledAt<decltype(corner)>(image->Handle(), x, y));
    };
    using Byte = std::uint8_t;
    using Short = std::int16_t;
    EXPECT_EQ(sampled(Byte{0}, Byte{1}, 0x8, 0.75, 0.875), 1) << "248 of 256 are enough";
    EXPECT_EQ(sampled(Byte{0}, Byte{1}, 0x8, 0.9375, 0.4375), 0) << "247 are not";
    EXPECT_EQ(sampled(Byte{0}, Byte{1}, 0x8, 0.5, 0.5), 0) << "neither are three quarters";
    EXPECT_EQ(sampled(Short{-1}, Short{0}, 0x110, 0.75, 0.875), 0) << "-8 of 256";
    EXPECT_EQ(sampled(Short{-1}, Short{0}, 0x110, 0.9375, 0.4375), -1) << "-9 of 256";
    EXPECT_EQ(sampled(std::int8_t{-128}, std::int8_t{127}, 0x108, 0, 0), -128);
    EXPECT_EQ(sampled(std::uint16_t{65535}, std::uint16_t{65535}, 0x10, 0.375, 0.25), 65535);
}

TEST(CreatePolarImageEx, TakesASixteenthLeftOfAnImageOf8BitsAsInside) {
    const auto image = OneRow(Bytes{50, 60}, 0x8);
    EXPECT_EQ(SampledAt<std::uint8_t>(image->Handle(), -0.03, 0), 50);
    EXPECT_EQ(SampledAt<std::uint8_t>(image->Handle(), -0.07, 0), 129);
    EXPECT_EQ(SampledAt<std::uint8_t>(image->Handle(), 0, -0.03), 50);
    EXPECT_EQ(SampledAt<std::uint8_t>(image->Handle(), 0, -0.07), 129);
}

TEST(CreatePolarImageEx, ExtrapolatesUpToOnePixelLeftOfAnImageOf32Bits) {
    const auto image = OneRow(std::vector<double>{3, 8}, 0x240);
    EXPECT_EQ(SampledAt<double>(image->Handle(), -0.5, 0), 1.5 * 3 - 0.5 * 8);
    EXPECT_EQ(SampledAt<double>(image->Handle(), 0, -0.5), 3) << "both rows are the same one";
    EXPECT_EQ(SampledAt<double>(image->Handle(), -1, 0), 0) << "outside";
    const auto whole = OneRow(std::vector<std::int32_t>{10, 50}, 0x120);
    EXPECT_EQ(SampledAt<std::int32_t>(whole->Handle(), -0.5, 0), -9) << "15 - 25 + 0.5, cut toward zero";
    const auto one = OneRow(std::vector<std::int64_t>{-1, -1}, 0x140);
    EXPECT_EQ(SampledAt<std::int64_t>(one->Handle(), 0, 0), 0) << "-1 + 0.5, cut toward zero";
}

TEST(CreatePolarImageEx, TheLastColumnAndRowAreTheirOwnNeighbours) {
    for (const double x : {2.0, 2.25, 2.5, 2.9375}) {
        EXPECT_EQ(SampledAt<std::uint8_t>(OneRow(Bytes{9, 200, 77}, 0x8)->Handle(), x, 0), 77) << x;
        EXPECT_EQ(SampledAt<std::uint16_t>(OneRow(Words{9, 200, 777}, 0x10)->Handle(), x, 0.5), 777) << x;
        EXPECT_EQ(SampledAt<float>(OneRow(std::vector<float>{9, 200, -5}, 0x220)->Handle(), x, 0.5), -5) << x;
        EXPECT_EQ(SampledAt<std::uint32_t>(OneRow(std::vector{9u, 200u, 5u}, 0x20)->Handle(), x, 0), 5u) << x;
    }
    EXPECT_EQ(SampledAt<std::uint8_t>(OneRow(Bytes{9, 200, 77}, 0x8)->Handle(), 3, 0), 129);
    EXPECT_EQ(SampledAt<std::uint32_t>(OneRow(std::vector{9u, 200u, 5u}, 0x20)->Handle(), 3, 0), 0x7FFFFFFFu);
    EXPECT_EQ(SampledAt<std::uint32_t>(OneRow(std::vector{9u, 200u, 5u}, 0x20)->Handle(), 0, 1), 0x7FFFFFFFu);
}

TEST(CreatePolarImageEx, ACentreFarOutsideGivesTheOutsideValueEverywhere) {
    const auto outside = [](TDataType type, double x, double y, auto value) {
        const auto image = FakeImage::Planar(9, 8, 2, type);
        Handle result;
        ASSERT_TRUE(Unroll(image->Handle(), result.Out(), {x, y, 0, 360, 10, 20}));
        for (const std::intptr_t plane : {0, 1})
            EXPECT_EQ(OneValueOf<decltype(value)>(result.Get(), plane), value) << "type " << type;
    };
    for (const auto &[x, y] : {std::pair{1e4, 0.0}, {0.0, -1e4}, {1e9, 1e9}, {-1e300, 0.0}}) {
        outside(0x8, x, y, std::uint8_t{129});
        outside(0x108, x, y, std::int8_t{-127});
        outside(0x10, x, y, std::uint16_t{0x7FFF});
        outside(0x110, x, y, std::int16_t{0x7FFF});
        outside(0x20, x, y, 0x7FFFFFFFu);
        outside(0x120, x, y, 0);
        outside(0x40, x, y, std::uint64_t{0x7FFFFFFFFFFFFFFF});
        outside(0x140, x, y, std::int64_t{0});
        outside(0x220, x, y, 0.0F);
        outside(0x240, x, y, 0.0);
        outside(0x408, x, y, std::uint8_t{129});
    }
}

TEST(CreatePolarImageEx, KeepsBitZeroOfThePixelLeftAboveInAnOverlayImage) {
    for (const double x : {0.0, 0.25, 0.5, 0.9375}) {
        EXPECT_EQ(SampledAt<std::uint8_t>(OneRow(Bytes{0xF1, 0}, 0x408)->Handle(), x, 0) & 1, 1) << x;
        EXPECT_EQ(SampledAt<std::uint8_t>(OneRow(Bytes{0xF0, 0xFF}, 0x408)->Handle(), x, 0) & 1, 0) << x;
        EXPECT_EQ(SampledAt<std::uint32_t>(OneRow(std::vector{0xF1u, 0u}, 0x420)->Handle(), x, 0) & 1, 1u) << x;
        EXPECT_EQ(SampledAt<std::uint16_t>(OneRow(Words{2, 9}, 0x410)->Handle(), x, 0) & 1, 0) << x;
    }
    EXPECT_EQ(SampledAt<std::uint8_t>(OneRow(Bytes{101, 100}, 0x408)->Handle(), 0.5, 0), 101) << "100 and a bit";
    EXPECT_EQ(SampledAt<std::uint8_t>(OneRow(Bytes{100, 101}, 0x408)->Handle(), 0.5, 0), 100);
    EXPECT_EQ(SampledAt<float>(OneRow(std::vector<float>{1, 2}, 0x620)->Handle(), 0.5, 0), 1.5F);
}

TEST(CreatePolarImageEx, OnePlaneWithAnOverlayBringsTheRuleToAllPlanes) {
    const auto image = MixedImage(2, 1, {0x8, 0x410}, {BytesOf(Bytes{1, 199}), BytesOf(Words{0, 0})});
    EXPECT_EQ(SampledAt<std::uint8_t>(image->Handle(), 0.5, 0), 101) << "100, with bit 0 of the 1";
}

TEST(CreatePolarImageEx, GivesAllPlanesWithTheirDataTypes) {
    const std::vector<TDataType> types{0x8, 0x110, 0x20, 0x240, 0x140, 0x220};
    std::vector<PlaneBytes> content;
    for (const TDataType type : types)
        content.push_back(RandomPlanes(21 * 23, 1, type, type, Content::Tame)[0]);
    const auto image = MixedImage(21, 23, types, content);
    ExpectUnrolledAsTold(image->Handle(), {10, 11.5, 12, 300, 3, 14});
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreatePolarImageEx, GivesTheIdentityAsCoordinateSystemAndLeavesTheSourceAlone) {
    const auto image = FakeImage::Planar(9, 8, 1, 0x8);
    image->Coordinates = SkewedMap;
    const auto before = image->Pixels;
    Handle result;
    ClearReports();
    ASSERT_TRUE(Unroll(image->Handle(), result.Out(), {4, 4, 0, 360, 1, 4}));
    ExpectNoReport();
    TCoordinateMap map{};
    ASSERT_EQ(ImageInterface(result.Get())->GetCoordinateMap(&map), 0);
    EXPECT_TRUE(SameMap(map, IdentityMap));
    EXPECT_EQ(RefCount(result.Get()), 1u);
    EXPECT_EQ(image->Pixels, before);
    EXPECT_EQ(image->Count(), 1);
}

/* A whole image by a matrix: size, values of single pixels, weights, the rule for what lies outside, coordinate
 * systems. What all affine functions share is tested here on this one; failures stand in AffineHostile_test.cpp. */
#include "ImageCoordinates.h"
#include "Transformations/TransformChecks.h"

namespace {

using namespace TransformModel;

Handle Mapped(void *image, const TMatrix &matrix) {
    Handle out;
    EXPECT_TRUE(CreateMatrixTransformedImage(image, out.Out(), matrix));
    return out;
}

/// A single row whose position in the source begins at shift: an area of the same width, moved by it.
template <class T>
std::vector<T> Shifted(TDataType type, const std::vector<T> &row, double shift) {
    const auto image = ImageOf(std::ssize(row), 1, type, row);
    const TCoordinateMap map = IdentityMap;
    const TArea area = RectArea(shift, 0.0, static_cast<double>(row.size()) + shift, 1.0);
    Handle out;
    EXPECT_TRUE(CreateAreaAffineTransformedImage(image->Handle(), &map, &area, out.Out()));
    EXPECT_EQ(SizeOf(out.Get()), (ImageSize{1, std::ssize(row), 1}));
    return PixelsOf<T>(out);
}

using Bytes = std::vector<std::uint8_t>;

TEST(CreateMatrixTransformedImage, ByTheIdentityGivesAnImageOfTheSameSizeWithExactlyEqualPixels) {
    for (const TDataType type : {0x108u, 0x8u, 0x110u, 0x10u, 0x20u, 0x220u, 0x240u}) {
        const auto content = RandomPlanes(7 * 5, 2, type, type, Content::Tame);
        const auto image = PlainImage(7, 5, type, content);
        const Handle out = Mapped(image->Handle(), IdentityMatrix);
        ASSERT_EQ(SizeOf(out.Get()), (ImageSize{2, 7, 5}));
        for (std::intptr_t plane = 0; plane < 2; ++plane)
            ExpectPlane(out.Get(), plane, type, content[static_cast<std::size_t>(plane)]);
    }
}

TEST(CreateMatrixTransformedImage, RoundsNegativeWholeNumbersOfSigned32And64BitsTowardZero) {
    const std::vector<std::int32_t> values = {-1, -2, -100, 0, 1, 100};
    const std::vector<std::int64_t> wide(values.begin(), values.end());
    const auto image = ImageOf(6, 1, 0x120, values), wideImage = ImageOf(6, 1, 0x140, wide);
    EXPECT_EQ(PixelsOf<std::int32_t>(Mapped(image->Handle(), IdentityMatrix)),
              (std::vector<std::int32_t>{0, -1, -99, 0, 1, 100}));
    EXPECT_EQ(PixelsOf<std::int64_t>(Mapped(wideImage->Handle(), IdentityMatrix)),
              (std::vector<std::int64_t>{0, -1, -99, 0, 1, 100}));
}

TEST(CreateMatrixTransformedImage, KeepsNegativeWholeNumbersOfSigned8And16Bits) {
    EXPECT_EQ(Shifted<std::int8_t>(0x108, {-128, -1, -2, 127}, 0.0), (std::vector<std::int8_t>{-128, -1, -2, 127}));
    EXPECT_EQ(Shifted<std::int16_t>(0x110, {-32768, -1, 32767}, 0.0), (std::vector<std::int16_t>{-32768, -1, 32767}));
}

TEST(CreateMatrixTransformedImage, Unsigned64BitsPassThroughADouble) {
    const std::vector<std::uint64_t> values = {0x8000000000000000u, 0x8000000000000401u, 0xC000000000000000u, 5u};
    const auto image = ImageOf(4, 1, 0x40, values);
    EXPECT_EQ(PixelsOf<std::uint64_t>(Mapped(image->Handle(), IdentityMatrix)),
              (std::vector<std::uint64_t>{0x8000000000000000u, 0x8000000000000800u, 0xC000000000000000u, 5u}));
}

TEST(CreateMatrixTransformedImage, TurnedBy90DegreesIsAsWideAsTheSourceIsHighWithAColumnOutside) {
    const auto image = ImageOf<std::uint8_t>(3, 2, 8, {1, 2, 3, 4, 5, 6});
    const Handle out = Mapped(image->Handle(), {0.0, -1.0, 1.0, 0.0});
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{1, 2, 3}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{129, 4, 129, 5, 129, 6}));
}

TEST(CreateMatrixTransformedImage, TakesTheSizeOfTheMappedRectangleRoundedHalfUp) {
    const auto image = FakeImage::Planar(10, 10, 1, 8);
    const std::pair<double, std::intptr_t> sizes[] = {{1.0, 10},  {0.94, 9}, {0.95, 10}, {1.049, 10},
                                                      {1.06, 11}, {2.0, 20}, {0.06, 1},  {0.14, 1}};
    for (const auto &[scale, size] : sizes)
        EXPECT_EQ(SizeOf(Mapped(image->Handle(), {scale, 0.0, 0.0, 1.0}).Get()), (ImageSize{1, size, 10})) << scale;
}

TEST(CreateMatrixTransformedImage, TakesTheSizeOfTheSourceForOneOf0) {
    const auto image = FakeImage::Planar(10, 7, 3, 0x10);
    for (const TMatrix &flat : {TMatrix{0.01, 0.0, 0.0, 3.0}, {3.0, 0.0, 0.0, 0.01}, {0.01, 0.0, 0.0, 0.01}}) {
        const ModelSource source(image->Handle());
        EXPECT_EQ(SizeOf(Mapped(image->Handle(), flat).Get()), (ImageSize{3, 10, 7}));
        ExpectWholeAsModel(image->Handle(), source, flat);
    }
}

TEST(CreateMatrixTransformedImage, GivesFalseWithoutAReportUnlessTheDeterminantIsAboveAMillionth) {
    const auto image = FakeImage::Planar(10, 7, 1, 8);
    const auto run = [](const TMatrix &matrix) {
        return [matrix](void *from, void **out) { return CreateMatrixTransformedImage(from, out, matrix); };
    };
    for (const double determinant : {0.0, 1e-6, -1e-6, 9e-7}) {
        ExpectRefusal(image->Handle(), run({1.0, 0.0, 0.0, determinant}));
        ExpectNoReport();
    }
    ExpectRefusal(image->Handle(), run({1.0, 2.0, 2.0, 4.0}));
    ExpectNoReport();
    for (const double determinant : {1.01e-6, -1.01e-6})
        EXPECT_TRUE(Mapped(image->Handle(), {1.0, 0.0, 0.0, determinant}));
}

TEST(FixedPointSampling, WeighsSixteenthsOfAPixel) {
    for (int k = 0; k < 16; ++k)
        EXPECT_EQ(Shifted<std::uint8_t>(8, {0, 160, 160}, k / 16.0),
                  (Bytes{static_cast<std::uint8_t>(10 * k), 160, 160}))
            << k;
}

TEST(FixedPointSampling, AddsEightBeforeAShiftByEight) {
    EXPECT_EQ(Shifted<std::uint8_t>(8, {0, 255}, 0.5).front(), 127);
    EXPECT_EQ(Shifted<std::uint8_t>(8, {0, 1}, 15.0 / 16.0).front(), 0);
    EXPECT_EQ(Shifted<std::int8_t>(0x108, {0, -1}, 0.5).front(), -1);
    EXPECT_EQ(Shifted<std::uint16_t>(0x10, {0, 65535}, 0.5).front(), 32767);
    EXPECT_EQ(Shifted<std::int16_t>(0x110, {32767, -32768}, 0.5).front(), -1);
}

TEST(FixedPointSampling, RoundsAPositionToItsNearestSixteenthUpFromTheMiddle) {
    EXPECT_EQ(Shifted<std::uint8_t>(8, {0, 160, 160}, 7.0 / 256.0).front(), 0);
    EXPECT_EQ(Shifted<std::uint8_t>(8, {0, 160, 160}, 8.0 / 256.0).front(), 10);
    EXPECT_EQ(Shifted<std::uint8_t>(8, {0, 160, 160}, 8.9 / 256.0).front(), 10);
    EXPECT_EQ(Shifted<std::uint8_t>(8, {0, 160, 160}, 24.0 / 256.0).front(), 20);
}

TEST(FixedPointSampling, HasPositionsBelow0ByLessThanA32ndOfAPixelInside) {
    for (const double units : {-1.0, -7.0, -7.9})
        EXPECT_EQ(Shifted<std::uint8_t>(8, {50, 90, 7}, units / 256.0), (Bytes{50, 90, 7})) << units;
}

TEST(FixedPointSampling, CutsPositionsBelow0TowardZeroBeforeRoundingThem) {
    for (const double units : {-8.0, -8.9})
        EXPECT_EQ(Shifted<std::uint8_t>(8, {50, 90, 7}, units / 256.0).front(), 50) << units;
    for (const double units : {-9.0, -9.5, -128.0, -256.0})
        EXPECT_EQ(Shifted<std::uint8_t>(8, {50, 90, 7}, units / 256.0).front(), 129) << units;
}

TEST(Sampling, GivesTheEdgePixelHalfAPixelBeyondIt) {
    EXPECT_EQ(Shifted<std::uint8_t>(8, {10, 20, 200}, 0.5).back(), 200);
    EXPECT_EQ(Shifted<std::uint8_t>(8, {10, 20, 200}, 247.0 / 256.0).back(), 200);
    EXPECT_EQ(Shifted<std::int32_t>(0x120, {10, 20, 200}, 0.5).back(), 200);
    EXPECT_EQ(Shifted<double>(0x240, {10, 20, 200}, 0.984375).back(), 200);
}

TEST(Sampling, GivesTheOutsideValueAWholePixelBeyondTheEdge) {
    EXPECT_EQ(Shifted<std::uint8_t>(8, {10, 20, 200}, 1.0), (Bytes{20, 200, 129}));
    EXPECT_EQ(Shifted<std::uint8_t>(8, {10, 20, 200}, 248.0 / 256.0), (Bytes{20, 200, 129}));
    EXPECT_EQ(Shifted<std::uint32_t>(0x20, {10, 20, 200}, 1.0), (std::vector<std::uint32_t>{20, 200, 0x7FFFFFFF}));
}

TEST(SamplingInDoubles, ExtrapolatesFromAboveMinusOne) {
    EXPECT_EQ(Shifted<double>(0x240, {8.0, 4.0, 2.0}, -0.5), (std::vector<double>{10.0, 6.0, 3.0}));
    EXPECT_EQ(Shifted<std::int32_t>(0x120, {8, 4, 2}, -0.75), (std::vector<std::int32_t>{11, 7, 4}));
    EXPECT_EQ(Shifted<float>(0x220, {8.0F, 4.0F}, -1.0).front(), 0.0F);
}

TEST(SamplingInDoubles, RoundsHalfUpAndTowardZeroBelow0) {
    EXPECT_EQ(Shifted<std::int32_t>(0x120, {1, 2}, 0.5).front(), 2);
    EXPECT_EQ(Shifted<std::int32_t>(0x120, {-1, -2}, 0.5).front(), -1);
    EXPECT_EQ(Shifted<std::int32_t>(0x120, {-3, -3}, 0.5).front(), -2);
    EXPECT_EQ(Shifted<std::uint32_t>(0x20, {0xFFFFFFFF, 0xFFFFFFFE}, 0.5).front(), 0xFFFFFFFFu);
    EXPECT_EQ(Shifted<float>(0x220, {1.0F, 2.0F}, 0.5).front(), 1.5F);
}

template <class T>
T OutsideOf(TDataType type) {
    return Shifted<T>(type, {T{1}, T{1}}, 2.0).front();
}

TEST(PixelsWithoutASource, GetTheValueOfTheirType) {
    EXPECT_EQ(OutsideOf<std::int8_t>(0x108), -127);
    EXPECT_EQ(OutsideOf<std::uint8_t>(0x8), 129);
    EXPECT_EQ(OutsideOf<std::int16_t>(0x110), 0x7FFF);
    EXPECT_EQ(OutsideOf<std::uint16_t>(0x10), 0x7FFF);
    EXPECT_EQ(OutsideOf<std::int32_t>(0x120), 0);
    EXPECT_EQ(OutsideOf<std::uint32_t>(0x20), 0x7FFFFFFFu);
    EXPECT_EQ(OutsideOf<std::int64_t>(0x140), 0);
    EXPECT_EQ(OutsideOf<std::uint64_t>(0x40), 0x7FFFFFFFFFFFFFFFu);
    EXPECT_EQ(OutsideOf<float>(0x220), 0.0F);
    EXPECT_EQ(OutsideOf<double>(0x240), 0.0);
}

TEST(Overlays, KeepBit0OfThePixelLeftAboveExactly) {
    EXPECT_EQ(Shifted<std::uint8_t>(0x408, {0x41, 0x80, 0x81}, 0.5), (Bytes{0x61, 0x80, 0x81}));
    EXPECT_EQ(Shifted<std::uint16_t>(0x410, {0x40, 0x81, 0x81}, 0.5), (std::vector<std::uint16_t>{0x60, 0x81, 0x81}));
    EXPECT_EQ(Shifted<std::int32_t>(0x520, {5, -7, -7}, 0.5), (std::vector<std::int32_t>{1, -5, -5}));
    EXPECT_EQ(Shifted<float>(0x620, {5.0F, -7.0F, -7.0F}, 0.5), (std::vector<float>{-1.0F, -7.0F, -7.0F}));
}

TEST(Overlays, LeaveTheOutsideValueAsItIs) {
    EXPECT_EQ(Shifted<std::uint8_t>(0x408, {2, 4}, 1.0).back(), 129);
    EXPECT_EQ(Shifted<std::uint32_t>(0x420, {2, 4}, 1.0).back(), 0x7FFFFFFFu);
}

TEST(Overlays, OfAnyPlaneCountForAllPlanes) {
    for (const std::uint32_t overlay : {1u, 2u, 4u}) {
        const auto image = WildImage(4, 3, WithOverlays({0x8, 0x220, 0x110}, overlay), 5);
        const ModelSource source(image->Handle());
        ASSERT_TRUE(source.Overlay);
        ExpectWholeAsModel(image->Handle(), source, Turned(10.0));
    }
}

TEST(CreateMatrixTransformedImage, ComposesTheCoordinateSystemSoThatACoordinateNamesTheSamePoint) {
    const auto image = FakeImage::Planar(20, 10, 1, 8);
    image->Coordinates = {4.0, -3.0, {1.5, 0.25, -0.5, 2.0}};
    const TMatrix matrix = Turned(30.0, 2.0);
    const Handle out = Mapped(image->Handle(), matrix);
    TRectangle around;
    BoundingRectangle(&around, RectArea(0.0, 0.0, 20.0, 10.0), {0.0, 0.0, matrix});
    for (const double x : {-5.0, 0.0, 7.5})
        for (const double y : {0.0, 3.25}) {
            double sourceX = 0, sourceY = 0, mappedX = 0, mappedY = 0, outX = 0, outY = 0;
            ImageToPixel(image->Handle(), &sourceX, &sourceY, x, y);
            MatrixRTransform(&mappedX, &mappedY, matrix, sourceX, sourceY);
            ImageToPixel(out.Get(), &outX, &outY, x, y);
            EXPECT_NEAR(outX, mappedX - around.Left, 1e-9);
            EXPECT_NEAR(outY, mappedY - around.Top, 1e-9);
        }
    ExpectWholeAsModel(image->Handle(), ModelSource(image->Handle()), matrix);
}

TEST(CreateMatrixTransformedImageEx, DiffersInTheIdentityAsCoordinateSystemOnly) {
    const auto image = WildImage(9, 6, {0x8, 0x240}, 3);
    image->Coordinates = {4.0, -3.0, {1.5, 0.25, -0.5, 2.0}};
    const ModelSource source(image->Handle());
    auto expected = ModelWhole(source, {0.0, 0.0, Turned(30.0)});
    ASSERT_TRUE(expected.has_value());
    EXPECT_FALSE(SameMap(expected->Coordinates, IdentityMap));
    expected->Coordinates = IdentityMap;
    ExpectAsModel(
        image->Handle(), source,
        [](void *from, void **out) { return CreateMatrixTransformedImageEx(from, out, Turned(30.0)); }, expected);
}

} // namespace

/* An image of a given size from the positions that a function of the caller gives: calls and their order, values,
 * failures, exceptions. */
#include "ImageCoordinates.h"
#include "Transformations/TransformChecks.h"

namespace {

using namespace TransformModel;

using Bytes = std::vector<std::uint8_t>;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

/// One pixel, from a position told.
template <class T>
T PixelAt(FakeImage &image, double x, double y) {
    Handle out;
    EXPECT_TRUE(TransformBy(
        image.Handle(), 1, 1,
        [=](double *toX, double *toY) {
            *toX = x;
            *toY = y;
        },
        out.Out()));
    return PixelsOf<T>(out).front();
}

template <class T>
std::vector<T> CopiedWithAMargin(TDataType type, const std::vector<T> &pixels) {
    const auto image = ImageOf(2, 2, type, pixels);
    Handle out;
    EXPECT_TRUE(CreateTransformedImage(image->Handle(), 3, 3, SamePosition, nullptr, out.Out()));
    EXPECT_EQ(SizeOf(out.Get()), (ImageSize{1, 3, 3}));
    return PixelsOf<T>(out);
}

TEST(CreateTransformedImage, CopiesTheTopLeftPartWhereTheFunctionLeavesThePositionAlone) {
    EXPECT_EQ(CopiedWithAMargin<std::uint8_t>(8, {1, 2, 3, 4}), (Bytes{1, 2, 127, 3, 4, 127, 127, 127, 127}));
    EXPECT_EQ(CopiedWithAMargin<std::int8_t>(0x108, {5, 6, 7, 8}),
              (std::vector<std::int8_t>{5, 6, 0, 7, 8, 0, 0, 0, 0}));
    const auto image = ImageOf<std::uint8_t>(3, 2, 8, {1, 2, 3, 4, 5, 6});
    Handle part;
    ASSERT_TRUE(CreateTransformedImage(image->Handle(), 2, 1, SamePosition, nullptr, part.Out()));
    EXPECT_EQ(PixelsOf<std::uint8_t>(part), (Bytes{1, 2}));
}

TEST(CreateTransformedImage, FillsPixelsWithoutASourceByTheirType) {
    EXPECT_EQ(CopiedWithAMargin<std::int8_t>(0x108, {1, 1, 1, 1}).back(), 0);
    EXPECT_EQ(CopiedWithAMargin<std::uint8_t>(0x8, {1, 1, 1, 1}).back(), 127);
    EXPECT_EQ(CopiedWithAMargin<std::int16_t>(0x110, {1, 1, 1, 1}).back(), 0);
    EXPECT_EQ(CopiedWithAMargin<std::uint16_t>(0x10, {1, 1, 1, 1}).back(), 32767);
    EXPECT_EQ(CopiedWithAMargin<std::int32_t>(0x120, {1, 1, 1, 1}).back(), 0);
    EXPECT_EQ(CopiedWithAMargin<std::uint32_t>(0x20, {1, 1, 1, 1}).back(), 0x7FFFFFFFu);
    EXPECT_EQ(CopiedWithAMargin<std::int64_t>(0x140, {1, 1, 1, 1}).back(), 0);
    EXPECT_EQ(CopiedWithAMargin<std::uint64_t>(0x40, {1, 1, 1, 1}).back(), 0x7FFFFFFFFFFFFFFFu);
    EXPECT_EQ(CopiedWithAMargin<float>(0x220, {1, 1, 1, 1}).back(), 0.0F);
    EXPECT_EQ(CopiedWithAMargin<double>(0x240, {1, 1, 1, 1}).back(), 0.0);
}

TEST(CreateTransformedImage, RoundsNegativeWholeNumbersTowardZeroInACopyToo) {
    EXPECT_EQ(CopiedWithAMargin<std::int8_t>(0x108, {-1, -2, 3, -128}),
              (std::vector<std::int8_t>{0, -1, 0, 3, -127, 0, 0, 0, 0}));
    EXPECT_EQ(CopiedWithAMargin<std::int16_t>(0x110, {-1, -2, 3, 0}).front(), 0);
}

TEST(CreateTransformedImage, HasPositionsAboveMinusOneInsideAndExtrapolatesThere) {
    const auto image = ImageOf<std::uint8_t>(2, 2, 8, {100, 60, 20, 40});
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, -0.5, 0.0), 120); // 1.5 * 100 - 0.5 * 60
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, 0.0, -0.5), 140);
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, -0.5, -0.5), 175);
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, std::nextafter(-1.0, 0.0), 0.0), 140);
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, -1.0, 0.0), 127);
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, 0.0, -1.0), 127);
}

TEST(CreateTransformedImage, DropsTheBitsAboveThePixelOfAnExtrapolatedValue) {
    const auto image = ImageOf<std::uint8_t>(2, 1, 8, {200, 0});
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, -0.5, 0.0), 300 - 256);
    const auto reversed = ImageOf<std::uint8_t>(2, 1, 8, {0, 200});
    EXPECT_EQ(PixelAt<std::uint8_t>(*reversed, -0.5, 0.0), 256 - 99);
}

TEST(CreateTransformedImage, HasTheLastColumnAndRowInside) {
    const auto image = ImageOf<float>(2, 2, 0x220, {1.0F, 2.0F, 3.0F, 4.0F});
    EXPECT_EQ(PixelAt<float>(*image, 1.0, 1.0), 4.0F);
    EXPECT_EQ(PixelAt<float>(*image, 1.5, 1.0), 4.0F);
    EXPECT_EQ(PixelAt<float>(*image, 1.5, 0.5), 3.0F);
    EXPECT_EQ(PixelAt<float>(*image, std::nextafter(2.0, 0.0), std::nextafter(2.0, 0.0)), 4.0F);
    EXPECT_EQ(PixelAt<float>(*image, 2.0, 0.0), 0.0F);
    EXPECT_EQ(PixelAt<float>(*image, 0.0, 2.0), 0.0F);
}

TEST(CreateTransformedImage, HasPositionsThatAreNoNumbersOrDoNotFit32BitsOutside) {
    const auto image = ImageOf<std::uint16_t>(2, 1, 0x10, {5, 6});
    for (const double wild : {NaN, Infinity, -Infinity, 2147483648.0, 4294967296.0, -2147483649.0, -4294967296.0,
                              1e18, -1e18, 1e300, -1e300, 18446744073709551616.0}) {
        EXPECT_EQ(PixelAt<std::uint16_t>(*image, wild, 0.0), 32767) << wild;
        EXPECT_EQ(PixelAt<std::uint16_t>(*image, 0.0, wild), 32767) << wild;
        EXPECT_EQ(PixelAt<std::uint16_t>(*image, wild, wild), 32767) << wild;
    }
}

TEST(CreateTransformedImage, KeepsBit0OfThePixelLeftAboveInAnOverlayImage) {
    const auto image = ImageOf<std::uint8_t>(2, 1, 0x408, {0x41, 0x80});
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, 0.5, 0.0), 0x61);
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, -0.25, 0.0), 0x31); // 0x41 less a quarter of 0x3F
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, 1.0, 0.0), 0x80);
    EXPECT_EQ(PixelAt<std::uint8_t>(*image, 2.0, 0.0), 127);
}

TEST(CreateTransformedImage, CallsForEveryPixelOfEveryPlaneRowByRowWithTheCallersPointer) {
    const auto image = WildImage(2, 2, {0x8, 0x240, 0x110}, 1);
    std::vector<std::pair<double, double>> calls;
    const auto record = [](void *userData, double *x, double *y) {
        static_cast<std::vector<std::pair<double, double>> *>(userData)->emplace_back(*x, *y);
        *x = -7.0;
        *y = NaN;
    };
    Handle out;
    ASSERT_TRUE(CreateTransformedImage(image->Handle(), 3, 2, record, &calls, out.Out()));
    std::vector<std::pair<double, double>> expected;
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                expected.emplace_back(x, y);
    EXPECT_EQ(calls, expected);
}

TEST(CreateTransformedImage, TakesADifferentAnswerForEachPlane) {
    const auto image = WildImage(5, 1, {0x8, 0x8}, 3);
    int calls = 0;
    Handle out;
    ASSERT_TRUE(TransformBy(
        image->Handle(), 2, 1,
        [&calls](double *x, double *y) {
            *x = ++calls;
            *y = 0.0;
        },
        out.Out()));
    const auto first = PixelBytes(image->Handle(), 0), second = PixelBytes(image->Handle(), 1);
    EXPECT_EQ(PixelsOf<std::uint8_t>(out, 0), (Bytes{first[1], first[2]}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out, 1), (Bytes{second[3], second[4]}));
}

TEST(CreateTransformedImage, HasTheIdentityAsCoordinateSystem) {
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    image->Coordinates = {1.0, 2.0, {3.0, 4.0, 5.0, 6.0}};
    Handle out;
    ASSERT_TRUE(CreateTransformedImage(image->Handle(), 3, 3, SamePosition, nullptr, out.Out()));
    TCoordinateMap coordinates{};
    ASSERT_TRUE(GetImageCoordinates(out.Get(), &coordinates));
    EXPECT_TRUE(SameMap(coordinates, IdentityMap));
}

TEST(CreateTransformedImage, ReportsAnInvalidTargetDimensionBelow1) {
    constexpr std::intptr_t lowest = std::numeric_limits<std::intptr_t>::min();
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{0, 1},
                                        {1, 0},
                                        {0, 0},
                                        {-1, 5},
                                        {5, -1},
                                        {lowest, 1},
                                        {1, lowest}}) {
        ExpectRefusal(image->Handle(), [w = width, h = height](void *from, void **out) {
            return CreateTransformedImage(from, w, h, SamePosition, nullptr, out);
        });
        ExpectOneReportWithText(0x80000002u, "CreateTransformedImage", "Invalid Target Dimension");
    }
}

TEST(CreateTransformedImage, TellsASizeBeforeAMissingFunction) {
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    ExpectRefusal(image->Handle(),
                  [](void *from, void **out) { return CreateTransformedImage(from, 0, 1, nullptr, nullptr, out); });
    ExpectOneReportWithText(0x80000002u, "CreateTransformedImage", "Invalid Target Dimension");
}

TEST(CreateTransformedImage, ReportsAMissingFunction) {
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    ExpectRefusal(image->Handle(),
                  [](void *from, void **out) { return CreateTransformedImage(from, 2, 1, nullptr, nullptr, out); });
    ExpectOneReport(0x80000002u, "CreateTransformedImage");
}

TEST(CreateTransformedImage, ReportsErrGeneralForASizeThatNoMemoryHolds) {
    constexpr std::intptr_t highest = std::numeric_limits<std::intptr_t>::max();
    const auto image = FakeImage::Planar(2, 2, 3, 0x10);
    for (const auto &[width, height] :
         {std::pair<std::intptr_t, std::intptr_t>{1'000'000'000, 1'000'000'000}, {highest, highest}, {highest, 2}}) {
        ExpectRefusal(image->Handle(), [w = width, h = height](void *from, void **out) {
            return CreateTransformedImage(from, w, h, SamePosition, nullptr, out);
        });
        ExpectNewestReport(0x80000001u, "CreateTransformedImage");
    }
}

TEST(CreateTransformedImage, LetsAnExceptionOfTheFunctionEndTheCallWithErrGeneral) {
    const auto image = FakeImage::Planar(4, 4, 2, 8);
    for (const int last : {1, 2, 7, 16, 17, 32})
        for (const bool standard : {false, true}) {
            int calls = 0;
            ExpectRefusal(image->Handle(), [&](void *from, void **out) {
                return TransformBy(
                    from, 4, 4,
                    [&](double *, double *) {
                        if (++calls < last)
                            return;
                        if (standard)
                            throw std::out_of_range("the caller's own");
                        throw 42;
                    },
                    out);
            });
            EXPECT_EQ(calls, last) << "nothing is called after an exception";
            EXPECT_EQ(image->Count(), 1);
            ExpectOneReport(0x80000001u, "CreateTransformedImage");
        }
}

TEST(CreateTransformedImage, MayBeCalledByItsOwnFunction) {
    const auto image = ImageOf<std::uint8_t>(2, 1, 8, {5, 9});
    std::vector<std::uint8_t> inner;
    Handle out;
    ASSERT_TRUE(TransformBy(
        image->Handle(), 2, 1, [&](double *x, double *y) { inner.push_back(PixelAt<std::uint8_t>(*image, *x, *y)); },
        out.Out()));
    EXPECT_EQ(inner, (Bytes{5, 9}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out), (Bytes{5, 9}));
}

} // namespace

// Two images laid over each other by their origins: their overlap against a search pixel by pixel, the rounding of
// origins, and images that do not meet.
#include "Image/MapModel.h"
#include "ImageCreation.h"

#include <cmath>

namespace {

using namespace TestSupport;

constexpr unsigned char NotAndShared[] = {0, 1};

/// One plane of 16 bits; each pixel holds its column in the low byte and its row in the high one.
std::unique_ptr<FakeImage> Numbered(std::intptr_t width, std::intptr_t height, double originX, double originY) {
    auto image = FakeImage::Planar(width, height, 1, 0x10);
    for (std::intptr_t i = 0; i < width * height; ++i) {
        image->Pixels[static_cast<std::size_t>(2 * i)] = static_cast<std::uint8_t>(i % width);
        image->Pixels[static_cast<std::size_t>(2 * i + 1)] = static_cast<std::uint8_t>(i / width);
    }
    image->Coordinates = {originX, originY, {1.0, 0.0, 0.0, 1.0}};
    return image;
}

std::int32_t Aligned(FakeImage &image, FakeImage &insert, unsigned char share, void **out) {
    return CreateImageInsertList(image.Handle(), insert.Handle(), 1, share, 1, out);
}

/// The places that both axes have, counted from the origins.
struct Common {
    std::intptr_t First = 0;
    std::intptr_t Count = 0;
};
Common CommonPlaces(std::intptr_t a, std::intptr_t aOrigin, std::intptr_t b, std::intptr_t bOrigin) {
    Common common;
    for (std::intptr_t place = -200; place <= 200; ++place) {
        const bool inBoth =
            place + aOrigin >= 0 && place + aOrigin < a && place + bOrigin >= 0 && place + bOrigin < b;
        if (inBoth && common.Count++ == 0)
            common.First = place;
    }
    return common;
}

PlaneBytes NumberedPart(std::intptr_t left, std::intptr_t top, std::intptr_t width, std::intptr_t height) {
    PlaneBytes bytes;
    for (std::intptr_t y = top; y < top + height; ++y)
        for (std::intptr_t x = left; x < left + width; ++x) {
            bytes.push_back(static_cast<std::uint8_t>(x));
            bytes.push_back(static_cast<std::uint8_t>(y));
        }
    return bytes;
}

/// Nothing is handed out and nothing kept; the failure arrives as an exception.
void ExpectNoOverlap(FakeImage &image, FakeImage &insert) {
    for (const unsigned char share : NotAndShared) {
        ClearReports();
        void *out = UntouchedPointer();
        EXPECT_ANY_THROW(Aligned(image, insert, share, &out));
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(image.Count(), 1);
        EXPECT_EQ(insert.Count(), 1);
        ExpectNoReport();
    }
}

} // namespace

TEST(AlignedInsertion, Of100ColumnsWithOriginsTenApartIs90Wide) {
    const auto image = Numbered(100, 4, 0.0, 0.0), insert = Numbered(100, 4, 10.0, 0.0);
    for (const unsigned char share : NotAndShared) {
        Handle list;
        ASSERT_EQ(Aligned(*image, *insert, share, list.Out()), 1);
        EXPECT_EQ(SizeOf(list.Get()), (ImageSize{2, 90, 4}));
        EXPECT_EQ(PixelBytes(list.Get(), 0), NumberedPart(0, 0, 90, 4));
        EXPECT_EQ(PixelBytes(list.Get(), 1), NumberedPart(10, 0, 90, 4));
        EXPECT_TRUE(SameMap(MapOf(list.Get()), IdentityMap));
    }
}

TEST(AlignedInsertion, ShowsExactlyThePixelsThatBothImagesHave) {
    std::mt19937_64 random(30);
    int overlaps = 0;
    for (int number = 0; number < 3000; ++number) {
        const auto pick = [&](std::intptr_t low, std::intptr_t high) {
            return std::uniform_int_distribution<std::intptr_t>(low, high)(random);
        };
        const std::intptr_t width = pick(1, 30), height = pick(1, 30), insertWidth = pick(1, 30),
                            insertHeight = pick(1, 30);
        const std::intptr_t origin[] = {pick(-25, 35), pick(-25, 35), pick(-25, 35), pick(-25, 35)};
        const auto image = Numbered(width, height, static_cast<double>(origin[0]), static_cast<double>(origin[1]));
        const auto insert =
            Numbered(insertWidth, insertHeight, static_cast<double>(origin[2]), static_cast<double>(origin[3]));
        const Common x = CommonPlaces(width, origin[0], insertWidth, origin[2]);
        const Common y = CommonPlaces(height, origin[1], insertHeight, origin[3]);
        SCOPED_TRACE(testing::Message() << "case " << number);
        if (x.Count == 0 || y.Count == 0) {
            ASSERT_NO_FATAL_FAILURE(ExpectNoOverlap(*image, *insert));
            continue;
        }
        ++overlaps;
        Handle list;
        ASSERT_EQ(Aligned(*image, *insert, number % 2 != 0, list.Out()), 1);
        ASSERT_EQ(SizeOf(list.Get()), (ImageSize{2, x.Count, y.Count}));
        ASSERT_EQ(PixelBytes(list.Get(), 0),
                  NumberedPart(x.First + origin[0], y.First + origin[1], x.Count, y.Count));
        ASSERT_EQ(PixelBytes(list.Get(), 1),
                  NumberedPart(x.First + origin[2], y.First + origin[3], x.Count, y.Count));
        const TCoordinateMap map = MapOf(list.Get());
        ASSERT_EQ(map.X, static_cast<double>(-x.First));
        ASSERT_EQ(map.Y, static_cast<double>(-y.First));
    }
    EXPECT_GT(overlaps, 500);
    EXPECT_LT(overlaps, 2500);
}

TEST(AlignedInsertion, WritesTheGuardEntriesOfTheOverlap) {
    std::mt19937_64 random(31);
    FakeImage image(8, 5, 1), insert(7, 9, 1);
    const Offsets x = RandomOffsets(random, 8), y = RandomOffsets(random, 5);
    const Offsets insertX = RandomOffsets(random, 7), insertY = RandomOffsets(random, 9);
    image.AddPlane(image.Pixels.data(), 8, EntriesOf(x), EntriesOf(y));
    insert.AddPlane(insert.Pixels.data(), 8, EntriesOf(insertX), EntriesOf(insertY));
    image.Coordinates.X = 3.0;
    insert.Coordinates.Y = 2.0;
    Handle list;
    ASSERT_EQ(Aligned(image, insert, 1, list.Out()), 1);
    ASSERT_EQ(SizeOf(list.Get()), (ImageSize{2, 5, 5})); // columns 3 to 7 over 0 to 4, rows 0 to 4 over 2 to 6
    const PlaneAccess first = AccessOf(list.Get(), 0), second = AccessOf(list.Get(), 1);
    EXPECT_TRUE(AxisIs(first.Table, &VPAEntry::XEntry, Offsets(x.begin() + 3, x.end())));
    EXPECT_TRUE(AxisIs(first.Table, &VPAEntry::YEntry, y));
    EXPECT_TRUE(AxisIs(second.Table, &VPAEntry::XEntry, Offsets(insertX.begin(), insertX.begin() + 5)));
    EXPECT_TRUE(AxisIs(second.Table, &VPAEntry::YEntry, Offsets(insertY.begin() + 2, insertY.begin() + 7)));
}

TEST(AlignedInsertion, RoundsOriginsToTheNearestWithHalvesUpwards) {
    const std::pair<double, std::intptr_t> origins[] = {
        {0.5, 1},
        {0.4, 0},
        {-0.5, 0},
        {-0.6, -1},
        {1.5, 2},
        {2.5, 3},
        {-1.5, -1},
        {-2.5, -2},
        {3.25, 3},
        {-3.75, -4},
        {-0.0, 0},
        {7.499, 7},
        {-7.501, -8},
        // Required: one half is added in double, where it carries the largest number below 0.5 up to 1.
        {std::nextafter(0.5, 0.0), 1}};
    for (const auto &[value, rounded] : origins) {
        SCOPED_TRACE(value);
        const auto image = Numbered(20, 20, value, 10.0), insert = Numbered(20, 20, 10.0, value);
        Handle list;
        ASSERT_EQ(Aligned(*image, *insert, 1, list.Out()), 1);
        const std::intptr_t size = 20 - (10 - rounded);
        const std::intptr_t shownSize = std::min<std::intptr_t>(size, 20);
        ASSERT_EQ(SizeOf(list.Get()), (ImageSize{2, shownSize, shownSize}));
        const std::intptr_t low = std::min<std::intptr_t>(rounded, 10);
        EXPECT_EQ(PixelBytes(list.Get(), 0), NumberedPart(rounded - low, 10 - low, shownSize, shownSize));
        EXPECT_EQ(PixelBytes(list.Get(), 1), NumberedPart(10 - low, rounded - low, shownSize, shownSize));
        EXPECT_EQ(MapOf(list.Get()).X, static_cast<double>(low));
        EXPECT_EQ(MapOf(list.Get()).Y, static_cast<double>(low));
    }
}

TEST(AlignedInsertion, KeepsTheMatrixOfTheFirst) {
    const auto image = Numbered(9, 9, 4.25, 2.0), insert = Numbered(9, 9, 1.0, 6.0);
    image->Coordinates.Matrix = SkewedMap.Matrix;
    insert->Coordinates.Matrix = {9.0, 8.0, 7.0, 6.0};
    for (const unsigned char share : NotAndShared) {
        Handle list;
        ASSERT_EQ(Aligned(*image, *insert, share, list.Out()), 1);
        EXPECT_TRUE(SameMap(MapOf(list.Get()), {1.0, 2.0, SkewedMap.Matrix}));
        EXPECT_EQ(image->Coordinates.X, 4.25);
    }
}

TEST(AlignedInsertion, PutsThePlanesInTheSameOrder) {
    const auto image = FakeImage::Planar(6, 6, 3, 8), insert = FakeImage::Planar(6, 6, 2, 16);
    insert->Coordinates.X = 2.0;
    for (const auto &[position, expected] : {std::pair<std::intptr_t, std::vector<TDataType>>{0, {16, 16, 8, 8, 8}},
                                             {1, {8, 16, 16, 8, 8}},
                                             {3, {8, 8, 8, 16, 16}},
                                             {Highest, {8, 8, 8, 16, 16}}}) {
        Handle list;
        ASSERT_EQ(CreateImageInsertList(image->Handle(), insert->Handle(), position, 1, 1, list.Out()), 1);
        ASSERT_EQ(SizeOf(list.Get()), (ImageSize{5, 4, 6}));
        for (std::intptr_t plane = 0; plane < 5; ++plane)
            EXPECT_EQ(TypeOf(list.Get(), plane), expected[static_cast<std::size_t>(plane)]);
        EXPECT_EQ(image->Count(), 4);
        EXPECT_EQ(insert->Count(), 3);
    }
}

TEST(AlignedInsertion, MeetsInASinglePixelAndFailsOneFurther) {
    for (const auto &[x, y] : {std::pair{4.0, 3.0}, {-4.0, 3.0}, {4.0, -3.0}, {-4.0, -3.0}}) {
        const auto image = Numbered(5, 4, 0.0, 0.0), insert = Numbered(5, 4, x, y);
        Handle list;
        ASSERT_EQ(Aligned(*image, *insert, 1, list.Out()), 1);
        EXPECT_EQ(SizeOf(list.Get()), (ImageSize{2, 1, 1}));
        list.Reset();
        insert->Coordinates.X = x > 0 ? x + 1.0 : x - 1.0;
        ExpectNoOverlap(*image, *insert);
        insert->Coordinates = {x, y > 0 ? y + 1.0 : y - 1.0, IdentityMap.Matrix};
        ExpectNoOverlap(*image, *insert);
    }
}

TEST(AlignedInsertion, OfOriginsFarOutsideStillFindsTheOverlap) {
    for (const double far : {1e6, -1e6, 2147483647.0, -2147483648.0}) {
        const double other = far > 0 ? far - 2.0 : far + 2.0;
        const auto image = Numbered(6, 5, far, 1.0), insert = Numbered(6, 5, other, 1.0);
        Handle list;
        ASSERT_EQ(Aligned(*image, *insert, 1, list.Out()), 1) << far;
        EXPECT_EQ(SizeOf(list.Get()), (ImageSize{2, 4, 5}));
        EXPECT_EQ(PixelBytes(list.Get(), 0), NumberedPart(far > 0 ? 2 : 0, 0, 4, 5));
        EXPECT_EQ(PixelBytes(list.Get(), 1), NumberedPart(far > 0 ? 0 : 2, 0, 4, 5));
        EXPECT_EQ(MapOf(list.Get()).X, std::min(far, other));
    }
}

TEST(AlignedInsertion, OfImpossibleOriginsHarmsNothing) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double values[] = {std::nan(""), infinity,      -infinity,    1e300,         -1e300, 2147483648.0,
                             4294967296.0, -2147483649.0, 2147483647.0, -2147483648.0, 9.3e18, 0.0};
    for (const double a : values)
        for (const double b : values)
            for (const unsigned char share : NotAndShared) {
                const auto image = Numbered(6, 5, a, b), insert = Numbered(4, 7, b, a);
                void *out = UntouchedPointer();
                try {
                    const bool made = Aligned(*image, *insert, share, &out) != 0;
                    EXPECT_EQ(made, out != nullptr) << a << ", " << b;
                    const PlaneBytes shown = PixelBytes(out, 1);
                    EXPECT_EQ(shown.empty(), out == nullptr);
                } catch (...) {
                    EXPECT_EQ(out, nullptr) << a << ", " << b;
                }
                ReleaseObject(out);
                EXPECT_EQ(image->Count(), 1);
                EXPECT_EQ(insert->Count(), 1);
            }
}

TEST(AlignedInsertion, OfAnEmptyImageDoesNotMeetAnything) {
    const auto image = Numbered(6, 5, 0.0, 0.0);
    FakeImage empty(0, 0);
    ExpectNoOverlap(*image, empty);
    ExpectNoOverlap(empty, *image);
}

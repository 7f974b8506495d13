/* Images made for a ring: their size, what stands outside the ring by pixel type, and the ring itself. */
#include "Image/MapModel.h"
#include "ImageCopies.h"
#include "Scan/AreaModel.h"
#include "Transformations/PolarModel.h"

namespace {

using namespace PolarModel;

/// The value that the background of a plane starts from.
double BackgroundOf(TDataType type) {
    if ((type & (DataTypeSigned | DataTypeFloat)) != 0)
        return 0;
    switch (PixelSize(type)) {
    case 1:
        return 127;
    case 2:
        return 32767;
    case 4:
        return 2147483647;
    default:
        return 0x1p63;
    }
}

/// What the square must look like: each plane filled, as a pixel of plane 0 if that is as wide, and the ring in it.
std::unique_ptr<FakeImage> ModelOf(void *polar, const Roll &roll, std::intptr_t side) {
    std::vector<TDataType> types;
    std::vector<PlaneBytes> content;
    for (std::intptr_t plane = 0; plane < SizeOf(polar).Planes; ++plane) {
        types.push_back(TypeOf(polar, plane));
        PlaneBytes pixel = StoredBytes(types.front(), BackgroundOf(types.back()));
        pixel.resize(PixelSize(types.back()));
        PlaneBytes pixels;
        for (std::intptr_t i = 0; i < side * side; ++i)
            pixels.insert(pixels.end(), pixel.begin(), pixel.end());
        content.push_back(pixels);
    }
    auto model = MixedImage(side, side, types, content);
    RollUpByModel(polar, model->Handle(), roll);
    return model;
}

/// Makes the image and compares it with the model. All planes must be as wide as plane 0.
void ExpectMadeAsTold(void *polar, double start, double inner) {
    const double radius = static_cast<double>(SizeOf(polar).Height - 1) + inner;
    const auto side = static_cast<std::intptr_t>(std::floor(2 * radius + 0.5));
    const auto model = ModelOf(polar, {radius, radius, start, inner}, side);
    Handle result;
    ClearReports();
    ASSERT_TRUE(CreateInversePolarImage(polar, result.Out(), start, inner));
    ExpectNoReport();
    ASSERT_EQ(RefCount(result.Get()), 1u);
    ASSERT_NO_FATAL_FAILURE(ExpectEqualPlanes(result.Get(), model->Handle()));
}

/// The value of the corner of a square, which no ring reaches.
template <class T>
T Corner(TDataType type, std::size_t planes = 1) {
    const auto polar = FakeImage::Planar(30, 4, static_cast<std::intptr_t>(planes), type);
    Handle result;
    EXPECT_TRUE(CreateInversePolarImage(polar->Handle(), result.Out(), 0, 2));
    T value{};
    std::memcpy(&value, AccessOf(result.Get(), static_cast<std::intptr_t>(planes) - 1).At(0, 0), sizeof value);
    return value;
}

void ExpectSide(std::intptr_t height, double inner, std::intptr_t side) {
    const auto polar = FakeImage::Planar(30, height, 1, 0x8);
    Handle result;
    ASSERT_TRUE(CreateInversePolarImage(polar->Handle(), result.Out(), 0, inner)) << height << ", " << inner;
    EXPECT_EQ(SizeOf(result.Get()), (ImageSize{1, side, side})) << height << ", " << inner;
}

class InversePolarImageOfEachType : public testing::TestWithParam<TDataType> {};

INSTANTIATE_TEST_SUITE_P(TenPixelTypes, InversePolarImageOfEachType, testing::ValuesIn(PixelTypes), TypeName);

TEST_P(InversePolarImageOfEachType, IsTheBackgroundWithTheRingRolledUp) {
    std::uint32_t seed = GetParam();
    for (const TDataType overlay : {0u, DataTypeOverlay})
        for (const auto &[width, height] : {Extent{63, 12}, Extent{9, 7}, Extent{1, 1}, Extent{1, 5}, Extent{80, 1}})
            for (const auto &polar : MakeLayouts(width, height, 2, GetParam() | overlay, ++seed))
                for (const auto &[start, inner] : {std::pair{0.0, 5.0}, {-77.5, 2.25}, {300.0, 1.0}}) {
                    SCOPED_TRACE(testing::Message() << polar.Name << " of " << width << " x " << height << ", start "
                                                    << start << ", inner radius " << inner);
                    ASSERT_NO_FATAL_FAILURE(ExpectMadeAsTold(polar.Get(), start, inner));
                    ASSERT_EQ(RefCount(polar.Get()), 1u);
                }
}

} // namespace

TEST(CreateInversePolarImage, SidesAreTwiceTheRadiusOfTheHeightLessOne) {
    ExpectSide(12, 10, 42);
    ExpectSide(12, 0, 22);
    ExpectSide(5, 0.25, 9);
    ExpectSide(5, 0.2, 8);
    ExpectSide(1, 0.5, 1);
    ExpectSide(12, -10.5, 1);
    ExpectSide(12, -10, 2);
}

TEST(CreateInversePolarImage, ASideOfZeroTakesTheSizeOfTheSource) {
    const auto polar = FakeImage::Planar(30, 4, 2, 0x20);
    for (const double inner : {-3.0, -3.25, -2.875}) { // 2 R rounds to 0
        Handle result;
        ASSERT_TRUE(CreateInversePolarImage(polar->Handle(), result.Out(), 0, inner)) << inner;
        EXPECT_EQ(SizeOf(result.Get()), (ImageSize{2, 30, 4})) << inner;
        EXPECT_EQ(ValuesOf<std::uint32_t>(PixelBytes(result.Get(), 1)).back(), 0x7FFFFFFFu) << "it is filled as well";
    }
}

TEST(CreateInversePolarImage, ShowsTheBackgroundOfItsTypeOutsideTheRing) {
    EXPECT_EQ(Corner<std::uint8_t>(0x8), 127);
    EXPECT_EQ(Corner<std::int8_t>(0x108), 0);
    EXPECT_EQ(Corner<std::uint16_t>(0x10), 32767);
    EXPECT_EQ(Corner<std::int16_t>(0x110), 0);
    EXPECT_EQ(Corner<std::uint32_t>(0x20), 0x7FFFFFFFu);
    EXPECT_EQ(Corner<std::int32_t>(0x120), 0);
    EXPECT_EQ(Corner<std::int64_t>(0x140), 0);
    EXPECT_EQ(Corner<float>(0x220), 0.0F);
    EXPECT_EQ(Corner<double>(0x240), 0.0);
    EXPECT_EQ(Corner<std::uint8_t>(0x408), 127);
    EXPECT_EQ(Corner<std::uint8_t>(0x8, 4), 127);
}

TEST(CreateInversePolarImage, TheBackgroundOf64BitsUnsignedIsTwoToThe63) {
    EXPECT_EQ(Corner<std::uint64_t>(0x40), std::uint64_t{1} << 63);
    EXPECT_EQ(Corner<std::uint64_t>(0x440), std::uint64_t{1} << 63);
}

TEST(CreateInversePolarImage, TheCentreIsNotWrittenEither) {
    const auto polar = PlainImage(30, 4, 0x8, {PlaneBytes(120, 7)});
    Handle result;
    ASSERT_TRUE(CreateInversePolarImage(polar->Handle(), result.Out(), 0, 4)); // radii 4 to 6 around (7, 7)
    ASSERT_EQ(SizeOf(result.Get()), (ImageSize{1, 14, 14}));
    const PlaneBytes pixels = PixelBytes(result.Get(), 0);
    const auto row = [&](std::ptrdiff_t y) {
        return PlaneBytes(pixels.begin() + y * 14, pixels.begin() + (y + 1) * 14);
    };
    EXPECT_EQ(row(7), (PlaneBytes{127, 7, 7, 7, 127, 127, 127, 127, 127, 127, 127, 7, 7, 7}));
    EXPECT_EQ(row(0), PlaneBytes(14, 127));
}

TEST(CreateInversePolarImage, PlaneZeroTellsHowTheBackgroundOfAllPlanesIsStored) {
    const std::vector<std::vector<TDataType>> mixed{{0x108, 0x8},  {0x8, 0x108},  {0x220, 0x20, 0x120},
                                                    {0x20, 0x220}, {0x110, 0x10}, {0x140, 0x40, 0x240},
                                                    {0x240, 0x40}, {0x408, 0x8}};
    for (const auto &types : mixed) {
        std::vector<PlaneBytes> content;
        for (const TDataType type : types)
            content.push_back(RandomPlanes(40 * 6, 1, type, type, Content::Tame)[0]);
        const auto polar = MixedImage(40, 6, types, content);
        SCOPED_TRACE(testing::PrintToString(types));
        ExpectMadeAsTold(polar->Handle(), 20, 3);
        EXPECT_EQ(polar->Count(), 1);
    }
}

TEST(CreateInversePolarImage, RollsUpPlanesOfOtherWidthsAsWell) {
    const std::vector<TDataType> types{0x8, 0x10, 0x240};
    std::vector<PlaneBytes> content;
    for (const TDataType type : types)
        content.push_back(RandomPlanes(94 * 12, 1, type, type, Content::Tame)[0]);
    const auto polar = MixedImage(94, 12, types, content);
    Handle result;
    ASSERT_TRUE(CreateInversePolarImage(polar->Handle(), result.Out(), 0, 10));
    ASSERT_EQ(SizeOf(result.Get()), (ImageSize{3, 42, 42}));
    const auto model = ModelOf(polar->Handle(), {21, 21, 0, 10}, 42);
    for (std::intptr_t plane = 0; plane < 3; ++plane) {
        ASSERT_EQ(TypeOf(result.Get(), plane), types[static_cast<std::size_t>(plane)]);
        const RolledRing ring({3, 94, 12}, {21, 21, 0, 10});
        const PlaneAccess made = AccessOf(result.Get(), plane), told = AccessOf(model->Handle(), plane);
        for (std::int32_t y = 0; y < 42; ++y)
            for (std::int32_t x = 0; x < 42; ++x)
                ASSERT_TRUE(!ring.PositionOf(x, y) ||
                            std::memcmp(made.At(x, y), told.At(x, y), PixelSize(TypeOf(result.Get(), plane))) == 0)
                    << "plane " << plane << ", pixel " << x << ", " << y;
    }
}

TEST(CreateInversePolarImage, GivesPlanesOfOtherWidthsTheSameBackgroundAsImagesOfOneType) {
    const std::vector<TDataType> types{0x8, 0x40, 0x10, 0x220};
    std::vector<PlaneBytes> content;
    for (const TDataType type : types)
        content.push_back(RandomPlanes(40 * 6, 1, type, type, Content::Tame)[0]);
    const auto polar = MixedImage(40, 6, types, content);
    Handle result;
    ASSERT_TRUE(CreateInversePolarImage(polar->Handle(), result.Out(), 0, 10));
    const auto corner = [&](std::intptr_t plane, auto value) {
        std::memcpy(&value, AccessOf(result.Get(), plane).At(0, 0), sizeof value);
        return value;
    };
    EXPECT_EQ(corner(0, std::uint8_t{}), 127u);
    EXPECT_EQ(corner(1, std::uint64_t{}), std::uint64_t{1} << 63);
    EXPECT_EQ(corner(2, std::uint16_t{}), 32767u);
    EXPECT_EQ(corner(3, 1.0F), 0.0F);
}

TEST(CreateInversePolarImage, GivesTheIdentityAsCoordinateSystemAndLeavesTheSourceAlone) {
    const auto polar = FakeImage::Planar(30, 4, 1, 0x8);
    polar->Coordinates = SkewedMap;
    const auto before = polar->Pixels;
    Handle result;
    ASSERT_TRUE(CreateInversePolarImage(polar->Handle(), result.Out(), 0, 2));
    TCoordinateMap map{};
    ASSERT_EQ(ImageInterface(result.Get())->GetCoordinateMap(&map), 0);
    EXPECT_TRUE(SameMap(map, IdentityMap));
    EXPECT_EQ(polar->Pixels, before);
    EXPECT_EQ(polar->Count(), 1);
    EXPECT_EQ(RefCount(result.Get()), 1u);
}

TEST(CreateInversePolarImage, BringsBackAnUnrolledRing) {
    const auto source = RealImage(101, 101, [](double x, double y) { return 3 * x + 5 * y; });
    Handle polar, back;
    ASSERT_TRUE(CreatePolarImage(source->Handle(), polar.Out(), 50, 50, 0, 20, 40));
    ASSERT_TRUE(CreateInversePolarImage(polar.Get(), back.Out(), 0, 20));
    ASSERT_EQ(SizeOf(back.Get()), (ImageSize{1, 82, 82}));
    const auto values = ValuesOf<double>(PixelBytes(back.Get(), 0));
    std::intptr_t compared = 0;
    for (std::intptr_t y = 0; y < 82; ++y)
        for (std::intptr_t x = 0; x < 82; ++x) {
            const auto dx = static_cast<double>(x - 41), dy = static_cast<double>(y - 41);
            const double radius = std::hypot(dx, dy), shown = (radius - 1) / radius; // one row farther out
            if (radius < 20.001 || radius > 39.999 || (dx > 0 && dy <= 0 && dy > -3))
                continue;
            ASSERT_NEAR(values[static_cast<std::size_t>(y * 82 + x)], 3 * (50 + dx * shown) + 5 * (50 + dy * shown),
                        0.05);
            ++compared;
        }
    EXPECT_GT(compared, 3000);
}

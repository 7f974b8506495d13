// Fills of areas where something is odd: planes of other types than plane 0, areas without numbers or outside, images
// that refuse, pixels at the edge of readable memory.
#include "AreaOperations.h"
#include "Scan/AreaModel.h"

namespace {

using namespace TestSupport;

constexpr TArea Inside{1, 0, 3, 0, 1, 2};
constexpr std::int64_t AWord = 0x1122334455667788;

using Fill = std::function<std::int32_t(void *image, std::intptr_t plane, const TArea &area)>;
struct NamedFill {
    const char *Name;
    Fill Call;
};
const NamedFill Fills[] = {
    {"InitializeImageArea",
     [](void *image, std::intptr_t plane, const TArea &area) { return InitializeImageArea(image, plane, 7, area); }},
    {"InitializeImageAreaEx", [](void *image, std::intptr_t plane, const TArea &area) {
         return InitializeImageAreaEx(image, plane, 7.5, area);
     }}};

/// Planes one behind the other, each with room for pixels of 8 bytes.
std::unique_ptr<FakeImage> Mixed(const std::vector<TDataType> &types) {
    auto image = std::make_unique<FakeImage>(5, 4, types.size() * 160);
    for (std::size_t byte = 0; byte < image->Pixels.size(); ++byte)
        image->Pixels[byte] = static_cast<std::uint8_t>(byte * 7 + 1);
    for (std::size_t plane = 0; plane < types.size(); ++plane) {
        const auto size = static_cast<std::intptr_t>(PixelSize(types[plane]));
        image->AddPlane(
            image->Pixels.data() + plane * 160, types[plane], [=](auto x) { return x * size; },
            [=](auto y) { return 5 * y * size; });
    }
    return image;
}

void ExpectFailure(const NamedFill &fill, void *image, std::intptr_t plane, std::uint32_t code) {
    ClearReports();
    EXPECT_EQ(fill.Call(image, plane, Inside), 0);
    ExpectOneReport(code, fill.Name);
}

} // namespace

TEST(InitializeImageAreaFailures, HandlesWithoutAnImageAreReported) {
    for (const NamedFill &fill : Fills) {
        ExpectFailure(fill, nullptr, 0, ErrNotAnImage);
        for (const ForeignHandle &foreign : ForeignHandles()) {
            ExpectFailure(fill, foreign.Get(), 0, ErrNotAnImage);
            EXPECT_EQ(foreign.Count(), 1);
        }
    }
}

TEST(InitializeImageAreaFailures, PlanesOutOfRangeAreReported) {
    for (const NamedFill &fill : Fills)
        for (const TDataType type : {0x8u, 0x18u}) { // a type that is refused comes second
            const auto image = FakeImage::Planar(5, 4, 2, type);
            for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{2}, std::intptr_t{1} << 32,
                                              std::numeric_limits<std::intptr_t>::min()})
                ExpectFailure(fill, image->Handle(), plane, ErrPlaneIndex);
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(InitializeImageAreaFailures, DataTypesThatAreNoneOfTheTenAreReported) {
    for (const NamedFill &fill : Fills)
        for (const TDataType type :
             {0x18u, 0x0u, 0x28u, 0x30u, 0x38u, 0x80u, 0x208u, 0x210u, 0x218u, 0x280u, 0x118u}) {
            const auto image = FakeImage::Planar(5, 4, 1, type);
            ExpectFailure(fill, image->Handle(), 0, ErrDataType);
            EXPECT_EQ(image->Pixels, PlaneBytes(image->Pixels.size()));
        }
}

TEST(InitializeImageAreaFailures, OtherFlagsDoNotChangeThePixelType) {
    for (const auto &[type, plain] : {std::pair<TDataType, TDataType>{0x408, 0x8},
                                      {0x510, 0x110},
                                      {0x840, 0x40},
                                      {0xA40, 0x240},
                                      {0x320, 0x220},
                                      {0x7, 0x8},
                                      {0xC, 0x10}}) {
        const auto image = Mixed({type}), twin = Mixed({type});
        EXPECT_EQ(InitializeImageArea(image->Handle(), 0, AWord, Inside), 1) << type;
        FillByModel(twin->Handle(), 0, Inside, StoredBytes(plain, AWord));
        EXPECT_EQ(image->Pixels, twin->Pixels) << type;
        EXPECT_EQ(InitializeImageAreaEx(image->Handle(), 0, -3.5, Inside), 1) << type;
        FillByModel(twin->Handle(), 0, Inside, StoredBytes(plain, -3.5));
        EXPECT_EQ(image->Pixels, twin->Pixels) << type;
    }
}

TEST(InitializeImageAreaFailures, ImagesThatRefuseATypeOrATableAreReported) {
    for (const NamedFill &fill : Fills)
        for (const TDataType type : TenPixelTypes) {
            const auto image = FakeImage::Planar(5, 4, 1, type);
            image->Fails.DatatypeStatus = StatusBadPlane;
            ExpectFailure(fill, image->Handle(), 0, ErrGeneral);
            image->Fails.DatatypeStatus = 0;
            image->Fails.VPAStatus = StatusBadPlane;
            ExpectFailure(fill, image->Handle(), 0, ErrGeneral);
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(InitializeImageAreaFailures, ExceptionsOfAnImagePassOnAndReleaseIt) {
    for (const NamedFill &fill : Fills)
        for (const char *operation : {"GetImageDimensions", "GetPlaneDatatype", "GetPlaneVPA"}) {
            const auto image = FakeImage::Planar(5, 4, 1, 8);
            image->Fails.OnOperation = [&] {
                if (image->Calls().back() == operation)
                    throw std::runtime_error("no operation");
            };
            ClearReports();
            EXPECT_THROW(fill.Call(image->Handle(), 0, Inside), std::runtime_error) << operation;
            ExpectNoReport();
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(InitializeImageArea, StoresAsPlaneZeroDoesInWiderPlanes) {
    for (const TDataType type : {0x8u, 0x108u, 0x10u, 0x110u, 0x20u, 0x120u})
        for (const TDataType wider : {0x8u, 0x110u, 0x18u, 0x20u, 0x220u, 0x140u, 0x240u, 0x30u}) {
            if (PixelSize(wider) < PixelSize(type))
                continue;
            const auto image = Mixed({type, wider}), twin = Mixed({type, wider});
            ClearReports();
            EXPECT_EQ(InitializeImageArea(image->Handle(), 1, AWord, Inside), 1);
            ExpectNoReport();
            FillByModel(twin->Handle(), 1, Inside, LowBytes(AWord, PixelSize(type)));
            EXPECT_EQ(image->Pixels, twin->Pixels) << type << " into " << wider;
        }
}

TEST(InitializeImageArea, RefusesPlanesNarrowerThanPlaneZero) {
    for (const auto &[type, narrower] : {std::pair<TDataType, TDataType>{0x10, 0x8},
                                         {0x110, 0x108},
                                         {0x20, 0x8},
                                         {0x20, 0x10},
                                         {0x120, 0x18},
                                         {0x120, 0x110}}) {
        const auto image = Mixed({type, narrower}), twin = Mixed({type, narrower});
        ExpectFailure(Fills[0], image->Handle(), 1, ErrNotPossible);
        EXPECT_EQ(image->Pixels, twin->Pixels);
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(InitializeImageArea(image->Handle(), 0, 1, Inside), 1) << "plane 0 itself always fits";
    }
}

TEST(InitializeImageArea, StoresNothingWhereA64BitOrFloatPlaneZeroIsOfAnotherWidth) {
    for (const TDataType type : {0x40u, 0x140u, 0x220u, 0x240u})
        for (const TDataType other : {0x8u, 0x10u, 0x18u, 0x20u, 0x220u, 0x40u, 0x240u}) {
            const auto image = Mixed({type, other}), twin = Mixed({type, other});
            ClearReports();
            EXPECT_EQ(InitializeImageArea(image->Handle(), 1, AWord, Inside), 1);
            ExpectNoReport();
            if (PixelSize(type) == PixelSize(other))
                FillByModel(twin->Handle(), 1, Inside, StoredBytes(type, AWord));
            EXPECT_EQ(image->Pixels, twin->Pixels) << type << " into " << other;
        }
}

TEST(InitializeImageAreaEx, StoresNothingInPlanesOfAnotherWidth) {
    for (const TDataType type : TenPixelTypes)
        for (const TDataType other : {0x8u, 0x110u, 0x18u, 0x20u, 0x220u, 0x140u, 0x240u}) {
            const auto image = Mixed({type, other}), twin = Mixed({type, other});
            ClearReports();
            EXPECT_EQ(InitializeImageAreaEx(image->Handle(), 1, 1234.75, Inside), 1);
            ExpectNoReport();
            if (PixelSize(type) == PixelSize(other))
                FillByModel(twin->Handle(), 1, Inside, StoredBytes(type, 1234.75));
            EXPECT_EQ(image->Pixels, twin->Pixels) << type << " into " << other;
        }
}

TEST(InitializeImageArea, SucceedsWithoutAPixelForAreasOutsideOrWithoutNumbers) {
    constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
    for (const NamedFill &fill : Fills)
        for (const TDataType type : TenPixelTypes)
            for (const TArea &area :
                 {TArea{NaN, 0, 1, 0, 0, 1}, TArea{0, 0, 1e300, 0, 0, 1}, TArea{0, 0, 1, 0, 0, -1e19},
                  TArea{0, 0, 2147483648.0, 0, 0, 1}, TArea{20, 20, 25, 20, 20, 25}, TArea{-1, 0, 3, 0, -1, 0},
                  TArea{0, 0, 3, 0, 0, 32768}}) {
                const auto image = Mixed({type}), twin = Mixed({type});
                ClearReports();
                EXPECT_EQ(fill.Call(image->Handle(), 0, area), 1);
                ExpectNoReport();
                EXPECT_EQ(image->Pixels, twin->Pixels) << Told(area);
            }
}

TEST(InitializeImageArea, TakesTheAreaInPixelsWhateverTheCoordinateSystem) {
    for (const NamedFill &fill : Fills) {
        const auto image = Mixed({0x8}), twin = Mixed({0x8});
        image->Coordinates = {2, 1, {0, 1, -1, 0}};
        EXPECT_EQ(fill.Call(image->Handle(), 0, Inside), 1);
        FillByModel(twin->Handle(), 0, Inside, {7});
        EXPECT_EQ(image->Pixels, twin->Pixels);
        EXPECT_EQ(image->CallsOf("GetCoordinateMap"), 0);
    }
}

TEST(InitializeImageArea, FillsVeryLongAreasSoon) {
    constexpr double end = 2147483647.0;
    for (const NamedFill &fill : Fills)
        for (const TDataType type : TenPixelTypes) {
            const auto image = FakeImage::Planar(5, 4, 1, type);
            EXPECT_EQ(fill.Call(image->Handle(), 0, {0, 0, end, 0, 0, 3}), 1);
            PlaneBytes told;
            const PlaneBytes pixel = StoredBytes(type, fill.Name == Fills[0].Name ? 7.0 : 7.5);
            for (int i = 0; i < 20; ++i)
                told.insert(told.end(), pixel.begin(), pixel.end());
            EXPECT_EQ(image->Pixels, told);
        }
}

TEST(InitializeImageArea, WritesNothingOutsideThePixels) {
    AreaRandom random(2);
    for (const TDataType type : TenPixelTypes)
        for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const std::size_t bytes = 37 * 9 * PixelSize(type);
            const FencedBlock block(bytes, fence);
            const auto size = static_cast<std::intptr_t>(PixelSize(type));
            Handle image;
            ASSERT_EQ(CreateImageFromPointer(block.Data(), bytes, 37, 9, 1, type, size, 37 * size, 37 * 9 * size,
                                             nullptr, nullptr, nullptr, image.Out()),
                      0);
            const auto twin = FakeImage::Planar(37, 9, 1, type);
            for (std::int64_t round = 1; round < 300; ++round) {
                const TArea area = random.Area(37, 9);
                ASSERT_EQ(InitializeImageArea(image.Get(), 0, round, area), 1);
                FillByModel(twin->Handle(), 0, area, StoredBytes(type, round));
                ASSERT_EQ(PixelBytes(image.Get(), 0), twin->Pixels) << Told(area);
            }
        }
}

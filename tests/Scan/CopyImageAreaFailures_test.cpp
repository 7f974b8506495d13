// What copies of areas refuse, and that they give references back whatever happens.
#include "AreaOperations.h"
#include "Scan/AreaModel.h"

namespace {

using namespace TestSupport;

constexpr TArea Inside{1, 0, 3, 0, 1, 2};

void ExpectFailure(void *source, void *target, std::intptr_t sourcePlane, std::intptr_t targetPlane,
                   std::uint32_t code) {
    ClearReports();
    EXPECT_EQ(CopyImageArea(source, target, sourcePlane, targetPlane, 0, 0, Inside), 0);
    ExpectOneReport(code, "CopyImageArea");
}

/// A copy from a plane of one type to a plane of another, in images whose other plane has the other type.
void ExpectTypesRefused(TDataType from, TDataType to, std::uint32_t code) {
    FakeImage source(5, 4, 1000), target(5, 4, 1000);
    for (const TDataType type : {from, to})
        source.AddPlane(
            source.Pixels.data(), type, [](auto x) { return 16 * x; }, [](auto y) { return 80 * y; });
    for (const TDataType type : {from, to})
        target.AddPlane(
            target.Pixels.data(), type, [](auto x) { return 16 * x; }, [](auto y) { return 80 * y; });
    source.Pixels.assign(1000, 9);
    ExpectFailure(source.Handle(), target.Handle(), 0, 1, code);
    EXPECT_EQ(target.Pixels, PlaneBytes(1000)) << from << " to " << to;
    EXPECT_EQ(source.Count() + target.Count(), 2);
}

} // namespace

TEST(CopyImageAreaFailures, HandlesWithoutAnImageAreReported) {
    const auto image = FakeImage::Planar(5, 4, 1, 8);
    ExpectFailure(nullptr, image->Handle(), 0, 0, ErrNotAnImage);
    ExpectFailure(image->Handle(), nullptr, 0, 0, ErrNotAnImage);
    ExpectFailure(nullptr, nullptr, 0, 0, ErrNotAnImage);
    for (const ForeignHandle &foreign : ForeignHandles()) {
        ExpectFailure(foreign.Get(), image->Handle(), 0, 0, ErrNotAnImage);
        ExpectFailure(image->Handle(), foreign.Get(), -1, 7, ErrNotAnImage);
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CopyImageAreaFailures, PlanesOutOfRangeOfTheirOwnImageAreReported) {
    const auto one = FakeImage::Planar(5, 4, 1, 0x18), three = FakeImage::Planar(5, 4, 3, 0x18);
    constexpr auto lowest = std::numeric_limits<std::intptr_t>::min(),
                   highest = std::numeric_limits<std::intptr_t>::max();
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{3}, std::intptr_t{1} << 32, lowest, highest}) {
        ExpectFailure(one->Handle(), three->Handle(), 0, plane, ErrPlaneIndex);
        ExpectFailure(three->Handle(), one->Handle(), plane, 0, ErrPlaneIndex);
    }
    ExpectFailure(one->Handle(), three->Handle(), 1, 1, ErrPlaneIndex);
    ExpectFailure(three->Handle(), one->Handle(), 1, 1, ErrPlaneIndex);
    ExpectFailure(three->Handle(), three->Handle(), 3, 3, ErrPlaneIndex);
    EXPECT_EQ(one->Count() + three->Count(), 2);
}

TEST(CopyImageAreaFailures, DataTypesThatDifferInAnyBitAreReported) {
    for (const auto &[from, to] : {std::pair<TDataType, TDataType>{0x8, 0x108},
                                   {0x408, 0x8},
                                   {0x8, 0x408},
                                   {0x20, 0x220},
                                   {0x8, 0x10},
                                   {0x40, 0x840},
                                   {0x18, 0x8},
                                   {0x8, 0x18},
                                   {0x10008, 0x8},
                                   {0x7, 0x8}})
        ExpectTypesRefused(from, to, ErrNotPossible);
}

TEST(CopyImageAreaFailures, DataTypesThatAreNoneOfTheTenAreReported) {
    for (const TDataType type : {0x18u, 0x0u, 0x28u, 0x30u, 0x38u, 0x80u, 0x208u, 0x210u, 0x218u, 0x280u, 0x118u})
        ExpectTypesRefused(type, type, ErrDataType);
}

TEST(CopyImageAreaFailures, EqualWordsWithOtherFlagsAreCopiedByTheirWidth) {
    for (const TDataType type : {0x408u, 0x510u, 0x840u, 0xA40u, 0x320u, 0x7u, 0xCu}) {
        const auto source = FakeImage::Planar(5, 4, 1, type), target = FakeImage::Planar(5, 4, 1, type);
        std::fill(source->Pixels.begin(), source->Pixels.end(), std::uint8_t{0xA5});
        ClearReports();
        EXPECT_EQ(CopyImageArea(source->Handle(), target->Handle(), 0, 0, 0, 0, {0, 0, 4, 0, 0, 3}), 1);
        ExpectNoReport();
        EXPECT_EQ(target->Pixels, source->Pixels) << type;
    }
}

TEST(CopyImageAreaFailures, ImagesThatRefuseATypeOrATableAreReported) {
    for (const bool second : {false, true}) {
        const auto source = FakeImage::Planar(5, 4, 1, 8), target = FakeImage::Planar(5, 4, 1, 8);
        auto &fails = (second ? target : source)->Fails;
        fails.DatatypeStatus = StatusBadPlane;
        ExpectFailure(source->Handle(), target->Handle(), 0, 0, ErrGeneral);
        fails.DatatypeStatus = 0;
        fails.VPAStatus = StatusBadPlane;
        ExpectFailure(source->Handle(), target->Handle(), 0, 0, ErrGeneral);
        EXPECT_EQ(source->Count() + target->Count(), 2);
    }
}

TEST(CopyImageAreaFailures, ExceptionsOfAnImagePassOnAndReleaseBoth) {
    for (const bool second : {false, true})
        for (const std::string operation : {"GetImageDimensions", "GetPlaneDatatype", "GetPlaneVPA"}) {
            const auto source = FakeImage::Planar(5, 4, 1, 8), target = FakeImage::Planar(5, 4, 1, 8);
            FakeImage &image = second ? *target : *source;
            image.Fails.OnOperation = [&] {
                if (image.Calls().back() == operation)
                    throw std::runtime_error("no operation");
            };
            ClearReports();
            EXPECT_THROW(CopyImageArea(source->Handle(), target->Handle(), 0, 0, 0, 0, Inside), std::runtime_error);
            ExpectNoReport();
            EXPECT_EQ(source->Count() + target->Count(), 2);
            EXPECT_EQ(target->Pixels, PlaneBytes(20));
        }
}

TEST(CopyImageArea, TakesTheAreaInPixelsWhateverTheCoordinateSystem) {
    const auto source = FakeImage::Planar(5, 4, 1, 8), target = FakeImage::Planar(5, 4, 1, 8);
    std::fill(source->Pixels.begin(), source->Pixels.end(), std::uint8_t{3});
    source->Coordinates = target->Coordinates = {2, 1, {0, 1, -1, 0}};
    EXPECT_EQ(CopyImageArea(source->Handle(), target->Handle(), 0, 0, 0, 0, {0, 0, 4, 0, 0, 3}), 1);
    EXPECT_EQ(target->Pixels, source->Pixels);
    EXPECT_EQ(source->CallsOf("GetCoordinateMap") + target->CallsOf("GetCoordinateMap"), 0);
}

TEST(CopyImageArea, ReadsAndWritesNothingOutsideThePixels) {
    AreaRandom random(6);
    for (const TDataType type : TenPixelTypes)
        for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const auto size = static_cast<std::intptr_t>(PixelSize(type));
            const std::size_t bytes = 37 * 9 * PixelSize(type);
            const FencedBlock blocks[2] = {{bytes, fence}, {bytes, fence}};
            Handle images[2];
            for (int i = 0; i < 2; ++i)
                ASSERT_EQ(CreateImageFromPointer(blocks[i].Data(), bytes, 37, 9, 1, type, size, 37 * size,
                                                 37 * 9 * size, nullptr, nullptr, nullptr, images[i].Out()),
                          0);
            for (std::size_t byte = 0; byte < bytes; ++byte)
                blocks[0].Data()[byte] = static_cast<std::uint8_t>(byte * 31 + byte / 256 + 1);
            const auto twin = FakeImage::Planar(37, 9, 1, type);
            for (int round = 0; round < 300; ++round) {
                AreaCopy copy{images[0].Get(),   images[1].Get(),   0, 0, random.Draw(0, 30),
                              random.Draw(0, 8), random.Area(37, 9)};
                const std::int32_t result =
                    CopyImageArea(copy.Source, copy.Target, 0, 0, copy.TargetX, copy.TargetY, copy.Area);
                copy.Target = twin->Handle();
                ASSERT_EQ(result, CopyByModel(copy));
                ASSERT_EQ(PixelBytes(images[1].Get(), 0), twin->Pixels) << Told(copy.Area);
            }
        }
}

TEST(CopyImageAreaFailures, DataTypesAreComparedAndLookedAtBeforeTables) {
    const auto bytes = FakeImage::Planar(5, 4, 1, 8), words = FakeImage::Planar(5, 4, 1, 0x10),
               triples = FakeImage::Planar(5, 4, 1, 0x18);
    for (const auto *image : {&bytes, &words, &triples})
        (*image)->Fails.VPAStatus = StatusBadPlane;
    ExpectFailure(bytes->Handle(), words->Handle(), 0, 0, ErrNotPossible);
    ExpectFailure(triples->Handle(), triples->Handle(), 0, 0, ErrDataType);
    ExpectFailure(bytes->Handle(), bytes->Handle(), 0, 0, ErrGeneral);
}

// Rotated views: which pixel stands where, every table entry, what is shared, and what lives how long.
// How a source that fails is met stands in RotatedImageMapFailure_test.cpp.
#include "Image/ViewSupport.h"
#include "ImageCoordinates.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"

#include <thread>

namespace {

using namespace TestSupport;

constexpr std::uint32_t Rotations[] = {1, 2, 3};
constexpr TCoordinateMap SampleMap{10.0, 20.0, {2.0, 1.0, -1.0, 3.0}};

Handle Rotated(void *image, std::uint32_t rotation) {
    Handle view;
    EXPECT_TRUE(CreateRotatedImageMap(image, rotation, view.Out())) << "rotation " << rotation;
    return view;
}

/// Offsets of the two axes of a turned view.
struct Axes {
    Offsets X;
    Offsets Y;
};

Axes TurnedAxes(const Axes &source, std::uint32_t rotation) {
    const Offsets backX(source.X.rbegin(), source.X.rend());
    const Offsets backY(source.Y.rbegin(), source.Y.rend());
    switch (rotation) {
    case 1:
        return {source.Y, backX};
    case 2:
        return {backX, backY};
    default:
        return {backY, source.X};
    }
}

/// The entries behind the guards of the shorter axis are as the table was made: zero.
void ExpectZeroBehind(const VPAEntry *table, std::intptr_t VPAEntry::*axis, std::intptr_t count,
                      std::intptr_t longer) {
    for (std::intptr_t i = count + 4; i < longer + 4; ++i)
        EXPECT_EQ(table[i].*axis, 0) << "entry " << i;
}

void ExpectTurnedContent(const NamedImage &image, std::intptr_t width, std::intptr_t height, TDataType type,
                         std::uint32_t rotation) {
    const Handle view = Rotated(image.Get(), rotation);
    const auto planes = static_cast<std::intptr_t>(image.Content.size());
    const bool swaps = rotation != 2;
    EXPECT_EQ(SizeOf(view.Get()), (ImageSize{planes, swaps ? height : width, swaps ? width : height}));
    for (std::intptr_t plane = 0; plane < planes; ++plane) {
        const Raster source{width, height, PixelSize(type), image.Content[static_cast<std::size_t>(plane)]};
        ASSERT_EQ(PixelBytes(view.Get(), plane), Turned(source, rotation).Bytes)
            << image.Name << ", " << width << " x " << height << ", type " << type << ", plane " << plane;
    }
}

/// Three planes of their own bases; the table of each as told.
std::unique_ptr<FakeImage> ThreePlanes(const std::vector<Axes> &tables) {
    auto image = std::make_unique<FakeImage>(static_cast<std::intptr_t>(tables[0].X.size()),
                                             static_cast<std::intptr_t>(tables[0].Y.size()), 3);
    for (std::size_t plane = 0; plane < tables.size(); ++plane)
        image->AddPlane(image->Pixels.data() + plane, 8, EntriesOf(tables[plane].X), EntriesOf(tables[plane].Y));
    return image;
}

std::size_t DistinctTables(void *image) {
    std::vector<VPAEntry *> tables;
    for (std::intptr_t plane = 0; plane < SizeOf(image).Planes; ++plane)
        tables.push_back(AccessOf(image, plane).Table);
    std::sort(tables.begin(), tables.end());
    return static_cast<std::size_t>(std::unique(tables.begin(), tables.end()) - tables.begin());
}

} // namespace

TEST(CreateRotatedImageMap, TurnsA3By2ImageCounterClockwise) {
    std::uint8_t pixels[] = {10, 11, 12, 20, 21, 22};
    Handle image;
    ASSERT_EQ(CreateImageFromPointer(pixels, 6, 3, 2, 1, 8, 1, 3, 0, nullptr, nullptr, nullptr, image.Out()), 0);
    const Handle counterClockwise = Rotated(image.Get(), VPATRotation90CounterClockwise);
    EXPECT_EQ(SizeOf(counterClockwise.Get()), (ImageSize{1, 2, 3}));
    EXPECT_EQ(PixVal(counterClockwise.Get(), 0, 0, 0), 12) << "pixel (0, 0) is the source's pixel (2, 0)";
    EXPECT_EQ(PixelBytes(counterClockwise.Get(), 0), (PlaneBytes{12, 22, 11, 21, 10, 20}));
    EXPECT_EQ(PixelBytes(Rotated(image.Get(), VPATRotation180).Get(), 0), (PlaneBytes{22, 21, 20, 12, 11, 10}));
    EXPECT_EQ(PixelBytes(Rotated(image.Get(), VPATRotation90Clockwise).Get(), 0),
              (PlaneBytes{20, 10, 21, 11, 22, 12}));
}

TEST(CreateRotatedImageMap, TurnsEveryLayoutOfEveryPixelSize) {
    const TDataType types[] = {8, 12, 16 | DataTypeSigned, 24, 32 | DataTypeFloat, 64 | DataTypeFloat};
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1}, {1, 6}, {6, 1}, {3, 2}, {7, 9}};
    std::uint32_t seed = 100;
    for (const TDataType type : types)
        for (const auto &[width, height] : sizes)
            for (const NamedImage &image : MakeLayouts(width, height, 3, type, ++seed))
                for (const std::uint32_t rotation : Rotations)
                    ASSERT_NO_FATAL_FAILURE(ExpectTurnedContent(image, width, height, type, rotation));
}

TEST(CreateRotatedImageMap, OfRandomSizesAndPlaneCountsTurnsEveryLayout) {
    std::mt19937 random(41);
    for (std::uint32_t number = 0; number < 25; ++number) {
        const auto width = static_cast<std::intptr_t>(1 + random() % 20);
        const auto height = static_cast<std::intptr_t>(1 + random() % 20);
        const auto planes = static_cast<std::intptr_t>(1 + random() % 4);
        for (const NamedImage &image : MakeLayouts(width, height, planes, 8, number))
            for (const std::uint32_t rotation : Rotations)
                ASSERT_NO_FATAL_FAILURE(ExpectTurnedContent(image, width, height, 8, rotation)) << "case " << number;
    }
}

TEST(CreateRotatedImageMap, OfGenericImagesTurnsTheirPixels) {
    for (const std::intptr_t planes : {1, 2, 3}) {
        NamedImage image{"generic", RandomContent(5, 3, planes, 8, 42), nullptr, std::make_shared<Handle>()};
        ASSERT_TRUE(CreateGenericImage(planes, 5, 3, false, image.Owned->Out()));
        for (std::intptr_t plane = 0; plane < planes; ++plane)
            for (std::intptr_t i = 0; i < 15; ++i) {
                const std::uint64_t value =
                    image.Content[static_cast<std::size_t>(plane)][static_cast<std::size_t>(i)];
                ASSERT_TRUE(SetPixVal(image.Get(), plane, i % 5, i / 5, &value));
            }
        for (const std::uint32_t rotation : Rotations)
            ASSERT_NO_FATAL_FAILURE(ExpectTurnedContent(image, 5, 3, 8, rotation));
    }
}

TEST(CreateRotatedImageMap, ComposesToTheSumOfTheTurns) {
    const Raster source{4, 3, 2, RandomContent(4, 3, 1, 16, 43)[0]};
    const auto image = FakeImage::Planar(4, 3, 1, 16);
    WriteContent(*image, {source.Bytes}, 4, 3, 16);
    for (const std::uint32_t first : Rotations)
        for (const std::uint32_t second : Rotations)
            for (const std::uint32_t third : Rotations) {
                const Handle one = Rotated(image->Handle(), first);
                const Handle two = Rotated(one.Get(), second);
                EXPECT_EQ(PixelBytes(two.Get(), 0), Turned(source, first + second).Bytes) << first << ", " << second;
                const Handle three = Rotated(two.Get(), third);
                EXPECT_EQ(PixelBytes(three.Get(), 0), Turned(source, first + second + third).Bytes)
                    << first << ", " << second << ", " << third;
            }
}

TEST(CreateRotatedImageMap, TwiceBy180AndThereAndBackGiveTheSourcesTables) {
    std::mt19937_64 random(44);
    const Axes axes{RandomOffsets(random, 6), RandomOffsets(random, 4)};
    const auto image = ThreePlanes({axes});
    for (const auto &[first, second] : {std::pair{2u, 2u}, std::pair{1u, 3u}, std::pair{3u, 1u}}) {
        const Handle view = Rotated(Rotated(image->Handle(), first).Get(), second);
        const VPAEntry *table = AccessOf(view.Get(), 0).Table;
        EXPECT_TRUE(AxisIs(table, &VPAEntry::XEntry, axes.X));
        EXPECT_TRUE(AxisIs(table, &VPAEntry::YEntry, axes.Y));
    }
}

TEST(CreateRotatedImageMap, WritesEveryTableEntryWithItsGuards) {
    std::mt19937_64 random(45);
    for (int number = 0; number < 60; ++number) {
        const auto width = static_cast<std::intptr_t>(1 + random() % 12);
        const auto height = static_cast<std::intptr_t>(1 + random() % 12);
        std::vector<Axes> tables;
        for (int plane = 0; plane < 3; ++plane)
            tables.push_back({RandomOffsets(random, width), RandomOffsets(random, height)});
        const auto image = ThreePlanes(tables);
        for (const std::uint32_t rotation : Rotations) {
            const Handle view = Rotated(image->Handle(), rotation);
            for (std::size_t plane = 0; plane < 3; ++plane) {
                const Axes expected = TurnedAxes(tables[plane], rotation);
                const PlaneAccess access = AccessOf(view.Get(), static_cast<std::intptr_t>(plane));
                EXPECT_EQ(access.Base, image->BaseOf(plane));
                ASSERT_TRUE(AxisIs(access.Table, &VPAEntry::XEntry, expected.X)) << "case " << number;
                ASSERT_TRUE(AxisIs(access.Table, &VPAEntry::YEntry, expected.Y)) << "case " << number;
                const std::intptr_t longer = std::max(width, height);
                ExpectZeroBehind(access.Table, &VPAEntry::XEntry, std::ssize(expected.X), longer);
                ExpectZeroBehind(access.Table, &VPAEntry::YEntry, std::ssize(expected.Y), longer);
            }
        }
    }
}

TEST(CreateRotatedImageMap, MakesOneTableForPlanesOfOneTable) {
    FakeImage image(3, 2, 18);
    image.AddPlane(
        image.Pixels.data() + 2, 8, [](auto i) { return i * 3; }, [](auto j) { return j * 9; });
    image.AddPlaneWithTableOf(0, image.Pixels.data() + 1, 8);
    image.AddPlaneWithTableOf(0, image.Pixels.data(), 8);
    for (const std::uint32_t rotation : Rotations) {
        const Handle view = Rotated(image.Handle(), rotation);
        EXPECT_EQ(DistinctTables(view.Get()), 1u);
        for (std::size_t plane = 0; plane < 3; ++plane)
            EXPECT_EQ(AccessOf(view.Get(), static_cast<std::intptr_t>(plane)).Base, image.BaseOf(plane));
    }
}

TEST(CreateRotatedImageMap, MakesOneTableForTablesOfEqualEntries) {
    const Axes axes{{5, 1, 7}, {2, 9}};
    const auto image = ThreePlanes({axes, axes, axes});
    ASSERT_NE(image->TableOf(0), image->TableOf(2));
    image->TableOf(1)[-1].XEntry = 77; // guards and the unused end of the shorter axis do not count
    image->TableOf(1)[2].YEntry = 78;
    image->TableOf(2)[6].XEntry = 79;
    for (const std::uint32_t rotation : Rotations) {
        const Handle view = Rotated(image->Handle(), rotation);
        EXPECT_EQ(DistinctTables(view.Get()), 1u);
        EXPECT_TRUE(AxisIs(AccessOf(view.Get(), 2).Table, &VPAEntry::XEntry, TurnedAxes(axes, rotation).X));
    }
}

TEST(CreateRotatedImageMap, MakesATablePerPlaneAsSoonAsOneEntryDiffers) {
    const Axes axes{{5, 1, 7}, {2, 9}};
    const Axes lastColumn{{5, 1, 8}, {2, 9}};
    const Axes lastRow{{5, 1, 7}, {2, 10}};
    for (const auto &tables :
         {std::vector{axes, axes, lastColumn}, std::vector{axes, axes, lastRow}, std::vector{axes, lastRow, axes}}) {
        const auto image = ThreePlanes(tables);
        for (const std::uint32_t rotation : Rotations) {
            const Handle view = Rotated(image->Handle(), rotation);
            EXPECT_EQ(DistinctTables(view.Get()), 3u);
            for (std::size_t plane = 0; plane < 3; ++plane) {
                const VPAEntry *table = AccessOf(view.Get(), static_cast<std::intptr_t>(plane)).Table;
                EXPECT_TRUE(AxisIs(table, &VPAEntry::XEntry, TurnedAxes(tables[plane], rotation).X));
                EXPECT_TRUE(AxisIs(table, &VPAEntry::YEntry, TurnedAxes(tables[plane], rotation).Y));
            }
        }
    }
}

TEST(CreateRotatedImageMap, TellsTheSourcesDataTypes) {
    FakeImage image(2, 1, 16);
    const TDataType types[] = {8 | DataTypeOverlay, 16 | DataTypeSigned, 32 | DataTypeFloat};
    for (const TDataType type : types)
        image.AddPlane(
            image.Pixels.data(), type, [](auto i) { return i * 4; }, [](auto) { return 0; });
    const Handle view = Rotated(image.Handle(), 3);
    for (std::intptr_t plane = 0; plane < 3; ++plane)
        EXPECT_EQ(ImageDatatype(view.Get(), plane), types[plane]);
    EXPECT_TRUE(HasOverlay(view.Get()));
}

TEST(CreateRotatedImageMap, CopiesTheCoordinateMapWithoutTurningIt) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    image->Coordinates = SampleMap;
    const Handle view = Rotated(image->Handle(), 1);
    TCoordinateMap map{};
    ASSERT_TRUE(GetImageCoordinates(view.Get(), &map));
    EXPECT_TRUE(SameMap(map, SampleMap));
    ASSERT_TRUE(SetImageOrigin(view.Get(), -1.0, -2.0));
    EXPECT_EQ(image->Coordinates.X, SampleMap.X) << "the source's map isn't touched";
    image->Coordinates.Y = 99.0;
    double x = 0.0;
    double y = 0.0;
    ASSERT_TRUE(GetImageOrigin(view.Get(), &x, &y));
    EXPECT_EQ(x, -1.0);
    EXPECT_EQ(y, -2.0) << "the view has a map of its own";
}

TEST(CreateRotatedImageMap, ShowsAWriteThroughTheViewInTheSource) {
    const auto image = FakeImage::Planar(3, 2, 2, 16);
    const Handle view = Rotated(image->Handle(), 1);
    const std::uint64_t value = 0xABCD;
    ASSERT_TRUE(SetPixVal(view.Get(), 1, 0, 0, &value));
    EXPECT_EQ(PixVal(image->Handle(), 1, 2, 0), 0xABCD);
    EXPECT_EQ(PixVal(image->Handle(), 0, 2, 0), 0) << "the other plane stays";
}

TEST(CreateRotatedImageMap, AsksItsSourceForNothingButTheDataTypeLater) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    const Handle view = Rotated(image->Handle(), 2);
    image->ClearCalls();
    EXPECT_EQ(SizeOf(view.Get()), (ImageSize{1, 3, 2}));
    EXPECT_NE(AccessOf(view.Get(), 0).Table, nullptr);
    EXPECT_TRUE(SetImageOrigin(view.Get(), 1.0, 1.0));
    EXPECT_TRUE(image->Calls().empty());
    EXPECT_EQ(ImageDatatype(view.Get(), 0), 8u);
    EXPECT_EQ(image->Calls(), std::vector<std::string>{"GetPlaneDatatype"});
}

TEST(CreateRotatedImageMap, HoldsOneReferenceOfItsSource) {
    const auto image = FakeImage::Planar(3, 2, 3, 8);
    for (const std::uint32_t rotation : Rotations) {
        void *view = nullptr;
        ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), rotation, &view));
        EXPECT_EQ(image->Count(), 2);
        EXPECT_EQ(RefCount(view), 1u);
        EXPECT_EQ(ShareImage(view), 2);
        EXPECT_EQ(ReleaseImage(view), 1);
        EXPECT_EQ(image->Count(), 2);
        EXPECT_TRUE(ReleaseObject(view));
        EXPECT_EQ(view, nullptr);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateRotatedImageMap, KeepsThePixelsWhenTheSourceIsReleasedFirst) {
    for (const PitchRule &rule : PitchRules(5, 4, 3, 16)) {
        const auto content = RandomContent(5, 4, 3, 16, 46);
        const NamedImage image = MakeExternal(rule, content, 5, 4, 16);
        const Handle outer = Rotated(Rotated(image.Get(), 1).Get(), 2); // the view between goes at once
        image.Owned->Reset();
        for (std::size_t plane = 0; plane < 3; ++plane)
            EXPECT_EQ(PixelBytes(outer.Get(), static_cast<std::intptr_t>(plane)),
                      Turned({5, 4, 2, content[plane]}, 3).Bytes)
                << image.Name;
    }
}

TEST(CreateRotatedImageMap, CountsReferencesOfManyThreads) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    const Handle view = Rotated(image->Handle(), 3);
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                ShareImage(view.Get());
                ReleaseImage(view.Get());
            }
        });
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(RefCount(view.Get()), 1u);
}

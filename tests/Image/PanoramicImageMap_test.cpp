// Joined views: which pixel stands where, every table entry, which tables can be joined, and what lives how long.
// Reports and refusals stand in PanoramicImageMapFailure_test.cpp.
#include "Image/ViewSupport.h"
#include "ImageCoordinates.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"

namespace {

using namespace TestSupport;

constexpr std::uint32_t Directions[] = {0, 1};
constexpr TCoordinateMap SampleMap{10.0, 20.0, {2.0, 1.0, -1.0, 3.0}};

Handle Panorama(void *first, void *second, std::uint32_t direction) {
    Handle view;
    EXPECT_TRUE(CreatePanoramicImageMap(first, second, direction, view.Out())) << "direction " << direction;
    return view;
}

/// A window of a caller's buffer of 8-bit rows.
Handle Window(std::uint8_t *pixels, std::intptr_t width, std::intptr_t height, std::intptr_t pitch) {
    Handle image;
    EXPECT_EQ(
        CreateImageFromPointer(pixels, 0, width, height, 1, 8, 1, pitch, 0, nullptr, nullptr, nullptr, image.Out()),
        0);
    return image;
}

/// True when one axis of both tables has the same steps.
bool SameSteps(const VPAEntry *a, const VPAEntry *b, std::intptr_t VPAEntry::*axis, std::intptr_t count) {
    for (std::intptr_t i = 1; i < count; ++i)
        if (a[i].*axis - a[i - 1].*axis != b[i].*axis - b[i - 1].*axis)
            return false;
    return true;
}

/// Whether one table per plane can serve both images, found from the tables alone.
bool Joinable(const NamedImage &first, const NamedImage &second, std::uint32_t direction, std::intptr_t count) {
    bool joinable = true;
    for (std::intptr_t plane = 0; plane < std::ssize(first.Content); ++plane)
        joinable = joinable && SameSteps(AccessOf(first.Get(), plane).Table, AccessOf(second.Get(), plane).Table,
                                         direction == 0 ? &VPAEntry::YEntry : &VPAEntry::XEntry, count);
    return joinable;
}

struct Extent {
    std::intptr_t Width;
    std::intptr_t Height;
};

/// Joins, or fails with the number 0x13, as the tables allow. Result: whether it joined.
bool ExpectJoinedAsTablesAllow(const NamedImage &first, Extent a, const NamedImage &second, Extent b,
                               std::uint32_t direction, TDataType type) {
    const bool joinable = Joinable(first, second, direction, direction == 0 ? a.Height : a.Width);
    ClearReports();
    Handle view;
    EXPECT_EQ(CreatePanoramicImageMap(first.Get(), second.Get(), direction, view.Out()), joinable)
        << first.Name << " and " << second.Name;
    if (!joinable || !view) {
        EXPECT_EQ(TakeReport().value_or(Report{}).code, 0x13u);
        return joinable;
    }
    EXPECT_EQ(ReportCount(), 0);
    const std::size_t bytes = PixelSize(type);
    for (std::size_t plane = 0; plane < first.Content.size(); ++plane) {
        const Raster expected = Joined({a.Width, a.Height, bytes, first.Content[plane]},
                                       {b.Width, b.Height, bytes, second.Content[plane]}, direction);
        EXPECT_EQ(SizeOf(view.Get()), (ImageSize{std::ssize(first.Content), expected.Width, expected.Height}));
        EXPECT_EQ(PixelBytes(view.Get(), static_cast<std::intptr_t>(plane)), expected.Bytes)
            << first.Name << " and " << second.Name << ", plane " << plane;
    }
    return joinable;
}

/// Joins every layout of one size with every layout of another. Result: how many could be joined.
int JoinAllLayouts(Extent a, Extent b, std::uint32_t direction, TDataType type, std::uint32_t seed) {
    int joined = 0;
    const auto seconds = MakeLayouts(b.Width, b.Height, 2, type, seed + 1);
    for (const NamedImage &first : MakeLayouts(a.Width, a.Height, 2, type, seed))
        for (const NamedImage &second : seconds)
            joined += ExpectJoinedAsTablesAllow(first, a, second, b, direction, type) ? 1 : 0;
    return joined;
}

/// Random tables of two images of two planes that can be joined, over pixels that nothing reads.
struct RandomPair {
    std::vector<Offsets> FirstX, FirstY, SecondX, SecondY; ///< one per plane
    std::unique_ptr<FakeImage> First, Second;
};

Offsets ShiftedBy(Offsets offsets, std::intptr_t shift) {
    for (auto &entry : offsets)
        entry += shift;
    return offsets;
}

RandomPair MakeRandomPair(std::mt19937_64 &random, Extent a, Extent b, std::uint32_t direction) {
    RandomPair pair;
    pair.First = std::make_unique<FakeImage>(a.Width, a.Height, 16);
    pair.Second = std::make_unique<FakeImage>(b.Width, b.Height, 16);
    for (std::size_t plane = 0; plane < 2; ++plane) {
        pair.FirstX.push_back(RandomOffsets(random, a.Width));
        pair.FirstY.push_back(RandomOffsets(random, a.Height));
        const std::intptr_t shift = RandomOffsets(random, 1)[0];
        pair.SecondX.push_back(direction == 0 ? RandomOffsets(random, b.Width)
                                              : ShiftedBy(pair.FirstX[plane], shift));
        pair.SecondY.push_back(direction == 0 ? ShiftedBy(pair.FirstY[plane], shift)
                                              : RandomOffsets(random, b.Height));
        pair.First->AddPlane(pair.First->Pixels.data() + 5 * plane, 8, EntriesOf(pair.FirstX[plane]),
                             EntriesOf(pair.FirstY[plane]));
        pair.Second->AddPlane(pair.Second->Pixels.data() + 7 * plane, 8, EntriesOf(pair.SecondX[plane]),
                              EntriesOf(pair.SecondY[plane]));
    }
    return pair;
}

/// The entries of the joined axis: the first image's, then the second's, led to the first one's base.
Offsets JoinedAxis(const Offsets &first, const Offsets &second, std::intptr_t shift) {
    Offsets joined = first;
    for (const std::intptr_t entry : second)
        joined.push_back(shift + entry);
    return joined;
}

} // namespace

TEST(CreatePanoramicImageMap, JoinsTwoWindowsOfOneBuffer) {
    std::uint8_t pixels[4 * 10];
    std::iota(std::begin(pixels), std::end(pixels), std::uint8_t{0});
    const Handle left = Window(pixels + 11, 2, 2, 10);
    const Handle right = Window(pixels + 5, 3, 2, 10);
    EXPECT_EQ(PixelBytes(Panorama(left.Get(), right.Get(), PanoramaSideBySide).Get(), 0),
              (PlaneBytes{11, 12, 5, 6, 7, 21, 22, 15, 16, 17}));
    const Handle below = Window(pixels + 34, 2, 1, 10);
    EXPECT_EQ(PixelBytes(Panorama(left.Get(), below.Get(), PanoramaStacked).Get(), 0),
              (PlaneBytes{11, 12, 21, 22, 34, 35}));
}

TEST(CreatePanoramicImageMap, JoinsEveryPairOfLayoutsThatAdvanceAlike) {
    int pairs = 0;
    int joined = 0;
    for (const TDataType type : {8u, 24u, 32u | DataTypeFloat})
        for (const std::uint32_t direction : Directions)
            for (const Extent a : {Extent{4, 3}, Extent{1, 1}, Extent{3, 7}})
                for (const std::intptr_t length : {1, 2, 6}) {
                    const Extent b = direction == 0 ? Extent{length, a.Height} : Extent{a.Width, length};
                    const auto layouts = static_cast<int>(MakeLayouts(1, 1, 2, type).size());
                    pairs += layouts * layouts;
                    joined += JoinAllLayouts(a, b, direction, type, static_cast<std::uint32_t>(pairs));
                }
    EXPECT_GT(joined, pairs / 10) << "both outcomes are met often";
    EXPECT_LT(joined, pairs - pairs / 10);
}

TEST(CreatePanoramicImageMap, WritesEveryTableEntryWithItsGuards) {
    std::mt19937_64 random(51);
    for (int number = 0; number < 80; ++number) {
        const auto length = [&random] { return static_cast<std::intptr_t>(1 + random() % 9); };
        const std::uint32_t direction = number % 2 == 0 ? 0 : 1;
        const Extent a{length(), length()};
        const Extent b = direction == 0 ? Extent{length(), a.Height} : Extent{a.Width, length()};
        const RandomPair pair = MakeRandomPair(random, a, b, direction);
        const Handle view = Panorama(pair.First->Handle(), pair.Second->Handle(), direction);
        for (std::size_t p = 0; p < 2; ++p) {
            SCOPED_TRACE("case " + std::to_string(number) + ", plane " + std::to_string(p));
            const std::intptr_t distance = reinterpret_cast<std::intptr_t>(pair.Second->BaseOf(p)) -
                                           reinterpret_cast<std::intptr_t>(pair.First->BaseOf(p));
            const PlaneAccess access = AccessOf(view.Get(), static_cast<std::intptr_t>(p));
            EXPECT_EQ(access.Base, pair.First->BaseOf(p)) << "the base is the first image's";
            const Offsets x = direction == 0 ? JoinedAxis(pair.FirstX[p], pair.SecondX[p],
                                                          distance + pair.SecondY[p][0] - pair.FirstY[p][0])
                                             : pair.FirstX[p];
            const Offsets y = direction == 0 ? pair.FirstY[p]
                                             : JoinedAxis(pair.FirstY[p], pair.SecondY[p],
                                                          distance + pair.SecondX[p][0] - pair.FirstX[p][0]);
            ASSERT_TRUE(AxisIs(access.Table, &VPAEntry::XEntry, x));
            ASSERT_TRUE(AxisIs(access.Table, &VPAEntry::YEntry, y));
        }
    }
}

TEST(CreatePanoramicImageMap, JoinsImagesOfDifferentBlocks) {
    for (const std::uint32_t direction : Directions) {
        const auto first = RandomContent(4, 3, 3, 16, 52);
        const auto second = RandomContent(4, 3, 3, 16, 53);
        const PitchRule interleaved{"interleaved", 6, 24, 2};
        const NamedImage a = MakeExternal(interleaved, first, 4, 3, 16);
        const NamedImage b = MakeExternal(interleaved, second, 4, 3, 16);
        ClearReports();
        EXPECT_TRUE(ExpectJoinedAsTablesAllow(a, {4, 3}, b, {4, 3}, direction, 16));
    }
}

TEST(CreatePanoramicImageMap, NeedsOnlyTheAxisThatIsNotJoinedToAdvanceAlike) {
    std::uint8_t pixels[100] = {};
    const Handle dense = Window(pixels, 2, 3, 4);
    const Handle wide = Window(pixels, 2, 3, 10);
    Handle spaced;
    ASSERT_EQ(CreateImageFromPointer(pixels, 0, 2, 3, 1, 8, 2, 4, 0, nullptr, nullptr, nullptr, spaced.Out()), 0);
    ClearReports();
    EXPECT_TRUE(Panorama(dense.Get(), wide.Get(), 1)) << "other line strides, one above the other";
    EXPECT_TRUE(Panorama(dense.Get(), spaced.Get(), 0)) << "other pixel strides, side by side";
    EXPECT_EQ(ReportCount(), 0);
    Handle none;
    EXPECT_FALSE(CreatePanoramicImageMap(dense.Get(), wide.Get(), 0, none.Out()));
    EXPECT_FALSE(CreatePanoramicImageMap(dense.Get(), spaced.Get(), 1, none.Out()));
    EXPECT_EQ(ReportCount(), 2);
}

TEST(CreatePanoramicImageMap, LooksAtTheLastStepOfTheLastPlane) {
    for (const std::uint32_t direction : Directions) {
        const auto first = FakeImage::Planar(4, 4, 3, 8);
        const auto second = FakeImage::Planar(4, 4, 3, 8);
        VPAEntry &last = second->TableOf(2)[3];
        (direction == 0 ? last.YEntry : last.XEntry) += 1;
        ClearReports();
        Handle view;
        EXPECT_FALSE(CreatePanoramicImageMap(first->Handle(), second->Handle(), direction, view.Out()));
        EXPECT_EQ(TakeReport().value_or(Report{}).code, 0x13u);
        EXPECT_TRUE(CreatePanoramicImageMap(first->Handle(), second->Handle(), 1 - direction, view.Out()));
        second->TableOf(2)[3] = first->TableOf(2)[3];
        second->TableOf(2)[4].XEntry += 1; // guard entries do not count
        second->TableOf(2)[4].YEntry += 1;
        EXPECT_TRUE(CreatePanoramicImageMap(first->Handle(), second->Handle(), direction, view.Out()));
    }
}

TEST(CreatePanoramicImageMap, JoinsAnImageWithItself) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    std::iota(image->Pixels.begin(), image->Pixels.end(), std::uint8_t{1});
    {
        const Handle view = Panorama(image->Handle(), image->Handle(), 0);
        EXPECT_EQ(PixelBytes(view.Get(), 0), (PlaneBytes{1, 2, 3, 1, 2, 3, 4, 5, 6, 4, 5, 6}));
        EXPECT_EQ(image->Count(), 3) << "a reference for each of the two places";
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreatePanoramicImageMap, OfTurnedImagesIsTheTurnedPanorama) {
    const auto a = FakeImage::Planar(4, 3, 2, 16);
    const auto b = FakeImage::Planar(4, 3, 2, 16);
    WriteContent(*a, RandomContent(4, 3, 2, 16, 54), 4, 3, 16);
    WriteContent(*b, RandomContent(4, 3, 2, 16, 55), 4, 3, 16);
    for (const std::uint32_t rotation : {1u, 2u, 3u})
        for (const std::uint32_t direction : Directions) {
            Handle turnedA;
            Handle turnedB;
            Handle whole;
            ASSERT_TRUE(CreateRotatedImageMap(a->Handle(), rotation, turnedA.Out()));
            ASSERT_TRUE(CreateRotatedImageMap(b->Handle(), rotation, turnedB.Out()));
            ASSERT_TRUE(
                CreateRotatedImageMap(Panorama(a->Handle(), b->Handle(), direction).Get(), rotation, whole.Out()));
            const bool swapsOrder = rotation == 2 || (rotation == 1) == (direction == 0);
            const Handle &first = swapsOrder ? turnedB : turnedA;
            const Handle &second = swapsOrder ? turnedA : turnedB;
            const Handle parts = Panorama(first.Get(), second.Get(), rotation == 2 ? direction : 1 - direction);
            EXPECT_EQ(SizeOf(parts.Get()), SizeOf(whole.Get()));
            for (const std::intptr_t plane : {0, 1})
                EXPECT_EQ(PixelBytes(parts.Get(), plane), PixelBytes(whole.Get(), plane))
                    << "rotation " << rotation << ", direction " << direction;
        }
}

TEST(CreatePanoramicImageMap, TakesNeitherImagesCoordinateMap) {
    const auto first = FakeImage::Planar(3, 2, 1, 8);
    const auto second = FakeImage::Planar(3, 2, 1, 8);
    first->Coordinates = SampleMap;
    second->Coordinates = SampleMap;
    const Handle view = Panorama(first->Handle(), second->Handle(), 1);
    TCoordinateMap map = SampleMap;
    ASSERT_TRUE(GetImageCoordinates(view.Get(), &map));
    EXPECT_TRUE(SameMap(map, IdentityMap));
    const TCoordinateMap other{-1.0, -2.0, {3.0, 4.0, 5.0, 6.0}};
    ASSERT_TRUE(SetImageCoordinates(view.Get(), other));
    ASSERT_TRUE(GetImageCoordinates(view.Get(), &map));
    EXPECT_TRUE(SameMap(map, other));
    EXPECT_TRUE(SameMap(first->Coordinates, SampleMap)) << "the sources keep theirs";
    EXPECT_TRUE(SameMap(second->Coordinates, SampleMap));
}

TEST(CreatePanoramicImageMap, LetsTheOverlayBitDifferAndTellsTheFirstImagesType) {
    const auto plain = FakeImage::Planar(3, 2, 2, 8);
    const auto overlay = FakeImage::Planar(3, 2, 2, 8 | DataTypeOverlay);
    EXPECT_EQ(ImageDatatype(Panorama(plain->Handle(), overlay->Handle(), 0).Get(), 1), 8u);
    EXPECT_EQ(ImageDatatype(Panorama(overlay->Handle(), plain->Handle(), 0).Get(), 1), 8u | DataTypeOverlay);
}

TEST(CreatePanoramicImageMap, ShowsAWriteThroughTheViewInTheSource) {
    const auto first = FakeImage::Planar(3, 2, 2, 8);
    const auto second = FakeImage::Planar(3, 2, 2, 8);
    const Handle view = Panorama(first->Handle(), second->Handle(), 0);
    const std::uint64_t value = 77;
    ASSERT_TRUE(SetPixVal(view.Get(), 1, 4, 1, &value));
    EXPECT_EQ(*second->PixelAddress(1, 1, 1), 77);
    ASSERT_TRUE(SetPixVal(view.Get(), 0, 2, 0, &value));
    EXPECT_EQ(*first->PixelAddress(0, 2, 0), 77);
    EXPECT_EQ(std::count(first->Pixels.begin(), first->Pixels.end(), 77), 1);
    EXPECT_EQ(std::count(second->Pixels.begin(), second->Pixels.end(), 77), 1);
}

TEST(CreatePanoramicImageMap, HoldsOneReferenceOfEachSource) {
    const auto first = FakeImage::Planar(3, 2, 1, 8);
    const auto second = FakeImage::Planar(3, 2, 1, 8);
    void *view = nullptr;
    ASSERT_TRUE(CreatePanoramicImageMap(first->Handle(), second->Handle(), 0, &view));
    EXPECT_EQ(first->Count(), 2);
    EXPECT_EQ(second->Count(), 2);
    EXPECT_EQ(RefCount(view), 1u);
    EXPECT_EQ(ShareImage(view), 2);
    EXPECT_EQ(ReleaseImage(view), 1);
    EXPECT_TRUE(ReleaseObject(view));
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(first->Count(), 1);
    EXPECT_EQ(second->Count(), 1);
}

TEST(CreatePanoramicImageMap, KeepsThePixelsWhenTheSourcesAreReleasedFirst) {
    for (const PitchRule &rule : PitchRules(5, 4, 2, 16)) {
        const auto content = RandomContent(5, 4, 2, 16, 56);
        const NamedImage first = MakeExternal(rule, content, 5, 4, 16);
        const NamedImage second = MakeExternal(rule, content, 5, 4, 16);
        const Handle view = Panorama(first.Get(), second.Get(), 1);
        first.Owned->Reset();
        second.Owned->Reset();
        const Raster piece{5, 4, 2, content[1]};
        EXPECT_EQ(PixelBytes(view.Get(), 1), Joined(piece, piece, 1).Bytes) << first.Name;
    }
}

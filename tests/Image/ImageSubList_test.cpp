// Picked planes: which ones, what they share, and every number that can be asked for.
#include "Image/MapModel.h"
#include "ImageCreation.h"
#include "ImageQueries.h"

namespace {

using namespace TestSupport;

constexpr unsigned char NotAndShared[] = {0, 1};

/// Planes of different types over memory of their own; plane k holds the bytes k, k + 1, ...
std::unique_ptr<FakeImage> FourPlanes() {
    auto image = std::make_unique<FakeImage>(3, 2, 4 * 48);
    const TDataType types[] = {0x8, 0x110, 0x220, 0x40};
    for (std::intptr_t plane = 0; plane < 4; ++plane) {
        const auto bytes = static_cast<std::intptr_t>(PixelSize(types[plane]));
        image->AddPlane(
            image->Pixels.data() + plane * 48, types[plane], [=](auto i) { return i * bytes; },
            [=](auto j) { return j * 3 * bytes; });
        for (std::intptr_t byte = 0; byte < 48; ++byte)
            image->Pixels[static_cast<std::size_t>(plane * 48 + byte)] = static_cast<std::uint8_t>(plane + byte);
    }
    image->Coordinates = SkewedMap;
    return image;
}

/// The planes of a list, in order, are these planes of the image.
void ExpectPlanes(void *list, FakeImage &image, const std::vector<std::intptr_t> &planes, bool shared) {
    const ImageSize size = SizeOf(image.Handle());
    ASSERT_EQ(SizeOf(list), (ImageSize{std::ssize(planes), size.Width, size.Height}));
    EXPECT_TRUE(SameMap(MapOf(list), image.Coordinates));
    EXPECT_EQ(RefCount(list), 1u);
    EXPECT_EQ(image.Count(), shared ? 1 + std::ssize(planes) : 1);
    for (std::intptr_t i = 0; i < std::ssize(planes); ++i) {
        const std::intptr_t plane = planes[static_cast<std::size_t>(i)];
        EXPECT_EQ(TypeOf(list, i), TypeOf(image.Handle(), plane));
        EXPECT_EQ(PixelBytes(list, i), PixelBytes(image.Handle(), plane));
        EXPECT_EQ(AccessOf(list, i).Base == AccessOf(image.Handle(), plane).Base, shared);
    }
}

} // namespace

TEST(CreateImageSubList, PicksEveryRunOfPlanes) {
    for (const unsigned char share : NotAndShared)
        for (std::intptr_t first = 0; first < 4; ++first)
            for (std::intptr_t count = 1; first + count <= 4; ++count) {
                SCOPED_TRACE(testing::Message() << first << ", " << count << ", share " << int{share});
                const auto image = FourPlanes();
                ClearReports();
                Handle list;
                ASSERT_TRUE(CreateImageSubList(image->Handle(), first, count, share, list.Out()));
                ExpectNoReport();
                std::vector<std::intptr_t> planes(static_cast<std::size_t>(count));
                std::iota(planes.begin(), planes.end(), first);
                ExpectPlanes(list.Get(), *image, planes, share != 0);
                list.Reset();
                EXPECT_EQ(image->Count(), 1);
            }
}

TEST(CreateImageSubList, TakesEveryNonzeroFlagForShared) {
    const auto image = FourPlanes();
    constexpr unsigned char flags[] = {2, 128, 255};
    for (const unsigned char share : flags) {
        Handle list;
        ASSERT_TRUE(CreateImageSubList(image->Handle(), 1, 2, share, list.Out()));
        ExpectPlanes(list.Get(), *image, {1, 2}, true);
    }
}

TEST(CreateImageSubList, HasTheTablesOfThePlanesItShows) {
    std::mt19937_64 random(10);
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{1, 1}, {7, 3}, {2, 19}}) {
        FakeImage image(width, height, 3);
        std::vector<Offsets> x, y;
        for (std::size_t plane = 0; plane < 3; ++plane) {
            x.push_back(RandomOffsets(random, width));
            y.push_back(RandomOffsets(random, height));
            image.AddPlane(image.Pixels.data() + plane, 8, EntriesOf(x.back()), EntriesOf(y.back()));
        }
        Handle list;
        ASSERT_TRUE(CreateImageSubList(image.Handle(), 1, 2, 1, list.Out()));
        for (const std::size_t plane : {1u, 2u}) {
            const PlaneAccess access = AccessOf(list.Get(), static_cast<std::intptr_t>(plane) - 1);
            EXPECT_EQ(access.Base, image.BaseOf(plane));
            EXPECT_TRUE(AxisIs(access.Table, &VPAEntry::XEntry, x[plane]));
            EXPECT_TRUE(AxisIs(access.Table, &VPAEntry::YEntry, y[plane]));
        }
    }
}

TEST(CreateImageSubList, OfEveryLayoutShowsThePlanesPixels) {
    for (const TDataType type : TenPixelTypes)
        for (const NamedImage &image : MakeLayouts(5, 4, 3, type, type))
            for (const unsigned char share : NotAndShared) {
                Handle list;
                ASSERT_TRUE(CreateImageSubList(image.Get(), 1, 2, share, list.Out()));
                for (const std::size_t plane : {1u, 2u})
                    ASSERT_EQ(PixelBytes(list.Get(), static_cast<std::intptr_t>(plane) - 1), image.Content[plane])
                        << image.Name << ", type " << type;
            }
}

TEST(CreateImageSubList, TakesThePlaneCountForAHigherCount) {
    const auto image = FourPlanes();
    for (const unsigned char share : NotAndShared)
        for (const std::intptr_t count : {std::intptr_t{5}, std::intptr_t{1} << 32, Highest}) {
            Handle list;
            ASSERT_TRUE(CreateImageSubList(image->Handle(), 0, count, share, list.Out()));
            ExpectPlanes(list.Get(), *image, {0, 1, 2, 3}, share != 0);
            list.Reset();
            ExpectSilentRefusal(UntouchedPointer(), nullptr, [&](void **out) {
                return CreateImageSubList(image->Handle(), 1, count, share, out);
            });
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CreateImageSubList, RefusesARunWithAPlaneThatDoesNotExist) {
    const auto image = FourPlanes();
    const std::pair<std::intptr_t, std::intptr_t> runs[] = {
        {-1, 1},  {-1, 4},     {4, 1},      {3, 2},  {2, 4},       {1, Highest},       {Highest, 1},
        {100, 2}, {Lowest, 1}, {Lowest, 4}, {-3, 4}, {Highest, 4}, {Highest, Highest}, {Lowest, Highest}};
    for (const unsigned char share : NotAndShared)
        for (const auto &[first, count] : runs) {
            SCOPED_TRACE(testing::Message() << first << ", " << count);
            ExpectSilentRefusal(UntouchedPointer(), nullptr, [&, f = first, c = count](void **out) {
                return CreateImageSubList(image->Handle(), f, c, share, out);
            });
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CreateImageSubList, OfNoPlaneIsAnImageWithoutPlanes) {
    const auto image = FourPlanes();
    for (const unsigned char share : NotAndShared)
        for (const auto &[first, count] : {std::pair<std::intptr_t, std::intptr_t>{0, 0}, {2, 0}, {9, 0}, {1, -1}}) {
            Handle list;
            ASSERT_TRUE(CreateImageSubList(image->Handle(), first, count, share, list.Out()))
                << first << ", " << count;
            ExpectPlanes(list.Get(), *image, {}, share != 0);
        }
    FakeImage none(3, 2);
    Handle list;
    ASSERT_TRUE(CreateImageSubList(none.Handle(), 0, 5, 1, list.Out()));
    EXPECT_EQ(SizeOf(list.Get()), (ImageSize{0, 3, 2}));
}

TEST(CreateImageSubList, OfAnyExtremeRunGivesAnImageExactlyWhenItSaysSo) {
    const auto image = FourPlanes();
    for (const unsigned char share : NotAndShared)
        for (const std::intptr_t first : {Lowest, Lowest + 1, std::intptr_t{-1}, std::intptr_t{0}, Highest})
            for (const std::intptr_t count : {Lowest, Lowest + 1, std::intptr_t{-2}, std::intptr_t{0}}) {
                void *out = UntouchedPointer();
                const bool made = CreateImageSubList(image->Handle(), first, count, share, &out);
                EXPECT_EQ(made, out != nullptr) << first << ", " << count;
                if (out != nullptr) {
                    EXPECT_EQ(SizeOf(out), (ImageSize{0, 3, 2}));
                }
                ReleaseObject(out);
                EXPECT_EQ(image->Count(), 1);
            }
}

TEST(CreateImageSubList, RefusesWhatIsNoImage) {
    for (const unsigned char share : NotAndShared) {
        const auto pick = [=](void *image) {
            return [=](void **out) { return CreateImageSubList(image, 0, 1, share, out); };
        };
        ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(), pick(nullptr));
        for (const ForeignHandle &foreign : ForeignHandles()) {
            SCOPED_TRACE(foreign.Name);
            ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(), pick(foreign.Get()));
            EXPECT_EQ(foreign.Count(), 1);
        }
    }
}

TEST(CreateImageSubList, GivesFalseWhenTheCopyFails) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x18);
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_FALSE(CreateImageSubList(image->Handle(), 1, 2, 0, &out));
    EXPECT_EQ(out, nullptr);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->function, "CreateDuplicateImage");
    EXPECT_EQ(report->code, 0x8000001Cu);
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateImageSubList, PassesOnWhatAnOperationOfTheSourceThrows) {
    const auto image = FakeImage::Planar(5, 4, 2, 8);
    const auto pick = [&](void **out) { EXPECT_TRUE(CreateImageSubList(image->Handle(), 0, 2, 1, out)); };
    ExpectPassedOn<std::runtime_error>(*image, pick);
    ExpectPassedOn<std::out_of_range>(*image, pick);
    ExpectPassedOn<std::length_error>(*image, pick);
    ExpectPassedOn<std::string>(*image, pick);
}

TEST(CreateImageSubList, PassesOnThatASourceLosesItsInterface) {
    const auto image = FakeImage::Planar(5, 4, 2, 8);
    image->Fails.OnOperation = [&] { image->Fails.QueryGivesNull = true; };
    void *out = UntouchedPointer();
    EXPECT_ANY_THROW(CreateImageSubList(image->Handle(), 0, 2, 1, &out));
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(image->Count(), 1);
}

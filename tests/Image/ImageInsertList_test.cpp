// Planes of one image between those of another: order, sizes, coordinates, and what is refused.
// How images are laid over each other by their origins stands in ImageInsertAligned_test.cpp.
#include "Image/MapModel.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"

namespace {

using namespace TestSupport;

constexpr unsigned char NotAndShared[] = {0, 1};

std::unique_ptr<FakeImage> Filled(std::intptr_t width, std::intptr_t height, std::intptr_t planes, TDataType type,
                                  std::uint32_t seed) {
    auto image = FakeImage::Planar(width, height, planes, type);
    WriteContent(*image, RandomContent(width, height, planes, type, seed), width, height, type);
    return image;
}

Raster RasterOf(FakeImage &image, std::intptr_t plane) {
    const ImageSize size = SizeOf(image.Handle());
    return {size.Width, size.Height, PixelSize(TypeOf(image.Handle(), plane)), PixelBytes(image.Handle(), plane)};
}

Handle Inserted(void *image, void *insert, std::intptr_t position, unsigned char share = 1) {
    Handle list;
    EXPECT_EQ(CreateImageInsertList(image, insert, position, share, 0, list.Out()), 1);
    return list;
}

/// Refused with either image in either place, with and without copying and aligning.
void ExpectRefusals(void *image, void *insert, std::intptr_t position, void *expectedOut) {
    for (const unsigned char share : NotAndShared)
        for (const unsigned char align : NotAndShared)
            ExpectSilentRefusal(UntouchedPointer(), expectedOut, [&](void **out) {
                return CreateImageInsertList(image, insert, position, share, align, out) != 0;
            });
}

} // namespace

TEST(CreateImageInsertList, PutsThePlanesAtThePosition) {
    for (const unsigned char share : NotAndShared)
        for (const std::intptr_t planes : {0, 1, 3})
            for (const std::intptr_t inserted : {0, 1, 2})
                for (std::intptr_t position = 0; position <= planes; ++position) {
                    SCOPED_TRACE(testing::Message() << inserted << " in " << planes << " planes at " << position
                                                    << ", share " << int{share});
                    const auto image = Filled(4, 3, planes, 0x10, 1), insert = Filled(4, 3, inserted, 0x110, 2);
                    ClearReports();
                    Handle list = Inserted(image->Handle(), insert->Handle(), position, share);
                    ExpectNoReport();
                    ASSERT_EQ(SizeOf(list.Get()), (ImageSize{planes + inserted, 4, 3}));
                    EXPECT_EQ(RefCount(list.Get()), 1u);
                    for (std::intptr_t i = 0; i < planes + inserted; ++i) {
                        const bool isInserted = i >= position && i < position + inserted;
                        FakeImage &source = isInserted ? *insert : *image;
                        const std::intptr_t plane = isInserted ? i - position : i < position ? i : i - inserted;
                        EXPECT_EQ(TypeOf(list.Get(), i), TypeOf(source.Handle(), plane));
                        EXPECT_EQ(PixelBytes(list.Get(), i), PixelBytes(source.Handle(), plane));
                        const void *const base = source.BaseOf(static_cast<std::size_t>(plane));
                        EXPECT_EQ(AccessOf(list.Get(), i).Base == base, share != 0);
                    }
                    EXPECT_EQ(image->Count(), share != 0 ? 1 + planes : 1);
                    EXPECT_EQ(insert->Count(), share != 0 ? 1 + inserted : 1);
                    list.Reset();
                    EXPECT_EQ(image->Count(), 1);
                    EXPECT_EQ(insert->Count(), 1);
                }
}

TEST(CreateImageInsertList, AppendsFromAPositionBehindTheLastPlane) {
    const auto image = Filled(4, 3, 2, 0x10, 3), insert = Filled(4, 3, 2, 0x8, 4);
    for (const unsigned char share : NotAndShared)
        for (const std::intptr_t position : {std::intptr_t{2}, std::intptr_t{3}, std::intptr_t{1} << 32, Highest}) {
            const Handle list = Inserted(image->Handle(), insert->Handle(), position, share);
            ASSERT_EQ(SizeOf(list.Get()), (ImageSize{4, 4, 3}));
            for (std::intptr_t plane = 0; plane < 2; ++plane) {
                EXPECT_EQ(PixelBytes(list.Get(), plane), PixelBytes(image->Handle(), plane));
                EXPECT_EQ(PixelBytes(list.Get(), plane + 2), PixelBytes(insert->Handle(), plane));
            }
        }
}

TEST(CreateImageInsertList, ResamplesTheInsertedImageToTheSizeOfTheOther) {
    std::mt19937_64 random(5);
    for (int number = 0; number < 200; ++number) {
        const auto pick = [&] { return static_cast<std::intptr_t>(1 + random() % 20); };
        const auto image = Filled(pick(), pick(), 2, 0x8, 6), insert = Filled(pick(), pick(), 2, 0x20, 7);
        const ImageSize size = SizeOf(image->Handle()), own = SizeOf(insert->Handle());
        const unsigned char share = number % 2 != 0;
        const Handle list = Inserted(image->Handle(), insert->Handle(), 1, share);
        ASSERT_EQ(SizeOf(list.Get()), (ImageSize{4, size.Width, size.Height}));
        EXPECT_EQ(PixelBytes(list.Get(), 0), PixelBytes(image->Handle(), 0));
        EXPECT_EQ(PixelBytes(list.Get(), 3), PixelBytes(image->Handle(), 1));
        for (std::intptr_t plane = 0; plane < 2; ++plane)
            ASSERT_EQ(
                PixelBytes(list.Get(), plane + 1),
                ShownRaster(RasterOf(*insert, plane), {0, 0, own.Width - 1, own.Height - 1}, size.Width, size.Height)
                    .Bytes)
                << "case " << number;
    }
}

TEST(CreateImageInsertList, WritesTheTablesOfBothImages) {
    std::mt19937_64 random(8);
    FakeImage image(6, 4, 1), insert(9, 2, 1);
    const Offsets x = RandomOffsets(random, 6), y = RandomOffsets(random, 4);
    const Offsets insertX = RandomOffsets(random, 9), insertY = RandomOffsets(random, 2);
    image.AddPlane(image.Pixels.data(), 8, EntriesOf(x), EntriesOf(y));
    insert.AddPlane(insert.Pixels.data(), 8, EntriesOf(insertX), EntriesOf(insertY));
    const Handle list = Inserted(image.Handle(), insert.Handle(), 0);
    const PlaneAccess first = AccessOf(list.Get(), 0), second = AccessOf(list.Get(), 1);
    EXPECT_TRUE(AxisIs(first.Table, &VPAEntry::XEntry, ShownOffsets(insertX, 0, 8, 6)));
    EXPECT_TRUE(AxisIs(first.Table, &VPAEntry::YEntry, ShownOffsets(insertY, 0, 1, 4)));
    EXPECT_TRUE(AxisIs(second.Table, &VPAEntry::XEntry, x));
    EXPECT_TRUE(AxisIs(second.Table, &VPAEntry::YEntry, y));
}

TEST(CreateImageInsertList, OfEveryLayoutShowsThePixelsOfBoth) {
    for (const TDataType type : TenPixelTypes) {
        const auto images = MakeLayouts(5, 4, 2, type, type);
        for (std::size_t i = 0; i < images.size(); ++i) {
            const NamedImage &image = images[i], &insert = images[(i + 1) % images.size()];
            for (const unsigned char share : NotAndShared) {
                const Handle list = Inserted(image.Get(), insert.Get(), 1, share);
                const PlaneBytes *const expected[] = {&image.Content[0], &insert.Content[0], &insert.Content[1],
                                                      &image.Content[1]};
                for (std::intptr_t plane = 0; plane < 4; ++plane)
                    ASSERT_EQ(PixelBytes(list.Get(), plane), *expected[plane])
                        << image.Name << " and " << insert.Name << ", type " << type;
            }
        }
    }
}

TEST(CreateImageInsertList, RecombinesColourPlanesOfSingleImages) {
    const auto content = RandomContent(5, 4, 3, 8, 9);
    const NamedImage colour = MakeExternal(PitchRules(5, 4, 3, 8)[1], content, 5, 4, 8);
    Handle red, green, blue;
    ASSERT_TRUE(CreateImageSubList(colour.Get(), 0, 1, 1, red.Out()));
    ASSERT_TRUE(CreateImageSubList(colour.Get(), 1, 1, 1, green.Out()));
    ASSERT_TRUE(CreateImageSubList(colour.Get(), 2, 1, 1, blue.Out()));
    const Handle two = Inserted(blue.Get(), red.Get(), 1);
    const Handle three = Inserted(two.Get(), green.Get(), 1);
    EXPECT_EQ(PixelBytes(three.Get(), 0), content[2]);
    EXPECT_EQ(PixelBytes(three.Get(), 1), content[1]);
    EXPECT_EQ(PixelBytes(three.Get(), 2), content[0]);
}

TEST(CreateImageInsertList, HasTheCoordinateMapOfTheFirst) {
    const auto image = Filled(4, 3, 1, 8, 10), insert = Filled(8, 6, 1, 8, 11);
    image->Coordinates = SkewedMap;
    insert->Coordinates = {5.0, 6.0, {7.0, 8.0, 9.0, 10.0}};
    for (const unsigned char share : NotAndShared)
        EXPECT_TRUE(SameMap(MapOf(Inserted(image->Handle(), insert->Handle(), 0, share).Get()), SkewedMap));
}

TEST(CreateImageInsertList, PutsAnImageIntoItself) {
    const auto image = Filled(4, 3, 2, 8, 12);
    for (const unsigned char share : NotAndShared) {
        const Handle list = Inserted(image->Handle(), image->Handle(), 1, share);
        EXPECT_EQ(image->Count(), share != 0 ? 5 : 1);
        const std::intptr_t planes[] = {0, 0, 1, 1};
        for (std::intptr_t i = 0; i < 4; ++i)
            EXPECT_EQ(PixelBytes(list.Get(), i), PixelBytes(image->Handle(), planes[i]));
    }
}

TEST(CreateImageInsertList, RefusesANegativePosition) {
    const auto image = Filled(4, 3, 2, 8, 13), insert = Filled(4, 3, 2, 8, 14), none = Filled(4, 3, 0, 8, 15);
    for (const std::intptr_t position : {std::intptr_t{-1}, std::intptr_t{-2}, Lowest + 1, Lowest}) {
        SCOPED_TRACE(position);
        ExpectRefusals(image->Handle(), insert->Handle(), position, nullptr);
        ExpectRefusals(image->Handle(), none->Handle(), position, nullptr);
        ExpectRefusals(none->Handle(), insert->Handle(), position, nullptr);
    }
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(insert->Count(), 1);
    EXPECT_EQ(none->Count(), 1);
}

TEST(CreateImageInsertList, RefusesPixelsOfAnImageThatHasNone) {
    const auto image = Filled(4, 3, 2, 8, 16);
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{0, 0}, {0, 3}, {4, 0}}) {
        FakeImage empty(width, height, 1);
        empty.AddPlane(
            empty.Pixels.data(), 8, [](auto) { return 0; }, [](auto) { return 0; });
        for (const unsigned char share : NotAndShared)
            ExpectSilentRefusal(UntouchedPointer(), nullptr, [&](void **out) {
                return CreateImageInsertList(image->Handle(), empty.Handle(), 1, share, 0, out) != 0;
            });
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(empty.Count(), 1);
    }
}

TEST(CreateImageInsertList, RefusesWhatIsNoImage) {
    const auto image = Filled(4, 3, 2, 8, 17);
    ExpectRefusals(nullptr, nullptr, 0, UntouchedPointer());
    ExpectRefusals(nullptr, image->Handle(), 0, UntouchedPointer());
    ExpectRefusals(image->Handle(), nullptr, 0, UntouchedPointer());
    for (const ForeignHandle &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectRefusals(foreign.Get(), image->Handle(), 0, UntouchedPointer());
        ExpectRefusals(image->Handle(), foreign.Get(), 0, UntouchedPointer());
        ExpectRefusals(foreign.Get(), foreign.Get(), 0, UntouchedPointer());
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateImageInsertList, RefusesAPlaneThatASourceRefuses) {
    const auto image = Filled(4, 3, 2, 8, 18), insert = Filled(4, 3, 2, 8, 19);
    for (FakeImage *const broken : {image.get(), insert.get()}) {
        broken->Fails.OnOperation = [&] { broken->Fails.VPAStatus = StatusBadPlane; };
        ExpectRefusals(image->Handle(), insert->Handle(), 1, nullptr);
        broken->Fails = {};
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(insert->Count(), 1);
    }
}

TEST(CreateImageInsertList, GivesWhatTheCopyGives) {
    const auto image = Filled(4, 3, 2, 0x18, 20), insert = Filled(4, 3, 1, 8, 21);
    ClearReports();
    Handle partly;
    EXPECT_EQ(CreateImageInsertList(image->Handle(), insert->Handle(), 0, 0, 0, partly.Out()), 1);
    EXPECT_EQ(PixelBytes(partly.Get(), 0), PixelBytes(insert->Handle(), 0));
    auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->function, "CreateDuplicateImage");
    EXPECT_EQ(report->code, 1u);

    void *out = UntouchedPointer();
    EXPECT_EQ(CreateImageInsertList(image->Handle(), image->Handle(), 0, 0, 0, &out), 0);
    EXPECT_EQ(out, nullptr);
    report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->function, "CreateDuplicateImage");
    EXPECT_EQ(report->code, 0x8000001Cu);
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(insert->Count(), 1);
}

TEST(CreateImageInsertList, PassesOnWhatAnOperationOfASourceThrows) {
    const auto image = Filled(4, 3, 2, 8, 22), insert = Filled(5, 6, 1, 8, 23);
    for (FakeImage *const throwing : {image.get(), insert.get()})
        for (const unsigned char align : NotAndShared) {
            const auto join = [&](void **out) {
                EXPECT_EQ(CreateImageInsertList(image->Handle(), insert->Handle(), 1, 1, align, out), 1);
            };
            ExpectPassedOn<std::runtime_error>(*throwing, join);
            ExpectPassedOn<std::out_of_range>(*throwing, join);
            ExpectPassedOn<std::length_error>(*throwing, join);
            ExpectPassedOn<std::string>(*throwing, join);
            EXPECT_EQ(image->Count(), 1);
            EXPECT_EQ(insert->Count(), 1);
        }
}

// Several images gathered into one: the order of planes, what is shared and held, coordinates, and what is reported.
#include "Image/MapModel.h"
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"

namespace {

using namespace TestSupport;

constexpr const char *Name = "CreateConcatenatedImage";
constexpr unsigned char NotAndShared[] = {0, 1};

std::unique_ptr<FakeImage> Filled(std::intptr_t planes, TDataType type, std::uint32_t seed, std::intptr_t width = 5,
                                  std::intptr_t height = 3) {
    auto image = FakeImage::Planar(width, height, planes, type);
    WriteContent(*image, RandomContent(width, height, planes, type, seed), width, height, type);
    return image;
}

/// Fails with the report, takes nothing and keeps nothing.
void ExpectRefusal(const std::vector<void *> &images, unsigned char share, std::uint32_t code) {
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_FALSE(CreateConcatenatedImage(images.data(), images.size(), share, &out));
    EXPECT_EQ(out, UntouchedPointer());
    ExpectOneReport(code, Name);
}

/// The newest report and how many there were.
void ExpectLastReport(std::intptr_t count, std::uint32_t code) {
    EXPECT_EQ(ReportCount(), count);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->function, Name);
    EXPECT_EQ(report->code, code);
    ClearReports();
}

Handle Concatenated(const std::vector<void *> &images, unsigned char share) {
    ClearReports();
    Handle result;
    EXPECT_TRUE(CreateConcatenatedImage(images.data(), images.size(), share, result.Out()));
    ExpectNoReport();
    return result;
}

} // namespace

TEST(CreateConcatenatedImage, OfOneOneAndThreePlanesHasFiveInThatOrder) {
    const auto first = Filled(1, 0x8, 1), second = Filled(1, 0x8, 2), third = Filled(3, 0x8, 3);
    for (const unsigned char share : NotAndShared) {
        const Handle result = Concatenated({first->Handle(), second->Handle(), third->Handle()}, share);
        ASSERT_EQ(SizeOf(result.Get()), (ImageSize{5, 5, 3}));
        EXPECT_EQ(RefCount(result.Get()), 1u);
        EXPECT_EQ(PixelBytes(result.Get(), 0), PixelBytes(first->Handle(), 0));
        EXPECT_EQ(PixelBytes(result.Get(), 1), PixelBytes(second->Handle(), 0));
        for (std::intptr_t plane = 0; plane < 3; ++plane)
            EXPECT_EQ(PixelBytes(result.Get(), 2 + plane), PixelBytes(third->Handle(), plane));
    }
}

TEST(CreateConcatenatedImage, OfRandomImagesStacksAllTheirPlanes) {
    std::mt19937_64 random(4);
    for (std::uint32_t number = 0; number < 150; ++number) {
        const auto width = static_cast<std::intptr_t>(1 + random() % 9);
        const auto height = static_cast<std::intptr_t>(1 + random() % 9);
        std::vector<NamedImage> images;
        std::vector<void *> handles;
        for (std::uint64_t i = 2 + random() % 4; i > 0; --i) {
            const TDataType type = TenPixelTypes[random() % 10];
            const auto planes = static_cast<std::intptr_t>(1 + random() % 3);
            const auto rules = LayoutRules(width, height, planes, type);
            const auto content = RandomContent(width, height, planes, type, number);
            images.push_back(MakeFake(rules[random() % rules.size()], content, width, height, type));
            handles.push_back(images.back().Get());
        }
        for (const unsigned char share : NotAndShared) {
            const Handle result = Concatenated(handles, share);
            std::intptr_t shown = 0;
            for (const NamedImage &image : images)
                for (std::size_t plane = 0; plane < image.Content.size(); ++plane, ++shown) {
                    ASSERT_EQ(PixelBytes(result.Get(), shown), image.Content[plane])
                        << "case " << number << ", " << image.Name;
                    ASSERT_EQ(TypeOf(result.Get(), shown), TypeOf(image.Get(), 0));
                }
            ASSERT_EQ(SizeOf(result.Get()), (ImageSize{shown, width, height}));
        }
        for (const NamedImage &image : images)
            ASSERT_EQ(image.Fake->Count(), 1);
    }
}

TEST(CreateConcatenatedImage, OfOneImageIsThatImageWithOneMoreReference) {
    const auto image = Filled(2, 0x10, 5);
    for (const unsigned char share : NotAndShared) {
        Handle result = Concatenated({image->Handle()}, share);
        EXPECT_EQ(result.Get(), image->Handle());
        EXPECT_EQ(image->Count(), 2);
        result.Reset();
        EXPECT_EQ(image->Count(), 1);
    }
    Handle generic;
    ASSERT_TRUE(CreateGenericImage(3, 4, 4, false, generic.Out()));
    const Handle result = Concatenated({generic.Get()}, 0);
    EXPECT_EQ(result.Get(), generic.Get());
    EXPECT_EQ(RefCount(generic.Get()), 2u);
}

TEST(CreateConcatenatedImage, SharesThePixelsAndHoldsItsSources) {
    const auto first = Filled(2, 0x8, 6), second = Filled(1, 0x8, 7), third = Filled(3, 0x8, 8);
    Handle result = Concatenated({first->Handle(), second->Handle(), third->Handle()}, 1);
    EXPECT_EQ(first->Count(), 3);
    EXPECT_EQ(second->Count(), 2);
    EXPECT_EQ(third->Count(), 4);
    const std::uint64_t value = 0x5C;
    for (std::intptr_t plane = 0; plane < 6; ++plane)
        ASSERT_TRUE(SetPixVal(result.Get(), plane, 4, 2, &value));
    EXPECT_EQ(*first->PixelAddress(1, 4, 2), 0x5C);
    EXPECT_EQ(*second->PixelAddress(0, 4, 2), 0x5C);
    EXPECT_EQ(*third->PixelAddress(2, 4, 2), 0x5C);
    EXPECT_EQ(AccessOf(result.Get(), 0).Base, first->BaseOf(0)) << "through every view of the chain";
    result.Reset();
    for (const FakeImage *image : {first.get(), second.get(), third.get()})
        EXPECT_EQ(image->Count(), 1);
}

TEST(CreateConcatenatedImage, OfCopiesHoldsNothingAndSharesNothing) {
    const auto first = Filled(2, 0x8, 9), second = Filled(1, 0x110, 10);
    const auto before = first->Pixels;
    const Handle result = Concatenated({first->Handle(), second->Handle()}, 0);
    EXPECT_EQ(first->Count(), 1);
    EXPECT_EQ(second->Count(), 1);
    const std::uint64_t value = 0x5C;
    ASSERT_TRUE(SetPixVal(result.Get(), 1, 0, 0, &value));
    EXPECT_EQ(first->Pixels, before);
    std::fill(second->Pixels.begin(), second->Pixels.end(), std::uint8_t{0});
    EXPECT_EQ(PixelBytes(result.Get(), 2), RandomContent(5, 3, 1, 0x110, 10)[0]);
}

TEST(CreateConcatenatedImage, GathersOneImageSeveralTimes) {
    const auto image = Filled(2, 0x8, 11);
    Handle result = Concatenated({image->Handle(), image->Handle(), image->Handle()}, 1);
    EXPECT_EQ(SizeOf(result.Get()), (ImageSize{6, 5, 3}));
    EXPECT_EQ(image->Count(), 7);
    for (std::intptr_t plane = 0; plane < 6; ++plane)
        EXPECT_EQ(PixelBytes(result.Get(), plane), PixelBytes(image->Handle(), plane % 2));
    result.Reset();
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateConcatenatedImage, GathersManyImages) {
    std::vector<std::unique_ptr<FakeImage>> images;
    std::vector<void *> handles;
    for (std::uint32_t number = 0; number < 60; ++number) {
        images.push_back(Filled(1, 0x8, number));
        handles.push_back(images.back()->Handle());
    }
    for (const unsigned char share : NotAndShared) {
        const Handle result = Concatenated(handles, share);
        ASSERT_EQ(SizeOf(result.Get()), (ImageSize{60, 5, 3}));
        for (std::size_t i = 0; i < 60; ++i)
            EXPECT_EQ(PixelBytes(result.Get(), static_cast<std::intptr_t>(i)), PixelBytes(handles[i], 0));
    }
    for (const auto &image : images)
        EXPECT_EQ(image->Count(), 1);
}

TEST(CreateConcatenatedImage, HasTheCoordinateMapOfTheFirst) {
    const auto first = Filled(1, 0x8, 12), second = Filled(1, 0x8, 13), third = Filled(1, 0x8, 14);
    first->Coordinates = SkewedMap;
    second->Coordinates = {1e6, 1e6, SkewedMap.Matrix}; // origins that would not meet
    for (const unsigned char share : NotAndShared) {
        const Handle result = Concatenated({first->Handle(), second->Handle(), third->Handle()}, share);
        EXPECT_TRUE(SameMap(MapOf(result.Get()), SkewedMap));
    }
    EXPECT_TRUE(SameMap(first->Coordinates, SkewedMap));
}

TEST(CreateConcatenatedImage, OfImagesWithoutPlanesHasTheOthersPlanes) {
    const auto none = Filled(0, 0x8, 15), some = Filled(2, 0x8, 16);
    for (const unsigned char share : NotAndShared) {
        EXPECT_EQ(SizeOf(Concatenated({none->Handle(), some->Handle(), none->Handle()}, share).Get()),
                  (ImageSize{2, 5, 3}));
        EXPECT_EQ(SizeOf(Concatenated({none->Handle(), none->Handle()}, share).Get()), (ImageSize{0, 5, 3}));
    }
}

TEST(CreateConcatenatedImage, ReportsAnEmptyArray) {
    const auto image = Filled(1, 0x8, 17);
    void *const images[] = {image->Handle()};
    for (const unsigned char share : NotAndShared)
        for (void *const *array : {static_cast<void *const *>(images), static_cast<void *const *>(nullptr)}) {
            ClearReports();
            void *out = UntouchedPointer();
            EXPECT_FALSE(CreateConcatenatedImage(array, 0, share, &out));
            EXPECT_EQ(out, UntouchedPointer());
            EXPECT_EQ(ReportCount(), 1);
            const auto report = TakeReport();
            ASSERT_TRUE(report.has_value());
            EXPECT_EQ(report->code, 0x80000002u);
            EXPECT_EQ(report->text, "Invalid input Array");
            EXPECT_EQ(report->function, Name);
        }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateConcatenatedImage, ReportsWhatIsNoImageAtAnyPlace) {
    const auto image = Filled(1, 0x8, 18), other = Filled(1, 0x8, 19, 6, 6);
    auto foreigners = ForeignHandles();
    for (const unsigned char share : NotAndShared)
        for (std::size_t place = 0; place < 3; ++place) {
            std::vector<void *> images(3, image->Handle());
            images[place] = nullptr;
            ExpectRefusal(images, share, 0x80000010u);
            for (const ForeignHandle &foreign : foreigners) {
                SCOPED_TRACE(foreign.Name);
                images[place] = foreign.Get();
                ExpectRefusal(images, share, 0x80000010u);
                EXPECT_EQ(foreign.Count(), 1);
            }
        }
    ExpectRefusal({nullptr}, 1, 0x80000010u);
    ExpectRefusal({foreigners[0].Get()}, 1, 0x80000010u);
    ExpectRefusal({image->Handle(), other->Handle(), nullptr}, 1, 0x80000010u); // before sizes are compared
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(other->Count(), 1);
}

TEST(CreateConcatenatedImage, ReportsUnequalSizes) {
    const auto image = Filled(1, 0x8, 20), wider = Filled(1, 0x8, 21, 6, 3), higher = Filled(1, 0x8, 22, 5, 4);
    const auto turned = Filled(0, 0x8, 23, 3, 5);
    for (const unsigned char share : NotAndShared)
        for (FakeImage *const odd : {wider.get(), higher.get(), turned.get()}) {
            ExpectRefusal({image->Handle(), odd->Handle()}, share, 0x8000001Au);
            ExpectRefusal({odd->Handle(), image->Handle()}, share, 0x8000001Au);
            ExpectRefusal({image->Handle(), image->Handle(), odd->Handle()}, share, 0x8000001Au);
            EXPECT_EQ(odd->Count(), 1);
        }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateConcatenatedImage, ReportsACopyThatFails) {
    const auto image = Filled(1, 0x8, 24), uncopied = Filled(2, 0x18, 25);
    for (const auto &images :
         {std::vector{image->Handle(), uncopied->Handle()}, std::vector{uncopied->Handle(), image->Handle()}}) {
        ClearReports();
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreateConcatenatedImage(images.data(), 2, 0, &out));
        EXPECT_EQ(out, UntouchedPointer());
        ExpectLastReport(4, 0x80000001u); // one for each plane and one for the image are the copy's own
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(uncopied->Count(), 1);
    }
    EXPECT_EQ(SizeOf(Concatenated({image->Handle(), uncopied->Handle()}, 1).Get()), (ImageSize{3, 5, 3}));
}

TEST(CreateConcatenatedImage, GivesEverythingBackWhenASourceThrowsOrFails) {
    const auto image = Filled(2, 0x8, 26), broken = Filled(1, 0x8, 27);
    void *const images[] = {image->Handle(), broken->Handle(), image->Handle()};
    for (const unsigned char share : NotAndShared)
        for (int failing = 0; failing < 40; ++failing)
            for (const bool throws : {false, true}) {
                int number = 0;
                broken->Fails = {};
                broken->Fails.OnOperation = [&] {
                    if (number++ < failing)
                        return;
                    if (throws)
                        throw std::runtime_error("refused");
                    broken->Fails.VPAStatus = StatusBadPlane;
                };
                ClearReports();
                void *out = UntouchedPointer();
                try {
                    const bool made = CreateConcatenatedImage(images, 3, share, &out);
                    EXPECT_EQ(made, out != UntouchedPointer());
                    EXPECT_EQ(made, ReportCount() == 0);
                } catch (const std::runtime_error &) {
                    EXPECT_TRUE(throws);
                    EXPECT_EQ(out, UntouchedPointer());
                }
                if (out != UntouchedPointer())
                    ReleaseObject(out);
                EXPECT_EQ(image->Count(), 1) << "operation " << failing;
                EXPECT_EQ(broken->Count(), 1) << "operation " << failing;
            }
}

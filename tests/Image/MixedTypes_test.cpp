// Images whose planes have different data types: what is compatible with them, and their duplicates.
#include "Image/MapModel.h"
#include "ImageCopies.h"
#include "ImageMaps.h"
#include "ImageQueries.h"

namespace {

using namespace TestSupport;

using Types = std::vector<TDataType>;

constexpr unsigned char OverlayFlags[] = {1, 2, 255};
const Types Mixtures[] = {{0x8, 0x10},
                          {0x10, 0x8},
                          {0x8, 0x108},
                          {0x408, 0x8},
                          {0x8, 0x8, 0x220},
                          {0x240, 0x8, 0x8},
                          {0x120, 0x20, 0x220},
                          {0x40, 0x140, 0x240, 0x8},
                          {0x110, 0x8, 0x8, 0x8},
                          {0x8, 0x10, 0x20, 0x40, 0x108, 0x110, 0x120, 0x140, 0x220, 0x240}};

/// Random planes of the types, each in the layout of that number of LayoutRules, over a block of its own.
class MixedImage {
public:
    MixedImage(const Types &types, std::intptr_t width, std::intptr_t height, std::uint32_t seed) {
        image = std::make_unique<FakeImage>(width, height);
        for (std::size_t plane = 0; plane < types.size(); ++plane) {
            const auto rules = LayoutRules(width, height, 1, types[plane]);
            const auto content = RandomContent(width, height, 1, types[plane], seed++);
            blocks.push_back(MakeFake(rules[(plane + seed) % rules.size()], content, width, height, types[plane]));
            FakeImage *const block = blocks.back().Fake.get();
            image->AddPlane(
                block->BaseOf(0), types[plane], [=](auto i) { return block->TableOf(0)[i].XEntry; },
                [=](auto j) { return block->TableOf(0)[j].YEntry; });
            Content.push_back(blocks.back().Content[0]);
        }
        image->Coordinates = SkewedMap;
    }
    FakeImage *operator->() const { return image.get(); }
    std::vector<PlaneBytes> Content;

private:
    std::vector<NamedImage> blocks;
    std::unique_ptr<FakeImage> image;
};

void ExpectTypedPlanes(void *image, const Types &types, std::intptr_t width, std::intptr_t height, TDataType mark) {
    ASSERT_EQ(SizeOf(image), (ImageSize{std::ssize(types), width, height}));
    EXPECT_EQ(RefCount(image), 1u);
    EXPECT_FALSE(IsInterface(image, ORV_IID_IIMAGEDIB));
    for (std::size_t i = 0; i < types.size(); ++i) {
        const auto plane = static_cast<std::intptr_t>(i);
        const auto bytes = static_cast<std::intptr_t>(PixelSize(types[i]));
        EXPECT_EQ(TypeOf(image, plane), types[i] | mark);
        ExpectTable(
            AccessOf(image, plane).Table, width, height, [=](std::intptr_t x) { return x * bytes; },
            [=](std::intptr_t y) { return y * width * bytes; });
    }
}

void ExpectDuplicate(FakeImage &image, const Types &types, const std::vector<PlaneBytes> &content) {
    ClearReports();
    Handle copy;
    ASSERT_EQ(CreateDuplicateImage(image.Handle(), copy.Out()), 1);
    ExpectNoReport();
    EXPECT_EQ(image.Count(), 1);
    const ImageSize size = SizeOf(image.Handle());
    ASSERT_NO_FATAL_FAILURE(ExpectTypedPlanes(copy.Get(), types, size.Width, size.Height, 0));
    EXPECT_TRUE(SameMap(MapOf(copy.Get()), SkewedMap));
    for (std::size_t plane = 0; plane < types.size(); ++plane)
        ASSERT_EQ(PixelBytes(copy.Get(), static_cast<std::intptr_t>(plane)), content[plane]) << "plane " << plane;
}

} // namespace

TEST(CompatibleWithMixedTypes, HasATypedPlaneForEachDataType) {
    for (const Types &types : Mixtures) {
        const MixedImage image(types, 7, 5, 1);
        for (const auto &[width, height] :
             {std::pair<std::intptr_t, std::intptr_t>{7, 5}, {1, 1}, {3, 20}, {64, 2}}) {
            ClearReports();
            Handle result;
            ASSERT_TRUE(CreateCompatibleImage(image->Handle(), width, height, 0, result.Out()));
            ExpectNoReport();
            ExpectTypedPlanes(result.Get(), types, width, height, 0);
            EXPECT_EQ(image->Count(), 1);
        }
    }
}

TEST(CompatibleWithMixedTypes, TakesBothSizesFromTheImageWhenEitherIsZero) {
    const MixedImage image({0x10, 0x8}, 7, 5, 2);
    for (const auto &[width, height] :
         {std::pair<std::intptr_t, std::intptr_t>{0, 0}, {0, 100}, {100, 0}, {0, -7}, {Lowest, 0}}) {
        Handle result;
        ASSERT_TRUE(CreateCompatibleImage(image->Handle(), width, height, 0, result.Out()));
        EXPECT_EQ(SizeOf(result.Get()), (ImageSize{2, 7, 5}));
    }
}

TEST(CompatibleWithMixedTypes, MarksEveryPlaneAsOverlayOnDemand) {
    for (const Types &types : Mixtures)
        for (const unsigned char overlay : OverlayFlags) {
            const MixedImage image(types, 4, 3, 3);
            Handle result;
            ASSERT_TRUE(CreateCompatibleImage(image->Handle(), 0, 0, overlay, result.Out()));
            ExpectTypedPlanes(result.Get(), types, 4, 3, 0x400);
        }
}

TEST(CompatibleWithMixedTypes, HasPlanesInMemoryOfTheirOwn) {
    const Types types = {0x8, 0x40, 0x8, 0x110};
    const MixedImage image(types, 4, 3, 4);
    const auto before = image.Content;
    Handle result;
    ASSERT_TRUE(CreateCompatibleImage(image->Handle(), 0, 0, 0, result.Out()));
    for (std::intptr_t plane = 0; plane < 4; ++plane)
        std::memset(AccessOf(result.Get(), plane).At(0, 0), static_cast<int>(plane + 1),
                    12 * PixelSize(types[static_cast<std::size_t>(plane)]));
    for (std::intptr_t plane = 0; plane < 4; ++plane) {
        const PlaneBytes bytes = PixelBytes(result.Get(), plane);
        EXPECT_EQ(std::count(bytes.begin(), bytes.end(), plane + 1), std::ssize(bytes));
        EXPECT_EQ(PixelBytes(image->Handle(), plane), before[static_cast<std::size_t>(plane)]);
    }
}

TEST(CompatibleWithMixedTypes, TakesNoCoordinatesOver) {
    const MixedImage image({0x8, 0x10}, 4, 3, 5);
    Handle result;
    ASSERT_TRUE(CreateCompatibleImage(image->Handle(), 0, 0, 0, result.Out()));
    EXPECT_TRUE(SameMap(MapOf(result.Get()), IdentityMap));
}

TEST(CompatibleWithMixedTypes, ReportsANegativeSizeWhenNeitherIsZero) {
    const MixedImage image({0x8, 0x10}, 4, 3, 6);
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{-1, 1}, {1, -1}, {Lowest, Highest}}) {
        ClearReports();
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreateCompatibleImage(image->Handle(), width, height, 0, &out));
        EXPECT_EQ(out, UntouchedPointer());
        ExpectOneReport(0x8000001Au, "CreateCompatibleImage");
    }
}

TEST(CompatibleWithMixedTypes, GivesFalseWithoutAReportForASizeBeyondMemory) {
    for (const Types &types : Mixtures)
        for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{Highest, Highest},
                                            {Highest, 1},
                                            {Highest / 8, 8},
                                            {1, Highest}}) {
            const MixedImage image(types, 4, 3, 7);
            ClearReports();
            void *out = UntouchedPointer();
            EXPECT_FALSE(CreateCompatibleImage(image->Handle(), width, height, 1, &out));
            EXPECT_EQ(out, UntouchedPointer());
            ExpectNoReport();
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CompatibleWithMixedTypes, OfViewsIsTheSame) {
    const Types types = {0x10, 0x8, 0x240};
    const MixedImage image(types, 6, 4, 8);
    Handle turned, result;
    ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), 1, turned.Out()));
    ASSERT_TRUE(CreateCompatibleImage(turned.Get(), 0, 0, 0, result.Out()));
    ExpectTypedPlanes(result.Get(), types, 4, 6, 0);
    ASSERT_TRUE(CreateImageSubList(image->Handle(), 1, 2, 1, turned.Out()));
    ASSERT_TRUE(CreateCompatibleImage(turned.Get(), 0, 0, 0, result.Out()));
    ExpectTypedPlanes(result.Get(), {0x8, 0x240}, 6, 4, 0);
}

TEST(DuplicateOfMixedTypes, EqualsItsSourceInEveryPixel) {
    std::uint32_t seed = 100;
    for (const Types &types : Mixtures)
        for (const auto &[width, height] :
             {std::pair<std::intptr_t, std::intptr_t>{1, 1}, {1, 9}, {9, 1}, {7, 5}, {33, 17}})
            for (int round = 0; round < 12; ++round) {
                const MixedImage image(types, width, height, ++seed);
                ASSERT_NO_FATAL_FAILURE(ExpectDuplicate(*image.operator->(), types, image.Content))
                    << "seed " << seed;
            }
}

TEST(DuplicateOfMixedTypes, IsIndependentOfItsSource) {
    const MixedImage image({0x8, 0x20, 0x8}, 5, 3, 9);
    const auto before = image.Content;
    Handle copy;
    ASSERT_EQ(CreateDuplicateImage(image->Handle(), copy.Out()), 1);
    for (std::intptr_t plane = 0; plane < 3; ++plane) {
        std::memset(AccessOf(copy.Get(), plane).At(0, 0), 0x5A, 15 * PixelSize(TypeOf(copy.Get(), plane)));
        EXPECT_EQ(PixelBytes(image->Handle(), plane), before[static_cast<std::size_t>(plane)]);
    }
}

TEST(DuplicateOfMixedTypes, OfAViewOwnsItsPixels) {
    const MixedImage image({0x10, 0x8}, 6, 4, 10);
    Handle view, copy;
    ASSERT_TRUE(CreateImageMap(image->Handle(), 1, 1, 4, 3, 8, 2, view.Out()));
    ASSERT_EQ(CreateDuplicateImage(view.Get(), copy.Out()), 1);
    for (std::intptr_t plane = 0; plane < 2; ++plane)
        EXPECT_EQ(PixelBytes(copy.Get(), plane), PixelBytes(view.Get(), plane));
    EXPECT_TRUE(SameMap(MapOf(copy.Get()), MapOf(view.Get())));
    view.Reset();
    EXPECT_EQ(image->Count(), 1);
}

TEST(DuplicateOfMixedTypes, ReportsEachPlaneThatIsNotCopiedAndThenOne) {
    const Types types = {0x18, 0x8, 0x30, 0x110};
    const MixedImage image(types, 5, 3, 11);
    ClearReports();
    Handle copy;
    EXPECT_EQ(CreateDuplicateImage(image->Handle(), copy.Out()), 1);
    EXPECT_EQ(ReportCount(), 3);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, 1u);
    EXPECT_EQ(report->function, "CreateDuplicateImage");
    ASSERT_EQ(SizeOf(copy.Get()), (ImageSize{4, 5, 3}));
    EXPECT_EQ(PixelBytes(copy.Get(), 1), image.Content[1]);
    EXPECT_EQ(PixelBytes(copy.Get(), 3), image.Content[3]);
    EXPECT_EQ(image->Count(), 1);
}

TEST(DuplicateOfMixedTypes, FailsWhenNoPlaneCanBeCopied) {
    const MixedImage image({0x18, 0x30, 0x28}, 5, 3, 12);
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_EQ(CreateDuplicateImage(image->Handle(), &out), 0);
    EXPECT_EQ(out, UntouchedPointer());
    EXPECT_EQ(ReportCount(), 4);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, 0x8000001Cu);
    EXPECT_EQ(report->function, "CreateDuplicateImage");
    EXPECT_EQ(image->Count(), 1);
}

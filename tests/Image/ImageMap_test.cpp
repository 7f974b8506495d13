// Rectangles shown at another size: every table entry, the pixels of all layouts, coordinates, and what is refused.
#include "Image/MapModel.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"

namespace {

using namespace TestSupport;

Handle MapPart(void *image, const PixelRectangle &part, std::intptr_t width, std::intptr_t height) {
    Handle view;
    EXPECT_TRUE(CreateImageMap(image, part.Left, part.Top, part.Right, part.Bottom, width, height, view.Out()));
    return view;
}

/// An image whose offsets nothing reads pixels through; each plane has its own.
struct RandomTables {
    RandomTables(std::mt19937_64 &random, std::intptr_t width, std::intptr_t height, std::size_t planes)
        : Image(std::make_unique<FakeImage>(width, height, planes)) {
        for (std::size_t plane = 0; plane < planes; ++plane) {
            X.push_back(RandomOffsets(random, width));
            Y.push_back(RandomOffsets(random, height));
            Image->AddPlane(Image->Pixels.data() + plane, 8, EntriesOf(X.back()), EntriesOf(Y.back()));
        }
    }
    std::unique_ptr<FakeImage> Image;
    std::vector<Offsets> X, Y;
};

/// Every entry of a view's tables against those of the image that it shows.
void ExpectMappedTables(void *view, void *image, const PixelRectangle &part, std::intptr_t width,
                        std::intptr_t height) {
    const ImageSize size = SizeOf(image);
    ASSERT_EQ(SizeOf(view), (ImageSize{size.Planes, width, height}));
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane) {
        const PlaneAccess shown = AccessOf(view, plane);
        const PlaneAccess source = AccessOf(image, plane);
        const Offsets x = AxisOf(source.Table, &VPAEntry::XEntry, size.Width);
        const Offsets y = AxisOf(source.Table, &VPAEntry::YEntry, size.Height);
        ASSERT_EQ(shown.Base, source.Base);
        ASSERT_NE(shown.Table, source.Table) << "the table is the view's own";
        ASSERT_TRUE(AxisIs(shown.Table, &VPAEntry::XEntry, ShownOffsets(x, part.Left, part.Right, width)));
        ASSERT_TRUE(AxisIs(shown.Table, &VPAEntry::YEntry, ShownOffsets(y, part.Top, part.Bottom, height)));
    }
}

constexpr PixelRectangle BadRectangles[] = {{-1, 0, 3, 3},
                                            {0, -1, 3, 3},
                                            {0, 0, 5, 3},
                                            {0, 0, 3, 4},
                                            {2, 0, 1, 3},
                                            {0, 2, 3, 1},
                                            {Lowest, 0, 3, 3},
                                            {0, Lowest, 3, 3},
                                            {0, 0, Highest, 3},
                                            {0, 0, 3, Highest},
                                            {5, 0, 5, 3},
                                            {0, 4, 3, 4},
                                            {Highest, 0, 3, 3},
                                            {0, Highest, 3, 3},
                                            {0, 0, Lowest, 3},
                                            {0, 0, 3, Lowest},
                                            {0, 0, -1, -1},
                                            {Lowest, Lowest, Highest, Highest},
                                            {Highest, 0, Lowest, 3},
                                            {Highest, Highest, Highest, Highest},
                                            {Lowest, Lowest, Lowest, Lowest}};

} // namespace

TEST(CreateImageMap, OfAWholeImageAtItsSizeHasTheSourcesTables) {
    std::mt19937_64 random(1);
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{1, 1}, {9, 4}, {4, 9}, {1, 30}}) {
        const RandomTables source(random, width, height, 3);
        const Handle view = MapPart(source.Image->Handle(), {0, 0, width - 1, height - 1}, width, height);
        ASSERT_EQ(SizeOf(view.Get()), (ImageSize{3, width, height}));
        for (std::size_t plane = 0; plane < 3; ++plane) {
            const PlaneAccess shown = AccessOf(view.Get(), static_cast<std::intptr_t>(plane));
            EXPECT_EQ(shown.Base, source.Image->BaseOf(plane));
            EXPECT_TRUE(AxisIs(shown.Table, &VPAEntry::XEntry, source.X[plane]));
            EXPECT_TRUE(AxisIs(shown.Table, &VPAEntry::YEntry, source.Y[plane]));
        }
    }
}

TEST(CreateImageMap, Of100ColumnsIn50TakesEverySecondColumn) {
    std::mt19937_64 random(2);
    const RandomTables source(random, 130, 3, 1);
    const Handle view = MapPart(source.Image->Handle(), {17, 0, 116, 2}, 50, 3);
    Offsets everySecond;
    for (std::size_t i = 0; i < 50; ++i)
        everySecond.push_back(source.X[0][17 + 2 * i]);
    EXPECT_TRUE(AxisIs(AccessOf(view.Get(), 0).Table, &VPAEntry::XEntry, everySecond));
    EXPECT_TRUE(AxisIs(AccessOf(view.Get(), 0).Table, &VPAEntry::YEntry, source.Y[0]));
}

TEST(CreateImageMap, RepeatsColumnsAndRowsWhenItEnlarges) {
    std::uint8_t pixels[] = {9, 9, 9, 9, 9, 1, 2, 9, 9, 3, 4, 9};
    Handle image;
    ASSERT_EQ(CreateImageFromPointer(pixels, 12, 4, 3, 1, 8, 1, 4, 0, nullptr, nullptr, nullptr, image.Out()), 0);
    const Handle view = MapPart(image.Get(), {1, 1, 2, 2}, 5, 3);
    EXPECT_EQ(PixelBytes(view.Get(), 0), (PlaneBytes{1, 1, 1, 2, 2, 1, 1, 1, 2, 2, 3, 3, 3, 4, 4}));
}

// Required: the product is taken in double; 11 * (30 / 22) is just below 15, not 15.
TEST(CreateImageMap, TakesTheFloorOfTheProductInDouble) {
    std::mt19937_64 random(3);
    const RandomTables source(random, 30, 30, 1);
    const Handle view = MapPart(source.Image->Handle(), {0, 0, 29, 29}, 22, 22);
    const PlaneAccess shown = AccessOf(view.Get(), 0);
    EXPECT_EQ(shown.Table[11].XEntry, source.X[0][14]);
    EXPECT_EQ(shown.Table[11].YEntry, source.Y[0][14]);
    EXPECT_EQ(shown.Table[12].XEntry, source.X[0][16]);
}

TEST(CreateImageMap, OfRandomPartsAndSizesHasTheNaiveTables) {
    std::mt19937_64 random(4);
    std::uniform_int_distribution<std::intptr_t> sourceSize(1, 60), targetSize(1, 90);
    for (int number = 0; number < 2000; ++number) {
        const std::intptr_t width = sourceSize(random), height = sourceSize(random);
        const RandomTables source(random, width, height, 1 + random() % 3);
        const PixelRectangle part = RandomPart(random, width, height);
        const std::intptr_t targetWidth = targetSize(random), targetHeight = targetSize(random);
        const Handle view = MapPart(source.Image->Handle(), part, targetWidth, targetHeight);
        ASSERT_NO_FATAL_FAILURE(
            ExpectMappedTables(view.Get(), source.Image->Handle(), part, targetWidth, targetHeight))
            << "case " << number << ", " << testing::PrintToString(part) << " of " << width << " x " << height
            << " at " << targetWidth << " x " << targetHeight;
    }
}

TEST(CreateImageMap, ShowsThePixelsOfEveryLayoutAndType) {
    std::mt19937_64 random(5);
    std::uint32_t seed = 50;
    for (const TDataType type : TenPixelTypes)
        for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{1, 1}, {1, 9}, {7, 5}})
            for (const NamedImage &image : MakeLayouts(width, height, 3, type, ++seed)) {
                const PixelRectangle part = RandomPart(random, width, height);
                const auto targetWidth = static_cast<std::intptr_t>(1 + random() % 12);
                const auto targetHeight = static_cast<std::intptr_t>(1 + random() % 12);
                const Handle view = MapPart(image.Get(), part, targetWidth, targetHeight);
                for (std::size_t plane = 0; plane < 3; ++plane) {
                    const Raster source{width, height, PixelSize(type), image.Content[plane]};
                    ASSERT_EQ(TypeOf(view.Get(), static_cast<std::intptr_t>(plane)), type);
                    ASSERT_EQ(PixelBytes(view.Get(), static_cast<std::intptr_t>(plane)),
                              ShownRaster(source, part, targetWidth, targetHeight).Bytes)
                        << image.Name << ", type " << type << ", " << testing::PrintToString(part);
                }
            }
}

TEST(CreateImageMap, OfMapsOfTurnedMapsShowsTheRightPixels) {
    std::mt19937_64 random(6);
    for (std::uint32_t number = 0; number < 30; ++number)
        for (const NamedImage &image : MakeLayouts(9, 6, 2, 16, number)) {
            Raster shown[] = {{9, 6, 2, image.Content[0]}, {9, 6, 2, image.Content[1]}};
            Handle view;
            for (int step = 0; step < 5; ++step) {
                void *const source = step == 0 ? image.Get() : view.Get();
                const PixelRectangle part = RandomPart(random, shown[0].Width, shown[0].Height);
                const auto width = static_cast<std::intptr_t>(1 + random() % 14);
                const auto height = static_cast<std::intptr_t>(1 + random() % 14);
                const auto quarters = static_cast<std::uint32_t>(1 + random() % 3);
                Handle map = MapPart(source, part, width, height);
                ASSERT_NO_FATAL_FAILURE(ExpectMappedTables(map.Get(), source, part, width, height));
                ASSERT_TRUE(CreateRotatedImageMap(map.Get(), quarters, view.Out()));
                for (std::size_t plane = 0; plane < 2; ++plane) {
                    shown[plane] = Turned(ShownRaster(shown[plane], part, width, height), quarters);
                    ASSERT_EQ(PixelBytes(view.Get(), static_cast<std::intptr_t>(plane)), shown[plane].Bytes)
                        << image.Name << ", case " << number << ", step " << step;
                }
            }
        }
}

TEST(CreateImageMap, OfGenericImagesShowsTheirPixels) {
    for (const std::intptr_t planes : {1, 2, 3}) {
        Handle image;
        ASSERT_TRUE(CreateGenericImage(planes, 6, 4, false, image.Out()));
        for (std::intptr_t plane = 0; plane < planes; ++plane)
            for (std::intptr_t i = 0; i < 24; ++i)
                *AccessOf(image.Get(), plane).At(i % 6, i / 6) = static_cast<std::uint8_t>(100 * plane + i);
        const Handle view = MapPart(image.Get(), {1, 1, 4, 3}, 2, 3);
        EXPECT_EQ(SizeOf(view.Get()), (ImageSize{planes, 2, 3}));
        for (std::intptr_t plane = 0; plane < planes; ++plane) {
            PlaneBytes expected;
            for (const int i : {7, 9, 13, 15, 19, 21})
                expected.push_back(static_cast<std::uint8_t>(100 * plane + i));
            EXPECT_EQ(PixelBytes(view.Get(), plane), expected);
        }
    }
}

// Required: the coordinate system moves with the cut and is never scaled.
TEST(CreateImageMap, MovesTheOriginAndLeavesTheMatrix) {
    const auto image = FakeImage::Planar(9, 8, 1, 8);
    image->Coordinates = SkewedMap;
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{5, 4}, {1, 1}, {50, 2}}) {
        const Handle view = MapPart(image->Handle(), {3, 2, 7, 5}, width, height);
        EXPECT_TRUE(SameMap(MapOf(view.Get()), {7.0, -22.5, SkewedMap.Matrix}));
        EXPECT_TRUE(SameMap(image->Coordinates, SkewedMap));
        ImageInterface(view.Get())->SetCoordinateMap(IdentityMap);
        EXPECT_TRUE(SameMap(image->Coordinates, SkewedMap)) << "the view has a map of its own";
    }
}

TEST(CreateImageMap, TakesEachPlanesDataTypeOver) {
    FakeImage image(2, 2, 64);
    const TDataType types[] = {0x408, 0x110, 0x240, 0x1, 0x18, 0x8FF};
    for (const TDataType type : types)
        image.AddPlane(
            image.Pixels.data(), type, [](auto) { return 0; }, [](auto) { return 0; });
    const Handle view = MapPart(image.Handle(), {0, 0, 1, 1}, 3, 3);
    for (std::intptr_t plane = 0; plane < 6; ++plane)
        EXPECT_EQ(ImageDatatype(view.Get(), plane), types[plane]);
    EXPECT_TRUE(HasOverlay(view.Get()));
}

TEST(CreateImageMap, OfAnImageWithoutPlanesHasTheTargetsSize) {
    FakeImage image(5, 4);
    const Handle view = MapPart(image.Handle(), {1, 1, 3, 3}, 7, 2);
    EXPECT_EQ(SizeOf(view.Get()), (ImageSize{0, 7, 2}));
    EXPECT_EQ(image.Count(), 1);
}

TEST(CreateImageMap, RefusesWhatIsNoImage) {
    const auto map = [](void *image) {
        return [image](void **out) { return CreateImageMap(image, 0, 0, 0, 0, 1, 1, out); };
    };
    ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(), map(nullptr));
    for (const ForeignHandle &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(), map(foreign.Get()));
        EXPECT_EQ(foreign.Count(), 1);
    }
}

TEST(CreateImageMap, RefusesARectangleThatIsNotInside) {
    const auto image = FakeImage::Planar(5, 4, 2, 8);
    for (const PixelRectangle &part : BadRectangles) {
        SCOPED_TRACE(testing::PrintToString(part));
        ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(), [&](void **out) {
            return CreateImageMap(image->Handle(), part.Left, part.Top, part.Right, part.Bottom, 2, 2, out);
        });
        EXPECT_EQ(image->Count(), 1);
    }
    FakeImage empty(0, 0);
    ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(),
                        [&](void **out) { return CreateImageMap(empty.Handle(), 0, 0, 0, 0, 2, 2, out); });
}

TEST(CreateImageMap, RefusesASizeThatNoImageHas) {
    const auto image = FakeImage::Planar(5, 4, 2, 8);
    constexpr std::intptr_t beyond32Bits = std::intptr_t{1} << 31;
    for (const std::intptr_t size : {std::intptr_t{0}, std::intptr_t{-1}, std::intptr_t{-8}, std::intptr_t{-9},
                                     Lowest, Lowest + 8, beyond32Bits, Highest - 8, Highest})
        for (const auto &[width, height] :
             {std::pair<std::intptr_t, std::intptr_t>{size, 3}, {3, size}, {size, size}}) {
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            ExpectSilentRefusal(UntouchedPointer(), nullptr, [&, w = width, h = height](void **out) {
                return CreateImageMap(image->Handle(), 0, 0, 4, 3, w, h, out);
            });
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CreateImageMap, RefusesAPlaneThatTheSourceRefuses) {
    const auto image = FakeImage::Planar(5, 4, 3, 8);
    const auto map = [&](void **out) { return CreateImageMap(image->Handle(), 0, 0, 4, 3, 2, 2, out); };
    for (std::ptrdiff_t allowed = 0; allowed < 3; ++allowed) {
        image->ClearCalls();
        image->Fails.OnOperation = [&] {
            image->Fails.VPAStatus = image->CallsOf("GetPlaneVPA") > allowed ? StatusBadPlane : 0;
        };
        ExpectSilentRefusal(UntouchedPointer(), nullptr, map);
        EXPECT_EQ(image->Count(), 1);
    }
    image->Fails = {};
    image->Fails.DatatypeStatus = StatusBadPlane;
    ExpectSilentRefusal(UntouchedPointer(), nullptr, map);
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateImageMap, RefusesASourceThatLosesItsInterface) {
    const auto image = FakeImage::Planar(5, 4, 3, 8);
    image->Fails.OnOperation = [&] { image->Fails.QueryGivesNull = true; };
    ExpectSilentRefusal(UntouchedPointer(), nullptr,
                        [&](void **out) { return CreateImageMap(image->Handle(), 0, 0, 4, 3, 2, 2, out); });
    EXPECT_EQ(image->Count(), 1);
}

// Required: a rectangle that isn't inside any more when a plane is built arrives as a plain text.
TEST(CreateImageMap, OfASourceThatLosesItsSizePassesTheTextOn) {
    std::vector<std::string> texts;
    for (std::ptrdiff_t told = 0; told < 6; ++told) {
        const auto image = FakeImage::Planar(5, 4, 1, 8);
        image->Fails.OnOperation = [&] {
            image->Fails.DimensionsStatus = image->CallsOf("GetImageDimensions") > told ? StatusBadPlane : 0;
        };
        void *out = nullptr;
        try {
            const bool made = CreateImageMap(image->Handle(), 1, 1, 4, 3, 2, 2, &out);
            EXPECT_EQ(made, out != nullptr);
        } catch (const char *text) {
            texts.emplace_back(text);
            EXPECT_EQ(out, nullptr);
        }
        ReleaseObject(out);
        EXPECT_EQ(image->Count(), 1) << told << " times told";
    }
    EXPECT_EQ(texts, std::vector<std::string>{"SourceRectangle outside Image in AffineMap"});
}

TEST(CreateImageMap, PassesOnWhatAnOperationOfTheSourceThrows) {
    const auto image = FakeImage::Planar(5, 4, 2, 8);
    const auto map = [&](void **out) { EXPECT_TRUE(CreateImageMap(image->Handle(), 0, 0, 4, 3, 2, 2, out)); };
    ExpectPassedOn<std::runtime_error>(*image, map);
    ExpectPassedOn<std::out_of_range>(*image, map);
    ExpectPassedOn<std::logic_error>(*image, map);
    ExpectPassedOn<std::string>(*image, map);
}

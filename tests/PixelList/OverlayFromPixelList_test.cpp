/* A list drawn as marks into the overlay of a copy of an image: which pixels are marked, what is copied, and what is
 * reported when there is nothing to draw or no copy to be had. */
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "PixelList/NoLists.h"
#include "PixelList/OverlayModel.h"

namespace {

using namespace TestSupport;

constexpr char NoOutputImage[] = "Unable to create output image";
constexpr char Name[] = "CreateOverlayFromPixelList";

class OverlayFromPixelListTest : public PixelListTest {
protected:
    /// Draws and expects success without a report.
    static Handle Draw(const Points &points, FakeImage &image) {
        const Handle list = ListOf(static_cast<std::int64_t>(points.at(0).size()), points);
        void *out = UntouchedPointer();
        EXPECT_TRUE(CreateOverlayFromPixelList(list.Get(), image.Handle(), &out));
        EXPECT_NE(out, UntouchedPointer());
        ExpectNoReport();
        EXPECT_TRUE(Holds(list.Get(), points));
        EXPECT_EQ(image.Count(), 1);
        EXPECT_EQ(RefCount(out), 1u);
        return Handle(out);
    }
    static void ExpectFailure(void *list, void *image, std::intptr_t reports) {
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreateOverlayFromPixelList(list, image, &out));
        EXPECT_EQ(out, UntouchedPointer());
        ExpectReports(reports, ErrGeneral, Name, NoOutputImage);
    }
};

TEST_F(OverlayFromPixelListTest, SetsBitZeroOfThePixelsListedAndClearsAllOthers) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    image->Pixels = {255, 255, 254, 7, 6, 0};
    image->AddPlane(
        image->Pixels.data(), 8, [](auto i) { return i; }, [](auto j) { return j * 3; });
    const PlaneBytes before = image->Pixels;
    const auto fresh = FakeImage::Planar(3, 2, 1, 8);
    std::copy(before.begin(), before.end(), fresh->PixelAddress(0, 0, 0));
    const Handle result = Draw({{0, 0}, {2, 1}, {0, 1}}, *fresh);
    EXPECT_EQ(PixelBytes(result.Get(), 0), (PlaneBytes{255, 254, 254, 7, 6, 1}));
    EXPECT_EQ(PixelBytes(fresh->Handle(), 0), before);
}

TEST_F(OverlayFromPixelListTest, KeepsTheMarksOfAnOverlayImage) {
    const auto image = FakeImage::Planar(3, 2, 1, 0x408);
    const std::uint8_t pixels[] = {255, 254, 1, 0, 6, 7};
    std::copy(std::begin(pixels), std::end(pixels), image->PixelAddress(0, 0, 0));
    const Handle result = Draw({{1, 0}, {0, 0}}, *image);
    EXPECT_EQ(PixelBytes(result.Get(), 0), (PlaneBytes{255, 255, 1, 0, 6, 7}));
}

TEST_F(OverlayFromPixelListTest, OneOverlayPlaneMakesAnOverlayImage) {
    const auto image = OfTypes({0x8, 0x408, 0x10}, 3, 2);
    const Handle result = Draw({{1, 1}}, *image);
    for (const std::intptr_t plane : {0, 1, 2}) {
        const TDataType type = TypeOf(image->Handle(), plane);
        EXPECT_EQ(TypeOf(result.Get(), plane), type);
        EXPECT_EQ(PixelBytes(result.Get(), plane),
                  Marked(PixelBytes(image->Handle(), plane), PixelSize(type), 3, 2, {{1, 1}}));
    }
}

TEST_F(OverlayFromPixelListTest, TruncatesCoordinatesTowardsZero) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    const Points points = {{-0.5, 0}, {-0.999999, 1.999}, {3.999, 2.75}, {1, -0.75}};
    const Handle result = Draw(points, *image);
    EXPECT_EQ(PixelBytes(result.Get(), 0), (PlaneBytes{1, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1}));
}

TEST_F(OverlayFromPixelListTest, SkipsPointsOutsideSilently) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    Points points = {{-1, 0}, {0, -1}, {4, 0}, {0, 3}, {-1.5, 1}, {99, 99}, {-99, -99}};
    for (const double far : {NaN, Infinity, -Infinity, Huge, -Huge, 1e10, -1e10, 4294967296.0, 9223372036854775808.0,
                             -9223372036854775808.0, 18446744073709551616.0}) {
        points.push_back({far, 1});
        points.push_back({1, far});
        points.push_back({far, far});
    }
    const Handle result = Draw(points, *image);
    EXPECT_EQ(PixelBytes(result.Get(), 0), PlaneBytes(12, 0));
}

TEST_F(OverlayFromPixelListTest, LooksAtTheFirstTwoComponentsOnly) {
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    for (const std::size_t dimension : {2u, 3u, 256u}) {
        Point point(dimension, NaN);
        point[0] = 1, point[1] = 0;
        EXPECT_EQ(PixelBytes(Draw({point, point}, *image).Get(), 0), (PlaneBytes{0, 1, 0, 0}));
    }
}

TEST_F(OverlayFromPixelListTest, MarksEveryPlane) {
    const auto image = OfTypes({0x8, 0x108, 0x10, 0x110, 0x20, 0x120, 0x40, 0x140}, 5, 4);
    const Points points = {{0, 0}, {4, 3}, {2, 1}};
    const Handle result = Draw(points, *image);
    ASSERT_EQ(SizeOf(result.Get()), (ImageSize{8, 5, 4}));
    EXPECT_TRUE(IsOverlayImage(result.Get()));
    for (std::intptr_t plane = 0; plane < 8; ++plane) {
        const TDataType type = TypeOf(image->Handle(), plane);
        const std::size_t size = PixelSize(type);
        EXPECT_EQ(TypeOf(result.Get(), plane), type | DataTypeOverlay);
        EXPECT_EQ(PixelBytes(result.Get(), plane),
                  Marked(Unmarked(PixelBytes(image->Handle(), plane), size), size, 5, 4, points));
    }
}

TEST_F(OverlayFromPixelListTest, HasTheCoordinateMapOfTheImage) {
    for (const TDataType type : {0x8u, 0x408u, 0x10u}) {
        const auto image = FakeImage::Planar(2, 2, 1, type);
        image->Coordinates = {1.5, -2, {0, 1, -1, 0.25}};
        const Handle result = Draw({{1, 1}}, *image);
        TCoordinateMap map{};
        ImageInterface(result.Get())->GetCoordinateMap(&map);
        EXPECT_TRUE(SameMap(map, image->Coordinates));
    }
}

TEST_F(OverlayFromPixelListTest, MarksAPlaneThatNoOverlayCanBeCopiedTo) {
    const Points points = {{0, 0}, {2, 1}};
    for (const TDataType odd : {0x220u, 0x240u, 0x18u}) {
        const auto image = OfTypes({0x8, odd}, 3, 2);
        const Handle list = ListOf(2, points);
        Handle result;
        EXPECT_TRUE(CreateOverlayFromPixelList(list.Get(), image->Handle(), result.Out()));
        ExpectReports(2, 1, "CreateOverlayImage");
        EXPECT_EQ(PixelBytes(result.Get(), 0), Marked(Unmarked(PixelBytes(image->Handle(), 0), 1), 1, 3, 2, points));
        for (const auto &point : points)
            EXPECT_EQ(*AccessOf(result.Get(), 1).At(static_cast<int>(point[0]), static_cast<int>(point[1])) & 1, 1);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_F(OverlayFromPixelListTest, MarksFloatPlanesOfAnOverlayImage) {
    const auto image = OfTypes({0x620, 0x640, 0x408}, 3, 2);
    const Handle result = Draw({{2, 1}, {0, 0}}, *image);
    for (const std::intptr_t plane : {0, 1, 2})
        EXPECT_EQ(PixelBytes(result.Get(), plane),
                  Marked(PixelBytes(image->Handle(), plane), PixelSize(TypeOf(image->Handle(), plane)), 3, 2,
                         {{2, 1}, {0, 0}}));
}

TEST_F(OverlayFromPixelListTest, MarksTheZerosOfAnOverlayPlaneThatCanNotBeCopied) {
    const auto image = OfTypes({0x408, 0x418}, 2, 2);
    const Handle list = ListOf(2, {{1, 0}});
    Handle result;
    EXPECT_TRUE(CreateOverlayFromPixelList(list.Get(), image->Handle(), result.Out()));
    ExpectReports(2, 1, "CreateDuplicateImage");
    EXPECT_EQ(PixelBytes(result.Get(), 0), Marked(PixelBytes(image->Handle(), 0), 1, 2, 2, {{1, 0}}));
    EXPECT_EQ(PixelBytes(result.Get(), 1), (PlaneBytes{0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(OverlayFromPixelListTest, OfAnImageWithoutPlanesIsOneToo) {
    FakeImage image(3, 2);
    EXPECT_EQ(SizeOf(Draw({{1, 1}}, image).Get()), (ImageSize{0, 3, 2}));
}

TEST_F(OverlayFromPixelListTest, DrawsIntoCopiesOfTreesAndViews) {
    const Points points = {{0, 0}, {2, 1}, {1, 2}};
    const Handle list = ListOf(2, points);
    for (const std::intptr_t planes : {1, 2, 3})
        for (const bool overlay : {false, true}) {
            Handle tree, view;
            ASSERT_TRUE(CreateGenericImage(planes, 3, 4, overlay, tree.Out()));
            const auto content = RandomContent(3, 4, planes, 8, 3);
            for (std::size_t plane = 0; plane < content.size(); ++plane)
                for (std::intptr_t i = 0; i < 12; ++i)
                    *AccessOf(tree.Get(), static_cast<std::intptr_t>(plane)).At(i % 3, i / 3) =
                        content[plane][static_cast<std::size_t>(i)];
            ASSERT_TRUE(CreateRotatedImageMap(tree.Get(), VPATRotation90Clockwise, view.Out()));
            for (void *const image : {tree.Get(), view.Get()}) {
                const ImageSize size = SizeOf(image);
                Handle result;
                ASSERT_TRUE(CreateOverlayFromPixelList(list.Get(), image, result.Out()));
                for (std::intptr_t plane = 0; plane < planes; ++plane) {
                    const PlaneBytes before = PixelBytes(image, plane);
                    EXPECT_EQ(PixelBytes(result.Get(), plane),
                              Marked(overlay ? before : Unmarked(before, 1), 1, size.Width, size.Height, points));
                }
                ExpectNoReport();
            }
            EXPECT_EQ(RefCount(view.Get()), 1u);
        }
}

TEST_F(OverlayFromPixelListTest, OfAnEmptyListGivesTrueAndNoImage) {
    const Handle list = ListOf(2);
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    for (void *const handle : {image->Handle(), static_cast<void *>(nullptr), list.Get()}) {
        void *out = UntouchedPointer();
        EXPECT_TRUE(CreateOverlayFromPixelList(list.Get(), handle, &out));
        EXPECT_EQ(out, UntouchedPointer());
        ExpectReports(1, 3, Name);
        EXPECT_TRUE(CreateOverlayFromPixelList(list.Get(), handle, nullptr));
        ExpectReports(1, 3, Name);
    }
    EXPECT_EQ(image->Calls(), std::vector<std::string>{});
    EXPECT_TRUE(Holds(list.Get(), {}));
}

TEST_F(OverlayFromPixelListTest, OfWhatIsNoListGivesTrueAndNoImage) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    for (const auto &none : NoLists()) {
        void *out = UntouchedPointer();
        EXPECT_TRUE(CreateOverlayFromPixelList(none.Get(), image->Handle(), &out)) << none.Name;
        EXPECT_EQ(out, UntouchedPointer());
        ExpectReports(2, 3, Name);
        none.ExpectLeftAlone();
    }
    EXPECT_EQ(image->Calls(), std::vector<std::string>{});
}

TEST_F(OverlayFromPixelListTest, FailsForWhatIsNoImage) {
    const Handle list = ListOf(2, {{1, 1}});
    ExpectFailure(list.Get(), nullptr, 3); // behind the reports of HasOverlay and CreateOverlayImage
    ExpectFailure(list.Get(), list.Get(), 3);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectFailure(list.Get(), foreign.Get(), 3);
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_TRUE(Holds(list.Get(), {{1, 1}}));
}

TEST_F(OverlayFromPixelListTest, FailsWhenNoCopyCanBeMade) {
    const Handle list = ListOf(2, {{1, 1}});
    for (const TDataType type : {0x220u, 0x240u, 0x18u, 0x418u}) {
        SCOPED_TRACE(type);
        const auto image = FakeImage::Planar(3, 2, 1, type);
        ExpectFailure(list.Get(), image->Handle(), 3);
        EXPECT_EQ(image->Count(), 1);
    }
    for (const TDataType type : {0x8u, 0x408u}) {
        const auto image = FakeImage::Planar(0, 2, 1, type); // no bitmap has width 0
        ExpectFailure(list.Get(), image->Handle(), 2);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_F(OverlayFromPixelListTest, ReportsANullOutput) {
    const Handle list = ListOf(2, {{1, 1}});
    for (const TDataType type : {0x8u, 0x408u}) {
        const auto image = FakeImage::Planar(3, 2, 1, type);
        EXPECT_FALSE(CreateOverlayFromPixelList(list.Get(), image->Handle(), nullptr));
        ExpectReports(1, ErrParameter, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_F(OverlayFromPixelListTest, LetsNothingOutThatTheImageThrows) {
    const Handle list = ListOf(2, {{1, 1}});
    for (const TDataType type : {0x8u, 0x408u, 0x110u})
        for (int good = 0; good < 60; ++good) {
            const auto image = FakeImage::Planar(3, 2, 2, type);
            image->Fails.OnOperation = [left = good]() mutable {
                if (left-- <= 0)
                    throw 5;
            };
            void *out = UntouchedPointer();
            const bool made = CreateOverlayFromPixelList(list.Get(), image->Handle(), &out);
            EXPECT_EQ(image->Count(), 1) << good;
            EXPECT_EQ(made, out != UntouchedPointer());
            const auto report = TakeReport();
            ClearReports();
            if (made) {
                EXPECT_GT(good, 0);
                ReleaseObject(out);
                break;
            }
            ASSERT_LT(good, 59) << "no call got through";
            ASSERT_TRUE(report.has_value());
            EXPECT_EQ(report->code, ErrGeneral);
            EXPECT_EQ(report->function, Name);
        }
    EXPECT_TRUE(Holds(list.Get(), {{1, 1}}));
}

TEST_F(OverlayFromPixelListTest, FailsWhenTheImageRefusesItsForm) {
    const Handle list = ListOf(2, {{1, 1}});
    for (const int refused : {0, 1}) {
        const auto image = FakeImage::Planar(3, 2, 2, 0x10);
        (refused == 0 ? image->Fails.VPAStatus : image->Fails.DatatypeStatus) = StatusBadPlane;
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreateOverlayFromPixelList(list.Get(), image->Handle(), &out));
        EXPECT_EQ(out, UntouchedPointer());
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, ErrGeneral);
        EXPECT_EQ(report->function, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

} // namespace

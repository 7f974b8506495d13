/* The marks of an overlay as a list: which rectangle is read, in which order, and the order of the checks. */
#include "ImageMaps.h"
#include "PixelList/NoLists.h"
#include "PixelList/OverlayModel.h"

namespace {

using namespace TestSupport;

constexpr char Name[] = "CreatePixelListFromOverlay";
constexpr char BadDimension[] = "Pixel list dimension is either too high or too low";
constexpr char Outside[] = "Specified rectangle lies completely outside the image";

class PixelListFromOverlayTest : public PixelListTest {
protected:
    void SetUp() override {
        PixelListTest::SetUp();
        // x . . . x
        // . x . . .
        // . . . . .
        // x . . . x    with all other bits set where there is no mark, and clear where there is one
        PlaneBytes pixels(20, 254);
        for (const std::size_t marked : {0u, 4u, 6u, 15u, 19u})
            pixels[marked] = 1;
        std::copy(pixels.begin(), pixels.end(), image->PixelAddress(0, 0, 0));
    }
    void TearDown() override {
        EXPECT_EQ(image->Count(), 1);
        PixelListTest::TearDown();
    }
    /// Reads and expects success without a report.
    Points Read(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom) {
        Handle list;
        EXPECT_TRUE(CreatePixelListFromOverlay(image->Handle(), 2, left, top, right, bottom, list.Out()));
        ExpectNoReport();
        EXPECT_EQ(RefCount(list.Get()), 1u);
        return list ? PointsOf(list.Get()) : Points{{NaN, NaN}};
    }
    static void ExpectFailure(void *handle, std::int64_t dimension, const ListRectangle &r, std::intptr_t reports,
                              std::uint32_t code, const char *text = "") {
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreatePixelListFromOverlay(handle, dimension, r.Left, r.Top, r.Right, r.Bottom, &out));
        EXPECT_EQ(out, UntouchedPointer());
        ExpectReports(reports, code, Name, text);
    }

    const std::unique_ptr<FakeImage> image = FakeImage::Planar(5, 4, 1, 0x408);
    const Points All = {{0, 0}, {4, 0}, {1, 1}, {0, 3}, {4, 3}};
    static constexpr ListRectangle Whole{0, 0, 0, 0}, Behind{5, 0, 9, 3};
};

TEST_F(PixelListFromOverlayTest, ReadsRowByRowFromLeftToRight) {
    EXPECT_EQ(Read(0, 0, 4, 3), All);
}

TEST_F(PixelListFromOverlayTest, BothEndsOfTheRectangleAreRead) {
    EXPECT_EQ(Read(1, 1, 4, 3), (Points{{1, 1}, {4, 3}}));
    EXPECT_EQ(Read(1, 1, 1, 1), (Points{{1, 1}}));
    EXPECT_EQ(Read(1, 0, 3, 3), (Points{{1, 1}}));
    EXPECT_EQ(Read(0, 0, 4, 2), (Points{{0, 0}, {4, 0}, {1, 1}}));
    EXPECT_EQ(Read(4, 3, 4, 3), (Points{{4, 3}}));
}

TEST_F(PixelListFromOverlayTest, ARectangleWithoutMarksGivesAnEmptyList) {
    EXPECT_EQ(Read(2, 2, 3, 2), Points{});
    EXPECT_EQ(Read(1, 2, 3, 3), Points{});
}

TEST_F(PixelListFromOverlayTest, ARightOrBottomOfZeroIsTheLastColumnOrRow) {
    EXPECT_EQ(Read(0, 0, 0, 0), All);
    EXPECT_EQ(Read(0, 0, 0, 2), (Points{{0, 0}, {4, 0}, {1, 1}}));
    EXPECT_EQ(Read(0, 0, 3, 0), (Points{{0, 0}, {1, 1}, {0, 3}}));
    EXPECT_EQ(Read(-5, -5, 0, 0), All);
}

TEST_F(PixelListFromOverlayTest, SwapsWhatIsInTheWrongOrder) {
    EXPECT_EQ(Read(4, 3, 1, 1), (Points{{1, 1}, {4, 3}}));
    EXPECT_EQ(Read(4, 1, 1, 3), (Points{{1, 1}, {4, 3}}));
    EXPECT_EQ(Read(1, 3, 4, 1), (Points{{1, 1}, {4, 3}}));
}

TEST_F(PixelListFromOverlayTest, SwapsBeforeZeroStandsForTheEnd) {
    // Required: a right of 0 beside a greater left is the left edge.
    EXPECT_EQ(Read(3, 0, 0, 3), (Points{{0, 0}, {1, 1}, {0, 3}}));
    EXPECT_EQ(Read(0, 2, 4, 0), (Points{{0, 0}, {4, 0}, {1, 1}}));
    EXPECT_EQ(Read(0, 0, -5, -5), All);
}

TEST_F(PixelListFromOverlayTest, ClipsTheRectangleToTheImage) {
    EXPECT_EQ(Read(-9, -9, 99, 99), All);
    EXPECT_EQ(Read(LowestWord, LowestWord, HighestWord, HighestWord), All);
    EXPECT_EQ(Read(HighestWord, HighestWord, LowestWord, LowestWord), All);
    EXPECT_EQ(Read(4, 3, HighestWord, HighestWord), (Points{{4, 3}}));
    EXPECT_EQ(Read(LowestWord, LowestWord, 1, 1), (Points{{0, 0}, {1, 1}}));
}

TEST_F(PixelListFromOverlayTest, ARectangleBeforeTheImageGivesAnEmptyList) {
    EXPECT_EQ(Read(-5, 0, -2, 3), Points{});
    EXPECT_EQ(Read(0, -5, 4, -2), Points{});
    EXPECT_EQ(Read(-1, -1, -1, -1), Points{});
    EXPECT_EQ(Read(LowestWord, LowestWord, LowestWord, LowestWord), Points{});
}

TEST_F(PixelListFromOverlayTest, RefusesARectangleBehindTheImage) {
    for (const ListRectangle &r :
         {ListRectangle{5, 0, 9, 3}, ListRectangle{0, 4, 4, 9}, ListRectangle{5, 4, 5, 4}, ListRectangle{9, 0, 5, 3},
          ListRectangle{0, 9, 4, 4}, ListRectangle{HighestWord, 0, HighestWord, 0}, ListRectangle{-5, 4, -2, 9}})
        ExpectFailure(image->Handle(), 2, r, 1, ErrGeneral, Outside);
}

TEST_F(PixelListFromOverlayTest, GivesEachPixelTheDimensionAskedForAndZeros) {
    for (const std::int64_t dimension : {2, 3, 4, 256}) {
        Points expected;
        for (const auto &point : All) {
            expected.push_back(Point(static_cast<std::size_t>(dimension), 0.0));
            std::copy(point.begin(), point.end(), expected.back().begin());
        }
        Handle list;
        ASSERT_TRUE(CreatePixelListFromOverlay(image->Handle(), dimension, 0, 0, 4, 3, list.Out()));
        EXPECT_TRUE(Holds(list.Get(), expected));
        EXPECT_EQ(PixelListDimension(list.Get()), dimension);
    }
}

TEST_F(PixelListFromOverlayTest, ReadsPlaneZeroOnlyAndTakesTheFlagOfAnyPlane) {
    const auto flagged = OfTypes({0x10, 0x408, 0x220}, 5, 4);
    Handle list;
    ASSERT_TRUE(CreatePixelListFromOverlay(flagged->Handle(), 2, 0, 0, 0, 0, list.Out()));
    EXPECT_TRUE(Holds(list.Get(), *MarksIn(PixelBytes(flagged->Handle(), 0), 2, 5, 4, 2, Whole)));
    ExpectNoReport();
}

TEST_F(PixelListFromOverlayTest, ReadsTreesAndViews) {
    for (const std::intptr_t planes : {1, 2, 3}) {
        Handle tree, view;
        ASSERT_TRUE(CreateGenericImage(planes, 5, 4, true, tree.Out()));
        for (std::intptr_t i = 0; i < 20; ++i)
            *AccessOf(tree.Get(), 0).At(i % 5, i / 5) = *image->PixelAddress(0, i % 5, i / 5);
        ASSERT_TRUE(CreateRotatedImageMap(tree.Get(), VPATRotation180, view.Out()));
        Handle list, turned;
        ASSERT_TRUE(CreatePixelListFromOverlay(tree.Get(), 2, 0, 0, 0, 0, list.Out()));
        EXPECT_TRUE(Holds(list.Get(), All));
        ASSERT_TRUE(CreatePixelListFromOverlay(view.Get(), 2, 0, 0, 0, 0, turned.Out()));
        EXPECT_TRUE(Holds(turned.Get(), {{0, 0}, {4, 0}, {3, 2}, {0, 3}, {4, 3}}));
        EXPECT_EQ(RefCount(view.Get()), 1u);
    }
    ExpectNoReport();
}

TEST_F(PixelListFromOverlayTest, RefusesWhatIsNoOverlayImage) {
    for (const TDataType type : {0x8u, 0x10u, 0x120u, 0x220u}) {
        const auto plain = FakeImage::Planar(5, 4, 2, type);
        ExpectFailure(plain->Handle(), 2, Whole, 1, ErrNotOverlayImage);
        ExpectFailure(plain->Handle(), 1, Behind, 1, ErrNotOverlayImage);
        EXPECT_EQ(plain->Count(), 1);
    }
    FakeImage withoutPlanes(5, 4);
    ExpectFailure(withoutPlanes.Handle(), 2, Whole, 1, ErrNotOverlayImage);
    EXPECT_FALSE(CreatePixelListFromOverlay(withoutPlanes.Handle(), 2, 0, 0, 0, 0, nullptr));
    ExpectReports(1, ErrNotOverlayImage, Name);
}

TEST_F(PixelListFromOverlayTest, RefusesWhatIsNoImage) {
    // Behind the report of HasOverlay.
    ExpectFailure(nullptr, 2, Whole, 2, ErrNotOverlayImage);
    ExpectFailure(nullptr, 1, Behind, 2, ErrNotOverlayImage);
    const Handle list = ListOf(2, {{1, 1}});
    ExpectFailure(list.Get(), 2, Whole, 2, ErrNotOverlayImage);
    EXPECT_TRUE(Holds(list.Get(), {{1, 1}}));
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectFailure(foreign.Get(), 2, Whole, 2, ErrNotOverlayImage);
        EXPECT_EQ(foreign.Count(), 1);
    }
}

TEST_F(PixelListFromOverlayTest, RefusesAFloatPlaneZeroBeforeItLooksFurther) {
    for (const TDataType type : {0x620u, 0x640u, 0x220u}) {
        const auto image2 = OfTypes({type, 0x408}, 5, 4);
        ExpectFailure(image2->Handle(), 2, Whole, 1, ErrDataType);
        ExpectFailure(image2->Handle(), 257, Behind, 1, ErrDataType);
        EXPECT_EQ(image2->Count(), 1);
    }
}

TEST_F(PixelListFromOverlayTest, RefusesADimensionOutsideTwoTo256BeforeItLooksFurther) {
    for (const std::int64_t dimension :
         {std::int64_t{1}, std::int64_t{0}, std::int64_t{-1}, std::int64_t{257}, LowestWord, HighestWord}) {
        ExpectFailure(image->Handle(), dimension, Whole, 1, ErrParameter, BadDimension);
        ExpectFailure(image->Handle(), dimension, Behind, 1, ErrParameter, BadDimension);
        image->Fails.VPAStatus = StatusBadPlane;
        ExpectFailure(image->Handle(), dimension, Whole, 1, ErrParameter, BadDimension);
        image->Fails = {};
    }
}

TEST_F(PixelListFromOverlayTest, RefusesAnImageWithoutATableBeforeItLooksAtTheRectangle) {
    image->Fails.VPAStatus = StatusBadPlane;
    ExpectFailure(image->Handle(), 2, Whole, 1, ErrPlaneIndex);
    ExpectFailure(image->Handle(), 2, Behind, 1, ErrPlaneIndex);
}

TEST_F(PixelListFromOverlayTest, ReportsANullOutput) {
    EXPECT_FALSE(CreatePixelListFromOverlay(image->Handle(), 2, 0, 0, 0, 0, nullptr));
    ExpectReports(1, ErrParameter, Name);
}

TEST_F(PixelListFromOverlayTest, AnImageWithoutPixelsHasNoMarks) {
    for (const auto &[width, height] : {std::pair{0, 0}, {0, 3}, {3, 0}}) {
        const auto empty = FakeImage::Planar(width, height, 1, 0x408);
        ExpectFailure(empty->Handle(), 2, Whole, 1, ErrGeneral, Outside);
        Handle list;
        EXPECT_TRUE(CreatePixelListFromOverlay(empty->Handle(), 2, -1, -1, 5, 5, list.Out()));
        EXPECT_TRUE(Holds(list.Get(), {}));
        EXPECT_EQ(empty->Count(), 1);
    }
}

TEST_F(PixelListFromOverlayTest, LetsNothingOutThatTheImageThrows) {
    bool gotThrough = false;
    for (int good = 0; good < 40 && !gotThrough; ++good) {
        image->Fails.OnOperation = [left = good]() mutable {
            if (left-- <= 0)
                throw std::runtime_error("refused");
        };
        void *out = UntouchedPointer();
        gotThrough = CreatePixelListFromOverlay(image->Handle(), 2, 0, 0, 0, 0, &out);
        EXPECT_EQ(image->Count(), 1) << good;
        EXPECT_EQ(gotThrough, out != UntouchedPointer());
        if (gotThrough)
            ReleaseObject(out);
        else
            ExpectReports(1, ErrGeneral, Name);
    }
    EXPECT_TRUE(gotThrough);
}

} // namespace

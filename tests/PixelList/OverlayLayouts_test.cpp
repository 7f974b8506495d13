/* Lists drawn into overlays and read back from them, for all integer types and all layouts, against the plain rules
 * over random points and rectangles. Set ORV_TEST_CASE to a number to run that random case alone. */
#include "PixelList/OverlayModel.h"

namespace {

using namespace TestSupport;

using ListOverlayLayoutsTest = PixelListTest;

constexpr TDataType IntegerTypes[] = {0x8, 0x108, 0xC, 0x10, 0x110, 0x20, 0x120, 0x40, 0x140};

void ExpectDrawn(const NamedImage &image, TDataType type, std::intptr_t width, std::intptr_t height,
                 const Points &points) {
    const Handle list = ListOf(static_cast<std::int64_t>(points[0].size()), points);
    Handle result;
    ASSERT_TRUE(CreateOverlayFromPixelList(list.Get(), image.Get(), result.Out()));
    ExpectNoReport();
    ASSERT_EQ(SizeOf(result.Get()), (ImageSize{std::ssize(image.Content), width, height}));
    const std::size_t size = PixelSize(type);
    for (std::size_t plane = 0; plane < image.Content.size(); ++plane) {
        const PlaneBytes &before = image.Content[plane];
        const bool isOverlay = (type & DataTypeOverlay) != 0;
        ASSERT_EQ(PixelBytes(result.Get(), static_cast<std::intptr_t>(plane)),
                  Marked(isOverlay ? before : Unmarked(before, size), size, width, height, points));
        ASSERT_EQ(PixelBytes(image.Get(), static_cast<std::intptr_t>(plane)), before) << "the source is only read";
        ASSERT_EQ(TypeOf(result.Get(), static_cast<std::intptr_t>(plane)), type | DataTypeOverlay);
    }
    ASSERT_EQ(RefCount(image.Get()), 1u);
}

TEST_F(ListOverlayLayoutsTest, EveryTypeAndLayoutIsMarkedAlike) {
    std::uint32_t seed = 0;
    for (const TDataType type : IntegerTypes)
        for (const TDataType flag : {TDataType{0}, DataTypeOverlay})
            for (const std::intptr_t planes : {1, 3})
                for (const auto &image : MakeLayouts(13, 7, planes, type | flag, ++seed)) {
                    SCOPED_TRACE(testing::Message() << image.Name << " of type " << (type | flag));
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectDrawn(image, type | flag, 13, 7, PointsAround(13, 7, 2 + seed % 3, 40, seed)));
                }
}

TEST_F(ListOverlayLayoutsTest, EverySizeIsMarkedAlike) {
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1}, {1, 9}, {9, 1}, {257, 3}, {3, 257}, {64, 64}};
    for (const auto &[width, height] : sizes)
        for (const TDataType type : {0x8u, 0x510u})
            for (const auto &image : MakeLayouts(width, height, 2, type)) {
                SCOPED_TRACE(testing::Message() << image.Name << ", " << width << " x " << height);
                ASSERT_NO_FATAL_FAILURE(
                    ExpectDrawn(image, type, width, height, PointsAround(width, height, 3, 60, 77)));
            }
}

/// The list of a rectangle against the plain rule.
void ExpectRead(const NamedImage &image, TDataType type, std::intptr_t width, std::intptr_t height,
                std::int64_t dimension, const ListRectangle &r) {
    SCOPED_TRACE(testing::Message() << image.Name << " of type " << type << ", " << testing::PrintToString(r));
    const auto expected = MarksIn(image.Content[0], PixelSize(type), width, height, dimension, r);
    void *out = UntouchedPointer();
    ASSERT_EQ(CreatePixelListFromOverlay(image.Get(), dimension, r.Left, r.Top, r.Right, r.Bottom, &out),
              expected.has_value());
    ASSERT_EQ(RefCount(image.Get()), 1u);
    if (!expected) {
        ASSERT_EQ(out, UntouchedPointer());
        ExpectReports(1, ErrGeneral, "CreatePixelListFromOverlay",
                      "Specified rectangle lies completely outside the image");
        return;
    }
    ExpectNoReport();
    const Handle list(out);
    ASSERT_EQ(PixelListDimension(out), dimension);
    ASSERT_TRUE(Holds(out, *expected));
}

TEST_F(ListOverlayLayoutsTest, EveryTypeAndLayoutIsReadAlike) {
    std::uint32_t seed = 0;
    for (const TDataType type : IntegerTypes)
        for (const std::intptr_t planes : {1, 3})
            for (const auto &image : MakeLayouts(11, 6, planes, type | DataTypeOverlay, ++seed))
                for (const ListRectangle r : {ListRectangle{0, 0, 0, 0}, ListRectangle{2, 1, 8, 4}})
                    ASSERT_NO_FATAL_FAILURE(ExpectRead(image, type | DataTypeOverlay, 11, 6, 2 + seed % 3, r));
}

TEST_F(ListOverlayLayoutsTest, FewMarksInLongRowsAreAllFound) {
    std::uint32_t seed = 0;
    for (const TDataType type : {0x408u, 0x410u, 0x520u, 0x440u})
        for (const std::intptr_t width : {15, 16, 17, 31, 33, 63, 64, 65, 255, 256, 257, 512, 513, 1000, 6000}) {
            const std::size_t size = PixelSize(type);
            RandomComponents random(++seed);
            auto content = RandomContent(width, 5, 1, type, seed);
            content[0] = Unmarked(content[0], size);
            const std::intptr_t marked[] = {0, width - 1, width + random.Pick(0, width - 1), 4 * width - 1,
                                            5 * width - 1};
            for (const std::intptr_t place : marked)
                content[0][static_cast<std::size_t>(place) * size] |= 1;
            for (const auto &rule : PitchRules(width, 5, 1, type))
                for (const ListRectangle r :
                     {ListRectangle{0, 0, 0, 0}, ListRectangle{1, 0, width - 2, 4}, ListRectangle{7, 1, 0, 3}})
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectRead(MakeExternal(rule, content, width, 5, type), type, width, 5, 3, r));
        }
}

TEST_F(ListOverlayLayoutsTest, EachPlaceOfALongRowIsFoundAlone) {
    for (const TDataType type : {0x408u, 0x410u, 0x420u, 0x440u}) {
        const std::size_t size = PixelSize(type);
        const std::intptr_t width = 300;
        const auto image = FakeImage::Planar(width, 1, 1, type);
        for (std::intptr_t x = 0; x < width; ++x) {
            std::fill_n(image->PixelAddress(0, 0, 0), static_cast<std::size_t>(width) * size, std::uint8_t{0xFE});
            *image->PixelAddress(0, x, 0) = 1;
            Handle list, before, behind;
            ASSERT_TRUE(CreatePixelListFromOverlay(image->Handle(), 2, 0, 0, 0, 0, list.Out()));
            ASSERT_TRUE(Holds(list.Get(), {{static_cast<double>(x), 0}}));
            if (x > 1) {
                ASSERT_TRUE(CreatePixelListFromOverlay(image->Handle(), 2, 0, 0, x - 1, 0, before.Out()));
                ASSERT_TRUE(Holds(before.Get(), {}));
            }
            if (x + 1 < width) {
                ASSERT_TRUE(CreatePixelListFromOverlay(image->Handle(), 2, x + 1, 0, width, 0, behind.Out()));
                ASSERT_TRUE(Holds(behind.Get(), {}));
            }
        }
    }
}

TEST_F(ListOverlayLayoutsTest, NothingIsReadOutsideTheRows) {
    for (const auto where : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before})
        for (const TDataType type : {0x408u, 0x410u, 0x420u, 0x440u})
            for (const std::intptr_t width : {1, 3, 16, 31, 64, 255, 256, 257, 515}) {
                const auto size = static_cast<std::intptr_t>(PixelSize(type));
                const FencedBlock block(static_cast<std::size_t>(2 * width * size), where);
                FakeImage image(width, 2);
                image.AddPlane(
                    block.Data(), type, [=](std::intptr_t i) { return i * size; },
                    [=](std::intptr_t j) { return j * width * size; });
                *image.PixelAddress(0, width - 1, 1) = 3;
                Handle list;
                ASSERT_TRUE(CreatePixelListFromOverlay(image.Handle(), 2, 0, 0, 0, 0, list.Out()));
                ASSERT_TRUE(Holds(list.Get(), {{static_cast<double>(width - 1), 1}})) << width;
            }
}

std::int64_t RandomEdge(RandomComponents &random, std::int64_t size) {
    static constexpr std::int64_t Far[] = {LowestWord,   LowestWord + 1, HighestWord,         HighestWord - 1,
                                           -(1LL << 32), 1LL << 32,      (1LL << 32) + 2,     (1LL << 31) - 1,
                                           -(1LL << 31), 1LL << 31,      (1LL << 62) + 12345, -7};
    const std::int64_t kind = random.Pick(0, 9);
    if (kind == 0)
        return Far[static_cast<std::size_t>(random.Pick(0, 11))];
    return kind < 3 ? 0 : random.Pick(-3, size + 3);
}

TEST_F(ListOverlayLayoutsTest, RandomRectanglesAreReadByThePlainRule) {
    for (const std::uint32_t number : CaseNumbers(400)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomComponents random(number);
        const std::intptr_t width = random.Pick(1, 12), height = random.Pick(1, 12);
        const TDataType type = IntegerTypes[static_cast<std::size_t>(random.Pick(0, 8))] | DataTypeOverlay;
        const auto image =
            MakeExternal(PitchRules(width, height, 2, type)[static_cast<std::size_t>(random.Pick(0, 8))],
                         RandomContent(width, height, 2, type, number), width, height, type);
        for (int i = 0; i < 20; ++i)
            ASSERT_NO_FATAL_FAILURE(ExpectRead(image, type, width, height, random.Pick(2, 4),
                                               {RandomEdge(random, width), RandomEdge(random, height),
                                                RandomEdge(random, width), RandomEdge(random, height)}));
    }
}

TEST_F(ListOverlayLayoutsTest, WhatWasDrawnIsReadBackRowByRow) {
    for (const std::uint32_t number : CaseNumbers(100)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomComponents random(number);
        const std::intptr_t width = random.Pick(1, 30), height = random.Pick(1, 30);
        std::vector<std::pair<double, double>> places;
        Points points;
        for (std::int64_t count = random.Pick(1, 60); count > 0; --count) {
            const auto x = static_cast<double>(random.Pick(0, width - 1));
            const auto y = static_cast<double>(random.Pick(0, height - 1));
            places.emplace_back(y, x);
            points.push_back({x, y, 1.0});
        }
        std::sort(places.begin(), places.end());
        places.erase(std::unique(places.begin(), places.end()), places.end());
        Points expected;
        for (const auto &[y, x] : places)
            expected.push_back({x, y, 0.0});
        const auto image = FakeImage::Planar(width, height, 1, 0x10);
        Handle drawn, list;
        ASSERT_TRUE(CreateOverlayFromPixelList(ListOf(3, points).Get(), image->Handle(), drawn.Out()));
        ASSERT_TRUE(CreatePixelListFromOverlay(drawn.Get(), 3, 0, 0, 0, 0, list.Out()));
        ASSERT_TRUE(Holds(list.Get(), expected));
    }
}

} // namespace

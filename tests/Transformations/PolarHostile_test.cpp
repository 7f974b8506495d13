/* Arguments that are no numbers or far too large, squares that begin outside the target or wrap the arithmetic of the
 * walk, images without pixels and at the edge of readable memory. All calls must come back soon. */
#include "Transformations/PolarModel.h"

#include "ImageCreation.h"

namespace {

using namespace PolarModel;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr char EmptyTarget[] = "Operation failed because target image would have width and/or height of 0";

/// Planes of bytes, all of one value.
std::unique_ptr<FakeImage> FlatImage(std::intptr_t width, std::intptr_t height, std::uint8_t value,
                                     TDataType type = 0x8) {
    const std::size_t bytes = static_cast<std::size_t>(width * height) * PixelSize(type);
    return PlainImage(width, height, type, {PlaneBytes(bytes, value)});
}

/// Expects that rolling up a flat image succeeds and leaves the target as it is.
void ExpectNothingWritten(const Roll &roll) {
    const auto polar = FlatImage(94, 12, 7), target = FlatImage(45, 45, 1);
    SCOPED_TRACE(testing::PrintToString(roll));
    ClearReports();
    EXPECT_TRUE(RollUp(polar->Handle(), target->Handle(), roll));
    ExpectNoReport();
    EXPECT_EQ(target->Pixels, PlaneBytes(45 * 45, 1));
    EXPECT_EQ(polar->Count(), 1);
    EXPECT_EQ(target->Count(), 1);
}

/// An image over exactly its pixels, interleaved, with an unreadable page on one side.
struct FencedImage {
    FencedBlock Block;
    Handle Image;
    FencedImage(const Extent &extent, std::intptr_t planes, TDataType type, FencedBlock::Fence fence)
        : Block(Bytes(extent, planes, type), fence) {
        const auto size = static_cast<std::intptr_t>(PixelSize(type));
        for (std::size_t byte = 0; byte < Bytes(extent, planes, type); ++byte)
            Block.Data()[byte] = static_cast<std::uint8_t>(byte * 37 + byte / 256);
        EXPECT_EQ(CreateImageFromPointer(Block.Data(), 0, extent.Width, extent.Height, planes, type, planes * size,
                                         planes * size * extent.Width, size, nullptr, nullptr, nullptr, Image.Out()),
                  0);
    }
    static std::size_t Bytes(const Extent &extent, std::intptr_t planes, TDataType type) {
        return static_cast<std::size_t>(extent.Width * extent.Height * planes) * PixelSize(type);
    }
};
constexpr FencedBlock::Fence Fences[] = {FencedBlock::Fence::Behind, FencedBlock::Fence::Before};
constexpr Extent FencedExtents[] = {{1, 1}, {1, 13}, {13, 1}, {31, 17}, {64, 3}};

} // namespace

TEST(PolarHostile, ACentreOrStartThatIsNoNumberGivesTheOutsideValue) {
    for (const double bad : {NoNumber, Infinity, -Infinity})
        for (const Ring &ring : {Ring{bad, 4, 0, 360, 1, 4}, Ring{4, bad, 0, 360, 1, 4}, Ring{4, 4, bad, 360, 1, 4}})
            for (const TDataType type : PixelTypes) {
                const auto image = FlatImage(9, 9, 3, type);
                Handle result;
                ASSERT_TRUE(Unroll(image->Handle(), result.Out(), ring)) << testing::PrintToString(ring);
                ForPixelType(type, [&](auto zero) {
                    using T = decltype(zero);
                    EXPECT_EQ(OneValueOf<T>(result.Get()), OutsideValue<T>()) << testing::PrintToString(ring);
                });
            }
}

TEST(PolarHostile, PositionsBeyond32BitsDoNotWrapIntoTheImage) {
    for (const double turns : {268435456.0, -268435456.0, 4294967296.0, -4294967296.0, 0x1p60, 1e300, -1e300})
        for (const TDataType type : PixelTypes)
            for (const Ring &ring : {Ring{turns + 4, 4, 0, 360, 1, 4}, Ring{4, turns + 4, 0, 360, 1, 4}}) {
                const auto image = FlatImage(9, 9, 3, type);
                Handle result;
                ASSERT_TRUE(Unroll(image->Handle(), result.Out(), ring));
                ForPixelType(type, [&](auto zero) {
                    using T = decltype(zero);
                    EXPECT_EQ(OneValueOf<T>(result.Get()), OutsideValue<T>()) << testing::PrintToString(ring);
                });
            }
}

TEST(PolarHostile, UnrollsFromStartAnglesOfAnySize) {
    const auto images = MakeLayouts(19, 17, 2, 0x8, 3), reals = MakeLayouts(19, 17, 1, 0x220, 4);
    for (const double start : {1e6, -1e6, 1e17, -1e17, 1e200, 1e300, -1e300, 1e-300, 5e-324})
        for (void *const image : {images.front().Get(), reals.front().Get()})
            ASSERT_NO_FATAL_FAILURE(ExpectUnrolledAsTold(image, {9, 8, start, 360, 2, 9})) << start;
}

TEST(PolarHostile, RadiiAndRangesThatAreNoNumberOrDoNotFitGiveNoSize) {
    const auto image = FakeImage::Planar(8, 8, 1, 0x8);
    for (const double bad : {NoNumber, Infinity, -Infinity, 1e300, -1e300})
        for (const Ring &ring : {Ring{4, 4, 0, bad, 1, 4}, Ring{4, 4, 0, 360, bad, 4}, Ring{4, 4, 0, 360, 1, bad},
                                 Ring{4, 4, 0, 360, bad, bad}}) {
            SCOPED_TRACE(testing::PrintToString(ring));
            void *out = UntouchedPointer();
            ClearReports();
            EXPECT_FALSE(Unroll(image->Handle(), &out, ring));
            ExpectOneReportWithText(ErrDimension, "CreatePolarImageEx", EmptyTarget);
            EXPECT_EQ(out, UntouchedPointer());
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(PolarHostile, ResultsOfAbsurdSizeAreRefused) {
    const auto image = FakeImage::Planar(8, 8, 3, 0x240);
    for (const Ring &ring : {Ring{4, 4, 0, 360, 0, 3e8}, Ring{4, 4, 0, 360, 0, 1e9}, Ring{4, 4, 0, 1000, 0, 1e9},
                             Ring{4, 4, 0, 3600, 0, 1.5e9}, Ring{4, 4, 0, 360, -1e9, 1.4e9}}) {
        void *out = UntouchedPointer();
        EXPECT_FALSE(Unroll(image->Handle(), &out, ring)) << testing::PrintToString(ring);
        EXPECT_EQ(out, UntouchedPointer());
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(PolarHostile, ASquareWithoutFiniteCornersIsNotWalked) {
    for (const double bad : {NoNumber, Infinity, -Infinity, 1e300, -1e300, 1e17}) {
        ExpectNothingWritten({bad, 22, 0, 10});
        ExpectNothingWritten({22, bad, 0, 10});
        ExpectNothingWritten({bad, bad, 0, 10});
        ExpectNothingWritten({22, 22, 0, bad});
        ExpectNothingWritten({bad, bad, bad, bad});
    }
}

TEST(PolarHostile, AStartAngleThatIsNoNumberOrFarAwayWritesTheRingOnly) {
    for (const double start : {NoNumber, Infinity, -Infinity, 1e6, -1e6, 1e17, -1e17, 1e300, -1e300})
        for (const std::intptr_t width : {94, 23}) {
            const auto polar = FlatImage(width, 12, 7), target = FlatImage(45, 45, 1);
            SCOPED_TRACE(testing::Message() << "start " << start << ", width " << width);
            EXPECT_TRUE(RollUp(polar->Handle(), target->Handle(), {22, 22, start, 10}));
            for (std::intptr_t y = 0; y < 45; ++y)
                for (std::intptr_t x = 0; x < 45; ++x) {
                    const std::intptr_t q = (x - 22) * (x - 22) + (y - 22) * (y - 22);
                    const int value = *target->PixelAddress(0, x, y);
                    const bool inRing = q >= 100 && q <= 400;
                    ASSERT_TRUE(value == 1 || (inRing && (value == 7 || value == 129))) << x << ", " << y;
                    ASSERT_TRUE(!inRing || std::isfinite(start) || value != 7) << "no angle, no column";
                }
        }
}

TEST(PolarHostile, RingsOfHugeRadiiComeBackSoon) {
    for (const double inner : {1e5, 1e6, 1e8, 1e9}) {
        const auto polar = FlatImage(94, 12, 7), target = FlatImage(45, 45, 1);
        const double outer = inner + 10;
        for (const Roll &roll : {Roll{22, outer + 1, 0, inner}, Roll{22 - inner, outer + 3, 0, inner},
                                 Roll{outer + 1, 22, 0, inner}, Roll{outer + 1, outer + 1, 77, inner}}) {
            EXPECT_TRUE(RollUp(polar->Handle(), target->Handle(), roll)) << testing::PrintToString(roll);
            for (const std::uint8_t value : target->Pixels)
                ASSERT_TRUE(value == 1 || value == 7 || value == 129);
        }
    }
}

TEST(PolarHostile, ASquareThatBeginsAboveRowZeroWritesNothing) {
    ExpectNothingWritten({22, 19, 0, 10});
    ExpectNothingWritten({22, 20.25, 0, 10});
    ExpectNothingWritten({22, -5, 0, 10});
    const auto polar = FlatImage(94, 12, 7), target = FlatImage(45, 45, 1), twin = FlatImage(45, 45, 1);
    ExpectRolledUpAsTold(polar->Handle(), target->Handle(), twin->Handle(), {22, 20.5, 0, 10});
    EXPECT_EQ(*target->PixelAddress(0, 22, 1), 7) << "its first row rounds to row 0";
}

TEST(PolarHostile, ASquareThatBeginsLeftOfColumnZeroWritesTheColumnsOfTheTarget) {
    const auto polar = FlatImage(94, 12, 7), target = FlatImage(45, 45, 1), twin = FlatImage(45, 45, 1);
    ExpectRolledUpAsTold(polar->Handle(), target->Handle(), twin->Handle(), {3, 22, 0, 10});
    EXPECT_EQ(*target->PixelAddress(0, 3, 2), 7);
    EXPECT_EQ(*target->PixelAddress(0, 0, 40), 7);
    EXPECT_EQ(*target->PixelAddress(0, 23, 22), 7);
}

TEST(PolarHostile, ASquareOfANegativeRadiusIsWalkedUpwardsAcrossRowZero) {
    const auto polar = FlatImage(20, 1, 7), target = FlatImage(11, 11, 1), twin = FlatImage(11, 11, 1);
    ExpectRolledUpAsTold(polar->Handle(), target->Handle(), twin->Handle(), {5, 2, 0, -3}); // outer radius -4
    EXPECT_EQ(*target->PixelAddress(0, 5, 5), 129);
    EXPECT_EQ(*target->PixelAddress(0, 8, 2), 129);
    EXPECT_EQ(*target->PixelAddress(0, 9, 2), 1) << "the square ends one pixel within the radius";
    EXPECT_EQ(*target->PixelAddress(0, 5, 2), 1);
}

TEST(PolarHostile, TheWalkOverASquareOfMoreThan32BitsLeavesColumnsOut) {
    const auto polar = FlatImage(9, 100, 7), target = FlatImage(34000, 40, 1), twin = FlatImage(34000, 40, 1);
    ExpectRolledUpAsTold(polar->Handle(), target->Handle(), twin->Handle(), {32800, 32800, 0, 32701});
    for (std::intptr_t x = 32700; x < 32900; ++x)
        EXPECT_EQ(*target->PixelAddress(0, x, 20) == 1, x != 32800) << "column " << x;
    const auto narrow = FlatImage(6, 65540, 1), narrowTwin = FlatImage(6, 65540, 1);
    const auto ring = FlatImage(9, 4, 7);
    ExpectRolledUpAsTold(ring->Handle(), narrow->Handle(), narrowTwin->Handle(), {32769, 32769, 0, 32766});
    EXPECT_NE(*narrow->PixelAddress(0, 2, 32700), 1);
    EXPECT_EQ(*narrow->PixelAddress(0, 5, 32460), 1) << "three lines are walked";
}

TEST(PolarHostile, ImagesWithoutPixelsAreOutsideEverywhere) {
    FakeImage empty(0, 0, 8);
    empty.AddPlane(empty.Pixels.data(), 0x8, nullptr, nullptr);
    Handle result;
    ASSERT_TRUE(Unroll(empty.Handle(), result.Out(), {0, 0, 0, 360, 1, 3}));
    EXPECT_EQ(OneValueOf<std::uint8_t>(result.Get()), 129);
    FakeImage thin(0, 12, 8);
    thin.AddPlane(thin.Pixels.data(), 0x8, nullptr, [](auto) { return 0; });
    const auto target = FlatImage(45, 45, 1), twin = FlatImage(45, 45, 1);
    ExpectRolledUpAsTold(thin.Handle(), target->Handle(), twin->Handle(), {22, 22, 0, 10});
    EXPECT_EQ(*target->PixelAddress(0, 37, 22), 129);
    ASSERT_TRUE(RollUp(target->Handle(), thin.Handle(), {22, 50, 0, 4}));
}

TEST(PolarHostile, UnrollsWithoutReadingBesideThePixels) {
    for (const TDataType type : PixelTypes)
        for (const Extent &extent : FencedExtents)
            for (const std::intptr_t planes : {1, 3})
                for (const FencedBlock::Fence fence : Fences) {
                    const FencedImage image(extent, planes, type, fence);
                    const auto width = static_cast<double>(extent.Width), height = static_cast<double>(extent.Height);
                    SCOPED_TRACE(testing::Message() << "type " << type << ", " << planes << " planes of "
                                                    << extent.Width << " x " << extent.Height);
                    for (const Ring &ring :
                         {Ring{width / 2, height / 2, 0, 360, 0, width + height},
                          Ring{width - 1, height - 1, 170, 110, 0, width + 2}, Ring{0, 0, -5, 100, 0, height + 3}})
                        ASSERT_NO_FATAL_FAILURE(ExpectUnrolledAsTold(image.Image.Get(), ring));
                }
}

TEST(PolarHostile, RollsUpWithoutTouchingAnythingBesideThePixels) {
    for (const TDataType type : PixelTypes)
        for (const Extent &extent : FencedExtents)
            for (const FencedBlock::Fence fence : Fences) {
                const FencedImage polar(extent, 2, type, fence);
                for (const Extent &place : {Extent{50, 41}, Extent{1, 30}, Extent{30, 1}}) {
                    const FencedImage target(place, 2, type, fence), twin(place, 2, type, fence);
                    SCOPED_TRACE(testing::Message()
                                 << "type " << type << ", " << extent.Width << " x " << extent.Height);
                    for (const Roll &roll : {Roll{20, 20, 15, 0.5}, Roll{3, 30, -100, 4}, Roll{0, 66, 0, 2}})
                        ASSERT_NO_FATAL_FAILURE(
                            ExpectRolledUpAsTold(polar.Image.Get(), target.Image.Get(), twin.Image.Get(), roll));
                }
            }
}

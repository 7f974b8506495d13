/* Unrolling and rolling up against the model, bit for bit: ten pixel types with and without overlays, all layouts,
 * images down to one pixel, rings of every kind. Set ORV_TEST_CASE to a number to run that random case alone. */
#include "ImageCopies.h"
#include "ImageMaps.h"
#include "Scan/AreaModel.h"
#include "Transformations/PolarModel.h"

#include <cstdlib>

namespace {

using namespace PolarModel;

constexpr Extent Extents[] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {13, 11}, {33, 7}, {17, 40}};

const Ring Rings[] = {{6, 5, 0, 360, 2, 6},        {8.5, 3.25, 77.7, 360, 0, 9.5},  {0, 0, -1000, 500, 1, 12},
                      {16, 20, 5, 130, 3, 21},     {-3, 4.5, -45, 120, 4.25, 14.5}, {5, 5, 10, -360, -8, -2},
                      {7.1, 6.9, 123, 360, -3, 8}, {4, 3, 0, 360, 5.5, 5},          {0.5, 0.5, 30, 360, 0.5, 0.75}};

/// Mostly whole and half numbers, so that limits are met exactly.
class PolarRandom {
public:
    explicit PolarRandom(std::uint64_t seed) : engine(seed) {}
    std::intptr_t Draw(std::intptr_t low, std::intptr_t high) {
        return low + static_cast<std::intptr_t>(engine() % static_cast<std::uint64_t>(high - low + 1));
    }
    double Real(std::intptr_t low, std::intptr_t high) {
        const auto whole = static_cast<double>(Draw(low, high));
        const double fraction = static_cast<double>(engine() >> 11) * 0x1p-53;
        const double fractions[] = {0, 0, 0.5, 0.25, fraction, fraction};
        return whole + fractions[Draw(0, 5)];
    }
    /// Not a whole turn: that it is one angle with 0 is not promised to the last bit.
    double Start() {
        const double angle = Real(-700, 700);
        return std::fmod(angle, 360.0) == 0 ? 0 : angle;
    }
    Ring AnyRing(const Extent &extent) {
        const double inner = Real(-6, 25), outer = inner + Real(-1, 18);
        const double range = Draw(0, 2) != 0 ? 360 : Real(-500, 800);
        return {Real(-9, extent.Width + 8), Real(-9, extent.Height + 8), Real(-2000, 2000), range, inner, outer};
    }
    Roll AnyRoll(const Extent &polar, const Extent &target) {
        const double inner = Draw(0, 5) == 0 ? Real(-30, 0) : Real(0, 20);
        const double top = static_cast<double>(polar.Height - 1) + inner; // of a ring that just fits
        const double centreY = Draw(0, 6) == 0 ? Real(-9, target.Height + 8) : std::ceil(top) + Real(0, 8);
        return {Real(-9, target.Width + 8), centreY, Start(), inner};
    }
    std::mt19937_64 engine;
};

bool IsAcceptable(const Ring &ring) {
    const double arc = (ring.Inner + ring.Outer) * Pi * ring.Range / 360;
    return arc > 0.6 && arc < 400 && ring.Outer - ring.Inner >= -1;
}

/// The word of a type, with an overlay or without.
class PolarOfEachType : public testing::TestWithParam<TDataType> {};

std::string WordName(const testing::TestParamInfo<TDataType> &info) {
    return TypeName(info) + ((info.param & DataTypeOverlay) != 0 ? "Overlay" : "");
}
INSTANTIATE_TEST_SUITE_P(TenPixelTypes, PolarOfEachType,
                         testing::Values(0x8, 0x108, 0x10, 0x110, 0x20, 0x120, 0x40, 0x140, 0x220, 0x240, 0x408,
                                         0x508, 0x410, 0x510, 0x420, 0x520, 0x440, 0x540, 0x620, 0x640),
                         WordName);

TEST_P(PolarOfEachType, UnrollsAsTheModelInEveryLayout) {
    std::uint32_t seed = GetParam();
    for (const Extent &extent : Extents)
        for (const std::intptr_t planes : {1, 3})
            for (const auto &image : MakeLayouts(extent.Width, extent.Height, planes, GetParam(), ++seed)) {
                const Ring &ring = Rings[seed++ % std::size(Rings)];
                SCOPED_TRACE(testing::Message() << image.Name << ", " << planes << " planes of " << extent.Width
                                                << " x " << extent.Height << ", " << testing::PrintToString(ring));
                ASSERT_NO_FATAL_FAILURE(ExpectUnrolledAsTold(image.Get(), ring));
                ASSERT_EQ(RefCount(image.Get()), 1u);
            }
}

TEST_P(PolarOfEachType, UnrollsALargerImageAsTheModel) {
    for (const auto &image : MakeLayouts(141, 97, 3, GetParam(), 77))
        for (const Ring &ring : {Ring{70, 48, 3, 360, 20, 47}, Ring{10, 95, -99.5, 250, 8, 61.5}}) {
            SCOPED_TRACE(testing::Message() << image.Name << ", " << testing::PrintToString(ring));
            ASSERT_NO_FATAL_FAILURE(ExpectUnrolledAsTold(image.Get(), ring));
        }
}

TEST_P(PolarOfEachType, UnrollsTurnedViewsAndDuplicatesAsTheModel) {
    const auto image = MakeLayouts(29, 23, 3, GetParam(), 3).front();
    for (const std::uint32_t rotation : {1u, 2u, 3u}) {
        Handle view;
        ASSERT_TRUE(CreateRotatedImageMap(image.Get(), rotation, view.Out()));
        SCOPED_TRACE(testing::Message() << "turned by rotation " << rotation);
        ASSERT_NO_FATAL_FAILURE(ExpectUnrolledAsTold(view.Get(), {12, 11, 20, 360, 2, 13}));
    }
    Handle copy;
    ASSERT_EQ(CreateDuplicateImage(image.Get(), copy.Out()), 1);
    ASSERT_NO_FATAL_FAILURE(ExpectUnrolledAsTold(copy.Get(), {12, 11, 20, 360, 2, 13}));
}

TEST_P(PolarOfEachType, RollsUpAsTheModelFromEveryLayout) {
    PolarRandom random(GetParam());
    std::uint32_t seed = GetParam();
    for (const Extent &extent : Extents)
        for (const auto &polar : MakeLayouts(extent.Width, extent.Height, 2, GetParam(), ++seed)) {
            const Extent place{random.Draw(20, 50), random.Draw(20, 50)};
            const auto content = RandomContent(place.Width, place.Height, 2, GetParam(), 9);
            const auto target = PlainImage(place.Width, place.Height, GetParam(), content);
            const auto twin = PlainImage(place.Width, place.Height, GetParam(), content);
            const Roll roll = random.AnyRoll(extent, place);
            SCOPED_TRACE(testing::Message() << polar.Name << " of " << extent.Width << " x " << extent.Height << ", "
                                            << testing::PrintToString(roll));
            ASSERT_NO_FATAL_FAILURE(ExpectRolledUpAsTold(polar.Get(), target->Handle(), twin->Handle(), roll));
            ASSERT_EQ(RefCount(polar.Get()), 1u);
            ASSERT_EQ(target->Count(), 1);
        }
}

TEST_P(PolarOfEachType, RollsUpAsTheModelIntoEveryLayout) {
    const auto polar = MakeLayouts(63, 12, 2, GetParam(), 4).front();
    const auto sector = MakeLayouts(19, 12, 3, GetParam(), 4).back();
    const Roll rolls[] = {{17, 17, 0, 5}, {14.5, 19.25, 33, 2.5}, {3, 30, -200, 7}, {20, 40, 300.5, -25}};
    for (const auto &[width, height] : {Extent{37, 35}, Extent{1, 40}, Extent{40, 1}, Extent{22, 31}}) {
        const TwinImages images(width, height, 2, GetParam(), 21);
        for (std::size_t i = 0; i < images.Count(); ++i)
            for (const Roll &roll : rolls)
                for (void *const source : {polar.Get(), sector.Get()}) {
                    SCOPED_TRACE(testing::Message() << images.Images[i].Name << " of " << width << " x " << height
                                                    << ", " << testing::PrintToString(roll));
                    ASSERT_NO_FATAL_FAILURE(ExpectRolledUpAsTold(source, images.Image(i), images.Twin(i), roll));
                    ASSERT_TRUE((GetParam() & DataTypeFloat) != 0 || images.AreEqual(i)) << "bytes beside the pixels";
                }
    }
}

TEST_P(PolarOfEachType, RollsUpALargerImageAsTheModel) {
    const TwinImages targets(190, 171, 1, GetParam(), 5);
    const auto polars = MakeLayouts(401, 42, 1, GetParam(), 6);
    for (std::size_t i = 0; i < polars.size(); i += 4) {
        SCOPED_TRACE(testing::Message() << polars[i].Name << " into " << targets.Images[i].Name);
        ASSERT_NO_FATAL_FAILURE(
            ExpectRolledUpAsTold(polars[i].Get(), targets.Image(i), targets.Twin(i), {95.5, 85, 33.25, 43}));
    }
}

/// The one case that the environment asks for, or all.
std::pair<std::uint32_t, std::uint32_t> Cases(std::uint32_t count) {
    const char *const single = std::getenv("ORV_TEST_CASE");
    if (single == nullptr)
        return {1, count};
    const auto number = static_cast<std::uint32_t>(std::stoul(single));
    return {number, number};
}

TEST(PolarAtRandom, UnrollsAsTheModel) {
    const auto [first, last] = Cases(600);
    for (std::uint32_t number = first; number <= last; ++number) {
        PolarRandom random(number);
        const TDataType type = PixelTypes[random.Draw(0, 9)] | (random.Draw(0, 2) == 0 ? DataTypeOverlay : 0u);
        const Extent extent{random.Draw(1, 45), random.Draw(1, 45)};
        const auto images = MakeLayouts(extent.Width, extent.Height, random.Draw(1, 3), type, number);
        const auto &image = images[static_cast<std::size_t>(random.Draw(0, std::ssize(images) - 1))];
        Ring ring = random.AnyRing(extent);
        while (!IsAcceptable(ring))
            ring = random.AnyRing(extent);
        SCOPED_TRACE(testing::Message() << "case " << number << ", " << image.Name << ", "
                                        << testing::PrintToString(ring));
        ASSERT_NO_FATAL_FAILURE(ExpectUnrolledAsTold(image.Get(), ring));
    }
}

TEST(PolarAtRandom, RollsUpAsTheModel) {
    const auto [first, last] = Cases(600);
    for (std::uint32_t number = first; number <= last; ++number) {
        PolarRandom random(number);
        const TDataType type = PixelTypes[random.Draw(0, 9)] | (random.Draw(0, 2) == 0 ? DataTypeOverlay : 0u);
        const Extent shape{random.Draw(1, 120), random.Draw(1, 16)}, place{random.Draw(1, 60), random.Draw(1, 60)};
        const auto polars = MakeLayouts(shape.Width, shape.Height, 1, type, number);
        const TwinImages targets(place.Width, place.Height, random.Draw(1, 2), type, number + 1);
        const auto from = static_cast<std::size_t>(random.Draw(0, std::ssize(polars) - 1));
        const auto to = static_cast<std::size_t>(random.Draw(0, std::ssize(polars) - 1));
        const Roll roll = random.AnyRoll(shape, place);
        SCOPED_TRACE(testing::Message() << "case " << number << ", " << polars[from].Name << " into "
                                        << targets.Images[to].Name << ", " << testing::PrintToString(roll));
        ASSERT_NO_FATAL_FAILURE(ExpectRolledUpAsTold(polars[from].Get(), targets.Image(to), targets.Twin(to), roll));
    }
}

} // namespace

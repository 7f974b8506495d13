/* Applying white balance gains in place: every value of the small types, all layouts, pixels that are shown at
 * several places or by several planes, against a plain walk in the told order; and every failure. */
#include "ColorTransforms.h"
#include "ImageCreation.h"
#include "Scan/MappingModel.h"

#include <array>

namespace {

using namespace MappingModel;

constexpr const char *Name = "ApplyWhiteBalance";
constexpr TDataType BalancedTypes[] = {0x108, 0x8, 0x110, 0x10, 0x120, 0x20, 0x220, 0x240};
constexpr double Infinity = std::numeric_limits<double>::infinity();
using Gains = std::array<double, 3>;

/// A product that wraps at 32 bits, shifted as a signed number.
std::int32_t Times(std::int32_t value, std::int32_t gain) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) * static_cast<std::uint32_t>(gain)) >> 8;
}
std::int64_t TimesWide(std::int64_t value, std::int64_t gain) {
    return (value * gain) >> 8;
}

/// The new value of a pixel: counted from the lower end of the type, with an upper limit only, low bits stored.
template <class T>
T Balanced(T value, double gain) {
    if constexpr (std::is_floating_point_v<T>) {
        return value * static_cast<T>(gain);
    } else {
        const std::int32_t fixed = CutTo32(gain * 256.0 + 0.5);
        constexpr auto lowest = static_cast<std::int64_t>(std::numeric_limits<T>::min());
        constexpr auto highest = static_cast<std::int64_t>(std::numeric_limits<T>::max());
        std::int64_t scaled;
        if constexpr (std::is_same_v<T, std::int32_t>)
            scaled = TimesWide(static_cast<std::int32_t>(static_cast<std::uint32_t>(value) + 0x80000000u), fixed);
        else if constexpr (sizeof(T) == 4)
            scaled = TimesWide(value, fixed);
        else
            scaled = Times(static_cast<std::int32_t>(value - lowest), fixed);
        return static_cast<T>(std::min(scaled + lowest, highest));
    }
}

/// Planes 0, 1, 2 in this order, rows then columns, through the tables of an image of the tests' own.
template <class T>
void BalancePlainly(FakeImage &image, std::intptr_t width, std::intptr_t height, const Gains &gains) {
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x) {
                std::uint8_t *const address = image.PixelAddress(plane, x, y);
                T value;
                std::memcpy(&value, address, sizeof value);
                value = Balanced(value, gains[plane]);
                std::memcpy(address, &value, sizeof value);
            }
}

std::int32_t Apply(void *image, const Gains &gains) {
    return ApplyWhiteBalance(image, gains[0], gains[1], gains[2]);
}

/// What one pixel of each of three planes becomes.
template <class T>
std::array<T, 3> Balanced(TDataType type, const std::array<T, 3> &pixels, const Gains &gains) {
    const auto image = PlainImage(9, 1, type, {Flat(9, pixels[0]), Flat(9, pixels[1]), Flat(9, pixels[2])});
    ClearReports();
    EXPECT_EQ(Apply(image->Handle(), gains), 1);
    ExpectNoReport();
    EXPECT_EQ(image->Count(), 1);
    return {OneValueOf<T>(image->Handle(), 0), OneValueOf<T>(image->Handle(), 1), OneValueOf<T>(image->Handle(), 2)};
}
using Bytes3 = std::array<std::uint8_t, 3>;

TEST(ApplyWhiteBalance, MultipliesEachOfThreePlanesByItsGainAndLimitsTheResult) {
    EXPECT_EQ(Balanced(0x8, Bytes3{200, 100, 100}, {1.5, 1.5, 2.5}), (Bytes3{255, 150, 250}));
    EXPECT_EQ(Balanced(0x10, std::array<std::uint16_t, 3>{50000, 1000, 3}, {1.5, 1.5, 0.5}),
              (std::array<std::uint16_t, 3>{65535, 1500, 1}));
    EXPECT_EQ(Balanced(0x20, std::array<std::uint32_t, 3>{4000000000u, 1000, 3}, {1.5, 1.5, 1}),
              (std::array<std::uint32_t, 3>{4294967295u, 1500, 3}));
}

TEST(ApplyWhiteBalance, CountsSignedPixelsFromTheLowerEndOfTheirRange) {
    EXPECT_EQ(Balanced(0x108, std::array<std::int8_t, 3>{-128, -28, 100}, {2, 1.5, 2}),
              (std::array<std::int8_t, 3>{-128, 22, 127}));
    EXPECT_EQ(Balanced(0x110, std::array<std::int16_t, 3>{-32768, -31768, 100}, {2, 1.5, 3}),
              (std::array<std::int16_t, 3>{-32768, -31268, 32767}));
}

TEST(ApplyWhiteBalance, TakesTheCountOfSigned32BitPixelsAsANumberWithASign) {
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(Balanced(0x120, std::array<std::int32_t, 3>{lowest, lowest + 1000, -1}, {2, 1.5, 2}),
              (std::array<std::int32_t, 3>{lowest, lowest + 1500, 2147483646}));
    EXPECT_EQ(Balanced(0x120, std::array<std::int32_t, 3>{5, 5, 5}, {1, 0.5, 2}),
              (std::array<std::int32_t, 3>{5, 1073741826, lowest + 10}))
        << "0 and above count as negative, and only the low bits of what comes out are stored";
}

TEST(ApplyWhiteBalance, LeavesIntegerPixelsUnchangedForGainsOfOne) {
    for (const TDataType type : BalancedTypes) {
        const auto content =
            RandomPlanes(600, 3, type, type, (type & DataTypeFloat) != 0 ? Content::Tame : Content::Wild);
        const auto image = PlainImage(30, 20, type, content);
        ASSERT_EQ(Apply(image->Handle(), {1, 1, 1}), 1);
        for (std::intptr_t plane = 0; plane < 3; ++plane)
            ExpectPlane(image->Handle(), plane, type, content[static_cast<std::size_t>(plane)]);
    }
}

TEST(ApplyWhiteBalance, BlanksAPlaneForAGainThatRoundsToZero) {
    EXPECT_EQ(Balanced(0x8, Bytes3{200, 200, 200}, {0.001, 0, 0.00195}), (Bytes3{0, 0, 0}));
    EXPECT_EQ(Balanced(0x8, Bytes3{255, 255, 255}, {0.5 / 256, 1.0 / 256, 1.5 / 256}), (Bytes3{0, 0, 1}))
        << "gains of 1, 1 and 2 in 256";
    EXPECT_EQ(Balanced(0x108, std::array<std::int8_t, 3>{5, 5, 5}, {0.001, 0, -0.001}),
              (std::array<std::int8_t, 3>{-128, -128, -128}));
}

TEST(ApplyWhiteBalance, StoresTheLowBitsOfNegativeResults) {
    EXPECT_EQ(Balanced(0x8, Bytes3{10, 10, 0}, {-1, -0.5, -1}), (Bytes3{246, 251, 0}));
    EXPECT_EQ(Balanced(0x20, std::array<std::uint32_t, 3>{10, 256, 0}, {-1, -0.5, -1}),
              (std::array<std::uint32_t, 3>{4294967286u, 4294967169u, 0}))
        << "-10 and -127";
}

TEST(ApplyWhiteBalance, WrapsProductsAt32Bits) {
    // A gain of 8388608 or more does not fit: it is the lowest number, and once that is shifted no low bits are left.
    // 65535 * 200 * 256 turns into -3670216 * 256.
    EXPECT_EQ(Balanced(0x8, Bytes3{255, 1, 2}, {8388607, 8388608, 1e300}), (Bytes3{255, 0, 0}));
    EXPECT_EQ(Balanced(0x10, std::array<std::uint16_t, 3>{65535, 32768, 32767}, {200, 256, 256}),
              (std::array<std::uint16_t, 3>{65336, 0, 65535}));
}

TEST(ApplyWhiteBalance, MultipliesFloatsInTheirOwnPrecision) {
    EXPECT_EQ(Balanced(0x220, std::array<float, 3>{0.1f, -3, 1e30f}, {0.1, 2.5, 1e30}),
              (std::array<float, 3>{0.1f * 0.1f, -7.5f, std::numeric_limits<float>::infinity()}));
    EXPECT_EQ(Balanced(0x220, std::array<float, 3>{1, 1, 1e-30f}, {1e-60, 1e300, 1e30}),
              (std::array<float, 3>{0, std::numeric_limits<float>::infinity(), 1e-30f * 1e30f}));
    EXPECT_EQ(Balanced(0x240, std::array<double, 3>{0.1, -3, 1e30}, {0.1, 2.5, 1e30}),
              (std::array<double, 3>{0.1 * 0.1, -7.5, 1e30 * 1e30}));
}

TEST(ApplyWhiteBalance, LeavesFurtherPlanesUntouched) {
    for (const TDataType fourth : {0x8u, 0x40u, 0x18u}) {
        const auto image =
            MixedImage(4, 1, {0x8, 0x8, 0x8, fourth}, {{1, 2, 3, 4}, {1, 2, 3, 4}, {1, 2, 3, 4}, PlaneBytes(32, 77)});
        ASSERT_EQ(Apply(image->Handle(), {2, 3, 4}), 1);
        EXPECT_EQ(PixelBytes(image->Handle(), 0), (PlaneBytes{2, 4, 6, 8}));
        EXPECT_EQ(PixelBytes(image->Handle(), 2), (PlaneBytes{4, 8, 12, 16}));
        EXPECT_EQ(PixelBytes(image->Handle(), 3), PlaneBytes(4 * PixelSize(fourth), 77));
        EXPECT_EQ(image->Count(), 1);
    }
}

/// Plain gains, the edges of fixed point and of products of 32 bits, and gains that are hardly any.
std::vector<double> NotableGains() {
    return {0,          -0.0,      1,         0.5,       1.5,       2,          0.001,       255.99,
            256,        256.1,     1000,      32767.99,  32768,     65536,      8388607,     8388607.998,
            8388608,    1e7,       1e300,     -1e300,    Infinity,  -Infinity,  -1,          -0.5,
            -256,       -1000,     -8388608,  -8388609,  0.5 / 256, 0.49 / 256, 1.0 / 3,     255.0 / 254,
            127.0 / 99, 128.00390, 1.9980468, 1.9980469, -0.001953, -0.0019532, std::nan("")};
}

class BalancedOfEachType : public testing::TestWithParam<TDataType> {
protected:
    Gains RandomGains(std::mt19937_64 &random) {
        const auto notable = NotableGains();
        Gains gains{};
        for (double &gain : gains) {
            const auto small = static_cast<double>(random() % 4096) / 1000;
            gain = random() % 3 == 0 ? notable[random() % notable.size()] : small;
        }
        return gains;
    }
};

TEST_P(BalancedOfEachType, EqualTheModelForEachNotableGain) {
    ForPixelType(GetParam(), [&](auto zero) {
        using T = decltype(zero);
        std::vector<T> values(65536);
        std::mt19937_64 random(1);
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = sizeof(T) <= 2 ? static_cast<T>(i) : RandomValue<T>(random, Content::Wild);
        const auto bytes = BytesOf(values);
        for (const double gain : NotableGains()) {
            SCOPED_TRACE(testing::Message() << "gain " << gain);
            const auto image = PlainImage(1024, 64, GetParam(), {bytes, bytes, bytes});
            ASSERT_EQ(Apply(image->Handle(), {gain, 1 / gain, -gain}), 1);
            const Gains applied{gain, 1 / gain, -gain};
            for (std::size_t plane = 0; plane < 3; ++plane) {
                std::vector<T> told;
                for (const T value : values)
                    told.push_back(Balanced(value, applied[plane]));
                ASSERT_NO_FATAL_FAILURE(
                    ExpectPlane(image->Handle(), static_cast<std::intptr_t>(plane), GetParam(), BytesOf(told)));
            }
        }
    });
}

/// All pixels and gaps of an image of the tests' own after the function and after the plain walk.
void ExpectBalanced(FakeImage &image, std::intptr_t width, std::intptr_t height, TDataType type, const Gains &gains) {
    const auto before = image.Pixels;
    ForPixelType(type, [&](auto zero) { BalancePlainly<decltype(zero)>(image, width, height, gains); });
    const auto told = image.Pixels;
    std::copy(before.begin(), before.end(), image.Pixels.begin());
    ASSERT_EQ(Apply(image.Handle(), gains), 1);
    ASSERT_EQ(image.Count(), 1);
    if (image.Pixels == told)
        return;
    // The bytes differ: look at the block as a row of pixels, where NaN equals NaN.
    const auto size = static_cast<std::intptr_t>(PixelSize(type));
    FakeImage whole(std::ssize(told) / size, 1);
    whole.AddPlane(
        image.Pixels.data(), type, [=](std::intptr_t i) { return i * size; }, [](std::intptr_t) { return 0; });
    PlaneBytes pixels(told.begin(), told.end() - static_cast<std::ptrdiff_t>(told.size() % PixelSize(type)));
    ExpectPlane(whole.Handle(), 0, type, pixels);
}

TEST_P(BalancedOfEachType, EqualTheModelForEveryLayout) {
    std::mt19937_64 random(GetParam());
    std::vector<std::pair<std::intptr_t, std::intptr_t>> sizes{{1, 37}, {37, 1}, {7, 5}, {257, 3}, {33, 17}};
    for (const std::intptr_t width : Widths)
        sizes.emplace_back(width, width < 300 ? 2 : 1);
    for (const auto &[sizeX, sizeY] : sizes)
        for (const std::intptr_t planes : {3, 4}) {
            const std::intptr_t width = sizeX, height = sizeY;
            const auto content = RandomPlanes(width * height, planes, GetParam(), random(), Content::Wild);
            for (const auto &image : LayoutsOf(content, width, height, GetParam())) {
                SCOPED_TRACE(testing::Message()
                             << image.Name << ", " << planes << " planes of " << width << " x " << height);
                const Gains gains = RandomGains(random);
                if (image.Fake) {
                    ASSERT_NO_FATAL_FAILURE(ExpectBalanced(*image.Fake, width, height, GetParam(), gains));
                    continue;
                }
                const auto twin = PlainImage(width, height, GetParam(), content);
                ASSERT_EQ(Apply(image.Get(), gains), 1);
                ForPixelType(GetParam(),
                             [&](auto zero) { BalancePlainly<decltype(zero)>(*twin, width, height, gains); });
                for (std::intptr_t plane = 0; plane < planes; ++plane)
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectPlane(image.Get(), plane, GetParam(), PixelBytes(twin->Handle(), plane)));
            }
        }
}

/// Offsets of one axis in pixels: in order, backwards, at random with repeats, all alike, in pairs, or overlapping
/// runs.
std::vector<std::intptr_t> RandomAxis(std::mt19937_64 &random, std::intptr_t count, std::intptr_t step) {
    std::vector<std::intptr_t> axis;
    const std::uint64_t kind = random() % 6;
    for (std::intptr_t i = 0; i < count; ++i) {
        const std::intptr_t options[] = {i, count - 1 - i, static_cast<std::intptr_t>(random() % 7) % count,
                                         0, i / 2,         i % 5};
        axis.push_back(options[kind] * step);
    }
    return axis;
}

TEST_P(BalancedOfEachType, MultiplyAPixelOnceForEachPlaceThatShowsIt) {
    const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
    for (std::uint32_t number = 1; number <= 1500; ++number) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        std::mt19937_64 random(number);
        const auto width = static_cast<std::intptr_t>(random() % 70 + 1),
                   height = static_cast<std::intptr_t>(random() % 6 + 1);
        const std::intptr_t pitches[] = {width, 3 * width, 1, 3, width / 2};
        const std::intptr_t pitchX = random() % 2 == 0 ? 1 : 3, pitchY = pitches[random() % 5];
        FakeImage image(width, height,
                        static_cast<std::size_t>((pitchX * width + pitchY * height + width + 8) * size));
        const auto content = RandomPlanes(std::ssize(image.Pixels) / size, 1, GetParam(), number, Content::Wild)[0];
        std::copy(content.begin(), content.end(), image.Pixels.begin());
        auto x = RandomAxis(random, width, pitchX * size), y = RandomAxis(random, height, pitchY * size);
        for (std::intptr_t plane = 0; plane < 3; ++plane) {
            if (random() % 3 == 0)
                x = RandomAxis(random, width, pitchX * size);
            const auto start = random() % 2 == 0 ? plane : static_cast<std::intptr_t>(random() % 3);
            image.AddPlane(
                image.Pixels.data() + start * size, GetParam(),
                [&](std::intptr_t i) { return x[static_cast<std::size_t>(i)]; },
                [&](std::intptr_t j) { return y[static_cast<std::size_t>(j)]; });
        }
        ASSERT_NO_FATAL_FAILURE(ExpectBalanced(image, width, height, GetParam(), RandomGains(random)));
    }
}

TEST_P(BalancedOfEachType, MultiplyMemoryThatAllThreePlanesShareByAllThreeGains) {
    const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
    for (const std::intptr_t shift : {0, 1, 16, 64}) { // planes that start some pixels behind each other
        constexpr std::intptr_t width = 150, height = 3;
        FakeImage image(width, height, static_cast<std::size_t>((width * height + 2 * shift) * size));
        const auto content = RandomPlanes(width * height + 2 * shift, 1, GetParam(), 5, Content::Tame)[0];
        std::copy(content.begin(), content.end(), image.Pixels.begin());
        for (std::intptr_t plane = 0; plane < 3; ++plane)
            image.AddPlane(
                image.Pixels.data() + plane * shift * size, GetParam(), [=](std::intptr_t i) { return i * size; },
                [=](std::intptr_t j) { return j * width * size; });
        SCOPED_TRACE(shift);
        ASSERT_NO_FATAL_FAILURE(ExpectBalanced(image, width, height, GetParam(), {1.37, 1.61, 0.43}));
    }
}

TEST_P(BalancedOfEachType, TouchNothingOutsideThePixels) {
    const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
    for (const std::intptr_t width : {1, 5, 16, 33, 67, 130})
        for (const bool interleaved : {false, true})
            for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
                const auto bytes = static_cast<std::size_t>(width * 2 * 3 * size);
                const FencedBlock block(bytes, fence);
                const std::intptr_t pitchX = interleaved ? 3 * size : size;
                Handle image;
                ASSERT_EQ(CreateImageFromPointer(block.Data(), bytes, width, 2, 3, GetParam(), pitchX, pitchX * width,
                                                 interleaved ? size : 2 * width * size, nullptr, nullptr, nullptr,
                                                 image.Out()),
                          0);
                const auto content = RandomPlanes(width * 6, 1, GetParam(), 5, Content::Wild)[0];
                std::copy(content.begin(), content.end(), block.Data());
                ASSERT_EQ(Apply(image.Get(), {1.5, 1.5, 1.5}), 1);
                const auto twin = PlainImage(width * 6, 1, GetParam(), {content});
                ForPixelType(GetParam(), [&](auto zero) {
                    auto told = ValuesOf<decltype(zero)>(content);
                    for (auto &value : told)
                        value = Balanced(value, 1.5);
                    const auto toldBytes = BytesOf(told);
                    std::copy_n(block.Data(), bytes, twin->Pixels.begin());
                    ASSERT_NO_FATAL_FAILURE(ExpectPlane(twin->Handle(), 0, GetParam(), toldBytes));
                });
            }
}

INSTANTIATE_TEST_SUITE_P(EightPixelTypes, BalancedOfEachType, testing::ValuesIn(BalancedTypes), TypeName);

/// Calls and expects 0; the reports stay.
void ExpectRefusal(void *image) {
    ClearReports();
    EXPECT_EQ(Apply(image, {2, 2, 2}), 0);
}

TEST(ApplyWhiteBalanceFailure, ReportsWhatIsNoImage) {
    ExpectRefusal(nullptr);
    ExpectOneReport(ErrNotAnImage, Name);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectRefusal(foreign.Get());
        ExpectOneReport(ErrNotAnImage, Name);
        EXPECT_EQ(foreign.Count(), 1);
    }
}

/// An image that is refused with a code and keeps its pixels.
void ExpectRefusedAndUnchanged(FakeImage &image, std::uint32_t code) {
    std::fill(image.Pixels.begin(), image.Pixels.end(), std::uint8_t{7});
    const auto before = image.Pixels;
    ExpectRefusal(image.Handle());
    ExpectOneReport(code, Name);
    EXPECT_EQ(image.Pixels, before);
    EXPECT_EQ(image.Count(), 1);
}

TEST(ApplyWhiteBalanceFailure, ReportsFewerThanThreePlanes) {
    for (const std::intptr_t planes : {0, 1, 2})
        for (const TDataType type : {0x8u, 0x40u})
            ExpectRefusedAndUnchanged(*FakeImage::Planar(3, 2, planes, type), ErrIndexRange);
}

TEST(ApplyWhiteBalanceFailure, ReportsUnsupportedTypes) {
    for (const TDataType type : {0x40u, 0x140u, 0x18u, 0x118u, 0x30u, 0x80u, 0x210u, 0x208u}) {
        SCOPED_TRACE(type);
        ExpectRefusedAndUnchanged(*FakeImage::Planar(3, 2, 3, type), ErrDataType);
    }
}

TEST(ApplyWhiteBalanceFailure, ReportsPlanesThatDifferInAnyBitOfTheirDataType) {
    for (const TDataType other : {0x408u, 0x108u, 0x7u, 0x10u, 0x220u})
        for (const std::size_t position : {0u, 1u, 2u}) {
            std::vector<TDataType> types(3, 0x8);
            types[position] = other;
            ExpectRefusedAndUnchanged(*MixedImage(3, 2, types, std::vector<PlaneBytes>(3, PlaneBytes(24))),
                                      ErrDataType);
        }
}

TEST(ApplyWhiteBalanceFailure, ReportsAnImageThatRefusesAPlane) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x8);
    image->Fails.VPAStatus = StatusBadPlane;
    ExpectRefusedAndUnchanged(*image, ErrGeneral);
    image->Fails.VPAStatus = 0;
    image->Fails.DatatypeStatus = StatusBadPlane;
    ExpectRefusedAndUnchanged(*image, ErrGeneral);
}

TEST(ApplyWhiteBalanceFailure, LetsExceptionsOfTheImagePassAndGivesAllReferencesBack) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x8);
    ExpectExceptionsToPass(*image, [&] { return Apply(image->Handle(), {2, 2, 2}) == 1; });
}

} // namespace

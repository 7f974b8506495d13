/* Measuring the white balance: gains from the sums of an area, the half range that signed sums get, a plain model of
 * walk and sums for all types and layouts, and every failure with all it leaves behind. */
#include "ColorTransforms.h"
#include "Scan/MappingModel.h"

#include <array>

namespace {

using namespace MappingModel;

constexpr const char *Name = "CalculateWhiteBalance";
constexpr TDataType MeasuredTypes[] = {0x108, 0x8, 0x110, 0x10, 0x120, 0x20, 0x220, 0x240};
using Gains = std::array<double, 3>;

TArea AreaOf(double left, double top, double right, double bottom) {
    return {left, top, right, top, left, bottom};
}

Gains GainsOf(void *image, const TArea &area) {
    Gains gains{-1, -1, -1};
    EXPECT_EQ(CalculateWhiteBalance(image, &gains[0], &gains[1], &gains[2], area), 1);
    ExpectNoReport();
    return gains;
}
/// The gains over the whole of an image with a flat plane of each value.
template <class T>
Gains GainsOfFlat(TDataType type, T red, T green, T blue, std::intptr_t pixels = 12) {
    const auto image = PlainImage(pixels, 1, type, {Flat(pixels, red), Flat(pixels, green), Flat(pixels, blue)});
    ClearReports();
    const Gains gains = GainsOf(image->Handle(), AreaOf(0, 0, static_cast<double>(pixels - 1), 0));
    EXPECT_EQ(image->Count(), 1);
    return gains;
}

TEST(CalculateWhiteBalance, GivesTheGainsThatMakeTheSumsEqualToTheGreatest) {
    EXPECT_EQ(GainsOfFlat<std::uint8_t>(0x8, 10, 20, 40), (Gains{4, 2, 1}));
    EXPECT_EQ(GainsOfFlat<std::uint16_t>(0x10, 60000, 30000, 15000), (Gains{1, 2, 4}));
    EXPECT_EQ(GainsOfFlat<std::uint32_t>(0x20, 1, 4000000000u, 2), (Gains{4e9, 1, 2e9}));
    EXPECT_EQ(GainsOfFlat<float>(0x220, 0.5f, 2, 0.25f), (Gains{4, 1, 8}));
    EXPECT_EQ(GainsOfFlat<double>(0x240, 1e300, 5e299, 1e300), (Gains{1, 2, 1})) << "12 of them stay finite";
}

TEST(CalculateWhiteBalance, GivesGainsOfOneForAGreyImage) {
    EXPECT_EQ(GainsOfFlat<std::uint8_t>(0x8, 77, 77, 77), (Gains{1, 1, 1}));
    EXPECT_EQ(GainsOfFlat<std::int8_t>(0x108, -77, -77, -77), (Gains{1, 1, 1}));
    EXPECT_EQ(GainsOfFlat<std::int32_t>(0x120, 5, 5, 5), (Gains{1, 1, 1}));
    EXPECT_EQ(GainsOfFlat<double>(0x240, 0.1, 0.1, 0.1), (Gains{1, 1, 1}));
}

TEST(CalculateWhiteBalance, GivesAnInfiniteGainForASumOfZero) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(GainsOfFlat<std::uint8_t>(0x8, 0, 5, 0), (Gains{infinity, 1, infinity}));
    for (const double gain : GainsOfFlat<std::uint8_t>(0x8, 0, 0, 0))
        EXPECT_TRUE(std::isnan(gain)) << "zero by zero";
}

TEST(CalculateWhiteBalance, AddsHalfTheRangeOnceToTheSumsOfSignedTypes) {
    EXPECT_EQ(GainsOfFlat<std::int8_t>(0x108, 2, 4, 6, 1), (Gains{134.0 / 130, 134.0 / 132, 1}));
    EXPECT_EQ(GainsOfFlat<std::int8_t>(0x108, 2, 4, 6, 10), (Gains{188.0 / 148, 188.0 / 168, 1}));
    EXPECT_EQ(GainsOfFlat<std::int16_t>(0x110, 2, 4, 6, 10), (Gains{32828.0 / 32788, 32828.0 / 32808, 1}));
    EXPECT_EQ(GainsOfFlat<std::int16_t>(0x10C, 2, 4, 6, 10), (Gains{2108.0 / 2068, 2108.0 / 2088, 1}))
        << "half the range of the 12 bits that the word tells";
    EXPECT_EQ(GainsOfFlat<std::int32_t>(0x120, 2, 4, 6, 10),
              (Gains{-2147483588.0 / -2147483628.0, -2147483588.0 / -2147483608.0, 1}))
        << "at 32 bits the half range is negative";
}

TEST(CalculateWhiteBalance, TakesANegativeTotalForANumberNear2ToThePower64) {
    constexpr double total = 18446744073709551616.0;
    EXPECT_EQ(GainsOfFlat<std::int8_t>(0x108, -1, 100, 100, 1), (Gains{1, total / 228, total / 228}));
    EXPECT_EQ(GainsOfFlat<std::int16_t>(0x110, 0, -100, -100, 1), (Gains{(total + 32768) / 32768, 1, 1}));
    EXPECT_EQ(GainsOfFlat<float>(0x220, -4, -2, -1, 1), (Gains{0.25, 0.5, 1})) << "floats have no such turn";
}

TEST(CalculateWhiteBalance, MeasuresThePixelsOfTheAreaOnly) {
    auto image = FakeImage::Planar(6, 5, 3, 0x8);
    std::fill(image->Pixels.begin(), image->Pixels.end(), std::uint8_t{255});
    for (std::intptr_t y = 1; y <= 3; ++y)
        for (std::intptr_t x = 2; x <= 4; ++x) {
            *image->PixelAddress(0, x, y) = 50;
            *image->PixelAddress(1, x, y) = 25;
            *image->PixelAddress(2, x, y) = 200;
        }
    EXPECT_EQ(GainsOf(image->Handle(), AreaOf(2, 1, 4, 3)), (Gains{4, 8, 1}));
    EXPECT_EQ(GainsOf(image->Handle(), {2, 1, 2, 3, 4, 1}), (Gains{4, 8, 1})) << "the edges swapped";
    EXPECT_EQ(GainsOf(image->Handle(), AreaOf(3, 2, 3, 2)), (Gains{4, 8, 1})) << "one pixel";
}

TEST(CalculateWhiteBalance, MeasuresThePartOfTheAreaInsideTheImage) {
    const auto image =
        PlainImage(3, 2, 0x8, {Flat<std::uint8_t>(6, 5), Flat<std::uint8_t>(6, 10), Flat<std::uint8_t>(6, 20)});
    EXPECT_EQ(GainsOf(image->Handle(), AreaOf(1, 1, 90, 90)), (Gains{4, 2, 1}));
    for (const double gain : GainsOf(image->Handle(), AreaOf(10, 10, 20, 20)))
        EXPECT_TRUE(std::isnan(gain)) << "no pixel at all";
}

TEST(CalculateWhiteBalance, TakesTheAreaInPixelCoordinates) {
    const auto image = PlainImage(2, 1, 0x8, {{10, 1}, {20, 1}, {40, 1}});
    image->Coordinates = {100, 200, {5, 0, 0, 5}};
    EXPECT_EQ(GainsOf(image->Handle(), AreaOf(0, 0, 0, 0)), (Gains{4, 2, 1}));
}

TEST(CalculateWhiteBalance, MeasuresTheFirstThreePlanesOfMore) {
    const auto image = MixedImage(2, 1, {0x8, 0x8, 0x8, 0x40}, {{10, 10}, {20, 20}, {40, 40}, PlaneBytes(16, 255)});
    EXPECT_EQ(GainsOf(image->Handle(), AreaOf(0, 0, 1, 0)), (Gains{4, 2, 1}));
    EXPECT_EQ(image->Count(), 1);
}

struct Pixel {
    std::intptr_t X, Y;
};
struct Walk {
    std::vector<Pixel> Pixels;
    bool Clipped = false;
};

/// What a walk at density 1000 goes by: both steps in 1/65536 pixel, the numbers of samples and lines, and whether
/// lines start on the grid of y.
struct Steps {
    std::int64_t SampleX = 0, SampleY = 0, LineX, LineY, Samples, Lines;
    bool AlignsY = false;
};

/// For points less than 10000 apart, where no product passes 32 bits.
Steps StepsOf(std::int64_t dx1, std::int64_t dy1, std::int64_t dx2, std::int64_t dy2) {
    constexpr std::int64_t one = 65536;
    const auto along = [](std::int64_t minor, std::int64_t step, std::int64_t major) {
        return CutTo64(static_cast<double>(minor * step) / static_cast<double>(major));
    };
    Steps steps{0, 0, dx2, dy2, 0, 1, false};
    steps.AlignsY = std::abs(dy1) > std::abs(dx1);
    if (steps.AlignsY) {
        steps.SampleY = dy1 < 0 ? -one : one;
        steps.SampleX = along(dx1, steps.SampleY, dy1);
    } else if (dx1 != 0) {
        steps.SampleX = dx1 < 0 ? -one : one;
        steps.SampleY = along(dy1, steps.SampleX, dx1);
    }
    steps.Samples = std::max(std::abs(dx1), std::abs(dy1)) + 1;
    const std::int64_t cell = std::abs(steps.SampleX * dy2 - steps.SampleY * dx2);
    if (cell != 0) {
        const double step = 65536.0 / 1000;
        const double k = step * step * (1000000.0 / static_cast<double>(cell));
        const auto scaled = [k](std::int64_t delta) {
            const double exact = static_cast<double>(delta) * k;
            return std::abs(exact) < 2147483647.0 ? CutTo64(std::floor(exact + 0.5)) : delta;
        };
        steps.LineX = scaled(dx2);
        steps.LineY = scaled(dy2);
        steps.Lines = CutTo64(std::floor(65536.0 / k + 0.5)) + 1;
    } else if (std::abs(dy2) > std::abs(dx2)) {
        steps.AlignsY = true;
        steps.LineY = dy2 < 0 ? -one : one;
        steps.LineX = along(dx2, steps.LineY, dy2);
        steps.Lines = std::abs(dy2) + 1;
    } else if (dx2 != 0) {
        steps.AlignsY = false;
        steps.LineX = dx2 < 0 ? -one : one;
        steps.LineY = along(dy2, steps.LineX, dx2);
        steps.Lines = std::abs(dx2) + 1;
    }
    for (std::int64_t *const step : {&steps.SampleX, &steps.SampleY, &steps.LineX, &steps.LineY})
        *step = *step == 0 ? 1 : *step;
    return steps;
}

Walk WalkOver(const TArea &area, std::intptr_t width, std::intptr_t height) {
    const auto rounded = [](double value) { return CutTo64(std::floor(value + 0.5)); };
    const std::int64_t x0 = rounded(area.X0), y0 = rounded(area.Y0);
    const Steps steps =
        StepsOf(rounded(area.X1) - x0, rounded(area.Y1) - y0, rounded(area.X2) - x0, rounded(area.Y2) - y0);
    std::int64_t startX = x0 * 65536 + 0x8000, startY = y0 * 65536 + 0x8000;
    Walk walk;
    for (std::int64_t line = 0; line < steps.Lines; ++line, startX += steps.LineX, startY += steps.LineY) {
        std::int64_t x = startX & 0xFFFF0000, y = startY & 0xFFFF0000; // a negative start lands far to the right
        if (steps.AlignsY)
            x = startX - (startY & 0xFFFF) * steps.SampleX / steps.SampleY;
        else
            y = startY - (startX & 0xFFFF) * steps.SampleY / steps.SampleX;
        for (std::int64_t sample = 0; sample < steps.Samples; ++sample, x += steps.SampleX, y += steps.SampleY) {
            const std::intptr_t column = static_cast<std::int32_t>(x >> 16), row = static_cast<std::int32_t>(y >> 16);
            if (column < 0 || column >= width || row < 0 || row >= height)
                walk.Clipped = true;
            else
                walk.Pixels.push_back({column, row});
        }
    }
    return walk;
}

/// The sum of a plane in walking order as a double; whole numbers in 64 bits that wrap and count as unsigned.
template <class T>
double SumOf(const std::vector<T> &values, std::intptr_t width, const Walk &walk) {
    std::conditional_t<std::is_floating_point_v<T>, double, std::uint64_t> sum = 0;
    for (const auto &[x, y] : walk.Pixels)
        sum += static_cast<decltype(sum)>(values[static_cast<std::size_t>(y * width + x)]);
    const double total = static_cast<double>(sum);
    if (std::is_floating_point_v<T> || std::is_unsigned_v<T>)
        return total;
    return total + (sizeof(T) == 4 ? -2147483648.0 : std::ldexp(1.0, 8 * static_cast<int>(sizeof(T)) - 1));
}

void ExpectMeasured(const NamedImage &image, std::intptr_t width, TDataType type, const TArea &area,
                    const Walk &walk) {
    Gains sums{}, told{};
    ForPixelType(type, [&](auto zero) {
        for (std::size_t plane = 0; plane < 3; ++plane)
            sums[plane] = SumOf(ValuesOf<decltype(zero)>(image.Content[plane]), width, walk);
    });
    for (std::size_t plane = 0; plane < 3; ++plane)
        told[plane] = std::max({sums[0], sums[1], sums[2]}) / sums[plane];
    const Gains gains = GainsOf(image.Get(), area);
    for (std::size_t plane = 0; plane < 3; ++plane)
        ASSERT_TRUE(gains[plane] == told[plane] || (std::isnan(gains[plane]) && std::isnan(told[plane])))
            << "plane " << plane << ": " << gains[plane] << " instead of " << told[plane] << " over (" << area.X0
            << ", " << area.Y0 << ") (" << area.X1 << ", " << area.Y1 << ") (" << area.X2 << ", " << area.Y2 << ")";
    ASSERT_EQ(RefCount(image.Get()), 1u);
}

/// Any parallelogram in and around the image, or an axis-parallel one.
TArea RandomArea(std::mt19937_64 &random, std::intptr_t width, std::intptr_t height) {
    const auto within = [&](std::intptr_t size) {
        return std::floor(static_cast<double>(random() % 1000) / 1000 * static_cast<double>(2 * size)) -
               static_cast<double>(size / 2) + static_cast<double>(random() % 3) / 4;
    };
    const double x = within(width), y = within(height), x1 = within(width), y2 = within(height);
    if (random() % 2 == 0)
        return {x, y, x1, y, x, y2};
    return {x, y, x1, within(height), within(width), y2};
}

class MeasuredOfEachType : public testing::TestWithParam<TDataType> {};

TEST_P(MeasuredOfEachType, EqualTheModelForEveryLayoutAndAnyArea) {
    std::mt19937_64 random(GetParam());
    const bool isFloat = (GetParam() & DataTypeFloat) != 0;
    for (const auto &[width, height] : {std::pair{1, 1}, {1, 37}, {37, 1}, {7, 5}, {257, 3}, {33, 17}, {64, 64}})
        for (const std::intptr_t planes : {3, 5}) {
            const auto content =
                RandomPlanes(width * height, planes, GetParam(), random(), isFloat ? Content::Tame : Content::Wild);
            for (const auto &image : LayoutsOf(content, width, height, GetParam()))
                for (int i = 0; i < 12; ++i) {
                    const TArea area =
                        i == 0 ? AreaOf(0, 0, width - 1, height - 1) : RandomArea(random, width, height);
                    const Walk walk = WalkOver(area, width, height);
                    if (walk.Clipped && walk.Pixels.size() == 1)
                        continue; // one pixel and the rest clipped is what a failed walk looks like
                    SCOPED_TRACE(image.Name);
                    ASSERT_NO_FATAL_FAILURE(ExpectMeasured(image, width, GetParam(), area, walk));
                }
        }
}

TEST_P(MeasuredOfEachType, EqualTheModelForEveryWidth) {
    std::mt19937_64 random(GetParam());
    for (const std::intptr_t width : Widths) {
        const bool isFloat = (GetParam() & DataTypeFloat) != 0;
        const auto content =
            RandomPlanes(width * 4, 3, GetParam(), random(), isFloat ? Content::Tame : Content::Wild);
        for (const auto &image : LayoutsOf(content, width, 4, GetParam()))
            for (const double left : {0, 1}) {
                const TArea area = AreaOf(left, 1, static_cast<double>(width - 1), 3);
                SCOPED_TRACE(testing::Message() << image.Name << ", width " << width);
                ASSERT_NO_FATAL_FAILURE(ExpectMeasured(image, width, GetParam(), area, WalkOver(area, width, 4)));
            }
    }
}
INSTANTIATE_TEST_SUITE_P(EightPixelTypes, MeasuredOfEachType, testing::ValuesIn(MeasuredTypes), TypeName);

TEST(CalculateWhiteBalance, AddsManyBrightPixelsWithoutLoss) {
    const auto image = PlainImage(
        1025, 1023, 0x8, {PlaneBytes(1025 * 1023, 255), PlaneBytes(1025 * 1023, 254), PlaneBytes(1025 * 1023, 3)});
    EXPECT_EQ(GainsOf(image->Handle(), AreaOf(0, 0, 1024, 1022)), (Gains{1, 255.0 / 254, 85}));
}

TEST(CalculateWhiteBalance, FollowsTheDriftOfALongLineIntoTheNextRow) {
    constexpr std::intptr_t width = 40000;
    const auto content = RandomPlanes(width * 3, 3, 0x10, 9, Content::Wild);
    const NamedImage image{"long", content, PlainImage(width, 3, 0x10, content), nullptr};
    // Sample 32768 lies half a row lower than the first: in row 1, where the line began in the middle of row 0.
    Gains sums{}, told{};
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const auto values = ValuesOf<std::uint16_t>(content[plane]);
        for (std::size_t x = 0; x < width; ++x)
            sums[plane] += values[x < 32768 ? x : width + x];
    }
    for (std::size_t plane = 0; plane < 3; ++plane)
        told[plane] = std::max({sums[0], sums[1], sums[2]}) / sums[plane];
    EXPECT_EQ(GainsOf(image.Get(), AreaOf(0, 0, width - 1, 0)), told);
}

/// Calls and expects 0 and untouched outputs; the reports stay.
void ExpectRefusal(void *image) {
    ClearReports();
    Gains gains{-1, -2, -3};
    EXPECT_EQ(CalculateWhiteBalance(image, &gains[0], &gains[1], &gains[2], AreaOf(0, 0, 1, 1)), 0);
    EXPECT_EQ(gains, (Gains{-1, -2, -3}));
}

TEST(CalculateWhiteBalanceFailure, ReportsWhatIsNoImage) {
    ExpectRefusal(nullptr);
    ExpectOneReport(ErrNotAnImage, Name);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectRefusal(foreign.Get());
        ExpectOneReport(ErrNotAnImage, Name);
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(CalculateWhiteBalance(nullptr, nullptr, nullptr, nullptr, AreaOf(0, 0, 1, 1)), 0);
    ExpectOneReport(ErrNotAnImage, Name);
}

TEST(CalculateWhiteBalanceFailure, ReportsANullGain) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x8);
    for (std::size_t null = 0; null < 3; ++null) {
        ClearReports();
        Gains gains{-1, -2, -3};
        EXPECT_EQ(CalculateWhiteBalance(image->Handle(), null == 0 ? nullptr : &gains[0],
                                        null == 1 ? nullptr : &gains[1], null == 2 ? nullptr : &gains[2],
                                        AreaOf(0, 0, 1, 1)),
                  0);
        ExpectOneReport(ErrParameter, Name);
        EXPECT_EQ(gains, (Gains{-1, -2, -3}));
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CalculateWhiteBalanceFailure, ReportsFewerThanThreePlanes) {
    for (const std::intptr_t planes : {0, 1, 2})
        for (const TDataType type : {0x8u, 0x40u}) {
            const auto image = FakeImage::Planar(3, 2, planes, type);
            ExpectRefusal(image->Handle());
            ExpectOneReport(ErrIndexRange, Name);
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CalculateWhiteBalanceFailure, ReportsUnsupportedTypes) {
    for (const TDataType type : {0x40u, 0x140u, 0x18u, 0x118u, 0x30u, 0x80u, 0x210u, 0x208u}) {
        const auto image = FakeImage::Planar(3, 2, 3, type);
        SCOPED_TRACE(type);
        ExpectRefusal(image->Handle());
        ExpectOneReport(ErrDataType, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CalculateWhiteBalanceFailure, ReportsPlanesThatDifferInAnyBitOfTheirDataType) {
    for (const TDataType other : {0x408u, 0x108u, 0x7u, 0x10u, 0x220u})
        for (const std::size_t position : {0u, 1u, 2u}) {
            std::vector<TDataType> types(3, 0x8);
            types[position] = other;
            const auto image = MixedImage(3, 2, types, std::vector<PlaneBytes>(3, PlaneBytes(24)));
            ExpectRefusal(image->Handle());
            ExpectOneReport(ErrDataType, Name);
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CalculateWhiteBalanceFailure, MeasuresNothingOverAreasBeyondAllPixels) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x8);
    for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, -1e15})
        for (double TArea::*coordinate : {&TArea::X0, &TArea::Y0, &TArea::X1, &TArea::Y1, &TArea::X2, &TArea::Y2}) {
            TArea area = AreaOf(0, 0, 2, 1);
            area.*coordinate = bad;
            Gains gains{-1, -1, -1};
            const bool done = CalculateWhiteBalance(image->Handle(), &gains[0], &gains[1], &gains[2], area) != 0;
            for (const double gain : gains)
                EXPECT_TRUE(done ? std::isnan(gain) : gain == -1) << bad;
        }
    EXPECT_EQ(image->Count(), 1);
    ClearReports();
}

TEST(CalculateWhiteBalanceFailure, ReportsAnImageThatRefusesAPlane) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x8);
    image->Fails.VPAStatus = StatusBadPlane;
    ExpectRefusal(image->Handle());
    ExpectOneReport(ErrGeneral, Name);
    image->Fails.VPAStatus = 0;
    image->Fails.DatatypeStatus = StatusBadPlane;
    ExpectRefusal(image->Handle());
    ExpectOneReport(ErrGeneral, Name);
    EXPECT_EQ(image->Count(), 1);
}

TEST(CalculateWhiteBalanceFailure, LetsExceptionsOfTheImagePassAndGivesAllReferencesBack) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x8);
    ExpectExceptionsToPass(*image, [&] {
        Gains gains{};
        return CalculateWhiteBalance(image->Handle(), &gains[0], &gains[1], &gains[2], AreaOf(0, 0, 1, 1)) == 1;
    });
}

} // namespace

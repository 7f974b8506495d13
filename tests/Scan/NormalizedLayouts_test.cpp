/* Normalised images against a plain model, bit for bit: ten pixel types, all layouts, sums that pass 53 bits.
 * Set ORV_TEST_CASE to a number to run that random case alone. */
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "Scan/MappingModel.h"
#include "ValueMapping.h"

#include <cstdlib>

namespace {

using namespace MappingModel;

struct Statistics {
    double First, Second; ///< mean and deviation, or minimum and maximum
};

Statistics FromSums(double count, double sum, double squares) {
    const double mean = sum / count;
    const double x = squares / count - mean * mean;
    return {mean, x < 0 ? 0.0 : std::sqrt(x)};
}

/// Bins in rising order, their numbers standing for the values.
template <class T>
Statistics DeviationOfBins(const std::vector<T> &values) {
    std::vector<std::uint32_t> bins(std::size_t{1} << 8 * sizeof(T));
    for (const T value : values)
        ++bins[static_cast<std::size_t>(value - std::numeric_limits<T>::min())];
    double count = 0, sum = 0, squares = 0;
    for (std::size_t i = 0; i < bins.size(); ++i) {
        const auto number = static_cast<double>(bins[i]), value = static_cast<double>(i);
        count += number;
        sum += number * value;
        squares += number * value * value;
    }
    return FromSums(count, sum, squares);
}

template <class T>
double Square(T value) {
    const auto wrapped = static_cast<std::uint32_t>(value) * static_cast<std::uint32_t>(value);
    if constexpr (std::is_same_v<T, std::int32_t>)
        return wrapped;
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return static_cast<std::int32_t>(wrapped);
    else
        return 0;
}
template <>
double Square(std::int64_t value) {
    return static_cast<double>(value) * static_cast<double>(value);
}
template <>
double Square(std::uint64_t value) {
    return static_cast<double>(value) * static_cast<double>(value);
}
template <>
double Square(float value) {
    return static_cast<double>(value) * static_cast<double>(value);
}
template <>
double Square(double value) {
    return value * value;
}

template <class T>
Statistics DeviationOf(const std::vector<T> &values) {
    if constexpr (sizeof(T) <= 2)
        return DeviationOfBins(values);
    double sum = 0, squares = 0;
    for (const T value : values) {
        sum += static_cast<double>(value);
        squares += Square<T>(value);
    }
    return FromSums(static_cast<double>(values.size()), sum, squares);
}

template <class T>
Statistics RangeOf(const std::vector<T> &values) {
    T minimum = std::numeric_limits<T>::max(), maximum = std::numeric_limits<T>::lowest();
    for (const T value : values) {
        minimum = value < minimum ? value : minimum;
        maximum = value > maximum ? value : maximum;
    }
    return {static_cast<double>(minimum), static_cast<double>(maximum)};
}

struct Targets {
    std::int32_t Mode;
    double First, Second;
};
void PrintTo(const Targets &targets, std::ostream *out) {
    *out << "mode " << targets.Mode << " to " << targets.First << ", " << targets.Second;
}

struct Map {
    double Gain, Offset;
};

template <class T>
Map MapTo(const Statistics &plane, const Targets &targets) {
    const double lower = Range<T>::Lower, upper = Range<T>::Upper;
    const double first = Limited(targets.First, lower, upper);
    if (targets.Mode == 0) {
        const double deviation = Limited(targets.Second, 0, upper * upper);
        const double gain = plane.Second != 0 && deviation != 0 ? deviation / plane.Second : 1.0;
        return {gain, first - gain * plane.First};
    }
    const double second = Limited(targets.Second, lower, upper);
    const bool sloped = plane.First != plane.Second && first != second;
    const double gain = sloped ? (second - first) / (plane.Second - plane.First) : 1.0;
    return {gain, second - gain * plane.Second};
}

template <class T>
T Mapped(T value, const Map &map) {
    const double v = static_cast<double>(value) * map.Gain + map.Offset + Range<T>::Rounding;
    if (v > Range<T>::Upper)
        return std::numeric_limits<T>::max();
    return v < Range<T>::Lower ? std::numeric_limits<T>::lowest() : CutTo<T>(v);
}

template <class T>
std::vector<T> Normalized(const std::vector<T> &values, const Targets &targets) {
    const Map map = MapTo<T>(targets.Mode == 0 ? DeviationOf(values) : RangeOf(values), targets);
    std::vector<T> mapped;
    for (const T value : values)
        mapped.push_back(Mapped(value, map));
    return mapped;
}

/// Normalises an image whose planes show the given pixels, and compares every plane with the model.
void ExpectNormalized(void *image, const std::vector<PlaneBytes> &content, TDataType type, const Targets &targets) {
    SCOPED_TRACE(testing::PrintToString(targets));
    Handle result;
    ASSERT_EQ(CreateNormalizedImage(image, targets.Mode, targets.First, targets.Second, result.Out()), 1);
    ASSERT_EQ(SizeOf(result.Get()), SizeOf(image));
    for (std::size_t plane = 0; plane < content.size(); ++plane)
        ForPixelType(type, [&](auto zero) {
            const auto told = Normalized(ValuesOf<decltype(zero)>(content[plane]), targets);
            ASSERT_NO_FATAL_FAILURE(
                ExpectPlane(result.Get(), static_cast<std::intptr_t>(plane), type, BytesOf(told)));
        });
    ASSERT_EQ(RefCount(image), 1u);
}

/// Targets inside and outside the range of a type, ends of it, inverted and equal ones.
Targets RandomTargets(std::mt19937_64 &random, TDataType type) {
    const int scale = static_cast<int>(random() % (PixelSize(type) * 8 + 2));
    const auto value = [&] {
        const double whole = std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())), scale - 63);
        const double picked[] = {whole, std::floor(whole), std::floor(whole) + 0.5, 0, -1e300, 1e300};
        return picked[random() % 6];
    };
    const auto mode = static_cast<std::int32_t>(random() % 2);
    const double first = value(), second = value();
    return {mode, first, random() % 8 == 0 ? first : mode == 0 ? std::abs(second) : second};
}

class NormalizedOfEachType : public testing::TestWithParam<TDataType> {
protected:
    void ExpectAllLayouts(std::intptr_t width, std::intptr_t height, std::intptr_t planes, Content kind,
                          std::uint64_t seed) {
        std::mt19937_64 random(seed);
        const auto content = RandomPlanes(width * height, planes, GetParam(), seed, kind);
        for (const auto &image : LayoutsOf(content, width, height, GetParam())) {
            SCOPED_TRACE(testing::Message()
                         << image.Name << ", " << planes << " planes of " << width << " x " << height);
            ASSERT_NO_FATAL_FAILURE(
                ExpectNormalized(image.Get(), image.Content, GetParam(), RandomTargets(random, GetParam())));
        }
    }
};

TEST_P(NormalizedOfEachType, EqualTheModelForEveryLayout) {
    std::uint64_t seed = GetParam();
    for (const Content kind : {Content::Tame, Content::Wild})
        for (const auto &[width, height] : {std::pair{1, 1}, {1, 37}, {37, 1}, {7, 5}, {257, 3}, {33, 17}})
            for (std::intptr_t planes = 1; planes <= 4; ++planes)
                ASSERT_NO_FATAL_FAILURE(ExpectAllLayouts(width, height, planes, kind, ++seed));
}

TEST_P(NormalizedOfEachType, EqualTheModelForEveryWidth) {
    std::uint64_t seed = 1000 + GetParam();
    for (const std::intptr_t width : Widths) {
        ++seed;
        ASSERT_NO_FATAL_FAILURE(ExpectAllLayouts(width, 2, static_cast<std::intptr_t>(seed % 3) + 1,
                                                 seed % 2 == 0 ? Content::Tame : Content::Wild, seed));
    }
}

TEST_P(NormalizedOfEachType, EqualTheModelAtRandom) {
    const char *const single = std::getenv("ORV_TEST_CASE");
    const std::uint64_t first = single != nullptr ? std::stoul(single) : 1;
    const std::uint64_t last = single != nullptr ? first : PixelSize(GetParam()) == 2 ? 250 : 4000;
    for (std::uint64_t number = first; number <= last; ++number) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        std::mt19937_64 random(number);
        const auto width = static_cast<std::intptr_t>(random() % 40 + 1);
        const auto content =
            RandomPlanes(width * 3, 1, GetParam(), number, number % 3 == 0 ? Content::Wild : Content::Tame);
        const auto image = PlainImage(width, 3, GetParam(), content);
        ASSERT_NO_FATAL_FAILURE(
            ExpectNormalized(image->Handle(), content, GetParam(), RandomTargets(random, GetParam())));
    }
}

TEST_P(NormalizedOfEachType, ReadNothingOutsideThePixels) {
    std::mt19937_64 random(GetParam());
    const std::size_t size = PixelSize(GetParam());
    for (const std::intptr_t width : {1, 5, 16, 33, 67, 130})
        for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const auto content = RandomPlanes(width * 3, 1, GetParam(), random(), Content::Tame);
            const FencedBlock block(content[0].size(), fence);
            std::copy(content[0].begin(), content[0].end(), block.Data());
            Handle image;
            const auto pitch = static_cast<std::intptr_t>(size);
            ASSERT_EQ(CreateImageFromPointer(block.Data(), content[0].size(), width, 3, 1, GetParam(), pitch,
                                             pitch * width, 0, nullptr, nullptr, nullptr, image.Out()),
                      0);
            for (const std::int32_t mode : {0, 1})
                ASSERT_NO_FATAL_FAILURE(ExpectNormalized(image.Get(), content, GetParam(), {mode, 20, 90}));
        }
}

class NormalizedOfSmallTypes : public NormalizedOfEachType {};

TEST_P(NormalizedOfSmallTypes, MapEachValueAsTold) {
    const std::size_t count = std::size_t{1} << 8 * PixelSize(GetParam());
    const auto width = static_cast<std::intptr_t>(count / 256);
    PlaneBytes all(count * PixelSize(GetParam()));
    for (std::size_t i = 0; i < count; ++i)
        std::memcpy(all.data() + i * PixelSize(GetParam()), &i, PixelSize(GetParam()));
    const auto image = PlainImage(width, 256, GetParam(), {all});
    std::mt19937_64 random(GetParam());
    for (int i = 0; i < (count == 256 ? 2000 : 40); ++i)
        ASSERT_NO_FATAL_FAILURE(
            ExpectNormalized(image->Handle(), {all}, GetParam(), RandomTargets(random, GetParam())));
}

TEST_P(NormalizedOfEachType, MapTurnedViewsInTheOrderOfTheirOwnPixels) {
    const auto content = RandomPlanes(41 * 29, 2, GetParam(), 5, Content::Wild);
    const auto image = PlainImage(41, 29, GetParam(), content);
    for (const std::uint32_t rotation : {1u, 2u, 3u}) {
        Handle view;
        ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), rotation, view.Out()));
        const std::vector<PlaneBytes> turned{PixelBytes(view.Get(), 0), PixelBytes(view.Get(), 1)};
        for (const std::int32_t mode : {0, 1})
            ASSERT_NO_FATAL_FAILURE(ExpectNormalized(view.Get(), turned, GetParam(), {mode, 11.5, 97.25}));
    }
}

INSTANTIATE_TEST_SUITE_P(TenPixelTypes, NormalizedOfEachType, testing::ValuesIn(PixelTypes), TypeName);
INSTANTIATE_TEST_SUITE_P(OneAndTwoBytes, NormalizedOfSmallTypes, testing::Values(0x108u, 0x8u, 0x110u, 0x10u),
                         TypeName);

/// Finds targets for which the told statistics and slightly different ones give different pixels, and expects the
/// told ones.
template <class T>
void ExpectToldSums(const std::vector<T> &values, std::intptr_t width, TDataType type, const Statistics &told,
                    const Statistics &other) {
    ASSERT_TRUE(told.First != other.First || told.Second != other.Second);
    std::vector<T> distinct(values);
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    Targets targets{0, 1000, 1000};
    const auto differs = [&](T value) {
        return Mapped(value, MapTo<T>(told, targets)) != Mapped(value, MapTo<T>(other, targets));
    };
    for (int step = 0; step < 4000000 && std::none_of(distinct.begin(), distinct.end(), differs); ++step)
        targets.Second += 0.37;
    ASSERT_TRUE(std::any_of(distinct.begin(), distinct.end(), differs)) << "no targets show the difference";
    const auto image = PlainImage(width, std::ssize(values) / width, type, {BytesOf(values)});
    Handle result;
    ASSERT_EQ(CreateNormalizedImage(image->Handle(), 0, targets.First, targets.Second, result.Out()), 1);
    const auto access = AccessOf(result.Get(), 0);
    const Map map = MapTo<T>(told, targets);
    for (std::size_t i = 0; i < values.size(); i += 7) {
        const auto x = static_cast<std::intptr_t>(i) % width, y = static_cast<std::intptr_t>(i) / width;
        T stored;
        std::memcpy(&stored, access.At(x, y), sizeof stored);
        ASSERT_EQ(stored, Mapped(values[i], map)) << "pixel " << i << " of value " << values[i];
    }
}

template <class T>
std::vector<T> LargeValues(std::size_t count) {
    std::vector<T> values(count);
    std::mt19937 random(3);
    for (auto &value : values)
        value = static_cast<T>(65535 - random() % 37);
    return values;
}

/// The squares as an exact whole number, rounded once.
template <class T>
Statistics FromExactSums(const std::vector<T> &values) {
    std::uint64_t sum = 0, squares = 0;
    for (const T value : values) {
        const auto wide = static_cast<std::uint64_t>(value);
        sum += wide;
        squares += wide * wide;
    }
    return FromSums(static_cast<double>(values.size()), static_cast<double>(sum), static_cast<double>(squares));
}

/// Pixels whose told sums, being rounded after each addition, give other statistics than exact ones.
template <class T, class Told>
std::vector<T> RoundedValues(Told told) {
    std::vector<T> values(std::size_t{2048} * 2100);
    std::mt19937 random(3);
    for (int attempt = 0; attempt < 20; ++attempt) {
        for (auto &value : values)
            value = static_cast<T>(65535 - random() % 300);
        if (told(values).Second != FromExactSums(values).Second)
            break;
    }
    return values;
}

TEST(NormalizedLargeImages, AddBinsInRisingOrderAlsoPast53Bits) {
    const auto values = RoundedValues<std::uint16_t>(DeviationOfBins<std::uint16_t>);
    ExpectToldSums(values, 2048, 0x10, DeviationOfBins(values), FromExactSums(values));
}

TEST(NormalizedLargeImages, AddSquaresOf32BitPixelsOneByOneAlsoPast53Bits) {
    const auto values = RoundedValues<std::int32_t>(DeviationOf<std::int32_t>);
    ExpectToldSums(values, 2048, 0x120, DeviationOf(values), FromExactSums(values));
}

} // namespace

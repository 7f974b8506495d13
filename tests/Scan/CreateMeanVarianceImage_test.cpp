// The mean and the deviation of a stack of planes: the formulas by their numbers, and the conversions to each type.
// What both reductions of stacks share stands in CreateMinMaxImage_test.cpp.
#include "Scan/StatisticsModel.h"

namespace {

using namespace TestSupport;

template <class T>
struct MeansAndDeviations {
    std::vector<T> Mean, Deviation;
};

/// Reduces planes of one line.
template <class T>
MeansAndDeviations<T> Reduce(TDataType type, const std::vector<std::vector<T>> &planes) {
    const auto image = Stack<T>(std::ssize(planes[0]), 1, type, planes);
    Handle mean, deviation;
    ClearReports();
    EXPECT_EQ(CreateMeanVarianceImage(image->Handle(), mean.Out(), deviation.Out()), 1);
    ExpectNoReport();
    EXPECT_EQ(image->Count(), 1);
    return {ValuesOf<T>(mean.Get()), ValuesOf<T>(deviation.Get())};
}

constexpr double Infinite = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr float LargestFloat = std::numeric_limits<float>::max();

TEST(CreateMeanVarianceImage, TruncatesTheMeanOfOneAndTwoToOne) {
    EXPECT_EQ(Reduce<std::uint8_t>(8, {{1}, {2}}).Mean[0], 1);
}

TEST(CreateMeanVarianceImage, TruncatesNegativeMeansTowardZero) {
    EXPECT_EQ(Reduce<std::int8_t>(0x108, {{-1, -3, 1}, {-2, -4, -2}}).Mean, (std::vector<std::int8_t>{-1, -3, 0}));
    EXPECT_EQ(Reduce<std::int16_t>(0x110, {{-1, -301}, {-2, -300}}).Mean, (std::vector<std::int16_t>{-1, -300}));
    EXPECT_EQ(Reduce<std::int32_t>(0x120, {{-1, -70001}, {-2, -70000}}).Mean,
              (std::vector<std::int32_t>{-1, -70000}));
    EXPECT_EQ(Reduce<std::int64_t>(0x140, {{-1, -70001}, {-2, -70000}}).Mean,
              (std::vector<std::int64_t>{-1, -70000}));
}

TEST(CreateMeanVarianceImage, GivesTheDeviationAndNotTheVariance) {
    EXPECT_EQ(Reduce<std::uint8_t>(8, {{10}, {30}}).Deviation[0], 10);
}

TEST(CreateMeanVarianceImage, DividesByThePlaneCountAndNotByOneLess) {
    // Squares 9 + 0 + 9 over 3 planes make 6, whose root 2.449 rounds to 2; over 2 planes it would be 3.
    EXPECT_EQ(Reduce<std::uint8_t>(8, {{1}, {4}, {7}}).Deviation[0], 2);
}

TEST(CreateMeanVarianceImage, RoundsTheDeviationsOfIntegersToNearest) {
    EXPECT_EQ(Reduce<std::uint8_t>(8, {{0, 0, 0, 0}, {1, 2, 3, 255}}).Deviation,
              (std::vector<std::uint8_t>{1, 1, 2, 128}));
    EXPECT_EQ(Reduce<std::int16_t>(0x110, {{-3, 0}, {0, 5}}).Deviation, (std::vector<std::int16_t>{2, 3}));
}

TEST(CreateMeanVarianceImage, UsesTheUnroundedMeanForTheDeviation) {
    // The mean of 100 and 101 is stored as 100, with which the difference would be 100.5 instead of 0.25.
    EXPECT_EQ(Reduce<double>(0x240, {{1.0}, {2.0}}).Deviation[0], 1.0);
    EXPECT_EQ(Reduce<std::uint8_t>(8, {{100, 1}, {101, 0}}).Deviation, (std::vector<std::uint8_t>{1, 1}));
}

TEST(CreateMeanVarianceImage, AddsTheHalfToDeviationsOfFloatTypesToo) {
    EXPECT_EQ(Reduce<float>(0x220, {{10.0f}, {30.0f}}).Deviation[0], 10.5f);
    EXPECT_EQ(Reduce<double>(0x240, {{-1.0}, {1.0}}).Deviation[0], 1.5);
}

TEST(CreateMeanVarianceImage, GivesFloatsOfEqualPlanesDeviationZero) {
    const std::vector<float> values{0.0f, 1.5f, -1024.0f, 3.0e10f};
    EXPECT_EQ(Reduce<float>(0x220, {values, values, values, values}).Deviation, (std::vector<float>(4, 0.0f)));
    EXPECT_EQ(Reduce<float>(0x220, {values, values, values, values}).Mean, values);
}

TEST(CreateMeanVarianceImage, OfOnePlaneGivesTheSourceAndDeviationZero) {
    const auto bytes = Reduce<std::uint8_t>(8, {{0, 1, 127, 255}});
    EXPECT_EQ(bytes.Mean, (std::vector<std::uint8_t>{0, 1, 127, 255}));
    EXPECT_EQ(bytes.Deviation, (std::vector<std::uint8_t>(4, 0)));
    const auto words = Reduce<std::int32_t>(0x120, {{-2147483647 - 1, -1, 2147483647}});
    EXPECT_EQ(words.Mean, (std::vector<std::int32_t>{-2147483647 - 1, -1, 2147483647}));
    EXPECT_EQ(words.Deviation, (std::vector<std::int32_t>(3, 0)));
    const auto unsignedWords = Reduce<std::uint32_t>(0x20, {{0, 0x80000000u, 0xFFFFFFFFu}});
    EXPECT_EQ(unsignedWords.Mean, (std::vector<std::uint32_t>{0, 0x80000000u, 0xFFFFFFFFu}));
    EXPECT_EQ(unsignedWords.Deviation, (std::vector<std::uint32_t>(3, 0)));
}

TEST(CreateMeanVarianceImage, OfOnePlaneGivesFloatsAndDoublesAsTheyAre) {
    const std::vector<double> values{0.1, -1e300, 3.0, std::numeric_limits<double>::denorm_min()};
    EXPECT_EQ(Reduce<double>(0x240, {values}).Mean, values);
    const std::vector<float> floats{0.1f, -LargestFloat, std::numeric_limits<float>::denorm_min()};
    EXPECT_EQ(Reduce<float>(0x220, {floats}).Mean, floats);
    EXPECT_EQ(Reduce<float>(0x220, {floats}).Deviation, (std::vector<float>(3, 0.0f)));
}

TEST(CreateMeanVarianceImage, ConvertsUnsigned32BitMeansThrough64Bits) {
    EXPECT_EQ(Reduce<std::uint32_t>(0x20, {{0xFFFFFFFFu}, {0xFFFFFFFDu}}).Mean[0], 0xFFFFFFFEu);
    EXPECT_EQ(Reduce<std::uint32_t>(0x20, {{0xFFFFFFFFu}, {0}}).Deviation[0], 0x80000000u);
}

TEST(CreateMeanVarianceImage, ConvertsUnsigned64BitMeansFromTwoToThe63On) {
    constexpr std::uint64_t top = std::uint64_t{1} << 63;
    EXPECT_EQ(Reduce<std::uint64_t>(0x40, {{top, top + 4096}, {top, top + 4096}}).Mean,
              (std::vector<std::uint64_t>{top, top + 4096}));
    EXPECT_EQ(Reduce<std::uint64_t>(0x40, {{top - 1024}}).Mean[0], top - 1024);
}

TEST(CreateMeanVarianceImage, GivesTheLowestSigned64BitIntegerForAMeanThatRoundsUpTo63Bits) {
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(Reduce<std::int64_t>(0x140, {{highest, -highest - 1}}).Mean,
              (std::vector<std::int64_t>{-highest - 1, -highest - 1}));
    EXPECT_EQ(Reduce<std::int64_t>(0x140, {{highest, 0}}).Deviation, (std::vector<std::int64_t>{0, 0}));
}

TEST(CreateMeanVarianceImage, ComputesInDoubleAlsoFor64BitIntegers) {
    constexpr std::int64_t odd = (std::int64_t{1} << 53) + 1; // becomes 2^53 as a double
    EXPECT_EQ(Reduce<std::int64_t>(0x140, {{odd}, {odd}}).Mean[0], odd - 1);
}

TEST(CreateMeanVarianceImage, ComputesInDoubleAlsoForFloats) {
    // In float the sum would overflow, and 1 would be lost beside 2^24.
    EXPECT_EQ(Reduce<float>(0x220, {{LargestFloat, 16777216.0f}, {LargestFloat, 1.0f}, {LargestFloat, 1.0f}}).Mean,
              (std::vector<float>{LargestFloat, static_cast<float>(16777218.0 / 3.0)}));
}

TEST(CreateMeanVarianceImage, GivesNoNumberAsMeanAndZeroAsDeviationWhereAPlaneHoldsNone) {
    const auto [mean, deviation] =
        Reduce<double>(0x240, {{NotANumber, 1.0, Infinite, Infinite}, {1.0, NotANumber, -Infinite, 1.0}});
    EXPECT_TRUE(std::isnan(mean[0]));
    EXPECT_TRUE(std::isnan(mean[1]));
    EXPECT_TRUE(std::isnan(mean[2]));
    EXPECT_EQ(mean[3], Infinite);
    EXPECT_EQ(deviation, (std::vector<double>{0.0, 0.0, 0.0, 0.0}));
    for (const double zero : deviation)
        EXPECT_FALSE(std::signbit(zero));
}

TEST(CreateMeanVarianceImage, GivesAnInfiniteDeviationWhereSquaresOverflow) {
    const auto [mean, deviation] = Reduce<double>(0x240, {{1e200}, {-1e200}});
    EXPECT_EQ(mean[0], 0.0);
    EXPECT_EQ(deviation[0], Infinite);
}

TEST(CreateMeanVarianceImage, GivesDeviationZeroWhereRoundingMakesTheDifferenceNegative) {
    // The difference of the two sums is not exact here; the formula decides, whatever its sign.
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        std::mt19937_64 random(seed);
        const auto value = static_cast<double>(random()) * 0x1p-60;
        for (std::size_t planes = 1; planes <= 7; ++planes) {
            const std::vector<double> equal(planes, value);
            const auto [mean, deviation] = MeanAndDeviation(equal);
            const auto result = Reduce<double>(0x240, std::vector<std::vector<double>>(planes, {value}));
            ASSERT_EQ(result.Mean[0], mean) << "seed " << seed << ", " << planes << " planes";
            ASSERT_EQ(result.Deviation[0], deviation) << "seed " << seed << ", " << planes << " planes";
        }
    }
}

TEST(CreateMeanVarianceImage, KeepsTheOrderOfThePlanesInItsSums) {
    // 2^53 + 1 + 1 is 2^53 from the left and 2^53 + 2 from the right.
    constexpr double big = 9007199254740992.0;
    EXPECT_EQ(Reduce<double>(0x240, {{big, 1.0}, {1.0, 1.0}, {1.0, big}}).Mean,
              (std::vector<double>{big / 3.0, (big + 2.0) / 3.0}));
}

/// Planes that show a few lines of memory in turn, with a table that they share.
template <class T>
std::unique_ptr<FakeImage> ManyPlanes(std::size_t count, std::size_t width, TDataType type,
                                      const std::vector<std::vector<T>> &lines) {
    auto image = std::make_unique<FakeImage>(static_cast<std::intptr_t>(width), 1, lines.size() * width * sizeof(T));
    const auto at = [&](std::size_t plane) {
        return image->Pixels.data() + plane % lines.size() * width * sizeof(T);
    };
    for (std::size_t line = 0; line < lines.size(); ++line)
        std::memcpy(at(line), lines[line].data(), width * sizeof(T));
    image->AddPlane(
        at(0), type, [](std::intptr_t i) { return i * static_cast<std::intptr_t>(sizeof(T)); },
        [](std::intptr_t) { return std::intptr_t{0}; });
    for (std::size_t plane = 1; plane < count; ++plane)
        image->AddPlaneWithTableOf(0, at(plane), type);
    return image;
}

/// So many planes that sums of their values and squares do not fit 32 bits.
constexpr std::size_t PlaneCounts[] = {100, 257, 258, 33'026, 66'053};

template <class T>
void ExpectManyPlanesLikeTheModel(TDataType type) {
    constexpr auto low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
    for (const std::size_t count : PlaneCounts) {
        SCOPED_TRACE(testing::Message() << count << " planes of type " << type);
        std::vector<std::vector<T>> lines(3, std::vector<T>(35, high));
        for (std::size_t i = 0; i < 35; ++i) {
            lines[0][i] = i % 5 == 1 ? low : high;
            lines[1][i] = i % 5 == 2 ? static_cast<T>(high - 1) : i % 5 == 3 ? low : high;
            lines[2][i] = i % 5 >= 3 ? low : high;
        }
        const auto image = ManyPlanes<T>(count, 35, type, lines);
        ASSERT_NO_FATAL_FAILURE(ExpectReductionLikeTheModel(image->Handle(), Means));
        ASSERT_NO_FATAL_FAILURE(ExpectReductionLikeTheModel(image->Handle(), Extremes));
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(StacksOfManyPlanes, OfBytesAreReducedLikeTheModel) {
    ExpectManyPlanesLikeTheModel<std::uint8_t>(8);
    ExpectManyPlanesLikeTheModel<std::int8_t>(0x108);
}

TEST(StacksOfManyPlanes, OfWordsAreReducedLikeTheModel) {
    ExpectManyPlanesLikeTheModel<std::uint16_t>(0x10);
    ExpectManyPlanesLikeTheModel<std::int16_t>(0x110);
}

TEST(StacksOfManyPlanes, OfWiderPixelsAreReducedLikeTheModel) {
    ExpectManyPlanesLikeTheModel<std::int32_t>(0x120);
    ExpectManyPlanesLikeTheModel<float>(0x220);
}

} // namespace

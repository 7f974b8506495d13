// Rows of positions sampled at once, at each instruction set level, against the plain step position by position.
#include "Transformations/RealSampling.h"

#include <cmath>
#include <gtest/gtest.h>

#include "Transformations/FencedImage.h"

namespace {

using namespace TestSupport;
using namespace Transformations;

double SpecialPosition(std::mt19937 &random, double limit) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double positions[] = {0.0,
                                -0.0,
                                -0.5,
                                -1.0,
                                std::nextafter(-1.0, 0.0),
                                std::nextafter(-1.0, -2.0),
                                limit - 1,
                                limit - 0.5,
                                std::nextafter(limit, 0.0),
                                limit,
                                limit - 2,
                                limit - 1.5,
                                limit - 3.5,
                                std::numeric_limits<double>::quiet_NaN(),
                                infinity,
                                -infinity,
                                1e300,
                                -1e300,
                                2147483647.5,
                                2147483648.0,
                                -2147483648.5,
                                4294967296.5,
                                std::numeric_limits<double>::denorm_min()};
    return positions[random() % std::size(positions)];
}

/// Groups of ordinary positions, of special ones, of both, and of neighbours that lie together beside an edge.
std::vector<double> RandomPositions(std::mt19937 &random, std::intptr_t count, double limit) {
    std::uniform_real_distribution<double> around(-2.0, limit + 1.5), within(0.0, std::max(limit - 4, 1.0)),
        close(-0.499, 0.499);
    const double edges[] = {-1.5, -0.5, 0.5, limit - 3.5, limit - 2.5, limit - 1.5, limit - 0.5, limit + 0.5};
    std::vector<double> positions;
    unsigned kind = 0;
    double edge = 0;
    for (std::intptr_t i = 0; i < count; ++i) {
        if (i % 16 == 0) {
            kind = random() % 8;
            edge = edges[random() % std::size(edges)];
        }
        if (kind == 0 || (kind == 1 && random() % 8 == 0))
            positions.push_back(SpecialPosition(random, limit));
        else if (kind < 3)
            positions.push_back(around(random));
        else if (kind < 5)
            positions.push_back(edge + close(random));
        else if (kind == 5)
            positions.push_back(std::floor(within(random)) + static_cast<double>(random() % 4) / 4);
        else
            positions.push_back(within(random));
    }
    return positions;
}

template <class T>
T Sentinel() {
    return static_cast<T>(93);
}

/// Samples by sample(target) into a longer array, and compares with plain(i).
template <class T, class Sample, class Plain>
void ExpectPlainPixels(std::intptr_t count, const Sample &sample, const Plain &plain, const std::string &about) {
    AtAllLevels([&](const char *level) {
        std::vector<T> target(static_cast<std::size_t>(count) + 16, Sentinel<T>());
        sample(target.data());
        for (std::intptr_t i = 0; i < count; ++i)
            ASSERT_TRUE(IsSame(target[static_cast<std::size_t>(i)], plain(i)))
                << about << ", " << level << ", position " << i << ": " << +target[static_cast<std::size_t>(i)]
                << " and not " << +plain(i);
        for (auto i = static_cast<std::size_t>(count); i < target.size(); ++i)
            ASSERT_TRUE(IsSame(target[i], Sentinel<T>())) << about << ", " << level << ", written behind the end";
    });
}

template <class T>
void ComparePositions(const CLinearInterpolator<T, double> &interpolator, std::mt19937 &random,
                      const std::string &about) {
    const RealSampling<T> sampling(interpolator);
    const auto count = static_cast<std::intptr_t>(random() % 90);
    const auto x = RandomPositions(random, count, static_cast<double>(interpolator.SourceWidth));
    const auto y = RandomPositions(random, count, static_cast<double>(interpolator.SourceHeight));
    const auto plain = [&](std::intptr_t i) {
        return interpolator.Sample(x[static_cast<std::size_t>(i)], y[static_cast<std::size_t>(i)]);
    };
    ExpectPlainPixels<T>(
        count, [&](T *target) { sampling.Sample(x.data(), y.data(), count, target); }, plain, about);
}

template <class T>
void CompareRow(const CLinearInterpolator<T, double> &interpolator, std::mt19937 &random, const std::string &about) {
    std::uniform_real_distribution<double> step(-1.2, 1.2), start(-3.0, 20.0);
    AffineRow row = {step(random), step(random), start(random), start(random)};
    if (random() % 2 == 0)
        row.OriginX = start(random), row.OriginY = start(random);
    if (random() % 8 == 0)
        row.StepY = 0.0;
    if (random() % 16 == 0)
        row.RowX = SpecialPosition(random, 20.0);
    const RealSampling<T> sampling(interpolator);
    const auto first = static_cast<std::intptr_t>(random() % 9), count = static_cast<std::intptr_t>(random() % 70);
    const auto plain = [&](std::intptr_t i) {
        const auto column = static_cast<double>(first + i);
        return interpolator.Sample(column * row.StepX + row.RowX + row.OriginX,
                                   column * row.StepY + row.RowY + row.OriginY);
    };
    ExpectPlainPixels<T>(
        count, [&](T *target) { sampling.Sample(row, first, count, target); }, plain, about);
}

template <class T>
void CompareForm(Form form, std::uint32_t seed) {
    constexpr std::pair<std::intptr_t, std::intptr_t> sizes[] = {{1, 1}, {1, 9}, {9, 1},   {2, 2},
                                                                 {3, 5}, {4, 3}, {37, 11}, {64, 16}};
    std::mt19937 random(seed);
    for (const auto &[width, height] : sizes)
        for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before})
            for (const bool overlay : {false, true}) {
                FencedImage<T> image(form, width, height, fence, overlay, seed);
                CLinearInterpolator<T, double> interpolator(image.Hold());
                interpolator.OutsideValue = AffineOutsideValue<T>();
                for (int number = 0; number < 20; ++number) {
                    const std::string about = std::to_string(width) + " x " + std::to_string(height) +
                                              (overlay ? " with overlay" : "") + ", case " + std::to_string(number);
                    ASSERT_NO_FATAL_FAILURE(ComparePositions(interpolator, random, about));
                    ASSERT_NO_FATAL_FAILURE(CompareRow(interpolator, random, about));
                }
            }
}

template <class T>
void CompareAllForms() {
    for (const Form form : AllForms) {
        SCOPED_TRACE("form " + std::to_string(static_cast<int>(form)));
        ASSERT_NO_FATAL_FAILURE(CompareForm<T>(form, 7 + static_cast<std::uint32_t>(form)));
    }
}

TEST(RealSampling, SignedBytesAreThoseOfThePlainStep) {
    CompareAllForms<char>();
}
TEST(RealSampling, UnsignedBytesAreThoseOfThePlainStep) {
    CompareAllForms<unsigned char>();
}
TEST(RealSampling, Signed16BitPixelsAreThoseOfThePlainStep) {
    CompareAllForms<short>();
}
TEST(RealSampling, Unsigned16BitPixelsAreThoseOfThePlainStep) {
    CompareAllForms<unsigned short>();
}
TEST(RealSampling, Signed32BitPixelsAreThoseOfThePlainStep) {
    CompareAllForms<int>();
}
TEST(RealSampling, Unsigned32BitPixelsAreThoseOfThePlainStep) {
    CompareAllForms<unsigned int>();
}
TEST(RealSampling, Signed64BitPixelsAreThoseOfThePlainStep) {
    CompareAllForms<long>();
}
TEST(RealSampling, Unsigned64BitPixelsAreThoseOfThePlainStep) {
    CompareAllForms<unsigned long>();
}
TEST(RealSampling, FloatsAreThoseOfThePlainStep) {
    CompareAllForms<float>();
}
TEST(RealSampling, DoublesAreThoseOfThePlainStep) {
    CompareAllForms<double>();
}

template <class T>
bool HasKernels(Form form, std::intptr_t width = 20, std::intptr_t height = 10, bool overlay = false) {
    FencedImage<T> image(form, width, height, FencedBlock::Fence::Behind, overlay, 1);
    const CLinearInterpolator<T, double> interpolator(image.Hold());
    return RealSampling<T>(interpolator).HasKernels();
}

TEST(RealSampling, DensePlanesOfAllTypesHaveKernels) {
    ForAllPixelTypes([]<class T>() {
        for (const Form form : {Form::Dense, Form::Padded, Form::Misaligned, Form::Mirrored, Form::BottomUp})
            EXPECT_TRUE(HasKernels<T>(form)) << static_cast<int>(form) << ", " << WordOf<T>();
    });
    EXPECT_TRUE(HasKernels<unsigned char>(Form::Interleaved));
    EXPECT_TRUE(HasKernels<unsigned char>(Form::Dense, 20, 10, true));
}

TEST(RealSampling, PlanesWithoutACommonStepHaveNone) {
    ForAllPixelTypes([]<class T>() {
        for (const Form form : {Form::Scattered, Form::OneRow})
            EXPECT_FALSE(HasKernels<T>(form)) << static_cast<int>(form) << ", " << WordOf<T>();
        EXPECT_FALSE(HasKernels<T>(Form::Dense, 1, 10));
        EXPECT_FALSE(HasKernels<T>(Form::Dense, 20, 1));
    });
}

TEST(RealSampling, OverlaysOf64BitIntegersHaveNone) {
    EXPECT_FALSE(HasKernels<long>(Form::Dense, 20, 10, true));
    EXPECT_FALSE(HasKernels<unsigned long>(Form::Dense, 20, 10, true));
}

TEST(RealSampling, AnInterpolatorWithoutAPlaneHasNone) {
    FakeImage image(20, 10);
    const CLinearInterpolator<float, double> interpolator(Interface::ImageHolder::Share(&image));
    EXPECT_FALSE(RealSampling<float>(interpolator).HasKernels());
}

} // namespace

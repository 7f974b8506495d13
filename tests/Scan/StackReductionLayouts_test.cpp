// Reductions of stacks against the naive model, bit for bit: ten pixel types, all layouts and their turned views, one
// to six planes, widths around the lengths of vectors. Set ORV_TEST_CASE to a number to run that random case alone.
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "Scan/StatisticsModel.h"

#include <cstdlib>

namespace {

using namespace TestSupport;

struct Extent {
    std::intptr_t Width, Height;
};
constexpr Extent Extents[] = {{1, 1}, {1, 37}, {37, 1}, {7, 5}, {257, 3}, {33, 17}};

constexpr std::intptr_t VectorWidths[] = {15,  16,  17,  18,  19,   20,   21,   22,   23,   24,  25,  26,
                                          27,  28,  29,  30,  31,   32,   33,   63,   64,   65,  127, 128,
                                          129, 255, 256, 257, 1023, 1024, 1025, 2047, 2048, 2049};

/// Values at which comparisons, conversions and sums go wrong first.
template <class T>
std::vector<T> ExtremeValues() {
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_floating_point_v<T>)
        return {T{0},
                -T{0},
                T{1},
                -T{1},
                Limits::quiet_NaN(),
                -Limits::quiet_NaN(),
                Limits::infinity(),
                -Limits::infinity(),
                Limits::max(),
                Limits::lowest(),
                Limits::min(),
                Limits::denorm_min(),
                -Limits::denorm_min(),
                T{1} + Limits::epsilon(),
                static_cast<T>(0.1),
                static_cast<T>(1e19)};
    else
        return {Limits::min(),
                static_cast<T>(Limits::min() + 1),
                Limits::max(),
                static_cast<T>(Limits::max() - 1),
                T{0},
                T{1},
                static_cast<T>(~T{0}),
                static_cast<T>(T{1} << (8 * sizeof(T) - 2)),
                static_cast<T>(Limits::max() / 2 + 1),
                static_cast<T>((std::uint64_t{1} << 53) + 1),
                static_cast<T>((std::uint64_t{1} << 63) + 1025),
                static_cast<T>((std::uint64_t{1} << 63) + 1024)};
}

/// Pixels of one of five kinds: any bytes, extreme values, extreme and tame values mixed, planes that differ by
/// little, and equal planes.
std::vector<PlaneBytes> DemandingContent(std::intptr_t width, std::intptr_t height, std::intptr_t planes,
                                         TDataType type, std::uint32_t seed) {
    if (seed % 5 == 0)
        return RandomContent(width, height, planes, type, seed);
    std::mt19937 random(seed);
    std::vector<PlaneBytes> content(static_cast<std::size_t>(planes));
    WithPixelType(type, [&]<class T>(T) {
        const std::vector<T> extremes = ExtremeValues<T>();
        for (std::intptr_t pixel = 0; pixel < width * height; ++pixel) {
            const T start = random() % 4 == 0 ? extremes[random() % extremes.size()] : static_cast<T>(random() % 100);
            for (auto &plane : content) {
                const std::uint32_t word = static_cast<std::uint32_t>(random());
                T value = start;
                if (seed % 5 == 1 || (seed % 5 == 2 && word % 8 == 0))
                    value = extremes[word / 8 % extremes.size()];
                else if (seed % 5 == 2)
                    value = static_cast<T>(word % 251);
                else if (seed % 5 == 3 && std::is_floating_point_v<T>)
                    value = static_cast<T>(start * static_cast<T>(1.0 + (word % 5) * 0.01));
                else if constexpr (std::is_integral_v<T>)
                    value =
                        static_cast<T>(static_cast<std::make_unsigned_t<T>>(start) + (seed % 5 == 3 ? word % 3 : 0));
                AppendPixel(plane, value);
            }
        }
    });
    return content;
}

void ExpectBothLikeTheModel(void *image) {
    ASSERT_NO_FATAL_FAILURE(ExpectReductionLikeTheModel(image, Extremes));
    ASSERT_NO_FATAL_FAILURE(ExpectReductionLikeTheModel(image, Means));
    ASSERT_EQ(RefCount(image), 1u);
}

class ReductionOfEachType : public testing::TestWithParam<TDataType> {};
INSTANTIATE_TEST_SUITE_P(TenPixelTypes, ReductionOfEachType, testing::ValuesIn(TenPixelTypes), NameOfType);

void ExpectAllLayoutsLikeTheModel(TDataType type, std::intptr_t planes) {
    std::uint32_t seed = type + static_cast<std::uint32_t>(planes);
    for (const auto &[width, height] : Extents)
        for (const std::uint32_t kind : {0u, 1u, 2u, 3u, 4u}) {
            ++seed;
            const auto content = DemandingContent(width, height, planes, type, seed * 5 + kind);
            for (const auto &image : LayoutsOf(content, width, height, type)) {
                SCOPED_TRACE(testing::Message() << image.Name << ", " << planes << " planes of " << width << " x "
                                                << height << ", seed " << seed * 5 + kind);
                const PixelMemory memory({image.Get()});
                const auto before = memory.Read();
                ASSERT_NO_FATAL_FAILURE(ExpectBothLikeTheModel(image.Get()));
                ASSERT_TRUE(memory.Read() == before) << "the source has changed";
            }
        }
}

TEST_P(ReductionOfEachType, EqualsTheModelInAllLayoutsOfOneAndTwoPlanes) {
    ExpectAllLayoutsLikeTheModel(GetParam(), 1);
    ExpectAllLayoutsLikeTheModel(GetParam(), 2);
}

TEST_P(ReductionOfEachType, EqualsTheModelInAllLayoutsOfThreeAndFourPlanes) {
    ExpectAllLayoutsLikeTheModel(GetParam(), 3);
    ExpectAllLayoutsLikeTheModel(GetParam(), 4);
}

TEST_P(ReductionOfEachType, EqualsTheModelInAllLayoutsOfFiveAndSixPlanes) {
    ExpectAllLayoutsLikeTheModel(GetParam(), 5);
    ExpectAllLayoutsLikeTheModel(GetParam(), 6);
}

TEST_P(ReductionOfEachType, EqualsTheModelAroundTheLengthsOfVectors) {
    std::uint32_t seed = GetParam();
    for (const std::intptr_t width : VectorWidths)
        for (const std::intptr_t height : {1, 2}) {
            const std::intptr_t planes = 1 + static_cast<std::intptr_t>(++seed % 6);
            const auto content = DemandingContent(width, height, planes, GetParam(), seed);
            for (const auto &rule : PitchRules(width, height, planes, GetParam())) {
                SCOPED_TRACE(testing::Message() << rule.Name << ", " << planes << " planes of " << width << " x "
                                                << height << ", seed " << seed);
                const NamedImage image = MakeExternal(rule, content, width, height, GetParam());
                ASSERT_NO_FATAL_FAILURE(ExpectBothLikeTheModel(image.Get()));
            }
        }
}

TEST_P(ReductionOfEachType, EqualsTheModelForEachPlaneCountUpToSixAtAFewWidths) {
    for (const std::intptr_t width : {16, 33, 65, 129, 257})
        for (std::intptr_t planes = 1; planes <= 6; ++planes)
            for (std::uint32_t seed = 0; seed < 5; ++seed) {
                SCOPED_TRACE(testing::Message() << planes << " planes of " << width << " x 3, seed " << seed);
                const auto content = DemandingContent(width, 3, planes, GetParam(), seed);
                const auto rules = PitchRules(width, 3, planes, GetParam());
                for (const std::size_t rule : {0u, 1u})
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectBothLikeTheModel(MakeExternal(rules[rule], content, width, 3, GetParam()).Get()));
            }
}

TEST_P(ReductionOfEachType, EqualsTheModelForAHundredPlanes) {
    for (std::uint32_t seed = 0; seed < 5; ++seed) {
        const auto content = DemandingContent(67, 3, 100, GetParam(), seed);
        for (const auto &rule : PitchRules(67, 3, 100, GetParam())) {
            SCOPED_TRACE(testing::Message() << rule.Name << ", seed " << seed);
            ASSERT_NO_FATAL_FAILURE(ExpectBothLikeTheModel(MakeExternal(rule, content, 67, 3, GetParam()).Get()));
        }
    }
}

TEST_P(ReductionOfEachType, EqualsTheModelForTurnedViewsOfTheLibrarysOwnLayouts) {
    std::mt19937 random(GetParam());
    for (const auto &[width, height] : Extents)
        for (const std::intptr_t planes : {1, 2, 3, 4}) {
            Handle image;
            ASSERT_TRUE(GetParam() == 8 ? CreateGenericImage(planes, width, height, planes % 2 == 0, image.Out())
                                        : CreateGenericImageDT(planes, width, height, GetParam(), image.Out()));
            for (std::intptr_t plane = 0; plane < planes; ++plane)
                for (std::intptr_t y = 0; y < height; ++y)
                    for (std::intptr_t x = 0; x < width; ++x)
                        for (std::size_t byte = 0; byte < PixelSize(GetParam()); ++byte)
                            AccessOf(image.Get(), plane).At(x, y)[byte] = static_cast<std::uint8_t>(random());
            SCOPED_TRACE(testing::Message() << planes << " planes of " << width << " x " << height);
            ASSERT_NO_FATAL_FAILURE(ExpectBothLikeTheModel(image.Get()));
            for (const std::uint32_t rotation : {1u, 2u, 3u}) {
                Handle view;
                ASSERT_TRUE(CreateRotatedImageMap(image.Get(), rotation, view.Out()));
                ASSERT_NO_FATAL_FAILURE(ExpectBothLikeTheModel(view.Get()));
            }
        }
}

TEST_P(ReductionOfEachType, ReadsNothingOutsideThePixels) {
    for (const auto &[width, height] : Extents)
        for (const std::intptr_t planes : {1, 2, 3, 5})
            for (const bool interleaved : {false, true})
                for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
                    const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
                    const std::intptr_t step = interleaved ? planes * size : size, row = width * step;
                    const auto bytes = static_cast<std::size_t>(width * height * planes * size);
                    const FencedBlock block(bytes, fence);
                    for (std::size_t byte = 0; byte < bytes; ++byte)
                        block.Data()[byte] = static_cast<std::uint8_t>(byte * 37 + byte / 256);
                    Handle image;
                    ASSERT_EQ(CreateImageFromPointer(block.Data(), bytes, width, height, planes, GetParam(), step,
                                                     row, interleaved ? size : row * height, nullptr, nullptr,
                                                     nullptr, image.Out()),
                              0);
                    ASSERT_NO_FATAL_FAILURE(ExpectBothLikeTheModel(image.Get()));
                }
}

/// Planes of one or of several types over one block, each with random axes of its own or those of the plane before.
class RandomStack {
public:
    explicit RandomStack(std::uint32_t number) : random(number) {
        const std::intptr_t width = Pick(1, 50), height = Pick(1, 12), planes = Pick(1, 7);
        const TDataType type = TenPixelTypes[Pick(0, 9)];
        const std::intptr_t columns = Pick(1, 60), rows = Pick(1, 12), row = columns * 8 + Pick(0, 3);
        const bool mixed = Pick(0, 2) == 0;
        image = std::make_unique<FakeImage>(width, height, static_cast<std::size_t>(rows * row));
        for (auto &byte : image->Pixels)
            byte = static_cast<std::uint8_t>(Pick(0, 3) == 0 ? Pick(0, 1) * 255 : Pick(0, 255));
        Offsets x = Axis(width, columns), y = Axis(height, rows);
        for (std::intptr_t plane = 0; plane < planes; ++plane) {
            if (Pick(0, 2) == 0)
                x = Axis(width, columns);
            if (Pick(0, 3) == 0)
                y = Axis(height, rows);
            TDataType own = type;
            while (mixed && plane > 0 && PixelSize(own = TenPixelTypes[Pick(0, 9)]) < PixelSize(type))
                continue;
            const auto step = static_cast<std::intptr_t>(PixelSize(own));
            image->AddPlane(
                image->Pixels.data(), own, [&](std::intptr_t i) { return x[static_cast<std::size_t>(i)] * step; },
                [&](std::intptr_t j) { return y[static_cast<std::size_t>(j)] * row; });
        }
    }
    void *Get() { return image->Handle(); }

private:
    std::mt19937 random;
    std::unique_ptr<FakeImage> image;

    std::intptr_t Pick(std::intptr_t low, std::intptr_t high) {
        return low + static_cast<std::intptr_t>(random() % static_cast<std::uint64_t>(high - low + 1));
    }
    Offsets Axis(std::intptr_t count, std::intptr_t available) {
        Offsets positions;
        const std::intptr_t kind = Pick(0, 4), start = Pick(0, available - 1);
        for (std::intptr_t i = 0; i < count; ++i) {
            const std::intptr_t options[] = {std::min(i, available - 1), available - 1 - i % available,
                                             (start + i) % available, i * available / count, Pick(0, available - 1)};
            positions.push_back(options[kind]);
        }
        return positions;
    }
};

TEST(StackReductionsAtRandom, EqualTheModel) {
    const char *const single = std::getenv("ORV_TEST_CASE");
    const std::uint32_t first = single != nullptr ? static_cast<std::uint32_t>(std::stoul(single)) : 1;
    const std::uint32_t last = single != nullptr ? first : 4000;
    for (std::uint32_t number = first; number <= last; ++number) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        RandomStack image(number);
        ASSERT_NO_FATAL_FAILURE(ExpectBothLikeTheModel(image.Get()));
    }
}

} // namespace

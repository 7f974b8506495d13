/* Linear combinations of planes against a plain model, bit for bit: ten pixel types, all layouts, coefficients of all
 * kinds, sums on rounding edges, and all triples of 8-bit colours. Set ORV_TEST_CASE to a number to run that random
 * case alone. */
#include "ColorTransforms.h"
#include "ImageCreation.h"
#include "Scan/MappingModel.h"

#include <array>
#include <cstdlib>

namespace {

using namespace MappingModel;

/// What the limits and the conversion make of a sum.
template <class T>
T Stored(double v, bool absolute) {
    const double lower = Range<T>::Lower, upper = Range<T>::Upper;
    if (!absolute)
        v = Limited(v, lower, upper);
    else if (v > upper)
        v = upper;
    else if (v < lower)
        v = lower + lower - v;
    return CutTo<T>(std::is_integral_v<T> ? v + 0.5 : v); // floats stay unaltered, -0.0 too
}

/// Row r of the matrix stands at r * (planes + 1), its offset last.
template <class T>
std::vector<T> Combined(const std::vector<std::vector<T>> &planes, const double *row, bool absolute) {
    std::vector<T> combined(planes[0].size());
    for (std::size_t pixel = 0; pixel < combined.size(); ++pixel) {
        double v = row[planes.size()];
        for (std::size_t plane = 0; plane < planes.size(); ++plane)
            v += static_cast<double>(planes[plane][pixel]) * row[plane];
        combined[pixel] = Stored<T>(v, absolute);
    }
    return combined;
}

struct Transform {
    std::vector<double> Matrix;
    std::intptr_t Targets;
    bool Absolute;
};
void PrintTo(const Transform &transform, std::ostream *out) {
    *out << transform.Targets << " target planes, absolute " << transform.Absolute << ", matrix" << std::hexfloat;
    for (std::size_t i = 0; i < std::min<std::size_t>(transform.Matrix.size(), 12); ++i)
        *out << ' ' << transform.Matrix[i];
}

/// Transforms an image whose planes show the given pixels, and compares every target plane with the model.
void ExpectCombined(void *image, const std::vector<PlaneBytes> &content, TDataType type, const Transform &transform) {
    Handle result;
    ASSERT_EQ(
        CreateColorTransform(image, transform.Targets, transform.Absolute, transform.Matrix.data(), result.Out()), 1);
    const ImageSize size = SizeOf(image);
    ASSERT_EQ(SizeOf(result.Get()), (ImageSize{transform.Targets, size.Width, size.Height}));
    ForPixelType(type, [&](auto zero) {
        std::vector<std::vector<decltype(zero)>> planes;
        for (const auto &plane : content)
            planes.push_back(ValuesOf<decltype(zero)>(plane));
        const auto rowLength = static_cast<std::intptr_t>(planes.size() + 1);
        for (std::intptr_t target = 0; target < transform.Targets; ++target) {
            const auto told = Combined(planes, transform.Matrix.data() + target * rowLength, transform.Absolute);
            ASSERT_NO_FATAL_FAILURE(ExpectPlane(result.Get(), target, type, BytesOf(told)))
                << testing::PrintToString(transform);
        }
    });
    ASSERT_EQ(RefCount(image), 1u);
}

/// Coefficients of one kind for a whole matrix: colour weights, eighths, whole numbers, thirds, small reals, or any
/// at all with the infinite and those that are no number among them.
double RandomCoefficient(std::mt19937_64 &random, std::uint64_t kind) {
    const auto small = static_cast<double>(static_cast<std::int64_t>(random() % 4001) - 2000);
    const double weights[] = {0.299,     0.587,     0.114, -0.168736, -0.331264, 0.5,
                              -0.418688, -0.081312, 1,     0,         1.402,     1.772};
    const double wild[] = {1e300, -1e300, 1e-300, std::numeric_limits<double>::infinity(),  1e17,
                           -1e17, 4e9,    -0.0,   std::numeric_limits<double>::quiet_NaN(), 5e-324};
    const double floatEdges[] = {1e37, -1e37, 3e38, -3e38, 1e39, -1e39, 1e-40, 0.5};
    switch (kind % 9) {
    case 8:
        return floatEdges[random() % 8];
    case 0:
        return weights[random() % 12];
    case 1:
        return small / 8;
    case 2:
        return std::floor(small / 500);
    case 3:
        return small / 3000;
    case 4:
        return random() % 4 == 0 ? wild[random() % 10] : small / 1000;
    case 5:
        return std::nextafter(small / 8, random() % 2 == 0 ? 1e9 : -1e9);
    case 6:
        return std::ldexp(small, static_cast<int>(random() % 60) - 30);
    default:
        return static_cast<double>(static_cast<std::int64_t>(random())) * 0x1p-63;
    }
}

Transform RandomTransform(std::mt19937_64 &random, std::intptr_t planes, TDataType type) {
    Transform transform{{}, static_cast<std::intptr_t>(random() % 4 + 1), random() % 2 == 0};
    const std::uint64_t kind = random();
    for (std::intptr_t target = 0; target < transform.Targets; ++target) {
        for (std::intptr_t plane = 0; plane < planes; ++plane)
            transform.Matrix.push_back(RandomCoefficient(random, kind));
        const double offsets[] = {0, 128, 0.5, RandomCoefficient(random, kind),
                                  std::ldexp(RandomCoefficient(random, kind), static_cast<int>(PixelSize(type)) * 8)};
        transform.Matrix.push_back(offsets[random() % 5]);
    }
    return transform;
}

class CombinedOfEachType : public testing::TestWithParam<TDataType> {
protected:
    void ExpectAllLayouts(std::intptr_t width, std::intptr_t height, std::intptr_t planes, Content kind,
                          std::uint64_t seed) {
        std::mt19937_64 random(seed);
        const auto content = RandomPlanes(width * height, planes, GetParam(), seed, kind);
        for (const auto &image : LayoutsOf(content, width, height, GetParam())) {
            SCOPED_TRACE(testing::Message()
                         << image.Name << ", " << planes << " planes of " << width << " x " << height);
            ASSERT_NO_FATAL_FAILURE(
                ExpectCombined(image.Get(), image.Content, GetParam(), RandomTransform(random, planes, GetParam())));
        }
    }
};

TEST_P(CombinedOfEachType, EqualTheModelForEveryLayout) {
    std::uint64_t seed = GetParam();
    for (const Content kind : {Content::Tame, Content::Wild})
        for (const auto &[width, height] : {std::pair{1, 1}, {1, 37}, {37, 1}, {7, 5}, {257, 3}, {33, 17}})
            for (std::intptr_t planes = 1; planes <= 6; ++planes)
                ASSERT_NO_FATAL_FAILURE(ExpectAllLayouts(width, height, planes, kind, ++seed));
}

TEST_P(CombinedOfEachType, EqualTheModelForEveryWidth) {
    std::uint64_t seed = 1000 + GetParam();
    for (const std::intptr_t width : Widths)
        for (const std::intptr_t planes : {std::intptr_t{3}, width % 6 + 1})
            ASSERT_NO_FATAL_FAILURE(ExpectAllLayouts(width, 2, planes, Content::Wild, ++seed));
}

/// Moves the offset of each row so that one pixel's sum comes to lie on a rounding edge or a step beside it.
void MoveToAnEdge(Transform &transform, const std::vector<std::vector<double>> &pixels, std::mt19937_64 &random) {
    const std::size_t planes = pixels.size(), pixel = random() % pixels[0].size();
    const std::int64_t range = random() % 2 == 0 ? 300 : 66000;
    for (std::size_t row = 0; row < static_cast<std::size_t>(transform.Targets); ++row) {
        double *const coefficients = transform.Matrix.data() + row * (planes + 1);
        double sum = 0;
        for (std::size_t plane = 0; plane < planes; ++plane)
            sum += pixels[plane][pixel] * coefficients[plane];
        const double edge = static_cast<double>(static_cast<std::int64_t>(random()) % range) + 0.5;
        double offset = edge - sum;
        for (std::uint64_t steps = random() % 4; steps > 0; --steps)
            offset = std::nextafter(offset, random() % 2 == 0 ? 1e300 : -1e300);
        coefficients[planes] = offset;
    }
}

TEST_P(CombinedOfEachType, EqualTheModelAtRandomOnRoundingEdges) {
    const char *const single = std::getenv("ORV_TEST_CASE");
    const std::uint64_t first = single != nullptr ? std::stoul(single) : 1;
    const std::uint64_t last = single != nullptr ? first : 6000;
    for (std::uint64_t number = first; number <= last; ++number) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        std::mt19937_64 random(number);
        const auto width = static_cast<std::intptr_t>(random() % 70 + 1);
        const auto planes = static_cast<std::intptr_t>(random() % 3 == 0 ? random() % 6 + 1 : 3);
        const auto content =
            RandomPlanes(width, planes, GetParam(), number, number % 2 == 0 ? Content::Wild : Content::Tame);
        Transform transform = RandomTransform(random, planes, GetParam());
        if (number % 4 != 0)
            ForPixelType(GetParam(), [&](auto zero) {
                std::vector<std::vector<double>> pixels;
                for (const auto &plane : content) {
                    const auto values = ValuesOf<decltype(zero)>(plane);
                    pixels.emplace_back(values.begin(), values.end());
                }
                MoveToAnEdge(transform, pixels, random);
            });
        const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
        const NamedImage image =
            number % 3 == 0
                ? MakeExternal({"planar", size, width * size, width * size}, content, width, 1, GetParam())
                : MakeExternal({"interleaved", planes * size, planes * width * size, size}, content, width, 1,
                               GetParam());
        ASSERT_NO_FATAL_FAILURE(ExpectCombined(image.Get(), content, GetParam(), transform));
    }
}

TEST_P(CombinedOfEachType, ReadNothingOutsideThePixels) {
    std::mt19937_64 random(GetParam());
    const auto size = static_cast<std::intptr_t>(PixelSize(GetParam()));
    for (const std::intptr_t width : {1, 5, 16, 33, 67, 130})
        for (std::intptr_t planes = 1; planes <= 4; ++planes)
            for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
                auto content = RandomPlanes(width * 2, planes, GetParam(), random(), Content::Tame);
                const auto bytes = static_cast<std::size_t>(width * 2 * planes * size);
                const FencedBlock block(bytes, fence);
                Handle image;
                ASSERT_EQ(CreateImageFromPointer(block.Data(), bytes, width, 2, planes, GetParam(), planes * size,
                                                 planes * width * size, size, nullptr, nullptr, nullptr, image.Out()),
                          0);
                for (std::intptr_t plane = 0; plane < planes; ++plane)
                    for (std::intptr_t pixel = 0; pixel < 2 * width; ++pixel)
                        std::copy_n(content[static_cast<std::size_t>(plane)].data() + pixel * size, size,
                                    block.Data() + (pixel * planes + plane) * size);
                ASSERT_NO_FATAL_FAILURE(
                    ExpectCombined(image.Get(), content, GetParam(), RandomTransform(random, planes, GetParam())));
            }
}

INSTANTIATE_TEST_SUITE_P(TenPixelTypes, CombinedOfEachType, testing::ValuesIn(PixelTypes), TypeName);

/// An image of all 2^24 triples, interleaved: plane 2 counts along the row, plane 1 and plane 0 with the rows.
class AllTriples {
public:
    AllTriples() : bytes(std::size_t{3} << 24) {
        for (std::size_t i = 0; i < bytes.size() / 3; ++i) {
            bytes[3 * i] = static_cast<std::uint8_t>(i >> 16);
            bytes[3 * i + 1] = static_cast<std::uint8_t>(i >> 8);
            bytes[3 * i + 2] = static_cast<std::uint8_t>(i);
        }
        EXPECT_EQ(CreateImageFromPointer(bytes.data(), bytes.size(), 4096, 4096, 3, 0x8, 3, 3 * 4096, 1, nullptr,
                                         nullptr, nullptr, image.Out()),
                  0);
    }
    void *Get() const { return image.Get(); }

private:
    std::vector<std::uint8_t> bytes;
    Handle image;
};

using ColourRow = std::array<double, 4>;

/// The 256 pixels of one value of planes 0 and 1: partial is what both and the offset come to.
void StoreBlues(double partial, const double *products, bool absolute, std::uint8_t *stored) {
    for (int blue = 0; blue < 256; ++blue) {
        double v = partial + products[blue];
        v = v > 255.0 ? 255.0 : v;
        v = v < 0.0 ? (absolute ? 0.0 + 0.0 - v : 0.0) : v;
        stored[blue] = static_cast<std::uint8_t>(static_cast<std::int32_t>(v + 0.5));
    }
}

void ExpectAllTriples(const std::vector<ColourRow> &matrix, bool absolute) {
    const AllTriples triples;
    Handle result;
    ASSERT_EQ(CreateColorTransform(triples.Get(), std::ssize(matrix), absolute, matrix[0].data(), result.Out()), 1);
    for (std::size_t target = 0; target < matrix.size(); ++target) {
        const auto &row = matrix[target];
        std::array<std::array<double, 256>, 3> products;
        for (std::size_t plane = 0; plane < 3; ++plane)
            for (std::size_t value = 0; value < 256; ++value)
                products[plane][value] = static_cast<double>(value) * row[plane];
        const auto access = AccessOf(result.Get(), static_cast<std::intptr_t>(target));
        ASSERT_EQ(access.Table[4095].XEntry - access.Table[0].XEntry, 4095) << "rows of a new plane are contiguous";
        for (std::size_t pair = 0; pair < 65536; ++pair) {
            std::array<std::uint8_t, 256> told;
            StoreBlues(row[3] + products[0][pair >> 8] + products[1][pair & 255], products[2].data(), absolute,
                       told.data());
            const auto *const stored =
                access.At(static_cast<std::intptr_t>(pair % 16 * 256), static_cast<std::intptr_t>(pair / 16));
            ASSERT_EQ(std::memcmp(stored, told.data(), 256), 0)
                << "target plane " << target << ", planes 0 and 1 are " << (pair >> 8) << " and " << (pair & 255);
        }
    }
}

TEST(CombinedColours, OfAllTriplesToGreyAndColourDifferencesEqualTheModel) {
    ExpectAllTriples({{0.299, 0.587, 0.114, 0}, {-0.168736, -0.331264, 0.5, 128}, {0.5, -0.418688, -0.081312, 128}},
                     false);
}

TEST(CombinedColours, OfAllTriplesByThirdsHalvesAndWholeSumsEqualTheModel) {
    constexpr double third = 1.0 / 3;
    ExpectAllTriples({{third, third, third, 0.5}, {0.5, 0.25, 0.125, 0}, {0.5, -0.5, 0.5, -0.25}}, false);
}

TEST(CombinedColours, OfAllTriplesASingleStepBesideTheEdgesEqualTheModel) {
    const double above = std::nextafter(0.5, 1), below = std::nextafter(0.5, 0);
    ExpectAllTriples({{above, 0.5, 0.5, 0}, {0.5, below, 0.5, 0}, {0.5, 0.5, -above, std::nextafter(128.0, 0)}},
                     false);
}

TEST(CombinedColours, OfAllTriplesWithMagnitudesEqualTheModel) {
    ExpectAllTriples({{1, -1, 0.1, 0}, {-0.5, -0.5, 0, 0}, {0.2126, 0.7152, -0.9278, 0}}, true);
}

TEST(CombinedColours, OfAllTriplesWithGreatTermsThatCancelEqualTheModel) {
    ExpectAllTriples(
        {{16777217, -16777216.5, 0.3, 0}, {1e6 + 0.1, -1e6, 0.25, 0.5}, {0.1, 0.2, 0.3, 1e12}, {1e37, -1e37, 0.5, 0}},
        false);
}

} // namespace

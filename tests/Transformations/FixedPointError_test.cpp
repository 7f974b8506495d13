/* How far weights of 4 bits and positions of 8 lead away from exact bilinear sampling: at most what their rounding
 * explains. Prints the largest difference. */
#include "Transformations/TransformChecks.h"

#include <iostream>

namespace {

using namespace TransformModel;

constexpr std::intptr_t Width = 160, Height = 120;

/// Waves of some pixels' length between two whole numbers.
template <class T>
std::unique_ptr<FakeImage> Waves(TDataType type, double smallest, double largest) {
    std::vector<T> pixels;
    for (std::intptr_t y = 0; y < Height; ++y)
        for (std::intptr_t x = 0; x < Width; ++x) {
            const double wave = std::sin(static_cast<double>(x) / 17.0) * std::cos(static_cast<double>(y) / 13.0);
            pixels.push_back(static_cast<T>(std::lround(smallest + (0.5 + 0.5 * wave) * (largest - smallest))));
        }
    return ImageOf(Width, Height, type, pixels);
}

/// The largest step from a pixel to its right and to its lower neighbour.
template <class T>
std::pair<double, double> Steepest(const std::vector<T> &pixels) {
    double right = 0.0, down = 0.0;
    const auto at = [&](std::intptr_t x, std::intptr_t y) {
        return static_cast<double>(pixels[static_cast<std::size_t>(y * Width + x)]);
    };
    for (std::intptr_t y = 0; y + 1 < Height; ++y)
        for (std::intptr_t x = 0; x + 1 < Width; ++x) {
            right = std::max(right, std::fabs(at(x + 1, y) - at(x, y)));
            down = std::max(down, std::fabs(at(x, y + 1) - at(x, y)));
        }
    return {right, down};
}

struct Difference {
    double Largest = 0.0, Sum = 0.0;
    std::intptr_t Count = 0;
    void Add(double difference) {
        Largest = std::max(Largest, std::fabs(difference));
        Sum += difference;
        ++Count;
    }
};

/// Compares the pixels whose position lies well inside with bilinear sampling in doubles, without any rounding.
template <class T>
Difference DifferenceFromExact(FakeImage &image, TDataType type, const TMatrix &matrix) {
    const ModelSource source(image.Handle());
    const auto pixels = ValuesOf<T>(source.Planes.front());
    const ModelPlane<double> exact{{pixels.begin(), pixels.end()}, Width, Height, false};
    TCoordinateMap map{0.0, 0.0, matrix}, back;
    std::int64_t width = 0, height = 0;
    EXPECT_TRUE(ModelResultSize(RectArea(0.0, 0.0, Width, Height), width, height, map));
    EXPECT_TRUE(InverseCoordinateMap(&back, map));
    Handle out;
    EXPECT_TRUE(CreateMatrixTransformedImage(image.Handle(), out.Out(), matrix));
    EXPECT_EQ(TypeOf(out.Get(), 0), type);
    const auto made = PixelsOf<T>(out);
    Difference difference;
    for (std::size_t i = 0; i < made.size(); ++i) {
        const auto row = SizeOf(out.Get()).Width;
        double x = 0.0, y = 0.0;
        CoordinateMapTransform(&x, &y, back, static_cast<double>(static_cast<std::intptr_t>(i) % row),
                               static_cast<double>(static_cast<std::intptr_t>(i) / row));
        if (x > 0.1 && y > 0.1 && x < Width - 1.1 && y < Height - 1.1)
            difference.Add(static_cast<double>(made[i]) - SampleReal(exact, x, y));
    }
    return difference;
}

/// What rounding explains: a position is off by 8 units of 1/256 pixel for its 4 bits and by less than 2 for two
/// table words cut toward zero; a value loses up to 247/256 by its cut.
template <class T>
void ExpectDifferencesThatRoundingExplains(TDataType type, double smallest, double largest) {
    const auto image = Waves<T>(type, smallest, largest);
    const auto [right, down] = Steepest(ValuesOf<T>(PixelBytes(image->Handle(), 0)));
    const double allowed = 10.0 / 256.0 * (right + down) + 247.0 / 256.0;
    for (const auto &[name, matrix] : std::initializer_list<NamedMatrix>{{"turned by 10 degrees", Turned(10.0)},
                                                                         {"turned by -73 degrees", Turned(-73.0)},
                                                                         {"0.7 times", {0.7, 0.0, 0.0, 0.7}},
                                                                         {"2.3 times", Turned(0.0, 2.3)},
                                                                         {"sheared", {1.1, 0.4, -0.2, 0.9}}}) {
        const Difference difference = DifferenceFromExact<T>(*image, type, matrix);
        ASSERT_GT(difference.Count, 1000);
        std::cout << PixelSize(type) * 8 << " bits, " << name << ": largest difference " << difference.Largest
                  << ", mean " << difference.Sum / static_cast<double>(difference.Count) << ", allowed " << allowed
                  << '\n';
        EXPECT_LE(difference.Largest, allowed) << name;
    }
}

TEST(FixedPointError, Of8BitsIsWhatTheWeightsOf4BitsExplain) {
    ExpectDifferencesThatRoundingExplains<std::uint8_t>(0x8, 0.0, 255.0);
}

TEST(FixedPointError, OfSigned8BitsIsWhatTheWeightsOf4BitsExplain) {
    ExpectDifferencesThatRoundingExplains<std::int8_t>(0x108, -128.0, 127.0);
}

TEST(FixedPointError, Of16BitsIsWhatTheWeightsOf4BitsExplain) {
    ExpectDifferencesThatRoundingExplains<std::uint16_t>(0x10, 0.0, 65535.0);
}

} // namespace

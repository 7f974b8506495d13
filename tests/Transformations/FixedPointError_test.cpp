/* How far weights of 4 bits and positions of 8 lead away from exact bilinear sampling: at most what their rounding
 * explains. Prints the largest difference. */
#include "Transformations/Waves.h"

#include <iostream>

namespace {

using namespace Waves;

/// Compares the pixels whose position lies well inside with bilinear sampling in doubles, without any rounding.
template <class T>
Difference DifferenceFromExact(FakeImage &image, TDataType type, const TMatrix &matrix) {
    const ModelSource source(image.Handle());
    const auto pixels = ValuesOf<T>(source.Planes.front());
    const ModelPlane<double> exact{{pixels.begin(), pixels.end()}, Width, Height, false};
    Handle out;
    EXPECT_TRUE(CreateMatrixTransformedImage(image.Handle(), out.Out(), matrix));
    EXPECT_EQ(TypeOf(out.Get(), 0), type);
    const auto made = PixelsOf<T>(out);
    Difference difference;
    ForEachInner(out.Get(), made.size(), MapBack(matrix), [&](std::size_t i, double x, double y) {
        difference.Add(static_cast<double>(made[i]) - SampleReal(exact, x, y));
    });
    return difference;
}

/// What rounding explains: a position is off by 8 units of 1/256 pixel for its 4 bits and by less than 2 for two
/// table words cut toward zero; a value loses up to 247/256 by its cut.
template <class T>
void ExpectDifferencesThatRoundingExplains(TDataType type, double smallest, double largest) {
    const auto image = WavesOf<T>(type, smallest, largest);
    const auto [right, down] = Steepest(ValuesOf<T>(PixelBytes(image->Handle(), 0)));
    const double allowed = 10.0 / 256.0 * (right + down) + 247.0 / 256.0;
    for (const auto &[name, matrix] : Maps) {
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

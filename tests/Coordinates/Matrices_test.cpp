// Matrices: every result bit for bit, also where another order of the same operations would differ in the last bit.
#include "Coordinates/ExactRecords.h"
#include "ErrorHandling.h"
#include "Matrices.h"

#include <cmath>

namespace {

using namespace TestSupport;

constexpr double Pi = 3.141592653589793;
constexpr double Epsilon = 1.1920928955078125e-7;
constexpr std::int64_t LowestInteger = std::numeric_limits<std::int64_t>::min();
constexpr int RandomCases = 2000;
/// 1 + d and 1 - d: the product is 1 - d d, which rounds to 1; a fused multiply-add would keep d d.
constexpr double Over = 1.0 + 0x1p-30;
constexpr double Under = 1.0 - 0x1p-30;

struct IntegerPoint {
    std::int64_t X;
    std::int64_t Y;
    bool operator==(const IntegerPoint &) const = default;
};

void PrintTo(const IntegerPoint &point, std::ostream *out) {
    *out << "(" << point.X << ", " << point.Y << ")";
}

IntegerPoint ITransform(const TMatrix &matrix, std::int64_t x, std::int64_t y) {
    IntegerPoint result{-77, -88};
    MatrixITransform(x, y, &result.X, &result.Y, matrix);
    return result;
}

/// One value sent through MatrixITransform as it is, as x and as y.
std::int64_t Rounded(double value) {
    const IntegerPoint result = ITransform({value, 0.0, value, 0.0}, 1, 0);
    EXPECT_EQ(result.X, result.Y);
    return result.X;
}

} // namespace

TEST(SetMatrix, StoresTheFourValuesRowByRow) {
    TMatrix matrix{};
    SetMatrix(&matrix, 1.5, -2.0, NaN, -0.0);
    EXPECT_TRUE(SameBits(matrix, TMatrix{1.5, -2.0, NaN, -0.0}));
}

TEST(RotationMatrix, TurnsTheXAxisTowardsTheYAxisForAPositiveAngle) {
    TMatrix matrix{};
    RotationMatrix(&matrix, 90.0);
    EXPECT_EQ(matrix.A12, -1.0);
    EXPECT_EQ(matrix.A21, 1.0);
    EXPECT_EQ(matrix.A22, matrix.A11);
    EXPECT_NE(matrix.A11, 0.0) << "the cosine of the rounded angle is not exactly 0";
    EXPECT_NEAR(matrix.A11, 0.0, 1e-15);
    double x = 0.0;
    double y = 0.0;
    MatrixRTransform(&x, &y, matrix, 1.0, 0.0);
    EXPECT_EQ(y, 1.0);
}

TEST(RotationMatrix, OfZeroIsTheIdentityWithANegativeZero) {
    TMatrix matrix{};
    RotationMatrix(&matrix, 0.0);
    EXPECT_TRUE(SameBits(matrix, TMatrix{1.0, -0.0, 0.0, 1.0}));
}

TEST(RotationMatrix, MultipliesByPiBeforeItDividesBy180) {
    RandomDoubles random(11);
    int otherOrderDiffers = 0;
    for (int number = 0; number < RandomCases; ++number) {
        const double degrees = random.Next();
        const double radians = degrees * Pi / 180.0;
        TMatrix matrix{};
        RotationMatrix(&matrix, degrees);
        ASSERT_TRUE(
            SameBits(matrix, TMatrix{std::cos(radians), -std::sin(radians), std::sin(radians), std::cos(radians)}))
            << "case " << number << ", " << degrees << " degrees";
        otherOrderDiffers += std::sin(radians) != std::sin(degrees * (Pi / 180.0)) ? 1 : 0;
    }
    EXPECT_GT(otherOrderDiffers, 0) << "the cases tell the two orders apart";
}

TEST(RotationMatrix, OfNoFiniteAngleIsNotANumber) {
    TMatrix matrix{};
    RotationMatrix(&matrix, Infinity);
    EXPECT_TRUE(SameBits(matrix, TMatrix{NaN, NaN, NaN, NaN}));
}

TEST(MultiplyMatrices, MultipliesRowsByColumns) {
    TMatrix product{};
    MultiplyMatrices(&product, {1.0, 2.0, 3.0, 4.0}, {5.0, 6.0, 7.0, 8.0});
    EXPECT_TRUE(SameBits(product, TMatrix{19.0, 22.0, 43.0, 50.0}));
}

TEST(MultiplyMatrices, IsExactForRandomMatrices) {
    RandomDoubles random(12);
    for (int number = 0; number < RandomCases; ++number) {
        const TMatrix a = random.Matrix();
        const TMatrix b = random.Matrix();
        TMatrix product{};
        MultiplyMatrices(&product, a, b);
        ASSERT_TRUE(SameBits(product, TMatrix{a.A11 * b.A11 + a.A12 * b.A21, a.A11 * b.A12 + a.A12 * b.A22,
                                              b.A11 * a.A21 + b.A21 * a.A22, b.A12 * a.A21 + b.A22 * a.A22}))
            << "case " << number;
    }
}

TEST(MultiplyMatrices, RoundsEveryProductByItself) {
    TMatrix product{};
    MultiplyMatrices(&product, {Over, -1.0, Over, -1.0}, {Under, Under, 1.0, 1.0});
    EXPECT_TRUE(SameBits(product, TMatrix{0.0, 0.0, 0.0, 0.0}));
}

TEST(MultiplyMatrices, TakesAnOperandAsItsOutput) {
    const TMatrix a{1.0, 2.0, 3.0, 4.0};
    const TMatrix b{5.0, 6.0, 7.0, 8.0};
    TMatrix left = a;
    MultiplyMatrices(&left, left, b);
    EXPECT_TRUE(SameBits(left, TMatrix{19.0, 22.0, 43.0, 50.0}));
    TMatrix right = b;
    MultiplyMatrices(&right, a, right);
    EXPECT_TRUE(SameBits(right, TMatrix{19.0, 22.0, 43.0, 50.0}));
    TMatrix both = a;
    MultiplyMatrices(&both, both, both);
    EXPECT_TRUE(SameBits(both, TMatrix{7.0, 10.0, 15.0, 22.0}));
}

TEST(MatrixDeterminant, SubtractsTheProductOfTheOtherDiagonal) {
    EXPECT_EQ(MatrixDeterminant({3.0, 5.0, 2.0, 7.0}), 11.0);
    EXPECT_EQ(MatrixDeterminant({Over, 1.0, 1.0, Under}), 0.0) << "each product is rounded by itself";
    EXPECT_TRUE(std::isnan(MatrixDeterminant({NaN, 0.0, 0.0, 1.0})));
}

TEST(InverseMatrix, DividesTheAdjointByTheDeterminant) {
    TMatrix inverse{};
    ASSERT_TRUE(InverseMatrix(&inverse, {4.0, 2.0, 6.0, 4.0}));
    EXPECT_TRUE(SameBits(inverse, TMatrix{1.0, -0.5, -1.5, 1.0}));
    ASSERT_TRUE(InverseMatrix(&inverse, IdentityMatrix));
    EXPECT_TRUE(SameBits(inverse, TMatrix{1.0, -0.0, -0.0, 1.0}));
}

TEST(InverseMatrix, IsExactForRandomMatrices) {
    RandomDoubles random(13);
    int inverted = 0;
    for (int number = 0; number < RandomCases; ++number) {
        const TMatrix m = random.Matrix();
        const double d = m.A11 * m.A22 - m.A12 * m.A21;
        TMatrix inverse{9.0, 9.0, 9.0, 9.0};
        const bool done = InverseMatrix(&inverse, m);
        ASSERT_EQ(done, std::fabs(d) > Epsilon) << "case " << number;
        const TMatrix expected =
            done ? TMatrix{m.A22 / d, -m.A12 / d, -m.A21 / d, m.A11 / d} : TMatrix{9.0, 9.0, 9.0, 9.0};
        ASSERT_TRUE(SameBits(inverse, expected)) << "case " << number;
        inverted += done ? 1 : 0;
    }
    EXPECT_GT(inverted, RandomCases / 2);
}

TEST(InverseMatrix, FailsForADeterminantOf1em7AndSucceedsFor2em7) {
    TMatrix inverse{9.0, 9.0, 9.0, 9.0};
    EXPECT_FALSE(InverseMatrix(&inverse, {1e-7, 0.0, 0.0, 1.0}));
    EXPECT_TRUE(SameBits(inverse, TMatrix{9.0, 9.0, 9.0, 9.0}));
    EXPECT_TRUE(InverseMatrix(&inverse, {2e-7, 0.0, 0.0, 1.0}));
    EXPECT_TRUE(SameBits(inverse, TMatrix{1.0 / 2e-7, -0.0 / 2e-7, -0.0, 1.0}));
}

TEST(InverseMatrix, NeedsAMagnitudeAboveTheEpsilonOfEitherSign) {
    TMatrix inverse{9.0, 9.0, 9.0, 9.0};
    const double above = std::nextafter(Epsilon, 1.0);
    EXPECT_FALSE(InverseMatrix(&inverse, {Epsilon, 0.0, 0.0, 1.0}));
    EXPECT_FALSE(InverseMatrix(&inverse, {-Epsilon, 0.0, 0.0, 1.0}));
    EXPECT_FALSE(InverseMatrix(&inverse, {0.0, 0.0, 0.0, 0.0}));
    EXPECT_TRUE(SameBits(inverse, TMatrix{9.0, 9.0, 9.0, 9.0}));
    EXPECT_TRUE(InverseMatrix(&inverse, {above, 0.0, 0.0, 1.0}));
    EXPECT_TRUE(InverseMatrix(&inverse, {-above, 0.0, 0.0, 1.0}));
}

TEST(InverseMatrix, FailsForADeterminantThatIsNotANumber) {
    TMatrix inverse{9.0, 9.0, 9.0, 9.0};
    EXPECT_FALSE(InverseMatrix(&inverse, {NaN, 0.0, 0.0, 1.0}));
    EXPECT_FALSE(InverseMatrix(&inverse, {Infinity, Infinity, Infinity, Infinity}));
    EXPECT_TRUE(SameBits(inverse, TMatrix{9.0, 9.0, 9.0, 9.0}));
    EXPECT_TRUE(InverseMatrix(&inverse, {Infinity, 0.0, 0.0, 1.0})) << "an infinite determinant is above the epsilon";
    EXPECT_TRUE(SameBits(inverse, TMatrix{0.0, -0.0, -0.0, NaN}));
}

TEST(InverseMatrix, TakesItsOperandAsOutputAndReportsNothing) {
    ResetORVErrorCount();
    TMatrix matrix{4.0, 2.0, 6.0, 4.0};
    EXPECT_TRUE(InverseMatrix(&matrix, matrix));
    EXPECT_TRUE(SameBits(matrix, TMatrix{1.0, -0.5, -1.5, 1.0}));
    EXPECT_FALSE(InverseMatrix(&matrix, {1.0, 1.0, 1.0, 1.0}));
    EXPECT_EQ(GetORVErrorCount(), 0);
}

TEST(MatrixITransform, RoundsHalvesTowardsPositiveInfinity) {
    EXPECT_EQ(Rounded(0.5), 1);
    EXPECT_EQ(Rounded(1.5), 2);
    EXPECT_EQ(Rounded(2.5), 3);
    EXPECT_EQ(Rounded(-0.5), 0);
    EXPECT_EQ(Rounded(-1.5), -1);
    EXPECT_EQ(Rounded(-2.5), -2);
    EXPECT_EQ(Rounded(-1.75), -2);
    EXPECT_EQ(Rounded(2.25), 2);
    EXPECT_EQ(Rounded(-0.0), 0);
}

TEST(MatrixITransform, AddsTheHalfInDoubleArithmetic) {
    EXPECT_EQ(Rounded(0.49999999999999994), 1) << "the sum with 0.5 rounds to 1";
    EXPECT_EQ(Rounded(4503599627370497.0), 4503599627370498) << "the sum with 0.5 is a tie and rounds to even";
}

TEST(MatrixITransform, AddsBothProductsBeforeTheHalf) {
    // (2^53 + (1 - 2^53)) + 0.5 is 1.5; with the half added to the second product first it would be 2.
    EXPECT_EQ(ITransform({0x1p53, 1.0 - 0x1p53, 0x1p53, 1.0 - 0x1p53}, 1, 1), (IntegerPoint{1, 1}));
}

TEST(MatrixITransform, TransformsXByTheFirstRowAndYByTheSecond) {
    EXPECT_EQ(ITransform({1.0, 10.0, 100.0, 1000.0}, 2, 3), (IntegerPoint{32, 3200}));
    EXPECT_EQ(ITransform({0.0, -1.0, 1.0, 0.0}, 7, -5), (IntegerPoint{5, 7}));
}

TEST(MatrixITransform, ConvertsItsArgumentsToDouble) {
    EXPECT_EQ(ITransform(IdentityMatrix, 9007199254740993, -9007199254740993),
              (IntegerPoint{9007199254740992, -9007199254740992}));
    EXPECT_EQ(ITransform(IdentityMatrix, std::numeric_limits<std::int64_t>::max(), LowestInteger),
              (IntegerPoint{LowestInteger, LowestInteger}))
        << "the highest integer becomes 2^63, which is out of range";
}

TEST(MatrixITransform, GivesTheLowestIntegerForWhatDoesNotFit) {
    for (const double value : {1e300, -1e300, 0x1p63, -0x1.0000000000001p63, Infinity, -Infinity, NaN})
        EXPECT_EQ(Rounded(value), LowestInteger) << value;
    EXPECT_EQ(Rounded(-0x1p63), LowestInteger);
    EXPECT_EQ(Rounded(0x1.fffffffffffffp62), 9223372036854774784);
    EXPECT_EQ(Rounded(-0x1.fffffffffffffp62), -9223372036854774784);
}

TEST(MatrixITransform, IsExactForRandomPoints) {
    RandomDoubles random(14);
    for (int number = 0; number < RandomCases; ++number) {
        const TMatrix m = random.Matrix();
        const auto x = static_cast<std::int64_t>(random.Next() * 1000.0);
        const auto y = static_cast<std::int64_t>(random.Next() * 1000.0);
        const auto dx = static_cast<double>(x);
        const auto dy = static_cast<double>(y);
        const IntegerPoint expected{static_cast<std::int64_t>(std::floor(m.A11 * dx + m.A12 * dy + 0.5)),
                                    static_cast<std::int64_t>(std::floor(m.A21 * dx + m.A22 * dy + 0.5))};
        ASSERT_EQ(ITransform(m, x, y), expected) << "case " << number;
    }
}

TEST(MatrixRTransform, DoesNotRound) {
    double x = 0.0;
    double y = 0.0;
    MatrixRTransform(&x, &y, {0.5, 0.25, -2.0, 4.0}, 3.0, 5.0);
    EXPECT_EQ(x, 2.75);
    EXPECT_EQ(y, 14.0);
    MatrixRTransform(&x, &y, {Over, -1.0, -1.0, Over}, Under, 1.0);
    EXPECT_EQ(x, 0.0) << "each product is rounded by itself";
}

TEST(MatrixRTransform, WritesOverItsOwnArguments) {
    double x = 3.0;
    double y = 5.0;
    MatrixRTransform(&x, &y, {0.0, -1.0, 1.0, 0.0}, x, y);
    EXPECT_EQ(x, -5.0);
    EXPECT_EQ(y, 3.0);
}

TEST(MatrixTransformArea, TransformsThePointsOneByOne) {
    RandomDoubles random(15);
    for (int number = 0; number < RandomCases; ++number) {
        const TMatrix m = random.Matrix();
        const TArea a = random.Area();
        TArea result = a;
        MatrixTransformArea(&result, result, m);
        ASSERT_TRUE(SameBits(result, TArea{m.A11 * a.X0 + m.A12 * a.Y0, m.A21 * a.X0 + m.A22 * a.Y0,
                                           m.A11 * a.X1 + m.A12 * a.Y1, m.A21 * a.X1 + m.A22 * a.Y1,
                                           m.A11 * a.X2 + m.A12 * a.Y2, m.A21 * a.X2 + m.A22 * a.Y2}))
            << "case " << number;
    }
}

TEST(Argument, GivesTheAngleOfAVectorInDegrees) {
    EXPECT_EQ(Argument(0.0, -1.0), -90.0);
    EXPECT_EQ(Argument(0.0, 1.0), 90.0);
    EXPECT_EQ(Argument(1.0, 0.0), 0.0);
    EXPECT_EQ(Argument(-1.0, 0.0), 180.0);
    EXPECT_EQ(Argument(0.0, 0.0), 0.0);
    EXPECT_EQ(Argument(1.0, 1.0), 45.0);
    EXPECT_EQ(Argument(-1.0, 1.0), 135.0);
}

TEST(Argument, UndoesARotation) {
    for (double degrees = -179.75; degrees <= 180.0; degrees += 0.25) {
        TMatrix matrix{};
        RotationMatrix(&matrix, degrees);
        EXPECT_NEAR(Argument(matrix.A11, matrix.A21), degrees, 1e-12);
    }
}

TEST(Argument, MultipliesBy180BeforeItDividesByPi) {
    RandomDoubles random(16);
    int otherOrderDiffers = 0;
    for (int number = 0; number < RandomCases; ++number) {
        const double x = random.Next();
        const double y = random.Next();
        ASSERT_EQ(Argument(x, y), std::atan2(y, x) * 180.0 / Pi) << "case " << number;
        otherOrderDiffers += Argument(x, y) != std::atan2(y, x) * (180.0 / Pi) ? 1 : 0;
    }
    EXPECT_GT(otherOrderDiffers, 0) << "the cases tell the two orders apart";
}

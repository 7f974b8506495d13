// The matrix library of the fits: each operation and each failure against values computed by hand.
#include "PixelList/Numerics.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace {

using namespace nrtl::numerics;

using Lines = std::vector<std::vector<double>>;

Matrix MatrixOf(const Lines &lines) {
    Matrix matrix(lines.size(), lines[0].size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        std::copy(lines[i].begin(), lines[i].end(), matrix[i].begin());
    return matrix;
}
Vector VectorOf(const std::vector<double> &elements) {
    Vector vector(elements.size());
    std::copy(elements.begin(), elements.end(), vector.begin());
    return vector;
}
Lines LinesOf(const Matrix &matrix) {
    Lines lines(matrix.rows());
    for (std::size_t i = 0; i < matrix.rows(); ++i)
        lines[i].assign(matrix[i].begin(), matrix[i].end());
    return lines;
}
template <class T>
std::vector<T> ElementsOf(const vector_t<T> &vector) {
    return {vector.begin(), vector.end()};
}

/// The text of the exception Error that is thrown, as itself or as a pointer that the catcher owns.
template <class Error, class Operation>
std::string ThrownValue(Operation &&operation) {
    try {
        operation();
    } catch (const Error &error) {
        return error.what();
    }
    return "nothing of that class is thrown";
}
template <class Error, class Operation>
std::string ThrownPointer(Operation &&operation) {
    try {
        operation();
    } catch (Error *error) {
        const std::unique_ptr<Error> owned(error);
        return owned->what();
    }
    return "no pointer to that class is thrown";
}

TEST(NumericsMatrix, OneElementOfZeroIsTheDefault) {
    EXPECT_EQ(LinesOf(Matrix()), (Lines{{0}}));
}

TEST(NumericsMatrix, ACountOfZeroActsAsOne) {
    EXPECT_EQ(LinesOf(Matrix(0, 0)), (Lines{{0}}));
    Matrix matrix = MatrixOf({{1, 2}, {3, 4}});
    matrix.resize(0, 2);
    EXPECT_EQ(LinesOf(matrix), (Lines{{1, 2}}));
    matrix = MatrixOf({{1, 2}, {3, 4}});
    matrix.resize(3, 0);
    EXPECT_EQ(LinesOf(matrix), (Lines{{1}, {3}, {0}}));
}

TEST(NumericsMatrix, ResizingKeepsWhatFitsAndAddsZeros) {
    Matrix matrix = MatrixOf({{1, 2, 3}, {4, 5, 6}});
    matrix.resize(3, 2);
    EXPECT_EQ(LinesOf(matrix), (Lines{{1, 2}, {4, 5}, {0, 0}}));
}

TEST(NumericsMatrix, RemovesARow) {
    Matrix matrix = MatrixOf({{1, 2}, {3, 4}, {5, 6}});
    matrix.RemoveRow(1);
    EXPECT_EQ(LinesOf(matrix), (Lines{{1, 2}, {5, 6}}));
    matrix.RemoveRow(1);
    EXPECT_EQ(LinesOf(matrix), (Lines{{1, 2}}));
    matrix.RemoveRow(0);
    EXPECT_EQ(LinesOf(matrix), (Lines{{0}}));
}

TEST(NumericsMatrix, RemovingARowThatIsNotThereThrowsAPointer) {
    Matrix matrix = MatrixOf({{1, 2}, {3, 4}});
    EXPECT_EQ(ThrownPointer<std::out_of_range>([&] { matrix.RemoveRow(2); }), "invalid row index");
    EXPECT_EQ(ThrownPointer<std::out_of_range>([&] { matrix.RemoveRow(std::size_t(0) - 1); }), "invalid row index");
    EXPECT_EQ(LinesOf(matrix), (Lines{{1, 2}, {3, 4}}));
}

TEST(NumericsMultiply, AMatrixWithAVector) {
    const Matrix matrix = MatrixOf({{1, 2, 3}, {4, 5, 6}});
    EXPECT_EQ(ElementsOf(Multiply(matrix, VectorOf({1, 10, 100}))), (std::vector<double>{321, 654}));
}

TEST(NumericsMultiply, AMatrixWithAMatrix) {
    const Matrix left = MatrixOf({{1, 2, 3}, {4, 5, 6}});
    const Matrix right = MatrixOf({{1, 0, -1, 2}, {10, 1, 0, 0}, {100, 0, 1, 1}});
    EXPECT_EQ(LinesOf(Multiply(left, right)), (Lines{{321, 2, 2, 5}, {654, 5, 2, 14}}));
}

TEST(NumericsMultiply, SumsRunFromTheFirstProductToTheLast) {
    // In any other order the small ones would not get lost, or not all of them.
    const std::vector<double> small = {1e16, 1, 1, 1, -1e16};
    const Matrix row = MatrixOf({small});
    EXPECT_EQ(Multiply(row, VectorOf({1, 1, 1, 1, 1}))[0], 0.0);
    EXPECT_EQ(Multiply(row, MatrixOf({{1}, {1}, {1}, {1}, {1}}))[0][0], 0.0);
    EXPECT_EQ(Multiply(row, VectorOf({0, 1, 1, 1, 1}))[0], -1e16 + 4); // 3 - 1e16 rounds to even
}

TEST(NumericsMultiply, OtherSizesAreRefused) {
    const Matrix matrix = MatrixOf({{1, 2, 3}, {4, 5, 6}});
    EXPECT_EQ(ThrownValue<dimension_mismatch>([&] {
                  Multiply(matrix, VectorOf({1, 2}));
              }),
              "number of vector components must match number of matrix columns");
    EXPECT_EQ(ThrownPointer<dimension_mismatch>([&] { Multiply(matrix, matrix); }),
              "height of right hand side matrix must be equal to width of left hand side matrix");
}

TEST(NumericsTranspose, WorksInPlaceWhateverTheForm) {
    Matrix wide = MatrixOf({{1, 2, 3}, {4, 5, 6}});
    Transpose(wide);
    EXPECT_EQ(LinesOf(wide), (Lines{{1, 4}, {2, 5}, {3, 6}}));
    Transpose(wide);
    EXPECT_EQ(LinesOf(wide), (Lines{{1, 2, 3}, {4, 5, 6}}));
    Matrix square = MatrixOf({{1, 2}, {3, 4}});
    Transpose(square);
    EXPECT_EQ(LinesOf(square), (Lines{{1, 3}, {2, 4}}));
}

TEST(NumericsDeterminant, ClosedFormsUpToThreeRows) {
    EXPECT_EQ(Determinant(MatrixOf({{-7}})), -7.0);
    EXPECT_EQ(Determinant(MatrixOf({{1, 2}, {3, 4}})), -2.0);
    EXPECT_EQ(Determinant(MatrixOf({{1, 2, 3}, {0, 1, 4}, {5, 6, 0}})), 1.0);
    EXPECT_EQ(Determinant(MatrixOf({{2, -1, 3}, {4, 5, -6}, {7, 8, 9}})), 255.0);
}

TEST(NumericsDeterminant, FourRowsAreExpandedAlongTheLastRow) {
    EXPECT_EQ(Determinant(MatrixOf({{1, 2, 3, 4}, {5, 6, 7, 9}, {2, 6, 4, 8}, {3, 1, 1, 2}})), 46.0);
}

TEST(NumericsDeterminant, MoreZerosInTheLastColumnAreAsGood) {
    const Lines lines = {{1, 2, 3, 0}, {5, 6, 7, 9}, {2, 6, 4, 0}, {3, 1, 1, 0}};
    // 9 at row 1, column 3, whose sign is that of an even sum of places; the minor is 1(6-4) - 2(2-12) + 3(2-18).
    EXPECT_EQ(Determinant(MatrixOf(lines)), 9.0 * -26.0);
    Matrix turned = MatrixOf(lines);
    Transpose(turned);
    EXPECT_EQ(Determinant(turned), 9.0 * -26.0);
}

TEST(NumericsDeterminant, ZerosAreSkippedWithTheirMinors) {
    // The minor that belongs to the zero is not finite.
    const double huge = 1e300;
    EXPECT_EQ(Determinant(MatrixOf({{1, huge, huge, 0}, {0, huge, huge, 0}, {0, huge, -huge, 0}, {0, 0, 0, 0}})),
              0.0);
}

TEST(NumericsDeterminant, FiveRows) {
    const Matrix matrix =
        MatrixOf({{2, 0, 0, 0, 1}, {0, 3, 0, 0, 0}, {0, 0, 4, 0, 0}, {0, 0, 0, 5, 0}, {1, 0, 0, 0, 6}});
    EXPECT_EQ(Determinant(matrix), 60.0 * 11.0);
}

TEST(NumericsDeterminant, OnlySquareMatricesHaveOne) {
    EXPECT_EQ(ThrownPointer<dimension_mismatch>([] { Determinant(Matrix(2, 3)); }),
              "matrix must be square in order to calculate a determinant value");
}

TEST(NumericsInvert, SizesOneToThree) {
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{4}}))), (Lines{{0.25}}));
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{2, 1}, {4, 4}}))), (Lines{{1, -0.25}, {-1, 0.5}}));
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{1, 2, 3}, {0, 1, 4}, {5, 6, 0}}))),
              (Lines{{-24, 18, 5}, {20, -15, -4}, {-5, 4, 1}}));
}

TEST(NumericsInvert, FourRowsByTheirFactors) {
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{2, 0, 0, 0}, {0, 4, 0, 0}, {0, 0, 8, 0}, {0, 0, 0, 16}}))),
              (Lines{{0.5, 0, 0, 0}, {0, 0.25, 0, 0}, {0, 0, 0.125, 0}, {0, 0, 0, 0.0625}}));
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}, {1, 0, 0, 0}}))),
              (Lines{{0, 0, 0, 1}, {1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}));
}

TEST(NumericsInvert, TheProductWithTheInverseIsOne) {
    std::mt19937 random(83);
    for (std::size_t side = 1; side <= 7; ++side) {
        Matrix matrix(side, side);
        for (std::size_t i = 0; i < side; ++i)
            for (std::size_t j = 0; j < side; ++j)
                matrix[i][j] = static_cast<double>(random() % 100) + (i == j ? 300 : 0);
        const Matrix product = Multiply(matrix, Invert(matrix));
        for (std::size_t i = 0; i < side; ++i)
            for (std::size_t j = 0; j < side; ++j)
                EXPECT_NEAR(product[i][j], i == j ? 1 : 0, 1e-13) << side << " rows, " << i << ", " << j;
    }
}

TEST(NumericsInvert, ADeterminantBelowOneCountsAsSingular) {
    const char *const text = "singular matrix encountered in matrix inversion";
    EXPECT_EQ(ThrownValue<singular_matrix>([] { Invert(MatrixOf({{0.99}})); }), text);
    EXPECT_EQ(ThrownValue<singular_matrix>([] { Invert(MatrixOf({{-0.99}})); }), text);
    EXPECT_EQ(ThrownValue<singular_matrix>([] { Invert(MatrixOf({{3, 1}, {2, 0.9}})); }), text);
    EXPECT_EQ(ThrownValue<division_by_zero>([] { Invert(MatrixOf({{1, 2}, {2, 4}})); }), text);
    EXPECT_EQ(ThrownValue<numeric_error>([] { Invert(Matrix(4, 4)); }), text);
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{1}}))), (Lines{{1}}));
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{-1}}))), (Lines{{-1}}));
}

TEST(NumericsInvert, ALargeDeterminantCountsAsLarge) {
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{4294967296.0}}))), (Lines{{1 / 4294967296.0}}));
    EXPECT_EQ(LinesOf(Invert(MatrixOf({{1e20, 0}, {0, 1}}))), (Lines{{1e-20, 0}, {0, 1}}));
}

TEST(NumericsInvert, OnlySquareMatricesHaveAnInverse) {
    EXPECT_EQ(ThrownValue<dimension_mismatch>([] { Invert(Matrix(3, 2)); }),
              "only square matrices may potentially be invertible");
}

/// What a matrix is decomposed into.
struct Factors {
    Lines Elements;
    std::vector<int> Rows;
    double Sign = 0;
};
Factors Decompose(const Lines &lines) {
    Matrix matrix = MatrixOf(lines);
    Permutation permutation;
    Factors factors;
    LRDecompose(matrix, permutation, factors.Sign);
    factors.Elements = LinesOf(matrix);
    factors.Rows = ElementsOf(permutation);
    return factors;
}

TEST(NumericsLRDecompose, TakesTheRowThatIsGreatestByItsOwnScale) {
    const Factors factors = Decompose({{1, 2}, {3, 4}}); // 1/2 against 3/4
    EXPECT_EQ(factors.Elements, (Lines{{3, 4}, {1.0 / 3, 2 - 1.0 / 3 * 4}}));
    EXPECT_EQ(factors.Rows, (std::vector<int>{1, 1}));
    EXPECT_EQ(factors.Sign, -1);
    const Factors scaled = Decompose({{2, 1}, {4, 16}}); // 2/2 against 4/16
    EXPECT_EQ(scaled.Elements, (Lines{{2, 1}, {2, 14}}));
    EXPECT_EQ(scaled.Rows, (std::vector<int>{0, 1}));
    EXPECT_EQ(scaled.Sign, 1);
}

TEST(NumericsLRDecompose, TheLastOfEqualRowsWins) {
    const Factors factors = Decompose({{2, 2}, {2, -2}});
    EXPECT_EQ(factors.Elements, (Lines{{2, -2}, {1, 4}}));
    EXPECT_EQ(factors.Rows, (std::vector<int>{1, 1}));
    EXPECT_EQ(factors.Sign, -1);
}

TEST(NumericsLRDecompose, TheScaleMovesWithItsRow) {
    // The first row is the worst for column 0 and goes to the end; its scale of 1/100 has to go with it.
    const Factors factors = Decompose({{1, 100, 0}, {1, 0, 2}, {4, 4, 0}});
    EXPECT_EQ(factors.Rows, (std::vector<int>{2, 2, 2}));
    EXPECT_EQ(factors.Sign, 1);
    EXPECT_EQ(factors.Elements, (Lines{{4, 4, 0}, {0.25, 99, 0}, {0.25, -1.0 / 99, 2}}));
}

TEST(NumericsLRDecompose, APivotOfZeroBecomesTiny) {
    const Factors factors = Decompose({{1, 1}, {1, 1}});
    EXPECT_EQ(factors.Elements, (Lines{{1, 1}, {1, 2.220446049250313e-16}}));
    EXPECT_EQ(Decompose({{0, 4, 4}, {0, 4, 4}, {0, 4, 8}}).Elements[0][0], 2.220446049250313e-16);
}

TEST(NumericsLRDecompose, MagnitudesAreCutToWholeNumbers) {
    // 1.9 and 1.1 count as 1: the last one wins.
    EXPECT_EQ(Decompose({{1.9, 4}, {1.1, 4}}).Rows, (std::vector<int>{1, 1}));
    EXPECT_EQ(Decompose({{2, 4}, {1.9, 4}}).Rows, (std::vector<int>{0, 1}));
}

TEST(NumericsLRDecompose, MagnitudesEndAt2147483647) {
    EXPECT_EQ(Decompose({{1e10, 1}, {5e9, 1}}).Rows, (std::vector<int>{1, 1}));
    EXPECT_EQ(Decompose({{2147483647.0, 1}, {2147483646.0, 2147483647.0}}).Rows, (std::vector<int>{0, 1}));
}

TEST(NumericsLRDecompose, ARowOfElementsBelowOneIsSingular) {
    const char *const text = "singular matrix encountered in LR decomposition";
    EXPECT_EQ(ThrownValue<singular_matrix>([] { Decompose({{0.9, -0.9}, {5, 6}}); }), text);
    EXPECT_EQ(ThrownValue<singular_matrix>([] { Decompose({{5, 6}, {0, 0}}); }), text);
}

TEST(NumericsTruncatedMagnitude, SaturatesAndTakesNoNumberAsLarge) {
    EXPECT_EQ(TruncatedMagnitude(0.99), 0);
    EXPECT_EQ(TruncatedMagnitude(-7.9), 7);
    EXPECT_EQ(TruncatedMagnitude(2147483646.5), 2147483646);
    EXPECT_EQ(TruncatedMagnitude(2147483648.0), 2147483647);
    EXPECT_EQ(TruncatedMagnitude(-2147483648.0), 2147483647);
    EXPECT_EQ(TruncatedMagnitude(std::numeric_limits<double>::infinity()), 2147483647);
    EXPECT_EQ(TruncatedMagnitude(std::numeric_limits<double>::quiet_NaN()), 2147483647);
}

} // namespace

// Determinants and inverses of square matrices.
#include "PixelList/Numerics.h"

namespace nrtl::numerics {
namespace {

bool IsSquare(const Matrix &matrix) {
    return matrix.rows() == matrix.columns();
}

double DeterminantOfThree(const Matrix &a) {
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) - a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
}

Matrix Minor(const Matrix &matrix, std::size_t row, std::size_t column) {
    const std::size_t side = matrix.rows() - 1;
    Matrix minor(side, side);
    for (std::size_t i = 0; i < side; ++i)
        for (std::size_t j = 0; j < side; ++j)
            minor[i][j] = matrix[i < row ? i : i + 1][j < column ? j : j + 1];
    return minor;
}

double ExpandedDeterminant(const Matrix &matrix) {
    const std::size_t last = matrix.rows() - 1;
    std::size_t rowZeros = 0, columnZeros = 0;
    for (std::size_t k = 0; k <= last; ++k) {
        rowZeros += matrix[last][k] == 0.0 ? 1 : 0;
        columnZeros += matrix[k][last] == 0.0 ? 1 : 0;
    }
    const bool alongColumn = columnZeros > rowZeros;
    double sum = 0;
    for (std::size_t k = 0; k <= last; ++k) {
        const double element = alongColumn ? matrix[k][last] : matrix[last][k];
        if (element == 0.0)
            continue;
        const double minor = Determinant(alongColumn ? Minor(matrix, k, last) : Minor(matrix, last, k));
        sum += ((last + k) % 2 == 0 ? element : -element) * minor;
    }
    return sum;
}

Matrix InverseOfTwo(const Matrix &a, double determinant) {
    Matrix inverse(2, 2);
    inverse[0][0] = a[1][1] / determinant;
    inverse[0][1] = -a[0][1] / determinant;
    inverse[1][0] = -a[1][0] / determinant;
    inverse[1][1] = a[0][0] / determinant;
    return inverse;
}

Matrix InverseOfThree(const Matrix &a, double determinant) {
    Matrix inverse(3, 3);
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            // Rows and columns in turn from the next one on: the sign of the cofactor comes out by itself.
            const std::size_t r = (j + 1) % 3, s = (j + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
            inverse[i][j] = (a[r][c] * a[s][d] - a[r][d] * a[s][c]) / determinant;
        }
    return inverse;
}

void SubstituteForward(const Matrix &factors, const Permutation &permutation, Vector &side) {
    const std::size_t rows = factors.rows();
    std::size_t first = rows; // the first element that is not zero
    for (std::size_t i = 0; i < rows; ++i) {
        const auto pivot = static_cast<std::size_t>(permutation[i]);
        double sum = side[pivot];
        side[pivot] = side[i];
        for (std::size_t k = first; k < i; ++k)
            sum -= factors[i][k] * side[k];
        if (first == rows && sum != 0.0)
            first = i;
        side[i] = sum;
    }
}

void SubstituteBack(const Matrix &factors, Vector &side) {
    for (std::size_t i = factors.rows(); i-- > 0;) {
        double sum = side[i];
        for (std::size_t k = i + 1; k < factors.rows(); ++k)
            sum -= factors[i][k] * side[k];
        side[i] = sum / factors[i][i];
    }
}

Matrix InverseByFactors(const Matrix &matrix) {
    Matrix factors = matrix;
    Permutation permutation;
    double sign = 0;
    LRDecompose(factors, permutation, sign);
    const std::size_t side = matrix.rows();
    Matrix inverse(side, side);
    for (std::size_t column = 0; column < side; ++column) {
        Vector solution(side);
        solution[column] = 1;
        SubstituteForward(factors, permutation, solution);
        SubstituteBack(factors, solution);
        for (std::size_t row = 0; row < side; ++row)
            inverse[row][column] = solution[row];
    }
    return inverse;
}

} // namespace

double Determinant(const Matrix &matrix) {
    if (!IsSquare(matrix))
        throw new dimension_mismatch("matrix must be square in order to calculate a determinant value");
    switch (matrix.rows()) {
    case 1:
        return matrix[0][0];
    case 2:
        return matrix[0][0] * matrix[1][1] - matrix[0][1] * matrix[1][0];
    case 3:
        return DeterminantOfThree(matrix);
    default:
        return ExpandedDeterminant(matrix);
    }
}

Matrix Invert(const Matrix &matrix) {
    if (!IsSquare(matrix))
        throw dimension_mismatch("only square matrices may potentially be invertible");
    const double determinant = Determinant(matrix);
    if (!(Tiny < TruncatedMagnitude(determinant)))
        throw singular_matrix("singular matrix encountered in matrix inversion");
    switch (matrix.rows()) {
    case 1: {
        Matrix inverse;
        inverse[0][0] = 1 / matrix[0][0];
        return inverse;
    }
    case 2:
        return InverseOfTwo(matrix, determinant);
    case 3:
        return InverseOfThree(matrix, determinant);
    default:
        return InverseByFactors(matrix);
    }
}

} // namespace nrtl::numerics

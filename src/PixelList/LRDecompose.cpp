// A square matrix as a product of a left and a right triangular one.
#include <algorithm>

#include "PixelList/Numerics.h"

namespace nrtl::numerics {
namespace {

Vector RowScales(const Matrix &matrix) {
    Vector scales(matrix.rows());
    for (std::size_t i = 0; i < matrix.rows(); ++i) {
        double largest = 0;
        for (const double element : matrix[i])
            largest = std::max(largest, TruncatedMagnitude(element));
        if (largest == 0.0)
            throw singular_matrix("singular matrix encountered in LR decomposition");
        scales[i] = 1 / largest;
    }
    return scales;
}

/// What is left of element (i, j) after the first count steps.
double Remainder(const Matrix &matrix, std::size_t i, std::size_t j, std::size_t count) {
    double sum = matrix[i][j];
    for (std::size_t k = 0; k < count; ++k)
        sum -= matrix[i][k] * matrix[k][j];
    return sum;
}

/// Completes column j. Result: the row to take its pivot from.
std::size_t CompleteColumn(Matrix &matrix, const Vector &scales, std::size_t j) {
    for (std::size_t i = 0; i < j; ++i)
        matrix[i][j] = Remainder(matrix, i, j, i);
    double best = 0;
    std::size_t pivot = j;
    for (std::size_t i = j; i < matrix.rows(); ++i) {
        matrix[i][j] = Remainder(matrix, i, j, j);
        const double merit = TruncatedMagnitude(matrix[i][j]) * scales[i];
        if (merit >= best) { // Required: the last one of rows that are equally good is taken.
            best = merit;
            pivot = i;
        }
    }
    return pivot;
}

} // namespace

void LRDecompose(Matrix &matrix, Permutation &permutation, double &sign) {
    const std::size_t rows = matrix.rows();
    Vector scales = RowScales(matrix);
    permutation.resize(rows);
    sign = 1;
    for (std::size_t j = 0; j < rows; ++j) {
        const std::size_t pivot = CompleteColumn(matrix, scales, j);
        if (pivot != j) {
            matrix.SwapRows(pivot, j);
            sign = -sign;
            scales[pivot] = scales[j];
        }
        permutation[j] = static_cast<int>(pivot);
        if (matrix[j][j] == 0.0)
            matrix[j][j] = Tiny;
        for (std::size_t i = j + 1; i < rows; ++i)
            matrix[i][j] /= matrix[j][j];
    }
}

} // namespace nrtl::numerics

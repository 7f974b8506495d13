#include "PixelList/Numerics.h"

#include <algorithm>
#include <cmath>

namespace nrtl::numerics {

template class vector_t<double>;
template class vector_t<int>;
template class matrix_line_t<double>;
template class matrix_t<double>;

double TruncatedMagnitude(double value) {
    constexpr double most = 2147483647.0;
    const double magnitude = std::fabs(value);
    return magnitude < most ? std::trunc(magnitude) : most;
}

Vector Multiply(const Matrix &matrix, const Vector &vector) {
    if (vector.size() != matrix.columns())
        throw dimension_mismatch("number of vector components must match number of matrix columns");
    Vector product(matrix.rows());
    for (std::size_t i = 0; i < matrix.rows(); ++i)
        for (std::size_t k = 0; k < vector.size(); ++k)
            product[i] += matrix[i][k] * vector[k];
    return product;
}

Matrix Multiply(const Matrix &left, const Matrix &right) {
    if (right.rows() != left.columns())
        throw new dimension_mismatch(
            "height of right hand side matrix must be equal to width of left hand side matrix");
    Matrix product(left.rows(), right.columns());
    for (std::size_t i = 0; i < left.rows(); ++i)
        for (std::size_t j = 0; j < right.columns(); ++j)
            for (std::size_t k = 0; k < right.rows(); ++k)
                product[i][j] += left[i][k] * right[k][j];
    return product;
}

void Transpose(Matrix &matrix) {
    const std::size_t rows = matrix.rows(), columns = matrix.columns(), side = std::max(rows, columns);
    matrix.resize(side, side);
    for (std::size_t i = 0; i < side; ++i)
        for (std::size_t j = 0; j < i; ++j)
            std::swap(matrix[i][j], matrix[j][i]);
    matrix.resize(columns, rows);
}

} // namespace nrtl::numerics

/* The least squares of a sub-pixel fit in their plainest form: small matrices of doubles, every sum in the order of
 * its indices. */
#ifndef ORV_TESTS_MATRIX_MODEL_H
#define ORV_TESTS_MATRIX_MODEL_H

#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace TestSupport {

using PlainVector = std::vector<double>;
using PlainMatrix = std::vector<PlainVector>;

inline constexpr double SmallestStep = 2.220446049250313e-16;

/// The magnitude of the integer part, at most 2147483647.
inline double WholeMagnitude(double value) {
    const double magnitude = std::trunc(std::fabs(value));
    return magnitude < 2147483647.0 ? magnitude : 2147483647.0;
}

inline PlainMatrix Transposed(const PlainMatrix &matrix) {
    PlainMatrix result(matrix[0].size(), PlainVector(matrix.size()));
    for (std::size_t row = 0; row < matrix.size(); ++row)
        for (std::size_t column = 0; column < matrix[0].size(); ++column)
            result[column][row] = matrix[row][column];
    return result;
}

inline PlainVector Product(const PlainMatrix &matrix, const PlainVector &vector) {
    PlainVector result;
    for (const PlainVector &row : matrix) {
        double sum = 0.0;
        for (std::size_t k = 0; k < vector.size(); ++k)
            sum += row[k] * vector[k];
        result.push_back(sum);
    }
    return result;
}

inline PlainMatrix Product(const PlainMatrix &left, const PlainMatrix &right) {
    PlainMatrix result(left.size(), PlainVector(right[0].size(), 0.0));
    for (std::size_t row = 0; row < left.size(); ++row)
        for (std::size_t column = 0; column < right[0].size(); ++column)
            for (std::size_t k = 0; k < right.size(); ++k)
                result[row][column] += left[row][k] * right[k][column];
    return result;
}

/// Along the last row or the last column, whichever has more zeros; the row when they have as many.
inline double PlainDeterminant(const PlainMatrix &m) {
    const std::size_t n = m.size(), last = n - 1;
    if (n == 3)
        return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    int zerosOfRow = 0, zerosOfColumn = 0;
    for (std::size_t k = 0; k < n; ++k) {
        zerosOfRow += m[last][k] == 0.0;
        zerosOfColumn += m[k][last] == 0.0;
    }
    const bool alongColumn = zerosOfColumn > zerosOfRow;
    double sum = 0.0;
    for (std::size_t k = 0; k < n; ++k) {
        const double element = alongColumn ? m[k][last] : m[last][k];
        if (element == 0.0)
            continue;
        PlainMatrix minor = m;
        minor.erase(minor.begin() + static_cast<std::ptrdiff_t>(alongColumn ? k : last));
        for (PlainVector &row : minor)
            row.erase(row.begin() + static_cast<std::ptrdiff_t>(alongColumn ? last : k));
        const double term = element * PlainDeterminant(minor);
        sum += (last + k) % 2 != 0 ? -term : term;
    }
    return sum;
}

/// Crout's factors in place of the matrix, with the rows in the order of the pivots. False for a singular one.
inline bool Decompose(PlainMatrix &a, std::vector<std::size_t> &permutation) {
    const std::size_t n = a.size();
    PlainVector scale;
    for (const PlainVector &row : a) {
        double largest = 0.0;
        for (const double element : row)
            largest = std::fmax(largest, WholeMagnitude(element));
        if (largest == 0.0)
            return false;
        scale.push_back(1.0 / largest);
    }
    permutation.assign(n, 0);
    for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t i = 0; i < j; ++i)
            for (std::size_t k = 0; k < i; ++k)
                a[i][j] -= a[i][k] * a[k][j];
        double best = 0.0;
        std::size_t pivot = j;
        for (std::size_t i = j; i < n; ++i) {
            for (std::size_t k = 0; k < j; ++k)
                a[i][j] -= a[i][k] * a[k][j];
            const double merit = WholeMagnitude(a[i][j]) * scale[i];
            if (merit >= best) {
                best = merit;
                pivot = i;
            }
        }
        if (pivot != j) {
            std::swap(a[pivot], a[j]);
            scale[pivot] = scale[j];
        }
        permutation[j] = pivot;
        if (a[j][j] == 0.0)
            a[j][j] = SmallestStep;
        for (std::size_t i = j + 1; i < n; ++i)
            a[i][j] /= a[j][j];
    }
    return true;
}

inline PlainVector Substituted(const PlainMatrix &a, const std::vector<std::size_t> &permutation, PlainVector b) {
    const std::size_t n = a.size();
    std::optional<std::size_t> first;
    for (std::size_t i = 0; i < n; ++i) {
        double sum = std::exchange(b[permutation[i]], b[i]);
        if (first)
            for (std::size_t k = *first; k < i; ++k)
                sum -= a[i][k] * b[k];
        else if (sum != 0.0)
            first = i;
        b[i] = sum;
    }
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t k = i + 1; k < n; ++k)
            b[i] -= a[i][k] * b[k];
        b[i] /= a[i][i];
    }
    return b;
}

/// The inverse of a matrix of four or more rows; none when its determinant is below 1 in magnitude.
inline std::optional<PlainMatrix> Inverted(PlainMatrix matrix) {
    std::vector<std::size_t> permutation;
    if (WholeMagnitude(PlainDeterminant(matrix)) <= SmallestStep || !Decompose(matrix, permutation))
        return std::nullopt;
    PlainMatrix columns;
    for (std::size_t column = 0; column < matrix.size(); ++column) {
        PlainVector unit(matrix.size(), 0.0);
        unit[column] = 1.0;
        columns.push_back(Substituted(matrix, permutation, unit));
    }
    return Transposed(columns);
}

} // namespace TestSupport

#endif

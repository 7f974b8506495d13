// Vectors and matrices of any size, and the operations that fits are made of. Made for exactness of order, not for
// speed: the order of every sum is fixed, since results are told bit for bit.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace nrtl::numerics {

class numeric_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
class dimension_mismatch : public numeric_error {
public:
    using numeric_error::numeric_error;
};
class division_by_zero : public numeric_error {
public:
    using numeric_error::numeric_error;
};
class singular_matrix : public division_by_zero {
public:
    using division_by_zero::division_by_zero;
};

/// As many elements as it is told; they begin as zero.
template <class T, class Allocator = std::allocator<T>>
class vector_t {
public:
    explicit vector_t(std::size_t count = 0) : elements_(count) {}
    vector_t(const vector_t &) = default;
    vector_t(vector_t &&) noexcept = default;
    vector_t &operator=(const vector_t &) = default;
    vector_t &operator=(vector_t &&) noexcept = default;
    virtual ~vector_t() = default;

    std::size_t size() const { return elements_.size(); }
    void resize(std::size_t count) { elements_.resize(count); }
    T &operator[](std::size_t i) { return elements_[i]; }
    const T &operator[](std::size_t i) const { return elements_[i]; }
    auto begin() { return elements_.begin(); }
    auto end() { return elements_.end(); }
    auto begin() const { return elements_.begin(); }
    auto end() const { return elements_.end(); }

protected:
    void erase(std::size_t i) { elements_.erase(elements_.begin() + static_cast<std::ptrdiff_t>(i)); }

private:
    std::vector<T, Allocator> elements_;
};

/// One row of a matrix.
template <class T, class Allocator = std::allocator<T>>
class matrix_line_t : protected vector_t<T, Allocator> {
    using Base = vector_t<T, Allocator>;

public:
    using Base::Base, Base::size, Base::resize, Base::operator[], Base::begin, Base::end;
};

template <class T, class Allocator>
using line_allocator = typename std::allocator_traits<Allocator>::template rebind_alloc<matrix_line_t<T, Allocator>>;

/// Rows of one length. There is at least one row and one column.
template <class T, class Allocator = std::allocator<T>>
class matrix_t : protected vector_t<matrix_line_t<T, Allocator>, line_allocator<T, Allocator>> {
    using Base = vector_t<matrix_line_t<T, Allocator>, line_allocator<T, Allocator>>;

public:
    explicit matrix_t(std::size_t rows = 1, std::size_t columns = 1) { resize(rows, columns); }
    using Base::operator[];

    std::size_t rows() const { return Base::size(); }
    std::size_t columns() const { return (*this)[0].size(); }
    /// Keeps the elements that fit; new ones are zero. Required: a count of 0 acts as 1.
    void resize(std::size_t rows, std::size_t columns) {
        Base::resize(rows == 0 ? 1 : rows);
        for (auto &line : *this)
            line.resize(columns == 0 ? 1 : columns);
    }
    /// Closes the gap. The only row becomes one row of one element, 0. Required: an index beyond the rows throws a
    /// pointer to a std::out_of_range on the heap, "invalid row index", which belongs to the catcher.
    void RemoveRow(std::size_t i) {
        if (i >= rows())
            throw new std::out_of_range("invalid row index");
        if (rows() == 1)
            *this = matrix_t();
        else
            Base::erase(i);
    }
    void SwapRows(std::size_t i, std::size_t j) { std::swap((*this)[i], (*this)[j]); }
};

using Vector = vector_t<double>;
using Matrix = matrix_t<double>;
using Permutation = vector_t<int>;

extern template class vector_t<double>;
extern template class vector_t<int>;
extern template class matrix_line_t<double>;
extern template class matrix_t<double>;

/// Throws dimension_mismatch "number of vector components must match number of matrix columns".
Vector Multiply(const Matrix &matrix, const Vector &vector);
/// Each element is a sum from the first product to the last. Required: sizes that do not match throw a pointer to a
/// dimension_mismatch on the heap, "height of right hand side matrix must be equal to width of left hand side
/// matrix", which belongs to the catcher.
Matrix Multiply(const Matrix &left, const Matrix &right);
/// In place, whatever the form.
void Transpose(Matrix &matrix);

/// Closed forms up to three rows; above, expansion along the last row, or along the last column if that has more
/// zeros. Required: a matrix that is not square throws a pointer to a dimension_mismatch on the heap, "matrix must be
/// square in order to calculate a determinant value", which belongs to the catcher.
double Determinant(const Matrix &matrix);

/// Throws dimension_mismatch "only square matrices may potentially be invertible", singular_matrix "singular matrix
/// encountered in matrix inversion". Required: a determinant between -1 and 1 counts as singular.
Matrix Invert(const Matrix &matrix);

/// Crout's method with implicit scaled pivoting, for square matrices. The matrix becomes both factors, the left one
/// without its diagonal of ones.
/// permutation  the row that was swapped with each one in turn.
/// sign         of the permutation, 1 or -1.
/// Throws singular_matrix "singular matrix encountered in LR decomposition". Required: a row of elements all between
/// -1 and 1 counts as singular.
void LRDecompose(Matrix &matrix, Permutation &permutation, double &sign);

/// The magnitude of a value cut to 32 bits. What does not fit, or is no number, counts as 2147483647.
double TruncatedMagnitude(double value);

/// Stands in for an element of 0 that a division needs, and below what a determinant counts as 0.
inline constexpr double Tiny = 2.220446049250313e-16;

} // namespace nrtl::numerics

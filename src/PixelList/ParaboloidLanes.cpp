#include "PixelList/ParaboloidLanes.h"

#include "Image/KernelLevel.h"

namespace PixelList {
namespace {

using Lanes = Image::Vector<double, FitLanes * sizeof(double)>;
using Mask = Image::Vector<std::int64_t, FitLanes * sizeof(std::int64_t)>; ///< all bits of a lane, or none
using Words = Image::Vector<std::int32_t, FitLanes * sizeof(std::int32_t)>;

constexpr int Unknowns = 4;

/// A matrix of 4 x 4 per lane.
struct Square {
    Lanes At[Unknowns][Unknowns];
};

ORV_INLINE void Load(Lanes &lanes, const double *from) {
    Image::LoadVector(lanes, reinterpret_cast<const char *>(from));
}

ORV_INLINE void Select(Lanes &target, const Mask &mask, const Lanes &chosen) {
    target = mask ? chosen : target;
}

ORV_INLINE void SwapWhere(const Mask &mask, Lanes &a, Lanes &b) {
    const Lanes kept = a;
    Select(a, mask, b);
    Select(b, mask, kept);
}

/// As numerics::TruncatedMagnitude.
ORV_INLINE void TruncateMagnitude(Lanes &value) {
    constexpr double most = 2147483647.0;
    const Lanes magnitude = value < 0.0 ? -value : value;
    const Lanes fitting = magnitude < most ? magnitude : Lanes{} + most;
    value = __builtin_convertvector(__builtin_convertvector(fitting, Words), Lanes);
}

/// One row of the equations: (x^2 + y^2, -x, -y, 1).
struct Row {
    Lanes At[Unknowns];
};

/// Calls visit(row, index of the pixel) for all rows, column by column of the window.
template <class Visit>
ORV_INLINE void ForEachRow(const Lanes &centreX, const Lanes &centreY, std::int32_t radius, const Visit &visit) {
    for (std::int32_t i = -radius; i <= radius; ++i)
        for (std::int32_t j = -radius; j <= radius; ++j) {
            const Lanes x = static_cast<double>(i) + centreX, y = static_cast<double>(j) + centreY;
            const Row row = {{x * x + y * y, -x, -y, Lanes{} + 1.0}};
            visit(row, (j + radius) * (2 * radius + 1) + i + radius);
        }
}

/// The product of the equations' rows with themselves.
ORV_INLINE void SumProducts(Square &normal, const Lanes &x, const Lanes &y, std::int32_t radius) {
    for (auto &line : normal.At)
        for (Lanes &sum : line)
            sum = Lanes{};
    ForEachRow(x, y, radius, [&normal](const Row &row, std::int32_t) ORV_INLINE_LAMBDA {
        for (int r = 0; r < Unknowns; ++r)
            for (int c = r; c < Unknowns; ++c)
                normal.At[r][c] += row.At[r] * row.At[c];
    });
    for (int r = 0; r < Unknowns; ++r)
        for (int c = 0; c < r; ++c)
            normal.At[r][c] = normal.At[c][r];
}

/// The determinant of the first three rows without column skipped.
ORV_INLINE void MinorOf(Lanes &determinant, const Square &matrix, int skipped) {
    const int p = skipped == 0 ? 1 : 0, q = skipped <= 1 ? 2 : 1, r = skipped <= 2 ? 3 : 2;
    const auto &a = matrix.At;
    determinant = a[0][p] * (a[1][q] * a[2][r] - a[1][r] * a[2][q]) -
                  a[0][q] * (a[1][p] * a[2][r] - a[1][r] * a[2][p]) +
                  a[0][r] * (a[1][p] * a[2][q] - a[1][q] * a[2][p]);
}

/// Expanded along the last row. Its zeros need no leaving out: all minors are finite.
ORV_INLINE void DeterminantOf(Lanes &sum, const Square &matrix) {
    sum = Lanes{};
    for (int k = 0; k < Unknowns; ++k) {
        Lanes minor;
        MinorOf(minor, matrix, k);
        const Lanes element = matrix.At[Unknowns - 1][k];
        sum += (k % 2 != 0 ? element : -element) * minor;
    }
}

ORV_INLINE void Reduce(Square &matrix, int i, int j, int count) {
    for (int k = 0; k < count; ++k)
        matrix.At[i][j] -= matrix.At[i][k] * matrix.At[k][j];
}

/// As numerics::LRDecompose. The rows of sides change places with those of the matrix.
ORV_INLINE void Decompose(Square &matrix, Square &sides) {
    Lanes scales[Unknowns];
    for (int i = 0; i < Unknowns; ++i) {
        Lanes largest = Lanes{};
        for (const Lanes &element : matrix.At[i]) {
            Lanes magnitude = element;
            TruncateMagnitude(magnitude);
            Select(largest, magnitude > largest, magnitude);
        }
        scales[i] = 1.0 / largest;
    }
    for (int j = 0; j < Unknowns; ++j) {
        for (int i = 0; i < j; ++i)
            Reduce(matrix, i, j, i);
        Lanes best = Lanes{};
        Mask pivot = Mask{} + j;
        for (int i = j; i < Unknowns; ++i) {
            Reduce(matrix, i, j, j);
            Lanes merit = matrix.At[i][j];
            TruncateMagnitude(merit);
            merit *= scales[i];
            const Mask better = merit >= best;
            Select(best, better, merit);
            pivot = better ? Mask{} + i : pivot;
        }
        for (int i = j + 1; i < Unknowns; ++i) {
            const Mask chosen = pivot == i;
            for (int k = 0; k < Unknowns; ++k) {
                SwapWhere(chosen, matrix.At[i][k], matrix.At[j][k]);
                SwapWhere(chosen, sides.At[i][k], sides.At[j][k]);
            }
            Select(scales[i], chosen, scales[j]);
        }
        Select(matrix.At[j][j], matrix.At[j][j] == 0.0, Lanes{} + nrtl::numerics::Tiny);
        for (int i = j + 1; i < Unknowns; ++i)
            matrix.At[i][j] /= matrix.At[j][j];
    }
}

/// Forward and back substitution for all columns of sides. The zeros that a column begins with change nothing: all
/// elements are finite.
ORV_INLINE void Substitute(const Square &factors, Square &sides) {
    for (int column = 0; column < Unknowns; ++column) {
        for (int i = 1; i < Unknowns; ++i)
            for (int k = 0; k < i; ++k)
                sides.At[i][column] -= factors.At[i][k] * sides.At[k][column];
        for (int i = Unknowns - 1; i >= 0; --i) {
            for (int k = i + 1; k < Unknowns; ++k)
                sides.At[i][column] -= factors.At[i][k] * sides.At[k][column];
            sides.At[i][column] /= factors.At[i][i];
        }
    }
}

/// The product of the inverse with the transposed rows, then with the values.
ORV_INLINE void Solve(Row &fit, const Square &inverse, const LaneWindows &windows, const Lanes &x, const Lanes &y,
                      std::int32_t radius) {
    for (Lanes &sum : fit.At)
        sum = Lanes{};
    ForEachRow(x, y, radius, [&](const Row &row, std::int32_t pixel) ORV_INLINE_LAMBDA {
        Lanes value;
        Load(value, windows.Values[pixel]);
        for (int r = 0; r < Unknowns; ++r) {
            Lanes weight = Lanes{};
            for (int k = 0; k < Unknowns; ++k)
                weight += inverse.At[r][k] * row.At[k];
            fit.At[r] += weight * value;
        }
    });
}

ORV_INLINE void FindFlatOnes(Mask &flat, const LaneWindows &windows, std::int32_t radius) {
    Lanes first;
    Load(first, windows.Values[0]);
    flat = first == first;
    for (std::int32_t i = 1; i < (2 * radius + 1) * (2 * radius + 1); ++i) {
        Lanes value;
        Load(value, windows.Values[i]);
        flat &= value == first;
    }
}

ORV_INLINE void StoreUnless(const Mask &failed, double *target, const Lanes &result) {
    Lanes kept;
    Load(kept, target);
    const Lanes stored = failed ? kept : result;
    Image::StoreVector(reinterpret_cast<char *>(target), stored);
}

ORV_INLINE void FitAllLanes(LaneWindows &windows, std::int32_t radius) {
    Lanes x, y;
    Load(x, windows.X);
    Load(y, windows.Y);
    Square normal;
    SumProducts(normal, x, y, radius);
    Lanes determinant;
    DeterminantOf(determinant, normal);
    TruncateMagnitude(determinant);
    Mask failed;
    FindFlatOnes(failed, windows, radius);
    failed |= determinant == 0.0;
    Square inverse;
    for (int r = 0; r < Unknowns; ++r)
        for (int c = 0; c < Unknowns; ++c)
            inverse.At[r][c] = Lanes{} + (r == c ? 1.0 : 0.0);
    Decompose(normal, inverse);
    Substitute(normal, inverse);
    Row fit;
    Solve(fit, inverse, windows, x, y, radius);
    const Lanes a = fit.At[0], topX = fit.At[1] / (2.0 * a), topY = fit.At[2] / (2.0 * a);
    StoreUnless(failed, windows.X, topX);
    StoreUnless(failed, windows.Y, topY);
    StoreUnless(failed, windows.Value, fit.At[3] - a * (topX * topX) - a * (topY * topY));
}

} // namespace

void FitParaboloids(LaneWindows &windows, std::int32_t radius) {
    LaneWindows *const used = &windows;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { FitAllLanes(*used, radius); });
}

} // namespace PixelList

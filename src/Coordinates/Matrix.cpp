// Two-by-two matrices and the points that they transform. The order of every floating point operation is part of
// the result: callers compare bit for bit. Coordinate maps stand in CoordinateMap.cpp.
#include "Matrices.h"

#include <cmath>

#include "Coordinates/Angle.h"
#include "TruncateTo.h"

namespace {

/// A determinant must exceed this for a matrix to count as invertible: the single precision epsilon.
constexpr double SmallestDeterminant = 1.1920928955078125e-7;

/// Halves go towards positive infinity, also below zero.
int64_t RoundHalfUp(double value) {
    return orvBase::TruncateTo<int64_t>(std::floor(value + 0.5));
}

} // namespace

void SetMatrix(TMatrix *out, double a11, double a12, double a21, double a22) {
    *out = TMatrix{a11, a12, a21, a22};
}

void RotationMatrix(TMatrix *out, double angleDegrees) {
    const double angleRadians = angleDegrees * Coordinates::Pi / Coordinates::HalfTurnDegrees;
    const double cosine = std::cos(angleRadians);
    const double sine = std::sin(angleRadians);
    SetMatrix(out, cosine, -sine, sine, cosine);
}

void MultiplyMatrices(TMatrix *out, TMatrix a, TMatrix b) {
    SetMatrix(out, a.A11 * b.A11 + a.A12 * b.A21, a.A11 * b.A12 + a.A12 * b.A22, b.A11 * a.A21 + b.A21 * a.A22,
              b.A12 * a.A21 + b.A22 * a.A22);
}

double MatrixDeterminant(TMatrix matrix) {
    return matrix.A11 * matrix.A22 - matrix.A12 * matrix.A21;
}

bool InverseMatrix(TMatrix *out, TMatrix matrix) {
    const double determinant = MatrixDeterminant(matrix);
    if (!(std::fabs(determinant) > SmallestDeterminant)) // so that a determinant that is not a number fails as well
        return false;
    SetMatrix(out, matrix.A22 / determinant, -matrix.A12 / determinant, -matrix.A21 / determinant,
              matrix.A11 / determinant);
    return true;
}

void MatrixITransform(int64_t x, int64_t y, int64_t *outX, int64_t *outY, TMatrix matrix) {
    double transformedX = 0.0;
    double transformedY = 0.0;
    MatrixRTransform(&transformedX, &transformedY, matrix, static_cast<double>(x), static_cast<double>(y));
    *outX = RoundHalfUp(transformedX);
    *outY = RoundHalfUp(transformedY);
}

void MatrixRTransform(double *outX, double *outY, TMatrix matrix, double x, double y) {
    *outX = matrix.A11 * x + matrix.A12 * y;
    *outY = matrix.A21 * x + matrix.A22 * y;
}

void MatrixTransformArea(TArea *out, TArea area, TMatrix matrix) {
    MatrixRTransform(&out->X0, &out->Y0, matrix, area.X0, area.Y0);
    MatrixRTransform(&out->X1, &out->Y1, matrix, area.X1, area.Y1);
    MatrixRTransform(&out->X2, &out->Y2, matrix, area.X2, area.Y2);
}

double Argument(double x, double y) {
    return std::atan2(y, x) * Coordinates::HalfTurnDegrees / Coordinates::Pi;
}

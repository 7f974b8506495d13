#include "CtkVector2D.h"

#include <cmath>

#include "CtkHRESULTException.h"

namespace {

constexpr char SourceFile[] = "CtkVector2D.cpp";

} // namespace

CtkVector2D &CtkVector2D::operator=(const CtkVector2D &other) noexcept {
    X = other.X;
    Y = other.Y;
    return *this;
}

std::uint32_t CtkVector2D::GetClassId() const {
    return WhileValid(ClassId);
}

CtkVector2D CtkVector2D::operator+(const CtkVector2D &other) const {
    return CtkVector2D(X + other.X, Y + other.Y);
}

CtkVector2D CtkVector2D::operator-(const CtkVector2D &other) const {
    return CtkVector2D(X - other.X, Y - other.Y);
}

CtkVector2D CtkVector2D::operator-() const {
    return CtkVector2D(-X, -Y);
}

CtkVector2D CtkVector2D::operator*(double factor) const {
    return CtkVector2D(X * factor, Y * factor);
}

double CtkVector2D::operator*(const CtkVector2D &other) const {
    return X * other.X + Y * other.Y;
}

CtkVector2D CtkVector2D::operator/(double divisor) const {
    if (divisor == 0.0)
        throw tkMath::CtkMathException(tkMath::CtkMathException::DivisionByZero, SourceFile, __LINE__);
    return CtkVector2D(X / divisor, Y / divisor);
}

CtkVector2D &CtkVector2D::operator+=(const CtkVector2D &other) {
    return *this = *this + other;
}

CtkVector2D &CtkVector2D::operator-=(const CtkVector2D &other) {
    return *this = *this - other;
}

CtkVector2D &CtkVector2D::operator*=(double factor) {
    return *this = *this * factor;
}

CtkVector2D &CtkVector2D::operator/=(double divisor) {
    return *this = *this / divisor;
}

bool CtkVector2D::operator==(const CtkVector2D &other) const {
    return X == other.X && Y == other.Y;
}

bool CtkVector2D::operator!=(const CtkVector2D &other) const {
    return !(*this == other);
}

double CtkVector2D::GetLength() const {
    return std::hypot(X, Y);
}

void CtkVector2D::Normalize() {
    const double length = GetLength();
    if (length == 0.0)
        throw tkMath::CtkMathException(tkMath::CtkMathException::ZeroLength, SourceFile, __LINE__);
    *this /= length;
}

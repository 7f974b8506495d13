// A vector in the plane.
#pragma once

#include "CtkObject.h"

class CtkVector2D : public CtkMathObject {
public:
    static constexpr unsigned ClassId = 13;

    explicit CtkVector2D(double x = 0.0, double y = 0.0) noexcept : X(x), Y(y) { AddClass(ClassId); }
    CtkVector2D(const CtkVector2D &other) noexcept : CtkMathObject(other), X(other.X), Y(other.Y) {
        AddClass(ClassId);
    }
    CtkVector2D &operator=(const CtkVector2D &other) noexcept;

    std::uint32_t GetClassId() const override;

    virtual CtkVector2D operator+(const CtkVector2D &other) const;
    virtual CtkVector2D operator-(const CtkVector2D &other) const;
    virtual CtkVector2D operator-() const;
    virtual CtkVector2D operator*(double factor) const;
    /// The scalar product.
    virtual double operator*(const CtkVector2D &other) const;
    /// Throws tkMath::CtkMathException with DivisionByZero for 0.0; so does the form below.
    virtual CtkVector2D operator/(double divisor) const;
    virtual CtkVector2D &operator+=(const CtkVector2D &other);
    virtual CtkVector2D &operator-=(const CtkVector2D &other);
    virtual CtkVector2D &operator*=(double factor);
    virtual CtkVector2D &operator/=(double divisor);
    virtual bool operator==(const CtkVector2D &other) const;
    virtual bool operator!=(const CtkVector2D &other) const;

    virtual double GetLength() const;
    /// Makes the length 1. A vector of length 0 throws tkMath::CtkMathException with ZeroLength and stays.
    virtual void Normalize();

    double X;
    double Y;
};

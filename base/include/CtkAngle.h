// An angle in radians that always lies above -pi and not above pi.
#pragma once

#include "CtkObject.h"

class CtkAngle : public CtkMathObject {
public:
    /// Angles that differ by less than this, also across the wrap from pi to -pi, are equal.
    static constexpr double Tolerance = 1e-11;
    /// The step of the tables that stands for none: sine, cosine and tangent are computed.
    static constexpr double NoTables = -1.0;

    /// Brought into the interval by whole turns. A value that is not finite stays as it is.
    explicit CtkAngle(double radians = 0.0);

    virtual CtkAngle operator+(const CtkAngle &other) const;
    virtual CtkAngle operator-(const CtkAngle &other) const;
    virtual CtkAngle operator-() const;
    virtual CtkAngle operator*(double factor) const;
    /// Throws tkMath::CtkMathException with DivisionByZero for 0.0; so does the form below.
    virtual CtkAngle operator/(double divisor) const;
    virtual CtkAngle &operator+=(const CtkAngle &other);
    virtual CtkAngle &operator-=(const CtkAngle &other);
    virtual CtkAngle &operator*=(double factor);
    virtual CtkAngle &operator/=(double divisor);
    virtual bool operator==(const CtkAngle &other) const;
    virtual bool operator!=(const CtkAngle &other) const;

    double GetRadians() const noexcept { return radians_; }

    /// Has sin, cos and tan read tables with a place every step radians from -pi on, for all angles of the process; a
    /// step that is not a finite number above 0 goes back to computing. To be set once, before other threads work
    /// with angles.
    static void SetTableStep(double step);
    static double GetTableStep() noexcept;

private:
    double radians_;
};

double sin(const CtkAngle &angle);
double cos(const CtkAngle &angle);
double tan(const CtkAngle &angle);
double sinh(const CtkAngle &angle);
double cosh(const CtkAngle &angle);
double tanh(const CtkAngle &angle);

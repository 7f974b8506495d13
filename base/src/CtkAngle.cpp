#include "CtkAngle.h"

#include <cmath>
#include <new>
#include <numbers>
#include <utility>
#include <vector>

#include "CtkHRESULTException.h"
#include "TruncateTo.h"

namespace {

constexpr char SourceFile[] = "CtkAngle.cpp";
constexpr double Pi = std::numbers::pi;
constexpr double Turn = 2.0 * Pi;
/// Above this the turns are taken off in one division: one by one they would take long, or never end.
constexpr double ManyTurns = 1e6;

double IntoInterval(double radians) {
    if (!std::isfinite(radians))
        return radians;
    if (std::fabs(radians) > ManyTurns)
        radians = std::remainder(radians, Turn);
    while (radians > Pi)
        radians -= Turn;
    while (radians <= -Pi)
        radians += Turn;
    return radians;
}

struct FunctionTables {
    double Step = CtkAngle::NoTables;
    std::vector<double> Sine;
    std::vector<double> Cosine;
    std::vector<double> Tangent;
};

FunctionTables &Tables() {
    static FunctionTables tables;
    return tables;
}

FunctionTables TablesOfStep(double step) {
    constexpr double mostPlaces = 1e8;
    if (!(Turn / step < mostPlaces))
        throw std::bad_alloc();
    FunctionTables tables;
    for (std::int32_t i = 0; i < Turn / step; ++i) {
        const double radians = -Pi + i * step;
        tables.Sine.push_back(std::sin(radians));
        tables.Cosine.push_back(std::cos(radians));
        tables.Tangent.push_back(std::tan(radians));
    }
    tables.Step = step;
    return tables;
}

/// The place nearest to pi may lie behind the last one: the direction there is that of the first.
double FromTable(const std::vector<double> &table, double radians, double step) {
    const auto index = orvBase::TruncateTo<std::int32_t>((radians + Pi) / step + 0.5);
    const bool inside = index >= 0 && static_cast<std::size_t>(index) < table.size();
    return table[inside ? static_cast<std::size_t>(index) : 0];
}

using Function = double (*)(double);

double Evaluate(const CtkAngle &angle, const std::vector<double> &table, Function function) {
    const double step = Tables().Step;
    const bool fromTable = step > 0.0 && std::isfinite(angle.GetRadians());
    return fromTable ? FromTable(table, angle.GetRadians(), step) : function(angle.GetRadians());
}

} // namespace

CtkAngle::CtkAngle(double radians) : radians_(IntoInterval(radians)) {}

CtkAngle CtkAngle::operator+(const CtkAngle &other) const {
    return CtkAngle(radians_ + other.radians_);
}

CtkAngle CtkAngle::operator-(const CtkAngle &other) const {
    return CtkAngle(radians_ - other.radians_);
}

CtkAngle CtkAngle::operator-() const {
    return CtkAngle(-radians_);
}

CtkAngle CtkAngle::operator*(double factor) const {
    return CtkAngle(radians_ * factor);
}

CtkAngle CtkAngle::operator/(double divisor) const {
    if (divisor == 0.0)
        throw tkMath::CtkMathException(tkMath::CtkMathException::DivisionByZero, SourceFile, __LINE__);
    return CtkAngle(radians_ / divisor);
}

CtkAngle &CtkAngle::operator+=(const CtkAngle &other) {
    return *this = *this + other;
}

CtkAngle &CtkAngle::operator-=(const CtkAngle &other) {
    return *this = *this - other;
}

CtkAngle &CtkAngle::operator*=(double factor) {
    return *this = *this * factor;
}

CtkAngle &CtkAngle::operator/=(double divisor) {
    return *this = *this / divisor;
}

bool CtkAngle::operator==(const CtkAngle &other) const {
    const double difference = std::fabs(radians_ - other.radians_);
    return difference < Tolerance || std::fabs(difference - Turn) < Tolerance;
}

bool CtkAngle::operator!=(const CtkAngle &other) const {
    return !(*this == other);
}

void CtkAngle::SetTableStep(double step) {
    Tables() = step > 0.0 && std::isfinite(step) ? TablesOfStep(step) : FunctionTables();
}

double CtkAngle::GetTableStep() noexcept {
    return Tables().Step;
}

double sin(const CtkAngle &angle) {
    return Evaluate(angle, Tables().Sine, std::sin);
}

double cos(const CtkAngle &angle) {
    return Evaluate(angle, Tables().Cosine, std::cos);
}

double tan(const CtkAngle &angle) {
    return Evaluate(angle, Tables().Tangent, std::tan);
}

double sinh(const CtkAngle &angle) {
    return std::sinh(angle.GetRadians());
}

double cosh(const CtkAngle &angle) {
    return std::cosh(angle.GetRadians());
}

double tanh(const CtkAngle &angle) {
    return std::tanh(angle.GetRadians());
}

// Rounding of registers of corners where it is beyond doubt.
#pragma once

#include "Drawing/EllipsePoints.h"
#include "Image/VectorRegisters.h"

namespace Drawing {

constexpr std::size_t LaneCount = 8;
typedef Image::Vector<double, LaneCount * sizeof(double)> Lanes;
typedef Image::Vector<std::int64_t, LaneCount * sizeof(double)> Flags;

ORV_INLINE void Select(Lanes &out, const Flags &flags, const Lanes &ifSet, const Lanes &ifNot) {
    out =
        reinterpret_cast<Lanes>((reinterpret_cast<Flags>(ifSet) & flags) | (reinterpret_cast<Flags>(ifNot) & ~flags));
}

/// To the nearest whole number, halves to the even one.
ORV_INLINE void RoundToEven(Lanes &value) {
    constexpr double toWhole = 6755399441055744.0; // 1.5 * 2^52: adding and taking it away rounds
    value = value + toWhole - toWhole;
}

/// Rounds, and flags what could be rounded another way if the value were off by the error.
ORV_INLINE void RoundOrDoubt(Lanes &value, double error, Flags &doubts) {
    const Lanes exact = value;
    RoundToEven(value);
    const Lanes difference = exact - value;
    doubts |= difference * difference >= 0.25 - error;
}

/// Turns rounded corners, and rounds them once more.
ORV_INLINE void TurnOrDoubt(const EllipseForm &form, Lanes &x, Lanes &y, Flags &doubts) {
    const Lanes turnedX = form.Turn.A11 * x + form.Turn.A12 * y;
    y = form.Turn.A21 * x + form.Turn.A22 * y;
    x = turnedX;
    RoundOrDoubt(x, 0, doubts);
    RoundOrDoubt(y, 0, doubts);
}

} // namespace Drawing

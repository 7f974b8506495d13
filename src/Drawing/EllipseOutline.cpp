#include "Drawing/EllipseOutline.h"

namespace Drawing {

/// Along the outline a linear function of the position is a sine of the angle: between two angles it does not leave
/// its value in the middle by more than its amplitude times half their distance.
bool EllipseOutline::MayMeet(std::int64_t first, std::int64_t last, const Region &region) const {
    constexpr double roundings = 4; // pixels that rounding may move a corner by, and a line from its chord
    const double begin = AngleOf(first - 1), end = AngleOf(last);
    const double middle = (begin + end) / 2, reach = (end - begin) / 2;
    const TMatrix turn = form_.IsTurned ? form_.Turn : TMatrix{1, 0, 0, 1};
    for (const Band &band : region) {
        const double alongA = form_.A * (band.X * turn.A11 + band.Y * turn.A21);
        const double alongB = form_.B * (band.X * turn.A12 + band.Y * turn.A22);
        const double centre = band.X * static_cast<double>(centre_.X) + band.Y * static_cast<double>(centre_.Y);
        const double value = centre + alongA * std::cos(middle) + alongB * std::sin(middle);
        const double margin = (std::fabs(alongA) + std::fabs(alongB)) * (reach + 1e-9) +
                              (std::fabs(band.X) + std::fabs(band.Y)) * roundings;
        const bool meets = std::any_of(band.Ranges.begin(), band.Ranges.end(), [&](const Band::Range &range) {
            return value + margin >= range.Least && value - margin <= range.Most;
        });
        if (!meets)
            return false;
    }
    return true;
}

} // namespace Drawing

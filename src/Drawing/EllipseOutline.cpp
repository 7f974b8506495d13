#include "Drawing/EllipseOutline.h"

namespace Drawing {
namespace {

/// More directions in one part of an outline tell too little.
constexpr double MostDirections = 64;

struct WholeNumbers {
    double Least, Most;

    double Count() const { return Most - Least + 1; }
};
/// Those less than one beyond a range, but for roundings.
WholeNumbers WholeNumbersNear(const EllipseOutline::Range &range) {
    constexpr double beyond = 1 + 4e-6;
    return {std::ceil(range.Least - beyond), std::floor(range.Most + beyond)};
}

} // namespace

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

/// alongA * cos + alongB * sin: its ends, and where it turns in between.
EllipseOutline::Range EllipseOutline::OfSine(double alongA, double alongB, double begin, double end) const {
    const double amplitude = std::hypot(alongA, alongB), peak = std::atan2(alongB, alongA);
    const double atBegin = alongA * std::cos(begin) + alongB * std::sin(begin);
    const double atEnd = alongA * std::cos(end) + alongB * std::sin(end);
    Range range = {std::min(atBegin, atEnd), std::max(atBegin, atEnd)};
    const double halfTurn = AngleSteps::WholeTurn / 2;
    for (double turns = std::ceil((begin - peak) / halfTurn); peak + turns * halfTurn <= end; ++turns)
        if (std::fmod(turns, 2) == 0)
            range.Most = amplitude;
        else
            range.Least = -amplitude;
    const double margin = amplitude * 1e-13 + 1e-9; // of the functions and of the angles
    return {range.Least - margin, range.Most + margin};
}

EllipseOutline::Range EllipseOutline::OfCorners(std::int64_t first, std::int64_t last, double x, double y) const {
    const TMatrix turn = form_.IsTurned ? form_.Turn : TMatrix{1, 0, 0, 1};
    const Range range = OfSine(form_.A * (x * turn.A11 + y * turn.A21), form_.B * (x * turn.A12 + y * turn.A22),
                               AngleOf(first), AngleOf(last));
    const double centre = x * static_cast<double>(centre_.X) + y * static_cast<double>(centre_.Y);
    const double rounding = (std::fabs(x) + std::fabs(y)) * RoundingOfCorners();
    return {centre + range.Least - rounding, centre + range.Most + rounding};
}

/// Before they are turned, corners are rounded once, and their differences so differ from those of the ellipse by
/// less than one. The chord between two angles is the derivative in their middle times twice the sine of half the
/// step.
bool EllipseOutline::TakeDirections(std::int64_t first, std::int64_t last, std::vector<Point> &directions) const {
    directions.clear();
    const double half = form_.Step / 2, chord = 2 * std::sin(half);
    const double begin = AngleOf(first - 1) + half, end = AngleOf(last - 1) + half;
    const auto near = [&](const Range &chords, const Range &corners) {
        // Where the ellipse hardly moves, corners mostly are the same.
        constexpr double margin = 1e-5;
        if (std::round(corners.Least - margin) == std::round(corners.Most + margin))
            return WholeNumbers{0, 0};
        WholeNumbers whole = WholeNumbersNear(chords);
        if (chords.Least > margin)
            whole.Least = std::max(whole.Least, 0.0);
        if (chords.Most < -margin)
            whole.Most = std::min(whole.Most, 0.0);
        return whole;
    };
    const double firstCorner = AngleOf(first - 1), lastCorner = AngleOf(last);
    const WholeNumbers x = near(OfSine(0, -chord * form_.A, begin, end), OfSine(form_.A, 0, firstCorner, lastCorner));
    const WholeNumbers y = near(OfSine(chord * form_.B, 0, begin, end), OfSine(0, form_.B, firstCorner, lastCorner));
    if (x.Count() * y.Count() > MostDirections)
        return false;
    for (double dx = x.Least; dx <= x.Most; ++dx)
        for (double dy = y.Least; dy <= y.Most; ++dy) {
            const Point direction = {static_cast<std::int64_t>(dx), static_cast<std::int64_t>(dy)};
            if (!form_.IsTurned)
                directions.push_back(direction);
            else if (!TakeTurned(first, last, direction, directions))
                return false;
        }
    std::sort(directions.begin(), directions.end(),
              [](Point a, Point b) { return a.X < b.X || (a.X == b.X && a.Y < b.Y); });
    directions.erase(std::unique(directions.begin(), directions.end()), directions.end());
    return static_cast<double>(directions.size()) <= MostDirections;
}

/// What turning and rounding may make of a difference of corners. Of a matrix of whole numbers and small rests, the
/// rests alone decide how a corner is rounded, and they change slowly along the outline.
bool EllipseOutline::TakeTurned(std::int64_t first, std::int64_t last, Point direction,
                                std::vector<Point> &directions) const {
    const double begin = AngleOf(first - 1), end = AngleOf(last);
    const auto near = [&](double m1, double m2) {
        const double whole1 = std::round(m1), whole2 = std::round(m2), rest1 = m1 - whole1, rest2 = m2 - whole2;
        const Range rest = OfSine(form_.A * rest1, form_.B * rest2, begin, end);
        const double margin = std::fabs(rest1) + std::fabs(rest2) + 1e-5;
        const double steps = std::round(rest.Most + margin) - std::round(rest.Least - margin);
        const auto x = static_cast<double>(direction.X), y = static_cast<double>(direction.Y);
        const double exact = whole1 * x + whole2 * y;
        if (steps < 1)
            return WholeNumbers{exact, exact};
        return WholeNumbersNear({m1 * x + m2 * y, m1 * x + m2 * y});
    };
    const WholeNumbers x = near(form_.Turn.A11, form_.Turn.A12), y = near(form_.Turn.A21, form_.Turn.A22);
    if (x.Count() * y.Count() > MostDirections)
        return false;
    for (double dx = x.Least; dx <= x.Most; ++dx)
        for (double dy = y.Least; dy <= y.Most; ++dy)
            directions.push_back({static_cast<std::int64_t>(dx), static_cast<std::int64_t>(dy)});
    return true;
}

} // namespace Drawing

// Each pixel is the mean of small squares of paper, ink and ground, so that edges are as soft as from a lens.
#include "label.h"

#include "compositions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string_view>

namespace {

constexpr intptr_t labelWidth = 344;
constexpr intptr_t labelHeight = 340;
constexpr Point middle = {171.4, 168.8};
constexpr double paperRadius = 166.0;
constexpr double holeRadius = 38.0;
constexpr double dotsRadius = 146.0;
constexpr double dotRadius = 4.5;
constexpr int dots = 23;
constexpr double letterTop = 133.0;
constexpr double letterBottom = 101.0;
constexpr double top = -90.0; // degrees

using Colour = std::array<double, 3>; // red, green, blue
constexpr Colour ground{70.0, 70.0, 74.0};
constexpr Colour paper{238.0, 232.0, 214.0};
constexpr Colour ink{36.0, 44.0, 96.0};

constexpr std::string_view lettering = "ONE TURN IS 360 DEGREES - ";

/// Five columns and seven rows of a letter; bit 4 of a row is its left end.
struct Glyph {
    char letter;
    std::array<unsigned, 7> rows;
};
constexpr Glyph glyphs[] = {
    {'-', {0, 0, 0, 31, 0, 0, 0}},       {'0', {14, 17, 19, 21, 25, 17, 14}}, {'3', {30, 1, 1, 14, 1, 1, 30}},
    {'6', {14, 16, 16, 30, 17, 17, 14}}, {'D', {30, 17, 17, 17, 17, 17, 30}}, {'E', {31, 16, 16, 30, 16, 16, 31}},
    {'G', {14, 17, 16, 23, 17, 17, 14}}, {'I', {14, 4, 4, 4, 4, 4, 14}},      {'N', {17, 25, 21, 21, 19, 17, 17}},
    {'O', {14, 17, 17, 17, 17, 17, 14}}, {'R', {30, 17, 17, 30, 20, 18, 17}}, {'S', {15, 16, 16, 14, 1, 1, 30}},
    {'T', {31, 4, 4, 4, 4, 4, 4}},       {'U', {17, 17, 17, 17, 17, 17, 14}},
};

double AngleOfDot(int i) {
    return top + 10.0 + i * 340.0 / (dots - 1) + 2.5 * std::sin(1.7 * i);
}

Mark DotAt(int i) {
    const double angle = AngleOfDot(i) * std::numbers::pi / 180.0;
    return {middle.x + dotsRadius * std::cos(angle), middle.y + dotsRadius * std::sin(angle), dotRadius};
}

/// turn  the part of the whole turn from the top on, clockwise.
bool IsLetter(double radius, double turn) {
    const double row = (letterTop - radius) / (letterTop - letterBottom) * 7.0;
    const double place = turn * static_cast<double>(lettering.size());
    const double column = (place - std::floor(place)) * 6.0 - 0.5; // half a column of space on both sides
    if (row < 0.0 || row >= 7.0 || column < 0.0 || column >= 5.0)
        return false;
    const char letter = lettering[std::min(static_cast<std::size_t>(place), lettering.size() - 1)];
    for (const Glyph &glyph : glyphs)
        if (glyph.letter == letter)
            return (glyph.rows[static_cast<std::size_t>(row)] >> (4 - static_cast<unsigned>(column)) & 1u) != 0;
    return false;
}

const Colour &ColourAt(Point place, const std::vector<Mark> &marks) {
    const double dx = place.x - middle.x, dy = place.y - middle.y;
    const double radius = std::hypot(dx, dy);
    if (radius > paperRadius || radius < holeRadius)
        return ground;
    const auto covers = [place](const Mark &mark) {
        return std::hypot(place.x - mark.x, place.y - mark.y) < mark.radius;
    };
    const double turn = std::atan2(dx, -dy) / (2.0 * std::numbers::pi); // 0 at the top, positive to the right
    const bool isInked =
        IsLetter(radius, turn < 0.0 ? turn + 1.0 : turn) || std::any_of(marks.begin(), marks.end(), covers);
    return isInked ? ink : paper;
}

/// The mean over a square of two by two pixels.
Colour SoftColourAt(Point place, const std::vector<Mark> &marks) {
    constexpr int steps = 8;
    Colour sum{};
    for (int i = 0; i < steps; ++i)
        for (int k = 0; k < steps; ++k) {
            const Colour &colour =
                ColourAt({place.x + (2.0 * i + 1.0) / steps - 1.0, place.y + (2.0 * k + 1.0) / steps - 1.0}, marks);
            for (std::size_t c = 0; c < sum.size(); ++c)
                sum[c] += colour[c] / (steps * steps);
        }
    return sum;
}

} // namespace

Label DrawLabel(intptr_t planes) {
    Label label{BlankPaper(planes, labelWidth, labelHeight), {middle, 95.0, 159.0, top}, {}};
    for (int i = 0; i < dots; ++i)
        label.marks.push_back(DotAt(i));
    for (intptr_t y = 0; y < labelHeight; ++y)
        for (intptr_t x = 0; x < labelWidth; ++x) {
            const Colour colour = SoftColourAt({static_cast<double>(x), static_cast<double>(y)}, label.marks);
            const double grey = 0.299 * colour[0] + 0.587 * colour[1] + 0.114 * colour[2];
            for (intptr_t p = 0; p < planes; ++p)
                *AddressOf(PlaneOf(label.image.Get(), p), x, y) =
                    static_cast<unsigned char>(std::lround(planes == 1 ? grey : colour[static_cast<std::size_t>(p)]));
        }
    return label;
}

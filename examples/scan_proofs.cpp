// Plain loops over tables and notes: nothing here uses the walks that are proven, but where a proof compares two.
#include "scan_proofs.h"

#include <algorithm>
#include <cmath>

namespace {

bool IsInside(void *image, intptr_t x, intptr_t y) {
    return x >= 0 && y >= 0 && x < ImageWidth(image) && y < ImageHeight(image);
}

/// The place between two values of a profile where it passes a level; nothing outside of them when it does not.
double Crossing(const ProfileValue &a, const ProfileValue &b, double level) {
    const double share = a.grey == b.grey ? 0.5 : (level - a.grey) / (b.grey - a.grey);
    return a.position + std::clamp(share, 0.0, 1.0) * (b.position - a.position);
}

/// Where the profile, seen from a place on, first falls below a level; step is 1 or -1.
double FallFrom(const Profile &profile, std::ptrdiff_t start, std::ptrdiff_t step, double level) {
    std::ptrdiff_t i = start;
    const auto at = [&profile](std::ptrdiff_t k) { return profile[static_cast<std::size_t>(k)]; };
    while (i + step >= 0 && i + step < std::ssize(profile) && at(i + step).grey >= level)
        i += step;
    return i + step < 0 || i + step >= std::ssize(profile) ? at(i).position : Crossing(at(i), at(i + step), level);
}

/// The index of the value next to a position.
std::ptrdiff_t IndexAt(const Profile &profile, double position) {
    const auto isNearer = [position](const ProfileValue &a, const ProfileValue &b) {
        return std::abs(a.position - position) < std::abs(b.position - position);
    };
    return std::min_element(profile.begin(), profile.end(), isNearer) - profile.begin();
}

double MeanBetween(const Profile &profile, double from, double to) {
    double sum = 0.0;
    double count = 0.0;
    for (const ProfileValue &value : profile)
        if (value.position >= from && value.position <= to) {
            sum += value.grey;
            count += 1.0;
        }
    return sum / count;
}

/// The middle of a mark that the profile passes, from its two slopes at half height.
double MiddleOfMark(const Profile &profile, double expected, double radius) {
    const double board = (MeanBetween(profile, expected - radius - 8.0, expected - radius - 4.0) +
                          MeanBetween(profile, expected + radius + 4.0, expected + radius + 8.0)) /
                         2.0;
    const double level = (board + MeanBetween(profile, expected - radius / 2.0, expected + radius / 2.0)) / 2.0;
    const std::ptrdiff_t middle = IndexAt(profile, expected);
    return (FallFrom(profile, middle, -1, level) + FallFrom(profile, middle, 1, level)) / 2.0;
}

void Add(Findings &findings, double error) {
    ++findings.count;
    findings.largestError = std::max(findings.largestError, std::abs(error));
}

/// The pixels of a picture, row by row, that a walk came by.
void Tick(std::vector<bool> &pixels, const PlaneWalk &walk, intptr_t width) {
    for (const WalkedLine &line : walk.lines)
        for (const Sample &sample : line.samples)
            pixels[static_cast<std::size_t>(sample.y * width + sample.x)] = true;
}

} // namespace

bool NotesTheTablesPixels(const PlaneWalk &walk, void *image) {
    const TPlaneRec plane = PlaneOf(image, 0);
    int64_t samples = 0;
    for (const WalkedLine &line : walk.lines)
        for (const Sample &sample : line.samples) {
            ++samples;
            if (!IsInside(image, sample.x, sample.y) || sample.pixel != AddressOf(plane, sample.x, sample.y))
                return false;
        }
    return samples > 0 && walk.result == samples;
}

bool CountsItsLines(const PlaneWalk &walk) {
    int64_t left = std::ssize(walk.lines);
    for (const WalkedLine &line : walk.lines) {
        if (line.linesLeftAtBegin != left || line.linesLeftAtEnd != left)
            return false;
        --left;
    }
    return !walk.lines.empty();
}

bool StaysInArea(const PlaneWalk &walk, void *image, const TArea &area, int64_t density) {
    const double beside = 1.5 + 500.0 / static_cast<double>(density);
    for (const WalkedLine &line : walk.lines)
        for (const Sample &sample : line.samples) {
            Point place{};
            PixelToImage(image, &place.x, &place.y, sample.x, sample.y);
            if (place.x < area.X0 - beside || place.x > area.X1 + beside || place.y < area.Y0 - beside ||
                place.y > area.Y2 + beside)
                return false;
        }
    return true;
}

bool HasNoGap(const PlaneWalk &walk, int64_t density) {
    if (walk.lines.empty())
        return false;
    const std::vector<Sample> &line = walk.lines.front().samples;
    const double step = 1000.0 / static_cast<double>(density);
    for (std::size_t i = 1; i < line.size(); ++i) {
        const int along = std::max(std::abs(line[i].x - line[i - 1].x), std::abs(line[i].y - line[i - 1].y));
        if (along < std::floor(step) || along > std::ceil(step))
            return false;
    }
    return !line.empty();
}

bool HistogramCountsTheWalk(const PlaneWalk &walk, void *image, const TArea &area, int64_t density) {
    GreyCounts noted{}, counted{};
    for (const WalkedLine &line : walk.lines)
        for (const Sample &sample : line.samples)
            ++noted[*sample.pixel];
    return ImageHistogram(image, 0, area, density, counted.data()) != 0 && noted == counted;
}

bool TellsThatItWasClipped(void *image, const TArea &line) {
    const double beyond = static_cast<double>(ImageWidth(image) + ImageHeight(image));
    const TArea longLine = {line.X0, line.Y0, line.X1 + beyond, line.Y1, line.X0, line.Y0};
    const PlaneWalk walk = WalkOver(image, longLine, 1000);
    if (walk.lines.empty())
        return false;
    const std::vector<Sample> &inside = walk.lines.front().samples;
    return !inside.empty() && walk.result == -std::ssize(inside);
}

bool OnlyTheWalkIsPainted(void *painted, void *picture, const WalkPlaces &places) {
    const intptr_t width = ImageWidth(picture);
    std::vector<bool> red(static_cast<std::size_t>(width * ImageHeight(picture)), false);
    std::vector<bool> yellow = red;
    Tick(red, WalkOver(painted, places.area, places.density), width);
    Tick(yellow, WalkOver(painted, BandAlong(places.line), places.density), width);
    for (intptr_t p = 0; p < 3; ++p) {
        const TPlaneRec shown = PlaneOf(painted, p);
        const TPlaneRec original = PlaneOf(picture, ImageDimension(picture) == 3 ? p : 0);
        for (intptr_t y = 0; y < shown.Height; ++y)
            for (intptr_t x = 0; x < width; ++x) {
                const std::size_t i = static_cast<std::size_t>(y * width + x);
                const int paint = p < 2 && yellow[i] ? 255 : p == 0 && red[i] ? reddish : 0;
                if (*AddressOf(shown, x, y) != (*AddressOf(original, x, y) | paint))
                    return false;
            }
    }
    return true;
}

Findings FindMarks(const Profile &profile, void *image, const std::vector<Mark> &marks) {
    Findings findings;
    if (profile.empty())
        return findings;
    for (const Mark &mark : marks) {
        Point place{};
        PixelToImage(image, &place.x, &place.y, mark.x, mark.y);
        const double reach = mark.radius + 8.0;
        if (std::abs(place.y) < 0.5 && place.x - reach > profile.front().position &&
            place.x + reach < profile.back().position)
            Add(findings, MiddleOfMark(profile, place.x, mark.radius) - place.x);
    }
    return findings;
}

Findings FindEdges(const Profile &profile, double halfHeight) {
    Findings findings;
    if (profile.empty())
        return findings;
    for (const double side : {-1.0, 1.0}) {
        const double edge = side * halfHeight;
        const double inner = side * (halfHeight - 12.0);
        const double board =
            MeanBetween(profile, std::min(inner, edge - side * 6.0), std::max(inner, edge - side * 6.0));
        const double ground = MeanBetween(profile, std::min(edge + side * 6.0, edge + side * 12.0),
                                          std::max(edge + side * 6.0, edge + side * 12.0));
        const double found = FallFrom(profile, IndexAt(profile, inner), side < 0.0 ? -1 : 1, (board + ground) / 2.0);
        Add(findings, found - edge);
    }
    return findings;
}

bool BarsAreRight(void *chart, const std::vector<double> &shares) {
    const TPlaneRec plane = PlaneOf(chart, 0);
    for (intptr_t x = 0; x < plane.Width; ++x) {
        const intptr_t height = std::lround(shares[static_cast<std::size_t>(x)] * static_cast<double>(plane.Height));
        for (intptr_t y = 0; y < plane.Height; ++y)
            if ((*AddressOf(plane, x, y) != 255) != (y >= plane.Height - height))
                return false;
    }
    return plane.Width == std::ssize(shares);
}

bool CountsAllPixels(const GreyCounts &counts, void *image) {
    GreyCounts plain{};
    const TPlaneRec plane = PlaneOf(image, 0);
    for (intptr_t y = 0; y < plane.Height; ++y)
        for (intptr_t x = 0; x < plane.Width; ++x)
            ++plain[*AddressOf(plane, x, y)];
    return plain == counts;
}

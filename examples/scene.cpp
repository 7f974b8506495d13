// Draws the board as real intensities, first sharp, then lit, blurred and noisy, and rounds them to bytes at the end.
#include "scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace {

constexpr int sceneWidth = 800;
constexpr int sceneHeight = 600;
constexpr double boardAngle = 0.105; // radians
constexpr double boardAngleDegrees = boardAngle * 180.0 / std::numbers::pi;
constexpr int groundRows = 32;
constexpr double boardHalfWidth = 330.0;
constexpr double boardHalfHeight = 225.0;
constexpr double blurSigma = 1.3; // pixels

using Colour = std::array<double, 3>; // red, green, blue
using Channel = std::vector<double>;

constexpr Colour ground{44.0, 44.0, 50.0};
constexpr Colour board{24.0, 96.0, 70.0};
constexpr Colour metal{226.0, 214.0, 176.0};
constexpr Colour copper{226.0, 132.0, 70.0};

struct Disc {
    Mark mark;
    Colour colour;
};

/// A place on the board, measured from its middle and along its edges, as a place in the picture.
Mark OnBoard(double along, double down, double radius) {
    const double cosine = std::cos(boardAngle);
    const double sine = std::sin(boardAngle);
    return {398.37 + cosine * along - sine * down, 301.81 + sine * along + cosine * down, radius};
}

/// A grid of small marks and, in three corners only, large ones: no turn of the picture looks like another.
std::vector<Disc> PlaceDiscs() {
    std::vector<Disc> discs;
    for (const auto &[along, down] : {std::pair(-280.0, -175.0), std::pair(280.0, -175.0), std::pair(-280.0, 175.0)})
        discs.push_back({OnBoard(along, down, 26.0), along < 0.0 && down < 0.0 ? copper : metal});
    for (int row = -2; row <= 2; ++row)
        for (int column = -3; column <= 3; ++column)
            if (std::abs(row) < 2 || std::abs(column) < 3)
                discs.push_back({OnBoard(70.3 * column, 70.9 * row, column + row < -1 ? 14.0 : 10.0),
                                 row == 0 && column > 0 ? copper : metal});
    return discs;
}

/// How much of a pixel lies inside an edge that is this far away, positive inside.
double Coverage(double distanceInside) {
    return std::clamp(distanceInside + 0.5, 0.0, 1.0);
}

Colour Blend(const Colour &below, const Colour &above, double share) {
    Colour result{};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = below[i] + (above[i] - below[i]) * share;
    return result;
}

Colour SharpColour(double x, double y, const std::vector<Disc> &discs) {
    const Mark middle = OnBoard(0.0, 0.0, 0.0);
    const double dx = x - middle.x;
    const double dy = y - middle.y;
    const double along = std::cos(boardAngle) * dx + std::sin(boardAngle) * dy;
    const double down = std::cos(boardAngle) * dy - std::sin(boardAngle) * dx;
    Colour colour =
        Blend(ground, board, Coverage(boardHalfWidth - std::abs(along)) * Coverage(boardHalfHeight - std::abs(down)));
    for (const Disc &disc : discs) {
        const double distance = std::hypot(x - disc.mark.x, y - disc.mark.y);
        if (distance < disc.mark.radius + 1.0)
            colour = Blend(colour, disc.colour, Coverage(disc.mark.radius - distance));
    }
    return colour;
}

/// A lamp at the upper left: full light there, less than half of it in the far corner.
double LightAt(double x, double y) {
    return 1.0 / (1.0 + 1.2e-6 * ((x - 180.0) * (x - 180.0) + (y - 90.0) * (y - 90.0)));
}

/// One direction of a Gaussian blur; step leads to the next pixel of a line of count pixels.
void BlurLine(double *first, std::ptrdiff_t step, int count) {
    constexpr int reach = 5;
    std::array<double, 2 * reach + 1> weights{};
    double sum = 0.0;
    for (int i = -reach; i <= reach; ++i)
        sum += weights[static_cast<std::size_t>(i + reach)] = std::exp(-i * i / (2.0 * blurSigma * blurSigma));
    std::vector<double> line(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        line[static_cast<std::size_t>(i)] = first[i * step];
    for (int i = 0; i < count; ++i) {
        double value = 0.0;
        for (int k = -reach; k <= reach; ++k)
            value += weights[static_cast<std::size_t>(k + reach)] *
                     line[static_cast<std::size_t>(std::clamp(i + k, 0, count - 1))];
        first[i * step] = value / sum;
    }
}

void Blur(Channel &channel) {
    for (int y = 0; y < sceneHeight; ++y)
        BlurLine(&channel[static_cast<std::size_t>(y) * sceneWidth], 1, sceneWidth);
    for (int x = 0; x < sceneWidth; ++x)
        BlurLine(&channel[static_cast<std::size_t>(x)], sceneWidth, sceneHeight);
}

/// A byte with sensor noise of about two grey levels; the generator's sequence is the same on every machine.
std::uint8_t NoisyByte(double value, std::mt19937 &generator) {
    double noise = 0.0;
    for (int i = 0; i < 4; ++i)
        noise += static_cast<double>(generator()) / 4294967296.0 - 0.5;
    return static_cast<std::uint8_t>(std::clamp(std::floor(value + 3.5 * noise + 0.5), 0.0, 255.0));
}

} // namespace

Scene DrawScene() {
    const std::vector<Disc> discs = PlaceDiscs();
    const std::size_t pixels = static_cast<std::size_t>(sceneWidth) * sceneHeight;
    std::array<Channel, 3> channels{Channel(pixels), Channel(pixels), Channel(pixels)};
    for (std::size_t i = 0; i < pixels; ++i) {
        const double x = static_cast<double>(i % sceneWidth);
        const double y = static_cast<double>(i / sceneWidth);
        const Colour colour = SharpColour(x, y, discs);
        for (std::size_t c = 0; c < channels.size(); ++c)
            channels[c][i] = colour[c] * LightAt(x, y);
    }
    for (Channel &channel : channels)
        Blur(channel);

    Scene scene{sceneWidth, sceneHeight,       OnBoard(0.0, 0.0, 10.0), {},        {},
                {},         boardAngleDegrees, boardHalfHeight,         groundRows};
    std::mt19937 generator(20260);
    for (std::size_t i = 0; i < pixels; ++i) {
        const double grey = 0.299 * channels[0][i] + 0.587 * channels[1][i] + 0.114 * channels[2][i];
        scene.grey.push_back(NoisyByte(grey, generator));
        for (std::size_t c : {2u, 1u, 0u})
            scene.blueGreenRed.push_back(NoisyByte(channels[c][i], generator));
    }
    for (const Disc &disc : discs)
        scene.marks.push_back(disc.mark);
    return scene;
}

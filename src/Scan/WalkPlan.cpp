#include "Scan/WalkPlan.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Matrices.h"
#include "TruncateTo.h"

namespace Scan {
namespace {

using orvBase::TruncateTo;

constexpr double highestCoordinate = 2147483647.0;
constexpr double lowestCoordinate = -2147483648.0;

struct Edge {
    std::int64_t X;
    std::int64_t Y;
};

double AsDouble(std::int64_t value) {
    return static_cast<double>(value);
}

std::int64_t WithSignOf(std::int64_t sign, std::int64_t magnitude) {
    return sign < 0 ? -magnitude : magnitude;
}

/// trunc(length * density / 1000)
std::int64_t SamplesAlong(std::int64_t length, std::int64_t density) {
    return TruncateTo<std::int64_t>(AsDouble(std::abs(length)) * AsDouble(density) / 1000.0);
}

/// The step across that goes with a step along the longer side.
std::int64_t StepAcross(std::int64_t across, std::int64_t stepAlong, std::int64_t along) {
    return TruncateTo<std::int64_t>(AsDouble(across) * AsDouble(stepAlong) / AsDouble(along));
}

/// |sampleStep x edge| in 32 bits. Required: products wrap, and so does the magnitude of the lowest number, so that
/// areas of exactly 32768 rows have no line.
std::int32_t CellArea(const FixedPoint &sampleStep, const Edge &edge) {
    const auto low = [](std::int64_t value) { return static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)); };
    const std::uint32_t product = low(sampleStep.X) * low(edge.Y) - low(sampleStep.Y) * low(edge.X);
    const auto area = static_cast<std::int32_t>(product);
    return area < 0 ? static_cast<std::int32_t>(0u - product) : area;
}

void SetSampleStep(WalkPlan &plan, const Edge &edge, std::int64_t density, std::int64_t step) {
    plan.IsYMajor = std::abs(edge.Y) > std::abs(edge.X);
    plan.SampleStep = {0, 0};
    plan.Samples = 1;
    if (plan.IsYMajor) {
        plan.SampleStep.Y = WithSignOf(edge.Y, step);
        plan.SampleStep.X = StepAcross(edge.X, plan.SampleStep.Y, edge.Y);
        plan.Samples += SamplesAlong(edge.Y, density);
    } else if (edge.X != 0) {
        plan.SampleStep.X = WithSignOf(edge.X, step);
        plan.SampleStep.Y = StepAcross(edge.Y, plan.SampleStep.X, edge.X);
        plan.Samples += SamplesAlong(edge.X, density);
    }
}

/// Lines so far apart that the cell between two samples and two lines has the area of one sample.
void SetLineStep(WalkPlan &plan, const Edge &edge, std::int64_t density, std::int32_t cellArea) {
    const double q = 65536.0 / AsDouble(density);
    const double k = q * q * (1000000.0 / static_cast<double>(cellArea));
    const auto scaled = [k](std::int64_t length) {
        const double product = AsDouble(length) * k;
        return std::fabs(product) < highestCoordinate ? TruncateTo<std::int64_t>(std::floor(product + 0.5)) : length;
    };
    plan.LineStep = {scaled(edge.X), scaled(edge.Y)};
    plan.Lines = TruncateTo<std::int64_t>(std::floor(65536.0 / k + 0.5)) + 1;
}

/// Both edges in one direction, or no first edge: lines follow each other pixel by pixel along the second edge.
void SetParallelLineStep(WalkPlan &plan, const Edge &edge, std::int64_t density, std::int64_t step) {
    plan.LineStep = {0, 0};
    plan.Lines = 1;
    if (std::abs(edge.Y) > std::abs(edge.X)) {
        plan.IsYMajor = true;
        plan.LineStep.Y = WithSignOf(edge.Y, step);
        plan.LineStep.X = StepAcross(edge.X, plan.LineStep.Y, edge.Y);
        plan.Lines += SamplesAlong(edge.Y, density);
    } else if (edge.X != 0) {
        plan.IsYMajor = false;
        plan.LineStep.X = WithSignOf(edge.X, step);
        plan.LineStep.Y = StepAcross(edge.Y, plan.LineStep.X, edge.X);
        plan.Lines += SamplesAlong(edge.X, density);
    }
}

/// Required: a zero step becomes 1/65536 pixel, also where it is added; the steps serve as divisors, too.
void ReplaceZeros(FixedPoint &step) {
    step.X = step.X == 0 ? 1 : step.X;
    step.Y = step.Y == 0 ? 1 : step.Y;
}

/// Rounds to pixels. False when a position can't hold one of them.
bool RoundToPixels(const TArea &area, std::int64_t (&pixels)[6]) {
    constexpr double limit = 140737488355328.0; // 2^47
    const double coordinates[6] = {area.X0, area.Y0, area.X1, area.Y1, area.X2, area.Y2};
    for (int i = 0; i < 6; ++i) {
        const double rounded = std::floor(coordinates[i] + 0.5);
        if (!(rounded >= -limit && rounded < limit))
            return false;
        pixels[i] = static_cast<std::int64_t>(rounded);
    }
    return true;
}

/// Required: no full range check, only these three sides, as callers know it.
bool IsRefused(const std::int64_t (&pixels)[6]) {
    constexpr TCoordinateMap identity = {0.0, 0.0, {1.0, 0.0, 0.0, 1.0}};
    const TArea area = {AsDouble(pixels[0]), AsDouble(pixels[1]), AsDouble(pixels[2]),
                        AsDouble(pixels[3]), AsDouble(pixels[4]), AsDouble(pixels[5])};
    TRectangle around;
    BoundingRectangle(&around, area, identity);
    return around.Right > highestCoordinate ||
           (around.Bottom > highestCoordinate ? around.Left < lowestCoordinate : around.Top < lowestCoordinate);
}

/// The distance that an aligned start goes back across, in 32 bits.
std::int64_t Correction(std::int64_t fraction, std::int64_t stepAcross, std::int64_t stepAlong) {
    const std::int64_t distance = Advance(0, fraction, stepAcross) / stepAlong;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(distance)));
}

} // namespace

PixelBounds BoundsOf(std::intptr_t width, std::intptr_t height) {
    const auto last = [](std::intptr_t count) {
        return static_cast<std::int32_t>(
            std::min<std::intptr_t>(count - 1, std::numeric_limits<std::int32_t>::max()));
    };
    return {0, 0, last(width), last(height)};
}

FixedPoint WalkPlan::LineStart(std::int64_t line) const {
    // Required: the mask drops the sign and all above 16 bits of the pixel coordinate, so that a line that begins
    // left of or above the image begins far right of or below it instead.
    constexpr std::int64_t wholePixels = 0xFFFF0000, fraction = 0xFFFF;
    const std::int64_t x = Advance(Start.X, LineStep.X, line), y = Advance(Start.Y, LineStep.Y, line);
    if (IsYMajor)
        return {Advance(x, -Correction(y & fraction, SampleStep.X, SampleStep.Y)), y & wholePixels};
    return {x & wholePixels, Advance(y, -Correction(x & fraction, SampleStep.Y, SampleStep.X))};
}

std::optional<WalkPlan> PlanWalk(const TArea &area, std::int64_t density) {
    std::int64_t pixels[6];
    if (!RoundToPixels(area, pixels) || IsRefused(pixels))
        return std::nullopt;
    const Edge first = {pixels[2] - pixels[0], pixels[3] - pixels[1]};
    const Edge second = {pixels[4] - pixels[0], pixels[5] - pixels[1]};
    const auto step = TruncateTo<std::int64_t>(65536000.0 / AsDouble(density));
    WalkPlan plan = {};
    plan.Start = {Advance(0x8000, pixels[0], 65536), Advance(0x8000, pixels[1], 65536)};
    SetSampleStep(plan, first, density, step);
    const std::int32_t cellArea = CellArea(plan.SampleStep, second);
    if (cellArea != 0)
        SetLineStep(plan, second, density, cellArea);
    else
        SetParallelLineStep(plan, second, density, step);
    ReplaceZeros(plan.SampleStep);
    ReplaceZeros(plan.LineStep);
    return plan;
}

} // namespace Scan

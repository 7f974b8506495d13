// The angles of the corners are sums of a step, and their sines and cosines those of the step's multiples but for the
// roundings of the sums. So eight corners follow from the eight before by one multiplication of complex numbers.
// Where the roundings might change a corner, it is worked out as it is defined.
#include "Drawing/NearCorners.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Drawing/AngleSteps.h"
#include "Drawing/CornerRounding.h"
#include "Image/KernelLevel.h"

namespace Drawing {
namespace {

constexpr std::int32_t InDoubt = std::numeric_limits<std::int32_t>::min();

/// Of a sum of angles and of its sine and cosine: less than half a unit of the last place of a whole turn for each
/// addition, and less than four of one for each multiplication.
double ErrorOf(std::int64_t corners) {
    return static_cast<double>(corners + 16) * 2e-15;
}

/// Cosines and sines of multiples 1 to LaneCount of an angle, and of LaneCount itself.
struct Multiples {
    double Cosines[LaneCount], Sines[LaneCount];

    explicit Multiples(double angle) {
        const double cosine = std::cos(angle), sine = std::sin(angle);
        Cosines[0] = cosine;
        Sines[0] = sine;
        for (std::size_t i = 1; i < LaneCount; ++i) {
            Cosines[i] = Cosines[i - 1] * cosine - Sines[i - 1] * sine;
            Sines[i] = Sines[i - 1] * cosine + Cosines[i - 1] * sine;
        }
    }
};

/// Corners from number 1 on, in whole registers. Result: not 0 when one is in doubt.
ORV_INLINE std::int64_t WalkAround(const EllipseForm &form, const Multiples &multiples, std::int64_t count,
                                   std::int32_t *columns, std::int32_t *rows) {
    typedef Image::Vector<std::int32_t, LaneCount * sizeof(std::int32_t)> Positions;
    Lanes cosine, sine;
    Image::LoadVector(cosine, reinterpret_cast<const char *>(multiples.Cosines));
    Image::LoadVector(sine, reinterpret_cast<const char *>(multiples.Sines));
    const double stepCosine = multiples.Cosines[LaneCount - 1], stepSine = multiples.Sines[LaneCount - 1];
    const double error = ErrorOf(count), errorX = form.A * error, errorY = form.B * error;
    Flags anyDoubts = {};
    for (std::int64_t i = 1; i < count; i += LaneCount) {
        Lanes x = form.A * cosine, y = form.B * sine;
        Flags doubts = {};
        RoundOrDoubt(x, errorX, doubts);
        RoundOrDoubt(y, errorY, doubts);
        if (form.IsTurned)
            TurnOrDoubt(form, x, y, doubts);
        anyDoubts |= doubts;
        Select(x, doubts, Lanes{} + static_cast<double>(InDoubt), x);
        const Positions wholeX = __builtin_convertvector(x, Positions),
                        wholeY = __builtin_convertvector(y, Positions);
        Image::StoreVector(reinterpret_cast<char *>(columns + i), wholeX);
        Image::StoreVector(reinterpret_cast<char *>(rows + i), wholeY);
        const Lanes nextCosine = cosine * stepCosine - sine * stepSine;
        sine = sine * stepCosine + cosine * stepSine;
        cosine = nextCosine;
    }
    std::int64_t any = 0;
    for (std::size_t lane = 0; lane < LaneCount; ++lane)
        any |= anyDoubts[lane];
    return any;
}

/// How many angles lie below a whole turn, and the first corner.
std::int64_t CountOf(double step) {
    const double steps = AngleSteps::WholeTurn / step, whole = std::round(steps);
    constexpr double margin = 1e-7; // the sums of a few thousand steps are far closer
    const bool isClear = std::fabs(steps - whole) > margin;
    return 1 + (isClear ? static_cast<std::int64_t>(steps) : AngleSteps(step).Count());
}

} // namespace

NearCorners::NearCorners(const EllipseForm &form) : Count(CountOf(form.Step)) {
    const Multiples multiples(form.Step);
    std::int64_t doubts = 0;
    Image::RunAtLevel([&form, &multiples, &doubts, count = Count, columns = X.data(), rows = Y.data()]()
                          ORV_INLINE_LAMBDA { doubts = WalkAround(form, multiples, count, columns, rows); });
    const auto put = [&](std::int64_t i, const Corner &corner) {
        X[static_cast<std::size_t>(i)] = static_cast<std::int32_t>(corner.X);
        Y[static_cast<std::size_t>(i)] = static_cast<std::int32_t>(corner.Y);
    };
    if (doubts != 0) {
        const AngleSteps angles(form.Step);
        for (std::int64_t i = 1; i < Count; ++i)
            if (X[static_cast<std::size_t>(i)] == InDoubt)
                put(i, CornerAt(form, angles.At(i)));
    }
    put(0, FirstCorner(form));
    put(Count, FirstCorner(form));
    constexpr double fewRows = 8;
    HasQuarters = !form.IsTurned && form.A >= form.B && form.B >= fewRows;
    for (std::size_t i = 0; i < Quarters.size(); ++i)
        Quarters[i] = static_cast<std::int64_t>(static_cast<double>(i + 1) * (AngleSteps::WholeTurn / 4) / form.Step);
    Reach = static_cast<std::int32_t>(form.IsTurned ? std::hypot(form.A, form.B) + 3 : std::max(form.A, form.B));
}

} // namespace Drawing

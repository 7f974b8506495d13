/* The model of lines and ellipses that begin and end far away: the steps are those told, but only those that can meet
 * the image are walked, found with numbers of 64 and 128 bits. */
#ifndef ORV_TESTS_CLIPPED_MODEL_H
#define ORV_TESTS_CLIPPED_MODEL_H

#include "Drawing/DrawingSupport.h"

namespace TestSupport {

/// A thin line of any length. After k steps along its longer axis it has gone so many along the other that the
/// distance to the straight line is least, the smaller number for halves. False when too many steps meet the image.
inline bool ModelClippedLine(ModelPlane &plane, ModelPoint from, ModelPoint to, const Ink &ink) {
    const std::int64_t dx = std::abs(to.X - from.X), dy = std::abs(to.Y - from.Y), steps = std::max(dx, dy);
    const std::int64_t sx = to.X > from.X ? 1 : -1, sy = to.Y > from.Y ? 1 : -1;
    if (steps == 0) {
        plane.PlotThin(from.X, from.Y, ink);
        return true;
    }
    long double start, slope, low = 0, high, slack = 1;
    if (plane.IsLinear()) {
        const auto xStep = static_cast<long double>(plane.XStep()), yStep = static_cast<long double>(plane.YStep());
        start = static_cast<long double>(plane.First()) + xStep * static_cast<long double>(from.X) +
                yStep * static_cast<long double>(from.Y);
        slope = (xStep * static_cast<long double>(sx * dx) + yStep * static_cast<long double>(sy * dy)) /
                static_cast<long double>(steps);
        low = static_cast<long double>(plane.Lowest());
        high = static_cast<long double>(plane.Highest());
        slack = std::abs(xStep) + std::abs(yStep);
    } else {
        start = static_cast<long double>(dx >= dy ? from.X : from.Y);
        slope = static_cast<long double>(dx >= dy ? sx : sy);
        high = static_cast<long double>((dx >= dy ? plane.Width() : plane.Height()) - 1);
    }
    const long double one = (low - slack - start) / slope, other = (high + slack - start) / slope;
    if (!std::isfinite(one) || std::abs(one - other) > 3e6L)
        return false;
    const long double last = static_cast<long double>(steps) - 1;
    const auto end = static_cast<std::int64_t>(std::clamp(std::max(one, other) + 1, -1.0L, last));
    for (auto k = static_cast<std::int64_t>(std::clamp(std::min(one, other), 0.0L, last)); k <= end; ++k) {
        // The least whole number of at least d k / steps - 1/2.
        const __int128_t halves = 2 * static_cast<__int128_t>(std::min(dx, dy)) * k - steps;
        const auto aside = halves <= 0 ? std::int64_t{0} : static_cast<std::int64_t>((halves - 1) / (2 * steps) + 1);
        plane.PlotThin(from.X + sx * (dx >= dy ? k : aside), from.Y + sy * (dx >= dy ? aside : k), ink);
    }
    return true;
}

/// The angles of an ellipse: sums of its step, one added after the other, as a loop would make them. While a sum
/// stays between two powers of two every addition adds the same rounded step, so that many are made at once.
class AngleSums {
public:
    explicit AngleSums(double ellipseStep) : step(ellipseStep), sum(ellipseStep) {}
    double Sum() const { return sum; }
    void Next() { sum += step; }
    /// Goes to a sum of at most target, and of not much less.
    void Approach(double target) {
        while (sum + 8 * step < target) {
            const double added = (sum + step) - sum;
            const double power = std::exp2(std::ilogb(sum) + 1);
            const double count = std::floor((std::min(target, power) - sum) / added) - 4;
            const double unit = power / 2 * std::numeric_limits<double>::epsilon();
            if (count < 1 || std::fmod(step, unit) == unit / 2)
                Next(); // a tie is rounded to even sums, so that added is not always the same
            else
                sum += count * added;
        }
    }

private:
    double step, sum;
};

/// Calls edge(previous, current) for all edges of an ellipse with points near an image's rows; for thin lines in
/// evenly spaced planes, near any of its addresses.
template <class Edge>
void WalkNearEdges(const ModelPlane &plane, const ModelEllipse &ellipse, ModelPoint centre, std::int64_t thickness,
                   bool byAddress, const Edge &edge) {
    const double reach = 2 * std::max(std::abs(ellipse.A() / ellipse.B()), std::abs(ellipse.B() / ellipse.A())) + 8 +
                         static_cast<double>(thickness);
    const double xWeight = byAddress ? static_cast<double>(plane.XStep()) : 0.0;
    const double yWeight = byAddress ? static_cast<double>(plane.YStep()) : 1.0;
    const double slack = reach * (std::abs(xWeight) + std::abs(yWeight));
    const double offset = xWeight * static_cast<double>(centre.X) + yWeight * static_cast<double>(centre.Y);
    const double low = (byAddress ? static_cast<double>(plane.Lowest() - plane.First()) : 0.0) - slack - offset;
    const double high =
        (byAddress ? static_cast<double>(plane.Highest() - plane.First()) : static_cast<double>(plane.Height())) +
        slack - offset;
    const TMatrix &m = ellipse.Matrix();
    const double cosine = ellipse.A() * (xWeight * m.A11 + yWeight * m.A21);
    const double sine = ellipse.B() * (xWeight * m.A12 + yWeight * m.A22);
    const double radius = std::hypot(cosine, sine), phase = std::atan2(sine, cosine);
    if (low > radius || high < -radius)
        return;
    const double nearest = std::acos(std::clamp(high / radius, -1.0, 1.0));
    const double farthest = std::acos(std::clamp(low / radius, -1.0, 1.0));
    const double margin = 5e-8 + 6 * ellipse.Step();
    const auto walk = [&](double from, double to) {
        AngleSums angles(ellipse.Step());
        ModelPoint previous = ellipse.FirstPoint();
        if (from - margin > ellipse.Step()) {
            angles.Approach(from - margin);
            previous = ellipse.PointAt(angles.Sum());
            angles.Next();
        }
        for (; angles.Sum() < ModelEllipse::FullTurn && angles.Sum() < to + margin; angles.Next()) {
            const ModelPoint current = ellipse.PointAt(angles.Sum());
            edge(previous, current);
            previous = current;
        }
        if (angles.Sum() >= ModelEllipse::FullTurn)
            edge(previous, ellipse.FirstPoint());
    };
    for (int turn = -2; turn <= 2; ++turn)
        for (const auto &[from, to] : {std::pair{nearest, farthest}, std::pair{-farthest, -nearest}}) {
            const double begin = from + phase + turn * ModelEllipse::FullTurn;
            const double end = to + phase + turn * ModelEllipse::FullTurn;
            if (end + margin >= 0 && begin - margin <= ModelEllipse::FullTurn)
                walk(std::max(begin, 0.0), end);
        }
}

inline void ModelClippedOutline(ModelPlane &plane, const EllipseCall &call) {
    const bool byAddress = call.Thickness == 1 && plane.IsLinear();
    WalkNearEdges(plane, ModelEllipse({call.X, call.Y}, call.A, call.B, call.Rotation), {call.X, call.Y},
                  call.Thickness, byAddress, [&](ModelPoint previous, ModelPoint current) {
                      ModelLine(plane, previous, current, call.Thickness, {call.Value, call.Mode});
                  });
}

inline void ModelClippedFill(ModelPlane &plane, const EllipseCall &call) {
    std::vector<ModelSpan> spans(static_cast<std::size_t>(plane.Height()));
    WalkNearEdges(plane, ModelEllipse({call.X, call.Y}, call.A, call.B, call.Rotation), {call.X, call.Y}, 1, false,
                  [&](ModelPoint previous, ModelPoint current) {
                      const std::int64_t top = std::max<std::int64_t>(std::min(previous.Y, current.Y), 0);
                      const std::int64_t bottom = std::min(std::max(previous.Y, current.Y), plane.Height() - 1);
                      for (std::int64_t y = top; y <= bottom; ++y)
                          spans[static_cast<std::size_t>(y)].Cut(y, current, previous);
                  });
    for (std::int64_t y = 0; y < plane.Height(); ++y)
        spans[static_cast<std::size_t>(y)].Write(plane, y, {call.Value, call.Mode});
}

} // namespace TestSupport

#endif

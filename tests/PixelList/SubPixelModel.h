/* FindSubPixelMaxima in its plainest form: marks on a grid, one scan of all marks per maximum, each fit by itself. */
#ifndef ORV_TESTS_SUB_PIXEL_MODEL_H
#define ORV_TESTS_SUB_PIXEL_MODEL_H

#include "PixelList/MatrixModel.h"
#include "PixelList/MaximaModel.h"

#include <optional>

namespace TestSupport {

/// A conversion toward zero: what does not fit the register of 32 or 64 bits becomes its lowest number, what does not
/// fit the type loses its upper bits.
template <class T>
T TruncatedThreshold(double value) {
    const double twoTo63 = 9223372036854775808.0;
    const auto register64 = [&](double v) {
        return v >= -twoTo63 && v < twoTo63 ? static_cast<std::int64_t>(v) : Lowest64;
    };
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else if constexpr (std::is_same_v<T, std::uint64_t>)
        return value >= twoTo63 ? static_cast<std::uint64_t>(register64(value - twoTo63)) | (std::uint64_t{1} << 63)
                                : static_cast<std::uint64_t>(register64(value));
    else if constexpr (sizeof(T) == 8 || std::is_same_v<T, std::uint32_t>)
        return static_cast<T>(register64(value));
    else
        return value > -2147483649.0 && value < 2147483648.0
                   ? static_cast<T>(static_cast<std::int32_t>(value))
                   : static_cast<T>(std::numeric_limits<std::int32_t>::min());
}

template <class T>
class SubPixelModel {
public:
    /// The rectangle lies inside the picture.
    SubPixelModel(const PixelGrid<T> &picture, const PixelRectangle &inside)
        : area(inside), view(picture.Cut(inside)), marks(view.Width, view.Height) {}

    Spots Search(const SubPixelChoice &choice) {
        MarkCandidates(choice.Threshold);
        Spots spots;
        while (const auto place = Strongest()) {
            const auto [x, y] = *place;
            spots.push_back({static_cast<double>(area.Left + x), static_cast<double>(area.Top + y),
                             static_cast<double>(view.At(x, y))});
            ClearAround(x, y, std::max<std::int64_t>(choice.Locality, 0));
        }
        for (Spot &spot : spots)
            if (choice.Radius > 0)
                Refine(spot, choice);
        return spots;
    }

private:
    PixelRectangle area;
    PixelGrid<T> view;
    PixelGrid<std::uint8_t> marks;

    void MarkCandidates(double threshold) {
        for (std::intptr_t y = 0; y < view.Height; ++y)
            for (std::intptr_t x = 0; x < view.Width; ++x) {
                const T value = view.At(x, y);
                bool isCandidate = false;
                if constexpr (std::is_integral_v<T>)
                    isCandidate = value >= TruncatedThreshold<T>(threshold);
                else
                    isCandidate = static_cast<double>(value) >= threshold;
                for (std::intptr_t v = y - 1; v <= y + 1; ++v)
                    for (std::intptr_t u = x - 1; u <= x + 1; ++u)
                        isCandidate = isCandidate && !(view.Inside(u, v) && view.At(u, v) > value);
                marks.At(x, y) = isCandidate;
            }
    }

    std::optional<std::pair<std::intptr_t, std::intptr_t>> Strongest() const {
        T best = std::numeric_limits<T>::lowest();
        std::optional<std::pair<std::intptr_t, std::intptr_t>> place;
        for (std::intptr_t y = 0; y < view.Height; ++y)
            for (std::intptr_t x = 0; x < view.Width; ++x)
                if (marks.At(x, y) != 0 && view.At(x, y) > best) {
                    best = view.At(x, y);
                    place = {x, y};
                }
        return place;
    }

    void ClearAround(std::intptr_t x, std::intptr_t y, std::int64_t locality) {
        for (std::intptr_t v = 0; v < view.Height; ++v)
            for (std::intptr_t u = 0; u < view.Width; ++u)
                if (std::abs(u - x) <= locality && std::abs(v - y) <= locality)
                    marks.At(u, v) = 0;
    }

    void Refine(Spot &spot, const SubPixelChoice &choice) const {
        const auto x = static_cast<std::intptr_t>(std::trunc(spot.X + 0.5)) - area.Left;
        const auto y = static_cast<std::intptr_t>(std::trunc(spot.Y + 0.5)) - area.Top;
        if (choice.Fit == FitQuadratic)
            StepQuadratic(spot, x, y);
        if (choice.Fit != FitParaboloid && choice.Fit != FitGaussian)
            return;
        // Columns outside, rows inside, as the rows of the matrix are ordered.
        PlainVector window;
        for (std::intptr_t i = -choice.Radius; i <= choice.Radius; ++i)
            for (std::intptr_t j = -choice.Radius; j <= choice.Radius; ++j)
                window.push_back(static_cast<double>(view.Clamped(x + i, y + j)));
        if (choice.Fit == FitParaboloid)
            FitSurface(spot, window, choice.Radius);
        else
            FitLogarithms(spot, window, choice.Radius);
    }

    void StepQuadratic(Spot &spot, std::intptr_t x, std::intptr_t y) const {
        // Differences are of the pixel's type; sums of narrow ones are of 32 bits.
        using Sum = std::conditional_t<(sizeof(T) < 4), std::int32_t, T>;
        using Real = std::conditional_t<std::is_same_v<T, float>, float, double>;
        const auto plus = [](Sum a, Sum b) { return Wrapped<Sum>(a, b, [](auto p, auto q) { return p + q; }); };
        const auto minus = [](Sum a, Sum b) { return Wrapped<Sum>(a, b, [](auto p, auto q) { return p - q; }); };
        const auto difference = [&](std::intptr_t i, std::intptr_t j) -> Sum {
            return Wrapped<T>(view.Clamped(x + i, y + j), view.At(x, y), [](auto p, auto q) { return p - q; });
        };
        const Sum left = difference(-1, 0), right = difference(1, 0), above = difference(0, -1),
                  below = difference(0, 1);
        const Sum cross =
            minus(minus(plus(difference(1, 1), difference(-1, -1)), difference(1, -1)), difference(-1, 1));
        const Real a = Real(0.5) * static_cast<Real>(plus(right, left));
        const Real c = Real(0.25) * static_cast<Real>(cross);
        const Real e = Real(0.5) * static_cast<Real>(plus(below, above));
        const Real d = Real(4) * a * e - c * c;
        if (d == Real(0))
            return;
        const Real gx = Real(0.5) * static_cast<Real>(minus(right, left));
        const Real gy = Real(0.5) * static_cast<Real>(minus(below, above));
        spot.X += static_cast<double>((Real(-2) * e * gx + c * gy) / d);
        spot.Y += static_cast<double>((gx * c - Real(2) * a * gy) / d);
    }

    /// An operation modulo the range of an integer type; as it is for a real one.
    template <class N, class Operation>
    static N Wrapped(N a, N b, const Operation &operation) {
        if constexpr (std::is_integral_v<N>)
            return static_cast<N>(operation(static_cast<std::uint64_t>(a), static_cast<std::uint64_t>(b)));
        else
            return operation(a, b);
    }

    static void FitLogarithms(Spot &spot, PlainVector window, int radius) {
        double smallest = SmallestStep;
        for (const double value : window)
            smallest = value < smallest ? value : smallest;
        const double offset = smallest < SmallestStep ? SmallestStep - smallest : 0.0;
        for (double &value : window)
            value = std::log(smallest < SmallestStep ? value + offset : value);
        FitSurface(spot, window, radius);
        spot.Value = std::exp(spot.Value) - offset;
    }

    /// z = a (x² + y²) - b x - c y + d by least squares. A flat window leaves the pixel as it is.
    static void FitSurface(Spot &spot, const PlainVector &window, int radius) {
        if (std::all_of(window.begin(), window.end(), [&](double value) { return value == window[0]; }))
            return;
        PlainMatrix rows;
        for (int i = -radius; i <= radius; ++i)
            for (int j = -radius; j <= radius; ++j) {
                const double x = i + spot.X, y = j + spot.Y;
                rows.push_back({x * x + y * y, -x, -y, 1.0});
            }
        const PlainMatrix transposed = Transposed(rows);
        const auto inverse = Inverted(Product(transposed, rows));
        if (!inverse)
            return;
        const PlainVector abcd = Product(Product(*inverse, transposed), window);
        const double x0 = abcd[1] / (2.0 * abcd[0]), y0 = abcd[2] / (2.0 * abcd[0]);
        spot = {x0, y0, abcd[3] - abcd[0] * (x0 * x0) - abcd[0] * (y0 * y0)};
    }
};

} // namespace TestSupport

#endif

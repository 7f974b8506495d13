#include "PixelList/SubPixelFits.h"

#include <algorithm>
#include <optional>
#include <type_traits>

namespace PixelList {

using namespace nrtl::numerics;

namespace {

/// Sums of differences are taken in 32 bits for 8-bit and 16-bit pixels, in the pixel's own type for others, the rest
/// of the step in float for float pixels and in double for all others.
template <class T>
struct QuadraticTypes {
    using Sum =
        std::conditional_t<std::is_floating_point_v<T>, T, std::conditional_t<sizeof(T) <= 2, std::int32_t, T>>;
    using Real = std::conditional_t<std::is_same_v<T, float>, float, double>;
};

/// a + b or a - b in a type, where integers wrap.
template <class Number>
Number Add(Number a, Number b) {
    if constexpr (std::is_integral_v<Number>) {
        using Word = std::make_unsigned_t<Number>;
        return static_cast<Number>(static_cast<Word>(static_cast<Word>(a) + static_cast<Word>(b)));
    } else {
        return a + b;
    }
}
template <class Number>
Number Subtract(Number a, Number b) {
    if constexpr (std::is_integral_v<Number>) {
        using Word = std::make_unsigned_t<Number>;
        return static_cast<Number>(static_cast<Word>(static_cast<Word>(a) - static_cast<Word>(b)));
    } else {
        return a - b;
    }
}

} // namespace

template <class T>
void FitQuadraticStep(const Neighbourhood<T> &window, double &x, double &y) {
    using Sum = typename QuadraticTypes<T>::Sum;
    using Real = typename QuadraticTypes<T>::Real;
    Sum difference[9];
    for (std::size_t i = 0; i < 9; ++i) // Required: differences of integers wrap in the pixel's own type.
        difference[i] = static_cast<Sum>(Subtract(window.Pixels[i], window.Pixels[4]));
    const auto [topLeft, top, topRight, left, centre, right, bottomLeft, bottom, bottomRight] = difference;
    (void)centre;
    const auto half = static_cast<Real>(0.5);
    const Real a = half * static_cast<Real>(Add(right, left));
    const Real c = static_cast<Real>(0.25) *
                   static_cast<Real>(Subtract(Subtract(Add(bottomRight, topLeft), topRight), bottomLeft));
    const Real e = half * static_cast<Real>(Add(bottom, top));
    const Real d = 4 * a * e - c * c;
    if (d == 0)
        return;
    const Real gx = half * static_cast<Real>(Subtract(right, left));
    const Real gy = half * static_cast<Real>(Subtract(bottom, top));
    x += static_cast<double>((-2 * e * gx + c * gy) / d);
    y += static_cast<double>((gx * c - 2 * a * gy) / d);
}

namespace {

/// One row per pixel of the window, column by column.
struct Equations {
    Matrix Rows;
    Vector Values;
};

Equations EquationsOf(const FitWindow &window) {
    const std::size_t count = window.Values.size();
    Equations equations{Matrix(count, 4), Vector(count)};
    std::size_t row = 0;
    for (std::int32_t i = -window.Radius; i <= window.Radius; ++i)
        for (std::int32_t j = -window.Radius; j <= window.Radius; ++j, ++row) {
            const double x = i + window.Pixel.At(0), y = j + window.Pixel.At(1);
            auto &line = equations.Rows[row];
            line[0] = x * x + y * y;
            line[1] = -x;
            line[2] = -y;
            line[3] = 1;
            const std::int32_t place = (j + window.Radius) * window.Width + i + window.Radius;
            equations.Values[row] = window.Values[static_cast<std::size_t>(place)];
        }
    return equations;
}

std::optional<Matrix> TryInvert(const Matrix &matrix) {
    try {
        return Invert(matrix);
    } catch (const std::exception *error) {
        delete error;
    } catch (...) { // nothing of a fit reaches the caller
    }
    return std::nullopt;
}

bool IsFlat(const Vector &values) {
    return std::all_of(values.begin(), values.end(), [&](double value) { return value == values[0]; });
}

} // namespace

CPixel ParaboloidFit(const FitWindow &window) {
    // Required: a flat window counts as one with a singular matrix, though the matrix knows nothing of the values.
    if (IsFlat(window.Values))
        return window.Pixel;
    const Equations equations = EquationsOf(window);
    Matrix transposed = equations.Rows;
    Transpose(transposed);
    const std::optional<Matrix> inverse = TryInvert(Multiply(transposed, equations.Rows));
    if (!inverse)
        return window.Pixel;
    const Vector fit = Multiply(Multiply(*inverse, transposed), equations.Values);
    const double a = fit[0], x = fit[1] / (2 * a), y = fit[2] / (2 * a);
    CPixel result(window.Pixel.Dimension);
    result.At(0) = x;
    result.At(1) = y;
    result.At(2) = fit[3] - a * (x * x) - a * (y * y);
    return result;
}

CPixel GaussianFit(FitWindow window) {
    const double offset = TakeLogarithms(window.Values);
    CPixel result = ParaboloidFit(window);
    result.At(2) = std::exp(result.At(2)) - offset;
    return result;
}

template void FitQuadraticStep(const Neighbourhood<char> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<unsigned char> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<short> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<unsigned short> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<int> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<unsigned int> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<long> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<unsigned long> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<float> &, double &, double &);
template void FitQuadraticStep(const Neighbourhood<double> &, double &, double &);

} // namespace PixelList

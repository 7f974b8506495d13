#include "Scan/PlaneStatistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include "Image/KernelLevel.h"
#include "Scan/PixelType.h"
#include "TruncateTo.h"

namespace Scan {
namespace {

using Image::PlaneView;

/// Pixels that are counted in bins.
template <class T>
constexpr bool IsCounted = std::is_integral_v<T> && sizeof(T) <= 2;

/// The bin of a pixel: its distance from the lowest value of its type.
template <class T>
ORV_INLINE constexpr std::uint32_t BinOf(T value) {
    return static_cast<std::uint32_t>(static_cast<int>(value) - static_cast<int>(std::numeric_limits<T>::lowest()));
}

struct PowerSums {
    double Count = 0;
    double Sum = 0;
    double Squares = 0;
};

MeanDeviation ResultOf(const PowerSums &sums) {
    const double mean = sums.Sum / sums.Count;
    const double variance = sums.Squares / sums.Count - mean * mean;
    return {mean, variance < 0 ? 0 : std::sqrt(variance)};
}

template <class T, class Visit>
void VisitPixels(const PlaneView &plane, PixelWalk walk, Visit &&visit) {
    if (walk == PixelWalk::OneByOne)
        return VisitOneByOne<T>(plane, visit);
    VisitPieces<T>(plane, [&visit](const T *pixels, std::intptr_t count) {
        for (std::intptr_t i = 0; i < count; ++i)
            visit(pixels[i]);
    });
}

// ---- mean and deviation

// Required: the bin's number stands for the value, so that the mean of a signed plane comes out too high by half the
// range of its type.
template <class T>
PowerSums SumBins(const PlaneView &plane, PixelWalk walk) {
    std::vector<std::uint32_t> counts(std::size_t{1} << (8 * sizeof(T)));
    VisitPixels<T>(plane, walk, [&counts](T pixel) { ++counts[BinOf(pixel)]; });
    PowerSums sums;
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        const auto value = static_cast<double>(bin);
        const auto count = static_cast<double>(counts[bin]);
        sums.Count += count;
        sums.Sum += count * value;
        sums.Squares += count * value * value;
    }
    return sums;
}

struct WholeSums {
    std::uint64_t Sum = 0;
    std::uint64_t Squares = 0;
};

template <class T>
ORV_INLINE void AddPiece(const T *pixels, std::intptr_t count, WholeSums &sums) {
    // A piece's sum fits 32 bits; its squares do so for 8-bit pixels.
    using Square = std::conditional_t<sizeof(T) == 1, std::uint32_t, std::uint64_t>;
    static_assert(ChunkPixels<T> <= 0x10000 / static_cast<int>(sizeof(T)));
    std::uint32_t sum = 0;
    Square squares = 0;
    for (std::intptr_t i = 0; i < count; ++i) {
        const std::uint32_t bin = BinOf(pixels[i]);
        sum += bin;
        squares += bin * bin;
    }
    sums.Sum += sum;
    sums.Squares += squares;
}

/// True, with the sums that the bins give, where these are whole numbers that a double holds: every term and every
/// partial sum of the bins is one then as well, and none of them is rounded.
template <class T>
bool SumExactly(const PlaneView &plane, PowerSums &sums) {
    const std::intptr_t mostPixels = std::numeric_limits<std::uint32_t>::max(); // beyond, a counter of a bin may wrap
    const std::uint64_t largestWhole = std::uint64_t{1} << std::numeric_limits<double>::digits;
    if (plane.Width > mostPixels / plane.Height)
        return false;
    WholeSums whole;
    VisitPieces<T>(plane, [&whole](const T *pixels, std::intptr_t count) {
        WholeSums *const total = &whole;
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { AddPiece(pixels, count, *total); });
    });
    sums = {static_cast<double>(plane.Width * plane.Height), static_cast<double>(whole.Sum),
            static_cast<double>(whole.Squares)};
    return whole.Squares <= largestWhole;
}

// Required: the square of a 32-bit pixel wraps at 32 bits; that of a signed one counts as unsigned, that of an
// unsigned one as signed.
double SquareOf(int pixel) {
    const auto value = static_cast<unsigned int>(pixel);
    return static_cast<double>(value * value);
}
double SquareOf(unsigned int pixel) {
    return static_cast<double>(static_cast<int>(pixel * pixel));
}
template <class T>
double SquareOf(T pixel) {
    const auto value = static_cast<double>(pixel);
    return value * value;
}

/// In the order of the pixels: each sum is rounded as it goes.
template <class T>
PowerSums SumPixels(const PlaneView &plane, PixelWalk walk) {
    PowerSums sums;
    VisitPixels<T>(plane, walk, [&sums](T pixel) {
        sums.Sum += static_cast<double>(pixel);
        sums.Squares += SquareOf(pixel);
    });
    sums.Count = static_cast<double>(plane.Width) * static_cast<double>(plane.Height);
    return sums;
}

// ---- extremes

template <class T>
struct Range {
    T Lowest = std::numeric_limits<T>::max();
    T Highest = std::numeric_limits<T>::lowest();

    ORV_INLINE void Take(T value) {
        Lowest = value < Lowest ? value : Lowest;
        Highest = value > Highest ? value : Highest;
    }
};

template <class T>
ORV_INLINE void WidenWithIntegers(const T *pixels, std::intptr_t count, Range<T> &range) {
    Range<T> wide = range;
    for (std::intptr_t i = 0; i < count; ++i)
        wide.Take(pixels[i]);
    range = wide;
}

/// The lanes of some registers each keep a range of their own: the compiler can't put comparisons of floats in
/// another order by itself. What is no number passes in any of them.
template <class T>
ORV_INLINE void WidenWithFloats(const T *pixels, std::intptr_t count, Range<T> &range) {
    using Register = Image::Vector<T, 16>;
    constexpr std::intptr_t registers = 4;
    constexpr std::intptr_t lanes = sizeof(Register) / sizeof(T);
    Range<T> wide = range;
    Register lowest[registers], highest[registers];
    for (std::intptr_t k = 0; k < registers; ++k) {
        lowest[k] = Register{} + wide.Lowest;
        highest[k] = Register{} + wide.Highest;
    }
    std::intptr_t done = 0;
    for (; done + registers * lanes <= count; done += registers * lanes)
        for (std::intptr_t k = 0; k < registers; ++k) {
            Register value;
            Image::LoadVector(value, reinterpret_cast<const char *>(pixels + done + k * lanes));
            lowest[k] = value < lowest[k] ? value : lowest[k];
            highest[k] = value > highest[k] ? value : highest[k];
        }
    for (std::intptr_t k = 0; k < registers; ++k)
        for (std::intptr_t lane = 0; lane < lanes; ++lane) {
            wide.Lowest = std::min(wide.Lowest, lowest[k][lane]);
            wide.Highest = std::max(wide.Highest, highest[k][lane]);
        }
    for (; done < count; ++done)
        wide.Take(pixels[done]);
    range = wide;
}

template <class T>
Range<T> RangeOfPixels(const PlaneView &plane, PixelWalk walk) {
    Range<T> range;
    if (walk == PixelWalk::OneByOne) {
        VisitOneByOne<T>(plane, [&range](T pixel) { range.Take(pixel); });
        return range;
    }
    VisitPieces<T>(plane, [&range](const T *pixels, std::intptr_t count) {
        Range<T> *const widened = &range;
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
            if constexpr (std::is_floating_point_v<T>)
                WidenWithFloats(pixels, count, *widened);
            else
                WidenWithIntegers(pixels, count, *widened);
        });
    });
    return range;
}

// ---- magnitude

/// As a double, which holds the magnitude of the lowest integer as well.
template <class T>
double MagnitudeOf(T value) {
    return std::abs(static_cast<double>(value));
}

// Required: a float pixel counts by what it is as a 32-bit integer, so that fractions and values beyond do not count
// as such.
template <class T>
double GreatestMagnitudeOfFloats(const PlaneView &plane, PixelWalk walk) {
    double greatest = 0;
    VisitPixels<T>(plane, walk, [&greatest](T pixel) {
        greatest = std::max(greatest, MagnitudeOf(orvBase::TruncateTo<std::int32_t>(static_cast<double>(pixel))));
    });
    return greatest;
}

} // namespace

MeanDeviation MeasureMeanDeviation(const PlaneView &plane, TDataType type, PixelWalk walk) {
    PowerSums sums;
    ForPixelType(type, [&]<class T>() {
        if constexpr (IsCounted<T>) {
            if (walk == PixelWalk::OneByOne || !SumExactly<T>(plane, sums))
                sums = SumBins<T>(plane, walk);
        } else {
            sums = SumPixels<T>(plane, walk);
        }
    });
    return ResultOf(sums);
}

Extremes MeasureExtremes(const PlaneView &plane, TDataType type, PixelWalk walk) {
    Extremes found = {};
    ForPixelType(type, [&]<class T>() {
        const Range<T> range = RangeOfPixels<T>(plane, walk);
        found = {static_cast<double>(range.Lowest), static_cast<double>(range.Highest)};
    });
    return found;
}

double MeasureGreatestMagnitude(const PlaneView &plane, TDataType type, PixelWalk walk) {
    double greatest = 0;
    ForPixelType(type, [&]<class T>() {
        if constexpr (std::is_floating_point_v<T>) {
            greatest = GreatestMagnitudeOfFloats<T>(plane, walk);
        } else {
            const Range<T> range = RangeOfPixels<T>(plane, walk);
            greatest = std::max(MagnitudeOf(range.Highest), std::is_signed_v<T> ? MagnitudeOf(range.Lowest) : 0.0);
        }
    });
    return greatest;
}

} // namespace Scan

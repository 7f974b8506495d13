#include "Scan/LinearMap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>

#include "Image/KernelLevel.h"
#include "Scan/ByteLookup.h"
#include "Scan/Limiter.h"
#include "Scan/PixelType.h"
#include "TruncateTo.h"

namespace Scan {
namespace {

using Image::PlaneView;

/// Gain 1 and offset 0, with what the pixel type decides.
LinearMap IdentityOf(TDataType type) {
    LinearMap map = {};
    ForPixelType(type, [&map]<class T>() {
        map = {1.0, 0.0, std::is_integral_v<T> ? 0.5 : 0.0, static_cast<double>(std::numeric_limits<T>::lowest()),
               static_cast<double>(std::numeric_limits<T>::max())};
    });
    return map;
}

ORV_INLINE double Mapped(const LinearMap &map, double value) {
    return value * map.Gain + map.Offset + map.Rounding;
}

/// What is stored for a pixel: the map's own words.
template <class T>
ORV_INLINE T StoredFor(const LinearMap &map, T pixel) {
    const double value = Mapped(map, static_cast<double>(pixel));
    if constexpr (std::is_integral_v<T> && sizeof(T) <= 2)
        return orvBase::TruncateTo<T>(LimitTo(value, map.LowerLimit, map.UpperLimit));
    if (value > map.UpperLimit)
        return std::numeric_limits<T>::max();
    if (value < map.LowerLimit)
        return std::numeric_limits<T>::lowest();
    if constexpr (std::is_integral_v<T>)
        return orvBase::TruncateTo<T>(value);
    else
        return static_cast<T>(value);
}

/// Pixels of a byte: 256 values, each mapped once.
template <class T>
void ApplyByTable(const LinearMap &map, const PlaneView &source, const PlaneView &target) {
    ByteTable table;
    for (std::size_t index = 0; index < table.size(); ++index)
        table[index] = static_cast<std::uint8_t>(StoredFor(map, static_cast<T>(index)));
    ConvertPieces<std::uint8_t, std::uint8_t>(source, target,
                                              [&table](std::uint8_t *to, const std::uint8_t *from,
                                                       std::intptr_t count) { LookUp(table, to, from, count); });
}

/// True when no pixel of 16 bits is led out of the 32-bit integers: a linear function is within its ends, rounding
/// included. Truncating before limiting is the same as after it then, the limits being whole numbers.
template <class T>
bool StaysWithin32Bits(const LinearMap &map) {
    const auto fits = [&map](T pixel) { return std::abs(Mapped(map, static_cast<double>(pixel))) < 2147483648.0; };
    return fits(std::numeric_limits<T>::lowest()) && fits(std::numeric_limits<T>::max());
}

template <class T>
ORV_INLINE void MapNarrowPixels(const LinearMap &map, T *__restrict to, const T *__restrict from,
                                std::intptr_t count) {
    constexpr int lowest = std::numeric_limits<T>::lowest();
    constexpr int highest = std::numeric_limits<T>::max();
    const LinearMap held = map;
    for (std::intptr_t i = 0; i < count; ++i) {
        const int whole = static_cast<int>(Mapped(held, static_cast<double>(from[i])));
        to[i] = static_cast<T>(std::min(std::max(whole, lowest), highest));
    }
}

/// Limits before it converts, which says the same for floats and has no branch.
template <class T>
ORV_INLINE void MapFloats(const LinearMap &map, T *__restrict to, const T *__restrict from, std::intptr_t count) {
    const LinearMap held = map;
    for (std::intptr_t i = 0; i < count; ++i) {
        const double value = Mapped(held, static_cast<double>(from[i]));
        const double atMost = value > held.UpperLimit ? held.UpperLimit : value;
        to[i] = static_cast<T>(atMost < held.LowerLimit ? held.LowerLimit : atMost);
    }
}

template <class T>
ORV_INLINE void MapPixels(const LinearMap &map, T *__restrict to, const T *__restrict from, std::intptr_t count) {
    const LinearMap held = map;
    for (std::intptr_t i = 0; i < count; ++i)
        to[i] = StoredFor(held, from[i]);
}

template <class T>
void ApplyInPieces(const LinearMap &map, const PlaneView &source, const PlaneView &target) {
    const auto apply = [&](auto mapPiece) {
        ConvertPieces<T, T>(source, target, [&map, mapPiece](T *to, const T *from, std::intptr_t count) {
            const LinearMap *const used = &map;
            Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { mapPiece(*used, to, from, count); });
        });
    };
    if constexpr (std::is_floating_point_v<T>)
        return apply([](auto... arguments) ORV_INLINE_LAMBDA { MapFloats(arguments...); });
    if constexpr (sizeof(T) == 2)
        if (StaysWithin32Bits<T>(map))
            return apply([](auto... arguments) ORV_INLINE_LAMBDA { MapNarrowPixels(arguments...); });
    apply([](auto... arguments) ORV_INLINE_LAMBDA { MapPixels(arguments...); });
}

} // namespace

LinearMap MapToMeanDeviation(TDataType type, const MeanDeviation &measured, double wantedMean,
                             double wantedDeviation) {
    LinearMap map = IdentityOf(type);
    const double mean = LimitTo(wantedMean, map.LowerLimit, map.UpperLimit);
    const double deviation = LimitTo(wantedDeviation, 0.0, map.UpperLimit * map.UpperLimit);
    map.Gain = measured.Deviation != 0 && deviation != 0 ? deviation / measured.Deviation : 1.0;
    map.Offset = mean - map.Gain * measured.Mean;
    return map;
}

LinearMap MapToExtremes(TDataType type, const Extremes &measured, double wantedMinimum, double wantedMaximum) {
    LinearMap map = IdentityOf(type);
    const double minimum = LimitTo(wantedMinimum, map.LowerLimit, map.UpperLimit);
    const double maximum = LimitTo(wantedMaximum, map.LowerLimit, map.UpperLimit);
    if (measured.Minimum != measured.Maximum && minimum != maximum)
        map.Gain = (maximum - minimum) / (measured.Maximum - measured.Minimum);
    map.Offset = maximum - map.Gain * measured.Maximum;
    return map;
}

void ApplyLinearMap(const LinearMap &map, TDataType type, const PlaneView &source, const PlaneView &target,
                    PixelWalk walk) {
    ForPixelType(type, [&]<class T>() {
        if (walk == PixelWalk::OneByOne)
            ConvertOneByOne<T, T>(source, target, [&map](T pixel) { return StoredFor(map, pixel); });
        else if constexpr (sizeof(T) == 1)
            ApplyByTable<T>(map, source, target);
        else
            ApplyInPieces<T>(map, source, target);
    });
}

} // namespace Scan

/* Geometry records compared bit for bit (any two NaN count as equal), and random ones. */
#ifndef ORV_TESTS_EXACT_RECORDS_H
#define ORV_TESTS_EXACT_RECORDS_H

#include "Support/ImageAccess.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace TestSupport {

inline constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double Infinity = std::numeric_limits<double>::infinity();
inline constexpr TMatrix IdentityMatrix{1.0, 0.0, 0.0, 1.0};

inline bool SameDouble(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

/// Works for every record, since all are doubles and nothing else.
template <class Record>
testing::AssertionResult SameBits(const Record &actual, const Record &expected) {
    constexpr std::size_t count = sizeof(Record) / sizeof(double);
    using Doubles = std::array<double, count>;
    const auto a = std::bit_cast<Doubles>(actual);
    const auto e = std::bit_cast<Doubles>(expected);
    for (std::size_t i = 0; i < count; ++i)
        if (!SameDouble(a[i], e[i]))
            return testing::AssertionFailure() << "double " << i << " is " << testing::PrintToString(a[i])
                                               << " instead of " << testing::PrintToString(e[i]);
    return testing::AssertionSuccess();
}

/// Doubles of many magnitudes and both signs, from a fixed seed.
class RandomDoubles {
public:
    explicit RandomDoubles(std::uint32_t seed) : random(seed) {}
    double Next() {
        const double mantissa = std::uniform_real_distribution<double>(-2.0, 2.0)(random);
        return std::ldexp(mantissa, std::uniform_int_distribution<int>(-12, 12)(random));
    }
    TMatrix Matrix() { return {Next(), Next(), Next(), Next()}; }
    TCoordinateMap Map() { return {Next(), Next(), Matrix()}; }
    TArea Area() { return {Next(), Next(), Next(), Next(), Next(), Next()}; }

private:
    std::mt19937 random;
};

} // namespace TestSupport

#endif

/* Random input of the maxima searches: pictures with plateaus of few grey levels and with the extremes of their type,
 * rectangles, localities and thresholds of every kind. */
#ifndef ORV_TESTS_RANDOM_PICTURES_H
#define ORV_TESTS_RANDOM_PICTURES_H

#include "PixelList/MaximaSupport.h"

#include <cstdlib>
#include <functional>
#include <random>

namespace TestSupport {

struct PictureSize {
    std::intptr_t Width, Height;
};

class RandomPictures {
public:
    explicit RandomPictures(int number) : random(static_cast<std::uint64_t>(number) * 2654435761u + 17u) {}

    std::int64_t Draw(std::int64_t low, std::int64_t high) {
        return low + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(high - low + 1));
    }
    bool OneIn(std::int64_t count) { return Draw(1, count) == 1; }
    template <class T>
    T OneOf(const std::vector<T> &values) {
        return values[static_cast<std::size_t>(Draw(0, std::ssize(values) - 1))];
    }

    PictureSize Size() {
        const auto side = [this] { return OneIn(4) ? Draw(1, 3) : Draw(3, 17); };
        return OneIn(20) ? PictureSize{1, 1} : PictureSize{side(), side()};
    }

    /// A few neighbouring values of a type, at its lower end, at its upper end, around 0 or anywhere.
    template <class T>
    PixelGrid<T> Levels(const PictureSize &size, std::int64_t levels) {
        const T start = OneOf<T>({std::numeric_limits<T>::lowest(), static_cast<T>(std::numeric_limits<T>::max()),
                                  static_cast<T>(0), Any<T>()});
        PixelGrid<T> grid(size.Width, size.Height);
        for (T &pixel : grid.Values)
            pixel = Step(start, Draw(0, levels - 1));
        return grid;
    }

    /// Few levels, any values, or slopes with a few flat places.
    template <class T>
    PixelGrid<T> Picture(const PictureSize &size) {
        const std::int64_t kind = Draw(0, 5);
        if (kind < 3)
            return Levels<T>(size, kind + 2);
        PixelGrid<T> grid(size.Width, size.Height);
        const std::int64_t a = Draw(-3, 3), b = Draw(-3, 3);
        for (std::intptr_t y = 0; y < size.Height; ++y)
            for (std::intptr_t x = 0; x < size.Width; ++x)
                grid.At(x, y) = kind < 5 ? Any<T>() : static_cast<T>((a * x + b * y) / 4 + Draw(0, 2) + 40);
        return grid;
    }

    PixelRectangle Rectangle(std::intptr_t width, std::intptr_t height) {
        const auto wild = [this](std::int64_t size) {
            return OneOf<std::int64_t>({Lowest64, Lowest64 + 1, -(std::int64_t{1} << 32), -1, 0, 1, size - 1, size,
                                        size + 1, std::int64_t{1} << 32, Highest64});
        };
        const auto near = [this](std::int64_t size) { return Draw(-3, size + 3); };
        const auto inside = [this](std::int64_t size) { return Draw(0, size - 1); };
        switch (Draw(0, 5)) {
        case 0:
            return {wild(width), wild(height), wild(width), wild(height)};
        case 1:
            return {near(width), near(height), near(width), near(height)};
        case 2:
        case 3:
            return {inside(width), inside(height), inside(width), inside(height)};
        case 4:
            return {0, 0, width - 1, height - 1};
        default:
            return Everything;
        }
    }

    std::int64_t Locality() {
        return OneOf<std::int64_t>({0, 0, 0, 1, 1, 2, 2, 3, 5, 9, 1000, Highest64, Highest64 - 1, -1, -7, Lowest64});
    }

    /// Mostly a value near those of the type's pictures.
    template <class T>
    std::int64_t WholeThreshold() {
        const auto low = static_cast<std::int64_t>(std::numeric_limits<T>::lowest());
        const auto high = static_cast<std::int64_t>(std::numeric_limits<T>::max());
        return OneOf<std::int64_t>({Lowest64, Lowest64, Lowest64, Highest64, low - 1, low, low + 1, low + 2, high - 1,
                                    high, high + 1, 0, 0, 1, -1, (std::int64_t{1} << 32) + 1,
                                    static_cast<std::int64_t>(Any<T>())});
    }

    template <class T>
    double RealThreshold() {
        return OneOf<double>({-Infinity,
                              -Infinity,
                              Infinity,
                              NotANumber,
                              0.0,
                              -0.0,
                              0.5,
                              1.0,
                              1.99,
                              -0.99,
                              -1.0,
                              -1.5,
                              255.9,
                              256.0,
                              300.0,
                              -130.0,
                              65535.5,
                              40000.0,
                              1e5,
                              -1e5,
                              2147483647.0,
                              2147483648.0,
                              -2147483649.0,
                              4294967295.0,
                              4294967301.0,
                              9223372036854775807.0,
                              1.8446744073709552e19,
                              -9223372036854775808.0,
                              -1e19,
                              1e300,
                              -1e300,
                              3.5e38,
                              -3.5e38,
                              static_cast<double>(std::numeric_limits<T>::lowest()),
                              static_cast<double>(std::numeric_limits<T>::max()),
                              static_cast<double>(Any<T>()),
                              static_cast<double>(Any<T>()),
                              0.7,
                              0.1});
    }

    /// Any value of an integer type; of a real type, whole and broken numbers, at times one that is not finite.
    template <class T>
    T Any() {
        if constexpr (std::is_integral_v<T>)
            return static_cast<T>(random());
        else if (OneIn(12))
            return OneOf<T>({std::numeric_limits<T>::infinity(), -std::numeric_limits<T>::infinity(),
                             std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::max(),
                             std::numeric_limits<T>::lowest(), std::numeric_limits<T>::denorm_min(),
                             std::numeric_limits<T>::min(), static_cast<T>(-0.0), static_cast<T>(0.7)});
        else
            return OneIn(2) ? static_cast<T>(Draw(-3, 3))
                            : static_cast<T>(static_cast<double>(Draw(-9999, 9999)) / 700);
    }

private:
    std::mt19937_64 random;

    /// A value some steps above another; integers start again at the lower end.
    template <class T>
    static T Step(T start, std::int64_t steps) {
        if constexpr (std::is_integral_v<T>)
            return static_cast<T>(static_cast<std::uint64_t>(start) + static_cast<std::uint64_t>(steps));
        else
            return start + static_cast<T>(steps);
    }
};

/// Runs cases 0 to count - 1, or the one that ORV_TEST_CASE names; stops at the first that fails.
inline void ForRandomCases(int count, const std::function<void(int, RandomPictures &)> &body) {
    const char *const single = std::getenv("ORV_TEST_CASE");
    const int first = single != nullptr ? std::atoi(single) : 0;
    const int end = single != nullptr ? first + 1 : count;
    for (int number = first; number < end && !testing::Test::HasFailure(); ++number) {
        SCOPED_TRACE("ORV_TEST_CASE=" + std::to_string(number));
        RandomPictures random(number);
        body(number, random);
    }
}

} // namespace TestSupport

#endif

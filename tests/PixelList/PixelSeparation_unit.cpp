// The thinning of a list by both methods beside pixels removed one at a time.
#include "PixelList/PixelSeparation.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "PixelList/ListGuard.h"

namespace {

using PixelList::CPixelList;
using PixelList::ListHolder;
using PixelList::SeparationMethod;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Largest = std::numeric_limits<double>::max();
constexpr double Smallest = std::numeric_limits<double>::denorm_min();

/// x, y, and the number of the pixel.
using Points = std::vector<std::array<double, 3>>;

Points OneAtATime(Points points, double separation) {
    for (std::size_t i = 0; i < points.size(); ++i)
        for (std::size_t j = i + 1; j < points.size();)
            if (std::abs(points[i][0] - points[j][0]) <= separation &&
                std::abs(points[i][1] - points[j][1]) <= separation)
                points.erase(points.begin() + static_cast<std::ptrdiff_t>(j));
            else
                ++j;
    return points;
}

/// The numbers of the points that are left.
std::vector<double> NumbersOf(const Points &points) {
    std::vector<double> numbers;
    for (const auto &point : points)
        numbers.push_back(point[2]);
    return numbers;
}

std::vector<double> NumbersLeft(const Points &points, SeparationMethod method, double separation) {
    const ListHolder list(new CPixelList(3));
    for (const auto &point : points)
        list.Object()->Append(point.data());
    PixelList::RemoveClosePixels(method, *list.Object(), separation);
    std::vector<double> numbers;
    for (const PixelList::CPixel *pixel : *list.Object())
        numbers.push_back(pixel->At(2));
    return numbers;
}

void Compare(const Points &points, double separation, const std::string &what) {
    const auto expected = NumbersOf(OneAtATime(points, separation));
    ASSERT_EQ(NumbersLeft(points, SeparationMethod::OneByOne, separation), expected) << what;
    ASSERT_EQ(NumbersLeft(points, SeparationMethod::ByCells, separation), expected) << what;
}

template <class Draw>
Points RandomPoints(std::size_t count, Draw draw) {
    Points points;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = draw();
        points.push_back({x, draw(), static_cast<double>(i)});
    }
    return points;
}

TEST(PixelSeparation, LeavesWhatIsLeftOneAtATime) {
    std::mt19937_64 random(1);
    for (int number = 0; number < 300; ++number) {
        const double extent = std::ldexp(1.0, static_cast<int>(random() % 12));
        const bool areWhole = random() % 2 == 0;
        std::uniform_real_distribution<double> coordinate(-extent, extent);
        const Points points = RandomPoints(random() % 200, [&] {
            const double drawn = coordinate(random);
            return areWhole ? std::floor(drawn) : drawn;
        });
        const double separation = areWhole ? static_cast<double>(1 + random() % 8) : std::abs(coordinate(random)) / 4;
        Compare(points, std::max(separation, Smallest), "case " + std::to_string(number));
    }
}

TEST(PixelSeparation, TakesAllCoordinatesAndSeparations) {
    const double coordinates[] = {
        0,        -0.0,      1,        -1,        0.1,          0.2,      0.30000000000000004,
        1e15,     1e15 + 1,  1e300,    -1e300,    Largest,      -Largest, Nan,
        Infinity, -Infinity, Smallest, -Smallest, 3 * Smallest, 1e-300};
    std::mt19937_64 random(2);
    for (const double separation : {Smallest, 2 * Smallest, 1e-300, 0.1, 0.2, 1.0, 1e15, 1e300, Largest, Infinity})
        for (int number = 0; number < 20; ++number)
            Compare(RandomPoints(60, [&] { return coordinates[random() % std::size(coordinates)]; }), separation,
                    std::to_string(separation) + ", case " + std::to_string(number));
}

// Numbers of cells are rounded most where they are greatest.
TEST(PixelSeparation, FindsCloseOnesFarFromTheOrigin) {
    std::mt19937_64 random(3);
    for (const double origin : {1e6, 1e12, 1e15, 9e15})
        for (int number = 0; number < 20; ++number)
            Compare(RandomPoints(100, [&] { return origin + static_cast<double>(random() % 64); }),
                    0.25 * static_cast<double>(1 + random() % 20),
                    std::to_string(origin) + ", case " + std::to_string(number));
}

TEST(PixelSeparation, CountsTheSeparationItselfAsClose) {
    for (const auto method : {SeparationMethod::OneByOne, SeparationMethod::ByCells}) {
        const Points points = {{0, 0, 1}, {2, 2, 2}, {2, 3, 3}, {-2, 0, 4}};
        EXPECT_EQ(NumbersLeft(points, method, 2), (std::vector<double>{1, 3}));
    }
}

TEST(PixelSeparation, DoesNotLetARemovedPixelRemoveOthers) {
    for (const auto method : {SeparationMethod::OneByOne, SeparationMethod::ByCells}) {
        const Points points = {{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {3, 0, 4}};
        EXPECT_EQ(NumbersLeft(points, method, 1), (std::vector<double>{1, 3}));
    }
}

TEST(PixelSeparation, TakesAnEmptyList) {
    EXPECT_TRUE(NumbersLeft({}, SeparationMethod::ByCells, 1).empty());
    EXPECT_TRUE(NumbersLeft({}, SeparationMethod::OneByOne, 1).empty());
}

TEST(PixelSeparation, ManyPixelsFarApartAllStay) {
    Points points;
    for (int i = 0; i < 100000; ++i)
        points.push_back({static_cast<double>(i % 400), static_cast<double>(i / 400), static_cast<double>(i)});
    EXPECT_EQ(NumbersLeft(points, SeparationMethod::ByCells, 0.5), NumbersOf(points));
}

} // namespace

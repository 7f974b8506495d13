// The sorts of pixel lists, by both methods: all pixels are there afterwards, and no neighbours stand in the wrong
// order, also where the components are no numbers or too large for an order of all of them.
#include "PixelList/SortPixels.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>

#include "Interface/ImageKernelException.h"

namespace {

using namespace PixelList;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Largest = std::numeric_limits<double>::max();

/// Pixels that stay the same objects whatever is done with the list of them.
class Pixels {
public:
    Pixels(std::size_t count, std::uint64_t dimension) {
        for (std::size_t i = 0; i < count; ++i) {
            owned_.push_back(std::make_unique<CPixel>(dimension));
            List.push_back(owned_.back().get());
        }
    }
    bool AreAllThere() const {
        std::vector<CPixel *> present = List, expected;
        for (const auto &pixel : owned_)
            expected.push_back(pixel.get());
        std::sort(present.begin(), present.end());
        std::sort(expected.begin(), expected.end());
        return present == expected;
    }
    template <class Draw>
    void Fill(Draw draw) {
        for (const auto &pixel : owned_)
            for (std::uint64_t i = 0; i < pixel->Dimension; ++i)
                pixel->At(i) = draw();
    }

    std::vector<CPixel *> List;

private:
    std::vector<std::unique_ptr<CPixel>> owned_;
};

/// Index of the first pixel that the order puts before the one in front of it, or -1.
template <class Order>
std::ptrdiff_t FirstMisplaced(const std::vector<CPixel *> &list, const Order &order) {
    for (std::size_t i = 1; i < list.size(); ++i)
        if (order(list[i], list[i - 1]))
            return static_cast<std::ptrdiff_t>(i);
    return -1;
}

/// The components of one picture of the world: what a random test draws from.
struct Draw {
    const char *Name;
    double (*Next)(std::mt19937_64 &random);
};

double Uniform(std::mt19937_64 &random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}

template <std::size_t Count>
double OneOf(const double (&values)[Count], std::mt19937_64 &random) {
    return values[random() % Count];
}

const Draw draws[] = {
    {"pixel coordinates", [](std::mt19937_64 &random) { return static_cast<double>(random() % 2000); }},
    {"few values", [](std::mt19937_64 &random) { return static_cast<double>(random() % 3) - 1; }},
    {"fractions", [](std::mt19937_64 &random) { return Uniform(random, -1000, 1000); }},
    {"both zeros",
     [](std::mt19937_64 &random) {
         return OneOf({0.0, -0.0}, random);
     }},
    {"no numbers",
     [](std::mt19937_64 &random) {
         return OneOf({Nan, -Nan, 1.0, 2.0, 3.0}, random);
     }},
    {"infinite",
     [](std::mt19937_64 &random) {
         return OneOf({Infinity, -Infinity, 5.0, -5.0}, random);
     }},
    {"overflowing",
     [](std::mt19937_64 &random) {
         return OneOf({Largest, -Largest, 1e308, 0.5, 7.0}, random);
     }},
    {"all of them",
     [](std::mt19937_64 &random) {
         return OneOf({Nan, Infinity, -Infinity, Largest, -Largest, -0.0, 1.0}, random);
     }},
    {"far from the origin", [](std::mt19937_64 &random) { return 1e17 + 16 * static_cast<double>(random() % 50); }},
    {"many scales",
     [](std::mt19937_64 &random) { return std::ldexp(Uniform(random, -1, 1), int(random() % 2000) - 1000); }},
};

constexpr SortMethod methods[] = {SortMethod::ByComparisons, SortMethod::ByKeys};
constexpr std::size_t counts[] = {0, 1, 2, 3, 15, 16, 17, 100, 511, 512, 2500};

/// Sorts random lists of all sizes with sort(method, list), and looks at the order.
template <class Sort, class Order>
void CheckRandomLists(std::uint64_t dimension, const Order &order, Sort sort) {
    int number = 0;
    for (const Draw &draw : draws)
        for (const std::size_t count : counts)
            for (const SortMethod method : methods) {
                std::mt19937_64 random(static_cast<unsigned>(++number));
                Pixels pixels(count, dimension);
                pixels.Fill([&] { return draw.Next(random); });
                sort(method, pixels.List);
                const auto where = testing::Message() << "case " << number << ": " << count << ", " << draw.Name;
                ASSERT_TRUE(pixels.AreAllThere()) << where;
                ASSERT_EQ(FirstMisplaced(pixels.List, order), -1) << where;
            }
}

TEST(SortPixels, PutsGreaterValuesFirst) {
    CheckRandomLists(3, HasGreaterValue,
                     [](SortMethod method, std::vector<CPixel *> &list) { SortByValue(method, list); });
}

class PositionTest : public testing::TestWithParam<SortPixelsByPosition> {};

INSTANTIATE_TEST_SUITE_P(Directions, PositionTest,
                         testing::Values(SortPixelsByPosition{1, 0}, SortPixelsByPosition{0, -1},
                                         SortPixelsByPosition{3, 7}, SortPixelsByPosition{0, 0},
                                         SortPixelsByPosition{std::numeric_limits<std::int64_t>::min(),
                                                              std::numeric_limits<std::int64_t>::max()}));

TEST_P(PositionTest, PutsPixelsInOrderAlongTheDirection) {
    CheckRandomLists(3, GetParam(), [](SortMethod method, std::vector<CPixel *> &list) {
        SortByPosition(method, list, GetParam());
    });
}

TEST(SortPixels, PutsPixelsInOrderAlongAVector) {
    const double direction[] = {0.1, -2, 1e10, 0, 3};
    for (std::uint64_t dimension = 2; dimension <= 5; ++dimension) {
        const SortPixelsByProjection order{dimension, direction};
        CheckRandomLists(dimension, order, [&](SortMethod method, std::vector<CPixel *> &list) {
            SortByProjection(method, list, order);
        });
    }
}

TEST(SortPixels, TakesVectorsThatAreNoNumbers) {
    const double direction[] = {Nan, Infinity, Largest};
    const SortPixelsByProjection order{3, direction};
    CheckRandomLists(3, order,
                     [&](SortMethod method, std::vector<CPixel *> &list) { SortByProjection(method, list, order); });
}

TEST(SortPixels, LeavesAllInPlaceForAVectorOfNothing) {
    for (const SortMethod method : methods) {
        Pixels pixels(600, 2);
        const auto before = pixels.List;
        SortByProjection(method, pixels.List, SortPixelsByProjection{0, nullptr});
        EXPECT_EQ(pixels.List, before);
    }
}

// The keys of pixels are distances from the first one, so that they say nothing here.
TEST(SortPixels, FindsTheOrderWhereTheFirstPixelIsFarFromAllOthers) {
    for (const SortMethod method : methods) {
        Pixels pixels(3000, 3);
        std::mt19937_64 random(5);
        pixels.Fill([&] { return Uniform(random, 0, 1000); });
        pixels.List.front()->At(0) = 1e300;
        const SortPixelsByPosition order{1, 1};
        SortByPosition(method, pixels.List, order);
        EXPECT_TRUE(pixels.AreAllThere());
        EXPECT_EQ(FirstMisplaced(pixels.List, order), -1);
        EXPECT_EQ(pixels.List.back()->At(0), 1e300);
    }
}

TEST(SortPixels, OrdersNearbyPixelsFarFromTheOriginByTheirDifferences) {
    for (const SortMethod method : methods) {
        Pixels pixels(2000, 3);
        std::mt19937_64 random(6);
        pixels.Fill([&] { return 4503599627370496.0 + static_cast<double>(random() % 100000); });
        const double direction[] = {0.1, 0.3, 0.7};
        const SortPixelsByProjection order{3, direction};
        SortByProjection(method, pixels.List, order);
        EXPECT_TRUE(pixels.AreAllThere());
        EXPECT_EQ(FirstMisplaced(pixels.List, order), -1);
    }
}

TEST(SortPixels, LeavesTheListWhenAPixelLacksComponents) {
    for (const SortMethod method : methods) {
        Pixels pixels(700, 3);
        int next = 0;
        pixels.Fill([&] { return static_cast<double>(--next); });
        pixels.List[650]->FreeComponents();
        const auto before = pixels.List;
        const double direction[] = {1, 1, 1};
        using ErrorHandling::CImageKernelException;
        EXPECT_THROW(SortByValue(method, pixels.List), CImageKernelException);
        EXPECT_THROW(SortByPosition(method, pixels.List, {-1, 0}), CImageKernelException);
        EXPECT_THROW(SortByProjection(method, pixels.List, {3, direction}), CImageKernelException);
        EXPECT_EQ(pixels.List, before);
    }
}

TEST(SortPixels, TakesKeysForLongListsOnly) {
    EXPECT_EQ(ChooseSort(0), SortMethod::ByComparisons);
    EXPECT_EQ(ChooseSort(100), SortMethod::ByComparisons);
    EXPECT_EQ(ChooseSort(1000), SortMethod::ByKeys);
}

// ---- the orders themselves

TEST(Comparators, CompareValuesOnly) {
    CPixel low(3), high(3);
    low.At(2) = 1;
    high.At(2) = 2;
    EXPECT_TRUE(HasGreaterValue(&high, &low));
    EXPECT_FALSE(HasGreaterValue(&low, &high));
    EXPECT_FALSE(HasGreaterValue(&low, &low));
    const CPixel flat(2);
    EXPECT_THROW(HasGreaterValue(&flat, &low), ErrorHandling::CImageKernelException);
}

TEST(Comparators, CompareAlongADirection) {
    CPixel first(2), second(2);
    first.At(0) = 3;
    second.At(1) = 2;
    EXPECT_TRUE((SortPixelsByPosition{1, 2}(&first, &second)));
    EXPECT_FALSE((SortPixelsByPosition{2, 3}(&first, &second)));
    EXPECT_TRUE((SortPixelsByPosition{-1, -2}(&second, &first)));
    const double direction[] = {-1, 1};
    EXPECT_TRUE((SortPixelsByProjection{2, direction}(&first, &second)));
    EXPECT_TRUE((SortPixelsByProjection{1, direction}(&first, &second)));
    EXPECT_FALSE((SortPixelsByProjection{0, direction}(&first, &second)));
}

} // namespace

/* Both searches by many threads at once: all see one image, which is in rows or turned, and each has a list of its
 * own. */
#include "PixelList/MaximaSupport.h"

#include <atomic>
#include <thread>

namespace {

using namespace TestSupport;

/// Hills of different heights and plateaus.
PixelGrid<std::uint8_t> Hills() {
    PixelGrid<std::uint8_t> grid(90, 40);
    for (std::intptr_t y = 0; y < grid.Height; ++y)
        for (std::intptr_t x = 0; x < grid.Width; ++x)
            grid.At(x, y) = static_cast<std::uint8_t>((x / 3 * 7 + y / 2 * 11) % 23 + (x * y) % 5);
    return grid;
}

/// What all searches find, in their order. Nothing where one fails.
Spots FindAll(void *image, std::intptr_t plane) {
    Spots all;
    const auto take = [&all](bool isFound, const Handle &list) {
        double components[3];
        for (std::int64_t i = 0; isFound && i < PixelListCount(list.Get()) && ListPixelEx(list.Get(), i, components);
             ++i)
            all.push_back({components[0], components[1], components[2]});
        return isFound;
    };
    Handle plain, thinned, fitted, cut;
    const bool areFound =
        take(FindMaxima(image, plane, 0, 0, 0, 0, 0, 3, plain.Out()) != 0, plain) &&
        take(FindMaxima(image, plane, 2, 1, 30, 30, 4, 3, thinned.Out()) != 0, thinned) &&
        take(FindSubPixelMaxima(image, plane, 0, 0, 999, 999, 3, FitGaussian, 3, fitted.Out(), 5.0), fitted) &&
        take(FindSubPixelMaxima(image, plane, 3, 3, 25, 30, 0, FitQuadratic, 1, cut.Out(), 5.0), cut);
    return areFound ? all : Spots{};
}

class MaximaThreads : public testing::TestWithParam<std::size_t> {};

TEST_P(MaximaThreads, SeeOneImageBesideEachOther) {
    const auto image = LaidOut(Hills(), GetParam());
    const Spots expected = FindAll(image.Get(), 1);
    ASSERT_GT(expected.size(), 50u);
    const auto references = RefCount(image.Get());
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 6; ++thread)
            threads.emplace_back([&] {
                for (int round = 0; round < 10; ++round)
                    wrong += FindAll(image.Get(), 1) == expected && ReportCount() == 0 ? 0 : 1;
            });
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(RefCount(image.Get()), references);
}

INSTANTIATE_TEST_SUITE_P(EveryLayout, MaximaThreads, testing::Range(std::size_t{0}, LayoutCount),
                         [](const auto &given) { return "Layout" + std::to_string(given.param); });

} // namespace

// Every method of plane copying that is allowed for two views gives what the plain loop over the pixels gives, and
// writes nothing else.
#include "Image/PlaneCopy.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <numeric>
#include <random>
#include <vector>

namespace {

using Image::AllowsPlaneCopy;
using Image::ChoosePlaneCopy;
using Image::CopyPlane;
using Image::PlaneCopyMethod;
using Image::PlaneView;

using Offsets = std::vector<std::intptr_t>;

/// How a plane lies in its block.
struct Layout {
    const char *Name;
    Offsets X, Y;
};

Offsets Steps(std::intptr_t count, std::intptr_t step) {
    Offsets offsets(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < offsets.size(); ++i)
        offsets[i] = static_cast<std::intptr_t>(i) * step;
    return offsets;
}

Offsets Shuffled(Offsets offsets, unsigned seed) {
    std::shuffle(offsets.begin(), offsets.end(), std::mt19937(seed));
    return offsets;
}

/// Each offset twice, the second half left out.
Offsets Doubled(Offsets offsets) {
    const Offsets before = offsets;
    for (std::size_t i = 0; i < offsets.size(); ++i)
        offsets[i] = before[i / 2];
    return offsets;
}

/// Steps first, then what has none or where pixels share bytes.
std::vector<Layout> LayoutsOf(std::intptr_t width, std::intptr_t height, std::intptr_t bytes) {
    const auto x = [width](std::intptr_t step) { return Steps(width, step); };
    const auto y = [height](std::intptr_t step) { return Steps(height, step); };
    const std::intptr_t row = width * bytes;
    const std::intptr_t column = height * bytes;
    return {{"dense", x(bytes), y(row)},
            {"rows with a gap", x(bytes), y(row + 5)},
            {"mirrored", x(-bytes), y(row)},
            {"bottom-up", x(bytes), y(-row)},
            {"half turn", x(-bytes), y(-row - 3)},
            {"transposed", x(column), y(bytes)},
            {"quarter turn", x(-column - 7), y(bytes)},
            {"other quarter turn", x(column), y(-bytes)},
            {"turned about the other diagonal", x(-column), y(-bytes)},
            {"columns apart", x(column + 2), y(bytes + 1)},
            {"every third pixel", x(3 * bytes), y(3 * row)},
            {"scattered", Shuffled(x(bytes), 1), Shuffled(y(row), 2)},
            {"scattered rows", x(bytes), Shuffled(y(row), 3)},
            {"scattered columns", Shuffled(x(bytes), 4), y(row)},
            {"doubled", Doubled(x(bytes)), Doubled(y(row))},
            {"overlapping rows", x(bytes), y(bytes)},
            {"overlapping columns", x(bytes), y(1)},
            {"overlapping both ways", x(bytes + 1), y(2 * bytes + 1)},
            {"one row for all", x(bytes), y(0)},
            {"one column for all", x(0), y(bytes)}};
}

std::intptr_t CommonStep(const Offsets &offsets) {
    if (offsets.size() < 2)
        return 0;
    const std::intptr_t step = offsets[1] - offsets[0];
    for (std::size_t i = 2; i < offsets.size(); ++i)
        if (offsets[i] - offsets[i - 1] != step)
            return 0;
    return step;
}

/// A plane in a block of its own with bytes in front and behind that must stay.
class Plane {
public:
    Plane(std::intptr_t bytes, const Layout &layout) {
        const auto [left, right] = std::minmax_element(layout.X.begin(), layout.X.end());
        const auto [top, bottom] = std::minmax_element(layout.Y.begin(), layout.Y.end());
        Block.resize(static_cast<std::size_t>(*right - *left + *bottom - *top + bytes + 2 * Canary));
        table_.resize(std::max(layout.X.size(), layout.Y.size()));
        for (std::size_t i = 0; i < layout.X.size(); ++i)
            table_[i].XEntry = layout.X[i];
        for (std::size_t i = 0; i < layout.Y.size(); ++i)
            table_[i].YEntry = layout.Y[i];
        View = {Block.data() + Canary - *left - *top,
                table_.data(),
                table_.data(),
                std::ssize(layout.X),
                std::ssize(layout.Y),
                bytes,
                CommonStep(layout.X),
                CommonStep(layout.Y)};
    }
    Plane(const Plane &) = delete;
    Plane &operator=(const Plane &) = delete;

    void Fill(std::minstd_rand &random) {
        for (char &byte : Block)
            byte = static_cast<char>(random());
    }

    static constexpr std::intptr_t Canary = 64;
    std::vector<char> Block;
    PlaneView View;

private:
    std::vector<VPAEntry> table_;
};

/// What the target's block holds after a copy, by the rule alone. The block itself is left as it was.
std::vector<char> ExpectedBlock(const Plane &source, Plane &target) {
    const std::vector<char> before = target.Block;
    for (std::intptr_t y = 0; y < source.View.Height; ++y)
        for (std::intptr_t x = 0; x < source.View.Width; ++x)
            std::copy_n(source.View.Pixel(x, y), source.View.Bytes, target.View.Pixel(x, y));
    const std::vector<char> expected = target.Block;
    std::copy(before.begin(), before.end(), target.Block.begin());
    return expected;
}

using MethodCounts = std::map<PlaneCopyMethod, int>;

void CheckAllMethods(std::intptr_t width, std::intptr_t height, std::intptr_t bytes, std::minstd_rand &random,
                     MethodCounts &allowed) {
    for (const Layout &from : LayoutsOf(width, height, bytes))
        for (const Layout &to : LayoutsOf(width, height, bytes)) {
            Plane source(bytes, from);
            Plane target(bytes, to);
            source.Fill(random);
            target.Fill(random);
            const std::vector<char> original = target.Block;
            const std::vector<char> expected = ExpectedBlock(source, target);
            ASSERT_TRUE(AllowsPlaneCopy(ChoosePlaneCopy(source.View, target.View), source.View, target.View));
            for (const PlaneCopyMethod method : Image::AllPlaneCopyMethods) {
                if (!AllowsPlaneCopy(method, source.View, target.View))
                    continue;
                ++allowed[method];
                std::copy(original.begin(), original.end(), target.Block.begin());
                CopyPlane(method, source.View, target.View);
                ASSERT_EQ(target.Block, expected)
                    << from.Name << " to " << to.Name << ", " << width << " x " << height << ", " << bytes
                    << " bytes, method " << static_cast<int>(method);
            }
        }
}

class PlaneCopy : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(OfBytes, PlaneCopy, testing::Values(1, 2, 3, 4, 5, 8, 16),
                         [](const auto &bytes) { return std::to_string(bytes.param); });

TEST_P(PlaneCopy, AllAllowedMethodsGiveTheSameBytes) {
    std::minstd_rand random(20260);
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {
        {1, 1}, {1, 9}, {9, 1}, {2, 2}, {16, 16}, {17, 31}, {33, 65}, {64, 64}, {67, 70}, {130, 3}, {3, 130}};
    MethodCounts allowed;
    for (const auto &[width, height] : sizes)
        ASSERT_NO_FATAL_FAILURE(CheckAllMethods(width, height, GetParam(), random, allowed));
    for (const PlaneCopyMethod method : Image::AllPlaneCopyMethods)
        EXPECT_EQ(allowed[method] > 0, method != PlaneCopyMethod::EveryThird || GetParam() == 1)
            << static_cast<int>(method);
}

TEST(PlaneCopyChoice, GoesByTheSteps) {
    const auto choice = [](const char *from, const char *to, std::intptr_t bytes) {
        const auto layouts = LayoutsOf(20, 30, bytes);
        const auto named = [&layouts](const std::string &name) {
            return *std::find_if(layouts.begin(), layouts.end(), [&](const auto &one) { return one.Name == name; });
        };
        const Plane source(bytes, named(from)), target(bytes, named(to));
        return ChoosePlaneCopy(source.View, target.View);
    };
    EXPECT_EQ(choice("dense", "dense", 2), PlaneCopyMethod::Whole);
    EXPECT_EQ(choice("bottom-up", "bottom-up", 2), PlaneCopyMethod::Whole);
    EXPECT_EQ(choice("mirrored", "mirrored", 2), PlaneCopyMethod::Whole);
    EXPECT_EQ(choice("dense", "bottom-up", 2), PlaneCopyMethod::Rows);
    EXPECT_EQ(choice("dense", "rows with a gap", 2), PlaneCopyMethod::Rows);
    EXPECT_EQ(choice("scattered rows", "dense", 2), PlaneCopyMethod::Rows);
    EXPECT_EQ(choice("half turn", "mirrored", 2), PlaneCopyMethod::Rows);
    EXPECT_EQ(choice("mirrored", "dense", 2), PlaneCopyMethod::Mirrored);
    EXPECT_EQ(choice("dense", "half turn", 4), PlaneCopyMethod::Mirrored);
    EXPECT_EQ(choice("quarter turn", "dense", 2), PlaneCopyMethod::Transposed);
    EXPECT_EQ(choice("other quarter turn", "dense", 8), PlaneCopyMethod::Transposed);
    EXPECT_EQ(choice("every third pixel", "dense", 1), PlaneCopyMethod::EveryThird);
    EXPECT_EQ(choice("every third pixel", "dense", 2), PlaneCopyMethod::StepsToSteps);
    EXPECT_EQ(choice("dense", "every third pixel", 1), PlaneCopyMethod::StepsToSteps);
    EXPECT_EQ(choice("columns apart", "mirrored", 2), PlaneCopyMethod::Tiled);
    EXPECT_EQ(choice("scattered", "dense", 2), PlaneCopyMethod::TableToSteps);
    EXPECT_EQ(choice("dense", "scattered", 2), PlaneCopyMethod::StepsToTable);
    EXPECT_EQ(choice("scattered", "scattered columns", 2), PlaneCopyMethod::TableToTable);
}

TEST(PlaneCopyChoice, RefusesWhatWouldWriteInAnotherOrderWherePixelsShareBytes) {
    for (const char *name : {"overlapping rows", "overlapping columns", "overlapping both ways", "one row for all",
                             "one column for all", "doubled"})
        for (const Layout &to : LayoutsOf(20, 30, 2)) {
            if (to.Name != std::string(name))
                continue;
            for (const Layout &from : LayoutsOf(20, 30, 2)) {
                const Plane source(2, from), target(2, to);
                EXPECT_FALSE(AllowsPlaneCopy(PlaneCopyMethod::Tiled, source.View, target.View)) << name;
                EXPECT_FALSE(AllowsPlaneCopy(PlaneCopyMethod::Transposed, source.View, target.View)) << name;
            }
        }
}

TEST(PlaneCopyChoice, AnEmptyViewCopiesNothing) {
    char pixels[4] = {1, 2, 3, 4};
    VPAEntry entries[2] = {{0, 0}, {1, 2}};
    for (const PlaneCopyMethod method : Image::AllPlaneCopyMethods)
        for (const auto &[width, height] : {std::pair{0, 0}, {0, 2}, {2, 0}, {-1, 2}, {2, -1}}) {
            const PlaneView source{pixels, entries, entries, width, height, 1, 1, 2};
            const PlaneView target{pixels + 2, entries, entries, width, height, 1, 1, 2};
            CopyPlane(method, source, target);
            EXPECT_EQ(std::vector<char>(pixels, pixels + 4), (std::vector<char>{1, 2, 3, 4}));
        }
}

TEST(PlaneCopyChoice, FourWidthsGoPixelByPixel) {
    for (std::intptr_t bytes = -1; bytes <= 32; ++bytes)
        EXPECT_EQ(Image::IsTypedWidth(bytes), bytes == 1 || bytes == 2 || bytes == 4 || bytes == 8) << bytes;
}

} // namespace

// Every method of plane copying that is allowed gives what the plain walk gives, and writes nothing else.
#include "Image/PlaneCopy.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "Image/RowKernels.h"

namespace {

using Image::AllowsPlaneCopy;
using Image::ChoosePlaneCopy;
using Image::CopyPlane;
using Image::PlaneCopyMethod;
using Image::PlaneView;

constexpr PlaneCopyMethod AllMethods[] = {PlaneCopyMethod::Plain, PlaneCopyMethod::Rows, PlaneCopyMethod::Mirrored,
                                          PlaneCopyMethod::Transposed};

/// How a plane lies in its block.
struct Layout {
    std::intptr_t XStep;
    std::intptr_t YStep;
    const char *Name;
};

/// The layouts of a plane: dense, with gaps, mirrored, bottom-up, both, turned each way, and spread.
std::vector<Layout> LayoutsOf(std::intptr_t width, std::intptr_t height, std::intptr_t bytes) {
    const std::intptr_t row = width * bytes;
    const std::intptr_t column = height * bytes;
    return {{bytes, row, "dense"},
            {bytes, row + 5, "rows with a gap"},
            {-bytes, row, "mirrored"},
            {bytes, -row, "bottom-up"},
            {-bytes, -row - 3, "half turn"},
            {column, bytes, "transposed"},
            {-column - 7, bytes, "quarter turn"},
            {column, -bytes, "other quarter turn"},
            {-column, -bytes, "turned about the other diagonal"},
            {3 * bytes, 3 * row, "every third pixel"}};
}

/// A plane in a block of its own with bytes in front and behind that must stay.
class Plane {
public:
    Plane(std::intptr_t width, std::intptr_t height, std::intptr_t bytes, const Layout &layout)
        : table_(static_cast<std::size_t>(std::max(width, height) + 8)) {
        const std::intptr_t spanX = (width - 1) * layout.XStep;
        const std::intptr_t spanY = (height - 1) * layout.YStep;
        const std::intptr_t extent = std::abs(spanX) + std::abs(spanY) + bytes;
        Block.resize(static_cast<std::size_t>(extent + 2 * Canary));
        View.Base = Block.data() + Canary - std::min<std::intptr_t>(spanX, 0) - std::min<std::intptr_t>(spanY, 0);
        View.Table = table_.data() + 4;
        View.Width = width;
        View.Height = height;
        View.Bytes = bytes;
        View.XStep = width > 1 ? layout.XStep : 0;
        View.YStep = height > 1 ? layout.YStep : 0;
        for (std::intptr_t x = 0; x < width; ++x)
            table_[static_cast<std::size_t>(x + 4)].XEntry = x * layout.XStep;
        for (std::intptr_t y = 0; y < height; ++y)
            table_[static_cast<std::size_t>(y + 4)].YEntry = y * layout.YStep;
    }

    void Fill(std::mt19937 &random) {
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
            std::memcpy(target.View.Pixel(x, y), source.View.Pixel(x, y),
                        static_cast<std::size_t>(source.View.Bytes));
    const std::vector<char> expected = target.Block;
    std::copy(before.begin(), before.end(), target.Block.begin());
    return expected;
}

void CheckAllMethods(std::intptr_t width, std::intptr_t height, std::intptr_t bytes, std::mt19937 &random) {
    for (const Layout &from : LayoutsOf(width, height, bytes))
        for (const Layout &to : LayoutsOf(width, height, bytes)) {
            Plane source(width, height, bytes, from);
            Plane target(width, height, bytes, to);
            source.Fill(random);
            target.Fill(random);
            const std::vector<char> original = target.Block;
            const std::vector<char> expected = ExpectedBlock(source, target);
            ASSERT_TRUE(AllowsPlaneCopy(ChoosePlaneCopy(source.View, target.View), source.View, target.View));
            for (const PlaneCopyMethod method : AllMethods) {
                if (!AllowsPlaneCopy(method, source.View, target.View))
                    continue;
                std::copy(original.begin(), original.end(), target.Block.begin());
                CopyPlane(method, source.View, target.View);
                ASSERT_EQ(target.Block, expected)
                    << from.Name << " to " << to.Name << ", " << width << " x " << height << ", " << bytes
                    << " bytes, method " << static_cast<int>(method);
            }
        }
}

TEST(PlaneCopy, AllAllowedMethodsGiveTheSameBytes) {
    std::mt19937 random(20260);
    const std::pair<std::intptr_t, std::intptr_t> sizes[] = {
        {1, 1}, {1, 9}, {9, 1}, {2, 2}, {16, 16}, {17, 31}, {33, 65}, {64, 64}, {130, 67}, {257, 3}, {3, 257}};
    for (const auto &[width, height] : sizes)
        for (const std::intptr_t bytes : {1, 2, 3, 4, 8})
            CheckAllMethods(width, height, bytes, random);
}

TEST(PlaneCopy, AnEmptyPlaneCopiesNothing) {
    PlaneView nothing;
    nothing.Bytes = 1;
    CopyPlane(PlaneCopyMethod::Plain, nothing, nothing);
    EXPECT_EQ(nothing.Base, nullptr);
}

TEST(PlaneCopy, ChoosesTheMethodByTheSteps) {
    const auto choice = [](const Layout &from, const Layout &to) {
        Plane source(20, 30, 2, from);
        Plane target(20, 30, 2, to);
        return ChoosePlaneCopy(source.View, target.View);
    };
    const Layout dense{2, 40, ""}, mirrored{-2, 40, ""}, turned{60, -2, ""}, spread{6, 120, ""};
    EXPECT_EQ(choice(dense, dense), PlaneCopyMethod::Rows);
    EXPECT_EQ(choice(mirrored, mirrored), PlaneCopyMethod::Rows);
    EXPECT_EQ(choice(mirrored, dense), PlaneCopyMethod::Mirrored);
    EXPECT_EQ(choice(turned, dense), PlaneCopyMethod::Transposed);
    EXPECT_EQ(choice(spread, dense), PlaneCopyMethod::Plain);
    EXPECT_EQ(choice(dense, spread), PlaneCopyMethod::Plain);
}

TEST(PlaneCopy, CopiesTheToldWidthsOnly) {
    for (std::intptr_t bytes = 0; bytes <= 32; ++bytes)
        EXPECT_EQ(Image::IsCopiedWidth(bytes), bytes == 1 || bytes == 2 || bytes == 3 || bytes == 4 || bytes == 8);
}

TEST(RowKernels, ReverseTurnsRowsOfAnyLength) {
    for (std::intptr_t count = 0; count < 70; ++count) {
        std::vector<std::uint16_t> row(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<std::uint16_t>(i * 259);
        std::vector<std::uint16_t> turned(row.size());
        Image::ReverseRow<std::uint16_t>(reinterpret_cast<char *>(turned.data()),
                                         reinterpret_cast<const char *>(row.data()), count);
        std::reverse(row.begin(), row.end());
        EXPECT_EQ(turned, row);
    }
}

} // namespace

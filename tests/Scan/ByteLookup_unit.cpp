// A table of bytes looked up at every instruction set level: each index, every length, and no byte beyond the arrays.
#include "Scan/ByteLookup.h"

#include <gtest/gtest.h>
#include <numeric>
#include <random>

#include "Image/FencedPiece.h"

namespace {

using namespace Scan;
using TestSupport::FencedBlock;
using TestSupport::FencedPiece;

class ByteLookupTest : public testing::TestWithParam<FencedBlock::Fence> {};

INSTANTIATE_TEST_SUITE_P(AtAPage, ByteLookupTest,
                         testing::Values(FencedBlock::Fence::Behind, FencedBlock::Fence::Before),
                         [](const auto &where) {
                             return where.param == FencedBlock::Fence::Behind ? "EndsAtIt" : "BeginsBehindIt";
                         });

TEST_P(ByteLookupTest, GivesTheEntryOfEachIndexForEveryLength) {
    FencedPiece source(4096, GetParam()), target(4096, GetParam());
    std::mt19937 random(12);
    ByteTable table;
    for (const ByteLookup &level : ByteLookups())
        for (std::intptr_t count = 0; level.IsAvailable && count <= 700; count += count < 140 ? 1 : 37) {
            std::generate(table.begin(), table.end(), [&] { return static_cast<std::uint8_t>(random()); });
            std::uint8_t *const from = source.Take(static_cast<std::size_t>(count));
            std::iota(from, from + count, static_cast<std::uint8_t>(random()));
            std::uint8_t *const to = target.Take(static_cast<std::size_t>(count));
            std::vector<std::uint8_t> expected(static_cast<std::size_t>(count));
            std::transform(from, from + count, expected.begin(), [&](std::uint8_t index) { return table[index]; });
            level.Run(table, to, from, count);
            ASSERT_EQ(target.Content(), expected) << level.Name << ", " << count;
            ASSERT_TRUE(target.RestIsUnwritten()) << level.Name << ", " << count;
        }
}

TEST(ByteLookup, HasAMethodForEveryProcessor) {
    EXPECT_TRUE(ByteLookups().back().IsAvailable);
}

} // namespace

// The order of what a search has found, the choice among maxima that lie close, and the field of marks.
#include "PixelList/Candidates.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

using namespace PixelList;

constexpr std::int64_t Highest = std::numeric_limits<std::int64_t>::max();

std::vector<Candidate> RandomCandidates(std::size_t count, std::uint32_t mask, std::mt19937 &random) {
    std::vector<Candidate> candidates(count);
    std::int32_t number = 0;
    for (Candidate &candidate : candidates) {
        candidate = {number % 100, number / 100, static_cast<std::int32_t>(random() & mask)};
        ++number;
    }
    return candidates;
}

bool IsLess(const Candidate &a, const Candidate &b) {
    return a.Value < b.Value;
}

TEST(Candidates, SortByValueKeepsTheOrderOfEqualValues) {
    std::mt19937 random(3);
    for (const std::uint32_t mask : {0u, 7u, 0xFFu, 0xFF00u, 0xFFFFu, 0x80000003u, 0xFFFFFFFFu})
        for (const std::size_t count : {0u, 1u, 2u, 100u, 255u, 256u, 257u, 5000u}) {
            auto candidates = RandomCandidates(count, mask, random);
            auto expected = candidates;
            std::stable_sort(expected.begin(), expected.end(), IsLess);
            SortByValue(candidates);
            ASSERT_EQ(candidates, expected) << std::hex << mask << std::dec << ", " << count;
        }
}

/// What is left, by comparing each with all that stay.
std::vector<Candidate> SelectPlainly(const std::vector<Candidate> &candidates, std::int64_t locality) {
    std::vector<Candidate> kept;
    for (auto candidate = candidates.rbegin(); candidate != candidates.rend(); ++candidate)
        if (std::none_of(kept.begin(), kept.end(), [&](const Candidate &stronger) {
                return std::abs(stronger.X - candidate->X) <= locality &&
                       std::abs(stronger.Y - candidate->Y) <= locality;
            }))
            kept.push_back(*candidate);
    std::erase_if(kept, [](const Candidate &candidate) { return candidate.Value == 0; });
    std::sort(kept.begin(), kept.end(), [](const Candidate &a, const Candidate &b) {
        return std::tuple(-std::int64_t{a.Value}, a.Y, a.X) < std::tuple(-std::int64_t{b.Value}, b.Y, b.X);
    });
    return kept;
}

std::vector<Candidate> Select(std::vector<Candidate> candidates, std::int64_t locality) {
    MarkMap marks;
    EXPECT_TRUE(marks.Allocate({1, 100, 100}));
    for (const Candidate &candidate : candidates)
        marks.Set(candidate.X, candidate.Y);
    SelectByLocality(candidates, marks, {0, 0, 99, 99}, locality);
    return candidates;
}

TEST(Candidates, SelectByLocalityKeepsWhatNoKeptOneOfMoreValueLiesCloseTo) {
    std::mt19937 random(4);
    for (const std::uint32_t mask : {0x1u, 0x7u, 0x80000007u, 0xFFFFFFFFu})
        for (const std::int64_t locality : {std::int64_t{1}, std::int64_t{2}, std::int64_t{5}, std::int64_t{63},
                                            std::int64_t{64}, std::int64_t{98}, std::int64_t{99}, Highest}) {
            std::vector<Candidate> candidates;
            for (const Candidate &candidate : RandomCandidates(10000, mask, random))
                if (random() % 12 == 0)
                    candidates.push_back(candidate);
            SortByValue(candidates);
            ASSERT_EQ(Select(candidates, locality), SelectPlainly(candidates, locality)) << mask << ", " << locality;
        }
}

TEST(Candidates, SelectByLocalityCostsLittleAtAnyLocality) {
    std::mt19937 random(5);
    for (const std::int64_t locality : {std::int64_t{1}, std::int64_t{30}, std::int64_t{1000}, Highest}) {
        MarkMap marks;
        ASSERT_TRUE(marks.Allocate({1, 2000, 2000}));
        std::vector<Candidate> candidates;
        for (std::int32_t i = 0; i < 1000000; ++i) {
            candidates.push_back({2 * (i % 1000), 2 * (i / 1000), static_cast<std::int32_t>(random() % 1000 + 1)});
            marks.Set(candidates.back().X, candidates.back().Y);
        }
        SortByValue(candidates);
        // A test that runs out of time where the work is that of all candidates times all pixels.
        SelectByLocality(candidates, marks, {0, 0, 1999, 1999}, locality);
        EXPECT_EQ(candidates.size(), locality == 1 ? 1000000u : candidates.size());
        EXPECT_LE(candidates.size(), locality == Highest ? 1u : candidates.size());
        EXPECT_FALSE(candidates.empty());
    }
}

TEST(MarkMap, RunsAndWordsMeetTheirPixelsOnly) {
    MarkMap marks;
    ASSERT_TRUE(marks.Allocate({1, 200, 3}));
    for (std::int32_t first = 0; first < 200; first += 7)
        for (std::int32_t last = first; last < 200; last += 5) {
            marks.SetRun(first, last, 1);
            for (std::int32_t x = 0; x < 200; ++x) {
                ASSERT_EQ(marks.IsSet(x, 1), x >= first && x <= last) << first << " to " << last;
                ASSERT_FALSE(marks.IsSet(x, 0) || marks.IsSet(x, 2)) << first << " to " << last;
                ASSERT_EQ((marks.From(x, 1) & 1) != 0, marks.IsSet(x, 1));
                ASSERT_EQ(marks.From(x, 1) >> 63 != 0, x + 63 < 200 && marks.IsSet(x + 63, 1));
            }
            marks.ClearRun(first, last, 1);
            for (std::int32_t x = 0; x < 200; ++x)
                ASSERT_FALSE(marks.IsSet(x, 1)) << first << " to " << last;
        }
    marks.SetFrom(37, 1, 0x8000000000000005u);
    for (std::int32_t x = 0; x < 200; ++x)
        ASSERT_EQ(marks.IsSet(x, 1), x == 37 || x == 39 || x == 100);
}

TEST(MarkMap, MarksCanBeReachedAsBytes) {
    MarkMap marks;
    ASSERT_TRUE(marks.Allocate({1, 200, 3}));
    for (const std::int32_t x : {8, 13, 70, 71, 134, 199})
        marks.Set(x, 1);
    for (std::int32_t x = 0; x < 200; x += 8) {
        EXPECT_EQ(marks.FromByte(x, 1), marks.From(x, 1)) << x;
        EXPECT_EQ(static_cast<unsigned char>(*marks.ByteOf(x, 1)), marks.From(x, 1) & 0xFF) << x;
        EXPECT_EQ(marks.ByteOf(x, 1) + marks.PitchBytes(), marks.ByteOf(x, 2)) << x;
    }
}

TEST(MarkMap, RefusesSidesBeyond31Bits) {
    MarkMap marks;
    EXPECT_FALSE(marks.Allocate({1, std::intptr_t{1} << 31, 1}));
    EXPECT_FALSE(marks.Allocate({1, 1, std::intptr_t{1} << 31}));
}

} // namespace

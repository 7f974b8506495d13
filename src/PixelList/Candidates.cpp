#include "PixelList/Candidates.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace PixelList {
namespace {

constexpr int DigitBits = 8;
constexpr std::size_t DigitCount = std::size_t{1} << DigitBits;
constexpr std::size_t Digits = 4;
using Counts = std::array<std::array<std::size_t, DigitCount>, Digits>;

/// Rises with the value.
std::uint32_t KeyOf(const Candidate &candidate) {
    return static_cast<std::uint32_t>(candidate.Value) ^ 0x80000000u;
}

std::size_t DigitOf(const Candidate &candidate, std::size_t digit) {
    return KeyOf(candidate) >> (DigitBits * digit) & (DigitCount - 1);
}

void SortByDigit(const std::vector<Candidate> &from, std::vector<Candidate> &to, std::size_t digit,
                 std::array<std::size_t, DigitCount> &counts) {
    std::size_t next = 0;
    for (std::size_t &count : counts)
        next += std::exchange(count, next);
    for (const Candidate &candidate : from)
        to[counts[DigitOf(candidate, digit)]++] = candidate;
}

struct Side {
    std::int32_t First;
    std::int32_t Last;
};

/// The part of first to last within a distance of a coordinate, which is one of them.
Side Within(std::int64_t distance, std::int32_t coordinate, std::int64_t first, std::int64_t last) {
    return {static_cast<std::int32_t>(coordinate - std::min(distance, coordinate - first)),
            static_cast<std::int32_t>(coordinate + std::min(distance, last - coordinate))};
}

/// How many of the lowest digits the values differ in.
std::size_t DifferingDigits(const std::vector<Candidate> &candidates) {
    const std::uint32_t first = KeyOf(candidates.front());
    std::uint32_t differing = 0;
    for (const Candidate &candidate : candidates)
        differing |= KeyOf(candidate) ^ first;
    return (static_cast<std::size_t>(std::bit_width(differing)) + DigitBits - 1) / DigitBits;
}

template <std::size_t Used>
void CountDigits(const std::vector<Candidate> &candidates, Counts &counts) {
    for (const Candidate &candidate : candidates)
        for (std::size_t digit = 0; digit < Used; ++digit)
            ++counts[digit][DigitOf(candidate, digit)];
}

void ReverseTies(std::vector<Candidate> &candidates) {
    for (auto begin = candidates.begin(); begin != candidates.end();) {
        const auto end = std::find_if(
            begin, candidates.end(), [value = begin->Value](const Candidate &other) { return other.Value != value; });
        std::reverse(begin, end);
        begin = end;
    }
}

} // namespace

void SortByValue(std::vector<Candidate> &candidates) {
    if (candidates.size() < DigitCount) {
        std::stable_sort(candidates.begin(), candidates.end(),
                         [](const Candidate &a, const Candidate &b) { return a.Value < b.Value; });
        return;
    }
    const std::size_t used = DifferingDigits(candidates);
    Counts counts{};
    if (used <= 1)
        CountDigits<1>(candidates, counts);
    else if (used <= 2)
        CountDigits<2>(candidates, counts);
    else
        CountDigits<Digits>(candidates, counts);
    std::vector<Candidate> sorted(candidates.size());
    for (std::size_t digit = 0; digit < used; ++digit) {
        const std::size_t alike = counts[digit][DigitOf(candidates.front(), digit)];
        if (alike == candidates.size())
            continue;
        SortByDigit(candidates, sorted, digit, counts[digit]);
        candidates.swap(sorted);
    }
}

void SelectByLocality(std::vector<Candidate> &candidates, MarkMap &marks, const Rectangle &rectangle,
                      std::int64_t locality) {
    std::vector<Candidate> kept;
    for (auto candidate = candidates.crbegin(); candidate != candidates.crend(); ++candidate) {
        if (!marks.IsSet(candidate->X, candidate->Y))
            continue;
        const Side columns = Within(locality, candidate->X, rectangle.Left, rectangle.Right);
        const Side rows = Within(locality, candidate->Y, rectangle.Top, rectangle.Bottom);
        for (std::int32_t y = rows.First; y <= rows.Last; ++y)
            marks.ClearRun(columns.First, columns.Last, y);
        // Required: a maximum of value 0 goes with those that are left out, after it has cleared the marks around it.
        if (candidate->Value != 0)
            kept.push_back(*candidate);
    }
    ReverseTies(kept);
    candidates.swap(kept);
}

} // namespace PixelList

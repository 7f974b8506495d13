#include "Image/TableSteps.h"

#include <algorithm>

#include "Image/VectorRegisters.h"

namespace Image {
namespace {

/// Offsets of both axes, or how far they are from those expected.
struct Words {
    std::uint64_t X;
    std::uint64_t Y;
};

/// A record is two machine words: a register holds one or two of them, and both axes are compared at once.
template <std::size_t RegisterBytes>
using Records = Vector<std::uint64_t, RegisterBytes>;

/// The X words of one register and the Y words of the other.
ORV_INLINE void TakeAxes(Records<16> &both, const Records<16> &columns, const Records<16> &rows) {
    both = __builtin_shufflevector(columns, rows, 0, 3);
}
ORV_INLINE void TakeAxes(Records<32> &both, const Records<32> &columns, const Records<32> &rows) {
    both = __builtin_shufflevector(columns, rows, 0, 5, 2, 7);
}

ORV_INLINE void Spread(Records<16> &lanes, const Words &even, const Words &) {
    lanes = Records<16>{even.X, even.Y};
}
ORV_INLINE void Spread(Records<32> &lanes, const Words &even, const Words &odd) {
    lanes = Records<32>{even.X, even.Y, odd.X, odd.Y};
}

/// The entries [from, to) of both axes against first + i * step: 0 where all are equal to it. All are looked at
/// without an early end, so that no comparison waits for another.
template <std::size_t RegisterBytes>
ORV_INLINE Words Deviation(const VPAEntry *columns, const VPAEntry *rows, std::intptr_t from, std::intptr_t to,
                           const Words &first, const Words &step) {
    constexpr auto records = static_cast<std::intptr_t>(RegisterBytes / sizeof(VPAEntry));
    const auto start = static_cast<std::uint64_t>(from);
    Words next = {first.X + start * step.X, first.Y + start * step.Y};
    Records<RegisterBytes> expected, advance, deviation = {};
    Spread(expected, next, {next.X + step.X, next.Y + step.Y});
    const Words stride = {records * step.X, records * step.Y};
    Spread(advance, stride, stride);
    std::intptr_t i = from;
    for (; i + records <= to; i += records) {
        Records<RegisterBytes> column, row, both;
        LoadVector(column, reinterpret_cast<const char *>(columns + i));
        LoadVector(row, reinterpret_cast<const char *>(rows + i));
        TakeAxes(both, column, row);
        deviation |= both ^ expected;
        expected += advance;
    }
    Words result = {deviation[0], deviation[1]};
    if constexpr (records == 2) {
        result.X |= deviation[2];
        result.Y |= deviation[3];
        if (i < to) {
            result.X |= static_cast<std::uint64_t>(columns[i].XEntry) ^ expected[0];
            result.Y |= static_cast<std::uint64_t>(rows[i].YEntry) ^ expected[1];
        }
    }
    return result;
}

/// Both axes in one pass as far as both reach, then the rest of the longer one.
template <std::size_t RegisterBytes>
ORV_INLINE TableSteps FindCommonSteps(const TablePart &part) {
    const TableSteps steps = FirstSteps(part);
    const Words first = {part.Width < 1 ? 0 : static_cast<std::uint64_t>(part.Columns[0].XEntry),
                         part.Height < 1 ? 0 : static_cast<std::uint64_t>(part.Rows[0].YEntry)};
    const Words step = {static_cast<std::uint64_t>(steps.X), static_cast<std::uint64_t>(steps.Y)};
    const std::intptr_t shorter = std::min(part.Width, part.Height);
    Words deviation = Deviation<RegisterBytes>(part.Columns, part.Rows, 0, shorter, first, step);
    if (part.Width > shorter)
        deviation.X |= Deviation<RegisterBytes>(part.Columns, part.Columns, shorter, part.Width, first, step).X;
    if (part.Height > shorter)
        deviation.Y |= Deviation<RegisterBytes>(part.Rows, part.Rows, shorter, part.Height, first, step).Y;
    return {deviation.X == 0 ? steps.X : 0, deviation.Y == 0 ? steps.Y : 0};
}

__attribute__((target("avx2"))) TableSteps CommonStepsAtAvx2(const TablePart &part) {
    return FindCommonSteps<32>(part);
}

} // namespace

TableSteps FirstSteps(const TablePart &part) {
    return {part.Width < 2 ? 0 : Step(part.Columns[1].XEntry, part.Columns[0].XEntry),
            part.Height < 2 ? 0 : Step(part.Rows[1].YEntry, part.Rows[0].YEntry)};
}

TableSteps CommonStepsAtBaseline(const TablePart &part) {
    return FindCommonSteps<16>(part);
}

TableSteps CommonSteps(const TablePart &part) {
    return __builtin_cpu_supports("avx2") != 0 ? CommonStepsAtAvx2(part) : CommonStepsAtBaseline(part);
}

} // namespace Image

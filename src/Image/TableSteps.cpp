#include "Image/TableSteps.h"

#include <algorithm>

#include "Image/VectorRegisters.h"

namespace Image {
namespace {

/// A record is two machine words, the X and the Y one.
template <std::size_t Count>
using Records = Vector<std::uint64_t, Count * sizeof(VPAEntry)>;
template <std::size_t Count>
using Words = std::make_index_sequence<2 * Count>;

/// The next entries of a walk along both axes, Count at a time.
template <std::size_t Count>
struct Walk {
    Records<Count> Expected, Advance;
    Records<Count> Deviation = {}; ///< 0 as long as all words are as expected

    /// Goes on from entry i as far as whole registers reach below `end`. All words are looked at without an early
    /// end, so that no comparison waits for another.
    ORV_INLINE void GoOn(const VPAEntry *columns, const VPAEntry *rows, std::intptr_t &i, std::intptr_t end) {
        constexpr auto count = static_cast<std::intptr_t>(Count);
        for (; i + count <= end; i += count) {
            Records<Count> both;
            TakeBoth(both, columns + i, rows + i, Words<Count>{});
            Deviation |= both ^ Expected;
            Expected += Advance;
        }
    }

    /// The X words of the columns and the Y words of the rows.
    template <std::size_t... Word>
    ORV_INLINE static void TakeBoth(Records<Count> &both, const VPAEntry *columns, const VPAEntry *rows,
                                    std::index_sequence<Word...>) {
        Records<Count> column, row;
        LoadVector(column, reinterpret_cast<const char *>(columns));
        LoadVector(row, reinterpret_cast<const char *>(rows));
        both = __builtin_shufflevector(column, row, static_cast<int>(Word % 2 == 0 ? Word : 2 * Count + Word)...);
    }

    /// The same walk with registers of twice as many entries.
    ORV_INLINE void Widen(Walk<2 * Count> &wide) const { Widen(wide, Words<2 * Count>{}); }
    template <std::size_t... Word>
    ORV_INLINE void Widen(Walk<2 * Count> &wide, std::index_sequence<Word...>) const {
        const Records<Count> then = Expected + Advance, twice = Advance + Advance;
        wide.Expected = __builtin_shufflevector(Expected, then, static_cast<int>(Word)...);
        wide.Advance = __builtin_shufflevector(twice, twice, static_cast<int>(Word)...);
    }

    /// Goes on where the wide walk ended.
    ORV_INLINE void Narrow(const Walk<2 * Count> &wide) { Narrow(wide, Words<Count>{}); }
    template <std::size_t... Word>
    ORV_INLINE void Narrow(const Walk<2 * Count> &wide, std::index_sequence<Word...>) {
        Expected = __builtin_shufflevector(wide.Expected, wide.Expected, static_cast<int>(Word)...);
        Deviation |= __builtin_shufflevector(wide.Deviation, wide.Deviation, static_cast<int>(Word)...) |
                     __builtin_shufflevector(wide.Deviation, wide.Deviation, static_cast<int>(2 * Count + Word)...);
    }
};

/// Goes on with registers of up to Most entries, and with smaller ones where these do not fit any more.
template <std::size_t Most, std::size_t Count>
ORV_INLINE void GoOn(Walk<Count> &walk, const VPAEntry *columns, const VPAEntry *rows, std::intptr_t &i,
                     std::intptr_t end) {
    if constexpr (Count < Most) {
        Walk<2 * Count> wide;
        walk.Widen(wide);
        GoOn<Most>(wide, columns, rows, i, end);
        walk.Narrow(wide);
    }
    walk.GoOn(columns, rows, i, end);
}

/// Both axes at once as far as both reach, then the rest of the longer one with the other axis dropped.
template <std::size_t Most>
ORV_INLINE void FindSteps(TableSteps &steps, const VPAEntry *columns, std::intptr_t width, const VPAEntry *rows,
                          std::intptr_t height) {
    Walk<1> walk;
    Walk<1>::TakeBoth(walk.Expected, columns, rows, Words<1>{});
    Walk<1>::TakeBoth(walk.Advance, columns + 1, rows + 1, Words<1>{});
    walk.Advance -= walk.Expected;
    std::intptr_t i = 0;
    GoOn<Most>(walk, columns, rows, i, std::min(width, height));
    if (width != height) {
        const bool wide = width > height;
        const Records<1> deviation = walk.Deviation;
        GoOn<Most>(walk, wide ? columns : rows, wide ? columns : rows, i, wide ? width : height);
        walk.Deviation[wide ? 1 : 0] = deviation[wide ? 1 : 0];
    }
    walk.Advance &= reinterpret_cast<Records<1>>(walk.Deviation == Records<1>{});
    static_assert(sizeof steps == sizeof walk.Advance);
    std::memcpy(&steps, &walk.Advance, sizeof steps);
}

/// Each axis of more than one entry; an axis of fewer goes along with the other one, and what it tells is dropped.
template <std::size_t Most>
ORV_INLINE TableSteps FindCommonSteps(const TablePart &part) {
    const bool hasX = part.Width > 1, hasY = part.Height > 1;
    TableSteps steps = {0, 0};
    if (hasX || hasY)
        FindSteps<Most>(steps, hasX ? part.Columns : part.Rows, hasX ? part.Width : part.Height,
                        hasY ? part.Rows : part.Columns, hasY ? part.Height : part.Width);
    return {hasX ? steps.X : 0, hasY ? steps.Y : 0};
}

TableSteps FindAtBaseline(const TablePart &part) {
    return FindCommonSteps<1>(part);
}
__attribute__((target("avx2"))) TableSteps FindAtAvx2(const TablePart &part) {
    return FindCommonSteps<2>(part);
}
__attribute__((target("avx512f,avx512vl"))) TableSteps FindAtAvx512(const TablePart &part) {
    return FindCommonSteps<4>(part);
}

} // namespace

const std::array<StepFinder, 3> &StepFinders() {
    static const std::array<StepFinder, 3> finders = {{
        {"avx512", __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl"), FindAtAvx512},
        {"avx2", __builtin_cpu_supports("avx2") != 0, FindAtAvx2},
        {"baseline", true, FindAtBaseline},
    }};
    return finders;
}

TableSteps FirstSteps(const TablePart &part) {
    return {part.Width < 2 ? 0 : Step(part.Columns[1].XEntry, part.Columns[0].XEntry),
            part.Height < 2 ? 0 : Step(part.Rows[1].YEntry, part.Rows[0].YEntry)};
}

TableSteps CommonSteps(const TablePart &part) {
    static const auto best = std::find_if(StepFinders().begin(), StepFinders().end(), [](const auto &one) {
                                 return one.IsAvailable;
                             })->Find;
    return best(part);
}

} // namespace Image

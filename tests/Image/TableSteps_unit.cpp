// The common steps of a table, each instruction set level against a loop over the entries.
#include "Image/TableSteps.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using Image::StepFinder;
using Image::TablePart;
using Image::TableSteps;

std::vector<StepFinder> Levels() {
    std::vector<StepFinder> levels;
    for (const StepFinder &level : Image::StepFinders())
        if (level.IsAvailable)
            levels.push_back(level);
    return levels;
}

std::intptr_t CommonStep(const VPAEntry *entries, std::intptr_t VPAEntry::*axis, std::intptr_t count) {
    const std::intptr_t step = count < 2 ? 0 : Image::Step(entries[1].*axis, entries[0].*axis);
    for (std::intptr_t i = 1; i < count; ++i)
        if (Image::Step(entries[i].*axis, entries[i - 1].*axis) != step)
            return 0;
    return step;
}

void ExpectSteps(const TablePart &part) {
    const TableSteps expected = {CommonStep(part.Columns, &VPAEntry::XEntry, part.Width),
                                 CommonStep(part.Rows, &VPAEntry::YEntry, part.Height)};
    for (const StepFinder &level : Levels())
        ASSERT_EQ(level.Find(part), expected) << level.Name << ", " << part.Width << " x " << part.Height;
    ASSERT_EQ(Image::CommonSteps(part), expected);
}

/// start + i * step, wrapping.
std::vector<VPAEntry> LinearTable(std::intptr_t count, TableSteps start, TableSteps step) {
    std::vector<VPAEntry> table;
    auto x = static_cast<std::uint64_t>(start.X), y = static_cast<std::uint64_t>(start.Y);
    for (std::intptr_t i = 0; i < count; ++i) {
        table.push_back({static_cast<std::intptr_t>(x), static_cast<std::intptr_t>(y)});
        x += static_cast<std::uint64_t>(step.X);
        y += static_cast<std::uint64_t>(step.Y);
    }
    return table;
}

TEST(TableSteps, TheLastLevelIsForEveryProcessor) {
    EXPECT_TRUE(Image::StepFinders().back().IsAvailable);
    EXPECT_STREQ(Image::StepFinders().back().Name, "baseline");
}

TEST(TableSteps, AreThoseOfLinearTablesOfAnySize) {
    const auto table = LinearTable(40, {7, -5}, {3, 640});
    for (std::intptr_t width = 0; width <= 20; ++width)
        for (std::intptr_t height = 0; height <= 20; ++height) {
            const TablePart part = {table.data() + 1, width, table.data() + 11, height};
            const TableSteps expected = {width < 2 ? 0 : 3, height < 2 ? 0 : 640};
            EXPECT_EQ(Image::CommonSteps(part), expected);
            EXPECT_EQ(Image::FirstSteps(part), expected);
            ASSERT_NO_FATAL_FAILURE(ExpectSteps(part));
        }
}

TEST(TableSteps, OneEntryOffTheStepMakesAnAxisUneven) {
    for (std::intptr_t size = 2; size <= 19; ++size)
        for (std::intptr_t odd = 0; odd < size; ++odd)
            for (const bool isX : {true, false}) {
                auto table = LinearTable(size, {0, 0}, {2, 100});
                auto &entry = table[static_cast<std::size_t>(odd)];
                (isX ? entry.XEntry : entry.YEntry) += 1;
                for (const std::intptr_t other : {size, std::intptr_t{2}, size / 2 + 1})
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectSteps({table.data(), isX ? size : other, table.data(), isX ? other : size}));
            }
}

TEST(TableSteps, LookAtNothingButTheirOwnAxis) {
    for (const auto &[width, height] : {std::pair{1, 9}, {9, 1}, {3, 17}, {17, 3}, {9, 10}}) {
        auto table = LinearTable(20, {0, 0}, {4, -50});
        std::minstd_rand random(1);
        for (std::intptr_t i = 0; i < 20; ++i) {
            if (i >= width)
                table[static_cast<std::size_t>(i)].XEntry = static_cast<std::intptr_t>(random());
            if (i >= height)
                table[static_cast<std::size_t>(i)].YEntry = static_cast<std::intptr_t>(random());
        }
        for (const StepFinder &level : Levels())
            EXPECT_EQ(level.Find({table.data(), width, table.data(), height}),
                      (TableSteps{width < 2 ? 0 : 4, height < 2 ? 0 : -50}))
                << level.Name;
    }
}

TEST(TableSteps, DifferencesWrap) {
    for (const std::intptr_t step : {INTPTR_MIN, INTPTR_MAX, INTPTR_MAX / 3, std::intptr_t{-1}}) {
        const auto table = LinearTable(13, {INTPTR_MAX - 2, INTPTR_MIN + 1}, {step, Image::Step(0, step)});
        ASSERT_NO_FATAL_FAILURE(ExpectSteps({table.data(), 13, table.data(), 12}));
        EXPECT_EQ(Image::CommonSteps({table.data(), 13, table.data(), 12}).X, step);
    }
}

TEST(TableSteps, AreThoseOfALoopForRandomTables) {
    std::minstd_rand random(3);
    for (int number = 0; number < 20000; ++number) {
        auto table = LinearTable(30, {0, 0}, {static_cast<std::intptr_t>(random() % 5) - 2, 7});
        for (auto changes = random() % 3; changes != 0; --changes)
            table[random() % 30].XEntry += static_cast<std::intptr_t>(random() % 3);
        if (random() % 3 == 0)
            table[random() % 30].YEntry = static_cast<std::intptr_t>(random() % 300);
        const auto left = static_cast<std::intptr_t>(random() % 10), top = static_cast<std::intptr_t>(random() % 10);
        const auto width = static_cast<std::intptr_t>(random() % 21),
                   height = static_cast<std::intptr_t>(random() % 21);
        ASSERT_NO_FATAL_FAILURE(ExpectSteps({table.data() + left, width, table.data() + top, height}))
            << "case " << number;
    }
}

} // namespace

// The tests of 64 pixels at a time, at every instruction set level: the bits of the plain comparisons, for every
// length, and no pixel read beyond the neighbours of those asked for.
#include "PixelList/MaximumRows.h"

#include <limits>
#include <type_traits>

#include "Image/FencedPiece.h"
#include "Image/KernelLevel.h"

#include <gtest/gtest.h>
#include <random>
#include <utility>
#include <vector>

namespace {

using namespace PixelList;
using TestSupport::FencedBlock;
using TestSupport::FencedPiece;

template <class T>
class MaximumRowsTest : public testing::Test {
protected:
    /// A row in memory that ends at an unreadable page, or begins behind one. Not aligned where the type allows it.
    const char *Fill(FencedPiece &memory, const std::vector<T> &row) {
        std::uint8_t *const bytes = memory.Take(row.size() * sizeof(T));
        std::memcpy(bytes, row.data(), row.size() * sizeof(T));
        return reinterpret_cast<const char *>(bytes);
    }
    std::vector<T> Row(std::size_t count, int levels) {
        const T lowest[] = {std::numeric_limits<T>::lowest(), static_cast<T>(std::numeric_limits<T>::max() - levels),
                            T{0}};
        const T base = lowest[random() % 3];
        std::vector<T> row(count);
        for (T &pixel : row)
            pixel = static_cast<T>(base + static_cast<T>(random() % static_cast<unsigned>(levels + 1)));
        return row;
    }
    std::mt19937 random{5};
};
using Types = testing::Types<char, unsigned char, short, unsigned short, int>;
TYPED_TEST_SUITE(MaximumRowsTest, Types);

/// Rows hold one pixel more at each end.
template <class T>
void ExpectBits(const std::vector<T> (&rows)[3], T threshold, const std::vector<MaximumBits> &bits) {
    const std::size_t count = rows[1].size() - 2;
    for (std::size_t i = 0; i < bits.size() * 64; ++i) {
        bool noneGreater = i < count && rows[1][i + 1] >= threshold, allLess = true;
        for (std::size_t row = 0; row < 3 && i < count; ++row)
            for (std::size_t x = i; x <= i + 2; ++x) {
                const bool isNeighbour = row != 1 || x != i + 1;
                noneGreater = noneGreater && rows[row][x] <= rows[1][i + 1];
                allLess = allLess && (!isNeighbour || rows[row][x] < rows[1][i + 1]);
            }
        ASSERT_EQ((bits[i / 64].NoneGreater >> i % 64 & 1) != 0, noneGreater) << "column " << i << " of " << count;
        if (noneGreater) {
            ASSERT_EQ((bits[i / 64].AllLess >> i % 64 & 1) != 0, allLess) << "column " << i << " of " << count;
        }
    }
}

TYPED_TEST(MaximumRowsTest, TestRowGivesTheBitsOfThePlainComparisonForEveryLength) {
    using T = TypeParam;
    FencedPiece above(4096, FencedBlock::Fence::Behind), own(4096, FencedBlock::Fence::Behind),
        below(4096, FencedBlock::Fence::Before);
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        for (std::size_t count = 1; count <= 300; ++count) {
            const int levels = count % 2 == 0 ? 3 : 90;
            const T step = static_cast<T>(count % 2);
            const std::vector<T> rows[3] = {this->Row(count + 2, levels), this->Row(count + 2, levels),
                                            this->Row(count + 2, levels)};
            const T threshold = static_cast<T>(rows[1][count / 2] / 2 + step);
            const NeighbourRows given = {this->Fill(above, rows[0]) + sizeof(T), this->Fill(own, rows[1]) + sizeof(T),
                                         this->Fill(below, rows[2]) + sizeof(T)};
            std::vector<MaximumBits> bits((count + 63) / 64, MaximumBits{~0ull, ~0ull});
            TestRow<T>(given, static_cast<std::intptr_t>(count), threshold, bits.data());
            ASSERT_NO_FATAL_FAILURE(ExpectBits(rows, threshold, bits)) << Image::NameOf(level);
        }
    }
}

TYPED_TEST(MaximumRowsTest, TestRowTakesRowsThatAreNotAligned) {
    using T = TypeParam;
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        const std::vector<T> rows[3] = {this->Row(202, 4), this->Row(202, 4), this->Row(202, 4)};
        std::vector<char> memory[3];
        const char *starts[3];
        for (int i = 0; i < 3; ++i) {
            memory[i].resize(202 * sizeof(T) + 1);
            std::memcpy(memory[i].data() + 1, rows[i].data(), 202 * sizeof(T));
            starts[i] = memory[i].data() + 1 + sizeof(T);
        }
        std::vector<MaximumBits> bits(4);
        TestRow<T>({starts[0], starts[1], starts[2]}, 200, rows[1][7], bits.data());
        ASSERT_NO_FATAL_FAILURE(ExpectBits(rows, rows[1][7], bits)) << Image::NameOf(level);
    }
}

TYPED_TEST(MaximumRowsTest, CompareRowsGivesTheBitsOfThePlainComparison) {
    using T = TypeParam;
    FencedPiece upper(4096, FencedBlock::Fence::Behind), lower(4096, FencedBlock::Fence::Before);
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        for (int number = 0; number < 50; ++number) {
            const std::vector<T> rows[2] = {this->Row(64, 1 + number % 5), this->Row(64, 1 + number % 5)};
            const T value = rows[0][static_cast<std::size_t>(number)];
            const char *const given[2] = {this->Fill(upper, rows[0]), this->Fill(lower, rows[1])};
            ComparedBits bits[2];
            CompareRows<T>(given, 2, value, bits);
            for (std::size_t i = 0; i < 128; ++i) {
                const T pixel = rows[i / 64][i % 64];
                const ComparedBits &row = bits[i / 64];
                ASSERT_EQ((row.Equal >> i % 64 & 1) != 0, pixel == value) << Image::NameOf(level) << ", " << number;
                ASSERT_EQ((row.Greater >> i % 64 & 1) != 0, pixel > value) << Image::NameOf(level) << ", " << number;
            }
        }
    }
}

/// A flood's window with marks of its own.
template <class T>
struct FloodCase {
    static constexpr int Columns = FloodWindow::Columns;
    int Lines;
    std::vector<std::vector<T>> Pixels;
    std::vector<std::uint32_t> Marks; ///< two words for each row: those behind the window are nobody's business
    FloodWindow Window;

    bool IsOpen(int x, int line) const { return (Marks[2 * static_cast<std::size_t>(line)] >> x & 1) == 0; }
    T At(int x, int line) const { return Pixels[static_cast<std::size_t>(line)][static_cast<std::size_t>(x)]; }

    /// As it is told: the result and the marks afterwards.
    FloodOutcome FloodPlainly(T value, std::vector<std::uint32_t> &marks) const {
        marks = Marks;
        bool isMaximum = true, touchesEdge = false;
        std::vector<std::pair<int, int>> places = {{Window.Place, Window.Line}};
        while (!places.empty()) {
            const auto [x, line] = places.back();
            places.pop_back();
            if (x < 0 || x >= Columns || line < 0 || line >= Lines || !IsOpen(x, line) || At(x, line) < value)
                continue;
            std::uint32_t &row = marks[2 * static_cast<std::size_t>(line)];
            isMaximum = isMaximum && At(x, line) == value;
            if (At(x, line) > value || (row >> x & 1) != 0)
                continue;
            row |= 1u << x;
            touchesEdge = touchesEdge || line == 0 || line == Lines - 1 || (Window.OpenColumns >> x & 1) != 0;
            for (int i = 0; i < 9; ++i)
                places.emplace_back(x + i % 3 - 1, line + i / 3 - 1);
        }
        if (touchesEdge)
            marks = Marks;
        return touchesEdge ? FloodOutcome::TooLarge : isMaximum ? FloodOutcome::Maximum : FloodOutcome::NoMaximum;
    }
};

/// Mostly small values: an area of 7 is as large as its pixels are frequent.
template <class T>
FloodCase<T> RandomFlood(int lines, unsigned rarity, std::mt19937 &random) {
    FloodCase<T> flood = {lines, {}, std::vector<std::uint32_t>(2 * static_cast<std::size_t>(lines)), {}};
    for (int line = 0; line < lines; ++line) {
        flood.Pixels.emplace_back(FloodWindow::Columns);
        for (T &pixel : flood.Pixels.back())
            pixel = static_cast<T>(random() % 8 >= rarity ? random() % 7 : random() % 15 == 0 ? 9 : 7);
        flood.Marks[2 * static_cast<std::size_t>(line)] = static_cast<std::uint32_t>(random() & random() & random());
        flood.Marks[2 * static_cast<std::size_t>(line) + 1] = static_cast<std::uint32_t>(random());
    }
    flood.Window.Line = static_cast<int>(random() % static_cast<unsigned>(lines));
    flood.Window.Place = static_cast<int>(random() % FloodWindow::Columns);
    const auto line = static_cast<std::size_t>(flood.Window.Line);
    flood.Pixels[line][static_cast<std::size_t>(flood.Window.Place)] = 7;
    flood.Marks[2 * line] &= ~(1u << flood.Window.Place);
    flood.Window.OpenColumns = (random() % 2 != 0 ? 1u : 0u) | (random() % 2 != 0 ? 1u << 31 : 0u);
    return flood;
}

template <class T, int Registers>
void ExpectFloodsAsTold(std::mt19937 &random) {
    int outcomes[3] = {};
    for (unsigned number = 0; number < 3000; ++number) {
        FloodCase<T> flood = RandomFlood<T>(16 * Registers, number % 9, random);
        std::vector<std::uint32_t> expected;
        const FloodOutcome outcome = flood.FloodPlainly(7, expected);
        for (int line = 0; line < flood.Lines; ++line)
            flood.Window.Rows[line] =
                reinterpret_cast<const char *>(flood.Pixels[static_cast<std::size_t>(line)].data());
        flood.Window.Marks = reinterpret_cast<char *>(flood.Marks.data());
        flood.Window.MarksPitch = 8;
        ASSERT_EQ((FloodSmall<T, Registers>(flood.Window, 7)), outcome) << number;
        ASSERT_EQ(flood.Marks, expected) << number;
        ++outcomes[static_cast<int>(outcome)];
    }
    for (const int count : outcomes)
        EXPECT_GT(count, 100);
}

TYPED_TEST(MaximumRowsTest, FloodSmallMarksAndAnswersAsTheFloodPixelByPixel) {
    if (!CanFloodSmall())
        GTEST_SKIP() << "the processor has no such level";
    ASSERT_NO_FATAL_FAILURE((ExpectFloodsAsTold<TypeParam, 1>(this->random)));
    ASSERT_NO_FATAL_FAILURE((ExpectFloodsAsTold<TypeParam, 2>(this->random)));
}

} // namespace

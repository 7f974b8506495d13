// The tests of 64 pixels at a time, at every instruction set level: the bits of the plain comparisons, for every
// length, and no pixel read beyond the neighbours of those asked for.
#include "PixelList/MaximumRows.h"

#include <limits>
#include <type_traits>

#include "Image/FencedPiece.h"
#include "Image/KernelLevel.h"

#include <gtest/gtest.h>
#include <random>

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

TYPED_TEST(MaximumRowsTest, CompareRowGivesTheBitsOfThePlainComparison) {
    using T = TypeParam;
    FencedPiece memory(4096, FencedBlock::Fence::Behind);
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        for (int number = 0; number < 50; ++number) {
            const std::vector<T> row = this->Row(64, 1 + number % 5);
            const T value = row[static_cast<std::size_t>(number)];
            const ComparedBits bits = CompareRow<T>(this->Fill(memory, row), value);
            for (std::size_t i = 0; i < row.size(); ++i) {
                ASSERT_EQ((bits.Equal >> i & 1) != 0, row[i] == value) << Image::NameOf(level) << ", " << number;
                ASSERT_EQ((bits.Greater >> i & 1) != 0, row[i] > value) << Image::NameOf(level) << ", " << number;
            }
        }
    }
}

} // namespace

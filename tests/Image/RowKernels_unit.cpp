// The inner loops of plane copies, each instruction set level against a loop over the elements: every length up to
// 130, with memory that ends at an unreadable page and memory that begins behind one.
#include "Image/RowKernels.h"

#include <random>

#include "Image/FencedPiece.h"

namespace {

using Image::RowKernels;
using Image::ThreeBytes;
using TestSupport::FencedBlock;
using TestSupport::FencedPiece;

constexpr std::intptr_t LongestRow = 130;

/// A piece of memory as the kernels take it.
class Ground : public FencedPiece {
public:
    explicit Ground(FencedBlock::Fence fence) : FencedPiece(4096, fence) {}
    char *Piece(std::intptr_t bytes) { return reinterpret_cast<char *>(Take(static_cast<std::size_t>(bytes))); }
    std::string Text() const {
        const auto bytes = Content();
        return {bytes.begin(), bytes.end()};
    }
};

std::vector<const RowKernels *> Levels() {
    std::vector<const RowKernels *> levels = {&RowKernels::Baseline()};
    if (RowKernels::Avx2() != nullptr)
        levels.push_back(RowKernels::Avx2());
    return levels;
}

class RowKernelsTest : public testing::TestWithParam<FencedBlock::Fence> {
protected:
    /// Random bytes in a piece of memory.
    char *Fill(Ground &ground, std::intptr_t bytes) {
        char *const piece = ground.Piece(bytes);
        for (std::intptr_t i = 0; i < bytes; ++i)
            piece[i] = static_cast<char>(random());
        return piece;
    }

    template <class T>
    void ReverseRows() {
        constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
        for (const RowKernels *level : Levels())
            for (std::intptr_t count = 0; count <= LongestRow; ++count) {
                const char *const from = Fill(source, count * size);
                char *const to = target.Piece(count * size);
                level->Reverse<T>()(to, from, count);
                std::string expected;
                for (std::intptr_t i = count - 1; i >= 0; --i)
                    expected.append(from + i * size, sizeof(T));
                ASSERT_EQ(target.Text(), expected) << level->Name << ", " << count << " of " << size << " bytes";
                ASSERT_TRUE(target.RestIsUnwritten()) << level->Name << ", " << count << " of " << size << " bytes";
            }
    }

    void CopyRows(const RowKernels &level, std::intptr_t rowBytes, std::intptr_t rows, std::intptr_t gap,
                  bool upward);

    template <class T>
    void Transpose(std::intptr_t lines, std::intptr_t rows, std::intptr_t gap, bool upward);

    std::minstd_rand random{2};
    Ground source{GetParam()}, target{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(AtAPage, RowKernelsTest,
                         testing::Values(FencedBlock::Fence::Behind, FencedBlock::Fence::Before),
                         [](const auto &where) {
                             return where.param == FencedBlock::Fence::Behind ? "EndsAtIt" : "BeginsBehindIt";
                         });

TEST_P(RowKernelsTest, ReverseTurnsRowsOfAnyLengthAndWidth) {
    ReverseRows<std::uint8_t>();
    ReverseRows<std::uint16_t>();
    ReverseRows<ThreeBytes>();
    ReverseRows<std::uint32_t>();
    ReverseRows<std::uint64_t>();
}

/// Rows of every length up to 300, and some around the lengths where another loop takes over.
std::vector<std::intptr_t> RowLengths() {
    std::vector<std::intptr_t> lengths = {511, 1024, 4097, 16383, 16384, 16385};
    for (std::intptr_t length = 0; length <= 300; ++length)
        lengths.push_back(length);
    return lengths;
}

/// Rows that lie gap bytes apart, upward or downward in the target's memory.
void RowKernelsTest::CopyRows(const RowKernels &level, std::intptr_t rowBytes, std::intptr_t rows, std::intptr_t gap,
                              bool upward) {
    const std::intptr_t step = rowBytes + gap;
    const std::intptr_t bytes = rows == 0 ? 0 : (rows - 1) * step + rowBytes;
    FencedBlock from(static_cast<std::size_t>(std::max<std::intptr_t>(bytes, 1)), GetParam());
    FencedBlock to(static_cast<std::size_t>(std::max<std::intptr_t>(bytes, 1)), GetParam());
    std::generate_n(from.Data(), bytes, [this] { return static_cast<std::uint8_t>(random()); });
    std::fill_n(to.Data(), bytes, std::uint8_t{'u'});
    std::vector<std::uint8_t> expected(to.Data(), to.Data() + bytes);
    const std::intptr_t first = upward || rows == 0 ? 0 : (rows - 1) * step;
    const std::intptr_t targetStep = upward ? step : -step;
    for (std::intptr_t y = 0; y < rows; ++y)
        std::copy_n(from.Data() + y * step, rowBytes, expected.begin() + first + y * targetStep);
    level.CopyRows(reinterpret_cast<char *>(to.Data()) + first, targetStep,
                   reinterpret_cast<const char *>(from.Data()), step, rowBytes, rows);
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), to.Data()))
        << level.Name << ", " << rows << " rows of " << rowBytes << " bytes, gap " << gap;
}

TEST_P(RowKernelsTest, CopyRowsWritesTheRowsAndNothingBetweenThem) {
    for (const RowKernels *level : Levels())
        for (const std::intptr_t rowBytes : RowLengths()) {
            ASSERT_NO_FATAL_FAILURE(CopyRows(*level, rowBytes, 0, 1, true));
            ASSERT_NO_FATAL_FAILURE(CopyRows(*level, rowBytes, 1, 0, true));
            ASSERT_NO_FATAL_FAILURE(CopyRows(*level, rowBytes, 3, 0, true));
            ASSERT_NO_FATAL_FAILURE(CopyRows(*level, rowBytes, 4, 5, true));
            ASSERT_NO_FATAL_FAILURE(CopyRows(*level, rowBytes, 3, 7, false));
        }
}

TEST(RowKernelsOrder, CopyRowsThatShareTargetBytesLeavesTheLastRowOnTop) {
    std::vector<char> source(4000), target(5000, 'u');
    std::minstd_rand random(5);
    std::generate(source.begin(), source.end(), [&random] { return static_cast<char>(random()); });
    for (const RowKernels *level : Levels())
        for (const std::intptr_t rowBytes : {16, 20, 33, 64, 65, 100, 129, 200, 300})
            for (const std::intptr_t targetStep : {0, 1, 15, -7}) {
                constexpr std::intptr_t rows = 9, middle = 1000;
                auto expected = target;
                for (std::intptr_t y = 0; y < rows; ++y)
                    std::copy_n(source.begin() + y * 310, rowBytes, expected.begin() + middle + y * targetStep);
                level->CopyRows(target.data() + middle, targetStep, source.data(), 310, rowBytes, rows);
                ASSERT_EQ(target, expected) << level->Name << ", rows of " << rowBytes << ", step " << targetStep;
            }
}

TEST(RowKernelsOrder, CopyRowsOfLargeRectanglesGivesTheSameBytes) {
    constexpr std::intptr_t sourceStep = 1040, targetStep = 1029;
    for (const RowKernels *level : Levels())
        for (const std::intptr_t rows : {300, 530, 1100}) {
            std::vector<char> source(static_cast<std::size_t>(rows * sourceStep));
            std::vector<char> target(static_cast<std::size_t>(rows * targetStep), 'u');
            std::minstd_rand random(6);
            std::generate(source.begin(), source.end(), [&random] { return static_cast<char>(random()); });
            auto expected = target;
            for (std::intptr_t y = 0; y < rows; ++y)
                std::copy_n(source.begin() + y * sourceStep, 1001, expected.begin() + y * targetStep);
            level->CopyRows(target.data(), targetStep, source.data(), sourceStep, 1001, rows);
            ASSERT_TRUE(target == expected) << level->Name << ", " << rows;
        }
}

TEST_P(RowKernelsTest, ExtractTakesEveryThirdByteAndReadsNoneBehindTheLast) {
    for (const RowKernels *level : Levels())
        for (std::intptr_t count = 0; count <= LongestRow; ++count) {
            const char *const from = Fill(source, std::max<std::intptr_t>(0, 3 * count - 2));
            char *const to = target.Piece(count);
            level->ExtractEveryThird(to, from, count);
            std::string expected;
            for (std::intptr_t i = 0; i < count; ++i)
                expected.push_back(from[3 * i]);
            ASSERT_EQ(target.Text(), expected) << level->Name << ", " << count;
            ASSERT_TRUE(target.RestIsUnwritten()) << level->Name << ", " << count;
        }
}

TEST_P(RowKernelsTest, SplitTakesPixelsOfThreeBytesApart) {
    Ground grounds[3] = {Ground(GetParam()), Ground(GetParam()), Ground(GetParam())};
    for (const RowKernels *level : Levels())
        for (std::intptr_t count = 0; count <= LongestRow; ++count) {
            const char *const from = Fill(source, 3 * count);
            char *const targets[3] = {grounds[0].Piece(count), grounds[1].Piece(count), grounds[2].Piece(count)};
            level->SplitThreeBytes(targets, from, count);
            for (std::intptr_t k = 0; k < 3; ++k) {
                std::string expected;
                for (std::intptr_t i = 0; i < count; ++i)
                    expected.push_back(from[3 * i + k]);
                ASSERT_EQ(grounds[k].Text(), expected) << level->Name << ", " << count << ", byte " << k;
                ASSERT_TRUE(grounds[k].RestIsUnwritten()) << level->Name << ", " << count << ", byte " << k;
            }
        }
}

TEST_P(RowKernelsTest, JoinPutsPixelsOfThreeBytesTogether) {
    Ground grounds[3] = {Ground(GetParam()), Ground(GetParam()), Ground(GetParam())};
    for (const RowKernels *level : Levels())
        for (std::intptr_t count = 0; count <= LongestRow; ++count) {
            const char *const sources[3] = {Fill(grounds[0], count), Fill(grounds[1], count),
                                            Fill(grounds[2], count)};
            char *const to = target.Piece(3 * count);
            level->JoinThreeBytes(to, sources, count);
            std::string expected;
            for (std::intptr_t i = 0; i < count; ++i)
                for (const char *plane : sources)
                    expected.push_back(plane[i]);
            ASSERT_EQ(target.Text(), expected) << level->Name << ", " << count;
            ASSERT_TRUE(target.RestIsUnwritten()) << level->Name << ", " << count;
        }
}

/// A tile whose source lines stand gap bytes apart, upward or downward in memory, into target rows in no order.
template <class T>
void RowKernelsTest::Transpose(std::intptr_t lines, std::intptr_t rows, std::intptr_t gap, bool upward) {
    constexpr auto size = static_cast<std::intptr_t>(sizeof(T));
    constexpr std::intptr_t offset = 5; // of the tile in each target row
    const std::intptr_t pitch = rows * size + gap;
    const std::intptr_t sourceBytes = lines < 1 || rows < 1 ? 0 : (lines - 1) * pitch + rows * size;
    const std::intptr_t targetRow = offset + lines * size + 3;
    std::vector<char> from(static_cast<std::size_t>(sourceBytes));
    std::generate(from.begin(), from.end(), [this] { return static_cast<char>(random()); });
    FencedBlock sourceBlock(static_cast<std::size_t>(std::max<std::intptr_t>(sourceBytes, 1)), GetParam());
    char *const block = reinterpret_cast<char *>(sourceBlock.Data());
    std::copy(from.begin(), from.end(), block);
    std::vector<char> to(static_cast<std::size_t>(targetRow * rows), 'u'), expected = to;
    std::vector<char *> targetRows;
    for (std::intptr_t j = 0; j < rows; ++j)
        targetRows.push_back(to.data() + j * 7 % rows * targetRow);
    if (rows % 7 == 0)
        for (std::intptr_t j = 0; j < rows; ++j)
            targetRows[static_cast<std::size_t>(j)] = to.data() + (rows - 1 - j) * targetRow;
    const std::intptr_t first = upward ? 0 : std::max<std::intptr_t>(0, lines - 1) * pitch;
    const std::intptr_t step = upward ? pitch : -pitch;
    for (std::intptr_t i = 0; i < lines; ++i)
        for (std::intptr_t j = 0; j < rows; ++j)
            std::copy_n(from.data() + first + i * step + j * size, size,
                        expected.data() + (targetRows[static_cast<std::size_t>(j)] - to.data()) + offset + i * size);
    Image::TransposeTile<T>(targetRows.data(), offset, block + (sourceBytes == 0 ? 0 : first), step, lines, rows);
    ASSERT_EQ(to, expected) << lines << " lines of " << rows << " elements of " << size << " bytes";
}

TEST_P(RowKernelsTest, TransposeTurnsTilesOfAnySizeAndTouchesNothingElse) {
    for (std::intptr_t lines = 0; lines <= 64; lines += lines < 20 ? 1 : 7)
        for (std::intptr_t rows = 0; rows <= 64; rows += rows < 36 ? 1 : 4) {
            const bool upward = (lines + rows) % 2 == 0;
            ASSERT_NO_FATAL_FAILURE(Transpose<std::uint8_t>(lines, rows, 0, upward));
            ASSERT_NO_FATAL_FAILURE(Transpose<std::uint16_t>(lines, rows, 3, upward));
            ASSERT_NO_FATAL_FAILURE(Transpose<ThreeBytes>(lines, rows, 1, !upward));
            ASSERT_NO_FATAL_FAILURE(Transpose<std::uint32_t>(lines, rows, 0, !upward));
            ASSERT_NO_FATAL_FAILURE(Transpose<std::uint64_t>(lines, rows, 2, upward));
        }
}

} // namespace

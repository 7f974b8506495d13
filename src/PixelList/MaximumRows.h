// The tests of a search for maxima, on 64 pixels at a time: is a pixel at least the threshold and at least all of its
// eight neighbours; is it equal to a value or greater. And the flood of a small area in registers.
#pragma once

#include <cstdint>

namespace PixelList {

/// A row of pixels T with the rows above and below it. Each points to the pixel in the first column that is tested,
/// and can be read from the one before it to the one behind the last that is tested. They need not be aligned.
struct NeighbourRows {
    const char *Above;
    const char *Own;
    const char *Below;
};

/// 64 columns, the first of them in the lowest bit.
struct MaximumBits {
    std::uint64_t NoneGreater; ///< at least the threshold and all eight neighbours
    std::uint64_t AllLess;     ///< greater than all eight neighbours; of no meaning where NoneGreater is not set
};

inline constexpr std::intptr_t BitsColumns = 64;

/// Tests count columns. bits holds count / 64 of them, rounded up; beyond the last column none is set.
/// T is char, unsigned char, short, unsigned short or int.
template <class T>
void TestRow(const NeighbourRows &rows, std::intptr_t count, T threshold, MaximumBits *bits);

/// The same columns beside one value.
struct ComparedBits {
    std::uint64_t Equal;
    std::uint64_t Greater;
};

/// Compares 64 pixels of each of count rows. They need not be aligned.
template <class T>
void CompareRows(const char *const *rows, int count, T value, ComparedBits *bits);

/// A window of 32 columns in the rows around a pixel, all of them inside the image.
struct FloodWindow {
    static constexpr int Columns = 32;
    static constexpr int MostLines = 32;

    const char *Rows[MostLines]; ///< the first pixel of each
    char *Marks;                 ///< of the window's first row, that of its first column in the lowest bit
    std::intptr_t MarksPitch;    ///< bytes from the marks of a row to those of the next
    int Line;                    ///< the pixel's row in the window
    int Place;                   ///< its column; it has no mark
    std::uint32_t OpenColumns;   ///< columns beside which the image goes on outside the window
};

enum class FloodOutcome { Maximum, NoMaximum, TooLarge };

/// True when FloodSmall can run at the current level.
bool CanFloodSmall();

/// Marks the pixels of a value that are connected with the given one, which has it, through pixels without a mark.
/// Registers  1 or 2: the window has 16 rows for each.
/// Result     TooLarge: the area may go on outside the window, and nothing has been marked. NoMaximum: something
///            greater without a mark lies beside the area.
template <class T, int Registers>
FloodOutcome FloodSmall(const FloodWindow &window, T value);

} // namespace PixelList

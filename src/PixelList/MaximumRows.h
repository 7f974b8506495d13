// The tests of a search for maxima, on 64 pixels at a time: is a pixel at least the threshold and at least all of its
// eight neighbours; is it equal to a value or greater.
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

/// Compares 64 pixels, which need not be aligned.
template <class T>
ComparedBits CompareRow(const char *pixels, T value);

} // namespace PixelList

// Counting the values of 8-bit pixels.
#pragma once

#include <array>

#include "Image/PlaneView.h"
#include "Scan/PixelRows.h"

namespace Scan {

/// The per-pixel operation of the histogram. Rows are counted into several tables in turn, so that equal neighbours
/// don't wait for each other; Finish brings them together.
class CHistogram8Bit {
public:
    using Pixel = Loose<unsigned char>::Type;

    /// counters: 256, not cleared here.
    explicit CHistogram8Bit(std::uint64_t *counters) : counters_(counters) {}

    static bool IsOrderFree(const Image::PlaneView &) { return true; }
    void operator()(const Pixel &pixel) { ++counters_[pixel]; }
    void Rows(const Image::PlaneView &rectangle);
    void Row(const Image::PlaneView &plane, std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        Rows(plane.Part(x, y, count, 1));
    }
    void Finish();

private:
    void Count(const unsigned char *pixels, std::intptr_t count, bool useAllTables);
    void CountDense(const Image::PlaneView &rectangle);

    static constexpr std::size_t Tables = 8;
    std::uint64_t *counters_;
    std::uint32_t pixels_ = 0; ///< counted into the tables since the last Finish
    std::array<std::array<std::uint32_t, 256>, Tables> tables_{};
};

} // namespace Scan

#include "Scan/Histogram.h"

#include <cstring>

namespace Scan {

namespace {

/// True when most neighbours are alike, as in pictures. Then counters are needed again before they are written, and
/// many tables help; without neighbours that are alike, fewer tables are quicker to reach.
bool HasAlikeNeighbours(const unsigned char *pixels, std::intptr_t count) {
    constexpr std::intptr_t samples = 16, worthALook = 64;
    constexpr int alike = 8;
    if (count < worthALook)
        return false;
    int found = 0;
    for (std::intptr_t i = 0; i < samples; ++i) {
        const unsigned char *const pixel = pixels + i * (count - 1) / samples;
        found += pixel[1] - pixel[0] <= alike && pixel[0] - pixel[1] <= alike ? 1 : 0;
    }
    return found > samples / 2;
}

template <std::size_t UsedTables, class Tables>
void CountInto(Tables &tables, const unsigned char *pixels, std::intptr_t count) {
    constexpr std::intptr_t step = 16;
    std::intptr_t done = 0;
    for (; done + step <= count; done += step) {
        std::uint64_t words[2];
        std::memcpy(words, pixels + done, sizeof words);
        for (std::size_t byte = 0; byte < 8; ++byte)
            for (std::size_t word = 0; word < 2; ++word)
                ++tables[(2 * byte + word) % UsedTables][(words[word] >> (8 * byte)) & 0xFF];
    }
    for (; done < count; ++done)
        ++tables[0][pixels[done]];
}

} // namespace

void CHistogram8Bit::Count(const unsigned char *pixels, std::intptr_t count, bool useAllTables) {
    constexpr std::intptr_t most = std::intptr_t{1} << 30;
    for (; count > 0; pixels += most, count -= most) {
        const std::intptr_t part = std::min(most, count);
        if (useAllTables)
            CountInto<Tables>(tables_, pixels, part);
        else
            CountInto<2>(tables_, pixels, part);
        pixels_ += static_cast<std::uint32_t>(part);
        if (pixels_ >= 0x80000000u) // before a counter of 32 bits can pass its end
            Finish();
    }
}

void CHistogram8Bit::CountDense(const Image::PlaneView &rectangle) {
    const auto *const first = reinterpret_cast<const unsigned char *>(rectangle.Pixel(0, 0));
    if (rectangle.Height > 1 && rectangle.YStep == rectangle.Width) {
        const std::intptr_t count = rectangle.Width * rectangle.Height;
        return Count(first, count, HasAlikeNeighbours(first, count));
    }
    const bool useAllTables = HasAlikeNeighbours(first, rectangle.Width);
    for (std::intptr_t y = 0; y < rectangle.Height; ++y)
        Count(reinterpret_cast<const unsigned char *>(rectangle.Pixel(0, y)), rectangle.Width, useAllTables);
}

void CHistogram8Bit::Rows(const Image::PlaneView &rectangle) {
    if (LinearStep<unsigned char>(rectangle) == 1)
        return CountDense(rectangle);
    Chunk<unsigned char> chunk;
    ForEachPiece<unsigned char>(rectangle.Width, rectangle.Height,
                                [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
                                    const unsigned char *const pixels = PixelsToRead(rectangle, x, y, count, chunk);
                                    Count(pixels, count, HasAlikeNeighbours(pixels, count));
                                });
}

void CHistogram8Bit::Finish() {
    for (auto &table : tables_) {
        for (std::size_t value = 0; value < table.size(); ++value)
            counters_[value] += table[value];
        table.fill(0);
    }
    pixels_ = 0;
}

} // namespace Scan

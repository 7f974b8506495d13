#include "Scan/WhiteBalanceSum.h"

#include "Image/KernelLevel.h"

namespace Scan {
namespace {

using Bytes = Image::Vector<std::uint8_t, 32>;
using Words = Image::Vector<std::uint16_t, 64>;

/// Adds 96 bytes to 96 sums of 16 bits.
ORV_INLINE void AddBlock(Words (&sums)[3], const unsigned char *pixels) {
    for (int i = 0; i < 3; ++i) {
        Bytes bytes;
        Image::LoadVector(bytes, reinterpret_cast<const char *>(pixels + 32 * i));
        sums[i] += __builtin_convertvector(bytes, Words);
    }
}

/// Adds byte i of the sums to the plane that i % 3 stands for.
ORV_INLINE void Collect(const Words (&words)[3], std::uint64_t *sums) {
    std::uint16_t lanes[96];
    std::memcpy(lanes, words, sizeof lanes);
    for (std::size_t i = 0; i < 96; i += 3)
        for (std::size_t k = 0; k < 3; ++k)
            sums[k] += lanes[i + k];
}

ORV_INLINE void AddGroups(const unsigned char *pixels, std::intptr_t count, std::uint64_t *sums) {
    constexpr std::intptr_t blockPixels = 32, mostBlocks = 256; // 256 bytes fit a sum of 16 bits
    std::intptr_t done = 0;
    while (count - done >= blockPixels) {
        const std::intptr_t blocks = std::min(mostBlocks, (count - done) / blockPixels);
        Words words[3] = {};
        for (std::intptr_t i = 0; i < blocks; ++i)
            AddBlock(words, pixels + 3 * (done + i * blockPixels));
        Collect(words, sums);
        done += blocks * blockPixels;
    }
    for (; done < count; ++done)
        for (std::size_t k = 0; k < 3; ++k)
            sums[k] += pixels[3 * done + static_cast<std::intptr_t>(k)];
}

} // namespace

void AddThreeBytePixels(const unsigned char *pixels, std::intptr_t count, std::uint64_t (&sums)[3]) {
    std::uint64_t *const added = sums;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { AddGroups(pixels, count, added); });
}

template <class T>
std::uint64_t SumOf(const T *pixels, std::intptr_t count) {
    std::uint64_t sum = 0;
    std::uint64_t *const result = &sum;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        std::uint64_t total = 0;
        for (std::intptr_t i = 0; i < count; ++i)
            total += static_cast<std::uint64_t>(pixels[i]);
        *result = total;
    });
    return sum;
}

template std::uint64_t SumOf<signed char>(const signed char *, std::intptr_t);
template std::uint64_t SumOf<unsigned char>(const unsigned char *, std::intptr_t);
template std::uint64_t SumOf<short>(const short *, std::intptr_t);
template std::uint64_t SumOf<unsigned short>(const unsigned short *, std::intptr_t);
template std::uint64_t SumOf<int>(const int *, std::intptr_t);
template std::uint64_t SumOf<unsigned int>(const unsigned int *, std::intptr_t);

} // namespace Scan

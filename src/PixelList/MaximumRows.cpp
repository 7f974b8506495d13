#include "PixelList/MaximumRows.h"

#include "PixelList/PixelBlocks.h"

namespace PixelList {
namespace {

template <class T>
ORV_INLINE T Greater(T a, T b) {
    return a < b ? b : a;
}

template <class T>
ORV_INLINE void TestPixels(const NeighbourRows &rows, std::intptr_t first, std::intptr_t count, T threshold,
                           BlockBytes &bytes) {
    using Pixel = typename Scan::Loose<T>::Type;
    const Pixel *const above = reinterpret_cast<const Pixel *>(rows.Above) + first;
    const Pixel *const own = reinterpret_cast<const Pixel *>(rows.Own) + first;
    const Pixel *const below = reinterpret_cast<const Pixel *>(rows.Below) + first;
    for (std::intptr_t i = 0; i < count; ++i) {
        const T pixel = own[i];
        const T left = Greater<T>(above[i - 1], Greater<T>(own[i - 1], below[i - 1]));
        const T right = Greater<T>(above[i + 1], Greater<T>(own[i + 1], below[i + 1]));
        const T most = Greater<T>(Greater<T>(left, right), Greater<T>(above[i], below[i]));
        bytes.First[i] = pixel >= Greater<T>(most, threshold) ? 0xFF : 0;
        bytes.Second[i] = pixel > most ? 0xFF : 0;
    }
}

/// Blocks of 64 columns, whose number the compiler knows. The last one ends at the last column and meets the one
/// before.
template <class T>
ORV_INLINE void TestBlocks(const NeighbourRows &given, std::intptr_t count, T threshold, MaximumBits *bits) {
    const NeighbourRows rows = given;
    BlockBytes bytes;
    std::intptr_t first = 0;
    for (; first + BitsColumns <= count; first += BitsColumns, ++bits) {
        TestPixels(rows, first, BitsColumns, threshold, bytes);
        *bits = {BitsOf(bytes.First), BitsOf(bytes.Second)};
    }
    if (first == count)
        return;
    TestPixels(rows, count - BitsColumns, BitsColumns, threshold, bytes);
    const auto again = static_cast<int>(first - (count - BitsColumns));
    *bits = {BitsOf(bytes.First) >> again, BitsOf(bytes.Second) >> again};
}

} // namespace

template <class T>
void TestRow(const NeighbourRows &rows, std::intptr_t count, T threshold, MaximumBits *bits) {
    if (count >= BitsColumns) {
        const NeighbourRows *const used = &rows;
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { TestBlocks(*used, count, threshold, bits); });
    } else if (count > 0) {
        BlockBytes bytes = {};
        TestPixels(rows, 0, count, threshold, bytes);
        *bits = {BitsOf(bytes.First), BitsOf(bytes.Second)};
    }
}

template <class T>
ComparedBits CompareRow(const char *pixels, T value) {
    ComparedBits bits;
    ComparedBits *const result = &bits;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { *result = ComparePixels(pixels, value); });
    return bits;
}

template void TestRow(const NeighbourRows &, std::intptr_t, char, MaximumBits *);
template void TestRow(const NeighbourRows &, std::intptr_t, unsigned char, MaximumBits *);
template void TestRow(const NeighbourRows &, std::intptr_t, short, MaximumBits *);
template void TestRow(const NeighbourRows &, std::intptr_t, unsigned short, MaximumBits *);
template void TestRow(const NeighbourRows &, std::intptr_t, int, MaximumBits *);

template ComparedBits CompareRow(const char *, char);
template ComparedBits CompareRow(const char *, unsigned char);
template ComparedBits CompareRow(const char *, short);
template ComparedBits CompareRow(const char *, unsigned short);
template ComparedBits CompareRow(const char *, int);

} // namespace PixelList

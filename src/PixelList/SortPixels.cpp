#include "PixelList/SortPixels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <new>
#include <utility>

namespace PixelList {
namespace {

/// A pixel with a number whose order is about that of the pixels.
struct KeyedPixel {
    std::uint64_t Key;
    CPixel *Pixel;
};

/// An unsigned number that is greater for a greater double, and equal for both zeros. NaNs are at the ends.
std::uint64_t KeyOf(double number) {
    constexpr auto signBit = std::uint64_t{1} << 63;
    const auto bits = std::bit_cast<std::uint64_t>(number + 0.0);
    return (bits & signBit) != 0 ? ~bits : bits | signBit;
}

/// Fetches what pixel i is read from soon: the objects lie anywhere in memory.
void FetchAhead(const CPixel *const *pixels, std::size_t i, std::size_t count) {
    constexpr std::size_t toObject = 24, toComponents = 12;
    if (i + toObject < count)
        __builtin_prefetch(pixels[i + toObject]);
    if (i + toComponents < count)
        __builtin_prefetch(pixels[i + toComponents]->Components);
}

// ---- a radix sort by bytes, the lowest first

constexpr std::size_t KeyBytes = sizeof(std::uint64_t);
using Buckets = std::array<std::size_t, 256>;

std::size_t ByteOf(std::uint64_t key, std::size_t byte) {
    return (key >> (8 * byte)) & 0xFF;
}

/// Moves all to where a byte of their keys tells, those with an equal one in the order in which they come.
void SortByByte(std::size_t byte, Buckets &buckets, const KeyedPixel *from, KeyedPixel *to, std::size_t count) {
    std::size_t begin = 0;
    for (std::size_t &bucket : buckets)
        begin += std::exchange(bucket, begin);
    for (std::size_t i = 0; i < count; ++i)
        to[buckets[ByteOf(from[i].Key, byte)]++] = from[i];
}

/// Sorts in two arrays of equal size, of which the first holds the pixels. Result: the one that holds them sorted.
const KeyedPixel *SortByKey(KeyedPixel *pixels, KeyedPixel *scratch, std::size_t count) {
    std::array<Buckets, KeyBytes> buckets = {};
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t byte = 0; byte < KeyBytes; ++byte)
            ++buckets[byte][ByteOf(pixels[i].Key, byte)];
    for (std::size_t byte = 0; byte < KeyBytes; ++byte) {
        const bool isSame = buckets[byte][ByteOf(pixels[0].Key, byte)] == count;
        if (isSame)
            continue;
        SortByByte(byte, buckets[byte], pixels, scratch, count);
        std::swap(pixels, scratch);
    }
    return pixels;
}

/// False, with the pixels as they were, when there is no memory.
template <class Key>
bool ArrangeByKey(std::vector<CPixel *> &pixels, Key key) {
    const std::size_t count = pixels.size();
    const std::unique_ptr<KeyedPixel[]> keyed(new (std::nothrow) KeyedPixel[count]);
    const std::unique_ptr<KeyedPixel[]> scratch(new (std::nothrow) KeyedPixel[count]);
    if (keyed == nullptr || scratch == nullptr)
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        FetchAhead(pixels.data(), i, count);
        keyed[i] = {KeyOf(key(*pixels[i])), pixels[i]};
    }
    const KeyedPixel *const sorted = SortByKey(keyed.get(), scratch.get(), count);
    std::transform(sorted, sorted + count, pixels.begin(), [](const KeyedPixel &pixel) { return pixel.Pixel; });
    return true;
}

// ---- the order itself

/// Sorts pixels that are nearly in order by insertion. False when they are not so near that it would be quick: the
/// pixels are then all there, in any order.
template <class Order>
bool FinishNearlySorted(std::vector<CPixel *> &pixels, const Order &order) {
    std::size_t movesLeft = 4 * pixels.size();
    for (std::size_t i = 1; i < pixels.size(); ++i) {
        FetchAhead(pixels.data(), i, pixels.size());
        CPixel *const pixel = pixels[i];
        std::size_t place = i;
        for (; place > 0 && movesLeft > 0 && order(pixel, pixels[place - 1]); --place, --movesLeft)
            pixels[place] = pixels[place - 1];
        pixels[place] = pixel;
        if (movesLeft == 0)
            return false;
    }
    return true;
}

/// A merge sort stays in its bounds whatever a comparison says, as long as it says the same again. It works in place
/// where there is no memory.
template <class Order>
void SortByComparisons(std::vector<CPixel *> &pixels, const Order &order) {
    std::stable_sort(pixels.begin(), pixels.end(), order);
}

/// So that no comparison throws when pixels are on their way.
void RequireComponents(const std::vector<CPixel *> &pixels, std::uint64_t count) {
    for (std::size_t i = 0; i < pixels.size() && count > 0; ++i) {
        FetchAhead(pixels.data(), i, pixels.size());
        (void)pixels[i]->At(count - 1);
    }
}

/// key is about in order, and cheaper to compare.
template <class Order, class Key>
void SortByOrder(SortMethod method, std::vector<CPixel *> &pixels, const Order &order, Key key) {
    if (method == SortMethod::ByComparisons || pixels.empty() || !ArrangeByKey(pixels, key) ||
        !FinishNearlySorted(pixels, order))
        SortByComparisons(pixels, order);
}

/// What keys are measured from: distances between pixels round less than those from the origin, which may be far
/// away.
const double *OriginOf(const std::vector<CPixel *> &pixels) {
    return pixels.empty() ? nullptr : pixels.front()->Components;
}

} // namespace

SortMethod ChooseSort(std::size_t count) {
    constexpr std::size_t fewest = 512;
    return count < fewest ? SortMethod::ByComparisons : SortMethod::ByKeys;
}

void SortByValue(SortMethod method, std::vector<CPixel *> &pixels) {
    RequireComponents(pixels, 3);
    const auto key = [](const CPixel &pixel) { return -pixel.Components[2]; };
    // The keys are in the order itself.
    if (method == SortMethod::ByComparisons || pixels.empty() || !ArrangeByKey(pixels, key))
        SortByComparisons(pixels, HasGreaterValue);
}

void SortByPosition(SortMethod method, std::vector<CPixel *> &pixels, const SortPixelsByPosition &order) {
    const double direction[] = {static_cast<double>(order.DirectionX), static_cast<double>(order.DirectionY)};
    RequireComponents(pixels, 2);
    SortByOrder(method, pixels, order, [&, origin = OriginOf(pixels)](const CPixel &pixel) {
        return (pixel.Components[0] - origin[0]) * direction[0] + (pixel.Components[1] - origin[1]) * direction[1];
    });
}

void SortByProjection(SortMethod method, std::vector<CPixel *> &pixels, const SortPixelsByProjection &order) {
    RequireComponents(pixels, order.Count);
    SortByOrder(method, pixels, order, [&, origin = OriginOf(pixels)](const CPixel &pixel) {
        double sum = 0;
        for (std::uint64_t i = 0; i < order.Count; ++i)
            sum += (pixel.Components[i] - origin[i]) * order.Direction[i];
        return sum;
    });
}

} // namespace PixelList

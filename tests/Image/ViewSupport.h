/* What the tests of views share: table axes as lists of offsets, and pieces of content turned and joined without any
 * table. */
#ifndef ORV_TESTS_VIEW_SUPPORT_H
#define ORV_TESTS_VIEW_SUPPORT_H

#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

namespace TestSupport {

using Offsets = std::vector<std::intptr_t>;

/// Offsets that nothing reads pixels through.
inline Offsets RandomOffsets(std::mt19937_64 &random, std::intptr_t count) {
    std::uniform_int_distribution<std::intptr_t> offset(-1'000'000'000'000, 1'000'000'000'000);
    Offsets offsets(static_cast<std::size_t>(count));
    for (auto &entry : offsets)
        entry = offset(random);
    return offsets;
}

/// An offset list as a FakeImage takes it.
inline Table::Offsets EntriesOf(Offsets offsets) {
    return [offsets = std::move(offsets)](std::intptr_t i) { return offsets[static_cast<std::size_t>(i)]; };
}

/// True when an axis of a table holds the offsets, and their first and last one four times more at the ends.
inline testing::AssertionResult AxisIs(const VPAEntry *table, std::intptr_t VPAEntry::*axis,
                                       const Offsets &expected) {
    const auto count = static_cast<std::intptr_t>(expected.size());
    for (std::intptr_t i = -4; i < count + 4; ++i) {
        const std::intptr_t nearest = expected[static_cast<std::size_t>(std::clamp<std::intptr_t>(i, 0, count - 1))];
        if (table[i].*axis != nearest)
            return testing::AssertionFailure()
                   << "entry " << i << " is " << table[i].*axis << " instead of " << nearest;
    }
    return testing::AssertionSuccess();
}

/// A plane without any table: rows of pixels of some bytes.
struct Raster {
    std::intptr_t Width;
    std::intptr_t Height;
    std::size_t PixelBytes;
    PlaneBytes Bytes;

    const std::uint8_t *At(std::intptr_t x, std::intptr_t y) const {
        return Bytes.data() + static_cast<std::size_t>(y * Width + x) * PixelBytes;
    }
};

/// Fills a raster pixel by pixel from where source(x, y) points.
template <class Source>
Raster MakeRaster(std::intptr_t width, std::intptr_t height, std::size_t pixelBytes, Source source) {
    Raster raster{width, height, pixelBytes, {}};
    for (std::intptr_t y = 0; y < height; ++y)
        for (std::intptr_t x = 0; x < width; ++x) {
            const std::uint8_t *pixel = source(x, y);
            raster.Bytes.insert(raster.Bytes.end(), pixel, pixel + pixelBytes);
        }
    return raster;
}

/// Turned by quarters: 1 counter-clockwise, 2 half, 3 clockwise, 0 as it is.
inline Raster Turned(const Raster &source, unsigned quarters) {
    const std::intptr_t right = source.Width - 1;
    const std::intptr_t bottom = source.Height - 1;
    switch (quarters % 4) {
    case 1:
        return MakeRaster(source.Height, source.Width, source.PixelBytes,
                          [&](auto x, auto y) { return source.At(right - y, x); });
    case 2:
        return MakeRaster(source.Width, source.Height, source.PixelBytes,
                          [&](auto x, auto y) { return source.At(right - x, bottom - y); });
    case 3:
        return MakeRaster(source.Height, source.Width, source.PixelBytes,
                          [&](auto x, auto y) { return source.At(y, bottom - x); });
    default:
        return source;
    }
}

/// Side by side (direction 0) or one above the other (direction 1).
inline Raster Joined(const Raster &first, const Raster &second, std::uint32_t direction) {
    if (direction == 0)
        return MakeRaster(first.Width + second.Width, first.Height, first.PixelBytes, [&](auto x, auto y) {
            return x < first.Width ? first.At(x, y) : second.At(x - first.Width, y);
        });
    return MakeRaster(first.Width, first.Height + second.Height, first.PixelBytes, [&](auto x, auto y) {
        return y < first.Height ? first.At(x, y) : second.At(x, y - first.Height);
    });
}

} // namespace TestSupport

#endif

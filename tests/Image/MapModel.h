/* What the tests of views compare with: which source pixel a view shows, worked out without a table, and the axes of
 * any image as lists of offsets. Also what every silent function leaves behind when it refuses. */
#ifndef ORV_TESTS_MAP_MODEL_H
#define ORV_TESTS_MAP_MODEL_H

#include "Image/ViewSupport.h"
#include "ImageViews.h"

#include <limits>

namespace TestSupport {

inline constexpr std::intptr_t Highest = std::numeric_limits<std::intptr_t>::max();
inline constexpr std::intptr_t Lowest = std::numeric_limits<std::intptr_t>::min();
inline constexpr TCoordinateMap SkewedMap{10.0, -20.5, {2.0, 1.0, -1.0, 3.0}};
inline constexpr TDataType TenPixelTypes[] = {0x8, 0x108, 0x10, 0x110, 0x20, 0x120, 0x40, 0x140, 0x220, 0x240};

/// Edges included.
struct PixelRectangle {
    std::intptr_t Left, Top, Right, Bottom;
};
inline void PrintTo(const PixelRectangle &rectangle, std::ostream *out) {
    *out << "(" << rectangle.Left << ", " << rectangle.Top << ") to (" << rectangle.Right << ", " << rectangle.Bottom
         << ")";
}

/// The source index that place i of a view of targetCount places shows: the truncated product, in double.
inline std::intptr_t ShownIndex(std::intptr_t first, std::intptr_t last, std::intptr_t targetCount, std::intptr_t i) {
    const double step = static_cast<double>(last - first + 1) / static_cast<double>(targetCount);
    return first + static_cast<std::int32_t>(static_cast<double>(i) * step);
}

inline Offsets ShownOffsets(const Offsets &source, std::intptr_t first, std::intptr_t last,
                            std::intptr_t targetCount) {
    Offsets shown;
    for (std::intptr_t i = 0; i < targetCount; ++i)
        shown.push_back(source[static_cast<std::size_t>(ShownIndex(first, last, targetCount, i))]);
    return shown;
}

inline Raster ShownRaster(const Raster &source, const PixelRectangle &part, std::intptr_t width,
                          std::intptr_t height) {
    return MakeRaster(width, height, source.PixelBytes, [&](std::intptr_t x, std::intptr_t y) {
        return source.At(ShownIndex(part.Left, part.Right, width, x), ShownIndex(part.Top, part.Bottom, height, y));
    });
}

/// The offsets of one axis of an image's table.
inline Offsets AxisOf(const VPAEntry *table, std::intptr_t VPAEntry::*axis, std::intptr_t count) {
    Offsets offsets;
    for (std::intptr_t i = 0; i < count; ++i)
        offsets.push_back(table[i].*axis);
    return offsets;
}

/// A random rectangle within an image of a size.
template <class Random>
PixelRectangle RandomPart(Random &random, std::intptr_t width, std::intptr_t height) {
    const auto pick = [&](std::intptr_t low, std::intptr_t high) {
        return std::uniform_int_distribution<std::intptr_t>(low, high)(random);
    };
    const std::intptr_t left = pick(0, width - 1);
    const std::intptr_t top = pick(0, height - 1);
    return {left, top, pick(left, width - 1), pick(top, height - 1)};
}

inline TCoordinateMap MapOf(void *image) {
    TCoordinateMap map{};
    EXPECT_EQ(ImageInterface(image)->GetCoordinateMap(&map), 0);
    return map;
}

/// Calls a function that is expected to give 0 without a report, and to leave out as told.
template <class Function>
void ExpectSilentRefusal(void *out, void *expectedOut, Function function) {
    ClearReports();
    EXPECT_FALSE(function(&out));
    EXPECT_EQ(out, expectedOut);
    ExpectNoReport();
}

/// Runs a function with an image that throws at each of its operations in turn, until it has got through. Whatever is
/// thrown has to arrive; nothing may be handed out, and no reference kept.
template <class Thrown, class Function>
void ExpectPassedOn(FakeImage &image, Function function) {
    bool finished = false;
    for (int failing = 0; !finished; ++failing) {
        ASSERT_LT(failing, 1000);
        int number = 0;
        image.Fails.OnOperation = [&] {
            if (number++ == failing)
                throw Thrown("refused");
        };
        void *out = UntouchedPointer();
        try {
            function(&out);
            finished = true;
            EXPECT_LE(number, failing) << "operation " << failing << " was swallowed";
            if (out != UntouchedPointer())
                ReleaseObject(out);
        } catch (const Thrown &) {
            EXPECT_TRUE(out == nullptr || out == UntouchedPointer()) << "operation " << failing;
        }
        EXPECT_EQ(image.Count(), 1) << "operation " << failing;
    }
    image.Fails.OnOperation = nullptr;
    image.ClearCalls();
}

} // namespace TestSupport

#endif

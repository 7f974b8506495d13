/* Overlays and lists of points by the plain rules: which pixels a list marks, which marks a rectangle holds, and
 * images whose planes differ in type. */
#ifndef ORV_TESTS_OVERLAY_MODEL_H
#define ORV_TESTS_OVERLAY_MODEL_H

#include "PixelList/PixelLists.h"
#include "Support/TestLayouts.h"

namespace TestSupport {

/// Clears bit 0 of every pixel.
inline PlaneBytes Unmarked(PlaneBytes plane, std::size_t pixelSize) {
    for (std::size_t byte = 0; byte < plane.size(); byte += pixelSize)
        plane[byte] &= 0xFE;
    return plane;
}

/// Sets bit 0 of the pixels that the points lie on once their fractions are dropped.
inline PlaneBytes Marked(PlaneBytes plane, std::size_t pixelSize, std::intptr_t width, std::intptr_t height,
                         const Points &points) {
    for (const auto &point : points) {
        const double x = std::trunc(point[0]), y = std::trunc(point[1]);
        if (x >= 0 && x < static_cast<double>(width) && y >= 0 && y < static_cast<double>(height))
            plane[static_cast<std::size_t>(y * static_cast<double>(width) + x) * pixelSize] |= 1;
    }
    return plane;
}

struct ListRectangle {
    std::int64_t Left, Top, Right, Bottom;
};
inline void PrintTo(const ListRectangle &r, std::ostream *out) {
    *out << r.Left << ", " << r.Top << " to " << r.Right << ", " << r.Bottom;
}

/// The marks of a plane inside a rectangle, row by row; nothing when the rectangle begins behind the image.
inline std::optional<Points> MarksIn(const PlaneBytes &plane, std::size_t pixelSize, std::int64_t width,
                                     std::int64_t height, std::int64_t dimension, ListRectangle r) {
    if (r.Left > r.Right)
        std::swap(r.Left, r.Right);
    if (r.Top > r.Bottom)
        std::swap(r.Top, r.Bottom);
    if (!(width > r.Left && height > r.Top))
        return std::nullopt;
    const std::int64_t right = r.Right == 0 ? width - 1 : std::min(r.Right, width - 1);
    const std::int64_t bottom = r.Bottom == 0 ? height - 1 : std::min(r.Bottom, height - 1);
    Points points;
    for (std::int64_t y = std::max<std::int64_t>(r.Top, 0); y <= bottom; ++y)
        for (std::int64_t x = std::max<std::int64_t>(r.Left, 0); x <= right; ++x)
            if ((plane[static_cast<std::size_t>(y * width + x) * pixelSize] & 1) != 0) {
                Point point(static_cast<std::size_t>(dimension), 0.0);
                point[0] = static_cast<double>(x);
                point[1] = static_cast<double>(y);
                points.push_back(point);
            }
    return points;
}

/// Points in and around an image, on fractions and far off.
inline Points PointsAround(std::intptr_t width, std::intptr_t height, std::int64_t dimension, std::size_t count,
                           std::uint32_t seed) {
    RandomComponents random(seed);
    Points points;
    while (points.size() < count) {
        Point point = random.AnyPoint(dimension);
        if (random.Pick(0, 5) != 0)
            point[0] = static_cast<double>(random.Pick(-12, 4 * width + 12)) / 4.0;
        if (random.Pick(0, 5) != 0)
            point[1] = static_cast<double>(random.Pick(-12, 4 * height + 12)) / 4.0;
        points.push_back(point);
    }
    return points;
}

/// An image whose planes have a type each, one behind the other, with random pixels.
inline std::unique_ptr<FakeImage> OfTypes(const std::vector<TDataType> &types, std::intptr_t width,
                                          std::intptr_t height, std::uint32_t seed = 1) {
    const auto planeBytes = static_cast<std::size_t>(width * height) * 8;
    auto image = std::make_unique<FakeImage>(width, height, planeBytes * types.size());
    std::mt19937 random(seed);
    for (auto &byte : image->Pixels)
        byte = static_cast<std::uint8_t>(random());
    for (std::size_t plane = 0; plane < types.size(); ++plane) {
        const auto size = static_cast<std::intptr_t>(PixelSize(types[plane]));
        image->AddPlane(
            image->Pixels.data() + plane * planeBytes, types[plane], [=](std::intptr_t i) { return i * size; },
            [=](std::intptr_t j) { return j * width * size; });
    }
    return image;
}

} // namespace TestSupport

#endif

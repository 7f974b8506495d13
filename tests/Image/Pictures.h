/* Small images drawn as text: a line per row, a character per 8-bit pixel. */
#ifndef ORV_TESTS_PICTURES_H
#define ORV_TESTS_PICTURES_H

#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

namespace TestSupport {

using Rows = std::vector<std::string>;

/// What a plane of 8 bits shows.
inline Rows Show(void *image, std::intptr_t plane = 0) {
    const ImageSize size = SizeOf(image);
    const PlaneBytes bytes = PixelBytes(image, plane);
    Rows rows;
    for (std::intptr_t y = 0; y < size.Height; ++y)
        rows.emplace_back(bytes.begin() + y * size.Width, bytes.begin() + (y + 1) * size.Width);
    return rows;
}

/// An image of one plane per drawing, all of the same size.
inline std::unique_ptr<FakeImage> DrawnPlanes(const std::vector<Rows> &planes) {
    const auto width = std::ssize(planes[0][0]);
    const auto height = std::ssize(planes[0]);
    auto image = FakeImage::Planar(width, height, std::ssize(planes), 8);
    for (std::size_t plane = 0; plane < planes.size(); ++plane)
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x)
                *image->PixelAddress(plane, x, y) = static_cast<std::uint8_t>(
                    planes[plane][static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]);
    return image;
}
inline std::unique_ptr<FakeImage> Drawn(const Rows &rows) {
    return DrawnPlanes({rows});
}

/// Copies a rectangle of a content without tables: the pixels [left, right] x [top, bottom] to a place of the target.
struct PlainCopy {
    std::intptr_t SourceWidth, TargetWidth;
    std::size_t PixelBytes;

    void operator()(const PlaneBytes &source, PlaneBytes &target, std::intptr_t left, std::intptr_t top,
                    std::intptr_t right, std::intptr_t bottom, std::intptr_t targetX, std::intptr_t targetY) const {
        for (std::intptr_t y = top; y <= bottom; ++y)
            for (std::intptr_t x = left; x <= right; ++x)
                std::copy_n(source.data() + static_cast<std::size_t>(y * SourceWidth + x) * PixelBytes, PixelBytes,
                            target.data() +
                                static_cast<std::size_t>((targetY + y - top) * TargetWidth + targetX + x - left) *
                                    PixelBytes);
    }
};

/// A 24-bit or wider image whose columns are not evenly spaced, over its own pixels.
inline std::unique_ptr<FakeImage> Uneven(std::intptr_t width, std::intptr_t height, std::intptr_t planeCount,
                                         TDataType type) {
    const auto bytes = static_cast<std::intptr_t>(PixelSize(type));
    const std::intptr_t row = (width + 1) * bytes;
    auto image = std::make_unique<FakeImage>(width, height, static_cast<std::size_t>(row * height * planeCount));
    for (std::intptr_t plane = 0; plane < planeCount; ++plane)
        image->AddPlane(
            image->Pixels.data() + plane * row * height, type,
            [=](std::intptr_t x) { return (x + (x == width - 1 ? 1 : 0)) * bytes; },
            [=](std::intptr_t y) { return y * row; });
    return image;
}

} // namespace TestSupport

#endif

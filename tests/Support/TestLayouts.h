/* One logical content in many memory layouts: as images of the tests' own class, whose tables can be anything, and as
 * images over a pointer, which three pitches describe. The block of an image is exactly as large as its pixels reach,
 * so that the address sanitizer sees every access outside. */
#ifndef ORV_TESTS_TEST_LAYOUTS_H
#define ORV_TESTS_TEST_LAYOUTS_H

#include "ImageCreation.h"
#include "Support/TestImages.h"

#include <numeric>
#include <ostream>
#include <random>

namespace TestSupport {

/// The pixels of a plane in row order, without gaps.
using PlaneBytes = std::vector<std::uint8_t>;

/// Reads a plane through its table. Empty when the handle is no image or has no such plane.
inline PlaneBytes PixelBytes(void *image, std::intptr_t plane) {
    void *interface = nullptr;
    if (image == nullptr ||
        static_cast<pOLE::IUnknown *>(image)->QueryInterface(ORV_IID_IIMAGEVPA, &interface) != 0 ||
        interface == nullptr)
        return {};
    auto *const source = static_cast<pOLE::IImageVPA *>(interface);
    std::intptr_t planes = 0, width = 0, height = 0;
    TDataType type = 0;
    void *base = nullptr;
    VPAEntry *table = nullptr;
    PlaneBytes bytes;
    if (source->GetImageDimensions(&planes, &width, &height) == 0 && source->GetPlaneDatatype(plane, &type) == 0 &&
        source->GetPlaneVPA(plane, &base, &table) == 0) {
        const std::size_t size = PixelSize(type);
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x) {
                const auto *const pixel = static_cast<const std::uint8_t *>(base) + table[x].XEntry + table[y].YEntry;
                bytes.insert(bytes.end(), pixel, pixel + size);
            }
    }
    source->Release();
    return bytes;
}

/// Random pixels of some planes; every fourth byte is 0x00 or 0xFF.
inline std::vector<PlaneBytes> RandomContent(std::intptr_t width, std::intptr_t height, std::intptr_t planes,
                                             TDataType type, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<PlaneBytes> content(static_cast<std::size_t>(planes));
    for (auto &plane : content) {
        plane.resize(static_cast<std::size_t>(width * height) * PixelSize(type));
        for (auto &byte : plane) {
            const auto word = static_cast<std::uint32_t>(random());
            const auto extreme = static_cast<std::uint8_t>((word & 0x400u) != 0 ? 0xFF : 0x00);
            byte = (word & 0x300u) == 0 ? extreme : static_cast<std::uint8_t>(word);
        }
    }
    return content;
}

/// An image of a layout, and what its planes hold.
struct NamedImage {
    std::string Name;
    std::vector<PlaneBytes> Content;
    std::shared_ptr<FakeImage> Fake; ///< the image when it is of the tests' own class, else null
    std::shared_ptr<Handle> Owned;   ///< the image when it was made over a pointer, else null
    void *Get() const { return Fake ? Fake->Handle() : Owned->Get(); }
};
inline void PrintTo(const NamedImage &image, std::ostream *out) {
    *out << image.Name;
}

/// Offsets of a layout: pixel (x, y) of a plane lies at X(plane, x) + Y(plane, y) of the block.
struct LayoutRule {
    using Offset = std::function<std::intptr_t(std::intptr_t plane, std::intptr_t index)>;
    std::string Name;
    Offset X;
    Offset Y;
};

/// Pitches in bytes that CreateImageFromPointer takes; also a LayoutRule.
struct PitchRule {
    std::string Name;
    std::intptr_t X, Y, Plane;
    bool Reversed = false; ///< the planes stand in memory in the reverse order
};

/// Planar, interleaved, padded, mirrored, bottom-up and turned layouts as pitches.
inline std::vector<PitchRule> PitchRules(std::intptr_t width, std::intptr_t height, std::intptr_t planes,
                                         TDataType type) {
    const auto size = static_cast<std::intptr_t>(PixelSize(type));
    const std::intptr_t row = width * size;
    const std::intptr_t padded = row + 3 * size;
    return {{"planar", size, row, row * height},
            {"interleaved", planes * size, planes * row, size},
            {"interleavedReversed", planes * size, planes * row, size, true},
            {"padded", size, padded, padded * height},
            {"spaced", 2 * size, 2 * row, 2 * row * height},
            {"mirrored", -size, row, row * height},
            {"bottomUp", size, -padded, padded * height},
            {"turnedAround", -planes * size, -planes * row, size},
            {"columnsFirst", height * size, size, row * height}};
}

/// Writes content through the tables of an image of the tests' own.
inline void WriteContent(FakeImage &image, const std::vector<PlaneBytes> &content, std::intptr_t width,
                         std::intptr_t height, TDataType type) {
    const std::size_t size = PixelSize(type);
    for (std::size_t plane = 0; plane < content.size(); ++plane)
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x)
                std::memcpy(image.PixelAddress(plane, x, y),
                            content[plane].data() + static_cast<std::size_t>(y * width + x) * size, size);
}

/// Makes an image of the tests' own by a rule. The content written is read back, since a rule may repeat entries.
inline NamedImage MakeFake(const LayoutRule &rule, const std::vector<PlaneBytes> &content, std::intptr_t width,
                           std::intptr_t height, TDataType type) {
    const auto planes = static_cast<std::intptr_t>(content.size());
    std::intptr_t lowest = 0, highest = 0;
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x) {
                const std::intptr_t offset = rule.X(plane, x) + rule.Y(plane, y);
                lowest = std::min(lowest, offset);
                highest = std::max(highest, offset);
            }
    const auto bytes = static_cast<std::size_t>(highest - lowest) + PixelSize(type);
    auto image = std::make_shared<FakeImage>(width, height, bytes);
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        image->AddPlane(
            image->Pixels.data() - lowest, type, [&](std::intptr_t i) { return rule.X(plane, i); },
            [&](std::intptr_t j) { return rule.Y(plane, j); });
    WriteContent(*image, content, width, height, type);
    std::vector<PlaneBytes> written;
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        written.push_back(PixelBytes(image->Handle(), plane));
    return {"fake " + rule.Name, written, image, nullptr};
}

/// The tables that no pitch can describe, then those that pitches can.
inline std::vector<LayoutRule> LayoutRules(std::intptr_t width, std::intptr_t height, std::intptr_t planes,
                                           TDataType type) {
    const auto size = static_cast<std::intptr_t>(PixelSize(type));
    const std::intptr_t planeBytes = width * height * size;
    const auto shuffled = [](std::intptr_t count, std::uint32_t seed) {
        std::vector<std::intptr_t> order(static_cast<std::size_t>(count));
        std::iota(order.begin(), order.end(), std::intptr_t{0});
        std::shuffle(order.begin(), order.end(), std::mt19937(seed));
        return order;
    };
    std::vector<LayoutRule> rules;
    rules.push_back({"scattered",
                     [=, order = shuffled(width, 7)](std::intptr_t plane, std::intptr_t i) {
                         return plane * planeBytes + order[static_cast<std::size_t>(i)] * size;
                     },
                     [=, order = shuffled(height, 8)](std::intptr_t, std::intptr_t j) {
                         return order[static_cast<std::size_t>(j)] * width * size;
                     }});
    rules.push_back({"repeating",
                     [=](std::intptr_t plane, std::intptr_t i) { return plane * planeBytes + i / 2 * size; },
                     [=](std::intptr_t, std::intptr_t j) { return j / 3 * width * size; }});
    rules.push_back({"eachPlaneOtherwise",
                     [=](std::intptr_t plane, std::intptr_t i) {
                         return plane * planeBytes + (plane % 2 != 0 ? (width - 1 - i) : i * height) * size;
                     },
                     [=](std::intptr_t plane, std::intptr_t j) {
                         return (plane % 2 != 0 ? (height - 1 - j) * width : j) * size;
                     }});
    for (const auto &pitch : PitchRules(width, height, planes, type))
        rules.push_back({pitch.Name,
                         [=](std::intptr_t plane, std::intptr_t i) {
                             return (pitch.Reversed ? planes - 1 - plane : plane) * pitch.Plane + i * pitch.X;
                         },
                         [=](std::intptr_t, std::intptr_t j) { return j * pitch.Y; }});
    return rules;
}

/// Makes an image over a pointer. The image owns its block through the release callback. A failure is a null handle.
inline NamedImage MakeExternal(const PitchRule &rule, const std::vector<PlaneBytes> &content, std::intptr_t width,
                               std::intptr_t height, TDataType type) {
    const auto planes = static_cast<std::intptr_t>(content.size());
    const std::size_t size = PixelSize(type);
    const std::intptr_t ends[] = {(width - 1) * rule.X, (height - 1) * rule.Y, (planes - 1) * rule.Plane};
    std::intptr_t lowest = 0, highest = 0;
    for (const std::intptr_t end : ends) {
        lowest += std::min<std::intptr_t>(end, 0);
        highest += std::max<std::intptr_t>(end, 0);
    }
    auto *const block = new PlaneBytes(static_cast<std::size_t>(highest - lowest) + size);
    std::uint8_t *const base = block->data() - lowest;
    std::vector<std::intptr_t> order(static_cast<std::size_t>(planes));
    for (std::intptr_t memoryPlane = 0; memoryPlane < planes; ++memoryPlane) {
        const std::intptr_t plane = rule.Reversed ? planes - 1 - memoryPlane : memoryPlane;
        order[static_cast<std::size_t>(memoryPlane)] = plane;
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x)
                std::memcpy(base + memoryPlane * rule.Plane + x * rule.X + y * rule.Y,
                            content[static_cast<std::size_t>(plane)].data() +
                                static_cast<std::size_t>(y * width + x) * size,
                            size);
    }
    void *image = nullptr;
    const auto freeBlock = [](void *, void *userData) { delete static_cast<PlaneBytes *>(userData); };
    if (CreateImageFromPointer(base, 0, width, height, planes, type, rule.X, rule.Y, rule.Plane, order.data(),
                               freeBlock, block, &image) != 0)
        delete block;
    return {"external " + rule.Name, content, nullptr, std::make_shared<Handle>(image)};
}

/// All layouts of one random content. Content differs in one of them only: "fake repeating" shows some pixels at
/// several places.
inline std::vector<NamedImage> MakeLayouts(std::intptr_t width, std::intptr_t height, std::intptr_t planes,
                                           TDataType type, std::uint32_t seed = 1) {
    const auto content = RandomContent(width, height, planes, type, seed);
    std::vector<NamedImage> images;
    for (const auto &rule : LayoutRules(width, height, planes, type))
        images.push_back(MakeFake(rule, content, width, height, type));
    for (const auto &rule : PitchRules(width, height, planes, type))
        images.push_back(MakeExternal(rule, content, width, height, type));
    return images;
}

} // namespace TestSupport

#endif

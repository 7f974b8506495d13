/* Fills and copies of areas done pixel by pixel through the tables, and what a value is stored as. Tests run them on
 * an image that is the twin of the one under test, and compare both images' memory. */
#ifndef ORV_TESTS_AREA_MODEL_H
#define ORV_TESTS_AREA_MODEL_H

#include "Image/MapModel.h"
#include "Scan/RandomAreas.h"
#include "Scan/WalkModel.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

#include <bit>

namespace TestSupport {

inline std::string Told(const TArea &area) {
    return testing::PrintToString(std::vector{area.X0, area.Y0, area.X1, area.Y1, area.X2, area.Y2});
}

/// The low bytes of a word.
inline PlaneBytes LowBytes(std::uint64_t word, std::size_t count) {
    PlaneBytes bytes(8);
    std::memcpy(bytes.data(), &word, 8);
    bytes.resize(count);
    return bytes;
}

/// Toward zero in 64 bits signed, or the lowest number.
inline std::int64_t Truncated64(double value) {
    return value >= -0x1p63 && value < 0x1p63 ? static_cast<std::int64_t>(value)
                                              : std::numeric_limits<std::int64_t>::min();
}
inline std::int32_t Truncated32(double value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value)
                                                         : std::numeric_limits<std::int32_t>::min();
}
inline std::uint64_t TruncatedUnsigned64(double value) {
    constexpr std::uint64_t topBit = std::uint64_t{1} << 63;
    return value >= 0x1p63 ? static_cast<std::uint64_t>(Truncated64(value - 0x1p63)) | topBit
                           : static_cast<std::uint64_t>(Truncated64(value));
}

inline bool IsFloat(TDataType type) {
    return (type & DataTypeFloat) != 0;
}
inline bool IsSigned(TDataType type) {
    return (type & DataTypeSigned) != 0;
}

/// A real value as pixels of a type store it.
inline PlaneBytes StoredBytes(TDataType type, double value) {
    const std::size_t bytes = PixelSize(type);
    if (IsFloat(type))
        return LowBytes(bytes == 4 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                                   : std::bit_cast<std::uint64_t>(value),
                        bytes);
    if (bytes == 8)
        return LowBytes(IsSigned(type) ? static_cast<std::uint64_t>(Truncated64(value)) : TruncatedUnsigned64(value),
                        8);
    if (bytes == 4 && !IsSigned(type))
        return LowBytes(static_cast<std::uint64_t>(Truncated64(value)), 4);
    return LowBytes(static_cast<std::uint32_t>(Truncated32(value)), bytes);
}
/// A whole value as pixels of a type store it.
inline PlaneBytes StoredBytes(TDataType type, std::int64_t value) {
    const std::size_t bytes = PixelSize(type);
    if (IsFloat(type) || bytes == 8)
        return StoredBytes(type, static_cast<double>(value));
    return LowBytes(static_cast<std::uint64_t>(value), bytes);
}

/// Writes the bytes of a pixel at each sample of the area.
inline void FillByModel(void *image, std::intptr_t plane, const TArea &area, const PlaneBytes &pixel) {
    const ImageSize size = SizeOf(image);
    const PlaneAccess access = AccessOf(image, plane);
    WalkCalls calls;
    calls.Pixel = [&](std::int32_t x, std::int32_t y) {
        std::memcpy(access.At(x, y), pixel.data(), pixel.size());
        return true;
    };
    WalkModel(area, 1000).Walk(RectangleOfImage(size.Width, size.Height), calls);
}

/// The arguments of CopyImageArea.
struct AreaCopy {
    void *Source;
    void *Target;
    std::intptr_t SourcePlane, TargetPlane;
    std::int64_t TargetX, TargetY;
    TArea Area;
};

/// Copies pixel by pixel in the order of the walk; the result is that of CopyImageArea.
inline std::int32_t CopyByModel(const AreaCopy &copy) {
    const ImageSize size1 = SizeOf(copy.Source), size2 = SizeOf(copy.Target);
    const PlaneAccess from = AccessOf(copy.Source, copy.SourcePlane), to = AccessOf(copy.Target, copy.TargetPlane);
    const std::size_t bytes = PixelSize(TypeOf(copy.Source, copy.SourcePlane));
    const auto offset = [](std::int64_t target, double origin) {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(target) -
                                         static_cast<std::uint64_t>(Truncated64(std::floor(origin + 0.5))));
    };
    const std::int64_t dx = offset(copy.TargetX, copy.Area.X0), dy = offset(copy.TargetY, copy.Area.Y0);
    WalkCalls calls;
    calls.Pixel = [&](std::int32_t x, std::int32_t y) {
        std::uint8_t pixel[8];
        std::memcpy(pixel, from.At(x, y), bytes);
        std::memcpy(to.At(x + dx, y + dy), pixel, bytes);
        return true;
    };
    const WalkRectangle rectangle = RectangleOfTwo(size1.Width, size1.Height, size2.Width, size2.Height, dx, dy, 1);
    return WalkModel(copy.Area, 1000).Walk(rectangle, calls) != -1 ? 1 : 0;
}

/// The same layouts with the same content twice: one for the library, one for the model.
struct TwinImages {
    std::vector<NamedImage> Images, Twins;
    TwinImages(std::intptr_t width, std::intptr_t height, std::intptr_t planes, TDataType type, std::uint32_t seed)
        : Images(MakeLayouts(width, height, planes, type, seed)),
          Twins(MakeLayouts(width, height, planes, type, seed)) {}
    void *Image(std::size_t i) const { return Images[i].Get(); }
    void *Twin(std::size_t i) const { return Twins[i].Get(); }
    std::size_t Count() const { return Images.size(); }

    /// All planes' pixels, and where the block is known every byte of it.
    bool AreEqual(std::size_t i) const {
        const auto &image = Images[i], &twin = Twins[i];
        for (std::size_t plane = 0; plane < image.Content.size(); ++plane)
            if (PixelBytes(image.Get(), static_cast<std::intptr_t>(plane)) !=
                PixelBytes(twin.Get(), static_cast<std::intptr_t>(plane)))
                return false;
        return image.Fake == nullptr || image.Fake->Pixels == twin.Fake->Pixels;
    }
};

} // namespace TestSupport

#endif

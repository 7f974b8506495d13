#include "Drawing/DrawnPlane.h"

#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "TruncateTo.h"

namespace Drawing {
DrawnPlane PlaneOf(pOLE::IImageVPA &image, std::intptr_t plane) {
    Image::Dimensions size;
    const bool isTold = image.GetImageDimensions(&size.Planes, &size.Width, &size.Height) == 0;
    if (!isTold || size.Planes < 0 || size.Width < 0 || size.Height < 0)
        throw std::runtime_error("image invalid");
    Image::PlaneFacts kept;
    for (std::intptr_t i = 0; i < size.Planes; ++i) {
        Image::PlaneFacts facts;
        if (!Image::ReadPlaneFacts(image, i, facts))
            throw std::runtime_error("image invalid");
        if (i == plane)
            kept = facts;
    }
    if (plane < 0 || plane >= size.Planes)
        throw std::out_of_range("Plane index out of range");
    return {static_cast<char *>(kept.Base), kept.Table, size.Width, size.Height, kept.Datatype};
}

void RefuseType(TDataType type) {
    const char *kind = (type & DataTypeComplex) != 0  ? "complex"
                       : (type & DataTypeFloat) != 0  ? "float"
                       : (type & DataTypeSigned) != 0 ? "sint"
                                                      : "uint";
    throw std::logic_error(std::string("Unsupported image data type: ") + kind + std::to_string(Image::BitsOf(type)));
}

template <class T>
T PixelValueOf(double value, std::intptr_t bits) {
    if constexpr (std::is_same_v<T, double>) {
        return value;
    } else if constexpr (std::is_same_v<T, float>) {
        constexpr double greatest = std::numeric_limits<float>::max();
        return static_cast<float>(value > greatest ? greatest : value < -greatest ? -greatest : value);
    } else {
        // Powers of two are exact in double where the limits themselves are not. What lies between a limit and the
        // power is truncated to the limit.
        const auto magnitudeBits = static_cast<int>(std::is_signed_v<T> ? bits - 1 : bits);
        if (magnitudeBits == 0)
            return 0;
        const std::uint64_t greatest = ~std::uint64_t{0} >> (64 - magnitudeBits);
        const double beyond = 2.0 * static_cast<double>(greatest / 2 + 1);
        const auto limit = static_cast<T>(greatest);
        if (value >= beyond)
            return limit;
        if constexpr (std::is_signed_v<T>) {
            // Required: the lowest value of a signed type can't be drawn.
            if (value <= -beyond)
                return static_cast<T>(-limit);
        } else if (value < 0) {
            return 0;
        }
        return orvBase::TruncateTo<T>(value);
    }
}

template std::int8_t PixelValueOf<std::int8_t>(double, std::intptr_t);
template std::uint8_t PixelValueOf<std::uint8_t>(double, std::intptr_t);
template std::int16_t PixelValueOf<std::int16_t>(double, std::intptr_t);
template std::uint16_t PixelValueOf<std::uint16_t>(double, std::intptr_t);
template std::int32_t PixelValueOf<std::int32_t>(double, std::intptr_t);
template std::uint32_t PixelValueOf<std::uint32_t>(double, std::intptr_t);
template std::int64_t PixelValueOf<std::int64_t>(double, std::intptr_t);
template std::uint64_t PixelValueOf<std::uint64_t>(double, std::intptr_t);
template float PixelValueOf<float>(double, std::intptr_t);
template double PixelValueOf<double>(double, std::intptr_t);

StoredValue StoredValueOf(TDataType type, double value) {
    return ForDrawnType(type, [&]<class T>() {
        const T pixel = PixelValueOf<T>(value, Image::BitsOf(type));
        StoredValue stored = {0, sizeof pixel};
        std::memcpy(&stored.Word, &pixel, sizeof pixel);
        return stored;
    });
}

} // namespace Drawing

// The plane that a function of the drawing family works on, and the one dispatch over its data types. These are other
// than those of a scan: widths between the powers of two are stored in the next one.
#pragma once

#include <cstdint>

#include "Image/PlaneFacts.h"

namespace Drawing {

/// One plane; owns nothing.
struct DrawnPlane {
    char *Base;
    const VPAEntry *Table; ///< entry 0
    std::intptr_t Width;
    std::intptr_t Height;
    TDataType Type;

    char *Row(std::intptr_t y) const { return Base + Table[y].YEntry; }
    char *Pixel(std::intptr_t x, std::intptr_t y) const { return Row(y) + Table[x].XEntry; }
    bool Contains(std::intptr_t x, std::intptr_t y) const { return x >= 0 && y >= 0 && x < Width && y < Height; }
};

/// Reads the image itself: an analysis costs more than a short line does. Every plane is asked for, one is kept.
/// Throws std::runtime_error "image invalid" for an image that refuses its size or one of its planes, and
/// std::out_of_range "Plane index out of range" for a number that is none of its planes.
DrawnPlane PlaneOf(pOLE::IImageVPA &image, std::intptr_t plane);

/// Throws std::logic_error "Unsupported image data type: " with the kind and the bits of a type.
[[noreturn]] void RefuseType(TDataType type);

/// Calls operation.operator()<T>() with the storage type of a pixel, one of eight integers, float and double, and
/// gives its result. RefuseType for a type that can't be drawn.
template <class Operation>
decltype(auto) ForDrawnType(TDataType type, Operation &&operation) {
    const std::intptr_t bits = Image::BitsOf(type);
    const bool isFloat = (type & DataTypeFloat) != 0;
    if ((type & DataTypeComplex) != 0 || bits < 1 || bits > 64 || (isFloat && bits != 32 && bits != 64))
        RefuseType(type);
    if (isFloat)
        return bits == 32 ? operation.template operator()<float>() : operation.template operator()<double>();
    const bool isSigned = (type & DataTypeSigned) != 0;
    if (bits <= 8)
        return isSigned ? operation.template operator()<std::int8_t>()
                        : operation.template operator()<std::uint8_t>();
    if (bits <= 16)
        return isSigned ? operation.template operator()<std::int16_t>()
                        : operation.template operator()<std::uint16_t>();
    if (bits <= 32)
        return isSigned ? operation.template operator()<std::int32_t>()
                        : operation.template operator()<std::uint32_t>();
    return isSigned ? operation.template operator()<std::int64_t>() : operation.template operator()<std::uint64_t>();
}

/// A value limited to what a pixel of the type holds, as it is stored: fractions are dropped.
/// bits  of the type; below the width of T when pixels are stored wider than they are.
template <class T>
T PixelValueOf(double value, std::intptr_t bits);

/// What is written to a pixel of a type for a value, in the low bytes of a word, and how many bytes that are.
struct StoredValue {
    std::uint64_t Word;
    std::intptr_t Bytes;
};
StoredValue StoredValueOf(TDataType type, double value);

} // namespace Drawing

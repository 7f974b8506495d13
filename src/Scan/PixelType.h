// The one dispatch over data types: every typed operation goes through ForPixelType.
#pragma once

#include "Image/DataType.h"

namespace Scan {

/// The classification of a data type word; the numbers are fixed.
enum class PixelType {
    Unsupported = 0,
    Signed8 = 1,
    Unsigned8 = 2,
    Signed16 = 3,
    Unsigned16 = 4,
    Signed32 = 5,
    Unsigned32 = 6,
    Signed64 = 7,
    Unsigned64 = 8,
    Float32 = 9,
    Float64 = 10
};

constexpr PixelType PixelTypeOf(TDataType type) {
    const bool isSigned = (type & DataTypeSigned) != 0;
    const std::intptr_t bytes = Image::BytesOf(type);
    if ((type & DataTypeFloat) != 0)
        return bytes == 4 ? PixelType::Float32 : bytes == 8 ? PixelType::Float64 : PixelType::Unsupported;
    switch (bytes) {
    case 1:
        return isSigned ? PixelType::Signed8 : PixelType::Unsigned8;
    case 2:
        return isSigned ? PixelType::Signed16 : PixelType::Unsigned16;
    case 4:
        return isSigned ? PixelType::Signed32 : PixelType::Unsigned32;
    case 8:
        return isSigned ? PixelType::Signed64 : PixelType::Unsigned64;
    default:
        return PixelType::Unsupported;
    }
}

/// Calls operation.operator()<T>() with the pixel type of a data type word.
/// Result  false, with nothing called, for a word that is none of the ten.
template <class Operation>
bool ForPixelType(TDataType type, Operation &&operation) {
    switch (PixelTypeOf(type)) {
    case PixelType::Signed8:
        operation.template operator()<char>();
        return true;
    case PixelType::Unsigned8:
        operation.template operator()<unsigned char>();
        return true;
    case PixelType::Signed16:
        operation.template operator()<short>();
        return true;
    case PixelType::Unsigned16:
        operation.template operator()<unsigned short>();
        return true;
    case PixelType::Signed32:
        operation.template operator()<int>();
        return true;
    case PixelType::Unsigned32:
        operation.template operator()<unsigned int>();
        return true;
    case PixelType::Signed64:
        operation.template operator()<long>();
        return true;
    case PixelType::Unsigned64:
        operation.template operator()<unsigned long>();
        return true;
    case PixelType::Float32:
        operation.template operator()<float>();
        return true;
    case PixelType::Float64:
        operation.template operator()<double>();
        return true;
    case PixelType::Unsupported:
        break;
    }
    return false;
}

} // namespace Scan

// What a data type word says.
#pragma once

#include "ORVTypes.h"

namespace Image {

constexpr std::intptr_t BitsOf(TDataType type) {
    return static_cast<std::intptr_t>(type & DataTypeBitsMask);
}

/// Bytes of storage per pixel; 0 for a word that is 0 or has bit 31 set.
constexpr std::intptr_t BytesOf(TDataType type) {
    const bool belowOne = type == 0 || (type & 0x80000000u) != 0;
    return belowOne ? 0 : (BitsOf(type) + 7) >> 3;
}

} // namespace Image

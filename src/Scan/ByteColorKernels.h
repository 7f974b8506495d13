// The inner loops of ByteColors.h on arrays, once per instruction set level. All levels give the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Scan {

inline constexpr std::intptr_t MaximumByteSources = 3;
inline constexpr std::intptr_t MaximumByteTargets = 3;

/// A row of the matrix, prepared for sums in single precision whose unit is 2^-16. Coefficients of planes that are
/// missing are 0.
struct ByteColorRow {
    float Coefficients[MaximumByteSources];
    float Offset;        ///< where nothing is reflected, with the half that rounds and half the uncertainty
    float Half;          ///< where sums are reflected, the same, which is added behind the reflection
    std::int32_t Unsure; ///< a sum whose fraction is below this may lie on either side of an edge of rounding
    double ExactCoefficients[MaximumByteSources];
    double ExactOffset;
};

/// Some pixels of a row. There are one or MaximumByteTargets targets, with a row of the matrix each, which share no
/// memory with sources or each other.
struct ByteColorPiece {
    const ByteColorRow *Rows;
    std::intptr_t TargetCount;
    bool Reflects;
    std::intptr_t Count;
    /// The sources as arrays; missing ones are any arrays.
    const unsigned char *Sources[MaximumByteSources];
    /// The sources as pixels of three bytes, or null. Only where TakesThreeBytePixels.
    const unsigned char *Pixels;
    std::size_t PlaneOfByte[MaximumByteSources];
    unsigned char *Targets[MaximumByteTargets];
};

/// True when the current level needs no arrays of pixels that interleave.
bool TakesThreeBytePixels();

/// At the current level.
void CombineBytePiece(const ByteColorPiece &piece);

} // namespace Scan

// What the forms of the inner loops of ByteColors.h share, and the form in registers of 64 bytes.
#pragma once

#include "Scan/ByteColorKernels.h"

namespace Scan {

inline constexpr int ByteColorFractionBits = 16;
inline constexpr float GreatestByteSum = 255.0f * 65536.0f;

/// Pixels that go at once.
inline constexpr std::intptr_t ByteColorBlock = 64;

/// Whole blocks, with 64-byte registers and fused multiplication.
void CombineByteBlocksAtAvx512(const ByteColorPiece &piece);

} // namespace Scan

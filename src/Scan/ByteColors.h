// Linear combinations of up to three planes of unsigned bytes in single precision, with the bytes that double gives:
// where the error of a sum could reach over an edge of rounding, the pixels are computed again in double.
#pragma once

#include <optional>

#include "Scan/ByteColorKernels.h"
#include "Scan/ColorMatrix.h"

namespace Scan {

/// Nothing for more planes than three, and for numbers that are too large or not finite.
std::optional<ByteColorRow> PrepareByteRow(const ColorRows &rows, std::intptr_t row);

/// True when all rows can be prepared.
bool CanCombineBytes(const ColorRows &rows);

/// For rows that can be prepared.
void CombineBytes(const ColorRows &rows, std::span<const Image::PlaneView> sources,
                  std::span<const Image::PlaneView> targets);

} // namespace Scan

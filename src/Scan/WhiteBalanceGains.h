// Three planes multiplied by a gain each, in place. The methods give the same bytes.
#pragma once

#include <span>

#include "Image/PlaneView.h"

namespace Scan {

enum class GainMethod {
    OneByOne,      ///< pixel by pixel through the tables, plane after plane: right where pixels share memory, too
    InPieces,      ///< pieces of rows, plane after plane
    ThreeByteRows, ///< rows of interleaved bytes, all planes at once
};

GainMethod ChooseGainMethod(std::span<const Image::PlaneView> planes);

/// planes  three of them, of a type that Scan::CanBalance.
void ApplyGains(GainMethod method, TDataType type, std::span<const Image::PlaneView> planes,
                std::span<const double> gains);

} // namespace Scan

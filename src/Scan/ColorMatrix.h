// Linear combinations of planes: a few rows of a colour matrix at a time, into planes that share no memory with the
// sources. The methods give the same bytes.
#pragma once

#include <span>

#include "Image/PlaneView.h"

namespace Scan {

/// Some rows of a colour matrix: for each target plane the coefficients of the source planes, then the offset.
struct ColorRows {
    const double *Values;
    std::intptr_t Planes; ///< source planes
    std::intptr_t Count;  ///< rows, up to MaximumTargets
    /// What becomes of a sum below the range of the pixel type: it is reflected at the lower limit, or limited.
    bool Reflects;

    double Coefficient(std::intptr_t row, std::intptr_t plane) const { return Values[row * (Planes + 1) + plane]; }
    double Offset(std::intptr_t row) const { return Coefficient(row, Planes); }
};

/// Target planes made in one pass over the sources. The work needs the same memory for any number of planes.
inline constexpr std::intptr_t MaximumTargets = 3;

enum class ColorMethod {
    OneByOne,    ///< pixel by pixel through the tables
    InPieces,    ///< pieces of rows in double
    BytesInFloat ///< up to three planes of unsigned bytes in single precision, made sure of in double
};

ColorMethod ChooseColorMethod(TDataType type, const ColorRows &rows);

/// sources  rows.Planes of them, all read as pixels of the type.
/// targets  rows.Count of them, of the size of the sources.
void CombinePlanes(ColorMethod method, TDataType type, const ColorRows &rows,
                   std::span<const Image::PlaneView> sources, std::span<const Image::PlaneView> targets);

} // namespace Scan

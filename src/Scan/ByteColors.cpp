#include "Scan/ByteColors.h"

#include <algorithm>
#include <cmath>

#include "Scan/PixelRows.h"
#include "Scan/ThreeBytePixels.h"

namespace Scan {
namespace {

using Byte = unsigned char;
using Planes = std::span<const Image::PlaneView>;

constexpr double Unit = 65536.0; ///< of the sums, per 1
static_assert(MaximumByteTargets == MaximumTargets);

/// The greatest magnitude that a sum, the half that rounds, and every sum on the way to them can have.
double MagnitudeOf(const ColorRows &rows, std::intptr_t row) {
    double magnitude = std::abs(rows.Offset(row)) + 0.5;
    for (std::intptr_t plane = 0; plane < rows.Planes; ++plane)
        magnitude += std::abs(rows.Coefficient(row, plane)) * 255.0;
    return magnitude;
}

/// True when all numbers of a row are multiples of a power of two so large that neither single precision nor double
/// ever rounds: 24 bits hold any sum on the way, in units of that power or of 2^-16.
bool IsExactInFloat(const ColorRows &rows, std::intptr_t row, double magnitude) {
    int magnitudeBits = 0;
    std::frexp(magnitude, &magnitudeBits);
    const int fractionBits = std::min(16, 24 - magnitudeBits);
    for (std::intptr_t number = 0; number <= rows.Planes; ++number) {
        const double scaled = std::ldexp(rows.Coefficient(row, number), fractionBits);
        if (scaled != std::trunc(scaled))
            return false;
    }
    return true;
}

/// Hands out pieces of the source rows as arrays.
class SourcePieces {
public:
    explicit SourcePieces(Planes sources) : sources_(sources), pixels_(AsThreeBytePixels(sources)) {
        if (pixels_ && pixels_->Pixels.XStep < 0)
            pixels_.reset();
    }

    void Read(std::intptr_t x, std::intptr_t y, ByteColorPiece &piece) {
        // Planes that are missing are all zero, which adds nothing.
        for (std::size_t plane = 0; plane < MaximumByteSources; ++plane)
            piece.Sources[plane] = plane < sources_.size() && !pixels_
                                       ? PixelsToRead(sources_[plane], x, y, piece.Count, chunks_[plane])
                                       : chunks_[plane].Pixels;
        if (!pixels_)
            return;
        const char *const pixels = pixels_->Pixels.Pixel(x, y);
        std::copy_n(pixels_->PlaneOfByte.begin(), MaximumByteSources, piece.PlaneOfByte);
        if (TakesThreeBytePixels()) {
            piece.Pixels = reinterpret_cast<const Byte *>(pixels);
            return;
        }
        char *arrays[MaximumByteSources];
        for (std::size_t byte = 0; byte < MaximumByteSources; ++byte)
            arrays[byte] = reinterpret_cast<char *>(chunks_[pixels_->PlaneOfByte[byte]].Pixels);
        Image::RowKernels::Best().SplitThreeBytes(arrays, pixels, piece.Count);
    }

private:
    Planes sources_;
    std::optional<ThreeBytePixels> pixels_;
    Chunk<Byte> chunks_[MaximumByteSources] = {};
};

/// One target, or as many as go at once.
void CombineTargets(const ByteColorRow *rows, bool reflects, Planes sources, Planes targets) {
    SourcePieces pieces(sources);
    Chunk<Byte> written[MaximumByteTargets];
    ByteColorPiece piece = {};
    piece.Rows = rows;
    piece.TargetCount = static_cast<std::intptr_t>(targets.size());
    piece.Reflects = reflects;
    ForEachPiece<Byte>(targets[0].Width, targets[0].Height,
                       [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
                           piece.Count = count;
                           pieces.Read(x, y, piece);
                           for (std::size_t target = 0; target < targets.size(); ++target)
                               piece.Targets[target] = PixelsToWrite(targets[target], x, y, written[target]);
                           CombineBytePiece(piece);
                           for (std::size_t target = 0; target < targets.size(); ++target)
                               WritePixels(targets[target], x, y, count, piece.Targets[target], written[target]);
                       });
}

} // namespace

// Why the bytes are those of double. Let u = 2^-24, M the magnitude of the row, and y the sum with the half that
// rounds, as double computes it, behind the reflection if there is one. Limits come last here: they are whole
// numbers, so that it makes no difference whether y is limited or its whole part.
//
// In single precision a product passes at most six roundings (of the coefficient, of itself, of three additions, and
// of the half behind a reflection), the offset no more. None of the numbers on the way is greater than M, so that the
// error is at most ((1 + u)^6 - 1) M < 6.001 u M; fused multiplication has fewer roundings, and a reflection does not
// enlarge a difference. The error of double, of the offset as it is composed here, and of numbers too small for
// single precision is below 0.9 u M together, since M is at least a half. So E = 7 u M, taken in units of 2^-16 and
// to the next whole number above, is more than all of them.
//
// E is added to the half. The sum s in units then fulfils s - 2 E < 65536 y < s. With t, which is s cut to a whole
// number, t - 2 E < 65536 y < t + 1 for s not below 0: where the fraction of t is 2 E at least, t and y have the same
// whole part, and where it is not, the pixel is not sure. For s below 0 nothing is reflected, y is below 0, and both
// give 0. Where nothing rounds at all, s is 65536 y, E is 0, and all pixels are sure.
//
// The magnitude that is allowed keeps s in 31 bits, its whole part in 16, and E far below the half.
std::optional<ByteColorRow> PrepareByteRow(const ColorRows &rows, std::intptr_t row) {
    if (rows.Planes > MaximumByteSources)
        return std::nullopt;
    constexpr double greatestMagnitude = 16384.0;
    const double magnitude = MagnitudeOf(rows, row);
    if (!(magnitude < greatestMagnitude))
        return std::nullopt;

    constexpr double relativeError = 7.0 / 16777216.0;
    const bool isExact = IsExactInFloat(rows, row, magnitude);
    const double error = isExact ? 0.0 : std::floor(relativeError * magnitude * Unit) + 1.0;
    const double half = 0.5 * Unit + error;
    const double offset = rows.Offset(row);
    ByteColorRow prepared = {};
    prepared.Offset = static_cast<float>(rows.Reflects ? offset * Unit : offset * Unit + half);
    prepared.Half = rows.Reflects ? static_cast<float>(half) : 0.0f;
    prepared.Unsure = 2 * static_cast<std::int32_t>(error);
    prepared.ExactOffset = offset;
    for (std::intptr_t plane = 0; plane < rows.Planes; ++plane) {
        prepared.ExactCoefficients[plane] = rows.Coefficient(row, plane);
        prepared.Coefficients[plane] = static_cast<float>(rows.Coefficient(row, plane) * Unit);
    }
    return prepared;
}

bool CanCombineBytes(const ColorRows &rows) {
    for (std::intptr_t row = 0; row < rows.Count; ++row)
        if (!PrepareByteRow(rows, row))
            return false;
    return true;
}

void CombineBytes(const ColorRows &rows, Planes sources, Planes targets) {
    ByteColorRow prepared[MaximumTargets] = {};
    for (std::intptr_t row = 0; row < rows.Count; ++row)
        prepared[row] = PrepareByteRow(rows, row).value();
    if (rows.Count == MaximumTargets)
        return CombineTargets(prepared, rows.Reflects, sources, targets);
    for (std::size_t target = 0; target < targets.size(); ++target)
        CombineTargets(prepared + target, rows.Reflects, sources, targets.subspan(target, 1));
}

} // namespace Scan

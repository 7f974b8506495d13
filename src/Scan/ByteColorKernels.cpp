#include "Scan/ByteColorKernels.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "Image/KernelLevel.h"
#include "Scan/ByteColorBlocks.h"
#include "Scan/ColorPixel.h"

namespace Scan {
namespace {

using Byte = unsigned char;

using Block = Byte[ByteColorBlock];

/// The sources of a block of pixels.
struct BlockArrays {
    const Byte *First, *Second, *Third;
};
ORV_INLINE BlockArrays BlockAt(const ByteColorPiece &piece, std::intptr_t pixel) {
    return {piece.Sources[0] + pixel, piece.Sources[1] + pixel, piece.Sources[2] + pixel};
}

template <bool Reflects>
ORV_INLINE void CombineExactly(const ByteColorRow &row, const BlockArrays &sources, Byte *target) {
    Block result;
    for (std::intptr_t i = 0; i < ByteColorBlock; ++i) {
        double sum = row.ExactOffset + static_cast<double>(sources.First[i]) * row.ExactCoefficients[0];
        sum += static_cast<double>(sources.Second[i]) * row.ExactCoefficients[1];
        sum += static_cast<double>(sources.Third[i]) * row.ExactCoefficients[2];
        result[i] = ColorPixel<Byte, Reflects, true>(sum);
    }
    std::memcpy(target, result, ByteColorBlock);
}

/// The sum in units, cut to a whole number.
template <bool Reflects>
ORV_INLINE std::int32_t SumOf(const ByteColorRow &row, float a, float b, float c) {
    float sum = row.Offset + a * row.Coefficients[0];
    sum += b * row.Coefficients[1];
    sum += c * row.Coefficients[2];
    if constexpr (Reflects) {
        // Floats above 0 are in the order of their bits, and those below are negative as integers, too.
        const auto bits = std::min(std::bit_cast<std::int32_t>(sum), std::bit_cast<std::int32_t>(GreatestByteSum));
        sum = std::bit_cast<float>(bits & 0x7FFFFFFF) + row.Half;
    }
    return static_cast<std::int32_t>(sum);
}

template <bool Reflects>
ORV_INLINE Byte ByteOf(std::int32_t sum) {
    const auto whole = static_cast<std::int16_t>(sum >> ByteColorFractionBits);
    if constexpr (Reflects)
        return static_cast<Byte>(whole);
    else
        return static_cast<Byte>(std::min<std::int16_t>(std::max<std::int16_t>(whole, 0), 255));
}

template <bool Reflects>
ORV_INLINE void CombineTarget(const ByteColorRow &row, const BlockArrays &sources, Byte *target) {
    Block result;
    std::int32_t isUnsure = 0; // negative when a pixel is
    for (std::intptr_t i = 0; i < ByteColorBlock; ++i) {
        const std::int32_t sum =
            SumOf<Reflects>(row, static_cast<float>(sources.First[i]), static_cast<float>(sources.Second[i]),
                            static_cast<float>(sources.Third[i]));
        isUnsure |= (sum & 0xFFFF) - row.Unsure;
        result[i] = ByteOf<Reflects>(sum);
    }
    if (isUnsure < 0)
        CombineExactly<Reflects>(row, sources, target);
    else
        std::memcpy(target, result, ByteColorBlock);
}

/// Whole blocks.
template <bool Reflects>
void CombinePlainly(const ByteColorPiece &piece) {
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        for (std::intptr_t target = 0; target < piece.TargetCount; ++target) {
            const ByteColorRow row = piece.Rows[target];
            for (std::intptr_t pixel = 0; pixel < piece.Count; pixel += ByteColorBlock)
                CombineTarget<Reflects>(row, BlockAt(piece, pixel), piece.Targets[target] + pixel);
        }
    });
}

void CombineBlocks(const ByteColorPiece &piece) {
    if (piece.Pixels != nullptr || Image::CurrentLevel() == Image::KernelLevel::Avx512)
        CombineByteBlocksAtAvx512(piece);
    else if (piece.Reflects)
        CombinePlainly<true>(piece);
    else
        CombinePlainly<false>(piece);
}

} // namespace

bool TakesThreeBytePixels() {
    return Image::CurrentLevel() == Image::KernelLevel::Avx512;
}

void CombineBytePiece(const ByteColorPiece &piece) {
    ByteColorPiece part = piece;
    part.Count = piece.Count / ByteColorBlock * ByteColorBlock;
    CombineBlocks(part);
    const std::intptr_t left = piece.Count - part.Count;
    if (left == 0)
        return;
    Byte sources[MaximumByteSources * ByteColorBlock] = {};
    Block targets[MaximumByteTargets];
    if (piece.Pixels != nullptr) {
        std::copy_n(piece.Pixels + MaximumByteSources * part.Count, MaximumByteSources * left, sources);
        part.Pixels = sources;
    } else {
        for (std::intptr_t source = 0; source < MaximumByteSources; ++source) {
            Byte *const padded = sources + source * ByteColorBlock;
            std::copy_n(piece.Sources[source] + part.Count, left, padded);
            part.Sources[source] = padded;
        }
    }
    const std::intptr_t targetCount = std::min(piece.TargetCount, MaximumByteTargets);
    for (std::intptr_t target = 0; target < targetCount; ++target)
        part.Targets[target] = targets[target];
    const std::intptr_t done = std::exchange(part.Count, ByteColorBlock);
    CombineBlocks(part);
    for (std::intptr_t target = 0; target < targetCount; ++target)
        std::copy_n(targets[target], left, piece.Targets[target] + done);
}

} // namespace Scan

#include "Scan/ByteScale.h"

#include "Image/KernelLevel.h"
#include "TruncateTo.h"

namespace Scan {
namespace {

/// The division by one maximum as a product: trunc(pixel * 255 / maximum) is the upper half of
/// (pixel << Shift) * Factor, a product of 16 and 32 bits. Factor is above 255 * 2^(32 - Shift) / maximum by at most
/// 1, so that the product, as a number with 32 bits behind the point, is above the quotient by less than 2^-16. That
/// is less than 1 / maximum, the distance from a quotient that is not whole to the next whole number. The rounding of
/// a quotient of doubles does not reach that far either.
struct Reciprocal {
    int Shift;
    std::uint16_t High; ///< of the factor's 32 bits
    std::uint16_t Low;

    explicit Reciprocal(std::uint64_t maximum) : Shift(maximum < 256 ? 8 : 0) {
        const std::uint64_t factor = (std::uint64_t{255} << (32 - Shift)) / maximum + 1;
        High = static_cast<std::uint16_t>(factor >> 16);
        Low = static_cast<std::uint16_t>(factor);
    }
};

ORV_INLINE std::uint16_t UpperHalf(std::uint16_t a, std::uint16_t b) {
    return static_cast<std::uint16_t>((std::uint32_t{a} * b) >> 16);
}

/// In 16-bit words throughout, which fill a register best.
ORV_INLINE void ScalePiece(const Reciprocal &reciprocal, std::uint8_t *__restrict to,
                           const std::uint16_t *__restrict from, std::intptr_t count) {
    const Reciprocal held = reciprocal;
    for (std::intptr_t i = 0; i < count; ++i) {
        const auto pixel = static_cast<std::uint16_t>(from[i] << held.Shift);
        const auto low = static_cast<std::uint16_t>(std::uint32_t{pixel} * held.High);
        const auto sum = static_cast<std::uint16_t>(low + UpperHalf(pixel, held.Low));
        const auto carry = static_cast<std::uint16_t>(sum < low);
        to[i] = static_cast<std::uint8_t>(UpperHalf(pixel, held.High) + carry);
    }
}

} // namespace

void ScaleToBytes(double maximum, const Image::PlaneView &source, const Image::PlaneView &target, PixelWalk walk) {
    if (walk == PixelWalk::OneByOne)
        return ConvertOneByOne<std::uint16_t, std::uint8_t>(source, target, [maximum](std::uint16_t pixel) {
            return orvBase::TruncateTo<std::uint8_t>(static_cast<double>(pixel) * 255.0 / maximum + 0.0);
        });
    // Any divisor does for a plane of zeros.
    const Reciprocal reciprocal(maximum > 0 ? static_cast<std::uint64_t>(maximum) : 1);
    ConvertPieces<std::uint16_t, std::uint8_t>(
        source, target, [&reciprocal](std::uint8_t *to, const std::uint16_t *from, std::intptr_t count) {
            const Reciprocal *const used = &reciprocal;
            Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { ScalePiece(*used, to, from, count); });
        });
}

} // namespace Scan

#include "Scan/WhiteBalanceGains.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "Image/KernelLevel.h"
#include "Scan/PixelRows.h"
#include "Scan/ThreeBytePixels.h"
#include "Scan/ThreePlanes.h"
#include "TruncateTo.h"

namespace Scan {
namespace {

using Byte = unsigned char;
using Planes = std::span<const Image::PlaneView>;

/// What pixels T are multiplied by: 8 fractional bits for integers.
template <class T>
using Gain = std::conditional_t<std::is_integral_v<T>, std::int32_t, T>;

template <class T>
Gain<T> GainOf(double gain) {
    if constexpr (std::is_integral_v<T>)
        return orvBase::TruncateTo<std::int32_t>(gain * 256.0 + 0.5);
    else
        return static_cast<T>(gain);
}

template <class T>
ORV_INLINE T Multiplied(T pixel, Gain<T> gain) {
    if constexpr (std::is_floating_point_v<T>) {
        return pixel * gain;
    } else if constexpr (sizeof(T) == 4) {
        constexpr std::int64_t lowest = std::numeric_limits<T>::min();
        constexpr std::int64_t highest = std::numeric_limits<T>::max();
        std::int64_t value = pixel;
        // Required: the distance to the lower end is taken as a signed number, so that it is negative from 0 on.
        if constexpr (std::is_signed_v<T>)
            value = static_cast<std::int32_t>(static_cast<std::uint32_t>(pixel) + 0x80000000u);
        return static_cast<T>(std::min(((value * gain) >> 8) + lowest, highest));
    } else {
        // Required: products wrap at 32 bits, and there is no lower limit.
        constexpr std::int32_t lowest = std::numeric_limits<T>::min();
        constexpr std::int32_t highest = std::numeric_limits<T>::max();
        const auto distance = static_cast<std::uint32_t>(static_cast<std::int32_t>(pixel) - lowest);
        const auto product = static_cast<std::int32_t>(distance * static_cast<std::uint32_t>(gain));
        return static_cast<T>(std::min((product >> 8) + lowest, highest));
    }
}

/// Of gains whose products with a byte stay in 24 bits: the upper half of the product of 16-bit numbers.
template <class T>
ORV_INLINE T MultipliedByte(T pixel, std::uint16_t gain) {
    constexpr std::uint8_t sign = std::is_signed_v<T> ? 0x80 : 0;
    const auto distance = static_cast<std::uint16_t>((static_cast<std::uint8_t>(pixel) ^ sign) << 8);
    const auto product = static_cast<std::uint16_t>((distance * std::uint32_t{gain}) >> 16);
    const auto limited = static_cast<std::uint8_t>(product > 255 ? 255 : product);
    return static_cast<T>(limited ^ sign);
}

template <class T>
bool FitsByteGain(Gain<T> gain) {
    return gain >= 0 && gain <= 0xFFFF;
}

template <class T>
void MultiplyOneByOne(const Image::PlaneView &plane, Gain<T> gain) {
    using Pixel = typename Loose<T>::Type;
    for (std::intptr_t y = 0; y < plane.Height; ++y)
        for (std::intptr_t x = 0; x < plane.Width; ++x) {
            auto *const pixel = reinterpret_cast<Pixel *>(plane.Pixel(x, y));
            *pixel = Multiplied<T>(*pixel, gain);
        }
}

template <class T>
void MultiplyArray(T *pixels, std::intptr_t count, Gain<T> gain) {
    if constexpr (sizeof(T) == 1)
        if (FitsByteGain<T>(gain)) {
            const auto byteGain = static_cast<std::uint16_t>(gain);
            return Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
                for (std::intptr_t i = 0; i < count; ++i)
                    pixels[i] = MultipliedByte(pixels[i], byteGain);
            });
        }
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        for (std::intptr_t i = 0; i < count; ++i)
            pixels[i] = Multiplied<T>(pixels[i], gain);
    });
}

template <class T>
void MultiplyInPieces(const Image::PlaneView &plane, Gain<T> gain) {
    Chunk<T> chunk;
    ForEachPiece<T>(plane.Width, plane.Height, [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        T *const pixels = PixelsToWrite(plane, x, y, chunk);
        if (pixels == chunk.Pixels)
            Gather(plane, x, y, count, pixels);
        MultiplyArray(pixels, count, gain);
        WritePixels(plane, x, y, count, pixels, chunk);
    });
}

/// The gains of bytes that lie one behind the other, as often as the longest registers need them.
template <class GainType>
struct GainPattern {
    static constexpr std::intptr_t Bytes = 192;
    alignas(64) GainType Gains[Bytes];

    explicit GainPattern(const std::array<std::int32_t, 3> &gainOfByte) {
        for (std::size_t i = 0; i < Bytes; ++i)
            Gains[i] = static_cast<GainType>(gainOfByte[i % gainOfByte.size()]);
    }
};

template <class T>
ORV_INLINE T MultipliedByPattern(T pixel, std::uint16_t gain) {
    return MultipliedByte(pixel, gain);
}
template <class T>
ORV_INLINE T MultipliedByPattern(T pixel, std::int32_t gain) {
    return Multiplied<T>(pixel, gain);
}

template <class T, class GainType>
ORV_INLINE void MultiplyPatterns(T *__restrict row, const GainType *__restrict gains, std::intptr_t count) {
    constexpr std::intptr_t step = GainPattern<GainType>::Bytes;
    std::intptr_t done = 0;
    for (; done + step <= count; done += step)
        for (std::intptr_t i = 0; i < step; ++i)
            row[done + i] = MultipliedByPattern(row[done + i], gains[i]);
    for (std::intptr_t i = 0; i < count - done; ++i)
        row[done + i] = MultipliedByPattern(row[done + i], gains[i]);
}

template <class T, class GainType>
void MultiplyByteRows(const Image::PlaneView &pixels, const std::array<std::int32_t, 3> &gainOfByte) {
    const GainPattern<GainType> pattern(gainOfByte);
    const GainType *const gains = pattern.Gains;
    const std::intptr_t count = 3 * pixels.Width;
    for (std::intptr_t y = 0; y < pixels.Height; ++y) {
        T *const row = reinterpret_cast<T *>(pixels.Row(y) + pixels.LowestColumn());
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { MultiplyPatterns(row, gains, count); });
    }
}

template <class T>
void MultiplyThreeByteRows(const ThreeBytePixels &pixels, const std::array<std::int32_t, 3> &gains) {
    std::array<std::int32_t, 3> gainOfByte;
    for (std::size_t byte = 0; byte < gainOfByte.size(); ++byte)
        gainOfByte[byte] = gains[pixels.PlaneOfByte[byte]];
    if (std::all_of(gains.begin(), gains.end(), FitsByteGain<T>))
        MultiplyByteRows<T, std::uint16_t>(pixels.Pixels, gainOfByte);
    else
        MultiplyByteRows<T, std::int32_t>(pixels.Pixels, gainOfByte);
}

template <class T>
void Multiply(GainMethod method, Planes planes, std::span<const double> gains) {
    std::array<Gain<T>, 3> gainOfPlane;
    std::transform(gains.begin(), gains.end(), gainOfPlane.begin(), GainOf<T>);
    if constexpr (sizeof(T) == 1)
        if (const auto pixels = AsThreeBytePixels(planes); pixels && method == GainMethod::ThreeByteRows)
            return MultiplyThreeByteRows<T>(*pixels, gainOfPlane);
    for (std::size_t plane = 0; plane < gainOfPlane.size(); ++plane)
        if (method == GainMethod::OneByOne)
            MultiplyOneByOne<T>(planes[plane], gainOfPlane[plane]);
        else
            MultiplyInPieces<T>(planes[plane], gainOfPlane[plane]);
}

} // namespace

GainMethod ChooseGainMethod(Planes planes) {
    if (const auto pixels = AsThreeBytePixels(planes); pixels && pixels->Pixels.HasDistinctPixels())
        return GainMethod::ThreeByteRows;
    const bool areDistinct =
        std::all_of(planes.begin(), planes.end(), [](const auto &plane) { return plane.HasDistinctPixels(); });
    return areDistinct ? GainMethod::InPieces : GainMethod::OneByOne;
}

void ApplyGains(GainMethod method, TDataType type, Planes planes, std::span<const double> gains) {
    ForPixelType(type, [&]<class T>() {
        if constexpr (sizeof(T) <= 4 || std::is_floating_point_v<T>)
            Multiply<T>(method, planes, gains);
    });
}

} // namespace Scan

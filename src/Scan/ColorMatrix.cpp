#include "Scan/ColorMatrix.h"

#include <algorithm>
#include <cmath>

#include "Image/KernelLevel.h"
#include "Scan/ByteColors.h"
#include "Scan/ColorPixel.h"
#include "Scan/PixelRows.h"
#include "Scan/PixelType.h"

namespace Scan {
namespace {

using Planes = std::span<const Image::PlaneView>;

template <class T, bool Reflects>
void CombineOneByOne(const ColorRows &rows, Planes sources, Planes targets) {
    using Pixel = typename Loose<T>::Type;
    for (std::intptr_t row = 0; row < rows.Count; ++row) {
        const Image::PlaneView &target = targets[static_cast<std::size_t>(row)];
        for (std::intptr_t y = 0; y < target.Height; ++y)
            for (std::intptr_t x = 0; x < target.Width; ++x) {
                double sum = rows.Offset(row);
                std::intptr_t plane = 0;
                for (const Image::PlaneView &source : sources) {
                    const T pixel = *reinterpret_cast<const Pixel *>(source.Pixel(x, y));
                    sum += static_cast<double>(pixel) * rows.Coefficient(row, plane++);
                }
                *reinterpret_cast<Pixel *>(target.Pixel(x, y)) = ColorPixel<T, Reflects, false>(sum);
            }
    }
}

/// True when no sum leaves 30 bits, so that what is stored fits in 32 bits, reflected or not.
template <class T>
bool StaysInInt(const ColorRows &rows) {
    constexpr double bound = 1073741824.0;
    constexpr double greatest = std::max(-LowerLimit<T>, UpperLimit<T>);
    for (std::intptr_t row = 0; row < rows.Count; ++row) {
        double magnitude = std::abs(rows.Offset(row));
        for (std::intptr_t plane = 0; plane < rows.Planes; ++plane)
            magnitude += std::abs(rows.Coefficient(row, plane)) * greatest;
        if (!(magnitude < bound))
            return false;
    }
    return true;
}

/// The sums of a piece of a row, which stay in the nearest cache while the sources pass by.
template <class T>
struct PieceSums {
    static constexpr std::intptr_t Pixels = std::min<std::intptr_t>(512, ChunkPixels<T>);
    alignas(64) double Sums[MaximumTargets][Pixels];

    void Start(std::intptr_t row, double offset) { std::fill_n(Sums[row], Pixels, offset); }

    void Add(std::intptr_t row, double coefficient, const T *pixels, std::intptr_t count) {
        double *const sums = Sums[row];
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
            for (std::intptr_t i = 0; i < count; ++i)
                sums[i] += static_cast<double>(pixels[i]) * coefficient;
        });
    }

    template <bool Reflects, bool FitsInt>
    void Store(std::intptr_t row, T *__restrict pixels, std::intptr_t count) const {
        const double *const sums = Sums[row];
        Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
            for (std::intptr_t i = 0; i < count; ++i)
                pixels[i] = ColorPixel<T, Reflects, FitsInt>(sums[i]);
        });
    }
};

template <class T, bool Reflects, bool FitsInt>
void CombineInPieces(const ColorRows &rows, Planes sources, Planes targets) {
    using Piece = PieceSums<T>;
    Piece piece;
    Chunk<T> read, written;
    const std::intptr_t width = targets[0].Width;
    for (std::intptr_t y = 0; y < targets[0].Height; ++y)
        for (std::intptr_t x = 0; x < width; x += Piece::Pixels) {
            const std::intptr_t count = std::min(Piece::Pixels, width - x);
            for (std::intptr_t row = 0; row < rows.Count; ++row)
                piece.Start(row, rows.Offset(row));
            std::intptr_t plane = 0;
            for (const Image::PlaneView &source : sources) {
                const T *const pixels = PixelsToRead(source, x, y, count, read);
                for (std::intptr_t row = 0; row < rows.Count; ++row)
                    piece.Add(row, rows.Coefficient(row, plane), pixels, count);
                ++plane;
            }
            for (std::intptr_t row = 0; row < rows.Count; ++row) {
                const Image::PlaneView &target = targets[static_cast<std::size_t>(row)];
                T *const pixels = PixelsToWrite(target, x, y, written);
                piece.template Store<Reflects, FitsInt>(row, pixels, count);
                WritePixels(target, x, y, count, pixels, written);
            }
        }
}

template <class T, bool Reflects>
void CombineInPieces(const ColorRows &rows, Planes sources, Planes targets) {
    if constexpr (std::is_integral_v<T> && sizeof(T) <= 2)
        if (StaysInInt<T>(rows))
            return CombineInPieces<T, Reflects, true>(rows, sources, targets);
    CombineInPieces<T, Reflects, false>(rows, sources, targets);
}

template <class T, bool Reflects>
void Combine(ColorMethod method, const ColorRows &rows, Planes sources, Planes targets) {
    switch (method) {
    case ColorMethod::BytesInFloat:
        return CombineBytes(rows, sources, targets);
    case ColorMethod::InPieces:
        return CombineInPieces<T, Reflects>(rows, sources, targets);
    case ColorMethod::OneByOne:
        break;
    }
    CombineOneByOne<T, Reflects>(rows, sources, targets);
}

} // namespace

ColorMethod ChooseColorMethod(TDataType type, const ColorRows &rows) {
    const bool isByte = PixelTypeOf(type) == PixelType::Unsigned8;
    return isByte && CanCombineBytes(rows) ? ColorMethod::BytesInFloat : ColorMethod::InPieces;
}

void CombinePlanes(ColorMethod method, TDataType type, const ColorRows &rows, Planes sources, Planes targets) {
    ForPixelType(type, [&]<class T>() {
        if (rows.Reflects)
            Combine<T, true>(method, rows, sources, targets);
        else
            Combine<T, false>(method, rows, sources, targets);
    });
}

} // namespace Scan

// The worker of transforms that a function gives the positions of, one plane at a time, in double for any pixel type.
#pragma once

#include <variant>

#include "ImageTransformations.h"
#include "Scan/PixelRows.h"
#include "Transformations/RealSampling.h"

namespace Transformations {

/// Asks a function for each position.
struct CallbackPositions {
    TTransform Transform;
    void *UserData;
};
/// Where the pixels of a result come from: a function tells, or a map from the result to the source.
using SourcePositions = std::variant<CallbackPositions, TCoordinateMap>;

/// CreateTransformedImage, reports included, for positions of either kind.
bool CreateTransformedImageFrom(void *image, std::intptr_t width, std::intptr_t height,
                                const SourcePositions &positions, void **out);

template <class T, class I = CLinearInterpolator<T, double>>
class CArbitraryTransformer final : public CBaseTransformer<T, I> {
public:
    CArbitraryTransformer(Interface::ImageHolder source, const SourcePositions &positions)
        : CBaseTransformer<T, I>(std::move(source)), positions_(positions) {
        this->Interpolator.OutsideValue = AffineOutsideValue<T>();
    }

    /// Fills a plane from the selected one, row by row.
    void Transform(const Image::PlaneView &target) const {
        const RealSampling<T> sampling(this->Interpolator);
        std::visit([&](const auto &positions) { FillPlane(sampling, positions, target); }, positions_);
    }

private:
    static constexpr std::intptr_t LongestPiece = std::min<std::intptr_t>(512, Scan::ChunkPixels<T>);

    template <class Positions>
    static void FillPlane(const RealSampling<T> &sampling, const Positions &positions,
                          const Image::PlaneView &target) {
        Scan::Chunk<T> chunk;
        for (std::intptr_t y = 0; y < target.Height; ++y)
            for (std::intptr_t x = 0; x < target.Width; x += LongestPiece) {
                const std::intptr_t count = std::min(LongestPiece, target.Width - x);
                T *const to = Scan::PixelsToWrite(target, x, y, chunk);
                FillPiece(sampling, positions, x, y, count, to);
                Scan::WritePixels(target, x, y, count, to, chunk);
            }
    }

    static void FillPiece(const RealSampling<T> &sampling, const CallbackPositions &positions, std::intptr_t x,
                          std::intptr_t y, std::intptr_t count, T *to) {
        double sourceX[LongestPiece], sourceY[LongestPiece];
        for (std::intptr_t i = 0; i < count; ++i) {
            sourceX[i] = static_cast<double>(x + i);
            sourceY[i] = static_cast<double>(y);
            positions.Transform(positions.UserData, &sourceX[i], &sourceY[i]);
        }
        sampling.Sample(sourceX, sourceY, count, to);
    }

    static void FillPiece(const RealSampling<T> &sampling, const TCoordinateMap &map, std::intptr_t x,
                          std::intptr_t y, std::intptr_t count, T *to) {
        const auto row = static_cast<double>(y);
        const TMatrix &matrix = map.Matrix;
        sampling.Sample({matrix.A11, matrix.A21, matrix.A12 * row, matrix.A22 * row, map.X, map.Y}, x, count, to);
    }

    SourcePositions positions_;
};

} // namespace Transformations

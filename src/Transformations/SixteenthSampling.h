// Many positions sampled with 4 fractional bits at once: the same pixels as CLinearInterpolatorFPA<T> gives one by
// one for positions that are cut off to sixteenths.
#pragma once

#include "Image/PlaneView.h"
#include "Image/VectorRegisters.h"
#include "Transformations/InnerPixels.h"
#include "Transformations/RealSampling.h"

namespace Transformations {

/// Positions at a distance from a centre, in given directions.
struct CirclePositions {
    const double *Cosines;
    const double *Sines;
    double Radius;
    double CentreX;
    double CentreY;

    ORV_INLINE Position At(std::intptr_t i) const {
        return {Radius * Cosines[i] + CentreX, Radius * Sines[i] + CentreY};
    }
    CirclePositions From(std::intptr_t first) const {
        return {Cosines + first, Sines + first, Radius, CentreX, CentreY};
    }
};

/// What the kernel for positions in sixteenths knows of a plane whose pixels stand side by side, in rows or in
/// columns. Around inner positions it reads two neighbours at once.
template <class T>
struct SixteenthPlane {
    const CLinearInterpolatorFPA<T> *Interpolator; ///< for all positions that are not inner
    const char *Base;                              ///< pixel (0, 0)
    std::int32_t RowStep;                          ///< in bytes, across the neighbours
    bool IsTurned;                                 ///< neighbours stand above each other
    std::uint32_t InnerAlong, InnerAcross;         ///< inner positions are below, in sixteenths
};

/// For processors with the instructions of Image::KernelLevel::Avx512. count is at least the constant. Some positions
/// may be sampled twice. Sixteenfold positions, radii and centres are numbers that double holds.
inline constexpr std::intptr_t SixteenthLanes = 16;
template <class T>
void SampleAtAvx512(const SixteenthPlane<T> &plane, const PositionArrays &positions, std::intptr_t count, T *target);
template <class T>
void SampleAtAvx512(const SixteenthPlane<T> &plane, const CirclePositions &positions, std::intptr_t count, T *target);

/// Samples the selected plane of an interpolator, which must outlive this and stay as it is.
template <class T>
class SixteenthSampling {
public:
    /// Takes one look at the table. The source has pixels.
    explicit SixteenthSampling(const CLinearInterpolatorFPA<T> &interpolator);

    /// Samples count positions.
    void Sample(const double *x, const double *y, std::intptr_t count, T *target) const {
        SampleAll(PositionArrays{x, y}, count, target);
    }
    void Sample(const CirclePositions &positions, std::intptr_t count, T *target) const {
        SampleAll(positions, count, target);
    }

private:
    static constexpr std::intptr_t Capacity = 512;    ///< positions that are worked on at a time
    static constexpr std::intptr_t TestedLength = 64; ///< positions that are inside, or not, together

    /// Positions in 1/256 pixel, wrapped, and for each tested length of them whether some lie outside or at an edge.
    struct Piece {
        alignas(64) std::int32_t X[Capacity];
        alignas(64) std::int32_t Y[Capacity];
        bool IsOuter[Capacity / TestedLength];
    };

    template <class Positions>
    void SampleAll(const Positions &positions, std::intptr_t count, T *target) const;
    template <class Positions>
    void SamplePiece(const Positions &positions, std::intptr_t count, T *target) const;
    /// Positions first to end - 1, all of whose four pixels lie inside.
    void SampleInner(const Piece &piece, std::intptr_t first, std::intptr_t end, T *target) const;

    const CLinearInterpolatorFPA<T> &interpolator_;
    Image::PlaneView view_;
    SourceGrid grid_;
    std::uint32_t innerX_, innerY_; ///< positions below have their neighbours inside, in 1/16 pixel
    SixteenthPlane<T> plane_;
};

} // namespace Transformations

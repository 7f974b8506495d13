// Rows of positions sampled in double at once: the same pixels as CLinearInterpolator<T, double> gives one by one.
#pragma once

#include "Transformations/Interpolator.h"

namespace Transformations {

/// The positions along a row of a result. Column i lies at ((i StepX + RowX) + OriginX, (i StepY + RowY) + OriginY),
/// rounded after each operation. An origin of -0.0 adds nothing, to no number and to no sign.
struct AffineRow {
    double StepX, StepY;
    double RowX, RowY;
    double OriginX = -0.0, OriginY = -0.0;
};

struct Position {
    double X, Y;
};
/// Positions one by one.
struct PositionArrays {
    const double *X;
    const double *Y;

    Position At(std::intptr_t i) const { return {X[i], Y[i]}; }
    PositionArrays From(std::intptr_t first) const { return {X + first, Y + first}; }
};
/// The positions of the columns of a row from one on. With the column both coordinates rise or fall, or stay:
/// rounding keeps the order.
struct PositionsOnRow {
    AffineRow Row;
    std::intptr_t First;

    Position At(std::intptr_t i) const {
        const auto column = static_cast<double>(First + i);
        return {column * Row.StepX + Row.RowX + Row.OriginX, column * Row.StepY + Row.RowY + Row.OriginY};
    }
    PositionsOnRow From(std::intptr_t first) const { return {Row, First + first}; }
};

/// What kernels know of a linear plane. Around most positions, the inner ones, they read the two pixels of a row in
/// one window of bytes, which lies in pixels of that row.
template <class T>
struct RealPlane {
    const CLinearInterpolator<T, double> *Interpolator; ///< for all positions that are not inner
    const char *FirstWindow;                            ///< around pixels (0, 0) and (1, 0)
    std::int32_t XStep, YStep;                          ///< in bytes
    std::int32_t LeftByte, RightByte;                   ///< of the window: where the left and the right pixel begin
    double InnerWidth, InnerHeight;                     ///< inner positions are above -1 and below these
    double Width, Height;                               ///< positions inside are above -1 and below these

    bool IsInner(const Position &position) const {
        return position.X > -1.0 && position.X < InnerWidth && position.Y > -1.0 && position.Y < InnerHeight;
    }

    /// Bytes of a window. Pixels of 8 bytes have none and are read one by one.
    static constexpr std::int32_t WindowBytes = sizeof(T) <= 2 ? 4 : 8;
};

/// Samples the selected plane of an interpolator, which must outlive this and stay as it is.
template <class T>
class RealSampling {
public:
    /// Takes one look at the table.
    explicit RealSampling(const CLinearInterpolator<T, double> &interpolator);

    /// Samples count positions.
    void Sample(const double *x, const double *y, std::intptr_t count, T *target) const {
        Run(PositionArrays{x, y}, count, target);
    }
    /// Samples the columns first to first + count - 1 of a row.
    void Sample(const AffineRow &row, std::intptr_t first, std::intptr_t count, T *target) const {
        Run(PositionsOnRow{row, first}, count, target);
    }
    /// Whether there are kernels for planes of this layout and size; other planes are sampled position by position.
    bool HasKernels() const { return hasKernels_; }

private:
    template <class Positions>
    void Run(const Positions &positions, std::intptr_t count, T *target) const;

    RealPlane<T> plane_;
    bool hasKernels_;
};

/// For processors with the instructions of Image::KernelLevel::Avx512. count is a multiple of the constant.
inline constexpr std::intptr_t Avx512Positions = 8;
template <class T>
void SampleAtAvx512(const RealPlane<T> &plane, const PositionArrays &positions, std::intptr_t count, T *target);
template <class T>
void SampleAtAvx512(const RealPlane<T> &plane, const PositionsOnRow &positions, std::intptr_t count, T *target);

} // namespace Transformations

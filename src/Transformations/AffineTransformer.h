// The workers of affine maps, one plane at a time: in doubles for any pixel type, and in fixed point over a table for
// pixels of 8 and 16 bits. Both are plain; what is quicker for some layouts stands behind them.
#pragma once

#include "Image/PlaneView.h"
#include "Transformations/FixedPointPlane.h"
#include "Transformations/Interpolator.h"
#include "Transformations/RealSampling.h"
#include "Transformations/TransTable.h"
#include "Transformations/UprightSampling.h"

namespace Transformations {

/// Samples in doubles.
template <class T, class I = CLinearInterpolator<T, double>>
class CAffineTransformer final : public CBaseTransformer<T, I> {
public:
    /// map leads from the result to the source.
    CAffineTransformer(Interface::ImageHolder source, const TCoordinateMap &map)
        : CBaseTransformer<T, I>(std::move(source)), map_(map) {
        this->Interpolator.OutsideValue = AffineOutsideValue<T>();
    }

    /// Fills a plane from the selected one.
    void Transform(const Image::PlaneView &target) const {
        if (IsUpright(map_.Matrix))
            return UprightSampling<T>(this->Interpolator, map_).Fill(target);
        const RealSampling<T> sampling(this->Interpolator);
        Scan::Chunk<T> chunk;
        Scan::ForEachPiece<T>(target.Width, target.Height,
                              [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
                                  T *const to = Scan::PixelsToWrite(target, x, y, chunk);
                                  sampling.Sample(RowOf(y), x, count, to);
                                  Scan::WritePixels(target, x, y, count, to, chunk);
                              });
    }

private:
    AffineRow RowOf(std::intptr_t y) const {
        const TMatrix &matrix = map_.Matrix;
        const double row = static_cast<double>(y);
        return {matrix.A11, matrix.A21, row * matrix.A12, row * matrix.A22, map_.X, map_.Y};
    }

    TCoordinateMap map_;
};

/// What the workers in fixed point share.
template <class T, class I>
class CBaseTransformerFPA : public CBaseTransformer<T, I> {
public:
    using TransTableEntry = Transformations::TransTableEntry;

protected:
    /// The table must outlive this.
    CBaseTransformerFPA(Interface::ImageHolder source, const Transformations::TransTable &table)
        : CBaseTransformer<T, I>(std::move(source)), TransTable(table), Entries(table.Entries()) {}

    const Transformations::TransTable &TransTable;
    const TransTableEntry *Entries;
};

/// Samples in fixed point.
template <class T, class I = CLinearInterpolatorFPA<T>>
class CAffineTransformerFPA final : public CBaseTransformerFPA<T, I> {
public:
    CAffineTransformerFPA(Interface::ImageHolder source, const TransTable &table)
        : CBaseTransformerFPA<T, I>(std::move(source), table) {}

    /// Fills a plane, as large as the table is made for, from the selected one.
    void Transform(const Image::PlaneView &target) const {
        const RowFinish finish = this->Interpolator.OverlayFlag ? RowFinish::CopyOverlayBits : RowFinish::None;
        TransformFixedPoint<T>({SourceViewOf<T>(this->Interpolator), this->Interpolator.OutsideValue, finish,
                                [this](std::intptr_t x, std::intptr_t y) { return Sample(x, y); }},
                               this->TransTable, target);
    }
    /// The same, pixel by pixel.
    void TransformPlainly(const Image::PlaneView &target) const {
        Scan::Chunk<T> chunk;
        Scan::ForEachPiece<T>(target.Width, target.Height,
                              [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
                                  T *const to = Scan::PixelsToWrite(target, x, y, chunk);
                                  for (std::intptr_t i = 0; i < count; ++i)
                                      to[i] = Sample(x + i, y);
                                  Scan::WritePixels(target, x, y, count, to, chunk);
                              });
    }

    /// One pixel of the result.
    T Sample(std::intptr_t x, std::intptr_t y) const {
        const FixedPosition position(this->Entries[x], this->Entries[y]);
        const bool isInside = this->TransTable.Columns().Contains(x) && this->TransTable.Rows().Contains(y);
        if (!isInside || !position.FitsIn32Bits())
            return this->Interpolator.OutsideValue;
        const auto sx = static_cast<std::int32_t>(position.X), sy = static_cast<std::int32_t>(position.Y);
        return this->Interpolator.Sample(sx >> 8, sy >> 8, (sx >> 4) & 15, (sy >> 4) & 15);
    }
};

} // namespace Transformations

// Which loops sample the positions of polar geometry for a pixel type, and the visitor that rolls rows up with them.
#pragma once

#include "Transformations/PolarRing.h"
#include "Transformations/PolarRows.h"

namespace Transformations {

static_assert(PolarPiece::Capacity <= Scan::ChunkPixels<double>);

template <class T>
using PolarSampling = std::conditional_t<IsSampledInFixedPoint<T>, SixteenthSampling<T>, RealSampling<T>>;

/// The pixels of a walk over the target, sampled in rows.
template <class T>
class InversePolarRows {
public:
    InversePolarRows(const InversePolarRing &ring, const Image::PlaneView &target,
                     const PolarInterpolator<T> &interpolator)
        : ring_(ring), target_(target), interpolator_(interpolator), sampling_(interpolator) {}

    void Rectangle(std::int32_t left, std::int32_t top, std::int64_t width, std::int64_t height) {
        // Strips as wide that what neighbouring rows of them read of the source stays at hand.
        constexpr std::int64_t stripWidth = 512;
        const ColumnRange all = {left, left + width};
        std::vector<RingColumns> rows;
        for (std::int64_t y = 0; y < height; ++y)
            rows.push_back(FindRingColumns(ring_, top + y, all));
        for (ColumnRange strip = {left, left}; strip.Begin < all.End; strip.Begin = strip.End) {
            strip.End = std::min(strip.Begin + stripWidth, all.End);
            for (std::int64_t y = 0; y < height; ++y)
                FillRing(rows[static_cast<std::size_t>(y)], strip, top + y);
        }
    }
    void Span(std::int32_t left, std::int32_t y, std::int64_t width) {
        const ColumnRange all = {left, left + width};
        FillRing(FindRingColumns(ring_, y, all), all, y);
    }
    void Pixel(std::int32_t x, std::int32_t y) { Span(x, y, 1); }

private:
    void FillRing(const RingColumns &columns, const ColumnRange &within, std::intptr_t y) {
        if (columns.Left.End == columns.Right.Begin) {
            FillColumns({columns.Left.Begin, columns.Right.End}, within, y);
        } else {
            FillColumns(columns.Left, within, y);
            FillColumns(columns.Right, within, y);
        }
    }
    void FillColumns(ColumnRange columns, const ColumnRange &within, std::intptr_t y) {
        columns = {std::max(columns.Begin, within.Begin), std::min(columns.End, within.End)};
        for (std::intptr_t x = columns.Begin; x < columns.End; x += PolarPiece::Capacity)
            FillPiece(x, y, std::min(columns.End - x, PolarPiece::Capacity));
    }
    void FillPiece(std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        constexpr auto use = IsSampledInFixedPoint<T> ? PositionUse::Sixteenths : PositionUse::Exact;
        const bool isLikelyEnough = use == PositionUse::Exact && ring_.Extent >= WholeTurn;
        if (isLikelyEnough)
            FindLikelyPositions(ring_, x, y, count, piece_, doubts_);
        else
            FindInversePositions(ring_, x, y, count, use, piece_);
        if (piece_.KeepsSome)
            return FillSome(x, y, count);
        T *const to = Scan::PixelsToWrite(target_, x, y, chunk_);
        sampling_.Sample(piece_.X, piece_.Y, count, to);
        if (isLikelyEnough)
            SettleDoubts(x, y, to);
        Scan::WritePixels(target_, x, y, count, to, chunk_);
    }
    /// Most columns that may be others give the same pixels either way.
    void SettleDoubts(std::intptr_t x, std::intptr_t y, T *pixels) {
        sampling_.Sample(doubts_.X, doubts_.Y, doubts_.Count, otherPixels_);
        for (std::intptr_t i = 0; i < doubts_.Count; ++i) {
            T &pixel = pixels[doubts_.Index[i]];
            double column = 0, row = 0;
            if (std::memcmp(&pixel, otherPixels_ + i, sizeof(T)) != 0 &&
                ring_.Position(static_cast<double>(x + doubts_.Index[i]), static_cast<double>(y), column, row))
                pixel = SamplePolar<T>(interpolator_, column, row);
        }
    }
    void FillSome(std::intptr_t x, std::intptr_t y, std::intptr_t count) {
        sampling_.Sample(piece_.X, piece_.Y, count, chunk_.Pixels);
        for (std::intptr_t i = 0; i < count; ++i)
            if (piece_.Kept[i] == 0)
                std::memcpy(target_.Pixel(x + i, y), chunk_.Pixels + i, sizeof(T));
    }

    InversePolarRing ring_;
    Image::PlaneView target_;
    const PolarInterpolator<T> &interpolator_;
    PolarSampling<T> sampling_;
    PolarPiece piece_;
    PolarDoubts doubts_;
    T otherPixels_[PolarPiece::Capacity];
    Scan::Chunk<T> chunk_;
};

} // namespace Transformations

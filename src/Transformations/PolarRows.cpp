#include "Transformations/PolarRows.h"

#include "Image/KernelLevel.h"
#include "Scan/SquareRoots.h"
#include "Transformations/AnglesOfRow.h"
#include "Transformations/InverseSixteenths.h"

namespace Transformations {
namespace {

/// The first column of the range for which test(column) holds; it holds for all behind as well.
template <class Test>
std::intptr_t FirstColumn(ColumnRange range, Test &&test) {
    while (range.Begin < range.End) {
        const std::intptr_t middle = range.Begin + (range.End - range.Begin) / 2;
        (test(middle) ? range.End : range.Begin) = test(middle) ? middle : middle + 1;
    }
    return range.Begin;
}

/// Distances from the centre: dx, and the square of the whole.
void FindDistances(double centreX, std::intptr_t first, double dySquared, std::intptr_t count, double *dx,
                   double *squared) {
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        double *__restrict const distances = dx;
        double *__restrict const squares = squared;
        const std::intptr_t length = count, begin = first;
        const double centre = centreX, ofRow = dySquared;
        for (std::intptr_t i = 0; i < length; ++i) {
            const double distance = static_cast<double>(static_cast<std::int32_t>(begin + i)) - centre;
            distances[i] = distance;
            squares[i] = distance * distance + ofRow;
        }
    });
}

/// Makes columns of the unrolled image of angles, and notes those that are kept.
void FindColumns(const InversePolarRing &ring, std::intptr_t count, double *angles, double *kept) {
    const double startAngle = ring.StartAngle, extent = ring.Extent, columnScale = ring.ColumnScale;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        double *__restrict const columns = angles;
        double *__restrict const keptOnes = kept;
        const std::intptr_t length = count;
        const double start = startAngle, scale = columnScale, limit = extent;
        for (std::intptr_t i = 0; i < length; ++i) {
            const double angle = columns[i], turned = angle + WholeTurn;
            const double fromStart = (angle < 0 ? turned : angle) - start, wrapped = fromStart + WholeTurn;
            const double excess = wrapped > limit ? 1.0 : 0.0;
            keptOnes[i] = fromStart < 0 ? excess : 0.0;
            const double positive = fromStart < 0 ? wrapped : fromStart, lowered = positive - WholeTurn;
            columns[i] = (positive > WholeTurn ? lowered : positive) / WholeTurn * scale;
        }
    });
}

/// Makes rows of the unrolled image of radii.
void FindRows(const InversePolarRing &ring, std::intptr_t count, double *radii) {
    const double innerRadius = ring.InnerRadius, rowSpan = ring.RowSpan;
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        double *__restrict const rows = radii;
        const std::intptr_t length = count;
        const double inner = innerRadius, span = rowSpan;
        for (std::intptr_t i = 0; i < length; ++i)
            rows[i] = span - (rows[i] - inner);
    });
}

void FindExactly(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y, std::intptr_t count,
                 PolarPiece &piece) {
    alignas(64) double dx[PolarPiece::Capacity];
    const double dy = static_cast<double>(y) - ring.CentreY;
    FindDistances(ring.CentreX, first, dy * dy, count, dx, piece.Y);
    AnglesOfRow(dx, dy, count, piece.X);
    FindColumns(ring, count, piece.X, piece.Kept);
    Scan::TakeSquareRoots(piece.Y, count);
    FindRows(ring, count, piece.Y);
}

/// Whether the kernel for positions that are cut off finds those of a row.
bool AreCutOffQuickly(const InversePolarRing &ring, std::intptr_t y, PositionUse use) {
    return use == PositionUse::Sixteenths && Image::CurrentLevel() == Image::KernelLevel::Avx512 &&
           HasShortArctangents(ring, y);
}

} // namespace

void FindPositions(const CirclePositions &positions, std::intptr_t count, double *x, double *y) {
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
        double *__restrict const toX = x;
        double *__restrict const toY = y;
        const CirclePositions from = positions;
        const std::intptr_t length = count;
        for (std::intptr_t i = 0; i < length; ++i) {
            const Position position = from.At(i);
            toX[i] = position.X;
            toY[i] = position.Y;
        }
    });
}

void FindInversePositions(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y, std::intptr_t count,
                          PositionUse use, PolarPiece &piece) {
    if (AreCutOffQuickly(ring, y, use))
        FindSixteenthsAtAvx512(ring, first, y, count, piece);
    else
        FindExactly(ring, first, y, count, piece);
    piece.KeepsSome =
        ring.Extent < WholeTurn && std::any_of(piece.Kept, piece.Kept + count, [](double kept) { return kept != 0; });
}

void FindLikelyPositions(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y, std::intptr_t count,
                         PolarPiece &piece, PolarDoubts &doubts) {
    alignas(64) double dx[PolarPiece::Capacity];
    DoubtfulAngle angles[PolarPiece::Capacity];
    const double dy = static_cast<double>(y) - ring.CentreY;
    FindDistances(ring.CentreX, first, dy * dy, count, dx, piece.Y);
    doubts.Count = AnglesOrNeighbours(dx, dy, count, piece.X, angles);
    for (std::intptr_t i = 0; i < doubts.Count; ++i)
        doubts.X[i] = angles[i].Other;
    FindColumns(ring, doubts.Count, doubts.X, piece.Kept);
    FindColumns(ring, count, piece.X, piece.Kept);
    Scan::TakeSquareRoots(piece.Y, count);
    FindRows(ring, count, piece.Y);
    for (std::intptr_t i = 0; i < doubts.Count; ++i) {
        doubts.Index[i] = angles[i].Index;
        doubts.Y[i] = piece.Y[angles[i].Index];
    }
    piece.KeepsSome = false;
}

RingColumns FindRingColumns(const InversePolarRing &ring, std::intptr_t y, const ColumnRange &within) {
    const double dy = static_cast<double>(y) - ring.CentreY;
    // Squares of rounded distances still grow with the distance, or stay.
    const auto squared = [&](std::intptr_t x) {
        const double dx = static_cast<double>(x) - ring.CentreX;
        return dx * dx + dy * dy;
    };
    const std::intptr_t centre =
        FirstColumn(within, [&](std::intptr_t x) { return static_cast<double>(x) >= ring.CentreX; });
    const ColumnRange left = {within.Begin, centre}, right = {centre, within.End};
    const auto inside = [&](std::intptr_t x) { return squared(x) < ring.InnerSquared; };
    const auto outside = [&](std::intptr_t x) { return squared(x) > ring.OuterSquared; };
    const auto isNot = [](auto test) { return [test](std::intptr_t x) { return !test(x); }; };
    return {{FirstColumn(left, isNot(outside)), FirstColumn(left, inside)},
            {FirstColumn(right, isNot(inside)), FirstColumn(right, outside)}};
}

} // namespace Transformations

#include "Drawing/ThinLine.h"

#include "CheckedSize.h"
#include "Drawing/LatticeWalk.h"
#include "Image/KernelLevel.h"
#include "Image/TableSteps.h"

namespace Drawing {
namespace {

/// Steps beyond this can't lead from pixel to pixel of a memory that exists; sums of addresses then fit their words.
constexpr std::size_t GreatestStep = std::size_t{1} << 48;

/// Pixels [Begin, End) of a line.
struct Piece {
    std::int64_t Begin, End;
};

/// Fractions of a step along the shorter axis in units of 2^-64, rounded up: for lines below 2^31 pixels the sum of
/// the roundings stays below the distance of any pixel from its next step.
struct Fraction {
    std::uint64_t Start, Slope;

    Fraction(const LineSteps &steps, std::int64_t first) {
        const auto whole = static_cast<std::uint64_t>(2 * steps.Length());
        Start = Of(static_cast<std::uint64_t>(steps.RemainderAt(first)), whole);
        Slope = Of(2 * static_cast<std::uint64_t>(steps.Rise()), whole);
    }

private:
    __extension__ typedef unsigned __int128 Wide;
    static std::uint64_t Of(std::uint64_t part, std::uint64_t whole) {
        return part == 0 ? 0 : static_cast<std::uint64_t>(((Wide{part} << 64) + whole - 1) / whole);
    }
};
constexpr std::int64_t FractionLimit = std::int64_t{1} << 31;
/// Divisions for the fractions cost as much as some steps of remainders do.
constexpr std::int64_t FractionWorth = 24;

constexpr std::intptr_t WordsPerEntry = sizeof(VPAEntry) / sizeof(std::intptr_t);

/// The way of a line through the table: one word of an entry for each axis, and the distance to the next.
struct TableWay {
    char *Base;
    const std::intptr_t *Long;
    const std::intptr_t *Short;
    std::intptr_t LongStep, ShortStep;
    std::int64_t Count;
};

TableWay WayOf(const DrawnPlane &plane, const LineSteps &steps, const Piece &piece) {
    const Point start = steps.At(piece.Begin);
    const std::intptr_t *column = &plane.Table[start.X].XEntry;
    const std::intptr_t *row = &plane.Table[start.Y].YEntry;
    const std::intptr_t columnStep = steps.SignX() * WordsPerEntry, rowStep = steps.SignY() * WordsPerEntry;
    const std::int64_t count = piece.End - piece.Begin;
    if (steps.IsAlongX())
        return {plane.Base, column, row, columnStep, rowStep, count};
    return {plane.Base, row, column, rowStep, columnStep, count};
}

/// Rows lie in cache lines of their own: those ahead are asked for before they are written.
constexpr std::int64_t Ahead = 16;

// The walks take their values as copies: what they write could otherwise be any of them.

/// A rise of 0, along x or y.
template <class Writer>
void WalkStraight(const TableWay way, const Writer write) {
    char *const start = way.Base + *way.Short;
    const std::intptr_t *entry = way.Long;
    std::int64_t i = 0;
    for (; i + Ahead < way.Count; ++i, entry += way.LongStep) {
        __builtin_prefetch(start + entry[Ahead * way.LongStep], 1);
        write(start + *entry);
    }
    for (; i < way.Count; ++i, entry += way.LongStep)
        write(start + *entry);
}

/// As far along one axis as along the other.
template <class Writer>
void WalkDiagonal(const TableWay way, const Writer write) {
    const std::intptr_t *along = way.Long, *across = way.Short;
    for (std::int64_t i = 0; i < way.Count; ++i, along += way.LongStep, across += way.ShortStep)
        write(way.Base + *along + *across);
}

/// Sign  of the longer axis: with a step known to the compiler, a few pixels share one addition.
template <int Sign, class Writer>
void WalkByFractions(const TableWay way, Fraction fraction, const Writer write) {
    constexpr std::int64_t together = 4;
    const std::intptr_t *along = way.Long, *across = way.Short;
    const auto writeOne = [&](const std::intptr_t *entry) ORV_INLINE_LAMBDA {
        write(way.Base + *across + *entry);
        fraction.Start += fraction.Slope;
        const auto rises = static_cast<std::intptr_t>(fraction.Start < fraction.Slope);
        across += way.ShortStep & -rises;
    };
    std::int64_t i = 0;
    for (; i + together <= way.Count; i += together, along += Sign * together * WordsPerEntry)
        for (std::int64_t j = 0; j < together; ++j)
            writeOne(along + Sign * j * WordsPerEntry);
    for (; i < way.Count; ++i, along += Sign * WordsPerEntry)
        writeOne(along);
}

template <class Writer>
void WalkByRemainders(const TableWay way, const LineSteps &steps, std::int64_t first, const Writer write) {
    const std::int64_t whole = 2 * steps.Length(), part = 2 * steps.Rise();
    std::int64_t remainder = steps.RemainderAt(first);
    const std::intptr_t *along = way.Long, *across = way.Short;
    for (std::int64_t i = 0; i < way.Count; ++i, along += way.LongStep) {
        write(way.Base + *along + *across);
        remainder += part;
        const auto rises = -static_cast<std::intptr_t>(remainder >= whole);
        remainder -= whole & rises;
        across += way.ShortStep & rises;
    }
}

/// A piece that lies in the image.
void WalkTable(const Canvas &canvas, const LineSteps &steps, const Piece &piece) {
    const TableWay way = WayOf(canvas.Plane, steps, piece);
    WithWriter(canvas, [&]<class Writer>(const Writer &write) {
        if (steps.Rise() == 0)
            WalkStraight(way, write);
        else if (steps.Rise() == steps.Length())
            WalkDiagonal(way, write);
        else if (way.Count > FractionWorth && steps.Length() < FractionLimit)
            (way.LongStep > 0 ? WalkByFractions<1, Writer>
                              : WalkByFractions<-1, Writer>)(way, Fraction(steps, piece.Begin), write);
        else
            WalkByRemainders(way, steps, piece.Begin, write);
    });
}

/// The positions of an axis that an image has, counted from a start in the direction of a line.
Piece StepsInside(std::int64_t start, std::int64_t sign, std::int64_t size) {
    return sign > 0 ? Piece{-start, size - start} : Piece{start - size + 1, start + 1};
}

/// The piece of a line that lies in the image.
Piece ClipToImage(const DrawnPlane &plane, const LineSteps &steps, Point from) {
    const Piece x = StepsInside(from.X, steps.SignX(), plane.Width);
    const Piece y = StepsInside(from.Y, steps.SignY(), plane.Height);
    const Piece &along = steps.IsAlongX() ? x : y, &across = steps.IsAlongX() ? y : x;
    if (across.End <= 0)
        return {0, 0};
    const WideInt begin = std::max<WideInt>({0, along.Begin, steps.FirstWithRise(across.Begin)});
    const WideInt end = std::min<WideInt>({steps.Count(), along.End, steps.FirstWithRise(across.End)});
    return begin < end ? Piece{static_cast<std::int64_t>(begin), static_cast<std::int64_t>(end)} : Piece{0, 0};
}

} // namespace

std::optional<Lattice> LatticeOf(const DrawnPlane &plane) {
    if (plane.Width < 2 || plane.Height < 2)
        return std::nullopt;
    const Image::TableSteps steps = Image::CommonSteps({plane.Table, plane.Width, plane.Table, plane.Height});
    if (steps.X == 0 || steps.Y == 0 || orvBase::Magnitude(steps.X) > GreatestStep ||
        orvBase::Magnitude(steps.Y) > GreatestStep)
        return std::nullopt;
    const std::intptr_t right = Image::Step(plane.Table[plane.Width - 1].XEntry, plane.Table[0].XEntry);
    const std::intptr_t bottom = Image::Step(plane.Table[plane.Height - 1].YEntry, plane.Table[0].YEntry);
    return Lattice{plane.Pixel(0, 0), steps.X, steps.Y,
                   std::min<std::intptr_t>(right, 0) + std::min<std::intptr_t>(bottom, 0),
                   std::max<std::intptr_t>(right, 0) + std::max<std::intptr_t>(bottom, 0)};
}

void DrawThinLine(LinePlane &plane, Point from, Point to) {
    const DrawnPlane &drawn = plane.Plane();
    const LineSteps steps(from, to);
    // Inside the image the tables and the steps lead to the same addresses.
    if (drawn.Contains(from.X, from.Y) && drawn.Contains(to.X, to.Y))
        return WalkTable(plane.Canvas(), steps, {0, steps.Count()});
    if (drawn.Width < 1 || drawn.Height < 1)
        return;
    if (plane.Lattice())
        return WalkLattice(plane.Canvas(), *plane.Lattice(), steps);
    const Piece piece = ClipToImage(drawn, steps, from);
    if (piece.Begin < piece.End)
        WalkTable(plane.Canvas(), steps, piece);
}

} // namespace Drawing

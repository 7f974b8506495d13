#include "Drawing/LatticeWalk.h"

#include <numeric>
#include <vector>

#include "CheckedSize.h"

namespace Drawing {
namespace {

/// A line as addresses: an offset from the first pixel, and what each step adds to it.
struct AddressWay {
    WideInt Start;
    std::int64_t Along, Across;
};

AddressWay WayOf(const Lattice &lattice, const LineSteps &steps) {
    const std::int64_t x = steps.SignX() * lattice.XStep, y = steps.SignY() * lattice.YStep;
    const WideInt start = lattice.OffsetOf(steps.At(0));
    return steps.IsAlongX() ? AddressWay{start, x, y} : AddressWay{start, y, x};
}

struct Piece {
    std::int64_t Begin, End;
};

/// The pixels that may lie in the memory of the plane. An address is never farther from the straight line between
/// the ends than one step across.
Piece MayBeHeld(const Lattice &lattice, const LineSteps &steps, const AddressWay &way) {
    const WideInt length = std::max<std::int64_t>(steps.Length(), 1);
    const WideInt slope = way.Along * length + WideInt{way.Across} * steps.Rise();
    const WideInt margin = static_cast<WideInt>(orvBase::Magnitude(way.Across));
    const WideInt least = (lattice.Lowest - margin - way.Start) * length;
    const WideInt most = (lattice.Highest + margin - way.Start) * length;
    if (slope == 0) {
        // The line is back at its first address after each repetition of its steps.
        const std::int64_t period = steps.Count() / std::gcd(steps.Count(), steps.Rise());
        return least <= 0 && most >= 0 ? Piece{0, period} : Piece{0, 0};
    }
    const WideInt first = slope > 0 ? -FloorQuotient(-least, slope) : -FloorQuotient(-most, slope);
    const WideInt last = FloorQuotient(slope > 0 ? most : least, slope);
    const WideInt begin = std::max<WideInt>(first, 0), end = std::min<WideInt>(last + 1, steps.Count());
    return begin < end ? Piece{static_cast<std::int64_t>(begin), static_cast<std::int64_t>(end)} : Piece{0, 0};
}

std::int64_t OffsetAt(const LineSteps &steps, const AddressWay &way, std::int64_t k) {
    return static_cast<std::int64_t>(way.Start + WideInt{k} * way.Along + WideInt{steps.RiseAt(k)} * way.Across);
}

/// Pixel by pixel.
template <class Writer>
void WalkPixels(const Lattice &lattice, const LineSteps &steps, const AddressWay &way, const Piece &piece,
                const Writer &write) {
    const std::int64_t whole = 2 * steps.Count(), part = 2 * steps.Rise();
    std::int64_t remainder = steps.RemainderAt(piece.Begin);
    std::int64_t offset = OffsetAt(steps, way, piece.Begin);
    for (std::int64_t k = piece.Begin; k < piece.End; ++k) {
        if (offset >= lattice.Lowest && offset <= lattice.Highest)
            write(lattice.First + offset);
        remainder += part;
        const bool rises = remainder >= whole;
        remainder -= rises ? whole : 0;
        offset += way.Along + (rises ? way.Across : 0);
    }
}

/// Offsets first, first + stride, ... up to last; the stride is positive.
struct Run {
    std::int64_t First, Last;
};

/// Writes runs of addresses that lie equally far apart, but for what the runs just before have written.
template <class Writer>
class RunWriter {
public:
    RunWriter(const Lattice &lattice, std::int64_t stride, std::int64_t classes, const Writer &write)
        : lattice_(lattice), stride_(stride), classBytes_(stride / classes), write_(write),
          written_(static_cast<std::size_t>(classes), Run{0, -1}) {}

    void Add(Run run) {
        const std::int64_t residue = Residue(run.First);
        Cut(run);
        if (run.First > run.Last)
            return;
        Run &known = written_[static_cast<std::size_t>(residue / classBytes_)];
        const bool isBeside =
            known.First > known.Last || run.First > known.Last + stride_ || run.Last < known.First - stride_;
        if (isBeside) {
            Write(run);
            known = run;
            return;
        }
        Write({run.First, known.First - stride_});
        Write({known.Last + stride_, run.Last});
        known = {std::min(known.First, run.First), std::max(known.Last, run.Last)};
    }

private:
    std::int64_t Residue(std::int64_t offset) const {
        const std::int64_t rest = offset % stride_;
        return rest < 0 ? rest + stride_ : rest;
    }
    /// To the memory of the plane.
    void Cut(Run &run) const {
        if (run.First < lattice_.Lowest)
            run.First += (lattice_.Lowest - run.First + stride_ - 1) / stride_ * stride_;
        if (run.Last > lattice_.Highest)
            run.Last -= (run.Last - lattice_.Highest + stride_ - 1) / stride_ * stride_;
    }
    void Write(Run run) const {
        for (std::int64_t offset = run.First; offset <= run.Last; offset += stride_)
            write_(lattice_.First + offset);
    }

    const Lattice &lattice_;
    std::int64_t stride_, classBytes_;
    const Writer &write_;
    std::vector<Run> written_; ///< by the residue of the offset
};

/// Lines that stay in the memory of the plane for longer than this go over the same addresses again and again.
constexpr std::int64_t LongWalk = std::int64_t{1} << 22;
constexpr std::int64_t MostClasses = 64;

/// How many residues the runs of a line have; 0 when the order of writing may matter or they are too many.
std::int64_t RunClasses(const AddressWay &way, std::intptr_t pixelBytes) {
    const std::int64_t stride = std::abs(way.Along), common = std::gcd(way.Along, way.Across);
    return common >= pixelBytes && stride / common <= MostClasses ? stride / common : 0;
}

/// Run by run: between two steps across, addresses lie equally far apart.
template <class Writer>
void WalkRuns(const Lattice &lattice, const LineSteps &steps, const AddressWay &way, const Piece &piece,
              std::int64_t classes, const Writer &write) {
    RunWriter<Writer> runs(lattice, std::abs(way.Along), classes, write);
    const std::int64_t whole = 2 * steps.Length(), part = 2 * steps.Rise();
    std::int64_t remainder = steps.RemainderAt(piece.Begin);
    std::int64_t offset = OffsetAt(steps, way, piece.Begin);
    for (std::int64_t k = piece.Begin; k < piece.End;) {
        const std::int64_t toRise = part == 0 ? piece.End - k : (whole - remainder + part - 1) / part;
        const std::int64_t count = std::min(toRise, piece.End - k);
        const std::int64_t last = offset + (count - 1) * way.Along;
        runs.Add({std::min(offset, last), std::max(offset, last)});
        remainder += count * part - whole;
        offset += count * way.Along + way.Across;
        k += count;
    }
}

} // namespace

void WalkLattice(const Canvas &canvas, const Lattice &lattice, const LineSteps &steps) {
    const AddressWay way = WayOf(lattice, steps);
    const Piece piece = MayBeHeld(lattice, steps, way);
    if (piece.Begin == piece.End)
        return;
    const std::int64_t classes = piece.End - piece.Begin > LongWalk ? RunClasses(way, canvas.Colour.Bytes) : 0;
    WithWriter(canvas, [&](const auto &write) {
        if (classes != 0)
            WalkRuns(lattice, steps, way, piece, classes, write);
        else
            WalkPixels(lattice, steps, way, piece, write);
    });
}

} // namespace Drawing

#include "Drawing/LatticeWalk.h"

#include <numeric>
#include <utility>

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

/// Lines with more pixels for each address of the plane's memory are drawn address by address.
constexpr std::int64_t PixelsPerAddress = 8;

/// The addresses of a line one by one. Address c * Common from the first pixel of a piece is that of its pixel k,
/// across by r, when k * along + r * across = c; and all solutions of that are (k + j * period, r - j * ...) for
/// whole j. Pixel k is across by r when its remainder, which is linear in k and r, is one: so the pixels of an
/// address are those of a range of j, and the first of them is found without a walk.
class AddressTest {
public:
    /// Counted from pixel first of the line, for addresses from multiple c of the common divisor on.
    AddressTest(const LineSteps &steps, const AddressWay &way, const Piece &piece, WideInt c)
        : whole_(2 * steps.Length()), part_(2 * steps.Rise()), sign_(way.Across < 0 ? -1 : 1),
          count_(piece.End - piece.Begin) {
        const std::int64_t common = std::gcd(way.Along, way.Across);
        along_ = way.Along / common;
        period_ = std::abs(way.Across) / common;
        inverse_ = Inverse(along_, period_);
        const WideInt residue = ((c % period_) + period_) % period_;
        k_ = static_cast<std::int64_t>(residue * inverse_ % period_);
        const WideInt across = sign_ * ((c - WideInt{k_} * along_) / period_);
        remainder_ = steps.RemainderAt(piece.Begin) + WideInt{part_} * k_ - WideInt{whole_} * across;
        perPeriod_ = WideInt{part_} * period_ + WideInt{whole_} * along_ * sign_;
        const WideInt acrossPerAddress = sign_ * ((1 - WideInt{inverse_} * along_) / period_);
        perAddress_ = WideInt{part_} * inverse_ - WideInt{whole_} * acrossPerAddress;
    }

    /// True when a pixel of the piece has the address.
    bool IsDrawn() const {
        // The first j with a remainder on the right side of its limits; more only leads further away.
        WideInt j = 0;
        if (perPeriod_ > 0 && remainder_ < 0)
            j = RoundedUp(-remainder_, perPeriod_);
        else if (perPeriod_ < 0 && remainder_ >= whole_)
            j = RoundedUp(remainder_ - whole_ + 1, -perPeriod_);
        const WideInt reached = remainder_ + j * perPeriod_;
        return reached >= 0 && reached < whole_ && k_ + j * period_ < count_;
    }
    void GoToNextAddress() {
        k_ += inverse_;
        remainder_ += perAddress_;
        if (k_ >= period_) {
            k_ -= period_;
            remainder_ -= perPeriod_;
        }
    }

private:
    /// x with x * value = 1, modulo a number without a common divisor; below it.
    static std::int64_t Inverse(std::int64_t value, std::int64_t modulus) {
        std::int64_t rest = modulus, next = ((value % modulus) + modulus) % modulus, factor = 0, nextFactor = 1;
        while (next != 0) {
            const std::int64_t quotient = rest / next;
            rest = std::exchange(next, rest - quotient * next);
            factor = std::exchange(nextFactor, factor - quotient * nextFactor);
        }
        return ((factor % modulus) + modulus) % modulus;
    }
    static WideInt RoundedUp(WideInt dividend, WideInt divisor) {
        constexpr WideInt word = INT64_MAX / 2;
        if (dividend > word || divisor > word)
            return (dividend + divisor - 1) / divisor;
        return (static_cast<std::int64_t>(dividend) + static_cast<std::int64_t>(divisor) - 1) /
               static_cast<std::int64_t>(divisor);
    }

    std::int64_t whole_, part_, sign_;
    std::int64_t count_;  ///< pixels
    std::int64_t along_;  ///< steps in common divisors
    std::int64_t period_; ///< pixels from one j to the next
    std::int64_t inverse_;
    std::int64_t k_;    ///< of j = 0: the only one below the period
    WideInt remainder_; ///< of j = 0
    WideInt perPeriod_, perAddress_;
};

/// Address by address, from the lowest on.
template <class Writer>
void WalkAddresses(const Lattice &lattice, const LineSteps &steps, const AddressWay &way, const Piece &piece,
                   const Writer &write) {
    const std::int64_t common = std::gcd(way.Along, way.Across), start = OffsetAt(steps, way, piece.Begin);
    const auto c = static_cast<std::int64_t>(-FloorQuotient(WideInt{start} - lattice.Lowest, common));
    AddressTest test(steps, way, piece, c);
    for (std::int64_t offset = start + c * common; offset <= lattice.Highest; offset += common) {
        if (test.IsDrawn())
            write(lattice.First + offset);
        test.GoToNextAddress();
    }
}

/// Whether it is quicker to go from address to address, of which no two share bytes.
bool HasFewAddresses(const Lattice &lattice, const AddressWay &way, const Piece &piece, std::intptr_t pixelBytes) {
    const std::int64_t common = std::gcd(way.Along, way.Across);
    const WideInt addresses = (WideInt{lattice.Highest} - lattice.Lowest) / common + 1;
    return common >= pixelBytes && addresses * PixelsPerAddress < piece.End - piece.Begin;
}

} // namespace

void WalkLattice(const Canvas &canvas, const Lattice &lattice, const LineSteps &steps) {
    const AddressWay way = WayOf(lattice, steps);
    const Piece piece = MayBeHeld(lattice, steps, way);
    if (piece.Begin == piece.End)
        return;
    const bool isByAddress = HasFewAddresses(lattice, way, piece, canvas.Colour.Bytes);
    WithWriter(canvas, [&](const auto &write) {
        if (isByAddress)
            WalkAddresses(lattice, steps, way, piece, write);
        else
            WalkPixels(lattice, steps, way, piece, write);
    });
}

} // namespace Drawing

#include "PixelList/PixelSeparation.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>

namespace PixelList {
namespace {

struct Position {
    double X;
    double Y;

    bool IsFinite() const { return std::isfinite(X) && std::isfinite(Y); }
    bool IsClose(const Position &other, double separation) const {
        return std::abs(X - other.X) <= separation && std::abs(Y - other.Y) <= separation;
    }
};

Position PositionOf(const CPixel &pixel) {
    return {pixel.Components[0], pixel.Components[1]};
}

/// Deletes each pixel for which isToGo is true. Those that stay close up as they are asked.
template <class Predicate>
void RemovePixelsIf(CPixelList &list, Predicate isToGo) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < list.size(); ++i) {
        CPixel *const pixel = list[i];
        if (isToGo(PositionOf(*pixel), kept))
            delete pixel;
        else
            list[kept++] = pixel;
    }
    list.resize(kept);
}

/// The positions that stay, by square cells of the plane. Cells are at least twice as wide as the separation, and so
/// wide that their numbers are below 2^41: close positions lie in cells side by side, whatever is rounded.
/// Cells share the chains of a hash table, so that a chain may hold positions that are far away, too.
class KeptPositions {
public:
    /// greatest  the greatest absolute coordinate. Throws when there is no memory.
    KeptPositions(std::size_t count, double separation, double greatest)
        : separation_(separation), cellWidth_(std::max(2 * separation, std::ldexp(greatest, -40))),
          chains_(std::bit_ceil(count), None) {
        kept_.reserve(count);
    }

    bool IsAnyClose(const Position &position) const {
        const Cell cell = CellOf(position);
        for (std::int64_t y = cell.Y - 1; y <= cell.Y + 1; ++y)
            for (std::int64_t x = cell.X - 1; x <= cell.X + 1; ++x)
                for (std::size_t i = chains_[ChainOf({x, y})]; i != None; i = kept_[i].Next)
                    if (kept_[i].Place.IsClose(position, separation_))
                        return true;
        return false;
    }
    void Keep(const Position &position) {
        std::size_t &chain = chains_[ChainOf(CellOf(position))];
        kept_.push_back({position, chain});
        chain = kept_.size() - 1;
    }

private:
    static constexpr std::size_t None = ~std::size_t{0};
    struct Cell {
        std::int64_t X;
        std::int64_t Y;
    };
    struct Link {
        Position Place;
        std::size_t Next;
    };

    Cell CellOf(const Position &position) const {
        return {static_cast<std::int64_t>(std::floor(position.X / cellWidth_)),
                static_cast<std::int64_t>(std::floor(position.Y / cellWidth_))};
    }
    std::size_t ChainOf(const Cell &cell) const {
        const std::uint64_t mixed =
            (static_cast<std::uint64_t>(cell.X) * 0x9E3779B97F4A7C15u + static_cast<std::uint64_t>(cell.Y)) *
            0xC2B2AE3D27D4EB4Fu;
        return (mixed ^ (mixed >> 32)) & (chains_.size() - 1);
    }

    double separation_;
    double cellWidth_;
    std::vector<std::size_t> chains_;
    std::vector<Link> kept_;
};

/// Empty where the cells would not do.
std::optional<KeptPositions> MakeCells(const CPixelList &list, double separation) {
    if (!std::isfinite(separation))
        return std::nullopt;
    double greatest = 0;
    for (const CPixel *pixel : list) {
        const Position position = PositionOf(*pixel);
        if (position.IsFinite())
            greatest = std::max({greatest, std::abs(position.X), std::abs(position.Y)});
    }
    try {
        return KeptPositions(list.size(), separation, greatest);
    } catch (...) {
        return std::nullopt;
    }
}

void RemoveByCells(CPixelList &list, KeptPositions &cells) {
    RemovePixelsIf(list, [&](const Position &position, std::size_t) {
        // What is not finite differs from all others by an infinite number, or by none.
        if (!position.IsFinite())
            return false;
        if (cells.IsAnyClose(position))
            return true;
        cells.Keep(position);
        return false;
    });
}

void RemoveOneByOne(CPixelList &list, double separation) {
    RemovePixelsIf(list, [&](const Position &position, std::size_t kept) {
        return std::any_of(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(kept),
                           [&](const CPixel *pixel) { return PositionOf(*pixel).IsClose(position, separation); });
    });
}

} // namespace

void RemoveClosePixels(SeparationMethod method, CPixelList &list, double separation) {
    std::optional<KeptPositions> cells;
    if (method == SeparationMethod::ByCells)
        cells = MakeCells(list, separation);
    if (cells)
        RemoveByCells(list, *cells);
    else
        RemoveOneByOne(list, separation);
}

} // namespace PixelList

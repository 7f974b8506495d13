// The choice among candidates: the strongest is taken, its neighbourhood dropped, and so on.
#pragma once

#include <stdexcept>

#include "PixelList/MarkedPixel.h"

namespace PixelList {

/// The maxima that were taken, found by their place. A cell is a square of the neighbourhood's half-width and one
/// pixel more: two maxima never share one, and those that can drop a pixel stand in the nine cells around it.
class TakenCells {
public:
    TakenCells(std::intptr_t width, std::intptr_t height, std::int64_t locality)
        : locality_(locality), side_(static_cast<std::size_t>(locality) + 1),
          columns_((static_cast<std::size_t>(width) - 1) / side_ + 3),
          cells_(columns_ * ((static_cast<std::size_t>(height) - 1) / side_ + 3), Empty) {}

    /// Takes a pixel, unless one that was taken before is near.
    template <class T>
    bool Take(const MarkedPixel<T> &candidate) {
        // A border of empty cells makes the outer ones like the others.
        const std::size_t cell = (candidate.Y / side_ + 1) * columns_ + candidate.X / side_ + 1;
        for (const std::size_t line : {cell - columns_, cell, cell + columns_})
            for (const std::size_t near : {line - 1, line, line + 1})
                if (cells_[near] != Empty && IsNear(places_[cells_[near]], candidate.X, candidate.Y))
                    return false;
        if (places_.size() >= Empty)
            throw std::length_error("more maxima than can be counted");
        cells_[cell] = static_cast<std::uint32_t>(places_.size());
        places_.push_back({candidate.X, candidate.Y});
        return true;
    }

private:
    struct Place {
        std::uint32_t X;
        std::uint32_t Y;
    };
    static constexpr std::uint32_t Empty = 0xFFFFFFFF;

    bool IsNear(const Place &place, std::uint32_t x, std::uint32_t y) const {
        const auto distance = [](std::uint32_t a, std::uint32_t b) {
            return std::int64_t{std::max(a, b) - std::min(a, b)};
        };
        return distance(place.X, x) <= locality_ && distance(place.Y, y) <= locality_;
    }

    std::int64_t locality_;
    std::size_t side_;
    std::size_t columns_;
    std::vector<std::uint32_t> cells_; ///< an index into places_, or Empty
    std::vector<Place> places_;
};

/// Leaves those candidates that are taken, in descending order of value, equal ones in the order that they came in,
/// which is to be row by row. width, height: of the plane that they lie in. locality: below 0 acts as 0.
template <class T>
void SelectGreedily(MarkedPixels<T> &candidates, std::intptr_t width, std::intptr_t height, std::int64_t locality) {
    SortStrongestFirst(candidates);
    if (locality < 1 || candidates.empty())
        return;
    TakenCells taken(width, height, std::min<std::int64_t>(locality, std::max(width, height)));
    std::erase_if(candidates, [&taken](const auto &candidate) { return !taken.Take(candidate); });
}

} // namespace PixelList

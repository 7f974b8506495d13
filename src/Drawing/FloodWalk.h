// The fill pixel by pixel, in its defined order: for planes whose positions may share pixels, where a written pixel
// bounds at other places, too, and the order decides what is reached.
#pragma once

#include <deque>
#include <stack>

#include "Drawing/FloodBoundary.h"
#include "Drawing/FloodPlane.h"
#include "Drawing/Point.h"

namespace Drawing::FloodFill {

class floodfill_base {
public:
    virtual ~floodfill_base() = default;
};

/// Ends for a word that bounds.
template <class T, class Boundary>
class floodfill_nonrecursive_visitor final : public floodfill_base {
public:
    floodfill_nonrecursive_visitor(const Image::PlaneView &view, const Boundary &boundary)
        : view_(view), boundary_(boundary) {}

    bool IsBoundary(orvBase::Point point) const {
        return point.X < 0 || point.Y < 0 || point.X >= view_.Width || point.Y >= view_.Height ||
               boundary_(T{*Address(point)});
    }

    void Fill(orvBase::Point start, T word) const {
        std::stack<orvBase::Point, std::deque<orvBase::Point>> open;
        open.push(start);
        while (!open.empty()) {
            const orvBase::Point point = open.top();
            open.pop();
            if (IsBoundary(point))
                continue;
            *Address(point) = word;
            const orvBase::Point neighbours[] = {
                {point.X - 1, point.Y}, {point.X, point.Y - 1}, {point.X + 1, point.Y}, {point.X, point.Y + 1}};
            for (const orvBase::Point &neighbour : neighbours)
                if (!IsBoundary(neighbour))
                    open.push(neighbour);
        }
    }

private:
    using Pixel = typename Scan::Loose<T>::Type;
    Pixel *Address(orvBase::Point point) const { return reinterpret_cast<Pixel *>(view_.Pixel(point.X, point.Y)); }

    Image::PlaneView view_;
    Boundary boundary_;
};

} // namespace Drawing::FloodFill

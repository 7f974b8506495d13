// The three ways to fill a region, and the choice among them.
#pragma once

#include "Drawing/FloodSpans.h"
#include "Drawing/FloodWalk.h"

namespace Drawing::FloodFill {

/// The rows of a plane with equal steps, whose pixels are distinct and bound when they are filled.
template <class Row, class T, class Boundary>
class PlaneRows {
public:
    PlaneRows(const FloodPlane &plane, const Boundary &boundary, T word)
        : plane_(plane), boundary_(boundary), word_(word) {}

    RowSearch<Row, Boundary> SearchOf(std::intptr_t y) const { return {Row(plane_, y), boundary_, plane_.Width}; }
    ORV_INLINE bool IsOpen(std::intptr_t x, std::intptr_t y) const { return !boundary_(Row(plane_, y).Get(x)); }
    ORV_INLINE void Fill(std::intptr_t y, const Run &run) const { Row(plane_, y).Fill(run.First, run.Last, word_); }

private:
    FloodPlane plane_;
    Boundary boundary_;
    T word_;
};

/// The rows of any plane, with a map of what bounds or has been filled: for words that do not bound themselves.
template <class T>
class MappedRows {
public:
    MappedRows(const Image::PlaneView &view, const AnyBoundary &boundary, T word)
        : view_(view), word_(word),
          closed_(static_cast<std::size_t>(view.Width * view.Height)), map_{reinterpret_cast<char *>(closed_.data()),
                                                                            view.Width, view.Height, 1, view.Width} {
        Scan::Chunk<T> chunk;
        Scan::ForEachPiece<T>(view.Width, view.Height, [&](std::intptr_t x, std::intptr_t y, std::intptr_t count) {
            const T *const pixels = Scan::PixelsToRead(view, x, y, count, chunk);
            std::uint8_t *const closed = closed_.data() + y * view.Width + x;
            Image::RunAtLevel([=]() ORV_INLINE_LAMBDA {
                for (std::intptr_t i = 0; i < count; ++i)
                    closed[i] = boundary(pixels[i]);
            });
        });
    }

    using Row = ArrayRow<std::uint8_t>;
    RowSearch<Row, EqualBoundary<std::uint8_t>> SearchOf(std::intptr_t y) const {
        return {Row(map_, y), {1}, map_.Width};
    }
    bool IsOpen(std::intptr_t x, std::intptr_t y) const { return Row(map_, y).Get(x) == 0; }
    void Fill(std::intptr_t y, const Run &run) const {
        Row(map_, y).Fill(run.First, run.Last, 1);
        char *const row = view_.Row(y);
        for (std::intptr_t x = run.First; x <= run.Last; ++x)
            *reinterpret_cast<typename Scan::Loose<T>::Type *>(row + view_.Columns[x].XEntry) = word_;
    }

private:
    Image::PlaneView view_;
    T word_;
    std::vector<std::uint8_t> closed_;
    FloodPlane map_;
};

template <class Row, class T, class Boundary>
void FillRows(const FloodPlane &plane, orvBase::Point start, const Boundary &boundary, T word) {
    PlaneRows<Row, T, Boundary> rows(plane, boundary, word);
    SpanFill(rows, plane.Width, plane.Height).FillFrom(start);
}

template <class T, class Boundary>
void FillDistinct(const Image::PlaneView &view, orvBase::Point start, const Boundary &boundary, T word) {
    const FloodPlane plane = FloodPlaneOf(view, start);
    if (HasArrayRows<T>(plane))
        FillRows<ArrayRow<T>>(plane, start, boundary, word);
    else
        FillRows<SteppedRow<T>>(plane, start, boundary, word);
}

/// Fills what can be reached from a pixel of the view that is no boundary. Whatever the word, it ends: a word that
/// does not bound itself is written once to all that can be reached.
template <class T>
void FillRegion(const Image::PlaneView &view, orvBase::Point start, const AnyBoundary &boundary, T word) {
    if (!boundary(word)) {
        MappedRows<T> rows(view, boundary, word);
        SpanFill(rows, view.Width, view.Height).FillFrom(start);
    } else if (!view.HasDistinctPixels()) {
        floodfill_nonrecursive_visitor<T, AnyBoundary>(view, boundary).Fill(start, word);
    } else if (IsExactInDouble<T> && boundary.Logic.Tolerance == 0.0) {
        FillDistinct(view, start, EqualBoundary<T>{word}, word);
    } else {
        FillDistinct(view, start, boundary, word);
    }
}

} // namespace Drawing::FloodFill

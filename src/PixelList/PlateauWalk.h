// The walk over a connected area of equal pixels, run by run, with a stack of its own: an area as large as the image
// needs no deeper calls than a single pixel.
#pragma once

#include <algorithm>
#include <bit>
#include <vector>

#include "PixelList/DenseRows.h"
#include "PixelList/MarkMap.h"
#include "PixelList/PlateauWindow.h"

namespace PixelList {

/// T is the type of the pixels. Neighbours are the eight around a pixel; the walk never leaves the image.
template <class T>
class PlateauWalk {
public:
    /// Both outlive the walk; they are of one size.
    PlateauWalk(DenseRows<T> &rows, MarkMap &marks, const Image::PlaneView &plane)
        : rows_(rows), marks_(marks), window_(rows, marks, plane),
          lastColumn_(static_cast<std::int32_t>(plane.Width - 1)),
          lastRow_(static_cast<std::int32_t>(plane.Height - 1)), lastStart_(std::max(lastColumn_ + 1 - Columns, 0)),
          columnsInside_(~Word{0} >> (Columns - 1 - std::min(lastColumn_, Columns - 1))) {}

    /// Marks all pixels of the value at (x, y), which has no mark, that are connected with it. Pixels with a mark are
    /// walls that are not looked at. Throws std::bad_alloc.
    /// Result  false when one without a mark beside the area is greater. The whole area gets marked all the same: no
    /// other pixel of it has to be walked from again.
    bool Run(std::int32_t x, std::int32_t y) {
        value_ = rows_.PixelAt(x, y);
        const Outcome outcome = window_.Flood(x, y, value_);
        return outcome == Outcome::TooLarge ? WalkRuns(x, y) : outcome == Outcome::Maximum;
    }

    /// As Run, for an area of any size.
    bool WalkRuns(std::int32_t x, std::int32_t y) {
        value_ = rows_.PixelAt(x, y);
        isMaximum_ = true;
        const std::int32_t start = std::max(x - Lead, 0);
        TakeRun(start, x - start, LookFrom(start, y), y);
        // Every run is marked when it comes onto the stack, so that each comes there once.
        while (!runs_.empty()) {
            const Span run = runs_.back();
            runs_.pop_back();
            if (run.Row > 0)
                LookBeside(run, run.Row - 1);
            if (run.Row < lastRow_)
                LookBeside(run, run.Row + 1);
        }
        return isMaximum_;
    }

private:
    using Outcome = typename PlateauWindow<T>::Outcome;
    using Word = MarkMap::Word;
    static constexpr auto Columns = static_cast<std::int32_t>(BitsColumns);
    /// How far in front of the columns in question a look begins, since runs go on to the left as well.
    static constexpr std::int32_t Lead = 16;

    struct Span {
        std::int32_t First;
        std::int32_t Last;
        std::int32_t Row;
    };

    /// The pixels of columns x to x + 63 that are inside the image and have no mark.
    ComparedBits LookFrom(std::int32_t x, std::int32_t y) {
        const std::int32_t start = std::min(x, lastStart_);
        const char *const pixels = rows_.Row(y) + start * static_cast<std::intptr_t>(sizeof(T));
        ComparedBits all;
        CompareRows<T>(&pixels, 1, value_, &all);
        const Word open = ~marks_.From(x, y);
        const int shift = x - start;
        return {(all.Equal & columnsInside_) >> shift & open, (all.Greater & columnsInside_) >> shift & open};
    }

    void Require(bool isMaximum) { isMaximum_ = isMaximum_ && isMaximum; }
    static bool Has(Word bits, int place) { return (bits >> place & 1) != 0; }

    /// Marks the run that the pixel at a place of a look belongs to, and keeps it until the rows beside it are looked
    /// at. Result: the last place of the run that the look shows.
    int TakeRun(std::int32_t start, int place, const ComparedBits &look, std::int32_t y) {
        const int first = place + 1 - std::countl_one(look.Equal << (Columns - 1 - place));
        const int last = place - 1 + std::countr_one(look.Equal >> place);
        Span run = {start + first, start + last, y};
        if (first > 0)
            Require(!Has(look.Greater, first - 1));
        else
            ExtendLeft(run);
        if (last < Columns - 1)
            Require(!Has(look.Greater, last + 1));
        else
            ExtendRight(run);
        marks_.SetRun(run.First, run.Last, y);
        runs_.push_back(run);
        return last;
    }

    void ExtendLeft(Span &run) {
        while (run.First > 0) {
            const std::int32_t start = std::max(run.First - Columns, 0);
            const int count = run.First - start;
            const ComparedBits look = LookFrom(start, run.Row);
            const int equal = std::countl_one(look.Equal << (Columns - count));
            run.First -= equal;
            if (equal < count)
                return Require(!Has(look.Greater, count - 1 - equal));
        }
    }
    void ExtendRight(Span &run) {
        while (run.Last < lastColumn_) {
            const ComparedBits look = LookFrom(run.Last + 1, run.Row);
            const int equal = std::countr_one(look.Equal);
            run.Last += equal;
            if (equal < Columns)
                return Require(!Has(look.Greater, equal));
        }
    }

    /// Takes all runs of a row above or below a run that touch it, at a corner too.
    void LookBeside(const Span &run, std::int32_t y) {
        const std::int32_t end = std::min(run.Last, lastColumn_ - 1) + 1;
        for (std::int32_t x = std::max(run.First - 1, 0); x <= end;) {
            const std::int32_t start = std::max(x - Lead, 0);
            const ComparedBits look = LookFrom(start, y);
            const int last = std::min(end - start, Columns - 1);
            const Word touching = ~Word{0} << (x - start) & ~Word{0} >> (Columns - 1 - last);
            Require((look.Greater & touching) == 0);
            for (Word equal = look.Equal & touching; equal != 0;) {
                const int taken = TakeRun(start, std::countr_zero(equal), look, y);
                equal &= ~Word{1} << taken;
            }
            x = start + last + 1;
        }
    }

    DenseRows<T> &rows_;
    MarkMap &marks_;
    PlateauWindow<T> window_;
    std::int32_t lastColumn_, lastRow_;
    std::int32_t lastStart_; ///< the last column from which 64 pixels can be read
    Word columnsInside_;     ///< of a look from column 0
    T value_ = 0;
    bool isMaximum_ = true;
    std::vector<Span> runs_;
};

} // namespace PixelList

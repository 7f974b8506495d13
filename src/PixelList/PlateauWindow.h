// A small area of equal pixels, found as bits in a window of 64 columns: most plateaus are, and take no walk. Where
// the processor can, most of those are found in a window that fits its registers before.
#pragma once

#include <algorithm>
#include <bit>

#include "PixelList/DenseRows.h"
#include "PixelList/MarkMap.h"
#include "PixelList/MaximumRows.h"

namespace PixelList {

/// T is the type of the pixels.
template <class T>
class PlateauWindow {
public:
    using Outcome = FloodOutcome;

    /// All three outlive the window; they are of one size.
    PlateauWindow(DenseRows<T> &rows, MarkMap &marks, const Image::PlaneView &plane)
        : rows_(rows), marks_(marks), lastColumn_(static_cast<std::int32_t>(plane.Width - 1)),
          lastRow_(static_cast<std::int32_t>(plane.Height - 1)),
          lastStart_(std::max(lastColumn_ - LastPlace, 0) & ~(StartStep - 1)),
          columnsInside_(~Word{0} >> (LastPlace - std::min(lastColumn_, LastPlace))),
          mayFloodSmall_(lastColumn_ >= LastPlace && CanFloodSmall()) {}

    /// As PlateauWalk::Run. TooLarge: the area does not fit, and nothing has been marked.
    Outcome Flood(std::int32_t x, std::int32_t y, T value) {
        value_ = value;
        if (mayFloodSmall_) {
            Outcome outcome = FloodNear<1>(x, y, 6);
            if (outcome == Outcome::TooLarge)
                outcome = FloodNear<2>(x, y, 12);
            if (outcome != Outcome::TooLarge)
                return outcome;
        }
        start_ = std::min(std::max(x - Lead, 0) & ~(StartStep - 1), lastStart_);
        if (x - start_ > LastPlace)
            return Outcome::TooLarge;
        firstRow_ = y - FirstLine;
        firstInside_ = std::max(-firstRow_, 0);
        lastInside_ = std::min(lastRow_ - firstRow_, Lines - 1);
        lowestLooked_ = std::max(FirstLine - LinesAbove, firstInside_);
        highestLooked_ = std::min(FirstLine + LinesBelow, lastInside_);
        LookAt(lowestLooked_, highestLooked_);
        top_ = bottom_ = FirstLine;
        area_[FirstLine] = FillRuns(look_[FirstLine].Equal, Word{1} << (x - start_));
        while (SweepDown() && SweepUp())
            ;
        if (TouchesEdge())
            return Outcome::TooLarge;
        return MarkArea() ? Outcome::NoMaximum : Outcome::Maximum;
    }

private:
    using Word = MarkMap::Word;
    static constexpr std::int32_t LastPlace = MarkMap::WordMarks - 1;
    static constexpr std::int32_t StartStep = 8;  ///< the marks of a row of the window begin with a byte
    static constexpr std::int32_t SmallLead = 10; ///< columns of a small window in front of the first pixel
    static constexpr std::int32_t Lead = 24;      ///< columns of the window in front of the first pixel
    static constexpr int Lines = 64;              ///< rows of the window
    static constexpr int FirstLine = 24;          ///< that of the first pixel
    static constexpr int LinesAbove = 4;          ///< looked at in any case
    static constexpr int LinesBelow = 7;
    static constexpr int MoreLines = 8; ///< looked at when the area grows on
    static constexpr int MostLines = std::max(LinesAbove + 1 + LinesBelow, MoreLines);

    /// In a smaller window, with some rows above the pixel. All its rows must be inside the image.
    template <int Registers>
    Outcome FloodNear(std::int32_t x, std::int32_t y, std::int32_t above) {
        constexpr int lines = 16 * Registers;
        const std::int32_t top = y - above;
        const std::int32_t start =
            std::min(std::max(x - SmallLead, 0), lastColumn_ + 1 - FloodWindow::Columns) & ~(StartStep - 1);
        FloodWindow window;
        window.Place = x - start;
        if (top < 0 || top + lines - 1 > lastRow_ || window.Place >= FloodWindow::Columns)
            return Outcome::TooLarge;
        for (int line = 0; line < lines; ++line)
            window.Rows[line] = rows_.Row(top + line) + start * static_cast<std::intptr_t>(sizeof(T));
        window.Marks = marks_.ByteOf(start, top);
        window.MarksPitch = marks_.PitchBytes();
        window.Line = above;
        const bool goesOn = start + FloodWindow::Columns <= lastColumn_;
        window.OpenColumns = (start > 0 ? 1u : 0u) | (goesOn ? 1u << (FloodWindow::Columns - 1) : 0u);
        return FloodSmall<T, Registers>(window, value_);
    }

    /// The pixels without a mark in some rows of the window. No area is there yet.
    void LookAt(int first, int last) {
        const char *pixels[MostLines] = {};
        for (int line = first; line <= last; ++line)
            pixels[line - first] = rows_.Row(firstRow_ + line) + start_ * static_cast<std::intptr_t>(sizeof(T));
        CompareRows<T>(pixels, last - first + 1, value_, look_ + first);
        for (int line = first; line <= last; ++line) {
            const Word open = ~marks_.FromByte(start_, firstRow_ + line) & columnsInside_;
            look_[line].Equal &= open;
            look_[line].Greater &= open;
            area_[line] = 0;
        }
    }
    bool CanLookBelow(int line) {
        if (line > highestLooked_ && highestLooked_ < lastInside_) {
            const int last = std::min(highestLooked_ + MoreLines, lastInside_);
            LookAt(highestLooked_ + 1, last);
            highestLooked_ = last;
        }
        return line <= highestLooked_;
    }
    bool CanLookAbove(int line) {
        if (line < lowestLooked_ && lowestLooked_ > firstInside_) {
            const int first = std::max(lowestLooked_ - MoreLines, firstInside_);
            LookAt(first, lowestLooked_ - 1);
            lowestLooked_ = first;
        }
        return line >= lowestLooked_;
    }

    /// The places and those beside them.
    static Word Widened(Word places) { return places | places << 1 | places >> 1; }

    /// The runs of places that hold a seed. Seeds are some of the places.
    static Word FillRuns(Word places, Word seeds) {
        Word filled = 0;
        do {
            const Word gapsBefore = ~places & ((seeds & (~seeds + 1)) - 1);
            const Word first = Word{1} << (MarkMap::WordMarks - std::countl_zero(gapsBefore));
            // The sum carries from the first place through the rest of the run.
            const Word run = places & ~(places + first);
            filled |= run;
            seeds &= ~run;
        } while (seeds != 0);
        return filled;
    }

    /// Grows a row of the area from the one beside it. True when there is more of it then.
    bool Grow(int line, int from) {
        const Word seeds = look_[line].Equal & Widened(area_[from]) & ~area_[line];
        if (seeds == 0)
            return false;
        area_[line] |= FillRuns(look_[line].Equal, seeds);
        return true;
    }

    /// From the top of the area to its bottom and on, as far as it grows.
    bool SweepDown() {
        bool grows = false;
        for (int line = top_ + 1; CanLookBelow(line); ++line) {
            const bool grew = Grow(line, line - 1);
            grows = grows || grew;
            if (line > bottom_ && !grew)
                break;
            bottom_ = std::max(bottom_, line);
        }
        return grows || top_ == bottom_;
    }
    bool SweepUp() {
        bool grows = false;
        for (int line = bottom_ - 1; CanLookAbove(line); --line) {
            const bool grew = Grow(line, line + 1);
            grows = grows || grew;
            if (line < top_ && !grew)
                break;
            top_ = std::min(top_, line);
        }
        return grows;
    }

    /// True when the area may go on outside the window.
    bool TouchesEdge() const {
        Word all = 0;
        for (int line = top_; line <= bottom_; ++line)
            all |= area_[line];
        return ((all & 1) != 0 && start_ > 0) || (all >> LastPlace != 0 && start_ + LastPlace < lastColumn_) ||
               (top_ == 0 && firstRow_ > 0) || (bottom_ == Lines - 1 && firstRow_ + bottom_ < lastRow_);
    }

    /// True when something greater lies beside the area.
    bool MarkArea() {
        Word greater = 0;
        for (int line = top_; line <= bottom_; ++line)
            marks_.SetFrom(start_, firstRow_ + line, area_[line]);
        const int first = std::max(top_ - 1, lowestLooked_), last = std::min(bottom_ + 1, highestLooked_);
        for (int line = top_; line <= bottom_; ++line) {
            const Word near = look_[std::max(line - 1, first)].Greater | look_[line].Greater |
                              look_[std::min(line + 1, last)].Greater;
            greater |= near & Widened(area_[line]);
        }
        return greater != 0;
    }

    DenseRows<T> &rows_;
    MarkMap &marks_;
    std::int32_t lastColumn_, lastRow_;
    std::int32_t lastStart_; ///< the last multiple of StartStep from which 64 pixels can be read
    Word columnsInside_;     ///< the image may be narrower than the window
    bool mayFloodSmall_;
    T value_ = 0;
    std::int32_t start_ = 0;               ///< the window's first column
    std::int32_t firstRow_ = 0;            ///< the row of line 0; may lie in front of the image
    int firstInside_ = 0, lastInside_ = 0; ///< lines of the image
    int top_ = 0, bottom_ = 0;             ///< lines of the area
    int lowestLooked_ = 0, highestLooked_ = 0;
    ComparedBits look_[Lines];
    Word area_[Lines];
};

} // namespace PixelList

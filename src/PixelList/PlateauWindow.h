// A small area of equal pixels, found as bits in a window of 64 columns: most plateaus are, and take no walk.
#pragma once

#include <algorithm>

#include "PixelList/DenseRows.h"
#include "PixelList/MarkMap.h"
#include "PixelList/PixelBlocks.h"

namespace PixelList {

/// T is the type of the pixels. Everything is inlined, for the instruction set level of the caller.
template <class T>
class PlateauWindow {
public:
    enum class Outcome { Maximum, NoMaximum, TooLarge };

    /// All three outlive the window; they are of one size.
    PlateauWindow(DenseRows<T> &rows, MarkMap &marks, const Image::PlaneView &plane)
        : rows_(rows), marks_(marks), lastColumn_(static_cast<std::int32_t>(plane.Width - 1)),
          lastRow_(static_cast<std::int32_t>(plane.Height - 1)), lastStart_(std::max(lastColumn_ - LastPlace, 0)),
          columnsInside_(~Word{0} >> (LastPlace - std::min(lastColumn_, LastPlace))) {}

    /// As PlateauWalk::Run. TooLarge: the area does not fit, and nothing has been marked.
    ORV_INLINE Outcome Flood(std::int32_t x, std::int32_t y, T value) {
        start_ = std::min(std::max(x - Lead, 0), lastStart_);
        firstRow_ = y - FirstLine;
        value_ = value;
        top_ = bottom_ = lowestLooked_ = highestLooked_ = FirstLine;
        LookAt(FirstLine);
        area_[FirstLine] = FillRuns(look_[FirstLine].Equal, Word{1} << (x - start_));
        bool fits = true;
        for (bool grows = true; grows;) {
            grows = SweepDown(fits);
            grows = SweepUp(fits) || grows;
        }
        if (!fits || TouchesSide())
            return Outcome::TooLarge;
        for (int line = top_; line <= bottom_; ++line)
            marks_.SetFrom(start_, firstRow_ + line, area_[line]);
        return HasGreaterBeside() ? Outcome::NoMaximum : Outcome::Maximum;
    }

private:
    using Word = MarkMap::Word;
    static constexpr std::int32_t LastPlace = MarkMap::WordMarks - 1;
    static constexpr std::int32_t Lead = 24; ///< columns of the window in front of the first pixel
    static constexpr int Lines = 64;         ///< rows of the window
    static constexpr int FirstLine = 16;     ///< that of the first pixel

    /// The pixels without a mark in a row of the window.
    ORV_INLINE void LookAt(int line) {
        const std::int32_t y = firstRow_ + line;
        const char *const pixels = rows_.Row(y) + start_ * static_cast<std::intptr_t>(sizeof(T));
        const ComparedBits all = ComparePixels<T>(pixels, value_);
        const Word open = ~marks_.From(start_, y) & columnsInside_;
        look_[line] = {all.Equal & open, all.Greater & open};
        area_[line] = 0;
    }

    /// False for a row outside the image. A row outside the window does not fit.
    ORV_INLINE bool CanLookAt(int line, bool &fits) {
        const std::int32_t y = firstRow_ + line;
        if (y < 0 || y > lastRow_)
            return false;
        fits = fits && line >= 0 && line < Lines;
        return line >= 0 && line < Lines;
    }

    /// The places and those beside them.
    static ORV_INLINE Word Widened(Word places) { return places | places << 1 | places >> 1; }

    /// The runs of places that hold a seed. Seeds are some of the places.
    static ORV_INLINE Word FillRuns(Word places, Word seeds) {
        // A sum carries from a seed through the rest of its run.
        const Word upward = ((places + seeds) ^ places) | seeds;
        Word downward = seeds, through = places;
        for (int step = 1; step < MarkMap::WordMarks; step *= 2) {
            downward |= through & (downward >> step);
            through &= through >> step;
        }
        return (upward | downward) & places;
    }

    /// Grows a row of the area from the one beside it. True when there is more of it then.
    ORV_INLINE bool Grow(int line, int from) {
        const Word seeds = look_[line].Equal & Widened(area_[from]) & ~area_[line];
        if (seeds == 0)
            return false;
        area_[line] |= FillRuns(look_[line].Equal, seeds);
        return true;
    }

    ORV_INLINE bool SweepDown(bool &fits) {
        bool grows = false;
        for (int line = top_ + 1; CanLookAt(line, fits); ++line) {
            if (line > highestLooked_)
                LookAt(highestLooked_ = line);
            const bool grew = Grow(line, line - 1);
            grows = grows || grew;
            if (line > bottom_ && !grew)
                break;
            bottom_ = std::max(bottom_, line);
        }
        return grows && fits;
    }
    ORV_INLINE bool SweepUp(bool &fits) {
        bool grows = false;
        for (int line = bottom_ - 1; CanLookAt(line, fits); --line) {
            if (line < lowestLooked_)
                LookAt(lowestLooked_ = line);
            const bool grew = Grow(line, line + 1);
            grows = grows || grew;
            if (line < top_ && !grew)
                break;
            top_ = std::min(top_, line);
        }
        return grows && fits;
    }

    /// True when the area may go on beside the window.
    ORV_INLINE bool TouchesSide() const {
        Word all = 0;
        for (int line = top_; line <= bottom_; ++line)
            all |= area_[line];
        return ((all & 1) != 0 && start_ > 0) || (all >> LastPlace != 0 && start_ < lastStart_);
    }

    ORV_INLINE bool HasGreaterBeside() const {
        Word greater = 0;
        for (int line = top_; line <= bottom_; ++line) {
            const Word beside = Widened(area_[line]);
            greater |= look_[line].Greater & beside;
            if (line > lowestLooked_)
                greater |= look_[line - 1].Greater & beside;
            if (line < highestLooked_)
                greater |= look_[line + 1].Greater & beside;
        }
        return greater != 0;
    }

    DenseRows<T> &rows_;
    MarkMap &marks_;
    std::int32_t lastColumn_, lastRow_;
    std::int32_t lastStart_; ///< the last column from which 64 pixels can be read
    Word columnsInside_;     ///< the image may be narrower than the window
    T value_ = 0;
    std::int32_t start_ = 0;    ///< the window's first column
    std::int32_t firstRow_ = 0; ///< the row of line 0; may lie in front of the image
    int top_ = 0, bottom_ = 0;  ///< lines of the area
    int lowestLooked_ = 0, highestLooked_ = 0;
    ComparedBits look_[Lines];
    Word area_[Lines];
};

} // namespace PixelList

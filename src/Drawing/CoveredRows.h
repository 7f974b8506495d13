// What many polygons have written of an image so far, row by row, so that a polygon that adds nothing need not be
// filled, nor parts of an outline be walked that can't add anything.
#pragma once

#include <cstdint>
#include <vector>

#include "Drawing/Ink.h"
#include "Drawing/RowFill.h"
#include "Drawing/RowSpans.h"

namespace Drawing {

/// x = X + (y - Y) * Slope.
struct SlopedLine {
    double X, Y, Slope;
};

class CoveredRows {
public:
    explicit CoveredRows(const Canvas &canvas);

    /// Writes what of spans is not known to be written. The writing order of pixels must not matter.
    void Write(const SpanView &spans);
    /// True when every pixel has been written.
    bool AreWhole() const { return openRows_ == 0; }

    /// Begins the question how many pixels some shape may add.
    void BeginShape();
    /// The shape has no pixel in rows [top, bottom] left of a line or right of another, but for what other sides let
    /// it have.
    void AddSide(double top, double bottom, const SlopedLine &left, const SlopedLine &right);
    /// About as many pixels as the shape may add; 0 only when it adds none.
    double PixelsToAdd() const;

private:
    const Canvas &canvas_;
    ColumnRange columns_;
    std::int64_t height_;
    std::int64_t openRows_;
    /// Columns below First and above Last are written.
    std::vector<double> first_, last_;
    std::vector<double> left_, right_; ///< of the shape in question
    std::int64_t top_ = 0, end_ = 0;   ///< rows that it may have
};

} // namespace Drawing

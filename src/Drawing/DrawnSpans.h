// The rows of spans that lie in an image.
#pragma once

#include <algorithm>

#include "Drawing/RowSpans.h"
#include "Image/VectorRegisters.h"

namespace Drawing {

/// What of spans lies in an image.
struct DrawnSpans {
    DrawnSpans(const DrawnPlane &plane, const SpanView &spans) : Width(plane.Width), Shift(spans.Shift.X) {
        const std::int64_t skipped = std::max<std::int64_t>(-spans.Shift.Y, 0);
        Row = spans.Shift.Y + skipped;
        Count = std::min(spans.Rows - skipped, plane.Height - Row);
        Left = std::max<std::int64_t>(spans.Left + Shift, 0);
        Right = std::min(spans.Right + Shift, Width - 1);
        Least = spans.Least + skipped;
        Greatest = spans.Greatest + skipped;
        // Required: a polygon that ends in row 0 is not drawn.
        if (spans.Bottom == 0)
            Count = 0;
    }

    /// Calls fill(row, left, right), both ends included.
    template <class Fill>
    ORV_INLINE void ForEachRow(Fill &&fill) const {
        for (std::int64_t i = 0; i < Count; ++i) {
            const std::int64_t left = Least[i] + Shift, right = Greatest[i] + Shift;
            // Required: a span that ends in column 0 is left out.
            if (Least[i] <= Greatest[i] && right > 0 && left < Width)
                fill(Row + i, std::max<std::int64_t>(left, 0), std::min(right, Width - 1));
        }
    }

    std::int64_t Width, Shift;
    std::int64_t Row, Count;
    std::int64_t Left, Right; ///< no span in the image goes beyond
    const std::int32_t *Least, *Greatest;
};

} // namespace Drawing

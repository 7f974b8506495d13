// Writing of pixels that lie side by side in a row.
#pragma once

#include <cstdlib>

#include "Drawing/Ink.h"
#include "Image/VectorRegisters.h"

namespace Drawing {

/// The columns of some rows, with one look at their part of the table.
struct ColumnRange {
    std::intptr_t Left, Right; ///< both included
    std::intptr_t Step;        ///< common step in bytes; 0 for none or a single column
};
ColumnRange ColumnsOf(const DrawnPlane &plane, std::intptr_t left, std::intptr_t right);

template <std::size_t RegisterBytes, class Word>
ORV_INLINE void WriteRegister(char *target, const Replacer<Word> &write) {
    typedef Image::Vector<Word, RegisterBytes> Words;
    Image::StoreVector(target, Words{} + write.Value);
}
template <std::size_t RegisterBytes, class Word>
ORV_INLINE void WriteRegister(char *target, const Blender<Word> &write) {
    typedef Image::Vector<Word, RegisterBytes> Words;
    Words words;
    Image::LoadVector(words, target);
    Image::StoreVector(target, (words & write.Keep) | write.Add);
}

/// Pixels side by side, from the lowest address on, bytes of them. Whole registers, and for the rest one that ends
/// with the last pixel; rows of less than a register take smaller ones.
template <std::size_t RegisterBytes, class Writer>
ORV_INLINE void FillDense(char *target, std::intptr_t bytes, const Writer &write) {
    constexpr auto width = static_cast<std::intptr_t>(RegisterBytes);
    if (bytes < width) {
        if constexpr (width > Writer::Bytes)
            FillDense<RegisterBytes / 2>(target, bytes, write);
        return;
    }
    char *const last = target + bytes - width;
    if (bytes > 4 * width) {
        // Registers on whole cache lines are stored at twice the speed.
        WriteRegister<RegisterBytes>(target, write);
        const auto inLine = static_cast<std::intptr_t>(reinterpret_cast<std::uintptr_t>(target) % RegisterBytes);
        target += inLine % Writer::Bytes == 0 ? width - inLine : width;
        for (; target < last - 3 * width; target += 4 * width)
            for (std::intptr_t i = 0; i < 4; ++i)
                WriteRegister<RegisterBytes>(target + i * width, write);
    }
    for (; target < last; target += width)
        WriteRegister<RegisterBytes>(target, write);
    WriteRegister<RegisterBytes>(last, write);
}

/// Columns left to right of a row, both included; none when left is above right. columns reach around them.
template <class Writer>
void FillRow(const DrawnPlane &plane, const ColumnRange &columns, std::int64_t y, std::int64_t left,
             std::int64_t right, const Writer &write) {
    char *row = plane.Row(y);
    if constexpr (Writer::Bytes != 0)
        if (std::abs(columns.Step) == Writer::Bytes && left <= right)
            return FillDense<64>(row + plane.Table[columns.Step < 0 ? right : left].XEntry,
                                 (right - left + 1) * Writer::Bytes, write);
    for (std::int64_t x = left; x <= right; ++x)
        write(row + plane.Table[x].XEntry);
}

} // namespace Drawing

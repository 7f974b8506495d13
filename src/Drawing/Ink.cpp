#include "Drawing/Ink.h"

#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <vector>

#include "CheckedSize.h"
#include "Image/TableSteps.h"

namespace Drawing {
namespace {

/// The address of the pixel that lies highest in memory.
const char *HighestPixel(const DrawnPlane &plane) {
    std::intptr_t column = plane.Table[0].XEntry, row = plane.Table[0].YEntry;
    for (std::intptr_t x = 1; x < plane.Width; ++x)
        column = std::max(column, plane.Table[x].XEntry);
    for (std::intptr_t y = 1; y < plane.Height; ++y)
        row = std::max(row, plane.Table[y].YEntry);
    return plane.Base + column + row;
}

/// The shortest way between two entries of an axis that are not equal; the longest one there is when all are.
std::size_t ShortestStep(const VPAEntry *table, std::intptr_t VPAEntry::*axis, std::intptr_t count) {
    std::vector<std::intptr_t> entries;
    for (std::intptr_t i = 0; i < count; ++i)
        entries.push_back(table[i].*axis);
    std::sort(entries.begin(), entries.end());
    std::size_t shortest = std::numeric_limits<std::size_t>::max();
    for (std::size_t i = 1; i < entries.size(); ++i)
        if (entries[i] != entries[i - 1])
            shortest = std::min(shortest, orvBase::Magnitude(Image::Step(entries[i], entries[i - 1])));
    return shortest;
}

/// A pixel that is stored in more bytes than it has is written whole where columns and rows leave it the room, and
/// with its own bytes where the next pixel follows at once; the highest one has its own bytes in any case.
void Trim(Canvas &canvas, std::intptr_t ownBytes) {
    const DrawnPlane &plane = canvas.Plane;
    if (plane.Width < 1 || plane.Height < 1)
        return;
    const bool hasRoom = std::min(ShortestStep(plane.Table, &VPAEntry::XEntry, plane.Width),
                                  ShortestStep(plane.Table, &VPAEntry::YEntry, plane.Height)) >=
                         static_cast<std::size_t>(canvas.Colour.Bytes);
    canvas.TrimmedBytes = hasRoom ? canvas.Colour.Bytes : ownBytes;
    canvas.TrimmedEnd = HighestPixel(plane) + ownBytes;
}

} // namespace

void RequireMode(std::uint32_t mode) {
    if (mode > ModeOr)
        throw std::invalid_argument("Unsupported draw mode");
}

Ink InkOf(TDataType type, const Pen &pen) {
    RequireMode(pen.Mode);
    const StoredValue value = StoredValueOf(type, pen.Value);
    const bool isFloat = (type & DataTypeFloat) != 0;
    if (isFloat || pen.Mode == ModeReplace)
        return {0, value.Word, value.Bytes};
    if (pen.Mode == ModeAnd)
        return {value.Word, 0, value.Bytes};
    return {~std::uint64_t{0}, value.Word, value.Bytes};
}

Canvas CanvasOf(const DrawnPlane &plane, const Pen &pen) {
    Canvas canvas = {plane, InkOf(plane.Type, pen)};
    const std::intptr_t ownBytes = Image::BytesOf(plane.Type);
    if (ownBytes != canvas.Colour.Bytes)
        Trim(canvas, ownBytes);
    return canvas;
}

/// Pixels of columns and rows that stand apart by multiples of the bytes of one lie on a grid of these bytes; and in
/// steps, those of rows beyond the columns, or of columns beyond the rows, do not reach each other.
bool HasSeparatePixels(const Canvas &canvas) {
    const DrawnPlane &plane = canvas.Plane;
    const std::intptr_t bytes = canvas.TrimmedBytes != 0 ? canvas.TrimmedBytes : canvas.Colour.Bytes;
    if (bytes == 1 || plane.Width < 1 || plane.Height < 1)
        return true;
    const auto steps = Image::CommonSteps({plane.Table, plane.Width, plane.Table, plane.Height});
    if (steps.X != 0 && steps.Y != 0 && steps.X % bytes == 0 && steps.Y % bytes == 0)
        return true;
    bool isGrid = true;
    for (std::intptr_t x = 1; x < plane.Width && isGrid; ++x)
        isGrid = Image::Step(plane.Table[x].XEntry, plane.Table[0].XEntry) % bytes == 0;
    for (std::intptr_t y = 1; y < plane.Height && isGrid; ++y)
        isGrid = Image::Step(plane.Table[y].YEntry, plane.Table[0].YEntry) % bytes == 0;
    if (isGrid)
        return true;
    constexpr std::intptr_t most = std::intptr_t{1} << 31; // products of such steps and sizes fit their words
    const std::intptr_t x = std::abs(steps.X), y = std::abs(steps.Y);
    return x >= bytes && y >= bytes && x < most && y < most && plane.Width < most && plane.Height < most &&
           (y >= x * (plane.Width - 1) + bytes || x >= y * (plane.Height - 1) + bytes);
}

} // namespace Drawing

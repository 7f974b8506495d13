#include "Drawing/Ink.h"

#include <stdexcept>

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

/// A pixel that is stored in more bytes than it has is written whole where the columns leave it the room, and with
/// its own bytes where the next pixel follows at once; the highest one has its own bytes in any case.
void Trim(Canvas &canvas, std::intptr_t ownBytes) {
    const DrawnPlane &plane = canvas.Plane;
    if (plane.Width < 1 || plane.Height < 1)
        return;
    const auto step = Image::CommonSteps({plane.Table, plane.Width, plane.Table, 0}).X;
    const bool hasRoom = orvBase::Magnitude(step) >= static_cast<std::size_t>(canvas.Colour.Bytes);
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

} // namespace Drawing

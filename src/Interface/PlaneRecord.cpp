// Plane records, and the question whether a table is a plain raster of bytes.
#include "Interface/Boundary.h"
#include "Interface/ImageGuard.h"
#include "InterfaceHandling.h"

void SetPlaneRec(void *object, intptr_t plane, TPlaneRec *record) {
    if (record == nullptr || !IsIUnknown(object))
        return;
    const Interface::ImageHolder image = Interface::QueryImage(object);
    if (!image.IsValid())
        return;
    Interface::SilentBoundary(false, [&image, plane, record] {
        intptr_t planes = 0;
        image->GetImageDimensions(&planes, &record->Width, &record->Height);
        image->GetPlaneDatatype(plane, &record->Datatype);
        return image->GetPlaneVPA(plane, &record->BaseAddress, &record->VPAT) >= 0;
    });
}

namespace {

/// later - earlier, wrapping.
intptr_t Step(intptr_t later, intptr_t earlier) {
    return static_cast<intptr_t>(static_cast<uintptr_t>(later) - static_cast<uintptr_t>(earlier));
}

} // namespace

bool IsVPATLinear(const VPAEntry *table, intptr_t width, intptr_t height, intptr_t *pitch) {
    // Required: only a column step of 1 byte counts as linear, whereas rows may have any constant step.
    for (intptr_t column = 1; column < width; ++column)
        if (Step(table[column].XEntry, table[0].XEntry) != column)
            return false;
    *pitch = Step(table[1].YEntry, table[0].YEntry);
    for (intptr_t row = 2; row < height; ++row)
        if (Step(table[row].YEntry, table[row - 1].YEntry) != *pitch)
            return false;
    return true;
}

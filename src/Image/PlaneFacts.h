// What an image tells about one of its planes, as one value.
#pragma once

#include "Interface/InterfaceId.h"
#include "Interfaces.h"

namespace Image {

struct PlaneFacts {
    void *Base = nullptr;
    VPAEntry *Table = nullptr; ///< entry 0
    TDataType Datatype = 0;
};

/// False when the image refuses a fact, or the plane has no pixels or no table.
inline bool ReadPlaneFacts(pOLE::IImageVPA &image, std::intptr_t plane, PlaneFacts &facts) {
    return image.GetPlaneDatatype(plane, &facts.Datatype) == Interface::StatusOk &&
           image.GetPlaneVPA(plane, &facts.Base, &facts.Table) >= 0 && facts.Base != nullptr &&
           facts.Table != nullptr;
}

} // namespace Image

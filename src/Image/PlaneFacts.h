// What an image tells about one of its planes, as one value.
#pragma once

#include <vector>

#include "Image/Dimensions.h"
#include "Interface/InterfaceId.h"

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

/// All planes. False when one of them refuses.
inline bool ReadPlaneFacts(pOLE::IImageVPA &image, const Dimensions &size, std::vector<PlaneFacts> &facts) {
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
        if (!ReadPlaneFacts(image, plane, facts.emplace_back()))
            return false;
    return true;
}

} // namespace Image

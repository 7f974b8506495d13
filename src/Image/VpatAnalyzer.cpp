#include "Image/VpatAnalyzer.h"

#include <stdexcept>
#include <utility>

namespace Image {
namespace {

/// later - earlier, wrapping.
std::intptr_t Step(std::intptr_t later, std::intptr_t earlier) {
    return static_cast<std::intptr_t>(static_cast<std::uintptr_t>(later) - static_cast<std::uintptr_t>(earlier));
}

/// The common step of one axis of a table, or 0.
std::intptr_t CommonStep(const VPAEntry *table, std::intptr_t VPAEntry::*axis, std::intptr_t count) {
    if (count < 2)
        return 0;
    const std::intptr_t step = Step(table[1].*axis, table[0].*axis);
    // All differences are looked at without an early end: the loop then runs in vector registers.
    bool uniform = true;
    for (std::intptr_t i = 2; i < count; ++i)
        uniform &= Step(table[i].*axis, table[i - 1].*axis) == step;
    return uniform ? step : 0;
}

} // namespace

vpat_analyzer::vpat_analyzer(void *handle) : vpat_analyzer(Interface::QueryImage(handle)) {}

vpat_analyzer::vpat_analyzer(Interface::ImageHolder image) : image_(std::move(image)) {
    if (!image_.IsValid())
        throw std::runtime_error("image invalid");
    Analyze();
}

void vpat_analyzer::Analyze() {
    size_ = DimensionsOf(*image_.Get());
    planes_.resize(static_cast<std::size_t>(size_.Planes) + 1);
    for (std::intptr_t i = 0; i < size_.Planes; ++i) {
        Plane &plane = planes_[static_cast<std::size_t>(i)];
        if (image_->GetPlaneDatatype(i, &plane.Datatype) != Interface::StatusOk ||
            image_->GetPlaneVPA(i, &plane.Base, &plane.Table) < 0 || plane.Base == nullptr || plane.Table == nullptr)
            throw std::runtime_error("image invalid");
        plane.XStep = CommonStep(plane.Table, &VPAEntry::XEntry, size_.Width);
        plane.YStep = CommonStep(plane.Table, &VPAEntry::YEntry, size_.Height);
    }
}

const vpat_analyzer::Plane &vpat_analyzer::At(std::intptr_t plane) const {
    if (plane < 0 || plane > size_.Planes)
        throw std::out_of_range("invalid index");
    return planes_[static_cast<std::size_t>(plane)];
}

char *vpat_analyzer::FirstPixel(std::intptr_t plane) const {
    const Plane &found = At(plane);
    return static_cast<char *>(found.Base) + found.Table[0].XEntry + found.Table[0].YEntry;
}

} // namespace Image

#include "Image/VpatAnalyzer.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "CheckedSize.h"

namespace Image {
namespace {

unsigned ClassOf(std::intptr_t step, std::intptr_t ownBytes, std::intptr_t planes) {
    using Facts = vpat_analyzer;
    if (step == 0)
        return 0;
    const unsigned sign = step < 1 ? Facts::ClassNegative : 0;
    const std::size_t magnitude = orvBase::Magnitude(step);
    if (magnitude == static_cast<std::size_t>(ownBytes * planes))
        return Facts::ClassLinear | Facts::ClassDense | Facts::ClassInterleaved | sign;
    if (magnitude == static_cast<std::size_t>(ownBytes))
        return Facts::ClassLinear | Facts::ClassDense | sign;
    return Facts::ClassLinear;
}

} // namespace

vpat_analyzer::vpat_analyzer(void *handle, Linearity linearity)
    : vpat_analyzer(Interface::QueryImage(handle), linearity) {}

vpat_analyzer::vpat_analyzer(Interface::ImageHolder image, Linearity linearity)
    : vpat_analyzer(Interface::ImageForCall(std::move(image)), linearity) {}

vpat_analyzer::vpat_analyzer(Interface::ImageForCall image, Linearity linearity)
    : image_(std::move(image)), linearity_(linearity) {
    if (!image_.IsValid())
        throw std::runtime_error("image invalid");
    ReadPlanes();
}

void vpat_analyzer::ReadPlanes() {
    size_ = DimensionsOf(*image_.Get());
    for (std::intptr_t i = 0; i < size_.Planes; ++i)
        if (!ReadPlaneFacts(*image_.Get(), i, planes_.emplace_back()))
            throw std::runtime_error("image invalid");
    planes_.emplace_back();
}

const vpat_analyzer::Plane &vpat_analyzer::At(std::intptr_t plane) const {
    if (plane < 0 || plane > size_.Planes)
        throw std::out_of_range("invalid index");
    return planes_[static_cast<std::size_t>(plane)];
}

const TableSteps &vpat_analyzer::StepsOf(std::intptr_t plane) const {
    const Plane &found = At(plane);
    if (!found.Steps) {
        const VPAEntry *table = found.Table;
        const TablePart whole = {table, table ? size_.Width : 0, table, table ? size_.Height : 0};
        found.Steps = linearity_ == Linearity::Known ? FirstSteps(whole) : CommonSteps(whole);
    }
    return *found.Steps;
}

unsigned vpat_analyzer::XClass(std::intptr_t plane) const {
    return ClassOf(XStep(plane), BytesOf(Datatype(plane)), size_.Planes);
}

unsigned vpat_analyzer::YClass(std::intptr_t plane) const {
    return ClassOf(YStep(plane), BytesOf(Datatype(plane)) * size_.Width, size_.Planes);
}

bool vpat_analyzer::HasOneDatatype() const {
    return std::all_of(planes_.begin(), planes_.begin() + size_.Planes,
                       [this](const Plane &plane) { return plane.Datatype == planes_.front().Datatype; });
}

const std::vector<std::intptr_t> &vpat_analyzer::MemoryOrder() const {
    if (order_.empty()) {
        order_.resize(static_cast<std::size_t>(size_.Planes));
        std::iota(order_.begin(), order_.end(), 0);
        std::sort(order_.begin(), order_.end(),
                  [this](std::intptr_t a, std::intptr_t b) { return FirstPixel(a) < FirstPixel(b); });
    }
    return order_;
}

bool vpat_analyzer::IsInterleaved() const {
    if (size_.Planes < 1 || !HasOneDatatype())
        return false;
    if (size_.Planes == 1)
        return (XClass(0) & YClass(0) & ClassLinear) != 0;
    const std::intptr_t bytes = BytesOf(Datatype(0));
    const std::intptr_t pixelBytes = bytes * size_.Planes;
    const std::vector<std::intptr_t> &order = MemoryOrder();
    for (std::size_t i = 1; i < order.size(); ++i)
        if (FirstPixel(order[i]) - FirstPixel(order[i - 1]) != bytes)
            return false;
    return std::all_of(order.begin(), order.end(), [&](std::intptr_t plane) {
        return XStep(plane) == XStep(0) && XStep(plane) >= pixelBytes &&
               orvBase::Magnitude(YStep(plane)) == orvBase::Magnitude(YStep(0)) &&
               orvBase::Magnitude(YStep(plane)) >= static_cast<std::size_t>(pixelBytes * size_.Width);
    });
}

std::intptr_t vpat_analyzer::ColumnGap() const {
    if (IsInterleaved())
        return Step(XStep(0), BytesOf(Datatype(0)) * size_.Planes);
    unsigned common = ~0u;
    for (std::intptr_t plane = 0; plane < size_.Planes; ++plane)
        common &= XClass(plane);
    return common == (ClassLinear | ClassDense) ? 0 : -1;
}

char *vpat_analyzer::FirstPixel(std::intptr_t plane) const {
    const Plane &found = At(plane);
    return static_cast<char *>(found.Base) + found.Table[0].XEntry + found.Table[0].YEntry;
}

} // namespace Image

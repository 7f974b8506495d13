#include "Image/VpatAnalyzer.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "Image/VectorRegisters.h"

namespace Image {
namespace {

/// later - earlier, wrapping.
std::intptr_t Step(std::intptr_t later, std::intptr_t earlier) {
    return static_cast<std::intptr_t>(static_cast<std::uintptr_t>(later) - static_cast<std::uintptr_t>(earlier));
}

struct Steps {
    std::intptr_t X;
    std::intptr_t Y;
};

/// The differences of one axis from entry `from` on, each against step: 0 when all are equal to it. All are looked at
/// without an early end: the loop then runs in vector registers.
std::uintptr_t Deviation(const VPAEntry *table, std::intptr_t VPAEntry::*axis, std::intptr_t from,
                         std::intptr_t count, std::intptr_t step) {
    std::uintptr_t deviation = 0;
    for (std::intptr_t i = from; i < count; ++i)
        deviation |= static_cast<std::uintptr_t>(Step(table[i].*axis, table[i - 1].*axis) ^ step);
    return deviation;
}

Steps FirstSteps(const VPAEntry *table, std::intptr_t width, std::intptr_t height) {
    return {width < 2 ? 0 : Step(table[1].XEntry, table[0].XEntry),
            height < 2 ? 0 : Step(table[1].YEntry, table[0].YEntry)};
}

/// A record of two machine words is one register: both axes are compared at once.
using Record = Vector<std::uint64_t, sizeof(VPAEntry)>;

Record RecordAt(const VPAEntry *table, std::intptr_t index) {
    Record record;
    LoadVector(record, reinterpret_cast<const char *>(table + index));
    return record;
}

/// Deviation of both axes over the entries up to count, in a lane each.
Record DeviationOfBoth(const VPAEntry *table, std::intptr_t count, const Steps &steps) {
    const Record step = {static_cast<std::uint64_t>(steps.X), static_cast<std::uint64_t>(steps.Y)};
    Record even = {0, 0};
    Record odd = {0, 0};
    Record earlier = RecordAt(table, 0);
    std::intptr_t i = 1;
    for (; i + 1 < count; i += 2) {
        const Record later = RecordAt(table, i);
        const Record last = RecordAt(table, i + 1);
        even |= (later - earlier) ^ step;
        odd |= (last - later) ^ step;
        earlier = last;
    }
    if (i < count)
        odd |= (RecordAt(table, i) - earlier) ^ step;
    return even | odd;
}

/// The common step of each axis of a table, or 0. Both axes are looked at in one pass as far as both reach.
Steps CommonSteps(const VPAEntry *table, std::intptr_t width, std::intptr_t height) {
    const Steps steps = FirstSteps(table, width, height);
    const std::intptr_t shorter = std::max(std::min(width, height), std::intptr_t{1});
    const Record deviation = DeviationOfBoth(table, shorter, steps);
    std::uint64_t deviationX = deviation[0];
    std::uint64_t deviationY = deviation[1];
    deviationX |= Deviation(table, &VPAEntry::XEntry, shorter, width, steps.X);
    deviationY |= Deviation(table, &VPAEntry::YEntry, shorter, height, steps.Y);
    return {deviationX == 0 ? steps.X : 0, deviationY == 0 ? steps.Y : 0};
}

unsigned ClassOf(std::intptr_t step, std::intptr_t ownBytes, std::intptr_t planes) {
    using Facts = vpat_analyzer;
    if (step == 0)
        return 0;
    const unsigned sign = step < 1 ? Facts::ClassNegative : 0;
    if (std::abs(step) == ownBytes * planes)
        return Facts::ClassLinear | Facts::ClassDense | Facts::ClassInterleaved | sign;
    if (std::abs(step) == ownBytes)
        return Facts::ClassLinear | Facts::ClassDense | sign;
    return Facts::ClassLinear;
}

} // namespace

vpat_analyzer::vpat_analyzer(void *handle, Linearity linearity)
    : vpat_analyzer(Interface::QueryImage(handle), linearity) {}

vpat_analyzer::vpat_analyzer(Interface::ImageHolder image, Linearity linearity) : image_(std::move(image)) {
    if (!image_.IsValid())
        throw std::runtime_error("image invalid");
    Analyze(linearity);
}

void vpat_analyzer::Analyze(Linearity linearity) {
    size_ = DimensionsOf(*image_.Get());
    planes_.resize(static_cast<std::size_t>(size_.Planes) + 1);
    for (std::intptr_t i = 0; i < size_.Planes; ++i) {
        Plane &plane = planes_[static_cast<std::size_t>(i)];
        if (image_->GetPlaneDatatype(i, &plane.Datatype) != Interface::StatusOk ||
            image_->GetPlaneVPA(i, &plane.Base, &plane.Table) < 0 || plane.Base == nullptr || plane.Table == nullptr)
            throw std::runtime_error("image invalid");
        const Steps steps = linearity == Linearity::Known ? FirstSteps(plane.Table, size_.Width, size_.Height)
                                                          : CommonSteps(plane.Table, size_.Width, size_.Height);
        plane.XStep = steps.X;
        plane.YStep = steps.Y;
    }
}

const vpat_analyzer::Plane &vpat_analyzer::At(std::intptr_t plane) const {
    if (plane < 0 || plane > size_.Planes)
        throw std::out_of_range("invalid index");
    return planes_[static_cast<std::size_t>(plane)];
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

std::vector<std::intptr_t> vpat_analyzer::MemoryOrder() const {
    std::vector<std::intptr_t> order(static_cast<std::size_t>(size_.Planes));
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [this](std::intptr_t a, std::intptr_t b) { return FirstPixel(a) < FirstPixel(b); });
    return order;
}

bool vpat_analyzer::IsInterleaved() const {
    if (size_.Planes < 1 || !HasOneDatatype())
        return false;
    if (size_.Planes == 1)
        return (XClass(0) & YClass(0) & ClassLinear) != 0;
    const std::intptr_t bytes = BytesOf(Datatype(0));
    const std::intptr_t pixelBytes = bytes * size_.Planes;
    const std::vector<std::intptr_t> order = MemoryOrder();
    for (std::size_t i = 1; i < order.size(); ++i)
        if (FirstPixel(order[i]) - FirstPixel(order[i - 1]) != bytes)
            return false;
    return std::all_of(planes_.begin(), planes_.begin() + size_.Planes, [&](const Plane &plane) {
        return plane.XStep == planes_.front().XStep && plane.XStep >= pixelBytes &&
               std::abs(plane.YStep) == std::abs(planes_.front().YStep) &&
               std::abs(plane.YStep) >= pixelBytes * size_.Width;
    });
}

std::intptr_t vpat_analyzer::ColumnGap() const {
    if (IsInterleaved())
        return XStep(0) - BytesOf(Datatype(0)) * size_.Planes;
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

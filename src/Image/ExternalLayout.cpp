#include "Image/ExternalLayout.h"

#include <cstdlib>
#include <memory>

#include "CheckedSize.h"
#include "ErrorHandling.h"
#include "Image/DataType.h"
#include "Interface/ErrorTexts.h"
#include "Interface/ImageKernelException.h"

namespace Image {
namespace {

using ErrorHandling::CImageKernelException;

[[noreturn]] void Refuse(const char *text) {
    throw CImageKernelException(ErrParameter, text);
}

/// A product that does not fit counts as larger than any buffer.
bool ExceedsBuffer(const ExternalLayout &layout) {
    std::int64_t bytes = 0;
    if (!orvBase::CheckedProduct(bytes, std::int64_t{layout.Width}, std::int64_t{layout.Height},
                                 std::int64_t{layout.Planes}, std::int64_t{BytesOf(layout.Datatype)}))
        return true;
    return bytes > 0 && static_cast<std::uint64_t>(bytes) > layout.BufferSize;
}

bool PitchTooSmall(std::intptr_t pitch, std::intptr_t count, std::intptr_t bytesPerPixel) {
    return static_cast<std::size_t>(bytesPerPixel) > orvBase::Magnitude(pitch) && count >= 2;
}

/// Each of the numbers 0 .. planes - 1 must stand in the order exactly once.
void CheckPlaneOrder(const std::intptr_t *order, std::intptr_t planes) {
    const std::unique_ptr<unsigned char, decltype(&std::free)> seen(
        static_cast<unsigned char *>(std::calloc(static_cast<std::size_t>(planes), 1)), &std::free);
    if (seen == nullptr)
        throw CImageKernelException(ErrCreateFailed);
    for (std::intptr_t k = 0; k < planes; ++k) {
        if (order[k] < 0 || order[k] >= planes || seen.get()[order[k]] != 0)
            Refuse(Interface::ErrorTexts::InvalidSequenceOrder);
        seen.get()[order[k]] = 1;
    }
}

/// Offsets are linear in each index, so the ones at the far corners tell whether all of them fit a machine word.
bool OffsetsFit(const ExternalLayout &layout) {
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t plane = 0;
    std::int64_t sum = 0;
    return orvBase::CheckedProduct(x, std::int64_t{layout.Width - 1}, std::int64_t{layout.PitchX}) &&
           orvBase::CheckedProduct(y, std::int64_t{layout.Height - 1}, std::int64_t{layout.PitchY}) &&
           orvBase::CheckedProduct(plane, std::int64_t{layout.Planes - 1}, std::int64_t{layout.PitchPlane}) &&
           orvBase::CheckedSum(sum, x, plane);
}

} // namespace

void CheckExternalLayout(const ExternalLayout &layout) {
    if (layout.Buffer == nullptr)
        Refuse(Interface::ErrorTexts::NullDataPointer);
    if (layout.BufferSize != 0 && ExceedsBuffer(layout))
        Refuse(Interface::ErrorTexts::InconsistentData);
    if (layout.Width < 1 || layout.Height < 1 || layout.Planes < 1)
        Refuse(Interface::ErrorTexts::InvalidDimensions);
    const std::intptr_t bytesPerPixel = BytesOf(layout.Datatype);
    if (PitchTooSmall(layout.PitchX, layout.Width, bytesPerPixel))
        Refuse(Interface::ErrorTexts::XPitchTooSmall);
    if (PitchTooSmall(layout.PitchY, layout.Height, bytesPerPixel))
        Refuse(Interface::ErrorTexts::YPitchTooSmall);
    if (PitchTooSmall(layout.PitchPlane, layout.Planes, bytesPerPixel))
        Refuse(Interface::ErrorTexts::ZPitchTooSmall);
    if (layout.PlaneOrder != nullptr)
        CheckPlaneOrder(layout.PlaneOrder, layout.Planes);
    if (!OffsetsFit(layout))
        Refuse(Interface::ErrorTexts::InconsistentData);
}

} // namespace Image

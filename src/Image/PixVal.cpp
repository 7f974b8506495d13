// The pixel or an error code in one word, for scripts.
#include <cstring>

#include "Image/Dimensions.h"
#include "Image/TableWriter.h"
#include "ImageQueries.h"
#include "Interface/ErrorTexts.h"
#include "Interface/ImageGuard.h"

namespace {

constexpr const char *FunctionName = "PixVal";

intptr_t Fail(std::uint32_t code, const char *text = nullptr) {
    ReportORVErrorEx(code, text, FunctionName);
    return static_cast<intptr_t>(code);
}

/// An axis can be read within its guard entries; an axis without a pixel has none to repeat.
bool IsReadable(intptr_t position, intptr_t count) {
    return count > 0 && position >= -Image::GuardEntries && position - Image::GuardEntries < count;
}

} // namespace

intptr_t PixVal(void *image, intptr_t plane, intptr_t x, intptr_t y) {
    const Interface::ImageForCall held = Interface::GuardCall(image, FunctionName);
    if (!held.IsValid())
        return static_cast<intptr_t>(ErrNotAnImage);
    const Image::Dimensions size = Image::DimensionsOf(*held.Get());
    TDataType type = 0;
    if (plane < 0 || plane >= size.Planes || held->GetPlaneDatatype(plane, &type) != Interface::StatusOk)
        return Fail(ErrParameter, Interface::ErrorTexts::InvalidPlaneIndex);
    if (!IsReadable(x, size.Width))
        return Fail(ErrParameter, Interface::ErrorTexts::InvalidXCoordinate);
    if (!IsReadable(y, size.Height))
        return Fail(ErrParameter, Interface::ErrorTexts::InvalidYCoordinate);
    const intptr_t bits = Image::BitsOf(type);
    if (bits < 1 || bits > 16)
        return Fail(ErrDataType);
    void *base = nullptr;
    VPAEntry *table = nullptr;
    if (held->GetPlaneVPA(plane, &base, &table) < 0 || base == nullptr || table == nullptr)
        return Fail(ErrGeneral);
    const auto *pixel = static_cast<const unsigned char *>(base) + table[static_cast<std::int32_t>(x)].XEntry +
                        table[static_cast<std::int32_t>(y)].YEntry;
    if (bits <= 8)
        return *pixel;
    std::uint16_t wide = 0;
    std::memcpy(&wide, pixel, sizeof wide);
    return wide;
}

#include "Persistence/WinPalette.h"

#include <algorithm>
#include <cstring>

namespace Windows {
namespace {

constexpr std::intptr_t SingletonEntries = 256;
constexpr std::uint8_t NoCollapse = 4; // the entry gets a place of its own in the display's palette

} // namespace

CWinPalette::CWinPalette(std::intptr_t count)
    : count_(static_cast<std::size_t>(std::clamp<std::intptr_t>(count, 1, 65536))) {}

TPaletteHandle CWinPalette::GetHandle() {
    std::call_once(created_, [this] { CreateRecord(); });
    return handle_;
}

void CWinPalette::CreateRecord() {
    record_ = std::make_unique<unsigned char[]>(sizeof(TPaletteHead) + count_ * sizeof(TPaletteEntry));
    const TPaletteHead head{Version, static_cast<std::uint16_t>(count_)};
    std::memcpy(record_.get(), &head, sizeof head);
    for (std::size_t i = 0; i < count_; ++i) {
        TPaletteEntry entry{};
        FillEntry(i, entry);
        std::memcpy(record_.get() + sizeof head + i * sizeof entry, &entry, sizeof entry);
    }
    handle_ = record_.get();
}

CGrayPalette::CGrayPalette() : CWinPalette(SingletonEntries) {}

TPaletteHandle CGrayPalette::Get() {
    static CGrayPalette palette;
    return palette.GetHandle();
}

void CGrayPalette::FillEntry(std::size_t index, TPaletteEntry &entry) const {
    const auto grey = static_cast<std::uint8_t>(index);
    entry = {grey, grey, grey, 0};
}

CColorPalette::CColorPalette() : CWinPalette(SingletonEntries) {}

TPaletteHandle CColorPalette::Get() {
    static CColorPalette palette;
    return palette.GetHandle();
}

void CColorPalette::FillEntry(std::size_t index, TPaletteEntry &entry) const {
    entry = {static_cast<std::uint8_t>((index << 5) & 255), static_cast<std::uint8_t>(((index >> 3) << 5) & 255),
             static_cast<std::uint8_t>(index & 0xC0), NoCollapse};
}

} // namespace Windows

// Logical palettes: a version, a count and entries of four bytes, as bitmap displays of 256 colours take them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

namespace Windows {

struct TPaletteEntry {
    std::uint8_t Red;
    std::uint8_t Green;
    std::uint8_t Blue;
    std::uint8_t Flags;
};

/// The head of a palette's record; the entries follow it.
struct TPaletteHead {
    std::uint16_t Version;
    std::uint16_t EntryCount; ///< the low 16 bits: 0 stands for 65,536
};

using TPaletteHandle = const void *;

/// A palette whose record is made when its handle is first asked for. The handle is the record's address and is good
/// as long as the palette lives. The first use may be on several threads at once.
class CWinPalette {
public:
    static constexpr std::uint16_t Version = 0x300;

    /// The count is limited to 1 .. 65,536.
    explicit CWinPalette(std::intptr_t count);
    CWinPalette(const CWinPalette &) = delete;
    CWinPalette &operator=(const CWinPalette &) = delete;
    virtual ~CWinPalette() = default;

    TPaletteHandle GetHandle();
    std::size_t GetCount() const { return count_; }

protected:
    /// Sets an entry of the record under construction, which is all 0 before.
    virtual void FillEntry(std::size_t, TPaletteEntry &) const {}

private:
    void CreateRecord();

    TPaletteHandle handle_ = nullptr;
    std::size_t count_;
    std::unique_ptr<unsigned char[]> record_;
    std::once_flag created_;
};

/// The 256 greys i, i, i; one palette for the process.
class CGrayPalette : public CWinPalette {
public:
    static TPaletteHandle Get();

protected:
    void FillEntry(std::size_t index, TPaletteEntry &entry) const override;

private:
    CGrayPalette();
};

/// 256 colours, 3 bits of red, 3 of green and 2 of blue from the low bits up; one palette for the process.
class CColorPalette : public CWinPalette {
public:
    static TPaletteHandle Get();

protected:
    void FillEntry(std::size_t index, TPaletteEntry &entry) const override;

private:
    CColorPalette();
};

} // namespace Windows

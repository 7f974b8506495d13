// The composition of an error code word: number, sub-facility, facility, severity, failure bit.
// The constants of the image code's own failures stand in ErrorHandling.h.
#pragma once

#include <cstdint>

/// Bits 0 to 11 number, 12 to 19 sub-facility, 20 to 24 facility, 25 to 30 severity, 31 failure.
class CtkHRESULT {
public:
    explicit CtkHRESULT(std::uint32_t word) noexcept : word_(static_cast<std::int32_t>(word)) {}
    // Required: the number is widened with its sign, so one with bit 15 set overwrites all fields above it.
    CtkHRESULT(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility, std::uint32_t severity,
               bool failure) noexcept
        : word_(static_cast<std::int32_t>(((subFacility & 0xFFu) << 12) | static_cast<std::uint32_t>(number) |
                                          ((facility & 0xFFu) << 20) | (severity << 25) |
                                          (static_cast<std::uint32_t>(failure) << 31))) {}
    CtkHRESULT(const CtkHRESULT &) = default;
    CtkHRESULT &operator=(const CtkHRESULT &) = default;
    virtual ~CtkHRESULT();

    std::int32_t GetWord() const noexcept { return word_; }
    /// To be compared as a 16-bit value: the upper half of the result is that of the word.
    std::int32_t GetNumber() const noexcept { return static_cast<std::int32_t>(Bits() & 0xFFFF0FFFu); }
    /// To be masked with 255: the facility and all above it stand over the sub-facility, with the word's sign.
    std::int32_t GetSubFacility() const noexcept { return word_ >> 12; }
    std::int32_t GetFacility() const noexcept { return static_cast<std::int32_t>((Bits() >> 20) & 0x1Fu); }
    std::int32_t GetSeverity() const noexcept { return static_cast<std::int32_t>((Bits() >> 25) & 0x3Fu); }
    bool IsFailure() const noexcept { return word_ < 0; }
    bool IsSuccess() const noexcept { return word_ >= 0; }
    bool IsPositive() const noexcept { return word_ > 0; }

private:
    std::uint32_t Bits() const noexcept { return static_cast<std::uint32_t>(word_); }

    std::int32_t word_;
};

/// The part of a code word under which its text is registered: number, sub-facility and facility.
constexpr std::uint32_t ErrorKey(std::uint32_t word) noexcept {
    return word & 0x1FFFFFFu;
}

/// The same from the parts; severity and failure bit are never set.
inline std::uint32_t MakeErrorKey(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility) noexcept {
    return ErrorKey(static_cast<std::uint32_t>(CtkHRESULT(number, subFacility, facility, 0, false).GetWord()));
}

// The exceptions that carry an error code word. They are no std::exception: a catch of that class lets them pass.
#pragma once

#include <string>

#include "CtkHRESULT.h"

namespace tkErrors {

class CtkHRESULTException : public CtkHRESULT {
public:
    /// From a whole word or from its parts, each with or without a text. file is kept as a pointer and may be null; a
    /// line of 0 stands for none.
    CtkHRESULTException(std::uint32_t word, const char *file, int line) : CtkHRESULTException(word, {}, file, line) {}
    CtkHRESULTException(std::uint32_t word, std::string text, const char *file, int line);
    CtkHRESULTException(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility,
                        std::uint32_t severity, bool failure, const char *file, int line)
        : CtkHRESULTException(number, subFacility, facility, severity, failure, {}, file, line) {}
    CtkHRESULTException(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility,
                        std::uint32_t severity, bool failure, std::string text, const char *file, int line);

    /// The full message: text, origin, file and line. Composed on the first call and kept; good as long as the
    /// exception lives.
    virtual const char *What();
    /// Names for the message; null has the number written instead.
    virtual const char *GetFacilityName() const;
    virtual const char *GetSubFacilityName() const;
    /// The registered text of a code, or null.
    virtual const char *GetErrorString(std::uint32_t code) const;

private:
    std::string ComposeOrigin() const;

    const char *file_;
    std::int32_t line_;
    std::string message_;
    std::string text_;
};

} // namespace tkErrors

namespace tkIO {

/// A failure of a stream. The word gives number, severity and failure bit; sub-facility and facility are this
/// layer's.
class CtkIOException : public tkErrors::CtkHRESULTException {
public:
    static constexpr std::uint32_t ReadBeyondEnd = 0x80000001u;
    static constexpr std::uint32_t CannotOpen = 0x80000002u;

    CtkIOException(std::uint32_t word, const char *file, int line);
    CtkIOException(std::uint32_t word, std::string text, const char *file, int line);

    const char *GetFacilityName() const override;
    const char *GetSubFacilityName() const override;
};

} // namespace tkIO

namespace tkMath {

/// A failure of the mathematics layer. The word gives number, severity and failure bit; the rest is this layer's.
class CtkMathException : public tkErrors::CtkHRESULTException {
public:
    static constexpr std::uint32_t DivisionByZero = 0x80000005u;
    static constexpr std::uint32_t ZeroLength = 0x80000007u;

    CtkMathException(std::uint32_t word, const char *file, int line);
    CtkMathException(std::uint32_t word, std::string text, const char *file, int line);

    const char *GetFacilityName() const override;
    const char *GetSubFacilityName() const override;
};

} // namespace tkMath

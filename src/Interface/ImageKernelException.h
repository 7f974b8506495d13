// The exception of the image code. It cuts its code to 16 bits, so that a thrown ErrDataType arrives as 0x1C.
#pragma once

#include "CtkHRESULTException.h"

namespace ErrorHandling {

class CImageKernelException : public tkErrors::CtkHRESULTException {
public:
    /// A null text has the message told from the code alone; file may be null, a line of 0 stands for none.
    explicit CImageKernelException(std::uint32_t word, const char *text = nullptr, const char *file = nullptr,
                                   int line = 0)
        : CtkHRESULTException(Cut(word), text == nullptr ? std::string() : std::string(text), file, line) {}

    const char *GetFacilityName() const override;
    const char *GetSubFacilityName() const override;

private:
    // Required: the failure bit is lost on the way, so reports of thrown codes carry the bare number.
    static std::uint32_t Cut(std::uint32_t word) {
        return static_cast<std::uint32_t>(std::int32_t{static_cast<std::int16_t>(word & 0xFFFFu)});
    }
};

} // namespace ErrorHandling

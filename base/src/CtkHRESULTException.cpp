#include "CtkHRESULTException.h"

#include <utility>

#include "ErrorStringDatabase.h"

CtkHRESULT::~CtkHRESULT() = default;

namespace {

constexpr std::uint32_t BaseFacility = 1;
constexpr std::uint32_t MathSubFacility = 1;
constexpr std::uint32_t StreamSubFacility = 5;
constexpr char BaseFacilityName[] = "CtkBase";

/// Number, severity and failure bit of a word, under a sub-facility of the base layer.
std::uint32_t WordOfBaseLayer(std::uint32_t word, std::uint32_t subFacility) {
    return (word & 0xFE000FFFu) | (subFacility << 12) | (BaseFacility << 20);
}

} // namespace

namespace tkErrors {

CtkHRESULTException::CtkHRESULTException(std::uint32_t word, std::string text, const char *file, int line)
    : CtkHRESULT(word), file_(file), line_(line), text_(std::move(text)) {}

CtkHRESULTException::CtkHRESULTException(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility,
                                         std::uint32_t severity, bool failure, std::string text, const char *file,
                                         int line)
    : CtkHRESULT(number, subFacility, facility, severity, failure), file_(file), line_(line), text_(std::move(text)) {
}

const char *CtkHRESULTException::What() {
    if (!message_.empty())
        return message_.c_str();
    std::string message;
    if (!text_.empty())
        message = text_;
    else if (const char *registered = GetErrorString(static_cast<std::uint32_t>(GetWord())))
        message = registered;
    else
        message.append("Error code ")
            .append(std::to_string(static_cast<std::int16_t>(GetNumber())))
            .append(" (no extended information) occured");
    message.append(". ").append(ComposeOrigin()).append(".").push_back('\0');
    message_ = std::move(message);
    return message_.c_str();
}

std::string CtkHRESULTException::ComposeOrigin() const {
    const auto append = [](std::string &text, const char *name, std::int32_t number) {
        if (name != nullptr)
            text.append("'").append(name).append("'");
        else
            text.append("Nr. ").append(std::to_string(number));
    };
    std::string origin = "Exception from Sub-Facility ";
    append(origin, GetSubFacilityName(), GetSubFacility() & 0xFF);
    origin += " of Facility ";
    append(origin, GetFacilityName(), GetFacility());
    if (file_ != nullptr) {
        origin.append(" thrown in file ").append(file_);
        if (line_ != 0)
            origin.append(" at line Nr. ").append(std::to_string(line_));
    }
    return origin;
}

const char *CtkHRESULTException::GetFacilityName() const {
    return nullptr;
}

const char *CtkHRESULTException::GetSubFacilityName() const {
    return nullptr;
}

const char *CtkHRESULTException::GetErrorString(std::uint32_t code) const {
    return CErrorStringDatabase::Instance().Lookup(code);
}

} // namespace tkErrors

namespace tkIO {

CtkIOException::CtkIOException(std::uint32_t word, const char *file, int line)
    : CtkHRESULTException(WordOfBaseLayer(word, StreamSubFacility), file, line) {}

CtkIOException::CtkIOException(std::uint32_t word, std::string text, const char *file, int line)
    : CtkHRESULTException(WordOfBaseLayer(word, StreamSubFacility), std::move(text), file, line) {}

const char *CtkIOException::GetFacilityName() const {
    return BaseFacilityName;
}

const char *CtkIOException::GetSubFacilityName() const {
    return "tkIO";
}

} // namespace tkIO

namespace tkMath {

CtkMathException::CtkMathException(std::uint32_t word, const char *file, int line)
    : CtkHRESULTException(WordOfBaseLayer(word, MathSubFacility), file, line) {}

CtkMathException::CtkMathException(std::uint32_t word, std::string text, const char *file, int line)
    : CtkHRESULTException(WordOfBaseLayer(word, MathSubFacility), std::move(text), file, line) {}

const char *CtkMathException::GetFacilityName() const {
    return BaseFacilityName;
}

const char *CtkMathException::GetSubFacilityName() const {
    return "tkMath";
}

} // namespace tkMath

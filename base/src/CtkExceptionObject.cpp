#include "CtkExceptionObject.h"

#include <new>

#include "CtkHRESULT.h"

CtkExceptionObject::CtkExceptionObject(const char *text) {
    AddClass(ClassId);
    SetText(text);
}

CtkExceptionObject::CtkExceptionObject(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility,
                                       std::uint32_t severity, bool failure, const char *file, std::int32_t line)
    : word_(CtkHRESULT(number, subFacility, facility, severity, failure).GetWord()), line_(line), file_(file) {
    AddClass(ClassId);
}

CtkExceptionObject::CtkExceptionObject(const Error &error, const char *file, std::int32_t line)
    : word_(error.Word), line_(line), file_(file) {
    AddClass(ClassId);
    SetText(error.Text);
}

CtkExceptionObject::CtkExceptionObject(const CtkExceptionObject &other) noexcept
    : CtkObject(other), word_(other.word_), line_(other.line_), file_(other.file_) {
    AddClass(ClassId);
    SetText(other.GetText());
}

CtkExceptionObject &CtkExceptionObject::operator=(const CtkExceptionObject &other) noexcept {
    if (this == &other)
        return *this;
    word_ = other.word_;
    line_ = other.line_;
    file_ = other.file_;
    SetText(other.GetText());
    return *this;
}

std::uint32_t CtkExceptionObject::GetClassId() const {
    return WhileValid(ClassId);
}

void CtkExceptionObject::Set(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility,
                             std::uint32_t severity, bool failure, const char *file, std::int32_t line) {
    word_ = CtkHRESULT(number, subFacility, facility, severity, failure).GetWord();
    file_ = file;
    line_ = line;
}

void CtkExceptionObject::Set(std::int32_t word, const char *text, const char *file, std::int32_t line) {
    word_ = word;
    SetText(text);
    file_ = file;
    line_ = line;
}

// An exception that is about to be thrown, or being caught, must not fail over its own text.
void CtkExceptionObject::SetText(const char *text) noexcept {
    try {
        text_.Set(text);
    } catch (const std::bad_alloc &) {
        text_.Clear();
    }
}

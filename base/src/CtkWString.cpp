#include "CtkWString.h"

#include <cstdlib>
#include <cwchar>
#include <new>
#include <utility>

CtkWString::~CtkWString() {
    std::free(text_);
}

std::size_t CtkWString::GetLength() const {
    return length_;
}

const wchar_t *CtkWString::GetText() const {
    return text_ == nullptr ? L"" : text_;
}

void CtkWString::Set(const wchar_t *text) {
    if (text == nullptr || *text == L'\0')
        return Clear();
    const std::size_t length = std::wcslen(text);
    auto *fresh = static_cast<wchar_t *>(std::malloc((length + 1) * sizeof(wchar_t)));
    if (fresh == nullptr)
        throw std::bad_alloc();
    std::wmemcpy(fresh, text, length + 1);
    std::free(std::exchange(text_, fresh));
    length_ = length;
}

void CtkWString::Clear() {
    std::free(std::exchange(text_, nullptr));
    length_ = 0;
}

// The wide companion of CtkCString, kept as small as its users need it.
#pragma once

#include <cstddef>

class CtkWString {
public:
    CtkWString() noexcept = default;
    CtkWString(const CtkWString &) = delete;
    CtkWString &operator=(const CtkWString &) = delete;
    virtual ~CtkWString();

    virtual std::size_t GetLength() const;
    /// Never null; good until the string changes.
    virtual const wchar_t *GetText() const;
    /// Replaces the text; a null text empties the string. Throws std::bad_alloc and
    /// leaves the string as it was when there is no memory.
    virtual void Set(const wchar_t *text);
    virtual void Clear();

private:
    std::size_t length_ = 0;
    wchar_t *text_ = nullptr;
};
